#pragma once

#include <QDate>
#include <QString>

/// \file
/// What to do about an update, without doing it. Pure functions; any thread.

/// This program's version.
[[nodiscard]] QString ownVersion();

/// Texts are compared character by character, not number by number: "1.0.10.0" is no newer than "1.0.2.4". Servers
/// number their versions by this rule, so it has to stay. The empty text is never newer.
[[nodiscard]] bool isNewerVersion(const QString &version, const QString &own = ownVersion());

/// True from `intervalDays` days after the last check on, that day included; also where the date of the last check is
/// invalid. Never is an interval of 10000 days.
[[nodiscard]] bool isUpdateCheckDue(const QDate &lastCheck, int intervalDays, const QDate &today);

/// Who asked for the check.
enum class UpdateTrigger
{
    Automatic, ///< the start of the program
    Manual,    ///< the user, by the button of the settings page
};

enum class UpdateAction
{
    Nothing,
    ReportTooOld,  ///< the user has to fetch the new version himself
    AskThenUpdate, ///< start the updater after a yes
    Update,        ///< start the updater without a question
    ReportLatest,  ///< clear temp, then say that there is nothing newer
};

/// `updateMode` is the stored choice: 1 and 2 ask, every other value doesn't. A check by the user always asks, and
/// only that check reports that there is nothing new.
[[nodiscard]] UpdateAction decideUpdate(UpdateTrigger trigger, int updateMode, const QString &currentVersion,
                                        const QString &manualDownloadVersion, const QString &own = ownVersion());
