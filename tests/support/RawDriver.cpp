#include "support/RawDriver.h"

#include "simulated/Answers.h"

#include <algorithm>
#include <cstring>

namespace
{

// Entries of older records are beginnings of the newest ones.
constexpr std::size_t kOldThermalInfoEntrySize = 20;
constexpr std::size_t kOldThermalStatusEntrySize = 8;

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

/// Every operation answered from the test's records.
class RawAnswers final : public simulated::Answers
{
public:
    explicit RawAnswers(RawMachine &testMachine) : machine(testMachine) {}

    [[nodiscard]] std::size_t cardCount() const override { return machine.cards.size(); }

    // clang-format off
#define OVRYN_RAW_OPERATION(identifier, name, parameters, arguments) NvAPI_Status name parameters override;
    OVRYN_NVAPI_OPERATIONS(OVRYN_RAW_OPERATION)
#undef OVRYN_RAW_OPERATION
    // clang-format on

private:
    [[nodiscard]] const RawCard &card() const
    {
        return machine.cards.at(call().card.value());
    }
    [[nodiscard]] quint32 version() const
    {
        return call().version.value();
    }

    void tamperWith(void *bytes, std::size_t size) const
    {
        if (machine.tamper)
            machine.tamper(static_cast<quint8 *>(bytes), size);
    }

    NvAPI_Status fillNumber(quint32 *number, quint32 value) const
    {
        *number = value;
        tamperWith(number, sizeof *number);
        return NVAPI_OK;
    }

    NvAPI_Status fillText(char *text, const std::string &value) const
    {
        std::memcpy(text, value.c_str(), std::min(value.size() + 1, kNvApiShortTextSize));
        tamperWith(text, kNvApiShortTextSize);
        return NVAPI_OK;
    }

    /// A record whose older versions are the beginning of the newest one.
    NvAPI_Status fillRecord(void *record, const void *content) const
    {
        const std::size_t size = nvApiRecordSize(version()) - sizeof(quint32);
        auto *bytes = static_cast<quint8 *>(record) + sizeof(quint32);
        std::memcpy(bytes, static_cast<const quint8 *>(content) + sizeof(quint32), size);
        tamperWith(bytes, size);
        return NVAPI_OK;
    }

    /// A record whose older versions have shorter entries: the head of 8 bytes, then as many entries as fit.
    NvAPI_Status fillEntries(void *record, const void *content, std::size_t newestStride, std::size_t stride) const
    {
        constexpr std::size_t headSize = 8;
        const std::size_t size = nvApiRecordSize(version());
        auto *bytes = static_cast<quint8 *>(record);
        const auto *from = static_cast<const quint8 *>(content);
        std::memcpy(bytes + sizeof(quint32), from + sizeof(quint32), headSize - sizeof(quint32));
        for (std::size_t entry = 0; headSize + (entry + 1) * stride <= size; ++entry)
            std::memcpy(bytes + headSize + entry * stride, from + headSize + entry * newestStride, stride);
        tamperWith(bytes + sizeof(quint32), size - sizeof(quint32));
        return NVAPI_OK;
    }

    NvAPI_Status enumerate(NvPhysicalGpuHandle *gpus, quint32 *count, bool tcc)
    {
        quint32 listed = 0;
        for (std::size_t index = 0; index < machine.cards.size() && listed < kNvApiMaxGpus; ++index) {
            if (machine.cards[index].tcc == tcc)
                gpus[listed++] = cardHandle(index);
        }
        *count = (tcc ? machine.tccGpuCountTold : machine.gpuCountTold).value_or(listed);
        return NVAPI_OK;
    }

    NvAPI_Status readBus(NV_I2C_INFO *record) const
    {
        if (!card().i2cReplies.contains(record->i2cDevAddress))
            return NVAPI_ERROR;
        const QByteArray reply = card().i2cReplies.value(record->i2cDevAddress);
        for (quint32 i = 0; i < record->cbSize; ++i)
            record->pbData[i] = i < quint32(reply.size()) ? quint8(reply[int(i)]) : quint8(0);
        tamperWith(record->pbData, record->cbSize);
        return NVAPI_OK;
    }

    NvAPI_Status writeBus(const NV_I2C_INFO *record) const
    {
        return card().i2cListeners.contains(record->i2cDevAddress) ? NVAPI_OK : NVAPI_ERROR;
    }

