#pragma once

#include <QColor>
#include <QImage>
#include <QPoint>
#include <QRect>
#include <QSize>

/// Where the hue ring lies in a palette box and how hues and points go together. Hue 0 lies at the left and
/// hue grows clockwise.
struct HueRing
{
    static constexpr double kBlurRadius = 15.0; ///< pixels
    static constexpr double kHoleAngle =
        0.4363323129985824; ///< radians, 25 degrees: the corners of what the hole holds

    QSize box;              ///< of the palette, pixels
    double outerRadius = 0; ///< pixels
    double innerRadius = 0; ///< pixels

    static HueRing forSize(QSize box);

    [[nodiscard]] QPoint center() const { return {box.width() / 2, box.height() / 2}; }
    [[nodiscard]] bool contains(QPoint point) const; ///< on the ring itself
    [[nodiscard]] double hueAt(QPoint point) const;  ///< degrees, 0 to 360; 180 in the centre
    [[nodiscard]] QPointF pointAt(double hue, double radius) const;
    [[nodiscard]] QRect hole() const; ///< what fits into the hole at kHoleAngle

    /// The softened ring and where its top left corner lies in the box; null for a box without room.
    [[nodiscard]] QImage image(QPoint *topLeft) const;

    static QColor pureColor(double hue); ///< fully saturated
};

/// A soft blur in place, reaching `radius` pixels, of an image with premultiplied alpha.
void softenImage(QImage &image, double radius);
