#include "overclock/Ovryn_SliderWidget.h"

#include "overclock/Ovryn_OverClockingSlider.h"
#include "ui/ModifySpinBox.h"

#include <QPainter>
#include <QScopedValueRollback>

namespace
{

constexpr int kCaptionPixelSize = 16;
constexpr int kPageStepsInRange = 20;
const QColor kCaptionColor(238, 238, 238, 238);

} // namespace

Ovryn_SliderWidget::Ovryn_SliderWidget(QWidget *parent)
    : QWidget(parent),
      spinBox(new ModifySpinBox(this)),
      slider(new Ovryn_OverClockingSlider(this)),
      backgroundPixmap(QStringLiteral(":/images/images/slider/background_slider.png")),
      disabledBackgroundPixmap(QStringLiteral(":/images/images/slider/disable_background_slider.png"))
{
    spinBox->setButtonSymbols(QAbstractSpinBox::NoButtons);
    setStyleSheet(QStringLiteral("ModifySpinBox{font-size:13px;}"));
    connectAll();
    spinBox->show();
    slider->show();
}

void Ovryn_SliderWidget::connectAll()
{
    connect(slider, SIGNAL(valueChanged(int)), spinBox, SLOT(setValue(int)));
    connect(slider, SIGNAL(valueChanged(int)), this, SLOT(onSliderValueChanged(int)));
    connect(spinBox, SIGNAL(editingFinished()), this, SLOT(onSpinBoxValueChanged()));
    connect(slider, SIGNAL(sliderMoved(int)), this, SLOT(onSliderMoved(int)));
    connect(slider, SIGNAL(sliderReleased()), this, SLOT(onSliderReleased()));
}

void Ovryn_SliderWidget::setText(const QString &text)
{
    caption = text;
}

void Ovryn_SliderWidget::setRange(int newMinimum, int newMaximum)
{
    const QScopedValueRollback<bool> silent(changedByProgram, true);
    minimum = newMinimum;
    maximum = newMaximum;
    const int sliderValueBefore = slider->value();
    slider->setRange(minimum, maximum);
    if (slider->value() != sliderValueBefore)
        currentValue = slider->value(); // the new range has cut it
    // The difference of a card's limits may exceed an int.
    slider->setPageStep(int((qint64(maximum) - minimum) / kPageStepsInRange));
    spinBox->setRange(minimum, maximum);
}

void Ovryn_SliderWidget::setValue(int newValue)
{
    const QScopedValueRollback<bool> silent(changedByProgram, true);
    currentValue = newValue;
    slider->setValue(newValue);
}

void Ovryn_SliderWidget::onSliderValueChanged(int newValue)
{
    // The slider cuts a value outside its range. Its signal then has another value than the row, but it is no change
    // by the user either.
    if (newValue == currentValue || changedByProgram)
        return;
    currentValue = newValue;
    emit valueChanged(this);
}

void Ovryn_SliderWidget::onSpinBoxValueChanged()
{
    slider->setValue(spinBox->value());
}

void Ovryn_SliderWidget::onSliderMoved(int move)
{
    emit sliderMoved(this, move);
}

void Ovryn_SliderWidget::onSliderReleased()
{
    emit sliderReleased(this);
}

void Ovryn_SliderWidget::resizeEvent(QResizeEvent * /*event*/)
{
    layout = sliderRowLayoutFor(size(), backgroundPixmap.width());
    spinBox->setGeometry(layout.spinRect);
    slider->setGeometry(layout.sliderRect);
}

void Ovryn_SliderWidget::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::TextAntialiasing);
    painter.setPen(kCaptionColor);
    QFont captionFont = font();
    captionFont.setPixelSize(kCaptionPixelSize);
    painter.setFont(captionFont);
    painter.drawText(layout.captionRect, Qt::AlignLeft | Qt::AlignVCenter, caption);

    const QPixmap &background = isEnabled() ? backgroundPixmap : disabledBackgroundPixmap;
    painter.drawPixmap(0, layout.sliderRect.y() + (layout.sliderRect.height() - background.height()) / 2, background);
}
