#include "app/OvrynDeck2.h"

#include "board/Ovryn_BoardInfoMainWidget.h"
#include "device/NvGpuControl.h"
#include "device/Units.h"
#include "device/WorkerThread.h"
#include "monitor/Ovryn_GpuFixedInfo.h"
#include "monitor/Ovryn_GpuInfoCircleBox.h"
#include "monitor/Ovryn_NvCardInfoWidget.h"
#include "monitor/Ovryn_SendNvCardInfoThread.h"
#include "overclock/Ovryn_OverClockingWidget.h"
#include "platform/AutoStart.h"
#include "platform/QtSingleApplication.h"
#include "ui/Ovryn_MessageBox.h"
#include "ui/Ovryn_SettingParentWidget.h"

#include <QAction>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QDate>
#include <QIcon>
#include <QMenu>
#include <QPushButton>

namespace
{

constexpr int kTrayMenuMinimumWidth = 150;

/// With a cycle of a worker when the system ends the session: Windows gives a process five seconds in all.
constexpr unsigned long kPatienceOfTheSystemMs = 2000;

} // namespace

// ---- tray and closing -------------------------------------------------------------------------------

void OvrynDeck2::buildTray()
{
    showMainAction = new QAction(this);
    exitAppAction = new QAction(this);
    connect(showMainAction, SIGNAL(triggered()), this, SLOT(onShowMainAction()));
    connect(exitAppAction, SIGNAL(triggered()), this, SLOT(onExitAppAction()));

    trayMenu = new QMenu(this);
    trayMenu->setFont(QFont(QStringLiteral("微软雅黑")));
    trayMenu->setMinimumWidth(kTrayMenuMinimumWidth);
    trayMenu->addAction(showMainAction);
    trayMenu->addSeparator();
    trayMenu->addAction(exitAppAction);

    trayIcon = new QSystemTrayIcon(QIcon(QStringLiteral(":/images/images/icon.png")), this);
    trayIcon->setToolTip(QStringLiteral("OvrynDeck2"));
    trayIcon->setContextMenu(trayMenu);
    connect(trayIcon, SIGNAL(activated(QSystemTrayIcon::ActivationReason)), this,
            SLOT(onActivatedSysTrayIcon(QSystemTrayIcon::ActivationReason)));
    trayIcon->show();
}

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
    Ovryn_MessageBox box(Ovryn_MessageBox::TwoButtons, QString(), languageTable.mainDialog.exitQuestion,
                         languageTable.language(), this, Qt::WindowFlags(Ovryn_MessageBox::usualWindowFlags));
    if (box.exec() == Ovryn_MessageBox::Yes)
        close();
}

void OvrynDeck2::closeEvent(QCloseEvent *event)
{
    keepEverything();
    trayIcon->hide(); // the workers may take their time; nothing of the program is to be seen meanwhile
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

void OvrynDeck2::onCommitDataRequest()
{
    keepEverything(); // the others of the session, or the user, may still call its end off
}

void OvrynDeck2::keepEverything()
{
    pullSettings();
    configFile.setGeneralSetting(generalSetting);
    configFile.setUpdateSetting(updateSetting);
    for (int i = 0; i < cardPageSets.size(); ++i) {
        const GpuCardInfo &card = cardInfos.at(i);
        LcdModuleInfo lcd;
        cardPageSets.at(i).lcdPage->getLcdModuleInfo(lcd);
        configFile.setLcdModule(card.gpuName, card.subSystemId, lcd);
        AdjustModuleInfo adjust;
        cardPageSets.at(i).adjustPage->getParameter(adjust);
        configFile.setAdjustModule(card.gpuName, card.subSystemId, adjust);
        int selectOption = 0;
        cardPageSets.at(i).monitorPage->getSelectOption(&selectOption);
        configFile.setMonitorModule(card.gpuName, card.subSystemId, quint32(selectOption));
        LedModuleInfo led;
        cardPageSets.at(i).ledPage->getLedModuleInfo(led);
        configFile.setLedModule(card.gpuName, card.subSystemId, led);
    }
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
    for (int i = 0; i < cardPageSets.size(); ++i)
        applyPageEffects(cardInfos.at(i), cardPageSets.at(i).circleBox);
}

void OvrynDeck2::onSettingWidgetRefreshTimeChanged()
{
    pullSettings();
    for (const CardPageSet &pages : qAsConst(cardPageSets))
        pages.infoWorker->setRefreshTime(unsigned(generalSetting.RefreshTimeOfMonitor * kMillisecondsPerSecond));
}

void OvrynDeck2::applyPageEffects(const GpuCardInfo &card, Ovryn_GpuInfoCircleBox *circleBox)
{
    const bool advanced = generalSetting.PageEffects == QLatin1String("advanced");
    circleBox->setEnableBreathingCircle(advanced && card.variantCode != 0);
    circleBox->setEnableWave(advanced);
}

void OvrynDeck2::applyLanguage()
{
    const Lang_MainDialog &words = languageTable.mainDialog;
    btnMonitor->setText(words.monitor);
    btnAdjust->setText(words.adjust);
    btnBoardTempInfo->setText(words.boardTemp);
    btnHighPerformance->setText(words.onOff);
    showMainAction->setText(words.display);
    exitAppAction->setText(words.exit);
    settingPanel->setLanguage(languageTable.setting, languageTable.language());
    for (const CardPageSet &pages : qAsConst(cardPageSets))
        handWordsTo(pages);
}

void OvrynDeck2::handWordsTo(const CardPageSet &pages)
{
    pages.monitorPage->setLanguage(languageTable.monitor, languageTable.language());
    pages.adjustPage->setLanguage(languageTable.overClock, languageTable.language());
    pages.ledPage->setLanguage(languageTable.led, languageTable.language());
    pages.lcdPage->setLanguage(languageTable.lcd, languageTable.language());
    pages.fixedInfoPage->setLanguage(languageTable.gpuFixedInfo, languageTable.language());
    pages.circleBox->setLanguage(languageTable.breathCircle, languageTable.language());
    pages.boardInfoPage->setLanguage(languageTable.boardInfo, languageTable.language());
}
