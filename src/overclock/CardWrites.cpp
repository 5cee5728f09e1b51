#include "overclock/CardWrites.h"

#include "device/Arithmetic.h"
#include "device/NvGpuControl.h"
#include "device/Units.h"
#include "overclock/AdjustRows.h"

namespace
{

/// MHz above the base clock. While that was not read the whole clock would be the offset, so there is none.
qint32 clockOffset(qint32 clock, const NvClockOffsetRange &range)
{
    return range.baseClock == 0 ? 0 : wrappingDifference(clock, range.baseClock);
}

/// The base clock stands in for a clock that was not read: no offset.
qint32 clockOrBase(qint32 clock, bool wasRead, const NvClockOffsetRange &range)
{
    return wasRead && clock != 0 ? clock : range.baseClock;
}

} // namespace

std::vector<CardWrite> writesFor(const OverClockingParam &wanted)
{
    // A number box can't show what lies beyond the card's range, but a settings file can hold it.
    const OverClockingParam param = limitedToRows(wanted);
    const auto wasRead = [&param](AdjustRowIndex row) {
        return kAdjustRows[row].wasRead(param);
    };

    std::vector<CardWrite> writes;
    // Nobody knows what a level by hand would mean to a cooler that was not read; the driver's control is always
    // safe.
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
    // A limit without its range, or a range without its limit, is no base for an order.
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
        // With the offset in its base, the clock counts it twice. Kept in the settings file and set against the base
        // of a card that was switched off meanwhile, that would order twice the offset, and double it with each such
        // start.
        param.clocks.memoryClock = wrappingDifference(param.clocks.memoryClock, param.memoryRange.offsetInBase);
        param.memoryRange.baseClock = wrappingDifference(param.memoryRange.baseClock, param.memoryRange.offsetInBase);
    }
    if (param.voltage.currentVoltage == 0)
        param.voltage.currentVoltage = param.voltage.baseVoltage;
    return param;
}
