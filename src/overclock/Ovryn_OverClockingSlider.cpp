#include "overclock/Ovryn_OverClockingSlider.h"

#include <QMouseEvent>
#include <QPainter>

#include <cmath>

namespace
{

constexpr int kHandleWidth = 8; // pixels
const QColor kPressedHandle(255, 255, 255);
const QColor kHoveredHandle(255, 255, 255, 180);

} // namespace

SliderMarks sliderMarksFor(QSize slider, int handleWidth, int handleHeight, int value, int minimum, int maximum)
{
    const double span = std::abs(double(maximum) - double(minimum));
    const double ratio = span > 0 ? (double(value) - double(minimum)) / span : 0;
    return {qMax(1, int(slider.width() * ratio)),
            QRect(int((slider.width() - handleWidth) * ratio), 0, handleWidth, handleHeight)};
}

Ovryn_OverClockingSlider::Ovryn_OverClockingSlider(QWidget *parent)
    : QSlider(Qt::Horizontal, parent),
      voidPixmap(QStringLiteral(":/images/images/slider/void_slider.png")),
      fullPixmap(QStringLiteral(":/images/images/slider/full_slider.png")),
      disablePixmap(QStringLiteral(":/images/images/slider/disable_slider.png")),
      handleWidth(kHandleWidth),
      handleHeight(height())
{
}

void Ovryn_OverClockingSlider::enterEvent(QEvent *event)
{
    hover = true;
    QSlider::enterEvent(event);
    update();
}

void Ovryn_OverClockingSlider::leaveEvent(QEvent *event)
{
    hover = false;
    QSlider::leaveEvent(event);
    update();
}

void Ovryn_OverClockingSlider::mousePressEvent(QMouseEvent *event)
{
    pressed = true;
    QSlider::mousePressEvent(event);
    update(); // the toolkit repaints only the place of its own handle
}

void Ovryn_OverClockingSlider::mouseReleaseEvent(QMouseEvent *event)
{
    pressed = false;
    QSlider::mouseReleaseEvent(event);
    update();
}

void Ovryn_OverClockingSlider::resizeEvent(QResizeEvent *event)
{
    handleWidth = kHandleWidth;
    handleHeight = height();
    QSlider::resizeEvent(event);
}

void Ovryn_OverClockingSlider::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    const int trackTop = (height() - voidPixmap.height()) / 2;
    if (!isEnabled()) {
        painter.drawPixmap(0, trackTop, disablePixmap);
        return;
    }
    const SliderMarks marks = sliderMarksFor(size(), handleWidth, handleHeight, value(), minimum(), maximum());
    painter.drawPixmap(0, trackTop, voidPixmap);
    painter.drawPixmap(0, trackTop, fullPixmap, 0, 0, marks.fillWidth, fullPixmap.height());
    if (pressed || hover)
        painter.fillRect(marks.handle, pressed ? kPressedHandle : kHoveredHandle);
}
