#include "monitor/gauge/GaugeLayout.h"

#include "monitor/gauge/BreathAndWave.h"

#include <QPainter>
#include <QtMath>
#include <QtTest>

class TestGaugeLayout : public QObject
{
    Q_OBJECT

private slots:
    void animationStaysInItsRegion_data();
    void animationStaysInItsRegion();
    void animatedRegionLeavesTheRingOut();
    void ring_data();
    void ring();
    void readout_data();
    void readout();
    void overlay_data();
    void overlay();
};

namespace
{

constexpr double kLargestBreathPos = 0.906; // a step beyond where the breath turns

constexpr double kRatio = 0.2;

} // namespace

void TestGaugeLayout::ring_data()
{
    QTest::addColumn<QSize>("box");
    QTest::addColumn<int>("side");
    QTest::addColumn<double>("ringSize");
    QTest::addColumn<double>("holeRadius");
    QTest::addColumn<double>("thickness");
    QTest::addColumn<QRect>("button");
    QTest::newRow("home page") << QSize(639, 639) << 639 << 383.4 << 127.8 << 63.9 << QRect(127, 127, 383, 383);
    QTest::newRow("round numbers") << QSize(500, 500) << 500 << 300.0 << 100.0 << 50.0 << QRect(100, 100, 300, 300);
    QTest::newRow("wider than high") << QSize(800, 500) << 500 << 300.0 << 100.0 << 50.0 << QRect(100, 100, 300, 300);
    QTest::newRow("higher than wide") << QSize(500, 900) << 500 << 300.0 << 100.0 << 50.0
                                      << QRect(100, 100, 300, 300);
    QTest::newRow("single pixel") << QSize(1, 1) << 1 << 0.6 << 0.2 << 0.1 << QRect(0, 0, 0, 0);
    QTest::newRow("nothing") << QSize(0, 0) << 0 << 0.0 << 0.0 << 0.0 << QRect(0, 0, 0, 0);
    QTest::newRow("no size") << QSize(-1, -1) << 0 << 0.0 << 0.0 << 0.0 << QRect(0, 0, 0, 0);
}

void TestGaugeLayout::ring()
{
    QFETCH(QSize, box);
    const RingLayout layout = ringLayoutFor(box, kRatio);
    QTEST(layout.side, "side");
    QTEST(layout.ringSize, "ringSize");
    QTEST(layout.holeRadius, "holeRadius");
    QTEST(layout.thickness, "thickness");
    QTEST(layout.button, "button");
}

void TestGaugeLayout::readout_data()
{
    QTest::addColumn<int>("side");
    QTest::addColumn<double>("holeRadius");
    QTest::addColumn<int>("bigPixels");
    QTest::addColumn<int>("smallPixels");
    QTest::addColumn<QRect>("mainValue");
    QTest::addColumn<QRect>("maxLabel");
    QTest::addColumn<QRect>("maxValue");
    QTest::addColumn<QRect>("minLabel");
    QTest::addColumn<QRect>("minValue");
    QTest::newRow("even side") << 640 << 128.0 << 42 << 21 << QRect(200, 278, 241, 42) << QRect(200, 330, 120, 21)
                               << QRect(320, 330, 241, 21) << QRect(200, 362, 120, 21) << QRect(320, 362, 241, 21);
    QTest::newRow("odd side") << 501 << 100.2 << 33 << 16 << QRect(156, 217, 189, 33) << QRect(156, 258, 94, 16)
                              << QRect(250, 258, 189, 16) << QRect(156, 282, 94, 16) << QRect(250, 282, 189, 16);
    QTest::newRow("no room for a text") << 4 << 0.8 << 0 << 0 << QRect(2, 2, 1, 0) << QRect(2, 2, 0, 0)
                                        << QRect(2, 2, 1, 0) << QRect(2, 2, 0, 0) << QRect(2, 2, 1, 0);
    QTest::newRow("nothing") << 0 << 0.0 << 0 << 0 << QRect(0, 0, 0, 0) << QRect(0, 0, 0, 0) << QRect(0, 0, 0, 0)
                             << QRect(0, 0, 0, 0) << QRect(0, 0, 0, 0);
}

void TestGaugeLayout::readout()
{
    QFETCH(int, side);
    QFETCH(double, holeRadius);
    const ReadoutLayout layout = readoutLayoutFor(side, holeRadius);
    QTEST(layout.bigPixels, "bigPixels");
    QTEST(layout.smallPixels, "smallPixels");
    QTEST(layout.mainValue, "mainValue");
    QTEST(layout.maxLabel, "maxLabel");
    QTEST(layout.maxValue, "maxValue");
    QTEST(layout.minLabel, "minLabel");
    QTEST(layout.minValue, "minValue");
}

