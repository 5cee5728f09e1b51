#include "monitor/graphs/Ovryn_BaseMonitorBox.h"

#include "monitor/MonitorBoxFixture.h"
#include "monitor/WidgetPainting.h"
#include "ui/PaintedTexts.h"

#include <QPainterPath>
#include <QtTest>

#include <limits>

namespace
{
/// Rows of a column that are opaque white: the outline, or the crosshair's dots.
int whiteRows(const QImage &image, int x)
{
    int count = 0;
    for (int y = kPlot.top(); y <= kPlot.bottom(); ++y)
        count += image.pixel(x, y) == qRgba(255, 255, 255, 255) ? 1 : 0;
    return count;
}
} // namespace

/// What the graph box paints, and its crosshair.
class TestBaseMonitorBoxPainting : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { useProgramFonts(); }

    void emptyBoxPaintsGridAndLabels();
    void gridMovesWithTheSamples();
    void historyIsFilledFromTheRight();
    void historyLooksLikeOnePolygon_data();
    void historyLooksLikeOnePolygon();
    void colorsCanBeSet();
    void valueBeyondTheRangeLeavesThePlot();
    void hugeValuesPaint_data();
    void hugeValuesPaint();
    void crosshair_data();
    void crosshair();
    void crosshairReadsTheSample();
    void emptyHistoryHasNoCrosshair();
    void crosshairStandsUntilTheNextRepaint();
    void leavingHidesTheCrosshair();
    void fontOfTheAxisLabels();
    void titlePaintsAtOnce();
    void samplesAndTheMousePaintLater();
    void crosshairSurvivesAShrink();
    void realMouseReachesTheBox();
};

void TestBaseMonitorBoxPainting::emptyBoxPaintsGridAndLabels()
{
    const auto box = shownBox();
    const QImage image = paintingOf(*box);
    // Lines every 10 rows and every 20 columns, in rgba(255, 0, 0, 80); nothing in the cells.
    for (const QPoint point : {QPoint(40, 30), QPoint(40, 40), QPoint(220, 120), QPoint(49, 35), QPoint(209, 125)}) {
        const QColor color = image.pixelColor(point);
        QVERIFY2(color.red() >= 250 && color.green() == 0 && color.blue() == 0, qPrintable(color.name()));
        QCOMPARE(color.alpha(), 80);
    }
    for (const QPoint point : {QPoint(40, 35), QPoint(29, 35), QPoint(215, 125)})
        QCOMPARE(qAlpha(image.pixel(point)), 0); // at phase 0 no line stands on the plot's left edge either
    QVERIFY(!whiteBounds(image, QRect(0, 30, 27, 11)).isEmpty());
    QVERIFY(!whiteBounds(image, QRect(0, 119, 27, 11)).isEmpty());
    QVERIFY(!whiteBounds(image, QRect(29, 0, 200, 30)).isEmpty());
    QVERIFY(whiteBounds(image, kPlot).isEmpty());
    // The lower limit stands at the right of its column, the upper one in the middle.
    QVERIFY(whiteBounds(image, QRect(0, 119, 27, 11)).left() >= 19);
    QVERIFY(whiteBounds(image, QRect(0, 30, 27, 11)).left() <= 8);
}

void TestBaseMonitorBoxPainting::gridMovesWithTheSamples()
{
    const auto box = shownBox();
    box->setForgroundColor(Qt::transparent);
    box->addData(0);
    const QImage image = paintingOf(*box);
    QCOMPARE(qAlpha(image.pixel(48, 35)), 80);
    QCOMPARE(qAlpha(image.pixel(49, 35)), 0);
}

