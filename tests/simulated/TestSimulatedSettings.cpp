#include "DriverCalls.h"
#include "RecordBytes.h"
#include "TestScenes.h"

#include <QtTest>

#include <cstring>
#include <vector>

using namespace simulated;

class TestSimulatedSettings : public QObject
{
    Q_OBJECT

private slots:
    void coolerEntriesByVersion_data();
    void coolerEntriesByVersion();
    void coolerLevels_data();
    void coolerLevels();
    void coolerCallsWithoutTachometer();
    void pstatesByVersion_data();
    void pstatesByVersion();
    void pstateWrites_data();
    void pstateWrites();
    void refusedPstateWriteChangesNothing();
    void oldestPstateRecordHasNoOverVoltage();
    void restoreEntry();
};

void TestSimulatedSettings::coolerEntriesByVersion_data()
{
    QTest::addColumn<quint32>("version");
    QTest::addColumn<int>("entrySize");
    QTest::newRow("newest") << kCoolerSettingsVersion4 << 68;
    QTest::newRow("third") << kCoolerSettingsVersion3 << 64;
    QTest::newRow("second") << kCoolerSettingsVersion2 << 48;
    QTest::newRow("larger first") << kCoolerSettingsVersion1Large << 48;
    QTest::newRow("smaller first") << kCoolerSettingsVersion1Small << 48;
}

void TestSimulatedSettings::coolerEntriesByVersion()
{
    QFETCH(quint32, version);
    QFETCH(int, entrySize);
    const bool hasTachometer = entrySize > 48;
    CheckedDriver driver(twoCoolerScene());
    driver.edit(0, [](Card &card) {
        card.settings.coolers = {{kCoolerPolicyManual, 40}, {kCoolerPolicyManual, 70}};
    });
    driver.advance(20000);
    const DriverCalls calls = started(driver);
    std::vector<quint8> record(sizeof(NvApiCoolerSettings));
    std::memcpy(record.data(), &version, sizeof(version));
    QCOMPARE(calls.NvAPI_GPU_GetCoolerSettings(driver.handle(0), kAllCoolers,
                                               reinterpret_cast<NvApiCoolerSettings *>(record.data())),
             NVAPI_OK);
    QCOMPARE(valueAt<quint32>(record, 4), 2u);
    const qint32 levels[] = {40, 70};
    for (int i = 0; i < 2; ++i) {
        const auto entry = static_cast<std::size_t>(8 + i * entrySize);
        QCOMPARE(valueAt<qint32>(record, entry + 8), 20);
        QCOMPARE(valueAt<qint32>(record, entry + 12), 100);
        QCOMPARE(valueAt<qint32>(record, entry + 24), levels[i]);
        QCOMPARE(valueAt<qint32>(record, entry + 28), kCoolerPolicyDefault);
        QCOMPARE(valueAt<qint32>(record, entry + 32), kCoolerPolicyManual);
        if (hasTachometer) {
            QCOMPARE(valueAt<quint32>(record, entry + 48), quint32(1815)); // 55 percent of 3300
            QCOMPARE(valueAt<quint8>(record, entry + 52), quint8(1));
            QCOMPARE(valueAt<qint32>(record, entry + 56), 700);
            QCOMPARE(valueAt<qint32>(record, entry + 60), 3300);
        }
    }
}

