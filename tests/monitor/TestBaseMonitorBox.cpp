#include "monitor/graphs/Ovryn_BaseMonitorBox.h"

#include "monitor/MonitorBoxFixture.h"
#include "monitor/WidgetPainting.h"
#include "monitor/graphs/Ovryn_BaseInfoRow.h"

#include <QCheckBox>
#include <QTime>
#include <QtTest>

#include <limits>

/// The graph box: geometry, history, scale.
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

QTEST_MAIN(TestBaseMonitorBox)
#include "TestBaseMonitorBox.moc"
