#include "monitor/gauge/RingSegment.h"
#include "ui/Fonts.h"
#include "ui/PaintedTexts.h"

#include <QPainter>
#include <QtMath>
#include <QtTest>

#include <limits>

class TestRingSegment : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { substituteFontFamilies(); }
    void thickness_data();
    void thickness();
    void outline_data();
    void outline();
    void gapIsFourPixelsWide_data();
    void gapIsFourPixelsWide();
    void angles_data();
    void angles();
    void pictureHasTheColour();
    void captionReadsTheRightWay_data();
    void captionReadsTheRightWay();
    void captionHasItsFont_data();
    void captionHasItsFont();
    void extremeSizes_data();
    void extremeSizes();
};

namespace
{

constexpr int kSide = 240;
constexpr double kCentre = kSide / 2.0;
constexpr double kBand = 40;
constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();

QPointF polar(double radius, double angle)
{
    return {kCentre + radius * std::cos(qDegreesToRadians(angle)),
            kCentre - radius * std::sin(qDegreesToRadians(angle))};
}

} // namespace

void TestRingSegment::thickness_data()
{
    QTest::addColumn<double>("thickness");
    QTest::addColumn<double>("usable");
    QTest::newRow("usable") << 10.0 << 10.0;
    QTest::newRow("just below the side") << 239.5 << 239.5;
    QTest::newRow("zero") << 0.0 << 40.0;
    QTest::newRow("negative") << -3.0 << 40.0;
    QTest::newRow("the side itself") << 240.0 << 40.0;
    QTest::newRow("more than the side") << 999.0 << 40.0;
    QTest::newRow("no number") << kNoNumber << 40.0;
    QTest::newRow("infinite") << std::numeric_limits<double>::infinity() << 40.0;
}

void TestRingSegment::thickness()
{
    QFETCH(double, thickness);
    QTEST(usableThickness(thickness, kSide), "usable");
}

void TestRingSegment::outline_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QPointF>("point");
    QTest::addColumn<bool>("inside");
    QTest::newRow("clock: middle of its band") << 1 << polar(100, 150) << true;
    QTest::newRow("clock: not the upper right") << 1 << polar(100, 30) << false;
    QTest::newRow("clock: not the bottom") << 1 << polar(100, 270) << false;
    QTest::newRow("memory: middle of its band") << 2 << polar(100, 270) << true;
    QTest::newRow("memory: not the upper left") << 2 << polar(100, 150) << false;
    QTest::newRow("temperature: middle of its band") << 3 << polar(100, 30) << true;
    QTest::newRow("temperature: not the bottom") << 3 << polar(100, 270) << false;
    QTest::newRow("other type is the upper right") << 7 << polar(100, 30) << true;
    QTest::newRow("hole") << 1 << polar(79, 150) << false;
    QTest::newRow("inner edge") << 1 << polar(81, 150) << true;
    QTest::newRow("outer edge") << 1 << polar(119, 150) << true;
    QTest::newRow("outside") << 1 << polar(121, 150) << false;
    QTest::newRow("centre") << 1 << QPointF(kCentre, kCentre) << false;
}

void TestRingSegment::outline()
{
    QFETCH(int, type);
    QFETCH(QPointF, point);
    QTEST(ringSegmentPath(kSide, kBand, type).contains(point), "inside");
}

void TestRingSegment::gapIsFourPixelsWide_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<double>("spoke");
    QTest::addColumn<double>("towardsSegment"); // sign of the turn from the spoke into the segment
    QTest::newRow("clock at the top") << 1 << 90.0 << 1.0;
    QTest::newRow("clock at the lower left") << 1 << 210.0 << -1.0;
    QTest::newRow("memory at the lower left") << 2 << 210.0 << 1.0;
    QTest::newRow("memory at the lower right") << 2 << 330.0 << -1.0;
    QTest::newRow("temperature at the lower right") << 3 << 330.0 << 1.0;
    QTest::newRow("temperature at the top") << 3 << 90.0 << -1.0;
}

void TestRingSegment::gapIsFourPixelsWide()
{
    QFETCH(int, type);
    QFETCH(double, spoke);
    QFETCH(double, towardsSegment);
    const QPainterPath path = ringSegmentPath(kSide, kBand, type);
    const QPointF across = polar(1, spoke + 90 * towardsSegment) - QPointF(kCentre, kCentre);
    for (const double radius : {82.0, 100.0, 118.0}) {
        QVERIFY(!path.contains(polar(radius, spoke) + 1.8 * across));
        QVERIFY(path.contains(polar(radius, spoke) + 2.2 * across));
    }
}

