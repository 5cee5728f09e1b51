#include "device/WorkerThread.h"

#include <algorithm>
#include <atomic>

namespace
{

std::atomic<int> leftBehindCount{0};

/// How long a cycle under way is waited for at most: a driver that hangs in one call hangs in the others, too.
std::atomic<unsigned long> patienceMs{WorkerThread::kCycleWaitMs};

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
        wait(); // start() does nothing while the thread is on its way out
        leaving = false;
    }
    start(QThread::InheritPriority);
    stopped = false;
}

void WorkerThread::stopThread()
{
    QMutexLocker held(&mutex);
    stopped = true;
}

void WorkerThread::pause(QMutexLocker &held, unsigned int ms)
{
    held.unlock();
    msleep(ms);
    held.relock();
    if (abandoned)
        stopped = true;
}

void WorkerThread::leaveLoop()
{
    stopped = true;
    giveUpLoop();
}

void WorkerThread::giveUpLoop()
{
    // The thread cleans up behind itself in destructors, and one of those that is unwound takes the process along.
    setTerminationEnabled(false);
    leaving = true;
}

bool WorkerThread::tryToEnd(unsigned long cycleWaitMs, unsigned long waitMs)
{
    // A cycle holds the mutex, and a driver that hangs never ends it.
    if (mutex.tryLock(int(std::min(cycleWaitMs, patienceMs.load())))) {
        stopped = true;
        mutex.unlock();
        wait(waitMs);
    } else {
        patienceMs = kEndWaitMs;
    }
    terminate();                     // does nothing to a thread that has returned
    return wait(kTerminationWaitMs); // terminate() only asks: a thread inside a system call may never hear it
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
    ++leftBehindCount;
    return false;
}

int WorkerThread::leftBehind()
{
    return leftBehindCount;
}
