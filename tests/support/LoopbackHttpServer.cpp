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
}

void LoopbackHttpServer::hold()
{
    holding = true;
}

void LoopbackHttpServer::release()
{
    holding = false;
    const auto sockets = waiting;
    waiting.clear();
    for (const auto &socket : sockets) {
        if (socket)
            answer(socket);
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
        connect(socket, SIGNAL(disconnected()), socket, SLOT(deleteLater()));
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

void LoopbackHttpServer::answer(QTcpSocket *socket)
{
    socket->write(answerHead);
    socket->write(answerBody);
    socket->disconnectFromHost(); // once everything is sent
}
