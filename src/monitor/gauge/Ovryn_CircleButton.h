#pragma once

#include "monitor/gauge/RingSegment.h"
#include "ui/Reds.h"

#include <QColor>
#include <QLabel>
#include <QPixmap>
#include <QString>

/// One clickable segment of the gauge's ring. Owned by the gauge; GUI thread. The label's mask is the segment, so
/// that three labels can share one rectangle. Nothing fails: without room for the ring or a caption it is left out.
class Ovryn_CircleButton : public QLabel
{
    Q_OBJECT

public:
    explicit Ovryn_CircleButton(RingSegmentType segmentType, QWidget *parent = nullptr);

    void setText(QString caption);           ///< new caption; the pictures are painted anew
    void setThickness(double bandThickness); ///< width of the band in pixels, in force from the next painting

signals:
    void onMouseClick();

protected:
    void resizeEvent(QResizeEvent *event) override;
    void enterEvent(QEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

    // what the label shows, which a derived class may use
    QPixmap normalPixmap;
    QPixmap hoverPixmap;
    QPixmap pressPixmap;
    int type = RingSegmentClock;
    QColor normalColor = Reds::gauge(150);
    QColor hoverColor = Reds::gauge(180);
    QColor pressColor = Reds::gauge(200);
    QString text;
    double thickness = 0;

private:
    void rebuildPixmaps();
};
