#include "board/led/Ovryn_LEDControlWidget.h"

#include "board/led/Ovryn_ColorButton.h"
#include "board/led/Ovryn_ColorButtonGroup.h"
#include "board/led/Ovryn_SendColorToLed.h"
#include "device/NvGpuControl.h"
#include "ui/ModifySpinBox.h"

#include <QPushButton>
#include <QRadioButton>
#include <QThread>
#include <QTimer>

#include <algorithm>

// What the user does, and the frames that follow from it.

void Ovryn_LEDControlWidget::sendCurrentEffect(bool closing)
{
    if (!control)
        return;
    const LedMode mode = checkedMode();
    if (mode == LedMode::StateDisplay) {
        sendColorThread->startStateDisplay();
        return;
    }
    if (!sendColorThread->isFinished()) {
        sendColorThread->stopStateDisplay();
        sendColorThread->wait(); // its frames and the page's must not mingle
    }
    QList<QColor> colors;
    for (const Ovryn_ColorButton *button : colorGroup->selectedButtons())
        colors << button->getColor();
    if (mode == LedMode::Sleep)
        QThread::msleep(timings.beforeSleepFrameMs);
    send(ledCommandFor(mode, interval, colors), closing);
}

void Ovryn_LEDControlWidget::send(const LedCommand &command, bool closing)
{
    // A card without a controller refuses every frame; the page shows the same all the same.
    control->i2cWriteFramed(command.colors.data(), qint32(command.colors.size()), command.effect, command.level,
                            command.interval, closing);
}

void Ovryn_LEDControlWidget::useGroupMode(int mode)
{
    if (colorGroup->mode() != mode)
        colorGroup->setMode(mode);
}

void Ovryn_LEDControlWidget::enableColorControls(bool enable)
{
    for (Ovryn_ColorButton *button : findChildren<Ovryn_ColorButton *>())
        button->setEnabled(enable);
    btnReset->setEnabled(enable);
    spinInterval->setEnabled(enable);
}

void Ovryn_LEDControlWidget::onRdbSingleToggled(bool checked)
{
    if (!checked)
        return;
    useGroupMode(Ovryn_ColorButtonGroup::Single);
    sendCurrentEffect(false);
}

void Ovryn_LEDControlWidget::onRdbMultipleToggled(bool checked)
{
    if (!checked)
        return;
    useGroupMode(Ovryn_ColorButtonGroup::Multiple);
    sendCurrentEffect(false);
}

void Ovryn_LEDControlWidget::onRdbSleepToggled(bool checked)
{
    enableColorControls(!checked);
    if (checked)
        sendCurrentEffect(false);
}

void Ovryn_LEDControlWidget::onRdbGradientToggled(bool checked)
{
    onRdbSleepToggled(checked);
}

void Ovryn_LEDControlWidget::onRdbStateToggled(bool checked)
{
    enableColorControls(!checked);
    if (checked)
        sendCurrentEffect(false);
    else
        sendColorThread->stopStateDisplay(); // whoever sends next waits for it; this also revives a dead worker
}

void Ovryn_LEDControlWidget::onColorButtonDuobleClick(Ovryn_ColorButton *) {}

bool Ovryn_LEDControlWidget::isCustom(const Ovryn_ColorButton *button) const
{
    return std::find(customButtons.begin(), customButtons.end(), button) != customButtons.end();
}

void Ovryn_LEDControlWidget::onColorButtonClick(Ovryn_ColorButton *sender)
{
    if (!sender)
        return;
    if (isCustom(sender)) {
        currentBoundButton = sender;
        emit colorButtonHasDoubleClick(sender->getColor());
        if (colorChangedTimer->isActive())
            return; // its frame is on its way
    }
    sendCurrentEffect(false);
}

void Ovryn_LEDControlWidget::setCurrentBindColorCircleButtonColor(QColor color)
{
    if (!control || !currentBoundButton || !currentBoundButton->isEnabled())
        return;
    if (currentBoundButton->getColor().rgb() != color.rgb())
        currentBoundButton->setColor(color);
    if (controllerType == kLedControllerWithGradient && rdbSingleBright->isChecked()) {
        // This controller is quick enough to follow a drag with a steady colour.
        send(ledCommandFor(LedMode::SingleBright, interval, {color}), false);
        return;
    }
    if (!rdbState->isChecked() && currentBoundButton->isChecked())
        colorChangedTimer->start(); // anew at each movement, so that a drag gives one frame
}

void Ovryn_LEDControlWidget::onColorChangedTimerout()
{
    colorChangedTimer->stop();
    sendCurrentEffect(false);
}

void Ovryn_LEDControlWidget::onSpinBoxIntervalValueChanged(int value)
{
    interval = std::clamp(value, kMinLedInterval, kMaxLedInterval);
    sendCurrentEffect(false);
}

void Ovryn_LEDControlWidget::onResetButtonClick()
{
    const bool customSelected = std::any_of(customButtons.begin(), customButtons.end(),
                                            [](const Ovryn_ColorButton *button) { return button->isChecked(); });
    for (Ovryn_ColorButton *button : customButtons)
        button->setColor(Qt::white);
    currentBoundButton = nullptr;
    if (customSelected) {
        colorGroup->setMode(Ovryn_ColorButtonGroup::Single);
        presetButtons.front()->setCheck(true);
    }
    emit colorButtonHasDoubleClick(QColor(255, 0, 0));
    if (customSelected)
        rdbSingleBreath->setChecked(true); // sends, unless it was checked already
}
