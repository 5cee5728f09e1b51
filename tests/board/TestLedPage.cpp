#include "board/LedPageTest.h"
#include "board/led/Ovryn_SendColorToLed.h"

namespace
{

const QString kRedBreath = QStringLiteral("08 01 32 02 FF 00 00 C3");
const QString kGreenState = QStringLiteral("08 01 32 04 00 FF 00 C1");

} // namespace

/// What the user does on the LED page, and the frames that follow.
class TestLedPage : public LedPageTest
{
    Q_OBJECT

private slots:
    void effectWithOneColour_data();
    void effectWithOneColour();
    void coloursGoOutInOrderOfSelection();
    void eighthColourDropsTheOldest();
    void lastColourStays();
    void noColourIsRed_data();
    void noColourIsRed();
    void modeOfTheGroupFollowsTheEffect();
    void leavingSleepOrGradientSendsOneFrame();
    void everyStepOfTheIntervalSends();
    void typedInterval();
    void intervalIsHeldInItsRange();
    void presetClick();
    void customClick();
    void clickOfNobody();
    void doubleClickDoesNothing();
    void resetWithACustomColour();
    void resetAtTheSingleBreath();
    void resetWithoutACustomColour();
    void resetUnbindsThePalette();
    void stateDisplayFollowsTheTemperature();
    void stateDisplayAgainSendsAgain();
    void leavingStateDisplayWaitsForTheWorker();
    void framesDoNotMingle();
    void lostControllerInStateDisplay();
    void doubleClickSlotIsEmpty();
};

void TestLedPage::effectWithOneColour_data()
{
    QTest::addColumn<QString>("radio");
    QTest::addColumn<QString>("frame");
    QTest::addColumn<bool>("colours");

    QTest::newRow("multiple breathing") << "rdbMultipleBreath" << kRedBreath << true;
    QTest::newRow("multiple steady") << "rdbMultipleBright"
                                     << "08 02 32 02 FF 00 00 C2" << true;
    QTest::newRow("gradient") << "rdbGradient"
                              << "05 04 32 02 C2" << false;
    QTest::newRow("sleep") << "rdbSleep"
                           << "05 00 00 0A F0" << false;
}

void TestLedPage::effectWithOneColour()
{
    QFETCH(QString, radio);
    QFETCH(QString, frame);
    world->open();
    world->choose(qPrintable(radio));
    QCOMPARE(world->checkedRadio(), radio);
    QCOMPARE(world->frames(), QStringList(frame));
    QTEST(world->colorControlsEnabled(), "colours");
    world->choose(qPrintable(radio)); // again: no change
    QCOMPARE(world->frames().size(), 1);
}

void TestLedPage::coloursGoOutInOrderOfSelection()
{
    world->open();
    world->choose("rdbMultipleBright");
    world->takeFrames();
    LedPageWorld::click(world->preset(5));
    LedPageWorld::click(world->preset(2));
    QCOMPARE(world->takeFrames(),
             QStringList({"0B 02 32 02 FF 00 00 00 00 FF C0", "0E 02 32 02 FF 00 00 00 00 FF FF FF 00 BF"}));
}

void TestLedPage::eighthColourDropsTheOldest()
{
    world->open();
    world->choose("rdbMultipleBright"); // preset 0 is selected
    for (int i = 6; i >= 1; --i)
        LedPageWorld::click(world->preset(i));
    QCOMPARE(world->takeFrames().last(),
             QStringLiteral("1A 02 32 02 FF 00 00 8B 00 FF 00 00 FF 00 7F FF 00 FF 00 FF FF 00 FF A5 00 08"));
    LedPageWorld::click(world->custom(0));
    QCOMPARE(world->takeFrames(),
             QStringList("1A 02 32 02 8B 00 FF 00 00 FF 00 7F FF 00 FF 00 FF FF 00 FF A5 00 FF FF FF 0A"));
    QCOMPARE(int(world->info().CheckedColorButtonStatic), 0x7E);
    QCOMPARE(int(world->info().CheckedColorButtonDynamic), 1);
}