void TestBaseMonitorBoxPainting::historyIsFilledFromTheRight()
{
    const auto box = shownBox();
    box->setGridColor(Qt::transparent);
    for (int i = 0; i < 50; ++i)
        box->addData(60); // row 70
    const QImage image = paintingOf(*box);
    const int right = 229;
    QCOMPARE(image.pixel(right - 20, 70), qRgba(255, 255, 255, 255)); // the outline
    const QColor inside = image.pixelColor(right - 20, 100);
    QCOMPARE(inside.alpha(), 150);
    QVERIFY(qAbs(inside.red() - 150) <= 1);
    QCOMPARE(inside.green(), 0);
    QCOMPARE(qAlpha(image.pixel(right - 20, 60)), 0);  // above the outline
    QCOMPARE(qAlpha(image.pixel(right - 60, 100)), 0); // older than the history
}

void TestBaseMonitorBoxPainting::historyLooksLikeOnePolygon_data()
{
    QTest::addColumn<QList<double>>("values"); // oldest first; the plot's row is 130 less the value
    QTest::newRow("one sample falls over two columns") << QList<double>{80};
    QTest::newRow("two samples") << QList<double>{20, 90};
    QTest::newRow("level") << QList<double>{60, 60, 60, 60, 60};
    QTest::newRow("odd steps down and up") << QList<double>{60, 57, 60, 53, 53, 60, 59, 60};
    QTest::newRow("one pixel high") << QList<double>{1, 0, 1, 1, 0};
    QTest::newRow("across the top") << QList<double>{90, 115, 90, 101, 128, 60};
    QTest::newRow("across the bottom") << QList<double>{10, -15, 10, -1, -30, 40};
    QList<double> jagged;
    for (int i = 0; i < 230; ++i) // more than the plot shows
        jagged.append(i * 37 % 101);
    QTest::newRow("jagged, more than the plot is wide") << jagged;
}

void TestBaseMonitorBoxPainting::historyLooksLikeOnePolygon()
{
    QFETCH(QList<double>, values);
    const auto box = shownBox();
    box->setGridColor(Qt::transparent);
    for (const double value : qAsConst(values))
        box->addData(value);

    const int right = 229;
    const int bottom = 130;
    const int shown = std::min(values.size(), kPlot.width());
    QPainterPath polygon(QPointF(right, box->history().at(0).y));
    for (int age = 0; age < shown; ++age)
        polygon.lineTo(right - age, box->history().at(age).y);
    polygon.lineTo(right - shown - 1, bottom);
    polygon.lineTo(right, bottom);
    QImage expected(kBox, QImage::Format_ARGB32_Premultiplied);
    expected.fill(Qt::transparent);
    QPainter painter(&expected);
    painter.setPen(Qt::white);
    painter.setBrush(QColor(150, 0, 0, 150));
    painter.drawPath(polygon);
    painter.end();

    const QImage image = paintingOf(*box);
    for (int y = kPlot.top(); y <= kPlot.bottom(); ++y) {
        for (int x = kPlot.left(); x <= kPlot.right(); ++x)
            QVERIFY2(image.pixel(x, y) == expected.pixel(x, y), qPrintable(QString("at %1, %2").arg(x).arg(y)));
    }
}

void TestBaseMonitorBoxPainting::colorsCanBeSet()
{
    const auto box = shownBox();
    box->setGridColor(QColor(0, 255, 0, 255));
    box->setForgroundColor(QColor(0, 0, 255, 255));
    for (int i = 0; i < 50; ++i)
        box->addData(60);
    const QImage image = paintingOf(*box);
    QCOMPARE(image.pixel(35, 30), qRgba(0, 255, 0, 255));
    QCOMPARE(image.pixel(209, 105), qRgba(0, 0, 255, 255));
}

void TestBaseMonitorBoxPainting::valueBeyondTheRangeLeavesThePlot()
{
    const auto box = shownBox();
    for (int i = 0; i < 50; ++i)
        box->addData(120); // row 10, inside the caption
    QCOMPARE(box->history().at(0).y, 10);
    const QImage image = paintingOf(*box);
    QCOMPARE(qAlpha(image.pixel(209, 25)), 150); // nothing clips it
}

