#pragma once

#include <QtGlobal>

#ifdef Q_OS_LINUX
#include <QDir>
#include <QFile>

#include <sys/fsuid.h>

/// While it lives, this thread does not own a folder of the current folder: a file in it can be read and written, but
/// not removed. That holds for root too.
class ForeignFolder
{
public:
    ForeignFolder(const QString &folderPath, const QString &file) : folder(folderPath)
    {
        constexpr QFile::Permissions readByAll = QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther;
        constexpr QFile::Permissions enterByAll = QFile::ExeOwner | QFile::ExeGroup | QFile::ExeOther;
        constexpr QFile::Permissions writeByAll = QFile::WriteOwner | QFile::WriteGroup | QFile::WriteOther;
        if (!QFile::setPermissions(file, readByAll | writeByAll) ||
            !QFile::setPermissions(folder, readByAll | enterByAll) ||
            !QFile::setPermissions(QDir::currentPath(), readByAll | enterByAll | QFile::WriteOwner))
            qFatal("cannot set permissions");
        former = setfsuid(kNobody); // without effect, and without need, where the user isn't root
    }
    ~ForeignFolder()
    {
        setfsuid(uid_t(former));
        QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

private:
    Q_DISABLE_COPY(ForeignFolder)
    static constexpr uid_t kNobody = 65534;
    QString folder;
    int former = 0;
};
#endif
