#include "device/NvGpuControl.h"

#include "support/DeviceFields.h"
#include "support/RawDriver.h"

#include <QtTest>

#include <memory>

/// Start, enumeration, choice of the card and end of a device object.
class TestDeviceStart : public QObject
{
    Q_OBJECT

private slots:
    void metaTypesAreRegistered();
    void recordsTravelByValue();
    void start_data();
    void start();
    void startCalls();
    void displays_data();
    void displays();
    void displaysWithoutEnd();
    void enumeration_data();
    void enumeration();
    void driverWithoutTccEnumeration();
    void setCurrentGpu_data();
    void setCurrentGpu();
    void anyIndexIsSafeWithoutCards();
    void currentCardIsAddressed();
    void tccCardsAreTold();
    void gpuName_data();
    void gpuName();
    void pciIdentifiers();
    void pciIdentifiersAreZeroedOnFailure();
    void withoutCardNoRecordCallIsMade();
};

void TestDeviceStart::metaTypesAreRegistered()
{
    registerDeviceMetaTypes();
    for (const char *name : {"NvCardBaseInfo", "NvInfo", "BoardTempCompleteInfo"})
        QVERIFY2(QMetaType::type(name) != QMetaType::UnknownType, name);
}

void TestDeviceStart::recordsTravelByValue()
{
    NvCardBaseInfo sample;
    sample.gpuClock.currentValue = 1607;
    const QVariant inFlight = QVariant::fromValue(sample);
    sample.gpuClock.currentValue = 0;
    QCOMPARE(inFlight.value<NvCardBaseInfo>().gpuClock.currentValue, 1607);
}

void TestDeviceStart::start_data()
{
    QTest::addColumn<NvAPI_Status>("initializeStatus");
    QTest::addColumn<NvAPI_Status>("enumerationStatus");
    QTest::addColumn<bool>("ready");
    QTest::addColumn<quint32>("cards");
    QTest::addColumn<bool>("enumerated");
    QTest::newRow("everything well") << 0 << 0 << true << 1u << true;
    QTest::newRow("driver error") << -1 << 0 << false << 0u << false;
    QTest::newRow("driver says it is not there") << -2 << 0 << false << 0u << false;
    QTest::newRow("another failure goes on") << -104 << 0 << true << 1u << true;
    QTest::newRow("another failure, then the enumeration's own") << -104 << -6 << false << 0u << true;
    QTest::newRow("only the enumeration fails") << 0 << -6 << false << 0u << true;
}

void TestDeviceStart::start()
{
    QFETCH(NvAPI_Status, initializeStatus);
    QFETCH(NvAPI_Status, enumerationStatus);
    QFETCH(bool, ready);
    QFETCH(quint32, cards);
    QFETCH(bool, enumerated);

    RawDriver driver;
    if (initializeStatus)
        driver.fails(Operation::NvAPI_Initialize, initializeStatus);
    if (enumerationStatus)
        driver.fails(Operation::NvAPI_EnumPhysicalGPUs, enumerationStatus);
    NvGpuControl gpu;

    QCOMPARE(gpu.isReady(), ready);
    QCOMPARE(gpu.gpuCount(), cards);
    QCOMPARE(!driver.rawCalls(Operation::NvAPI_EnumPhysicalGPUs).isEmpty(), enumerated);
    QCOMPARE(driver.rawCalls(Operation::NvAPI_GetErrorMessage).contains("GetErrorMessage status=-1"),
             initializeStatus == -1);
}

void TestDeviceStart::startCalls()
{
    RawDriver driver;
    {
        NvGpuControl gpu;
        QCOMPARE(
            driver.rawCalls(),
            (QStringList{"Initialize", "EnumNvidiaDisplayHandle index=0", "EnumNvidiaDisplayHandle index=1 -> -7",
                         "GetAssociatedDisplayOutputId display0", "EnumPhysicalGPUs", "EnumTCCPhysicalGPUs"}));
        QCOMPARE(nvApiLoadCount(), 1);
        driver.forgetCalls();
    }
    QCOMPARE(driver.rawCalls(), QStringList{"Unload"});
    QCOMPARE(nvApiLoadCount(), 0);
    QCOMPARE(driver.releases(), 1);
}

