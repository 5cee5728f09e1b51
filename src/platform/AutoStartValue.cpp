#include "platform/AutoStartValue.h"

#include <QSettings>
#include <QStringList>

const char *const kAutoStartName = "_OvrynDeck2";

void storeAutoStartValue(QSettings &runKey, bool startOnBoot, const QString &programPath)
{
    (void)runKey.allKeys(); // reads the key's present state; its content makes no difference
    const QString name = QString::fromLatin1(kAutoStartName);
    if (startOnBoot)
        runKey.setValue(name, QString(programPath).replace(QLatin1Char('/'), QLatin1Char('\\')));
    else
        runKey.remove(name);
}
