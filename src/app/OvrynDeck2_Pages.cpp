#include "app/OvrynDeck2.h"

#include "board/Ovryn_BoardInfoMainWidget.h"
#include "board/Ovryn_ColorPaletteBox.h"
#include "board/Ovryn_LCDControllorWidget.h"
#include "board/Ovryn_LEDControlWidget.h"
#include "monitor/Ovryn_BackgroundEffects.h"
#include "monitor/Ovryn_GpuFixedInfo.h"
#include "monitor/Ovryn_GpuInfoCircleBox.h"
#include "monitor/Ovryn_NvCardInfoWidget.h"
#include "overclock/Ovryn_OverClockingWidget.h"
#include "ui/Ovryn_MessageBox.h"
#include "ui/Ovryn_MessageBox1.h"
#include "ui/Ovryn_SettingParentWidget.h"
#include "ui/RollStackWidget.h"

#include <QPushButton>
#include <QStackedWidget>

namespace
{

// Both questions are asked once a run, whichever window asks them.
bool firstAdjustPrompt = true;
bool firstHighPerformancePrompt = true;

} // namespace

void OvrynDeck2::onBtnMonitorClicked(bool)
{
    openPage(MonitorPage, btnMonitor);
}

void OvrynDeck2::onBtnAdjustClicked(bool bChecked)
{
    // The warning guards the way in only; a click that closes the page asks nothing.
    if (bChecked && firstAdjustPrompt) {
        Ovryn_MessageBox box(Ovryn_MessageBox::TwoButtons, QString(), languageTable.mainDialog.adjustWarning,
                             languageTable.language(), this, Qt::WindowFlags(Ovryn_MessageBox::usualWindowFlags));
        if (box.exec() != Ovryn_MessageBox::Yes) {
            btnAdjust->setChecked(false);
            return;
        }
        firstAdjustPrompt = false;
    }
    openPage(AdjustPage, btnAdjust);
}

void OvrynDeck2::onBtnLEDClicked(bool)
{
    if (settingPanel->isShowing())
        settingPanel->setShowSettingWidget(false);
    openPage(LedPage, btnFirstSlot);
    update();
}

void OvrynDeck2::onBtnLCDClicked(bool)
{
    if (settingPanel->isShowing())
        settingPanel->setShowSettingWidget(false);
    // The second slot, also where the first one carries the LCD: the page change then unchecks the very
    // button that was clicked. Wanted: cards with an LCD alone have always behaved so.
    openPage(LcdPage, btnSecondSlot);
    update();
}

void OvrynDeck2::onBtnGpuFixedClicked(bool)
{
    openPage(FixedInfoPage, btnGpuFixedInfo);
}

void OvrynDeck2::onBtnBoardTempInfoClicked(bool)
{
    openPage(BoardTempPage, btnBoardTempInfo);
}

void OvrynDeck2::openPage(int page, QPushButton *button)
{
    currentPage = page;
    changePage(button);
}

void OvrynDeck2::changePage(QPushButton *clicked)
{
    leaveFields();
    bool anyChecked = false;
    for (QPushButton *button : qAsConst(pageButtons)) {
        if (!button->isChecked())
            continue;
        anyChecked = true;
        if (button != clicked)
            button->setChecked(false);
    }
    pagePanelShown = anyChecked;
    if (anyChecked) {
        pageStack->show();
        backgroundEffects->moveOut();
    } else {
        pageStack->hide();
        pageStack->clearCurrent(); // so that the next page slides in again
        currentPage = HomePage;
        if (const CardPageSet *pages = shownPages())
            circleStack->setCurrentWidget(pages->circleBox);
        backgroundEffects->moveIn();
    }
    moveCircleWidgetTimer.start();
}

void OvrynDeck2::onMoveCircleWidgetTimerTimeout()
{
    const QRect target = pagePanelShown ? layoutRects.gaugeShown : layoutRects.gaugeHome;
    const int x = nextGaugeX(circleStack->x(), target.x());
    circleStack->move(x, circleStack->y());
    if (x != target.x())
        return;
    moveCircleWidgetTimer.stop();
    if (pagePanelShown)
        selectPage();
}

/// A field that goes out of sight with the keyboard's focus would pass it on to the next one, which then stands
/// marked although nobody has been there.
void OvrynDeck2::leaveFields()
{
    setFocus();
}

void OvrynDeck2::rollTo(QWidget *page)
{
    leaveFields();
    pageStack->showStack();
    pageStack->setCurrentWidget(page);
}

void OvrynDeck2::selectPage()
{
    const CardPageSet *pages = shownPages();
    const GpuCardInfo *card = shownCardInfo();
    if (!pages || !card)
        return;

    QWidget *beside = pages->circleBox;
    switch (currentPage) {
    case HomePage:
        break;
    case MonitorPage:
        rollTo(pages->monitorPage);
        break;
    case AdjustPage:
        rollTo(pages->adjustPage);
        break;
    case LedPage:
        if (card->hasLed) {
            rollTo(pages->ledPage);
            beside = pages->colorPalette;
        } else {
            rollTo(pages->fixedInfoPage);
        }
        break;
    case LcdPage:
        if (card->hasLcd)
            rollTo(pages->lcdPage);
        else
            rollTo(pages->fixedInfoPage);
        break;
    case FixedInfoPage:
        rollTo(pages->fixedInfoPage);
        break;
    case BoardTempPage:
        rollTo(pages->boardInfoPage);
        break;
    }
    circleStack->setCurrentWidget(beside);
}

void OvrynDeck2::onBtnHighPerformanceClicked(bool checked)
{
    const CardPageSet *pages = shownPages();
    if (!pages || checked == pages->adjustPage->isHighPerformance())
        return;
    pages->adjustPage->setHighPerformance(checked);
    btnHighPerformance->setChecked(pages->adjustPage->isHighPerformance()); // back where the card refused
}

void OvrynDeck2::onHighPerformanceModeChanged(bool bEnable)
{
    btnHighPerformance->setChecked(bEnable);
}

void OvrynDeck2::afterShow()
{
    const GpuCardInfo *card = shownCardInfo();
    if (!firstHighPerformancePrompt || !card || !offersHighPerformance(*card))
        return;
    firstHighPerformancePrompt = false;

    bool notPrompt = false;
    configFile.getNotPromptHPS(notPrompt);
    if (notPrompt || btnHighPerformance->isChecked())
        return;
    Ovryn_MessageBox1 box(Ovryn_MessageBox::DontShowAgain, QString(), languageTable.mainDialog.highPerformance,
                          languageTable.language(), this, Qt::WindowFlags(Ovryn_MessageBox::usualWindowFlags));
    if (box.exec() == Ovryn_MessageBox::ConfirmDontShowAgain)
        configFile.setNotPromptHPS(true);
}
