#include "app/OvrynDeck2.h"

#include "app/Ovryn_BackgroundEffects.h"
#include "overclock/Ovryn_OverClockingWidget.h"
#include "ui/MessageBoxes.h"
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
    openPage(MonitorButton);
}

void OvrynDeck2::onBtnAdjustClicked(bool bChecked)
{
    // The warning guards the way in only; a click that closes the page asks nothing.
    if (bChecked && firstAdjustPrompt) {
        if (!ask(languageTable.mainDialog.adjustWarning, languageTable.language(), this)) {
            pageButtons[AdjustButton]->setChecked(false);
            return;
        }
        firstAdjustPrompt = false;
    }
    openPage(AdjustButton);
}

void OvrynDeck2::onBtnLEDClicked(bool)
{
    if (settingPanel->isShowing())
        settingPanel->setShowSettingWidget(false);
    openPage(FirstSlotButton);
    update();
}

void OvrynDeck2::onBtnLCDClicked(bool)
{
    if (settingPanel->isShowing())
        settingPanel->setShowSettingWidget(false);
    // The second slot, also where the first one carries the LCD: the page change then unchecks the very
    // button that was clicked. Wanted: cards with an LCD alone have always behaved so.
    openPage(SecondSlotButton);
    update();
}

void OvrynDeck2::onBtnGpuFixedClicked(bool)
{
    openPage(FixedInfoButton);
}

void OvrynDeck2::onBtnBoardTempInfoClicked(bool)
{
    openPage(BoardTempButton);
}

void OvrynDeck2::openPage(PageButtonIndex button)
{
    currentPage = kPageButtons[button].page;
    changePage(pageButtons[button]);
}

void OvrynDeck2::changePage(QPushButton *clicked)
{
    leaveFields();
    bool anyChecked = false;
    for (QPushButton *button : pageButtons) {
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
            circleStack->setCurrentWidget(pages->view(HomePage).beside);
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

void OvrynDeck2::selectPage()
{
    const CardPageSet *const pages = shownPages();
    if (!pages)
        return;
    const CardPageSet::View view = pages->view(currentPage);
    if (view.page) {
        leaveFields();
        pageStack->showStack();
        pageStack->setCurrentWidget(view.page);
    }
    circleStack->setCurrentWidget(view.beside);
}

void OvrynDeck2::onBtnHighPerformanceClicked(bool checked)
{
    const CardPageSet *const pages = shownPages();
    if (!pages || checked == pages->adjust()->isHighPerformance())
        return;
    pages->adjust()->setHighPerformance(checked);
    btnHighPerformance->setChecked(pages->adjust()->isHighPerformance()); // back where the card refused
}

void OvrynDeck2::onHighPerformanceModeChanged(bool bEnable)
{
    btnHighPerformance->setChecked(bEnable);
}

void OvrynDeck2::afterShow()
{
    const CardPageSet *const pages = shownPages();
    if (!firstHighPerformancePrompt || !pages || !offersHighPerformance(pages->card()))
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
