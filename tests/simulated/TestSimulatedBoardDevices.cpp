#include "TestScenes.h"
#include "Transfer.h"

#include <QtTest>

#include <algorithm>
#include <numeric>
#include <vector>

Q_DECLARE_METATYPE(std::vector<quint8>)

using namespace simulated;

namespace
{

std::vector<quint8> bytesOf(const QByteArray &hex)
{
    const QByteArray bytes = QByteArray::fromHex(hex);
    return {bytes.begin(), bytes.end()};
}

/// A frame for the LCD controller with a right checksum; byte i is i unless told otherwise.
std::vector<quint8> lcdFrame()
{
    std::vector<quint8> frame(33);
    std::iota(frame.begin(), frame.end(), quint8(0));
    frame[0] = 0xAA;
    frame[1] = 0x88;
    const quint32 sum = std::accumulate(frame.begin(), frame.end(), 0u);
    frame.push_back(static_cast<quint8>(sum & 0xFF));
    frame.push_back(static_cast<quint8>(sum >> 8));
    return frame;
}

} // namespace

class TestSimulatedBoardDevices : public QObject
{
    Q_OBJECT

private slots:
    void sensors_data();
    void sensors();
    void sensorAccess_data();
    void sensorAccess();
    void ledFrames_data();
    void ledFrames();
    void ledStatus();
    void ledStatusReadRules_data();
    void ledStatusReadRules();
    void probeChangesNothingShown();
    void lcdFrames_data();
    void lcdFrames();
    void lcdFields();
    void ports_data();
    void ports();
    void absentDevices_data();
    void absentDevices();
    void extendedCallsReachTheSameDevices();
};

void TestSimulatedBoardDevices::sensors_data()
{
    QTest::addColumn<double>("degrees");
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("room") << 28.0 << QByteArray("1c00");
    QTest::newRow("fraction") << 45.5 << QByteArray("2d80");
    QTest::newRow("a sixteenth") << 0.0625 << QByteArray("0010");
    QTest::newRow("minus a half") << -0.5 << QByteArray("ff80");
    QTest::newRow("minus one") << -1.0 << QByteArray("ff00");
    QTest::newRow("coldest") << -128.0 << QByteArray("8000");
    QTest::newRow("hottest") << 127.9375 << QByteArray("7ff0");
}

void TestSimulatedBoardDevices::sensors()
{
    QFETCH(double, degrees);
    QFETCH(QByteArray, bytes);
    Scenario scenario = oneBoardCard();
    for (BoardSensorParameters &sensor : scenario.cards.front().boardSensors)
        sensor.pinnedC = 1.0;
    for (std::size_t i = 0; i < 4; ++i) {
        scenario.cards.front().boardSensors[i].pinnedC = degrees;
        CheckedDriver driver(scenario);
        const DriverCalls calls = started(driver);
        Transfer transfer(scenario.cards.front().boardSensors[i].address, 1, {0xEE, 0xEE});
        QCOMPARE(calls.NvAPI_I2CRead(driver.handle(0), &transfer.record), NVAPI_OK);
        QCOMPARE(transfer.data, bytesOf(bytes));
        scenario.cards.front().boardSensors[i].pinnedC = 1.0;
    }
}

void TestSimulatedBoardDevices::sensorAccess_data()
{
    QTest::addColumn<int>("address");
    QTest::addColumn<quint32>("regSize");
    QTest::addColumn<int>("reg");
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("status");
    QTest::newRow("as it should be") << 0x9E << 1u << 0 << 2 << 0;
    QTest::newRow("no register byte") << 0x9E << 0u << 0 << 2 << int(NVAPI_ERROR);
    QTest::newRow("two register bytes") << 0x9E << 2u << 0 << 2 << int(NVAPI_ERROR);
    QTest::newRow("another register") << 0x9E << 1u << 1 << 2 << int(NVAPI_ERROR);
    QTest::newRow("one byte") << 0x9E << 1u << 0 << 1 << int(NVAPI_ERROR);
    QTest::newRow("three bytes") << 0x9E << 1u << 0 << 3 << int(NVAPI_ERROR);
    QTest::newRow("no byte") << 0x9E << 1u << 0 << 0 << int(NVAPI_INVALID_ARGUMENT);
    QTest::newRow("no such device") << 0x98 << 1u << 0 << 2 << int(NVAPI_ERROR);
}