void TestLedPage::lastColourStays()
{
    world->open();
    world->choose("rdbMultipleBreath");
    world->takeFrames();
    LedPageWorld::click(world->preset(0));
    QVERIFY(world->preset(0)->isChecked());
    QCOMPARE(world->takeFrames(), QStringList(kRedBreath)); // told all the same
}

void TestLedPage::noColourIsRed_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<QString>("frame");
    QTest::newRow("single breathing") << 0 << "08 01 32 03 FF 00 00 C2";
    QTest::newRow("single steady") << 1 << "08 00 32 02 FF 00 00 C4";
    QTest::newRow("multiple breathing") << 2 << "08 01 32 03 FF 00 00 C2";
    QTest::newRow("multiple steady") << 3 << "08 02 32 03 FF 00 00 C1";
}

void TestLedPage::noColourIsRed()
{
    QFETCH(int, mode);
    LedModuleInfo saved;
    saved.LedMode = mode;
    saved.CheckedColorButtonStatic = 0;
    world->open(saved);
    world->spin()->setValue(3);
    QTEST(world->frames().join(QLatin1Char('|')), "frame");
}

void TestLedPage::modeOfTheGroupFollowsTheEffect()
{
    LedModuleInfo saved;
    saved.LedMode = 2;
    saved.CheckedColorButtonStatic = 0x07;
    world->open(saved);
    world->choose("rdbMultipleBright");
    QCOMPARE(int(world->info().CheckedColorButtonStatic), 0x07); // the same mode keeps all
    world->radio("rdbSingleBright")->setChecked(true);
    QCOMPARE(int(world->info().CheckedColorButtonStatic), 0x04); // the last one stays
    QCOMPARE(world->takeFrames().last(), QStringLiteral("08 00 32 02 FF FF 00 C5"));
}

void TestLedPage::leavingSleepOrGradientSendsOneFrame()
{
    world->open();
    world->choose("rdbSleep");
    world->choose("rdbGradient");
    world->choose("rdbMultipleBreath");
    QCOMPARE(world->frames(), QStringList({"05 00 00 0A F0", "05 04 32 02 C2", kRedBreath}));
    QVERIFY(world->colorControlsEnabled());
}

void TestLedPage::everyStepOfTheIntervalSends()
{
    world->open();
    for (int step = 0; step < 3; ++step)
        QTest::keyClick(world->spin(), Qt::Key_Up);
    QTest::keyClick(world->spin(), Qt::Key_Down);
    QCOMPARE(world->frames(), QStringList({"08 01 32 03 FF 00 00 C2", "08 01 32 04 FF 00 00 C1",
                                           "08 01 32 05 FF 00 00 C0", "08 01 32 04 FF 00 00 C1"}));
    QCOMPARE(world->info().Interval, 4);
}

void TestLedPage::typedInterval()
{
    world->open();
    world->spin()->selectAll();
    QTest::keyClicks(world->spin(), QStringLiteral("99"));
    QCOMPARE(world->spin()->value(), 16); // typing beyond the end snaps to it
    QCOMPARE(world->info().Interval, 16);
    QCOMPARE(world->frames().last(), QStringLiteral("08 01 32 10 FF 00 00 B5"));
}

void TestLedPage::intervalIsHeldInItsRange()
{
    world->open();
    world->page->onSpinBoxIntervalValueChanged(1);
    QCOMPARE(world->info().Interval, 2);
    world->page->onSpinBoxIntervalValueChanged(1000);
    QCOMPARE(world->info().Interval, 16);
    world->page->onSpinBoxIntervalValueChanged(-5);
    QCOMPARE(world->info().Interval, 2);
}

