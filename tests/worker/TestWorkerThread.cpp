#include "worker/WorkerThread.h"

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

constexpr unsigned long kNoPatienceMs = 100; // with a cycle under way
constexpr unsigned int kPauseWithoutEndMs = 3600 * 1000;

/// A worker in one long cycle: the driver that it asks doesn't answer.
class HangingWorker : public WorkerThread
{
public:
    /// `deaf` stands for a call that no signal and no cancellation reaches.
    explicit HangingWorker(bool isDeaf, QObject *parent = nullptr) : WorkerThread(parent), deaf(isDeaf) {}
    ~HangingWorker() override
    {
        answer.release();
        endThread();
    }
    using WorkerThread::startThread;

    QSemaphore inCall;
    QSemaphore answer;
    std::atomic<int> cycles{0}; ///< read and written by the loop to its very end

protected:
    void run() override
    {
        QMutexLocker held(&mutex);
        setTerminationEnabled(!deaf);
        inCall.release();
        if (deaf) {
            answer.acquire();
        } else {
            while (!answer.tryAcquire())
                msleep(1); // can be ended by force here
        }
        ++cycles;
        leaveLoop();
    }

private:
    const bool deaf;
};

/// A worker whose thread takes its time behind the loop, longer than its end is waited for.
class SlowlyLeavingWorker : public WorkerThread
{
public:
    explicit SlowlyLeavingWorker(std::atomic<bool> &hasFinished) : finished(hasFinished) {}
    ~SlowlyLeavingWorker() override { endThread(1); }
    using WorkerThread::startThread;

    QSemaphore hasLeft;

protected:
    void run() override
    {
        {
            QMutexLocker held(&mutex);
            leaveLoop();
        }
        hasLeft.release();
        msleep(300);
        finished = true;
    }

private:
    std::atomic<bool> &finished;
};

/// A worker that sleeps for a while behind each cycle.
class SleepyWorker : public WorkerThread
{
public:
    SleepyWorker(std::atomic<int> &cycleCount, std::atomic<bool> &hasLeft, unsigned int sleepMs = 500)
        : cycles(cycleCount), left(hasLeft), pauseMs(sleepMs)
    {
    }
    ~SleepyWorker() override { endThread(); }
    using WorkerThread::startThread;
    using WorkerThread::stopThread;

protected:
    void run() override
    {
        QMutexLocker held(&mutex);
        for (;;) {
            ++cycles;
            if (stopped || !pause(held, pauseMs))
                break;
        }
        leaveLoop();
        left = true;
    }

private:
    std::atomic<int> &cycles;
    std::atomic<bool> &left;
    const unsigned int pauseMs;
};

/// A worker whose loop gives up in its first cycle, and whose thread lives on until it is let go.
class GivingUpWorker : public WorkerThread
{
public:
    ~GivingUpWorker() override
    {
        mayReturn.release(2);
        endThread();
    }
    using WorkerThread::startThread;
    using WorkerThread::stopThread;

