#include "app/PageButtons.h"

#include "app/MainDialogStyle.h"

#include <QObject>

namespace
{

QString infoPicture()
{
    return MainDialogStyle::pictureButton(QStringLiteral("info"));
}

QString firstSlot()
{
    return MainDialogStyle::slotButton(QStringLiteral("first"));
}

QString secondSlot()
{
    return MainDialogStyle::slotButton(QStringLiteral("second"));
}

} // namespace

// clang-format off
const std::array<PageButton, PageButtonCount> kPageButtons = {{
    // page          object name         style sheet                   caption                      place                                slot
    {MonitorPage,   "btnMonitor",       MainDialogStyle::textButton,  &Lang_MainDialog::monitor,   &MainDialogLayout::monitorButton,    SLOT(onBtnMonitorClicked(bool))},
    {AdjustPage,    "btnAdjust",        MainDialogStyle::textButton,  &Lang_MainDialog::adjust,    &MainDialogLayout::adjustButton,     SLOT(onBtnAdjustClicked(bool))},
    {BoardTempPage, "btnBoardTempInfo", MainDialogStyle::textButton,  &Lang_MainDialog::boardTemp, &MainDialogLayout::boardTempButton,  nullptr}, // hidden
    {FixedInfoPage, "btnGpuFixedInfo",  infoPicture,                  nullptr,                     &MainDialogLayout::fixedInfoButton,  SLOT(onBtnGpuFixedClicked(bool))},
    {LedPage,       "btnFirstSlot",     firstSlot,                    nullptr,                     &MainDialogLayout::firstSlotButton,  nullptr}, // or the LCD
    {LcdPage,       "btnSecondSlot",    secondSlot,                   nullptr,                     &MainDialogLayout::secondSlotButton, nullptr},
}};
// clang-format on
