#include "overclock/FanCurvePlot.h"

namespace
{

// Room for the labels: left and below 30 pixels, right 15 and above 5.
constexpr int kLabelRoom = 30;
constexpr int kRoomBesides = kLabelRoom + 15;
constexpr int kRoomAboveAndBelow = kLabelRoom + 5;
constexpr int kCells = 10;
constexpr int kLargestValue = 100;

} // namespace

FanCurvePlot FanCurvePlot::forSize(QSize widget)
{
    FanCurvePlot plot;
    plot.stepX = (widget.width() - kRoomBesides) / kCells;
    plot.stepY = (widget.height() - kRoomAboveAndBelow) / kCells;
    plot.plotLeft = kLabelRoom;
    plot.plotWidth = kCells * plot.stepX;
    plot.plotHeight = kCells * plot.stepY;
    plot.plotTop = widget.height() - kLabelRoom - plot.plotHeight;
    return plot;
}

QPoint FanCurvePlot::pixelOf(QPoint value) const
{
    // Only a list that falls somewhere has values beyond the scale; the mouse can still reach its nodes.
    const int x = qBound(0, value.x(), kLargestValue);
    const int y = qBound(0, value.y(), kLargestValue);
    return {int(x / 100.0 * plotWidth + plotLeft), int((plotTop + plotHeight) - y / 100.0 * plotHeight)};
}

QPoint FanCurvePlot::valueOf(QPoint pixel) const
{
    const auto part = [](int pixels, int extent) {
        return extent == 0 ? 0 : int(double(pixels) / extent * 100.0);
    };
    return {part(pixel.x() - plotLeft, plotWidth), part(plotHeight - pixel.y() + plotTop, plotHeight)};
}

QPoint FanCurvePlot::clamped(QPoint pixel) const
{
    return {qBound(plotLeft, pixel.x(), right()), qBound(plotTop, pixel.y(), bottom())};
}

QList<QPoint> FanCurvePlot::pixelsOf(const QList<QPoint> &values) const
{
    QList<QPoint> pixels;
    pixels.reserve(values.size());
    for (const QPoint value : values)
        pixels.append(pixelOf(value));
    return pixels;
}

int FanCurvePlot::heightBetween(int y, QPoint leftNode, QPoint rightNode)
{
    if (leftNode.y() < y)
        return leftNode.y();
    if (rightNode.y() > y)
        return rightNode.y();
    return y;
}

QPoint FanCurvePlot::placeBetween(QPoint pixel, QPoint leftNode, QPoint rightNode)
{
    int x = pixel.x();
    if (leftNode.x() > x)
        x = leftNode.x();
    else if (rightNode.x() < x)
        x = rightNode.x();
    return {x, heightBetween(pixel.y(), leftNode, rightNode)};
}

QPoint FanCurvePlot::valueBetween(QPoint pixel, QPoint leftValue, QPoint rightValue) const
{
    const QPoint value = valueOf(pixel);
    return {qMax(leftValue.x(), qMin(value.x(), rightValue.x())),
            qMax(leftValue.y(), qMin(value.y(), rightValue.y()))};
}
