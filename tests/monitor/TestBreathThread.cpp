#include "monitor/gauge/CreateBreathCircleAndWaveCircleThread.h"
#include "monitor/gauge/SharedGaugeAnimation.h"

#include <QtTest>

#include <memory>
#include <random>

namespace
{

constexpr int kPatienceMs = 20000; // the machine may be busy

/// Collects the pictures on the test's own thread.
class Receiver : public QObject
{
    Q_OBJECT

public:
    explicit Receiver(const CreateBreathCircleAndWaveCircleThread &renderer)
    {
        connect(&renderer, SIGNAL(sendImage(QImage)), this, SLOT(recvImage(QImage)), Qt::QueuedConnection);
        connect(&renderer, SIGNAL(finished()), this, SLOT(recvEnd()), Qt::QueuedConnection);
    }

    int frames = 0;
    int ends = 0;
    QImage last;

public slots:
    void recvImage(const QImage &image)
    {
        ++frames;
        last = image;
    }
    void recvEnd() { ++ends; }
};

/// Notes its pauses, and takes none of them.
class HurryingRenderer : public CreateBreathCircleAndWaveCircleThread
{
public:
    HurryingRenderer() : CreateBreathCircleAndWaveCircleThread(nullptr)
    {
        setSleep([this](unsigned int ms) {
            {
                QMutexLocker held(&pausesLock);
                pauses << ms;
            }
            QThread::yieldCurrentThread(); // so that others get the renderer's mutex
        });
    }
    ~HurryingRenderer() override { endThread(); }

    [[nodiscard]] QList<unsigned int> pausesMs()
    {
        QMutexLocker held(&pausesLock);
        return pauses;
    }

private:
    QMutex pausesLock;
    QList<unsigned int> pauses; ///< guarded by pausesLock
};

bool isEmptyPicture(const QImage &image)
{
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixel(x, y) != 0)
                return false;
        }
    }
    return true;
}

} // namespace

class TestBreathThread : public QObject
{
    Q_OBJECT

private slots:
    void withBothEffectsOffItEndsAfterOneEmptyFrame();
    void withBothEffectsOffTheDiscIsPale();
    void aDisabledWaveIsEmptyAtAnyLevel();
    void framesShowTheLevel_data();
    void framesShowTheLevel();
    void glowKeepsOutsideTheRing();
    void radiiOverlapTheRingByAPixel();
    void aPictureThatIsUsedAgainShowsNothingOld();
    void itPausesAfterEachFrame_data();
    void itPausesAfterEachFrame();
    void startingARunningThreadDoesNothing();
    void itStartsAgainAfterItEndedByItself();
    void itGoesOnWhenStartedBeforeItSawTheStop();
    void switchingBothEffectsOffEndsIt();
    void twoRenderersMoveTheAnimationTwiceAsFast();
    void aFullDiscLeavesTheWavesAlone();
    void sizes_data();
    void sizes();
    void startStopAndResizeAtRandom();
    void destructionWhileItRuns();
    void destructionWithoutAStart();
};

void TestBreathThread::withBothEffectsOffItEndsAfterOneEmptyFrame()
{
    CreateBreathCircleAndWaveCircleThread renderer(nullptr);
    Receiver receiver(renderer);
    renderer.setBreathEnabled(false);
    renderer.setWaveEnabled(false);
    renderer.startRender();
    QTRY_COMPARE_WITH_TIMEOUT(receiver.ends, 1, kPatienceMs);
    QCOMPARE(receiver.frames, 1);
    QCOMPARE(receiver.last.size(), QSize(100, 100));
    QVERIFY(isEmptyPicture(receiver.last)); // no radius, no disc
    QVERIFY(!renderer.isRunning());
}

