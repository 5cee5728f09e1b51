#include "device/DeviceTest.h"
#include "support/CallText.h"

#include <QtTest>

namespace
{

// Offsets in the frame for the LCD controller.
constexpr int kSequenceAt = 2;
constexpr int kCommandAt = 3;
constexpr int kMemoryTotalAt = 4;
constexpr int kModelDigitsAt = 14;
constexpr int kFanFlagAt = 19;
constexpr int kChecksumAt = 33;
constexpr int kLcdFrameSize = 35;

quint16 wordAt(const QByteArray &frame, int offset)
{
    return quint16(quint8(frame[offset]) | quint8(frame[offset + 1]) << 8);
}

} // namespace

/// The frames to the LCD controller, byte for byte, and the detection of both controllers.
class TestDeviceLcdFrames : public QObject
{
    Q_OBJECT

private slots:
    void sequenceOfTheProcess(); // first: it counts the frames of the process from the start
    void lcdFrame();
    void lcdFrameWithoutReadings();
    void lcdCommands_data();
    void lcdCommands();
    void lcdModel_data();
    void lcdModel();
    void lcdFanFlag_data();
    void lcdFanFlag();
    void lcdFields_data();
    void lcdFields();
    void lcdChecksumOverflowsEightBits();
    void lcdFrameFails();
    void lcdWithoutDriverSendsNothing();
    void detectionOfTwoCards();
};

void TestDeviceLcdFrames::sequenceOfTheProcess()
{
    RawDriver driver;
    driver.cards.resize(2);
    {
        // no driver: no frame, and no number used up
        driver.libraryExists = false;
        NvGpuControl notReady;
        QCOMPARE(notReady.sendCardInfoToLcd(true, true, 10, 0x80), false);
        driver.libraryExists = true;
    }
    NvGpuControl first;
    NvGpuControl second;
    second.setCurrentGpu(1);
    for (int frame = 1; frame <= 256; ++frame) {
        driver.forgetCalls();
        // the probe counts, and all cards share the counter
        NvGpuControl &card = frame % 2 ? first : second;
        QVERIFY(frame == 1 ? card.sendCardInfoToLcd(true, true, 10, 0x80)
                           : card.sendCardInfoToLcd(true, false, 0, 0x10));
        QCOMPARE(int(quint8(lastFrame(driver, kLcdAddress)[kSequenceAt])), frame & 0xFF);
    }
    // a frame that nobody takes has its number too
    driver.forgetCalls();
    driver.card().i2cListeners.clear();
    QVERIFY(!first.sendCardInfoToLcd(true, false, 0, 0x10));
    QCOMPARE(int(quint8(lastFrame(driver, kLcdAddress)[kSequenceAt])), 1);
    driver.forgetCalls();
    QVERIFY(second.sendCardInfoToLcd(true, false, 0, 0x10));
    QCOMPARE(int(quint8(lastFrame(driver, kLcdAddress)[kSequenceAt])), 2);
}

void TestDeviceLcdFrames::lcdFrame()
{
    RawDriver driver;
    NvGpuControl gpu;
    driver.forgetCalls();
    QVERIFY(gpu.sendCardInfoToLcd(true, false, 10, LcdDisplayTemperature));
    QByteArray frame = lastFrame(driver, kLcdAddress);
    QCOMPARE(frame.size(), kLcdFrameSize);
    // the sequence byte is the process's own affair; what it adds is taken out of the checksum
    const quint8 sequence = quint8(frame[kSequenceAt]);
    const quint16 sum = quint16(wordAt(frame, kChecksumAt) - sequence);
    frame[kSequenceAt] = 0;
    frame[kChecksumAt] = char(sum & 0xFF);
    frame[kChecksumAt + 1] = char(sum >> 8);
    QCOMPARE(shown(frame), QString("AA 88 00 40 " // head, command
                                   "00 00 80 00 " // 8388608 KB in all
                                   "47 06 "       // 1607 MHz
                                   "50 00 "       // limit of 80 degrees
                                   "48 0D "       // at most 3400 rpm
                                   "01 00 07 00 " // 1070
                                   "01 00 00 "    // Ti, no fan flag
                                   "00 00 20 00 " // 2097152 KB in use
                                   "B9 06 "       // 1721 MHz
                                   "34 00 "       // 52 degrees
                                   "B0 04 "       // 1200 rpm
                                   "00 00 "
                                   "B4 04")); // the sum of what stands before it: 0x04B4
}

