#include "platform/FileSync.h"

#include <QFile>

#include <cerrno>

#include <unistd.h>

bool syncToDisk(QFile &file)
{
    return fsync(file.handle()) == 0 || errno == EINVAL; // a file that lies on no disk
}
