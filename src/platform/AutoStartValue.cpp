#include "platform/AutoStartValue.h"

#include <QSettings>
#include <QStringList>

const char *const kAutoStartName = "_OvrynDeck2";

namespace
{

/// The program's path as Windows writes it.
QString valueFor(const QString &programPath)
{
    return QString(programPath).replace(QLatin1Char('/'), QLatin1Char('\\'));
}

} // namespace

void storeAutoStartValue(QSettings &runKey, bool startOnBoot, const QString &programPath)
{
    (void)runKey.allKeys(); // reads the key's present state; its content makes no difference
    const QString name = QString::fromLatin1(kAutoStartName);
    if (startOnBoot)
        runKey.setValue(name, valueFor(programPath));
    else
        runKey.remove(name);
}

void storeAutoStartValues(QSettings &machine, QSettings &user, bool startOnBoot, const QString &programPath)
{
    const bool alreadyThere = machine.value(QString::fromLatin1(kAutoStartName)).toString() == valueFor(programPath);
    storeAutoStartValue(machine, startOnBoot, programPath);
    machine.sync();
    const bool written = machine.status() == QSettings::NoError;
    storeAutoStartValue(user, startOnBoot && !written && !alreadyThere, programPath);
}
