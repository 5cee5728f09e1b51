#pragma once

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QList>
#include <QString>

/// What a program that notes its windows (WindowNotes.cpp) has shown of one class, in order.
inline QList<QJsonObject> shownWindows(const QString &notes, const char *className)
{
    QList<QJsonObject> windows;
    QFile file(notes);
    if (!file.open(QIODevice::ReadOnly))
        return windows;
    while (!file.atEnd()) {
        const QJsonObject window = QJsonDocument::fromJson(file.readLine()).object();
        if (window.value(QStringLiteral("class")).toString() == QLatin1String(className))
            windows << window;
    }
    return windows;
}

/// One line for a box: its text, family, buttons and window flags.
inline QString describedBox(const QJsonObject &box)
{
    return QStringLiteral("%1 | %2 | %3 | 0x%4")
        .arg(box.value(QStringLiteral("text")).toString(), box.value(QStringLiteral("family")).toString(),
             box.value(QStringLiteral("buttons")).toVariant().toStringList().join(QLatin1Char('/')))
        .arg(box.value(QStringLiteral("flags")).toInt(), 0, 16);
}
