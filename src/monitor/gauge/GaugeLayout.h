#pragma once

#include <QRect>
#include <QRegion>
#include <QSize>

#include <array>

/// \file
/// Where everything of the gauge lies, as values computed from its size. All lengths are pixels of the
/// gauge widget; the gauge is the square of side `side` at the widget's origin.

/// The ring of three segments around the hole.
struct RingLayout
{
    int side = 0;          ///< the smaller of the widget's width and height
    double ringSize = 0;   ///< outer diameter of the ring
    double holeRadius = 0; ///< radius of the hole that holds the readout
    double thickness = 0;  ///< width of the ring's band
    QRect button;          ///< all three segment buttons; their masks keep them apart
};

/// `ringRatio` is the hole's radius as a share of the side; the ring's diameter is three times as much.
[[nodiscard]] RingLayout ringLayoutFor(QSize box, double ringRatio);

/// The chosen quantity with its highest and lowest value.
struct ReadoutLayout
{
    int bigPixels = 0;   ///< font of the main value
    int smallPixels = 0; ///< font of the four small texts
    QRect mainValue;
    QRect maxLabel;
    QRect maxValue;
    QRect minLabel;
    QRect minValue;

    [[nodiscard]] QRect bounds() const { return mainValue | maxLabel | maxValue | minLabel | minValue; }
};

[[nodiscard]] ReadoutLayout readoutLayoutFor(int side, double holeRadius);

/// The three rows that stand in the hole while an overclocking slider moves.
struct OverlayLayout
{
    struct Row
    {
        QRect label;
        QRect value;
    };

    int fontPixels = 0;
    std::array<Row, 3> rows; ///< preset, present, difference
};

[[nodiscard]] OverlayLayout overlayLayoutFor(int side, double holeRadius, double ringRatio);

/// What of the gauge a new picture of the animation can change where its glow reaches `glowReach` pixels from the
/// middle: all so far but the band of the ring, which the glow leaves out and the disc does not reach. In strips of
/// some pixels, for a region of few rectangles is cheap to repaint.
[[nodiscard]] QRegion animatedRegionFor(const RingLayout &ring, double glowReach);

/// The square around the disc.
[[nodiscard]] QRect discRectFor(const RingLayout &ring);
