#include "board/led/Ovryn_ColorButton.h"

#include "board/led/Ovryn_ColorButtonGroup.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

namespace
{

constexpr double kOutlineWidth = 2.0;
constexpr int kOutlineAlpha[] = {150, 255, 200}; // by state: normal, pressed, hovered
constexpr int kDisabledSaturation = 255;
constexpr int kDisabledValue = 150;
constexpr int kCheckFraction = 3;      // the triangle's legs are this part of the sides
const QColor kCheckEdge(0, 0, 0, 150); // shows the triangle on a white swatch too

} // namespace

Ovryn_ColorButton::Ovryn_ColorButton(QWidget *parent) : QLabel(parent)
{
    clickTimer.setInterval(kClickDelayMs);
    setCursor(Qt::PointingHandCursor);
    connect(&clickTimer, SIGNAL(timeout()), this, SLOT(onTimeOut()));
}

void Ovryn_ColorButton::setCheck(bool check)
{
    if (group)
        group->setButtonChecked(this, check);
    else
        changeChecked(check);
    update();
}

void Ovryn_ColorButton::setColor(QColor newColor)
{
    color = newColor;
    update();
}

void Ovryn_ColorButton::onTimeOut()
{
    clickTimer.stop();
    setCheck(!checked);
    emit onMouseClick(this);
}

void Ovryn_ColorButton::changeChecked(bool check)
{
    if (checked == check)
        return;
    checked = check;
    update();
    emit stateChanged(checked);
}

void Ovryn_ColorButton::setState(State newState)
{
    state = newState;
    update();
}

void Ovryn_ColorButton::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    if (!clickTimer.isActive())
        clickTimer.start();
    setState(Pressed);
}

void Ovryn_ColorButton::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        setState(rect().contains(event->pos()) ? Hovered : Normal);
}

void Ovryn_ColorButton::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    clickTimer.stop();
    emit onMouseDuobleClick(this);
    update();
}

void Ovryn_ColorButton::enterEvent(QEvent *)
{
    setState(Hovered);
}

void Ovryn_ColorButton::leaveEvent(QEvent *)
{
    setState(Normal);
}

void Ovryn_ColorButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    if (isEnabled()) {
        painter.fillRect(1, 1, width() - 2, height() - 2, color);
        painter.setPen(QPen(QColor(255, 255, 255, kOutlineAlpha[state]), kOutlineWidth));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(0, 0, width(), height());
    } else {
        painter.fillRect(0, 0, width(), width(),
                         QColor::fromHsv(color.hsvHue(), kDisabledSaturation, kDisabledValue));
    }
    if (checked) {
        QPainterPath corner;
        corner.lineTo(width() / kCheckFraction, 0);
        corner.lineTo(0, height() / kCheckFraction);
        corner.closeSubpath();
        painter.setRenderHint(QPainter::Antialiasing);
        painter.fillPath(corner, Qt::white);
        painter.setPen(kCheckEdge);
        painter.drawLine(width() / kCheckFraction, 0, 0, height() / kCheckFraction);
    }
}
