#include "board/led/Ovryn_SendColorToLed.h"
#include "device/NvGpuControl.h"
#include "support/CheckedDriver.h"

#include <QElapsedTimer>
#include <QSemaphore>
#include <QtTest>

#include <atomic>
#include <memory>

/// The State-Display worker, pass by pass without a thread and then with one.
class TestLedWorker : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void courseOfTemperatures_data();
    void courseOfTemperatures();
    void failingSensorPaintsGreen();
    void refusedFrameIsNotSentAgain();
    void frameGoesThroughTheControllersTransport();
    void defaultPause();
    void idleUntilStarted();
    void startRuns();
    void startWhileRunningSendsOnceMore();
    void stopEndsBehindOneMorePass();
    void startWhileEndingRunsOn();
    void refusedFrameEndsTheLoop();
    void deadWorkerDoesNotStart();
    void deadWorkerRevivesByAStop();
    void stopOfAnIdleWorker();
    void withoutACard();
    void stopWaitsForARunningPassOnly();
    void destroyedInEveryState_data();
    void destroyedInEveryState();

private:
    static constexpr unsigned int kPauseMs = 1;
    static constexpr unsigned int kLongPauseMs = 400; // long enough to be met while it lasts

    static constexpr quint8 kLedAddress = 0xA0;

    void setTemperature(int degrees)
    {
        driver->edit(0, [degrees](simulated::Card &card) { card.state.temperatureC = degrees; });
    }
    void loseController()
    {
        driver->edit(0, [](simulated::Card &card) { card.led.reset(); });
    }
    void returnController()
    {
        driver->edit(0, [](simulated::Card &card) { card.led.emplace(quint8(3)); });
    }
    [[nodiscard]] QStringList frames() const { return driver->frames(kLedAddress); }
    [[nodiscard]] int passes() const { return driver->calls(Operation::NvAPI_GPU_GetThermalSettings).size(); }

    std::unique_ptr<CheckedDriver> driver;
    std::unique_ptr<NvGpuControl> control;
};

namespace
{

const QString kGreen = QStringLiteral("08 01 32 04 00 FF 00 C1");
const QString kYellow = QStringLiteral("08 01 32 04 FF FF 00 C2");
const QString kRed = QStringLiteral("08 01 32 04 FF 00 00 C1");
const QString kQuickRed = QStringLiteral("08 01 32 02 FF 00 00 C3");

} // namespace

void TestLedWorker::init()
{
    driver = std::make_unique<CheckedDriver>();
    control = std::make_unique<NvGpuControl>();
    driver->forgetCalls();
    setTemperature(40);
}

void TestLedWorker::cleanup()
{
    control.reset();
    driver.reset();
}

void TestLedWorker::courseOfTemperatures_data()
{
    QTest::addColumn<QList<int>>("degrees");
    QTest::addColumn<QStringList>("sent");

    using Course = QList<int>;
    QTest::newRow("below 50") << Course{49} << QStringList{kGreen};
    QTest::newRow("exactly 50") << Course{50} << QStringList{kYellow};
    QTest::newRow("exactly 64") << Course{64} << QStringList{kRed};
    QTest::newRow("exactly 68") << Course{68} << QStringList{kQuickRed};
    QTest::newRow("one band sends once") << Course{30, 49, 12} << QStringList{kGreen};
    QTest::newRow("each band once") << Course{40, 55, 66} << QStringList{kGreen, kYellow, kRed};
    QTest::newRow("from the first red on nothing more") << Course{55, 64, 68, 90} << QStringList{kYellow, kRed};
    QTest::newRow("a jump to 68 is quick") << Course{63, 68} << QStringList{kYellow, kQuickRed};
    QTest::newRow("cooling from the quick red keeps it") << Course{70, 66} << QStringList{kQuickRed};
    QTest::newRow("back and forth") << Course{70, 40, 66, 40} << QStringList{kQuickRed, kGreen, kRed, kGreen};
}

