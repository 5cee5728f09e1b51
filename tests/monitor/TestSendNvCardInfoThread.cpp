#include "monitor/sampling/Ovryn_SendNvCardInfoThread.h"

#include "device/NvGpuControl.h"
#include "simulated/ScenarioReader.h"
#include "support/CallText.h"
#include "support/CheckedDriver.h"

#include <QElapsedTimer>
#include <QMutex>
#include <QSemaphore>
#include <QSet>
#include <QtTest>

#include <atomic>
#include <future>
#include <memory>

namespace
{
constexpr Operation kFirstReadOfCycle = Operation::NvAPI_GPU_ClientThermalPoliciesGetInfo;

/// Names of the operations in the order of the calls.
QStringList namesOf(const QStringList &calls)
{
    QStringList names;
    for (const QString &call : calls)
        names.append(call.section(QLatin1Char(' '), 0, 0));
    return names;
}
} // namespace

/// What a page is to the worker: it takes the records on the thread that it lives in.
class RecordReceiver : public QObject
{
    Q_OBJECT

public:
    void listenTo(Ovryn_SendNvCardInfoThread &worker, Qt::ConnectionType type)
    {
        connect(&worker, SIGNAL(sendNvCardInfo(NvCardBaseInfo)), this, SLOT(recvNvCardInfo(NvCardBaseInfo)), type);
        connect(&worker, SIGNAL(sendNVCardFixedInfo(NvInfo)), this, SLOT(recvGpuFixedInfo(NvInfo)), type);
        connect(&worker, SIGNAL(sendBoardTempCompleteInfo(BoardTempCompleteInfo)), this,
                SLOT(recvBoardTempCompleteInfo(BoardTempCompleteInfo)), type);
        connect(&worker, SIGNAL(started()), this, SLOT(threadStarted()), type);
    }

    QStringList order; ///< of the records received
    QList<NvCardBaseInfo> cardInfos;
    QList<NvInfo> fixedInfos;
    QList<BoardTempCompleteInfo> boardInfos;
    QList<int> driverCallsAt; ///< how many driver calls had been made when each record came
    CheckedDriver *driver = nullptr;
    QSet<QThread *> receivingThreads;
    int starts = 0;

public slots:
    void recvNvCardInfo(NvCardBaseInfo info)
    {
        cardInfos.append(info);
        note(QStringLiteral("card"));
    }
    void recvGpuFixedInfo(NvInfo info)
    {
        fixedInfos.append(info);
        note(QStringLiteral("fixed"));
    }
    void recvBoardTempCompleteInfo(BoardTempCompleteInfo info)
    {
        boardInfos.append(info);
        note(QStringLiteral("board"));
    }
    void threadStarted() { ++starts; }

private:
    void note(const QString &record)
    {
        order.append(record);
        receivingThreads.insert(QThread::currentThread());
        if (driver != nullptr)
            driverCallsAt.append(driver->calls().size());
    }
};

/// The worker against a driver in the same process: first its cycle without a thread, then the thread.
class TestSendNvCardInfoThread : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void driverCallsOfACycle();
    void recordsFollowTheirReads();
    void firstSampleIsItsOwnExtreme();
    void extremesOfLaterSamples();
    void failedReadsShowZero();
    void tccCardUsesNoMemory();
    void scaleStaysRaisedOverCycles();

    void startTwiceStartsOneThread();
    void noCardEndsAtOnce();
    void recordsArriveOnTheReceiversThread();
    void queuedRecordsOutliveTheWorker();
    void intervalStartsAtOneSecond();
    void intervalChangesWithTheNextSleep();
    void changeOfIntervalWaitsForTheCycle();
    void destructionWaitsForTheCycle();
    void destructionWakesALongSleep();
    void destructionWithoutAStart();

