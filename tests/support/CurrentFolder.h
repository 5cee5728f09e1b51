#pragma once

#include <QDir>
#include <QTemporaryDir>

/// A new temporary folder, which is the current one while the object lives.
class CurrentFolder
{
public:
    CurrentFolder() : former(QDir::currentPath())
    {
        if (!folder.isValid() || !QDir::setCurrent(folder.path()))
            qFatal("no folder for the test");
    }
    ~CurrentFolder() { QDir::setCurrent(former); }
    Q_DISABLE_COPY(CurrentFolder)

private:
    QTemporaryDir folder;
    QString former;
};
