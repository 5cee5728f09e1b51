#include "overclock/HighPerformancePreset.h"

namespace
{

constexpr char kModelName[] = "GeForce GTX 1070 Ti";
constexpr quint32 kMakerVendor = 0x7377;
constexpr quint32 kVendorMask = 0xFFFF;
constexpr int kDeviceShift = 16;

} // namespace

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
    return ids.subSystemId >> kDeviceShift;
}

bool isHighPerformanceModel(const std::string &gpuName, const NvPciIds &ids)
{
    return gpuName == kModelName && (ids.subSystemId & kVendorMask) == kMakerVendor;
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
