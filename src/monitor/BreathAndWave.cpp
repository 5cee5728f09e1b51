#include "monitor/BreathAndWave.h"

#include <QPainter>
#include <QRadialGradient>
#include <QtMath>

namespace
{

constexpr double kPulseLow = 0.7;
constexpr double kPulseHigh = 0.9;
constexpr double kPulseStep = 0.006; // some 33 frames up and as many down

constexpr double kGlowStart = 0.35; // gradient stop of the full colour

constexpr double kMinSegment = 1.0;
constexpr double kMinAmplitude = 1.0; // a flatter surface would look frozen
constexpr double kAmp1Steps = 50.0;   // frames from zero to the limit
constexpr double kAmp2Steps = 40.0;
constexpr double kPhaseSteps = 10.0; // frames in which a wave moves by one segment
constexpr double kWaveSegments = 4.0;
constexpr double kMaxRadius = 1.0e6; // keeps squares of lengths far from overflow
constexpr int kBytesPerPixel = 4;

void stepAmplitude(double &amplitude, bool &falling, double limit, double steps)
{
    if (amplitude >= limit)
        falling = true;
    if (amplitude <= -limit)
        falling = false;
    amplitude += falling ? -limit / steps : limit / steps;
    if (amplitude > -kMinAmplitude && amplitude < kMinAmplitude)
        amplitude = falling ? -kMinAmplitude : kMinAmplitude; // jumps over zero
}

} // namespace

BreathPulse stepped(BreathPulse pulse)
{
    if (pulse.breathPos >= kPulseHigh)
        pulse.breathFalling = true;
    if (pulse.breathPos <= kPulseLow) {
        pulse.breathPos += kPulseStep;
        pulse.breathFalling = false;
    } else {
        pulse.breathPos += pulse.breathFalling ? -kPulseStep : kPulseStep;
    }
    return pulse;
}

WaveShape waveShapeFor(int width, double radius, double level)
{
    WaveShape shape;
    shape.waterline = std::trunc(width / 2.0 + radius - 2.0 * radius * level);
    const double depth = level <= 0.5 ? radius * level : (1.0 - level) * radius;
    const double toCentre = radius - depth;
    const double halfChord = std::sqrt(qMax(0.0, radius * radius - toCentre * toCentre));
    shape.segment = qMax(kMinSegment, 0.5 * halfChord); // short waves near top and bottom
    shape.segmentCount = static_cast<int>(width / shape.segment);
    shape.amplitudeLimit = shape.segment / 3.0;
    return shape;
}

WaveMotion stepped(WaveMotion motion, const WaveShape &shape)
{
    stepAmplitude(motion.amp1, motion.amp1Falling, shape.amplitudeLimit, kAmp1Steps);
    stepAmplitude(motion.amp2, motion.amp2Falling, shape.amplitudeLimit, kAmp2Steps);
    if (motion.wavePhase >= kWaveSegments * shape.segment)
        motion.wavePhase -= kWaveSegments * shape.segment;
    motion.wavePhase += shape.segment / kPhaseSteps;
    return motion;
}

QPainterPath wavePath(const WaveShape &shape, int width, double amplitude, double phase)
{
    const double y = shape.waterline;
    double right = phase;
    double sign = 1.0;
    QPainterPath path(QPointF(0, y));
    for (int i = 0; i < shape.segmentCount; i += 2) {
        right = (i + 2) * shape.segment + phase;
        path.cubicTo(i * shape.segment + phase, y, (i + 1) * shape.segment + phase, y + sign * amplitude, right, y);
        sign = -sign;
    }
    // A subpath of its own: odd-even filling adds the crests to the water and takes the troughs from it.
    path.moveTo(0, y);
    path.lineTo(0, width);
    path.lineTo(right, width);
    path.lineTo(right, y);
    path.closeSubpath();
    return path;
}

void paintGlow(QImage &picture, double innerRadius, double breathPos, const QColor &color)
{
    const double half = picture.width() / 2.0;
    // From breathPos on the gradient is transparent, so that nothing need be painted there.
    const double outerRadius = qMin(half, breathPos * half + 1.0);
    if (picture.isNull() || innerRadius >= outerRadius)
        return;
    const QPointF centre(half, half);
    QRadialGradient gradient(centre, half, centre, 0.0);
    gradient.setColorAt(kGlowStart, color);
    gradient.setColorAt(breathPos, QColor(255, 0, 0, 0));

    QPainterPath shape;
    shape.addEllipse(centre, outerRadius, outerRadius);
    if (innerRadius > 0.0)
        shape.addEllipse(centre, innerRadius, innerRadius); // odd-even filling leaves it out
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(shape, gradient);
}

bool WaveDisc::hasWave() const
{
    return width > 0 && radius > 0.0 && level > 0.0 && level < 1.0;
}

WaveShape WaveDisc::shape() const
{
    return waveShapeFor(width, qMin(radius, kMaxRadius), level);
}

void paintWaveDisc(QImage &picture, const WaveDisc &disc, const WaveMotion &motion)
{
    if (!(disc.radius > 0.0))
        return;
    const double radius = qMin(disc.radius, kMaxRadius);
    const double centre = disc.width / 2.0;
    const QRectF bounds(centre - radius, centre - radius, 2.0 * radius, 2.0 * radius);
    const QRect part = bounds.toAlignedRect().intersected(picture.rect());
    if (part.isEmpty())
        return;

    // Painting into a window on the picture's own memory spares the rasterizer the wave outside the disc: a
    // nearly level line costs it the square of its length.
    QImage window(picture.scanLine(part.top()) + part.left() * kBytesPerPixel, part.width(), part.height(),
                  picture.bytesPerLine(), picture.format());
    QPainter painter(&window);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(-part.topLeft());

    QPainterPath circle;
    circle.addEllipse(bounds);
    painter.fillPath(circle, disc.lightBrush);
    if (disc.level >= 1.0)
        painter.fillPath(circle, disc.darkBrush);
    if (!disc.hasWave())
        return;

    const WaveShape shape = disc.shape();
    painter.setClipPath(circle); // the same picture as the paths' intersection with the disc, and cheap
    painter.fillPath(wavePath(shape, disc.width, motion.amp1, motion.wavePhase), disc.darkBrush);
    painter.fillPath(wavePath(shape, disc.width, motion.amp2, motion.wavePhase), disc.darkBrush);
}
