#pragma once

#include <QString>

/// \file
/// Start of the program together with the user's session.

/// Has the system start the program at `programPath` (absolute, with "/") at each log-on, or takes that back.
///
/// On Windows a value of the machine's Run key, or of the user's own where the machine's takes no change from this
/// user; elsewhere an entry in the user's autostart folder. What is already there under the program's own name is
/// replaced or removed, and only that: a folder in its place is left alone, of a link the link goes and never what it
/// leads to. A write that fails goes unnoticed and leaves the former entry. Any thread.
void setStartOnBoot(bool startOnBoot, const QString &programPath);
