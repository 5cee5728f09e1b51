#include "device/DeviceTest.h"

#include <QtTest>

/// The running extremes of the live readings.
class TestDeviceExtremes : public QObject
{
    Q_OBJECT

private slots:
    void newExtremes();
    void firstSampleSetsBoth();
    void laterSamplesWiden();
    void failureFoldsZero_data();
    void failureFoldsZero();
    void missingTachometerPullsTheMinimumToZero();
};

void TestDeviceExtremes::newExtremes()
{
    RawDriver driver;
    NvGpuControl gpu;
    for (int pair = 0; pair < ExtremeCount; ++pair)
        QCOMPARE(extreme(gpu, pair), (FieldList{kLowest, kHighest}));
    QCOMPARE(int(ExtremeCount), 10);
}

void TestDeviceExtremes::firstSampleSetsBoth()
{
    RawDriver driver;
    NvGpuControl gpu;
    NvClockSet clocks;
    NvCoolerInfo cooler;
    NvThermalInfo thermal;
    NvMemoryInfo memory;
    NvUsageInfo usage;
    NvBoardTemperatures board;
    gpu.getCurrentClocks(clocks);
    gpu.getCoolerInfo(cooler);
    gpu.getThermalSensor(thermal);
    gpu.getMemoryInfo(memory);
    gpu.getGpuUsage(usage);
    gpu.getBoardTemperatures(board);
    const FieldList values = {1721, 4006, 1200, 52, 2097152, 41, 25, 42, 30, -25};
    for (int pair = 0; pair < ExtremeCount; ++pair)
        QCOMPARE(extreme(gpu, pair), (FieldList{values[pair], values[pair]}));
}

void TestDeviceExtremes::laterSamplesWiden()
{
    RawDriver driver;
    NvGpuControl gpu;
    NvThermalInfo out;
    for (const qint32 degrees : {52, 50, 51, 70, 60}) {
        driver.card().thermal.sensor[0].currentTemp = degrees;
        gpu.getThermalSensor(out);
    }
    QCOMPARE(extreme(gpu, ExtremeTemperature), (FieldList{70, 50}));
}

void TestDeviceExtremes::failureFoldsZero_data()
{
    QTest::addColumn<Arrange>("arrange");
    QTest::addRow("failing calls") << Arrange([](RawDriver &driver) {
        for (const Operation operation :
             {Operation::NvAPI_GPU_GetDynamicPstatesInfoEx, Operation::NvAPI_GPU_GetThermalSettings,
              Operation::NvAPI_GPU_GetMemoryInfo, Operation::NvAPI_GPU_GetCoolerSettings, Operation::NvAPI_I2CRead,
              Operation::NvAPI_I2CReadEx, Operation::NvAPI_GPU_GetAllClockFrequencies})
            driver.fails(operation, NVAPI_INVALID_HANDLE);
    });
    QTest::addRow("missing entries") << Arrange([](RawDriver &driver) {
        for (const Operation operation :
             {Operation::NvAPI_GPU_GetDynamicPstatesInfoEx, Operation::NvAPI_GPU_GetThermalSettings,
              Operation::NvAPI_GPU_GetMemoryInfo, Operation::NvAPI_GPU_GetTachReading,
              Operation::NvAPI_GPU_GetCoolerSettings, Operation::NvAPI_I2CRead, Operation::NvAPI_I2CReadEx,
              Operation::NvAPI_GPU_GetAllClockFrequencies})
            driver.lacks(operation);
    });
    QTest::addRow("no card") << Arrange([](RawDriver &driver) { driver.cards.clear(); });
}

void TestDeviceExtremes::failureFoldsZero()
{
    QFETCH(Arrange, arrange);
    RawDriver driver;
    arrange(driver);
    NvGpuControl gpu;
    NvClockSet clocks;
    NvCoolerInfo cooler;
    NvThermalInfo thermal{9, 9, 9};
    NvMemoryInfo memory{9, 9, 9, 9};
    NvUsageInfo usage{9, 9, 9, 9};
    NvBoardTemperatures board;
    gpu.getCurrentClocks(clocks);
    gpu.getCoolerInfo(cooler);
    QVERIFY(!gpu.getThermalSensor(thermal));
    QVERIFY(!gpu.getMemoryInfo(memory));
    QVERIFY(!gpu.getGpuUsage(usage));
    gpu.getBoardTemperatures(board);
    QCOMPARE(fields(thermal), (FieldList{0, 0, 0}));
    QCOMPARE(fields(memory), (FieldList{0, 0, 0, 0}));
    QCOMPARE(fields(usage), (FieldList{0, 0, 0, 0}));
    for (int pair = 0; pair < ExtremeCount; ++pair)
        QCOMPARE(extreme(gpu, pair), (FieldList{0, 0}));
}

void TestDeviceExtremes::missingTachometerPullsTheMinimumToZero()
{
    RawDriver driver;
    NvGpuControl gpu;
    NvCoolerInfo out;
    gpu.getCoolerInfo(out);
    QCOMPARE(extreme(gpu, ExtremeTachRpm), (FieldList{1200, 1200}));
    driver.fails(Operation::NvAPI_GPU_GetTachReading, NVAPI_ERROR);
    QCOMPARE(gpu.getCoolerInfo(out), true);
    QCOMPARE(out.tachRpm, 0);
    QCOMPARE(extreme(gpu, ExtremeTachRpm), (FieldList{1200, 0}));
}

QTEST_APPLESS_MAIN(TestDeviceExtremes)
#include "TestDeviceExtremes.moc"
