#include "update/InstallationPath.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QStringList>

#include <algorithm>

namespace
{

bool isDeviceName(const QString &name)
{
    static const QRegularExpression device(
        QStringLiteral("^(?:con|prn|aux|nul|clock\\$|com[0-9]|lpt[0-9])(?: *\\..*)?$"),
        QRegularExpression::CaseInsensitiveOption);
    return device.match(name).hasMatch();
}

bool isPlainName(const QString &name)
{
    static const QRegularExpression plain(QStringLiteral("^[A-Za-z0-9._+\\- ]*[A-Za-z0-9_+\\-]\\z"));
    return plain.match(name).hasMatch() && !name.startsWith(QLatin1Char(' ')) && !isDeviceName(name);
}

bool isSame(const QString &a, const char *b)
{
    return a.compare(QLatin1String(b), Qt::CaseInsensitive) == 0; // some file systems take both for one
}

} // namespace

bool isPlainRelativePath(const QString &path)
{
    if (path.size() > kInstalledPathLengthMax)
        return false;
    const QStringList names = path.split(QLatin1Char('/'));
    return std::all_of(names.cbegin(), names.cend(), isPlainName);
}

bool mayBeInstalled(const QString &path)
{
    const QString first = path.section(QLatin1Char('/'), 0, 0);
    return isPlainRelativePath(path) && !isSame(first, "config.xml") && !isSame(first, "temp");
}

bool leadsThroughPlainFolders(const QString &installation, const QString &relativePath)
{
    const QStringList names = relativePath.split(QLatin1Char('/'));
    QString path = installation;
    for (int i = 0; i + 1 < names.size(); ++i) {
        path += QLatin1Char('/') + names.at(i);
        const QFileInfo info(path);
        if (info.isSymLink() || info.isJunction() || (info.exists() && !info.isDir()))
            return false;
    }
    return true;
}