    RawMachine &machine;
};

NvAPI_Status RawAnswers::NvAPI_Initialize()
{
    return NVAPI_OK;
}

NvAPI_Status RawAnswers::NvAPI_Unload()
{
    return NVAPI_OK;
}

NvAPI_Status RawAnswers::NvAPI_GetErrorMessage(NvAPI_Status, char *text)
{
    return fillText(text, "what went wrong");
}

NvAPI_Status RawAnswers::NvAPI_EnumNvidiaDisplayHandle(quint32 index, NvDisplayHandle *display)
{
    if (index >= machine.displays)
        return machine.displayWalkEnd;
    *display = displayHandle(index);
    return NVAPI_OK;
}

NvAPI_Status RawAnswers::NvAPI_GetAssociatedDisplayOutputId(NvDisplayHandle display, quint32 *outputId)
{
    return displayOf(display) < machine.displays ? fillNumber(outputId, 0x100) : NVAPI_INVALID_HANDLE;
}

NvAPI_Status RawAnswers::NvAPI_EnumPhysicalGPUs(NvPhysicalGpuHandle *gpus, quint32 *count)
{
    return enumerate(gpus, count, false);
}

NvAPI_Status RawAnswers::NvAPI_EnumTCCPhysicalGPUs(NvPhysicalGpuHandle *gpus, quint32 *count)
{
    return enumerate(gpus, count, true);
}

NvAPI_Status RawAnswers::NvAPI_SYS_GetDriverAndBranchVersion(quint32 *driverVersion, char *branch)
{
    fillNumber(driverVersion, machine.driverVersion);
    return fillText(branch, "r385_00");
}

NvAPI_Status RawAnswers::NvAPI_SYS_GetChipSetInfo(NvApiChipsetInfo *record)
{
    return fillRecord(record, &machine.chipset);
}

NvAPI_Status RawAnswers::NvAPI_GPU_GetFullName(NvPhysicalGpuHandle, char *name)
{
    return fillText(name, card().fullName);
}

NvAPI_Status RawAnswers::NvAPI_GPU_GetPCIIdentifiers(NvPhysicalGpuHandle, quint32 *deviceId, quint32 *subSystemId,
                                                     quint32 *revisionId, quint32 *extDeviceId)
{
    fillNumber(deviceId, card().deviceId);
    fillNumber(subSystemId, card().subSystemId);
    fillNumber(revisionId, card().revisionId);
    return fillNumber(extDeviceId, card().extDeviceId);
}

NvAPI_Status RawAnswers::NvAPI_GPU_GetVbiosVersionString(NvPhysicalGpuHandle, char *text)
{
    return fillText(text, card().vbiosVersion);
}

NvAPI_Status RawAnswers::NvAPI_GPU_GetRamType(NvPhysicalGpuHandle, quint32 *type)
{
    return fillNumber(type, card().ramType);
}

NvAPI_Status RawAnswers::NvAPI_GPU_GetFBWidthAndLocation(NvPhysicalGpuHandle, quint32 *widthBits, quint32 *location)
{
    *location = 1;
    return fillNumber(widthBits, card().memoryWidthBits);
}

NvAPI_Status RawAnswers::NvAPI_GPU_GetMemoryInfo(NvPhysicalGpuHandle, NvApiMemoryInfo *record)
{
    return fillRecord(record, &card().memory);
}

NvAPI_Status RawAnswers::NvAPI_GPU_GetAllClockFrequencies(NvPhysicalGpuHandle, NvApiClockFrequencies *record)
{
    const quint32 type = record->clockType & kClockTypeMask;
    NvApiClockFrequencies content = card().clocks[std::min<std::size_t>(type, card().clocks.size() - 1)];
    content.clockType = type;
    return fillRecord(record, &content);
}

NvAPI_Status RawAnswers::NvAPI_GPU_GetDynamicPstatesInfoEx(NvPhysicalGpuHandle, NvApiDynamicPstates *record)
{
    return fillRecord(record, &card().utilization);
}

NvAPI_Status RawAnswers::NvAPI_GPU_GetThermalSettings(NvPhysicalGpuHandle, quint32, NvApiThermalSettings *record)
{
    return fillRecord(record, &card().thermal);
}

NvAPI_Status RawAnswers::NvAPI_GPU_GetCoolerSettings(NvPhysicalGpuHandle, quint32, NvApiCoolerSettings *record)
{
    return fillEntries(record, &card().coolers, kCoolerEntrySize4, coolerStride(version()));
}

NvAPI_Status RawAnswers::NvAPI_GPU_SetCoolerLevels(NvPhysicalGpuHandle, quint32, NvApiCoolerLevels *)
{
    return NVAPI_OK;
}

NvAPI_Status RawAnswers::NvAPI_GPU_GetTachReading(NvPhysicalGpuHandle, quint32 *rpm)
{
    return fillNumber(rpm, card().tachRpm);
}

NvAPI_Status RawAnswers::NvAPI_GPU_GetPstates20(NvPhysicalGpuHandle, NV_GPU_PERF_PSTATES20_INFO *record)
{
    return fillRecord(record, &card().pstates);
}

NvAPI_Status RawAnswers::NvAPI_GPU_SetPstates20(NvPhysicalGpuHandle, NV_GPU_PERF_PSTATES20_INFO *)
{
    return NVAPI_OK;
}

NvAPI_Status RawAnswers::NvAPI_DriverEntry_B23B70EE(NvPhysicalGpuHandle, quint32)
{
    return NVAPI_OK;
}

NvAPI_Status RawAnswers::NvAPI_GPU_ClientPowerTopologyGetInfo(NvPhysicalGpuHandle, NvApiPowerTopologyInfo *record)
{
    return fillRecord(record, &card().powerTopology);
}

NvAPI_Status RawAnswers::NvAPI_GPU_ClientPowerTopologyGetStatus(NvPhysicalGpuHandle, NvApiPowerTopologyStatus *record)
{
    return fillRecord(record, &card().powerTopologyStatus);
}

NvAPI_Status RawAnswers::NvAPI_GPU_ClientPowerPoliciesGetInfo(NvPhysicalGpuHandle, NvApiPowerPoliciesInfo *record)
{
    return fillRecord(record, &card().powerPolicies);
}

NvAPI_Status RawAnswers::NvAPI_GPU_ClientPowerPoliciesGetStatus(NvPhysicalGpuHandle, NvApiPowerPoliciesStatus *record)
{
    return fillRecord(record, &card().powerStatus);
}

NvAPI_Status RawAnswers::NvAPI_GPU_ClientPowerPoliciesSetStatus(NvPhysicalGpuHandle, NvApiPowerPoliciesStatus *)
{
    return NVAPI_OK;
}

NvAPI_Status RawAnswers::NvAPI_GPU_ClientThermalPoliciesGetInfo(NvPhysicalGpuHandle, NvApiThermalPoliciesInfo *record)
{
    constexpr std::size_t newest = sizeof(NvApiThermalPoliciesInfo::Entry);
    return fillEntries(record, &card().thermalPolicies, newest,
                       version() == kThermalPoliciesInfoVersion2 ? newest : kOldThermalInfoEntrySize);
}

NvAPI_Status RawAnswers::NvAPI_GPU_ClientThermalPoliciesGetStatus(NvPhysicalGpuHandle,
                                                                  NvApiThermalPoliciesStatus *record)
{
    constexpr std::size_t newest = sizeof(NvApiThermalPoliciesStatus::Entry);
    return fillEntries(record, &card().thermalStatus, newest,
                       version() == kThermalPoliciesStatusVersion2 ? newest : kOldThermalStatusEntrySize);
}

NvAPI_Status RawAnswers::NvAPI_GPU_ClientThermalPoliciesSetStatus(NvPhysicalGpuHandle, NvApiThermalPoliciesStatus *)
{
    return NVAPI_OK;
}

NvAPI_Status RawAnswers::NvAPI_I2CRead(NvPhysicalGpuHandle, NV_I2C_INFO *record)
{
    return readBus(record);
}

NvAPI_Status RawAnswers::NvAPI_I2CReadEx(NvPhysicalGpuHandle, NV_I2C_INFO *record, quint32 *)
{
    return readBus(record);
}

NvAPI_Status RawAnswers::NvAPI_I2CWrite(NvPhysicalGpuHandle, NV_I2C_INFO *record)
{
    return writeBus(record);
}

NvAPI_Status RawAnswers::NvAPI_I2CWriteEx(NvPhysicalGpuHandle, NV_I2C_INFO *record, quint32 *)
{
    return writeBus(record);
}

} // namespace

RawDriver::RawDriver(I2cRecordSize i2cRecordSize)
    : StandInDriver({}, std::make_shared<RawAnswers>(static_cast<RawMachine &>(*this)),
                    {simulated::SimulatedClock::Manual, {}, {}, {}, {}},
                    i2cRecordSize == I2cRecordSize::OfThisProcess)
{
    chipset.vendorId = 0x1234;
    std::strcpy(chipset.szVendorName, "Chipset maker");
    if (i2cRecordSize == I2cRecordSize::OfVersionTable)
        return;
    for (const Operation operation : {Operation::NvAPI_I2CRead, Operation::NvAPI_I2CReadEx, Operation::NvAPI_I2CWrite,
                                      Operation::NvAPI_I2CWriteEx})
        knows(operation,
              {quint32(0x30000 | kI2cInfoSize3), quint32(0x20000 | kI2cInfoSize2), quint32(0x10000 | kI2cInfoSize1)});
}

void RawDriver::edit(std::size_t index, const std::function<void(RawCard &)> &change)
{
    whileNoCall([&] { change(card(index)); });
}
