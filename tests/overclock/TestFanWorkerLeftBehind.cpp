#include "device/NvGpuControl.h"
#include "overclock/Ovryn_SetUserDefineFanSpeedThread.h"
#include "support/CheckedDriver.h"

#include <QSemaphore>
#include <QtTest>

#include <atomic>
#include <memory>

/// A fan worker that was left behind in a call of the driver, which answers after the fan was handed back.
class TestFanWorkerLeftBehind : public QObject
{
    Q_OBJECT

private slots:
    void handBackStands_data();
    void handBackStands();
};

namespace
{

constexpr unsigned long kNoPatienceMs = 100;

struct DeafThread : QThread
{
    using QThread::setTerminationEnabled;
};

bool isHandBack(const QString &order)
{
    return order.endsWith(QLatin1String("automatic"));
}

} // namespace

void TestFanWorkerLeftBehind::handBackStands_data()
{
    QTest::addColumn<Operation>("hangingCall");
    QTest::newRow("hangs while it reads the temperature") << Operation::NvAPI_GPU_GetThermalSettings;
    QTest::newRow("hangs in its order") << Operation::NvAPI_GPU_SetCoolerLevels;
}

void TestFanWorkerLeftBehind::handBackStands()
{
    QFETCH(Operation, hangingCall);
    CheckedDriver driver;
    auto control = std::make_shared<NvGpuControl>();
    QThread *const testThread = QThread::currentThread();
    std::atomic<bool> mayHang{true};
    QSemaphore inCall;
    QSemaphore answer;
    driver.onCall(hangingCall, [&] {
        if (QThread::currentThread() == testThread || !mayHang.exchange(false))
            return;
        DeafThread::setTerminationEnabled(false); // as inside a system call that isn't interrupted
        inCall.release();
        answer.acquire();
    });
    auto *worker = new Ovryn_SetUserDefineFanSpeedThread(control.get());
    worker->startWork();
    QVERIFY(inCall.tryAcquire(1, 20000));

    QVERIFY(!WorkerThread::endAndDelete(worker, kNoPatienceMs));
    QVERIFY(control->setCoolerAuto());
    const std::weak_ptr<NvGpuControl> stillThere = control;
    control.reset(); // the worker has a share
    QVERIFY(!stillThere.expired());

    answer.release();
    QVERIFY(worker->wait(20000));
    delete worker;
    const QStringList orders = driver.orders();
    QVERIFY2(isHandBack(orders.last()), qPrintable(orders.join(QLatin1Char('\n'))));
}

QTEST_GUILESS_MAIN(TestFanWorkerLeftBehind)
#include "TestFanWorkerLeftBehind.moc"