void TestLedPage::presetClick()
{
    world->open();
    QSignalSpy told(world->page.get(), SIGNAL(colorButtonHasDoubleClick(QColor)));
    LedPageWorld::click(world->preset(3));
    QCOMPARE(world->frames(), QStringList("08 01 32 02 00 FF 00 C3"));
    QCOMPARE(told.size(), 0); // a preset isn't edited
    world->page->setCurrentBindColorCircleButtonColor(Qt::white);
    QCOMPARE(world->preset(3)->getColor(), QColor(0, 255, 0));
}

void TestLedPage::customClick()
{
    world->open();
    QSignalSpy told(world->page.get(), SIGNAL(colorButtonHasDoubleClick(QColor)));
    LedPageWorld::click(world->custom(2));
    QCOMPARE(told.size(), 1);
    QCOMPARE(told.first().first().value<QColor>(), QColor(255, 255, 255));
    QCOMPARE(world->frames(), QStringList("08 01 32 02 FF FF FF C5"));
    LedPageWorld::click(world->custom(2)); // stays selected, and is told again
    QVERIFY(world->custom(2)->isChecked());
    QCOMPARE(told.size(), 2);
    QCOMPARE(world->frames().size(), 2);
}

void TestLedPage::clickOfNobody()
{
    world->open();
    world->page->onColorButtonClick(nullptr);
    QCOMPARE(world->frames(), QStringList());
}

void TestLedPage::doubleClickDoesNothing()
{
    world->open();
    QTest::mouseDClick(world->preset(3), Qt::LeftButton);
    QTest::mouseDClick(world->custom(3), Qt::LeftButton);
    QTest::qWait(20); // many click delays
    QCOMPARE(world->frames(), QStringList());
    QCOMPARE(int(world->info().CheckedColorButtonStatic), 1);
    QCOMPARE(int(world->info().CheckedColorButtonDynamic), 0);
}

void TestLedPage::resetWithACustomColour()
{
    LedModuleInfo saved;
    saved.LedMode = 3;
    saved.CheckedColorButtonDynamic = 0x06;
    saved.Colors.fill(0x123456);
    world->open(saved);
    QSignalSpy told(world->page.get(), SIGNAL(colorButtonHasDoubleClick(QColor)));
    QTest::mousePress(world->reset(), Qt::LeftButton); // the press counts, not the release
    QCOMPARE(told.size(), 1);
    QCOMPARE(told.first().first().value<QColor>(), QColor(255, 0, 0));
    QCOMPARE(world->frames(), QStringList(kRedBreath));
    QCOMPARE(world->checkedRadio(), QStringLiteral("rdbSingleBreath")); // which nobody sees
    LedModuleInfo expected;
    expected.LedMode = 0;
    expected.Colors.fill(0xFFFFFFFF);
    QVERIFY(world->info() == expected);
    QTest::mouseRelease(world->reset(), Qt::LeftButton);
    QCOMPARE(world->frames().size(), 1);
}

void TestLedPage::resetAtTheSingleBreath()
{
    world->open();
    bind(2);
    QTest::mouseClick(world->reset(), Qt::LeftButton);
    QCOMPARE(world->frames(), QStringList()); // checked already: no toggle, no frame
    QCOMPARE(int(world->info().CheckedColorButtonStatic), 1);
    QCOMPARE(int(world->info().CheckedColorButtonDynamic), 0);
}

void TestLedPage::resetWithoutACustomColour()
{
    LedModuleInfo saved;
    saved.LedMode = 2;
    saved.CheckedColorButtonStatic = 0x06;
    saved.Colors.fill(0x123456);
    world->open(saved);
    QSignalSpy told(world->page.get(), SIGNAL(colorButtonHasDoubleClick(QColor)));
    QTest::mouseClick(world->reset(), Qt::LeftButton);
    QCOMPARE(world->frames(), QStringList());
    QCOMPARE(told.size(), 1);
    QCOMPARE(told.first().first().value<QColor>(), QColor(255, 0, 0));
    LedModuleInfo expected = saved;
    expected.Colors.fill(0xFFFFFFFF);
    QVERIFY(world->info() == expected);
}

