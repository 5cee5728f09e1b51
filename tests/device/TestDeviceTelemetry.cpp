#include "device/DeviceTest.h"

#include <QtTest>

#include <atomic>
#include <thread>

/// Live readings, and what the driver is asked in one cycle.
class TestDeviceTelemetry : public QObject
{
    Q_OBJECT

private slots:
    void clockFrequencies_data();
    void clockFrequencies();
    void failedClockReadKeepsTheRecord();
    void clockReadWithoutCardZeroesTheRecord();
    void currentClocks();
    void failedCurrentClocksFoldWhatTheRecordHeld();
    void gpuUsage_data();
    void gpuUsage();
    void thermalSensor_data();
    void thermalSensor();
    void memoryInfo_data();
    void memoryInfo();
    void boardSensor_data();
    void boardSensor();
    void boardSensorTransfer();
    void boardTemperatures();
    void boardTemperaturesWithoutSensors();
    void samplingCycleCalls();
    void manyThreadsReadOneObject();
};

void TestDeviceTelemetry::clockFrequencies_data()
{
    QTest::addColumn<quint32>("type");
    QTest::addColumn<QVector<quint32>>("kHz"); // graphics, memory, processor
    QTest::addColumn<FieldList>("MHz");
    QTest::newRow("current") << 0u << QVector<quint32>{1721500, 4006800, 1569500} << FieldList{1721, 4006, 1569};
    QTest::newRow("base") << 1u << QVector<quint32>{1607000, 4006000, 1450000} << FieldList{1607, 4006, 1450};
    QTest::newRow("boost") << 2u << QVector<quint32>{1683999, 4006999, 1500001} << FieldList{1683, 4006, 1500};
    QTest::newRow("zeros") << 0u << QVector<quint32>{0, 0, 0} << FieldList{0, 0, 0};
    QTest::newRow("just below a megahertz") << 0u << QVector<quint32>{999, 999, 999} << FieldList{0, 0, 0};
    // 2^32 - 1 kHz is unsigned for the integer divisions, and 4294967296.0 / 1000 as a 32-bit float
    QTest::newRow("all ones") << 0u << QVector<quint32>{0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF}
                              << FieldList{4294967, 4294967, 4294967};
    // 16777999 has no 32-bit float: the nearest one is 16778000, a whole megahertz more
    QTest::newRow("memory clock goes through a float")
        << 0u << QVector<quint32>{16777999, 16777999, 16777999} << FieldList{16777, 16778, 16777};
}

void TestDeviceTelemetry::clockFrequencies()
{
    QFETCH(quint32, type);
    QFETCH(QVector<quint32>, kHz);
    QFETCH(FieldList, MHz);
    RawDriver driver;
    NvApiClockFrequencies &clocks = driver.card().clocks[type];
    // the presence bits are not looked at
    clocks.domain[0] = {0, kHz[0]};
    clocks.domain[4] = {0, kHz[1]};
    clocks.domain[7] = {0, kHz[2]};
    NvGpuControl gpu;
    driver.forgetCalls();
    NvClockSet out;
    QVERIFY(gpu.getClockFrequencies(out, type));
    QCOMPARE(fields(out), MHz);
    const QString typeWord = type ? QString(" [4]=%1").arg(type) : QString();
    QCOMPARE(driver.rawCalls(), QStringList{"GPU_GetAllClockFrequencies gpu0 0x30108" + typeWord});
}

void TestDeviceTelemetry::failedClockReadKeepsTheRecord()
{
    RawDriver driver;
    driver.fails(Operation::NvAPI_GPU_GetAllClockFrequencies, NVAPI_ERROR);
    NvGpuControl gpu;
    NvClockSet out{1, 2, 3};
    QCOMPARE(gpu.getClockFrequencies(out, 1), false);
    QCOMPARE(fields(out), (FieldList{1, 2, 3}));
}

void TestDeviceTelemetry::clockReadWithoutCardZeroesTheRecord()
{
    RawDriver driver;
    driver.cards.clear();
    NvGpuControl gpu;
    NvClockSet out{1, 2, 3};
    QCOMPARE(gpu.getClockFrequencies(out, 1), false);
    QCOMPARE(fields(out), (FieldList{0, 0, 0}));
}

