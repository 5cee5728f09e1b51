#include "board/led/Ovryn_ColorPaletteBox.h"

#include "board/led/Ovryn_ColorSlider.h"
#include "board/led/Ovryn_TriangleButton.h"
#include "board/led/Ovryn_rgbBox.h"
#include "ui/UiStyle.h"

#include <QMouseEvent>
#include <QPainter>

namespace
{

constexpr int kHoleInset = 18; // the soft rim of the ring reaches into the hole
constexpr int kSliderHeight = 30;
constexpr int kNumbersHeight = 28;

} // namespace

Ovryn_ColorPaletteBox::Ovryn_ColorPaletteBox(QWidget *parent)
    : QWidget(parent),
      marker(new Ovryn_TriangleButton(this)),
      slider(new Ovryn_ColorSlider(this)),
      rgbBox(new Ovryn_rgbBox(this))
{
    setStyleSheet(UiStyle::numberBoxes() + QStringLiteral("QLabel{color:rgb(230,230,230);}"));
    adjustColor(QColor(255, 0, 0));

    // The marker only tells its hue; what the slider makes of it is the colour chosen.
    connect(marker, SIGNAL(onColorChanged(QColor)), slider, SLOT(setSliderBarColor(QColor)));
    connect(slider, SIGNAL(colorChanged(QColor)), this, SLOT(onSliderColorChanged(QColor)));
    connect(rgbBox, SIGNAL(colorChanged(QColor)), this, SLOT(onNumbersChanged(QColor)));
}

void Ovryn_ColorPaletteBox::onSliderColorChanged(QColor color)
{
    rgbBox->setColor(color);
    emit colorChanged(color);
}

void Ovryn_ColorPaletteBox::onNumbersChanged(QColor color)
{
    showHueAndShade(color);
    emit colorChanged(color);
}

void Ovryn_ColorPaletteBox::adjustColor(QColor color)
{
    showHueAndShade(color);
    rgbBox->setColor(color);
}

void Ovryn_ColorPaletteBox::showHueAndShade(QColor color)
{
    marker->setButtonColorAndDoNotSendColorChangedSignal(color);
    slider->showShade(marker->getColor(), color);
}

void Ovryn_ColorPaletteBox::mousePressEvent(QMouseEvent *event)
{
    turning = event->button() == Qt::LeftButton && marker->getRing().contains(event->pos());
    if (turning)
        marker->turnTo(event->pos());
    else
        event->ignore(); // a free spot, by which the window is dragged
}

void Ovryn_ColorPaletteBox::mouseMoveEvent(QMouseEvent *event)
{
    if (turning)
        marker->turnTo(event->pos());
    else
        event->ignore();
}

void Ovryn_ColorPaletteBox::mouseReleaseEvent(QMouseEvent *event)
{
    if (turning && event->button() == Qt::LeftButton)
        turning = false;
    else
        event->ignore();
}

void Ovryn_ColorPaletteBox::resizeEvent(QResizeEvent *)
{
    const HueRing ring = HueRing::forSize(size());
    ringImage = ring.image(&ringTopLeft);
    marker->setRing(ring);

    const QRect hole = ring.hole().adjusted(kHoleInset, 0, -kHoleInset, 0);
    slider->setGeometry(hole.left(), hole.top() + hole.height() / 4 - kSliderHeight / 2, hole.width(), kSliderHeight);
    rgbBox->setGeometry(hole.left(), hole.top() + hole.height() * 3 / 4 - kNumbersHeight / 2, hole.width(),
                        kNumbersHeight);
}

void Ovryn_ColorPaletteBox::paintEvent(QPaintEvent *)
{
    QPainter(this).drawImage(ringTopLeft, ringImage);
}
