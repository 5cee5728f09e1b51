#include "board/lcd/Ovryn_LCDControllorWidget.h"

#include "board/lcd/Ovryn_GlobalShortCut.h"
#include "board/lcd/Ovryn_HotKeyEdit.h"
#include "ui/MessageBoxes.h"
#include "ui/ModifySpinBox.h"

#include <QCheckBox>
#include <QPushButton>
#include <QRadioButton>

// What the user does, and what follows from it.

void Ovryn_LCDControllorWidget::showButtons(bool show)
{
    btnCancel->setVisible(show);
    btnConfirm->setVisible(show);
}

void Ovryn_LCDControllorWidget::onAutoSwitchToggled(bool bChecked)
{
    rdbAutoSwitch->setEnabled(true);
    rdbManualSwitch->setEnabled(true);
    spinSwitchTime->setEnabled(bChecked);
    hotKeyModifier->setEnabled(!bChecked);
    hotKeyNormal->setEnabled(!bChecked);
    showButtons(true);
}

void Ovryn_LCDControllorWidget::onEnableLCDToggled(bool bChecked)
{
    // While the page is being filled neither radio is checked yet, and nothing changes.
    const bool automatic = rdbAutoSwitch->isChecked();
    if (!bChecked || automatic || rdbManualSwitch->isChecked()) {
        rdbAutoSwitch->setEnabled(bChecked);
        rdbManualSwitch->setEnabled(bChecked);
        spinSwitchTime->setEnabled(bChecked && automatic);
        hotKeyModifier->setEnabled(bChecked && !automatic);
        hotKeyNormal->setEnabled(bChecked && !automatic);
    }
    showButtons(true);
}

void Ovryn_LCDControllorWidget::onLineEditTextChanged(const QString &)
{
    for (Ovryn_HotKeyEdit *field : {hotKeyModifier, hotKeyNormal}) {
        field->home(false); // the longest names don't fit: their beginning is to be seen, the rest in the tool tip
        field->setToolTip(field->text());
    }
    showButtons(true);
}

void Ovryn_LCDControllorWidget::onSpinBoxValueChanged(int)
{
    showButtons(true);
}

void Ovryn_LCDControllorWidget::onCancelClick()
{
    showParam();
    showButtons(false); // last: the values shown have counted as changes
}

void Ovryn_LCDControllorWidget::onConfirmClick()
{
    const bool confirmed = ask(texts.applyQuestion, languageType, this);
    btnConfirm->setDown(false); // the box has swallowed the release of the mouse button
    if (!confirmed)
        return;

    const bool automatic = rdbAutoSwitch->isChecked();
    const int seconds = spinSwitchTime->value();
    if (!sendNvInfoThread) {
        sendNvInfoThread = newWorker();
        sendNvInfoThread->setAutoSwitch(automatic, seconds);
    } else {
        sendNvInfoThread->setAutoSwitch(automatic, seconds);
        // The pair of the last Apply, not the one on the screen: a new hot key comes with the next Apply or the
        // next start. Wanted so.
        if (automatic)
            globalShortCut->unsetShortcut();
        else
            globalShortCut->setShortcut(int(applied.ModifierKey), int(applied.NormalKey));
    }
    sendNvInfoThread->setEnableLCD(cbLcd->isChecked());
    sendNvInfoThread->startSending();

    applied.SwitchTime = quint32(seconds);
    applied.EnableLcd = cbLcd->isChecked();
    applied.AutoSwitch = automatic;
    applied.ModifierKey = hotKeyModifier->key();
    applied.NormalKey = hotKeyNormal->key();
    showButtons(false);
}

void Ovryn_LCDControllorWidget::onHotKeyActivated()
{
    if (sendNvInfoThread)
        sendNvInfoThread->manualSwitch();
}

void Ovryn_LCDControllorWidget::onSendNvDataToLCDSuccess(bool) {}

void Ovryn_LCDControllorWidget::setLCDCurrentDisplayMode(LCDDisplayMode displayMode)
{
    if (sendNvInfoThread)
        sendNvInfoThread->setLCDCurrentDisplayMode(displayMode);
}
