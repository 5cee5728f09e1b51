#include "device/NvGpuControl.h"

#include "device/Arithmetic.h"
#include "device/BoardSensor.h"
#include "device/Units.h"
#include "device/nvapi/NvApi.h"
#include "device/nvapi/VersionLadder.h"

#include <algorithm>

// Live telemetry: the reads of each sample.

namespace
{

constexpr std::array<quint32, 3> kClockFrequenciesVersions = {kClockFrequenciesVersion3, kClockFrequenciesVersion2,
                                                              kClockFrequenciesVersion1};
constexpr std::array<quint32, 1> kDynamicPstatesVersions = {kDynamicPstatesVersion1};
constexpr std::array<quint32, 2> kThermalSettingsVersions = {kThermalSettingsVersion2, kThermalSettingsVersion1};
constexpr std::array<quint32, 3> kMemoryInfoVersions = {kMemoryInfoVersion3, kMemoryInfoVersion2,
                                                        kMemoryInfoVersion1};

constexpr quint32 kFirstThermalSensor = 0;

} // namespace

bool NvGpuControl::getClockFrequencies(NvClockSet &out, quint32 clockType)
{
    void *const gpu = currentHandle();
    if (!gpu) {
        out = {};
        return false;
    }
    NvApiClockFrequencies record{};
    record.clockType = clockType & kClockTypeMask;
    if (!descend(kClockFrequenciesVersions, record, NvAPI_GPU_GetAllClockFrequencies, gpu).succeeded())
        return false;

    out.gpuClock = static_cast<qint32>(record.domain[kClockDomainGraphics].frequencyKHz / kKHzPerMHz);
    out.processorClock = static_cast<qint32>(record.domain[kClockDomainProcessor].frequencyKHz / kKHzPerMHz);
    // The conversion uses a 32-bit float, unlike the other two: frequencies above 16.7 GHz are rounded.
    out.memoryClock =
        cutToInt(static_cast<float>(record.domain[kClockDomainMemory].frequencyKHz) / double(kKHzPerMHz));
    return true;
}

void NvGpuControl::getCurrentClocks(NvClockSet &out)
{
    void *const gpu = currentHandle();
    getClockFrequencies(out, kClockTypeCurrent); // on failure the former values of `out` are folded
    if (gpu) {
        quint32 unusedType = 0;
        NvAPI_GPU_GetRamType(gpu, &unusedType); // part of each sample; the result is not used
    }
    fold(ExtremeGpuClock, out.gpuClock);
    fold(ExtremeMemoryClock, out.memoryClock);
}

bool NvGpuControl::getGpuUsage(NvUsageInfo &out)
{
    out = {};
    void *const gpu = currentHandle();
    NvApiDynamicPstates record{};
    if (!gpu || !descend(kDynamicPstatesVersions, record, NvAPI_GPU_GetDynamicPstatesInfoEx, gpu).succeeded()) {
        fold(ExtremeGpuUsage, 0);
        return false;
    }

    bool anyPresent = false;
    qint32 *const domains[] = {&out.gpu, &out.frameBuffer, &out.video, &out.bus};
    for (std::size_t domain = 0; domain < std::size(domains); ++domain) {
        if (record.utilization[domain].present & 1u) {
            *domains[domain] = static_cast<qint32>(record.utilization[domain].percentage);
            anyPresent = true;
        }
    }
    if (!anyPresent)
        return false;
    fold(ExtremeGpuUsage, out.gpu);
    return true;
}

bool NvGpuControl::getThermalSensor(NvThermalInfo &out)
{
    out = {};
    void *const gpu = currentHandle();
    NvApiThermalSettings record{};
    record.count = kThermalSensorCount;
    if (!gpu || !descend(kThermalSettingsVersions, record, NvAPI_GPU_GetThermalSettings, gpu, kFirstThermalSensor)
                     .succeeded()) {
        fold(ExtremeTemperature, 0);
        return false;
    }

    const quint32 sensorCount = std::min(record.count, kThermalSensorCount);
    const auto end = record.sensor + sensorCount;
    const auto sensor = std::find_if(record.sensor, end, [](const NvApiThermalSettings::Sensor &candidate) {
        return candidate.target == kThermalTargetGpu;
    });
    const bool found = sensor != end;
    if (found) {
        out.defaultMinTemp = sensor->defaultMinTemp;
        out.defaultMaxTemp = sensor->defaultMaxTemp;
        out.currentTemp = sensor->currentTemp;
    }
    fold(ExtremeTemperature, out.currentTemp);
    return found; // 0 degrees without a measurement must not drive a fan
}

bool NvGpuControl::getMemoryInfo(NvMemoryInfo &out)
{
    out = {};
    void *const gpu = currentHandle();
    NvApiMemoryInfo record{};
    LadderResult read;
    if (gpu)
        read = descend(kMemoryInfoVersions, record, NvAPI_GPU_GetMemoryInfo, gpu);
    if (!read.succeeded()) {
        fold(ExtremeMemoryUsed, 0);
        return false;
    }

    out.totalKB = static_cast<qint32>(record.dedicatedVideoMemory);
    // The driver reports no free memory for a TCC card, so only the total is set.
    if (!isTccGpu(gpu)) {
        const bool hasCurrentAvailability = read.version != kMemoryInfoVersion1;
        out.availableKB = static_cast<qint32>(record.availableDedicatedVideoMemory);
        out.freeKB =
            hasCurrentAvailability ? static_cast<qint32>(record.curAvailableDedicatedVideoMemory) : out.availableKB;
        out.usedKB = wrappingDifference(out.totalKB, out.freeKB);
    }
    fold(ExtremeMemoryUsed, out.usedKB);
    return true;
}

bool NvGpuControl::readBoardSensor(quint8 address, int &value)
{
    value = 0;
    std::array<quint8, kBoardSensorDataSize> data{};
    if (!i2cRead(address, kBoardSensorRegister, kBoardSensorRegisterSize, data.data(), kBoardSensorDataSize))
        return false;
    value = decodeBoardSensor(data[0], data[1]);
    return true;
}

void NvGpuControl::getBoardTemperatures(NvBoardTemperatures &out)
{
    // A card without a sensor shows 0 for it.
    readBoardSensor(kBoardSensorAddress9E, out.sensor9E);
    readBoardSensor(kBoardSensorAddress90, out.sensor90);
    readBoardSensor(kBoardSensorAddress96, out.sensor96);
    readBoardSensor(kBoardSensorAddress92, out.sensor92);

    fold(ExtremeSensor9E, out.sensor9E);
    fold(ExtremeSensor90, out.sensor90);
    fold(ExtremeSensor96, out.sensor96);
    fold(ExtremeSensor92, out.sensor92);
}

void NvGpuControl::getExtremes(NvExtremes &out)
{
    const std::lock_guard<std::mutex> guard(lock);
    out = extremes;
}
