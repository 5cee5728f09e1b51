#include "board/LcdWorkerTest.h"

#include <QElapsedTimer>

#include <functional>

/// The LCD worker with its thread, on a clock that the test drives.
class TestLcdWorkerThread : public LcdWorkerTest
{
    Q_OBJECT

private slots:
    void idleUntilStarted();
    void startRuns();
    void startWhileRunningDoesNothing();
    void frameASecond();
    void offEndsTheLoopBehindOneFrame();
    void offAndOnAgainBeforeTheNextFrame();
    void startWhileOffSendsOneFrame();
    void startBehindTheEnd();
    void refusedFramesGoOn();
    void withoutACard();
    void slotsWaitForARunningPassOnly_data();
    void slotsWaitForARunningPassOnly();
    void destructionWaitsForASlowCall();
    void destroyedInEveryState_data();
    void destroyedInEveryState();
    void twoCardsShareTheSequence();
};

void TestLcdWorkerThread::idleUntilStarted()
{
    Worker worker(control.get());
    QVERIFY(worker.isStopped());
    QVERIFY(!worker.isRunning());
    QVERIFY(!worker.isFinished());
    QCOMPARE(driver->calls(), QStringList());
}

void TestLcdWorkerThread::startRuns()
{
    DrivenWorker worker(control.get());
    worker.startSending();
    QVERIFY(!worker.isStopped());
    QVERIFY(worker.reachesSleep());
    QCOMPARE(commands().size(), 1); // at once, not a second later
    for (int second = 0; second < 20; ++second)
        QVERIFY(worker.tick());
    QVERIFY(worker.isRunning());
    QCOMPARE(commands(), times(10, kClock) + times(11, kTemperature));
}

void TestLcdWorkerThread::startWhileRunningDoesNothing()
{
    DrivenWorker worker(control.get());
    worker.startSending();
    QVERIFY(worker.reachesSleep());
    worker.startSending();
    QVERIFY(worker.tick());
    QCOMPARE(commands().size(), 2);
}

void TestLcdWorkerThread::frameASecond()
{
    DrivenWorker worker(control.get());
    worker.startSending();
    QVERIFY(worker.reachesSleep());
    QCOMPARE(worker.lastPauseMs(), 1000u);
}

void TestLcdWorkerThread::offEndsTheLoopBehindOneFrame()
{
    DrivenWorker worker(control.get());
    worker.startSending();
    QVERIFY(worker.reachesSleep());
    worker.setEnableLCD(false);
    QVERIFY(!worker.isStopped());
    worker.endSleep();
    QVERIFY(worker.wait(kPatienceMs)); // no sleep follows
    QVERIFY(worker.isStopped());
    QCOMPARE(commands(), QList<int>({kClock, kOff}));
    worker.setEnableLCD(true);
    QCOMPARE(commands().size(), 2);
    worker.startSending();
    QVERIFY(worker.reachesSleep());
    QCOMPARE(commands(), QList<int>({kClock, kOff, kClock}));
}

void TestLcdWorkerThread::offAndOnAgainBeforeTheNextFrame()
{
    DrivenWorker worker(control.get());
    worker.startSending();
    QVERIFY(worker.reachesSleep());
    worker.setEnableLCD(false);
    worker.setEnableLCD(true);
    QVERIFY(worker.tick());
    QCOMPARE(commands(), QList<int>({kClock, kClock}));
}

void TestLcdWorkerThread::startWhileOffSendsOneFrame()
{
    Worker worker(control.get());
    worker.setEnableLCD(false);
    for (int start = 1; start <= 3; ++start) {
        worker.startSending();
        QTRY_VERIFY(worker.isStopped());
        QCOMPARE(commands(), times(start, kOff));
    }
}

void TestLcdWorkerThread::startBehindTheEnd()
{
    // The loop is over as soon as `stopped` is set, its thread a little later: a start between the two counts.
    Worker worker(control.get());
    worker.setEnableLCD(false);
    for (int start = 1; start <= 300; ++start) {
        worker.startSending();
        QElapsedTimer waited;
        waited.start();
        while (!worker.isStopped() && waited.elapsed() < kPatienceMs)
            QThread::yieldCurrentThread();
        QCOMPARE(lcdCommands(*driver).size(), start);
    }
}

void TestLcdWorkerThread::refusedFramesGoOn()
{
    loseController();
    DrivenWorker worker(control.get());
    ResultReceiver receiver;
    connect(&worker, SIGNAL(sendDataToLCDResult(bool)), &receiver, SLOT(take(bool)));
    worker.startSending();
    QVERIFY(worker.reachesSleep());
    for (int second = 0; second < 24; ++second)
        QVERIFY(worker.tick());
    QVERIFY(worker.isRunning());
    QCOMPARE(commands(), times(10, kClock) + times(11, kTemperature) + times(4, kMemory));
    QTRY_COMPARE(receiver.results.size(), 25);
    QVERIFY(!receiver.results.contains(true));
}

void TestLcdWorkerThread::withoutACard()
{
    Worker worker(nullptr);
    worker.setLCDCurrentDisplayMode(LcdDisplayMemory);
    worker.startSending();
    QVERIFY(worker.wait(kPatienceMs));
    QVERIFY(worker.isStopped());
    QCOMPARE(driver->calls(), QStringList());
    worker.startSending(); // may be tried again
    QVERIFY(worker.wait(kPatienceMs));
    QVERIFY(worker.isStopped());
}

