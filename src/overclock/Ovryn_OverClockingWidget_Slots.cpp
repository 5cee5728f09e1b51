#include "overclock/Ovryn_OverClockingWidget.h"

#include "device/Arithmetic.h"
#include "overclock/Ovryn_SliderWidget.h"
#include "overclock/Ovryn_UserDefineFanSpeed.h"
#include "ui/MessageBoxes.h"

#include <QCheckBox>
#include <QPushButton>

#include <algorithm>
#include <optional>

// The slots of the page: the rows, the buttons and the change of faces.

void Ovryn_OverClockingWidget::onSliderChanged(Ovryn_SliderWidget *sender)
{
    if (!card.hasCard())
        return;
    Ovryn_SliderWidget *const powerRow = rows[RowPower];
    Ovryn_SliderWidget *const temperatureRow = rows[RowTemperature];
    if (LinkCheckBox->isChecked() && sender == powerRow) {
        if (const std::optional<qint32> temperature = card.temperatureForPower(powerRow->value()))
            temperatureRow->setValue(*temperature);
    } else if (LinkCheckBox->isChecked() && sender == temperatureRow) {
        if (const std::optional<qint32> power = card.powerForTemperature(temperatureRow->value(), powerRow->value()))
            powerRow->setValue(*power);
    }
    showActionButtons();
}

void Ovryn_OverClockingWidget::onSliderMoved(Ovryn_SliderWidget *sender, int move)
{
    const auto found = std::find(rows.cbegin(), rows.cend(), sender);
    if (found == rows.cend())
        return;
    OverClockingParam inForce = card.snapshot();
    const qint32 baseline = kAdjustRows[static_cast<std::size_t>(found - rows.cbegin())].value(inForce);
    emit adjustChanged(QString::number(baseline), QString::number(move), wrappingDifference(move, baseline));
}

void Ovryn_OverClockingWidget::onSliderReleased(Ovryn_SliderWidget *)
{
    emit closeDisplayAdjustInfo();
}

void Ovryn_OverClockingWidget::onLinkCheckBoxToggle(bool)
{
    // After the link is switched on, the temperature follows the present power target.
    onSliderChanged(rows[RowPower]);
}

void Ovryn_OverClockingWidget::onBtnApplyClick()
{
    if (!ask(applyPrompt, language, window()))
        return;
    if (editingCurve)
        applyCurve();
    else
        applySliders();
}

void Ovryn_OverClockingWidget::applySliders()
{
    card.apply(readSliders());
    hideApplyAndCancel(); // also without a card, where no snapshot is read
}

void Ovryn_OverClockingWidget::applyCurve()
{
    card.setCurve(editor->getPoints()); // the fan mode is changed on the rows' face only
    leaveCurve();
    btnDefault->hide();
}

void Ovryn_OverClockingWidget::onBtnCancleClick()
{
    if (editingCurve) {
        leaveCurve();
    } else {
        returnToApplied();
        hideApplyAndCancel();
    }
}

void Ovryn_OverClockingWidget::onBtnDefaultClick()
{
    if (editingCurve)
        editor->resetToDefault();
    else
        card.restoreDefaults();
}

void Ovryn_OverClockingWidget::onBtnFanAutoClick()
{
    rows[RowFan]->setEnabled(false);
    showActionButtons();
}

void Ovryn_OverClockingWidget::onBtnFanManualClick()
{
    rows[RowFan]->setEnabled(true);
    showActionButtons();
}

void Ovryn_OverClockingWidget::onBtnFanUserDefinedClick()
{
    rows[RowFan]->setEnabled(false);
    showActionButtons();
}

void Ovryn_OverClockingWidget::onBtnUserDefineConfigClick()
{
    editingCurve = 1;
    showActionButtons();
    showPage();
}

void Ovryn_OverClockingWidget::showPage()
{
    if (editingCurve)
        editor->setPoints(card.curve());
    else
        returnToApplied();

    editor->setVisible(editingCurve);
    for (Ovryn_SliderWidget *row : rows)
        row->setVisible(!editingCurve);
    for (QPushButton *button : {btnFanAuto, btnFanManual, btnFanUserDefined, btnUserDefineConfig})
        button->setVisible(!editingCurve);
    LinkCheckBox->setVisible(!editingCurve);
}

void Ovryn_OverClockingWidget::showEvent(QShowEvent *)
{
    if (editingCurve) {
        showActionButtons();
    } else {
        returnToApplied();
        hideApplyAndCancel();
    }
    editor->setPoints(card.curve());
}

void Ovryn_OverClockingWidget::leaveCurve()
{
    editingCurve = 0;
    showPage();
    hideApplyAndCancel();
}

void Ovryn_OverClockingWidget::returnToApplied()
{
    card.returnToApplied();
    showParam(card.snapshot());
}

void Ovryn_OverClockingWidget::showActionButtons()
{
    btnApply->show();
    btnCancel->show();
    btnDefault->show();
}

void Ovryn_OverClockingWidget::hideApplyAndCancel()
{
    btnApply->hide();
    btnCancel->hide();
}
