#include "board/LcdWorkerTest.h"

#include <limits>

/// The LCD worker pass by pass, without a thread: the frames and the rotation.
class TestLcdWorkerPasses : public LcdWorkerTest
{
    Q_OBJECT

private slots:
    void cadence_data();
    void cadence();
    void switchTime_data();
    void switchTime();
    void switchTimeHasADefault();
    void changeOfTheSwitchTimeBeginsThePageAnew();
    void manualPagesStandStill();
    void manualSwitchTurnsThePages();
    void manualSwitchWhileAutomaticDoesNothing();
    void unknownModeIsFollowedByOther_data();
    void unknownModeIsFollowedByOther();
    void pageChosenIsSentAtOnce();
    void pageChosenStaysForAWholeTime();
    void pageChosenWhileOffKeepsItDark();
    void pageChosenIsNotReported();
    void everyFrameGoesThroughTheControllersTransport();
    void resultOfEachFrame();
    void enableStartsNothing();

private:
    static void pass(Worker &worker, int count)
    {
        for (int i = 0; i < count; ++i)
            worker.sendFrameOnce();
    }
};

void TestLcdWorkerPasses::cadence_data()
{
    QTest::addColumn<int>("seconds");
    QTest::newRow("10 seconds, eleven frames a page") << 10;
    QTest::newRow("1 second, two frames a page") << 1;
    QTest::newRow("7 seconds, eight frames a page") << 7;
    QTest::newRow("30 seconds, 31 frames a page") << 30;
}

void TestLcdWorkerPasses::cadence()
{
    QFETCH(int, seconds);
    Worker worker(control.get());
    worker.setAutoSwitch(true, seconds);
    const int framesOfAPage = seconds + 1;
    pass(worker, seconds + 4 * framesOfAPage);
    // The page that stands at the beginning has had no frame that turned to it.
    QCOMPARE(commands(), times(seconds, kClock) + times(framesOfAPage, kTemperature) + times(framesOfAPage, kMemory) +
                             times(framesOfAPage, kOther) + times(framesOfAPage, kClock));
}

void TestLcdWorkerPasses::switchTime_data()
{
    QTest::addColumn<bool>("automatic");
    QTest::addColumn<int>("seconds");
    QTest::addColumn<quint32>("ms");
    QTest::newRow("0 is 1 second") << true << 0 << 1000u;
    QTest::newRow("1 second") << true << 1 << 1000u;
    QTest::newRow("30 seconds") << true << 30 << 30000u;
    QTest::newRow("31 is 30 seconds") << true << 31 << 30000u;
    QTest::newRow("a negative time is 30 seconds") << true << -1 << 30000u;
    QTest::newRow("the most negative time is 30 seconds") << true << std::numeric_limits<int>::min() << 30000u;
    QTest::newRow("the longest time is 30 seconds") << true << std::numeric_limits<int>::max() << 30000u;
    QTest::newRow("ignored when not automatic") << false << 5 << 10000u;
}

void TestLcdWorkerPasses::switchTime()
{
    QFETCH(bool, automatic);
    QFETCH(int, seconds);
    DrivenWorker worker(control.get());
    QCOMPARE(worker.switchTimeMs(), 10000u);
    worker.setAutoSwitch(automatic, seconds);
    QTEST(worker.switchTimeMs(), "ms");
}

void TestLcdWorkerPasses::switchTimeHasADefault()
{
    DrivenWorker worker(control.get());
    worker.setAutoSwitch(true, 3);
    worker.setAutoSwitch(true);
    QCOMPARE(worker.switchTimeMs(), 10000u);
}

void TestLcdWorkerPasses::changeOfTheSwitchTimeBeginsThePageAnew()
{
    Worker worker(control.get());
    pass(worker, 9);
    worker.setAutoSwitch(true, 3);
    pass(worker, 4);
    QCOMPARE(commands(), times(12, kClock) + times(1, kTemperature));
}

void TestLcdWorkerPasses::manualPagesStandStill()
{
    DrivenWorker worker(control.get());
    pass(worker, 4);
    worker.setAutoSwitch(false, 1);
    pass(worker, 40);
    QCOMPARE(commands(), times(44, kClock));
    QCOMPARE(worker.timeOnPageMs(), 4000u); // not touched
}

void TestLcdWorkerPasses::manualSwitchTurnsThePages()
{
    DrivenWorker worker(control.get());
    pass(worker, 3);
    worker.setAutoSwitch(false);
    driver->forgetCalls();
    for (int page : {kTemperature, kMemory, kOther, kClock}) {
        worker.manualSwitch();
        QCOMPARE(commands(), QList<int>()); // the next pass shows it
        worker.sendFrameOnce();
        QCOMPARE(takeCommands(), QList<int>{page});
    }
    QCOMPARE(worker.timeOnPageMs(), 3000u);
    worker.manualSwitch();
    worker.manualSwitch();
    worker.sendFrameOnce();
    QCOMPARE(takeCommands(), QList<int>{kMemory});
}

void TestLcdWorkerPasses::manualSwitchWhileAutomaticDoesNothing()
{
    DrivenWorker worker(control.get());
    pass(worker, 2);
    worker.manualSwitch();
    QCOMPARE(worker.timeOnPageMs(), 2000u);
    pass(worker, 9);
    QCOMPARE(commands(), times(10, kClock) + times(1, kTemperature));
}

