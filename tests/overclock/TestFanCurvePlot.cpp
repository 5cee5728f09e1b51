#include "overclock/FanCurvePlot.h"

#include <QRect>
#include <QTest>

#include <limits>

/// The plot's place, the mapping of values to pixels, and how far a node may go.
class TestFanCurvePlot : public QObject
{
    Q_OBJECT

private slots:
    void forSize_data();
    void forSize();
    void beforeTheFirstResize();
    void pixelOf_data();
    void pixelOf();
    void valueOf_data();
    void valueOf();
    void mappingLosesAtMostOneUnit_data();
    void mappingLosesAtMostOneUnit();
    void clamped_data();
    void clamped();
    void placeBetween_data();
    void placeBetween();
    void valueBetweenNeverFalls_data();
    void valueBetweenNeverFalls();
    void noExtentGivesZero_data();
    void noExtentGivesZero();
};

void TestFanCurvePlot::forSize_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QRect>("place");
    QTest::addColumn<QPoint>("step");

    QTest::newRow("376x376") << QSize(376, 376) << QRect(30, 6, 330, 340) << QPoint(33, 34);
    QTest::newRow("divisions truncate") << QSize(354, 344) << QRect(30, 14, 300, 300) << QPoint(30, 30);
    QTest::newRow("they divide evenly") << QSize(345, 335) << QRect(30, 5, 300, 300) << QPoint(30, 30);
    QTest::newRow("wide") << QSize(600, 200) << QRect(30, 10, 550, 160) << QPoint(55, 16);
    QTest::newRow("just too small for a cell") << QSize(54, 44) << QRect(30, 14, 0, 0) << QPoint(0, 0);
    QTest::newRow("negative cells truncate toward zero") << QSize(30, 20) << QRect(30, 0, -10, -10) << QPoint(-1, -1);
    QTest::newRow("no size") << QSize(0, 0) << QRect(30, 0, -40, -30) << QPoint(-4, -3);
}

void TestFanCurvePlot::forSize()
{
    QFETCH(QSize, size);
    QFETCH(QPoint, step);
    const FanCurvePlot plot = FanCurvePlot::forSize(size);
    QTEST(QRect(plot.plotLeft, plot.plotTop, plot.plotWidth, plot.plotHeight), "place");
    QCOMPARE(QPoint(plot.stepX, plot.stepY), step);
}

void TestFanCurvePlot::beforeTheFirstResize()
{
    const FanCurvePlot plot;
    QCOMPARE(QRect(plot.plotLeft, plot.plotTop, plot.plotWidth, plot.plotHeight), QRect(0, 0, 100, 100));
    QCOMPARE(QPoint(plot.stepX, plot.stepY), QPoint(10, 10));
    QCOMPARE(plot.pixelOf({30, 20}), QPoint(30, 80));
}

void TestFanCurvePlot::pixelOf_data()
{
    QTest::addColumn<QPoint>("value");
    QTest::addColumn<QPoint>("pixel");

    QTest::newRow("first") << QPoint(0, 0) << QPoint(30, 346);
    QTest::newRow("last") << QPoint(100, 100) << QPoint(360, 6);
    QTest::newRow("(30,20)") << QPoint(30, 20) << QPoint(129, 278);
    QTest::newRow("(50,50)") << QPoint(50, 50) << QPoint(195, 176);
    QTest::newRow("(80,90)") << QPoint(80, 90) << QPoint(294, 40);
    QTest::newRow("truncated after the offset is added") << QPoint(33, 33) << QPoint(138, 233);
    QTest::newRow("beyond the scale") << QPoint(-1, 101) << QPoint(30, 6);
}

void TestFanCurvePlot::pixelOf()
{
    QFETCH(QPoint, value);
    QTEST(FanCurvePlot::forSize({376, 376}).pixelOf(value), "pixel");
}

void TestFanCurvePlot::valueOf_data()
{
    QTest::addColumn<QPoint>("pixel");
    QTest::addColumn<QPoint>("value");

    QTest::newRow("first") << QPoint(30, 346) << QPoint(0, 0);
    QTest::newRow("last") << QPoint(360, 6) << QPoint(100, 100);
    QTest::newRow("middle") << QPoint(195, 176) << QPoint(50, 50);
    QTest::newRow("one pixel is less than a unit") << QPoint(31, 345) << QPoint(0, 0);
    QTest::newRow("truncated") << QPoint(138, 233) << QPoint(32, 33);
}