void TestBaseMonitorBoxPainting::hugeValuesPaint_data()
{
    QTest::addColumn<double>("value");
    QTest::newRow("largest word") << 2147483647.0;
    QTest::newRow("smallest word") << -2147483648.0;
    QTest::newRow("beyond every word") << 1e300;
    QTest::newRow("below every word") << -1e300;
    QTest::newRow("no number") << std::numeric_limits<double>::quiet_NaN();
}

void TestBaseMonitorBoxPainting::hugeValuesPaint()
{
    QFETCH(double, value);
    const auto box = shownBox();
    for (int i = 0; i < 30; ++i)
        box->addData(i % 2 == 0 ? value : 50);
    moveMouse(*box, QPoint(220, 80));
    const QImage image = paintingOf(*box);
    QVERIFY(paintedPixels(image, kPlot) > 0);
}

void TestBaseMonitorBoxPainting::crosshair_data()
{
    QTest::addColumn<QPoint>("position");
    QTest::addColumn<bool>("hovers");
    QTest::addColumn<int>("age");
    // 50 samples in a plot that ends at x 229: the history stands at x 179 to 229.
    QTest::newRow("amid the history") << QPoint(200, 80) << true << 29;
    QTest::newRow("left edge: a line, but no sample is that old") << QPoint(179, 80) << true << -1;
    QTest::newRow("older than the history") << QPoint(178, 80) << false << -1;
    QTest::newRow("oldest sample") << QPoint(180, 80) << true << 49;
    QTest::newRow("newest sample") << QPoint(229, 80) << true << 0;
    QTest::newRow("top of the plot") << QPoint(200, 30) << true << 29;
    QTest::newRow("caption row") << QPoint(200, 29) << false << -1;
    QTest::newRow("last row") << QPoint(200, 129) << true << 29;
    QTest::newRow("right of the box") << QPoint(230, 80) << false << -1;
}

void TestBaseMonitorBoxPainting::crosshair()
{
    QFETCH(QPoint, position);
    QFETCH(bool, hovers);
    const auto box = shownBox();
    box->setGridColor(Qt::transparent);
    box->setForgroundColor(Qt::transparent);
    for (int i = 0; i < 50; ++i)
        box->addData(0);
    moveMouse(*box, position);
    QCOMPARE(box->isHovering(), hovers);
    QTEST(box->hoveredAge(), "age");
    if (position.x() >= box->width())
        return; // nothing to see beside the box
    // Dots: more than a few, far from all.
    const int dots = whiteRows(paintingOf(*box), position.x());
    if (hovers)
        QVERIFY2(dots > 20 && dots < 80, qPrintable(QString::number(dots)));
    else
        QVERIFY2(dots < 20, qPrintable(QString::number(dots)));
}

void TestBaseMonitorBoxPainting::crosshairReadsTheSample()
{
    const auto box = shownBox();
    box->setGridColor(Qt::transparent);
    box->setForgroundColor(Qt::transparent);
    for (int i = 0; i < 150; ++i)
        box->addData(i == 99 ? 77.9 : 0); // the sample of age 50, with its value cut
    const auto textAt = [&](int x) {
        moveMouse(*box, QPoint(x, 80));
        return paintingOf(*box).copy(x - 25, 60, 51, 40);
    };
    const QImage zero = textAt(180);
    const QImage seventySeven = textAt(179);
    QVERIFY(zero != seventySeven);
    // Two lines, the value above the time, both around the line under the mouse.
    const auto box2 = shownBox();
    box2->setGridColor(Qt::transparent);
    box2->setForgroundColor(Qt::transparent);
    for (int i = 0; i < 150; ++i)
        box2->addData(i == 99 ? 77.1 : 0);
    moveMouse(*box2, QPoint(179, 80));
    const QImage cut = paintingOf(*box2);
    const QRect value = whiteBounds(cut, QRect(160, 66, 40, 15));
    QVERIFY(qAbs(value.center().x() - 179) <= 2);
    QCOMPARE(seventySeven.copy(0, 0, 51, 20), cut.copy(179 - 25, 60, 51, 20)); // 77.9 and 77.1 both read 77
}

