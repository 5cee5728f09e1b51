// Clock and voltage offsets.

#include "simulated/Operations.h"

#include <algorithm>

namespace simulated
{
namespace
{

using Pstates = NV_GPU_PERF_PSTATES20_INFO;

constexpr quint32 kTopPstate = 0; // the only one that takes offsets
constexpr quint32 kRestoreValue = 1;

NvApiPstateDelta deltaOf(qint32 value, const OffsetRange &range)
{
    return {value, {range.minimum, range.maximum}};
}

quint32 shifted(quint32 base, qint32 offset)
{
    return static_cast<quint32>(std::max<qint64>(qint64(base) + offset, 0));
}

Pstates::Pstate pstateEntry(const Card &card, quint32 pstateId)
{
    const ClockParameters &clocks = card.parameters.clocks;
    const VoltageParameters &voltage = card.parameters.voltage;
    const CardSettings &settings = card.settings;
    const bool top = pstateId == kTopPstate;

    Pstates::Pstate entry{};
    entry.pstateId = pstateId;
    entry.bIsEditable = top ? 1 : 0;

    Pstates::Clock &graphics = entry.clocks[0];
    graphics.domainId = kClockDomainGraphics;
    graphics.typeId = kPstateClockTypeRange;
    graphics.data.range = {clocks.idleKHz,
                           top ? shifted(clocks.boostKHz, settings.graphicsOffsetKHz) : clocks.baseKHz,
                           kVoltageDomainCore, voltage.idle_uV, voltage.full_uV};

    Pstates::Clock &memory = entry.clocks[1];
    const quint32 memoryKHz = top ? shifted(clocks.memoryKHz, settings.memoryOffsetKHz) : clocks.memoryIdleKHz;
    memory.domainId = kClockDomainMemory;
    if (clocks.memoryIsRange) {
        memory.typeId = kPstateClockTypeRange;
        memory.data.range = {memoryKHz, memoryKHz, kVoltageDomainCore, voltage.idle_uV, voltage.full_uV};
    } else {
        memory.typeId = kPstateClockTypeSingle;
        memory.data.single.freq_kHz = memoryKHz;
    }

    Pstates::Voltage &core = entry.baseVoltages[0];
    core.domainId = kVoltageDomainCore;
    core.volt_uV = top ? shifted(voltage.full_uV, settings.voltageOffset_uV) : voltage.idle_uV;

    if (top) {
        graphics.bIsEditable = clocks.graphicsOffsetKHz.editable ? 1 : 0;
        graphics.freqDelta_kHz = deltaOf(settings.graphicsOffsetKHz, clocks.graphicsOffsetKHz);
        memory.bIsEditable = clocks.memoryOffsetKHz.editable ? 1 : 0;
        memory.freqDelta_kHz = deltaOf(settings.memoryOffsetKHz, clocks.memoryOffsetKHz);
        core.bIsEditable = voltage.offset_uV.editable ? 1 : 0;
        core.voltDelta_uV = deltaOf(settings.voltageOffset_uV, voltage.offset_uV);
    }
    return entry;
}

/// Puts an offset into `setting` if its range allows it; an empty text when it did, else what is wrong.
std::string putOffset(qint32 &setting, qint32 value, const OffsetRange &range, const std::string &what)
{
    if (!range.editable && value != setting)
        return what + " cannot be changed";
    if (range.editable && (value < range.minimum || value > range.maximum))
        return what + " out of range";
    setting = value;
    return {};
}

std::string putPstate(const Pstates &record, const Pstates::Pstate &wanted, const CardParameters &parameters,
                      CardSettings &settings)
{
    if (wanted.pstateId != kTopPstate)
        return "only P-state 0 takes offsets";
    for (std::size_t i = 0; i < record.numClocks; ++i) {
        const Pstates::Clock &clock = wanted.clocks[i];
        std::string fault = "unknown clock domain";
        if (clock.domainId == kClockDomainGraphics)
            fault = putOffset(settings.graphicsOffsetKHz, clock.freqDelta_kHz.value,
                              parameters.clocks.graphicsOffsetKHz, "graphics offset");
        else if (clock.domainId == kClockDomainMemory)
            fault = putOffset(settings.memoryOffsetKHz, clock.freqDelta_kHz.value, parameters.clocks.memoryOffsetKHz,
                              "memory offset");
        if (!fault.empty())
            return fault;
    }
    for (std::size_t i = 0; i < record.numBaseVoltages; ++i) {
        const Pstates::Voltage &voltage = wanted.baseVoltages[i];
        if (!parameters.voltage.present || voltage.domainId != kVoltageDomainCore)
            return "unknown voltage domain";
        std::string fault = putOffset(settings.voltageOffset_uV, voltage.voltDelta_uV.value,
                                      parameters.voltage.offset_uV, "voltage offset");
        if (!fault.empty())
            return fault;
    }
    return {};
}

std::string putOverVoltages(const Pstates::OverVoltage &wanted, const CardParameters &parameters,
                            CardSettings &settings)
{
    if (wanted.numVoltages > std::size(wanted.voltages))
        return "too many over-voltages";
    for (std::size_t i = 0; i < wanted.numVoltages; ++i) {
        const Pstates::Voltage &voltage = wanted.voltages[i];
        if (voltage.domainId != kVoltageDomainCore)
            return "unknown over-voltage domain";
        std::string fault = putOffset(settings.overVoltage_uV, voltage.voltDelta_uV.value,
                                      parameters.voltage.overVoltage_uV, "over-voltage");
        if (!fault.empty())
            return fault;
    }
    return {};
}

} // namespace

NvAPI_Status Operations::NvAPI_GPU_GetPstates20(NvPhysicalGpuHandle, Pstates *record)
{
    const CardParameters &parameters = card().parameters;
    const std::vector<quint32> &ids = parameters.clocks.pstateIds;
    Pstates answer{};
    const std::size_t count = std::min(ids.size(), std::size(answer.pstates));
    answer.bIsEditable = 1;
    answer.numPstates = answeredCount<quint32>(count);
    answer.numClocks = answeredCount<quint32>(2);
    answer.numBaseVoltages = answeredCount<quint32>(parameters.voltage.present ? 1 : 0);
    for (std::size_t i = 0; i < count; ++i)
        answer.pstates[i] = pstateEntry(card(), ids[i]);
    answer.ov.numVoltages = answeredCount<quint32>(1);
    Pstates::Voltage &over = answer.ov.voltages[0];
    over.domainId = kVoltageDomainCore;
    over.bIsEditable = parameters.voltage.overVoltage_uV.editable ? 1 : 0;
    over.volt_uV = shifted(parameters.voltage.full_uV, card().settings.overVoltage_uV);
    over.voltDelta_uV = deltaOf(card().settings.overVoltage_uV, parameters.voltage.overVoltage_uV);
    writeAnswer(record, answer);
    return NVAPI_OK;
}

NvAPI_Status Operations::NvAPI_GPU_SetPstates20(NvPhysicalGpuHandle, Pstates *record)
{
    if (record->numPstates > std::size(record->pstates) || record->numClocks > std::size(record->pstates[0].clocks) ||
        record->numBaseVoltages > std::size(record->pstates[0].baseVoltages))
        return refuse(NVAPI_INVALID_ARGUMENT, "count beyond the record");
    CardSettings wanted = card().settings; // all of a record takes effect, or nothing
    std::string fault;
    for (std::size_t i = 0; i < record->numPstates && fault.empty(); ++i)
        fault = putPstate(*record, record->pstates[i], card().parameters, wanted);
    if (fault.empty() && version() != kPstates20Version1)
        fault = putOverVoltages(record->ov, card().parameters, wanted);
    if (!fault.empty())
        return refuse(NVAPI_INVALID_ARGUMENT, fault);
    card().settings = wanted;
    return NVAPI_OK;
}

NvAPI_Status Operations::NvAPI_DriverEntry_B23B70EE(NvPhysicalGpuHandle, quint32 value)
{
    // what the entry does inside the driver is not known; only the value 1 is ever passed
    return value == kRestoreValue ? NVAPI_OK : refuse(NVAPI_INVALID_ARGUMENT, "unknown value");
}

} // namespace simulated
