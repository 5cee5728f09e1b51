#pragma once

#include <QDeadlineTimer>
#include <QMutex>
#include <QMutexLocker>
#include <QThread>

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>

/// The base of every worker thread: a mutex that the loop holds through each cycle and frees only for its sleep, and
/// a flag that is true while no loop should run.
///
/// A worker derives from this, writes its loop in `run()` (mutex first, see `stopped`, `pause` and `leaveLoop`) and
/// calls `endThread` in its own destructor: the loop uses the worker's members, so it must be over before
/// they go. The operations are called by the thread that owns the worker.
class WorkerThread : public QThread
{
public:
    explicit WorkerThread(QObject *parent = nullptr);
    ~WorkerThread() override;

    /// True when no loop runs or the loop was asked to end. Waits for a running cycle.
    [[nodiscard]] bool isStopped();

    /// Asks the loop to end and wakes it from its pause; waits for nothing. The owner of several workers asks all of
    /// them first, so that their last cycles run in parallel: the time limit of a cycle counts from the first
    /// request. A start cancels the request.
    void requestEnd();

    /// Requests the end and waits for it. False when a cycle takes longer than its time limit, or the thread needs
    /// longer than kEndWaitMs to leave its loop.
    bool endsInTime();

    /// Deletes the worker, or abandons it when its thread can't be ended because a driver call never returns: the
    /// worker then stays alive for its thread, without a parent, until the process ends. False in that case. For a
    /// cycle that doesn't end it waits for the rest of the time limit, at most `cycleWaitMs`, then at most kEndWaitMs
    /// and kTerminationWaitMs.
    static bool endAndDelete(WorkerThread *worker, unsigned long cycleWaitMs = kCycleWaitMs);

    /// Sets how long an end waits for a running cycle from now on; kCycleWaitMs unless this was called. For an end
    /// that the system demands within seconds.
    static void setCycleWait(unsigned long cycleWaitMs);

    /// Replaces the sleep between two cycles, for a caller that controls the worker's time; before the first start.
    /// It is called in the worker's thread, with the mutex free, and no request to end wakes it.
    void setSleep(std::function<void(unsigned int ms)> function);

    /// How many workers of this process were abandoned. Such a worker's thread may continue at any time, so the
    /// process must then end without destroying its static objects.
    [[nodiscard]] static int abandonedCount();

    /// For a running cycle. The limit is long for the sake of a slow driver: to end a thread inside it is the last
    /// resort.
    static constexpr unsigned long kCycleWaitMs = 20000;
    static constexpr unsigned long kEndWaitMs = 2000;         ///< for a loop that was asked to end
    static constexpr unsigned long kTerminationWaitMs = 1000; ///< for a thread that was terminated

protected:
    /// Starts the thread and clears `stopped`, all under the mutex; nothing when it is cleared already.
    void startThread();

    /// The same for a caller that holds the mutex.
    void startThreadUnderMutex();

    /// Asks the loop to end. It checks for that at the end of a cycle, and continues if it was started again before.
    void stopThread();

    /// The sleep of a loop between two cycles, the only place where it frees the mutex: through the loop's own
    /// locker, so that a thread that is terminated here unlocks nothing. A stop doesn't cut it short; a request to
    /// end does. False when the loop is to end without another cycle; `stopped` is set then.
    bool pause(QMutexLocker &held, unsigned int ms);

    /// True for a worker that was abandoned during a cycle: whatever it orders now comes after the end of its owner.
    [[nodiscard]] bool isAbandoned() const { return abandoned; }

    /// The last step of a loop, with the mutex held, when it ends by itself or was asked to. After it the thread does
    /// not take the mutex again, a start waits for the thread's end, and nothing ends it by force.
    void leaveLoop();

    /// The same for a loop that gives up: `stopped` stays unset, so that a start does nothing until a stop.
    void giveUpLoop();

    /// Sets `stopped` after a cycle under way, waits at most `waitMs`, and then terminates the thread whether or not
    /// it has ended by itself. A destructor can't abandon the thread, so it waits without limit for a thread that
    /// can't be ended: an owner that must not block uses endAndDelete.
    void endThread(unsigned long waitMs = kEndWaitMs);

    QMutex mutex;        ///< taken before any lock of the device object, never after it
    bool stopped = true; ///< guarded by mutex; a loop looks at it at the end of each cycle

private:
    bool waitForLoop(unsigned long cycleWaitMs, unsigned long waitMs);
    bool tryToEnd(unsigned long cycleWaitMs, unsigned long waitMs);

    bool leaving = false; ///< guarded by mutex; the thread may still run, but no loop does
    std::atomic<bool> abandoned{false};
    std::function<void(unsigned int)> sleep; ///< empty: the thread sleeps
    std::mutex endLock; ///< taken for a moment only; in the loop's thread never while it waits for `mutex`
    std::condition_variable endWanted;
    bool endRequested = false;    ///< guarded by endLock
    QDeadlineTimer cycleDeadline; ///< the time limit of a cycle, from the first request on; owner's thread only
};
