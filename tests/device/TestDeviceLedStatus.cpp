#include "device/DeviceTest.h"

#include <QtTest>

#include <algorithm>

/// What the LED controller's status frame may hold: any value in any byte, and frames of any length.
class TestDeviceLedStatus : public QObject
{
    Q_OBJECT

private slots:
    void everyValueOfEveryByte_data();
    void everyValueOfEveryByte();
    void answersOfAnyLength_data();
    void answersOfAnyLength();
};

namespace
{

constexpr int kStatusSize = 27;
constexpr int kTypeAt = 0;
constexpr int kCountAt = 1;
constexpr int kEffectAt = 2;
constexpr int kLevelAt = 3;
constexpr int kIntervalAt = 4;
constexpr int kColoursAt = 5;
constexpr int kMaxColours = 7;
constexpr int kColourBytes = 3 * kMaxColours;

/// A good answer whose bytes all differ: type 3, seven colours.
QByteArray goodStatus()
{
    QByteArray status;
    for (int i = 0; i < kStatusSize; ++i)
        status.append(char(0x40 + i));
    status[kTypeAt] = 3;
    status[kCountAt] = kMaxColours;
    return status;
}

/// The state as bytes: type, count, effect, level, interval and the colours.
QByteArray shown(const LedControllerState &state)
{
    QByteArray bytes;
    for (const int number : {int(state.controllerType), int(state.colourCount), int(state.stateEffect),
                             int(state.stateLevel), int(state.stateInterval)})
        bytes.append(char(number));
    return (bytes + QByteArray(reinterpret_cast<const char *>(state.colours.data()), kColourBytes)).toHex(' ');
}

/// The same of an answer.
QByteArray expectedOf(const QByteArray &status)
{
    const int count = std::min(int(quint8(status[kCountAt])), kMaxColours);
    QByteArray bytes = status.left(kColoursAt);
    bytes[kCountAt] = char(count);
    bytes += status.mid(kColoursAt, 3 * count);
    return bytes.leftJustified(kColoursAt + kColourBytes, '\xFF').toHex(' ');
}

} // namespace

void TestDeviceLedStatus::everyValueOfEveryByte_data()
{
    QTest::addColumn<int>("offset");
    QTest::newRow("controller type") << kTypeAt;
    QTest::newRow("number of colours") << kCountAt;
    QTest::newRow("effect") << kEffectAt;
    QTest::newRow("level") << kLevelAt;
    QTest::newRow("interval") << kIntervalAt;
    for (int i = 0; i < kColourBytes; ++i)
        QTest::addRow("%s of colour %d", i % 3 == 0 ? "red" : i % 3 == 1 ? "green" : "blue", i / 3) << kColoursAt + i;
    QTest::newRow("last byte, which nobody looks at") << kStatusSize - 1;
}

void TestDeviceLedStatus::everyValueOfEveryByte()
{
    QFETCH(int, offset);
    RawDriver driver;
    NvGpuControl gpu;
    for (int value = 0; value < 256; ++value) {
        QByteArray status = goodStatus();
        status[offset] = char(value);
        driver.card().i2cReplies[0xA1] = status;
        LedControllerState state;
        QVERIFY(gpu.readLedState(state));
        QCOMPARE(shown(state), expectedOf(status));
        QVERIFY(state.colourCount >= 0 && state.colourCount <= kMaxColours);
    }
    // Whatever the other bytes are, they are no part of the type.
    if (offset != kTypeAt) {
        LedControllerState state;
        QVERIFY(gpu.readLedState(state));
        QCOMPARE(state.controllerType, quint8(3));
    }
}

void TestDeviceLedStatus::answersOfAnyLength_data()
{
    QTest::addColumn<int>("length");
    for (const int length : {0, 1, 2, 5, 8, 25, 26, 27, 28, 64, 300})
        QTest::addRow("%d bytes", length) << length;
}

void TestDeviceLedStatus::answersOfAnyLength()
{
    QFETCH(int, length);
    RawDriver driver;
    driver.card().i2cReplies[0xA1] = goodStatus().leftJustified(300, '\x11').left(length);
    NvGpuControl gpu;
    LedControllerState state;
    // The transfer is one of 27 bytes; what a short answer leaves out stays 0.
    QVERIFY(gpu.readLedState(state));
    QCOMPARE(shown(state), expectedOf(goodStatus().left(length).leftJustified(kStatusSize, '\0')));
}

QTEST_APPLESS_MAIN(TestDeviceLedStatus)
#include "TestDeviceLedStatus.moc"