void TestDeviceStart::displays_data()
{
    QTest::addColumn<quint32>("displays");
    QTest::addColumn<NvAPI_Status>("walkEnd");
    QTest::addColumn<NvAPI_Status>("outputStatus");
    QTest::addColumn<bool>("result");
    QTest::addColumn<QStringList>("after");
    QTest::newRow("three displays") << 3u << -7 << 0 << true << QStringList{"GetAssociatedDisplayOutputId display0"};
    QTest::newRow("no device ends the walk") << 1u << -6 << 0 << false << QStringList{};
    QTest::newRow("no device at once") << 0u << -6 << 0 << false << QStringList{};
    QTest::newRow("orderly end, output unknown")
        << 1u << -7 << -5 << false << QStringList{"GetAssociatedDisplayOutputId display0 -> -5"};
    QTest::newRow("any other end fetches the text")
        << 1u << -104 << 0 << false << QStringList{"GetErrorMessage status=-104"};
}

void TestDeviceStart::displays()
{
    QFETCH(quint32, displays);
    QFETCH(NvAPI_Status, walkEnd);
    QFETCH(NvAPI_Status, outputStatus);
    QFETCH(bool, result);
    QFETCH(QStringList, after);

    RawDriver driver;
    NvGpuControl gpu;
    driver.displays = displays;
    driver.displayWalkEnd = walkEnd;
    if (outputStatus)
        driver.fails(Operation::NvAPI_GetAssociatedDisplayOutputId, outputStatus);
    driver.forgetCalls();

    QCOMPARE(gpu.initNvApi(), true); // starts the walk afresh; its result does not depend on the displays
    QStringList walk;
    for (quint32 i = 0; i < displays; ++i)
        walk << QString("EnumNvidiaDisplayHandle index=%1").arg(i);
    walk << QString("EnumNvidiaDisplayHandle index=%1 -> %2").arg(displays).arg(walkEnd);
    QCOMPARE(driver.rawCalls(),
             QStringList{"Initialize"} + walk + after + QStringList({"EnumPhysicalGPUs", "EnumTCCPhysicalGPUs"}));

    QCOMPARE(gpu.enumDisplays(), result);
    NvAPI_Unload(); // the second start counted too
}

void TestDeviceStart::displaysWithoutEnd()
{
    RawDriver driver;
    driver.displays = 0xFFFFFFFF;
    NvGpuControl gpu;
    QVERIFY(gpu.isReady());
    QCOMPARE(gpu.getGpuName(), std::string("GeForce GTX 1070 Ti"));
    // more than the program keeps, and the table behind them is whole
    QVERIFY(driver.rawCalls(Operation::NvAPI_EnumNvidiaDisplayHandle).size() >= int(kNvApiMaxDisplays));
    QCOMPARE(gpu.gpuCount(), 1u);
    QVERIFY(!gpu.isTccGpu(driver.handle(0)));
}

