#include "simulated/CallArguments.h"

#include "simulated/Answers.h"
#include "simulated/Hex.h"
#include "simulated/ThermalStatusEntries.h"

#include <algorithm>

namespace simulated
{
namespace
{

using nlohmann::ordered_json;
using Pstates = NV_GPU_PERF_PSTATES20_INFO;

ordered_json voltages(const Pstates::Voltage *entries, std::size_t count)
{
    ordered_json list = ordered_json::array();
    for (std::size_t i = 0; i < count; ++i)
        list.push_back({{"domain", entries[i].domainId}, {"delta_uV", entries[i].voltDelta_uV.value}});
    return list;
}

ordered_json pstate(const Pstates &record, const Pstates::Pstate &entry)
{
    ordered_json clocks = ordered_json::array();
    for (std::size_t i = 0; i < std::min<std::size_t>(record.numClocks, std::size(entry.clocks)); ++i) {
        const Pstates::Clock &clock = entry.clocks[i];
        clocks.push_back({{"domain", clock.domainId}, {"delta_kHz", clock.freqDelta_kHz.value}});
    }
    const std::size_t count = std::min<std::size_t>(record.numBaseVoltages, std::size(entry.baseVoltages));
    return {{"id", entry.pstateId}, {"clocks", clocks}, {"voltages", voltages(entry.baseVoltages, count)}};
}

/// The bus transfer. What lies behind the pointers is shown as far as the sizes are sane.
ordered_json transfer(const NV_I2C_INFO &record)
{
    constexpr quint32 kMostShown = 256;
    ordered_json arguments = {
        {"address", hexWord(record.i2cDevAddress)},
        {"regSize", record.regAddrSize},
    };
    // One byte, whatever the size says: the registers of the board's devices are no longer, and a caller points to
    // one also where it sends none.
    if (record.pbI2cRegAddress)
        arguments["reg"] = hexBytes(record.pbI2cRegAddress, 1);
    arguments["size"] = record.cbSize;
    if (record.pbData && record.cbSize <= kMostShown)
        arguments["data"] = hexBytes(record.pbData, record.cbSize);
    arguments["displayMask"] = record.displayMask;
    arguments["ddc"] = record.bIsDDCPort;
    arguments["speed"] = hexWord(record.i2cSpeed);
    if (record.version != kI2cInfoVersion1)
        arguments["speedKhz"] = record.i2cSpeedKhz;
    if (record.version == kI2cInfoVersion3) {
        arguments["port"] = record.portId;
        arguments["portSet"] = record.bIsPortIdSet;
    }
    return arguments;
}

ordered_json transferEx(const NV_I2C_INFO &record, const quint32 *words)
{
    ordered_json arguments = transfer(record);
    arguments["words"] = {words[0], words[1]};
    return arguments;
}

} // namespace

ordered_json CallArguments<Operation::NvAPI_GetErrorMessage>::of(NvAPI_Status status, const char *)
{
    return {{"status", status}};
}

ordered_json CallArguments<Operation::NvAPI_EnumNvidiaDisplayHandle>::of(quint32 index, const NvDisplayHandle *)
{
    return {{"index", index}};
}

ordered_json CallArguments<Operation::NvAPI_GetAssociatedDisplayOutputId>::of(NvDisplayHandle display, const quint32 *)
{
    return {{"display", Answers::displayOf(display)}};
}

ordered_json CallArguments<Operation::NvAPI_GPU_GetAllClockFrequencies>::of(NvPhysicalGpuHandle,
                                                                            const NvApiClockFrequencies *record)
{
    return {{"clockType", record->clockType}};
}

ordered_json CallArguments<Operation::NvAPI_GPU_GetThermalSettings>::of(NvPhysicalGpuHandle, quint32 sensorIndex,
                                                                        const NvApiThermalSettings *)
{
    return {{"sensor", sensorIndex}};
}

ordered_json CallArguments<Operation::NvAPI_GPU_GetCoolerSettings>::of(NvPhysicalGpuHandle, quint32 coolerIndex,
                                                                       const NvApiCoolerSettings *)
{
    return {{"cooler", coolerIndex}};
}

ordered_json CallArguments<Operation::NvAPI_GPU_SetCoolerLevels>::of(NvPhysicalGpuHandle, quint32 coolerIndex,
                                                                     const NvApiCoolerLevels *record)
{
    const std::size_t size = nvApiRecordSize(record->version) - offsetof(NvApiCoolerLevels, levels);
    ordered_json levels = ordered_json::array();
    for (std::size_t i = 0; i < size / sizeof(NvApiCoolerLevels::Level); ++i) {
        const NvApiCoolerLevels::Level &entry = record->levels[i];
        if (i == 0 || entry.level != 0 || entry.policy != 0) // the first speaks; others only when they were set
            levels.push_back({{"index", i}, {"level", entry.level}, {"policy", entry.policy}});
    }
    return {{"cooler", coolerIndex}, {"levels", levels}};
}

ordered_json CallArguments<Operation::NvAPI_GPU_SetPstates20>::of(NvPhysicalGpuHandle, const Pstates *record)
{
    ordered_json pstates = ordered_json::array();
    for (std::size_t i = 0; i < std::min<std::size_t>(record->numPstates, std::size(record->pstates)); ++i)
        pstates.push_back(pstate(*record, record->pstates[i]));
    ordered_json arguments = {
        {"numPstates", record->numPstates},
        {"numClocks", record->numClocks},
        {"numBaseVoltages", record->numBaseVoltages},
        {"pstates", pstates},
    };
    if (record->version != kPstates20Version1) {
        const std::size_t count = std::min<std::size_t>(record->ov.numVoltages, std::size(record->ov.voltages));
        arguments["overVoltages"] = voltages(record->ov.voltages, count);
    }
    return arguments;
}

ordered_json CallArguments<Operation::NvAPI_DriverEntry_B23B70EE>::of(NvPhysicalGpuHandle, quint32 value)
{
    return {{"value", value}};
}

ordered_json
CallArguments<Operation::NvAPI_GPU_ClientPowerPoliciesSetStatus>::of(NvPhysicalGpuHandle,
                                                                     const NvApiPowerPoliciesStatus *record)
{
    ordered_json entries = ordered_json::array();
    for (std::size_t i = 0; i < std::min<std::size_t>(record->count, kPolicyEntries); ++i) {
        const NvApiPowerPoliciesStatus::Entry &entry = record->entries[i];
        entries.push_back({{"policyId", entry.policyId}, {"flags", entry.flags}, {"power", entry.power}});
    }
    return {{"count", record->count}, {"entries", entries}};
}

ordered_json
CallArguments<Operation::NvAPI_GPU_ClientThermalPoliciesSetStatus>::of(NvPhysicalGpuHandle,
                                                                       const NvApiThermalPoliciesStatus *record)
{
    const bool oldest = record->version == kThermalPoliciesStatusVersion1;
    ordered_json entries = ordered_json::array();
    for (std::size_t i = 0; i < std::min<std::size_t>(record->count, kPolicyEntries); ++i) {
        const NvApiThermalPoliciesStatus::Entry entry = thermalStatusEntry(*record, record->version, i);
        ordered_json described = {{"policyId", entry.policyId}, {"temperature", entry.temperature}};
        if (!oldest)
            described["flags"] = entry.flags;
        entries.push_back(described);
    }
    return {{"count", record->count}, {"entries", entries}};
}

ordered_json CallArguments<Operation::NvAPI_I2CRead>::of(NvPhysicalGpuHandle, const NV_I2C_INFO *record)
{
    return transfer(*record);
}

ordered_json CallArguments<Operation::NvAPI_I2CReadEx>::of(NvPhysicalGpuHandle, const NV_I2C_INFO *record,
                                                           const quint32 *twoZeroWords)
{
    return transferEx(*record, twoZeroWords);
}

ordered_json CallArguments<Operation::NvAPI_I2CWrite>::of(NvPhysicalGpuHandle, const NV_I2C_INFO *record)
{
    return transfer(*record);
}

ordered_json CallArguments<Operation::NvAPI_I2CWriteEx>::of(NvPhysicalGpuHandle, const NV_I2C_INFO *record,
                                                            const quint32 *twoZeroWords)
{
    return transferEx(*record, twoZeroWords);
}

} // namespace simulated
