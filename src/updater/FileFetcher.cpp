#include "updater/FileFetcher.h"

#include "update/FileExchange.h"

#include <QFileInfo>
#include <QNetworkReply>
#include <QRegularExpression>

namespace
{

constexpr qint64 kReadBufferBytes = 256 * 1024;
constexpr int kRedirectsMax = 5;
constexpr int kHttpOk = 200;
constexpr int kHttpPartialContent = 206;

/// True for "bytes 100-199/200" where that is the rest of a file of `bytes` bytes from `offset` on.
bool isRest(const QByteArray &contentRange, qint64 offset, qint64 bytes)
{
    static const QRegularExpression form(QStringLiteral("^bytes ([0-9]{1,12})-([0-9]{1,12})/([0-9]{1,12})\\z"));
    const QRegularExpressionMatch match = form.match(QString::fromLatin1(contentRange.trimmed()));
    return match.hasMatch() && match.captured(1).toLongLong() == offset &&
           match.captured(2).toLongLong() == bytes - 1 && match.captured(3).toLongLong() == bytes;
}

/// True for a refusal that another try may not meet; a file that is not there (404) won't come.
bool isPassing(int httpStatus)
{
    return httpStatus < 400 || httpStatus >= 500 || httpStatus == 408 || httpStatus == 429;
}

/// True for a refusal that says nothing about what was asked, so that the same question may be asked again.
bool isBusy(int httpStatus)
{
    return isPassing(httpStatus) && httpStatus >= 400 && httpStatus != 501;
}

} // namespace

FileFetcher::FileFetcher(const FetchTimings &fetchTimings, QObject *parent) : QObject(parent), timings(fetchTimings)
{
    window.setInterval(timings.windowMs);
    pause.setSingleShot(true);
    connect(&window, &QTimer::timeout, this, &FileFetcher::onWindowEnd);
    connect(&pause, &QTimer::timeout, this, &FileFetcher::start);
}

FileFetcher::~FileFetcher()
{
    cancel();
}

void FileFetcher::fetch(const FetchRequest &what)
{
    cancel();
    request = what;
    triesLeft = timings.tries;
    pauseMs = timings.pauseMs;
    part.setFileName(request.path + QStringLiteral(".part"));
    // Without a hash nothing would say that the rest belongs to the beginning; a link would lead anywhere.
    if (request.sha256.isEmpty() || QFileInfo(part.fileName()).isSymLink())
        QFile::remove(part.fileName());
    pause.start(0);
}

void FileFetcher::cancel()
{
    pause.stop();
    dropReply();
    part.close();
}

void FileFetcher::dropReply()
{
    window.stop();
    if (!reply)
        return;
    reply->disconnect(this);
    reply->abort();
    reply->deleteLater();
    reply = nullptr;
}

void FileFetcher::start()
{
    --triesLeft;
    if (!request.sha256.isEmpty() && sha256OfFile(request.path) == request.sha256) {
        emit progressed(request.bytes);
        end(FetchResult::Complete);
        return;
    }
    if (!part.open(QIODevice::ReadWrite | QIODevice::Append)) {
        end(FetchResult::DiskFull);
        return;
    }
    if (part.size() > request.bytes) // of another release
        static_cast<void>(part.resize(0));
    resumed = part.size() > 0;
    if (resumed && part.size() == request.bytes) {
        complete();
        return;
    }
    answer = Answer::Unknown;

    QNetworkRequest asked(request.url);
    asked.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
    asked.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    asked.setMaximumRedirectsAllowed(kRedirectsMax);
    asked.setTransferTimeout(timings.silenceMs);
    asked.setRawHeader("Accept-Encoding", "identity"); // the bytes as they are signed, no more than announced
    if (resumed)
        asked.setRawHeader("Range", "bytes=" + QByteArray::number(part.size()) + '-');
    reply = manager.get(asked);
    reply->setReadBufferSize(kReadBufferBytes);
    connect(reply, &QNetworkReply::readyRead, this, &FileFetcher::onReadyRead);
    connect(reply, &QNetworkReply::finished, this, &FileFetcher::onReplyFinished);
    windowStartBytes = part.size();
    window.start();
}

/// False for an answer that is not the file or its rest.
bool FileFetcher::acceptAnswer()
{
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (status == kHttpOk) {
        resumed = false;
        return part.resize(0);
    }
    return status == kHttpPartialContent && resumed &&
           isRest(reply->rawHeader("Content-Range"), part.size(), request.bytes);
}

void FileFetcher::onReadyRead()
{
    if (answer == Answer::Unknown)
        answer = acceptAnswer() ? Answer::Accepted : Answer::Refused;
    if (answer == Answer::Refused) {
        onRefused();
        return;
    }
    const QByteArray bytes = reply->readAll();
    if (part.size() + bytes.size() > request.bytes) {
        end(FetchResult::Damaged);
    } else if (part.write(bytes) != bytes.size() || !part.flush()) {
        end(FetchResult::DiskFull);
    } else {
        emit progressed(part.size());
    }
}

void FileFetcher::onRefused()
{
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    dropReply();
    const bool asksForLess = resumed && !isBusy(status);
    if (asksForLess) // the server can't go on where it broke
        static_cast<void>(part.resize(0));
    if (isPassing(status) || asksForLess)
        tryAgain(FetchResult::NoAnswer);
    else
        end(FetchResult::NoAnswer);
}

void FileFetcher::onReplyFinished()
{
    if (reply->bytesAvailable() > 0) {
        onReadyRead();
        if (!reply)
            return;
    }
    // An empty file, or a refusal without a word, has no bytes that would have arrived.
    if (answer == Answer::Unknown && reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).isValid())
        answer = acceptAnswer() ? Answer::Accepted : Answer::Refused;
    if (answer == Answer::Refused) {
        onRefused();
        return;
    }
    const bool whole = reply->error() == QNetworkReply::NoError && answer == Answer::Accepted &&
                       (request.sha256.isEmpty() || part.size() == request.bytes);
    dropReply();
    if (whole)
        complete();
    else
        tryAgain(FetchResult::NoAnswer);
}

void FileFetcher::onWindowEnd()
{
    if (part.size() - windowStartBytes >= timings.windowBytesMin) {
        windowStartBytes = part.size();
        return;
    }
    dropReply();
    tryAgain(FetchResult::NoAnswer);
}

void FileFetcher::tryAgain(FetchResult otherwise)
{
    part.close();
    if (triesLeft <= 0) {
        end(otherwise);
        return;
    }
    pause.start(pauseMs);
    pauseMs *= 2;
}

/// Checks what lies on the disk and gives it its name.
void FileFetcher::complete()
{
    part.close();
    if (!request.sha256.isEmpty() && sha256OfFile(part.fileName()) != request.sha256) {
        if (resumed && triesLeft > 0) { // the beginning may be of another release
            QFile::remove(part.fileName());
            tryAgain(FetchResult::Damaged);
        } else {
            end(FetchResult::Damaged);
        }
        return;
    }
    QFile::remove(request.path);
    end(QFile::rename(part.fileName(), request.path) ? FetchResult::Complete : FetchResult::DiskFull);
}

void FileFetcher::end(FetchResult result)
{
    dropReply();
    part.close();
    if (result == FetchResult::Damaged)
        QFile::remove(part.fileName());
    emit finished(result);
}
