#include "app/OvrynDeck2.h"

#include "app/Tray.h"
#include "app/UpdateFlow.h"
#include "device/Units.h"
#include "platform/AutoStart.h"
#include "platform/QtSingleApplication.h"
#include "ui/MessageBoxes.h"
#include "ui/Ovryn_SettingParentWidget.h"
#include "worker/WorkerThread.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QDate>
#include <QPushButton>

namespace
{

/// With a cycle of a worker when the system ends the session: Windows gives a process five seconds in all.
constexpr unsigned long kPatienceOfTheSystemMs = 2000;

} // namespace

// ---- tray and closing -------------------------------------------------------------------------------

void OvrynDeck2::bringBack()
{
    if (QWidget *const box = QApplication::activeModalWidget(); box && detectedCards == 0) {
        QtSingleApplication::bringToFront(box); // the message that no card was found; this window has nothing to show
        return;
    }
    QtSingleApplication::bringToFront(this);
    afterShow();
}

void OvrynDeck2::onActivatedSysTrayIcon(QSystemTrayIcon::ActivationReason reason)
{
    if (reason == QSystemTrayIcon::Trigger)
        bringBack();
}

void OvrynDeck2::onShowMainAction()
{
    bringBack();
}

void OvrynDeck2::onExitAppAction()
{
    close();
}

void OvrynDeck2::onBtnMinimizeClick()
{
    hide();
}

void OvrynDeck2::onBtnCloseClick()
{
    if (ask(languageTable.mainDialog.exitQuestion, languageTable.language(), this))
        close();
}

void OvrynDeck2::closeEvent(QCloseEvent *event)
{
    keepEverything();
    tray->hide(); // the workers may take their time; nothing of the program is to be seen meanwhile
    QDialog::closeEvent(event);
    closedOnce = true;
    emit closed();
}

void OvrynDeck2::onEndDemanded()
{
    WorkerThread::setPatience(kPatienceOfTheSystemMs);
    if (!closedOnce)
        close();
}

void OvrynDeck2::endWork()
{
    if (!closedOnce)
        keepEverything();
    closedOnce = true;
    endWorkers();
}

void OvrynDeck2::endWorkers()
{
    for (const std::unique_ptr<CardPageSet> &pages : cardPageSets)
        pages->requestEnd();
    for (const std::unique_ptr<CardPageSet> &pages : cardPageSets)
        pages->handFanBack();
}

void OvrynDeck2::onCommitDataRequest()
{
    keepEverything(); // the others of the session, or the user, may still call its end off
}

void OvrynDeck2::keepEverything()
{
    pullSettings();
    configFile.setGeneralSetting(generalSetting);
    configFile.setUpdateSetting(updateSetting);
    for (const std::unique_ptr<CardPageSet> &pages : cardPageSets)
        pages->keepSettings(configFile);
    setStartOnBoot(generalSetting.StartOnBoot, QCoreApplication::applicationFilePath());
    configFile.setLastCloseDate(QDate::currentDate());
    configFile.save(); // a failed write goes unnoticed by design
}

// ---- settings ---------------------------------------------------------------------------------------

void OvrynDeck2::pullSettings()
{
    settingPanel->getSettings(generalSetting, updateSetting);
}

void OvrynDeck2::onBtnSettingClick()
{
    leaveFields();
    settingPanel->raise();
    settingPanel->setShowSettingWidget(!settingPanel->isShowing());
}

void OvrynDeck2::onSettingWidgetLanguageChanged()
{
    pullSettings();
    const LanguageType language = languageNumberOf(generalSetting.Language);
    if (language == languageTable.language())
        return;
    languageTable.setLanguage(language);
    applyLanguage();
}

void OvrynDeck2::onSettingWidgetPageEffectChanged()
{
    pullSettings();
    applyPageEffects();
}

void OvrynDeck2::applyPageEffects()
{
    const bool advanced = generalSetting.PageEffects == QLatin1String("advanced");
    for (const std::unique_ptr<CardPageSet> &pages : cardPageSets)
        pages->setAdvancedEffects(advanced);
}

void OvrynDeck2::onSettingWidgetRefreshTimeChanged()
{
    pullSettings();
    for (const std::unique_ptr<CardPageSet> &pages : cardPageSets)
        pages->setRefreshTime(unsigned(generalSetting.RefreshTimeOfMonitor * kMillisecondsPerSecond));
}

void OvrynDeck2::applyLanguage()
{
    const Lang_MainDialog &words = languageTable.mainDialog;
    for (std::size_t index = 0; index < kPageButtons.size(); ++index) {
        if (kPageButtons[index].caption)
            pageButtons[index]->setText(words.*kPageButtons[index].caption);
    }
    btnHighPerformance->setText(words.onOff);
    tray->setLanguage(words);
    settingPanel->setLanguage(languageTable.setting, languageTable.language());
    for (const std::unique_ptr<CardPageSet> &pages : cardPageSets)
        pages->setLanguage(languageTable);
}

// ---- update -----------------------------------------------------------------------------------------

void OvrynDeck2::manualDetectUpdate()
{
    updateFlow->startCheck(SLOT(onDownloadUpdateFileFinished1(bool)));
}

void OvrynDeck2::onDownloadUpdateFileFinished(bool resut)
{
    updateFlow->answer(resut, UpdateTrigger::Automatic);
}

void OvrynDeck2::onDownloadUpdateFileFinished1(bool resut)
{
    updateFlow->answer(resut, UpdateTrigger::Manual);
}
