#include "platform/AutoStart.h"

#include "platform/AutoStartValue.h"

#include <QSettings>

void setStartOnBoot(bool startOnBoot, const QString &programPath)
{
    QSettings machine(QStringLiteral("HKEY_LOCAL_MACHINE\\Software\\Microsoft\\Windows\\CurrentVersion\\Run"),
                      QSettings::NativeFormat);
    QSettings user(QStringLiteral("HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Run"),
                   QSettings::NativeFormat);
    storeAutoStartValues(machine, user, startOnBoot, programPath);
}
