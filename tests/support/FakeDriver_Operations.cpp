#include "support/FakeDriver.h"

#include <QByteArray>

#include <algorithm>
#include <cstring>

// One function for each operation of the driver: what it notes of the call and what it answers.

namespace
{

constexpr quintptr kFirstDisplayHandle = 0x100000;

/// The first `size` bytes of a record in its newest layout; older versions are plain prefixes.
QByteArray prefixImage(const void *content, quint32 version)
{
    return QByteArray(static_cast<const char *>(content), static_cast<int>(nvApiRecordSize(version)));
}

/// A record whose older version has shorter entries: the head of 8 bytes, then as many entries as fit.
QByteArray stridedImage(const void *content, quint32 version, std::size_t newestStride, std::size_t stride)
{
    constexpr std::size_t headSize = 8;
    const auto *bytes = static_cast<const char *>(content);
    const std::size_t size = nvApiRecordSize(version);
    QByteArray image(bytes, headSize);
    for (std::size_t entry = 0; headSize + (entry + 1) * stride <= size; ++entry)
        image.append(bytes + headSize + entry * newestStride, static_cast<int>(stride));
    return image;
}

std::size_t coolerStride(quint32 version)
{
    switch (version) {
    case kCoolerSettingsVersion4:
        return kCoolerEntrySize4;
    case kCoolerSettingsVersion3:
        return kCoolerEntrySize3;
    default:
        return kCoolerEntrySize2;
    }
}

} // namespace

NvAPI_Status FakeDriver::NvAPI_Initialize()
{
    return answer({"NvAPI_Initialize", {}}, [] {});
}

NvAPI_Status FakeDriver::NvAPI_Unload()
{
    return answer({"NvAPI_Unload", {}}, [] {});
}

NvAPI_Status FakeDriver::NvAPI_GetErrorMessage(NvAPI_Status status, char *text)
{
    return answerText({"NvAPI_GetErrorMessage", QStringLiteral("status=%1").arg(status)}, text,
                      [] { return std::string("what went wrong"); });
}

NvAPI_Status FakeDriver::NvAPI_EnumNvidiaDisplayHandle(quint32 index, NvDisplayHandle *display)
{
    Call call{"NvAPI_EnumNvidiaDisplayHandle", QStringLiteral("index=%1").arg(index)};
    call.ownStatus = index < displays ? NVAPI_OK : displayWalkEnd;
    return answer(call, [&] { *display = reinterpret_cast<NvDisplayHandle>(kFirstDisplayHandle + index); });
}

NvAPI_Status FakeDriver::NvAPI_GetAssociatedDisplayOutputId(NvDisplayHandle display, quint32 *outputId)
{
    const quintptr index = reinterpret_cast<quintptr>(display) - kFirstDisplayHandle;
    const bool known = index < displays;
    Call call{"NvAPI_GetAssociatedDisplayOutputId",
              known ? QStringLiteral("display%1").arg(index) : QStringLiteral("no display")};
    call.ownStatus = known ? NVAPI_OK : NVAPI_INVALID_HANDLE;
    return answerNumber(call, outputId, [] { return 0x100u; });
}

NvAPI_Status FakeDriver::NvAPI_EnumPhysicalGPUs(NvPhysicalGpuHandle *gpus, quint32 *count)
{
    return answerGpus({"NvAPI_EnumPhysicalGPUs", {}}, gpus, count, false);
}

NvAPI_Status FakeDriver::NvAPI_EnumTCCPhysicalGPUs(NvPhysicalGpuHandle *gpus, quint32 *count)
{
    return answerGpus({"NvAPI_EnumTCCPhysicalGPUs", {}}, gpus, count, true);
}

