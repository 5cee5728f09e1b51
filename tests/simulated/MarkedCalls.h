#pragma once

#include "DriverCalls.h"
#include "TestScenes.h"
#include "Transfer.h"

#include <functional>

/// Calls of which a test says what is wrong with them: in order without arguments of that kind.
using Act = std::function<void(const DriverCalls &calls, NvPhysicalGpuHandle gpu)>;
Q_DECLARE_METATYPE(Act)

template <class Record>
Record ofVersion(quint32 version)
{
    Record record{};
    record.version = version;
    return record;
}

/// One transfer in order but for what `change` does to it; reads the first sensor, or probes the LED controller.
inline Act reading(const std::function<void(NV_I2C_INFO &)> &change, quint32 version = kI2cInfoVersion3)
{
    return [=](const DriverCalls &calls, NvPhysicalGpuHandle gpu) {
        Transfer transfer(0x9E, 1, {0, 0}, version);
        change(transfer.record);
        calls.NvAPI_I2CRead(gpu, &transfer.record);
    };
}

inline Act writing(const std::function<void(Transfer &)> &change)
{
    return [=](const DriverCalls &calls, NvPhysicalGpuHandle gpu) {
        Transfer transfer(0xA0, 0, {0x05, 0x0A, 0x00, 0x00, 0xF0});
        change(transfer);
        calls.NvAPI_I2CWrite(gpu, &transfer.record);
    };
}

inline Act extended(quint32 first, quint32 second)
{
    return [=](const DriverCalls &calls, NvPhysicalGpuHandle gpu) {
        quint32 words[] = {first, second};
        Transfer read(0x9E, 1, {0, 0});
        calls.NvAPI_I2CReadEx(gpu, &read.record, words);
    };
}

inline Act extendedWrite(quint32 first, quint32 second)
{
    return [=](const DriverCalls &calls, NvPhysicalGpuHandle gpu) {
        quint32 words[] = {first, second};
        Transfer write(0xA0, 0, {0x05, 0x0A, 0x00, 0x00, 0xF0});
        calls.NvAPI_I2CWriteEx(gpu, &write.record, words);
    };
}

inline Act cooling(qint32 level, qint32 policy, quint32 cooler = kAllCoolers, quint32 version = kCoolerLevelsVersion1)
{
    return [=](const DriverCalls &calls, NvPhysicalGpuHandle gpu) {
        auto record = ofVersion<NvApiCoolerLevels>(version);
        record.levels[0] = {level, policy};
        calls.NvAPI_GPU_SetCoolerLevels(gpu, cooler, &record);
    };
}

/// A write of one clock offset of 0 but for what `change` does to it.
inline Act pstates(const std::function<void(NV_GPU_PERF_PSTATES20_INFO &)> &change,
                   quint32 version = kPstates20Version3)
{
    return [=](const DriverCalls &calls, NvPhysicalGpuHandle gpu) {
        auto record = ofVersion<NV_GPU_PERF_PSTATES20_INFO>(version);
        record.numPstates = 1;
        record.numClocks = 1;
        change(record);
        calls.NvAPI_GPU_SetPstates20(gpu, &record);
    };
}

inline Act power(quint8 count, const NvApiPowerPoliciesStatus::Entry &entry)
{
    return [=](const DriverCalls &calls, NvPhysicalGpuHandle gpu) {
        auto record = ofVersion<NvApiPowerPoliciesStatus>(kPowerPoliciesStatusVersion1);
        record.count = count;
        record.entries[0] = entry;
        calls.NvAPI_GPU_ClientPowerPoliciesSetStatus(gpu, &record);
    };
}

inline Act temperature(quint8 count, const NvApiThermalPoliciesStatus::Entry &entry)
{
    return [=](const DriverCalls &calls, NvPhysicalGpuHandle gpu) {
        auto record = ofVersion<NvApiThermalPoliciesStatus>(kThermalPoliciesStatusVersion2);
        record.count = count;
        record.entries[0] = entry;
        calls.NvAPI_GPU_ClientThermalPoliciesSetStatus(gpu, &record);
    };
}

inline Act topologyFigures(quint8 count, quint32 channel)
{
    return [=](const DriverCalls &calls, NvPhysicalGpuHandle gpu) {
        auto record = ofVersion<NvApiPowerTopologyStatus>(kPowerTopologyStatusVersion1);
        record.count = count;
        record.entries[0].channelId = channel;
        calls.NvAPI_GPU_ClientPowerTopologyGetStatus(gpu, &record);
    };
}

inline Act powerFigures(quint8 count, quint32 policy)
{
    return [=](const DriverCalls &calls, NvPhysicalGpuHandle gpu) {
        auto record = ofVersion<NvApiPowerPoliciesStatus>(kPowerPoliciesStatusVersion1);
        record.count = count;
        record.entries[0].policyId = policy;
        calls.NvAPI_GPU_ClientPowerPoliciesGetStatus(gpu, &record);
    };
}

inline Act thermalFigures(quint8 count, quint32 policy)
{
    return [=](const DriverCalls &calls, NvPhysicalGpuHandle gpu) {
        auto record = ofVersion<NvApiThermalPoliciesStatus>(kThermalPoliciesStatusVersion1);
        record.count = count;
        record.entries[0].policyId = policy;
        calls.NvAPI_GPU_ClientThermalPoliciesGetStatus(gpu, &record);
    };
}

inline Act sensors(quint32 sensor, quint32 count)
{
    return [=](const DriverCalls &calls, NvPhysicalGpuHandle gpu) {
        auto record = ofVersion<NvApiThermalSettings>(kThermalSettingsVersion1);
        record.count = count;
        calls.NvAPI_GPU_GetThermalSettings(gpu, sensor, &record);
    };
}

inline Act clocks(quint32 type)
{
    return [=](const DriverCalls &calls, NvPhysicalGpuHandle gpu) {
        auto record = ofVersion<NvApiClockFrequencies>(kClockFrequenciesVersion1);
        record.clockType = type;
        calls.NvAPI_GPU_GetAllClockFrequencies(gpu, &record);
    };
}

/// A card with both policies, two channels, and ranges that no two things share.
inline simulated::Scenario knownCard()
{
    simulated::Scenario scenario = oneBoardCard();
    simulated::CardParameters &card = scenario.cards.front();
    card.fan.minimumPercent = 27;
    card.fan.maximumPercent = 90;
    card.power.channelIds = {5, 6};
    card.power.policyId = 2;
    card.power.minimum = 50000;
    card.power.maximum = 120000;
    card.thermal.policyId = 3;
    card.thermal.minimumC = 60;
    card.thermal.maximumC = 92;
    card.clocks.graphicsOffsetKHz = {true, -200000, 300000};
    card.clocks.memoryOffsetKHz = {true, -400000, 500000};
    card.voltage.offset_uV = {true, -60000, 70000};
    card.voltage.overVoltage_uV = {true, 0, 25000};
    return scenario;
}
