#pragma once

#include <QFile>
#include <QTemporaryDir>
#include <QtGlobal>

/// A runtime folder of the test's own while it lives, for this process and those that it starts.
class RuntimeFolder
{
public:
    RuntimeFolder() { qputenv("XDG_RUNTIME_DIR", QFile::encodeName(folder.path())); }
    ~RuntimeFolder() { qputenv("XDG_RUNTIME_DIR", before); }

    [[nodiscard]] QString path() const { return folder.path(); }

private:
    Q_DISABLE_COPY(RuntimeFolder)
    QByteArray before = qgetenv("XDG_RUNTIME_DIR");
    QTemporaryDir folder;
};