void TestSimulatedSettings::coolerLevels_data()
{
    QTest::addColumn<quint32>("version");
    QTest::addColumn<quint32>("index");
    QTest::addColumn<qint32>("level");
    QTest::addColumn<qint32>("policy");
    QTest::addColumn<int>("status");
    QTest::addColumn<qint32>("policyAfter");
    QTest::addColumn<qint32>("levelAfter");
    const int bad = NVAPI_INVALID_ARGUMENT;
    const quint32 v1 = kCoolerLevelsVersion1;
    QTest::newRow("manual") << v1 << 7u << 55 << 1 << 0 << 1 << 55;
    QTest::newRow("manual, smaller record") << kCoolerLevelsVersion1Small << 7u << 55 << 1 << 0 << 1 << 55;
    QTest::newRow("one cooler") << v1 << 0u << 55 << 1 << 0 << 1 << 55;
    QTest::newRow("no policy sets the level alone") << v1 << 7u << 55 << 0 << 0 << 0x20 << 55;
    QTest::newRow("driver's control ignores the level") << v1 << 7u << -99 << 0x20 << 0 << 0x20 << 30;
    QTest::newRow("performance") << v1 << 7u << 0 << 2 << 0 << 2 << 30;
    QTest::newRow("discrete") << v1 << 7u << 0 << 4 << 0 << 4 << 30;
    QTest::newRow("continuous") << v1 << 7u << 0 << 8 << 0 << 8 << 30;
    QTest::newRow("unknown policy") << v1 << 7u << 55 << 3 << bad << 0x20 << 30;
    QTest::newRow("level beyond 100") << v1 << 7u << 101 << 1 << bad << 0x20 << 30;
    QTest::newRow("level below 0") << v1 << 7u << -1 << 1 << bad << 0x20 << 30;
    QTest::newRow("no such cooler") << v1 << 5u << 55 << 1 << bad << 0x20 << 30;
}

void TestSimulatedSettings::coolerLevels()
{
    QFETCH(quint32, version);
    QFETCH(quint32, index);
    QFETCH(qint32, level);
    QFETCH(qint32, policy);
    QFETCH(int, status);
    QFETCH(qint32, policyAfter);
    QFETCH(qint32, levelAfter);
    CheckedDriver driver(twoCoolerScene());
    driver.expectsWrongCalls();
    driver.edit(0, [](Card &card) { card.settings.coolers = {{0x20, 30}, {0x20, 30}}; });
    const DriverCalls calls = started(driver);
    NvApiCoolerLevels record{};
    record.version = version;
    record.levels[0] = {level, policy};
    QCOMPARE(calls.NvAPI_GPU_SetCoolerLevels(driver.handle(0), index, &record), status);
    const Card card = driver.card(0);
    QCOMPARE(card.settings.coolers[0].policy, policyAfter);
    QCOMPARE(card.settings.coolers[0].manualPercent, levelAfter);
    const bool second = index == kAllCoolers;
    QCOMPARE(card.settings.coolers[1].policy, second ? policyAfter : 0x20);
    QCOMPARE(card.settings.coolers[1].manualPercent, second ? levelAfter : 30);
}

void TestSimulatedSettings::coolerCallsWithoutTachometer()
{
    Scenario scenario = oneCardAtLoad(50);
    scenario.cards.front().fan.tachometer = false;
    CheckedDriver driver(scenario);
    const DriverCalls calls = started(driver);
    quint32 rpm = 77;
    QCOMPARE(calls.NvAPI_GPU_GetTachReading(driver.handle(0), &rpm), NVAPI_ERROR);
    QCOMPARE(rpm, 77u);
    NvApiCoolerSettings record{};
    record.version = kCoolerSettingsVersion4;
    QCOMPARE(calls.NvAPI_GPU_GetCoolerSettings(driver.handle(0), kAllCoolers, &record), NVAPI_OK);
    QCOMPARE(record.cooler[0].tachPresent, quint8(0));
    QCOMPARE(record.cooler[0].tachMaxRpm, 0);
}

void TestSimulatedSettings::pstatesByVersion_data()
{
    QTest::addColumn<quint32>("version");
    QTest::addColumn<bool>("memoryIsRange");
    QTest::newRow("newest") << kPstates20Version3 << true;
    QTest::newRow("second") << kPstates20Version2 << true;
    QTest::newRow("oldest") << kPstates20Version1 << true;
    QTest::newRow("single memory clock") << kPstates20Version3 << false;
}

