#include "device/NvGpuControl.h"

#include "device/Arithmetic.h"
#include "device/Units.h"
#include "device/nvapi/NvApi.h"
#include "device/nvapi/VersionLadder.h"

#include <algorithm>

// Clocks and voltage: signed offsets on the performance state P0, never absolute clocks.

namespace
{

using Pstates = NV_GPU_PERF_PSTATES20_INFO;

constexpr std::array<quint32, 3> kPstatesVersions = {kPstates20Version3, kPstates20Version2, kPstates20Version1};
/// The memory offset is sent with the oldest version first: a driver that accepts it never gets the newest record.
constexpr std::array<quint32, 3> kMemoryOffsetVersions = {kPstates20Version1, kPstates20Version2, kPstates20Version1};
constexpr std::array<quint32, 1> kPowerPoliciesSetVersions = {kPowerPoliciesStatusVersion1};

constexpr quint32 kP0 = 0; ///< `pstateId` of the one state that is read and written
constexpr quint32 kPrepareRestore = 1;
constexpr quint32 kEditable = 1; ///< bit of the flag words

bool readPstates(void *gpu, Pstates &record)
{
    return descend(kPstatesVersions, record, NvAPI_GPU_GetPstates20, gpu).succeeded();
}

LadderResult writePstates(void *gpu, const std::array<quint32, 3> &versions, Pstates &record)
{
    return descend(versions, record, NvAPI_GPU_SetPstates20, gpu);
}

/// Null when the record has none. The counts of the record come from the driver and are bounded here.
const Pstates::Pstate *findP0(const Pstates &record)
{
    const auto end = record.pstates + std::min<std::size_t>(record.numPstates, std::size(record.pstates));
    const auto found =
        std::find_if(record.pstates, end, [](const Pstates::Pstate &state) { return state.pstateId == kP0; });
    return found == end ? nullptr : found;
}

std::size_t clockCount(const Pstates &record)
{
    return std::min<std::size_t>(record.numClocks, std::size(record.pstates[0].clocks));
}

std::size_t baseVoltageCount(const Pstates &record)
{
    return std::min<std::size_t>(record.numBaseVoltages, std::size(record.pstates[0].baseVoltages));
}

/// Calls `visit(clock)` for each clock of P0 in order.
template <typename Visitor>
void forEachClockOfP0(const Pstates &record, Visitor visit)
{
    if (const Pstates::Pstate *const p0 = findP0(record))
        std::for_each(p0->clocks, p0->clocks + clockCount(record), visit);
}

qint32 toMHz(quint32 frequencyKHz)
{
    return static_cast<qint32>(frequencyKHz / kKHzPerMHz);
}

/// The driver's base frequency of a memory clock of single type contains the user's offset; that of the
/// graphics clock leaves it out already.
void subtractMemoryOffset(const Pstates &record, NvClockSet &clocks)
{
    forEachClockOfP0(record, [&clocks](const Pstates::Clock &clock) {
        if (clock.domainId == kClockDomainMemory && clock.typeId == kPstateClockTypeSingle)
            clocks.memoryClock = wrappingDifference(clocks.memoryClock, clock.freqDelta_kHz.value / kKHzPerMHz);
    });
}

void addOffsets(const Pstates &record, NvClockSet &clocks)
{
    forEachClockOfP0(record, [&clocks](const Pstates::Clock &clock) {
        const qint32 offsetMHz = clock.freqDelta_kHz.value / kKHzPerMHz;
        if (clock.domainId == kClockDomainGraphics)
            clocks.gpuClock = wrappingSum(clocks.gpuClock, offsetMHz);
        else if (clock.domainId == kClockDomainMemory)
            clocks.memoryClock = wrappingSum(clocks.memoryClock, offsetMHz);
    });
}

/// The clocks from the P-states, for a card whose base frequencies cannot be read. P0's list decides which clocks
/// exist. The figures are those of the first entry's first two clocks, graphics and memory, and the type of the
/// second one decides for both.
void clocksOfPstates(const Pstates &record, NvClockSet &clocks)
{
    const Pstates::Clock &graphics = record.pstates[0].clocks[0];
    const Pstates::Clock &memory = record.pstates[0].clocks[1];
    forEachClockOfP0(record, [&](const Pstates::Clock &clock) {
        if (clock.domainId == kClockDomainGraphics) {
            clocks.gpuClock = toMHz(memory.typeId == kPstateClockTypeRange ? graphics.data.range.maxFreq_kHz
                                                                           : graphics.data.single.freq_kHz);
        } else if (clock.domainId == kClockDomainMemory) {
            clocks.memoryClock = memory.typeId == kPstateClockTypeSingle
                                     ? cutToInt(static_cast<float>(memory.data.single.freq_kHz)) / kKHzPerMHz
                                     : toMHz(memory.data.range.maxFreq_kHz);
        }
    });
}

/// The offset range of P0's first clock of that domain; `out` stays where there is none.
void takeOffsetRange(const Pstates &record, quint32 domainId, NvClockOffsetRange &out)
{
    const Pstates::Pstate *const p0 = findP0(record);
    if (!p0)
        return;
    const auto end = p0->clocks + clockCount(record);
    const auto clock = std::find_if(
        p0->clocks, end, [domainId](const Pstates::Clock &candidate) { return candidate.domainId == domainId; });
    if (clock == end)
        return;
    out.editable = clock->bIsEditable & kEditable;
    out.minOffset = clock->freqDelta_kHz.valueRange.min / kKHzPerMHz;
    out.maxOffset = clock->freqDelta_kHz.valueRange.max / kKHzPerMHz;
    if (domainId == kClockDomainMemory && clock->typeId == kPstateClockTypeSingle)
        out.offsetInBase = clock->freqDelta_kHz.value / kKHzPerMHz;
}

/// A range that could not be read is 0 to 0.
qint32 clampedOffset(qint32 offsetMHz, const NvClockOffsetRange &range)
{
    return withinRange(offsetMHz, range.minOffset, range.maxOffset);
}

/// The offsets that P0's core voltage allows, in microvolts; 0 to 0 where that can't be read.
NvApiPstateDelta::Range coreVoltageRange(void *gpu)
{
    Pstates record{};
    const Pstates::Pstate *const p0 = readPstates(gpu, record) ? findP0(record) : nullptr;
    if (!p0)
        return {};
    const auto end = p0->baseVoltages + baseVoltageCount(record);
    const auto core = std::find_if(p0->baseVoltages, end, [](const Pstates::Voltage &voltage) {
        return voltage.domainId == kVoltageDomainCore;
    });
    return core == end ? NvApiPstateDelta::Range{} : core->voltDelta_uV.valueRange;
}

/// A record that writes one clock offset of P0.
Pstates clockOffsetRecord(quint32 domainId, qint32 offsetMHz)
{
    Pstates record{};
    record.numPstates = 1;
    record.numClocks = 1;
    record.numBaseVoltages = 0;
    record.pstates[0].pstateId = kP0;
    record.pstates[0].clocks[0].domainId = domainId;
    record.pstates[0].clocks[0].freqDelta_kHz.value = wrappingProduct(offsetMHz, kKHzPerMHz);
    return record;
}

/// Removes both clock offsets with one record. The second write starts at the version at which the first one ended.
void clearClockOffsets(void *gpu)
{
    Pstates record = clockOffsetRecord(kClockDomainGraphics, 0);
    const LadderResult first = writePstates(gpu, kPstatesVersions, record);
    record.pstates[0].clocks[0].domainId = kClockDomainMemory;
    record.pstates[0].clocks[0].freqDelta_kHz.value = 0;
    writePstates(gpu, {first.version, kPstates20Version2, kPstates20Version1}, record);
}

bool writeDefaultPower(void *gpu, const NvPowerInfo &power)
{
    NvApiPowerPoliciesStatus record{};
    record.count = 1;
    record.entries[0].policyId = static_cast<quint32>(power.policyId);
    record.entries[0].power = static_cast<quint32>(wrappingProduct(power.defaultPower, kThousandthsPerPercent));
    return descend(kPowerPoliciesSetVersions, record, NvAPI_GPU_ClientPowerPoliciesSetStatus, gpu).succeeded();
}

/// Asks for the memory type and ignores the result: the call is part of each read of the memory clock.
void askRamType(void *gpu)
{
    quint32 unusedType = 0;
    NvAPI_GPU_GetRamType(gpu, &unusedType);
}

} // namespace

