#include "monitor/gauge/BreathAndWave.h"

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
constexpr double kCrestShare = 4.0 / 9.0; // of its control point's height, where a cubic with three level points ends
constexpr double kMaxRadius = 1.0e6;      // keeps squares of lengths far from overflow
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
    GlowColors(double half, double innerRadius, double breathPos, const QColor &color, double earlierBreathPos)
        : innerBound(innerRadius > 0.0 ? qMax(0.0, innerRadius - 0.5) : -1.0),
          outerBound(qMin(half, qMax(breathPos, earlierBreathPos) * half))
    {
        const double fadedBound = qMin(half, breathPos * half);
        if (!(innerBound < fadedBound))
            return;
        while (squareOf(fadedBound) >> shift >= kEntries)
            ++shift;
        const int last = squareOf(fadedBound) >> shift;
        const double alpha = color.alphaF();
        const double fadeWidth = qMax(breathPos - kGlowStart, kMinFadeWidth);
        const int first = innerBound > 0.0 ? squareOf(innerBound) >> shift : 0;
        for (int i = first; i <= last; ++i) {
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
        const int entry = distanceSquared >> shift;
        return entry < kEntries ? entries[static_cast<std::size_t>(entry)] : 0;
    }

    const double innerBound; ///< nothing is painted nearer to the middle; -1 without a hole
    const double outerBound; ///< nor beyond; this glow and the earlier one have faded out there

private:
    static int squareOf(double radius) { return static_cast<int>(4.0 * radius * radius); }

    static constexpr int kEntries = 4096; // finer than a tenth of a pixel at the ring of the home page
    int shift = 0;                        ///< squared distances that share an entry, as a power of two
    std::array<QRgb, kEntries> entries{}; ///< premultiplied; transparent where the colour has faded out
};

/// The part as a picture on the same memory. Painting there spares the rasterizer the wave outside the part: a nearly
/// level line costs it the square of its length.
QImage windowOn(QImage &picture, const QRect &part)
{
    return QImage(picture.scanLine(part.top()) + part.left() * kBytesPerPixel, part.width(), part.height(),
                  picture.bytesPerLine(), picture.format());
}

/// Paints the water of a disc that has a wave into the part of the picture, over what it holds.
void paintWater(QImage &picture, const QRect &part, const WaveDisc &disc, const WaveMotion &motion)
{
    QImage window = windowOn(picture, part);
    QPainter painter(&window);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(-part.topLeft());
    painter.setClipPath(disc.circle()); // the same picture as the paths' intersection with the disc, and cheap
    const WaveShape shape = disc.shape();
    painter.fillPath(wavePath(shape, disc.width, motion.amp1, motion.wavePhase), disc.darkBrush);
    painter.fillPath(wavePath(shape, disc.width, motion.amp2, motion.wavePhase), disc.darkBrush);
}

/// The rows of a disc between the highest crest and the lowest trough: dry above, flooded from `end` on.
struct MovingRows
{
    int top = 0;
    int end = 0; ///< the row after the last one
};

