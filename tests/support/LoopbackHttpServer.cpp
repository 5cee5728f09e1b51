#include "support/LoopbackHttpServer.h"

LoopbackHttpServer::LoopbackHttpServer()
{
    qunsetenv("http_proxy"); // a proxy of this machine would look for the loopback address at its own place
    if (!server.listen(QHostAddress::LocalHost))
        qFatal("no server on the loopback address: %s", qPrintable(server.errorString()));
    port = server.serverPort();
    connect(&server, SIGNAL(newConnection()), this, SLOT(onNewConnection()));
    answerWith({}, "404 Not Found");
}

QString LoopbackHttpServer::address() const
{
    return QStringLiteral("http://127.0.0.1:%1").arg(port);
}

void LoopbackHttpServer::answerWith(const QByteArray &body, const QByteArray &status, const QByteArray &headers,
                                    qint64 promisedLength)
{
    const qint64 length = promisedLength < 0 ? body.size() : promisedLength;
    answerHead = "HTTP/1.1 " + status + "\r\nContent-Length: " + QByteArray::number(length) +
                 "\r\nConnection: close\r\n" + headers + "\r\n";
    answerBody = body;
    endless = false;
}

void LoopbackHttpServer::answerWithoutEnd()
{
    answerHead = "HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n";
    endless = true;
}

void LoopbackHttpServer::hold()
{
    holding = true;
}

void LoopbackHttpServer::release()
{
    holding = false;
    const int sent = pause;
    pause = -1;
    const auto sockets = waiting;
    waiting.clear();
    for (const auto &socket : sockets) {
        if (socket)
            answer(socket);
    }
    const auto stopped = paused;
    paused.clear();
    for (const auto &socket : stopped) {
        if (socket)
            sendBody(socket, sent);
    }
}

void LoopbackHttpServer::stop()
{
    server.close();
}

void LoopbackHttpServer::onNewConnection()
{
    while (QTcpSocket *socket = server.nextPendingConnection()) {
        connect(socket, SIGNAL(readyRead()), this, SLOT(onReadyRead()));
        connect(socket, SIGNAL(disconnected()), this, SLOT(onDisconnected()));
        ++open;
    }
}

void LoopbackHttpServer::onReadyRead()
{
    auto *socket = qobject_cast<QTcpSocket *>(sender());
    if (!socket || !socket->peek(64 * 1024).contains("\r\n\r\n"))
        return;
    received.append(QString::fromLatin1(socket->readAll()).section(QLatin1Char(' '), 0, 1));
    if (holding)
        waiting.append(socket);
    else
        answer(socket);
}

void LoopbackHttpServer::onDisconnected()
{
    --open;
    sender()->deleteLater();
}

void LoopbackHttpServer::onBytesWritten()
{
    auto *socket = qobject_cast<QTcpSocket *>(sender());
    if (socket && socket->bytesToWrite() == 0)
        socket->write(QByteArray(64 * 1024, ' '));
}

void LoopbackHttpServer::answer(QTcpSocket *socket)
{
    if (endless)
        connect(socket, SIGNAL(bytesWritten(qint64)), this, SLOT(onBytesWritten()));
    socket->write(answerHead);
    if (endless)
        return;
    if (pause >= 0) {
        socket->write(answerBody.left(pause));
        paused.append(socket);
    } else {
        sendBody(socket, 0);
    }
}

void LoopbackHttpServer::sendBody(QTcpSocket *socket, int from)
{
    socket->write(answerBody.mid(from));
    socket->disconnectFromHost(); // once everything is sent
}
