#include "monitor/Ovryn_BaseMonitorBox.h"

#include "monitor/Ovryn_BaseInfoRow.h"
#include "monitor/WidgetPainting.h"

#include <QCheckBox>
#include <QTime>
#include <QtTest>

#include <limits>
#include <memory>

namespace
{
constexpr QSize kBox(229, 130); ///< a plot of 200 by 100 pixels at (29, 30)
constexpr QRect kPlot(29, 30, 200, 100);

std::unique_ptr<Ovryn_BaseMonitorBox> shownBox(QSize size = kBox)
{
    auto box = std::make_unique<Ovryn_BaseMonitorBox>();
    box->resize(size);
    box->show();
    if (!QTest::qWaitForWindowExposed(box.get()))
        qFatal("the box was not exposed");
    return box;
}

void moveMouse(Ovryn_BaseMonitorBox &box, QPoint position)
{
    QMouseEvent move(QEvent::MouseMove, position, box.mapToGlobal(position), Qt::NoButton, Qt::NoButton,
                     Qt::NoModifier);
    QCoreApplication::sendEvent(&box, &move);
}

/// Rows of a column that are opaque white: the outline, or the crosshair's dots.
int whiteRows(const QImage &image, int x)
{
    int count = 0;
    for (int y = kPlot.top(); y <= kPlot.bottom(); ++y)
        count += image.pixel(x, y) == qRgba(255, 255, 255, 255) ? 1 : 0;
    return count;
}
} // namespace

/// The graph box: geometry, history, scale, and what it paints.
class TestBaseMonitorBox : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { useProgramFonts(); }

    void layout_data();
    void layout();
    void valueToRow_data();
    void valueToRow();

    void startState();
    void captionHasNoCheckBox();
    void displayInfoSwapsHighestAndLowest();
    void samplesAreNewestFirst();
    void sampleKnowsItsTime();
    void gridScrollsAndWraps();
    void resizeRescalesAndResetsTheGrid();
    void historyKeepsOneMoreThanThePlot();
    void shrunkHistoryLosesHalfAtOnce();
    void boxWithoutPlotKeepsNothing();
    void storedRangeLeavesSamples();
    void newRangeRescales();
    void equalRangeIsHarmless();

    void emptyBoxPaintsGridAndLabels();
    void gridMovesWithTheSamples();
    void historyIsFilledFromTheRight();
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
    void crosshairSurvivesAShrink();
    void realMouseReachesTheBox();
};

void TestBaseMonitorBox::layout_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QRect>("row");
    QTest::addColumn<QRect>("plot");
    QTest::addColumn<QSize>("cells");
    QTest::addColumn<QRect>("bottomLabel");
    QTest::newRow("box of the monitor page") << QSize(344, 157) << QRect(29, 0, 315, 30) << QRect(29, 30, 315, 127)
                                             << QSize(15, 12) << QRect(0, 146, 27, 11);
    QTest::newRow("whole cells") << kBox << QRect(29, 0, 200, 30) << kPlot << QSize(10, 10) << QRect(0, 119, 27, 11);
    QTest::newRow("no plot at all") << QSize(29, 30) << QRect(29, 0, 0, 30) << QRect(29, 30, 0, 0) << QSize(0, 0)
                                    << QRect(0, 19, 27, 11);
    QTest::newRow("smaller than its frame")
        << QSize(0, 0) << QRect(29, 0, -29, 30) << QRect(29, 30, -29, -30) << QSize(-1, -3) << QRect(0, -11, 27, 11);
}

void TestBaseMonitorBox::layout()
{
    QFETCH(QSize, size);
    const MonitorBoxLayout area = monitorBoxLayoutFor(size);
    QTEST(area.rowRect, "row");
    QTEST(QRect(area.plotX, area.plotY, area.plotWidth, area.plotHeight), "plot");
    QTEST(QSize(area.gridCols, area.gridRows), "cells");
    QTEST(area.bottomLabelRect(), "bottomLabel");
    QCOMPARE(area.topLabelRect(), QRect(0, 30, 27, 11));
    QCOMPARE(area.gridStepX, 20);
    QCOMPARE(area.gridStepY, 10);
}