NvAPI_Status FakeDriver::NvAPI_SYS_GetDriverAndBranchVersion(quint32 *version, char *branch)
{
    return answer({"NvAPI_SYS_GetDriverAndBranchVersion", {}}, [&] {
        *version = driverVersion;
        std::memcpy(branch, "r385_00", sizeof "r385_00");
        tamperWith(version, sizeof *version);
        tamperWith(branch, kNvApiShortTextSize);
    });
}

NvAPI_Status FakeDriver::NvAPI_SYS_GetChipSetInfo(NvApiChipsetInfo *record)
{
    return answerRecord({"NvAPI_SYS_GetChipSetInfo", {}}, record,
                        [this](quint32 version) { return prefixImage(&chipset, version); });
}

NvAPI_Status FakeDriver::NvAPI_GPU_GetFullName(NvPhysicalGpuHandle gpu, char *name)
{
    return answerText({"NvAPI_GPU_GetFullName", {}, gpu, true}, name, [&] { return cardOf(gpu)->fullName; });
}

NvAPI_Status FakeDriver::NvAPI_GPU_GetPCIIdentifiers(NvPhysicalGpuHandle gpu, quint32 *deviceId, quint32 *subSystemId,
                                                     quint32 *revisionId, quint32 *extDeviceId)
{
    return answer({"NvAPI_GPU_GetPCIIdentifiers", {}, gpu, true}, [&] {
        const FakeCard *card = cardOf(gpu);
        *deviceId = card->deviceId;
        *subSystemId = card->subSystemId;
        *revisionId = card->revisionId;
        *extDeviceId = card->extDeviceId;
        for (quint32 *word : {deviceId, subSystemId, revisionId, extDeviceId})
            tamperWith(word, sizeof *word);
    });
}

NvAPI_Status FakeDriver::NvAPI_GPU_GetVbiosVersionString(NvPhysicalGpuHandle gpu, char *version)
{
    return answerText({"NvAPI_GPU_GetVbiosVersionString", {}, gpu, true}, version,
                      [&] { return cardOf(gpu)->vbiosVersion; });
}

NvAPI_Status FakeDriver::NvAPI_GPU_GetRamType(NvPhysicalGpuHandle gpu, quint32 *type)
{
    return answerNumber({"NvAPI_GPU_GetRamType", {}, gpu, true}, type, [&] { return cardOf(gpu)->ramType; });
}

NvAPI_Status FakeDriver::NvAPI_GPU_GetFBWidthAndLocation(NvPhysicalGpuHandle gpu, quint32 *widthBits,
                                                         quint32 *location)
{
    return answer({"NvAPI_GPU_GetFBWidthAndLocation", {}, gpu, true}, [&] {
        *widthBits = cardOf(gpu)->memoryWidthBits;
        *location = 1;
        tamperWith(widthBits, sizeof *widthBits);
    });
}

NvAPI_Status FakeDriver::NvAPI_GPU_GetMemoryInfo(NvPhysicalGpuHandle gpu, NvApiMemoryInfo *record)
{
    return answerRecord({"NvAPI_GPU_GetMemoryInfo", {}, gpu, true}, record,
                        [&](quint32 version) { return prefixImage(&cardOf(gpu)->memory, version); });
}

NvAPI_Status FakeDriver::NvAPI_GPU_GetAllClockFrequencies(NvPhysicalGpuHandle gpu, NvApiClockFrequencies *record)
{
    const quint32 type = record->clockType & kClockTypeMask;
    return answerRecord({"NvAPI_GPU_GetAllClockFrequencies", {}, gpu, true}, record, [&](quint32 version) {
        NvApiClockFrequencies content = cardOf(gpu)->clocks[std::min<std::size_t>(type, 2)];
        content.clockType = type;
        return prefixImage(&content, version);
    });
}

NvAPI_Status FakeDriver::NvAPI_GPU_GetDynamicPstatesInfoEx(NvPhysicalGpuHandle gpu, NvApiDynamicPstates *record)
{
    return answerRecord({"NvAPI_GPU_GetDynamicPstatesInfoEx", {}, gpu, true}, record,
                        [&](quint32 version) { return prefixImage(&cardOf(gpu)->utilization, version); });
}

