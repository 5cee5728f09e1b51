#include "DriverCalls.h"
#include "RecordBytes.h"
#include "TestScenes.h"

#include <QtTest>

#include <cstring>
#include <vector>

using namespace simulated;

/// Power and temperature limits of the simulated cards.
class TestSimulatedLimits : public QObject
{
    Q_OBJECT

private slots:
    void powerLimit_data();
    void powerLimit();
    void powerDrawShowsInTopology();
    void powerAbsent();
    void thermalLimit_data();
    void thermalLimit();
    void thermalPoliciesByVersion_data();
    void thermalPoliciesByVersion();
};

void TestSimulatedLimits::powerLimit_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<quint32>("policyId");
    QTest::addColumn<quint32>("power");
    QTest::addColumn<int>("status");
    const int bad = NVAPI_INVALID_ARGUMENT;
    QTest::newRow("lower") << 1 << 2u << 70000u << 0;
    QTest::newRow("least") << 1 << 2u << 50000u << 0;
    QTest::newRow("most") << 1 << 2u << 120000u << 0;
    QTest::newRow("below the range") << 1 << 2u << 49999u << bad;
    QTest::newRow("above the range") << 1 << 2u << 120001u << bad;
    QTest::newRow("unknown policy") << 1 << 3u << 70000u << bad;
    QTest::newRow("no entry") << 0 << 2u << 70000u << bad;
    QTest::newRow("count beyond the record") << 5 << 2u << 70000u << bad;
}

void TestSimulatedLimits::powerLimit()
{
    QFETCH(int, count);
    QFETCH(quint32, policyId);
    QFETCH(quint32, power);
    QFETCH(int, status);
    CheckedDriver driver(oneCardAtLoad(50));
    driver.expectsWrongCalls();
    const DriverCalls calls = started(driver);
    NvApiPowerPoliciesStatus record{};
    record.version = kPowerPoliciesStatusVersion1;
    record.count = static_cast<quint8>(count);
    record.entries[0] = {policyId, 0, power, 0};
    QCOMPARE(calls.NvAPI_GPU_ClientPowerPoliciesSetStatus(driver.handle(0), &record), status);

    NvApiPowerPoliciesStatus read{};
    read.version = kPowerPoliciesStatusVersion1;
    read.count = 1;
    read.entries[0].policyId = 2;
    QCOMPARE(calls.NvAPI_GPU_ClientPowerPoliciesGetStatus(driver.handle(0), &read), NVAPI_OK);
    QCOMPARE(read.entries[0].power, status == NVAPI_OK ? power : 100000u);
}

void TestSimulatedLimits::powerDrawShowsInTopology()
{
    CheckedDriver driver(oneCardAtLoad(100));
    driver.expectsWrongCalls();
    const DriverCalls calls = started(driver);
    NvApiPowerTopologyInfo info{};
    info.version = kPowerTopologyInfoVersion1;
    QCOMPARE(calls.NvAPI_GPU_ClientPowerTopologyGetInfo(driver.handle(0), &info), NVAPI_OK);
    QCOMPARE(info.valid, quint8(1));
    QCOMPARE(info.count, quint8(2));
    NvApiPowerPoliciesInfo policies{};
    policies.version = kPowerPoliciesInfoVersion1;
    QCOMPARE(calls.NvAPI_GPU_ClientPowerPoliciesGetInfo(driver.handle(0), &policies), NVAPI_OK);
    QCOMPARE(policies.count, quint8(1));
    QCOMPARE(policies.entries[0].policyId, 2u);
    QCOMPARE(policies.entries[0].domainId, info.channelId[0]);
    QCOMPARE(policies.entries[0].minPower, 50000u);
    QCOMPARE(policies.entries[0].defaultPower, 100000u);
    QCOMPARE(policies.entries[0].maxPower, 120000u);

    NvApiPowerTopologyStatus status{};
    status.version = kPowerTopologyStatusVersion1;
    status.count = 2;
    status.entries[0].channelId = info.channelId[0];
    status.entries[1].channelId = info.channelId[1];
    QCOMPARE(calls.NvAPI_GPU_ClientPowerTopologyGetStatus(driver.handle(0), &status), NVAPI_OK);
    QCOMPARE(status.entries[0].power, 87778u); // 158 of 180 W
    QVERIFY(status.entries[1].power < status.entries[0].power);
    status.entries[1].channelId = 9;
    QCOMPARE(calls.NvAPI_GPU_ClientPowerTopologyGetStatus(driver.handle(0), &status), NVAPI_INVALID_ARGUMENT);
    status.count = 255;
    QCOMPARE(calls.NvAPI_GPU_ClientPowerTopologyGetStatus(driver.handle(0), &status), NVAPI_INVALID_ARGUMENT);
}

void TestSimulatedLimits::powerAbsent()
{
    Scenario scenario = oneCardAtLoad(0);
    scenario.cards.front().power.present = false;
    scenario.cards.front().thermal.policyPresent = false;
    CheckedDriver driver(scenario);
    const DriverCalls calls = started(driver);
    NvApiPowerTopologyInfo topology{};
    topology.version = kPowerTopologyInfoVersion1;
    QCOMPARE(calls.NvAPI_GPU_ClientPowerTopologyGetInfo(driver.handle(0), &topology), NVAPI_OK);
    QCOMPARE(topology.valid, quint8(0));
    NvApiPowerPoliciesInfo policies{};
    policies.version = kPowerPoliciesInfoVersion1;
    QCOMPARE(calls.NvAPI_GPU_ClientPowerPoliciesGetInfo(driver.handle(0), &policies), NVAPI_OK);
    QCOMPARE(policies.valid, quint8(0));
    NvApiThermalPoliciesInfo thermal{};
    thermal.version = kThermalPoliciesInfoVersion2;
    QCOMPARE(calls.NvAPI_GPU_ClientThermalPoliciesGetInfo(driver.handle(0), &thermal), NVAPI_OK);
    QCOMPARE(thermal.flags, quint8(0));
}

