#include "DriverCalls.h"
#include "TestScenes.h"

#include <QtTest>

#include <cstring>

using namespace simulated;

class TestSimulatedFaults : public QObject
{
    Q_OBJECT

private slots:
    void faults_data();
    void faults();
    void faultOfOneCard();
    void delay();
    void hostileCounts();
    void unterminatedTexts();
};

void TestSimulatedFaults::faults_data()
{
    QTest::addColumn<quint64>("from");
    QTest::addColumn<quint64>("count");
    QTest::addColumn<quint64>("every");
    QTest::addColumn<bool>("everyOperation");
    QTest::addColumn<QString>("fates"); // of ten calls: . good, x failed
    QTest::newRow("from the start for ever") << quint64(1) << quint64(0) << quint64(0) << false << "xxxxxxxxxx";
    QTest::newRow("from the third for ever") << quint64(3) << quint64(0) << quint64(0) << false << "..xxxxxxxx";
    QTest::newRow("two calls") << quint64(3) << quint64(2) << quint64(0) << false << "..xx......";
    QTest::newRow("now and then") << quint64(2) << quint64(1) << quint64(4) << false << ".x...x...x";
    QTest::newRow("any operation counts") << quint64(3) << quint64(2) << quint64(0) << true << ".x........";
}

void TestSimulatedFaults::faults()
{
    QFETCH(quint64, from);
    QFETCH(quint64, count);
    QFETCH(quint64, every);
    QFETCH(bool, everyOperation);
    QFETCH(QString, fates);
    CheckedDriver driver(oneCardAtLoad(50));
    Fault fault;
    if (!everyOperation)
        fault.operation = Operation::NvAPI_GPU_GetRamType;
    fault.status = -104;
    fault.from = from;
    fault.count = count;
    fault.every = every;
    driver.addFault(fault);
    const DriverCalls calls = started(driver);
    QString seen;
    for (int i = 0; i < fates.size(); ++i) {
        quint32 type = 99;
        const NvAPI_Status status = calls.NvAPI_GPU_GetRamType(driver.handle(0), &type);
        QCOMPARE(type, status == NVAPI_OK ? 8u : 99u);
        seen += status == NVAPI_OK ? '.' : 'x';
        if (status != NVAPI_OK)
            QCOMPARE(status, -104);
        quint32 rpm = 0;
        const NvAPI_Status other = calls.NvAPI_GPU_GetTachReading(driver.handle(0), &rpm);
        if (!everyOperation)
            QCOMPARE(other, NVAPI_OK);
    }
    QCOMPARE(seen, fates);
    driver.clearFaults();
    quint32 type = 0;
    QCOMPARE(calls.NvAPI_GPU_GetRamType(driver.handle(0), &type), NVAPI_OK);
}

void TestSimulatedFaults::faultOfOneCard()
{
    Scenario scenario = oneCardAtLoad(50);
    scenario.cards.push_back(scenario.cards.front());
    Fault fault;
    fault.operation = Operation::NvAPI_GPU_GetRamType;
    fault.card = 1;
    fault.status = NVAPI_ERROR;
    scenario.faults.push_back(fault);
    CheckedDriver driver(scenario);
    const DriverCalls calls = started(driver);
    quint32 type = 0;
    QCOMPARE(calls.NvAPI_GPU_GetRamType(driver.handle(0), &type), NVAPI_OK);
    QCOMPARE(calls.NvAPI_GPU_GetRamType(driver.handle(1), &type), NVAPI_ERROR);
}

void TestSimulatedFaults::delay()
{
    CheckedDriver driver(oneCardAtLoad(50));
    Fault fault;
    fault.operation = Operation::NvAPI_GPU_GetRamType;
    fault.delayMs = 60;
    driver.addFault(fault);
    const DriverCalls calls = started(driver);
    QElapsedTimer timer;
    timer.start();
    quint32 type = 0;
    QCOMPARE(calls.NvAPI_GPU_GetRamType(driver.handle(0), &type), NVAPI_OK);
    QVERIFY(timer.elapsed() >= 60);
    QCOMPARE(type, 8u);
}

void TestSimulatedFaults::hostileCounts()
{
    CheckedDriver driver(twoCoolerScene());
    driver.setHostility({0xFFFFFFFF, false});
    const DriverCalls calls = started(driver);
    void *const gpu = driver.handle(0);
    NvPhysicalGpuHandle gpus[kNvApiMaxGpus] = {};
    quint32 count = 0;
    QCOMPARE(calls.NvAPI_EnumPhysicalGPUs(gpus, &count), NVAPI_OK);
    QCOMPARE(count, 0xFFFFFFFFu);
    NvApiThermalSettings thermal{};
    thermal.version = kThermalSettingsVersion2;
    thermal.count = kThermalSensorCount;
    QCOMPARE(calls.NvAPI_GPU_GetThermalSettings(gpu, 0, &thermal), NVAPI_OK);
    QCOMPARE(thermal.count, 0xFFFFFFFFu);
    NvApiCoolerSettings coolers{};
    coolers.version = kCoolerSettingsVersion4;
    QCOMPARE(calls.NvAPI_GPU_GetCoolerSettings(gpu, kAllCoolers, &coolers), NVAPI_OK);
    QCOMPARE(coolers.count, 0xFFFFFFFFu);
    NV_GPU_PERF_PSTATES20_INFO pstates{};
    pstates.version = kPstates20Version3;
    QCOMPARE(calls.NvAPI_GPU_GetPstates20(gpu, &pstates), NVAPI_OK);
    QCOMPARE(pstates.numPstates, 0xFFFFFFFFu);
    QCOMPARE(pstates.numClocks, 0xFFFFFFFFu);
    QCOMPARE(pstates.numBaseVoltages, 0xFFFFFFFFu);
    QCOMPARE(pstates.ov.numVoltages, 0xFFFFFFFFu);
    NvApiPowerTopologyInfo topology{};
    topology.version = kPowerTopologyInfoVersion1;
    QCOMPARE(calls.NvAPI_GPU_ClientPowerTopologyGetInfo(gpu, &topology), NVAPI_OK);
    QCOMPARE(topology.count, quint8(0xFF));
    NvApiThermalPoliciesInfo policies{};
    policies.version = kThermalPoliciesInfoVersion2;
    QCOMPARE(calls.NvAPI_GPU_ClientThermalPoliciesGetInfo(gpu, &policies), NVAPI_OK);
    QCOMPARE(policies.count, quint8(0xFF));
}

void TestSimulatedFaults::unterminatedTexts()
{
    CheckedDriver driver(oneCardAtLoad(50));
    driver.setHostility({0, true});
    const DriverCalls calls = started(driver);
    char text[kNvApiShortTextSize + 1];
    text[kNvApiShortTextSize] = '#';
    QCOMPARE(calls.NvAPI_GPU_GetFullName(driver.handle(0), text), NVAPI_OK);
    QVERIFY(!std::memchr(text, 0, kNvApiShortTextSize));
    QCOMPARE(text[kNvApiShortTextSize], '#');
    QVERIFY(QByteArray(text, kNvApiShortTextSize).startsWith("GeForce GTX 1070 TiXXX"));
    NvApiChipsetInfo chipset{};
    chipset.version = kChipsetInfoVersion2;
    QCOMPARE(calls.NvAPI_SYS_GetChipSetInfo(&chipset), NVAPI_OK);
    QVERIFY(!std::memchr(chipset.szVendorName, 0, kNvApiShortTextSize));
}

QTEST_APPLESS_MAIN(TestSimulatedFaults)
#include "TestSimulatedFaults.moc"