void TestSimulatedBoardDevices::sensorAccess()
{
    QFETCH(int, address);
    QFETCH(quint32, regSize);
    QFETCH(int, reg);
    QFETCH(int, size);
    QFETCH(int, status);
    CheckedDriver driver(oneBoardCard());
    driver.expectsWrongCalls();
    const DriverCalls calls = started(driver);
    Transfer transfer(static_cast<quint8>(address), regSize,
                      std::vector<quint8>(static_cast<std::size_t>(size), 0xEE));
    transfer.reg = static_cast<quint8>(reg);
    QCOMPARE(calls.NvAPI_I2CRead(driver.handle(0), &transfer.record), status);
    if (status != NVAPI_OK) {
        QVERIFY(std::all_of(transfer.data.begin(), transfer.data.end(), [](quint8 byte) { return byte == 0xEE; }));
        QVERIFY(!driver.callRecords().back().note.empty());
    }
}

void TestSimulatedBoardDevices::ledFrames_data()
{
    QTest::addColumn<QByteArray>("frame");
    QTest::addColumn<bool>("taken");
    QTest::addColumn<int>("effect");
    QTest::addColumn<int>("level");
    QTest::addColumn<int>("interval");
    QTest::addColumn<bool>("closing");
    QTest::addColumn<QByteArray>("colours");
    const auto good = [](const char *name, const char *frame, int effect, int level, int interval, bool closing,
                         const char *colours) {
        QTest::newRow(name) << QByteArray(frame) << true << effect << level << interval << closing
                            << QByteArray(colours);
    };
    const auto bad = [](const char *name, const char *frame) {
        QTest::newRow(name) << QByteArray(frame) << false << 0 << 0 << 0 << false << QByteArray();
    };
    good("single steady red", "08 00 32 02 FF 00 00 C4", 0, 0x32, 2, false, "ff0000");
    good("green below 50 degrees", "08 01 32 04 00 FF 00 C1", 1, 0x32, 4, false, "00ff00");
    good("jump to red", "08 01 32 02 FF 00 00 C3", 1, 0x32, 2, false, "ff0000");
    good("sleep", "05 00 00 0A F0", 0, 0, 0x0A, false, "");
    good("sleep, closing", "85 00 00 0A 70", 0, 0, 0x0A, true, "");
    good("gradient", "05 04 32 02 C2", 4, 0x32, 2, false, "");
    good("seven colours", "1A 02 32 03 FF 00 00 FF A5 00 FF FF 00 00 FF 00 00 7F FF 00 00 FF 8B 00 FF 07", 2, 0x32, 3,
         false, "ff0000 ffa500 ffff00 00ff00 007fff 0000ff 8b00ff");
    bad("wrong checksum", "08 00 32 02 FF 00 00 C5");
    bad("checksum without the closing flag", "85 00 00 0A F0");
    bad("size byte too small", "07 00 32 02 FF 00 00 C5");
    bad("size byte too large", "09 00 32 02 FF 00 00 C3");
    bad("four bytes", "04 00 00 FB");
    bad("half a colour", "07 00 32 02 FF FF C6");
    bad("eight colours", "1D 02 32 03 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 AB");
    bad("unknown effect", "05 03 32 02 C3");
}

