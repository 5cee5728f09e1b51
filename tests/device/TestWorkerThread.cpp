#include "device/WorkerThread.h"

#include <QMutexLocker>
#include <QSemaphore>
#include <QtTest>

#include <atomic>
#include <chrono>
#include <thread>

namespace
{

/// A worker whose loop ends by itself in its first cycle, and whose thread lives on until it is let go.
class OneCycleWorker : public WorkerThread
{
public:
    ~OneCycleWorker() override
    {
        mayReturn.release(2);
        endThread();
    }
    using WorkerThread::startThread;

    std::atomic<int> cycles{0};
    QSemaphore hasLeft;
    QSemaphore mayReturn;

protected:
    void run() override
    {
        {
            QMutexLocker held(&mutex);
            ++cycles;
            leaveLoop();
        }
        hasLeft.release();
        mayReturn.acquire();
    }
};

/// A worker that counts its cycles until it is stopped.
class CountingWorker : public WorkerThread
{
public:
    ~CountingWorker() override { endThread(); }
    using WorkerThread::startThread;
    using WorkerThread::stopThread;

    std::atomic<int> cycles{0};

protected:
    void run() override
    {
        QMutexLocker held(&mutex);
        for (;;) {
            ++cycles;
            if (stopped)
                break;
            held.unlock();
            msleep(1);
            held.relock();
        }
        leaveLoop();
    }
};

} // namespace

/// The shape of the worker threads: starting, stopping, ending.
class TestWorkerThread : public QObject
{
    Q_OBJECT

private slots:
    void startsStopped();
    void runsUntilStopped();
    void startWhileTheThreadIsOnItsWayOut();
    void destructionWhileItRuns();
};

void TestWorkerThread::startsStopped()
{
    CountingWorker worker;
    QVERIFY(worker.isStopped());
    QVERIFY(!worker.isRunning());
}

void TestWorkerThread::runsUntilStopped()
{
    CountingWorker worker;
    worker.startThread();
    QVERIFY(!worker.isStopped());
    QTRY_VERIFY(worker.cycles >= 3);
    worker.stopThread();
    QVERIFY(worker.isStopped());
    QTRY_VERIFY(worker.isFinished());
    const int cycles = worker.cycles;
    worker.startThread();
    QTRY_VERIFY(worker.cycles >= cycles + 3);
}

void TestWorkerThread::startWhileTheThreadIsOnItsWayOut()
{
    OneCycleWorker worker;
    worker.startThread();
    worker.hasLeft.acquire();
    QVERIFY(worker.isStopped());
    QVERIFY(worker.isRunning());
    std::thread letGo([&worker] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50)); // so that the start meets a thread that runs
        worker.mayReturn.release();
    });
    worker.startThread();
    letGo.join();
    QTRY_COMPARE(worker.cycles.load(), 2);
}

void TestWorkerThread::destructionWhileItRuns()
{
    CountingWorker worker;
    worker.startThread();
    QTRY_VERIFY(worker.cycles >= 1);
}

QTEST_APPLESS_MAIN(TestWorkerThread)
#include "TestWorkerThread.moc"
