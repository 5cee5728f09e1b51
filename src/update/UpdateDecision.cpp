#include "update/UpdateDecision.h"

#include "config/ConfigRecords.h"

bool isNewerVersion(const QString &version, const QString &own)
{
    return own < version;
}

bool isUpdateCheckDue(const QDate &lastCheck, int intervalDays, const QDate &today)
{
    return !(lastCheck.addDays(intervalDays) > today);
}

UpdateAction decideUpdate(UpdateTrigger trigger, int updateMode, const QString &currentVersion,
                          const QString &manualDownloadVersion, const QString &own)
{
    const bool manual = trigger == UpdateTrigger::Manual;
    if (!isNewerVersion(currentVersion, own))
        return manual ? UpdateAction::ReportLatest : UpdateAction::Nothing;
    if (isNewerVersion(manualDownloadVersion, own))
        return UpdateAction::ReportTooOld;
    const bool asks = manual || updateMode == kUpdateModeAsk || updateMode == kUpdateModeNotify;
    return asks ? UpdateAction::AskThenUpdate : UpdateAction::Update;
}
