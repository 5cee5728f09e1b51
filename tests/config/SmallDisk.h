#pragma once

#include <QtGlobal>

#ifdef Q_OS_LINUX
#include <QFile>
#include <QTemporaryDir>

#include <sys/mount.h>

/// A disk of 64 kB, in memory. Only root can have one.
class SmallDisk
{
public:
    SmallDisk() : mounted(mount("none", qPrintable(folder.path()), "tmpfs", 0, "size=64k") == 0) {}
    ~SmallDisk()
    {
        if (mounted)
            umount2(qPrintable(folder.path()), MNT_DETACH);
    }

    [[nodiscard]] bool isThere() const { return mounted; }
    [[nodiscard]] QString filePath(const QString &name) const { return folder.filePath(name); }

    /// Takes all that is free.
    void fill() const
    {
        QFile filler(filePath(QStringLiteral("filler")));
        if (!filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
            qFatal("cannot fill the disk");
        while (filler.write(QByteArray(1024, 'x')) > 0) {
        }
    }
    /// Gives that many bytes of it back.
    void free(qint64 bytes) const
    {
        QFile filler(filePath(QStringLiteral("filler")));
        if (!filler.resize(filler.size() - bytes))
            qFatal("cannot make room on the disk");
    }

private:
    Q_DISABLE_COPY(SmallDisk)
    QTemporaryDir folder;
    bool mounted;
};
#endif