void TestDeviceStart::enumeration_data()
{
    QTest::addColumn<int>("ordinary");
    QTest::addColumn<int>("tcc");
    QTest::addColumn<qint64>("ordinaryTold");
    QTest::addColumn<qint64>("tccTold");
    QTest::addColumn<NvAPI_Status>("status");
    QTest::addColumn<NvAPI_Status>("tccStatus");
    QTest::addColumn<bool>("result");
    QTest::addColumn<quint32>("count");
    const qint64 truth = -1;
    const qint64 allOnes = 0xFFFFFFFFll;
    QTest::newRow("no card") << 0 << 0 << truth << truth << 0 << 0 << true << 0u;
    QTest::newRow("two cards") << 2 << 0 << truth << truth << 0 << 0 << true << 2u;
    QTest::newRow("two TCC cards and none other") << 0 << 2 << truth << truth << 0 << 0 << true << 2u;
    QTest::newRow("two TCC cards, no ordinary device found") << 0 << 2 << truth << truth << -6 << 0 << false << 2u;
    QTest::newRow("one of each") << 1 << 1 << truth << truth << 0 << 0 << true << 2u;
    QTest::newRow("TCC enumeration fails") << 2 << 0 << truth << truth << 0 << -3 << true << 2u;
    QTest::newRow("table just full") << 64 << 0 << truth << truth << 0 << 0 << true << 64u;
    QTest::newRow("full table and TCC cards behind it") << 64 << 3 << truth << truth << 0 << 0 << true << 64u;
    QTest::newRow("more ordinary cards told than fit") << 2 << 0 << allOnes << truth << 0 << 0 << true << 64u;
    QTest::newRow("more TCC cards told than fit") << 1 << 1 << truth << allOnes << 0 << 0 << true << 64u;
    QTest::newRow("both told far beyond") << 1 << 1 << allOnes << allOnes << 0 << 0 << true << 64u;
}

void TestDeviceStart::enumeration()
{
    QFETCH(int, ordinary);
    QFETCH(int, tcc);
    QFETCH(qint64, ordinaryTold);
    QFETCH(qint64, tccTold);
    QFETCH(NvAPI_Status, status);
    QFETCH(NvAPI_Status, tccStatus);
    QFETCH(bool, result);
    QFETCH(quint32, count);

    RawDriver driver;
    driver.cards.resize(std::size_t(ordinary + tcc));
    for (int i = ordinary; i < ordinary + tcc; ++i)
        driver.card(std::size_t(i)).tcc = true;
    if (ordinaryTold >= 0)
        driver.gpuCountTold = quint32(ordinaryTold);
    if (tccTold >= 0)
        driver.tccGpuCountTold = quint32(tccTold);
    if (status)
        driver.fails(Operation::NvAPI_EnumPhysicalGPUs, status);
    if (tccStatus)
        driver.fails(Operation::NvAPI_EnumTCCPhysicalGPUs, tccStatus);

    NvGpuControl gpu;
    QCOMPARE(gpu.isReady(), result);
    QCOMPARE(gpu.gpuCount(), count);
    driver.forgetCalls();
    QCOMPARE(gpu.enumGpus(), result);
    QCOMPARE(gpu.gpuCount(), count);
    QCOMPARE(driver.rawCalls(Operation::NvAPI_GetErrorMessage),
             status ? QStringList{QString("GetErrorMessage status=%1").arg(status)} : QStringList{});
}

void TestDeviceStart::driverWithoutTccEnumeration()
{
    RawDriver driver;
    driver.cards.resize(2);
    driver.lacks(Operation::NvAPI_EnumTCCPhysicalGPUs);
    NvGpuControl gpu;
    QVERIFY(gpu.isReady());
    QCOMPARE(gpu.gpuCount(), 2u);
    QVERIFY(!gpu.getGpuName().empty());
}

void TestDeviceStart::setCurrentGpu_data()
{
    QTest::addColumn<int>("cards");
    QTest::addColumn<qint32>("index");
    QTest::addColumn<QString>("addressed");
    QTest::newRow("the first") << 2 << 0 << "gpu0";
    QTest::newRow("the second") << 2 << 1 << "gpu1";
    QTest::newRow("one too far") << 2 << 2 << "gpu1";
    QTest::newRow("far too far") << 2 << 99 << "gpu1";
    QTest::newRow("negative") << 2 << -5 << "gpu0";
    QTest::newRow("the most negative") << 2 << std::numeric_limits<qint32>::min() << "gpu0";
    QTest::newRow("the only card") << 1 << 7 << "gpu0";
    QTest::newRow("the last of a full table") << 64 << 1000 << "gpu63";
}

