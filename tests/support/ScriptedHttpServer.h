#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QObject>
#include <QTcpServer>

#include <functional>
#include <optional>

class QTcpSocket;

/// How one request is answered where the server does not simply give the file.
struct HttpTurn
{
    QByteArray status{};              ///< "404 Not Found"; empty: 200 or 206, as it is
    QByteArray headers{};             ///< whole lines, added to the usual ones
    std::optional<QByteArray> body{}; ///< instead of the file or the asked part of it
    bool ignoresRange = false;        ///< gives the whole file with status 200
    int sentBytes = -1;               ///< of the body, of which more was announced; -1: all of it
    bool stalls = false;              ///< then sends nothing more and leaves the connection open; else closes it
    int dripBytes = 0;                ///< the body in pieces of that size, 0: at once
    int dripMs = 0;                   ///< before each piece
};

/// A web server on the loopback address that serves files, whole and in ranges, and does to each request what the
/// test has written down for it. Lives in the test's event loop. Closes each connection after its answer.
class ScriptedHttpServer : public QObject
{
    Q_OBJECT

public:
    struct Request
    {
        QString path;
        QByteArray range;          ///< the header's value; empty: none
        QByteArray acceptEncoding; ///< the same
    };

    ScriptedHttpServer();

    [[nodiscard]] QString address() const; ///< scheme, host and port, no slash behind

    void serve(const QString &path, const QByteArray &content) { files[path] = content; }
    void remove(const QString &path) { files.remove(path); }
    /// The next request for the path that has no turn yet is answered so; each turn is for one request.
    void answerNext(const QString &path, const HttpTurn &turn) { turns[path].append(turn); }
    /// Every request for the path that has no turn of its own is answered so.
    void answerAlways(const QString &path, const HttpTurn &turn) { lasting[path] = turn; }
    void answerPlainly(const QString &path) { lasting.remove(path); }
    /// Is called with the path before a request is answered.
    void onRequest(const std::function<void(const QString &path)> &hook) { beforeAnswer = hook; }
    void stop();   ///< connections are refused from now on, and those that stand are broken off
    void resume(); ///< listens again, at the same address

    [[nodiscard]] QList<Request> requests() const { return received; }
    [[nodiscard]] int requestsFor(const QString &path) const;

private slots:
    void onNewConnection();
    void onReadyRead();

private:
    void answer(QTcpSocket *socket, const Request &request);
    void drip(QTcpSocket *socket, const QByteArray &body, const HttpTurn &turn);

    QTcpServer server;
    quint16 port = 0; ///< stays the same after `stop`
    QHash<QString, QByteArray> files;
    QHash<QString, QList<HttpTurn>> turns;
    QHash<QString, HttpTurn> lasting;
    std::function<void(const QString &path)> beforeAnswer;
    QList<Request> received;
};
