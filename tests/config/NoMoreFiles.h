#pragma once

#include <QtGlobal>

#ifdef Q_OS_UNIX
#include <sys/resource.h>

/// While it lives, this process can open no file: the only failure of opening that root gets too in a folder where
/// everything else is allowed.
class NoMoreFiles
{
public:
    NoMoreFiles()
    {
        if (getrlimit(RLIMIT_NOFILE, &before) != 0)
            qFatal("cannot read the limit of open files");
        rlimit none = before;
        none.rlim_cur = 0;
        if (setrlimit(RLIMIT_NOFILE, &none) != 0)
            qFatal("cannot set the limit of open files");
    }
    ~NoMoreFiles() { setrlimit(RLIMIT_NOFILE, &before); }

private:
    Q_DISABLE_COPY(NoMoreFiles)
    rlimit before = {};
};
#endif
