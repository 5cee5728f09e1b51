#include "overclock/Ovryn_UserDefineFanSpeed.h"

#include "overclock/FanCurve.h"
#include "ui/Reds.h"

#include <QFontMetrics>
#include <QMouseEvent>
#include <QPainter>

namespace
{

constexpr int kGridLines = 11; // both edges included
constexpr int kLabelHeight = 10;
constexpr int kLabelGap = 5;
constexpr int kScalePixelSize = 13;
constexpr int kUnitPixelSize = 10;
constexpr int kHoverPixelSize = 11;
constexpr int kHoverFanGap = 2;          // from the node's square up to the base line
constexpr int kHoverTemperatureGap = 15; // one line above it
constexpr double kCurveWidth = 1.5;

const QColor kGridColor = Reds::glass(50);
const QColor kCurveColor = Reds::glass(150);
const QColor kPressedNode(255, 255, 255);
const QColor kHoveredNode(255, 255, 255, 200);
const QColor kOtherNode(255, 255, 255, 150);

void setFontPixelSize(QPainter &painter, int pixelSize)
{
    QFont font(QStringLiteral("Arial"));
    font.setPixelSize(pixelSize);
    painter.setFont(font);
}

void paintScaleAndGrid(QPainter &painter, const FanCurvePlot &plot)
{
    setFontPixelSize(painter, kScalePixelSize);
    for (int i = 0; i < kGridLines; ++i) {
        const QString label = QString::number(10 * i);
        const int x = plot.plotLeft + plot.stepX * i;
        const int y = plot.bottom() - plot.stepY * i;
        painter.setPen(Qt::white);
        if (i > 0)
            painter.drawText(QRect(0, y - kLabelHeight / 2, plot.plotLeft - kLabelGap, kLabelHeight),
                             Qt::AlignRight | Qt::AlignVCenter | Qt::TextDontClip, label);
        painter.drawText(QRect(x - plot.stepX / 2, plot.bottom() + kLabelGap, plot.stepX, kLabelHeight),
                         Qt::AlignCenter | Qt::TextDontClip, label);
        painter.setPen(kGridColor);
        painter.drawLine(plot.plotLeft, y, plot.right(), y);
        painter.drawLine(x, plot.bottom(), x, plot.plotTop);
    }
    // The axes once more: with the translucent pen twice they are brighter than the grid.
    painter.drawLine(plot.plotLeft, plot.plotTop, plot.plotLeft, plot.bottom());
    painter.drawLine(plot.plotLeft, plot.bottom(), plot.right(), plot.bottom());
}

void paintCurve(QPainter &painter, const QList<QPoint> &pixelNodes)
{
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(kCurveColor, kCurveWidth));
    for (int i = 0; i + 1 < pixelNodes.size(); ++i)
        painter.drawLine(pixelNodes[i], pixelNodes[i + 1]);
}

void paintUnits(QPainter &painter, const FanCurvePlot &plot, const QRect &widget)
{
    setFontPixelSize(painter, kUnitPixelSize);
    painter.setPen(Qt::white);
    painter.drawText(QRect(0, plot.plotTop + kLabelGap, plot.plotLeft - kLabelGap, kLabelHeight),
                     Qt::AlignRight | Qt::AlignVCenter | Qt::TextDontClip, QStringLiteral("(%)"));
    // A cell is often wider than the margin: its part outside the widget doesn't count for the centre.
    const QRect besideAxis(plot.right(), plot.bottom() - kLabelGap, plot.stepX, kLabelHeight);
    painter.drawText(besideAxis & widget, Qt::AlignCenter | Qt::TextDontClip, QStringLiteral("(C)"));
}

void paintNode(QPainter &painter, QPoint pixel, int radius, const QColor &color)
{
    painter.setPen(color);
    painter.setBrush(color);
    painter.drawRect(pixel.x() - radius, pixel.y() - radius, 2 * radius, 2 * radius);
}

void paintHoverValues(QPainter &painter, const FanCurvePlot &plot, QPoint pixel, QPoint value, int radius)
{
    setFontPixelSize(painter, kHoverPixelSize);
    painter.setPen(Qt::white);
    const QString temperature = QString::number(value.x());
    const QString fan = QString::number(value.y());
    QPoint place(pixel.x() - radius, pixel.y() - radius - kHoverTemperatureGap);

    // Near the top edge the numbers would be outside the widget: there they are beside the node.
    const QFontMetrics metrics = painter.fontMetrics();
    const int topmost = metrics.capHeight() + 1;
    if (place.y() < topmost) {
        const int width = qMax(metrics.horizontalAdvance(temperature), metrics.horizontalAdvance(fan));
        const int besideLeft = pixel.x() - 2 * radius - width;
        place = QPoint(besideLeft >= plot.plotLeft ? besideLeft : pixel.x() + 2 * radius, topmost);
    }
    painter.drawText(place, temperature);
    painter.drawText(place + QPoint(0, kHoverTemperatureGap - kHoverFanGap), fan);
}

} // namespace

