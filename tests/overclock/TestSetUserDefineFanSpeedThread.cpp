#include "overclock/Ovryn_SetUserDefineFanSpeedThread.h"

#include "device/NvGpuControl.h"
#include "support/CheckedDriver.h"

#include <QElapsedTimer>
#include <QTest>

#include <atomic>
#include <memory>

using Curve = QList<QPoint>;

/// The fan worker, cycle by cycle without a thread and then with one.
class TestSetUserDefineFanSpeedThread : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void oneCycle_data();
    void oneCycle();
    void cycleOrdersAnUnchangedLevelAgain();
    void levelBelowTheCoolersLowest();
    void unreadTemperature_data();
    void unreadTemperature();
    void refusedLevelIsIgnored();
    void defaultInterval();
    void notStartedByItself();
    void startAndStop();
    void secondStartDoesNothing();
    void stopWithoutAStart();
    void stopSeesOneMoreLevel();
    void startAfterAStopWithoutAnEnd();
    void withoutACard();
    void startAsSoonAsTheLoopIsOver();
    void curveReplacedWhileRunning();
    void replacingNeverWaitsForTheSleep();
    void destroyedWhileRunning_data();
    void destroyedWhileRunning();
    void startedAndStoppedAThousandTimes();

private:
    void setTemperature(int degrees)
    {
        driver->edit(0, [degrees](simulated::Card &card) { card.state.temperatureC = degrees; });
    }
    void setLowestLevel(int percent)
    {
        driver->edit(0, [percent](simulated::Card &card) { card.parameters.fan.minimumPercent = percent; });
    }
    void setSensorTarget(int target)
    {
        driver->edit(0, [target](simulated::Card &card) { card.parameters.thermal.sensorTargets = {target}; });
    }
    [[nodiscard]] QStringList levels() const { return driver->orders(); }

    std::unique_ptr<CheckedDriver> driver;
    std::unique_ptr<NvGpuControl> control;
};

namespace
{

constexpr unsigned int kTestIntervalMs = 1;

QString levelLine(int level)
{
    return QStringLiteral("fan %1 % manual").arg(level);
}

} // namespace

void TestSetUserDefineFanSpeedThread::init()
{
    driver = std::make_unique<CheckedDriver>();
    setLowestLevel(0); // so that every level of a curve goes out as it is
    control = std::make_unique<NvGpuControl>();
    driver->forgetCalls();
}

void TestSetUserDefineFanSpeedThread::cleanup()
{
    control.reset();
    driver.reset();
}

void TestSetUserDefineFanSpeedThread::oneCycle_data()
{
    QTest::addColumn<Curve>("curve"); // none: as the worker was made
    QTest::addColumn<int>("temperature");
    QTest::addColumn<int>("level");

    QTest::newRow("new worker at 0") << Curve{} << 0 << 0;
    QTest::newRow("new worker at 30") << Curve{} << 30 << 20;
    QTest::newRow("new worker at 31") << Curve{} << 31 << 21;
    QTest::newRow("new worker at 40") << Curve{} << 40 << 35;
    QTest::newRow("new worker at 65") << Curve{} << 65 << 70;
    QTest::newRow("new worker at 100") << Curve{} << 100 << 100;
    QTest::newRow("120 degrees") << Curve{} << 120 << 100;
    QTest::newRow("-5 degrees") << Curve{} << -5 << 0;
    QTest::newRow("-5 degrees on a curve that starts with a step") << Curve{{0, 0}, {0, 30}, {100, 100}} << -5 << 30;
    QTest::newRow("own curve") << Curve{{0, 0}, {100, 100}} << 52 << 52;
    QTest::newRow("29 degrees on the straight line") << Curve{{0, 0}, {100, 100}} << 29 << 28;
    QTest::newRow("step in the middle") << Curve{{0, 0}, {50, 40}, {50, 60}, {100, 100}} << 50 << 40;
    QTest::newRow("step at the start") << Curve{{0, 0}, {0, 30}, {100, 100}} << 0 << 30;
    QTest::newRow("one node becomes the default curve") << Curve{{0, 0}} << 40 << 35;
    QTest::newRow("last node (100,90) becomes the default curve") << Curve{{0, 0}, {100, 90}} << 40 << 35;
    QTest::newRow("first node (0,10) becomes the default curve") << Curve{{0, 10}, {100, 100}} << 40 << 35;
    QTest::newRow("middle nodes aren't checked") << Curve{{0, 0}, {80, 10}, {20, 5}, {100, 100}} << 40 << 5;
}