void TestLedPage::resetUnbindsThePalette()
{
    for (bool selected : {true, false}) {
        world->open();
        bind(0);
        if (!selected)
            LedPageWorld::click(world->preset(3));
        QTest::mouseClick(world->reset(), Qt::LeftButton);
        world->driver.forgetCalls();
        world->page->setCurrentBindColorCircleButtonColor(QColor(1, 2, 3));
        QVERIFY(!frameIsDue());
        QCOMPARE(world->custom(0)->getColor(), QColor(255, 255, 255));
        QCOMPARE(world->frames(), QStringList());
    }
}

void TestLedPage::stateDisplayFollowsTheTemperature()
{
    world->setTemperature(40);
    world->open();
    world->choose("rdbState");
    QVERIFY(!world->colorControlsEnabled());
    QTRY_COMPARE(world->frames(), QStringList(kGreenState));
    world->setTemperature(70);
    QTRY_COMPARE(world->frames(), QStringList({kGreenState, "08 01 32 02 FF 00 00 C3"}));
}

void TestLedPage::stateDisplayAgainSendsAgain()
{
    world->setTemperature(40);
    world->open();
    for (int round = 0; round < 3; ++round) {
        world->choose("rdbState");
        QTRY_COMPARE(world->frames(), QStringList(kGreenState));
        world->choose("rdbSleep");
        QVERIFY(world->frames().contains(QStringLiteral("05 00 00 0A F0")));
        world->driver.forgetCalls();
    }
}

void TestLedPage::leavingStateDisplayWaitsForTheWorker()
{
    LedTimings timings = LedPageWorld::kTimings;
    timings.workerSleepMs = 100;
    world->setTemperature(40);
    world->open(timings);
    const auto *worker = world->page->findChild<Ovryn_SendColorToLed *>();
    world->choose("rdbState");
    QTRY_COMPARE(world->frames().size(), 1);
    QVERIFY(worker->isRunning());
    world->choose("rdbMultipleBright");
    QVERIFY(worker->isFinished());
    QCOMPARE(world->frames(), QStringList({kGreenState, "08 02 32 02 FF 00 00 C2"}));
}

void TestLedPage::framesDoNotMingle()
{
    // each pass has another temperature, so that each one sends
    int reading = 0;
    world->driver.onCall(Operation::NvAPI_GPU_GetThermalSettings,
                         [this, &reading] { world->setTemperature(++reading % 2 ? 40 : 55); });
    world->open();
    world->choose("rdbState");
    QTRY_VERIFY(world->frames().size() > 3);
    world->choose("rdbMultipleBright");
    const int sent = world->frames().size();
    QCOMPARE(world->frames().last(), QStringLiteral("08 02 32 02 FF 00 00 C2"));
    QVERIFY(world->page->findChild<Ovryn_SendColorToLed *>()->isFinished()); // nobody sends any more
    QCOMPARE(world->frames().size(), sent);
}

void TestLedPage::lostControllerInStateDisplay()
{
    world->open();
    world->loseController();
    auto *worker = world->page->findChild<Ovryn_SendColorToLed *>();
    world->choose("rdbState");
    QTRY_VERIFY(worker->isFinished());
    world->choose("rdbSleep"); // revives the worker, and fails silently
    world->setControllerType(3);
    world->driver.forgetCalls();
    world->choose("rdbState");
    QTRY_COMPARE(world->frames().size(), 1);
}

void TestLedPage::doubleClickSlotIsEmpty()
{
    world->open();
    const LedModuleInfo before = world->info();
    world->page->onColorButtonDuobleClick(world->custom(1));
    world->page->onColorButtonDuobleClick(nullptr);
    QVERIFY(world->info() == before);
    QCOMPARE(world->frames(), QStringList());
}

QTEST_MAIN(TestLedPage)
#include "TestLedPage.moc"