void TestBaseMonitorBox::valueToRow_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<double>("bottom");
    QTest::addColumn<double>("top");
    QTest::addColumn<int>("plotHeight");
    QTest::addColumn<int>("row");
    constexpr double infinite = std::numeric_limits<double>::infinity();
    QTest::newRow("bottom of the scale") << 0.0 << 0.0 << 100.0 << 127 << 157;
    QTest::newRow("top of the scale") << 100.0 << 0.0 << 100.0 << 127 << 30;
    QTest::newRow("cut, not rounded") << 33.0 << 0.0 << 100.0 << 127 << 115;      // 115.09
    QTest::newRow("just below a whole row") << 50.1 << 0.0 << 100.0 << 100 << 79; // 79.9
    QTest::newRow("above the scale lies above the plot") << 150.0 << 0.0 << 100.0 << 100 << -20;
    QTest::newRow("below the scale lies below the plot") << -10.0 << 0.0 << 100.0 << 100 << 140;
    QTest::newRow("scale that does not start at 0") << 50.0 << 40.0 << 60.0 << 100 << 80;
    QTest::newRow("empty scale, value beside it") << 5.0 << 3.0 << 3.0 << 100 << std::numeric_limits<int>::min();
    QTest::newRow("empty scale, value on it") << 3.0 << 3.0 << 3.0 << 100 << 0;
    QTest::newRow("no number") << std::numeric_limits<double>::quiet_NaN() << 0.0 << 100.0 << 100 << 0;
    QTest::newRow("endless value") << -infinite << 0.0 << 100.0 << 100 << std::numeric_limits<int>::max();
}

void TestBaseMonitorBox::valueToRow()
{
    QFETCH(double, value);
    QFETCH(double, bottom);
    QFETCH(double, top);
    QFETCH(int, plotHeight);
    QTEST(monitorBoxRowOf(value, bottom, top, plotHeight), "row");
}

void TestBaseMonitorBox::startState()
{
    Ovryn_BaseMonitorBox box;
    QCOMPARE(box.rangeTop(), 100.0);
    QCOMPARE(box.rangeBottom(), 0.0);
    QCOMPARE(box.boxLayout().plotWidth, 1000);
    QCOMPARE(box.gridPhase(), 0);
    QVERIFY(box.history().isEmpty());
    QVERIFY(!box.isHovering());
    QVERIFY(box.hasMouseTracking());
}

void TestBaseMonitorBox::captionHasNoCheckBox()
{
    const auto box = shownBox();
    box->setTitle(QStringLiteral("HHH"));
    QVERIFY(box->findChild<QCheckBox *>()->isHidden());
    QCOMPARE(box->captionRow()->titleText(), QStringLiteral("HHH"));
    QCOMPARE(box->captionRow()->geometry(), QRect(29, 0, 200, 30));
    // The title starts at the row's left edge, at 12 pixels.
    const QRect ink = whiteBounds(paintingOf(*box), QRect(29, 0, 90, 30));
    QVERIFY(ink.left() - 29 <= 2);
    QVERIFY(ink.height() >= 7 && ink.height() <= 10);
}

void TestBaseMonitorBox::displayInfoSwapsHighestAndLowest()
{
    Ovryn_BaseMonitorBox box;
    box.setDisplayInfo(QStringLiteral("current"), QStringLiteral("lowest"), QStringLiteral("highest"));
    QCOMPARE(box.captionRow()->currentValueText(), QStringLiteral("current"));
    QCOMPARE(box.captionRow()->maxValueText(), QStringLiteral("highest"));
    QCOMPARE(box.captionRow()->minValueText(), QStringLiteral("lowest"));
}

void TestBaseMonitorBox::samplesAreNewestFirst()
{
    const auto box = shownBox();
    box->addData(10);
    box->addData(20.5);
    QCOMPARE(box->history().size(), 2);
    QCOMPARE(box->history().at(0).value, 20.5);
    QCOMPARE(box->history().at(0).y, 109);
    QCOMPARE(box->history().at(1).value, 10.0);
    QCOMPARE(box->history().at(1).y, 120);
}

void TestBaseMonitorBox::sampleKnowsItsTime()
{
    Ovryn_BaseMonitorBox box;
    const QTime before = QTime::currentTime();
    box.addData(1);
    const QTime after = QTime::currentTime();
    const QString text = box.history().at(0).time;
    QVERIFY2(text == before.toString() || text == after.toString(), qPrintable(text));
}

