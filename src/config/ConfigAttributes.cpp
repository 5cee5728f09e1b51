#include "config/ConfigAttributes.h"

#include "config/NodesText.h"

#include <iterator>

namespace
{

template <auto member>
struct MemberOf;

template <typename Record_, typename Field_, Field_ Record_::*member>
struct MemberOf<member>
{
    using Record = Record_;
    using Field = Field_;
};

// A number that doesn't parse in its form reads as 0: "-1" is -1 where a signed number is read and 0 where an
// unsigned one is, "4294967295" the other way round. Numbers wider than their field are cut; for a bool, not 0 is
// true.

template <auto member>
void readSigned(typename MemberOf<member>::Record &record, const QString &text)
{
    record.*member = static_cast<typename MemberOf<member>::Field>(text.toInt());
}

template <auto member>
void readUnsigned(typename MemberOf<member>::Record &record, const QString &text)
{
    record.*member = static_cast<typename MemberOf<member>::Field>(text.toUInt());
}

template <auto member>
void readUnsignedLong(typename MemberOf<member>::Record &record, const QString &text)
{
    record.*member = static_cast<typename MemberOf<member>::Field>(text.toULong());
}

template <auto member>
void readText(typename MemberOf<member>::Record &record, const QString &text)
{
    record.*member = text;
}

template <auto member>
QString writeSigned(const typename MemberOf<member>::Record &record)
{
    return QString::number(static_cast<qint32>(record.*member));
}

template <auto member>
QString writeUnsigned(const typename MemberOf<member>::Record &record)
{
    return QString::number(static_cast<quint32>(record.*member));
}

template <auto member>
QString writeText(const typename MemberOf<member>::Record &record)
{
    return record.*member;
}

void readNodes(AdjustModuleInfo &record, const QString &text)
{
    record.Nodes = nodesFromText(text);
}

QString writeNodes(const AdjustModuleInfo &record)
{
    return textFromNodes(record.Nodes);
}

template <int index>
void readColor(LedModuleInfo &record, const QString &text)
{
    std::get<index>(record.Colors) = text.toUInt();
}

template <int index>
QString writeColor(const LedModuleInfo &record)
{
    return QString::number(std::get<index>(record.Colors));
}

// clang-format off
constexpr AttributeRow<GeneralSettingInfo> kGeneralSetting[] = {
    // attribute               read as                                                 written as
    { "StartOnBoot",           readSigned<&GeneralSettingInfo::StartOnBoot>,           writeSigned<&GeneralSettingInfo::StartOnBoot>           },
    { "MinimizeOnStart",       readSigned<&GeneralSettingInfo::MinimizeOnStart>,       writeSigned<&GeneralSettingInfo::MinimizeOnStart>       },
    { "ApplyLastParamOnStart", readSigned<&GeneralSettingInfo::ApplyLastParamOnStart>, writeSigned<&GeneralSettingInfo::ApplyLastParamOnStart> },
    { "Language",              readText<&GeneralSettingInfo::Language>,                writeText<&GeneralSettingInfo::Language>                },
    { "RefreshTimeOfMonitor",  readSigned<&GeneralSettingInfo::RefreshTimeOfMonitor>,  writeSigned<&GeneralSettingInfo::RefreshTimeOfMonitor>  },
    { "PageEffects",           readText<&GeneralSettingInfo::PageEffects>,             writeText<&GeneralSettingInfo::PageEffects>             },
};

constexpr AttributeRow<UpdateSettingInfo> kUpdateSetting[] = {
    // attribute       read as                                        written as
    { "CheckInterval", readSigned<&UpdateSettingInfo::CheckInterval>, writeSigned<&UpdateSettingInfo::CheckInterval> },
    { "UpdateMode",    readSigned<&UpdateSettingInfo::UpdateMode>,    writeSigned<&UpdateSettingInfo::UpdateMode>    },
    { "UpdateStatus",  readSigned<&UpdateSettingInfo::UpdateStatus>,  writeSigned<&UpdateSettingInfo::UpdateStatus>  },
};

constexpr AttributeRow<GpuSettingInfo> kGpu[] = {
    // attribute     read as                                         written as
    { "GpuName",     readText<&GpuSettingInfo::GpuName>,             writeText<&GpuSettingInfo::GpuName>         },
    { "SubSystemId", readUnsignedLong<&GpuSettingInfo::SubSystemId>, writeUnsigned<&GpuSettingInfo::SubSystemId> },
};

constexpr AttributeRow<GpuSettingInfo> kMonitorModule[] = {
    // attribute      read as                                      written as
    { "SelectOption", readUnsigned<&GpuSettingInfo::SelectOption>, writeSigned<&GpuSettingInfo::SelectOption> },
};

constexpr AttributeRow<AdjustModuleInfo> kAdjustModule[] = {
    // attribute                    read as                                                    written as
    { "GpuFreClock",                readSigned<&AdjustModuleInfo::GpuFreClock>,                writeSigned<&AdjustModuleInfo::GpuFreClock>                },
    { "FanSpeedLevel",              readSigned<&AdjustModuleInfo::FanSpeedLevel>,              writeSigned<&AdjustModuleInfo::FanSpeedLevel>              },
    { "Voltage",                    readSigned<&AdjustModuleInfo::Voltage>,                    writeSigned<&AdjustModuleInfo::Voltage>                    },
    { "MemoryFreClock",             readSigned<&AdjustModuleInfo::MemoryFreClock>,             writeSigned<&AdjustModuleInfo::MemoryFreClock>             },
    { "Power",                      readSigned<&AdjustModuleInfo::Power>,                      writeSigned<&AdjustModuleInfo::Power>                      },
    { "Temperature",                readSigned<&AdjustModuleInfo::Temperature>,                writeSigned<&AdjustModuleInfo::Temperature>                },
    { "LinkOfPowerWithTemperature", readSigned<&AdjustModuleInfo::LinkOfPowerWithTemperature>, writeSigned<&AdjustModuleInfo::LinkOfPowerWithTemperature> },
    { "FanMode",                    readSigned<&AdjustModuleInfo::FanMode>,                    writeSigned<&AdjustModuleInfo::FanMode>                    },
    { "EnableHighPerformance",      readUnsigned<&AdjustModuleInfo::EnableHighPerformance>,    writeSigned<&AdjustModuleInfo::EnableHighPerformance>      },
    { "Nodes",                      readNodes,                                                 writeNodes                                                 },
};

constexpr AttributeRow<LedModuleInfo> kLedModule[] = {
    // attribute                   read as                                                  written as
    { "Interval",                  readSigned<&LedModuleInfo::Interval>,                    writeUnsigned<&LedModuleInfo::Interval>                },
    { "LedMode",                   readSigned<&LedModuleInfo::LedMode>,                     writeSigned<&LedModuleInfo::LedMode>                   },
    { "CheckedColorButtonStatic",  readUnsigned<&LedModuleInfo::CheckedColorButtonStatic>,  writeSigned<&LedModuleInfo::CheckedColorButtonStatic>  },
    { "CheckedColorButtonDynamic", readUnsigned<&LedModuleInfo::CheckedColorButtonDynamic>, writeSigned<&LedModuleInfo::CheckedColorButtonDynamic> },
    { "Color1",                    readColor<0>,                                            writeColor<0>                                          },
    { "Color2",                    readColor<1>,                                            writeColor<1>                                          },
    { "Color3",                    readColor<2>,                                            writeColor<2>                                          },
    { "Color4",                    readColor<3>,                                            writeColor<3>                                          },
    { "Color5",                    readColor<4>,                                            writeColor<4>                                          },
    { "Color6",                    readColor<5>,                                            writeColor<5>                                          },
    { "Color7",                    readColor<6>,                                            writeColor<6>                                          },
};

constexpr AttributeRow<LcdModuleInfo> kLcdModule[] = {
    // attribute     read as                                    written as
    { "AutoSwitch",  readUnsigned<&LcdModuleInfo::AutoSwitch>,  writeSigned<&LcdModuleInfo::AutoSwitch>    },
    { "SwitchTime",  readUnsigned<&LcdModuleInfo::SwitchTime>,  writeUnsigned<&LcdModuleInfo::SwitchTime>  },
    { "ModifierKey", readUnsigned<&LcdModuleInfo::ModifierKey>, writeUnsigned<&LcdModuleInfo::ModifierKey> },
    { "NormalKey",   readUnsigned<&LcdModuleInfo::NormalKey>,   writeUnsigned<&LcdModuleInfo::NormalKey>   },
    { "EnableLcd",   readUnsigned<&LcdModuleInfo::EnableLcd>,   writeSigned<&LcdModuleInfo::EnableLcd>     },
};
// clang-format on

} // namespace

const AttributeTable<GeneralSettingInfo> kGeneralSettingAttributes = {kGeneralSetting, std::size(kGeneralSetting)};
const AttributeTable<UpdateSettingInfo> kUpdateSettingAttributes = {kUpdateSetting, std::size(kUpdateSetting)};
const AttributeTable<GpuSettingInfo> kGpuAttributes = {kGpu, std::size(kGpu)};
const AttributeTable<GpuSettingInfo> kMonitorModuleAttributes = {kMonitorModule, std::size(kMonitorModule)};
const AttributeTable<AdjustModuleInfo> kAdjustModuleAttributes = {kAdjustModule, std::size(kAdjustModule)};
const AttributeTable<LedModuleInfo> kLedModuleAttributes = {kLedModule, std::size(kLedModule)};
const AttributeTable<LcdModuleInfo> kLcdModuleAttributes = {kLcdModule, std::size(kLcdModule)};