private:
    void setTemperature(int degrees)
    {
        driver->edit(0, [degrees](simulated::Card &card) { card.state.temperatureC = degrees; });
    }
    /// Of the third sensor, at 0x96.
    void setSensor(int degrees)
    {
        driver->edit(0, [degrees](simulated::Card &card) { card.parameters.boardSensors.at(2).pinnedC = degrees; });
    }

    std::unique_ptr<CheckedDriver> driver; ///< the built-in scene
    std::unique_ptr<NvGpuControl> control;
};

void TestSendNvCardInfoThread::initTestCase()
{
    registerDeviceMetaTypes();
}

void TestSendNvCardInfoThread::init()
{
    driver = std::make_unique<CheckedDriver>();
    control = std::make_unique<NvGpuControl>();
    driver->forgetCalls();
}

void TestSendNvCardInfoThread::cleanup()
{
    control.reset();
    driver.reset();
}

void TestSendNvCardInfoThread::driverCallsOfACycle()
{
    Ovryn_SendNvCardInfoThread worker(control.get());
    worker.sampleOnce();
    // clang-format off
    const QStringList expected = {
        "GPU_ClientThermalPoliciesGetInfo", "GPU_ClientThermalPoliciesGetStatus", // thermal policy, dropped
        "GPU_GetMemoryInfo",
        "GPU_GetThermalSettings",
        "GPU_GetAllClockFrequencies", "GPU_GetRamType",                           // current clocks
        "GPU_GetPstates20", "GPU_GetAllClockFrequencies", "GPU_GetRamType",       // customised base clocks, dropped
        "GPU_GetTachReading", "GPU_GetCoolerSettings",
        "GPU_GetDynamicPstatesInfoEx",
        "GPU_GetFullName", "GPU_GetMemoryInfo", "GPU_GetRamType",                 // fixed information
        "GPU_GetPstates20", "GPU_GetAllClockFrequencies", "GPU_GetRamType",       // as customised
        "GPU_GetPstates20", "GPU_GetAllClockFrequencies", "GPU_GetRamType",       // by default
        "SYS_GetDriverAndBranchVersion", "SYS_GetChipSetInfo",
        "GPU_GetFBWidthAndLocation", "GPU_GetVbiosVersionString",
        "I2CRead", "I2CRead", "I2CRead", "I2CRead"};                              // board sensors
    // clang-format on
    QCOMPARE(namesOf(driver->calls()), expected);

    QStringList sensorAddresses;
    for (const QString &call : driver->calls(Operation::NvAPI_I2CRead))
        sensorAddresses.append(call.section(QLatin1Char(' '), 4, 4));
    QCOMPARE(sensorAddresses, (QStringList{"0x9E", "0x90", "0x96", "0x92"}));
}

void TestSendNvCardInfoThread::recordsFollowTheirReads()
{
    Ovryn_SendNvCardInfoThread worker(control.get());
    RecordReceiver receiver;
    receiver.driver = driver.get();
    receiver.listenTo(worker, Qt::DirectConnection);
    worker.sampleOnce();
    QCOMPARE(receiver.order, (QStringList{"card", "fixed", "board"}));
    const QStringList names = namesOf(driver->calls());
    QCOMPARE(names.at(receiver.driverCallsAt.at(0) - 1), QStringLiteral("GPU_GetDynamicPstatesInfoEx"));
    QVERIFY(!names.mid(0, receiver.driverCallsAt.at(0)).contains("GPU_GetFullName"));
    QVERIFY(names.mid(0, receiver.driverCallsAt.at(1)).contains("GPU_GetFullName"));
    QVERIFY(names.mid(0, receiver.driverCallsAt.at(1)).filter("I2C").isEmpty());
    QCOMPARE(receiver.driverCallsAt.at(2), names.size());
    QCOMPARE(QString::fromStdString(receiver.fixedInfos.at(0).gpuName), QStringLiteral("GeForce GTX 1070 Ti"));
}

