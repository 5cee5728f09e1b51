#pragma once

#include <QColor>
#include <QList>
#include <QRect>
#include <QString>
#include <QWidget>

class Ovryn_BaseInfoRow;
class QPainter;

/// Where everything of a graph box lies, in box pixels. Integer divisions truncate.
struct MonitorBoxLayout
{
    int gridStepX = 20;
    int gridStepY = 10;
    int gridRows = 0; ///< cells that fit
    int gridCols = 0; ///< cells that fit
    QRect rowRect;    ///< of the caption row
    int plotX = 0;
    int plotY = 0;
    int plotWidth = 1000; ///< also how many samples are kept; 1000 until the first resize
    int plotHeight = 0;
    int axisTextWidth = 27;
    int axisFontPixels = 11;

    [[nodiscard]] int plotRight() const { return plotX + plotWidth; }
    [[nodiscard]] int plotBottom() const { return plotY + plotHeight; }
    [[nodiscard]] QRect topLabelRect() const;
    [[nodiscard]] QRect bottomLabelRect() const;
    /// Where a mouse finds history, when `sampleCount` samples are there.
    [[nodiscard]] QRect historyRect(int sampleCount) const;
};
MonitorBoxLayout monitorBoxLayoutFor(QSize box);

/// Pixel row of a value between the axis limits. Not cut to the plot: a value beyond the limits lies outside.
int monitorBoxRowOf(double value, double bottomValue, double topValue, int plotHeight);

/// One sample of a graph's history.
struct MonitorSample
{
    int y = 0;        ///< pixel row at the present scale, so that painting does no arithmetic on values
    double value = 0; ///< raw
    QString time;     ///< wall clock when it was added
};

/// A scrolling strip chart of one quantity: the filled history over a moving grid, a caption row above,
/// axis limits at the left, and a crosshair that reads any past sample under the mouse.
///
/// Owned by its parent widget, GUI thread. History lives in memory only; one pixel a sample.
class Ovryn_BaseMonitorBox : public QWidget
{
    Q_OBJECT

public:
    explicit Ovryn_BaseMonitorBox(QWidget *parent = nullptr);

    void addData(double value);
    void setDisplayInfo(QString currentValue, QString minValue, QString maxValue);
    void setForgroundColor(QColor color);
    void setGridColor(QColor color);
    void setRange(double bottom, double top);
    void setTitle(QString text);

    [[nodiscard]] const QList<MonitorSample> &history() const { return samples; } ///< newest first
    [[nodiscard]] const MonitorBoxLayout &boxLayout() const { return area; }
    [[nodiscard]] int gridPhase() const { return scrollOffset; }
    [[nodiscard]] bool isHovering() const { return hovering; }
    [[nodiscard]] int hoveredAge() const; ///< index of the sample under the crosshair; -1 without one
    [[nodiscard]] double rangeTop() const { return topValue; }
    [[nodiscard]] double rangeBottom() const { return bottomValue; }
    [[nodiscard]] Ovryn_BaseInfoRow *captionRow() const { return infoRow; }

protected:
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void leaveEvent(QEvent *event) override;

private:
    [[nodiscard]] int rowOf(double value) const;
    void rescale();
    void paintGrid(QPainter &painter) const;
    void paintHistory(QPainter &painter) const;
    void paintAxisLabels(QPainter &painter) const;
    void paintCrosshair(QPainter &painter) const;

    QList<MonitorSample> samples; ///< newest first
    double topValue = 100.0;
    double bottomValue = 0.0;
    QColor fillColor = QColor(150, 0, 0, 150);
    QColor gridColor = QColor(255, 0, 0, 80);
    QString title;
    int hoverX = 0;
    int hoverY = 0;
    bool hovering = false;
    int scrollOffset = 0; ///< the grid's phase, 0 down to -19
    MonitorBoxLayout area;
    Ovryn_BaseInfoRow *infoRow;
};
