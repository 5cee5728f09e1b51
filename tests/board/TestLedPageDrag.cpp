#include "board/LedPageTest.h"

/// A drag in the palette, and the frames that follow.
class TestLedPageDrag : public LedPageTest
{
    Q_OBJECT

private slots:
    void dragGivesOneFrame();
    void dragRestartsTheTime();
    void presetClickDuringADragSendsAtOnce();
    void customClickDuringADragWaits();
    void dragOfAnUnselectedButton();
    void dragWithNothingBound();
    void dragOfADisabledButton();
    void dragOfASteadyColour_data();
    void dragOfASteadyColour();
    void dragOfASteadyColourNeedsNoDelay();
};

void TestLedPageDrag::dragGivesOneFrame()
{
    world->open();
    bind(0);
    for (int red = 0; red < 50; ++red)
        world->page->setCurrentBindColorCircleButtonColor(QColor(red, 0, 0));
    QCOMPARE(world->frames(), QStringList());
    QCOMPARE(world->custom(0)->getColor(), QColor(49, 0, 0));
    QTRY_COMPARE(world->frames(), QStringList("08 01 32 02 31 00 00 91"));
    QVERIFY(!frameIsDue());
    QCOMPARE(world->frames().size(), 1);
}

void TestLedPageDrag::dragRestartsTheTime()
{
    LedTimings timings = LedPageWorld::kTimings;
    timings.colorChangedMs = 300;
    world->open(timings);
    bind(0);
    QElapsedTimer sinceLast;
    QElapsedTimer sinceFirst;
    sinceFirst.start();
    while (sinceFirst.elapsed() < 400) { // longer than the delay, in movements
        world->page->setCurrentBindColorCircleButtonColor(QColor(1, 2, 3));
        sinceLast.start();
        QTest::qWait(5);
    }
    if (sinceLast.elapsed() < 100)
        QCOMPARE(world->frames(), QStringList());
    QTRY_COMPARE(world->frames().size(), 1);
    QVERIFY(sinceLast.elapsed() >= 280); // a coarse timer may be early by a twentieth
}

void TestLedPageDrag::presetClickDuringADragSendsAtOnce()
{
    LedTimings timings = LedPageWorld::kTimings;
    timings.colorChangedMs = 60 * 1000;
    world->open(timings);
    bind(0);
    world->page->setCurrentBindColorCircleButtonColor(QColor(1, 2, 3));
    LedPageWorld::click(world->preset(3));
    QCOMPARE(world->frames(), QStringList("08 01 32 02 00 FF 00 C3"));
}

void TestLedPageDrag::customClickDuringADragWaits()
{
    LedTimings timings = LedPageWorld::kTimings;
    timings.colorChangedMs = 60 * 1000;
    world->open(timings);
    bind(0);
    QSignalSpy told(world->page.get(), SIGNAL(colorButtonHasDoubleClick(QColor)));
    world->page->setCurrentBindColorCircleButtonColor(QColor(1, 2, 3));
    LedPageWorld::click(world->custom(4));
    QCOMPARE(told.size(), 1); // the palette follows at once
    QCOMPARE(world->frames(), QStringList());
    world->page->onColorChangedTimerout();
    QCOMPARE(world->frames(), QStringList("08 01 32 02 FF FF FF C5")); // what is selected by then
}

void TestLedPageDrag::dragOfAnUnselectedButton()
{
    world->open();
    bind(0);
    LedPageWorld::click(world->preset(3)); // takes the selection; the palette still edits custom 0
    world->driver.forgetCalls();
    world->page->setCurrentBindColorCircleButtonColor(QColor(1, 2, 3));
    QCOMPARE(world->custom(0)->getColor(), QColor(1, 2, 3));
    QVERIFY(!frameIsDue());
    QCOMPARE(world->frames(), QStringList());
}

void TestLedPageDrag::dragWithNothingBound()
{
    world->open();
    const LedModuleInfo before = world->info();
    world->page->setCurrentBindColorCircleButtonColor(QColor(1, 2, 3));
    QVERIFY(!frameIsDue());
    QVERIFY(world->info() == before);
    QCOMPARE(world->frames(), QStringList());
}

void TestLedPageDrag::dragOfADisabledButton()
{
    world->open();
    bind(0);
    world->choose("rdbSleep");
    world->driver.forgetCalls();
    world->page->setCurrentBindColorCircleButtonColor(QColor(1, 2, 3));
    QVERIFY(!frameIsDue());
    QCOMPARE(world->custom(0)->getColor(), QColor(255, 255, 255));
    QCOMPARE(world->frames(), QStringList());
}

void TestLedPageDrag::dragOfASteadyColour_data()
{
    QTest::addColumn<int>("controllerType");
    QTest::addColumn<QStringList>("atOnce");
    QTest::newRow("type 3 follows") << 3 << QStringList{"08 00 32 02 01 02 03 BD", "08 00 32 02 04 05 06 B4"};
    QTest::newRow("another one waits") << 1 << QStringList();
}

void TestLedPageDrag::dragOfASteadyColour()
{
    QFETCH(int, controllerType);
    world->setControllerType(quint8(controllerType));
    LedTimings timings = LedPageWorld::kTimings;
    timings.colorChangedMs = 60 * 1000;
    world->openInMode(LedMode::SingleBright, timings);
    bind(0);
    LedPageWorld::click(world->preset(0)); // also where the edited button isn't the selected one
    if (controllerType != 3)
        LedPageWorld::click(world->custom(0));
    world->driver.forgetCalls();
    world->page->setCurrentBindColorCircleButtonColor(QColor(1, 2, 3));
    world->page->setCurrentBindColorCircleButtonColor(QColor(4, 5, 6));
    QTEST(world->frames(), "atOnce");
    QCOMPARE(world->custom(0)->getColor(), QColor(4, 5, 6));
}

/// Also while the edited button is the selected one, whose frame would otherwise follow after the delay.
void TestLedPageDrag::dragOfASteadyColourNeedsNoDelay()
{
    world->setControllerType(3);
    world->openInMode(LedMode::SingleBright);
    bind(0);
    QVERIFY(world->custom(0)->isChecked());
    world->driver.forgetCalls();
    world->page->setCurrentBindColorCircleButtonColor(QColor(1, 2, 3));
    const QStringList frame{"08 00 32 02 01 02 03 BD"};
    QCOMPARE(world->frames(), frame);
    QVERIFY(!frameIsDue());
}

QTEST_MAIN(TestLedPageDrag)
#include "TestLedPageDrag.moc"
