#include "simulated/CallRules.h"

#include "simulated/ThermalStatusEntries.h"

#include <algorithm>
#include <cstring>

namespace simulated
{
namespace
{

using Pstates = NV_GPU_PERF_PSTATES20_INFO;
using Bytes = std::vector<quint8>;

std::string text(const std::string &what, qint64 value)
{
    return what + ' ' + std::to_string(value);
}

/// The first text that says something.
template <class... Texts>
std::string firstOf(const Texts &...texts)
{
    std::string first;
    ((first = first.empty() ? texts : first), ...);
    return first;
}

std::string unless(bool inOrder, const std::string &fault)
{
    return inOrder ? std::string() : fault;
}

// ---- bus transfers ----

constexpr quint8 kPort = 1;
constexpr quint32 kSpeedByCode = 0xFFFF;
constexpr quint32 kSpeedCode = 6; // 400 kHz
constexpr quint8 kLedWriteAddress = 0xA0;
constexpr quint8 kLcdWriteAddress = 0xAC;

/// A transfer that a device of the board is addressed with.
struct Transfer
{
    bool reads;
    quint8 address;
    quint32 registerSize;
    quint32 smallest; ///< size of the data, bytes
    quint32 largest;
};

constexpr Transfer kTransfers[] = {
    // reads address register smallest largest
    {true, 0x9E, 1, 2, 2},
    {true, 0x90, 1, 2, 2},
    {true, 0x96, 1, 2, 2},
    {true, 0x92, 1, 2, 2},
    {true, 0xA1, 0, 27, 27},
    {false, kLedWriteAddress, 0, 5, 26},
    {false, kLcdWriteAddress, 0, 35, 35},
};

/// What the device itself would refuse in the bytes written, whether this card has it or not.
std::string frameFault(const NV_I2C_INFO &record)
{
    const Bytes bytes(record.pbData, record.pbData + record.cbSize);
    if (record.i2cDevAddress == kLedWriteAddress)
        return LedController::faultOf(bytes);
    return LcdController::faultOf(bytes);
}

std::string brokenTransfer(const NV_I2C_INFO &record, quint32 version, bool reads)
{
    if (record.displayMask != 0)
        return text("display mask", record.displayMask);
    if (record.bIsDDCPort != 0)
        return text("display data channel", record.bIsDDCPort);
    if (record.i2cSpeed != kSpeedByCode)
        return text("speed", record.i2cSpeed);
    if (version != kI2cInfoVersion1 && record.i2cSpeedKhz != kSpeedCode)
        return text("speed code", record.i2cSpeedKhz);
    if (version == kI2cInfoVersion3 && record.portId != kPort)
        return text("port", record.portId);
    if (version == kI2cInfoVersion3 && record.bIsPortIdSet != 1)
        return text("mark of the port", record.bIsPortIdSet);

    const auto *known = std::find_if(std::begin(kTransfers), std::end(kTransfers), [&](const Transfer &transfer) {
        return transfer.reads == reads && transfer.address == record.i2cDevAddress;
    });
    if (known == std::end(kTransfers))
        return text(reads ? "read from address" : "write to address", record.i2cDevAddress);
    if (record.regAddrSize != known->registerSize)
        return text("register address of bytes:", record.regAddrSize);
    if (!record.pbI2cRegAddress || *record.pbI2cRegAddress != 0)
        return "register other than 0";
    if (record.cbSize < known->smallest || record.cbSize > known->largest)
        return text("bytes to transfer:", record.cbSize);
    if (!record.pbData)
        return "no data";
    return reads ? std::string() : frameFault(record);
}

std::string brokenWords(const quint32 *words)
{
    return unless(words[0] == 0 && words[1] == 0, "words of the extended call");
}

// ---- orders ----

bool isCoolerPolicy(qint32 policy)
{
    constexpr qint32 known[] = {1, 2, 4, 8, 0x20};
    return std::find(std::begin(known), std::end(known), policy) != std::end(known);
}

/// 0 is every card's default, also where nothing can be changed.
std::string brokenOffset(qint32 value, const OffsetRange &range, const std::string &what)
{
    const bool inRange = range.editable && value >= range.minimum && value <= range.maximum;
    return unless(value == 0 || inRange, text(what + " out of range:", value));
}

std::string brokenClock(const Pstates::Clock &clock, const ClockParameters &clocks)
{
    if (clock.domainId == kClockDomainGraphics)
        return brokenOffset(clock.freqDelta_kHz.value, clocks.graphicsOffsetKHz, "graphics offset");
    if (clock.domainId == kClockDomainMemory)
        return brokenOffset(clock.freqDelta_kHz.value, clocks.memoryOffsetKHz, "memory offset");
    return text("unknown clock domain", clock.domainId);
}

std::string brokenVoltage(const Pstates::Voltage &voltage, const OffsetRange &range, const std::string &what)
{
    if (voltage.domainId != kVoltageDomainCore)
        return text("unknown voltage domain", voltage.domainId);
    return brokenOffset(voltage.voltDelta_uV.value, range, what);
}

/// The record with nothing in it but what a write sets.
Pstates reduced(const Pstates &record)
{
    Pstates kept{};
    kept.version = record.version;
    kept.numPstates = record.numPstates;
    kept.numClocks = record.numClocks;
    kept.numBaseVoltages = record.numBaseVoltages;
    kept.pstates[0].pstateId = record.pstates[0].pstateId;
    kept.pstates[0].clocks[0].domainId = record.pstates[0].clocks[0].domainId;
    kept.pstates[0].clocks[0].freqDelta_kHz.value = record.pstates[0].clocks[0].freqDelta_kHz.value;
    kept.pstates[0].baseVoltages[0].domainId = record.pstates[0].baseVoltages[0].domainId;
    kept.pstates[0].baseVoltages[0].voltDelta_uV.value = record.pstates[0].baseVoltages[0].voltDelta_uV.value;
    return kept;
}

/// Policies asked for: those of the card, and of a card that has some.
template <class PolicyAt>
std::string brokenQuestion(quint32 count, bool present, const CallContext &context, const PolicyAt &isKnown)
{
    if (!context.card)
        return {};
    if (!present)
        return "figures of a card without policies";
    if (count == 0 || count > kPolicyEntries)
        return text("count", count);
    for (quint32 i = 0; i < count && context.countsAreTrue; ++i) {
        if (!isKnown(i))
            return "unknown policy or channel";
    }
    return {};
}

} // namespace

std::string CallRule<Operation::NvAPI_GPU_GetAllClockFrequencies>::broken(NvPhysicalGpuHandle,
                                                                          const NvApiClockFrequencies *record) const
{
    return firstOf(unless((record->clockType & ~kClockTypeMask) == 0, "unknown flags of the clock type"),
                   unless((record->clockType & kClockTypeMask) <= kClockTypeBoost,
                          text("unknown clock type", record->clockType)));
}

std::string CallRule<Operation::NvAPI_GPU_GetThermalSettings>::broken(NvPhysicalGpuHandle, quint32 sensorIndex,
                                                                      const NvApiThermalSettings *record) const
{
    return firstOf(unless(sensorIndex == 0, text("unknown thermal sensor", sensorIndex)),
                   unless(record->count == kThermalSensorCount, text("count", record->count)));
}

std::string CallRule<Operation::NvAPI_GPU_GetCoolerSettings>::broken(NvPhysicalGpuHandle, quint32 coolerIndex,
                                                                     const NvApiCoolerSettings *) const
{
    return unless(coolerIndex == kAllCoolers, text("cooler", coolerIndex));
}

std::string CallRule<Operation::NvAPI_GPU_SetCoolerLevels>::broken(NvPhysicalGpuHandle, quint32 coolerIndex,
                                                                   const NvApiCoolerLevels *record) const
{
    if (coolerIndex != kAllCoolers)
        return text("cooler", coolerIndex);
    const NvApiCoolerLevels::Level &wanted = record->levels[0];
    if (!isCoolerPolicy(wanted.policy))
        return text("cooler policy", wanted.policy);
    if (context.card && context.countsAreTrue) {
        const FanParameters &fan = context.card->parameters.fan;
        // who hands the fan back names no level
        const bool handsBack = wanted.policy == kCoolerPolicyDefault && wanted.level == 0;
        if (!handsBack && (wanted.level < fan.minimumPercent || wanted.level > fan.maximumPercent))
            return text("cooler level out of range:", wanted.level);
    }
    const quint8 *bytes = reinterpret_cast<const quint8 *>(record);
    const bool others = std::any_of(bytes + sizeof(record->version) + sizeof wanted,
                                    bytes + nvApiRecordSize(context.version), [](quint8 byte) { return byte != 0; });
    return unless(!others, "levels behind the first");
}

std::string CallRule<Operation::NvAPI_GPU_SetPstates20>::broken(NvPhysicalGpuHandle, const Pstates *record) const
{
    const bool hasOverVoltages = context.version != kPstates20Version1;
    const quint32 overVoltages = hasOverVoltages ? record->ov.numVoltages : 0;
    if (record->numPstates > 1 || record->numClocks > 1 || record->numBaseVoltages > 1 || overVoltages > 1)
        return "more than one P-state, clock or voltage";
    if (record->pstates[0].pstateId != 0)
        return text("P-state", record->pstates[0].pstateId);
    Pstates kept = reduced(*record);
    if (hasOverVoltages) {
        kept.ov.numVoltages = overVoltages;
        kept.ov.voltages[0].domainId = record->ov.voltages[0].domainId;
        kept.ov.voltages[0].voltDelta_uV.value = record->ov.voltages[0].voltDelta_uV.value;
    }
    if (std::memcmp(&kept, record, nvApiRecordSize(context.version)) != 0)
        return "flags, types or ranges in a write";
    if (!context.card)
        return {};

    const CardParameters &card = context.card->parameters;
    std::string fault;
    if (record->numClocks == 1)
        fault = brokenClock(record->pstates[0].clocks[0], card.clocks);
    if (fault.empty() && record->numBaseVoltages == 1)
        fault = brokenVoltage(record->pstates[0].baseVoltages[0], card.voltage.offset_uV, "voltage offset");
    if (fault.empty() && overVoltages == 1)
        fault = brokenVoltage(record->ov.voltages[0], card.voltage.overVoltage_uV, "over-voltage");
    return fault;
}

std::string CallRule<Operation::NvAPI_DriverEntry_B23B70EE>::broken(NvPhysicalGpuHandle, quint32 value) const
{
    return unless(value == 1, text("value", value));
}

std::string
CallRule<Operation::NvAPI_GPU_ClientPowerTopologyGetStatus>::broken(NvPhysicalGpuHandle,
                                                                    const NvApiPowerTopologyStatus *record) const
{
    return brokenQuestion(record->count, context.card && context.card->parameters.power.present, context,
                          [&](quint32 i) {
                              const std::vector<quint32> &known = context.card->parameters.power.channelIds;
                              return std::count(known.begin(), known.end(), record->entries[i].channelId) > 0;
                          });
}

std::string
CallRule<Operation::NvAPI_GPU_ClientPowerPoliciesGetStatus>::broken(NvPhysicalGpuHandle,
                                                                    const NvApiPowerPoliciesStatus *record) const
{
    return brokenQuestion(
        record->count, context.card && context.card->parameters.power.present, context,
        [&](quint32 i) { return record->entries[i].policyId == context.card->parameters.power.policyId; });
}

std::string
CallRule<Operation::NvAPI_GPU_ClientPowerPoliciesSetStatus>::broken(NvPhysicalGpuHandle,
                                                                    const NvApiPowerPoliciesStatus *record) const
{
    const NvApiPowerPoliciesStatus::Entry &entry = record->entries[0];
    if (record->count != 1)
        return text("count", record->count);
    if (entry.flags != 0)
        return text("unknown flags", entry.flags);
    if (!context.card)
        return {};
    const PowerParameters &power = context.card->parameters.power;
    if (!power.present || entry.policyId != power.policyId)
        return unless(!context.countsAreTrue, text("unknown power policy", entry.policyId));
    return unless(entry.power >= power.minimum && entry.power <= power.maximum,
                  text("power limit out of range:", entry.power));
}

std::string
CallRule<Operation::NvAPI_GPU_ClientThermalPoliciesGetStatus>::broken(NvPhysicalGpuHandle,
                                                                      const NvApiThermalPoliciesStatus *record) const
{
    return brokenQuestion(record->count, context.card && context.card->parameters.thermal.policyPresent, context,
                          [&](quint32 i) {
                              return thermalStatusEntry(*record, context.version, i).policyId ==
                                     context.card->parameters.thermal.policyId;
                          });
}

std::string
CallRule<Operation::NvAPI_GPU_ClientThermalPoliciesSetStatus>::broken(NvPhysicalGpuHandle,
                                                                      const NvApiThermalPoliciesStatus *record) const
{
    if (record->count != 1)
        return text("count", record->count);
    const NvApiThermalPoliciesStatus::Entry entry = thermalStatusEntry(*record, context.version, 0);
    if ((entry.flags & ~1u) != 0)
        return text("unknown flags", entry.flags);
    if (!context.card)
        return {};
    const ThermalParameters &thermal = context.card->parameters.thermal;
    if (!thermal.policyPresent || entry.policyId != thermal.policyId)
        return unless(!context.countsAreTrue, text("unknown temperature policy", entry.policyId));
    return unless(entry.temperature >= thermal.minimumC * 256 && entry.temperature <= thermal.maximumC * 256,
                  text("temperature limit out of range:", entry.temperature));
}

std::string CallRule<Operation::NvAPI_I2CRead>::broken(NvPhysicalGpuHandle, const NV_I2C_INFO *record) const
{
    return brokenTransfer(*record, context.version, true);
}

std::string CallRule<Operation::NvAPI_I2CReadEx>::broken(NvPhysicalGpuHandle, const NV_I2C_INFO *record,
                                                         const quint32 *words) const
{
    return firstOf(brokenWords(words), brokenTransfer(*record, context.version, true));
}

std::string CallRule<Operation::NvAPI_I2CWrite>::broken(NvPhysicalGpuHandle, const NV_I2C_INFO *record) const
{
    return brokenTransfer(*record, context.version, false);
}

std::string CallRule<Operation::NvAPI_I2CWriteEx>::broken(NvPhysicalGpuHandle, const NV_I2C_INFO *record,
                                                          const quint32 *words) const
{
    return firstOf(brokenWords(words), brokenTransfer(*record, context.version, false));
}

} // namespace simulated