void TestSimulatedSettings::pstatesByVersion()
{
    QFETCH(quint32, version);
    QFETCH(bool, memoryIsRange);
    Scenario scenario = oneCardAtLoad(50);
    scenario.cards.front().clocks.memoryIsRange = memoryIsRange;
    scenario.cards.front().clocks.pstateIds = {5, 0};
    CheckedDriver driver(scenario);
    driver.edit(0, [](Card &card) {
        card.settings.graphicsOffsetKHz = -50000;
        card.settings.memoryOffsetKHz = 100000;
        card.settings.voltageOffset_uV = 12500;
        card.settings.overVoltage_uV = 25000;
    });
    const DriverCalls calls = started(driver);
    NV_GPU_PERF_PSTATES20_INFO record{};
    record.version = version;
    QCOMPARE(calls.NvAPI_GPU_GetPstates20(driver.handle(0), &record), NVAPI_OK);
    QCOMPARE(record.numPstates, 2u);
    QCOMPARE(record.numClocks, 2u);
    QCOMPARE(record.numBaseVoltages, 1u);
    QCOMPARE(record.pstates[0].pstateId, 5u);
    QCOMPARE(record.pstates[0].clocks[0].bIsEditable, 0u);
    QCOMPARE(record.pstates[0].clocks[0].freqDelta_kHz.value, 0);

    const NV_GPU_PERF_PSTATES20_INFO::Pstate &top = record.pstates[1];
    QCOMPARE(top.pstateId, 0u);
    QCOMPARE(top.clocks[0].domainId, kClockDomainGraphics);
    QCOMPARE(top.clocks[0].bIsEditable, 1u);
    QCOMPARE(top.clocks[0].freqDelta_kHz.value, -50000);
    QCOMPARE(top.clocks[0].freqDelta_kHz.valueRange.min, -200000);
    QCOMPARE(top.clocks[0].freqDelta_kHz.valueRange.max, 1200000);
    QCOMPARE(top.clocks[0].data.range.maxFreq_kHz, 1633000u);
    QCOMPARE(top.clocks[1].domainId, kClockDomainMemory);
    QCOMPARE(top.clocks[1].typeId, memoryIsRange ? kPstateClockTypeRange : kPstateClockTypeSingle);
    QCOMPARE(top.clocks[1].freqDelta_kHz.value, 100000);
    QCOMPARE(memoryIsRange ? top.clocks[1].data.range.maxFreq_kHz : top.clocks[1].data.single.freq_kHz, 4104000u);
    QCOMPARE(top.baseVoltages[0].volt_uV, 1062500u);
    QCOMPARE(top.baseVoltages[0].voltDelta_uV.value, 12500);
    QCOMPARE(top.baseVoltages[0].voltDelta_uV.valueRange.max, 100000);
    const bool hasOver = version != kPstates20Version1;
    QCOMPARE(record.ov.numVoltages, hasOver ? 1u : 0u);
    QCOMPARE(record.ov.voltages[0].voltDelta_uV.value, hasOver ? 25000 : 0);
}

void TestSimulatedSettings::pstateWrites_data()
{
    QTest::addColumn<quint32>("pstateId");
    QTest::addColumn<quint32>("domain");
    QTest::addColumn<qint32>("delta");
    QTest::addColumn<bool>("voltage");
    QTest::addColumn<int>("status");
    const int bad = NVAPI_INVALID_ARGUMENT;
    QTest::newRow("graphics") << 0u << 0u << 150000 << false << 0;
    QTest::newRow("graphics, least") << 0u << 0u << -200000 << false << 0;
    QTest::newRow("graphics, most") << 0u << 0u << 1200000 << false << 0;
    QTest::newRow("graphics below its range") << 0u << 0u << -200001 << false << bad;
    QTest::newRow("graphics above its range") << 0u << 0u << 1200001 << false << bad;
    QTest::newRow("memory") << 0u << 4u << -300000 << false << 0;
    QTest::newRow("memory above its range") << 0u << 4u << 1000001 << false << bad;
    QTest::newRow("unknown clock domain") << 0u << 7u << 0 << false << bad;
    QTest::newRow("another P-state") << 5u << 0u << 1000 << false << bad;
    QTest::newRow("voltage") << 0u << 0u << 50000 << true << 0;
    QTest::newRow("voltage above its range") << 0u << 0u << 100001 << true << bad;
    QTest::newRow("voltage below its range") << 0u << 0u << -1 << true << bad;
    QTest::newRow("unknown voltage domain") << 0u << 1u << 0 << true << bad;
}

