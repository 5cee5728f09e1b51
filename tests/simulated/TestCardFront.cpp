#include "CardFrontStates.h"

#include "simulated/front/FrontLayout.h"
#include "simulated/front/LcdFace.h"
#include "simulated/front/LedEffect.h"
#include "simulated/front/StateReader.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

Q_DECLARE_METATYPE(cardfront::CardFront)
Q_DECLARE_METATYPE(cardfront::LedState)
Q_DECLARE_METATYPE(cardfront::LcdState)

using namespace cardfront;

/// What the window knows: the state file, the effects over time, the LCD's pages, and where things lie.
class TestCardFront : public QObject
{
    Q_OBJECT

private slots:
    void cardsOfTheDriversOwnFile();
    void cardWithoutAFrameIsDark();
    void hostileFiles_data();
    void hostileFiles();
    void hostileFields_data();
    void hostileFields();
    void readerFollowsTheFile();
    void ledEffects_data();
    void ledEffects();
    void breathIsSmoothAndPeriodic();
    void gradientRunsAlongTheStrip();
    void lcdPages_data();
    void lcdPages();
    void lcdFaces_data();
    void lcdFaces();
    void models_data();
    void models();
    void cardsLieSideBySide();
};

namespace
{

const QColor kRed(255, 0, 0);
const QColor kGreen(0, 255, 0);
const QColor kBlue(0, 0, 255);

LedState led(int effect, int level, int interval, const QVector<QColor> &colours)
{
    LedState frame;
    frame.effect = effect;
    frame.level = level;
    frame.interval = interval;
    frame.colours = colours;
    return frame;
}

LcdState lcd(int command)
{
    const auto cards = cardFrontsOf(stateAfter({}, lcdFrameOf(static_cast<quint8>(command))));
    return cards && !cards->isEmpty() ? cards->front().lcd.value_or(LcdState()) : LcdState();
}

/// A state file with one card that has the fields given.
QByteArray oneCard(const QByteArray &fields)
{
    return "{\"cards\":[{" + fields + "}]}";
}

} // namespace

void TestCardFront::cardsOfTheDriversOwnFile()
{
    const QByteArray text =
        stateAfter({0x0B, 0x02, 0x32, 0x03, 0xFF, 0x00, 0x00, 0x00, 0x7F, 0xFF, 0x40}, lcdFrameOf(0x40));
    const auto cards = cardFrontsOf(text);
    QVERIFY(cards.has_value());
    QCOMPARE(cards->size(), 2);
    const CardFront &own = cards->at(0);
    QCOMPARE(own.name, QStringLiteral("GeForce GTX 1070 Ti"));
    QVERIFY(own.led.has_value());
    QCOMPARE(own.led->accepted, 1);
    QCOMPARE(own.led->effect, kEffectInTurn);
    QCOMPARE(own.led->level, kFullLevel);
    QCOMPARE(own.led->interval, 3);
    QCOMPARE(own.led->colours, (QVector<QColor>{QColor(255, 0, 0), QColor(0, 127, 255)}));
    QVERIFY(own.lcd.has_value());
    QCOMPARE(own.lcd->command, kLcdTemperature);
    QCOMPARE(own.lcd->sequence, 7);
    QCOMPARE(own.lcd->memoryTotalKB, 8388608.0);
    QCOMPARE(own.lcd->memoryUsedKB, 2097152.0);
    QCOMPARE(own.lcd->baseClockMHz, 1607);
    QCOMPARE(own.lcd->currentClockMHz, 1683);
    QCOMPARE(own.lcd->thermalLimitC, 83);
    QCOMPARE(own.lcd->temperatureC, 64);
    QCOMPARE(own.lcd->fanMaxRpm, 3300);
    QCOMPARE(own.lcd->fanRpm, 1480);
    QVERIFY(!own.lcd->fanFlag);
    QCOMPARE(own.lcd->modelDigits, (std::array<int, 4>{1, 0, 7, 0}));
    QVERIFY(own.lcd->modelTi);
    QVERIFY(!cards->at(1).led.has_value());
    QVERIFY(!cards->at(1).lcd.has_value());
}

