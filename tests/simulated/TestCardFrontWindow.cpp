#include "CardFrontStates.h"

#include "monitor/WidgetPainting.h"
#include "simulated/front/CardFrontWindow.h"
#include "simulated/front/LcdPainter.h"
#include "simulated/front/LedEffect.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

using namespace cardfront;

/// What the window paints.
class TestCardFrontWindow : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void ledPixels_data();
    void ledPixels();
    void gradientIsNotOneColour();
    void cardsDoNotSwapTheirLights();
    void dark();
    void lcdOffIsDark();
    void lcdPagesDiffer();
    void digitsChangeWithTheReading();
    void barFollowsTheReading();
    void plainCardHasNeither();
    void fansTurnWithTheirSpeed_data();
    void fansTurnWithTheirSpeed();
    void newFrameStartsItsEffect();
    void windowFollowsTheNumberOfCards();
    void noCardsYet();
    void hostileFilesAreSurvived_data();
    void hostileFilesAreSurvived();
    void placeOnTheScreen_data();
    void placeOnTheScreen();

private:
    void write(const QByteArray &text) const;
    [[nodiscard]] QString path() const { return folder->filePath("state.json"); }

    std::unique_ptr<QTemporaryDir> folder;
};

namespace
{

QByteArray cardJson(const QByteArray &led, const QByteArray &lcd, int fanRpm = 0)
{
    return "{\"name\":\"GeForce GTX 1070 Ti\",\"readings\":{\"fanRpm\":" + QByteArray::number(fanRpm) +
           "},\"led\":" + led + ",\"lcd\":" + lcd + "}";
}

QByteArray stateJson(const QByteArrayList &cards)
{
    return "{\"t\":1,\"cards\":[" + cards.join(',') + "]}";
}

QByteArray ledJson(int effect, int level, int interval, const QByteArray &colours)
{
    return "{\"effect\":" + QByteArray::number(effect) + ",\"level\":" + QByteArray::number(level) +
           ",\"interval\":" + QByteArray::number(interval) + ",\"colours\":[" + colours + "]}";
}

QByteArray lcdJson(int command, int temperature = 64)
{
    return "{\"command\":" + QByteArray::number(command) +
           ",\"memoryTotalKB\":8388608,\"memoryUsedKB\":2097152,\"baseClockMHz\":1607,\"currentClockMHz\":1683,"
           "\"thermalLimitC\":83,\"temperatureC\":" +
           QByteArray::number(temperature) +
           ",\"fanMaxRpm\":3300,\"fanRpm\":1480,\"modelDigits\":[1,0,7,0],\"modelTi\":1}";
}

QImage pictureOf(CardFrontWindow &window)
{
    return paintingOf(window).convertToFormat(QImage::Format_RGB32);
}

/// The one colour of a rectangle; invalid when it has several.
QColor colourOf(const QImage &image, const QRect &rect)
{
    const QRgb first = image.pixel(rect.topLeft());
    for (int y = rect.top(); y <= rect.bottom(); ++y) {
        for (int x = rect.left(); x <= rect.right(); ++x) {
            if (image.pixel(x, y) != first)
                return {};
        }
    }
    return QColor(first);
}

QRect innerStrip(int card, bool hasLcd)
{
    return inWindow(card, cardLayout(hasLcd).strip.adjusted(1, 1, -1, -1));
}

int brightPixels(const QImage &image, const QRect &rect, int least)
{
    int count = 0;
    for (int y = rect.top(); y <= rect.bottom(); ++y) {
        for (int x = rect.left(); x <= rect.right(); ++x)
            count += qGray(image.pixel(x, y)) >= least ? 1 : 0;
    }
    return count;
}

int differentPixels(const QImage &a, const QImage &b, const QRect &rect)
{
    int count = 0;
    for (int y = rect.top(); y <= rect.bottom(); ++y) {
        for (int x = rect.left(); x <= rect.right(); ++x)
            count += a.pixel(x, y) != b.pixel(x, y) ? 1 : 0;
    }
    return count;
}

} // namespace

void TestCardFrontWindow::initTestCase()
{
    useProgramFonts();
    registerApplicationFonts();
}

void TestCardFrontWindow::init()
{
    folder = std::make_unique<QTemporaryDir>();
    QVERIFY(folder->isValid());
}

void TestCardFrontWindow::write(const QByteArray &text) const
{
    QFile file(path());
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    QCOMPARE(file.write(text), qint64(text.size()));
}

