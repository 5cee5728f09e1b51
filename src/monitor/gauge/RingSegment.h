#pragma once

#include <QColor>
#include <QFont>
#include <QImage>
#include <QPainterPath>
#include <QPolygonF>
#include <QString>
#include <QVector>

class QPainter;

/// \file
/// One 120 degree segment of the gauge's ring: its outline and the caption that runs along it. Angles are
/// degrees counted counter-clockwise from three o'clock, y upward, as QPainterPath::arcTo takes them.

/// The segments, counted counter-clockwise from the top.
enum RingSegmentType
{
    RingSegmentClock = 1,       ///< upper left
    RingSegmentMemory = 2,      ///< bottom
    RingSegmentTemperature = 3, ///< upper right
};

/// The band's width for a square of `side` pixels: `thickness` itself, or a sixth of the side where the
/// thickness is no width that a ring of this size can have.
[[nodiscard]] double usableThickness(double thickness, int side);

/// The gap between two segments: 4 pixels wide, from the centre outward along `angle`, beyond the ring.
[[nodiscard]] QPolygonF spokeBand(int side, double angle);

/// Outline of a segment inside the square of `side` pixels. Any type but 1 and 2 is the upper right one.
[[nodiscard]] QPainterPath ringSegmentPath(int side, double thickness, int type);

/// A span of the text circle, passed through from `end` down to `start`.
struct ArcSpan
{
    double start = 0;
    double end = 0;
};

[[nodiscard]] ArcSpan captionSpan(int type);

/// Angle of each character's middle. Characters follow each other clockwise, centred in the span; a text
/// that is longer than the arc starts at its beginning and runs past its end. The radius must be above 0.
[[nodiscard]] QVector<double> characterAngles(const QVector<double> &widths, double textWidth, double radius,
                                              ArcSpan span);

/// Picture of one segment with its caption.
struct RingSegment
{
    int side = 0; ///< pixels; 0 or less paints nothing
    double thickness = 0;
    int type = RingSegmentClock;
    QString text;
    QString family; ///< of the caption's font

    /// The segment in `color` and the caption in white, in the square of `side` at the painter's origin.
    void paint(QPainter &painter, const QColor &color) const;

    /// Transparent square with the segment in `color` and the caption in white. Null for an empty square.
    [[nodiscard]] QImage painted(const QColor &color) const;
};
