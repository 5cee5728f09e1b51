#include "updater/ReleasePacket.h"

#include <quazip.h>
#include <quazipfile.h>
#include <quazipfileinfo.h>

#include <QFile>

namespace
{

constexpr qint64 kChunkBytes = 64 * 1024;

/// Copies exactly `size` bytes; false where there are fewer or more.
bool copyExactly(QIODevice &from, QIODevice &to, qint64 size)
{
    qint64 left = size;
    while (left > 0) {
        const QByteArray chunk = from.read(qMin(left, kChunkBytes));
        if (chunk.isEmpty() || to.write(chunk) != chunk.size())
            return false;
        left -= chunk.size();
    }
    return from.read(1).isEmpty();
}

/// The end of the entry is where its checksum is compared, so also one that announces less than it has is seen.
bool closesSound(QuaZipFile &packed)
{
    packed.close();
    return packed.getZipError() == UNZ_OK;
}

} // namespace

bool unpackReleaseFile(const QString &archive, const ReleaseFile &file, const QString &target)
{
    QuaZip zip(archive);
    QuaZipFileInfo64 info;
    if (!zip.open(QuaZip::mdUnzip) || zip.getEntriesCount() != 1 || !zip.goToFirstFile() ||
        !zip.getCurrentFileInfo(&info) || info.name != file.name() || info.isSymbolicLink() ||
        qint64(info.uncompressedSize) != file.size)
        return false;

    QuaZipFile packed(&zip);
    QFile::remove(target);
    QFile written(target);
    return packed.open(QIODevice::ReadOnly) && written.open(QIODevice::WriteOnly | QIODevice::NewOnly) &&
           copyExactly(packed, written, file.size) && written.flush() && closesSound(packed);
}
