#include "support/RawCard.h"

namespace
{

constexpr quint32 kFrequenciesKHz[3][3] = {
    // graphics, memory, processor
    {1721500, 4006800, 1569500}, // current
    {1607000, 4006000, 1450000}, // base
    {1683000, 4006000, 1500000}, // boost
};

NvApiClockFrequencies clockFrequencies(const quint32 (&kHz)[3])
{
    NvApiClockFrequencies record{};
    record.domain[kClockDomainGraphics] = {1, kHz[0]};
    record.domain[kClockDomainMemory] = {1, kHz[1]};
    record.domain[kClockDomainProcessor] = {1, kHz[2]};
    return record;
}

NV_GPU_PERF_PSTATES20_INFO::Clock rangeClock(quint32 domainId, quint32 minKHz, quint32 maxKHz,
                                             NvApiPstateDelta deltaKHz)
{
    NV_GPU_PERF_PSTATES20_INFO::Clock clock{};
    clock.domainId = domainId;
    clock.typeId = kPstateClockTypeRange;
    clock.bIsEditable = 1;
    clock.freqDelta_kHz = deltaKHz;
    clock.data.range.minFreq_kHz = minKHz;
    clock.data.range.maxFreq_kHz = maxKHz;
    return clock;
}

} // namespace

RawCard::RawCard()
{
    memory.dedicatedVideoMemory = 8388608;
    memory.availableDedicatedVideoMemory = 8126464;
    memory.curAvailableDedicatedVideoMemory = 6291456;

    for (std::size_t type = 0; type < clocks.size(); ++type)
        clocks[type] = clockFrequencies(kFrequenciesKHz[type]);

    constexpr quint32 percentages[] = {41, 23, 7, 3};
    for (std::size_t domain = 0; domain < std::size(percentages); ++domain)
        utilization.utilization[domain] = {1, percentages[domain]};

    thermal.count = 1;
    thermal.sensor[0] = {0, 0, 94, 52, kThermalTargetGpu};

    pstates.numPstates = 2;
    pstates.numClocks = 2;
    pstates.numBaseVoltages = 1;
    p0Clock(0) = rangeClock(kClockDomainGraphics, 139000, 1911000, {0, {-200000, 1000000}});
    p0Clock(1) = rangeClock(kClockDomainMemory, 405000, 4006000, {0, {-502000, 1000000}});
    p0Voltage(0) = {kVoltageDomainCore, 1, 1062500, {0, {-100000, 100000}}};
    pstates.pstates[1].pstateId = 8;

    coolers.count = 1;
    NvApiCoolerSettings::Cooler &fan = coolers.cooler[0];
    fan.defaultMin = 27;
    fan.defaultMax = 100;
    fan.currentMin = 27;
    fan.currentMax = 100;
    fan.currentLevel = 33;
    fan.defaultPolicy = kCoolerPolicyContinuousTemperature;
    fan.currentPolicy = kCoolerPolicyManual;
    fan.active = 1;
    fan.tachSpeedRpm = tachRpm;
    fan.tachPresent = 1;
    fan.tachMinRpm = 300;
    fan.tachMaxRpm = 3400;

    powerTopology.valid = 1;
    powerTopology.count = 1;
    powerTopology.channelId[0] = 1;
    powerTopologyStatus.count = 1;
    powerTopologyStatus.entries[0].channelId = 1;
    powerTopologyStatus.entries[0].power = 45000;

    powerPolicies.valid = 1;
    powerPolicies.count = 1;
    powerPolicies.entries[0].policyId = 2;
    powerPolicies.entries[0].domainId = 1;
    powerPolicies.entries[0].minPower = 50000;
    powerPolicies.entries[0].defaultPower = 100000;
    powerPolicies.entries[0].maxPower = 120000;
    powerStatus.count = 1;
    powerStatus.entries[0].policyId = 2;
    powerStatus.entries[0].power = 110000;

    thermalPolicies.flags = 1;
    thermalPolicies.count = 1;
    thermalPolicies.entries[0].policyId = 3;
    thermalPolicies.entries[0].minTemp = 60 * 256;
    thermalPolicies.entries[0].defaultTemp = 83 * 256;
    thermalPolicies.entries[0].maxTemp = 90 * 256;
    thermalStatus.count = 1;
    thermalStatus.entries[0].policyId = 3;
    thermalStatus.entries[0].temperature = 80 * 256;

    i2cReplies[0x9E] = QByteArray::fromHex("1900");                   // 25 degrees
    i2cReplies[0x90] = QByteArray::fromHex("2A80");                   // 42.5 degrees
    i2cReplies[0x96] = QByteArray::fromHex("1E00");                   // 30 degrees
    i2cReplies[0x92] = QByteArray::fromHex("E700");                   // -25 degrees
    i2cReplies[0xA1] = QByteArray::fromHex("03020132040A0B0C0D0E0F"); // two colours
    i2cListeners = {0xA0, 0xAC};
}