void TestDeviceLcdFrames::lcdFrameWithoutReadings()
{
    RawDriver driver;
    NvGpuControl gpu;
    for (const Operation operation : RawDriver::operations()) {
        if (!operationText(operation).startsWith("I2C") && operation != Operation::NvAPI_Unload)
            driver.fails(operation);
    }
    driver.forgetCalls();
    QVERIFY(gpu.sendCardInfoToLcd(true, false, 10, LcdDisplayClock));
    const QByteArray frame = lastFrame(driver, kLcdAddress);
    QCOMPARE(shown(frame.left(2)), QString("AA 88"));
    QCOMPARE(shown(frame.mid(kCommandAt, 1)), QString("80"));
    QCOMPARE(frame.mid(kMemoryTotalAt, kChecksumAt - kMemoryTotalAt), QByteArray(29, '\0'));
    QCOMPARE(int(wordAt(frame, kChecksumAt)), 0xAA + 0x88 + quint8(frame[kSequenceAt]) + 0x80);
}

void TestDeviceLcdFrames::lcdCommands_data()
{
    QTest::addColumn<bool>("enable");
    QTest::addColumn<bool>("autoSwitch");
    QTest::addColumn<int>("time");
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("command");
    QTest::newRow("off") << false << false << 10 << 0x80 << 0xF0;
    QTest::newRow("off, rotating") << false << true << 10 << 0x80 << 0xF0;
    QTest::newRow("clock page") << true << false << 10 << 0x80 << 0x80;
    QTest::newRow("temperature page") << true << false << 10 << 0x40 << 0x40;
    QTest::newRow("memory page") << true << false << 10 << 0x20 << 0x20;
    QTest::newRow("other page") << true << false << 10 << 0x10 << 0x10;
    QTest::newRow("low byte of the mode") << true << false << 10 << 0x12345 << 0x45;
    QTest::newRow("negative mode") << true << false << 10 << -1 << 0xFF;
    QTest::newRow("probe") << true << true << 10 << 0x80 << 0xF6;
    const struct
    {
        int time;
        int code;
    } times[] = {
        {std::numeric_limits<int>::min(), 1},
        {-1, 1},
        {0, 1},
        {1, 0xB}, // the code of 30 seconds and more
        {2, 2},
        {3, 3},
        {4, 4},
        {5, 5},
        {6, 5},
        {7, 6},
        {10, 6},
        {11, 7},
        {15, 7},
        {16, 8},
        {20, 8},
        {21, 9},
        {24, 9},
        {25, 0xA},
        {29, 0xA},
        {30, 0xB},
        {31, 0xB},
        {std::numeric_limits<int>::max(), 0xB},
    };
    for (const auto &row : times)
        QTest::addRow("rotating every %d seconds", row.time) << true << true << row.time << 0x80 << (0xF0 | row.code);
}

void TestDeviceLcdFrames::lcdCommands()
{
    QFETCH(bool, enable);
    QFETCH(bool, autoSwitch);
    QFETCH(int, time);
    QFETCH(int, mode);
    QFETCH(int, command);
    RawDriver driver;
    NvGpuControl gpu;
    QVERIFY(gpu.sendCardInfoToLcd(enable, autoSwitch, time, mode));
    QCOMPARE(int(quint8(lastFrame(driver, kLcdAddress)[kCommandAt])), command);
}

