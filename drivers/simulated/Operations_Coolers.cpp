// Fans.

#include "simulated/Operations.h"

#include <algorithm>
#include <cmath>

namespace simulated
{
namespace
{

struct CoolerLayout
{
    quint32 version;
    std::size_t entrySize; ///< older entries are beginnings of the newest one
    std::size_t entries;
};

constexpr CoolerLayout kCoolerLayouts[] = {
    {kCoolerSettingsVersion4, kCoolerEntrySize4, 20},     {kCoolerSettingsVersion3, kCoolerEntrySize3, 20},
    {kCoolerSettingsVersion2, kCoolerEntrySize2, 20},     {kCoolerSettingsVersion1Large, kCoolerEntrySize2, 20},
    {kCoolerSettingsVersion1Small, kCoolerEntrySize2, 3},
};

constexpr std::size_t kCoolersOffset = offsetof(NvApiCoolerSettings, cooler);

// numbers that the driver gives to an ordinary fan on the GPU
constexpr qint32 kCoolerTypeFan = 1;
constexpr qint32 kCoolerControllerInternal = 2;
constexpr qint32 kCoolerTargetGpu = 1;
constexpr qint32 kCoolerControlVariable = 2;

bool isPolicy(qint32 policy)
{
    return policy == kCoolerPolicyManual || policy == kCoolerPolicyPerformance ||
           policy == kCoolerPolicyDiscreteTemperature || policy == kCoolerPolicyContinuousTemperature ||
           policy == kCoolerPolicyDefault;
}

NvApiCoolerSettings::Cooler coolerEntry(const Card &card, std::size_t index)
{
    const FanParameters &fan = card.parameters.fan;
    NvApiCoolerSettings::Cooler entry{};
    entry.type = kCoolerTypeFan;
    entry.controller = kCoolerControllerInternal;
    entry.defaultMin = fan.minimumPercent;
    entry.defaultMax = fan.maximumPercent;
    entry.currentMin = fan.minimumPercent;
    entry.currentMax = fan.maximumPercent;
    entry.currentLevel = static_cast<qint32>(std::lround(card.coolerAimPercent(index)));
    entry.defaultPolicy = kCoolerPolicyDefault;
    entry.currentPolicy = card.settings.coolers[index].policy;
    entry.target = kCoolerTargetGpu;
    entry.controlType = kCoolerControlVariable;
    entry.active = 1;
    if (fan.tachometer) {
        entry.tachSpeedRpm = card.fanRpm();
        entry.tachPresent = 1;
        entry.tachMinRpm = fan.minimumRpm;
        entry.tachMaxRpm = fan.maximumRpm;
    }
    return entry;
}

} // namespace

NvAPI_Status Operations::NvAPI_GPU_GetCoolerSettings(NvPhysicalGpuHandle, quint32 coolerIndex,
                                                     NvApiCoolerSettings *record)
{
    const std::size_t coolers = card().settings.coolers.size();
    if (coolerIndex != kAllCoolers && coolerIndex >= coolers)
        return refuse(NVAPI_INVALID_ARGUMENT, "no such cooler");
    const auto *layout = std::find_if(std::begin(kCoolerLayouts), std::end(kCoolerLayouts),
                                      [this](const CoolerLayout &row) { return row.version == version(); });
    if (layout == std::end(kCoolerLayouts))
        return NVAPI_INCOMPATIBLE_STRUCT_VERSION;

    const std::size_t first = coolerIndex == kAllCoolers ? 0 : coolerIndex;
    const std::size_t wanted = coolerIndex == kAllCoolers ? coolers : 1;
    const std::size_t count = std::min(wanted, layout->entries);
    char *const bytes = reinterpret_cast<char *>(record);
    std::memset(bytes + sizeof(record->version), 0, nvApiRecordSize(version()) - sizeof(record->version));
    record->count = answeredCount<quint32>(count);
    for (std::size_t i = 0; i < count; ++i) {
        const NvApiCoolerSettings::Cooler entry = coolerEntry(card(), first + i);
        std::memcpy(bytes + kCoolersOffset + i * layout->entrySize, &entry, layout->entrySize);
    }
    return NVAPI_OK;
}

NvAPI_Status Operations::NvAPI_GPU_SetCoolerLevels(NvPhysicalGpuHandle, quint32 coolerIndex,
                                                   NvApiCoolerLevels *record)
{
    std::vector<CardSettings::Cooler> &coolers = card().settings.coolers;
    if (coolerIndex != kAllCoolers && coolerIndex >= coolers.size())
        return refuse(NVAPI_INVALID_ARGUMENT, "no such cooler");
    // for all coolers together the first entry speaks
    const NvApiCoolerLevels::Level &wanted = record->levels[0];
    const bool setsPolicy = wanted.policy != 0; // 0 leaves the policy alone
    if (setsPolicy && !isPolicy(wanted.policy))
        return refuse(NVAPI_INVALID_ARGUMENT, "unknown cooler policy");
    const bool setsLevel = !setsPolicy || wanted.policy == kCoolerPolicyManual; // elsewhere the curve decides
    if (setsLevel && (wanted.level < 0 || wanted.level > card().parameters.fan.maximumPercent))
        return refuse(NVAPI_INVALID_ARGUMENT, "cooler level out of range");
    for (std::size_t i = 0; i < coolers.size(); ++i) {
        if (coolerIndex != kAllCoolers && coolerIndex != i)
            continue;
        if (setsPolicy)
            coolers[i].policy = wanted.policy;
        if (setsLevel)
            coolers[i].manualPercent = wanted.level;
    }
    return NVAPI_OK;
}

NvAPI_Status Operations::NvAPI_GPU_GetTachReading(NvPhysicalGpuHandle, quint32 *rpm)
{
    if (!card().parameters.fan.tachometer || card().settings.coolers.empty())
        return refuse(NVAPI_ERROR, "no tachometer");
    *rpm = card().fanRpm();
    return NVAPI_OK;
}

} // namespace simulated