void TestGaugeLayout::overlay_data()
{
    QTest::addColumn<int>("side");
    QTest::addColumn<double>("holeRadius");
    QTest::addColumn<int>("fontPixels");
    QTest::addColumn<QVector<QRect>>("labels");
    QTest::addColumn<QVector<QRect>>("values");
    QTest::newRow("even side") << 640 << 128.0 << 25
                               << QVector<QRect>{{195, 284, 125, 25}, {195, 314, 125, 25}, {195, 345, 125, 25}}
                               << QVector<QRect>{{320, 284, 125, 25}, {320, 314, 125, 25}, {320, 345, 125, 25}};
    QTest::newRow("odd side") << 501 << 100.2 << 20
                              << QVector<QRect>{{152, 220, 98, 20}, {152, 245, 98, 20}, {152, 270, 98, 20}}
                              << QVector<QRect>{{250, 220, 98, 20}, {250, 245, 98, 20}, {250, 270, 98, 20}};
    QTest::newRow("nothing") << 0 << 0.0 << 0 << QVector<QRect>(3, QRect(0, 0, 0, 0))
                             << QVector<QRect>(3, QRect(0, 0, 0, 0));
}

void TestGaugeLayout::overlay()
{
    QFETCH(int, side);
    QFETCH(double, holeRadius);
    QFETCH(QVector<QRect>, labels);
    QFETCH(QVector<QRect>, values);
    const OverlayLayout layout = overlayLayoutFor(side, holeRadius, kRatio);
    QTEST(layout.fontPixels, "fontPixels");
    for (int row = 0; row < 3; ++row) {
        QCOMPARE(layout.rows[std::size_t(row)].label, labels[row]);
        QCOMPARE(layout.rows[std::size_t(row)].value, values[row]);
    }
}

void TestGaugeLayout::animationStaysInItsRegion_data()
{
    QTest::addColumn<int>("side");
    for (const int side : {0, 1, 2, 33, 300, 639, 640, 801})
        QTest::addRow("%d pixels", side) << side;
}

void TestGaugeLayout::animationStaysInItsRegion()
{
    QFETCH(int, side);
    const RingLayout ring = ringLayoutFor(QSize(side, side), 0.2);
    for (const double breathPos : {0.7, 0.8, kLargestBreathPos}) {
        const QRegion region = animatedRegionFor(ring, breathPos * side / 2.0);
        QVERIFY(QRegion(0, 0, side, side).contains(region.boundingRect()) || region.isEmpty());
        QImage picture(side, side, QImage::Format_ARGB32_Premultiplied);
        picture.fill(Qt::transparent);
        paintGlow(picture, ring.ringSize / 2.0 - 1.0, breathPos, QColor(236, 9, 40, 180));
        const WaveDisc full = {side, ring.holeRadius + 1.0, 1.0, QColor(236, 9, 40, 50), QColor(236, 9, 40, 150)};
        paintWaveDisc(picture, full, WaveMotion());
        QImage uncovered = picture;
        {
            QPainter painter(&uncovered);
            if (!uncovered.isNull()) {
                painter.setClipRegion(region);
                painter.setCompositionMode(QPainter::CompositionMode_Clear);
                painter.fillRect(uncovered.rect(), Qt::transparent);
            }
        }
        for (int y = 0; y < side; ++y) {
            for (int x = 0; x < side; ++x)
                QVERIFY2(uncovered.pixel(x, y) == 0, qPrintable(QStringLiteral("%1, %2").arg(x).arg(y)));
        }
    }
}

void TestGaugeLayout::animatedRegionLeavesTheRingOut()
{
    const RingLayout ring = ringLayoutFor(QSize(639, 639), 0.2);
    const QRegion region = animatedRegionFor(ring, kLargestBreathPos * 639 / 2.0);
    const double middleOfTheBand = (ring.holeRadius + ring.ringSize / 2.0) / 2.0;
    for (int degrees = 0; degrees < 360; degrees += 5) {
        const double angle = qDegreesToRadians(static_cast<double>(degrees));
        const QPoint point(qRound(319.5 + middleOfTheBand * std::cos(angle)),
                           qRound(319.5 + middleOfTheBand * std::sin(angle)));
        QVERIFY2(!region.contains(point), qPrintable(QString::number(degrees)));
    }
    QVERIFY(region.contains(QPoint(319, 319)));
    QVERIFY2(region.rectCount() <= 3 * 80, qPrintable(QString::number(region.rectCount())));
}

QTEST_APPLESS_MAIN(TestGaugeLayout)
#include "TestGaugeLayout.moc"
