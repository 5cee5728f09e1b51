#include "app/MainDialogTest.h"
#include "monitor/sampling/Ovryn_SendNvCardInfoThread.h"
#include "worker/WorkerThread.h"

#include <QSemaphore>

#include <atomic>

/// The end of the dialog while a call of the driver hangs in a way that nothing can end.
///
/// A separate program: an abandoned worker stays until the process ends.
class TestMainDialogHangingDriver : public MainDialogTest
{
    Q_OBJECT

private slots:
    void hangingCardIsAbandoned();
};

namespace
{

QThread *abandonedWorker = nullptr; // keeps its objects reachable, so they are no leak

struct DeafThread : QThread
{
    using QThread::setTerminationEnabled;
};

} // namespace

void TestMainDialogHangingDriver::hangingCardIsAbandoned()
{
    driver->cards.resize(2);
    QThread *const guiThread = QThread::currentThread();
    std::atomic<bool> mayHang{true};
    QSemaphore inCall;
    QSemaphore answer;
    driver->onCall(Operation::NvAPI_GPU_GetMemoryInfo, [&] {
        if (QThread::currentThread() == guiThread || !mayHang.exchange(false))
            return;
        abandonedWorker = QThread::currentThread();
        DeafThread::setTerminationEnabled(false); // as inside a system call that isn't interrupted
        inCall.release();
        answer.acquire();
    });
    auto dialog = std::make_unique<OvrynDeck2>(nullptr, kQuickPages);
    QVERIFY(inCall.tryAcquire(1, 20000));
    const int callsBefore = driver->calls().size();

    dialog->close();
    QVERIFY(savedText().contains(QLatin1String("GpuName=\"GeForce GTX 1070 Ti 1\"")));
    dialog.reset();
    QCOMPARE(WorkerThread::abandonedCount(), 1);
    QVERIFY(abandonedWorker->isRunning());
    QCOMPARE(nvApiLoadCount(), 1); // of the thread that is inside; the other card has released the library
    QCOMPARE(driver->releases(), driver->loads() - 1);

    // The driver returns after all. The thread still has its worker and its card; the receivers of its signals are
    // gone.
    answer.release();
    QVERIFY(abandonedWorker->wait(20000));
    QVERIFY(driver->calls().size() > callsBefore);
    QCOMPARE(driver->strayCalls(), 0);
}

QTEST_MAIN(TestMainDialogHangingDriver)
#include "TestMainDialogHangingDriver.moc"
