#include "monitor/BreathAndWave.h"

#include <QPainter>
#include <QtMath>

#include <algorithm>
#include <array>

namespace
{

constexpr double kPulseLow = 0.7;
constexpr double kPulseHigh = 0.9;
constexpr double kPulseStep = 0.006; // some 33 frames up and as many down

constexpr double kGlowStart = 0.35;    // the full colour reaches as far, as a share of half the side
constexpr double kMinFadeWidth = 1e-6; // likewise; keeps a division in range

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

/// The glow's colour by the distance from the picture's middle.
class GlowColors
{
public:
    GlowColors(double half, double innerRadius, double breathPos, const QColor &color)
        : innerBound(innerRadius > 0.0 ? qMax(0.0, innerRadius - 0.5) : -1.0),
          outerBound(qMin(half, breathPos * half))
    {
        if (!(innerBound < outerBound))
            return;
        while (squareOf(outerBound) >> shift >= kEntries)
            ++shift;
        const double alpha = color.alphaF();
        const double fadeWidth = qMax(breathPos - kGlowStart, kMinFadeWidth);
        const int first = innerBound > 0.0 ? squareOf(innerBound) >> shift : 0;
        for (int i = first; i < kEntries; ++i) {
            const double distance = 0.5 * std::sqrt(static_cast<double>(i << shift) + ((1 << shift) >> 1));
            const double faded = (distance / half - kGlowStart) / fadeWidth;
            const double edge = innerRadius > 0.0 ? qBound(0.0, distance - innerRadius + 0.5, 1.0) : 1.0;
            const double strength = alpha * edge * (1.0 - qBound(0.0, faded, 1.0));
            entries[static_cast<std::size_t>(i)] =
                qRgba(qRound(color.red() * strength), qRound(color.green() * strength),
                      qRound(color.blue() * strength), qRound(255.0 * strength));
        }
    }

    /// How far the circle of that radius reaches to the side, in half pixels, `dy` half pixels off the middle; -1
    /// where it does not.
    static int reach(double radius, int dy)
    {
        const double square = 4.0 * radius * radius - static_cast<double>(dy) * dy;
        return radius > 0.0 && square >= 0.0 ? static_cast<int>(std::sqrt(square)) : -1;
    }

    [[nodiscard]] QRgb at(int distanceSquared) const
    {
        return entries[static_cast<std::size_t>(qMin(distanceSquared >> shift, kEntries - 1))];
    }

    const double innerBound; ///< nothing is painted nearer to the middle; -1 without a hole
    const double outerBound; ///< the colour has faded out there

private:
    static int squareOf(double radius) { return static_cast<int>(4.0 * radius * radius); }

    static constexpr int kEntries = 4096; // finer than a tenth of a pixel at the ring of the home page
    int shift = 0;                        ///< squared distances that share an entry, as a power of two
    std::array<QRgb, kEntries> entries{}; ///< premultiplied
};

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
    const int side = qMin(picture.width(), picture.height());
    if (side == 0)
        return;
    const GlowColors colors(side / 2.0, innerRadius > 0.0 ? innerRadius : -1.0, breathPos, color);
    if (!(colors.innerBound < colors.outerBound))
        return;

    // The colour depends on the distance from the middle alone, and the four quarters are mirror images: a quarter of
    // the look-ups and no rasterizer make this a fifth of what a gradient brush costs.
    for (int y = 0; 2 * y < side; ++y) {
        const int dy =
            side - 1 - 2 * y; // distances in half pixels, which are whole numbers from every pixel's centre
        const int outer = GlowColors::reach(colors.outerBound, dy);
        if (outer < 0)
            continue;
        const int inner = GlowColors::reach(colors.innerBound, dy);
        auto *row = reinterpret_cast<QRgb *>(picture.scanLine(y));
        const int first = qMax(0, (side - 1 - outer + 1) / 2);
        const int last = inner < 0 ? (side - 1) / 2 : qMin((side - 1) / 2, (side - 1 - inner) / 2);
        for (int x = first; x <= last; ++x) {
            const int dx = side - 1 - 2 * x;
            row[x] = row[side - 1 - x] = colors.at(dx * dx + dy * dy);
        }
        auto *mirrored = reinterpret_cast<QRgb *>(picture.scanLine(side - 1 - y));
        if (mirrored != row)
            std::copy(row + first, row + side - first, mirrored + first);
    }
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