void TestCardFront::cardWithoutAFrameIsDark()
{
    const auto cards = cardFrontsOf(stateAfter({}, {}));
    QVERIFY(cards.has_value());
    QCOMPARE(ledLightAt(cards->at(0).led.value(), 0, 0.5).brightness, 0.0);
    QVERIFY(!lcdFaceAt(cards->at(0).lcd.value(), 0).lit);
}

void TestCardFront::hostileFiles_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("cards"); // -1: no state file at all
    const QByteArray whole = stateAfter({}, lcdFrameOf(0x80));
    QTest::newRow("empty") << QByteArray() << -1;
    QTest::newRow("half") << whole.left(whole.size() / 2) << -1;
    QTest::newRow("all but the last byte") << whole.trimmed().chopped(1) << -1;
    QTest::newRow("zero bytes") << QByteArray(4096, '\0') << -1;
    QTest::newRow("list instead of an object") << QByteArray("[1,2]") << -1;
    QTest::newRow("no cards key") << QByteArray("{\"t\":3}") << -1;
    QTest::newRow("cards are an object") << QByteArray("{\"cards\":{}}") << -1;
    QTest::newRow("cards are null") << QByteArray("{\"cards\":null}") << -1;
    QTest::newRow("nested too deep") << QByteArray("{\"cards\":") + QByteArray(100000, '[') << -1;
    QTest::newRow("no cards") << QByteArray("{\"cards\":[]}") << 0;
    QTest::newRow("cards that are none") << QByteArray("{\"cards\":[1,null,\"x\",[],true]}") << 0;
    QTest::newRow("one among others") << QByteArray("{\"cards\":[1,{},null]}") << 1;
    QTest::newRow("very many") << QByteArray("{\"cards\":[") + QByteArray("{},").repeated(4999) + "{}]}" << 5000;
    QTest::newRow("the driver's own") << whole << 2;
}

void TestCardFront::hostileFiles()
{
    QFETCH(QByteArray, text);
    QFETCH(int, cards);
    const auto read = cardFrontsOf(text);
    QCOMPARE(read ? read->size() : -1, cards);
}

void TestCardFront::hostileFields_data()
{
    QTest::addColumn<QByteArray>("fields");
    QTest::addColumn<CardFront>("card");
    const CardFront plain;
    QTest::newRow("nothing") << QByteArray() << plain;
    QTest::newRow("wrong types") << QByteArray(R"("name":5,"readings":[],"led":3,"lcd":"x")") << plain;
    QTest::newRow("readings out of range") << QByteArray(R"("readings":{"fanRpm":-5,"fanPercent":-1})") << plain;
    CardFront windy;
    windy.fanRpm = 20000;
    windy.fanPercent = 100;
    QTest::newRow("readings beyond measure")
        << QByteArray(R"("readings":{"fanRpm":1e300,"fanPercent":1e300})") << windy;
    CardFront named;
    named.name = QString(64, QLatin1Char('N'));
    QTest::newRow("endless name") << QByteArray("\"name\":\"") + QByteArray(100000, 'N') + "\"" << named;
    const CardFront dark = {QString(), 0, 0, LedState(), LcdState()};
    QTest::newRow("controllers without fields") << QByteArray(R"("led":{},"lcd":{})") << dark;
    QTest::newRow("controllers with fields of a wrong type")
        << QByteArray(R"("led":{"effect":"1","level":null,"colours":{}},"lcd":{"command":"0x80","modelDigits":7})")
        << dark;
    const CardFront odd = {QString(), 0, 0, led(255, 255, 0, {QColor(255, 0, 7)}), {}};
    QTest::newRow("LED fields out of range, colours of a wrong size")
        << QByteArray(R"("led":{"effect":1e9,"level":999,"interval":-4,"colours":[[1,2],[999,-3,7],[1,2,3,4],5]})")
        << odd;
    const CardFront many = {QString(), 0, 0, led(2, 50, 2, QVector<QColor>(7, QColor(1, 2, 3))), {}};
    QTest::newRow("more than seven colours")
        << QByteArray(R"("led":{"effect":2,"level":50,"interval":2,"colours":[)") +
               QByteArray("[1,2,3],").repeated(40) + "[1,2,3]]}"
        << many;
    LcdState panel;
    panel.command = 255;
    panel.memoryTotalKB = 4294967295.0;
    panel.fanRpm = 65535;
    panel.modelDigits = {9, 255, 0, 0};
    const CardFront large = {QString(), 0, 0, {}, panel};
    QTest::newRow("LCD fields out of range")
        << QByteArray(R"("lcd":{"command":1e9,"memoryTotalKB":1e99,"fanRpm":70000,"modelDigits":[9,999,-1]})")
        << large;
}

