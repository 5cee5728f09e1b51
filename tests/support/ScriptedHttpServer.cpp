#include "support/ScriptedHttpServer.h"

#include <QPointer>
#include <QTcpSocket>
#include <QTimer>

#include <algorithm>

namespace
{

QByteArray headerOf(const QByteArray &head, const QByteArray &name)
{
    for (const QByteArray &line : head.split('\n')) {
        if (line.toLower().startsWith(name.toLower() + ':'))
            return line.mid(name.size() + 1).trimmed();
    }
    return {};
}

} // namespace

ScriptedHttpServer::ScriptedHttpServer()
{
    qunsetenv("http_proxy"); // a proxy of this machine would look for the loopback address at its own place
    resume();
    connect(&server, &QTcpServer::newConnection, this, &ScriptedHttpServer::onNewConnection);
}

QString ScriptedHttpServer::address() const
{
    return QStringLiteral("http://127.0.0.1:%1").arg(port);
}

void ScriptedHttpServer::stop()
{
    server.close();
    for (QTcpSocket *socket : server.findChildren<QTcpSocket *>())
        socket->abort();
}

void ScriptedHttpServer::resume()
{
    if (!server.listen(QHostAddress::LocalHost, port))
        qFatal("no server on the loopback address: %s", qPrintable(server.errorString()));
    port = server.serverPort();
}

int ScriptedHttpServer::requestsFor(const QString &path) const
{
    return int(std::count_if(received.cbegin(), received.cend(),
                             [&path](const Request &request) { return request.path == path; }));
}

void ScriptedHttpServer::onNewConnection()
{
    while (QTcpSocket *socket = server.nextPendingConnection()) {
        connect(socket, &QTcpSocket::readyRead, this, &ScriptedHttpServer::onReadyRead);
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    }
}

void ScriptedHttpServer::onReadyRead()
{
    auto *socket = qobject_cast<QTcpSocket *>(sender());
    if (!socket || !socket->peek(64 * 1024).contains("\r\n\r\n"))
        return;
    const QByteArray head = socket->readAll();
    const QString path = QString::fromLatin1(head).section(QLatin1Char(' '), 1, 1);
    const Request request{path, headerOf(head, "Range"), headerOf(head, "Accept-Encoding")};
    received.append(request);
    if (beforeAnswer)
        beforeAnswer(path);
    answer(socket, request);
}

void ScriptedHttpServer::answer(QTcpSocket *socket, const Request &request)
{
    HttpTurn turn = lasting.value(request.path);
    if (!turns.value(request.path).isEmpty())
        turn = turns[request.path].takeFirst();

    QByteArray status = turn.status;
    QByteArray headers = turn.headers;
    QByteArray body = files.value(request.path);
    const bool isThere = files.contains(request.path);
    if (status.isEmpty() && !isThere && !turn.body) {
        status = "404 Not Found";
        body = "no such file";
    } else if (status.isEmpty() && !request.range.isEmpty() && !turn.ignoresRange && !turn.body) {
        const int from = request.range.mid(int(strlen("bytes="))).split('-').constFirst().toInt();
        const QByteArray size = QByteArray::number(body.size());
        if (from < body.size()) {
            status = "206 Partial Content";
            headers += "Content-Range: bytes " + QByteArray::number(from) + '-' +
                       QByteArray::number(body.size() - 1) + '/' + size + "\r\n";
            body = body.mid(from);
        } else {
            status = "416 Range Not Satisfiable";
            headers += "Content-Range: bytes */" + size + "\r\n";
            body.clear();
        }
    }
    body = turn.body.value_or(body);
    if (!headers.toLower().contains("content-length"))
        headers += "Content-Length: " + QByteArray::number(body.size()) + "\r\n";
    socket->write("HTTP/1.1 " + (status.isEmpty() ? "200 OK" : status) + "\r\nConnection: close\r\n" + headers +
                  "\r\n");
    if (turn.sentBytes >= 0)
        body = body.left(turn.sentBytes);
    drip(socket, body, turn);
}

void ScriptedHttpServer::drip(QTcpSocket *socket, const QByteArray &body, const HttpTurn &turn)
{
    const QByteArray piece = turn.dripBytes > 0 ? body.left(turn.dripBytes) : body;
    socket->write(piece);
    const QByteArray rest = body.mid(piece.size());
    if (!rest.isEmpty()) {
        QTimer::singleShot(turn.dripMs, socket, [this, socket, rest, turn] { drip(socket, rest, turn); });
    } else if (!turn.stalls) {
        socket->disconnectFromHost(); // once everything is sent
    }
}