void TestSimulatedBoardDevices::ledFrames()
{
    QFETCH(QByteArray, frame);
    QFETCH(bool, taken);
    QFETCH(int, effect);
    QFETCH(int, level);
    QFETCH(int, interval);
    QFETCH(bool, closing);
    QFETCH(QByteArray, colours);
    CheckedDriver driver(oneBoardCard());
    driver.expectsWrongCalls();
    const DriverCalls calls = started(driver);
    Transfer transfer(0xA0, 0, bytesOf(frame));
    QCOMPARE(calls.NvAPI_I2CWrite(driver.handle(0), &transfer.record), taken ? NVAPI_OK : NVAPI_ERROR);
    const Card card = driver.card(0);
    QCOMPARE(card.led->acceptedFrames, taken ? 1 : 0);
    QCOMPARE(card.led->refusedFrames, taken ? 0 : 1);
    QCOMPARE(int(card.led->shown.effect), effect);
    QCOMPARE(int(card.led->shown.level), level);
    QCOMPARE(int(card.led->shown.interval), interval);
    QCOMPARE(card.led->shown.closing, closing);
    QCOMPARE(card.led->shown.colours, bytesOf(colours));
    QCOMPARE(driver.callRecords().back().note.empty(), taken);
    QCOMPARE(QByteArray::fromStdString(driver.callRecords().back().arguments.at("data").get<std::string>()),
             bytesOf(frame).empty() ? QByteArray() : frame.simplified());
}

void TestSimulatedBoardDevices::ledStatus()
{
    CheckedDriver driver(oneBoardCard());
    const DriverCalls calls = started(driver);
    Transfer write(0xA0, 0, bytesOf("0b 01 32 05 112233 445566 57"));
    QCOMPARE(calls.NvAPI_I2CWrite(driver.handle(0), &write.record), NVAPI_OK);
    Transfer read(0xA1, 0, std::vector<quint8>(27, 0xEE));
    QCOMPARE(calls.NvAPI_I2CRead(driver.handle(0), &read.record), NVAPI_OK);
    std::vector<quint8> head(read.data.begin(), read.data.begin() + 12);
    QCOMPARE(head, bytesOf("03 02 01 32 05 112233 445566 00"));
}

void TestSimulatedBoardDevices::ledStatusReadRules_data()
{
    QTest::addColumn<quint32>("regSize");
    QTest::addColumn<int>("address");
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("status");
    QTest::newRow("as it should be") << 0u << 0xA1 << 27 << 0;
    QTest::newRow("at the write address") << 0u << 0xA0 << 27 << int(NVAPI_ERROR);
    QTest::newRow("with a register byte") << 1u << 0xA1 << 27 << int(NVAPI_ERROR);
    QTest::newRow("too short") << 0u << 0xA1 << 26 << int(NVAPI_ERROR);
    QTest::newRow("too long") << 0u << 0xA1 << 28 << int(NVAPI_ERROR);
}

void TestSimulatedBoardDevices::ledStatusReadRules()
{
    QFETCH(quint32, regSize);
    QFETCH(int, address);
    QFETCH(int, size);
    QFETCH(int, status);
    CheckedDriver driver(oneBoardCard());
    driver.expectsWrongCalls();
    const DriverCalls calls = started(driver);
    Transfer read(static_cast<quint8>(address), regSize, std::vector<quint8>(static_cast<std::size_t>(size)));
    QCOMPARE(calls.NvAPI_I2CRead(driver.handle(0), &read.record), status);
}

void TestSimulatedBoardDevices::probeChangesNothingShown()
{
    CheckedDriver driver(oneBoardCard());
    const DriverCalls calls = started(driver);
    Transfer red(0xA0, 0, bytesOf("08 00 32 02 FF 00 00 C4"));
    QCOMPARE(calls.NvAPI_I2CWrite(driver.handle(0), &red.record), NVAPI_OK);
    Transfer probe(0xA0, 0, bytesOf("05 0A 00 00 F0"));
    QCOMPARE(calls.NvAPI_I2CWrite(driver.handle(0), &probe.record), NVAPI_OK);
    const Card card = driver.card(0);
    QCOMPARE(card.led->acceptedFrames, 2);
    QCOMPARE(card.led->lastFrame, bytesOf("05 0A 00 00 F0"));
    QCOMPARE(card.led->shown.colours, bytesOf("ff0000"));
}

