#include "device/NvGpuControl.h"

#include "device/Arithmetic.h"
#include "device/LinkArithmetic.h"
#include "device/Units.h"
#include "device/nvapi/NvApi.h"
#include "device/nvapi/VersionLadder.h"

#include <algorithm>

// Power and thermal policy. Of several entries of a record the last one is used; cards have one.

namespace
{

constexpr std::array<quint32, 1> kPowerTopologyInfoVersions = {kPowerTopologyInfoVersion1};
constexpr std::array<quint32, 1> kPowerTopologyStatusVersions = {kPowerTopologyStatusVersion1};
constexpr std::array<quint32, 1> kPowerPoliciesInfoVersions = {kPowerPoliciesInfoVersion1};
constexpr std::array<quint32, 1> kPowerPoliciesStatusVersions = {kPowerPoliciesStatusVersion1};
constexpr std::array<quint32, 2> kThermalPoliciesInfoVersions = {kThermalPoliciesInfoVersion2,
                                                                 kThermalPoliciesInfoVersion1};
constexpr std::array<quint32, 2> kThermalPoliciesStatusVersions = {kThermalPoliciesStatusVersion2,
                                                                   kThermalPoliciesStatusVersion1};

constexpr qint32 kRawPerDegree = 256;   ///< of the thermal policies
constexpr quint8 kThermalInfoValid = 1; ///< bit of NvApiThermalPoliciesInfo::flags
constexpr quint32 kPriority = 1;        ///< bit of NvApiThermalPoliciesStatus::Entry::flags

using PowerInfo = NvApiPowerPoliciesInfo;
using PowerStatus = NvApiPowerPoliciesStatus;
using ThermalInfo = NvApiThermalPoliciesInfo;
using ThermalStatus = NvApiThermalPoliciesStatus;

/// The entries of a record's count byte, bounded by what the record holds.
quint8 boundedCount(quint8 count)
{
    return static_cast<quint8>(std::min<std::size_t>(count, kPolicyEntries));
}

/// Index of the entry with that policy, or the record's (bounded) count when there is none.
template <typename Record>
std::size_t findPolicy(const Record &record, quint32 policyId)
{
    using Entry = typename Record::Entry;
    const auto end = record.entries + boundedCount(record.count);
    const auto found =
        std::find_if(record.entries, end, [policyId](const Entry &entry) { return entry.policyId == policyId; });
    return static_cast<std::size_t>(found - record.entries);
}

/// Prepares a status record to be read for the policies of an info record.
template <typename Status, typename Info>
void copyPolicyIds(const Info &info, Status &status)
{
    status.count = boundedCount(info.count);
    for (std::size_t index = 0; index < status.count; ++index)
        status.entries[index].policyId = info.entries[index].policyId;
}

bool readTopology(void *gpu, NvApiPowerTopologyInfo &record)
{
    return descend(kPowerTopologyInfoVersions, record, NvAPI_GPU_ClientPowerTopologyGetInfo, gpu).succeeded();
}

/// Reads the channels that `info` lists.
bool readTopologyStatus(void *gpu, const NvApiPowerTopologyInfo &info, NvApiPowerTopologyStatus &record)
{
    record.count = boundedCount(info.count);
    for (std::size_t index = 0; index < record.count; ++index)
        record.entries[index].channelId = info.channelId[index];
    return descend(kPowerTopologyStatusVersions, record, NvAPI_GPU_ClientPowerTopologyGetStatus, gpu).succeeded();
}

bool readPowerInfo(void *gpu, PowerInfo &record)
{
    return descend(kPowerPoliciesInfoVersions, record, NvAPI_GPU_ClientPowerPoliciesGetInfo, gpu).succeeded();
}

bool readPowerStatus(void *gpu, PowerStatus &record)
{
    return descend(kPowerPoliciesStatusVersions, record, NvAPI_GPU_ClientPowerPoliciesGetStatus, gpu).succeeded();
}

bool readThermalInfo(void *gpu, ThermalInfo &record)
{
    return descend(kThermalPoliciesInfoVersions, record, NvAPI_GPU_ClientThermalPoliciesGetInfo, gpu).succeeded();
}

LadderResult readThermalStatus(void *gpu, ThermalStatus &record)
{
    return descend(kThermalPoliciesStatusVersions, record, NvAPI_GPU_ClientThermalPoliciesGetStatus, gpu);
}

template <std::size_t versionCount>
bool writeThermalStatus(void *gpu, const std::array<quint32, versionCount> &versions, ThermalStatus &record)
{
    return descend(versions, record, NvAPI_GPU_ClientThermalPoliciesSetStatus, gpu).succeeded();
}

bool isValid(const ThermalInfo &info)
{
    return info.flags & kThermalInfoValid;
}

qint32 toPercent(quint32 raw)
{
    return static_cast<qint32>(raw / kThousandthsPerPercent); // unsigned, as the driver's word is
}

qint32 toDegrees(qint32 raw)
{
    return cutToInt(double(raw) / kRawPerDegree);
}

/// Percent in the driver's thousandths, before the fraction is dropped.
double toThousandths(float percent)
{
    return percent * double(kThousandthsPerPercent);
}

/// The draw of policy `policy`. Every round compares the channel at the policy's own index, so the result is the
/// first channel's draw or none.
void takeTopologyPower(const NvApiPowerTopologyStatus &topology, const PowerInfo &info, std::size_t policy,
                       NvPowerInfo &out)
{
    const std::size_t channelCount = boundedCount(topology.count);
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        if (info.entries[policy].domainId == topology.entries[policy].channelId) {
            out.topologyPower = toPercent(topology.entries[channel].power);
            return;
        }
    }
}

