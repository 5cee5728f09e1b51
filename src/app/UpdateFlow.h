#pragma once

#include "update/UpdateDecision.h"

#include <QObject>

class Ovryn_ConfigFile;
class Ovryn_DownloadUpdateFileInfo;
class Ovryn_LanguageTable;
class QWidget;
struct GeneralSettingInfo;
struct UpdateSettingInfo;

/// The program's part in live update: asks the server, decides, informs or asks the user, and starts the updater; at
/// the start after an update it completes the update. The main dialog owns this object and everything that it
/// borrows, and is the parent of its boxes. GUI thread only. A failed check shows nothing.
class UpdateFlow : public QObject
{
    Q_OBJECT

public:
    UpdateFlow(Ovryn_ConfigFile &file, const GeneralSettingInfo &general, const UpdateSettingInfo &update,
               const Ovryn_LanguageTable &texts, QWidget *window);

    /// At the start of the program: completes an update, or looks for one when a check is due. The check calls
    /// `resultSlot` of the dialog with its result.
    void checkOnStart(const char *resultSlot);
    /// Looks for an update. Only this slot of the dialog gets the result, also that of a check that is running
    /// already.
    void startCheck(const char *resultSlot);
    /// What follows a check. `manifestDownloaded` is its result.
    void handleResult(bool manifestDownloaded, UpdateTrigger trigger);

private:
    void startUpdater();
    void returnFromUpdater();

    Ovryn_ConfigFile &configFile;
    const GeneralSettingInfo &generalSetting;
    const UpdateSettingInfo &updateSetting;
    const Ovryn_LanguageTable &languageTable;
    QWidget *const dialog;
    Ovryn_DownloadUpdateFileInfo *const downloader; ///< only its connection to the dialog changes
};