// Order of the driver calls: the P-states, the base frequencies, the memory type.
bool NvGpuControl::getBaseClocks(NvClockSet &out, bool wantDefault)
{
    out = {};
    void *const gpu = currentHandle();
    Pstates record{};
    if (!gpu || !readPstates(gpu, record))
        return false;

    NvClockSet baseClocks;
    const bool haveBaseClocks = getClockFrequencies(baseClocks, kClockTypeBase);
    askRamType(gpu);
    if (wantDefault) {
        if (!haveBaseClocks)
            return false;
        out = baseClocks;
        subtractMemoryOffset(record, out);
    } else if (haveBaseClocks) {
        out = baseClocks;
        addOffsets(record, out);
    } else {
        clocksOfPstates(record, out);
        out.fromPstates = true;
    }
    return true;
}

void NvGpuControl::getGpuClockRange(NvClockOffsetRange &out)
{
    out = {};
    void *const gpu = currentHandle();
    Pstates record{};
    NvClockSet baseClocks;
    if (!gpu || !readPstates(gpu, record) || !getClockFrequencies(baseClocks, kClockTypeBase))
        return;
    out.baseClock = baseClocks.gpuClock;
    takeOffsetRange(record, kClockDomainGraphics, out);
}

void NvGpuControl::getMemoryClockRange(NvClockOffsetRange &out)
{
    out = {};
    void *const gpu = currentHandle();
    Pstates record{};
    NvClockSet baseClocks;
    if (!gpu || !readPstates(gpu, record) || !getClockFrequencies(baseClocks, kClockTypeBase))
        return;
    out.baseClock = baseClocks.memoryClock;
    takeOffsetRange(record, kClockDomainMemory, out);
    askRamType(gpu);
}

