#include "device/WorkerThread.h"

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

void WorkerThread::leaveLoop()
{
    stopped = true;
    leaving = true;
}

void WorkerThread::pause(QMutexLocker &held, unsigned int ms)
{
    held.unlock();
    msleep(ms);
    held.relock();
}

void WorkerThread::endThread(unsigned long waitMs)
{
    stopThread();
    wait(waitMs);
    terminate(); // does nothing to a thread that has returned
    wait();      // terminate() only asks; a QThread that still runs must not be destroyed
}
