#pragma once

#include <QtGlobal>

#ifdef Q_OS_UNIX
#include <csignal>

#include <sys/resource.h>

/// While it lives, no file of this process can be written beyond that size: it acts like a disk that fills up in the
/// middle of a file, for root too.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(qint64 bytes) : formerAnswer(std::signal(SIGXFSZ, SIG_IGN))
    {
        if (getrlimit(RLIMIT_FSIZE, &before) != 0)
            qFatal("cannot read the limit of file sizes");
        rlimit small = before;
        small.rlim_cur = rlim_t(bytes);
        if (setrlimit(RLIMIT_FSIZE, &small) != 0)
            qFatal("cannot set the limit of file sizes");
    }
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, formerAnswer);
    }

private:
    Q_DISABLE_COPY(FileSizeLimit)
    void (*formerAnswer)(int);
    rlimit before = {};
};
#endif
