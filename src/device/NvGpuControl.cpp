#include "device/NvGpuControl.h"

#include "device/nvapi/DriverText.h"
#include "device/nvapi/NvApi.h"

#include <algorithm>

// Start and end, enumeration, the current card. Each family of operations has its own source.

namespace
{

// The driver ends the enumeration of the displays. A driver that never does must not hang the program; no machine has
// this many displays.
constexpr quint32 kMaxDisplayWalk = 4096;

} // namespace

NvGpuControl::NvGpuControl()
{
    nvApiReady = initNvApi();
}

NvGpuControl::~NvGpuControl()
{
    if (driverStarted) // a second unload would take another instance's count
        NvAPI_Unload();
}

bool NvGpuControl::initNvApi()
{
    usableGpuCount = 0;
    currentGpu = 0;
    displayCount = 0;
    gpuHandles.fill(nullptr);
    tccGpuHandles.fill(nullptr);

    const NvAPI_Status status = NvAPI_Initialize();
    if (status == NVAPI_ERROR) {
        dropErrorText(status);
        NvAPI_Unload();
        return false;
    }
    if (status == NVAPI_LIBRARY_NOT_FOUND) {
        NvAPI_Unload();
        return false;
    }
    driverStarted = true;
    // The program continues after other failures: a driver that enumerates its cards is usable, and one that does not
    // fails there.
    enumDisplays(); // a card without a display counts too
    return enumGpus();
}

bool NvGpuControl::enumDisplays()
{
    NvAPI_Status status = NVAPI_ERROR;
    for (quint32 index = 0; index < kMaxDisplayWalk; ++index) {
        NvDisplayHandle beyondTable = nullptr; // more displays than the table holds are counted, not kept
        NvDisplayHandle *const display = index < kMaxDisplays ? &displayHandles[index] : &beyondTable;
        status = NvAPI_EnumNvidiaDisplayHandle(index, display);
        if (status != NVAPI_OK)
            break;
        ++displayCount;
    }

    if (status == NVAPI_NVIDIA_DEVICE_NOT_FOUND)
        return false;
    if (status == NVAPI_END_ENUMERATION)
        return NvAPI_GetAssociatedDisplayOutputId(displayHandles[0], &outputId) == NVAPI_OK;
    dropErrorText(status);
    return false;
}

bool NvGpuControl::enumGpus()
{
    constexpr quint32 maxGpus = kMaxGpus;
    static_assert(kMaxGpus == kNvApiMaxGpus, "the driver fills tables of that size");
    usableGpuCount = 0;
    tccGpuCount = 0;
    const NvAPI_Status status = NvAPI_EnumPhysicalGPUs(gpuHandles.data(), &usableGpuCount);
    NvAPI_EnumTCCPhysicalGPUs(tccGpuHandles.data(), &tccGpuCount); // some drivers lack it: no TCC cards

    usableGpuCount = std::min(usableGpuCount, maxGpus);
    tccGpuCount = std::min(tccGpuCount, maxGpus);
    const quint32 appended = std::min(tccGpuCount, maxGpus - usableGpuCount);
    std::copy_n(tccGpuHandles.begin(), appended, gpuHandles.begin() + usableGpuCount);
    usableGpuCount += appended;

    if (status != NVAPI_OK) {
        dropErrorText(status);
        return false;
    }
    return true;
}

quint32 NvGpuControl::gpuCount()
{
    const std::lock_guard<std::mutex> guard(lock);
    return usableGpuCount;
}

void NvGpuControl::setCurrentGpu(qint32 index)
{
    const std::lock_guard<std::mutex> guard(lock);
    // Without a card the bound wraps to its largest value and the index stays: currentHandle() finds no card for it.
    currentGpu = std::min(static_cast<quint32>(std::max(index, 0)), usableGpuCount - 1);
}

bool NvGpuControl::isTccGpu(void *handle) const
{
    const auto end = tccGpuHandles.begin() + tccGpuCount;
    return std::find(tccGpuHandles.begin(), end, handle) != end;
}

std::string NvGpuControl::getGpuName()
{
    void *const gpu = currentHandle();
    if (!gpu)
        return {};
    DriverTextBuffer name{};
    if (NvAPI_GPU_GetFullName(gpu, name.data()) != NVAPI_OK)
        return {};
    return driverText(name);
}

bool NvGpuControl::getPciIdentifiers(NvPciIds &out)
{
    out = {};
    void *const gpu = currentHandle();
    if (!gpu)
        return false;
    return NvAPI_GPU_GetPCIIdentifiers(gpu, &out.deviceId, &out.subSystemId, &out.revisionId, &out.extDeviceId) ==
           NVAPI_OK;
}

void *NvGpuControl::currentHandle()
{
    const std::lock_guard<std::mutex> guard(lock);
    return currentGpu < gpuHandles.size() ? gpuHandles[currentGpu] : nullptr;
}

void NvGpuControl::fold(NvExtremeIndex index, qint32 value)
{
    const std::lock_guard<std::mutex> guard(lock);
    NvExtreme &extreme = extremes.pairs[index];
    extreme.maxValue = std::max(extreme.maxValue, value);
    extreme.minValue = std::min(extreme.minValue, value);
}