void TestSetUserDefineFanSpeedThread::oneCycle()
{
    QFETCH(Curve, curve);
    QFETCH(int, temperature);
    QFETCH(int, level);
    Ovryn_SetUserDefineFanSpeedThread worker(control.get());
    if (!curve.isEmpty()) {
        worker.setTemperatureToFanSpeedData({{0, 0}, {1, 99}, {100, 100}}); // so that a refused list shows
        worker.setTemperatureToFanSpeedData(curve);
    }
    setTemperature(temperature);
    worker.followCurveOnce();
    QCOMPARE(levels(), QStringList(levelLine(level)));
    QVERIFY(driver->calls().first().startsWith("GPU_GetThermalSettings gpu0")); // first read, then order
}

void TestSetUserDefineFanSpeedThread::cycleOrdersAnUnchangedLevelAgain()
{
    Ovryn_SetUserDefineFanSpeedThread worker(control.get());
    setTemperature(40);
    worker.followCurveOnce();
    worker.followCurveOnce();
    setTemperature(41); // no hysteresis: one degree is enough
    worker.followCurveOnce();
    QCOMPARE(levels(), QStringList({levelLine(35), levelLine(35), levelLine(36)}));
}

void TestSetUserDefineFanSpeedThread::levelBelowTheCoolersLowest()
{
    setLowestLevel(30);
    Ovryn_SetUserDefineFanSpeedThread worker(control.get());
    setTemperature(0);
    worker.followCurveOnce();
    setTemperature(31); // 21 percent on the curve
    worker.followCurveOnce();
    setTemperature(40);
    worker.followCurveOnce();
    QCOMPARE(levels(), QStringList({levelLine(30), levelLine(30), levelLine(35)}));
}

void TestSetUserDefineFanSpeedThread::unreadTemperature_data()
{
    QTest::addColumn<int>("sensorTarget");
    QTest::addColumn<int>("failingCalls");

    QTest::newRow("the read fails for two cycles") << int(kThermalTargetGpu) << 4; // at both record versions
    QTest::newRow("no sensor sits on the GPU") << 2 << 0;
}

void TestSetUserDefineFanSpeedThread::unreadTemperature()
{
    QFETCH(int, sensorTarget);
    QFETCH(int, failingCalls);
    const QString handedBack = "fan 0 % automatic";
    Ovryn_SetUserDefineFanSpeedThread worker(control.get());
    setTemperature(70);
    worker.followCurveOnce();
    setSensorTarget(sensorTarget);
    if (failingCalls)
        driver->fails(Operation::NvAPI_GPU_GetThermalSettings, NVAPI_ERROR, 1, failingCalls);
    worker.followCurveOnce();
    worker.followCurveOnce();
    setSensorTarget(kThermalTargetGpu);
    worker.followCurveOnce();
    // 76 percent at 70 degrees; the driver has the fan while nobody knows how hot the card is
    QCOMPARE(levels(), QStringList({levelLine(76), handedBack, handedBack, levelLine(76)}));
}

void TestSetUserDefineFanSpeedThread::refusedLevelIsIgnored()
{
    Ovryn_SetUserDefineFanSpeedThread worker(control.get());
    setTemperature(40);
    driver->fails(Operation::NvAPI_GPU_SetCoolerLevels, NVAPI_INVALID_ARGUMENT, 1, 2); // at both record versions
    worker.followCurveOnce();
    driver->forgetCalls();
    worker.followCurveOnce();
    QCOMPARE(levels(), QStringList(levelLine(35)));
}

