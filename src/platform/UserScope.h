#pragma once

#include <QString>

/// \file
/// Names that separate the processes of one user from those of other users on the same machine.

/// A short text that differs between users, fit for a file name.
[[nodiscard]] QString userId();

/// A folder for short-lived files that is this user's own wherever the system has one.
[[nodiscard]] QString userRuntimeFolder();

/// The address under which a local server of that name is reached by this user's processes.
[[nodiscard]] QString userServerAddress(const QString &name);
