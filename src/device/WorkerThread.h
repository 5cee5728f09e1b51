#pragma once

#include <QMutex>
#include <QMutexLocker>
#include <QThread>

/// The shape of every worker thread that talks to a card: a mutex that the loop holds through each
/// cycle and frees only for its sleep, and a flag that is true while no loop is to run.
///
/// A worker derives from this, writes its loop in `run()` (mutex first, see `stopped` and `leaveLoop`) and
/// calls `endThread` in its own destructor: the loop uses the worker's members, so it must be over before
/// they go. The operations are called by the thread that owns the worker.
class WorkerThread : public QThread
{
public:
    explicit WorkerThread(QObject *parent = nullptr);
    ~WorkerThread() override;

    /// True when no loop runs or the loop was told to end. Waits for a running cycle.
    [[nodiscard]] bool isStopped();

protected:
    /// Starts the thread and clears `stopped`, all under the mutex; nothing when it is cleared already.
    void startThread();

    /// Asks the loop to end. It sees that at the end of a cycle, and goes on if it is started again before.
    void stopThread();

    /// What a loop does last, with the mutex held, when it ends by itself or was told to: from here to its end the
    /// thread takes the mutex no more, and a start waits for that end.
    void leaveLoop();

    /// The sleep of a loop between two cycles, the only place where it frees the mutex: through the loop's own
    /// locker, so that a thread that is terminated here unlocks nothing. Nothing wakes it. A test replaces it to
    /// drive the clock, and then calls endThread in its own destructor.
    virtual void pause(QMutexLocker &held, unsigned int ms);

    /// Sets `stopped`, waits at most `waitMs`, and then terminates the thread whether or not it has ended by
    /// itself. Waits for a running cycle first, since that holds the mutex.
    void endThread(unsigned long waitMs = kEndWaitMs);

    static constexpr unsigned long kEndWaitMs = 2000;

    QMutex mutex;        ///< taken before any lock of the device object, never after it
    bool stopped = true; ///< guarded by mutex; a loop looks at it at the end of each cycle

private:
    bool leaving = false; ///< guarded by mutex; the thread may still run, but no loop does
};
