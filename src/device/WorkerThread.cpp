#include "device/WorkerThread.h"

#include <QMutexLocker>

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
    start(QThread::InheritPriority);
    stopped = false;
}

void WorkerThread::endThread(unsigned long waitMs)
{
    {
        QMutexLocker held(&mutex);
        stopped = true;
    }
    wait(waitMs);
    terminate(); // does nothing to a thread that has returned
    wait();      // terminate() only asks; a QThread that still runs must not be destroyed
}