void TestBaseMonitorBox::gridScrollsAndWraps()
{
    const auto box = shownBox();
    QList<int> phases;
    for (int i = 0; i < 21; ++i) {
        box->addData(0);
        phases.append(box->gridPhase());
    }
    QCOMPARE(phases.at(0), -1);
    QCOMPARE(phases.at(18), -19);
    QCOMPARE(phases.at(19), 0); // after 20 samples
    QCOMPARE(phases.at(20), -1);
}

void TestBaseMonitorBox::resizeRescalesAndResetsTheGrid()
{
    const auto box = shownBox();
    box->addData(25);
    QCOMPARE(box->history().at(0).y, 105);
    box->resize(229, 230);
    QCOMPARE(box->history().size(), 1);
    QCOMPARE(box->history().at(0).y, 180);
    QCOMPARE(box->gridPhase(), 0);
}

void TestBaseMonitorBox::historyKeepsOneMoreThanThePlot()
{
    const auto box = shownBox();
    for (int i = 0; i < 500; ++i)
        box->addData(i);
    QCOMPARE(box->history().size(), 201);
    QCOMPARE(box->history().first().value, 499.0);
    QCOMPARE(box->history().last().value, 299.0);
}

void TestBaseMonitorBox::shrunkHistoryLosesHalfAtOnce()
{
    const auto box = shownBox();
    for (int i = 0; i < 201; ++i)
        box->addData(i);
    box->resize(129, 130); // a plot of 100 pixels
    QCOMPARE(box->history().size(), 201);
    QList<int> sizes;
    for (int i = 0; i < 8; ++i) {
        box->addData(0);
        sizes.append(box->history().size());
    }
    // Of an excess of 101 go 51, of 51 then 26 and so on; each time one new sample comes.
    QCOMPARE(sizes, (QList<int>{151, 126, 114, 108, 105, 103, 102, 102}));
}

void TestBaseMonitorBox::boxWithoutPlotKeepsNothing()
{
    const auto box = shownBox(QSize(60, 60));
    for (int i = 0; i < 5; ++i)
        box->addData(i);
    box->resize(5, 5);
    for (int i = 0; i < 50; ++i)
        box->addData(i);
    QCOMPARE(box->history().size(), 1);
    paintingOf(*box);
}

void TestBaseMonitorBox::storedRangeLeavesSamples()
{
    const auto box = shownBox();
    box->addData(25);
    const QString time = box->history().at(0).time;
    box->setRange(0, 100);
    QCOMPARE(box->history().at(0).y, 105);
    QCOMPARE(box->history().at(0).value, 25.0);
    QCOMPARE(box->history().at(0).time, time);
}

void TestBaseMonitorBox::newRangeRescales()
{
    const auto box = shownBox();
    box->addData(25);
    box->addData(50);
    box->setRange(0, 50);
    QCOMPARE(box->history().at(1).y, 80);
    QCOMPARE(box->history().at(0).y, 30);
    box->setRange(25, 50); // the bottom alone
    QCOMPARE(box->history().at(1).y, 130);
    QCOMPARE(box->rangeBottom(), 25.0);
    QCOMPARE(box->rangeTop(), 50.0);
}

void TestBaseMonitorBox::equalRangeIsHarmless()
{
    const auto box = shownBox();
    box->addData(25);
    box->setRange(50, 50);
    box->addData(50);
    box->addData(75);
    QCOMPARE(box->history().size(), 3);
    paintingOf(*box);
    box->setRange(0, 100);
    QCOMPARE(box->history().at(2).y, 105);
}

void TestBaseMonitorBox::emptyBoxPaintsGridAndLabels()
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

void TestBaseMonitorBox::gridMovesWithTheSamples()
{
    const auto box = shownBox();
    box->setForgroundColor(Qt::transparent);
    box->addData(0);
    const QImage image = paintingOf(*box);
    QCOMPARE(qAlpha(image.pixel(48, 35)), 80);
    QCOMPARE(qAlpha(image.pixel(49, 35)), 0);
}

void TestBaseMonitorBox::historyIsFilledFromTheRight()
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

void TestBaseMonitorBox::colorsCanBeSet()
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