void TestBreathThread::withBothEffectsOffTheDiscIsPale()
{
    CreateBreathCircleAndWaveCircleThread renderer(nullptr);
    renderer.setSize(200);
    renderer.setBreathRadius(60);
    renderer.setWaveRadius(40);
    renderer.setWaveLevel(1.0);
    renderer.setBreathEnabled(false);
    renderer.setWaveEnabled(false);
    const QImage picture = renderer.renderFrame();
    QCOMPARE(qAlpha(picture.pixel(100, 100)), 50);
    QCOMPARE(qAlpha(picture.pixel(100, 30)), 0);
}

void TestBreathThread::aDisabledWaveIsEmptyAtAnyLevel()
{
    CreateBreathCircleAndWaveCircleThread renderer(nullptr);
    renderer.setSize(200);
    renderer.setWaveRadius(40);
    renderer.setWaveLevel(0.9);
    renderer.setBreathEnabled(false);
    QVERIFY(qAlpha(renderer.renderFrame().pixel(100, 130)) > 200);
    renderer.setWaveEnabled(false);
    QCOMPARE(qAlpha(renderer.renderFrame().pixel(100, 130)), 50);
}

void TestBreathThread::framesShowTheLevel_data()
{
    QTest::addColumn<double>("level");
    QTest::addColumn<int>("line"); // first row of the water
    QTest::newRow("empty: the pale disc") << 0.0 << 400;
    QTest::newRow("a quarter") << 0.25 << 240;
    QTest::newRow("half") << 0.5 << 200;
    QTest::newRow("three quarters") << 0.75 << 159;
    QTest::newRow("full: the dark disc") << 1.0 << 0;
}

void TestBreathThread::framesShowTheLevel()
{
    QFETCH(double, level);
    QFETCH(int, line);
    CreateBreathCircleAndWaveCircleThread renderer(nullptr);
    renderer.setSize(400);
    renderer.setWaveRadius(80);
    renderer.setBreathEnabled(false);
    renderer.setWaveLevel(level);
    const int limit = static_cast<int>(waveShapeFor(400, 81, level).amplitudeLimit) + 2;
    for (int frame = 0; frame < 300; ++frame) { // several breaths of the waves
        const QImage picture = renderer.renderFrame();
        for (int y = 122; y < 278; ++y) { // the disc's own rows, without its edge
            const int alpha = qAlpha(picture.pixel(200, y));
            const QByteArray place = QByteArray::number(frame) + ": row " + QByteArray::number(y);
            if (y < line - limit)
                QVERIFY2(qAbs(alpha - 50) <= 1, place.constData());
            else if (y > line + limit)
                QVERIFY2(qAbs(alpha - (level < 1 ? 220 : 171)) <= 1, place.constData()); // both waves, or dark once
            else
                QVERIFY2(alpha >= 49 && alpha <= 221, place.constData());
        }
        QCOMPARE(qAlpha(picture.pixel(200, 117)), 0);
        QCOMPARE(qAlpha(picture.pixel(200, 282)), 0);
    }
}

void TestBreathThread::glowKeepsOutsideTheRing()
{
    CreateBreathCircleAndWaveCircleThread renderer(nullptr);
    renderer.setSize(200);
    renderer.setBreathRadius(60);
    renderer.setWaveRadius(0); // a disc of one pixel's radius
    int widest = 0;
    int narrowest = 100;
    for (int frame = 0; frame < 200; ++frame) {
        const QImage picture = renderer.renderFrame();
        int reach = 0; // of the glow, from the middle along the row
        for (int x = 100; x < 200; ++x) {
            const int distance = x - 100;
            const int alpha = qAlpha(picture.pixel(x, 100));
            if (distance > 2 && distance < 58)
                QCOMPARE(alpha, 0);
            if (distance == 60)
                QVERIFY(alpha > 20);
            if (alpha > 0)
                reach = distance;
        }
        widest = qMax(widest, reach);
        narrowest = qMin(narrowest, reach);
    }
    QVERIFY2(widest >= 87 && widest <= 91, qPrintable(QString::number(widest)));
    QVERIFY2(narrowest >= 67 && narrowest <= 71, qPrintable(QString::number(narrowest)));
}

