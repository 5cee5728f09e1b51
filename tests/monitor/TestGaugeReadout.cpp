#include "monitor/gauge/GaugeReadout.h"
#include "ui/Fonts.h"
#include "ui/PaintedTexts.h"

#include <QImage>
#include <QPainter>
#include <QtTest>

#include <limits>

class TestGaugeReadout : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { substituteFontFamilies(); }
    void readoutTexts_data();
    void readoutTexts();
    void overlayTexts_data();
    void overlayTexts();
    void textsStayInTheirRectangles();
    void alphaGovernsTheWhite();
    void sizesWithoutRoomPaintNothing();
    void fontsOfTheReadout();
    void fontsOfTheOverlay_data();
    void fontsOfTheOverlay();
};

namespace
{

constexpr int kSide = 640;
constexpr double kHoleRadius = 128.0;

Lang_BreathCircle englishWords()
{
    return {"C L O C K", "T E M P", "M E M O R Y", "Preset ", "Present ", "Dec ", "Inc "};
}

NvCardBaseInfo sample()
{
    NvCardBaseInfo info;
    info.gpuClock = {1987, 139, 1911, 2000, 0};
    info.temperature = {83, 31, 64, 104, 0};
    info.memoryUsage = {7112, 420, 3276, 8192, 0};
    return info;
}

template <typename Paint>
QImage painted(Paint paint)
{
    QImage image(kSide, kSide, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    paint(painter);
    return image;
}

int strongestAlpha(const QImage &image, const QRect &part)
{
    int strongest = 0;
    for (int y = part.top(); y <= part.bottom(); ++y) {
        for (int x = part.left(); x <= part.right(); ++x)
            strongest = qMax(strongest, qAlpha(image.pixel(x, y)));
    }
    return strongest;
}

} // namespace

void TestGaugeReadout::readoutTexts_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<NvCardBaseInfo>("info");
    QTest::addColumn<QString>("mainValue");
    QTest::addColumn<QString>("maxValue");
    QTest::addColumn<QString>("minValue");
    QTest::newRow("clock") << 0 << sample() << "1911 MHz"
                           << "1987"
                           << "139";
    QTest::newRow("temperature") << 1 << sample() << QString::fromUtf8("64 °C") << "83"
                                 << "31";
    QTest::newRow("memory") << 2 << sample() << "3276 MB"
                            << "7112"
                            << "420";
    QTest::newRow("before the first sample") << 0 << NvCardBaseInfo() << "0 MHz"
                                             << "0"
                                             << "0";
    QTest::newRow("mode below the first") << -1 << sample() << "XXXX XXX"
                                          << " XXXX"
                                          << " XXXX";
    QTest::newRow("mode above the last") << 3 << sample() << "XXXX XXX"
                                         << " XXXX"
                                         << " XXXX";
}

void TestGaugeReadout::readoutTexts()
{
    QFETCH(int, mode);
    QFETCH(NvCardBaseInfo, info);
    const ReadoutTexts texts = readoutTextsFor(mode, info);
    QTEST(texts.mainValue, "mainValue");
    QTEST(texts.maxValue, "maxValue");
    QTEST(texts.minValue, "minValue");
}

void TestGaugeReadout::overlayTexts_data()
{
    QTest::addColumn<int>("changedSize");
    QTest::addColumn<QString>("label");
    QTest::addColumn<QString>("value");
    QTest::newRow("no change is an increase") << 0 << "Inc "
                                              << "0";
    QTest::newRow("increase") << 50 << "Inc "
                              << "50";
    QTest::newRow("decrease without its sign") << -25 << "Dec "
                                               << "25";
    QTest::newRow("largest decrease") << std::numeric_limits<int>::min() << "Dec "
                                      << "2147483648";
}

void TestGaugeReadout::overlayTexts()
{
    QFETCH(int, changedSize);
    const OverlayTexts texts = overlayTextsFor(englishWords(), "1911", "1886", changedSize);
    QCOMPARE(texts.rows[0].label, QString("Preset "));
    QCOMPARE(texts.rows[0].value, QString("1911"));
    QCOMPARE(texts.rows[1].label, QString("Present "));
    QCOMPARE(texts.rows[1].value, QString("1886"));
    QTEST(texts.rows[2].label, "label");
    QTEST(texts.rows[2].value, "value");
}

