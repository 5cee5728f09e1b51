#pragma once

#include <QByteArray>
#include <QVector>
#include <QtEndian>

/// \file
/// Zip archives byte by byte, so that a test can make those that no tool makes.

struct ZipEntry
{
    QByteArray name;
    QByteArray content;
    bool deflated = true;
    quint32 attributes = 0100644u << 16; ///< mode of Unix in the upper half; a link is 0120777
    qint64 announcedSize = -1;           ///< of the content, in both of its headers; -1: its own
    qint64 announcedPackedSize = -1;
    qint64 crc = -1;           ///< -1: its own
    QByteArray localName = {}; ///< in front of the content, where another than in the directory is wanted
};

namespace zip_bytes
{

inline QByteArray number(quint32 value, int bytes)
{
    const quint32 little = qToLittleEndian(value);
    return QByteArray(reinterpret_cast<const char *>(&little), bytes);
}

inline quint32 crcOf(const QByteArray &bytes)
{
    quint32 crc = 0xFFFFFFFFu;
    for (const char byte : bytes) {
        crc ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ ((crc & 1u) != 0 ? 0xEDB88320u : 0u);
    }
    return ~crc;
}

inline QByteArray deflate(const QByteArray &bytes)
{
    // in front of the stream: the toolkit's length and the header of zlib; after it: its checksum
    const QByteArray packed = qCompress(bytes, 9);
    return packed.mid(6, packed.size() - 10);
}

} // namespace zip_bytes

inline QByteArray zipOf(const QVector<ZipEntry> &entries)
{
    using zip_bytes::number;
    constexpr int kVersionMadeBy = 3 << 8 | 20; // Unix
    constexpr int kVersionNeeded = 20;
    QByteArray archive;
    QByteArray directory;
    for (const ZipEntry &entry : entries) {
        const QByteArray packed = entry.deflated ? zip_bytes::deflate(entry.content) : entry.content;
        const qint64 crc = entry.crc < 0 ? zip_bytes::crcOf(entry.content) : entry.crc;
        const qint64 size = entry.announcedSize < 0 ? entry.content.size() : entry.announcedSize;
        const qint64 packedSize = entry.announcedPackedSize < 0 ? packed.size() : entry.announcedPackedSize;
        const QByteArray localName = entry.localName.isEmpty() ? entry.name : entry.localName;
        const auto common = [&](const QByteArray &name) {
            // flags, method, time, date, checksum, sizes, length of the name, none of more fields
            return number(0, 2) + number(entry.deflated ? 8 : 0, 2) + number(0, 2) + number(0x2821, 2) +
                   number(quint32(crc), 4) + number(quint32(packedSize), 4) + number(quint32(size), 4) +
                   number(quint32(name.size()), 2) + number(0, 2);
        };
        directory += "PK\1\2" + number(kVersionMadeBy, 2) + number(kVersionNeeded, 2) + common(entry.name) +
                     number(0, 2) + number(0, 2) + number(0, 2) + number(entry.attributes, 4) +
                     number(quint32(archive.size()), 4) + entry.name;
        archive += "PK\3\4" + number(kVersionNeeded, 2) + common(localName) + localName + packed;
    }
    const QByteArray count = number(quint32(entries.size()), 2);
    return archive + directory + "PK\5\6" + number(0, 4) + count + count + number(quint32(directory.size()), 4) +
           number(quint32(archive.size()), 4) + number(0, 2);
}