NvAPI_Status FakeDriver::NvAPI_GPU_GetThermalSettings(NvPhysicalGpuHandle gpu, quint32 sensorIndex,
                                                      NvApiThermalSettings *record)
{
    return answerRecord({"NvAPI_GPU_GetThermalSettings", QStringLiteral("sensor=%1").arg(sensorIndex), gpu, true},
                        record, [&](quint32 version) { return prefixImage(&cardOf(gpu)->thermal, version); });
}

NvAPI_Status FakeDriver::NvAPI_GPU_GetCoolerSettings(NvPhysicalGpuHandle gpu, quint32 coolerIndex,
                                                     NvApiCoolerSettings *record)
{
    return answerRecord({"NvAPI_GPU_GetCoolerSettings", QStringLiteral("cooler=%1").arg(coolerIndex), gpu, true},
                        record, [&](quint32 version) {
                            return stridedImage(&cardOf(gpu)->coolers, version, kCoolerEntrySize4,
                                                coolerStride(version));
                        });
}

NvAPI_Status FakeDriver::NvAPI_GPU_SetCoolerLevels(NvPhysicalGpuHandle gpu, quint32 coolerIndex,
                                                   NvApiCoolerLevels *record)
{
    return answerRecord({"NvAPI_GPU_SetCoolerLevels", QStringLiteral("cooler=%1").arg(coolerIndex), gpu, true},
                        record, {});
}

NvAPI_Status FakeDriver::NvAPI_GPU_GetTachReading(NvPhysicalGpuHandle gpu, quint32 *rpm)
{
    return answerNumber({"NvAPI_GPU_GetTachReading", {}, gpu, true}, rpm, [&] { return cardOf(gpu)->tachRpm; });
}

NvAPI_Status FakeDriver::NvAPI_GPU_GetPstates20(NvPhysicalGpuHandle gpu, NV_GPU_PERF_PSTATES20_INFO *record)
{
    return answerRecord({"NvAPI_GPU_GetPstates20", {}, gpu, true}, record,
                        [&](quint32 version) { return prefixImage(&cardOf(gpu)->pstates, version); });
}

NvAPI_Status FakeDriver::NvAPI_GPU_SetPstates20(NvPhysicalGpuHandle gpu, NV_GPU_PERF_PSTATES20_INFO *record)
{
    return answerRecord({"NvAPI_GPU_SetPstates20", {}, gpu, true}, record, {});
}

NvAPI_Status FakeDriver::NvAPI_DriverEntry_B23B70EE(NvPhysicalGpuHandle gpu, quint32 value)
{
    return answer({"NvAPI_DriverEntry_B23B70EE", QStringLiteral("value=%1").arg(value), gpu, true}, [] {});
}

NvAPI_Status FakeDriver::NvAPI_GPU_ClientPowerTopologyGetInfo(NvPhysicalGpuHandle gpu, NvApiPowerTopologyInfo *record)
{
    return answerRecord({"NvAPI_GPU_ClientPowerTopologyGetInfo", {}, gpu, true}, record,
                        [&](quint32 version) { return prefixImage(&cardOf(gpu)->powerTopology, version); });
}

NvAPI_Status FakeDriver::NvAPI_GPU_ClientPowerTopologyGetStatus(NvPhysicalGpuHandle gpu,
                                                                NvApiPowerTopologyStatus *record)
{
    return answerRecord({"NvAPI_GPU_ClientPowerTopologyGetStatus", {}, gpu, true}, record,
                        [&](quint32 version) { return prefixImage(&cardOf(gpu)->powerTopologyStatus, version); });
}

