#include "board/LcdJournal.h"
#include "board/Ovryn_SendNvInfoToLCDThread.h"
#include "device/NvGpuControl.h"

#include <QElapsedTimer>
#include <QSemaphore>
#include <QtTest>

#include <atomic>
#include <functional>
#include <limits>
#include <memory>

namespace
{

using Worker = Ovryn_SendNvInfoToLCDThread;

constexpr int kPatienceMs = 10000;

constexpr int kClock = 0x80;
constexpr int kTemperature = 0x40;
constexpr int kMemory = 0x20;
constexpr int kOther = 0x10;
constexpr int kOff = 0xF0;

/// A worker whose sleeps end when the test says so: no second of it is waited for.
class DrivenWorker : public Worker
{
public:
    using Worker::Worker;
    ~DrivenWorker() override
    {
        ticks.release(1000000);
        endThread();
    }

    void endSleep() { ticks.release(); }
    /// Lets one sleep end and waits for the next; false when none comes.
    bool tick()
    {
        endSleep();
        return reachesSleep();
    }
    bool reachesSleep() { return sleeps.tryAcquire(1, kPatienceMs); }
    [[nodiscard]] unsigned int lastPauseMs() const { return pauseMs; }

    [[nodiscard]] quint32 switchTimeMs()
    {
        QMutexLocker held(&mutex);
        return switchMs;
    }
    [[nodiscard]] quint32 timeOnPageMs()
    {
        QMutexLocker held(&mutex);
        return elapsedMs;
    }

protected:
    void pause(QMutexLocker &held, unsigned int ms) override
    {
        pauseMs = ms;
        held.unlock();
        sleeps.release();
        ticks.acquire();
        held.relock();
    }

private:
    QSemaphore ticks;
    QSemaphore sleeps;
    std::atomic<unsigned int> pauseMs{0};
};

/// Collects what a worker tells.
class ResultReceiver : public QObject
{
    Q_OBJECT

public:
    QList<bool> results;

public slots:
    void take(bool success) { results << success; }
};

QList<int> times(int count, int command)
{
    QList<int> commands;
    for (int i = 0; i < count; ++i)
        commands << command;
    return commands;
}

} // namespace

/// The LCD worker, pass by pass without a thread and then with one.
class TestSendNvInfoToLcdThread : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
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

private:
    void loseController() { driver->card().i2cListeners.remove(0xAC); }
    [[nodiscard]] QList<int> commands() const { return lcdCommands(*driver); }
    static void pass(Worker &worker, int count)
    {
        for (int i = 0; i < count; ++i)
            worker.sendFrameOnce();
    }
    QList<int> takeCommands()
    {
        const QList<int> sent = commands();
        driver->forgetCalls();
        return sent;
    }

    std::unique_ptr<FakeDriver> driver;
    std::unique_ptr<NvGpuControl> control;
};

void TestSendNvInfoToLcdThread::init()
{
    driver = std::make_unique<FakeDriver>();
    control = std::make_unique<NvGpuControl>();
    driver->forgetCalls();
}

void TestSendNvInfoToLcdThread::cleanup()
{
    control.reset();
    driver.reset();
}

void TestSendNvInfoToLcdThread::cadence_data()
{
    QTest::addColumn<int>("seconds");
    QTest::newRow("10 seconds, eleven frames a page") << 10;
    QTest::newRow("1 second, two frames a page") << 1;
    QTest::newRow("7 seconds, eight frames a page") << 7;
    QTest::newRow("30 seconds, 31 frames a page") << 30;
}

void TestSendNvInfoToLcdThread::cadence()
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

void TestSendNvInfoToLcdThread::switchTime_data()
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

void TestSendNvInfoToLcdThread::switchTime()
{
    QFETCH(bool, automatic);
    QFETCH(int, seconds);
    DrivenWorker worker(control.get());
    QCOMPARE(worker.switchTimeMs(), 10000u);
    worker.setAutoSwitch(automatic, seconds);
    QTEST(worker.switchTimeMs(), "ms");
}

void TestSendNvInfoToLcdThread::switchTimeHasADefault()
{
    DrivenWorker worker(control.get());
    worker.setAutoSwitch(true, 3);
    worker.setAutoSwitch(true);
    QCOMPARE(worker.switchTimeMs(), 10000u);
}

void TestSendNvInfoToLcdThread::changeOfTheSwitchTimeBeginsThePageAnew()
{
    Worker worker(control.get());
    pass(worker, 9);
    worker.setAutoSwitch(true, 3);
    pass(worker, 4);
    QCOMPARE(commands(), times(12, kClock) + times(1, kTemperature));
}

