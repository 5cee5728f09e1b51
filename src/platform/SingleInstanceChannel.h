#pragma once

#include <QLocalServer>
#include <QLockFile>
#include <QObject>

class QLocalSocket;

/// Decides which process of this user is the first one with an identifier, and carries messages to it.
///
/// A lock file decides, since it survives neither its process nor a stopped one's silence: the lock of a process that
/// was killed is taken over, the lock of one that hangs is not. A local server carries the messages. It is touched
/// only by the holder of the lock, so that no start ever removes the socket of a living one.
///
/// GUI thread. Nothing here is fatal: where no lock file can be made every process is the first one, and where the
/// server cannot listen the first one hears nothing.
class SingleInstanceChannel : public QObject
{
    Q_OBJECT

public:
    /// Longest message in bytes of UTF-8. Longer ones are not sent, and whoever announces one is cut off.
    static constexpr quint32 kMessageBytesMax = 64 * 1024;

    /// The identifier may be any text. Takes the lock at once if it is free.
    explicit SingleInstanceChannel(const QString &id, QObject *parent = nullptr);

    /// True when this process holds the lock. Tries again where it does not, for the first one may have ended.
    [[nodiscard]] bool isFirst();

    /// Hands the message to the first process and waits until that has taken it. False when it has not within the
    /// time; it may still take the message later. Blocks without an event loop.
    bool send(const QString &message, int timeoutMs) const;

    /// Says that this process, the first one, is about to end: it takes no message any more, and a further start does
    /// well to wait for its place.
    void announceEnd();

    /// Waits for the place of a first process that has announced its end. True when this process is the first one
    /// now; false at once where none was announced, and when the place is not free within the time.
    bool waitForEndOfFirst(int timeoutMs);

    /// How long a peer may take from connecting to the end of its message.
    void setPeerTimeout(int timeoutMs) { peerTimeoutMs = timeoutMs; }

    [[nodiscard]] static QString lockFileName(const QString &id);
    [[nodiscard]] static QString serverAddress(const QString &id);
    /// A file that stands while a first process that has announced its end still lives, and until the next one comes.
    [[nodiscard]] static QString endMarkName(const QString &id);

signals:
    void messageReceived(const QString &message);

private slots:
    void onNewConnection();
    void onReadyRead();

private:
    bool takeLock();
    bool lockNamesNobody() const;
    void listen();
    void readFrom(QLocalSocket *peer);

    QString address;
    QString endMark;
    QString lockName;
    int peerTimeoutMs = 5000;
    QLockFile lock;      // is released after the server
    QLocalServer server; // owns the sockets of its peers
};