void TestLcdWorkerThread::slotsWaitForARunningPassOnly_data()
{
    QTest::addColumn<int>("slot");
    QTest::newRow("setAutoSwitch") << 0;
    QTest::newRow("manualSwitch") << 1;
    QTest::newRow("setEnableLCD") << 2;
    QTest::newRow("setLCDCurrentDisplayMode") << 3;
    QTest::newRow("startSending") << 4;
}

void TestLcdWorkerThread::slotsWaitForARunningPassOnly()
{
    QFETCH(int, slot);
    const std::function<void(Worker &)> slotCalls[] = {
        [](Worker &worker) { worker.setAutoSwitch(true, 5); },
        [](Worker &worker) { worker.manualSwitch(); },
        [](Worker &worker) { worker.setEnableLCD(true); },
        [](Worker &worker) { worker.setLCDCurrentDisplayMode(LcdDisplayMemory); },
        [](Worker &worker) { worker.startSending(); },
    };
    const std::function<void(Worker &)> callSlot = slotCalls[slot];

    QSemaphore inPass;
    QSemaphore release;
    driver->onCall(Operation::NvAPI_GPU_GetThermalSettings, [&] {
        inPass.release();
        release.acquire();
    });
    DrivenWorker worker(control.get());
    worker.startSending();
    QVERIFY(inPass.tryAcquire(1, kPatienceMs));
    std::unique_ptr<QThread> caller(QThread::create([&] { callSlot(worker); }));
    caller->start();
    QVERIFY(!caller->wait(50)); // the pass holds the mutex
    release.release(1000000);
    QVERIFY(caller->wait(kPatienceMs)); // the loop sleeps until the test says so
    QVERIFY(worker.reachesSleep());
}

void TestLcdWorkerThread::destructionWaitsForASlowCall()
{
    // One call slower than the 2000 ms that the destructor grants the thread: only the mutex can have kept the frame
    // from being cut off. No other frame follows it.
    QSemaphore inPass;
    std::atomic<bool> slow{true};
    driver->onCall(Operation::NvAPI_GPU_GetThermalSettings, [&] {
        inPass.release();
        if (slow.exchange(false))
            QThread::msleep(2300);
    });
    auto worker = std::make_unique<Worker>(control.get(), nullptr, 1);
    worker->startSending();
    QVERIFY(inPass.tryAcquire(1, kPatienceMs));
    worker.reset();
    QCOMPARE(commands(), times(1, kClock));
    control.reset();
    QCOMPARE(driver->strayCalls(), 0);
}

void TestLcdWorkerThread::destroyedInEveryState_data()
{
    QTest::addColumn<bool>("start");
    QTest::addColumn<bool>("enable");
    QTest::addColumn<bool>("controller");

    QTest::newRow("idle") << false << true << true;
    QTest::newRow("running") << true << true << true;
    QTest::newRow("running without a controller") << true << true << false;
    QTest::newRow("ended by itself") << true << false << true;
}

void TestLcdWorkerThread::destroyedInEveryState()
{
    QFETCH(bool, start);
    QFETCH(bool, enable);
    QFETCH(bool, controller);
    if (!controller)
        loseController();
    QElapsedTimer took;
    {
        Worker worker(control.get(), nullptr, 20);
        worker.setEnableLCD(enable);
        if (start) {
            worker.startSending();
            QTRY_VERIFY(!commands().isEmpty());
        }
        took.start();
    }
    QVERIFY(took.elapsed() < 2000); // it went by itself
    control.reset();
    QCOMPARE(driver->strayCalls(), 0); // nobody asked a card that was gone
}

void TestLcdWorkerThread::twoCardsShareTheSequence()
{
    simulated::Scenario scene = simulated::builtInScenario();
    scene.cards.back() = scene.cards.front();
    useScene(scene);
    NvGpuControl second;
    second.setCurrentGpu(1);
    driver->forgetCalls();
    {
        DrivenWorker onFirst(control.get());
        DrivenWorker onSecond(&second);
        onSecond.setAutoSwitch(true, 3);
        onFirst.startSending();
        QVERIFY(onFirst.reachesSleep());
        onSecond.startSending();
        QVERIFY(onSecond.reachesSleep());
        for (int tick = 1; tick < 150; ++tick) {
            QVERIFY(onFirst.tick());
            QVERIFY(onSecond.tick());
        }
        const QList<QByteArray> frames = lcdFrames(*driver);
        QCOMPARE(frames.size(), 300);
        const int begin = quint8(frames.first().at(2));
        for (int i = 0; i < frames.size(); ++i)
            QCOMPARE(int(quint8(frames.at(i).at(2))), (begin + i) & 0xFF);

        // each card rotates by its own time
        const QList<int> first = lcdCommands(*driver, 0);
        QCOMPARE(QList<int>(first.mid(0, 54)), times(10, kClock) + times(11, kTemperature) + times(11, kMemory) +
                                                   times(11, kOther) + times(11, kClock));
        const QList<int> other = lcdCommands(*driver, 1);
        QCOMPARE(QList<int>(other.mid(0, 19)),
                 times(3, kClock) + times(4, kTemperature) + times(4, kMemory) + times(4, kOther) + times(4, kClock));
    }
}

QTEST_GUILESS_MAIN(TestLcdWorkerThread)
#include "TestLcdWorkerThread.moc"
