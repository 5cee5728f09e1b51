#pragma once

#include <QString>

class QSettings;

/// The name under which the program registers itself for the start of the session.
extern const char *const kAutoStartName;

/// Writes the program's path, with "\" for "/", as a value of the Run key, or removes that value. `runKey` is the
/// open key; whether it takes the change isn't looked at.
void storeAutoStartValue(QSettings &runKey, bool startOnBoot, const QString &programPath);

/// Writes or removes the value in the machine's Run key. Only an administrator may do that: where the key does not
/// hold what it was given, the user's own key gets the value, and otherwise loses it, so that the program is started
/// once.
void storeAutoStartValues(QSettings &machine, QSettings &user, bool startOnBoot, const QString &programPath);