bool NvGpuControl::getVoltageInfo(NvVoltageInfo &out)
{
    out = {};
    void *const gpu = currentHandle();
    Pstates record{};
    if (!gpu || !readPstates(gpu, record))
        return false;
    const Pstates::Pstate *const p0 = findP0(record);
    if (!p0)
        return true;

    for (std::size_t index = 0; index < baseVoltageCount(record); ++index) {
        const Pstates::Voltage &voltage = p0->baseVoltages[index];
        const NvApiPstateDelta &delta = voltage.voltDelta_uV;
        if (voltage.domainId == kVoltageDomainCore)
            out.currentVoltage = static_cast<qint32>(voltage.volt_uV / kMicrovoltsPerMillivolt);
        // Unsigned as the voltage itself is.
        out.baseVoltage =
            static_cast<qint32>((voltage.volt_uV - static_cast<quint32>(delta.value)) / kMicrovoltsPerMillivolt);
        out.maxVoltage = wrappingSum(out.baseVoltage, delta.valueRange.max / kMicrovoltsPerMillivolt);
        out.minVoltage = wrappingSum(out.baseVoltage, delta.valueRange.min / kMicrovoltsPerMillivolt);
        out.editable = voltage.bIsEditable & kEditable;
    }
    out.baseVoltageAgain = out.baseVoltage;
    return true;
}

bool NvGpuControl::setGpuClockOffset(qint32 offsetMHz)
{
    void *const gpu = currentHandle();
    if (!gpu)
        return false;
    NvClockOffsetRange range;
    getGpuClockRange(range);
    Pstates record = clockOffsetRecord(kClockDomainGraphics, clampedOffset(offsetMHz, range));
    return writePstates(gpu, kPstatesVersions, record).succeeded();
}

bool NvGpuControl::setMemoryClockOffset(qint32 offsetMHz)
{
    void *const gpu = currentHandle();
    if (!gpu)
        return false;
    NvClockOffsetRange range;
    getMemoryClockRange(range);
    Pstates record = clockOffsetRecord(kClockDomainMemory, clampedOffset(offsetMHz, range));
    return writePstates(gpu, kMemoryOffsetVersions, record).succeeded();
}

bool NvGpuControl::setVoltageOffset(qint32 offsetMicroVolt)
{
    void *const gpu = currentHandle();
    if (!gpu)
        return false;
    // The page limits the value too. This is the last check before the chip, so no voltage that the card doesn't
    // allow is ever sent. The offset 0 needs no range: it must work on a card whose range can't be read.
    if (offsetMicroVolt != 0) {
        const NvApiPstateDelta::Range range = coreVoltageRange(gpu);
        offsetMicroVolt = withinRange(offsetMicroVolt, range.min, range.max);
    }
    Pstates record{};
    record.numPstates = 1;
    record.numClocks = 0;
    record.numBaseVoltages = 1;
    record.pstates[0].pstateId = kP0;
    record.pstates[0].baseVoltages[0].domainId = kVoltageDomainCore;
    record.pstates[0].baseVoltages[0].voltDelta_uV.value = offsetMicroVolt;
    return writePstates(gpu, kPstatesVersions, record).succeeded();
}

bool NvGpuControl::setOverVoltage(qint32 offsetMicroVolt)
{
    Pstates record{};
    record.ov.numVoltages = 1;
    record.ov.voltages[0].domainId = kVoltageDomainCore;
    record.ov.voltages[0].voltDelta_uV.value = offsetMicroVolt;
    // For a missing card the driver itself refuses the call.
    return writePstates(currentHandle(), kPstatesVersions, record).succeeded();
}

bool NvGpuControl::restoreDefaults()
{
    void *const gpu = currentHandle();
    if (!gpu)
        return false;

    // Every step whose figures could be read is tried, whatever the result of the steps before; only the power write
    // is reported.
    NvAPI_DriverEntry_B23B70EE(gpu, kPrepareRestore);
    clearClockOffsets(gpu);

    // A default of 0 was never read: no card has one.
    NvPowerInfo power;
    getPowerInfo(power);
    const bool powerRestored = power.defaultPower != 0 && writeDefaultPower(gpu, power);

    setCoolerAuto();
    setVoltageOffset(0);

    NvThermalPolicyInfo thermal;
    getThermalPolicyInfo(thermal);
    const bool thermalRead = thermal.defaultTemp != 0;
    const quint32 thermalPolicyId = static_cast<quint32>(thermal.policyId);
    if (thermalRead)
        setThermalLimit(thermalPolicyId, static_cast<float>(thermal.defaultTemp), true);
    setOverVoltage(0);
    if (thermalRead)
        setThermalPriority(thermalPolicyId, 0);
    return powerRestored;
}
