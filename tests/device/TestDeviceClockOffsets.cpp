#include "device/DeviceTest.h"

#include <QtTest>

#include <limits>

namespace
{

// Where the words of a performance-state record lie, in bytes from its start.
constexpr int kNumPstatesAt = 8;
constexpr int kNumClocksAt = 12;
constexpr int kNumBaseVoltagesAt = 16;
constexpr int kClockDomainAt = 28;
constexpr int kClockDeltaAt = 40;
constexpr int kVoltageDeltaAt = 20 + 360 + 12;
constexpr int kNumOverVoltagesAt = 7316;
constexpr int kOverVoltageDeltaAt = 7320 + 12;

QString clockWrite(quint32 version, qint32 domain, qint32 deltaKHz)
{
    return QString("GPU_SetPstates20 gpu0 0x%1").arg(QString::number(version, 16).toUpper()) +
           words({{kNumPstatesAt, 1}, {kNumClocksAt, 1}, {kClockDomainAt, domain}, {kClockDeltaAt, deltaKHz}});
}

QString voltageWrite(quint32 version, qint32 deltaMicroVolt)
{
    return QString("GPU_SetPstates20 gpu0 0x%1").arg(QString::number(version, 16).toUpper()) +
           words({{kNumPstatesAt, 1}, {kNumBaseVoltagesAt, 1}, {kVoltageDeltaAt, deltaMicroVolt}});
}

} // namespace

/// Clock and voltage offsets: how they are cut, and the exact records of the writes.
class TestDeviceClockOffsets : public QObject
{
    Q_OBJECT

private slots:
    void clockOffsets_data();
    void clockOffsets();
    void clockOffsetCalls();
    void memoryLadder_data();
    void memoryLadder();
    void voltageOffsets_data();
    void voltageOffsets();
    void noVoltageOffsetNeedsNoRange_data();
    void noVoltageOffsetNeedsNoRange();
    void overVoltage();
    void overVoltageWithoutCardGoesToTheDriver();
};

void TestDeviceClockOffsets::clockOffsets_data()
{
    QTest::addColumn<Arrange>("arrange");
    QTest::addColumn<qint32>("offsetMHz");
    QTest::addColumn<qint32>("graphicsKHz");
    QTest::addColumn<qint32>("memoryKHz");
    const auto row = [](const char *name, qint32 offset, qint32 graphics, qint32 memory, const Arrange &arrange) {
        QTest::newRow(name) << arrange << offset << graphics << memory;
    };
    const auto nothing = [](RawDriver &) {
    };
    row("in range", 100, 100000, 100000, nothing);
    row("zero", 0, 0, 0, nothing);
    row("negative in range", -100, -100000, -100000, nothing);
    row("at the top", 1000, 1000000, 1000000, nothing);
    row("one above the top", 1001, 1000000, 1000000, nothing);
    row("one below the bottom", -503, -200000, -502000, nothing);
    row("the largest number", std::numeric_limits<qint32>::max(), 1000000, 1000000, nothing);
    row("the smallest number", std::numeric_limits<qint32>::min(), -200000, -502000, nothing);
    row("range unreadable", 100, 0, 0,
        [](RawDriver &driver) { driver.fails(Operation::NvAPI_GPU_GetPstates20, -1); });
    row("base frequencies unreadable", -100, 0, 0,
        [](RawDriver &driver) { driver.fails(Operation::NvAPI_GPU_GetAllClockFrequencies, -1); });
    row("fixed clocks have a range of 0 to 0", 100, 0, 0, [](RawDriver &driver) {
        for (int i = 0; i < 2; ++i) {
            driver.card().p0Clock(i).bIsEditable = 0;
            driver.card().p0Clock(i).freqDelta_kHz.valueRange = {0, 0};
        }
    });
    row("bottom above the top wins", 100, 300000, 300000, [](RawDriver &driver) {
        for (int i = 0; i < 2; ++i)
            driver.card().p0Clock(i).freqDelta_kHz.valueRange = {300000, 50000};
    });
    row("widest range a driver can tell", 2147483, 2147483000, 2147483000, [](RawDriver &driver) {
        for (int i = 0; i < 2; ++i)
            driver.card().p0Clock(i).freqDelta_kHz.valueRange = {std::numeric_limits<qint32>::min(),
                                                                 std::numeric_limits<qint32>::max()};
    });
}