void TestSimulatedLimits::thermalLimit_data()
{
    QTest::addColumn<quint32>("version");
    QTest::addColumn<quint32>("policyId");
    QTest::addColumn<qint32>("temperature");
    QTest::addColumn<quint32>("flags");
    QTest::addColumn<int>("status");
    QTest::addColumn<bool>("priorityAfter");
    const int bad = NVAPI_INVALID_ARGUMENT;
    const quint32 v2 = kThermalPoliciesStatusVersion2;
    QTest::newRow("lower with priority") << v2 << 1u << 70 * 256 << 1u << 0 << true;
    QTest::newRow("lower without priority") << v2 << 1u << 70 * 256 << 0u << 0 << false;
    QTest::newRow("oldest record has no flags")
        << kThermalPoliciesStatusVersion1 << 1u << 70 * 256 << 1u << 0 << false;
    QTest::newRow("least") << v2 << 1u << 60 * 256 << 0u << 0 << false;
    QTest::newRow("most") << v2 << 1u << 92 * 256 << 0u << 0 << false;
    QTest::newRow("above the range") << v2 << 1u << 92 * 256 + 1 << 1u << bad << false;
    QTest::newRow("far above the range") << v2 << 1u << 92 * 256 * 256 << 1u << bad << false;
    QTest::newRow("below the range") << v2 << 1u << 60 * 256 - 1 << 1u << bad << false;
    QTest::newRow("unknown policy") << v2 << 2u << 70 * 256 << 1u << bad << false;
}

void TestSimulatedLimits::thermalLimit()
{
    QFETCH(quint32, version);
    QFETCH(quint32, policyId);
    QFETCH(qint32, temperature);
    QFETCH(quint32, flags);
    QFETCH(int, status);
    QFETCH(bool, priorityAfter);
    CheckedDriver driver(oneCardAtLoad(50));
    driver.expectsWrongCalls();
    const DriverCalls calls = started(driver);
    NvApiThermalPoliciesStatus record{};
    record.version = version;
    record.count = 1;
    record.entries[0] = {policyId, temperature, flags};
    QCOMPARE(calls.NvAPI_GPU_ClientThermalPoliciesSetStatus(driver.handle(0), &record), status);

    NvApiThermalPoliciesStatus read{};
    read.version = kThermalPoliciesStatusVersion2;
    read.count = 1;
    read.entries[0].policyId = 1;
    QCOMPARE(calls.NvAPI_GPU_ClientThermalPoliciesGetStatus(driver.handle(0), &read), NVAPI_OK);
    QCOMPARE(read.entries[0].temperature, status == NVAPI_OK ? temperature : 83 * 256);
    QCOMPARE((read.entries[0].flags & 1u) != 0, priorityAfter);
}

void TestSimulatedLimits::thermalPoliciesByVersion_data()
{
    QTest::addColumn<quint32>("infoVersion");
    QTest::addColumn<quint32>("statusVersion");
    QTest::addColumn<int>("statusEntrySize");
    QTest::newRow("newest") << kThermalPoliciesInfoVersion2 << kThermalPoliciesStatusVersion2 << 12;
    QTest::newRow("oldest") << kThermalPoliciesInfoVersion1 << kThermalPoliciesStatusVersion1 << 8;
}

void TestSimulatedLimits::thermalPoliciesByVersion()
{
    QFETCH(quint32, infoVersion);
    QFETCH(quint32, statusVersion);
    QFETCH(int, statusEntrySize);
    CheckedDriver driver(oneCardAtLoad(50));
    const DriverCalls calls = started(driver);
    NvApiThermalPoliciesInfo info{};
    info.version = infoVersion;
    QCOMPARE(calls.NvAPI_GPU_ClientThermalPoliciesGetInfo(driver.handle(0), &info), NVAPI_OK);
    QCOMPARE(info.flags, quint8(1));
    QCOMPARE(info.count, quint8(1));
    QCOMPARE(info.entries[0].policyId, 1u);
    QCOMPARE(info.entries[0].minTemp, 60 * 256);
    QCOMPARE(info.entries[0].defaultTemp, 83 * 256);
    QCOMPARE(info.entries[0].maxTemp, 92 * 256);

    // two requests of the same policy: the second lies one entry further
    std::vector<quint8> bytes(sizeof(NvApiThermalPoliciesStatus), 0);
    std::memcpy(bytes.data(), &statusVersion, sizeof(statusVersion));
    bytes[4] = 2;
    const auto second = static_cast<std::size_t>(8 + statusEntrySize);
    bytes[8] = 1;
    bytes[second] = 1;
    QCOMPARE(calls.NvAPI_GPU_ClientThermalPoliciesGetStatus(
                 driver.handle(0), reinterpret_cast<NvApiThermalPoliciesStatus *>(bytes.data())),
             NVAPI_OK);
    QCOMPARE(valueAt<qint32>(bytes, 12), 83 * 256);
    QCOMPARE(valueAt<qint32>(bytes, second + 4), 83 * 256);
}

QTEST_APPLESS_MAIN(TestSimulatedLimits)
#include "TestSimulatedLimits.moc"
