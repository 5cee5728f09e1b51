#pragma once

#include "device/DeviceRecords.h"

/// Who drives the fan. Any number but the first two means the user's curve.
enum FanMode
{
    FanAuto = 0,
    FanManual = 1,
    FanUserDefined = 2,
};

/// Snapshot of everything that the adjust page changes of one card: the driver's records, in which the rows edit
/// values. Plain value.
struct OverClockingParam
{
    NvClockSet clocks;                       ///< MHz; `gpuClock` and `memoryClock` are edited
    NvClockOffsetRange gpuRange;             ///< MHz, of the graphics clock
    NvClockOffsetRange memoryRange;          ///< MHz, of the memory clock
    NvCoolerInfo cooler;                     ///< percent; `currentLevel` is edited
    NvVoltageInfo voltage;                   ///< millivolts; `currentVoltage` is edited
    NvPowerInfo power;                       ///< percent; `currentPower` is edited
    NvThermalPolicyInfo thermal;             ///< degrees Celsius; `currentTemp` is edited
    bool linkOfPowerWithTemperature = false; ///< moving one of the two targets moves the other
    qint32 fanMode = FanAuto;                ///< a FanMode; a settings file may hold any number
};