MovingRows movingRows(const WaveDisc &disc, const WaveMotion &motion, const QRect &part)
{
    const WaveShape shape = disc.shape();
    const double crest = kCrestShare * qMax(qAbs(motion.amp1), qAbs(motion.amp2)) + 1.0; // and the blurred edge
    const int end = part.bottom() + 1;
    const auto row = [&](double y) {
        return static_cast<int>(qBound<double>(part.top(), y, end));
    };
    const bool waterToTheRight = waveEnd(shape, motion.wavePhase) >= part.right() + 1;
    return {row(std::floor(shape.waterline - crest)),
            waterToTheRight ? row(std::ceil(shape.waterline + crest)) : end};
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

double waveEnd(const WaveShape &shape, double phase)
{
    return (shape.segmentCount + shape.segmentCount % 2) * shape.segment + phase;
}

QPainterPath wavePath(const WaveShape &shape, int width, double amplitude, double phase)
{
    const double y = shape.waterline;
    const double end = waveEnd(shape, phase);
    double sign = 1.0;
    QPainterPath path(QPointF(0, y));
    for (int i = 0; i < shape.segmentCount; i += 2) {
        path.cubicTo(i * shape.segment + phase, y, (i + 1) * shape.segment + phase, y + sign * amplitude,
                     (i + 2) * shape.segment + phase, y);
        sign = -sign;
    }
    // A subpath of its own: odd-even filling adds the crests to the water and takes the troughs from it.
    path.moveTo(0, y);
    path.lineTo(0, width);
    path.lineTo(end, width);
    path.lineTo(end, y);
    path.closeSubpath();
    return path;
}

void paintGlow(QImage &picture, double innerRadius, double breathPos, const QColor &color, double earlierBreathPos)
{
    const int side = qMin(picture.width(), picture.height());
    if (side == 0)
        return;
    const GlowColors colors(side / 2.0, innerRadius > 0.0 ? innerRadius : -1.0, breathPos, color, earlierBreathPos);
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
        const int end = 1 + (inner < 0 ? (side - 1) / 2 : qMin((side - 1) / 2, (side - 1 - inner) / 2));
        for (int x = first; x < end; ++x) {
            const int dx = side - 1 - 2 * x;
            row[x] = row[side - 1 - x] = colors.at(dx * dx + dy * dy);
        }
        auto *mirrored = reinterpret_cast<QRgb *>(picture.scanLine(side - 1 - y));
        if (mirrored == row)
            continue;
        std::copy(row + first, row + end, mirrored + first);
        std::copy(row + side - end, row + side - first, mirrored + side - end);
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

QRect WaveDisc::bounds() const
{
    return radius > 0.0 ? circle().boundingRect().toAlignedRect() & QRect(0, 0, width, width) : QRect();
}

QPainterPath WaveDisc::circle() const
{
    const double usedRadius = qMin(radius, kMaxRadius);
    QPainterPath path;
    path.addEllipse(QPointF(width / 2.0, width / 2.0), usedRadius, usedRadius);
    return path;
}

void paintWaveDisc(QImage &picture, const WaveDisc &disc, const WaveMotion &motion)
{
    const QRect part = disc.bounds() & picture.rect();
    if (part.isEmpty())
        return;
    {
        QImage window = windowOn(picture, part);
        QPainter painter(&window);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.translate(-part.topLeft());
        painter.fillPath(disc.circle(), disc.lightBrush);
        if (disc.level >= 1.0)
            painter.fillPath(disc.circle(), disc.darkBrush);
    }
    if (disc.hasWave())
        paintWater(picture, part, disc, motion);
}

void WaveDiscPainter::paint(QImage &picture, const WaveDisc &disc, const WaveMotion &motion)
{
    if (disc.level >= 1.0) {
        paintWaveDisc(picture, disc, motion);
        return;
    }
    const QRect bounds = disc.bounds();
    const QRect part = bounds & picture.rect();
    if (part.isEmpty())
        return;
    if (!stillPicturesFit(disc))
        paintStillPictures(disc);

    const int end = part.bottom() + 1;
    const MovingRows moving = disc.hasWave() ? movingRows(disc, motion, part) : MovingRows{end, end};
    {
        QPainter painter(&picture);
        const auto blendRows = [&](const QImage &still, int from, int to) {
            if (from < to)
                painter.drawImage(part.left(), from, still, part.left() - bounds.left(), from - bounds.top(),
                                  part.width(), to - from);
        };
        blendRows(dry, part.top(), moving.end);
        blendRows(flooded, moving.end, end);
    }
    if (moving.top < moving.end)
        paintWater(picture, QRect(part.left(), moving.top, part.width(), moving.end - moving.top), disc, motion);
}

bool WaveDiscPainter::stillPicturesFit(const WaveDisc &disc) const
{
    return disc.width == painted.width && disc.radius == painted.radius && disc.lightBrush == painted.lightBrush &&
           disc.darkBrush == painted.darkBrush;
}

void WaveDiscPainter::paintStillPictures(const WaveDisc &disc)
{
    painted = disc;
    painted.level = 0;
    QImage whole(disc.width, disc.width, QImage::Format_ARGB32_Premultiplied);
    whole.fill(Qt::transparent);
    paintWaveDisc(whole, painted, {});
    dry = whole.copy(disc.bounds());

    QPainter painter(&whole);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setClipPath(disc.circle());
    painter.fillRect(whole.rect(), disc.darkBrush); // below both waves the colour is deeper
    painter.fillRect(whole.rect(), disc.darkBrush);
    painter.end();
    flooded = whole.copy(disc.bounds());
}