void TestSimulatedBoardDevices::lcdFrames_data()
{
    QTest::addColumn<std::vector<quint8>>("frame");
    QTest::addColumn<int>("address");
    QTest::addColumn<quint32>("regSize");
    QTest::addColumn<bool>("taken");
    const std::vector<quint8> good = lcdFrame();
    const auto spoilt = [&good](std::size_t offset) {
        std::vector<quint8> frame = good;
        frame[offset] = static_cast<quint8>(frame[offset] + 1);
        return frame;
    };
    std::vector<quint8> shorter(good.begin(), good.end() - 1);
    std::vector<quint8> longer = good;
    longer.push_back(0);
    QTest::newRow("good") << good << 0xAC << 0u << true;
    QTest::newRow("first byte of the magic") << spoilt(0) << 0xAC << 0u << false;
    QTest::newRow("second byte of the magic") << spoilt(1) << 0xAC << 0u << false;
    QTest::newRow("a reading changed") << spoilt(20) << 0xAC << 0u << false;
    QTest::newRow("low byte of the sum") << spoilt(33) << 0xAC << 0u << false;
    QTest::newRow("high byte of the sum") << spoilt(34) << 0xAC << 0u << false;
    QTest::newRow("34 bytes") << shorter << 0xAC << 0u << false;
    QTest::newRow("36 bytes") << longer << 0xAC << 0u << false;
    QTest::newRow("with a register byte") << good << 0xAC << 1u << false;
    QTest::newRow("at the read address") << good << 0xAD << 0u << false;
}

void TestSimulatedBoardDevices::lcdFrames()
{
    QFETCH(std::vector<quint8>, frame);
    QFETCH(int, address);
    QFETCH(quint32, regSize);
    QFETCH(bool, taken);
    CheckedDriver driver(oneBoardCard());
    driver.expectsWrongCalls();
    const DriverCalls calls = started(driver);
    Transfer transfer(static_cast<quint8>(address), regSize, frame);
    QCOMPARE(calls.NvAPI_I2CWrite(driver.handle(0), &transfer.record), taken ? NVAPI_OK : NVAPI_ERROR);
    const Card card = driver.card(0);
    QCOMPARE(card.lcd->acceptedFrames, taken ? 1 : 0);
    QCOMPARE(card.lcd->lastFrame, taken ? frame : std::vector<quint8>());
}

void TestSimulatedBoardDevices::lcdFields()
{
    LcdController lcd;
    QVERIFY(lcd.write(lcdFrame()).empty());
    QCOMPARE(int(lcd.shown.sequence), 2);
    QCOMPARE(int(lcd.shown.command), 3);
    QCOMPARE(lcd.shown.memoryTotalKB, 0x07060504u);
    QCOMPARE(int(lcd.shown.baseClockMHz), 0x0908);
    QCOMPARE(int(lcd.shown.thermalLimitC), 0x0B0A);
    QCOMPARE(int(lcd.shown.fanMaxRpm), 0x0D0C);
    QCOMPARE(int(lcd.shown.modelDigits[0]), 14);
    QCOMPARE(int(lcd.shown.modelDigits[3]), 17);
    QCOMPARE(int(lcd.shown.modelTi), 18);
    QCOMPARE(int(lcd.shown.fanFlag), 19);
    QCOMPARE(lcd.shown.memoryUsedKB, 0x18171615u);
    QCOMPARE(int(lcd.shown.currentClockMHz), 0x1A19);
    QCOMPARE(int(lcd.shown.temperatureC), 0x1C1B);
    QCOMPARE(int(lcd.shown.fanRpm), 0x1E1D);
}

