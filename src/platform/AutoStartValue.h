#pragma once

#include <QString>

class QSettings;

/// The name under which the program registers itself for the start of the session.
extern const char *const kAutoStartName;

/// Writes the program's path, with "\" for "/", as a value of the Run key, or removes that value. `runKey` is the
/// open key; whether it takes the change isn't looked at.
void storeAutoStartValue(QSettings &runKey, bool startOnBoot, const QString &programPath);
