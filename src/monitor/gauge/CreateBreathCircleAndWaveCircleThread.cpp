#include "monitor/gauge/CreateBreathCircleAndWaveCircleThread.h"

#include "monitor/gauge/SharedGaugeAnimation.h"

#include <QMutexLocker>
#include <QPainter>

#include <utility>

namespace
{

constexpr unsigned long kEndTimeoutMs = 1000;

QImage emptyImage(int side)
{
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

void clear(QImage &image, const QRect &part)
{
    QPainter painter(&image);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.fillRect(part, Qt::transparent);
}

} // namespace

CreateBreathCircleAndWaveCircleThread::CreateBreathCircleAndWaveCircleThread(QObject *parent) : WorkerThread(parent)
{
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
    forgetPictures();
}

void CreateBreathCircleAndWaveCircleThread::setBreathEnabled(bool enabled)
{
    QMutexLocker locker(&mutex);
    breathEnabled = enabled;
    forgetPictures();
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
    forgetPictures();
}

void CreateBreathCircleAndWaveCircleThread::setWaveRadius(double r)
{
    QMutexLocker locker(&mutex);
    waveRadius = r + 1.0;
    forgetPictures();
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
        if ((!breathEnabled && !waveEnabled) || stopped || !pause(held, unsigned(sleepMs)))
            break;
    }
    leaveLoop();
}

void CreateBreathCircleAndWaveCircleThread::forgetPictures()
{
    image = QImage();
    previous = QImage();
}

void CreateBreathCircleAndWaveCircleThread::paintFrame()
{
    const WaveDisc disc = {size, waveRadius, waveEnabled ? waveLevel : 0.0, lightBrush, darkBrush};
    std::swap(image, previous);
    std::swap(imageBreathPos, previousBreathPos);
    if (image.isDetached()) {
        clear(image, disc.bounds()); // a glow overwrites the earlier one, and the rest is empty
    } else {
        image = emptyImage(size);
        imageBreathPos = 0;
    }

    if (breathEnabled) {
        const double breathPos = SharedGaugeAnimation::stepPulse().breathPos;
        paintGlow(image, breathRadius, breathPos, glowColor, imageBreathPos);
        imageBreathPos = breathPos;
    }
    discPainter.paint(image, disc, disc.hasWave() ? SharedGaugeAnimation::stepWave(disc.shape()) : WaveMotion());
}
