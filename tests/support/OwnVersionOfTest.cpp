#include "ui/ProgramVersion.h"
#include "update/UpdateDecision.h"

#include <QCoreApplication>
#include <QFile>

// In place of the shipped program's version: that of the file version.txt beside the executable, where there is one.
QString ownVersion()
{
    QFile file(QCoreApplication::applicationDirPath() + QStringLiteral("/version.txt"));
    return file.open(QIODevice::ReadOnly) ? QString::fromLatin1(file.readAll().trimmed())
                                          : QString::fromLatin1(kProgramVersion);
}
