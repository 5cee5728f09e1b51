#pragma once

#include "overclock/FanCurvePlot.h"

#include <QList>
#include <QPoint>
#include <QWidget>

/// The fan curve editor: nodes on a grid of temperature (0 to 100 degrees Celsius) and fan level (0 to
/// 100 percent). A drag moves a node between its neighbours, a double click adds or removes one. The
/// first node stays (0,0), the last (100,100), and there are at most 11.
///
/// Has no access to the card: its owner takes the list and applies it. GUI thread.
class Ovryn_UserDefineFanSpeed : public QWidget
{
    Q_OBJECT

public:
    explicit Ovryn_UserDefineFanSpeed(QWidget *parent = nullptr);

    [[nodiscard]] QList<QPoint> getPoints() const { return valueNodes; }
    void setPoints(const QList<QPoint> &points); ///< the default curve where the ends are not (0,0) and (100,100)
    void resetToDefault();

signals:
    void pointChanged(); ///< the user changed the curve

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void takeCurve(const QList<QPoint> &curve);
    [[nodiscard]] bool isHit(int index, QPoint position) const;
    [[nodiscard]] int nodeAt(QPoint position) const;      ///< the first one that is hit; -1 where none is
    [[nodiscard]] int innerNodeAt(QPoint position) const; ///< the same without the two fixed ends

    FanCurvePlot plot;
    int hitRadius = 3;        ///< pixels; half a node's square, and the reach of a click
    QList<QPoint> pixelNodes; ///< the curve in widget pixels, for drawing and hit tests
    QList<QPoint> valueNodes; ///< the same curve in degrees Celsius and percent
    int pressedIndex = -1;    ///< the node being dragged
    int hoverIndex = -1;      ///< the node under the mouse
};
