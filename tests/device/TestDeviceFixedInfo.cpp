#include "device/DeviceTest.h"

#include <QtTest>

#include <cstring>

/// The texts of the card's fixed information.
class TestDeviceFixedInfo : public QObject
{
    Q_OBJECT

private slots:
    void healthyCard();
    void calls();
    void withoutCardTheRecordIsEmpty();
    void everythingFails();
    void memoryTypes_data();
    void memoryTypes();
    void texts_data();
    void texts();
    void textWithoutAnEndStaysInItsBuffer();
};

void TestDeviceFixedInfo::healthyCard()
{
    RawDriver driver;
    NvGpuControl gpu;
    NvInfo info;
    info.biosVersion = "left over";
    gpu.getFixedInfo(info);
    QCOMPARE(info.gpuName, std::string("GeForce GTX 1070 Ti"));
    QCOMPARE(info.memSize, std::string("8192MB"));
    QCOMPARE(info.memBitWidth, std::string("256BIT"));
    QCOMPARE(info.memType, std::string("GDDR5"));
    QCOMPARE(info.memBandWidth, std::string("256.4GB/s"));
    QCOMPARE(info.gpuFreClock, std::string("1607MHz"));
    QCOMPARE(info.memFreClock, std::string("4006MHz"));
    QCOMPARE(info.customGpuFreClock, std::string("1607MHz"));
    QCOMPARE(info.customMemFreClock, std::string("4006MHz"));
    QCOMPARE(info.gpuFreClockChanged, 0);
    QCOMPARE(info.memFreClockChanged, 0);
    QCOMPARE(info.driverVersion, std::string("38532"));
    QCOMPARE(info.biosVersion, std::string("86.04.85.00.AB"));
}

void TestDeviceFixedInfo::calls()
{
    RawDriver driver;
    NvGpuControl gpu;
    driver.forgetCalls();
    NvInfo info;
    gpu.getFixedInfo(info);
    const QStringList baseClocks = {"GPU_GetPstates20 gpu0 0x31CF8", "GPU_GetAllClockFrequencies gpu0 0x30108 [4]=1",
                                    "GPU_GetRamType gpu0"};
    QCOMPARE(driver.rawCalls(),
             QStringList({"GPU_GetFullName gpu0", "GPU_GetMemoryInfo gpu0 0x30020", "GPU_GetRamType gpu0"}) +
                 baseClocks + baseClocks +
                 QStringList({"SYS_GetDriverAndBranchVersion", "SYS_GetChipSetInfo 0x400E8",
                              "GPU_GetFBWidthAndLocation gpu0", "GPU_GetVbiosVersionString gpu0"}));
}

void TestDeviceFixedInfo::withoutCardTheRecordIsEmpty()
{
    RawDriver driver;
    driver.cards.clear();
    NvGpuControl gpu;
    driver.forgetCalls();
    const std::string old = "old";
    NvInfo info{old, old, old, old, old, old, old, old, 7, 8, old, old, old};
    gpu.getFixedInfo(info);
    for (const std::string *text : {&info.gpuName, &info.memSize, &info.memBitWidth, &info.memType,
                                    &info.memBandWidth, &info.gpuFreClock, &info.memFreClock, &info.customGpuFreClock,
                                    &info.customMemFreClock, &info.driverVersion, &info.biosVersion})
        QCOMPARE(*text, std::string());
    QCOMPARE(info.gpuFreClockChanged, 0);
    QCOMPARE(info.memFreClockChanged, 0);
    QCOMPARE(driver.rawCalls(), QStringList{});
}

void TestDeviceFixedInfo::everythingFails()
{
    RawDriver driver;
    NvGpuControl gpu;
    for (const Operation operation : RawDriver::operations()) {
        if (operation != Operation::NvAPI_Unload)
            driver.fails(operation);
    }
    NvInfo info;
    gpu.getFixedInfo(info);
    const std::string unknown = "Unknown";
    QCOMPARE(info.gpuName, unknown);
    QCOMPARE(info.memSize, unknown);
    QCOMPARE(info.memBitWidth, unknown);
    QCOMPARE(info.memType, unknown);
    QCOMPARE(info.memBandWidth, std::string("0.0GB/s"));
    QCOMPARE(info.gpuFreClock, std::string("0MHz"));
    QCOMPARE(info.memFreClock, std::string("0MHz"));
    QCOMPARE(info.customGpuFreClock, std::string("0MHz"));
    QCOMPARE(info.customMemFreClock, std::string("0MHz"));
    QCOMPARE(info.gpuFreClockChanged, 0);
    QCOMPARE(info.memFreClockChanged, 0);
    QCOMPARE(info.driverVersion, unknown);
    QCOMPARE(info.biosVersion, unknown);
}

