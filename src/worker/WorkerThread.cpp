#include "worker/WorkerThread.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <utility>

namespace
{

std::atomic<int> abandonedWorkers{0};

std::atomic<unsigned long> currentCycleWaitMs{WorkerThread::kCycleWaitMs};

} // namespace

WorkerThread::WorkerThread(QObject *parent) : QThread(parent) {}

WorkerThread::~WorkerThread()
{
    Q_ASSERT(!isRunning()); // a worker's own destructor calls endThread
}

bool WorkerThread::isStopped()
{
    QMutexLocker held(&mutex);
    return stopped;
}

void WorkerThread::startThread()
{
    QMutexLocker held(&mutex);
    startThreadUnderMutex();
}

void WorkerThread::startThreadUnderMutex()
{
    if (!stopped)
        return;
    if (leaving) {
        wait(); // start() does nothing while the thread is ending
        leaving = false;
    }
    {
        const std::lock_guard<std::mutex> guard(endLock);
        endRequested = false;
    }
    start(QThread::InheritPriority);
    stopped = false;
}

void WorkerThread::stopThread()
{
    QMutexLocker held(&mutex);
    stopped = true;
}

void WorkerThread::requestEnd()
{
    const std::lock_guard<std::mutex> guard(endLock);
    if (!endRequested)
        cycleDeadline.setRemainingTime(qint64(currentCycleWaitMs.load()));
    endRequested = true;
    endWanted.notify_all();
}

void WorkerThread::setSleep(std::function<void(unsigned int)> function)
{
    sleep = std::move(function);
}

bool WorkerThread::pause(QMutexLocker &held, unsigned int ms)
{
    held.unlock();
    bool ending = false;
    if (sleep) {
        sleep(ms);
    } else {
        std::unique_lock<std::mutex> guard(endLock);
        ending = endWanted.wait_for(guard, std::chrono::milliseconds(ms), [this] { return endRequested; });
    }
    held.relock();
    if (ending)
        stopped = true;
    return !ending;
}

void WorkerThread::leaveLoop()
{
    stopped = true;
    giveUpLoop();
}

void WorkerThread::giveUpLoop()
{
    // A terminated thread unwinds its stack, and a destructor that is interrupted so ends the whole process.
    setTerminationEnabled(false);
    leaving = true;
}

bool WorkerThread::waitForLoop(unsigned long cycleWaitMs, unsigned long waitMs)
{
    requestEnd();
    // A cycle holds the mutex, and a driver that hangs never ends it.
    if (!mutex.tryLock(int(std::min(qint64(cycleWaitMs), cycleDeadline.remainingTime()))))
        return false;
    if (isRunning())
        stopped = true; // stays unset in a loop that has given up: a start must do nothing until a stop
    mutex.unlock();
    return wait(waitMs);
}

bool WorkerThread::endsInTime()
{
    return waitForLoop(kCycleWaitMs, kEndWaitMs);
}

void WorkerThread::setCycleWait(unsigned long cycleWaitMs)
{
    currentCycleWaitMs = cycleWaitMs;
}

bool WorkerThread::tryToEnd(unsigned long cycleWaitMs, unsigned long waitMs)
{
    waitForLoop(cycleWaitMs, waitMs);
    terminate();                     // does nothing to a thread that has returned
    return wait(kTerminationWaitMs); // terminate() only asks: a thread inside a system call may never notice it
}

void WorkerThread::endThread(unsigned long waitMs)
{
    if (!tryToEnd(kCycleWaitMs, waitMs))
        wait(); // a QThread that still runs must not be destroyed
}

bool WorkerThread::endAndDelete(WorkerThread *worker, unsigned long cycleWaitMs)
{
    if (!worker || worker->tryToEnd(cycleWaitMs, kEndWaitMs)) {
        delete worker;
        return true;
    }
    worker->abandoned = true;
    worker->setParent(nullptr);
    ++abandonedWorkers;
    return false;
}

int WorkerThread::abandonedCount()
{
    return abandonedWorkers;
}
