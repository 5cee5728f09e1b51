#include "overclock/Ovryn_OverClockingWidget.h"

#include "device/Arithmetic.h"
#include "device/NvGpuControl.h"
#include "overclock/Ovryn_SetUserDefineFanSpeedThread.h"
#include "overclock/Ovryn_SliderWidget.h"
#include "overclock/Ovryn_UserDefineFanSpeed.h"
#include "ui/MessageBoxes.h"

#include <QCheckBox>
#include <QPushButton>

#include <algorithm>

// What the page's widgets do: the rows, the buttons and the change of faces.

void Ovryn_OverClockingWidget::onSliderChanged(Ovryn_SliderWidget *sender)
{
    if (!gpuControl)
        return;
    const auto powerPolicy = static_cast<quint32>(current.power.policyId);
    const auto thermalPolicy = static_cast<quint32>(current.thermal.policyId);
    Ovryn_SliderWidget *const powerRow = rows[RowPower];
    Ovryn_SliderWidget *const temperatureRow = rows[RowTemperature];
    NvLimitPair pair;
    if (LinkCheckBox->isChecked() && sender == powerRow) {
        if (gpuControl->powerToTemperature(powerPolicy, thermalPolicy, static_cast<float>(powerRow->value()), pair))
            temperatureRow->setValue(cutToInt(static_cast<double>(pair.temperature)));
    } else if (LinkCheckBox->isChecked() && sender == temperatureRow) {
        if (gpuControl->temperatureToPower(powerPolicy, thermalPolicy, static_cast<float>(temperatureRow->value()),
                                           static_cast<float>(powerRow->value()), pair))
            powerRow->setValue(cutToInt(static_cast<double>(pair.power)));
    }
    showActionButtons();
}

void Ovryn_OverClockingWidget::onSliderMoved(Ovryn_SliderWidget *sender, int move)
{
    const auto found = std::find(rows.cbegin(), rows.cend(), sender);
    if (found == rows.cend())
        return;
    const qint32 baseline = kAdjustRows[static_cast<std::size_t>(found - rows.cbegin())].value(current);
    emit adjustChanged(QString::number(baseline), QString::number(move), wrappingDifference(move, baseline));
}

void Ovryn_OverClockingWidget::onSliderReleased(Ovryn_SliderWidget *)
{
    emit closeDisplayAdjustInfo();
}

void Ovryn_OverClockingWidget::onLinkCheckBoxToggle(bool)
{
    // Once linked, the temperature follows the power target that stands.
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
    readSliders();
    applyParam();
    hideApplyAndCancel();
    // The user's values stay, so what stood before the mode is not brought back.
    endHighPerformance();
}

void Ovryn_OverClockingWidget::applyCurve()
{
    nodes = editor->getPoints();
    // Neither starts the worker nor changes the fan mode: that is for the rows' face.
    fanThread->setTemperatureToFanSpeedData(nodes);
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
    else if (gpuControl)
        restoreDefaults();
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
        editor->setPoints(nodes);
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
    editor->setPoints(nodes);
}

void Ovryn_OverClockingWidget::leaveCurve()
{
    editingCurve = 0;
    showPage();
    hideApplyAndCancel();
}

void Ovryn_OverClockingWidget::returnToApplied()
{
    showParam(applied);
    current = applied;
}

void Ovryn_OverClockingWidget::endHighPerformance()
{
    highPerformance = false;
    emit highPerformanceModeChanged(false);
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
