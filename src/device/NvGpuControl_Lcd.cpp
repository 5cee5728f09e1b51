#include "device/NvGpuControl.h"

#include "device/LcdFrame.h"

#include <atomic>

// The LCD controller.

namespace
{

/// Counts the frames of the process, those of all cards together. The first frame carries 1.
quint8 nextLcdSequence()
{
    static std::atomic<quint8> sequence{0};
    return ++sequence;
}

} // namespace

bool NvGpuControl::sendCardInfoToLcd(bool enable, bool autoSwitch, int time, int mode)
{
    if (!nvApiReady)
        return false;

    // A failed reading shows as 0.
    NvClockSet baseClocks;
    NvClockSet currentClocks;
    NvCoolerInfo cooler;
    NvMemoryInfo memory;
    NvThermalInfo sensor;
    NvThermalPolicyInfo policy;
    getBaseClocks(baseClocks, false);
    getCurrentClocks(currentClocks);
    getCoolerInfo(cooler);
    getMemoryInfo(memory);
    getThermalSensor(sensor);
    getThermalPolicyInfo(policy);
    const std::string gpuName = getGpuName();

    LcdReadings readings;
    readings.memoryTotalKB = static_cast<quint32>(memory.totalKB);
    readings.baseClockMHz = baseClocks.gpuClock;
    readings.thermalLimit = policy.currentTemp;
    readings.fanMaxRpm = cooler.tachMax;
    readings.memoryUsedKB = static_cast<quint32>(memory.usedKB);
    readings.currentClockMHz = currentClocks.gpuClock;
    readings.temperature = sensor.currentTemp;
    readings.fanRpm = cooler.tachRpm;
    readings.model = lcdModelOf(gpuName);
    readings.sequence = nextLcdSequence();
    readings.command = lcdCommand(enable, autoSwitch, time, mode);
    NvPciIds pciIds;
    getPciIdentifiers(pciIds);
    readings.fanFlag = lcdFanFlag(pciIds.subSystemId, gpuName, cooler.tachRpm);

    LcdFrame frame = buildLcdFrame(readings);
    return i2cWrite(kLcdAddress, kLcdRegister, kLcdRegisterSize, frame.data(), kLcdFrameSize);
}