/// The two lines of the link, read from the card.
struct LinkLines
{
    PowerLine power;
    TemperatureLine temperature;
};

/// The first half: false when the card has no such power policy.
bool readPowerLine(void *gpu, quint32 policyId, PowerLine &out)
{
    PowerInfo info{};
    if (!readPowerInfo(gpu, info) || !info.valid)
        return false;
    const std::size_t policy = findPolicy(info, policyId);
    if (policy == boundedCount(info.count))
        return false;
    const PowerInfo::Entry &entry = info.entries[policy];
    out.minPower = static_cast<float>(entry.minPower);
    out.defaultPower = static_cast<float>(entry.defaultPower);
    out.maxPower = static_cast<float>(entry.maxPower);
    return true;
}

/// The second half: false when the card has no thermal policies. An unknown policy is no failure: the entry after the
/// last one is used, which a driver leaves at zero.
bool readTemperatureLine(void *gpu, quint32 policyId, TemperatureLine &out)
{
    ThermalInfo info{};
    if (!readThermalInfo(gpu, info) || !isValid(info))
        return false;
    const std::size_t policy = findPolicy(info, policyId);
    const ThermalInfo::Entry entry = policy < std::size(info.entries) ? info.entries[policy] : ThermalInfo::Entry{};
    const auto degrees = [](qint32 raw) {
        return static_cast<float>(raw) / static_cast<float>(kRawPerDegree);
    };
    out.minTemp = degrees(entry.minTemp);
    out.defaultTemp = degrees(entry.defaultTemp);
    out.maxTemp = degrees(entry.maxTemp);
    return true;
}

} // namespace

bool NvGpuControl::getPowerInfo(NvPowerInfo &out)
{
    out = {};
    void *const gpu = currentHandle();
    if (!gpu)
        return false;

    NvApiPowerTopologyInfo topologyInfo{};
    if (!readTopology(gpu, topologyInfo))
        return false;
    out.present = topologyInfo.valid != 0;
    if (!out.present)
        return false;
    NvApiPowerTopologyStatus topology{};
    if (!readTopologyStatus(gpu, topologyInfo, topology))
        return false;

    PowerInfo info{};
    if (!readPowerInfo(gpu, info))
        return false;
    out.present = info.valid != 0;
    if (!out.present)
        return false;
    const std::size_t policyCount = boundedCount(info.count);
    for (std::size_t policy = 0; policy < policyCount; ++policy) {
        const PowerInfo::Entry &entry = info.entries[policy];
        out.minPower = toPercent(entry.minPower);
        out.maxPower = toPercent(entry.maxPower);
        out.defaultPower = toPercent(entry.defaultPower);
        out.policyId = static_cast<qint32>(entry.policyId);
    }

    PowerStatus status{};
    copyPolicyIds(info, status);
    if (!readPowerStatus(gpu, status))
        return false;
    for (std::size_t policy = 0; policy < policyCount; ++policy) {
        out.currentPower = toPercent(status.entries[policy].power);
        takeTopologyPower(topology, info, policy, out);
    }
    return true;
}

bool NvGpuControl::getThermalPolicyInfo(NvThermalPolicyInfo &out)
{
    void *const gpu = currentHandle();
    if (!gpu)
        return false;
    out = {};

    ThermalInfo info{};
    if (!readThermalInfo(gpu, info))
        return false;
    out.present = isValid(info);
    if (!out.present)
        return false;
    const std::size_t policyCount = boundedCount(info.count);
    for (std::size_t policy = 0; policy < policyCount; ++policy) {
        const ThermalInfo::Entry &entry = info.entries[policy];
        out.minTemp = toDegrees(entry.minTemp);
        out.maxTemp = toDegrees(entry.maxTemp);
        out.defaultTemp = toDegrees(entry.defaultTemp);
        out.policyId = static_cast<qint32>(entry.policyId);
    }

    ThermalStatus status{};
    copyPolicyIds(info, status);
    if (!readThermalStatus(gpu, status).succeeded())
        return false;
    const std::size_t statusCount = boundedCount(status.count);
    for (std::size_t policy = 0; policy < statusCount; ++policy) {
        out.currentTemp = toDegrees(status.entries[policy].temperature);
        out.priority = status.entries[policy].flags & kPriority;
    }
    return true;
}