void TestDeviceFixedInfo::memoryTypes_data()
{
    QTest::addColumn<quint32>("type");
    QTest::addColumn<std::string>("text");
    QTest::addColumn<std::string>("bandWidth");
    // 4006 MHz over 256 bits carry 128.2 GB/s at one transfer a clock
    const std::string once = "128.2GB/s";
    const std::string twice = "256.4GB/s";
    const std::string fourTimes = "512.8GB/s";
    // clang-format off
    QTest::newRow("0")          << 0u  << std::string("Unknown") << twice;
    QTest::newRow("1")          << 1u  << std::string("SDRAM")   << once;
    QTest::newRow("2")          << 2u  << std::string("DDR1")    << twice;
    QTest::newRow("3")          << 3u  << std::string("DDR2")    << twice;
    QTest::newRow("4")          << 4u  << std::string("GDDR2")   << twice;
    QTest::newRow("5")          << 5u  << std::string("GDDR3")   << twice;
    QTest::newRow("6")          << 6u  << std::string("GDDR4")   << fourTimes;
    QTest::newRow("7")          << 7u  << std::string("DDR3")    << twice;
    QTest::newRow("8")          << 8u  << std::string("GDDR5")   << twice;
    QTest::newRow("9")          << 9u  << std::string("LPDDR2")  << twice;
    QTest::newRow("10")         << 10u << std::string("GDDR5X")  << twice;
    QTest::newRow("11")         << 11u << std::string("HBM1")    << twice;
    QTest::newRow("12")         << 12u << std::string("HBM2")    << twice;
    QTest::newRow("13")         << 13u << std::string("SDDR4")   << twice;
    QTest::newRow("one beyond") << 14u << std::string("Unknown") << twice;
    QTest::newRow("all ones")   << 0xFFFFFFFFu << std::string("Unknown") << twice;
    // clang-format on
}

void TestDeviceFixedInfo::memoryTypes()
{
    QFETCH(quint32, type);
    QFETCH(std::string, text);
    QFETCH(std::string, bandWidth);
    RawDriver driver;
    driver.card().ramType = 6; // leaves a factor that the next read must replace
    NvGpuControl gpu;
    NvInfo info;
    gpu.getFixedInfo(info);
    driver.card().ramType = type;
    gpu.getFixedInfo(info);
    QCOMPARE(info.memType, text);
    QCOMPARE(info.memBandWidth, bandWidth);
}

void TestDeviceFixedInfo::texts_data()
{
    QTest::addColumn<Arrange>("arrange");
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *name, const char *field, const char *text, const Arrange &arrange) {
        QTest::newRow(name) << arrange << field << text;
    };
    row("8,388,608 KB", "memSize", "8192MB", [](RawDriver &) {});
    row("a broken megabyte is dropped", "memSize", "2047MB",
        [](RawDriver &driver) { driver.card().memory.dedicatedVideoMemory = 2048 * 1024 - 1; });
    row("TCC card has a total too", "memSize", "8192MB", [](RawDriver &driver) { driver.card().tcc = true; });
    row("failed type counts as 0", "memType", "Unknown",
        [](RawDriver &driver) { driver.fails(Operation::NvAPI_GPU_GetRamType, NVAPI_ERROR); });
    row("failed type that fills its number counts as 0 too", "memType", "Unknown", [](RawDriver &driver) {
        driver.lacks(Operation::NvAPI_GPU_GetRamType);
        driver.card().ramType = 6;
    });
    row("failed type carries two transfers a clock", "memBandWidth", "256.4GB/s",
        [](RawDriver &driver) { driver.lacks(Operation::NvAPI_GPU_GetRamType); });
    row("unreadable width", "memBitWidth", "Unknown",
        [](RawDriver &driver) { driver.fails(Operation::NvAPI_GPU_GetFBWidthAndLocation, NVAPI_ERROR); });
    row("unreadable width carries nothing", "memBandWidth", "0.0GB/s",
        [](RawDriver &driver) { driver.fails(Operation::NvAPI_GPU_GetFBWidthAndLocation, NVAPI_ERROR); });
    row("narrow bus", "memBitWidth", "64BIT", [](RawDriver &driver) { driver.card().memoryWidthBits = 64; });
    row("bandwidth of a narrow bus", "memBandWidth", "64.1GB/s",
        [](RawDriver &driver) { driver.card().memoryWidthBits = 64; });
    row("bandwidth at the customised clock", "memBandWidth", "262.8GB/s",
        [](RawDriver &driver) { driver.card().p0Clock(1).freqDelta_kHz.value = 100000; });
    // the product is kept in 32 bits and taken as unsigned: 2 * 4006 * (2^32 - 1) leaves 4294959284
    row("bandwidth of a width of all ones", "memBandWidth", "536869.9GB/s",
        [](RawDriver &driver) { driver.card().memoryWidthBits = 0xFFFFFFFF; });
    row("driver version keeps its digits", "driverVersion", "38532", [](RawDriver &) {});
    row("one digit of a driver version", "driverVersion", "7", [](RawDriver &driver) { driver.driverVersion = 7; });
    row("no driver version", "driverVersion", "Unknown",
        [](RawDriver &driver) { driver.fails(Operation::NvAPI_SYS_GetDriverAndBranchVersion, NVAPI_ERROR); });
    row("BIOS version in upper case", "biosVersion", "1A.2B.ZZ-",
        [](RawDriver &driver) { driver.card().vbiosVersion = "1a.2b.zZ-"; });
    row("no BIOS version", "biosVersion", "Unknown",
        [](RawDriver &driver) { driver.fails(Operation::NvAPI_GPU_GetVbiosVersionString, NVAPI_ERROR); });
    row("the chipset never shows", "biosVersion", "86.04.85.00.AB",
        [](RawDriver &driver) { driver.fails(Operation::NvAPI_SYS_GetChipSetInfo, NVAPI_ERROR); });
    row("no name", "gpuName", "Unknown",
        [](RawDriver &driver) { driver.fails(Operation::NvAPI_GPU_GetFullName, NVAPI_ERROR); });
    row("graphics offset of +100 in the customised clock", "customGpuFreClock", "1707MHz",
        [](RawDriver &driver) { driver.card().p0Clock(0).freqDelta_kHz.value = 100000; });
    row("graphics offset of +100 not in the default clock", "gpuFreClock", "1607MHz",
        [](RawDriver &driver) { driver.card().p0Clock(0).freqDelta_kHz.value = 100000; });
    row("graphics offset of +100 as difference", "gpuFreClockChanged", "100",
        [](RawDriver &driver) { driver.card().p0Clock(0).freqDelta_kHz.value = 100000; });
    row("graphics offset of -50 as difference", "gpuFreClockChanged", "-50",
        [](RawDriver &driver) { driver.card().p0Clock(0).freqDelta_kHz.value = -50000; });
    const Arrange memoryPlus100 = [](RawDriver &driver) {
        driver.card().p0Clock(1).freqDelta_kHz.value = 100000;
    };
    row("memory offset of +100 as difference", "memFreClockChanged", "100", memoryPlus100);
    row("memory offset of +100 in the customised clock", "customMemFreClock", "4106MHz", memoryPlus100);
    row("memory offset of +100 not in the default clock", "memFreClock", "4006MHz", memoryPlus100);
    // A single-frequency memory clock whose base holds the offset already shows it twice: this is how the
    // rules for the two clocks meet on such a card.
    const Arrange singleType = [](RawDriver &driver) {
        driver.card().p0Clock(1).typeId = kPstateClockTypeSingle;
        driver.card().p0Clock(1).freqDelta_kHz.value = 100000;
    };
    row("memory clock of single type, default clock", "memFreClock", "3906MHz", singleType);
    row("memory clock of single type, customised clock", "customMemFreClock", "4106MHz", singleType);
    row("memory clock of single type, difference", "memFreClockChanged", "200", singleType);
}