void TestDeviceTelemetry::currentClocks()
{
    RawDriver driver;
    NvGpuControl gpu;
    driver.forgetCalls();
    NvClockSet out;
    gpu.getCurrentClocks(out);
    QCOMPARE(fields(out), (FieldList{1721, 4006, 1569}));
    QCOMPARE(extreme(gpu, ExtremeGpuClock), (FieldList{1721, 1721}));
    QCOMPARE(extreme(gpu, ExtremeMemoryClock), (FieldList{4006, 4006}));
    QCOMPARE(driver.rawCalls(), (QStringList{"GPU_GetAllClockFrequencies gpu0 0x30108", "GPU_GetRamType gpu0"}));
}

void TestDeviceTelemetry::failedCurrentClocksFoldWhatTheRecordHeld()
{
    RawDriver driver;
    driver.fails(Operation::NvAPI_GPU_GetAllClockFrequencies, NVAPI_ERROR);
    NvGpuControl gpu;
    NvClockSet out{111, 222, 333};
    gpu.getCurrentClocks(out);
    QCOMPARE(fields(out), (FieldList{111, 222, 333}));
    QCOMPARE(extreme(gpu, ExtremeGpuClock), (FieldList{111, 111}));
    QCOMPARE(extreme(gpu, ExtremeMemoryClock), (FieldList{222, 222}));
}

void TestDeviceTelemetry::gpuUsage_data()
{
    QTest::addColumn<QVector<quint32>>("present");
    QTest::addColumn<bool>("result");
    QTest::addColumn<FieldList>("percent");
    QTest::addColumn<FieldList>("folded");
    const FieldList untouched = {kLowest, kHighest};
    QTest::newRow("all four") << QVector<quint32>{1, 1, 1, 1} << true << FieldList{41, 23, 7, 3} << FieldList{41, 41};
    QTest::newRow("none") << QVector<quint32>{0, 0, 0, 0} << false << FieldList{0, 0, 0, 0} << untouched;
    QTest::newRow("other bits do not count")
        << QVector<quint32>{2, 4, 8, 0xFFFFFFFE} << false << FieldList{0, 0, 0, 0} << untouched;
    QTest::newRow("bit 0 among others") << QVector<quint32>{0xFFFFFFFF, 3, 0, 0} << true << FieldList{41, 23, 0, 0}
                                        << FieldList{41, 41};
    QTest::newRow("only the bus") << QVector<quint32>{0, 0, 0, 1} << true << FieldList{0, 0, 0, 3} << FieldList{0, 0};
}

void TestDeviceTelemetry::gpuUsage()
{
    QFETCH(QVector<quint32>, present);
    QFETCH(bool, result);
    QFETCH(FieldList, percent);
    QFETCH(FieldList, folded);
    RawDriver driver;
    for (int i = 0; i < present.size(); ++i)
        driver.card().utilization.utilization[i].present = present[i];
    driver.card().utilization.utilization[4] = {1, 99}; // of no interest
    NvGpuControl gpu;
    NvUsageInfo out{9, 9, 9, 9};
    QCOMPARE(gpu.getGpuUsage(out), result);
    QCOMPARE(fields(out), percent);
    QCOMPARE(extreme(gpu, ExtremeGpuUsage), folded);
}

void TestDeviceTelemetry::thermalSensor_data()
{
    QTest::addColumn<quint32>("count");
    QTest::addColumn<FieldList>("targets");
    QTest::addColumn<FieldList>("degrees"); // without a GPU sensor zeros, and a failure
    const FieldList first = {1, 101, 51};
    const FieldList second = {2, 102, 52};
    const FieldList third = {3, 103, 53};
    const FieldList zero = {0, 0, 0};
    QTest::newRow("the only sensor") << 1u << FieldList{1, 0, 0} << first;
    QTest::newRow("the second is the GPU") << 3u << FieldList{2, 1, 0} << second;
    QTest::newRow("the first of two GPU sensors") << 3u << FieldList{4, 1, 1} << second;
    QTest::newRow("the third") << 3u << FieldList{2, 4, 1} << third;
    QTest::newRow("GPU sensor behind the count") << 2u << FieldList{2, 4, 1} << zero;
    QTest::newRow("no GPU sensor") << 3u << FieldList{2, 4, 8} << zero;
    QTest::newRow("no sensor at all") << 0u << FieldList{1, 1, 1} << zero;
    QTest::newRow("count beyond the record") << 4u << FieldList{2, 4, 8} << zero;
    QTest::newRow("count far beyond the record") << 0xFFFFFFFFu << FieldList{2, 4, 8} << zero;
    QTest::newRow("count far beyond, GPU sensor in the record") << 0x80000000u << FieldList{2, 4, 1} << third;
}

