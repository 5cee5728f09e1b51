#include "overclock/CardWrites.h"

#include "device/Arithmetic.h"
#include "device/NvGpuControl.h"
#include "device/Units.h"
#include "overclock/AdjustRows.h"

namespace
{

/// MHz above the base clock. Without a base clock the whole clock would be the offset, so the result is 0.
qint32 clockOffset(qint32 clock, const NvClockOffsetRange &range)
{
    return range.baseClock == 0 ? 0 : wrappingDifference(clock, range.baseClock);
}

/// The base clock replaces a clock that was not read, so the offset is 0.
qint32 clockOrBase(qint32 clock, bool wasRead, const NvClockOffsetRange &range)
{
    return wasRead && clock != 0 ? clock : range.baseClock;
}

} // namespace

std::vector<CardWrite> writesFor(const OverClockingParam &wanted)
{
    // A number box can't show a value beyond the card's range, but a settings file can hold one.
    const OverClockingParam param = limitedToRows(wanted);
    const auto wasRead = [&param](AdjustRowIndex row) {
        return kAdjustRows[row].wasRead(param);
    };

    std::vector<CardWrite> writes;
    // The effect of a manual level on a cooler that was not read is unknown; the driver's control is always safe.
    if (param.fanMode == FanAuto || (param.fanMode == FanManual && !wasRead(RowFan)))
        writes.push_back({CardWrite::CoolerLevel, kCoolerPolicyDefault, param.cooler.currentLevel});
    else if (param.fanMode == FanManual)
        writes.push_back({CardWrite::CoolerLevel, kCoolerPolicyManual, param.cooler.currentLevel});

    writes.push_back({CardWrite::GpuClockOffset, 0, clockOffset(param.clocks.gpuClock, param.gpuRange)});
    writes.push_back({CardWrite::MemoryClockOffset, 0, clockOffset(param.clocks.memoryClock, param.memoryRange)});
    if (wasRead(RowTemperature))
        writes.push_back({CardWrite::ThermalLimit, param.thermal.policyId, param.thermal.currentTemp});
    if (wasRead(RowPower))
        writes.push_back({CardWrite::PowerLimit, param.power.policyId, param.power.currentPower});
    if (param.voltage.editable && wasRead(RowVoltage)) {
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
        return gpu.setCoolerLevel(write.value, write.id);
    case CardWrite::GpuClockOffset:
        return gpu.setGpuClockOffset(write.value);
    case CardWrite::MemoryClockOffset:
        return gpu.setMemoryClockOffset(write.value);
    case CardWrite::ThermalLimit:
        return gpu.setThermalLimit(unsignedId, static_cast<float>(write.value), true);
    case CardWrite::PowerLimit:
        return gpu.setPowerLimit(unsignedId, static_cast<float>(write.value));
    case CardWrite::VoltageOffset:
        return gpu.setVoltageOffset(write.value);
    }
    return false;
}

OverClockingParam readSnapshot(NvGpuControl &gpu)
{
    OverClockingParam param;
    gpu.getCoolerInfo(param.cooler);
    // There is no order for a limit without its range, or for a range without its limit.
    if (!gpu.getThermalPolicyInfo(param.thermal))
        param.thermal = {};
    if (!gpu.getPowerInfo(param.power))
        param.power = {};
    gpu.getVoltageInfo(param.voltage);
    const bool clocksRead = gpu.getBaseClocks(param.clocks, false) && !param.clocks.fromPstates;
    gpu.getGpuClockRange(param.gpuRange);
    gpu.getMemoryClockRange(param.memoryRange);

    param.clocks.gpuClock = clockOrBase(param.clocks.gpuClock, clocksRead, param.gpuRange);
    param.clocks.memoryClock = clockOrBase(param.clocks.memoryClock, clocksRead, param.memoryRange);
    if (param.memoryRange.baseClock != 0) {
        // A base clock that contains the offset makes the clock count it twice. The settings file would keep that
        // clock. After the card was switched off, the next start would compare it with the base without the offset
        // and order twice the offset, and each such start would double it.
        param.clocks.memoryClock = wrappingDifference(param.clocks.memoryClock, param.memoryRange.offsetInBase);
        param.memoryRange.baseClock = wrappingDifference(param.memoryRange.baseClock, param.memoryRange.offsetInBase);
    }
    if (param.voltage.currentVoltage == 0)
        param.voltage.currentVoltage = param.voltage.baseVoltage;
    return param;
}
