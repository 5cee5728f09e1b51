#include "board/LedPageWorld.h"
#include "worker/WorkerThread.h"

#include <QSemaphore>

/// The end of the LED page on a controller with gradients, which gets a closing frame, while a call of the driver
/// hangs.
///
/// A program of its own: the patience with a hanging call is one for the process.
class TestLedPageEnd : public QObject
{
    Q_OBJECT

private slots:
    void stateDisplayThatHangs();
    void stateDisplayThatSleeps();
};

namespace
{

constexpr unsigned long kPatienceMs = 100;

QThread *leftBehindWorker = nullptr; // what hangs on it is no leak

struct DeafThread : QThread
{
    using QThread::setTerminationEnabled;
};

} // namespace

void TestLedPageEnd::stateDisplayThatHangs()
{
    LedPageWorld world;
    world.setControllerType(3);
    world.setTemperature(40);
    world.open();
    QThread *const guiThread = QThread::currentThread();
    QSemaphore inCall;
    QSemaphore answer;
    world.driver.onCall(Operation::NvAPI_GPU_GetThermalSettings, [&] {
        if (QThread::currentThread() == guiThread)
            return;
        leftBehindWorker = QThread::currentThread();
        DeafThread::setTerminationEnabled(false); // as inside a system call that isn't interrupted
        inCall.release();
        answer.acquire();
    });
    world.choose("rdbState");
    QVERIFY(inCall.tryAcquire(1, 20000));

    WorkerThread::setCycleWait(kPatienceMs);
    world.page.reset(); // comes back, with the call still under way
    WorkerThread::setCycleWait(WorkerThread::kCycleWaitMs);
    QCOMPARE(WorkerThread::abandonedCount(), 1);
    QVERIFY(leftBehindWorker->isRunning());
    answer.release();
    QVERIFY(leftBehindWorker->wait(20000));
}

void TestLedPageEnd::stateDisplayThatSleeps()
{
    constexpr LedTimings longSleep{0, 0, 0, 10, 3600 * 1000};
    LedPageWorld world;
    world.setControllerType(3);
    world.setTemperature(40);
    world.open(longSleep);
    world.choose("rdbState");
    const QString green = QStringLiteral("08 01 32 04 00 FF 00 C1");
    QTRY_COMPARE(world.frames().size(), 1);
    QCOMPARE(world.takeFrames(), QStringList(green));
    world.page.reset();
    QCOMPARE(world.takeFrames(), QStringList(green)); // the worker's colour once more, without the closing mark
}

QTEST_MAIN(TestLedPageEnd)
#include "TestLedPageEnd.moc"