void TestLcdWorkerPasses::unknownModeIsFollowedByOther_data()
{
    QTest::addColumn<int>("mode");
    QTest::newRow("no bit") << 0;
    QTest::newRow("two bits") << 0xC0;
    QTest::newRow("a bit that is no page") << 0x08;
    QTest::newRow("the command of an LCD that is off") << kOff;
}

void TestLcdWorkerPasses::unknownModeIsFollowedByOther()
{
    QFETCH(int, mode);
    Worker worker(control.get());
    worker.setAutoSwitch(false);
    worker.setLCDCurrentDisplayMode(LCDDisplayMode(mode));
    worker.manualSwitch();
    worker.sendFrameOnce();
    QCOMPARE(commands(), QList<int>({mode, kOther}));
    worker.setAutoSwitch(true, 1);
    worker.setLCDCurrentDisplayMode(LCDDisplayMode(mode));
    pass(worker, 2);
    QCOMPARE(commands().mid(2), QList<int>({mode, mode, kOther}));
}

void TestLcdWorkerPasses::pageChosenIsSentAtOnce()
{
    Worker worker(control.get());
    Qt::HANDLE sender = nullptr;
    driver->onCall(Operation::NvAPI_I2CWrite, [&] { sender = QThread::currentThreadId(); });
    worker.setLCDCurrentDisplayMode(LcdDisplayMemory);
    QCOMPARE(commands(), QList<int>{kMemory});
    QCOMPARE(sender, QThread::currentThreadId());
    QVERIFY(worker.isStopped()); // and nothing was started for it
}

void TestLcdWorkerPasses::pageChosenStaysForAWholeTime()
{
    Worker worker(control.get());
    pass(worker, 7);
    driver->forgetCalls();
    worker.setLCDCurrentDisplayMode(LcdDisplayTemperature);
    pass(worker, 11);
    QCOMPARE(commands(), times(11, kTemperature) + times(1, kMemory));
}

void TestLcdWorkerPasses::pageChosenWhileOffKeepsItDark()
{
    Worker worker(control.get());
    worker.setEnableLCD(false);
    worker.setLCDCurrentDisplayMode(LcdDisplayTemperature);
    QCOMPARE(commands(), QList<int>{kOff});
    worker.setEnableLCD(true);
    worker.sendFrameOnce();
    QCOMPARE(commands(), QList<int>({kOff, kTemperature}));
}

void TestLcdWorkerPasses::pageChosenIsNotReported()
{
    Worker worker(control.get());
    ResultReceiver receiver;
    connect(&worker, SIGNAL(sendDataToLCDResult(bool)), &receiver, SLOT(take(bool)));
    worker.setLCDCurrentDisplayMode(LcdDisplayTemperature);
    QCOMPARE(commands().size(), 1);
    QCOMPARE(receiver.results, QList<bool>());
}

void TestLcdWorkerPasses::everyFrameGoesThroughTheControllersTransport()
{
    driver->edit(0, [](simulated::Card &card) {
        card.state.memoryUsedKB = 2097152;
        card.state.graphicsKHz = 1721500;
        card.state.temperatureC = 52;
        card.state.fanPercent = 50;
    });
    Worker worker(control.get());
    worker.sendFrameOnce();
    QVERIFY(driver->calls().constLast().startsWith("I2CWrite gpu0 port 1 0xAC: ")); // after the readings
    const simulated::LcdController lcd = driver->card(0).lcd.value();
    QCOMPARE(lcd.acceptedFrames, 1);
    QCOMPARE(int(lcd.shown.command), kClock);
    QCOMPARE(lcd.shown.memoryTotalKB, 8388608u);
    QCOMPARE(lcd.shown.memoryUsedKB, 2097152u);
    QCOMPARE(int(lcd.shown.baseClockMHz), 1607);
    QCOMPARE(int(lcd.shown.currentClockMHz), 1721);
    QCOMPARE(int(lcd.shown.thermalLimitC), 83);
    QCOMPARE(int(lcd.shown.temperatureC), 52);
    QCOMPARE(int(lcd.shown.fanMaxRpm), 3300);
    QCOMPARE(int(lcd.shown.fanRpm), 1650);
}

void TestLcdWorkerPasses::resultOfEachFrame()
{
    Worker worker(control.get());
    ResultReceiver receiver;
    connect(&worker, SIGNAL(sendDataToLCDResult(bool)), &receiver, SLOT(take(bool)));
    pass(worker, 2);
    loseController();
    pass(worker, 2);
    returnController();
    pass(worker, 1);
    QCOMPARE(receiver.results, QList<bool>({true, true, false, false, true}));
}

void TestLcdWorkerPasses::enableStartsNothing()
{
    Worker worker(control.get());
    worker.setEnableLCD(false);
    worker.setEnableLCD(true);
    worker.setAutoSwitch(true, 5);
    worker.manualSwitch();
    QVERIFY(worker.isStopped());
    QVERIFY(!worker.isRunning());
    QCOMPARE(driver->calls(), QStringList());
}

QTEST_GUILESS_MAIN(TestLcdWorkerPasses)
#include "TestLcdWorkerPasses.moc"
