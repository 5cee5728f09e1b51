#include "platform/UserScope.h"

#include <QStandardPaths>

#include <unistd.h>

QString userId()
{
    return QString::number(getuid());
}

QString userRuntimeFolder()
{
    // Empty where the folder belongs to another user. The temporary folder is shared, but a lock in it is valid only
    // as long as its process lives.
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    return folder.isEmpty() ? QStandardPaths::writableLocation(QStandardPaths::TempLocation) : folder;
}

QString userServerAddress(const QString &name)
{
    return userRuntimeFolder() + QLatin1Char('/') + name;
}
