#include "platform/DesktopEntry.h"

namespace
{

/// Inside quotes these would end the quotation or be expanded.
QString quotedArgument(const QString &text)
{
    QString quoted;
    for (const QChar sign : text) {
        if (QStringLiteral("\"`$\\").contains(sign))
            quoted += QLatin1Char('\\');
        quoted += sign;
    }
    return QLatin1Char('"') + quoted + QLatin1Char('"');
}

/// Every value of an entry is read through these escapes before anything else looks at it.
QString escapedValue(QString value)
{
    return value.replace(QLatin1Char('\\'), QLatin1String("\\\\"))
        .replace(QLatin1Char('\n'), QLatin1String("\\n"))
        .replace(QLatin1Char('\r'), QLatin1String("\\r"))
        .replace(QLatin1Char('\t'), QLatin1String("\\t"));
}

} // namespace

QString desktopExecOf(const QString &programPath)
{
    // A single "%" would begin a code that the session replaces.
    return escapedValue(quotedArgument(programPath).replace(QLatin1Char('%'), QLatin1String("%%")));
}

QByteArray desktopEntryOf(const QString &name, const QString &programPath)
{
    const QString text = QStringLiteral("[Desktop Entry]\n"
                                        "Type=Application\n"
                                        "Name=") +
                         escapedValue(name) + QStringLiteral("\nExec=") + desktopExecOf(programPath) +
                         QStringLiteral("\nTerminal=false\n");
    return text.toUtf8();
}
