#include "overclock/HighPerformancePreset.h"

#include "device/MakersBoards.h"

QMap<quint32, qint32> highPerformanceClockTable()
{
    return {
        // board, MHz
        {0x111E, 1759},
        {0x111D, 1733},
        {0x11DC, 1708},
        {0x112B, 1683},
    };
}

quint32 subSystemDevice(const NvPciIds &ids)
{
    return subSystemDeviceOf(ids.subSystemId);
}

bool isHighPerformanceModel(const std::string &gpuName, const NvPciIds &ids)
{
    return gpuName == kHighPerformanceModel && subSystemVendorOf(ids.subSystemId) == kMakerSubSystemVendor;
}

OverClockingParam withCardDefaults(OverClockingParam param)
{
    param.clocks.gpuClock = param.gpuRange.baseClock;
    param.clocks.memoryClock = param.memoryRange.baseClock;
    param.power.currentPower = param.power.defaultPower;
    param.thermal.currentTemp = param.thermal.defaultTemp;
    param.voltage.currentVoltage = param.voltage.baseVoltageAgain;
    param.fanMode = FanAuto;
    param.linkOfPowerWithTemperature = false;
    return param;
}

OverClockingParam withHighPerformance(OverClockingParam param, qint32 gpuClockMHz)
{
    param = withCardDefaults(param);
    param.clocks.gpuClock = gpuClockMHz;
    param.power.currentPower = param.power.maxPower;
    return param;
}
