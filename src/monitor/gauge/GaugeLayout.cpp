#include "monitor/gauge/GaugeLayout.h"

#include "device/Arithmetic.h"
#include "monitor/gauge/BreathAndWave.h"

#include <QtMath>

#include <algorithm>
#include <cmath>

namespace
{

/// Half the chord that the hole spans at `height` above its centre.
double halfChord(double radius, int height)
{
    return std::sqrt(qMax(0.0, radius * radius - double(height) * height));
}

constexpr double kAnimationOverlap = 3; // disc and glow overlap the ring by a pixel, and their edges are soft
constexpr int kStripHeight = 8;

} // namespace

RingLayout ringLayoutFor(QSize box, double ringRatio)
{
    RingLayout layout;
    layout.side = qMax(0, qMin(box.width(), box.height()));
    layout.ringSize = ringRatio * layout.side * 3.0;
    layout.holeRadius = layout.ringSize / 3.0;
    layout.thickness = layout.ringSize * 0.5 - layout.holeRadius;
    const int offset = cutToInt((layout.side - layout.ringSize) * 0.5);
    const int extent = cutToInt(layout.ringSize);
    layout.button = QRect(offset, offset, extent, extent);
    return layout;
}

ReadoutLayout readoutLayoutFor(int side, double holeRadius)
{
    const int centre = side / 2;
    const int big = cutToInt(holeRadius / 3.0);
    const int small = cutToInt(holeRadius / 6.0);
    const int chord = cutToInt(2.0 * halfChord(holeRadius, big));
    const int half = chord / 2;
    const int maxTop = centre + small / 2;
    const int minTop = centre + 2 * small;

    ReadoutLayout layout;
    layout.bigPixels = big;
    layout.smallPixels = small;
    layout.mainValue = QRect(centre - half, centre - big, chord, big);
    layout.maxLabel = QRect(centre - half, maxTop, half, small);
    layout.maxValue = QRect(centre, maxTop, chord, small);
    layout.minLabel = QRect(centre - half, minTop, half, small);
    layout.minValue = QRect(centre, minTop, chord, small);
    return layout;
}

OverlayLayout overlayLayoutFor(int side, double holeRadius, double ringRatio)
{
    const int centre = side / 2;
    const int height = cutToInt(side * ringRatio / 5.0);
    const int column = cutToInt(halfChord(holeRadius, height));
    const int quarter = height / 4;
    const std::array<int, 3> tops = {centre - 6 * quarter, centre - quarter, centre + height};

    OverlayLayout layout;
    layout.fontPixels = height;
    for (std::size_t row = 0; row < tops.size(); ++row) {
        layout.rows[row].label = QRect(centre - column, tops[row], column, height);
        layout.rows[row].value = QRect(centre, tops[row], column, height);
    }
    return layout;
}

QRegion animatedRegionFor(const RingLayout &ring, double glowReach)
{
    const double middle = ring.side / 2.0;
    const double discRadius = ring.holeRadius + kAnimationOverlap;
    const double glowInner = ring.ringSize / 2.0 - kAnimationOverlap;
    const double glowOuter = glowReach + kAnimationOverlap;

    const auto spread = [&](double radius, double dy) {
        return radius > dy ? std::sqrt(radius * radius - dy * dy) : 0.0;
    };
    QRegion region;
    for (int y = 0; y < ring.side; y += kStripHeight) {
        const double top = std::abs(y - middle);
        const double bottom = std::abs(y + kStripHeight - middle);
        const double nearest = y <= middle && middle <= y + kStripHeight ? 0.0 : std::min(top, bottom);
        const double farthest = std::max(top, bottom);
        const auto widest = [&](double radius) {
            const double half = spread(radius, nearest);
            const int left = static_cast<int>(std::floor(middle - half));
            return half > 0.0 ? QRect(left, y, static_cast<int>(std::ceil(middle + half)) - left, kStripHeight)
                              : QRect();
        };
        const double kept = spread(glowInner, farthest); // of the ring, on every row of the strip
        const int keptLeft = static_cast<int>(std::ceil(middle - kept));
        const QRect band(keptLeft, y, static_cast<int>(std::floor(middle + kept)) - keptLeft, kStripHeight);
        region += QRegion(widest(glowOuter)) - QRegion(band) + QRegion(widest(discRadius));
    }
    return region & QRect(0, 0, ring.side, ring.side);
}

QRect discRectFor(const RingLayout &ring)
{
    const double middle = ring.side / 2.0;
    const double radius = ring.holeRadius + kAnimationOverlap;
    const int left = static_cast<int>(std::floor(middle - radius));
    const int right = static_cast<int>(std::ceil(middle + radius));
    return QRect(left, left, right - left, right - left) & QRect(0, 0, ring.side, ring.side);
}
