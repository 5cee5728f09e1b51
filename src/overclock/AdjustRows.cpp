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

} // namespace

bool isFanControllable(const OverClockingParam &param)
{
    return param.cooler.defaultMinLevel != param.cooler.defaultMaxLevel;
}

// clang-format off
const std::array<AdjustRow, AdjustRowCount> kAdjustRows = {{
    // object name       caption                       value        range             editable
    {"gpuClockRow",     &Lang_OverClock::gpuClock,    gpuClock,    gpuClockRange,    gpuClockEditable},
    {"fanRow",          &Lang_OverClock::fanSpeed,    fanLevel,    fanRange,         fanEditable},
    {"voltageRow",      &Lang_OverClock::gpuVoltage,  voltage,     voltageRange,     voltageEditable},
    {"memoryClockRow",  &Lang_OverClock::memClock,    memoryClock, memoryClockRange, memoryClockEditable},
    {"powerRow",        &Lang_OverClock::targetPower, power,       powerRange,       powerEditable},
    {"temperatureRow",  &Lang_OverClock::targetTemp,  temperature, temperatureRange, temperatureEditable},
}};
// clang-format on
