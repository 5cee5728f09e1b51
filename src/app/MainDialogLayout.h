#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

/// The rectangles of the main dialog's parts, in dialog pixels. Integer divisions and products truncate.
struct MainDialogLayout
{
    QRect selector;
    QRect monitorButton;
    QRect adjustButton;
    QRect boardTempButton;
    QRect highPerformanceButton;
    QRect fixedInfoButton;
    QRect settingButton;
    QRect minimizeButton;
    QRect closeButton;
    QRect firstSlotButton;  ///< LED, or LCD on a card that has no LEDs
    QRect secondSlotButton; ///< LCD
    QRect gaugeHome;        ///< gauge box alone
    QRect gaugeShown;       ///< gauge box beside an open page
    QRect pagePanel;        ///< the rolling page stack
};

MainDialogLayout mainDialogLayout(QSize dialog);

/// Top left corner of the settings panel: at the right, under the rail of small buttons.
QPoint settingPanelPosition(QSize dialog, QSize panel);

/// Next x of the gauge box on its way to `target`, one tick of the slide (10 pixels).
int nextGaugeX(int x, int target);
