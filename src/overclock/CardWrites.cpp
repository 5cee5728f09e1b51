#include "overclock/CardWrites.h"

#include "device/Arithmetic.h"
#include "device/NvGpuControl.h"

namespace
{

constexpr qint32 kCoolerPolicyManual = 1;
constexpr qint32 kCoolerPolicyAuto = 0x20;
constexpr qint32 kMicrovoltsPerMillivolt = 1000;

} // namespace

std::vector<CardWrite> writesFor(const OverClockingParam &param)
{
    std::vector<CardWrite> writes;
    if (param.fanMode == FanAuto)
        writes.push_back({CardWrite::CoolerLevel, kCoolerPolicyAuto, param.cooler.currentLevel});
    else if (param.fanMode == FanManual)
        writes.push_back({CardWrite::CoolerLevel, kCoolerPolicyManual, param.cooler.currentLevel});

    writes.push_back(
        {CardWrite::GpuClockOffset, 0, wrappingDifference(param.clocks.gpuClock, param.gpuRange.baseClock)});
    writes.push_back(
        {CardWrite::MemoryClockOffset, 0, wrappingDifference(param.clocks.memoryClock, param.memoryRange.baseClock)});
    // Also for a card without thermal policies: the device operation finds none and refuses.
    writes.push_back({CardWrite::ThermalLimit, param.thermal.policyId, param.thermal.currentTemp});
    if (param.power.present)
        writes.push_back({CardWrite::PowerLimit, param.power.policyId, param.power.currentPower});
    if (param.voltage.editable) {
        const qint32 millivolts = wrappingDifference(param.voltage.currentVoltage, param.voltage.baseVoltage);
        writes.push_back({CardWrite::VoltageOffset, 0, wrappingProduct(millivolts, kMicrovoltsPerMillivolt)});
    }
    return writes;
}

bool send(const CardWrite &write, NvGpuControl &gpu)
{
    const auto unsignedId = static_cast<quint32>(write.id);
    switch (write.operation) {
    case CardWrite::CoolerLevel:
        return gpu.setCoolerLevel(static_cast<quint32>(write.value), write.id);
    case CardWrite::GpuClockOffset:
        return gpu.setGpuClockOffset(write.value);
    case CardWrite::MemoryClockOffset:
        return gpu.setMemoryClockOffset(write.value);
    case CardWrite::ThermalLimit:
        return gpu.setThermalLimit(unsignedId, static_cast<float>(write.value), true);
    case CardWrite::PowerLimit:
        // A negative target counts as a huge one, which the device operation cuts to the maximum.
        return gpu.setPowerLimit(unsignedId, static_cast<float>(static_cast<quint32>(write.value)));
    case CardWrite::VoltageOffset:
        return gpu.setVoltageOffset(write.value);
    }
    return false;
}

OverClockingParam readSnapshot(NvGpuControl &gpu)
{
    OverClockingParam param;
    gpu.getCoolerInfo(param.cooler);
    gpu.getThermalPolicyInfo(param.thermal);
    gpu.getPowerInfo(param.power);
    gpu.getVoltageInfo(param.voltage);
    gpu.getBaseClocks(param.clocks, false);
    gpu.getGpuClockRange(param.gpuRange);
    gpu.getMemoryClockRange(param.memoryRange);
    return param;
}
