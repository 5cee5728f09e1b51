#include "overclock/AdjustRows.h"

#include "device/Arithmetic.h"

namespace
{

using Param = OverClockingParam;

AdjustRange clockRange(const NvClockOffsetRange &range)
{
    return {wrappingSum(range.baseClock, range.minOffset), wrappingSum(range.baseClock, range.maxOffset)};
}

qint32 &gpuClock(Param &param)
{
    return param.clocks.gpuClock;
}
AdjustRange gpuClockRange(const Param &param)
{
    return clockRange(param.gpuRange);
}
bool gpuClockEditable(const Param &param)
{
    return param.gpuRange.editable;
}
bool gpuClockRead(const Param &param)
{
    return param.gpuRange.baseClock != 0;
}

qint32 &fanLevel(Param &param)
{
    return param.cooler.currentLevel;
}
AdjustRange fanRange(const Param &param)
{
    return {param.cooler.defaultMinLevel, param.cooler.defaultMaxLevel};
}
bool fanEditable(const Param &param)
{
    return param.fanMode == FanManual && isFanControllable(param);
}
bool fanRead(const Param &param)
{
    return param.cooler.defaultMaxLevel > 0 && param.cooler.defaultMaxLevel >= param.cooler.defaultMinLevel;
}

qint32 &voltage(Param &param)
{
    return param.voltage.currentVoltage;
}
AdjustRange voltageRange(const Param &param)
{
    return {param.voltage.minVoltage, param.voltage.maxVoltage};
}
bool voltageEditable(const Param &param)
{
    return param.voltage.editable;
}
bool voltageRead(const Param &param)
{
    return param.voltage.baseVoltage != 0;
}

qint32 &memoryClock(Param &param)
{
    return param.clocks.memoryClock;
}
AdjustRange memoryClockRange(const Param &param)
{
    return clockRange(param.memoryRange);
}
bool memoryClockEditable(const Param &param)
{
    return param.memoryRange.editable;
}
bool memoryClockRead(const Param &param)
{
    return param.memoryRange.baseClock != 0;
}

qint32 &power(Param &param)
{
    return param.power.currentPower;
}
AdjustRange powerRange(const Param &param)
{
    return {param.power.minPower, param.power.maxPower};
}
bool powerEditable(const Param &param)
{
    return param.power.present;
}
bool powerRead(const Param &param)
{
    return param.power.present && param.power.maxPower > 0;
}

qint32 &temperature(Param &param)
{
    return param.thermal.currentTemp;
}
AdjustRange temperatureRange(const Param &param)
{
    return {param.thermal.minTemp, param.thermal.maxTemp};
}
bool temperatureEditable(const Param &param)
{
    return param.thermal.present;
}
bool temperatureRead(const Param &param)
{
    return param.thermal.present && param.thermal.maxTemp > 0;
}

} // namespace

OverClockingParam limitedToRows(OverClockingParam param)
{
    for (const AdjustRow &row : kAdjustRows) {
        const AdjustRange range = row.range(param);
        row.value(param) = withinRange(row.value(param), range.minimum, range.maximum);
    }
    return param;
}

bool isFanControllable(const OverClockingParam &param)
{
    return param.cooler.defaultMinLevel != param.cooler.defaultMaxLevel;
}

// clang-format off
const std::array<AdjustRow, AdjustRowCount> kAdjustRows = {{
    // object name       caption                       value        range             editable             wasRead          saved
    {"gpuClockRow",     &Lang_OverClock::gpuClock,    gpuClock,    gpuClockRange,    gpuClockEditable,    gpuClockRead,    &AdjustModuleInfo::GpuFreClock},
    {"fanRow",          &Lang_OverClock::fanSpeed,    fanLevel,    fanRange,         fanEditable,         fanRead,         &AdjustModuleInfo::FanSpeedLevel},
    {"voltageRow",      &Lang_OverClock::gpuVoltage,  voltage,     voltageRange,     voltageEditable,     voltageRead,     &AdjustModuleInfo::Voltage},
    {"memoryClockRow",  &Lang_OverClock::memClock,    memoryClock, memoryClockRange, memoryClockEditable, memoryClockRead, &AdjustModuleInfo::MemoryFreClock},
    {"powerRow",        &Lang_OverClock::targetPower, power,       powerRange,       powerEditable,       powerRead,       &AdjustModuleInfo::Power},
    {"temperatureRow",  &Lang_OverClock::targetTemp,  temperature, temperatureRange, temperatureEditable, temperatureRead, &AdjustModuleInfo::Temperature},
}};
// clang-format on