void TestCardFront::hostileFields()
{
    QFETCH(QByteArray, fields);
    QFETCH(CardFront, card);
    const auto cards = cardFrontsOf(oneCard(fields));
    QVERIFY(cards.has_value());
    QCOMPARE(cards->size(), 1);
    QVERIFY(cards->front() == card);
    // and whatever it is can be shown
    if (card.led)
        QVERIFY(ledLightAt(*card.led, 123456789012345, 2.0).brightness <= 1.0);
    if (card.lcd)
        (void)lcdFaceAt(*card.lcd, -1);
}

void TestCardFront::readerFollowsTheFile()
{
    const QTemporaryDir folder;
    QVERIFY(folder.isValid());
    const QString path = folder.filePath("state.json");
    const auto write = [&](const QByteArray &text) {
        QFile file(path);
        return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(text) == text.size();
    };
    StateReader reader(path);
    QVERIFY(!reader.read()); // there is no file
    QVERIFY(reader.cards().isEmpty());
    QVERIFY(write(oneCard("\"name\":\"A\"")));
    QVERIFY(reader.read());
    QCOMPARE(reader.cards().size(), 1);
    QVERIFY(!reader.read());                   // nothing new
    QVERIFY(write(oneCard("\"name\":\"B\""))); // of the same size and maybe within the same tick of the clock
    QVERIFY(reader.read());
    QCOMPARE(reader.cards().front().name, QStringLiteral("B"));
    QVERIFY(write("{\"cards\":[{\"name\":")); // half of a file
    QVERIFY(!reader.read());
    QCOMPARE(reader.cards().front().name, QStringLiteral("B"));
    QVERIFY(QFile::remove(path));
    QVERIFY(!reader.read());
    QCOMPARE(reader.cards().front().name, QStringLiteral("B"));
    QVERIFY(write("{\"cards\":[]}"));
    QVERIFY(reader.read());
    QVERIFY(reader.cards().isEmpty());
    QVERIFY(!StateReader(folder.path()).read()); // a folder is no file
}