void TestDeviceLcdFrames::lcdModel_data()
{
    QTest::addColumn<std::string>("name");
    QTest::addColumn<QString>("digits"); // with the "Ti" byte behind them
    const auto row = [](const char *name, const char *digits) {
        QTest::newRow(name) << std::string(name) << QString(digits);
    };
    row("GeForce GTX 1080 Ti", "01 00 08 00 01");
    row("GeForce GTX 960", "00 09 06 00 00");
    row("GeForce RTX 2080", "00 00 00 00 00");
    row("GeForce GTX 1070", "01 00 07 00 00");
    row("GeForce GTX 1080Ti", "00 00 00 00 01");
    row("GeForce GTX 1060 6GB", "01 00 06 00 00");
    row("GeForce GTX 10601 6GB", "01 00 06 00 00");
    row("GeForce GTX 1", "00 00 00 01 00");
    row("GTX 970", "00 09 07 00 00");
    row("GeForce GTX", "00 00 00 00 00");
    row("GeForce GTX ", "00 00 00 00 00");
    row("GeForce GTX Ti", "00 00 00 00 01");
    row("GeForce Ti GTX 1050", "01 00 05 00 00");
    row("GeForce GTX 1050 TI", "01 00 05 00 00");
    row("GeForce GTX960", "00 00 06 00 00");
    row("GeForce gtx 960", "00 00 00 00 00");
    row("GeForce GTX 9A/ ", "00 09 11 FF 00");
    row("", "00 00 00 00 00");
    QTest::newRow("name without an end") << "GTX " + std::string(80, '7') << "07 07 07 07 00";
    QTest::newRow("GTX at the very end of the buffer") << std::string(61, 'x') + "GTX"
                                                       << "00 00 00 00 00";
}

void TestDeviceLcdFrames::lcdModel()
{
    QFETCH(std::string, name);
    QFETCH(QString, digits);
    RawDriver driver;
    driver.card().fullName = name;
    NvGpuControl gpu;
    QVERIFY(gpu.sendCardInfoToLcd(true, false, 10, 0x80));
    QCOMPARE(shown(lastFrame(driver, kLcdAddress).mid(kModelDigitsAt, 5)), digits);
}

void TestDeviceLcdFrames::lcdFanFlag_data()
{
    QTest::addColumn<quint32>("subSystemId");
    QTest::addColumn<std::string>("name");
    QTest::addColumn<quint32>("rpm");
    QTest::addColumn<int>("flag");
    const std::string plain = "GeForce GTX 1070";
    QTest::newRow("fan turns") << 0x131D7377u << plain << 1200u << 1;
    QTest::newRow("fan stands") << 0x131D7377u << plain << 0u << 0;
    QTest::newRow("top byte of another board") << 0x111D7377u << plain << 1200u << 0;
    QTest::newRow("0x13 in another byte") << 0x11131313u << plain << 1200u << 0;
    QTest::newRow("Ti behind the model") << 0x131D7377u << std::string("GeForce GTX 1070 Ti") << 1200u << 0;
    QTest::newRow("Ti anywhere") << 0x131D7377u << std::string("Titan GTX 1070") << 1200u << 0;
    QTest::newRow("no GTX in the name") << 0x131D7377u << std::string("GeForce RTX 2070") << 1200u << 1;
    QTest::newRow("one turn a minute") << 0x13000000u << plain << 1u << 1;
}

void TestDeviceLcdFrames::lcdFanFlag()
{
    QFETCH(quint32, subSystemId);
    QFETCH(std::string, name);
    QFETCH(quint32, rpm);
    QFETCH(int, flag);
    RawDriver driver;
    driver.card().subSystemId = subSystemId;
    driver.card().fullName = name;
    driver.card().tachRpm = rpm;
    NvGpuControl gpu;
    QVERIFY(gpu.sendCardInfoToLcd(true, false, 10, 0x80));
    QCOMPARE(int(quint8(lastFrame(driver, kLcdAddress)[kFanFlagAt])), flag);

    driver.fails(Operation::NvAPI_GPU_GetPCIIdentifiers, NVAPI_ERROR);
    QVERIFY(gpu.sendCardInfoToLcd(true, false, 10, 0x80));
    QCOMPARE(int(quint8(lastFrame(driver, kLcdAddress)[kFanFlagAt])), 0);
}

