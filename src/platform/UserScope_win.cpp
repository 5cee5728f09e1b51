#include "platform/UserScope.h"

#include <QStandardPaths>
#include <QUrl>

#include <windows.h>

QString userId()
{
    // A user who is logged on twice has two desktops, and one desktop cannot show a window of the other.
    DWORD session = 0;
    ProcessIdToSessionId(GetCurrentProcessId(), &session);
    const QString name = qEnvironmentVariable("USERNAME");
    return QString::fromLatin1(QUrl::toPercentEncoding(name)) + QLatin1Char('-') + QString::number(session);
}

QString userRuntimeFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::TempLocation); // below the user's profile
}

QString userServerAddress(const QString &name)
{
    return name; // pipes have a name space of their own
}
