#include "platform/AutoStart.h"

#include "platform/AutoStartValue.h"
#include "platform/DesktopEntry.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

namespace
{

/// Sessions pass over a relative XDG_CONFIG_HOME, so an entry there would never be found.
QString autoStartFolder()
{
    QString folder = QStandardPaths::writableLocation(QStandardPaths::ConfigLocation);
    if (QDir::isRelativePath(folder))
        folder = QDir::homePath() + QStringLiteral("/.config");
    return folder + QStringLiteral("/autostart");
}

} // namespace

void setStartOnBoot(bool startOnBoot, const QString &programPath)
{
    const QString folder = autoStartFolder();
    const QString entry = folder + QLatin1Char('/') + QLatin1String(kAutoStartName) + QStringLiteral(".desktop");
    if (!startOnBoot) {
        QFile::remove(entry); // removes no folder, and of a link the link alone
        return;
    }
    if (QFileInfo(entry).isSymLink())
        QFile::remove(entry); // or the file that it leads to would be written
    QSaveFile file(entry);
    if (!QDir().mkpath(folder) || !file.open(QIODevice::WriteOnly))
        return;
    file.write(desktopEntryOf(QStringLiteral("OvrynDeck II"), programPath));
    file.commit(); // a failed write is not reported, by design, and keeps the former entry
}
