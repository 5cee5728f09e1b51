#include "updater/ReleasePacket.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

/// \file
/// Any bytes as the archive of a file, of which the first byte chooses the listed size: nothing but the target is
/// ever written, and that is never larger than listed.

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
    if (size == 0)
        return 0;
    static const QTemporaryDir world;
    const QString folder = world.filePath(QStringLiteral("a/b"));
    require(QDir().mkpath(folder), "no folder");
    const QString archive = folder + QStringLiteral("/a.zip");
    const QString target = folder + QStringLiteral("/target");
    {
        QFile file(archive);
        require(file.open(QIODevice::WriteOnly), "no file to fuzz with");
        file.write(reinterpret_cast<const char *>(data + 1), qint64(size) - 1);
    }
    ReleaseFile listed;
    listed.path = QStringLiteral("folder/OvrynDeck2");
    listed.size = data[0];
    const bool unpacked = unpackReleaseFile(archive, listed, target);
    const QFileInfo written(target);
    require(!written.isSymLink() && !written.isDir(), "the target is a file");
    require(written.size() <= listed.size, "no more is written than is listed");
    require(!unpacked || (written.isFile() && written.size() == listed.size), "all of it is written");
    QFile::remove(target);
    require(entriesBelow(world.path()) == 3, "nothing beside the target is written");
    return 0;
}