void TestCardFrontWindow::ledPixels_data()
{
    QTest::addColumn<QByteArray>("led");
    QTest::addColumn<qint64>("ms");
    QTest::addColumn<QColor>("colour");
    const QByteArray red = "[255,0,0]";
    const QByteArray both = "[255,0,0],[0,127,255]";
    QTest::newRow("steady") << ledJson(0, 50, 2, red) << 0LL << QColor(255, 0, 0);
    QTest::newRow("off") << ledJson(0, 0, 10, "") << 0LL << kUnlitLed;
    QTest::newRow("breath, dark") << ledJson(1, 50, 2, red) << 1000LL << kUnlitLed;
    QTest::newRow("breath, at its height") << ledJson(1, 50, 2, red) << 500LL << QColor(255, 0, 0);
    QTest::newRow("in turn, first") << ledJson(2, 50, 2, both) << 900LL << QColor(255, 0, 0);
    QTest::newRow("in turn, second") << ledJson(2, 50, 2, both) << 1100LL << QColor(0, 127, 255);
    QTest::newRow("unknown effect") << ledJson(7, 50, 2, red) << 0LL << kUnlitLed;
}

void TestCardFrontWindow::ledPixels()
{
    QFETCH(QByteArray, led);
    QFETCH(qint64, ms);
    QFETCH(QColor, colour);
    for (const bool hasLcd : {false, true}) {
        write(stateJson({cardJson(led, hasLcd ? lcdJson(0x80) : QByteArray("null"))}));
        CardFrontWindow window(path());
        window.advanceTo(ms);
        const QImage picture = pictureOf(window);
        QCOMPARE(colourOf(picture, innerStrip(0, hasLcd)), QColor(colour.rgb()));
        QCOMPARE(colourOf(picture, inWindow(0, cardLayout(hasLcd).logoCore)), QColor(colour.rgb()));
    }
}

void TestCardFrontWindow::gradientIsNotOneColour()
{
    write(stateJson({cardJson(ledJson(4, 50, 2, ""), "null")}));
    CardFrontWindow window(path());
    const QRect strip = innerStrip(0, false);
    window.advanceTo(0);
    const QImage before = pictureOf(window);
    QVERIFY(!colourOf(before, strip).isValid());
    window.advanceTo(1000);
    const QImage after = pictureOf(window);
    QCOMPARE(differentPixels(before, after, strip), strip.width() * strip.height());
    for (const QPoint &end : {strip.topLeft(), strip.center(), strip.bottomRight()})
        QVERIFY(QColor(after.pixel(end)).saturation() > 200);
}

void TestCardFrontWindow::cardsDoNotSwapTheirLights()
{
    write(stateJson(
        {cardJson(ledJson(0, 50, 2, "[255,0,0]"), lcdJson(0xF0)), cardJson(ledJson(0, 50, 2, "[0,0,255]"), "null")}));
    CardFrontWindow window(path());
    const QImage picture = pictureOf(window);
    QCOMPARE(colourOf(picture, innerStrip(0, true)), QColor(255, 0, 0));
    QCOMPARE(colourOf(picture, innerStrip(1, false)), QColor(0, 0, 255));
}

void TestCardFrontWindow::dark()
{
    // lights that are off light up nothing around them
    write(stateJson({cardJson(ledJson(0, 0, 10, ""), "null")}));
    CardFrontWindow off(path());
    const QImage dark = pictureOf(off);
    for (int y = cardRect(0).top(); y <= cardRect(0).bottom(); ++y) {
        for (int x = inWindow(0, cardLayout(false).shroud).left(); x <= cardRect(0).right(); ++x) {
            const QColor colour(dark.pixel(x, y));
            if (colour.value() > 120) // the edge connector's gold
                QVERIFY(!inWindow(0, cardLayout(false).shroud).contains(x, y));
        }
    }
    write(stateJson({cardJson(ledJson(0, 50, 2, "[0,255,0]"), "null")}));
    CardFrontWindow lit(path());
    const QPoint beside = inWindow(0, cardLayout(false).strip).center() + QPoint(0, 10);
    QVERIFY(qGreen(pictureOf(lit).pixel(beside)) > qGreen(dark.pixel(beside)) + 30);
}

void TestCardFrontWindow::lcdOffIsDark()
{
    write(stateJson({cardJson("null", lcdJson(0xF0))}));
    CardFrontWindow window(path());
    const QRect glass = inWindow(0, cardLayout(true).lcd);
    QCOMPARE(brightPixels(pictureOf(window), glass, 40), 0);
    write(stateJson({cardJson("null", lcdJson(0x80))}));
    window.advanceTo(1);
    QVERIFY(brightPixels(pictureOf(window), glass, 200) > 100);
}

