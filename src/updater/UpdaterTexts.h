#pragma once

#include "ui/Ovryn_LanguageTable.h"
#include "updater/UpdateRun.h"

#include <QString>

/// The updater's texts in both languages. The program passes the language as its settings file has it: "lang_ch" is
/// Chinese, every other text English. Pure functions; any thread.
namespace UpdaterTexts
{

[[nodiscard]] QString title(LanguageType language);
/// What is being done, one line.
[[nodiscard]] QString stage(UpdateRun::Stage stage, LanguageType language);
/// What went wrong and what the user can do about it. `path` is the file that it is about; may be empty.
[[nodiscard]] QString failure(UpdateFailure failure, const QString &path, LanguageType language);
/// "12.5 of 48.0 MB"; with the seconds that are left where those are known, above 0.
[[nodiscard]] QString progress(qint64 bytes, qint64 total, int secondsLeft, LanguageType language);
/// For a start by hand.
[[nodiscard]] QString purpose(LanguageType language);
[[nodiscard]] QString cancelCaption(LanguageType language);
[[nodiscard]] QString retryCaption(LanguageType language);
[[nodiscard]] QString closeCaption(LanguageType language);
[[nodiscard]] QString progressName(LanguageType language); ///< of the bar, for a screen reader

} // namespace UpdaterTexts
