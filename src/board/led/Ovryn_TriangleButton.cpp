#include "board/led/Ovryn_TriangleButton.h"

#include <QBitmap>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

#include <algorithm>
#include <cmath>

namespace
{

constexpr double kLengthOfRing = 0.66; // of the ring's thickness, from base to tip
constexpr double kBaseOfLength = 0.8;
constexpr double kMargin = 2; // pixels around the triangle, for its smoothed edge

} // namespace

Ovryn_TriangleButton::Ovryn_TriangleButton(QWidget *parent) : QLabel(parent)
{
    setCursor(Qt::PointingHandCursor);
}

void Ovryn_TriangleButton::setRing(const HueRing &newRing)
{
    ring = newRing;
    drawMarker();
}

QColor Ovryn_TriangleButton::getColor() const
{
    return HueRing::pureColor(hue);
}

void Ovryn_TriangleButton::turnTo(QPoint pointOfParent)
{
    hue = ring.hueAt(pointOfParent);
    drawMarker();
    emit onColorChanged(getColor());
}

void Ovryn_TriangleButton::setButtonColor(QColor color)
{
    setButtonColorAndDoNotSendColorChangedSignal(color);
    emit onColorChanged(getColor());
}

void Ovryn_TriangleButton::setButtonColorAndDoNotSendColorChangedSignal(QColor color)
{
    if (color.hsvHue() >= 0)
        hue = color.hsvHueF() * 360;
    drawMarker();
}

void Ovryn_TriangleButton::mousePressEvent(QMouseEvent *event)
{
    event->setAccepted(event->button() == Qt::LeftButton); // anything else would drag the window
}

void Ovryn_TriangleButton::mouseMoveEvent(QMouseEvent *event)
{
    if (event->buttons() & Qt::LeftButton)
        turnTo(mapToParent(event->pos()));
}

void Ovryn_TriangleButton::drawMarker()
{
    const double length = (ring.outerRadius - ring.innerRadius) * kLengthOfRing;
    const int side = int(std::ceil(length * std::sqrt(2.0) + 2 * kMargin)); // any turn of the triangle fits
    const QPointF middle = ring.pointAt(hue, (ring.outerRadius + ring.innerRadius) / 2);
    setGeometry(int(std::lround(middle.x())) - side / 2, int(std::lround(middle.y())) - side / 2, side, side);

    QPixmap image(side, side);
    image.fill(Qt::transparent);
    QPainterPath triangle;
    triangle.moveTo(length / 2, 0);
    triangle.lineTo(-length / 2, length * kBaseOfLength / 2);
    triangle.lineTo(-length / 2, -length * kBaseOfLength / 2);
    triangle.closeSubpath();
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(side / 2.0, side / 2.0);
    painter.rotate(hue - 180); // the tip points outwards
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::white);
    painter.drawPath(triangle);
    painter.end();

    setPixmap(image);
    setMask(image.mask());
}
