#include "update/UpdateFiles.h"

#include <JlCompress.h>
#include <quazip.h>
#include <quazipfileinfo.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <algorithm>

namespace
{

const char *const kUpdaterName = "OvrynUpdate";
const char *const kUpdaterFileName = "OvrynUpdate.exe"; // in the manifest, on every platform

bool isInside(const QString &canonicalPath, const QString &canonicalFolder)
{
    if (canonicalPath.isEmpty() || canonicalFolder.isEmpty()) // one of the paths does not exist
        return false;
    const bool isRoot = canonicalFolder.endsWith(QLatin1Char('/'));
    return canonicalPath.startsWith(isRoot ? canonicalFolder : canonicalFolder + QLatin1Char('/'));
}

/// True where the file of this clean absolute path below the folder, existing or not, still lies in it once all links
/// among its parents are resolved.
bool wouldLieInside(const QString &path, const QString &canonicalFolder)
{
    // Missing parents will be made as plain folders. A dangling link does not count as missing.
    QFileInfo parent(QFileInfo(path).path());
    while (!parent.exists() && !parent.isSymLink() && !parent.isRoot())
        parent.setFile(parent.path());
    const QString canonicalParent = parent.canonicalFilePath();
    return isInside(canonicalParent, canonicalFolder) ||
           (!canonicalParent.isEmpty() && canonicalParent == canonicalFolder);
}

bool isLink(const QFileInfo &info)
{
    return info.isSymLink() || info.isJunction();
}

/// True when the archive holds that file as a link. It would be extracted as a link, with any target.
bool isLinkInArchive(const QString &zipPath, const QString &fileName)
{
    QuaZip archive(zipPath);
    QuaZipFileInfo64 info;
    return archive.open(QuaZip::mdUnzip) && archive.setCurrentFile(fileName) && archive.getCurrentFileInfo(&info) &&
           info.isSymbolicLink();
}

} // namespace

bool isReturnFromUpdater(const QStringList &arguments)
{
    return arguments.value(1) == QLatin1String(kCalledByUpdater);
}

QString installedUpdater(const QString &programFolder)
{
    // The name of the manifest first: that file is the successor of the one that the program was installed with.
    for (const char *name : {kUpdaterFileName, kUpdaterName}) {
        const QString path = QStandardPaths::findExecutable(QString::fromLatin1(name), {programFolder});
        if (!path.isEmpty())
            return path;
    }
    return {};
}

QString updaterProgram(const QString &programFolder)
{
    const QString beside = installedUpdater(programFolder);
    return beside.isEmpty() ? QString::fromLatin1(kUpdaterName) : beside;
}

void clearFolder(const QString &path)
{
    if (isLink(QFileInfo(QDir::cleanPath(path)))) // with a slash at the end, the link would count as its target
        return;
    const QFileInfoList entries =
        QDir(path).entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QFileInfo &entry : entries) {
        const QString entryPath = entry.absoluteFilePath();
        if (entry.isDir() && !isLink(entry))
            clearFolder(entryPath);
        else
            QFile::remove(entryPath);
        // A link to a folder is removed as a folder on some systems; elsewhere this finds nothing to do.
        if (entry.isDir())
            QDir().rmdir(entryPath);
    }
}

void extractUpdater(const QList<UpdateFileInfo> &fileInfos)
{
    const QString updater = QString::fromLatin1(kUpdaterFileName);
    const auto entry = std::find_if(fileInfos.cbegin(), fileInfos.cend(),
                                    [&](const UpdateFileInfo &info) { return info.fileName == updater; });
    if (entry == fileInfos.cend())
        return;

    const QString installation = QDir::current().canonicalPath();
    const QDir folder(installation);
    const QString temp = QDir(QString::fromLatin1(kUpdateFolder)).canonicalPath();
    const QString zipPath =
        QFileInfo(QString::fromLatin1(kUpdateFolder) + QLatin1Char('/') + entry->fileVersion + QStringLiteral(".zip"))
            .canonicalFilePath(); // empty where there is none
    const QString target = QDir::cleanPath(folder.absoluteFilePath(entry->fileDir + entry->fileName));
    // Compares the texts first: a search for the parents of a path elsewhere may access another computer, or never
    // end on a drive that does not exist.
    if (zipPath.isEmpty() || !isInside(zipPath, temp) || !isInside(target, installation) ||
        !wouldLieInside(target, installation))
        return;

    QFile::remove(target);
    // Through a link that stays the new file could go anywhere.
    if (!isLink(QFileInfo(target)) && !isLinkInArchive(zipPath, updater)) {
        JlCompress::extractFile(zipPath, updater, target);
        // An archive need not say that the file may be run.
        QFile::setPermissions(target, QFile::permissions(target) | QFile::ExeOwner | QFile::ExeUser |
                                          QFile::ExeGroup | QFile::ExeOther);
    }
    QFile::remove(zipPath);
}
