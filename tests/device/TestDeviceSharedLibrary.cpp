#include "device/NvGpuControl.h"

#include "support/DeviceFields.h"
#include "support/RawDriver.h"

#include <QtTest>

#include <memory>

/// Several device objects and one driver library: who loads it, and when it goes.
class TestDeviceSharedLibrary : public QObject
{
    Q_OBJECT

private slots:
    void instancesShareTheLibrary();
    void failedStartDoesNotDisturbTheNext();
    void failedStartLeavesTheOthersTheDriver_data();
    void failedStartLeavesTheOthersTheDriver();
    void failedFirstStartLetsTheLibraryGo();
    void startsThatFailAndGoOnShareTheLibrary();
};

void TestDeviceSharedLibrary::instancesShareTheLibrary()
{
    RawDriver driver;
    NvGpuControl first;
    {
        NvGpuControl second;
        QCOMPARE(nvApiLoadCount(), 2);
        QCOMPARE(driver.loads(), 1);
    }
    QCOMPARE(nvApiLoadCount(), 1);
    QCOMPARE(driver.releases(), 0);
    QCOMPARE(first.getGpuName(), std::string("GeForce GTX 1070 Ti"));
}

void TestDeviceSharedLibrary::failedStartDoesNotDisturbTheNext()
{
    RawDriver driver;
    driver.libraryExists = false;
    {
        NvGpuControl gpu;
        QCOMPARE(gpu.isReady(), false);
        QCOMPARE(gpu.gpuCount(), 0u);
        QCOMPARE(gpu.getGpuName(), std::string());
    }
    QCOMPARE(nvApiLoadCount(), 0);
    QCOMPARE(driver.rawCalls(), QStringList{});

    driver.libraryExists = true;
    driver.fails(Operation::NvAPI_Initialize, NVAPI_ERROR, 1, 1);
    {
        NvGpuControl gpu;
        QCOMPARE(gpu.isReady(), false);
    }
    QCOMPARE(nvApiLoadCount(), 0);

    NvGpuControl gpu;
    QCOMPARE(gpu.isReady(), true);
    QCOMPARE(nvApiLoadCount(), 1);
    QCOMPARE(gpu.getGpuName(), std::string("GeForce GTX 1070 Ti"));
}

void TestDeviceSharedLibrary::failedStartLeavesTheOthersTheDriver_data()
{
    QTest::addColumn<NvAPI_Status>("status");
    QTest::addColumn<bool>("ready");
    QTest::newRow("error") << NVAPI_ERROR << false;
    QTest::newRow("library not found") << NVAPI_LIBRARY_NOT_FOUND << false;
    QTest::newRow("another failure, which goes on") << -4 << true;
}

void TestDeviceSharedLibrary::failedStartLeavesTheOthersTheDriver()
{
    QFETCH(NvAPI_Status, status);
    QFETCH(bool, ready);
    RawDriver driver;
    driver.fails(Operation::NvAPI_Initialize, status, 3, 1);
    const std::string name = "GeForce GTX 1070 Ti";
    {
        NvGpuControl first;
        auto second = std::make_unique<NvGpuControl>();
        {
            NvGpuControl third;
            QCOMPARE(third.isReady(), ready);
            QCOMPARE(first.getGpuName(), name);
            QCOMPARE(second->getGpuName(), name);
        }
        QCOMPARE(first.getGpuName(), name);
        QCOMPARE(second->getGpuName(), name);
        second.reset();
        QCOMPARE(first.getGpuName(), name);
        QCOMPARE(driver.rawCalls(Operation::NvAPI_Unload), QStringList{});
        QCOMPARE(driver.releases(), 0);
    }
    QCOMPARE(driver.rawCalls(Operation::NvAPI_Unload), QStringList{"Unload"});
    QCOMPARE(driver.releases(), 1);
    QCOMPARE(nvApiLoadCount(), 0);
    QCOMPARE(driver.strayCalls(), 0);
}

void TestDeviceSharedLibrary::failedFirstStartLetsTheLibraryGo()
{
    RawDriver driver;
    driver.fails(Operation::NvAPI_Initialize, NVAPI_ERROR, 1, 1);
    NvGpuControl failed;
    QCOMPARE(driver.rawCalls(), (QStringList{"Initialize -> -1", "GetErrorMessage status=-1"}));
    QCOMPARE(driver.releases(), 1);
    NvGpuControl working;
    QCOMPARE(driver.loads(), 2);
    QVERIFY(working.isReady());
}

void TestDeviceSharedLibrary::startsThatFailAndGoOnShareTheLibrary()
{
    RawDriver driver;
    driver.fails(Operation::NvAPI_Initialize, -4);
    {
        auto first = std::make_unique<NvGpuControl>();
        NvGpuControl second;
        first.reset();
        QCOMPARE(second.getGpuName(), std::string("GeForce GTX 1070 Ti"));
        QCOMPARE(driver.releases(), 0);
    }
    QCOMPARE(driver.releases(), 1);
    QCOMPARE(driver.rawCalls(Operation::NvAPI_Unload), QStringList{}); // it never was started
}

QTEST_APPLESS_MAIN(TestDeviceSharedLibrary)
#include "TestDeviceSharedLibrary.moc"
