#include "monitor/graphs/Ovryn_BaseMonitorBox.h"

#include "device/Arithmetic.h"
#include "monitor/graphs/Ovryn_BaseInfoRow.h"

#include <QFontMetrics>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QTime>
#include <QVector>

#include <algorithm>
#include <cmath>
#include <utility>

namespace
{
constexpr int kAxisColumn = 29; ///< left of the plot and of the caption row
constexpr int kCaptionHeight = 30;
const QColor kWhite(255, 255, 255, 255);
} // namespace

MonitorBoxLayout monitorBoxLayoutFor(QSize box)
{
    MonitorBoxLayout area;
    area.rowRect = QRect(kAxisColumn, 0, box.width() - kAxisColumn, kCaptionHeight);
    area.plotX = kAxisColumn;
    area.plotY = kCaptionHeight;
    area.plotWidth = box.width() - kAxisColumn;
    area.plotHeight = box.height() - kCaptionHeight;
    area.gridRows = area.plotHeight / area.gridStepY;
    area.gridCols = area.plotWidth / area.gridStepX;
    return area;
}

QRect MonitorBoxLayout::topLabelRect() const
{
    return {0, rowRect.height(), axisTextWidth, axisFontPixels};
}

QRect MonitorBoxLayout::bottomLabelRect() const
{
    return {0, plotBottom() - axisFontPixels, axisTextWidth, axisFontPixels};
}

QRect MonitorBoxLayout::historyRect(int sampleCount) const
{
    return {plotRight() - sampleCount, plotY, sampleCount, plotHeight};
}

int monitorBoxRowOf(double value, double bottomValue, double topValue, int plotHeight)
{
    return cutToInt(plotHeight - (value - bottomValue) / (topValue - bottomValue) * plotHeight + kCaptionHeight);
}

Ovryn_BaseMonitorBox::Ovryn_BaseMonitorBox(QWidget *parent) : QWidget(parent), infoRow(new Ovryn_BaseInfoRow(this))
{
    setAttribute(Qt::WA_MouseTracking);
    infoRow->setCheckBoxVisible(false);
}

void Ovryn_BaseMonitorBox::addData(double value)
{
    --scrollOffset;
    if (scrollOffset + area.gridStepX == 0)
        scrollOffset = 0;

    const MonitorSample sample{rowOf(value), value, QTime::currentTime().toString()};
    // The size is read anew each turn, so after a shrink about half of the excess goes now and the rest over
    // the samples to come. A box narrower than its axis column keeps nothing.
    for (int i = 0; i < samples.size() - area.plotWidth && !samples.isEmpty(); ++i)
        samples.removeLast();
    samples.prepend(sample);
    update();
}

void Ovryn_BaseMonitorBox::setDisplayInfo(QString currentValue, QString minValue, QString maxValue)
{
    infoRow->setValues(std::move(currentValue), std::move(maxValue), std::move(minValue));
}

void Ovryn_BaseMonitorBox::setForgroundColor(QColor color)
{
    fillColor = std::move(color);
}

void Ovryn_BaseMonitorBox::setGridColor(QColor color)
{
    gridColor = std::move(color);
}

void Ovryn_BaseMonitorBox::setRange(double bottom, double top)
{
    if (bottom == bottomValue && top == topValue)
        return;
    bottomValue = bottom;
    topValue = top;
    rescale();
}

void Ovryn_BaseMonitorBox::setTitle(QString text)
{
    title = std::move(text);
    infoRow->setText(title);
    repaint();
}

int Ovryn_BaseMonitorBox::rowOf(double value) const
{
    return monitorBoxRowOf(value, bottomValue, topValue, area.plotHeight);
}

void Ovryn_BaseMonitorBox::rescale()
{
    for (MonitorSample &sample : samples)
        sample.y = rowOf(sample.value);
}

void Ovryn_BaseMonitorBox::resizeEvent(QResizeEvent *)
{
    area = monitorBoxLayoutFor(size());
    scrollOffset = 0;
    infoRow->setGeometry(area.rowRect);
    rescale();
}

void Ovryn_BaseMonitorBox::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    paintGrid(painter);
    paintHistory(painter);
    paintAxisLabels(painter);
    if (hovering)
        paintCrosshair(painter);
}