void TestSetUserDefineFanSpeedThread::defaultInterval()
{
    QCOMPARE(Ovryn_SetUserDefineFanSpeedThread::kIntervalMs, 1000U);
    Ovryn_SetUserDefineFanSpeedThread worker(control.get());
    worker.startWork();
    QTRY_COMPARE(levels().size(), 1);
    QElapsedTimer sinceFirst;
    sinceFirst.start();
    QTRY_COMPARE(levels().size(), 2);
    QVERIFY(sinceFirst.elapsed() >= 900); // the first was seen up to a polling step late
    worker.stopWork();
    QVERIFY(worker.wait());
}

void TestSetUserDefineFanSpeedThread::notStartedByItself()
{
    Ovryn_SetUserDefineFanSpeedThread worker(control.get(), nullptr, kTestIntervalMs);
    QVERIFY(worker.isStopped());
    QVERIFY(!worker.isRunning());
    worker.setTemperatureToFanSpeedData({{0, 0}, {100, 100}});
    QVERIFY(!worker.isRunning());
    QCOMPARE(levels().size(), 0);
}

void TestSetUserDefineFanSpeedThread::startAndStop()
{
    setTemperature(40);
    Ovryn_SetUserDefineFanSpeedThread worker(control.get(), nullptr, kTestIntervalMs);
    for (int round = 0; round < 3; ++round) {
        driver->forgetCalls();
        worker.startWork();
        QVERIFY(!worker.isStopped());
        QTRY_VERIFY(levels().size() >= 3);
        QVERIFY(worker.isRunning());
        worker.stopWork();
        QVERIFY(worker.isStopped());
        QVERIFY(worker.wait());
        const QStringList ordered = levels();
        QCOMPARE(ordered.count(levelLine(35)), ordered.size());
    }
}

void TestSetUserDefineFanSpeedThread::secondStartDoesNothing()
{
    std::atomic<int> threads{0};
    Ovryn_SetUserDefineFanSpeedThread worker(control.get(), nullptr, kTestIntervalMs);
    connect(
        &worker, &QThread::started, &worker, [&threads] { ++threads; }, Qt::DirectConnection);
    worker.startWork();
    worker.startWork();
    QTRY_VERIFY(!levels().isEmpty());
    worker.startWork();
    worker.stopWork();
    QVERIFY(worker.wait());
    QCOMPARE(threads.load(), 1);
}

void TestSetUserDefineFanSpeedThread::stopWithoutAStart()
{
    Ovryn_SetUserDefineFanSpeedThread worker(control.get(), nullptr, kTestIntervalMs);
    worker.stopWork();
    QVERIFY(worker.wait());
    QVERIFY(worker.isStopped());
    QCOMPARE(levels().size(), 0);
}

void TestSetUserDefineFanSpeedThread::stopSeesOneMoreLevel()
{
    Ovryn_SetUserDefineFanSpeedThread worker(control.get(), nullptr, 1000);
    worker.startWork();
    QTRY_COMPARE(levels().size(), 1);
    worker.stopWork(); // during the sleep: the loop looks at it after the next order
    QVERIFY(worker.wait());
    QCOMPARE(levels().size(), 2);
}

void TestSetUserDefineFanSpeedThread::startAfterAStopWithoutAnEnd()
{
    Ovryn_SetUserDefineFanSpeedThread worker(control.get(), nullptr, 700);
    worker.startWork();
    QTRY_COMPARE(levels().size(), 1);
    worker.stopWork();
    worker.startWork(); // the loop still sleeps and simply goes on
    QTRY_VERIFY(levels().size() >= 3);
    worker.stopWork();
    QVERIFY(worker.wait());
}

void TestSetUserDefineFanSpeedThread::withoutACard()
{
    Ovryn_SetUserDefineFanSpeedThread worker(nullptr, nullptr, kTestIntervalMs);
    for (int round = 0; round < 2; ++round) {
        worker.startWork();
        QVERIFY(worker.wait(5000));
        QVERIFY(worker.isStopped());
    }
    QCOMPARE(levels().size(), 0);
}

