#include "update/Ovryn_UpdateInfoReader.h"
#include "update/UpdateDecision.h"
#include "update/UpdateFiles.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>

/// \file
/// Any bytes as the update manifest: read, decided upon, and its entries followed as after the updater's return.

namespace
{

void require(bool condition, const char *what)
{
    if (!condition)
        qFatal("%s", what);
}

int entriesBelow(const QString &path)
{
    int count = 0;
    QDirIterator entries(path, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    for (; entries.hasNext(); entries.next())
        ++count;
    return count;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const quint8 *data, size_t size)
{
    static const QTemporaryDir world;
    const QString installation = world.filePath(QStringLiteral("a/b/installation"));
    require(QDir().mkpath(installation + QStringLiteral("/temp")) && QDir::setCurrent(installation), "no folder");
    {
        QFile file(QString::fromLatin1(kManifestPath));
        require(file.open(QIODevice::WriteOnly), "no file to fuzz with");
        file.write(reinterpret_cast<const char *>(data), qint64(size));
    }
    Ovryn_UpdateInfoReader reader;
    const bool read = reader.read(QString::fromLatin1(kManifestPath));
    require(read == reader.isValid(), "valid tells what read told");
    require(read || (reader.getCurrentVersion().isEmpty() && reader.getManualDownloadVersion().isEmpty() &&
                     reader.getServerAddress().isEmpty() && reader.getFileInfos().isEmpty()),
            "a failure offers nothing");
    const UpdateAction action =
        decideUpdate(UpdateTrigger::Automatic, 0, reader.getCurrentVersion(), reader.getManualDownloadVersion());
    require(read || action == UpdateAction::Nothing, "a failure is no new version");

    const QString bait = world.filePath(QStringLiteral("a/b/2.zip"));
    for (const QString &path : {bait, QStringLiteral("2.zip"), QStringLiteral("temp/2.zip")})
        QFile::copy(QStringLiteral(OVRYN_FUZZ_ARCHIVE), path);
    extractUpdater(reader.getFileInfos());
    clearFolder(QString::fromLatin1(kUpdateFolder));
    require(entriesBelow(QString::fromLatin1(kUpdateFolder)) == 0, "temp is empty");
    clearFolder(installation);
    require(QFile::exists(bait) && entriesBelow(world.path()) == 4, "nothing outside the installation changed");
    return 0;
}