NvAPI_Status FakeDriver::NvAPI_GPU_ClientPowerPoliciesGetInfo(NvPhysicalGpuHandle gpu, NvApiPowerPoliciesInfo *record)
{
    return answerRecord({"NvAPI_GPU_ClientPowerPoliciesGetInfo", {}, gpu, true}, record,
                        [&](quint32 version) { return prefixImage(&cardOf(gpu)->powerPolicies, version); });
}

NvAPI_Status FakeDriver::NvAPI_GPU_ClientPowerPoliciesGetStatus(NvPhysicalGpuHandle gpu,
                                                                NvApiPowerPoliciesStatus *record)
{
    return answerRecord({"NvAPI_GPU_ClientPowerPoliciesGetStatus", {}, gpu, true}, record,
                        [&](quint32 version) { return prefixImage(&cardOf(gpu)->powerStatus, version); });
}

NvAPI_Status FakeDriver::NvAPI_GPU_ClientPowerPoliciesSetStatus(NvPhysicalGpuHandle gpu,
                                                                NvApiPowerPoliciesStatus *record)
{
    return answerRecord({"NvAPI_GPU_ClientPowerPoliciesSetStatus", {}, gpu, true}, record, {});
}

NvAPI_Status FakeDriver::NvAPI_GPU_ClientThermalPoliciesGetInfo(NvPhysicalGpuHandle gpu,
                                                                NvApiThermalPoliciesInfo *record)
{
    constexpr std::size_t newest = sizeof(NvApiThermalPoliciesInfo::Entry);
    constexpr std::size_t older = 20;
    return answerRecord({"NvAPI_GPU_ClientThermalPoliciesGetInfo", {}, gpu, true}, record, [&](quint32 version) {
        return stridedImage(&cardOf(gpu)->thermalPolicies, version, newest,
                            version == kThermalPoliciesInfoVersion2 ? newest : older);
    });
}

NvAPI_Status FakeDriver::NvAPI_GPU_ClientThermalPoliciesGetStatus(NvPhysicalGpuHandle gpu,
                                                                  NvApiThermalPoliciesStatus *record)
{
    constexpr std::size_t newest = sizeof(NvApiThermalPoliciesStatus::Entry);
    constexpr std::size_t older = 8;
    return answerRecord({"NvAPI_GPU_ClientThermalPoliciesGetStatus", {}, gpu, true}, record, [&](quint32 version) {
        return stridedImage(&cardOf(gpu)->thermalStatus, version, newest,
                            version == kThermalPoliciesStatusVersion2 ? newest : older);
    });
}

NvAPI_Status FakeDriver::NvAPI_GPU_ClientThermalPoliciesSetStatus(NvPhysicalGpuHandle gpu,
                                                                  NvApiThermalPoliciesStatus *record)
{
    return answerRecord({"NvAPI_GPU_ClientThermalPoliciesSetStatus", {}, gpu, true}, record, {});
}

NvAPI_Status FakeDriver::NvAPI_I2CRead(NvPhysicalGpuHandle gpu, NV_I2C_INFO *record)
{
    return transferI2c({"NvAPI_I2CRead", {}, gpu}, record, nullptr, true);
}

NvAPI_Status FakeDriver::NvAPI_I2CReadEx(NvPhysicalGpuHandle gpu, NV_I2C_INFO *record, quint32 *twoZeroWords)
{
    return transferI2c({"NvAPI_I2CReadEx", {}, gpu}, record, twoZeroWords, true);
}

NvAPI_Status FakeDriver::NvAPI_I2CWrite(NvPhysicalGpuHandle gpu, NV_I2C_INFO *record)
{
    return transferI2c({"NvAPI_I2CWrite", {}, gpu}, record, nullptr, false);
}

NvAPI_Status FakeDriver::NvAPI_I2CWriteEx(NvPhysicalGpuHandle gpu, NV_I2C_INFO *record, quint32 *twoZeroWords)
{
    return transferI2c({"NvAPI_I2CWriteEx", {}, gpu}, record, twoZeroWords, false);
}
