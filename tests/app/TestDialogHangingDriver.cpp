#include "app/MainDialogTest.h"
#include "monitor/sampling/Ovryn_SendNvCardInfoThread.h"
#include "worker/WorkerThread.h"

#include <QSemaphore>

#include <atomic>

/// The end of the dialog while a call of the driver hangs in a way that nothing can end.
///
/// A program of its own: what is left behind stays to its end.
class TestDialogHangingDriver : public MainDialogTest
{
    Q_OBJECT

private slots:
    void hangingCardIsLeftBehind();
};

namespace
{

QThread *leftBehindWorker = nullptr; // what hangs on it is no leak

struct DeafThread : QThread
{
    using QThread::setTerminationEnabled;
};

} // namespace

void TestDialogHangingDriver::hangingCardIsLeftBehind()
{
    driver->cards.resize(2);
    QThread *const guiThread = QThread::currentThread();
    std::atomic<bool> mayHang{true};
    QSemaphore inCall;
    QSemaphore answer;
    driver->onCall(Operation::NvAPI_GPU_GetMemoryInfo, [&] {
        if (QThread::currentThread() == guiThread || !mayHang.exchange(false))
            return;
        leftBehindWorker = QThread::currentThread();
        DeafThread::setTerminationEnabled(false); // as inside a system call that isn't interrupted
        inCall.release();
        answer.acquire();
    });
    auto dialog = std::make_unique<OvrynDeck2>(nullptr, kQuickPages);
    QVERIFY(inCall.tryAcquire(1, 20000));
    const int callsBefore = driver->calls().size();

    dialog->close();
    QVERIFY(savedText().contains(QLatin1String("GpuName=\"GeForce GTX 1070 Ti 1\""))); // nothing waits for the driver
    dialog.reset();
    QCOMPARE(WorkerThread::leftBehind(), 1);
    QVERIFY(leftBehindWorker->isRunning());
    QCOMPARE(nvApiLoadCount(), 1); // the library stays for the thread that is inside; the other card has let it go
    QCOMPARE(driver->releases(), driver->loads() - 1);

    // The driver answers after all. The thread finds its worker and its card, and whoever it would tell is gone.
    answer.release();
    QVERIFY(leftBehindWorker->wait(20000));
    QVERIFY(driver->calls().size() > callsBefore);
    QCOMPARE(driver->strayCalls(), 0);
}

QTEST_MAIN(TestDialogHangingDriver)
#include "TestDialogHangingDriver.moc"
