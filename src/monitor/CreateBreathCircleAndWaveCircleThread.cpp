#include "monitor/CreateBreathCircleAndWaveCircleThread.h"

#include "monitor/SharedGaugeAnimation.h"

#include <QMutexLocker>

namespace
{

constexpr unsigned long kEndTimeoutMs = 1000;

QImage emptyImage(int side)
{
    return QImage(side, side, QImage::Format_ARGB32_Premultiplied);
}

} // namespace

CreateBreathCircleAndWaveCircleThread::CreateBreathCircleAndWaveCircleThread(QObject *parent) : WorkerThread(parent)
{
    image = emptyImage(size);
}

CreateBreathCircleAndWaveCircleThread::~CreateBreathCircleAndWaveCircleThread()
{
    endThread(kEndTimeoutMs);
}

void CreateBreathCircleAndWaveCircleThread::startRender()
{
    startThread();
}

void CreateBreathCircleAndWaveCircleThread::stopRender()
{
    stopThread();
}

void CreateBreathCircleAndWaveCircleThread::setSize(int side)
{
    QMutexLocker locker(&mutex);
    size = qBound(0, side, kMaxSide);
    image = emptyImage(size);
}

void CreateBreathCircleAndWaveCircleThread::setBreathEnabled(bool enabled)
{
    QMutexLocker locker(&mutex);
    breathEnabled = enabled;
}

void CreateBreathCircleAndWaveCircleThread::setWaveEnabled(bool enabled)
{
    QMutexLocker locker(&mutex);
    waveEnabled = enabled;
}

void CreateBreathCircleAndWaveCircleThread::setWaveLevel(double level)
{
    QMutexLocker locker(&mutex);
    waveLevel = level;
}

void CreateBreathCircleAndWaveCircleThread::setBreathRadius(double r)
{
    QMutexLocker locker(&mutex);
    breathRadius = r - 1.0;
}

void CreateBreathCircleAndWaveCircleThread::setWaveRadius(double r)
{
    QMutexLocker locker(&mutex);
    waveRadius = r + 1.0;
}

void CreateBreathCircleAndWaveCircleThread::setSleepMs(unsigned long milliseconds)
{
    QMutexLocker locker(&mutex);
    sleepMs = milliseconds;
}

QImage CreateBreathCircleAndWaveCircleThread::renderFrame()
{
    QMutexLocker locker(&mutex);
    paintFrame();
    return image;
}

void CreateBreathCircleAndWaveCircleThread::run()
{
    QMutexLocker held(&mutex);
    for (;;) {
        paintFrame();
        emit sendImage(image);
        if ((!breathEnabled && !waveEnabled) || stopped)
            break;
        pause(held, sleepMs);
    }
    leaveLoop();
}

void CreateBreathCircleAndWaveCircleThread::paintFrame()
{
    if (!image.isDetached())
        image = emptyImage(size); // fill() would copy first what it then overwrites
    if (image.isNull())
        return;
    image.fill(Qt::transparent);

    if (breathEnabled)
        paintGlow(image, breathRadius, SharedGaugeAnimation::stepPulse().breathPos, glowColor);
    const WaveDisc disc = {image.width(), waveRadius, waveEnabled ? waveLevel : 0.0, lightBrush, darkBrush};
    paintWaveDisc(image, disc, disc.hasWave() ? SharedGaugeAnimation::stepWave(disc.shape()) : WaveMotion());
}
