#pragma once

#include <QList>
#include <QPoint>
#include <QString>
#include <QtGlobal>

#include <array>

/// \file The in-memory records of config.xml, with the defaults for an absent element. (An attribute that is absent
/// from a present element reads as 0, false or the empty text instead.)

/// Settings of the whole program.
struct GeneralSettingInfo
{
    bool StartOnBoot = true;
    bool MinimizeOnStart = false;
    bool ApplyLastParamOnStart = true;
    QString Language = QStringLiteral("lang_ch");   ///< "lang_ch" or "lang_en"
    qint32 RefreshTimeOfMonitor = 1;                ///< seconds
    QString PageEffects = QStringLiteral("normal"); ///< "normal" or "advanced"
};

/// What the program does with a newer version that its own check finds. The settings page offers the first and the
/// last. A file may hold any number: the first two ask the user, every other installs.
constexpr qint32 kUpdateModeInstall = 0;
constexpr qint32 kUpdateModeAsk = 1;
constexpr qint32 kUpdateModeNotify = 2;

/// How the program looks for updates.
struct UpdateSettingInfo
{
    qint32 CheckInterval = 7; ///< days; 10000 for never
    qint32 UpdateMode = kUpdateModeInstall;
    qint32 UpdateStatus = 1;
};

/// What the adjust page remembers of a card. Absolute values; -1 where nothing was ever adjusted.
struct AdjustModuleInfo
{
    static constexpr qint32 kNeverAdjusted = -1;

    qint32 GpuFreClock = kNeverAdjusted;    ///< MHz
    qint32 FanSpeedLevel = kNeverAdjusted;  ///< percent
    qint32 Voltage = kNeverAdjusted;        ///< millivolts
    qint32 MemoryFreClock = kNeverAdjusted; ///< MHz
    qint32 Power = kNeverAdjusted;          ///< percent
    qint32 Temperature = kNeverAdjusted;    ///< degrees Celsius
    bool LinkOfPowerWithTemperature = false;
    qint32 FanMode = 0;  ///< 0 auto, 1 manual, 2 user-defined
    QList<QPoint> Nodes; ///< fan curve: x degrees Celsius, y percent
    bool EnableHighPerformance = false;
};

/// What the LED page remembers of a card.
struct LedModuleInfo
{
    qint32 LedMode = 1;
    quint8 CheckedColorButtonStatic = 1;  ///< bit mask of colour buttons
    quint8 CheckedColorButtonDynamic = 0; ///< bit mask of colour buttons
    qint32 Interval = 2;                  ///< 2 to 16
    std::array<quint32, 7> Colors = {0xFFFFFF, 0xFFFFFF, 0xFFFFFF, 0xFFFFFF, 0xFFFFFF, 0xFFFFFF, 0xFFFFFF};
};

/// What the LCD page remembers of a card.
struct LcdModuleInfo
{
    bool AutoSwitch = true;
    quint32 SwitchTime = 10;  ///< seconds
    quint32 ModifierKey = 17; ///< Windows virtual-key code; 17 is Ctrl
    quint32 NormalKey = 49;   ///< Windows virtual-key code; 49 is the digit 1
    bool EnableLcd = true;
};

/// Everything that is saved for one card. The pair of name and subsystem identifier identifies the card.
struct GpuSettingInfo
{
    QString GpuName;
    quint32 SubSystemId = 0;
    quint32 SelectOption = 0; ///< mask of the rows ticked on the monitor page
    AdjustModuleInfo adjust;
    LedModuleInfo led;
    LcdModuleInfo lcd;
};