void TestDeviceStart::setCurrentGpu()
{
    QFETCH(int, cards);
    QFETCH(qint32, index);
    QFETCH(QString, addressed);

    RawDriver driver;
    driver.cards.resize(std::size_t(cards));
    NvGpuControl gpu;
    gpu.setCurrentGpu(index);
    driver.forgetCalls();
    (void)gpu.getGpuName();
    QCOMPARE(driver.rawCalls(), QStringList{"GPU_GetFullName " + addressed});
}

void TestDeviceStart::anyIndexIsSafeWithoutCards()
{
    RawDriver driver;
    driver.cards.clear();
    NvGpuControl gpu;
    for (qint32 index : {0, 1, 63, 64, 99, 1000000, std::numeric_limits<qint32>::max(), -1}) {
        gpu.setCurrentGpu(index);
        NvUsageInfo usage;
        QCOMPARE(gpu.getGpuName(), std::string());
        QCOMPARE(gpu.getGpuUsage(usage), false);
    }

    // With no card nothing caps the index: what was chosen stays when cards turn up later.
    gpu.setCurrentGpu(1);
    driver.cards.resize(2);
    driver.card(1).fullName = "the second";
    QVERIFY(gpu.enumGpus());
    QCOMPARE(gpu.getGpuName(), std::string("the second"));
}

void TestDeviceStart::currentCardIsAddressed()
{
    RawDriver driver;
    driver.cards.resize(3);
    driver.card(1).tcc = true; // listed last
    driver.card(0).fullName = "first";
    driver.card(1).fullName = "of the TCC list";
    driver.card(2).fullName = "second";
    NvGpuControl gpu;
    const char *const expected[] = {"first", "second", "of the TCC list"};
    for (int i = 0; i < 3; ++i) {
        gpu.setCurrentGpu(i);
        QCOMPARE(gpu.getGpuName(), std::string(expected[i]));
    }
}

void TestDeviceStart::tccCardsAreTold()
{
    RawDriver driver;
    driver.cards.resize(2);
    driver.card(1).tcc = true;
    NvGpuControl gpu;
    QCOMPARE(gpu.isTccGpu(driver.handle(0)), false);
    QCOMPARE(gpu.isTccGpu(driver.handle(1)), true);
    QCOMPARE(gpu.isTccGpu(nullptr), false);
}

void TestDeviceStart::gpuName_data()
{
    QTest::addColumn<std::string>("told");
    QTest::addColumn<NvAPI_Status>("status");
    QTest::addColumn<std::string>("name");
    QTest::newRow("ordinary") << std::string("GeForce GTX 960") << 0 << std::string("GeForce GTX 960");
    QTest::newRow("failure") << std::string("GeForce GTX 960") << -1 << std::string();
    QTest::newRow("empty") << std::string() << 0 << std::string();
    QTest::newRow("63 characters") << std::string(63, 'x') << 0 << std::string(63, 'x');
}

void TestDeviceStart::gpuName()
{
    QFETCH(std::string, told);
    QFETCH(NvAPI_Status, status);
    QFETCH(std::string, name);
    RawDriver driver;
    driver.card().fullName = told;
    if (status)
        driver.fails(Operation::NvAPI_GPU_GetFullName, status);
    NvGpuControl gpu;
    QCOMPARE(gpu.getGpuName(), name);

    // a text that fills its buffer and has no end is cut to the buffer
    driver.card().fullName = std::string(200, 'y');
    const std::string unended = gpu.getGpuName();
    QVERIFY(unended.size() <= kNvApiShortTextSize);
    QCOMPARE(unended, std::string(unended.size(), 'y'));
}

void TestDeviceStart::pciIdentifiers()
{
    RawDriver driver;
    driver.card().deviceId = 0xFFFFFFFF;
    NvGpuControl gpu;
    NvPciIds ids;
    QVERIFY(gpu.getPciIdentifiers(ids));
    QCOMPARE(ids.deviceId, 0xFFFFFFFFu);
    QCOMPARE(ids.subSystemId, 0x111D7377u);
    QCOMPARE(ids.revisionId, 0xA1u);
    QCOMPARE(ids.extDeviceId, 0x1B82u);
}

