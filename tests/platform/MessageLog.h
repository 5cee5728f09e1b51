#pragma once

#include <QObject>
#include <QStringList>

/// Keeps the messages that a channel or an application has received.
class MessageLog : public QObject
{
    Q_OBJECT

public:
    QStringList messages;

public slots:
    void receive(const QString &message) { messages.append(message); }
};
