#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QFile>
#include <QNetworkAccessManager>
#include <QObject>
#include <QTimer>
#include <QUrl>

class QNetworkReply;

/// What is fetched, and what it must be.
struct FetchRequest
{
    QUrl url;
    QString path;        ///< of the file when it is complete; until then ".part" is added
    qint64 bytes = 0;    ///< its size, or its upper limit where `sha256` is empty
    QByteArray sha256{}; ///< empty: any content
};

enum class FetchResult
{
    Complete,
    NoAnswer, ///< no server, no such file, or the connection failed several times
    Damaged,  ///< not the content that was asked for
    DiskFull, ///< the disk did not take it
};

/// When a transfer counts as failed, and how often it is tried.
struct FetchTimings
{
    int silenceMs = 30000; ///< without a byte
    int windowMs = 60000;  ///< in each such span `windowBytesMin` have to arrive
    qint64 windowBytesMin = 16 * 1024;
    int tries = 5;
    int pauseMs = 2000; ///< before the second try; each further pause is twice as long
};

/// Fetches one file at a time to the disk and checks it there. A transfer that breaks is tried again and goes on
/// where it broke, where the server can do that. Nothing larger than was asked for is ever written.
///
/// Redirects are followed to the same scheme or from HTTP to HTTPS. GUI thread.
class FileFetcher : public QObject
{
    Q_OBJECT

public:
    explicit FileFetcher(const FetchTimings &timings, QObject *parent = nullptr);
    ~FileFetcher() override;

    /// Starts; `finished` comes later, always. Not while another one is under way. A file that is there already, with
    /// the hash that is asked for, is not fetched again.
    void fetch(const FetchRequest &request);

    /// Stops without a signal. What has arrived stays for a later fetch.
    void cancel();

signals:
    void progressed(qint64 bytes); ///< of the file under way, on the disk
    void finished(FetchResult result);

private:
    enum class Answer
    {
        Unknown, ///< nothing has arrived yet
        Accepted,
        Refused,
    };

    void start();
    void onReadyRead();
    void onRefused();
    void onReplyFinished();
    void onWindowEnd();
    [[nodiscard]] bool acceptAnswer();
    void tryAgain(FetchResult otherwise);
    void complete();
    void end(FetchResult result);
    void dropReply();

    const FetchTimings timings;
    QNetworkAccessManager manager;
    QNetworkReply *reply = nullptr;
    FetchRequest request;
    QFile part;
    Answer answer = Answer::Unknown;
    bool resumed = false; ///< part of the file is of an earlier answer
    int triesLeft = 0;
    int pauseMs = 0;
    qint64 windowStartBytes = 0;
    QTimer window;
    QTimer pause; ///< before the next try
};
