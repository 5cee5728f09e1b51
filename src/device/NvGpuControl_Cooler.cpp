#include "device/NvGpuControl.h"

#include "device/Arithmetic.h"
#include "device/nvapi/DriverText.h"
#include "device/nvapi/NvApi.h"
#include "device/nvapi/VersionLadder.h"

#include <algorithm>

// Coolers: every call addresses all coolers of the card at once.

namespace
{

constexpr std::array<quint32, 5> kCoolerSettingsVersions = {kCoolerSettingsVersion4, kCoolerSettingsVersion3,
                                                            kCoolerSettingsVersion2, kCoolerSettingsVersion1Large,
                                                            kCoolerSettingsVersion1Small};
constexpr std::array<quint32, 1> kNewestCoolerSettingsVersion = {kCoolerSettingsVersion4};
constexpr std::array<quint32, 4> kOlderCoolerSettingsVersions = {
    kCoolerSettingsVersion3, kCoolerSettingsVersion2, kCoolerSettingsVersion1Large, kCoolerSettingsVersion1Small};
constexpr std::array<quint32, 2> kCoolerLevelsVersions = {kCoolerLevelsVersion1, kCoolerLevelsVersion1Small};
constexpr std::array<quint32, 1> kNewestCoolerLevelsVersion = {kCoolerLevelsVersion1};

constexpr qint32 kDefaultLevel = -1; ///< asks setCoolerLevel for the card's own default
constexpr qint32 kHighestPercent = 100;

template <std::size_t versionCount>
LadderResult readCoolerSettings(void *gpu, const std::array<quint32, versionCount> &versions,
                                NvApiCoolerSettings &record)
{
    return descend(versions, record, NvAPI_GPU_GetCoolerSettings, gpu, kAllCoolers);
}

template <std::size_t versionCount>
bool writeCoolerLevels(void *gpu, const std::array<quint32, versionCount> &versions, NvApiCoolerLevels &record)
{
    return descend(versions, record, NvAPI_GPU_SetCoolerLevels, gpu, kAllCoolers).succeeded();
}

/// The level that may be sent: a percentage within the range of the first cooler, whose level is the one written. A
/// range that can't be read, or whose maximum is not above its minimum, is ignored: it would hold the fan at its
/// lowest level however hot the card is.
qint32 allowedLevel(void *gpu, qint32 level)
{
    NvApiCoolerSettings settings{};
    if (readCoolerSettings(gpu, kCoolerSettingsVersions, settings).succeeded() && settings.count > 0) {
        const NvApiCoolerSettings::Cooler &cooler = settings.cooler[0];
        if (cooler.defaultMax > 0 && cooler.defaultMax >= cooler.defaultMin)
            level = withinRange(level, cooler.defaultMin, cooler.defaultMax);
    }
    return withinRange(level, 0, kHighestPercent);
}

quint32 readTachometer(void *gpu)
{
    quint32 rpm = 0;
    NvAPI_GPU_GetTachReading(gpu, &rpm); // a card without a tachometer turns at 0
    return rpm;
}

/// The read for telemetry. False for the failures that leave an empty record; after any other failure the record is
/// used as the driver left it.
bool readCoolerTelemetry(void *gpu, NvApiCoolerSettings &record)
{
    const NvAPI_Status status = readCoolerSettings(gpu, kNewestCoolerSettingsVersion, record).status;
    switch (status) {
    case NVAPI_INCOMPATIBLE_STRUCT_VERSION:
        return readCoolerSettings(gpu, kOlderCoolerSettingsVersions, record).succeeded();
    case NVAPI_ERROR:
        dropErrorText(status);
        return false;
    case NVAPI_INVALID_ARGUMENT:
    case NVAPI_INVALID_HANDLE:
    case NVAPI_EXPECTED_PHYSICAL_GPU_HANDLE:
        return false;
    default:
        return true;
    }
}

} // namespace

bool NvGpuControl::getCoolerInfo(NvCoolerInfo &out)
{
    void *const gpu = currentHandle();
    out = {};
    if (!gpu) {
        fold(ExtremeTachRpm, 0);
        return false;
    }
    out.tachRpm = static_cast<qint32>(readTachometer(gpu));

    NvApiCoolerSettings record{};
    if (!readCoolerTelemetry(gpu, record)) {
        fold(ExtremeTachRpm, 0);
        return false;
    }
    // The entries of the older versions are shorter, but they are read like the newest ones. The first entry is right
    // in every version, and the cards that only know an older one have a single fan.
    const quint32 coolerCount = std::min<quint32>(static_cast<quint32>(record.count), std::size(record.cooler));
    for (quint32 index = 0; index < coolerCount; ++index) {
        const NvApiCoolerSettings::Cooler &cooler = record.cooler[index];
        out.defaultMinLevel = cooler.defaultMin;
        out.defaultMaxLevel = cooler.defaultMax;
        out.currentLevel = cooler.currentLevel;
        out.currentPolicy = cooler.currentPolicy;
        if (cooler.tachPresent) {
            out.tachMin = cooler.tachMinRpm;
            out.tachMax = cooler.tachMaxRpm;
        }
    }
    fold(ExtremeTachRpm, out.tachRpm);
    return true;
}

bool NvGpuControl::setCoolerLevel(qint32 level, qint32 policy)
{
    void *const gpu = currentHandle();
    if (!gpu)
        return false;

    NvApiCoolerLevels levels{};
    if (level == kDefaultLevel) {
        NvApiCoolerSettings settings{};
        if (!readCoolerSettings(gpu, kCoolerSettingsVersions, settings).succeeded())
            return false;
        levels.levels[0].level = settings.cooler[0].defaultMin;
        levels.levels[0].policy = settings.cooler[0].defaultPolicy;
        if (!writeCoolerLevels(gpu, kNewestCoolerLevelsVersion, levels))
            return false;
    } else {
        levels.levels[0].level = allowedLevel(gpu, level);
        if (std::find(kCoolerPolicies.begin(), kCoolerPolicies.end(), policy) != kCoolerPolicies.end())
            levels.levels[0].policy = policy;
        if (!writeCoolerLevels(gpu, kCoolerLevelsVersions, levels))
            return false;
    }
    readTachometer(gpu); // part of each successful write; its result is not used
    return true;
}

bool NvGpuControl::setCoolerAuto()
{
    void *const gpu = currentHandle();
    if (!gpu)
        return false;
    NvApiCoolerLevels levels{};
    levels.levels[0].policy = kCoolerPolicyDefault;
    return writeCoolerLevels(gpu, kCoolerLevelsVersions, levels);
}
