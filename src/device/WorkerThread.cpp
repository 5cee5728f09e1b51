#include "device/WorkerThread.h"

#include <atomic>

namespace
{

std::atomic<int> leftBehindCount{0};

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
    constexpr unsigned int longestMs = 0x7FFFFFFF;
    held.unlock();
    const bool toEnd = ending.tryAcquire(1, int(qMin(ms, longestMs)));
    held.relock();
    if (toEnd) { // also where nobody could set the flag, since the cycle before took too long
        stopped = true;
        ending.release();
    }
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

bool WorkerThread::tryToEnd(unsigned long waitMs)
{
    ending.release();
    // A cycle holds the mutex, and a driver that hangs never ends it.
    if (mutex.tryLock(int(waitMs))) {
        stopped = true;
        mutex.unlock();
        wait(waitMs);
    }
    terminate();                     // does nothing to a thread that has returned
    return wait(kTerminationWaitMs); // terminate() only asks: a thread inside a system call may never hear it
}

void WorkerThread::endThread(unsigned long waitMs)
{
    if (!tryToEnd(waitMs))
        wait(); // a QThread that still runs must not be destroyed
}

bool WorkerThread::endAndDelete(WorkerThread *worker)
{
    if (!worker || worker->tryToEnd(kEndWaitMs)) {
        delete worker;
        return true;
    }
    worker->setParent(nullptr);
    ++leftBehindCount;
    return false;
}

int WorkerThread::leftBehind()
{
    return leftBehindCount;
}
