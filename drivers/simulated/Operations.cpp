// The library itself: start, end, enumeration, versions.

#include "simulated/Operations.h"

#include "simulated/StateFile.h"

#include <algorithm>

namespace simulated
{
namespace
{

constexpr quint32 kFirstOutputBit = 8; // the outputs of a card are bits of a mask, digital ones from here on
constexpr quint32 kOutputBits = 24;

struct StatusText
{
    NvAPI_Status status;
    const char *text;
};

constexpr StatusText kStatusTexts[] = {
    {NVAPI_OK, "NVAPI_OK"},
    {NVAPI_ERROR, "NVAPI_ERROR"},
    {NVAPI_LIBRARY_NOT_FOUND, "NVAPI_LIBRARY_NOT_FOUND"},
    {NVAPI_NO_IMPLEMENTATION, "NVAPI_NO_IMPLEMENTATION"},
    {NVAPI_INVALID_ARGUMENT, "NVAPI_INVALID_ARGUMENT"},
    {NVAPI_NVIDIA_DEVICE_NOT_FOUND, "NVAPI_NVIDIA_DEVICE_NOT_FOUND"},
    {NVAPI_END_ENUMERATION, "NVAPI_END_ENUMERATION"},
    {NVAPI_INCOMPATIBLE_STRUCT_VERSION, "NVAPI_INCOMPATIBLE_STRUCT_VERSION"},
    {NVAPI_INVALID_HANDLE, "NVAPI_INVALID_HANDLE"},
    {NVAPI_EXPECTED_PHYSICAL_GPU_HANDLE, "NVAPI_EXPECTED_PHYSICAL_GPU_HANDLE"},
};

} // namespace

Operations::Operations(const Scenario &scenario) : driver(scenario.driver)
{
    for (const CardParameters &parameters : scenario.cards) {
        if (cards.size() < kNvApiMaxGpus)
            cards.emplace_back(parameters);
    }
}

CallContext Operations::contextOf(std::optional<quint32> index) const
{
    CallContext context;
    context.card = index ? &cards.at(*index) : nullptr;
    context.countsAreTrue = driver.hostility.count == 0;
    return context;
}

std::string Operations::stateText(qint64 elapsedMs) const
{
    return simulated::stateText(cards, elapsedMs);
}

void Operations::catchUp(qint64 elapsedMs)
{
    const double simulatedMs = static_cast<double>(elapsedMs) * driver.timeScale;
    for (Card &each : cards)
        each.advanceTo(simulatedMs);
}

quint32 Operations::displayCount() const
{
    quint32 count = 0;
    for (const Card &each : cards)
        count += each.parameters.tcc ? 0 : each.parameters.displays;
    return count;
}

void Operations::writeText(char *buffer, const std::string &text) const
{
    if (driver.hostility.unterminatedTexts) {
        std::memset(buffer, 'X', kNvApiShortTextSize);
        std::memcpy(buffer, text.data(), std::min(text.size(), kNvApiShortTextSize));
        return;
    }
    std::memset(buffer, 0, kNvApiShortTextSize);
    std::memcpy(buffer, text.data(), std::min(text.size(), kNvApiShortTextSize - 1));
}

NvAPI_Status Operations::NvAPI_Initialize()
{
    return NVAPI_OK;
}

NvAPI_Status Operations::NvAPI_Unload()
{
    return NVAPI_OK;
}

NvAPI_Status Operations::NvAPI_GetErrorMessage(NvAPI_Status status, char *text)
{
    const auto *row = std::find_if(std::begin(kStatusTexts), std::end(kStatusTexts),
                                   [status](const StatusText &entry) { return entry.status == status; });
    writeText(text, row != std::end(kStatusTexts) ? row->text : "NVAPI_UNKNOWN_STATUS");
    return NVAPI_OK;
}

NvAPI_Status Operations::NvAPI_EnumNvidiaDisplayHandle(quint32 index, NvDisplayHandle *display)
{
    if (cards.empty())
        return NVAPI_NVIDIA_DEVICE_NOT_FOUND;
    if (index >= displayCount())
        return NVAPI_END_ENUMERATION;
    *display = displayHandle(index);
    return NVAPI_OK;
}

NvAPI_Status Operations::NvAPI_GetAssociatedDisplayOutputId(NvDisplayHandle display, quint32 *outputId)
{
    const quintptr index = displayOf(display);
    if (index >= displayCount())
        return NVAPI_INVALID_HANDLE;
    *outputId = 1u << (kFirstOutputBit + index % kOutputBits);
    return NVAPI_OK;
}

NvAPI_Status Operations::enumerate(bool tcc, NvPhysicalGpuHandle *gpus, quint32 *count)
{
    quint32 found = 0;
    for (std::size_t i = 0; i < cards.size(); ++i) {
        if (cards[i].parameters.tcc == tcc && !cards[i].lost)
            gpus[found++] = cardHandle(i);
    }
    *count = answeredCount<quint32>(found);
    return cards.empty() ? NVAPI_NVIDIA_DEVICE_NOT_FOUND : NVAPI_OK;
}

NvAPI_Status Operations::NvAPI_EnumPhysicalGPUs(NvPhysicalGpuHandle *gpus, quint32 *count)
{
    return enumerate(false, gpus, count);
}

NvAPI_Status Operations::NvAPI_EnumTCCPhysicalGPUs(NvPhysicalGpuHandle *gpus, quint32 *count)
{
    return enumerate(true, gpus, count);
}

NvAPI_Status Operations::NvAPI_SYS_GetDriverAndBranchVersion(quint32 *driverVersion, char *branch)
{
    *driverVersion = driver.version;
    writeText(branch, driver.branch);
    return NVAPI_OK;
}

NvAPI_Status Operations::NvAPI_SYS_GetChipSetInfo(NvApiChipsetInfo *record)
{
    const ChipsetParameters &chipset = driver.chipset;
    NvApiChipsetInfo answer{};
    answer.vendorId = chipset.vendorId;
    answer.deviceId = chipset.deviceId;
    writeText(answer.szVendorName, chipset.vendorName);
    writeText(answer.szChipsetName, chipset.chipsetName);
    answer.subSysVendorId = chipset.subSysVendorId;
    answer.subSysDeviceId = chipset.subSysDeviceId;
    writeText(answer.szSubSysVendorName, chipset.subSysVendorName);
    answer.hostBridgeVendorId = chipset.vendorId;
    answer.hostBridgeDeviceId = chipset.deviceId;
    answer.hostBridgeSubSysVendorId = chipset.subSysVendorId;
    answer.hostBridgeSubSysDeviceId = chipset.subSysDeviceId;
    writeAnswer(record, answer);
    return NVAPI_OK;
}

} // namespace simulated