void TestGaugeReadout::textsStayInTheirRectangles()
{
    const ReadoutLayout layout = readoutLayoutFor(kSide, kHoleRadius);
    const ReadoutTexts texts = readoutTextsFor(GaugeDisplayClock, sample());
    QImage image = painted([&](QPainter &painter) { paintReadout(painter, layout, texts, 255); });
    for (const QRect &part : {layout.mainValue, layout.maxLabel, layout.maxValue, layout.minLabel, layout.minValue})
        QVERIFY(strongestAlpha(image, part) > 200);
    QPainter eraser(&image);
    eraser.setCompositionMode(QPainter::CompositionMode_Clear);
    for (const QRect &part : {layout.mainValue, layout.maxLabel, layout.maxValue, layout.minLabel, layout.minValue})
        eraser.fillRect(part, Qt::black);
    eraser.end();
    QCOMPARE(strongestAlpha(image, image.rect()), 0);

    const OverlayLayout rows = overlayLayoutFor(kSide, kHoleRadius, 0.2);
    const OverlayTexts words = overlayTextsFor(englishWords(), "1911", "1886", -25);
    const QImage overlay = painted([&](QPainter &painter) { paintOverlay(painter, rows, words, "Arial", 255); });
    for (const OverlayLayout::Row &row : rows.rows) {
        QVERIFY(strongestAlpha(overlay, row.label) > 200);
        QVERIFY(strongestAlpha(overlay, row.value) > 200);
    }
}

void TestGaugeReadout::alphaGovernsTheWhite()
{
    const ReadoutLayout layout = readoutLayoutFor(kSide, kHoleRadius);
    const ReadoutTexts texts = readoutTextsFor(GaugeDisplayClock, sample());
    const QImage faint = painted([&](QPainter &painter) { paintReadout(painter, layout, texts, 100); });
    QCOMPARE(strongestAlpha(faint, faint.rect()), 100);
    const QImage none = painted([&](QPainter &painter) { paintReadout(painter, layout, texts, 0); });
    QCOMPARE(strongestAlpha(none, none.rect()), 0);
}

void TestGaugeReadout::sizesWithoutRoomPaintNothing()
{
    const QImage image = painted([](QPainter &painter) {
        for (const int side : {0, 1, 4, 20}) {
            paintReadout(painter, readoutLayoutFor(side, side * 0.2), readoutTextsFor(0, sample()), 255);
            paintOverlay(painter, overlayLayoutFor(side, side * 0.2, 0.2),
                         overlayTextsFor(englishWords(), "1", "2", 3), "Arial", 255);
        }
    });
    QCOMPARE(strongestAlpha(image, image.rect()), 0);
}

void TestGaugeReadout::fontsOfTheReadout()
{
    PaintedTexts device(QSize(kSide, kSide));
    QPainter painter(&device);
    paintReadout(painter, readoutLayoutFor(kSide, kHoleRadius), readoutTextsFor(GaugeDisplayClock, sample()), 255);
    painter.end();
    const QList<PaintedText> expected = {{"1911 MHz", "DS-Digital", 42, 75, true},
                                         {"MAX  ", "Arial", 21, 57, true},
                                         {"1987", "Arial", 21, 57, true},
                                         {"MIN   ", "Arial", 21, 57, true},
                                         {"139", "Arial", 21, 57, true}};
    QVERIFY2(device.texts == expected, qPrintable(described(device.texts)));
}

void TestGaugeReadout::fontsOfTheOverlay_data()
{
    QTest::addColumn<QString>("family");
    QTest::newRow("English") << "Arial";
    QTest::newRow("Chinese") << QStringLiteral("微软雅黑");
}

void TestGaugeReadout::fontsOfTheOverlay()
{
    QFETCH(QString, family);
    PaintedTexts device(QSize(kSide, kSide));
    QPainter painter(&device);
    paintOverlay(painter, overlayLayoutFor(kSide, kHoleRadius, 0.2),
                 overlayTextsFor(englishWords(), "1911", "1886", -25), family, 255);
    painter.end();
    QList<PaintedText> expected;
    for (const char *text : {"Preset ", "1911", "Present ", "1886", "Dec ", "25"})
        expected.append({text, family, 25, 50, true});
    QVERIFY2(device.texts == expected, qPrintable(described(device.texts)));
}

QTEST_MAIN(TestGaugeReadout)
#include "TestGaugeReadout.moc"
