#include "app/MainDialogLayout.h"

#include <algorithm>

namespace
{

constexpr int kSlideStep = 10; // pixels per tick, of the gauge box

constexpr int kPanelRightMargin = 40;
constexpr int kPanelDrop = 46; // below the middle, clear of the rail

constexpr QSize kTextButton(80, 20);
constexpr QSize kRailButton(19, 19);
constexpr QSize kSlotButton(90, 24);

} // namespace

MainDialogLayout mainDialogLayout(QSize dialog)
{
    const int width = dialog.width();
    const int height = dialog.height();

    MainDialogLayout layout;
    layout.selector = QRect(width / 2 - 150, height / 8, 300, 50);
    layout.monitorButton = QRect(QPoint(width - 235, 120), kTextButton);
    layout.adjustButton = QRect(QPoint(width - 150, 120), kTextButton);
    layout.boardTempButton = QRect(QPoint(width - 235, 95), kTextButton);
    layout.highPerformanceButton = QRect(QPoint(width - 320, 120), kTextButton);
    layout.fixedInfoButton = QRect(280, 52, 20, 20);
    layout.settingButton = QRect(QPoint(width - 24, 62), kRailButton);
    layout.minimizeButton = QRect(QPoint(width - 24, 92), kRailButton);
    layout.closeButton = QRect(QPoint(width - 24, 122), kRailButton);
    layout.firstSlotButton = QRect(QPoint(70, 118), kSlotButton);
    layout.secondSlotButton = QRect(QPoint(170, 118), kSlotButton);

    const int gauge = int(height * 0.94);
    layout.gaugeHome = QRect(width / 2 - gauge / 2, height / 7, gauge, gauge);
    layout.gaugeShown = QRect(int((width - gauge * 1.8) / 2), height / 7, gauge, gauge);

    const int panelHeight = int(height * 0.58);
    const int panelWidth = int(panelHeight * 0.97);
    layout.pagePanel = QRect(int(width - panelWidth * 1.25), int(height / 3.2), panelWidth, panelHeight);
    return layout;
}

QPoint settingPanelPosition(QSize dialog, QSize panel)
{
    return {dialog.width() - panel.width() - kPanelRightMargin, (dialog.height() - panel.height()) / 2 + kPanelDrop};
}

int nextGaugeX(int x, int target)
{
    return x > target ? std::max(x - kSlideStep, target) : std::min(x + kSlideStep, target);
}
