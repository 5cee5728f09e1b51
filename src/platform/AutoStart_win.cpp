#include "platform/AutoStart.h"

#include "platform/AutoStartValue.h"

#include <QSettings>

void setStartOnBoot(bool startOnBoot, const QString &programPath)
{
    QSettings runKey(QStringLiteral("HKEY_LOCAL_MACHINE\\Software\\Microsoft\\Windows\\CurrentVersion\\Run"),
                     QSettings::NativeFormat);
    storeAutoStartValue(runKey, startOnBoot, programPath);
}