Ovryn_UserDefineFanSpeed::Ovryn_UserDefineFanSpeed(QWidget *parent) : QWidget(parent)
{
    setMouseTracking(true);
    resetToDefault();
}

void Ovryn_UserDefineFanSpeed::resetToDefault()
{
    takeCurve(FanCurve::defaultCurve());
}

void Ovryn_UserDefineFanSpeed::setPoints(const QList<QPoint> &points)
{
    takeCurve(FanCurve::hasValidEnds(points) ? points : FanCurve::defaultCurve());
}

void Ovryn_UserDefineFanSpeed::takeCurve(const QList<QPoint> &curve)
{
    valueNodes = curve;
    pixelNodes = plot.pixelsOf(valueNodes);
    // The curve may be replaced in the middle of a drag, by one with fewer nodes.
    if (pressedIndex >= pixelNodes.size())
        pressedIndex = -1;
    if (hoverIndex >= pixelNodes.size())
        hoverIndex = -1;
    update();
}

bool Ovryn_UserDefineFanSpeed::isHit(int index, QPoint position) const
{
    const QPoint distance = position - pixelNodes[index];
    return qAbs(distance.x()) <= hitRadius && qAbs(distance.y()) <= hitRadius;
}

int Ovryn_UserDefineFanSpeed::nodeAt(QPoint position) const
{
    for (int i = 0; i < pixelNodes.size(); ++i) {
        if (isHit(i, position))
            return i;
    }
    return -1;
}

int Ovryn_UserDefineFanSpeed::innerNodeAt(QPoint position) const
{
    for (int i = 1; i < pixelNodes.size() - 1; ++i) {
        if (isHit(i, position))
            return i;
    }
    return -1;
}

void Ovryn_UserDefineFanSpeed::mousePressEvent(QMouseEvent *event)
{
    const int hit = innerNodeAt(event->pos());
    if (hit >= 0)
        pressedIndex = hit;
    update();
}

void Ovryn_UserDefineFanSpeed::mouseReleaseEvent(QMouseEvent * /*event*/)
{
    pressedIndex = -1;
    update();
}

void Ovryn_UserDefineFanSpeed::mouseMoveEvent(QMouseEvent *event)
{
    hoverIndex = nodeAt(event->pos());
    update();
    if (pressedIndex <= 0 || pressedIndex >= pixelNodes.size() - 1)
        return;
    const int left = pressedIndex - 1;
    const int right = pressedIndex + 1;
    const QPoint pixel = FanCurvePlot::placeBetween(plot.clamped(event->pos()), pixelNodes[left], pixelNodes[right]);
    pixelNodes[pressedIndex] = pixel;
    valueNodes[pressedIndex] = plot.valueBetween(pixel, valueNodes[left], valueNodes[right]);
    emit pointChanged();
}

void Ovryn_UserDefineFanSpeed::mouseDoubleClickEvent(QMouseEvent *event)
{
    const int hit = innerNodeAt(event->pos());
    if (hit >= 0) {
        pixelNodes.removeAt(hit);
        valueNodes.removeAt(hit);
        hoverIndex = nodeAt(event->pos()); // the old index is another node's now
        emit pointChanged();
        return; // the release that follows repaints
    }
    update();
    if (pixelNodes.size() >= FanCurve::kMaxNodes)
        return;
    const int x = event->pos().x();
    for (int left = 0; left + 1 < pixelNodes.size(); ++left) {
        const int right = left + 1;
        if (pixelNodes[left].x() >= x || pixelNodes[right].x() <= x)
            continue;
        const QPoint place = plot.clamped(event->pos());
        const QPoint pixel(place.x(), FanCurvePlot::heightBetween(place.y(), pixelNodes[left], pixelNodes[right]));
        const QPoint value = plot.valueBetween(pixel, valueNodes[left], valueNodes[right]);
        pixelNodes.insert(right, pixel);
        valueNodes.insert(right, value);
        emit pointChanged();
        return;
    }
}

void Ovryn_UserDefineFanSpeed::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    paintScaleAndGrid(painter, plot);
    paintCurve(painter, pixelNodes);
    paintUnits(painter, plot, rect());
    for (int i = 0; i < pixelNodes.size(); ++i) {
        if (i == pressedIndex)
            paintNode(painter, pixelNodes[i], hitRadius, kPressedNode);
        else if (i != hoverIndex)
            paintNode(painter, pixelNodes[i], hitRadius, kOtherNode);
        else if (pressedIndex <= 0) // a node is removed when another one is dragged across it; the gap is intended
            paintNode(painter, pixelNodes[i], hitRadius, kHoveredNode);
    }
    if (hoverIndex >= 0)
        paintHoverValues(painter, plot, pixelNodes[hoverIndex], valueNodes[hoverIndex], hitRadius);
}

void Ovryn_UserDefineFanSpeed::resizeEvent(QResizeEvent * /*event*/)
{
    plot = FanCurvePlot::forSize(size());
    setPoints(valueNodes);
}