void TestBreathThread::radiiOverlapTheRingByAPixel()
{
    CreateBreathCircleAndWaveCircleThread renderer(nullptr);
    renderer.setSize(200);
    renderer.setBreathRadius(60);
    renderer.setWaveRadius(40);
    const QImage picture = renderer.renderFrame();
    QVERIFY(qAlpha(picture.pixel(140, 100)) > 0);  // 40 to 41 from the centre
    QCOMPARE(qAlpha(picture.pixel(141, 100)), 0);  // 41 to 42
    QVERIFY(qAlpha(picture.pixel(158, 100)) <= 2); // 58 to 59
    QVERIFY(qAlpha(picture.pixel(159, 100)) > 50); // 59 to 60
}

void TestBreathThread::aPictureThatIsUsedAgainShowsNothingOld()
{
    const QColor glow(236, 9, 40, 180);
    CreateBreathCircleAndWaveCircleThread renderer(nullptr);
    int side = 200;
    double ring = 60;
    double hole = 40;
    double level = 0.9;
    bool breath = true;
    const auto follow = [&] {
        renderer.setSize(side);
        renderer.setBreathRadius(ring);
        renderer.setWaveRadius(hole);
        renderer.setWaveLevel(level);
        renderer.setBreathEnabled(breath);
    };
    const auto showNothingOld = [&] {
        for (int frame = 0; frame < 80; ++frame) { // a breath and more
            const QImage picture = renderer.renderFrame();
            QImage expected(side, side, QImage::Format_ARGB32_Premultiplied);
            expected.fill(Qt::transparent);
            if (breath)
                paintGlow(expected, ring - 1, SharedGaugeAnimation::pulse().breathPos, glow);
            paintWaveDisc(expected, {side, hole + 1, level, QColor(236, 9, 40, 50), QColor(236, 9, 40, 150)},
                          SharedGaugeAnimation::wave());
            QCOMPARE(picture, expected);
        }
    };
    follow();
    showNothingOld();
    renderer.setWaveLevel(level = 0.1);
    showNothingOld();
    renderer.setWaveRadius(hole = 30);
    showNothingOld();
    renderer.setBreathRadius(ring = 75);
    showNothingOld();
    renderer.setBreathEnabled(breath = false);
    showNothingOld();
    side = 160;
    breath = true;
    follow();
    showNothingOld();
}

void TestBreathThread::itPausesAfterEachFrame_data()
{
    QTest::addColumn<int>("setMs"); // -1 for what it is made with
    QTest::addColumn<unsigned int>("pauseMs");
    QTest::newRow("as made") << -1 << 20U;
    QTest::newRow("set to another time") << 7 << 7U;
}

void TestBreathThread::itPausesAfterEachFrame()
{
    QFETCH(int, setMs);
    QFETCH(unsigned int, pauseMs);
    HurryingRenderer renderer;
    Receiver receiver(renderer);
    if (setMs >= 0)
        renderer.setSleepMs(static_cast<unsigned long>(setMs));
    renderer.startRender();
    QTRY_VERIFY_WITH_TIMEOUT(receiver.frames >= 5, kPatienceMs);
    renderer.stopRender();
    QTRY_COMPARE_WITH_TIMEOUT(receiver.ends, 1, kPatienceMs);
    const QList<unsigned int> pauses = renderer.pausesMs();
    QCOMPARE(pauses.size(), receiver.frames - 1); // none after the last
    for (const unsigned int pause : pauses)
        QCOMPARE(pause, pauseMs);
}

