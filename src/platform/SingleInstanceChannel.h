#pragma once

#include <QLocalServer>
#include <QLockFile>
#include <QObject>

class QLocalSocket;

/// Decides which process of this user is the first one with an identifier, and carries messages to it.
///
/// A lock file decides: the lock of a killed process is taken over, the lock of a process that hangs is not. A local
/// server carries the messages. It is touched only by the holder of the lock, so that no start ever removes the
/// socket of a living process.
///
/// GUI thread. No failure is fatal: where no lock file can be made every process is the first one, and where the
/// server cannot listen the first one gets no messages.
class SingleInstanceChannel : public QObject
{
    Q_OBJECT

public:
    /// Longest message in bytes of UTF-8. Longer ones are not sent, and a peer that announces one is disconnected.
    static constexpr quint32 kMessageBytesMax = 64 * 1024;

    /// The identifier may be any text. Takes the lock at once if it is free.
    explicit SingleInstanceChannel(const QString &id, QObject *parent = nullptr);

    /// True when this process holds the lock. Tries again when it does not: the first one may have ended.
    [[nodiscard]] bool isFirst();

    /// Sends the message to the first process and waits until that has taken it. False when it has not within the
    /// time; it may still take the message later. Blocks without an event loop.
    bool send(const QString &message, int timeoutMs) const;

    /// Announces that this process, the first one, is about to end. It takes no more messages, and a later start
    /// should wait for its end.
    void announceEnd();

    /// Waits for the end of a first process that has announced it. True when this process is the first one now. False
    /// at once where no end was announced, and when the first process has not ended within the time.
    bool waitForEndOfFirst(int timeoutMs);

    /// How long a peer may take from connecting to the end of its message.
    void setPeerTimeout(int timeoutMs) { peerTimeoutMs = timeoutMs; }

    [[nodiscard]] static QString lockFileName(const QString &id);
    [[nodiscard]] static QString serverAddress(const QString &id);
    /// A file that exists from the announcement of a first process's end until the next first process removes it.
    [[nodiscard]] static QString endMarkName(const QString &id);

signals:
    void messageReceived(const QString &message);

private slots:
    void onNewConnection();
    void onReadyRead();

private:
    bool takeLock();
    bool lockNamesNoProcess() const;
    void listen();
    void readFrom(QLocalSocket *peer);

    QString address;
    QString endMark;
    QString lockName;
    int peerTimeoutMs = 5000;
    QLockFile lock;      // is released after the server
    QLocalServer server; // owns the sockets of its peers
};