bool NvGpuControl::setPowerLimit(quint32 policyId, float percent)
{
    void *const gpu = currentHandle();
    if (!gpu)
        return false;
    PowerInfo info{};
    if (!readPowerInfo(gpu, info) || !info.valid)
        return false;
    const std::size_t policy = findPolicy(info, policyId);
    if (policy == boundedCount(info.count))
        return false;

    const PowerInfo::Entry &entry = info.entries[policy];
    const qint64 raw = cutToInt(toThousandths(percent));
    if (raw > entry.maxPower)
        percent = static_cast<float>(toPercent(entry.maxPower));
    if (raw < entry.minPower)
        percent = static_cast<float>(toPercent(entry.minPower));

    PowerStatus status{};
    status.count = 1;
    status.entries[0].policyId = policyId;
    status.entries[0].power = static_cast<quint32>(cutToInt(toThousandths(percent)));
    return descend(kPowerPoliciesStatusVersions, status, NvAPI_GPU_ClientPowerPoliciesSetStatus, gpu).succeeded();
}

bool NvGpuControl::setThermalLimit(quint32 policyId, float degrees, bool priority)
{
    void *const gpu = currentHandle();
    if (!gpu)
        return false;
    ThermalInfo info{};
    if (!readThermalInfo(gpu, info) || !isValid(info))
        return false;
    const std::size_t policy = findPolicy(info, policyId);
    if (policy == boundedCount(info.count))
        return false;

    const ThermalInfo::Entry &entry = info.entries[policy];
    // A limit above the card's range would let it run hotter than it was built for, so the maximum of the range is
    // sent.
    qint32 raw = cutToInt(degrees * double(kRawPerDegree));
    if (raw > entry.maxTemp)
        raw = entry.maxTemp;
    else if (raw < entry.minTemp)
        raw = entry.minTemp / kRawPerDegree * kRawPerDegree; // the fraction is dropped

    ThermalStatus status{};
    status.count = 1;
    status.entries[0].policyId = policyId;
    status.entries[0].temperature = raw;
    status.entries[0].flags = priority ? kPriority : 0;
    return writeThermalStatus(gpu, kThermalPoliciesStatusVersions, status);
}

void NvGpuControl::setThermalPriority(quint32 policyId, quint8 value)
{
    void *const gpu = currentHandle();
    if (!gpu)
        return;
    ThermalInfo info{};
    if (!readThermalInfo(gpu, info) || !isValid(info))
        return;
    const std::size_t policy = findPolicy(info, policyId);
    if (policy == boundedCount(info.count) || value > 1)
        return;

    ThermalStatus status{};
    copyPolicyIds(info, status);
    const LadderResult read = readThermalStatus(gpu, status);
    if (!read.succeeded())
        return;
    // The policy's own temperature is written back as it was read: that of another policy may be beyond its range.
    // The entries of the older version are narrower than those walked here, so that only the first of them is known.
    if (policy != 0 && read.version != kThermalPoliciesStatusVersion2)
        return;
    status.entries[0] = status.entries[policy];
    status.count = 1;
    status.entries[0].policyId = policyId;
    status.entries[0].flags = (status.entries[0].flags & ~kPriority) | value;
    writeThermalStatus(gpu, std::array<quint32, 1>{read.version}, status);
}

bool NvGpuControl::powerToTemperature(quint32 powerPolicyId, quint32 thermalPolicyId, float percent, NvLimitPair &out)
{
    void *const gpu = currentHandle();
    LinkLines lines;
    if (!gpu || !readPowerLine(gpu, powerPolicyId, lines.power))
        return false;
    const double raw = toThousandths(percent);
    if (raw > static_cast<double>(lines.power.maxPower) || raw < static_cast<double>(lines.power.minPower))
        return false;
    if (!readTemperatureLine(gpu, thermalPolicyId, lines.temperature))
        return false;
    out.temperature = temperatureForPower(percent, lines.power, lines.temperature);
    out.power = percent;
    return true;
}

bool NvGpuControl::temperatureToPower(quint32 powerPolicyId, quint32 thermalPolicyId, float degrees,
                                      float currentPercent, NvLimitPair &out)
{
    void *const gpu = currentHandle();
    LinkLines lines;
    if (!gpu || !readPowerLine(gpu, powerPolicyId, lines.power) ||
        !readTemperatureLine(gpu, thermalPolicyId, lines.temperature))
        return false;
    out.power = powerForTemperature(degrees, currentPercent, lines.power, lines.temperature);
    out.temperature = degrees;
    return true;
}