void TestSendNvCardInfoThread::firstSampleIsItsOwnExtreme()
{
    setTemperature(52);
    setSensor(40);
    Ovryn_SendNvCardInfoThread worker(control.get());
    RecordReceiver receiver;
    receiver.listenTo(worker, Qt::DirectConnection);
    worker.sampleOnce();
    const NvMonitorValue temperature = receiver.cardInfos.at(0).temperature;
    QCOMPARE(temperature.currentValue, 52);
    QCOMPARE(temperature.maxValue, 52);
    QCOMPARE(temperature.minValue, 52);
    // Only a second look at the extremes knows the sensors, which are read last.
    const NvMonitorValue sensor = receiver.boardInfos.at(0).sensor96;
    QCOMPARE(sensor.currentValue, 40);
    QCOMPARE(sensor.maxValue, 40);
    QCOMPARE(sensor.minValue, 40);
}

void TestSendNvCardInfoThread::extremesOfLaterSamples()
{
    Ovryn_SendNvCardInfoThread worker(control.get());
    RecordReceiver receiver;
    receiver.listenTo(worker, Qt::DirectConnection);
    for (const qint32 degrees : {52, 71, 60}) {
        setTemperature(degrees);
        worker.sampleOnce();
    }
    const NvMonitorValue temperature = receiver.cardInfos.at(2).temperature;
    QCOMPARE(temperature.currentValue, 60);
    QCOMPARE(temperature.maxValue, 71);
    QCOMPARE(temperature.minValue, 52);
}

void TestSendNvCardInfoThread::failedReadsShowZero()
{
    for (const Operation operation : CheckedDriver::operations()) {
        if (operationText(operation).startsWith("GPU_") || operationText(operation).startsWith("I2C"))
            driver->fails(operation);
    }
    Ovryn_SendNvCardInfoThread worker(control.get());
    RecordReceiver receiver;
    receiver.listenTo(worker, Qt::DirectConnection);
    worker.sampleOnce();
    QCOMPARE(receiver.order, (QStringList{"card", "fixed", "board"}));
    const NvCardBaseInfo info = receiver.cardInfos.at(0);
    for (const NvMonitorValue &value : {info.gpuClock, info.memoryClock, info.fanSpeed, info.temperature,
                                        info.memoryUsagePercent, info.gpuUsage, info.memoryUsage}) {
        QCOMPARE(value.currentValue, 0);
        QCOMPARE(value.maxValue, 0);
        QCOMPARE(value.minValue, 0);
    }
    QCOMPARE(receiver.boardInfos.at(0).sensor9E.currentValue, 0);
}

void TestSendNvCardInfoThread::tccCardUsesNoMemory()
{
    simulated::Scenario scene = simulated::builtInScenario();
    for (simulated::CardParameters &card : scene.cards)
        card.tcc = true;
    cleanup(); // a driver goes before the next one comes
    driver = std::make_unique<CheckedDriver>(scene);
    control = std::make_unique<NvGpuControl>();
    RecordReceiver receiver;
    Ovryn_SendNvCardInfoThread worker(control.get());
    receiver.listenTo(worker, Qt::DirectConnection);
    worker.sampleOnce();
    const NvCardBaseInfo &info = receiver.cardInfos.at(0);
    QCOMPARE(info.memoryUsagePercent.currentValue, 0);
    QCOMPARE(info.memoryUsagePercent.maxValue, 0);
    QCOMPARE(info.memoryUsage.currentValue, 0);
    QVERIFY(info.memoryUsage.upperLimit > 0);
}

void TestSendNvCardInfoThread::scaleStaysRaisedOverCycles()
{
    Ovryn_SendNvCardInfoThread worker(control.get());
    RecordReceiver receiver;
    receiver.listenTo(worker, Qt::DirectConnection);
    for (const quint32 kilohertz : {2000000u, 2001000u, 300000u}) {
        driver->edit(0, [kilohertz](simulated::Card &card) { card.state.graphicsKHz = kilohertz; });
        worker.sampleOnce();
    }
    QCOMPARE(receiver.cardInfos.at(0).gpuClock.upperLimit, 2000);
    QCOMPARE(receiver.cardInfos.at(1).gpuClock.upperLimit, 3000);
    QCOMPARE(receiver.cardInfos.at(2).gpuClock.upperLimit, 3000);
    QCOMPARE(receiver.cardInfos.at(2).gpuClock.currentValue, 300);
}