void TestCardFrontWindow::lcdPagesDiffer()
{
    const QRect glass = inWindow(0, cardLayout(true).lcd);
    const LcdLayout layout = lcdLayout(glass);
    QVector<QImage> pages;
    for (const int command : {0x80, 0x40, 0x20, 0x10}) {
        write(stateJson({cardJson("null", lcdJson(command))}));
        CardFrontWindow window(path());
        const QImage picture = pictureOf(window);
        for (const QRect &part : {layout.caption, layout.digits, layout.unit, layout.detail, layout.bar})
            QVERIFY(glass.contains(part));
        QVERIFY(brightPixels(picture, layout.digits, 200) > 60);
        QVERIFY(brightPixels(picture, layout.caption, 80) > 20);
        QVERIFY(brightPixels(picture, layout.unit, 60) > 15);
        QVERIFY(brightPixels(picture, layout.detail, 80) > 20);
        for (const QImage &other : qAsConst(pages)) {
            QVERIFY(differentPixels(picture, other, layout.caption) > 20);
            QVERIFY(differentPixels(picture, other, layout.digits) > 50);
            QVERIFY(differentPixels(picture, other, layout.detail) > 20);
        }
        pages.append(picture);
    }
}

void TestCardFrontWindow::digitsChangeWithTheReading()
{
    const QRect digits = lcdLayout(inWindow(0, cardLayout(true).lcd)).digits;
    write(stateJson({cardJson("null", lcdJson(0x40, 64))}));
    CardFrontWindow window(path());
    const QImage before = pictureOf(window);
    window.advanceTo(500);
    QCOMPARE(differentPixels(before, pictureOf(window), digits), 0);
    write(stateJson({cardJson("null", lcdJson(0x40, 65))}));
    window.advanceTo(1000);
    QVERIFY(differentPixels(before, pictureOf(window), digits) > 10);
    write(stateJson({cardJson("null", lcdJson(0x40, 65535))})); // shrinks to fit
    window.advanceTo(1500);
    QVERIFY(brightPixels(pictureOf(window), digits, 200) > 60);
}

void TestCardFrontWindow::barFollowsTheReading()
{
    const QRect bar = lcdLayout(inWindow(0, cardLayout(true).lcd)).bar;
    const auto filled = [&](int temperature) {
        write(stateJson({cardJson("null", lcdJson(0x40, temperature))}));
        CardFrontWindow window(path());
        const QImage picture = pictureOf(window);
        int count = 0;
        for (int x = bar.left(); x <= bar.right(); ++x)
            count += qRed(picture.pixel(x, bar.center().y())) > 200 ? 1 : 0;
        return count;
    };
    QCOMPARE(filled(0), 0);
    QVERIFY(qAbs(filled(42) - bar.width() * 42 / 83) <= 1);
    QCOMPARE(filled(83), bar.width());
    QCOMPARE(filled(200), bar.width());
}

void TestCardFrontWindow::plainCardHasNeither()
{
    write(stateJson({cardJson("null", "null"), cardJson(ledJson(0, 50, 2, "[255,0,0]"), "null")}));
    CardFrontWindow window(path());
    const QImage picture = pictureOf(window);
    const QRect shroud = inWindow(0, cardLayout(false).shroud);
    for (int y = shroud.top(); y <= shroud.bottom(); ++y) {
        for (int x = shroud.left(); x <= shroud.right(); ++x)
            QVERIFY(QColor(picture.pixel(x, y)).value() < 140); // nothing shines
    }
    const QColor strip = colourOf(picture, innerStrip(0, false));
    QVERIFY(strip != QColor(kUnlitLed.rgb())); // not even one that is off
}

void TestCardFrontWindow::fansTurnWithTheirSpeed_data()
{
    QTest::addColumn<int>("rpm");
    QTest::addColumn<bool>("turns");
    QTest::newRow("standing") << 0 << false;
    QTest::newRow("slow") << 700 << true;
    QTest::newRow("fast") << 3300 << true;
    QTest::newRow("faster than any") << 20000 << true;
}

void TestCardFrontWindow::fansTurnWithTheirSpeed()
{
    QFETCH(int, rpm);
    QFETCH(bool, turns);
    write(stateJson({cardJson("null", "null", rpm)}));
    CardFrontWindow window(path());
    window.advanceTo(0);
    const QImage before = pictureOf(window);
    window.advanceTo(33);
    const QImage after = pictureOf(window);
    for (const QRect &fan : cardLayout(false).fans)
        QCOMPARE(differentPixels(before, after, inWindow(0, fan)) > 500, turns);
    QCOMPARE(differentPixels(before, after, innerStrip(0, false)), 0);
}

