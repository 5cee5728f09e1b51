#include "app/OvrynDeck2.h"

#include "ui/Ovryn_MessageBox.h"
#include "ui/Ovryn_UpdateLogWidget.h"
#include "update/Ovryn_DownloadUpdateFileInfo.h"
#include "update/Ovryn_UpdateInfoReader.h"
#include "update/UpdateFiles.h"

#include <QCoreApplication>
#include <QDate>
#include <QGuiApplication>
#include <QProcess>
#include <QScreen>

void OvrynDeck2::checkUpdateOnStart()
{
    if (isReturnFromUpdater(QCoreApplication::arguments())) {
        returnFromUpdater();
        return;
    }
    QDate lastCheck = QDate::currentDate(); // stands where no config.xml could be read
    configFile.getLastCheckDate(lastCheck);
    if (isUpdateCheckDue(lastCheck, updateSetting.CheckInterval, QDate::currentDate()))
        startUpdateCheck(SLOT(onDownloadUpdateFileFinished(bool)));
}

void OvrynDeck2::manualDetectUpdate()
{
    startUpdateCheck(SLOT(onDownloadUpdateFileFinished1(bool)));
}

/// The one slot answers, also for a download that is running already and that this call can't start again.
void OvrynDeck2::startUpdateCheck(const char *answeringSlot)
{
    const char *const finished = SIGNAL(downloadFinished(bool));
    disconnect(updateDownloader, finished, this, SLOT(onDownloadUpdateFileFinished(bool)));
    disconnect(updateDownloader, finished, this, SLOT(onDownloadUpdateFileFinished1(bool)));
    connect(updateDownloader, finished, this, answeringSlot);
    updateDownloader->startDownload();
}

void OvrynDeck2::onDownloadUpdateFileFinished(bool resut)
{
    answerUpdateCheck(resut, UpdateRoad::Automatic);
}

void OvrynDeck2::onDownloadUpdateFileFinished1(bool resut)
{
    answerUpdateCheck(resut, UpdateRoad::Manual);
}

void OvrynDeck2::answerUpdateCheck(bool manifestStands, UpdateRoad road)
{
    if (!manifestStands) // silence on both roads; the date stays, so that the next start tries again
        return;
    configFile.setLastCheckDate(QDate::currentDate());
    configFile.save(); // a failed write goes unnoticed by design

    Ovryn_UpdateInfoReader manifest;
    manifest.read(QString::fromLatin1(kManifestPath)); // a broken one offers no version
    const Lang_MainDialog &words = languageTable.mainDialog;
    switch (decideUpdate(road, updateSetting.UpdateMode, manifest.getCurrentVersion(),
                         manifest.getManualDownloadVersion())) {
    case UpdateAction::Nothing:
        break;
    case UpdateAction::TellTooOld:
        showUpdateBox(0, words.updateTooOld);
        break;
    case UpdateAction::AskThenUpdate:
        if (showUpdateBox(Ovryn_MessageBox::TwoButtons, words.updateAsk) == Ovryn_MessageBox::Yes)
            handOverToUpdater();
        break;
    case UpdateAction::Update:
        handOverToUpdater();
        break;
    case UpdateAction::TellLatest:
        clearFolder(QString::fromLatin1(kUpdateFolder));
        showUpdateBox(0, words.updateLatest);
        break;
    }
}

void OvrynDeck2::handOverToUpdater()
{
    const QStringList arguments = {QString::fromLatin1(kCalledByProgram), generalSetting.Language};
    if (!QProcess::startDetached(updaterProgram(QCoreApplication::applicationDirPath()), arguments)) {
        showUpdateBox(0, languageTable.mainDialog.updateStartFailed);
        return;
    }
    close();
    QCoreApplication::quit();
}

void OvrynDeck2::returnFromUpdater()
{
    configFile.setLastUpdateDate(QDate::currentDate());
    configFile.save(); // a failed write goes unnoticed by design

    Ovryn_UpdateInfoReader manifest;
    manifest.read(QString::fromLatin1(kManifestPath)); // a broken one lists no updater
    takeOutUpdater(manifest.getFileInfos());
    clearFolder(QString::fromLatin1(kUpdateFolder));

    Ovryn_UpdateLogWidget updateLog(languageTable.language(), this);
    // In the middle of the screen: this dialog is not shown yet and has no place that the log could stand over.
    updateLog.move(QGuiApplication::primaryScreen()->availableGeometry().center() - updateLog.rect().center());
    connect(this, SIGNAL(closed()), &updateLog, SLOT(reject())); // from the tray
    updateLog.exec();
}

int OvrynDeck2::showUpdateBox(int flags, const QString &text)
{
    Ovryn_MessageBox box(flags, QString(), text, languageTable.language(), this,
                         Qt::WindowFlags(Ovryn_MessageBox::usualWindowFlags));
    return box.exec();
}