void TestBaseMonitorBoxPainting::emptyHistoryHasNoCrosshair()
{
    const auto box = shownBox();
    for (const int x : {29, 100, 228, 229}) {
        moveMouse(*box, QPoint(x, 80));
        QVERIFY(!box->isHovering());
    }
}

void TestBaseMonitorBoxPainting::crosshairStandsUntilTheNextRepaint()
{
    const auto box = shownBox();
    for (int i = 0; i < 50; ++i)
        box->addData(0);
    QCoreApplication::processEvents();
    PaintCounter counter(*box);
    moveMouse(*box, QPoint(200, 80));
    QTRY_COMPARE(counter.paints, 1);
    moveMouse(*box, QPoint(100, 80)); // out of the history: forgotten, not repainted
    QVERIFY(!box->isHovering());
    for (int i = 0; i < 5; ++i)
        QCoreApplication::processEvents();
    QCOMPARE(counter.paints, 1);
    box->addData(0);
    QTRY_COMPARE(counter.paints, 2);
}

void TestBaseMonitorBoxPainting::leavingHidesTheCrosshair()
{
    const auto box = shownBox();
    for (int i = 0; i < 50; ++i)
        box->addData(0);
    moveMouse(*box, QPoint(200, 80));
    QVERIFY(box->isHovering());
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(box.get(), &leave);
    QVERIFY(!box->isHovering());
}

void TestBaseMonitorBoxPainting::fontOfTheAxisLabels()
{
    const auto box = shownBox();
    box->setRange(-5, 120);
    PaintedTexts device(box->size());
    box->render(&device, QPoint(), QRegion(), QWidget::RenderFlags());
    const QList<PaintedText> expected = {{"120", "Arial", 11, 50, false}, {"-5", "Arial", 11, 50, false}};
    QVERIFY2(device.texts == expected, qPrintable(described(device.texts)));
}

void TestBaseMonitorBoxPainting::titlePaintsAtOnce()
{
    const auto box = shownBox();
    QCoreApplication::processEvents();
    const PaintCounter counter(*box);
    box->setTitle(QStringLiteral("Temp"));
    QCOMPARE(counter.painted, QRegion(box->rect())); // and not its caption row alone
}

void TestBaseMonitorBoxPainting::samplesAndTheMousePaintLater()
{
    const auto box = shownBox();
    QCoreApplication::processEvents();
    PaintCounter counter(*box);
    const auto paintsLater = [&counter](const auto &act) {
        counter.paints = 0;
        act();
        QCOMPARE(counter.paints, 0);
        QTRY_COMPARE(counter.paints, 1);
    };
    for (int i = 0; i < 3; ++i)
        paintsLater([&] { box->addData(50); });
    paintsLater([&] { moveMouse(*box, QPoint(228, 80)); });
    paintsLater([&] {
        QEvent leave(QEvent::Leave);
        QCoreApplication::sendEvent(box.get(), &leave);
    });
}

void TestBaseMonitorBoxPainting::crosshairSurvivesAShrink()
{
    const auto box = shownBox();
    for (int i = 0; i < 150; ++i)
        box->addData(50);
    moveMouse(*box, QPoint(220, 80));
    box->resize(100, 130); // the mouse's place now lies right of the plot
    QVERIFY(box->isHovering());
    QCOMPARE(box->hoveredAge(), -1);
    paintingOf(*box);
}

void TestBaseMonitorBoxPainting::realMouseReachesTheBox()
{
    const auto box = shownBox();
    for (int i = 0; i < 50; ++i)
        box->addData(0);
    QTest::mouseMove(box->windowHandle(), QPoint(100, 80));
    QTest::mouseMove(box->windowHandle(), QPoint(200, 80));
    QTRY_VERIFY(box->isHovering());
}

QTEST_MAIN(TestBaseMonitorBoxPainting)
#include "TestBaseMonitorBoxPainting.moc"