void TestLedWorker::courseOfTemperatures()
{
    QFETCH(QList<int>, degrees);
    Ovryn_SendColorToLed worker(control.get());
    for (int temperature : degrees) {
        setTemperature(temperature);
        QVERIFY(worker.showStateOnce());
    }
    QTEST(frames(), "sent");
}

void TestLedWorker::failingSensorPaintsGreen()
{
    Ovryn_SendColorToLed worker(control.get());
    setTemperature(90);
    QVERIFY(worker.showStateOnce());
    driver->fails(Operation::NvAPI_GPU_GetThermalSettings, NVAPI_ERROR);
    QVERIFY(worker.showStateOnce());
    QCOMPARE(frames(), QStringList({kQuickRed, kGreen}));
}

void TestLedWorker::refusedFrameIsNotSentAgain()
{
    Ovryn_SendColorToLed worker(control.get());
    loseController();
    QVERIFY(!worker.showStateOnce());
    const int sent = frames().size();
    QVERIFY(worker.showStateOnce()); // the colour counts as sent: there is no retry
    QCOMPARE(frames().size(), sent);
}

void TestLedWorker::frameGoesThroughTheControllersTransport()
{
    Ovryn_SendColorToLed worker(control.get());
    QVERIFY(worker.showStateOnce());
    const QStringList calls = driver->calls();
    QCOMPARE(calls.size(), 2); // first read, then send
    QVERIFY(calls.first().startsWith(QLatin1String("GPU_GetThermalSettings gpu0")));
    QCOMPARE(calls.last(), QString("I2CWrite gpu0 port 1 0xA0: 08 01 32 04 00 FF 00 C1"));
}

void TestLedWorker::defaultPause()
{
    QCOMPARE(Ovryn_SendColorToLed::kSleepMs, 1000U);
}

void TestLedWorker::idleUntilStarted()
{
    Ovryn_SendColorToLed worker(control.get());
    QVERIFY(worker.isStopped());
    QVERIFY(!worker.isRunning());
    QVERIFY(!worker.isFinished());
    QCOMPARE(driver->calls(), QStringList());
}

void TestLedWorker::startRuns()
{
    Ovryn_SendColorToLed worker(control.get(), nullptr, kPauseMs);
    worker.startStateDisplay();
    QVERIFY(!worker.isStopped());
    QTRY_VERIFY(passes() > 3);
    QVERIFY(worker.isRunning());
    QCOMPARE(frames(), QStringList(kGreen));
}

void TestLedWorker::startWhileRunningSendsOnceMore()
{
    Ovryn_SendColorToLed worker(control.get(), nullptr, kPauseMs);
    worker.startStateDisplay();
    QTRY_COMPARE(frames().size(), 1);
    worker.startStateDisplay();
    QTRY_COMPARE(frames(), QStringList({kGreen, kGreen}));
    const int before = passes();
    QTRY_VERIFY(passes() > before + 3);
    QCOMPARE(frames().size(), 2);
}

void TestLedWorker::stopEndsBehindOneMorePass()
{
    Ovryn_SendColorToLed worker(control.get(), nullptr, kLongPauseMs);
    worker.startStateDisplay();
    QTRY_COMPARE(passes(), 1);
    worker.stopStateDisplay();
    QVERIFY(worker.isStopped());
    QVERIFY(worker.wait());
    QCOMPARE(passes(), 2); // the flag is looked at behind the pass
    QVERIFY(worker.isStopped());
    worker.startStateDisplay(); // idle again
    QTRY_VERIFY(passes() > 2);
    QTRY_COMPARE(frames(), QStringList({kGreen, kGreen}));
}

void TestLedWorker::startWhileEndingRunsOn()
{
    Ovryn_SendColorToLed worker(control.get(), nullptr, kLongPauseMs);
    worker.startStateDisplay();
    QTRY_COMPARE(passes(), 1);
    worker.stopStateDisplay();
    worker.startStateDisplay(); // it still sleeps
    QTRY_VERIFY(passes() > 3);
    QVERIFY(worker.isRunning());
    QCOMPARE(frames(), QStringList({kGreen, kGreen}));
}

