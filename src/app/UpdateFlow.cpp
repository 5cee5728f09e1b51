#include "app/UpdateFlow.h"

#include "config/Ovryn_ConfigFile.h"
#include "ui/MessageBoxes.h"
#include "ui/Ovryn_LanguageTable.h"
#include "ui/Ovryn_UpdateLogWidget.h"
#include "update/Ovryn_DownloadUpdateFileInfo.h"
#include "update/Ovryn_UpdateInfoReader.h"
#include "update/UpdateFiles.h"

#include <QCoreApplication>
#include <QDate>
#include <QGuiApplication>
#include <QProcess>
#include <QScreen>

UpdateFlow::UpdateFlow(Ovryn_ConfigFile &file, const GeneralSettingInfo &general, const UpdateSettingInfo &update,
                       const Ovryn_LanguageTable &texts, QWidget *window)
    : QObject(window),
      configFile(file),
      generalSetting(general),
      updateSetting(update),
      languageTable(texts),
      dialog(window),
      downloader(new Ovryn_DownloadUpdateFileInfo(this))
{
}

void UpdateFlow::checkOnStart(const char *resultSlot)
{
    if (isReturnFromUpdater(QCoreApplication::arguments())) {
        returnFromUpdater();
        return;
    }
    QDate lastCheck = QDate::currentDate(); // used where no config.xml could be read
    configFile.getLastCheckDate(lastCheck);
    if (isUpdateCheckDue(lastCheck, updateSetting.CheckInterval, QDate::currentDate()))
        startCheck(resultSlot);
}

void UpdateFlow::startCheck(const char *resultSlot)
{
    disconnect(downloader, SIGNAL(downloadFinished(bool)), dialog, nullptr);
    connect(downloader, SIGNAL(downloadFinished(bool)), dialog, resultSlot);
    downloader->startDownload();
}

void UpdateFlow::handleResult(bool manifestDownloaded, UpdateTrigger trigger)
{
    if (!manifestDownloaded) // no message in both cases; the date stays, so that the next start tries again
        return;
    configFile.setLastCheckDate(QDate::currentDate());
    configFile.save(); // a failed write goes unnoticed by design

    Ovryn_UpdateInfoReader manifest;
    manifest.read(QString::fromLatin1(kManifestPath)); // a broken one offers no version
    const Lang_MainDialog &words = languageTable.mainDialog;
    switch (decideUpdate(trigger, updateSetting.UpdateMode, manifest.getCurrentVersion(),
                         manifest.getManualDownloadVersion())) {
    case UpdateAction::Nothing:
        break;
    case UpdateAction::ReportTooOld:
        tell(words.updateTooOld, languageTable.language(), dialog);
        break;
    case UpdateAction::AskThenUpdate:
        if (ask(words.updateAsk, languageTable.language(), dialog))
            startUpdater();
        break;
    case UpdateAction::Update:
        startUpdater();
        break;
    case UpdateAction::ReportLatest:
        clearFolder(QString::fromLatin1(kUpdateFolder));
        tell(words.updateLatest, languageTable.language(), dialog);
        break;
    }
}

void UpdateFlow::startUpdater()
{
    const QStringList arguments = {QString::fromLatin1(kCalledByProgram), generalSetting.Language};
    if (!QProcess::startDetached(updaterProgram(QCoreApplication::applicationDirPath()), arguments)) {
        tell(languageTable.mainDialog.updateStartFailed, languageTable.language(), dialog);
        return;
    }
    dialog->close();
    QCoreApplication::quit();
}

void UpdateFlow::returnFromUpdater()
{
    configFile.setLastUpdateDate(QDate::currentDate());
    configFile.save(); // a failed write goes unnoticed by design

    Ovryn_UpdateInfoReader manifest;
    manifest.read(QString::fromLatin1(kManifestPath)); // a broken one lists no updater
    extractUpdater(manifest.getFileInfos());
    clearFolder(QString::fromLatin1(kUpdateFolder));

    Ovryn_UpdateLogWidget updateLog(languageTable.language(), dialog);
    // No parent, so the log is in the middle of the screen: the dialog is not shown yet and has no position.
    updateLog.move(QGuiApplication::primaryScreen()->availableGeometry().center() - updateLog.rect().center());
    connect(dialog, SIGNAL(closed()), &updateLog, SLOT(reject())); // from the tray
    updateLog.exec();
}
