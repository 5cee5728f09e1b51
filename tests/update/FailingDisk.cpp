#include "FailingDisk.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

bool armed = false;
FailingDisk::Way armedWay = FailingDisk::Way::CountOnly;
int armedCall = 0;
int callCount = 0;

/// What a call needs of the disk.
enum class Need
{
    Room,
    Nothing, ///< a full disk can do it
};

/// The system's own function.
template <class Function>
Function *real(const char *name)
{
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

/// Counts a call. True when it has to fail; errno is set then.
bool fails(Need need)
{
    if (!armed)
        return false;
    ++callCount;
    using FailingDisk::Way;
    if (callCount < armedCall)
        return false;
    switch (armedWay) {
    case Way::CountOnly:
        break;
    case Way::EndProcess:
    case Way::EndInWriting:
        _exit(FailingDisk::kEndedByDisk);
    case Way::FailOnce:
        errno = EIO;
        return callCount == armedCall;
    case Way::DiskFull:
        errno = ENOSPC;
        return need == Need::Room;
    case Way::ReadOnly:
        errno = EROFS;
        return true;
    }
    return false;
}

bool changesFiles(int flags)
{
    return (flags & O_ACCMODE) != O_RDONLY || (flags & (O_CREAT | O_TRUNC)) != 0;
}

mode_t modeOf(int flags, va_list arguments)
{
    return (flags & (O_CREAT | O_TMPFILE)) != 0 ? static_cast<mode_t>(va_arg(arguments, int)) : 0;
}

} // namespace

void FailingDisk::arm(Way way, int call)
{
    armedWay = way;
    armedCall = call;
    callCount = 0;
    armed = true;
}

int FailingDisk::calls()
{
    return callCount;
}

extern "C" {

int open(const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    if (changesFiles(flags) && fails(Need::Room))
        return -1;
    return real<int(const char *, int, ...)>("open")(path, flags, mode);
}

int open64(const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    if (changesFiles(flags) && fails(Need::Room))
        return -1;
    return real<int(const char *, int, ...)>("open64")(path, flags, mode);
}

ssize_t write(int descriptor, const void *bytes, size_t size)
{
    auto *realWrite = real<ssize_t(int, const void *, size_t)>("write");
    if (armed && descriptor > STDERR_FILENO) {
        if (armedWay == FailingDisk::Way::EndInWriting && callCount + 1 == armedCall)
            static_cast<void>(realWrite(descriptor, bytes, size / 2));
        if (fails(Need::Room))
            return -1;
    }
    return realWrite(descriptor, bytes, size);
}

int rename(const char *from, const char *to)
{
    return fails(Need::Nothing) ? -1 : real<int(const char *, const char *)>("rename")(from, to);
}

int link(const char *from, const char *to)
{
    return fails(Need::Room) ? -1 : real<int(const char *, const char *)>("link")(from, to);
}

int unlink(const char *path)
{
    return fails(Need::Nothing) ? -1 : real<int(const char *)>("unlink")(path);
}

int rmdir(const char *path)
{
    return fails(Need::Nothing) ? -1 : real<int(const char *)>("rmdir")(path);
}

int mkdir(const char *path, mode_t mode)
{
    return fails(Need::Room) ? -1 : real<int(const char *, mode_t)>("mkdir")(path, mode);
}

int chmod(const char *path, mode_t mode)
{
    return fails(Need::Nothing) ? -1 : real<int(const char *, mode_t)>("chmod")(path, mode);
}

int fsync(int descriptor)
{
    return fails(Need::Nothing) ? -1 : real<int(int)>("fsync")(descriptor);
}
}