void TestSendNvInfoToLcdThread::manualPagesStandStill()
{
    DrivenWorker worker(control.get());
    pass(worker, 4);
    worker.setAutoSwitch(false, 1);
    pass(worker, 40);
    QCOMPARE(commands(), times(44, kClock));
    QCOMPARE(worker.timeOnPageMs(), 4000u); // not touched
}

void TestSendNvInfoToLcdThread::manualSwitchTurnsThePages()
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

void TestSendNvInfoToLcdThread::manualSwitchWhileAutomaticDoesNothing()
{
    DrivenWorker worker(control.get());
    pass(worker, 2);
    worker.manualSwitch();
    QCOMPARE(worker.timeOnPageMs(), 2000u);
    pass(worker, 9);
    QCOMPARE(commands(), times(10, kClock) + times(1, kTemperature));
}

void TestSendNvInfoToLcdThread::unknownModeIsFollowedByOther_data()
{
    QTest::addColumn<int>("mode");
    QTest::newRow("no bit") << 0;
    QTest::newRow("two bits") << 0xC0;
    QTest::newRow("a bit that is no page") << 0x08;
    QTest::newRow("the command of an LCD that is off") << kOff;
}

void TestSendNvInfoToLcdThread::unknownModeIsFollowedByOther()
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

void TestSendNvInfoToLcdThread::pageChosenIsSentAtOnce()
{
    Worker worker(control.get());
    Qt::HANDLE sender = nullptr;
    driver->onCall("NvAPI_I2CWrite", [&] { sender = QThread::currentThreadId(); });
    worker.setLCDCurrentDisplayMode(LcdDisplayMemory);
    QCOMPARE(commands(), QList<int>{kMemory});
    QCOMPARE(sender, QThread::currentThreadId());
    QVERIFY(worker.isStopped()); // and nothing was started for it
}

void TestSendNvInfoToLcdThread::pageChosenStaysForAWholeTime()
{
    Worker worker(control.get());
    pass(worker, 7);
    driver->forgetCalls();
    worker.setLCDCurrentDisplayMode(LcdDisplayTemperature);
    pass(worker, 11);
    QCOMPARE(commands(), times(11, kTemperature) + times(1, kMemory));
}

void TestSendNvInfoToLcdThread::pageChosenWhileOffKeepsItDark()
{
    Worker worker(control.get());
    worker.setEnableLCD(false);
    worker.setLCDCurrentDisplayMode(LcdDisplayTemperature);
    QCOMPARE(commands(), QList<int>{kOff});
    worker.setEnableLCD(true);
    worker.sendFrameOnce();
    QCOMPARE(commands(), QList<int>({kOff, kTemperature}));
}

void TestSendNvInfoToLcdThread::pageChosenIsNotReported()
{
    Worker worker(control.get());
    ResultReceiver receiver;
    connect(&worker, SIGNAL(sendDataToLCDResult(bool)), &receiver, SLOT(take(bool)));
    worker.setLCDCurrentDisplayMode(LcdDisplayTemperature);
    QCOMPARE(commands().size(), 1);
    QCOMPARE(receiver.results, QList<bool>());
}

void TestSendNvInfoToLcdThread::everyFrameGoesThroughTheControllersTransport()
{
    Worker worker(control.get());
    worker.sendFrameOnce();
    const QString call = driver->calls().constLast(); // first the readings, then the frame
    QVERIFY2(call.startsWith(QLatin1String("I2CWrite gpu0 0x3002C addr=AC reg=00 regSize=0 size=35 speed=FFFF/6 "
                                           "port=1/1 data=AA 88 ")),
             qPrintable(call));
    const QByteArray frame = lcdFrames(*driver).constLast();
    QCOMPARE(frame.size(), 35);
    QCOMPARE(QString(frame.mid(3, 30).toHex(' ').toUpper()), QString("80 " // clock page
                                                                     "00 00 80 00 47 06 50 00 48 0D "
                                                                     "01 00 07 00 01 00 00 "
                                                                     "00 00 20 00 B9 06 34 00 B0 04 00 00"));
}

void TestSendNvInfoToLcdThread::resultOfEachFrame()
{
    Worker worker(control.get());
    ResultReceiver receiver;
    connect(&worker, SIGNAL(sendDataToLCDResult(bool)), &receiver, SLOT(take(bool)));
    pass(worker, 2);
    loseController();
    pass(worker, 2);
    driver->card().i2cListeners.insert(0xAC);
    pass(worker, 1);
    QCOMPARE(receiver.results, QList<bool>({true, true, false, false, true}));
}

void TestSendNvInfoToLcdThread::enableStartsNothing()
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

