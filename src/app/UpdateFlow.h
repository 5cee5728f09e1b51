#pragma once

#include "update/UpdateDecision.h"

#include <QObject>

class Ovryn_ConfigFile;
class Ovryn_DownloadUpdateFileInfo;
class Ovryn_LanguageTable;
class QWidget;
struct GeneralSettingInfo;
struct UpdateSettingInfo;

/// The program's part in live update: asks the server, decides, tells or asks the user, and hands over to the
/// updater; at the start after an update it finishes that. Everything that it borrows belongs to the main dialog,
/// which owns it and over which its boxes stand. GUI thread only. A check that fails says nothing.
class UpdateFlow : public QObject
{
    Q_OBJECT

public:
    UpdateFlow(Ovryn_ConfigFile &file, const GeneralSettingInfo &general, const UpdateSettingInfo &update,
               const Ovryn_LanguageTable &texts, QWidget *window);

    /// At the start of the program: finishes an update, or looks for one when that is due. `answeringSlot` of the
    /// dialog is then called with the check's result.
    void checkOnStart(const char *answeringSlot);
    /// Looks for an update. That slot of the dialog alone answers, also for a check that is running already.
    void startCheck(const char *answeringSlot);
    /// What follows a check. `manifestStands` is its result.
    void answer(bool manifestStands, UpdateTrigger trigger);

private:
    void handOverToUpdater();
    void returnFromUpdater();

    Ovryn_ConfigFile &configFile;
    const GeneralSettingInfo &generalSetting;
    const UpdateSettingInfo &updateSetting;
    const Ovryn_LanguageTable &languageTable;
    QWidget *const dialog;
    Ovryn_DownloadUpdateFileInfo *const downloader; ///< only its connection to the dialog changes
};