    std::atomic<int> cycles{0};
    QSemaphore hasLeft;
    QSemaphore mayReturn;

protected:
    void run() override
    {
        {
            QMutexLocker held(&mutex);
            ++cycles;
            giveUpLoop();
        }
        hasLeft.release();
        mayReturn.acquire();
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
    void startAfterGivingUp();
    void destructionWhileItRuns();
    void stopDoesNotWakeThePause();
    void requestToEndWakesThePause();
    void sleepOfAGivenFunction();
    void startAfterARequestToEnd();
    void endInTime();
    void patienceCountsFromTheRequest();
    void endOfANullWorker();
    void hangingCallIsEndedByForce();
    void threadBehindItsLoopIsNotEndedByForce();
    void callThatNothingEndsIsLeftBehind();
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

void TestWorkerThread::startAfterGivingUp()
{
    GivingUpWorker worker;
    worker.startThread();
    worker.hasLeft.acquire();
    QVERIFY(!worker.isStopped());
    worker.startThread(); // nothing before a stop
    QVERIFY(!worker.isStopped());
    worker.stopThread();
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

void TestWorkerThread::stopDoesNotWakeThePause()
{
    std::atomic<int> cycles{0};
    std::atomic<bool> left{false};
    auto *worker = new SleepyWorker(cycles, left);
    worker->startThread();
    QTRY_COMPARE(cycles.load(), 1);
    worker->stopThread();
    QVERIFY(!worker->wait(100));
    QCOMPARE(cycles.load(), 1);
    QTRY_COMPARE(cycles.load(), 2); // the stop is seen after the next cycle
    QVERIFY(WorkerThread::endAndDelete(worker));
    QVERIFY(left); // by itself
}

void TestWorkerThread::requestToEndWakesThePause()
{
    std::atomic<int> cycles{0};
    std::atomic<bool> left{false};
    SleepyWorker worker(cycles, left, kPauseWithoutEndMs);
    worker.startThread();
    QTRY_COMPARE(cycles.load(), 1);
    worker.requestEnd();
    QTRY_VERIFY(worker.isFinished());
    QVERIFY(left);
    QCOMPARE(cycles.load(), 1); // without another cycle
    QVERIFY(worker.isStopped());
}

void TestWorkerThread::sleepOfAGivenFunction()
{
    std::atomic<int> cycles{0};
    std::atomic<bool> left{false};
    QSemaphore mayWake;
    SleepyWorker worker(cycles, left, kPauseWithoutEndMs);
    std::atomic<unsigned int> asked{0};
    std::atomic<bool> mutexIsFree{false};
    worker.setSleep([&](unsigned int ms) {
        mutexIsFree = !worker.isStopped(); // takes the mutex
        asked = ms;
        mayWake.acquire();
    });
    worker.startThread();
    QTRY_COMPARE(asked.load(), kPauseWithoutEndMs);
    QVERIFY(mutexIsFree);
    QCOMPARE(cycles.load(), 1);
    mayWake.release();
    QTRY_COMPARE(cycles.load(), 2); // the sleep was over when the function came back
    worker.stopThread();
    mayWake.release();
    QTRY_VERIFY(worker.isFinished());
    QCOMPARE(cycles.load(), 3);
    QVERIFY(left);
}

void TestWorkerThread::startAfterARequestToEnd()
{
    std::atomic<int> cycles{0};
    std::atomic<bool> left{false};
    SleepyWorker worker(cycles, left, kPauseWithoutEndMs);
    worker.requestEnd();
    worker.startThread();
    QTRY_COMPARE(cycles.load(), 1);
    QVERIFY(!worker.wait(50)); // it pauses as ever
    QVERIFY(!worker.isStopped());
}

void TestWorkerThread::endInTime()
{
    std::atomic<int> cycles{0};
    std::atomic<bool> left{false};
    SleepyWorker sleepy(cycles, left, kPauseWithoutEndMs);
    QVERIFY(sleepy.endsInTime()); // before it was ever started, too
    sleepy.startThread();
    QTRY_COMPARE(cycles.load(), 1);
    QVERIFY(sleepy.endsInTime());
    QVERIFY(sleepy.isFinished());

    WorkerThread::setCycleWait(kNoPatienceMs);
    HangingWorker hanging(false);
    hanging.startThread();
    hanging.inCall.acquire();
    QVERIFY(!hanging.endsInTime());
    WorkerThread::setCycleWait(WorkerThread::kCycleWaitMs);
    QVERIFY(hanging.isRunning());
    hanging.answer.release();
    QVERIFY(hanging.wait(20000));
}

void TestWorkerThread::patienceCountsFromTheRequest()
{
#ifdef __SANITIZE_THREAD__
    QSKIP("the thread sanitizer ends the program when a thread is ended by force");
#endif
    auto *worker = new HangingWorker(false);
    worker->startThread();
    worker->inCall.acquire();
    WorkerThread::setCycleWait(1);
    worker->requestEnd();
    // So long a patience from here on would outlast the time that this program is given.
    WorkerThread::setCycleWait(kPauseWithoutEndMs);
    QVERIFY(WorkerThread::endAndDelete(worker, kPauseWithoutEndMs));
    WorkerThread::setCycleWait(WorkerThread::kCycleWaitMs);
}

void TestWorkerThread::endOfANullWorker()
{
    QVERIFY(WorkerThread::endAndDelete(nullptr));
    QCOMPARE(WorkerThread::abandonedCount(), 0);
}

void TestWorkerThread::hangingCallIsEndedByForce()
{
#ifdef __SANITIZE_THREAD__
    QSKIP("the thread sanitizer ends the program when a thread is ended by force");
#endif
    auto *worker = new HangingWorker(false);
    worker->startThread();
    worker->inCall.acquire();
    QVERIFY(WorkerThread::endAndDelete(worker, kNoPatienceMs));
    QCOMPARE(WorkerThread::abandonedCount(), 0);
}

void TestWorkerThread::threadBehindItsLoopIsNotEndedByForce()
{
    std::atomic<bool> finished{false};
    {
        SlowlyLeavingWorker worker(finished);
        worker.startThread();
        worker.hasLeft.acquire();
    }
    QVERIFY(finished);
}

void TestWorkerThread::callThatNothingEndsIsLeftBehind()
{
#ifdef __SANITIZE_THREAD__
    QSKIP("the thread sanitizer ends the program when a thread is ended by force");
#endif
    QObject owner;
    auto *worker = new HangingWorker(true, &owner);
    worker->startThread();
    worker->inCall.acquire();
    QVERIFY(!WorkerThread::endAndDelete(worker, kNoPatienceMs));
    QCOMPARE(WorkerThread::abandonedCount(), 1);
    QCOMPARE(owner.children(), QObjectList()); // it doesn't go with its owner
    QVERIFY(worker->isRunning());

    // The driver answers after all, and the loop finds everything that it uses.
    worker->answer.release();
    QVERIFY(worker->wait(20000));
    QVERIFY(worker->isStopped());
    QCOMPARE(worker->cycles.load(), 1);
    delete worker;
}

QTEST_APPLESS_MAIN(TestWorkerThread)
#include "TestWorkerThread.moc"