void TestDeviceTelemetry::thermalSensor()
{
    QFETCH(quint32, count);
    QFETCH(FieldList, targets);
    QFETCH(FieldList, degrees);
    const bool found = degrees != FieldList{0, 0, 0};
    RawDriver driver;
    driver.card().thermal.count = count;
    for (int i = 0; i < 3; ++i)
        driver.card().thermal.sensor[i] = {0, 1 + i, 101 + i, 51 + i, targets[i]};
    NvGpuControl gpu;
    driver.forgetCalls();
    NvThermalInfo out{9, 9, 9};
    QCOMPARE(gpu.getThermalSensor(out), found);
    QCOMPARE(fields(out), degrees);
    QCOMPARE(extreme(gpu, ExtremeTemperature), (FieldList{degrees[2], degrees[2]}));
    QCOMPARE(driver.rawCalls(), QStringList{"GPU_GetThermalSettings gpu0 sensor=0 0x20044 [4]=3"});

    driver.knows(Operation::NvAPI_GPU_GetThermalSettings, {0x10044});
    driver.forgetCalls();
    QCOMPARE(gpu.getThermalSensor(out), found);
    QCOMPARE(fields(out), degrees);
    QCOMPARE(driver.rawCalls(), (QStringList{"GPU_GetThermalSettings gpu0 sensor=0 0x20044 [4]=3 -> -9",
                                             "GPU_GetThermalSettings gpu0 sensor=0 0x10044 [4]=3"}));
}

void TestDeviceTelemetry::memoryInfo_data()
{
    QTest::addColumn<QVector<quint32>>("known");
    QTest::addColumn<bool>("tcc");
    QTest::addColumn<QVector<quint32>>("told"); // dedicated, available, available now
    QTest::addColumn<FieldList>("figures");     // used, total, free, available
    using Words = QVector<quint32>;
    const Words told = {8388608, 8126464, 6291456};
    QTest::newRow("newest version") << Words{0x30020} << false << told
                                    << FieldList{2097152, 8388608, 6291456, 8126464};
    QTest::newRow("version 2") << Words{0x20018} << false << told << FieldList{2097152, 8388608, 6291456, 8126464};
    QTest::newRow("version 1 has no figure of now")
        << Words{0x10014} << false << told << FieldList{262144, 8388608, 8126464, 8126464};
    QTest::newRow("TCC card has a total only") << Words{0x30020} << true << told << FieldList{0, 8388608, 0, 0};
    QTest::newRow("TCC card at version 1") << Words{0x10014} << true << told << FieldList{0, 8388608, 0, 0};
    QTest::newRow("more free than there is")
        << Words{0x30020} << false << Words{1000, 1000, 1500} << FieldList{-500, 1000, 1500, 1000};
    QTest::newRow("more than 2^31 KB") << Words{0x30020} << false << Words{0x80000400, 0, 0}
                                       << FieldList{qint32(0x80000400), qint32(0x80000400), 0, 0};
    QTest::newRow("total 0, all ones free")
        << Words{0x30020} << false << Words{0, 0, 0xFFFFFFFF} << FieldList{1, 0, -1, 0};
}

void TestDeviceTelemetry::memoryInfo()
{
    QFETCH(QVector<quint32>, known);
    QFETCH(bool, tcc);
    QFETCH(QVector<quint32>, told);
    QFETCH(FieldList, figures);
    RawDriver driver;
    driver.knows(Operation::NvAPI_GPU_GetMemoryInfo, {known.begin(), known.end()});
    driver.card().tcc = tcc;
    driver.card().memory.dedicatedVideoMemory = told[0];
    driver.card().memory.availableDedicatedVideoMemory = told[1];
    driver.card().memory.curAvailableDedicatedVideoMemory = told[2];
    NvGpuControl gpu;
    NvMemoryInfo out{9, 9, 9, 9};
    QCOMPARE(gpu.getMemoryInfo(out), true);
    QCOMPARE(fields(out), figures);
    QCOMPARE(extreme(gpu, ExtremeMemoryUsed), (FieldList{figures[0], figures[0]}));
}