void TestLedWorker::refusedFrameEndsTheLoop()
{
    Ovryn_SendColorToLed worker(control.get(), nullptr, kPauseMs);
    worker.startStateDisplay();
    QTRY_COMPARE(frames().size(), 1);
    loseController();
    setTemperature(55);
    QVERIFY(worker.wait(5000));
    QVERIFY(worker.isFinished());
    QVERIFY(!worker.isStopped()); // dead
}

void TestLedWorker::deadWorkerDoesNotStart()
{
    Ovryn_SendColorToLed worker(control.get(), nullptr, kPauseMs);
    loseController();
    worker.startStateDisplay();
    QVERIFY(worker.wait(5000));
    const int before = passes();
    returnController();
    worker.startStateDisplay();
    QVERIFY(worker.isFinished());
    QVERIFY(!worker.isRunning());
    QCOMPARE(passes(), before);
}

void TestLedWorker::deadWorkerRevivesByAStop()
{
    Ovryn_SendColorToLed worker(control.get(), nullptr, kPauseMs);
    loseController();
    worker.startStateDisplay();
    QVERIFY(worker.wait(5000));
    returnController();
    driver->forgetCalls();
    worker.stopStateDisplay();
    QVERIFY(worker.isStopped());
    worker.startStateDisplay();
    QTRY_COMPARE(frames(), QStringList(kGreen));
    QVERIFY(worker.isRunning());
}

void TestLedWorker::stopOfAnIdleWorker()
{
    Ovryn_SendColorToLed worker(control.get(), nullptr, kPauseMs);
    worker.stopStateDisplay();
    QVERIFY(worker.wait());
    QVERIFY(worker.isStopped());
    QVERIFY(!worker.isFinished()); // never ran
}

void TestLedWorker::withoutACard()
{
    Ovryn_SendColorToLed worker(nullptr, nullptr, kPauseMs);
    worker.startStateDisplay();
    QVERIFY(worker.wait(5000));
    QVERIFY(worker.isStopped());
    QCOMPARE(driver->calls(), QStringList());
}

void TestLedWorker::stopWaitsForARunningPassOnly()
{
    QSemaphore gate;
    std::atomic<bool> inPass{false};
    driver->onCall(Operation::NvAPI_GPU_GetThermalSettings, [&] {
        inPass = true;
        gate.acquire();
    });
    Ovryn_SendColorToLed worker(control.get(), nullptr, 1500);
    worker.startStateDisplay();
    QTRY_VERIFY(inPass);
    std::atomic<bool> stopped{false};
    std::unique_ptr<QThread> caller(QThread::create([&] {
        worker.stopStateDisplay();
        stopped = true;
    }));
    caller->start();
    QVERIFY(!caller->wait(50)); // the pass holds the mutex
    QVERIFY(!stopped);
    gate.release(10); // also for the pass behind that sleep
    QVERIFY(caller->wait(5000));
    QCOMPARE(passes(), 1); // it came into the sleep behind that pass
}

void TestLedWorker::destroyedInEveryState_data()
{
    QTest::addColumn<bool>("start");
    QTest::addColumn<bool>("stop");
    QTest::addColumn<bool>("controller");

    QTest::newRow("idle") << false << false << true;
    QTest::newRow("running") << true << false << true;
    QTest::newRow("ending") << true << true << true;
    QTest::newRow("dead") << true << false << false;
}

void TestLedWorker::destroyedInEveryState()
{
    QFETCH(bool, start);
    QFETCH(bool, stop);
    QFETCH(bool, controller);
    if (!controller)
        loseController();
    QElapsedTimer took;
    {
        Ovryn_SendColorToLed worker(control.get(), nullptr, 20);
        if (start) {
            worker.startStateDisplay();
            QTRY_VERIFY(!frames().isEmpty());
        }
        if (stop)
            worker.stopStateDisplay();
        took.start();
    }
    QVERIFY(took.elapsed() < 2000); // it went by itself
    control.reset();
    QCOMPARE(driver->strayCalls(), 0); // nobody asked a card that was gone
}

QTEST_GUILESS_MAIN(TestLedWorker)
#include "TestLedWorker.moc"
