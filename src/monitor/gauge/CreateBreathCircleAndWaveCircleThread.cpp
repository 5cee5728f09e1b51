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

bool GaugeFrame::discDiffers(const GaugeFrame &other) const
{
    const bool moves = disc.hasWave() || other.disc.hasWave();
    return moves || disc.width != other.disc.width || !(disc.radius == other.disc.radius) ||
           (disc.level >= 1.0) != (other.disc.level >= 1.0);
}

CreateBreathCircleAndWaveCircleThread::CreateBreathCircleAndWaveCircleThread(QObject *parent) : WorkerThread(parent)
{
    qRegisterMetaType<GaugeFrame>("GaugeFrame");
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

GaugeFrame CreateBreathCircleAndWaveCircleThread::nextFrame()
{
    QMutexLocker locker(&mutex);
    return paintFrame();
}

void CreateBreathCircleAndWaveCircleThread::run()
{
    QMutexLocker held(&mutex);
    for (;;) {
        const GaugeFrame frame = paintFrame();
        emit sendImage(frame.picture);
        emit sendFrame(frame);
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

GaugeFrame CreateBreathCircleAndWaveCircleThread::paintFrame()
{
    const WaveDisc disc = {size, waveRadius, waveEnabled ? waveLevel : 0.0, lightBrush, darkBrush};
    std::swap(image, previous);
    std::swap(imageBreathPos, previousBreathPos);
    if (image.isDetached()) {
        clear(image, disc.bounds()); // the glow overwrites the earlier one, and the rest is empty
    } else {
        image = emptyImage(size);
        imageBreathPos = 0;
    }

    double glowReach = 0;
    if (breathEnabled) {
        const double breathPos = SharedGaugeAnimation::stepPulse().breathPos;
        paintGlow(image, breathRadius, breathPos, glowColor, imageBreathPos);
        imageBreathPos = breathPos;
        glowReach = breathPos * size / 2.0;
    }
    discPainter.paint(image, disc, disc.hasWave() ? SharedGaugeAnimation::stepWave(disc.shape()) : WaveMotion());
    return {image, glowReach, disc};
}