void TestCardFrontWindow::newFrameStartsItsEffect()
{
    write(stateJson({cardJson(ledJson(2, 50, 2, "[255,0,0],[0,0,255]"), "null")}));
    CardFrontWindow window(path());
    window.advanceTo(1500);
    QCOMPARE(colourOf(pictureOf(window), innerStrip(0, false)), QColor(0, 0, 255));
    write(stateJson({cardJson(ledJson(2, 50, 2, "[255,0,0],[0,255,0]"), "null")}));
    window.advanceTo(1600);
    QCOMPARE(colourOf(pictureOf(window), innerStrip(0, false)), QColor(255, 0, 0));
    write(stateJson({cardJson(ledJson(2, 50, 2, "[255,0,0],[0,255,0]"), "null", 900)})); // other news
    window.advanceTo(2650);
    QCOMPARE(colourOf(pictureOf(window), innerStrip(0, false)), QColor(0, 255, 0));
}

void TestCardFrontWindow::windowFollowsTheNumberOfCards()
{
    CardFrontWindow window(path());
    QCOMPARE(window.windowTitle(), QString::fromLatin1(kWindowTitle));
    QCOMPARE(window.size(), windowSize(0));
    const QByteArray card = cardJson("null", "null");
    qint64 ms = 0;
    for (const int count : {1, 2, 3, 4, 6, 1, 0, 2}) {
        QByteArrayList cards;
        for (int i = 0; i < count; ++i)
            cards << card;
        write(stateJson(cards));
        window.advanceTo(++ms);
        QCOMPARE(window.cards().size(), count);
        QCOMPARE(window.size(), windowSize(count));
        QVERIFY(!pictureOf(window).isNull());
    }
}

void TestCardFrontWindow::noCardsYet()
{
    CardFrontWindow window(path());
    const QImage waiting = pictureOf(window);
    QVERIFY(brightPixels(waiting, waiting.rect(), 150) > 100); // a word about it
    write(stateJson({cardJson("null", "null")}));
    window.advanceTo(1);
    QVERIFY(differentPixels(waiting, pictureOf(window), cardRect(0)) > 20000);
}

void TestCardFrontWindow::hostileFilesAreSurvived_data()
{
    QTest::addColumn<QByteArray>("text");
    const QByteArray whole = stateAfter({0x08, 0x00, 0x32, 0x02, 0xFF, 0x00, 0x00, 0xC4}, lcdFrameOf(0x80));
    for (int i = 0; i < 8; ++i)
        QTest::newRow(qPrintable(QStringLiteral("cut after %1 eighths").arg(i))) << whole.left(whole.size() * i / 8);
    QTest::newRow("a hundred cards") << stateJson(QByteArrayList(QVector<QByteArray>(100, "{}").toList()));
    QTest::newRow("texts for numbers") << stateJson(
        {R"({"name":{},"readings":7,"led":{"colours":[["a","b","c"]],"level":"x"},"lcd":{"command":[]}})"});
    QTest::newRow("numbers beyond measure")
        << stateJson({R"({"readings":{"fanRpm":1e308},"led":{"effect":2,"level":1e308,"interval":1e308,)"
                      R"("colours":[[1e308,-1e308,0]]},"lcd":{"command":128,"currentClockMHz":1e308,)"
                      R"("baseClockMHz":-1e308}})"});
}

void TestCardFrontWindow::hostileFilesAreSurvived()
{
    QFETCH(QByteArray, text);
    write(text);
    CardFrontWindow window(path());
    for (const qint64 ms : {qint64(0), qint64(33), qint64(1) << 40}) {
        window.advanceTo(ms);
        QVERIFY(!pictureOf(window).isNull());
    }
    write(stateJson({cardJson(ledJson(0, 50, 2, "[0,255,0]"), "null")})); // and better days come
    window.advanceTo((qint64(1) << 40) + 33);
    QCOMPARE(colourOf(pictureOf(window), innerStrip(0, false)), QColor(0, 255, 0));
}

void TestCardFrontWindow::placeOnTheScreen_data()
{
    QTest::addColumn<QRect>("available");
    QTest::addColumn<QPoint>("place");
    QTest::newRow("beside the program") << QRect(0, 0, 1920, 1080) << QPoint(1476, 200);
    QTest::newRow("below a panel") << QRect(0, 40, 1920, 1040) << QPoint(1476, 220);
    QTest::newRow("on a second screen") << QRect(1920, 0, 2560, 1440) << QPoint(3722, 380);
    QTest::newRow("no room beside") << QRect(0, 0, 1280, 900) << QPoint(1276 - windowSize(1).width(), 110);
    QTest::newRow("smaller than both") << QRect(0, 0, 320, 240) << QPoint(0, 0);
}

void TestCardFrontWindow::placeOnTheScreen()
{
    QFETCH(QRect, available);
    QFETCH(QPoint, place);
    const QPoint found = windowPlace(available, windowSize(1));
    // half pixels of the middle fall either way
    QVERIFY2((found - place).manhattanLength() <= 2,
             qPrintable(QStringLiteral("%1,%2").arg(found.x()).arg(found.y())));
}

QTEST_MAIN(TestCardFrontWindow)
#include "TestCardFrontWindow.moc"
