#include "platform/FileReplacement.h"

#include <QFile>

#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <unistd.h>

bool replaceFile(const QString &from, const QString &to, const QString &)
{
    return std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
}

bool keepUnderSecondName(const QString &file, const QString &secondName)
{
    if (link(QFile::encodeName(file).constData(), QFile::encodeName(secondName).constData()) == 0)
        return true;
    return errno != EEXIST && QFile::copy(file, secondName);
}

bool syncFolderToDisk(const QString &folder)
{
    const int descriptor = open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    const bool done = fsync(descriptor) == 0 || errno == EINVAL; // a file system that lies on no disk
    close(descriptor);
    return done;
}