void TestBreathThread::startingARunningThreadDoesNothing()
{
    CreateBreathCircleAndWaveCircleThread renderer(nullptr);
    Receiver receiver(renderer);
    renderer.setSleepMs(1);
    renderer.startRender();
    QTRY_VERIFY_WITH_TIMEOUT(receiver.frames >= 3, kPatienceMs);
    renderer.startRender();
    renderer.startRender();
    const int before = receiver.frames;
    QTRY_VERIFY_WITH_TIMEOUT(receiver.frames >= before + 3, kPatienceMs);
    QCOMPARE(receiver.ends, 0);
    renderer.stopRender();
    QTRY_COMPARE_WITH_TIMEOUT(receiver.ends, 1, kPatienceMs);
    const int atTheEnd = receiver.frames;
    QVERIFY(renderer.wait(kPatienceMs));
    QCoreApplication::processEvents();
    QCOMPARE(receiver.frames, atTheEnd);
}

void TestBreathThread::itStartsAgainAfterItEndedByItself()
{
    CreateBreathCircleAndWaveCircleThread renderer(nullptr);
    Receiver receiver(renderer);
    renderer.setBreathEnabled(false);
    renderer.setWaveEnabled(false);
    // Each start comes as soon as the last picture is here, often before the thread has quite ended.
    for (int start = 1; start <= 300; ++start) {
        renderer.startRender();
        QElapsedTimer clock;
        clock.start();
        while (receiver.frames < start && clock.elapsed() < kPatienceMs)
            QCoreApplication::processEvents();
        QCOMPARE(receiver.frames, start);
    }
    QTRY_COMPARE_WITH_TIMEOUT(receiver.ends, 300, kPatienceMs);
}

void TestBreathThread::itGoesOnWhenStartedBeforeItSawTheStop()
{
    CreateBreathCircleAndWaveCircleThread renderer(nullptr);
    Receiver receiver(renderer);
    renderer.setSleepMs(300);
    renderer.startRender();
    QTRY_VERIFY_WITH_TIMEOUT(receiver.frames >= 1, kPatienceMs);
    renderer.setSleepMs(1);
    renderer.stopRender();
    renderer.startRender();
    const int before = receiver.frames;
    QTRY_VERIFY_WITH_TIMEOUT(receiver.frames >= before + 3, kPatienceMs);
    QVERIFY(renderer.isRunning());
}

void TestBreathThread::switchingBothEffectsOffEndsIt()
{
    CreateBreathCircleAndWaveCircleThread renderer(nullptr);
    Receiver receiver(renderer);
    renderer.startRender();
    QTRY_VERIFY_WITH_TIMEOUT(receiver.frames >= 2, kPatienceMs);
    renderer.setBreathEnabled(false);
    const int withOneEffect = receiver.frames;
    QTRY_VERIFY_WITH_TIMEOUT(receiver.frames >= withOneEffect + 2, kPatienceMs);
    QCOMPARE(receiver.ends, 0);
    renderer.setWaveEnabled(false);
    QTRY_COMPARE_WITH_TIMEOUT(receiver.ends, 1, kPatienceMs);
    renderer.setBreathEnabled(true);
    renderer.startRender();
    const int before = receiver.frames;
    QTRY_VERIFY_WITH_TIMEOUT(receiver.frames >= before + 2, kPatienceMs);
}

void TestBreathThread::twoRenderersMoveTheAnimationTwiceAsFast()
{
    BreathPulse expected = SharedGaugeAnimation::pulse();
    CreateBreathCircleAndWaveCircleThread first(nullptr);
    CreateBreathCircleAndWaveCircleThread second(nullptr);
    Receiver firstReceiver(first);
    Receiver secondReceiver(second);
    for (CreateBreathCircleAndWaveCircleThread *renderer : {&first, &second}) {
        renderer->setSleepMs(0);
        renderer->startRender();
    }
    QTRY_VERIFY_WITH_TIMEOUT(firstReceiver.frames >= 50 && secondReceiver.frames >= 50, kPatienceMs);
    first.stopRender();
    second.stopRender();
    QTRY_VERIFY_WITH_TIMEOUT(firstReceiver.ends == 1 && secondReceiver.ends == 1, kPatienceMs);

    for (int frame = 0; frame < firstReceiver.frames + secondReceiver.frames; ++frame)
        expected = stepped(expected);
    QCOMPARE(SharedGaugeAnimation::pulse().breathPos, expected.breathPos);
    QCOMPARE(SharedGaugeAnimation::pulse().breathFalling, expected.breathFalling);
}

