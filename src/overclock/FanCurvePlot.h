#pragma once

#include <QList>
#include <QPoint>
#include <QSize>

/// The plot of the fan curve: 10 by 10 cells, their place in the widget in pixels, and the mapping of values (degrees
/// Celsius, percent; 0 to 100 each). Needs no widget; the divisions truncate toward zero.
struct FanCurvePlot
{
    int plotLeft = 0;
    int plotTop = 0;
    int plotWidth = 100;  ///< 10 * stepX
    int plotHeight = 100; ///< 10 * stepY
    int stepX = 10;       ///< pixels of one cell
    int stepY = 10;       ///< pixels of one cell

    static FanCurvePlot forSize(QSize widget);

    [[nodiscard]] int right() const { return plotLeft + plotWidth; }
    [[nodiscard]] int bottom() const { return plotTop + plotHeight; }

    [[nodiscard]] QPoint pixelOf(QPoint value) const;
    /// May be one unit below the value that the pixel came from. A plot without extent gives 0.
    [[nodiscard]] QPoint valueOf(QPoint pixel) const;
    [[nodiscard]] QPoint clamped(QPoint pixel) const;

    [[nodiscard]] QList<QPoint> pixelsOf(const QList<QPoint> &values) const;

    /// Pixel height of a new node: neither below its left neighbour nor above its right one.
    [[nodiscard]] static int heightBetween(int y, QPoint leftNode, QPoint rightNode);
    /// Pixel of a dragged node: it can reach the column and height of its neighbours, but not pass them.
    [[nodiscard]] static QPoint placeBetween(QPoint pixel, QPoint leftNode, QPoint rightNode);
    /// Value of a placed node, cut to its neighbours' values. Two nodes on one pixel may differ by a unit
    /// lost in the mapping, and a curve that falls by that unit would be dropped when it is read back.
    [[nodiscard]] QPoint valueBetween(QPoint pixel, QPoint leftValue, QPoint rightValue) const;
};