void TestDeviceTelemetry::boardSensor_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("degrees");
    QTest::newRow("25 degrees") << QByteArray::fromHex("1900") << 25;
    QTest::newRow("25.5 degrees drop the fraction") << QByteArray::fromHex("1980") << 25;
    QTest::newRow("25.9 degrees drop the fraction") << QByteArray::fromHex("19F0") << 25;
    QTest::newRow("0 degrees") << QByteArray::fromHex("0000") << 0;
    QTest::newRow("0.9 degrees") << QByteArray::fromHex("00F0") << 0;
    QTest::newRow("highest") << QByteArray::fromHex("7FFF") << 127;
    QTest::newRow("-25 degrees") << QByteArray::fromHex("E700") << -25;
    QTest::newRow("-24.5 degrees towards zero") << QByteArray::fromHex("E780") << -24;
    QTest::newRow("-0.5 degrees yields 0") << QByteArray::fromHex("FF80") << 0;
    QTest::newRow("-1 degree") << QByteArray::fromHex("FF00") << -1;
    QTest::newRow("-0.0625 degrees yields 0") << QByteArray::fromHex("FFF0") << 0;
    QTest::newRow("lowest") << QByteArray::fromHex("8000") << -128;
    QTest::newRow("the low four bits are not looked at") << QByteArray::fromHex("190F") << 25;
}

void TestDeviceTelemetry::boardSensor()
{
    QFETCH(QByteArray, bytes);
    QFETCH(int, degrees);
    RawDriver driver;
    driver.card().i2cReplies[0x96] = bytes;
    NvGpuControl gpu;
    int value = 99;
    QCOMPARE(gpu.readBoardSensor(0x96, value), true);
    QCOMPARE(value, degrees);
}

void TestDeviceTelemetry::boardSensorTransfer()
{
    RawDriver driver;
    driver.card().i2cReplies.remove(0x90);
    NvGpuControl gpu;
    driver.forgetCalls();
    int value = 99;
    QCOMPARE(gpu.readBoardSensor(0x9E, value), true);
    QCOMPARE(driver.rawCalls(),
             QStringList{"I2CRead gpu0 0x3002C addr=9E reg=00 regSize=1 size=2 speed=FFFF/6 port=1/1"});
    QCOMPARE(gpu.readBoardSensor(0x90, value), false);
    QCOMPARE(value, 0);
}

void TestDeviceTelemetry::boardTemperatures()
{
    RawDriver driver;
    NvGpuControl gpu;
    NvBoardTemperatures out;
    gpu.getBoardTemperatures(out);
    QCOMPARE(fields(out), (FieldList{25, 42, 30, -25}));
    QCOMPARE(extreme(gpu, ExtremeSensor9E), (FieldList{25, 25}));
    QCOMPARE(extreme(gpu, ExtremeSensor90), (FieldList{42, 42}));
    QCOMPARE(extreme(gpu, ExtremeSensor96), (FieldList{30, 30}));
    QCOMPARE(extreme(gpu, ExtremeSensor92), (FieldList{-25, -25}));
}

void TestDeviceTelemetry::boardTemperaturesWithoutSensors()
{
    RawDriver driver;
    driver.card().i2cReplies.clear();
    NvGpuControl gpu;
    driver.forgetCalls();
    NvBoardTemperatures out{9, 9, 9, 9};
    gpu.getBoardTemperatures(out);
    QCOMPARE(fields(out), (FieldList{0, 0, 0, 0}));
    for (int pair = ExtremeSensor9E; pair <= ExtremeSensor92; ++pair)
        QCOMPARE(extreme(gpu, pair), (FieldList{0, 0}));
    QStringList addresses;
    for (const QString &line : driver.rawCalls(Operation::NvAPI_I2CRead))
        addresses << line.section(' ', 3, 3);
    QCOMPARE(addresses, (QStringList{"addr=9E", "addr=90", "addr=96", "addr=92"}));
}