void TestCardFront::ledEffects_data()
{
    QTest::addColumn<LedState>("frame");
    QTest::addColumn<qint64>("ms");
    QTest::addColumn<QColor>("colour");
    QTest::addColumn<double>("brightness");
    const auto row = [](const char *name, const LedState &frame, qint64 ms, const QColor &colour, double brightness) {
        QTest::newRow(name) << frame << ms << colour << brightness;
    };
    const QColor none = Qt::black;
    row("steady at once", led(0, 50, 2, {kRed}), 0, kRed, 1.0);
    row("steady later", led(0, 50, 2, {kRed}), 98765, kRed, 1.0);
    row("steady at half the level", led(0, 25, 2, {kRed}), 0, kRed, 0.5);
    row("steady beyond the full level", led(0, 255, 2, {kRed}), 0, kRed, 1.0);
    row("sleep", led(0, 0, 10, {}), 500, none, 0.0);
    row("level without colours", led(0, 50, 2, {}), 500, none, 0.0);
    row("breath begins dark", led(1, 50, 4, {kGreen}), 0, kGreen, 0.0);
    row("breath half way up", led(1, 50, 4, {kGreen}), 500, kGreen, 0.5);
    row("breath at its height", led(1, 50, 4, {kGreen}), 1000, kGreen, 1.0);
    row("breath half way down", led(1, 50, 4, {kGreen}), 1500, kGreen, 0.5);
    row("breath of interval 2 is twice as fast", led(1, 50, 2, {kGreen}), 500, kGreen, 1.0);
    row("breath of interval 16", led(1, 50, 16, {kGreen}), 4000, kGreen, 1.0);
    row("breath of several, first", led(1, 50, 2, {kRed, kBlue}), 500, kRed, 1.0);
    row("breath of several, second", led(1, 50, 2, {kRed, kBlue}), 1500, kBlue, 1.0);
    row("breath of several, first again", led(1, 50, 2, {kRed, kBlue}), 2500, kRed, 1.0);
    row("in turn, first", led(2, 50, 3, {kRed, kGreen, kBlue}), 1499, kRed, 1.0);
    row("in turn, second", led(2, 50, 3, {kRed, kGreen, kBlue}), 1500, kGreen, 1.0);
    row("in turn, third", led(2, 50, 3, {kRed, kGreen, kBlue}), 4499, kBlue, 1.0);
    row("in turn, first again", led(2, 50, 3, {kRed, kGreen, kBlue}), 4500, kRed, 1.0);
    row("in turn with one colour", led(2, 50, 2, {kRed}), 5000, kRed, 1.0);
    row("gradient begins red at the right end", led(4, 50, 2, {}), 0, kRed, 1.0);
    row("gradient is green after a third", led(4, 50, 2, {}), 2000, kGreen, 1.0);
    row("gradient is blue after two thirds", led(4, 50, 2, {}), 4000, kBlue, 1.0);
    row("gradient is red again", led(4, 50, 2, {}), 6000, kRed, 1.0);
    row("gradient without level", led(4, 0, 2, {}), 2000, kGreen, 0.0);
    row("interval 0 counts as 1", led(2, 50, 0, {kRed, kGreen}), 500, kGreen, 1.0);
    row("time before the frame", led(2, 50, 2, {kRed, kGreen}), -1000, kRed, 1.0);
    row("unknown effect", led(9, 50, 2, {kRed}), 0, none, 0.0);
}

void TestCardFront::ledEffects()
{
    QFETCH(LedState, frame);
    QFETCH(qint64, ms);
    QFETCH(QColor, colour);
    QFETCH(double, brightness);
    const LedLight light = ledLightAt(frame, ms, 1.0);
    QCOMPARE(light.colour.rgb(), colour.rgb());
    QVERIFY2(qAbs(light.brightness - brightness) < 1e-9, qPrintable(QString::number(light.brightness)));
}

void TestCardFront::breathIsSmoothAndPeriodic()
{
    const LedState frame = led(1, 50, 4, {kRed});
    QCOMPARE(colourStayMs(frame), 2000LL);
    for (qint64 ms = 0; ms < 2000; ++ms) {
        const double here = ledLightAt(frame, ms, 0).brightness;
        QVERIFY(qAbs(ledLightAt(frame, ms + 1, 0).brightness - here) < 0.002);
        QCOMPARE(ledLightAt(frame, ms + 2000, 0).brightness, here);
        QCOMPARE(ledLightAt(frame, ms, 1).brightness, here); // all LEDs breathe together
    }
}

void TestCardFront::gradientRunsAlongTheStrip()
{
    const LedState frame = led(4, 50, 2, {});
    QVERIFY(ledLightAt(frame, 0, 0.0).colour != ledLightAt(frame, 0, 0.5).colour);
    // what is at the left end now reaches the right one when the hues have gone on by as much as lies between
    QCOMPARE(ledLightAt(frame, 2700, 1.0).colour.hue(), ledLightAt(frame, 0, 0.0).colour.hue());
}

