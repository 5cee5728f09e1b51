#include "monitor/gauge/Ovryn_CircleButton.h"

#include <QBitmap>
#include <QMouseEvent>

#include <utility>

Ovryn_CircleButton::Ovryn_CircleButton(RingSegmentType segmentType, QWidget *parent)
    : QLabel(parent), type(segmentType)
{
    setMouseTracking(true);
    setAutoFillBackground(false);
    setStyleSheet("background-color: rgba(0, 0, 0, 0);");
    // the picture starts at the corner, where the mask does, also when the label is no square
    setAlignment(Qt::AlignLeft | Qt::AlignTop);
}

void Ovryn_CircleButton::setText(QString caption)
{
    text = std::move(caption);
    rebuildPixmaps();
}

void Ovryn_CircleButton::setThickness(double bandThickness)
{
    thickness = bandThickness;
}

void Ovryn_CircleButton::resizeEvent(QResizeEvent *event)
{
    QLabel::resizeEvent(event);
    rebuildPixmaps();
}

void Ovryn_CircleButton::enterEvent(QEvent *)
{
    setPixmap(hoverPixmap);
}

void Ovryn_CircleButton::leaveEvent(QEvent *)
{
    setPixmap(normalPixmap);
}

// The mouse events are not passed on: the dialog behind would take them for a drag of the window.

void Ovryn_CircleButton::mouseMoveEvent(QMouseEvent *event)
{
    if (!(event->buttons() & Qt::LeftButton))
        setPixmap(hoverPixmap);
}

void Ovryn_CircleButton::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        setPixmap(pressPixmap);
}

void Ovryn_CircleButton::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    if (!mask().contains(event->pos())) {
        setPixmap(normalPixmap);
        return;
    }
    setPixmap(hoverPixmap);
    emit onMouseClick();
}

void Ovryn_CircleButton::rebuildPixmaps()
{
    RingSegment segment;
    segment.side = qMin(width(), height());
    segment.thickness = thickness;
    segment.type = type;
    segment.text = text;
    segment.family = font().family();
    normalPixmap = QPixmap::fromImage(segment.painted(normalColor));
    hoverPixmap = QPixmap::fromImage(segment.painted(hoverColor));
    pressPixmap = QPixmap::fromImage(segment.painted(pressColor));
    setPixmap(normalPixmap);
    setMask(normalPixmap.mask());
}
