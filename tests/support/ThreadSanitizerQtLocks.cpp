// Shows QtCore's locks and hand-overs to the thread sanitizer. The distribution's QtCore is not built with it and
// its locks are futexes, so data that a QMutex guards, or that a thread has handed over by ending, would be
// reported as racing. The functions below stand in front of QtCore's: each calls its original and tells the
// sanitizer what that has done.
//
// The beginning of a thread needs nothing: it is a pthread's, which the sanitizer sees. QMutexLocker calls
// QMutex::lock and unlock out of line, so no lock is hidden in inline code. Other classes, QWaitCondition and
// QReadWriteLock among them, are not used by the project; whoever uses one adds it here.
#include <QMutex>
#include <QSemaphore>
#include <QThread>

#include <dlfcn.h>
#include <sanitizer/tsan_interface.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>

namespace
{

/// A function of QtCore that this file replaces; called with the object first, as the platform's C++ calls a member.
/// Looked up at the first call, since libraries may call before this program's own objects are made.
template <typename Function>
class Original;

template <typename Result, typename... Arguments>
class Original<Result(Arguments...)>
{
public:
    constexpr explicit Original(const char *mangledName) : name(mangledName) {}

    Result operator()(Arguments... arguments) { return function()(arguments...); }

private:
    using Function = Result (*)(Arguments...);

    Function function()
    {
        // Relaxed, since the look-up itself must not look like a hand-over between the callers.
        Function known = found.load(std::memory_order_relaxed);
        if (!known) {
            known = reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
            if (!known) {
                std::fprintf(stderr, "%s is not in QtCore\n", name);
                std::abort();
            }
            found.store(known, std::memory_order_relaxed);
        }
        return known;
    }

    const char *name;
    std::atomic<Function> found{nullptr};
};

Original<void(QMutex *)> lockMutex("_ZN6QMutex4lockEv");
Original<bool(QMutex *, int)> tryLockMutex("_ZN6QMutex7tryLockEi");
Original<void(QMutex *)> unlockMutex("_ZN6QMutex6unlockEv");
Original<void(QMutex *)> destroyMutex("_ZN6QMutexD1Ev");
Original<void(QSemaphore *, int)> acquireSemaphore("_ZN10QSemaphore7acquireEi");
Original<bool(QSemaphore *, int)> tryAcquireSemaphore("_ZN10QSemaphore10tryAcquireEi");
Original<bool(QSemaphore *, int, int)> tryAcquireSemaphoreFor("_ZN10QSemaphore10tryAcquireEii");
Original<void(QSemaphore *, int)> releaseSemaphore("_ZN10QSemaphore7releaseEi");
Original<void(QThread *, QThread::Priority)> startThread("_ZN7QThread5startENS_8PriorityE");
Original<bool(QThread *, QDeadlineTimer)> waitUntil("_ZN7QThread4waitE14QDeadlineTimer");
Original<bool(QThread *, unsigned long)> waitFor("_ZN7QThread4waitEm");

// Some are recursive, and which ones the header does not tell; a plain one that is locked twice hangs by itself.
constexpr unsigned kMutex = __tsan_mutex_write_reentrant;
constexpr unsigned kTriedMutex = kMutex | __tsan_mutex_try_lock;

/// Hands over what a thread did when it ends. `finished` is the last that it does before a wait() for it returns, and
/// the only place there that can be reached from outside. One object and no state: whatever the threads shared here
/// would itself look like a hand-over.
class ThreadEnds : public QObject
{
public:
    void handOver() { __tsan_release(QThread::currentThread()); }
};

ThreadEnds threadEnds;

} // namespace

void QMutex::lock() QT_MUTEX_LOCK_NOEXCEPT
{
    __tsan_mutex_pre_lock(this, kMutex);
    lockMutex(this);
    __tsan_mutex_post_lock(this, kMutex, 0);
}

bool QMutex::tryLock(int timeout) QT_MUTEX_LOCK_NOEXCEPT
{
    __tsan_mutex_pre_lock(this, kTriedMutex);
    const bool locked = tryLockMutex(this, timeout);
    __tsan_mutex_post_lock(this, locked ? kTriedMutex : kTriedMutex | __tsan_mutex_try_lock_failed, 0);
    return locked;
}

void QMutex::unlock() noexcept
{
    __tsan_mutex_pre_unlock(this, 0);
    unlockMutex(this);
    __tsan_mutex_post_unlock(this, 0);
}

QMutex::~QMutex()
{
    __tsan_mutex_destroy(this, 0);
    destroyMutex(this);
}

void QSemaphore::acquire(int n)
{
    acquireSemaphore(this, n);
    __tsan_acquire(this);
}

bool QSemaphore::tryAcquire(int n)
{
    const bool acquired = tryAcquireSemaphore(this, n);
    if (acquired)
        __tsan_acquire(this);
    return acquired;
}

bool QSemaphore::tryAcquire(int n, int timeout)
{
    const bool acquired = tryAcquireSemaphoreFor(this, n, timeout);
    if (acquired)
        __tsan_acquire(this);
    return acquired;
}

void QSemaphore::release(int n)
{
    __tsan_release(this);
    releaseSemaphore(this, n);
}

void QThread::start(Priority priority)
{
    connect(this, &QThread::finished, &threadEnds, &ThreadEnds::handOver,
            static_cast<Qt::ConnectionType>(Qt::DirectConnection | Qt::UniqueConnection));
    startThread(this, priority);
}

bool QThread::wait(QDeadlineTimer deadline)
{
    const bool ended = waitUntil(this, deadline);
    if (ended)
        __tsan_acquire(this);
    return ended;
}

bool QThread::wait(unsigned long time)
{
    const bool ended = waitFor(this, time);
    if (ended)
        __tsan_acquire(this);
    return ended;
}
