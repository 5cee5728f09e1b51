#include "board/led/LedEffects.h"
#include "device/LedFrame.h"

#include <QtTest>

using Colors = QList<QColor>;

/// Which command a mode gives, as the bytes that go to the controller.
class TestLedEffects : public QObject
{
    Q_OBJECT

private slots:
    void frameOfAMode_data();
    void frameOfAMode();
    void intervalGoesOutAsItStands();
    void frameOfATemperature_data();
    void frameOfATemperature();
    void modeOfANumber_data();
    void modeOfANumber();
};

Q_DECLARE_METATYPE(LedMode)

namespace
{

QString frameOf(const LedCommand &command, bool closing = false)
{
    const std::vector<quint8> frame = buildLedFrame(command.colors.data(), qint32(command.colors.size()),
                                                    command.effect, command.level, command.interval, closing);
    const QByteArray bytes(reinterpret_cast<const char *>(frame.data()), int(frame.size()));
    return QString::fromLatin1(bytes.toHex(' ').toUpper());
}

const Colors kPresets{QColor(255, 0, 0),   QColor(255, 165, 0), QColor(255, 255, 0), QColor(0, 255, 0),
                      QColor(0, 127, 255), QColor(0, 0, 255),   QColor(139, 0, 255)};
const Colors kRedThenBlue{QColor(255, 0, 0), QColor(0, 0, 255)};
const Colors kEight = kPresets + Colors{QColor(1, 2, 3)};

} // namespace

void TestLedEffects::frameOfAMode_data()
{
    QTest::addColumn<LedMode>("mode");
    QTest::addColumn<int>("interval");
    QTest::addColumn<Colors>("selected");
    QTest::addColumn<bool>("closing");
    QTest::addColumn<QString>("frame");

    const auto row = [](const char *name, LedMode mode, int interval, const Colors &selected, const char *frame,
                        bool closing = false) {
        QTest::newRow(name) << mode << interval << selected << closing << QString::fromLatin1(frame);
    };
    const Colors red{QColor(255, 0, 0)};
    const char *const sevenSteady = "1A 02 32 03 FF 00 00 FF A5 00 FF FF 00 00 FF 00 00 7F FF 00 00 FF 8B 00 FF 07";
    row("single steady red", LedMode::SingleBright, 9, red, "08 00 32 02 FF 00 00 C4");
    row("single steady takes the last colour", LedMode::SingleBright, 9, kRedThenBlue, "08 00 32 02 00 00 FF C4");
    row("single breathing", LedMode::SingleBreath, 9, kRedThenBlue, "08 01 32 09 00 00 FF BC");
    row("multiple breathing in order of selection", LedMode::MultipleBreath, 2, kRedThenBlue,
        "0B 01 32 02 FF 00 00 00 00 FF C1");
    row("multiple breathing of one colour", LedMode::MultipleBreath, 2, red, "08 01 32 02 FF 00 00 C3");
    row("seven colours", LedMode::MultipleBright, 3, kPresets, sevenSteady);
    row("seven colours, closing", LedMode::MultipleBright, 3, kPresets,
        "9A 02 32 03 FF 00 00 FF A5 00 FF FF 00 00 FF 00 00 7F FF 00 00 FF 8B 00 FF 87", true);
    row("an eighth colour is left out", LedMode::MultipleBright, 3, kEight, sevenSteady);
    row("no colour, single breathing", LedMode::SingleBreath, 5, {}, "08 01 32 05 FF 00 00 C0");
    row("no colour, single steady", LedMode::SingleBright, 5, {}, "08 00 32 02 FF 00 00 C4");
    row("no colour, multiple breathing", LedMode::MultipleBreath, 5, {}, "08 01 32 05 FF 00 00 C0");
    row("no colour, multiple steady", LedMode::MultipleBright, 5, {}, "08 02 32 05 FF 00 00 BF");
    row("alpha is dropped", LedMode::SingleBright, 2, {QColor(10, 20, 30, 40)}, "08 00 32 02 0A 14 1E 87");
    row("gradient", LedMode::Gradient, 9, kRedThenBlue, "05 04 32 02 C2");
    row("sleep", LedMode::Sleep, 9, kRedThenBlue, "05 00 00 0A F0");
    row("sleep, closing", LedMode::Sleep, 9, kRedThenBlue, "85 00 00 0A 70", true);
    row("state of 0 degrees", LedMode::StateDisplay, 9, kRedThenBlue, "08 01 32 04 00 FF 00 C1");
}

void TestLedEffects::frameOfAMode()
{
    QFETCH(LedMode, mode);
    QFETCH(int, interval);
    QFETCH(Colors, selected);
    QFETCH(bool, closing);
    QTEST(frameOf(ledCommandFor(mode, interval, selected), closing), "frame");
}

void TestLedEffects::intervalGoesOutAsItStands()
{
    for (int interval = kMinLedInterval; interval <= kMaxLedInterval; ++interval) {
        QCOMPARE(int(ledCommandFor(LedMode::SingleBreath, interval, {}).interval), interval);
        QCOMPARE(int(ledCommandFor(LedMode::MultipleBreath, interval, {}).interval), interval);
        QCOMPARE(int(ledCommandFor(LedMode::MultipleBright, interval, {}).interval), interval);
        QCOMPARE(int(ledCommandFor(LedMode::SingleBright, interval, {}).interval), 2);
    }
}

void TestLedEffects::frameOfATemperature_data()
{
    QTest::addColumn<int>("degrees");
    QTest::addColumn<QString>("frame");

    const QString green = QStringLiteral("08 01 32 04 00 FF 00 C1");
    const QString yellow = QStringLiteral("08 01 32 04 FF FF 00 C2");
    const QString red = QStringLiteral("08 01 32 04 FF 00 00 C1");
    const QString quickRed = QStringLiteral("08 01 32 02 FF 00 00 C3");
    QTest::newRow("below zero") << -5 << green;
    QTest::newRow("0") << 0 << green;
    QTest::newRow("49") << 49 << green;
    QTest::newRow("exactly 50") << 50 << yellow;
    QTest::newRow("63") << 63 << yellow;
    QTest::newRow("exactly 64") << 64 << red;
    QTest::newRow("67") << 67 << red;
    QTest::newRow("exactly 68") << 68 << quickRed;
    QTest::newRow("the hottest number") << std::numeric_limits<int>::max() << quickRed;
}

void TestLedEffects::frameOfATemperature()
{
    QFETCH(int, degrees);
    QTEST(frameOf(ledStateCommandFor(ledStateBandFor(degrees))), "frame");
}

void TestLedEffects::modeOfANumber_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<LedMode>("mode");

    QTest::newRow("0") << 0 << LedMode::SingleBreath;
    QTest::newRow("1") << 1 << LedMode::SingleBright;
    QTest::newRow("2") << 2 << LedMode::MultipleBreath;
    QTest::newRow("3") << 3 << LedMode::MultipleBright;
    QTest::newRow("4") << 4 << LedMode::StateDisplay;
    QTest::newRow("5") << 5 << LedMode::Gradient;
    QTest::newRow("6") << 6 << LedMode::Sleep;
    QTest::newRow("7") << 7 << LedMode::Sleep;
    QTest::newRow("-1") << -1 << LedMode::Sleep;
    QTest::newRow("the smallest number") << std::numeric_limits<int>::min() << LedMode::Sleep;
}

void TestLedEffects::modeOfANumber()
{
    QFETCH(int, number);
    QTEST(ledModeOf(number), "mode");
}

QTEST_APPLESS_MAIN(TestLedEffects)
#include "TestLedEffects.moc"