void TestRingSegment::angles_data()
{
    QTest::addColumn<QVector<double>>("widths");
    QTest::addColumn<QVector<double>>("expected");
    // On this circle a degree is a pixel long, and the span has room for 120 of them.
    QTest::newRow("one character in the middle") << QVector<double>{20} << QVector<double>{150};
    QTest::newRow("first character at the larger angle") << QVector<double>{20, 10} << QVector<double>{155, 140};
    QTest::newRow("as long as the arc") << QVector<double>{60, 60} << QVector<double>{180, 120};
    QTest::newRow("too long runs past the end") << QVector<double>{100, 40} << QVector<double>{160, 90};
    QTest::newRow("no character") << QVector<double>() << QVector<double>();
}

void TestRingSegment::angles()
{
    QFETCH(QVector<double>, widths);
    QFETCH(QVector<double>, expected);
    const double textWidth = std::accumulate(widths.cbegin(), widths.cend(), 0.0);
    const QVector<double> angles = characterAngles(widths, textWidth, 180.0 / M_PI, captionSpan(RingSegmentClock));
    QCOMPARE(angles.size(), expected.size());
    for (int i = 0; i < angles.size(); ++i)
        QVERIFY2(std::abs(angles[i] - expected[i]) < 1e-9, qPrintable(QString::number(angles[i])));
}

void TestRingSegment::pictureHasTheColour()
{
    const QColor color(236, 9, 40, 150);
    const QImage image = RingSegment{kSide, kBand, RingSegmentClock, {}, {}}.painted(color);
    QCOMPARE(image.size(), QSize(kSide, kSide));
    QCOMPARE(qAlpha(image.pixel(polar(100, 150).toPoint())), 150);
    QCOMPARE(qAlpha(image.pixel(polar(60, 150).toPoint())), 0);
    QCOMPARE(qAlpha(image.pixel(polar(100, 30).toPoint())), 0);
    QCOMPARE(qAlpha(image.pixel(0, 0)), 0);
}

void TestRingSegment::captionReadsTheRightWay_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<double>("middle");
    QTest::addColumn<bool>("clockwise");
    QTest::newRow("clock from the lower left to the top") << 1 << 150.0 << true;
    QTest::newRow("temperature from the top to the lower right") << 3 << 30.0 << true;
    QTest::newRow("memory from left to right") << 2 << 270.0 << false;
}

void TestRingSegment::captionReadsTheRightWay()
{
    QFETCH(int, type);
    QFETCH(double, middle);
    QFETCH(bool, clockwise);
    // The heavy letters stand at the beginning, the light ones at the end.
    const QImage image = RingSegment{kSide, kBand, type, "MMM...", "Arial"}.painted(Qt::transparent);
    const QLineF spoke(QPointF(kCentre, kCentre), polar(100, middle));
    int before = 0;
    int after = 0;
    for (int y = 0; y < kSide; ++y) {
        for (int x = 0; x < kSide; ++x) {
            if (qAlpha(image.pixel(x, y)) <= 128)
                continue;
            const bool beyond = spoke.angleTo(QLineF(spoke.p1(), QPointF(x, y))) < 180.0; // counter-clockwise
            (beyond == clockwise ? before : after) += 1;
        }
    }
    QVERIFY2(2 * before > 3 * after && after > 0, qPrintable(QString("%1 before, %2 after").arg(before).arg(after)));
}

void TestRingSegment::captionHasItsFont_data()
{
    QTest::addColumn<QString>("family");
    QTest::newRow("Arial") << "Arial";
    QTest::newRow("another family") << "DS-Digital";
}

void TestRingSegment::captionHasItsFont()
{
    QFETCH(QString, family);
    PaintedTexts device(QSize(kSide, kSide));
    QPainter painter(&device);
    RingSegment{kSide, kBand, RingSegmentMemory, "AB", family}.paint(painter, Qt::red);
    painter.end();
    // 40 / 2.5 pixels; each letter on its own, and at the bottom from the last one on.
    const QList<PaintedText> expected = {{"B", family, 16, 57, true}, {"A", family, 16, 57, true}};
    QVERIFY2(device.texts == expected, qPrintable(described(device.texts)));
}

void TestRingSegment::extremeSizes_data()
{
    QTest::addColumn<int>("side");
    QTest::addColumn<double>("thickness");
    for (const int side : {-5, 0, 1, 2, 3, 7}) {
        for (const double width : {-1.0, 0.0, 0.3, 1.0, 6.5, 1e300, kNoNumber})
            QTest::addRow("side %d, band %g", side, width) << side << width;
    }
}

void TestRingSegment::extremeSizes()
{
    QFETCH(int, side);
    QFETCH(double, thickness);
    for (const int type : {0, 1, 2, 3}) {
        const QImage image = RingSegment{side, thickness, type, "C L O C K", "Arial"}.painted(Qt::red);
        QCOMPARE(image.size(), side > 0 ? QSize(side, side) : QSize(0, 0));
    }
}

QTEST_MAIN(TestRingSegment)
#include "TestRingSegment.moc"
