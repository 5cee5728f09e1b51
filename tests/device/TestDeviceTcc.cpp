#include "device/NvGpuControl.h"

#include "support/DeviceFields.h"
#include "support/RawDriver.h"

#include <QtTest>

/// A machine with compute cards alone: what the ordinary enumeration leaves empty, the other one fills.
class TestDeviceTcc : public QObject
{
    Q_OBJECT

private slots:
    void twoCardsAndNoOrdinaryOne_data();
    void twoCardsAndNoOrdinaryOne();
};

void TestDeviceTcc::twoCardsAndNoOrdinaryOne_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("addressed");
    QTest::addColumn<FieldList>("memoryKB"); // used, total, free, available: a total alone

    QTest::newRow("the first") << 0 << "gpu0" << FieldList{0, 8388608, 0, 0};
    QTest::newRow("the second") << 1 << "gpu1" << FieldList{0, 4194304, 0, 0};
    QTest::newRow("beyond both") << 2 << "gpu1" << FieldList{0, 4194304, 0, 0};
}

void TestDeviceTcc::twoCardsAndNoOrdinaryOne()
{
    QFETCH(int, index);
    QFETCH(QString, addressed);
    QFETCH(FieldList, memoryKB);

    RawDriver driver;
    driver.cards.resize(2);
    for (RawCard &card : driver.cards)
        card.tcc = true;
    driver.card(1).memory.dedicatedVideoMemory = 4194304;
    NvGpuControl gpu;
    QVERIFY(gpu.isReady());
    QCOMPARE(gpu.gpuCount(), 2u);
    QVERIFY(gpu.isTccGpu(driver.handle(0)));
    QVERIFY(gpu.isTccGpu(driver.handle(1)));

    gpu.setCurrentGpu(index);
    driver.forgetCalls();
    NvMemoryInfo memory{9, 9, 9, 9};
    QVERIFY(gpu.getMemoryInfo(memory));
    QCOMPARE(driver.rawCalls(), QStringList{"GPU_GetMemoryInfo " + addressed + " 0x30020"});
    QCOMPARE(fields(memory), memoryKB);
}

QTEST_APPLESS_MAIN(TestDeviceTcc)

#include "TestDeviceTcc.moc"