void TestCardFront::lcdPages_data()
{
    QTest::addColumn<int>("command");
    QTest::addColumn<qint64>("ms");
    QTest::addColumn<int>("page");
    QTest::newRow("clock") << 0x80 << 0LL << kLcdClock;
    QTest::newRow("temperature") << 0x40 << 0LL << kLcdTemperature;
    QTest::newRow("memory") << 0x20 << 0LL << kLcdMemory;
    QTest::newRow("other") << 0x10 << 0LL << kLcdOther;
    QTest::newRow("a page stays") << 0x40 << 999999LL << kLcdTemperature;
    QTest::newRow("off") << 0xF0 << 0LL << 0;
    QTest::newRow("two pages at once") << 0xC0 << 0LL << 0;
    QTest::newRow("nothing") << 0 << 0LL << 0;
    QTest::newRow("rotation of 10 s begins with the clock") << 0xF6 << 9999LL << kLcdClock;
    QTest::newRow("rotation, then temperature") << 0xF6 << 10000LL << kLcdTemperature;
    QTest::newRow("rotation, then memory") << 0xF6 << 20000LL << kLcdMemory;
    QTest::newRow("rotation, then other") << 0xF6 << 39999LL << kLcdOther;
    QTest::newRow("rotation, clock again") << 0xF6 << 40000LL << kLcdClock;
    QTest::newRow("rotation of 1 s") << 0xF1 << 1000LL << kLcdTemperature;
    QTest::newRow("rotation of 30 s") << 0xFB << 29999LL << kLcdClock;
    QTest::newRow("rotation of an unknown rate") << 0xFF << 30000LL << kLcdTemperature;
    QTest::newRow("rotation before its time") << 0xF1 << -5000LL << kLcdClock;
}

void TestCardFront::lcdPages()
{
    QFETCH(int, command);
    QFETCH(qint64, ms);
    QFETCH(int, page);
    QCOMPARE(lcdPageAt(command, ms), page);
}

void TestCardFront::lcdFaces_data()
{
    QTest::addColumn<LcdState>("frame");
    QTest::addColumn<QStringList>("texts"); // caption, digits, unit, detail
    QTest::addColumn<double>("part");
    QTest::newRow("clock") << lcd(0x80) << QStringList{"CLOCK", "1683", "MHz", "base 1607"} << 1683 / (1607 * 1.25);
    QTest::newRow("temperature") << lcd(0x40) << QStringList{"TEMP", "64", "°C", "limit 83"} << 64 / 83.0;
    QTest::newRow("memory") << lcd(0x20) << QStringList{"MEMORY", "2048", "MB", "of 8192 MB"} << 0.25;
    QTest::newRow("other") << lcd(0x10) << QStringList{"FAN", "1480", "RPM", "GTX 1070 Ti"} << 1480 / 3300.0;
    LcdState frame = lcd(0x10);
    frame.fanFlag = true;
    QTest::newRow("other with the fan flag")
        << frame << QStringList{"FAN ON", "1480", "RPM", "GTX 1070 Ti"} << 1480 / 3300.0;
    frame = lcd(0x20);
    frame.memoryTotalKB = 24.0 * 1024 * 1024;
    frame.memoryUsedKB = 10000.0 * 1024;
    QTest::newRow("more memory than four digits")
        << frame << QStringList{"MEMORY", "9.8", "GB", "of 24.0 GB"} << 10000 / 24576.0;
    frame.memoryUsedKB = 9999.0 * 1024 + 1023;
    QTest::newRow("memory just in four digits")
        << frame << QStringList{"MEMORY", "9999", "MB", "of 24.0 GB"} << frame.memoryUsedKB / frame.memoryTotalKB;
    frame.memoryUsedKB = frame.memoryTotalKB = 4294967295.0;
    QTest::newRow("largest memory") << frame << QStringList{"MEMORY", "4096.0", "GB", "of 4096.0 GB"} << 1.0;
    frame = LcdState();
    frame.command = 0x80;
    QTest::newRow("readings that failed") << frame << QStringList{"CLOCK", "0", "MHz", "base 0"} << 0.0;
    frame = lcd(0x40);
    frame.temperatureC = 65535;
    QTest::newRow("beyond the limit") << frame << QStringList{"TEMP", "65535", "°C", "limit 83"} << 1.0;
    frame.command = 0xC0;
    QTest::newRow("no such page") << frame << QStringList{"", "----", "", ""} << 0.0;
    frame.command = 0xF0;
    QTest::newRow("off") << frame << QStringList{"", "", "", ""} << 0.0;
}