void TestSendNvInfoToLcdThread::idleUntilStarted()
{
    Worker worker(control.get());
    QVERIFY(worker.isStopped());
    QVERIFY(!worker.isRunning());
    QVERIFY(!worker.isFinished());
    QCOMPARE(driver->calls(), QStringList());
}

void TestSendNvInfoToLcdThread::startRuns()
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

void TestSendNvInfoToLcdThread::startWhileRunningDoesNothing()
{
    DrivenWorker worker(control.get());
    worker.startSending();
    QVERIFY(worker.reachesSleep());
    worker.startSending();
    QVERIFY(worker.tick());
    QCOMPARE(commands().size(), 2);
}

void TestSendNvInfoToLcdThread::frameASecond()
{
    DrivenWorker worker(control.get());
    worker.startSending();
    QVERIFY(worker.reachesSleep());
    QCOMPARE(worker.lastPauseMs(), 1000u);
}

void TestSendNvInfoToLcdThread::offEndsTheLoopBehindOneFrame()
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

void TestSendNvInfoToLcdThread::offAndOnAgainBeforeTheNextFrame()
{
    DrivenWorker worker(control.get());
    worker.startSending();
    QVERIFY(worker.reachesSleep());
    worker.setEnableLCD(false);
    worker.setEnableLCD(true);
    QVERIFY(worker.tick());
    QCOMPARE(commands(), QList<int>({kClock, kClock}));
}

void TestSendNvInfoToLcdThread::startWhileOffSendsOneFrame()
{
    Worker worker(control.get());
    worker.setEnableLCD(false);
    for (int start = 1; start <= 3; ++start) {
        worker.startSending();
        QTRY_VERIFY(worker.isStopped());
        QCOMPARE(commands(), times(start, kOff));
    }
}

void TestSendNvInfoToLcdThread::startBehindTheEnd()
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

void TestSendNvInfoToLcdThread::refusedFramesGoOn()
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

void TestSendNvInfoToLcdThread::withoutACard()
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

void TestSendNvInfoToLcdThread::slotsWaitForARunningPassOnly_data()
{
    QTest::addColumn<int>("slot");
    QTest::newRow("setAutoSwitch") << 0;
    QTest::newRow("manualSwitch") << 1;
    QTest::newRow("setEnableLCD") << 2;
    QTest::newRow("setLCDCurrentDisplayMode") << 3;
    QTest::newRow("startSending") << 4;
}

void TestSendNvInfoToLcdThread::slotsWaitForARunningPassOnly()
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
    driver->onCall("NvAPI_GPU_GetThermalSettings", [&] {
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

void TestSendNvInfoToLcdThread::destructionWaitsForASlowCall()
{
    // One call slower than the 2000 ms that the destructor grants the thread: only the mutex can have kept the frame
    // from being cut off. The stop is seen behind the next frame.
    QSemaphore inPass;
    std::atomic<bool> slow{true};
    driver->onCall("NvAPI_GPU_GetThermalSettings", [&] {
        inPass.release();
        if (slow.exchange(false))
            QThread::msleep(2300);
    });
    auto worker = std::make_unique<Worker>(control.get(), nullptr, 1);
    worker->startSending();
    QVERIFY(inPass.tryAcquire(1, kPatienceMs));
    worker.reset();
    QCOMPARE(commands(), times(2, kClock));
    control.reset();
    QCOMPARE(driver->strayCalls(), 0);
}

void TestSendNvInfoToLcdThread::destroyedInEveryState_data()
{
    QTest::addColumn<bool>("start");
    QTest::addColumn<bool>("enable");
    QTest::addColumn<bool>("controller");

    QTest::newRow("idle") << false << true << true;
    QTest::newRow("running") << true << true << true;
    QTest::newRow("running without a controller") << true << true << false;
    QTest::newRow("ended by itself") << true << false << true;
}

void TestSendNvInfoToLcdThread::destroyedInEveryState()
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

void TestSendNvInfoToLcdThread::twoCardsShareTheSequence()
{
    driver->cards.resize(2);
    control = std::make_unique<NvGpuControl>();
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
        const QList<int> first = lcdCommands(*driver, "gpu0");
        QCOMPARE(QList<int>(first.mid(0, 54)), times(10, kClock) + times(11, kTemperature) + times(11, kMemory) +
                                                   times(11, kOther) + times(11, kClock));
        const QList<int> other = lcdCommands(*driver, "gpu1");
        QCOMPARE(QList<int>(other.mid(0, 19)),
                 times(3, kClock) + times(4, kTemperature) + times(4, kMemory) + times(4, kOther) + times(4, kClock));
    }
}

QTEST_GUILESS_MAIN(TestSendNvInfoToLcdThread)
#include "TestSendNvInfoToLcdThread.moc"