void TestBreathThread::aFullDiscLeavesTheWavesAlone()
{
    CreateBreathCircleAndWaveCircleThread renderer(nullptr);
    renderer.setWaveRadius(20);
    const double before = SharedGaugeAnimation::wave().wavePhase;
    for (const double level : {0.0, 1.0}) {
        renderer.setWaveLevel(level);
        QVERIFY(!renderer.renderFrame().isNull());
        QCOMPARE(SharedGaugeAnimation::wave().wavePhase, before);
    }
    renderer.setWaveLevel(0.5);
    QVERIFY(!renderer.renderFrame().isNull());
    QVERIFY(SharedGaugeAnimation::wave().wavePhase != before);
}

void TestBreathThread::sizes_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("side");
    QTest::newRow("negative") << -7 << 0;
    QTest::newRow("nothing") << 0 << 0;
    QTest::newRow("one pixel") << 1 << 1;
    QTest::newRow("home page") << 639 << 639;
    QTest::newRow("beyond any screen") << std::numeric_limits<int>::max()
                                       << CreateBreathCircleAndWaveCircleThread::kMaxSide;
}

void TestBreathThread::sizes()
{
    QFETCH(int, size);
    QFETCH(int, side);
    CreateBreathCircleAndWaveCircleThread renderer(nullptr);
    renderer.setBreathEnabled(false);
    renderer.setSize(size);
    renderer.setWaveRadius(0.2 * size);
    QCOMPARE(renderer.renderFrame().size(), QSize(side, side));
}

void TestBreathThread::startStopAndResizeAtRandom()
{
    std::mt19937 random(20181); // any seed, the same each run
    CreateBreathCircleAndWaveCircleThread renderer(nullptr);
    Receiver receiver(renderer);
    renderer.setSleepMs(0);
    for (int step = 0; step < 3000; ++step) {
        const int side = static_cast<int>(random() % 60) - 2;
        switch (random() % 8) {
        case 0:
            renderer.startRender();
            break;
        case 1:
            renderer.stopRender();
            break;
        case 2:
            renderer.setSize(side);
            break;
        case 3:
            renderer.setBreathRadius(0.3 * side);
            break;
        case 4:
            renderer.setWaveRadius(0.2 * side);
            break;
        case 5:
            renderer.setWaveLevel(static_cast<double>(random() % 13) / 10.0 - 0.1);
            break;
        case 6:
            renderer.setBreathEnabled(random() % 2 == 0);
            break;
        default:
            renderer.setWaveEnabled(random() % 2 == 0);
            QCoreApplication::processEvents();
            break;
        }
    }
    renderer.setWaveEnabled(true);
    renderer.setSize(64);
    renderer.startRender();
    const int before = receiver.frames;
    QTRY_VERIFY_WITH_TIMEOUT(receiver.frames > before && receiver.last.width() == 64, kPatienceMs);
}

void TestBreathThread::destructionWhileItRuns()
{
    for (int round = 0; round < 20; ++round) {
        auto renderer = std::make_unique<CreateBreathCircleAndWaveCircleThread>(nullptr);
        renderer->setSleepMs(1);
        renderer->startRender();
        QVERIFY(renderer->isRunning());
        renderer.reset();
    }
}

void TestBreathThread::destructionWithoutAStart()
{
    QElapsedTimer clock;
    clock.start();
    {
        const CreateBreathCircleAndWaveCircleThread renderer(nullptr);
    }
    QVERIFY(clock.elapsed() < 1000); // it did not wait for the end of what never ran
}

QTEST_MAIN(TestBreathThread)
#include "TestBreathThread.moc"
