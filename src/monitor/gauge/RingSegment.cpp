#include "monitor/gauge/RingSegment.h"

#include <QFontMetricsF>
#include <QLineF>
#include <QPainter>
#include <QtMath>

#include <algorithm>

namespace
{

constexpr double kSegmentDegrees = 120.0;
constexpr double kSpokeAngles[] = {90.0, 210.0, 330.0};
constexpr double kSpokeOverhang = 5.0;  // pixels beyond the ring, so that the cut leaves no sliver
constexpr double kSpokeHalfWidth = 2.0; // pixels
constexpr double kTextShare = 2.5;      // the band is this many times as wide as its text is high
constexpr int kCaptionWeight = 57;

double startAngle(int type)
{
    switch (type) {
    case RingSegmentClock:
        return 90.0;
    case RingSegmentMemory:
        return 210.0;
    default:
        return 330.0;
    }
}

QPointF onCircle(double centre, double radius, double angle)
{
    const double radians = qDegreesToRadians(angle);
    return {centre + radius * std::cos(radians), centre - radius * std::sin(radians)};
}

QFont captionFont(const QString &family, int pixels)
{
    QFont font(family);
    font.setPixelSize(pixels);
    font.setWeight(kCaptionWeight);
    font.setHintingPreference(QFont::PreferFullHinting);
    return font;
}

void paintCaption(QPainter &painter, const RingSegment &segment, double thickness)
{
    const int pixels = static_cast<int>(thickness / kTextShare);
    if (pixels < 1)
        return; // a font has no such size
    const bool bottom = segment.type == RingSegmentMemory;
    QString text = segment.text;
    if (bottom)
        std::reverse(text.begin(), text.end()); // the arc runs from right to left there

    painter.setFont(captionFont(segment.family, pixels));
    painter.setPen(Qt::white);
    painter.setRenderHint(QPainter::TextAntialiasing);
    const QFontMetricsF metrics(painter.font());
    QVector<double> widths;
    for (const QChar character : qAsConst(text))
        widths.append(metrics.horizontalAdvance(character));

    const double centre = segment.side / 2.0;
    const double radius = centre - thickness / 2.0;
    const QVector<double> angles =
        characterAngles(widths, metrics.horizontalAdvance(text), radius, captionSpan(segment.type));
    for (int i = 0; i < text.size(); ++i) {
        painter.save();
        painter.translate(onCircle(centre, radius, angles[i]));
        painter.rotate(-(angles[i] - 90.0) - (bottom ? 180.0 : 0.0));
        painter.drawText(QPointF(-widths[i] / 2.0, metrics.height() / 4.0), QString(text[i]));
        painter.restore();
    }
}

} // namespace

double usableThickness(double thickness, int side)
{
    const bool usable = thickness > 0.0 && thickness < side; // false for a number that is none
    return usable ? thickness : side / 6.0;
}

QPolygonF spokeBand(int side, double angle)
{
    const double centre = side / 2.0;
    const QLineF spoke(QPointF(centre, centre), onCircle(centre, centre + kSpokeOverhang, angle));
    QLineF normal = spoke.normalVector();
    normal.setLength(kSpokeHalfWidth);
    const QPointF offset = normal.p2() - normal.p1();
    return QPolygonF({spoke.p1() + offset, spoke.p2() + offset, spoke.p2() - offset, spoke.p1() - offset});
}

QPainterPath ringSegmentPath(int side, double thickness, int type)
{
    QPainterPath path;
    if (side <= 0)
        return path;
    const QPointF centre(side / 2.0, side / 2.0);
    path.moveTo(centre);
    path.arcTo(QRectF(0, 0, side, side), startAngle(type), kSegmentDegrees);
    path.closeSubpath();

    for (const double angle : kSpokeAngles) {
        QPainterPath band;
        band.addPolygon(spokeBand(side, angle));
        band.closeSubpath();
        path = path.subtracted(band);
    }
    const double holeRadius = side / 2.0 - usableThickness(thickness, side);
    if (holeRadius > 0.0) {
        QPainterPath hole;
        hole.addEllipse(centre, holeRadius, holeRadius);
        path = path.subtracted(hole);
    }
    return path;
}

ArcSpan captionSpan(int type)
{
    switch (type) {
    case RingSegmentClock:
        return {90.0, 210.0};
    case RingSegmentMemory:
        return {210.0, 330.0};
    default:
        return {-30.0, 90.0};
    }
}

QVector<double> characterAngles(const QVector<double> &widths, double textWidth, double radius, ArcSpan span)
{
    const double degrees = span.end - span.start;
    const double arc = degrees / 180.0 * M_PI * radius;
    const double degreesPerPixel = degrees / arc;

    double end = span.end;
    if (textWidth < arc)
        end -= (degrees - degreesPerPixel * textWidth) * 0.5;

    QVector<double> angles;
    angles.reserve(widths.size());
    for (const double width : widths) {
        angles.append(end - width / 2.0 * degreesPerPixel);
        end -= width * degreesPerPixel;
    }
    return angles;
}

void RingSegment::paint(QPainter &painter, const QColor &color) const
{
    const double width = usableThickness(thickness, side);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(ringSegmentPath(side, width, type), color);
    paintCaption(painter, *this, width);
}

QImage RingSegment::painted(const QColor &color) const
{
    if (side <= 0)
        return {};
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        return {};
    image.fill(Qt::transparent);
    QPainter painter(&image);
    paint(painter, color);
    return image;
}