void TestDeviceClockOffsets::clockOffsets()
{
    QFETCH(Arrange, arrange);
    QFETCH(qint32, offsetMHz);
    QFETCH(qint32, graphicsKHz);
    QFETCH(qint32, memoryKHz);
    RawDriver driver;
    arrange(driver);
    NvGpuControl gpu;
    QCOMPARE(gpu.setGpuClockOffset(offsetMHz), true);
    QCOMPARE(gpu.setMemoryClockOffset(offsetMHz), true);
    QCOMPARE(driver.rawCalls(Operation::NvAPI_GPU_SetPstates20),
             (QStringList{clockWrite(0x31CF8, 0, graphicsKHz), clockWrite(0x11C94, 4, memoryKHz)}));
}

void TestDeviceClockOffsets::clockOffsetCalls()
{
    RawDriver driver;
    NvGpuControl gpu;
    driver.forgetCalls();
    QVERIFY(gpu.setGpuClockOffset(100));
    QCOMPARE(driver.rawCalls(), (QStringList{kReadPstates, kReadBaseClocks, clockWrite(0x31CF8, 0, 100000)}));
    driver.forgetCalls();
    QVERIFY(gpu.setMemoryClockOffset(100));
    QCOMPARE(driver.rawCalls(),
             (QStringList{kReadPstates, kReadBaseClocks, kReadRamType, clockWrite(0x11C94, 4, 100000)}));
}

void TestDeviceClockOffsets::memoryLadder_data()
{
    QTest::addColumn<std::vector<int>>("statuses");
    QTest::addColumn<QStringList>("versions");
    QTest::addColumn<bool>("result");
    using Statuses = std::vector<int>;
    QTest::newRow("oldest version taken") << Statuses{0} << QStringList{"0x11C94"} << true;
    QTest::newRow("oldest refused") << Statuses{-9, 0} << QStringList{"0x11C94", "0x21CF8"} << true;
    QTest::newRow("oldest taken at the third attempt")
        << Statuses{-9, -1, 0} << QStringList{"0x11C94", "0x21CF8", "0x11C94"} << true;
    QTest::newRow("all refused") << Statuses{-9, -9, -9} << QStringList{"0x11C94", "0x21CF8", "0x11C94"} << false;
}

void TestDeviceClockOffsets::memoryLadder()
{
    QFETCH(std::vector<int>, statuses);
    QFETCH(QStringList, versions);
    QFETCH(bool, result);
    RawDriver driver;
    driver.answersInTurn(Operation::NvAPI_GPU_SetPstates20, statuses);
    NvGpuControl gpu;
    QCOMPARE(gpu.setMemoryClockOffset(100), result);
    QCOMPARE(driver.versionsTried(Operation::NvAPI_GPU_SetPstates20), versions);
}