void TestDeviceFixedInfo::texts()
{
    QFETCH(Arrange, arrange);
    QFETCH(QString, field);
    QFETCH(QString, text);
    RawDriver driver;
    arrange(driver);
    NvGpuControl gpu;
    NvInfo info;
    gpu.getFixedInfo(info);
    const QMap<QString, QString> shown = {
        {"gpuName", info.gpuName.c_str()},
        {"memSize", info.memSize.c_str()},
        {"memBitWidth", info.memBitWidth.c_str()},
        {"memType", info.memType.c_str()},
        {"memBandWidth", info.memBandWidth.c_str()},
        {"gpuFreClock", info.gpuFreClock.c_str()},
        {"memFreClock", info.memFreClock.c_str()},
        {"customGpuFreClock", info.customGpuFreClock.c_str()},
        {"customMemFreClock", info.customMemFreClock.c_str()},
        {"gpuFreClockChanged", QString::number(info.gpuFreClockChanged)},
        {"memFreClockChanged", QString::number(info.memFreClockChanged)},
        {"driverVersion", info.driverVersion.c_str()},
        {"biosVersion", info.biosVersion.c_str()},
    };
    QVERIFY(shown.contains(field));
    QCOMPARE(shown.value(field), text);
}

void TestDeviceFixedInfo::textWithoutAnEndStaysInItsBuffer()
{
    RawDriver driver;
    driver.card().fullName = std::string(200, 'n');
    driver.card().vbiosVersion = std::string(200, 'b');
    std::memset(driver.chipset.szVendorName, 'v', sizeof driver.chipset.szVendorName);
    std::memset(driver.chipset.szChipsetName, 'c', sizeof driver.chipset.szChipsetName);
    NvGpuControl gpu;
    NvInfo info;
    gpu.getFixedInfo(info);
    QVERIFY(info.gpuName.size() >= kNvApiShortTextSize - 1);
    QVERIFY(info.gpuName.size() <= kNvApiShortTextSize);
    QCOMPARE(info.gpuName, std::string(info.gpuName.size(), 'n'));
    QVERIFY(info.biosVersion.size() <= kNvApiShortTextSize);
    QCOMPARE(info.biosVersion, std::string(info.biosVersion.size(), 'B'));
}

QTEST_APPLESS_MAIN(TestDeviceFixedInfo)
#include "TestDeviceFixedInfo.moc"
