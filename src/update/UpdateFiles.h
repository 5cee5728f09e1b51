#pragma once

#include "update/UpdateFileInfo.h"

#include <QList>
#include <QString>
#include <QStringList>

/// \file
/// The files of an update. Relative paths are those of the current folder, which is the installation folder. Nothing
/// here reports a failure: a file that can't be removed or extracted is left as it is.

constexpr const char *kUpdateFolder = "temp";
constexpr const char *kManifestPath = "temp/update_info.xml";

/// The program's identifier, whose single-instance lock the updater holds while it exchanges files.
constexpr const char *kProgramId = "Brindlex_OvrynDeck2";

/// The first argument of the two programs when one starts the other.
constexpr const char *kCalledByProgram = "_OvrynDeck2";
constexpr const char *kCalledByUpdater = "_OvrynUpdate";

/// True when the updater has started this program. `arguments` are those of the process, its own name first.
[[nodiscard]] bool isReturnFromUpdater(const QStringList &arguments);

/// The updater, to be started: the executable beside this program, as users expect it, or else the bare name, which
/// the system looks up in its own way. (On Windows that search begins beside the program, elsewhere it never does.)
[[nodiscard]] QString updaterProgram(const QString &programFolder);

/// The updater's executable beside the program; empty where there is none. An update leaves it under the manifest's
/// name, "OvrynUpdate.exe", on every system, and that one goes before the one that was installed first.
[[nodiscard]] QString installedUpdater(const QString &programFolder);

/// Removes everything in the folder, hidden files too, and leaves the folder itself. A link in it counts as a file:
/// only the link is removed. A folder that is a link itself stays as it is: its target may belong to another program.
/// A file that can't be removed is skipped.
void clearFolder(const QString &path);

/// Installs a new updater: a program can't replace its own running file, so the updater leaves its new version as the
/// archive temp/VERSION.zip, and this program extracts it. Only the first entry for the updater in `fileInfos`
/// counts. The old updater is removed before the archive is opened, and the archive is removed in any case.
///
/// `fileInfos` come from the network. Inside the installation they are followed to the letter, but nothing outside is
/// ever read, removed or written by them: an entry whose archive is not in temp, or whose target is not in the
/// installation folder, is passed over, both as the path reads and with links resolved. Of the archive only the entry
/// of exactly the updater's name is taken out, to the target and nowhere else, and not where it is a link.
void extractUpdater(const QList<UpdateFileInfo> &fileInfos);