void TestDeviceTelemetry::samplingCycleCalls()
{
    RawDriver driver;
    NvGpuControl gpu;
    driver.forgetCalls();

    NvThermalPolicyInfo policy;
    NvMemoryInfo memory;
    NvThermalInfo thermal;
    NvClockSet clocks;
    NvClockSet base;
    NvCoolerInfo cooler;
    NvUsageInfo usage;
    NvExtremes extremes;
    NvInfo info;
    NvBoardTemperatures board;
    gpu.getThermalPolicyInfo(policy);
    gpu.getMemoryInfo(memory);
    gpu.getThermalSensor(thermal);
    gpu.getCurrentClocks(clocks);
    gpu.getBaseClocks(base, false);
    gpu.getCoolerInfo(cooler);
    gpu.getGpuUsage(usage);
    gpu.getExtremes(extremes);
    gpu.getFixedInfo(info);
    gpu.getBoardTemperatures(board);
    gpu.getExtremes(extremes);

    const QString i2cRead = "I2CRead gpu0 0x3002C addr=%1 reg=00 regSize=1 size=2 speed=FFFF/6 port=1/1";
    QCOMPARE(driver.rawCalls(), (QStringList{
                                    "GPU_ClientThermalPoliciesGetInfo gpu0 0x20068",
                                    "GPU_ClientThermalPoliciesGetStatus gpu0 0x20038 [4]=1 [8]=3",
                                    "GPU_GetMemoryInfo gpu0 0x30020",
                                    "GPU_GetThermalSettings gpu0 sensor=0 0x20044 [4]=3",
                                    "GPU_GetAllClockFrequencies gpu0 0x30108",
                                    "GPU_GetRamType gpu0",
                                    "GPU_GetPstates20 gpu0 0x31CF8",
                                    "GPU_GetAllClockFrequencies gpu0 0x30108 [4]=1",
                                    "GPU_GetRamType gpu0",
                                    "GPU_GetTachReading gpu0",
                                    "GPU_GetCoolerSettings gpu0 cooler=7 0x40558",
                                    "GPU_GetDynamicPstatesInfoEx gpu0 0x10048",
                                    "GPU_GetFullName gpu0",
                                    "GPU_GetMemoryInfo gpu0 0x30020",
                                    "GPU_GetRamType gpu0",
                                    "GPU_GetPstates20 gpu0 0x31CF8",
                                    "GPU_GetAllClockFrequencies gpu0 0x30108 [4]=1",
                                    "GPU_GetRamType gpu0",
                                    "GPU_GetPstates20 gpu0 0x31CF8",
                                    "GPU_GetAllClockFrequencies gpu0 0x30108 [4]=1",
                                    "GPU_GetRamType gpu0",
                                    "SYS_GetDriverAndBranchVersion",
                                    "SYS_GetChipSetInfo 0x400E8",
                                    "GPU_GetFBWidthAndLocation gpu0",
                                    "GPU_GetVbiosVersionString gpu0",
                                    i2cRead.arg("9E"),
                                    i2cRead.arg("90"),
                                    i2cRead.arg("96"),
                                    i2cRead.arg("92"),
                                }));
}

void TestDeviceTelemetry::manyThreadsReadOneObject()
{
    RawDriver driver;
    NvGpuControl gpu;
    NvClockSet first;
    gpu.getCurrentClocks(first); // every pair that is checked below holds a sample from here on
    std::atomic<int> torn{0};
    std::atomic<bool> wrong{false};
    const auto sample = [&] {
        for (int i = 0; i < 500; ++i) {
            NvThermalInfo thermal;
            NvClockSet clocks;
            NvUsageInfo usage;
            if (!gpu.getThermalSensor(thermal) || !gpu.getGpuUsage(usage) || thermal.currentTemp != 52)
                wrong = true;
            gpu.getCurrentClocks(clocks);
        }
    };
    const auto watch = [&] {
        for (int i = 0; i < 2000; ++i) {
            NvExtremes extremes;
            gpu.getExtremes(extremes);
            if (fields(extremes.pairs[ExtremeGpuClock]) != FieldList{1721, 1721})
                ++torn;
        }
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i)
        threads.emplace_back(sample);
    threads.emplace_back(watch);
    for (std::thread &thread : threads)
        thread.join();
    QCOMPARE(torn.load(), 0);
    QCOMPARE(wrong.load(), false);
    QCOMPARE(extreme(gpu, ExtremeTemperature), (FieldList{52, 52}));
}

QTEST_APPLESS_MAIN(TestDeviceTelemetry)
#include "TestDeviceTelemetry.moc"
