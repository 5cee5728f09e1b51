#pragma once

#include <QString>

/// \file
/// Moves and second names of files within one file system, for an exchange that a power cut must not tear. Any
/// thread. Paths are absolute. Each function returns false where the system refuses, and then nothing has changed.

/// Puts `from` into the place of `to`, existing or not, in one step. Windows refuses that for a program or a library
/// that is running; there the old file is moved to `spare`, which must not exist, before the new one takes its place.
[[nodiscard]] bool replaceFile(const QString &from, const QString &to, const QString &spare);

/// Gives the file a second name, which takes no room on the disk; a copy where the file system has no second names.
[[nodiscard]] bool keepUnderSecondName(const QString &file, const QString &secondName);

/// Waits until the names in the folder lie on the disk, where a power cut leaves them.
[[nodiscard]] bool syncFolderToDisk(const QString &folder);