void TestDeviceLcdFrames::lcdFields_data()
{
    QTest::addColumn<Arrange>("arrange");
    QTest::addColumn<int>("offset");
    QTest::addColumn<QString>("bytes");
    const auto row = [](const char *name, int offset, const char *bytes, const Arrange &arrange) {
        QTest::newRow(name) << arrange << offset << QString(bytes);
    };
    row("more than 2^31 KB in all", 4, "04 03 02 F1", [](RawDriver &driver) {
        driver.card().memory.dedicatedVideoMemory = 0xF1020304;
        driver.card().memory.curAvailableDedicatedVideoMemory = 0xF1020304;
    });
    row("more than 2^31 KB in use", 21, "04 03 02 F1", [](RawDriver &driver) {
        driver.card().memory.dedicatedVideoMemory = 0xF1020304;
        driver.card().memory.curAvailableDedicatedVideoMemory = 0;
    });
    row("customised base clock", 8, "AB 06",
        [](RawDriver &driver) { driver.card().p0Clock(0).freqDelta_kHz.value = 100000; });
    row("base clock keeps its low 16 bits", 8, "98 EB",
        [](RawDriver &driver) { driver.card().clocks[1].domain[0].frequencyKHz = 1108888000; });
    row("temperature below zero", 27, "FB FF",
        [](RawDriver &driver) { driver.card().thermal.sensor[0].currentTemp = -5; });
    row("thermal limit", 10, "5A 00",
        [](RawDriver &driver) { driver.card().thermalStatus.entries[0].temperature = 90 * 256; });
    row("fan speed keeps its low 16 bits", 29, "34 12", [](RawDriver &driver) { driver.card().tachRpm = 0xAB1234; });
    row("no tachometer block", 12, "00 00",
        [](RawDriver &driver) { driver.card().coolers.cooler[0].tachPresent = 0; });
    row("current clock", 25, "E8 03",
        [](RawDriver &driver) { driver.card().clocks[0].domain[0].frequencyKHz = 1000999; });
    row("TCC card uses no memory", 21, "00 00 00 00", [](RawDriver &driver) { driver.card().tcc = true; });
}

void TestDeviceLcdFrames::lcdFields()
{
    QFETCH(Arrange, arrange);
    QFETCH(int, offset);
    QFETCH(QString, bytes);
    RawDriver driver;
    arrange(driver);
    NvGpuControl gpu;
    QVERIFY(gpu.sendCardInfoToLcd(true, false, 10, 0x80));
    const QByteArray frame = lastFrame(driver, kLcdAddress);
    QCOMPARE(shown(frame.mid(offset, bytes.split(' ').size())), bytes);
    quint16 sum = 0;
    for (int i = 0; i < kChecksumAt; ++i)
        sum = quint16(sum + quint8(frame[i]));
    QCOMPARE(wordAt(frame, kChecksumAt), sum);
}

void TestDeviceLcdFrames::lcdChecksumOverflowsEightBits()
{
    RawDriver driver;
    driver.card().memory.dedicatedVideoMemory = 0xFFFFFFFF;
    driver.card().memory.curAvailableDedicatedVideoMemory = 0;
    driver.card().tachRpm = 0xFFFF;
    NvGpuControl gpu;
    QVERIFY(gpu.sendCardInfoToLcd(true, false, 10, 0x80));
    const QByteArray frame = lastFrame(driver, kLcdAddress);
    quint16 sum = 0;
    for (int i = 0; i < kChecksumAt; ++i)
        sum = quint16(sum + quint8(frame[i]));
    QVERIFY(sum > 0x0A00);
    QCOMPARE(wordAt(frame, kChecksumAt), sum);
}

void TestDeviceLcdFrames::lcdFrameFails()
{
    RawDriver driver;
    driver.card().i2cListeners.remove(0xAC);
    NvGpuControl gpu;
    driver.forgetCalls();
    QCOMPARE(gpu.sendCardInfoToLcd(true, false, 10, 0x80), false);
    QCOMPARE(driver.rawCalls(Operation::NvAPI_I2CWrite).size(), 1);
    QCOMPARE(driver.rawCalls(Operation::NvAPI_I2CWriteEx).size(), 2);
}

