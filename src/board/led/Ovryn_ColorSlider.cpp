#include "board/led/Ovryn_ColorSlider.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace
{

constexpr int kFull = 255;
constexpr int kHandleHalfWidth = 5; // pixels
constexpr int kBarInset = 6;        // above and below the bar, which the handle overlaps
constexpr double kHandleRadius = 3;
const QColor kEdgeColor(20, 0, 4, 200);    // keeps the white handle apart from the white end
const QColor kOutline(255, 255, 255, 110); // keeps the black end apart from the dark window

/// The ends of the handle's way, in pixels of the slider.
int wayLength(int width)
{
    return std::max(1, width - 2 * kHandleHalfWidth - 2);
}

QRect barRect(QSize size)
{
    return {kHandleHalfWidth, kBarInset, std::max(0, size.width() - 2 * kHandleHalfWidth),
            std::max(0, size.height() - 2 * kBarInset)};
}

} // namespace

Ovryn_ColorSlider::Ovryn_ColorSlider(QWidget *parent) : QSlider(Qt::Horizontal, parent)
{
    setRange(0, kMaximum);
    setValue(kPureHueValue);
    setCursor(Qt::PointingHandCursor);
    connect(this, SIGNAL(valueChanged(int)), this, SLOT(onValueChanged(int)));
}

QColor Ovryn_ColorSlider::shadeAt(int sliderValue) const
{
    const double x =
        maximum() == minimum() ? kPureHueValue : double(sliderValue - minimum()) / (maximum() - minimum()) * kMaximum;
    const int hue = baseColor.hsvHue();
    return x <= kPureHueValue ? QColor::fromHsv(hue, int(x), kFull, kFull)
                              : QColor::fromHsv(hue, kFull, int(kMaximum - x), kFull);
}

void Ovryn_ColorSlider::onValueChanged(int newValue)
{
    currentColor = shadeAt(newValue);
    update();
    if (!silent)
        emit colorChanged(currentColor);
}

void Ovryn_ColorSlider::moveSilently(int newValue)
{
    silent = true;
    setValue(newValue);
    silent = false;
    currentColor = shadeAt(value()); // the hue may be another one at an unchanged value
    update();
}

void Ovryn_ColorSlider::setSliderBarColor(QColor color)
{
    setSliderBarColorAndDoNotSendColorChangedSignal(color);
    emit colorChanged(currentColor);
}

void Ovryn_ColorSlider::setSliderBarColorAndDoNotSendColorChangedSignal(QColor color)
{
    baseColor = color;
    drawBar();
    moveSilently(kPureHueValue);
}

void Ovryn_ColorSlider::showShade(QColor pureHue, QColor color)
{
    setSliderBarColorAndDoNotSendColorChangedSignal(pureHue);
    // A shade is either whitened or blackened; of a colour that is both, the stronger part shows.
    const int saturation = color.hsvSaturation();
    const int brightness = color.value();
    moveSilently(saturation < brightness ? saturation : std::max(kPureHueValue, kMaximum - brightness));
}

void Ovryn_ColorSlider::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    setSliderDown(true);
    goTo(event->pos().x());
}

void Ovryn_ColorSlider::mouseMoveEvent(QMouseEvent *event)
{
    if (isSliderDown())
        goTo(event->pos().x());
}

void Ovryn_ColorSlider::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        setSliderDown(false);
}

int Ovryn_ColorSlider::handleX() const
{
    const qint64 span = std::max(1, maximum() - minimum());
    return kHandleHalfWidth + 1 + int(qint64(value() - minimum()) * wayLength(width()) / span);
}

void Ovryn_ColorSlider::goTo(int x)
{
    const int onWay = std::clamp(x - kHandleHalfWidth - 1, 0, wayLength(width()));
    setValue(minimum() + int(qint64(maximum() - minimum()) * onWay / wayLength(width())));
}

void Ovryn_ColorSlider::drawBar()
{
    const QRect place = barRect(size());
    bar = QImage(size(), QImage::Format_ARGB32_Premultiplied);
    if (bar.isNull())
        return;
    bar.fill(Qt::transparent);
    const int hue = baseColor.hsvHue();
    QLinearGradient gradient(place.left(), 0, place.right() + 1, 0);
    gradient.setColorAt(0, QColor::fromHsv(hue, 0, kFull));
    gradient.setColorAt(double(kPureHueValue) / kMaximum, QColor::fromHsv(hue, kFull, kFull));
    gradient.setColorAt(1, QColor::fromHsv(hue, kFull, 0));
    QPainter painter(&bar);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(kOutline, 1));
    painter.setBrush(gradient);
    painter.drawRoundedRect(QRectF(place).adjusted(0.5, 0.5, -0.5, -0.5), place.height() / 2.0, place.height() / 2.0);
}

void Ovryn_ColorSlider::resizeEvent(QResizeEvent *event)
{
    QSlider::resizeEvent(event);
    drawBar();
}

void Ovryn_ColorSlider::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.drawImage(0, 0, bar);
    QPainterPath handle;
    handle.addRoundedRect(QRectF(handleX() - kHandleHalfWidth + 0.5, 0.5, 2 * kHandleHalfWidth, height() - 1),
                          kHandleRadius, kHandleRadius);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(kEdgeColor, 1));
    painter.setBrush(Qt::white);
    painter.drawPath(handle);
}