void Ovryn_BaseMonitorBox::paintGrid(QPainter &painter) const
{
    QPainterPath grid;
    for (int i = 0; i <= area.gridRows; ++i) {
        const int y = area.plotY + area.gridStepY * i;
        grid.moveTo(area.plotX, y);
        grid.lineTo(area.plotRight(), y);
    }
    for (int i = 0; i <= area.gridCols + 1; ++i) {
        const int x = area.plotX + area.gridStepX * i + scrollOffset;
        if (x <= area.plotX)
            continue;
        grid.moveTo(x, area.plotY);
        grid.lineTo(x, area.plotBottom());
    }
    painter.setPen(gridColor);
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(grid);
}

void Ovryn_BaseMonitorBox::paintHistory(QPainter &painter) const
{
    const int shown = std::min(samples.size(), area.plotWidth);
    if (shown <= 0)
        return;

    // The area under the outline goes down column by column: as one polygon the toolkit would sort hundreds of
    // crossings a row once the history is jagged. A column takes the pixels whose middle lies in the polygon.
    QVector<QRect> columns;
    columns.reserve(shown + 1);
    const auto addColumn = [&](int x, double outlineY) {
        // A row far outside the box shows nothing more and need not fit a rectangle.
        const int edge = static_cast<int>(std::ceil(std::clamp(outlineY, 0.0, double(height()))));
        columns.append(
            QRect(QPoint(x, std::min(edge, area.plotBottom())), QPoint(x, std::max(edge, area.plotBottom()) - 1)));
    };
    QPainterPath outline;
    outline.moveTo(area.plotRight(), samples.first().y);
    for (int i = 0; i < shown; ++i) {
        const int x = area.plotRight() - i;
        outline.lineTo(x, samples.at(i).y);
        if (i > 0)
            addColumn(x, (double(samples.at(i - 1).y) + samples.at(i).y) / 2.0);
    }
    // From the oldest sample the outline falls to the bottom over two columns.
    const int leftEnd = area.plotRight() - shown - 1;
    const double oldestY = samples.at(shown - 1).y;
    const double fall = area.plotBottom() - oldestY;
    addColumn(leftEnd + 1, oldestY + fall * 0.25);
    addColumn(leftEnd, oldestY + fall * 0.75);
    outline.lineTo(leftEnd, area.plotBottom());
    outline.lineTo(area.plotRight(), area.plotBottom());

    painter.setPen(Qt::NoPen);
    painter.setBrush(fillColor);
    painter.drawRects(columns);
    painter.setPen(kWhite);
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(outline);
}

void Ovryn_BaseMonitorBox::paintAxisLabels(QPainter &painter) const
{
    QFont axisFont(QStringLiteral("Arial"));
    axisFont.setPixelSize(area.axisFontPixels);
    painter.setFont(axisFont);
    painter.setPen(kWhite);
    // The two pairs of flags differ: the upper limit is centred and the lower one stands at the right.
    painter.drawText(area.topLabelRect(), Qt::AlignLeft | Qt::AlignHCenter, QString::number(topValue, 'g', 6));
    painter.drawText(area.bottomLabelRect(), Qt::AlignRight | Qt::AlignHCenter, QString::number(bottomValue, 'g', 6));
}

void Ovryn_BaseMonitorBox::paintCrosshair(QPainter &painter) const
{
    QPen pen(Qt::DotLine);
    pen.setColor(Qt::white);
    painter.setPen(pen);
    painter.drawLine(hoverX, area.plotY, hoverX, area.plotBottom());

    const int age = hoveredAge();
    if (age < 0)
        return;
    const MonitorSample &sample = samples.at(age);
    const QFontMetrics metrics = painter.fontMetrics();
    int baseline = area.plotY + area.plotHeight / 2;
    for (const QString &text : {QString::number(cutToInt(sample.value)), sample.time}) {
        painter.drawText(hoverX - metrics.horizontalAdvance(text) / 2, baseline, text);
        baseline += metrics.height();
    }
}

int Ovryn_BaseMonitorBox::hoveredAge() const
{
    const int age = area.plotX - hoverX + area.plotWidth; // below 0 when the box has shrunk since the mouse moved
    return hovering && age >= 0 && age < samples.size() ? age : -1;
}

void Ovryn_BaseMonitorBox::mouseMoveEvent(QMouseEvent *event)
{
    // Edges count as inside, as in QRectF: the newest sample lies on the right edge of its rectangle.
    if (QRectF(area.historyRect(samples.size())).contains(event->pos())) {
        hovering = true;
        hoverX = event->x();
        hoverY = event->y();
        update();
    } else {
        hovering = false; // the old crosshair stands until the next sample repaints the box
    }
}

void Ovryn_BaseMonitorBox::leaveEvent(QEvent *)
{
    hovering = false;
    update();
}