void TestDeviceStart::pciIdentifiersAreZeroedOnFailure()
{
    RawDriver driver;
    NvGpuControl gpu;
    driver.fails(Operation::NvAPI_GPU_GetPCIIdentifiers, NVAPI_INVALID_HANDLE);
    NvPciIds ids{1, 2, 3, 4};
    QCOMPARE(gpu.getPciIdentifiers(ids), false);
    QCOMPARE(ids.deviceId | ids.subSystemId | ids.revisionId | ids.extDeviceId, 0u);

    driver.cards.clear();
    NvGpuControl withoutCard;
    ids = {1, 2, 3, 4};
    QCOMPARE(withoutCard.getPciIdentifiers(ids), false);
    QCOMPARE(ids.deviceId | ids.subSystemId | ids.revisionId | ids.extDeviceId, 0u);
}

void TestDeviceStart::withoutCardNoRecordCallIsMade()
{
    RawDriver driver;
    driver.cards.clear();
    NvGpuControl gpu;
    QVERIFY(gpu.isReady()); // enumerating no card is no failure
    driver.forgetCalls();

    NvUsageInfo usage;
    NvThermalInfo thermal;
    NvMemoryInfo memory;
    NvCoolerInfo cooler;
    NvClockSet clocks;
    NvClockOffsetRange range;
    NvVoltageInfo voltage;
    NvPowerInfo power;
    NvThermalPolicyInfo policy;
    NvLimitPair pair;
    LedControllerState led;
    NvPciIds ids;
    int degrees = 5;
    quint8 byte = 0;
    QVERIFY(!gpu.getGpuUsage(usage));
    QVERIFY(!gpu.getThermalSensor(thermal));
    QVERIFY(!gpu.getMemoryInfo(memory));
    QVERIFY(!gpu.getCoolerInfo(cooler));
    QVERIFY(!gpu.getClockFrequencies(clocks, 0));
    QVERIFY(!gpu.getBaseClocks(clocks, true));
    QVERIFY(!gpu.getBaseClocks(clocks, false));
    gpu.getGpuClockRange(range);
    gpu.getMemoryClockRange(range);
    QVERIFY(!gpu.getVoltageInfo(voltage));
    QVERIFY(!gpu.getPowerInfo(power));
    QVERIFY(!gpu.getThermalPolicyInfo(policy));
    QVERIFY(!gpu.setGpuClockOffset(10));
    QVERIFY(!gpu.setMemoryClockOffset(10));
    QVERIFY(!gpu.setVoltageOffset(10));
    QVERIFY(!gpu.restoreDefaults());
    QVERIFY(!gpu.setPowerLimit(2, 100));
    QVERIFY(!gpu.setThermalLimit(3, 80, true));
    gpu.setThermalPriority(3, 1);
    QVERIFY(!gpu.powerToTemperature(2, 3, 100, pair));
    QVERIFY(!gpu.temperatureToPower(2, 3, 80, 100, pair));
    QVERIFY(!gpu.setCoolerLevel(50, 1));
    QVERIFY(!gpu.setCoolerLevel(-1, 1));
    QVERIFY(!gpu.setCoolerAuto());
    QVERIFY(!gpu.i2cRead(0x9E, 0, 1, &byte, 1));
    QVERIFY(!gpu.i2cWrite(0xAC, 0, 0, &byte, 1));
    QVERIFY(!gpu.i2cWriteFramed(nullptr, 0, 10, 0, 0, false));
    QVERIFY(!gpu.readLedState(led));
    QVERIFY(!gpu.readBoardSensor(0x9E, degrees));
    QVERIFY(!gpu.getPciIdentifiers(ids));
    QCOMPARE(degrees, 0);
    // the memory type, whose answer is dropped, is the one thing that may be asked all the same
    for (const QString &line : driver.rawCalls())
        QVERIFY2(line.startsWith("GPU_GetRamType null"), qPrintable(line));
}

QTEST_APPLESS_MAIN(TestDeviceStart)
#include "TestDeviceStart.moc"
