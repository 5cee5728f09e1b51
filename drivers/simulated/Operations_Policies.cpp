// Power and temperature limits.

#include "simulated/Operations.h"
#include "simulated/ThermalStatusEntries.h"

#include <algorithm>
#include <cmath>

namespace simulated
{
namespace
{

constexpr double kThousandthsOfPercent = 100000.0;
constexpr double kChipShare = 0.6; ///< of the card's draw that the second power channel shows

// older entries of the thermal policies are beginnings of the newest ones
constexpr std::size_t kThermalInfoEntrySize1 = 20;
constexpr std::size_t kThermalInfoOffset = offsetof(NvApiThermalPoliciesInfo, entries);

constexpr quint32 kPriorityFlag = 1;

quint32 drawOf(const Card &card, std::size_t channel)
{
    const double share = channel == 0 ? 1.0 : kChipShare;
    const double nominalW = std::max(card.parameters.power.nominalW, 1.0);
    return static_cast<quint32>(std::lround(card.state.powerW * share / nominalW * kThousandthsOfPercent));
}

} // namespace

NvAPI_Status Operations::NvAPI_GPU_ClientPowerTopologyGetInfo(NvPhysicalGpuHandle, NvApiPowerTopologyInfo *record)
{
    const PowerParameters &power = card().parameters.power;
    NvApiPowerTopologyInfo answer{};
    if (power.present) {
        const std::size_t count = std::min(power.channelIds.size(), kPolicyEntries);
        answer.valid = 1;
        answer.count = answeredCount<quint8>(count);
        std::copy_n(power.channelIds.begin(), count, answer.channelId);
    }
    writeAnswer(record, answer);
    return NVAPI_OK;
}

NvAPI_Status Operations::NvAPI_GPU_ClientPowerTopologyGetStatus(NvPhysicalGpuHandle, NvApiPowerTopologyStatus *record)
{
    if (record->count > kPolicyEntries)
        return refuse(NVAPI_INVALID_ARGUMENT, "count beyond the record");
    const std::vector<quint32> &channels = card().parameters.power.channelIds;
    NvApiPowerTopologyStatus answer = *record;
    for (std::size_t i = 0; i < record->count; ++i) {
        const auto channel = std::find(channels.begin(), channels.end(), record->entries[i].channelId);
        if (channel == channels.end())
            return refuse(NVAPI_INVALID_ARGUMENT, "unknown power channel");
        answer.entries[i].power = drawOf(card(), static_cast<std::size_t>(channel - channels.begin()));
    }
    answer.count = answeredCount<quint8>(record->count);
    writeAnswer(record, answer);
    return NVAPI_OK;
}

NvAPI_Status Operations::NvAPI_GPU_ClientPowerPoliciesGetInfo(NvPhysicalGpuHandle, NvApiPowerPoliciesInfo *record)
{
    const PowerParameters &power = card().parameters.power;
    NvApiPowerPoliciesInfo answer{};
    if (power.present) {
        answer.valid = 1;
        answer.count = answeredCount<quint8>(1);
        answer.entries[0].policyId = power.policyId;
        answer.entries[0].domainId = power.domainId;
        answer.entries[0].minPower = power.minimum;
        answer.entries[0].defaultPower = power.standard;
        answer.entries[0].maxPower = power.maximum;
    }
    writeAnswer(record, answer);
    return NVAPI_OK;
}

NvAPI_Status Operations::NvAPI_GPU_ClientPowerPoliciesGetStatus(NvPhysicalGpuHandle, NvApiPowerPoliciesStatus *record)
{
    if (record->count > kPolicyEntries)
        return refuse(NVAPI_INVALID_ARGUMENT, "count beyond the record");
    NvApiPowerPoliciesStatus answer = *record;
    for (std::size_t i = 0; i < record->count; ++i) {
        if (record->entries[i].policyId != card().parameters.power.policyId)
            return refuse(NVAPI_INVALID_ARGUMENT, "unknown power policy");
        answer.entries[i].flags = 0;
        answer.entries[i].power = card().settings.powerLimit;
    }
    answer.count = answeredCount<quint8>(record->count);
    writeAnswer(record, answer);
    return NVAPI_OK;
}

NvAPI_Status Operations::NvAPI_GPU_ClientPowerPoliciesSetStatus(NvPhysicalGpuHandle, NvApiPowerPoliciesStatus *record)
{
    const PowerParameters &power = card().parameters.power;
    if (record->count == 0 || record->count > kPolicyEntries)
        return refuse(NVAPI_INVALID_ARGUMENT, "count beyond the record");
    for (std::size_t i = 0; i < record->count; ++i) {
        const NvApiPowerPoliciesStatus::Entry &entry = record->entries[i];
        if (!power.present || entry.policyId != power.policyId)
            return refuse(NVAPI_INVALID_ARGUMENT, "unknown power policy");
        if (entry.power < power.minimum || entry.power > power.maximum)
            return refuse(NVAPI_INVALID_ARGUMENT, "power limit out of range");
    }
    card().settings.powerLimit = record->entries[record->count - 1].power;
    return NVAPI_OK;
}

NvAPI_Status Operations::NvAPI_GPU_ClientThermalPoliciesGetInfo(NvPhysicalGpuHandle, NvApiThermalPoliciesInfo *record)
{
    const ThermalParameters &thermal = card().parameters.thermal;
    const std::size_t stride =
        version() == kThermalPoliciesInfoVersion1 ? kThermalInfoEntrySize1 : sizeof(NvApiThermalPoliciesInfo::Entry);
    char *const bytes = reinterpret_cast<char *>(record);
    std::memset(bytes + sizeof(record->version), 0, nvApiRecordSize(version()) - sizeof(record->version));
    if (!thermal.policyPresent)
        return NVAPI_OK;
    record->flags = 1;
    record->count = answeredCount<quint8>(1);
    const NvApiThermalPoliciesInfo::Entry entry = {
        thermal.policyId, 0, thermal.minimumC * 256, thermal.standardC * 256, thermal.maximumC * 256, 0};
    std::memcpy(bytes + kThermalInfoOffset, &entry, stride);
    return NVAPI_OK;
}

NvAPI_Status Operations::NvAPI_GPU_ClientThermalPoliciesGetStatus(NvPhysicalGpuHandle,
                                                                  NvApiThermalPoliciesStatus *record)
{
    if (record->count > kPolicyEntries)
        return refuse(NVAPI_INVALID_ARGUMENT, "count beyond the record");
    const std::size_t stride = thermalStatusStride(version());
    const std::size_t count = record->count;
    for (std::size_t i = 0; i < count; ++i) {
        if (thermalStatusEntry(*record, version(), i).policyId != card().parameters.thermal.policyId)
            return refuse(NVAPI_INVALID_ARGUMENT, "unknown temperature policy");
    }
    const CardSettings &settings = card().settings;
    const NvApiThermalPoliciesStatus::Entry answer = {card().parameters.thermal.policyId,
                                                      settings.temperatureLimit256,
                                                      settings.temperaturePriority ? kPriorityFlag : 0};
    for (std::size_t i = 0; i < count; ++i)
        std::memcpy(reinterpret_cast<char *>(record) + kThermalStatusOffset + i * stride, &answer, stride);
    record->count = answeredCount<quint8>(count);
    return NVAPI_OK;
}

NvAPI_Status Operations::NvAPI_GPU_ClientThermalPoliciesSetStatus(NvPhysicalGpuHandle,
                                                                  NvApiThermalPoliciesStatus *record)
{
    const ThermalParameters &thermal = card().parameters.thermal;
    if (record->count == 0 || record->count > kPolicyEntries)
        return refuse(NVAPI_INVALID_ARGUMENT, "count beyond the record");
    CardSettings wanted = card().settings;
    for (std::size_t i = 0; i < record->count; ++i) {
        const NvApiThermalPoliciesStatus::Entry entry = thermalStatusEntry(*record, version(), i);
        if (!thermal.policyPresent || entry.policyId != thermal.policyId)
            return refuse(NVAPI_INVALID_ARGUMENT, "unknown temperature policy");
        if (entry.temperature < thermal.minimumC * 256 || entry.temperature > thermal.maximumC * 256)
            return refuse(NVAPI_INVALID_ARGUMENT, "temperature limit out of range");
        wanted.temperatureLimit256 = entry.temperature;
        if (version() != kThermalPoliciesStatusVersion1) // the oldest entries have no flags
            wanted.temperaturePriority = (entry.flags & kPriorityFlag) != 0;
    }
    card().settings = wanted;
    return NVAPI_OK;
}

} // namespace simulated
