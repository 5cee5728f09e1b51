// What a card is and what it does now.

#include "simulated/Operations.h"

#include <algorithm>
#include <cmath>

namespace simulated
{
namespace
{

// shares of the GPU's load that its other units show
constexpr double kUtilizationShares[] = {1.0, 0.6, 0.15, 0.1};

constexpr quint32 kAllSensors = 15; ///< sensor index that asks for every sensor

constexpr qint32 kThermalController = 1; // the GPU's internal one

quint32 clockWord(qint64 frequencyKHz)
{
    return static_cast<quint32>(std::clamp<qint64>(frequencyKHz, 0, 0xFFFFFFFF));
}

} // namespace

NvAPI_Status Operations::NvAPI_GPU_GetFullName(NvPhysicalGpuHandle, char *name)
{
    writeText(name, card().parameters.name);
    return NVAPI_OK;
}

NvAPI_Status Operations::NvAPI_GPU_GetPCIIdentifiers(NvPhysicalGpuHandle, quint32 *deviceId, quint32 *subSystemId,
                                                     quint32 *revisionId, quint32 *extDeviceId)
{
    const PciParameters &pci = card().parameters.pci;
    *deviceId = pci.deviceId;
    *subSystemId = pci.subSystemId;
    *revisionId = pci.revisionId;
    *extDeviceId = pci.extDeviceId;
    return NVAPI_OK;
}

NvAPI_Status Operations::NvAPI_GPU_GetVbiosVersionString(NvPhysicalGpuHandle, char *text)
{
    writeText(text, card().parameters.biosVersion);
    return NVAPI_OK;
}

NvAPI_Status Operations::NvAPI_GPU_GetRamType(NvPhysicalGpuHandle, quint32 *type)
{
    *type = card().parameters.memory.ramType;
    return NVAPI_OK;
}

NvAPI_Status Operations::NvAPI_GPU_GetFBWidthAndLocation(NvPhysicalGpuHandle, quint32 *widthBits, quint32 *location)
{
    *widthBits = card().parameters.memory.busWidthBits;
    *location = 1; // on the card
    return NVAPI_OK;
}

NvAPI_Status Operations::NvAPI_GPU_GetMemoryInfo(NvPhysicalGpuHandle, NvApiMemoryInfo *record)
{
    const MemoryParameters &memory = card().parameters.memory;
    const quint32 freeKB = memory.totalKB - std::min(card().state.memoryUsedKB, memory.totalKB);
    NvApiMemoryInfo answer{};
    answer.dedicatedVideoMemory = memory.totalKB;
    answer.systemVideoMemory = memory.systemKB;
    answer.sharedSystemMemory = memory.sharedKB;
    if (!card().parameters.tcc) {
        answer.availableDedicatedVideoMemory = memory.totalKB - std::min(memory.reservedKB, memory.totalKB);
        answer.curAvailableDedicatedVideoMemory = freeKB;
        // the oldest record has no word of its own for what is free now
        if (version() == kMemoryInfoVersion1)
            answer.availableDedicatedVideoMemory = freeKB;
    }
    writeAnswer(record, answer);
    return NVAPI_OK;
}

NvAPI_Status Operations::NvAPI_GPU_GetAllClockFrequencies(NvPhysicalGpuHandle, NvApiClockFrequencies *record)
{
    const ClockParameters &clocks = card().parameters.clocks;
    qint64 graphicsKHz = card().state.graphicsKHz;
    qint64 memoryKHz = card().state.memoryKHz;
    switch (record->clockType & kClockTypeMask) {
    case kClockTypeCurrent:
        break;
    case kClockTypeBase:
    case kClockTypeBoost:
        graphicsKHz = (record->clockType & kClockTypeMask) == kClockTypeBase ? clocks.baseKHz : clocks.boostKHz;
        memoryKHz = qint64(clocks.memoryKHz) + (clocks.memoryIsRange ? 0 : card().settings.memoryOffsetKHz);
        break;
    default:
        return refuse(NVAPI_INVALID_ARGUMENT, "unknown clock type");
    }
    NvApiClockFrequencies answer{};
    answer.clockType = record->clockType;
    answer.domain[kClockDomainGraphics] = {1, clockWord(graphicsKHz)};
    answer.domain[kClockDomainMemory] = {1, clockWord(memoryKHz)};
    answer.domain[kClockDomainProcessor] = {1, clockWord(graphicsKHz)};
    writeAnswer(record, answer);
    return NVAPI_OK;
}

NvAPI_Status Operations::NvAPI_GPU_GetDynamicPstatesInfoEx(NvPhysicalGpuHandle, NvApiDynamicPstates *record)
{
    NvApiDynamicPstates answer{};
    answer.flags = 1; // figures are kept up to date
    for (const quint32 domain : card().parameters.utilizationDomains) {
        if (domain >= std::size(kUtilizationShares))
            continue;
        const double percent = card().state.loadPercent * kUtilizationShares[domain];
        answer.utilization[domain] = {1, static_cast<quint32>(std::lround(percent))};
    }
    writeAnswer(record, answer);
    return NVAPI_OK;
}

NvAPI_Status Operations::NvAPI_GPU_GetThermalSettings(NvPhysicalGpuHandle, quint32 sensorIndex,
                                                      NvApiThermalSettings *record)
{
    const ThermalParameters &thermal = card().parameters.thermal;
    const std::size_t sensors = std::min<std::size_t>(thermal.sensorTargets.size(), kThermalSensorCount);
    const std::size_t first = sensorIndex == kAllSensors ? 0 : sensorIndex;
    if (first > 0 && first >= sensors)
        return refuse(NVAPI_INVALID_ARGUMENT, "no such sensor");
    NvApiThermalSettings answer{};
    answer.count = answeredCount<quint32>(sensors - first);
    for (std::size_t i = first; i < sensors; ++i) {
        const qint32 target = thermal.sensorTargets[i];
        const double degrees = target == kThermalTargetGpu ? card().state.temperatureC : thermal.ambientC;
        answer.sensor[i - first] = {kThermalController, thermal.sensorMinimumC, thermal.sensorMaximumC,
                                    static_cast<qint32>(std::lround(degrees)), target};
    }
    writeAnswer(record, answer);
    return NVAPI_OK;
}

} // namespace simulated