void TestSendNvCardInfoThread::startTwiceStartsOneThread()
{
    RecordReceiver receiver;
    {
        Ovryn_SendNvCardInfoThread worker(control.get());
        QVERIFY(worker.isStopped());
        worker.setRefreshTime(1);
        receiver.listenTo(worker, Qt::QueuedConnection);
        worker.startSampling();
        worker.startSampling();
        QVERIFY(!worker.isStopped());
        QTRY_VERIFY(receiver.boardInfos.size() >= 3);
        worker.startSampling();
        QTRY_VERIFY(receiver.boardInfos.size() >= 6);
    }
    QCoreApplication::processEvents();
    QCOMPARE(receiver.starts, 1);
    // Two loops would mix their records.
    for (int i = 0; i < receiver.order.size(); ++i)
        QCOMPARE(receiver.order.at(i), (QStringList{"card", "fixed", "board"}.at(i % 3)));
}

void TestSendNvCardInfoThread::noCardEndsAtOnce()
{
    RecordReceiver receiver;
    Ovryn_SendNvCardInfoThread worker(nullptr);
    receiver.listenTo(worker, Qt::QueuedConnection);
    worker.startSampling();
    QTRY_COMPARE(receiver.starts, 1);
    QTRY_VERIFY(worker.isFinished());
    QVERIFY(worker.isStopped());
    QCoreApplication::processEvents();
    QVERIFY(receiver.order.isEmpty());
}

void TestSendNvCardInfoThread::recordsArriveOnTheReceiversThread()
{
    std::atomic<QThread *> readingThread{nullptr};
    driver->onCall(kFirstReadOfCycle, [&] { readingThread = QThread::currentThread(); });
    RecordReceiver receiver;
    Ovryn_SendNvCardInfoThread worker(control.get());
    receiver.listenTo(worker, Qt::AutoConnection);
    worker.startSampling();
    QTRY_COMPARE(receiver.boardInfos.size(), 1);
    QCOMPARE(receiver.receivingThreads, (QSet<QThread *>{QThread::currentThread()}));
    QCOMPARE(readingThread.load(), static_cast<QThread *>(&worker));
}

void TestSendNvCardInfoThread::queuedRecordsOutliveTheWorker()
{
    RecordReceiver receiver;
    {
        Ovryn_SendNvCardInfoThread worker(control.get());
        receiver.listenTo(worker, Qt::QueuedConnection);
        for (const qint32 degrees : {52, 71}) {
            setTemperature(degrees);
            setSensor(degrees - 20);
            driver->edit(0, [degrees](simulated::Card &card) {
                card.parameters.name = "a name too long to lie in the text itself, at " + std::to_string(degrees);
            });
            worker.sampleOnce();
        }
    }
    control.reset();
    QVERIFY(receiver.order.isEmpty());
    QCoreApplication::processEvents();

    // Each record still holds its own cycle: neither the later one nor the end of worker and device reached it.
    QCOMPARE(receiver.order, (QStringList{"card", "fixed", "board", "card", "fixed", "board"}));
    QCOMPARE(receiver.cardInfos.at(0).temperature.currentValue, 52);
    QCOMPARE(receiver.cardInfos.at(0).temperature.maxValue, 52);
    QCOMPARE(receiver.cardInfos.at(1).temperature.currentValue, 71);
    QVERIFY(receiver.fixedInfos.at(0).gpuName.find("at 52") != std::string::npos);
    QVERIFY(receiver.fixedInfos.at(1).gpuName.find("at 71") != std::string::npos);
    QCOMPARE(receiver.boardInfos.at(0).sensor96.currentValue, 32);
    QCOMPARE(receiver.boardInfos.at(1).sensor96.currentValue, 51);
}