void TestSetUserDefineFanSpeedThread::startAsSoonAsTheLoopIsOver()
{
    // Without a card the loop is over at once, and the next start now and then meets a thread that has left the loop
    // but not ended.
    constexpr int kStarts = 300;
    std::atomic<int> threads{0};
    Ovryn_SetUserDefineFanSpeedThread worker(nullptr, nullptr, kTestIntervalMs);
    connect(
        &worker, &QThread::started, &worker, [&threads] { ++threads; }, Qt::DirectConnection);
    for (int start = 1; start <= kStarts; ++start) {
        worker.startWork();
        QElapsedTimer clock;
        clock.start();
        while (!worker.isStopped() && clock.elapsed() < 5000) {
        }
        QVERIFY(worker.isStopped());
    }
    QVERIFY(worker.wait());
    QCOMPARE(threads.load(), kStarts);
}

void TestSetUserDefineFanSpeedThread::curveReplacedWhileRunning()
{
    setTemperature(40);
    Ovryn_SetUserDefineFanSpeedThread worker(control.get(), nullptr, kTestIntervalMs);
    worker.startWork();
    QTRY_VERIFY(levels().contains(levelLine(35)));
    worker.setTemperatureToFanSpeedData({{0, 0}, {100, 100}});
    QTRY_VERIFY(levels().contains(levelLine(40)));
    worker.setTemperatureToFanSpeedData({{0, 0}, {100, 99}});
    QTRY_COMPARE(levels().last(), levelLine(35));
    worker.stopWork();
    QVERIFY(worker.wait());
}

void TestSetUserDefineFanSpeedThread::replacingNeverWaitsForTheSleep()
{
    constexpr unsigned int sleepMs = 3000;
    Ovryn_SetUserDefineFanSpeedThread worker(control.get(), nullptr, sleepMs);
    worker.startWork();
    QTRY_COMPARE(levels().size(), 1);
    worker.setTemperatureToFanSpeedData({{0, 0}, {100, 100}});
    worker.startWork();
    worker.stopWork();
    QCOMPARE(levels().size(), 1); // the loop is still asleep
    QVERIFY(worker.wait());
    QCOMPARE(levels().size(), 2);
}

void TestSetUserDefineFanSpeedThread::destroyedWhileRunning_data()
{
    QTest::addColumn<unsigned int>("intervalMs");
    QTest::newRow("between short sleeps") << kTestIntervalMs;
    QTest::newRow("in a sleep longer than the wait") << 60000U;
}

void TestSetUserDefineFanSpeedThread::destroyedWhileRunning()
{
    QFETCH(unsigned int, intervalMs);
#ifdef __SANITIZE_THREAD__
    if (intervalMs > kTestIntervalMs)
        QSKIP("the thread sanitizer ends the program when a thread is ended by force");
#endif
    QElapsedTimer timer;
    {
        Ovryn_SetUserDefineFanSpeedThread worker(control.get(), nullptr, intervalMs);
        worker.startWork();
        QTRY_VERIFY(!levels().isEmpty());
        timer.start();
    }
    QVERIFY(timer.elapsed() < 30000);
    // The level stays in force: whoever destroys the worker decides what follows.
    QVERIFY(levels().last().endsWith("manual"));
    const int ordered = levels().size();
    QTest::qWait(20); // a loop that survived would order again
    QCOMPARE(levels().size(), ordered);
}

void TestSetUserDefineFanSpeedThread::startedAndStoppedAThousandTimes()
{
    const Curve curves[] = {{{0, 0}, {100, 100}}, {{0, 0}}, {{0, 0}, {20, 45}, {60, 45}, {100, 100}}};
    // 52 degrees is 52.7 percent on the default curve, which replaces the second one.
    const QStringList possible = {levelLine(52), levelLine(45)};
    setTemperature(52);
    Ovryn_SetUserDefineFanSpeedThread worker(control.get(), nullptr, 0);
    for (int round = 0; round < 1000; ++round) {
        worker.startWork();
        worker.setTemperatureToFanSpeedData(curves[round % 3]);
        worker.stopWork();
        QVERIFY(worker.wait(10000));
        QVERIFY(worker.isStopped());
    }
    const QStringList ordered = levels();
    QVERIFY(ordered.size() >= 1000); // each start orders at least once
    for (const QString &line : ordered)
        QVERIFY2(possible.contains(line), qPrintable(line));
}

QTEST_GUILESS_MAIN(TestSetUserDefineFanSpeedThread)
#include "TestSetUserDefineFanSpeedThread.moc"
