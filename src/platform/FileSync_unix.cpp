#include "platform/FileSync.h"

#include <QFile>

#include <cerrno>

#include <unistd.h>

bool syncToDisk(QFile &file)
{
    return fsync(file.handle()) == 0 || errno == EINVAL; // EINVAL: a file that is on no disk
}
