#include "update/Ovryn_DownloadUpdateFileInfo.h"

#include "update/Ovryn_UpdateInfoReader.h"
#include "update/UpdateFiles.h"
#include "update/UpdateServer.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QNetworkReply>
#include <QNetworkRequest>

Ovryn_DownloadUpdateFileInfo::Ovryn_DownloadUpdateFileInfo(QObject *parent)
    : QObject(parent),
      manager(new QNetworkAccessManager(this)),
      url(updateServer() + QLatin1String(kPacketsPath) + QStringLiteral("update_info.xml")),
      savePath(QString::fromLatin1(kManifestPath))
{
}

Ovryn_DownloadUpdateFileInfo::~Ovryn_DownloadUpdateFileInfo()
{
    dropRemains();
}

void Ovryn_DownloadUpdateFileInfo::startDownload()
{
    if (state == Running)
        return;
    state = Running;
    dropRemains();

    const QString folder = QDir::currentPath() + QStringLiteral("/temp/");
    if (!QDir(folder).exists() && !QDir().mkdir(folder)) {
        emit downloadFinished(false); // still Running, on purpose
        return;
    }
    // A link is removed too, also a dangling one: a write through it could leave the folder.
    const QFileInfo earlier(savePath);
    if ((earlier.exists() || earlier.isSymLink()) && !QFile::remove(savePath)) {
        fail();
        return;
    }
    file = new QFile(savePath);
    if (!file->open(QIODevice::WriteOnly)) {
        delete file;
        file = nullptr;
        fail();
        return;
    }

    QNetworkRequest request(QUrl(url, QUrl::TolerantMode));
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    reply = manager->get(request);
    connect(reply, SIGNAL(finished()), this, SLOT(httpFinished()));
    connect(reply, SIGNAL(readyRead()), this, SLOT(httpReadyRead()));
}

void Ovryn_DownloadUpdateFileInfo::httpReadyRead()
{
    if (!reply || !file)
        return;
    const QByteArray data = reply->readAll();
    // The reader would refuse a larger manifest, and a response may have no end.
    if (file->pos() + data.size() > kManifestBytesMax || file->write(data) != data.size())
        reply->abort(); // finishes it, with an error
}

void Ovryn_DownloadUpdateFileInfo::httpFinished()
{
    if (!reply || !file)
        return;
    bool complete = reply->error() == QNetworkReply::NoError && file->flush();
    file->close();
    complete = complete && file->error() == QFileDevice::NoError;
    if (!complete)
        file->remove();
    dropRemains();
    if (!complete) {
        fail();
        return;
    }
    state = Succeeded;
    emit downloadFinished(true);
}

void Ovryn_DownloadUpdateFileInfo::dropRemains()
{
    if (reply) {
        reply->disconnect(this); // its end must not be taken for the end of the next one
        reply->deleteLater();
        reply = nullptr;
    }
    if (file) {
        file->flush();
        file->close();
        delete file;
        file = nullptr;
    }
}

void Ovryn_DownloadUpdateFileInfo::fail()
{
    state = Failed;
    emit downloadFinished(false);
}