void TestSendNvCardInfoThread::intervalStartsAtOneSecond()
{
    QElapsedTimer clock;
    clock.start();
    QMutex guard;
    QList<qint64> cycleStarts;
    driver->onCall(kFirstReadOfCycle, [&] {
        QMutexLocker held(&guard);
        cycleStarts.append(clock.elapsed());
    });
    Ovryn_SendNvCardInfoThread worker(control.get());
    worker.startSampling();
    const auto cycles = [&] {
        QMutexLocker held(&guard);
        return cycleStarts.size();
    };
    QTRY_VERIFY(cycles() >= 2);
    QMutexLocker held(&guard);
    QVERIFY2(cycleStarts.at(1) - cycleStarts.at(0) >= 999, "a cycle came before the second was over");
}

void TestSendNvCardInfoThread::intervalChangesWithTheNextSleep()
{
    RecordReceiver receiver;
    Ovryn_SendNvCardInfoThread worker(control.get());
    receiver.listenTo(worker, Qt::QueuedConnection);
    worker.startSampling();
    QTRY_COMPARE(receiver.boardInfos.size(), 1);
    worker.setRefreshTime(1);
    // After the second that is under way: far more samples than seconds.
    QTRY_VERIFY_WITH_TIMEOUT(receiver.boardInfos.size() >= 40, 10000);
}

void TestSendNvCardInfoThread::changeOfIntervalWaitsForTheCycle()
{
    QSemaphore inCycle;
    QSemaphore release;
    driver->onCall(kFirstReadOfCycle, [&] {
        inCycle.release();
        release.acquire();
    });
    Ovryn_SendNvCardInfoThread worker(control.get());
    worker.startSampling();
    QVERIFY(inCycle.tryAcquire(1, 5000));
    auto change = std::async(std::launch::async, [&] { worker.setRefreshTime(1); });
    const bool blocked = change.wait_for(std::chrono::milliseconds(100)) == std::future_status::timeout;
    release.release(1000000); // this cycle and all that follow
    change.get();
    QVERIFY(blocked);
}

void TestSendNvCardInfoThread::destructionWaitsForTheCycle()
{
    // One call slower than the 2000 ms that the destructor grants the thread: only the mutex can have kept the
    // cycle from being cut off. No other cycle follows it.
    QSemaphore inCycle;
    std::atomic<bool> slow{true};
    std::atomic<int> sensorsRead{0};
    driver->onCall(kFirstReadOfCycle, [&] {
        inCycle.release();
        if (slow.exchange(false))
            QThread::msleep(2300);
    });
    driver->onCall(Operation::NvAPI_I2CRead, [&] { ++sensorsRead; });
    auto worker = std::make_unique<Ovryn_SendNvCardInfoThread>(control.get());
    worker->startSampling();
    QVERIFY(inCycle.tryAcquire(1, 5000));
    worker.reset();
    QCOMPARE(sensorsRead.load(), 4);
}

void TestSendNvCardInfoThread::destructionWakesALongSleep()
{
    RecordReceiver receiver;
    auto worker = std::make_unique<Ovryn_SendNvCardInfoThread>(control.get());
    worker->setRefreshTime(3600 * 1000); // longer than this program may take
    receiver.listenTo(*worker, Qt::QueuedConnection);
    worker->startSampling();
    QTRY_COMPARE(receiver.boardInfos.size(), 1);
    QTRY_VERIFY(!worker->isStopped()); // the mutex is free again: the thread sleeps
    worker.reset();
    QCoreApplication::processEvents();
    QCOMPARE(receiver.boardInfos.size(), 1);
}

void TestSendNvCardInfoThread::destructionWithoutAStart()
{
    auto worker = std::make_unique<Ovryn_SendNvCardInfoThread>(control.get());
    QElapsedTimer clock;
    clock.start();
    worker.reset();
    QVERIFY(clock.elapsed() < 1000);
    QVERIFY(driver->calls().isEmpty());
}

QTEST_GUILESS_MAIN(TestSendNvCardInfoThread)
#include "TestSendNvCardInfoThread.moc"
