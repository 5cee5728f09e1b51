#include <QMutex>
#include <QMutexLocker>
#include <QSemaphore>
#include <QThread>
#include <QtTest>

#include <atomic>

namespace
{

std::atomic<int> reports{0};

constexpr int kPatienceMs = 20000; // the machine may be busy

/// What two threads share in a row. The step is relaxed, so that it orders their work without being a hand-over.
struct Shared
{
    void reach(int newStep) { step.store(newStep, std::memory_order_relaxed); }
    void await(int awaitedStep)
    {
        while (step.load(std::memory_order_relaxed) < awaitedStep)
            QThread::yieldCurrentThread();
    }

    QMutex mutex;
    QMutex otherMutex;
    QRecursiveMutex recursiveMutex;
    QSemaphore semaphore;
    QSemaphore otherSemaphore;
    std::atomic<int> step{0};
    alignas(8) int value = 0; // the sanitizer remembers the last few accesses to eight bytes, so none but its own
};

using Work = void (*)(Shared &);

class Worker : public QThread
{
public:
    Worker(Shared &data, Work whatToDo) : shared(data), work(whatToDo) {}

protected:
    void run() override { work(shared); }

private:
    Shared &shared;
    Work work;
};

using Mine = void (*)(Shared &, Worker &);

} // namespace

Q_DECLARE_METATYPE(Work)
Q_DECLARE_METATYPE(Mine)

/// The sanitizer calls this once for each report.
extern "C" void __tsan_on_report(const void *)
{
    reports.fetch_add(1, std::memory_order_relaxed);
}

/// What the thread sanitizer makes of data that QtCore's locks guard, and of data that they do not.
class TestThreadSanitizerQtLocks : public QObject
{
    Q_OBJECT

private slots:
    void hasReport_data();
    void hasReport();
};

void TestThreadSanitizerQtLocks::hasReport_data()
{
    QTest::addColumn<Work>("workers");
    QTest::addColumn<Mine>("mine");
    QTest::addColumn<bool>("reported");

    const auto row = [](const char *name, Work workers, Mine mine, bool reported) {
        QTest::newRow(name) << workers << mine << reported;
    };
    const Work changeUnderLock = [](Shared &shared) {
        const QMutexLocker held(&shared.mutex);
        ++shared.value;
    };

    row(
        "change before the start", [](Shared &shared) { ++shared.value; }, [](Shared &, Worker &) {}, false);
    row(
        "changes under one lock", changeUnderLock,
        [](Shared &shared, Worker &) {
            const QMutexLocker held(&shared.mutex);
            ++shared.value;
        },
        false);
    row(
        "change without the lock", changeUnderLock, [](Shared &shared, Worker &) { ++shared.value; }, true);
    row(
        "changes under two locks", changeUnderLock,
        [](Shared &shared, Worker &) {
            const QMutexLocker held(&shared.otherMutex);
            ++shared.value;
        },
        true);
    row(
        "change after the lock is let go",
        [](Shared &shared) {
            shared.await(1); // had it been first, the lock would have handed its change over
            const QMutexLocker held(&shared.mutex);
            ++shared.value;
        },
        [](Shared &shared, Worker &) {
            QMutexLocker held(&shared.mutex);
            held.unlock();
            ++shared.value;
            shared.reach(1);
        },
        true);
    row(
        "lock that a try got", changeUnderLock,
        [](Shared &shared, Worker &) {
            if (shared.mutex.tryLock(kPatienceMs)) {
                ++shared.value;
                shared.mutex.unlock();
            }
        },
        false);
    row(
        "lock that a try did not get",
        [](Shared &shared) {
            const QMutexLocker held(&shared.mutex);
            ++shared.value;
            shared.reach(1);
            shared.await(2);
        },
        [](Shared &shared, Worker &) {
            shared.await(1);
            if (!shared.mutex.tryLock())
                ++shared.value;
            shared.reach(2);
        },
        true);
    row(
        "recursive lock",
        [](Shared &shared) {
            const QMutexLocker outer(&shared.recursiveMutex);
            QMutexLocker inner(&shared.recursiveMutex);
            inner.unlock();
            ++shared.value;
        },
        [](Shared &shared, Worker &) {
            const QMutexLocker held(&shared.recursiveMutex);
            ++shared.value;
        },
        false);
    row(
        "locks in two orders",
        [](Shared &shared) {
            const QMutexLocker outer(&shared.mutex);
            const QMutexLocker inner(&shared.otherMutex);
        },
        [](Shared &shared, Worker &worker) {
            worker.wait();
            const QMutexLocker outer(&shared.otherMutex);
            const QMutexLocker inner(&shared.mutex);
        },
        true);

    const Work changeAndRelease = [](Shared &shared) {
        ++shared.value;
        shared.semaphore.release();
    };
    row(
        "semaphore acquired", changeAndRelease,
        [](Shared &shared, Worker &) {
            shared.semaphore.acquire();
            ++shared.value;
        },
        false);
    row(
        "semaphore tried until it is released", changeAndRelease,
        [](Shared &shared, Worker &) {
            while (!shared.semaphore.tryAcquire())
                QThread::yieldCurrentThread();
            ++shared.value;
        },
        false);
    row(
        "semaphore tried for a time", changeAndRelease,
        [](Shared &shared, Worker &) {
            if (shared.semaphore.tryAcquire(1, kPatienceMs))
                ++shared.value;
        },
        false);
    row(
        "semaphore that nobody released", changeAndRelease,
        [](Shared &shared, Worker &) {
            if (!shared.otherSemaphore.tryAcquire() && !shared.otherSemaphore.tryAcquire(1, 1))
                ++shared.value;
        },
        true);

    const Work change = [](Shared &shared) {
        ++shared.value;
    };
    row(
        "change after the wait", change,
        [](Shared &shared, Worker &worker) {
            worker.wait();
            ++shared.value;
        },
        false);
    row(
        "change after a wait with a limit", change,
        [](Shared &shared, Worker &worker) {
            if (worker.wait(static_cast<unsigned long>(kPatienceMs)))
                ++shared.value;
        },
        false);
    row(
        "change after a wait for a thread that had ended", change,
        [](Shared &shared, Worker &worker) {
            QTRY_VERIFY(worker.isFinished());
            worker.wait();
            ++shared.value;
        },
        false);
    row(
        "change after the second end", change,
        [](Shared &shared, Worker &worker) {
            worker.wait();
            worker.start();
            worker.wait();
            ++shared.value;
        },
        false);
    row(
        "change before the wait", change,
        [](Shared &shared, Worker &worker) {
            ++shared.value;
            worker.wait();
        },
        true);
    row(
        "change after a wait that ran out",
        [](Shared &shared) {
            ++shared.value;
            shared.await(1);
        },
        [](Shared &shared, Worker &worker) {
            if (!worker.wait(1UL))
                ++shared.value;
            shared.reach(1);
        },
        true);
}

void TestThreadSanitizerQtLocks::hasReport()
{
    QFETCH(Work, workers);
    QFETCH(Mine, mine);
    QFETCH(bool, reported);
    reports = 0;
    Shared shared;
    Worker worker(shared, workers);
    ++shared.value;
    worker.start();
    mine(shared, worker);
    QVERIFY(worker.wait());
    QCOMPARE(reports > 0, reported);
}

QTEST_APPLESS_MAIN(TestThreadSanitizerQtLocks)
#include "TestThreadSanitizerQtLocks.moc"
