#include "app/MainDialogTest.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>

#include <cstddef>

#ifdef __SANITIZE_ADDRESS__
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#else
#include <malloc.h>
#endif

/// The toolkit's table for debuggers: functions that are called with each object made and destroyed.
extern Q_CORE_EXPORT quintptr qtHookData[];

/// The whole dialog is made and deleted a thousand times in one process: nothing grows.
class TestMainDialogEndurance : public MainDialogTest
{
    Q_OBJECT

private slots:
    void thousandStartsAndStops();

private:
    void liveOnce(int number);
};

namespace
{

constexpr int kLives = 1000;
constexpr int kShownEvery = 8;    // the others are started for the tray: the painting would take most of the time
constexpr int kWarmUpLives = 200; // caches of fonts, styles and pictures have filled by then

constexpr qint64 kBytesOfGrowth = 512; // a life

// as in the toolkit's own header of its hooks, which is not for programs
constexpr int kHookAddObject = 3;
constexpr int kHookRemoveObject = 4;

QAtomicInt liveObjects;

void objectAdded(QObject *)
{
    liveObjects.ref();
}

void objectRemoved(QObject *)
{
    liveObjects.deref();
}

qint64 allocatedBytes()
{
#ifdef __SANITIZE_ADDRESS__
    return qint64(__sanitizer_get_current_allocated_bytes());
#else
    return qint64(mallinfo2().uordblks);
#endif
}

int threadsOfThisProcess()
{
    return QDir(QStringLiteral("/proc/self/task")).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size();
}

int filesOfThisProcess()
{
    return QDir(QStringLiteral("/proc/self/fd"))
        .entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)
        .size();
}

struct Holdings
{
    int objects;
    int threads;
    int files;
    int widgets;
    qint64 bytes;
};

Holdings holdings()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return {liveObjects.loadRelaxed(), threadsOfThisProcess(), filesOfThisProcess(),
            QApplication::allWidgets().size(), allocatedBytes()};
}

} // namespace

void TestMainDialogEndurance::liveOnce(int number)
{
    OvrynDeck2 dialog(nullptr, kQuickPages);
    if (number % kShownEvery != 0) { // started for the tray
        dialog.close();
        return;
    }
    dialog.show();
    const QList<const char *> pages = {"btnMonitor", "btnGpuFixedInfo", "btnFirstSlot", "btnSecondSlot"};
    button(dialog, pages.at(number / kShownEvery % pages.size()))->click();
    finishSlide(dialog);
    QCoreApplication::processEvents();
    dialog.close();
}

void TestMainDialogEndurance::thousandStartsAndStops()
{
    qtHookData[kHookAddObject] = reinterpret_cast<quintptr>(&objectAdded);
    qtHookData[kHookRemoveObject] = reinterpret_cast<quintptr>(&objectRemoved);
    writeConfig("<OvrynParameter><GeneralSetting StartOnBoot=\"1\" ApplyLastParamOnStart=\"1\" Language=\"lang_en\" "
                "PageEffects=\"advanced\"/><OtherSetting NotPromptHPS=\"1\"/></OvrynParameter>");

    Holdings afterWarmUp{};
    QElapsedTimer timer;
    timer.start();
    for (int life = 1; life <= kLives; ++life) {
        liveOnce(life);
        driver->forgetCalls(); // the list of calls is the stand-in's own
        if (life == kWarmUpLives)
            afterWarmUp = holdings();
    }
    const Holdings atTheEnd = holdings();
    qInfo("%lld ms a life, %lld bytes more at the end", timer.elapsed() / kLives, atTheEnd.bytes - afterWarmUp.bytes);

    QVERIFY(afterWarmUp.objects > 0);
    QCOMPARE(atTheEnd.objects, afterWarmUp.objects);
    QCOMPARE(atTheEnd.widgets, afterWarmUp.widgets);
    QCOMPARE(atTheEnd.threads, afterWarmUp.threads);
    QCOMPARE(atTheEnd.files, afterWarmUp.files);
    QCOMPARE(nvApiLoadCount(), 0);
    // A dialog takes megabytes, and its smallest part more than this; the toolkit's tables grow by some bytes.
    QVERIFY2(atTheEnd.bytes - afterWarmUp.bytes < (kLives - kWarmUpLives) * kBytesOfGrowth,
             qPrintable(QString::number(atTheEnd.bytes - afterWarmUp.bytes)));
}

QTEST_MAIN(TestMainDialogEndurance)
#include "TestMainDialogEndurance.moc"
