#pragma once

#include "monitor/gauge/RingSegment.h"
#include "ui/Reds.h"

#include <QColor>
#include <QLabel>
#include <QPixmap>
#include <QString>

/// One clickable segment of the gauge's ring. Owned by the gauge; GUI thread. The label's mask is the
/// segment, so that three of them can lie on top of each other. Nothing fails: a size too small for a
/// ring or a caption leaves them out.
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

    // what it shows, open to a derived class
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
