#include "monitor/GaugeLayout.h"

#include <QtMath>

namespace
{

int truncated(double pixels)
{
    return static_cast<int>(pixels);
}

/// Half the chord that the hole spans at `height` above its centre.
double halfChord(double radius, int height)
{
    return std::sqrt(qMax(0.0, radius * radius - double(height) * height));
}

} // namespace

RingLayout ringLayoutFor(QSize box, double ringRatio)
{
    RingLayout layout;
    layout.side = qMax(0, qMin(box.width(), box.height()));
    layout.ringSize = ringRatio * layout.side * 3.0;
    layout.holeRadius = layout.ringSize / 3.0;
    layout.thickness = layout.ringSize * 0.5 - layout.holeRadius;
    const int offset = truncated((layout.side - layout.ringSize) * 0.5);
    const int extent = truncated(layout.ringSize);
    layout.button = QRect(offset, offset, extent, extent);
    return layout;
}

ReadoutLayout readoutLayoutFor(int side, double holeRadius)
{
    const int centre = side / 2;
    const int big = truncated(holeRadius / 3.0);
    const int small = truncated(holeRadius / 6.0);
    const int chord = truncated(2.0 * halfChord(holeRadius, big));
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
    const int height = truncated(side * ringRatio / 5.0);
    const int column = truncated(halfChord(holeRadius, height));
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