void TestDeviceClockOffsets::voltageOffsets_data()
{
    QTest::addColumn<Arrange>("arrange");
    QTest::addColumn<qint32>("microVolt");
    QTest::addColumn<qint32>("written");
    const auto row = [](const char *name, qint32 microVolt, qint32 written, const Arrange &arrange) {
        QTest::newRow(name) << arrange << microVolt << written;
    };
    const auto nothing = [](RawDriver &) {
    };
    const auto range = [](qint32 minimum, qint32 maximum) {
        return [=](RawDriver &driver) {
            driver.card().p0Voltage(0).voltDelta_uV.valueRange = {minimum, maximum};
        };
    };
    row("in range", 50000, 50000, nothing);
    row("negative in range", -50000, -50000, nothing);
    row("at the top", 100000, 100000, nothing);
    row("one above the top", 100001, 100000, nothing);
    row("one below the bottom", -100001, -100000, nothing);
    row("largest number", std::numeric_limits<qint32>::max(), 100000, nothing);
    row("smallest number", std::numeric_limits<qint32>::min(), -100000, nothing);
    row("the range is kept to the microvolt", 99999, 1999, range(-1999, 1999));
    row("bottom above the top wins", 100, 30000, range(30000, 5000));
    row("range of 0 to 0", 50000, 0, range(0, 0));
    row("states unreadable", 50000, 0,
        [](RawDriver &driver) { driver.fails(Operation::NvAPI_GPU_GetPstates20, -1); });
    row("no P0", 50000, 0, [](RawDriver &driver) { driver.card().pstates.pstates[0].pstateId = 3; });
    row("no voltages", 50000, 0, [](RawDriver &driver) { driver.card().pstates.numBaseVoltages = 0; });
    row("no core voltage", 50000, 0, [](RawDriver &driver) { driver.card().p0Voltage(0).domainId = 1; });
    row("core voltage behind another", 50000, 20000, [](RawDriver &driver) {
        driver.card().pstates.numBaseVoltages = 2;
        driver.card().p0Voltage(1) = driver.card().p0Voltage(0);
        driver.card().p0Voltage(1).voltDelta_uV.valueRange = {0, 20000};
        driver.card().p0Voltage(0).domainId = 1;
    });
    row("count far beyond the record", 50000, 0, [](RawDriver &driver) {
        for (auto &voltage : driver.card().pstates.pstates[0].baseVoltages)
            voltage.domainId = 9;
        driver.card().pstates.numBaseVoltages = 0xFFFFFFFF;
    });
}

void TestDeviceClockOffsets::voltageOffsets()
{
    QFETCH(Arrange, arrange);
    QFETCH(qint32, microVolt);
    QFETCH(qint32, written);
    RawDriver driver;
    arrange(driver);
    NvGpuControl gpu;
    driver.forgetCalls();
    QCOMPARE(gpu.setVoltageOffset(microVolt), true);
    QCOMPARE(driver.rawCalls(Operation::NvAPI_GPU_SetPstates20), QStringList{voltageWrite(0x31CF8, written)});
    QCOMPARE(driver.rawCalls().value(0).startsWith("GPU_GetPstates20"), true); // the range is read anew each time
}

void TestDeviceClockOffsets::noVoltageOffsetNeedsNoRange_data()
{
    QTest::addColumn<Arrange>("arrange");
    QTest::newRow("healthy card") << Arrange([](RawDriver &) {});
    QTest::newRow("states unreadable") << Arrange(
        [](RawDriver &driver) { driver.fails(Operation::NvAPI_GPU_GetPstates20, -1); });
    QTest::newRow("range that leaves 0 out") << Arrange([](RawDriver &driver) {
        driver.card().p0Voltage(0).voltDelta_uV.valueRange = {5000, 50000};
    });
}

void TestDeviceClockOffsets::noVoltageOffsetNeedsNoRange()
{
    QFETCH(Arrange, arrange);
    RawDriver driver;
    arrange(driver);
    NvGpuControl gpu;
    driver.forgetCalls();
    QCOMPARE(gpu.setVoltageOffset(0), true);
    QCOMPARE(driver.rawCalls(), QStringList{voltageWrite(0x31CF8, 0)});
}

void TestDeviceClockOffsets::overVoltage()
{
    RawDriver driver;
    NvGpuControl gpu;
    driver.forgetCalls();
    QCOMPARE(gpu.setOverVoltage(-12500), true);
    QCOMPARE(driver.rawCalls(), QStringList{"GPU_SetPstates20 gpu0 0x31CF8" +
                                            words({{kNumOverVoltagesAt, 1}, {kOverVoltageDeltaAt, -12500}})});
}

void TestDeviceClockOffsets::overVoltageWithoutCardGoesToTheDriver()
{
    RawDriver driver;
    driver.cards.clear();
    NvGpuControl gpu;
    driver.forgetCalls();
    QCOMPARE(gpu.setOverVoltage(0), false);
    const QString content = words({{kNumOverVoltagesAt, 1}});
    QCOMPARE(driver.rawCalls(), (QStringList{"GPU_SetPstates20 null 0x31CF8" + content + " -> -10",
                                             "GPU_SetPstates20 null 0x21CF8" + content + " -> -10",
                                             "GPU_SetPstates20 null 0x11C94 -> -10"}));
}

QTEST_APPLESS_MAIN(TestDeviceClockOffsets)
#include "TestDeviceClockOffsets.moc"
