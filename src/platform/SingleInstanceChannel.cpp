#include "platform/SingleInstanceChannel.h"

#include "platform/UserScope.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QLocalSocket>
#include <QThread>
#include <QTimer>
#include <QUrl>
#include <QtEndian>

namespace
{

// A message is its length in bytes, big-endian, and its text in UTF-8. The answer is one byte.
constexpr int kLengthBytes = 4;
constexpr char kTaken = 'T';

constexpr int kPeersMax = 64;
constexpr int kRetryMs = 20;      // between two attempts to connect, while the first process is still starting
constexpr int kLockWriteMs = 200; // longer than it takes to create a lock file and write the process into it

QString baseName(const QString &id)
{
    return QString::fromLatin1(QUrl::toPercentEncoding(id)) + QLatin1Char('-') + userId();
}

} // namespace

QString SingleInstanceChannel::lockFileName(const QString &id)
{
    return userRuntimeFolder() + QLatin1Char('/') + baseName(id) + QStringLiteral(".lock");
}

QString SingleInstanceChannel::serverAddress(const QString &id)
{
    return userServerAddress(baseName(id));
}

QString SingleInstanceChannel::endMarkName(const QString &id)
{
    return userRuntimeFolder() + QLatin1Char('/') + baseName(id) + QStringLiteral(".ending");
}

SingleInstanceChannel::SingleInstanceChannel(const QString &id, QObject *parent)
    : QObject(parent),
      address(serverAddress(id)),
      endMark(endMarkName(id)),
      lockName(lockFileName(id)),
      lock(lockName)
{
    lock.setStaleLockTime(0); // a lock is never stale by age, only by the end of its process
    connect(&server, SIGNAL(newConnection()), this, SLOT(onNewConnection()));
    if (takeLock())
        listen();
}

bool SingleInstanceChannel::isFirst()
{
    if (lock.isLocked())
        return true;
    if (takeLock()) {
        listen();
        return true;
    }
    return lock.error() !=
           QLockFile::LockFailedError; // where no lock file can be made every start counts as the first
}

bool SingleInstanceChannel::takeLock()
{
    if (lock.tryLock())
        return true;
    if (lock.error() != QLockFile::LockFailedError)
        return false;
    // Its process is just writing its name, or was killed before that.
    const bool waited = lockNamesNoProcess();
    if (waited && lock.tryLock(kLockWriteMs))
        return true;
    // It names a process that lives. That may be another one than the process that was killed with the lock, because the
    // system reuses the numbers of processes: another user's process, or this one. The file of a living holder can't be
    // removed: the system locks it too, before the name is written. Only one start at a time removes the file, by the
    // lock that the toolkit uses for that too: the next one would remove the file of the new holder.
    QLockFile removal(lockName + QStringLiteral(".rmlock"));
    return removal.tryLock() && (waited || !lockNamesNoProcess()) && lock.removeStaleLockFile() && lock.tryLock();
}

bool SingleInstanceChannel::lockNamesNoProcess() const
{
    qint64 processId = 0;
    QString host;
    QString program;
    return !lock.getLockInfo(&processId, &host, &program);
}

void SingleInstanceChannel::listen()
{
    QFile::remove(endMark);              // of the first process before this one
    QLocalServer::removeServer(address); // of a first process that was killed
    server.setSocketOptions(QLocalServer::UserAccessOption);
    server.listen(address);
}

void SingleInstanceChannel::announceEnd()
{
    if (!lock.isLocked())
        return;
    QFile mark(endMark);
    mark.open(QIODevice::WriteOnly); // without it a later start finds no server, and ends
    server.close();
}

bool SingleInstanceChannel::waitForEndOfFirst(int timeoutMs)
{
    const QDeadlineTimer deadline(timeoutMs);
    while (QFile::exists(endMark) && !deadline.hasExpired()) {
        if (isFirst())
            return true;
        QThread::msleep(kRetryMs);
    }
    return false;
}

bool SingleInstanceChannel::send(const QString &message, int timeoutMs) const
{
    const QByteArray text = message.toUtf8();
    if (quint32(text.size()) > kMessageBytesMax)
        return false;
    QByteArray frame(kLengthBytes, '\0');
    qToBigEndian(quint32(text.size()), frame.data());
    frame += text;

    const QDeadlineTimer deadline(timeoutMs);
    const auto remainingMs = [&deadline]() {
        return int(deadline.remainingTime());
    };
    QLocalSocket socket;
    socket.connectToServer(address);
    while (!socket.waitForConnected(remainingMs())) {
        if (deadline.hasExpired())
            return false;
        QThread::msleep(kRetryMs);
        socket.abort();
        socket.connectToServer(address);
    }
    socket.write(frame);
    while (socket.bytesToWrite() > 0) {
        if (!socket.waitForBytesWritten(remainingMs()))
            return false;
    }
    char answer = 0;
    return (socket.bytesAvailable() > 0 || socket.waitForReadyRead(remainingMs())) && socket.getChar(&answer) &&
           answer == kTaken;
}

void SingleInstanceChannel::onNewConnection()
{
    while (QLocalSocket *peer = server.nextPendingConnection()) {
        if (server.findChildren<QLocalSocket *>(QString(), Qt::FindDirectChildrenOnly).size() > kPeersMax) {
            delete peer;
            continue;
        }
        peer->setReadBufferSize(kLengthBytes + kMessageBytesMax);
        connect(peer, SIGNAL(readyRead()), this, SLOT(onReadyRead()));
        connect(peer, SIGNAL(disconnected()), peer, SLOT(deleteLater()));
        auto *timeout = new QTimer(peer);
        connect(timeout, SIGNAL(timeout()), peer, SLOT(deleteLater()));
        timeout->start(peerTimeoutMs);
        readFrom(peer);
    }
}

void SingleInstanceChannel::onReadyRead()
{
    readFrom(qobject_cast<QLocalSocket *>(sender()));
}

/// Takes the message once it is complete. What follows it is not read.
void SingleInstanceChannel::readFrom(QLocalSocket *peer)
{
    if (!peer || peer->bytesAvailable() < kLengthBytes)
        return;
    const quint32 length = qFromBigEndian<quint32>(peer->peek(kLengthBytes).constData());
    if (length <= kMessageBytesMax && peer->bytesAvailable() < kLengthBytes + qint64(length))
        return;
    disconnect(peer, SIGNAL(readyRead()), this, SLOT(onReadyRead()));
    if (length > kMessageBytesMax) {
        peer->abort();
        return;
    }
    const QByteArray text = peer->read(kLengthBytes + qint64(length)).mid(kLengthBytes);
    peer->putChar(kTaken);
    peer->flush();
    peer->disconnectFromServer();
    emit messageReceived(QString::fromUtf8(
        text.constData(), text.size())); // last: a receiver may run an event loop, which may delete the peer
}