void TestBaseMonitorBox::valueBeyondTheRangeLeavesThePlot()
{
    const auto box = shownBox();
    for (int i = 0; i < 50; ++i)
        box->addData(120); // row 10, inside the caption
    QCOMPARE(box->history().at(0).y, 10);
    const QImage image = paintingOf(*box);
    QCOMPARE(qAlpha(image.pixel(209, 25)), 150); // nothing clips it
}

void TestBaseMonitorBox::hugeValuesPaint_data()
{
    QTest::addColumn<double>("value");
    QTest::newRow("largest word") << 2147483647.0;
    QTest::newRow("smallest word") << -2147483648.0;
    QTest::newRow("beyond every word") << 1e300;
    QTest::newRow("no number") << std::numeric_limits<double>::quiet_NaN();
}

void TestBaseMonitorBox::hugeValuesPaint()
{
    QFETCH(double, value);
    const auto box = shownBox();
    for (int i = 0; i < 30; ++i)
        box->addData(i % 2 == 0 ? value : 50);
    moveMouse(*box, QPoint(220, 80));
    const QImage image = paintingOf(*box);
    QVERIFY(paintedPixels(image, kPlot) > 0);
}

void TestBaseMonitorBox::crosshair_data()
{
    QTest::addColumn<QPoint>("position");
    QTest::addColumn<bool>("hovers");
    // 50 samples in a plot that ends at x 229: the history stands at x 179 to 229.
    QTest::newRow("amid the history") << QPoint(200, 80) << true;
    QTest::newRow("oldest sample") << QPoint(179, 80) << true;
    QTest::newRow("older than the history") << QPoint(178, 80) << false;
    QTest::newRow("newest sample") << QPoint(229, 80) << true;
    QTest::newRow("top of the plot") << QPoint(200, 30) << true;
    QTest::newRow("caption row") << QPoint(200, 29) << false;
    QTest::newRow("last row") << QPoint(200, 129) << true;
    QTest::newRow("right of the box") << QPoint(230, 80) << false;
}

void TestBaseMonitorBox::crosshair()
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
    if (position.x() >= box->width())
        return; // nothing to see beside the box
    // Dots: more than a few, far from all.
    const int dots = whiteRows(paintingOf(*box), position.x());
    if (hovers)
        QVERIFY2(dots > 20 && dots < 80, qPrintable(QString::number(dots)));
    else
        QVERIFY2(dots < 20, qPrintable(QString::number(dots)));
}

void TestBaseMonitorBox::crosshairReadsTheSample()
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

void TestBaseMonitorBox::emptyHistoryHasNoCrosshair()
{
    const auto box = shownBox();
    for (const int x : {29, 100, 228, 229}) {
        moveMouse(*box, QPoint(x, 80));
        QVERIFY(!box->isHovering());
    }
}

void TestBaseMonitorBox::crosshairStandsUntilTheNextRepaint()
{
    const auto box = shownBox();
    for (int i = 0; i < 50; ++i)
        box->addData(0);
    class PaintCounter : public QObject
    {
    public:
        int paints = 0;
        bool eventFilter(QObject *, QEvent *event) override
        {
            paints += event->type() == QEvent::Paint ? 1 : 0;
            return false;
        }
    } counter;
    QCoreApplication::processEvents();
    box->installEventFilter(&counter);
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

void TestBaseMonitorBox::leavingHidesTheCrosshair()
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

void TestBaseMonitorBox::crosshairSurvivesAShrink()
{
    const auto box = shownBox();
    for (int i = 0; i < 150; ++i)
        box->addData(50);
    moveMouse(*box, QPoint(220, 80));
    box->resize(100, 130); // the mouse's place now lies right of the plot
    QVERIFY(box->isHovering());
    paintingOf(*box);
}

void TestBaseMonitorBox::realMouseReachesTheBox()
{
    const auto box = shownBox();
    for (int i = 0; i < 50; ++i)
        box->addData(0);
    QTest::mouseMove(box->windowHandle(), QPoint(100, 80));
    QTest::mouseMove(box->windowHandle(), QPoint(200, 80));
    QTRY_VERIFY(box->isHovering());
}

QTEST_MAIN(TestBaseMonitorBox)
#include "TestBaseMonitorBox.moc"