void TestCardFront::lcdFaces()
{
    QFETCH(LcdState, frame);
    QFETCH(QStringList, texts);
    QFETCH(double, part);
    const LcdFace face = lcdFaceAt(frame, 0);
    QCOMPARE(face.lit, frame.command != kLcdOff);
    QCOMPARE((QStringList{face.caption, face.digits, face.unit, face.detail}), texts);
    QVERIFY2(qAbs(face.part - part) < 1e-9, qPrintable(QString::number(face.part)));
}

void TestCardFront::models_data()
{
    QTest::addColumn<QVector<int>>("digits");
    QTest::addColumn<bool>("ti");
    QTest::addColumn<QString>("text");
    QTest::newRow("four digits and Ti") << QVector<int>{1, 0, 8, 0} << true << "GTX 1080 Ti";
    QTest::newRow("three digits") << QVector<int>{0, 9, 6, 0} << false << "GTX 960";
    QTest::newRow("none") << QVector<int>{0, 0, 0, 0} << false << "";
    QTest::newRow("Ti without digits") << QVector<int>{0, 0, 0, 0} << true << "";
    QTest::newRow("a letter behind three digits") << QVector<int>{9, 6, 0, 'M' - '0'} << false << "GTX 960M";
    QTest::newRow("no characters at all") << QVector<int>{1, 200, 80, 0} << false << "GTX 1--0";
}

void TestCardFront::models()
{
    QFETCH(QVector<int>, digits);
    QFETCH(bool, ti);
    QFETCH(QString, text);
    LcdState frame;
    std::copy_n(digits.begin(), frame.modelDigits.size(), frame.modelDigits.begin());
    frame.modelTi = ti;
    QCOMPARE(modelText(frame), text);
}

void TestCardFront::cardsLieSideBySide()
{
    QCOMPARE(shownCards(-1), 0);
    QCOMPARE(shownCards(2), 2);
    QCOMPARE(shownCards(5000), kMostCards);
    QCOMPARE(windowSize(0), windowSize(1));
    for (int count = 1; count <= kMostCards; ++count) {
        const QRect window(QPoint(), windowSize(count));
        for (int i = 0; i < count; ++i) {
            QVERIFY(window.contains(cellRect(i)));
            QVERIFY(cellRect(i).contains(cardRect(i)));
            for (int j = 0; j < i; ++j)
                QVERIFY(!cellRect(i).intersects(cellRect(j)));
        }
    }
    for (const bool hasLcd : {false, true}) {
        const CardLayout layout = cardLayout(hasLcd);
        QVERIFY(QRect(QPoint(), kCardSize).contains(layout.shroud));
        QVERIFY(layout.shroud.contains(layout.strip));
        QVERIFY(layout.logo.contains(layout.logoCore));
        QCOMPARE(layout.lcd.isEmpty(), !hasLcd);
        for (int i = 0; i < layout.fanCount; ++i) {
            QVERIFY(layout.shroud.contains(layout.fans[i]));
            QVERIFY(!layout.fans[i].intersects(layout.strip));
            QVERIFY(!layout.fans[i].intersects(layout.lcd));
            for (int j = 0; j < i; ++j)
                QVERIFY(!layout.fans[i].intersects(layout.fans[j]));
        }
    }
}

QTEST_GUILESS_MAIN(TestCardFront)
#include "TestCardFront.moc"
