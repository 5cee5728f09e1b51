#include "device/DeviceTest.h"

#include <QtTest>

namespace
{

QByteArray hex(const char *text)
{
    return QByteArray::fromHex(text);
}

} // namespace

/// The frames to the LED controller, byte for byte, and its state.
class TestDeviceLedFrames : public QObject
{
    Q_OBJECT

private slots:
    void ledFrames_data();
    void ledFrames();
    void ledFrameRecord();
    void ledFrameFails();
    void ledState_data();
    void ledState();
    void ledStateTransfer();
};

void TestDeviceLedFrames::ledFrames_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<quint8>("effect");
    QTest::addColumn<quint8>("level");
    QTest::addColumn<quint8>("interval");
    QTest::addColumn<bool>("closing");
    QTest::addColumn<QString>("frame");
    const auto row = [](const char *name, const QByteArray &data, int effect, int level, int interval, bool closing,
                        const char *frame) {
        QTest::newRow(name) << data << quint8(effect) << quint8(level) << quint8(interval) << closing
                            << QString(frame);
    };
    const QByteArray seven = hex("FF0000 FFA500 FFFF00 00FF00 007FFF 0000FF 8B00FF");
    row("single steady red", hex("FF0000"), 0, 0x32, 2, false, "08 00 32 02 FF 00 00 C4");
    row("cool card", hex("00FF00"), 1, 0x32, 4, false, "08 01 32 04 00 FF 00 C1");
    row("hot card", hex("FF0000"), 1, 0x32, 2, false, "08 01 32 02 FF 00 00 C3");
    row("sleep", {}, 0, 0, 0x0A, false, "05 00 00 0A F0");
    row("sleep, closing", {}, 0, 0, 0x0A, true, "85 00 00 0A 70");
    row("gradient", {}, 4, 0x32, 2, false, "05 04 32 02 C2");
    row("probe", {}, 0x0A, 0, 0, false, "05 0A 00 00 F0");
    row("seven colours", seven, 2, 0x32, 3, false,
        "1A 02 32 03 FF 00 00 FF A5 00 FF FF 00 00 FF 00 00 7F FF 00 00 FF 8B 00 FF 07");
    row("seven colours, closing", seven, 2, 0x32, 3, true,
        "9A 02 32 03 FF 00 00 FF A5 00 FF FF 00 00 FF 00 00 7F FF 00 00 FF 8B 00 FF 87");
    row("20 bytes, closing", QByteArray(20, '\0'), 1, 0x32, 4, true,
        "99 01 32 04 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 2F");
    row("sum that is a multiple of 256", hex("C90000"), 1, 0x2A, 4, false, "08 01 2A 04 C9 00 00 FF");
}

void TestDeviceLedFrames::ledFrames()
{
    QFETCH(QByteArray, data);
    QFETCH(quint8, effect);
    QFETCH(quint8, level);
    QFETCH(quint8, interval);
    QFETCH(bool, closing);
    QFETCH(QString, frame);
    RawDriver driver;
    NvGpuControl gpu;
    const auto *bytes = data.isEmpty() ? nullptr : reinterpret_cast<const quint8 *>(data.constData());
    QVERIFY(gpu.i2cWriteFramed(bytes, data.size(), effect, level, interval, closing));
    QCOMPARE(shown(lastFrame(driver, kLedAddress)), frame);
}

void TestDeviceLedFrames::ledFrameRecord()
{
    RawDriver driver;
    NvGpuControl gpu;
    driver.forgetCalls();
    QVERIFY(gpu.i2cWriteFramed(nullptr, 0, 10, 0, 0, false));
    QCOMPARE(driver.rawCalls(),
             QStringList{
                 "I2CWrite gpu0 0x3002C addr=A0 reg=00 regSize=0 size=5 speed=FFFF/6 port=1/1 data=05 0A 00 00 F0"});
}

void TestDeviceLedFrames::ledFrameFails()
{
    RawDriver driver;
    driver.card().i2cListeners.clear();
    NvGpuControl gpu;
    driver.forgetCalls();
    QCOMPARE(gpu.i2cWriteFramed(nullptr, 0, 10, 0, 0, false), false);
    QCOMPARE(driver.rawCalls().size(), 3); // the whole ladder of a failing device
    for (const QString &line : driver.rawCalls())
        QVERIFY2(line.contains("data=05 0A 00 00 F0"), qPrintable(line));
}

void TestDeviceLedFrames::ledState_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<FieldList>("numbers"); // type, colours, effect, level, interval
    QTest::addColumn<QByteArray>("colours");
    const QByteArray all = hex("0102030405060708090A0B0C0D0E0F101112131415");
    const QByteArray white(21, '\xFF');
    const auto reply = [all](int count) {
        return hex("03") + char(count) + hex("013204") + all + hex("77");
    };
    QTest::newRow("no colours") << reply(0) << FieldList{3, 0, 1, 0x32, 4} << white;
    QTest::newRow("one colour") << reply(1) << FieldList{3, 1, 1, 0x32, 4} << all.left(3) + white.mid(3);
    QTest::newRow("six colours") << reply(6) << FieldList{3, 6, 1, 0x32, 4} << all.left(18) + white.mid(18);
    QTest::newRow("seven colours") << reply(7) << FieldList{3, 7, 1, 0x32, 4} << all;
    QTest::newRow("eight colours are seven") << reply(8) << FieldList{3, 7, 1, 0x32, 4} << all;
    QTest::newRow("128 colours are seven") << reply(128) << FieldList{3, 7, 1, 0x32, 4} << all;
    QTest::newRow("255 colours are seven") << reply(255) << FieldList{3, 7, 1, 0x32, 4} << all;
    QTest::newRow("all ones") << QByteArray(27, '\xFF') << FieldList{255, 7, 255, 255, 255} << white;
    QTest::newRow("all zeros") << QByteArray(27, '\0') << FieldList{0, 0, 0, 0, 0} << white;
}

void TestDeviceLedFrames::ledState()
{
    QFETCH(QByteArray, reply);
    QFETCH(FieldList, numbers);
    QFETCH(QByteArray, colours);
    RawDriver driver;
    driver.card().i2cReplies[0xA1] = reply;
    NvGpuControl gpu;
    LedControllerState state;
    QVERIFY(gpu.readLedState(state));
    QCOMPARE((FieldList{state.controllerType, state.colourCount, state.stateEffect, state.stateLevel,
                        state.stateInterval}),
             numbers);
    QCOMPARE(shown({reinterpret_cast<const char *>(state.colours.data()), 21}), shown(colours));
}

void TestDeviceLedFrames::ledStateTransfer()
{
    RawDriver driver;
    NvGpuControl gpu;
    driver.forgetCalls();
    LedControllerState state;
    QVERIFY(gpu.readLedState(state));
    QCOMPARE(driver.rawCalls(),
             QStringList{"I2CRead gpu0 0x3002C addr=A1 reg=00 regSize=0 size=27 speed=FFFF/6 port=1/1"});

    driver.card().i2cReplies.remove(0xA1);
    LedControllerState prepared;
    prepared.colours.fill(0x5A);
    prepared.colourCount = 4;
    prepared.controllerType = 9;
    QCOMPARE(gpu.readLedState(prepared), false);
    QCOMPARE(prepared.colourCount, 4);
    QCOMPARE(prepared.controllerType, quint8(9));
    QCOMPARE(prepared.colours[0], quint8(0x5A));
}

QTEST_APPLESS_MAIN(TestDeviceLedFrames)
#include "TestDeviceLedFrames.moc"