void TestFanCurvePlot::valueOf()
{
    QFETCH(QPoint, pixel);
    QTEST(FanCurvePlot::forSize({376, 376}).valueOf(pixel), "value");
}

void TestFanCurvePlot::mappingLosesAtMostOneUnit_data()
{
    QTest::addColumn<int>("side");
    QTest::newRow("376") << 376;
    QTest::newRow("377") << 377;
    QTest::newRow("600") << 600;
    QTest::newRow("a thousand") << 1000;
}

void TestFanCurvePlot::mappingLosesAtMostOneUnit()
{
    QFETCH(int, side);
    const FanCurvePlot plot = FanCurvePlot::forSize({side, side});
    for (int unit = 0; unit <= 100; ++unit) {
        const QPoint back = plot.valueOf(plot.pixelOf({unit, unit}));
        QVERIFY2(qAbs(back.x() - unit) <= 1 && qAbs(back.y() - unit) <= 1, qPrintable(QString::number(unit)));
    }
}

void TestFanCurvePlot::clamped_data()
{
    QTest::addColumn<QPoint>("pixel");
    QTest::addColumn<QPoint>("inside");

    QTest::newRow("inside") << QPoint(100, 100) << QPoint(100, 100);
    QTest::newRow("left and above") << QPoint(-5, -5) << QPoint(30, 6);
    QTest::newRow("right and below") << QPoint(999, 999) << QPoint(360, 346);
    QTest::newRow("on the corners") << QPoint(360, 6) << QPoint(360, 6);
}

void TestFanCurvePlot::clamped()
{
    QFETCH(QPoint, pixel);
    QTEST(FanCurvePlot::forSize({376, 376}).clamped(pixel), "inside");
}

void TestFanCurvePlot::placeBetween_data()
{
    QTest::addColumn<QPoint>("pixel");
    QTest::addColumn<QPoint>("placed");

    // Neighbours at (100,200) and (200,100): the right one is higher, so its y is smaller.
    QTest::newRow("between them") << QPoint(150, 150) << QPoint(150, 150);
    QTest::newRow("past the left one") << QPoint(99, 150) << QPoint(100, 150);
    QTest::newRow("past the right one") << QPoint(201, 150) << QPoint(200, 150);
    QTest::newRow("below the left one") << QPoint(150, 201) << QPoint(150, 200);
    QTest::newRow("above the right one") << QPoint(150, 99) << QPoint(150, 100);
    QTest::newRow("past and above the right one") << QPoint(300, 0) << QPoint(200, 100);
    QTest::newRow("past and below the left one") << QPoint(0, 300) << QPoint(100, 200);
    QTest::newRow("on the left one") << QPoint(100, 200) << QPoint(100, 200);
    QTest::newRow("on the right one") << QPoint(200, 100) << QPoint(200, 100);
}

void TestFanCurvePlot::placeBetween()
{
    QFETCH(QPoint, pixel);
    QTEST(FanCurvePlot::placeBetween(pixel, {100, 200}, {200, 100}), "placed");
}

void TestFanCurvePlot::valueBetweenNeverFalls_data()
{
    QTest::addColumn<QPoint>("pixel");
    QTest::addColumn<QPoint>("value");

    // (33,33) lies at pixel (138,233), which maps back to (32,33).
    QTest::newRow("on the left neighbour's pixel") << QPoint(138, 233) << QPoint(33, 33);
    QTest::newRow("left of it in x alone") << QPoint(138, 200) << QPoint(33, 42);
    QTest::newRow("between") << QPoint(195, 176) << QPoint(50, 50);
    QTest::newRow("above the right neighbour") << QPoint(195, 100) << QPoint(50, 66);
}

void TestFanCurvePlot::valueBetweenNeverFalls()
{
    QFETCH(QPoint, pixel);
    QTEST(FanCurvePlot::forSize({376, 376}).valueBetween(pixel, {33, 33}, {66, 66}), "value");
}

void TestFanCurvePlot::noExtentGivesZero_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("no cell") << QSize(50, 40);
    QTest::newRow("negative cells") << QSize(0, 0);
}

void TestFanCurvePlot::noExtentGivesZero()
{
    QFETCH(QSize, size);
    const FanCurvePlot plot = FanCurvePlot::forSize(size);
    QCOMPARE(plot.valueOf(plot.clamped({500, 500})).x(), 0);
    QCOMPARE(plot.valueOf(plot.pixelOf({0, 0})), QPoint(0, 0));
}

QTEST_APPLESS_MAIN(TestFanCurvePlot)
#include "TestFanCurvePlot.moc"