void TestSimulatedBoardDevices::ports_data()
{
    QTest::addColumn<quint32>("version");
    QTest::addColumn<int>("portId");
    QTest::addColumn<quint32>("portSet");
    QTest::addColumn<int>("ddc");
    QTest::addColumn<bool>("reached");
    QTest::newRow("port 1") << kI2cInfoVersion3 << 1 << 1u << 0 << true;
    QTest::newRow("port not set") << kI2cInfoVersion3 << 9 << 0u << 0 << true;
    QTest::newRow("another port") << kI2cInfoVersion3 << 2 << 1u << 0 << false;
    QTest::newRow("port of a display") << kI2cInfoVersion3 << 1 << 1u << 1 << false;
    QTest::newRow("second version has no port") << kI2cInfoVersion2 << 2 << 1u << 0 << true;
    QTest::newRow("first version has no port") << kI2cInfoVersion1 << 2 << 1u << 0 << true;
}

void TestSimulatedBoardDevices::ports()
{
    QFETCH(quint32, version);
    QFETCH(int, portId);
    QFETCH(quint32, portSet);
    QFETCH(int, ddc);
    QFETCH(bool, reached);
    CheckedDriver driver(oneBoardCard());
    driver.expectsWrongCalls();
    const DriverCalls calls = started(driver);
    Transfer transfer(0xA0, 0, bytesOf("05 0A 00 00 F0"), version);
    transfer.record.portId = static_cast<quint8>(portId);
    transfer.record.bIsPortIdSet = portSet;
    transfer.record.bIsDDCPort = static_cast<quint8>(ddc);
    QCOMPARE(calls.NvAPI_I2CWrite(driver.handle(0), &transfer.record), reached ? NVAPI_OK : NVAPI_ERROR);
    QCOMPARE(driver.card(0).led->acceptedFrames, reached ? 1 : 0);
    QCOMPARE(driver.callRecords().back().arguments.contains("port"), version == kI2cInfoVersion3);
    QCOMPARE(driver.callRecords().back().arguments.contains("speedKhz"), version != kI2cInfoVersion1);
}

void TestSimulatedBoardDevices::absentDevices_data()
{
    QTest::addColumn<int>("address");
    QTest::addColumn<bool>("read");
    QTest::addColumn<QByteArray>("data");
    QTest::newRow("LED write") << 0xA0 << false << QByteArray("05 0A 00 00 F0");
    QTest::newRow("LED read") << 0xA1 << true << QByteArray(54, '0');
    QTest::newRow("LCD write") << 0xAC << false << QByteArray(70, '0');
    QTest::newRow("sensor") << 0x90 << true << QByteArray("0000");
}

void TestSimulatedBoardDevices::absentDevices()
{
    QFETCH(int, address);
    QFETCH(bool, read);
    QFETCH(QByteArray, data);
    CheckedDriver driver(oneCardAtLoad(0));
    driver.expectsWrongCalls();
    const DriverCalls calls = started(driver);
    Transfer transfer(static_cast<quint8>(address), address == 0x90 ? 1 : 0, bytesOf(data));
    const auto call = read ? calls.NvAPI_I2CRead : calls.NvAPI_I2CWrite;
    QCOMPARE(call(driver.handle(0), &transfer.record), NVAPI_ERROR);
    QCOMPARE(driver.callRecords().back().note, std::string("no device answers"));
}

void TestSimulatedBoardDevices::extendedCallsReachTheSameDevices()
{
    CheckedDriver driver(oneBoardCard());
    const DriverCalls calls = started(driver);
    quint32 words[2] = {0, 0};
    Transfer write(0xA0, 0, bytesOf("08 00 32 02 FF 00 00 C4"));
    QCOMPARE(calls.NvAPI_I2CWriteEx(driver.handle(0), &write.record, words), NVAPI_OK);
    QCOMPARE(driver.callRecords().back().arguments.at("words").dump(), std::string("[0,0]"));
    Transfer read(0xA1, 0, std::vector<quint8>(27));
    QCOMPARE(calls.NvAPI_I2CReadEx(driver.handle(0), &read.record, words), NVAPI_OK);
    QCOMPARE(int(read.data[5]), 0xFF);
}

QTEST_APPLESS_MAIN(TestSimulatedBoardDevices)
#include "TestSimulatedBoardDevices.moc"