void TestSimulatedSettings::pstateWrites()
{
    QFETCH(quint32, pstateId);
    QFETCH(quint32, domain);
    QFETCH(qint32, delta);
    QFETCH(bool, voltage);
    QFETCH(int, status);
    CheckedDriver driver(oneCardAtLoad(50));
    driver.expectsWrongCalls();
    const DriverCalls calls = started(driver);
    NV_GPU_PERF_PSTATES20_INFO record{};
    record.version = kPstates20Version3;
    record.numPstates = 1;
    record.numClocks = voltage ? 0 : 1;
    record.numBaseVoltages = voltage ? 1 : 0;
    record.pstates[0].pstateId = pstateId;
    if (voltage) {
        record.pstates[0].baseVoltages[0].domainId = domain;
        record.pstates[0].baseVoltages[0].voltDelta_uV.value = delta;
    } else {
        record.pstates[0].clocks[0].domainId = domain;
        record.pstates[0].clocks[0].freqDelta_kHz.value = delta;
    }
    QCOMPARE(calls.NvAPI_GPU_SetPstates20(driver.handle(0), &record), status);
    const CardSettings settings = driver.card(0).settings;
    const qint32 kept = voltage                        ? settings.voltageOffset_uV
                        : domain == kClockDomainMemory ? settings.memoryOffsetKHz
                                                       : settings.graphicsOffsetKHz;
    QCOMPARE(kept, status == NVAPI_OK ? delta : 0);
    QCOMPARE(driver.callRecords().back().note.empty(), status == NVAPI_OK);
}

void TestSimulatedSettings::refusedPstateWriteChangesNothing()
{
    CheckedDriver driver(oneCardAtLoad(50));
    driver.expectsWrongCalls();
    const DriverCalls calls = started(driver);
    NV_GPU_PERF_PSTATES20_INFO record{};
    record.version = kPstates20Version3;
    record.numPstates = 1;
    record.numClocks = 2;
    record.pstates[0].clocks[0].freqDelta_kHz.value = 10000;
    record.pstates[0].clocks[1].domainId = kClockDomainMemory;
    record.pstates[0].clocks[1].freqDelta_kHz.value = 99999999;
    QCOMPARE(calls.NvAPI_GPU_SetPstates20(driver.handle(0), &record), NVAPI_INVALID_ARGUMENT);
    QCOMPARE(driver.card(0).settings.graphicsOffsetKHz, 0);
    record.numClocks = 9; // more than a P-state has
    QCOMPARE(calls.NvAPI_GPU_SetPstates20(driver.handle(0), &record), NVAPI_INVALID_ARGUMENT);
    record.numClocks = 0;
    record.ov.numVoltages = 5;
    QCOMPARE(calls.NvAPI_GPU_SetPstates20(driver.handle(0), &record), NVAPI_INVALID_ARGUMENT);
}

void TestSimulatedSettings::oldestPstateRecordHasNoOverVoltage()
{
    CheckedDriver driver(oneCardAtLoad(50));
    const DriverCalls calls = started(driver);
    NV_GPU_PERF_PSTATES20_INFO record{};
    record.ov.numVoltages = 1;
    record.ov.voltages[0].voltDelta_uV.value = 30000;
    record.version = kPstates20Version1;
    QCOMPARE(calls.NvAPI_GPU_SetPstates20(driver.handle(0), &record), NVAPI_OK);
    QCOMPARE(driver.card(0).settings.overVoltage_uV, 0);
    record.version = kPstates20Version2;
    QCOMPARE(calls.NvAPI_GPU_SetPstates20(driver.handle(0), &record), NVAPI_OK);
    QCOMPARE(driver.card(0).settings.overVoltage_uV, 30000);
}

void TestSimulatedSettings::restoreEntry()
{
    CheckedDriver driver(oneCardAtLoad(50));
    driver.expectsWrongCalls();
    const DriverCalls calls = started(driver);
    QCOMPARE(calls.NvAPI_DriverEntry_B23B70EE(driver.handle(0), 1), NVAPI_OK);
    QCOMPARE(driver.callRecords().back().arguments.at("value").get<int>(), 1);
    QCOMPARE(calls.NvAPI_DriverEntry_B23B70EE(driver.handle(0), 2), NVAPI_INVALID_ARGUMENT);
    QCOMPARE(calls.NvAPI_DriverEntry_B23B70EE(nullptr, 1), NVAPI_INVALID_HANDLE);
}

QTEST_APPLESS_MAIN(TestSimulatedSettings)
#include "TestSimulatedSettings.moc"