void TestDeviceLcdFrames::lcdWithoutDriverSendsNothing()
{
    RawDriver driver;
    driver.libraryExists = false;
    NvGpuControl gpu;
    QCOMPARE(gpu.sendCardInfoToLcd(true, true, 10, 0x80), false);
    QCOMPARE(driver.rawCalls(), QStringList{});
}

/// What the driver sees while two cards are found: the second has neither controller.
void TestDeviceLcdFrames::detectionOfTwoCards()
{
    RawDriver driver;
    driver.cards.resize(2);
    driver.card(1).i2cListeners.clear();
    driver.card(1).fullName = "GeForce GTX 960";
    QVector<bool> found;
    {
        NvGpuControl gpu;
        for (int index = 0; index < int(gpu.gpuCount()); ++index) {
            NvPciIds ids;
            gpu.setCurrentGpu(index);
            gpu.getPciIdentifiers(ids);
            (void)gpu.getGpuName();
            found << gpu.i2cWriteFramed(nullptr, 0, 10, 0, 0, false);
            found << gpu.sendCardInfoToLcd(true, true, 10, 0x80);
        }
    }
    QCOMPARE(found, (QVector<bool>{true, true, false, false}));

    const auto onCard = [](const char *card, const QStringList &writesToLed, const QStringList &writesToLcd) {
        const QStringList reads = {
            "GPU_GetPstates20 %1 0x31CF8",
            "GPU_GetAllClockFrequencies %1 0x30108 [4]=1",
            "GPU_GetRamType %1",
            "GPU_GetAllClockFrequencies %1 0x30108",
            "GPU_GetRamType %1",
            "GPU_GetTachReading %1",
            "GPU_GetCoolerSettings %1 cooler=7 0x40558",
            "GPU_GetMemoryInfo %1 0x30020",
            "GPU_GetThermalSettings %1 sensor=0 0x20044 [4]=3",
            "GPU_ClientThermalPoliciesGetInfo %1 0x20068",
            "GPU_ClientThermalPoliciesGetStatus %1 0x20038 [4]=1 [8]=3",
            "GPU_GetFullName %1",
            "GPU_GetPCIIdentifiers %1",
        };
        QStringList lines =
            QStringList{"GPU_GetPCIIdentifiers %1", "GPU_GetFullName %1"} + writesToLed + reads + writesToLcd;
        return lines.replaceInStrings("%1", card);
    };
    const QString led = " %1 0x3002C addr=A0 reg=00 regSize=0 size=5 speed=FFFF/6 port=1/1";
    const QString lcd = " %1 0x3002C addr=AC reg=00 regSize=0 size=35 speed=FFFF/6 port=1/1";
    const auto refused = [](const QString &content) {
        return QStringList{"I2CWrite" + content + " -> -1", "I2CWriteEx" + content + " words=0,0 -> -1",
                           "I2CWriteEx" + content + " words=0,0 -> -1"};
    };
    // the frames themselves are compared elsewhere
    QStringList calls = driver.rawCalls().replaceInStrings(QRegularExpression(" data=[0-9A-F ]*?(?= ->|$)"), "");
    QCOMPARE(calls,
             QStringList({"Initialize", "EnumNvidiaDisplayHandle index=0", "EnumNvidiaDisplayHandle index=1 -> -7",
                          "GetAssociatedDisplayOutputId display0", "EnumPhysicalGPUs", "EnumTCCPhysicalGPUs"}) +
                 onCard("gpu0", {"I2CWrite" + led}, {"I2CWrite" + lcd}) + onCard("gpu1", refused(led), refused(lcd)) +
                 QStringList{"Unload"});
}

QTEST_APPLESS_MAIN(TestDeviceLcdFrames)
#include "TestDeviceLcdFrames.moc"
