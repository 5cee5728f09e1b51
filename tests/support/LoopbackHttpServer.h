#pragma once

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QTcpServer>
#include <QTcpSocket>

/// A web server on the loopback address, which gives the same answer to every request and then closes the connection.
/// Lives in the test's event loop. It listens from the start.
class LoopbackHttpServer : public QObject
{
    Q_OBJECT

public:
    LoopbackHttpServer();

    [[nodiscard]] QString address() const; ///< scheme, host and port, no slash behind

    /// `headers` are whole lines. A length of -1 is the body's own; a larger one is promised and not kept.
    void answerWith(const QByteArray &body, const QByteArray &status = "200 OK", const QByteArray &headers = {},
                    qint64 promisedLength = -1);
    /// Each answer stops after that many bytes of the body, until `release`.
    void pauseAfter(int bytes) { pause = bytes; }
    void answerWithoutEnd(); ///< from now on, "200 OK" and blanks for as long as the connection stands
    void hold();             ///< requests wait from now on
    void release();          ///< those that wait are answered, to their end, and later ones at once
    void stop();             ///< connections are refused from now on

    [[nodiscard]] QStringList requests() const { return received; } ///< as "GET /path"
    [[nodiscard]] int connections() const { return open; }          ///< that stand now

private slots:
    void onNewConnection();
    void onReadyRead();
    void onDisconnected();
    void onBytesWritten();

private:
    void answer(QTcpSocket *socket);
    void sendBody(QTcpSocket *socket, int from);

    QTcpServer server;
    quint16 port = 0; ///< stays the same after `stop`
    QByteArray answerHead;
    QByteArray answerBody;
    bool holding = false;
    bool endless = false;
    int pause = -1; ///< none
    int open = 0;
    QList<QPointer<QTcpSocket>> waiting;
    QList<QPointer<QTcpSocket>> paused;
    QStringList received;
};
