#pragma once

#include <QNetworkAccessManager>
#include <QObject>
#include <QString>

class QFile;
class QNetworkReply;

/// Fetches the update manifest into the folder temp of the current folder.
///
/// One lives as long as the main dialog and serves every check. GUI thread; data come through its event loop and go
/// to the disk as they arrive. It has no time-out and tries nothing twice. A download that fails leaves no manifest
/// behind, not the earlier one either; nothing here tells the user, all there is is `downloadFinished(false)`.
class Ovryn_DownloadUpdateFileInfo : public QObject
{
    Q_OBJECT

public:
    enum State
    {
        Idle = 0, ///< never started
        Running = 1,
        Failed = 2,
        Succeeded = 3,
    };

    explicit Ovryn_DownloadUpdateFileInfo(QObject *parent);
    ~Ovryn_DownloadUpdateFileInfo() override;

    /// Starts a download, unless one is running. Where the folder temp can't be made, the object counts as running
    /// for the rest of its life: this and every later call come to nothing until the program restarts.
    void startDownload();

    [[nodiscard]] int currentState() const { return state; } ///< a value of State
    [[nodiscard]] QString address() const { return url; }

public slots:
    void httpFinished();
    void httpReadyRead();

signals:
    /// True: an answer without an error is on the disk, be it a manifest or not; a redirect counts as such an answer
    /// and is not followed. False also where the disk did not take all of it, and where it is larger than
    /// `kManifestBytesMax`: such an answer is broken off.
    void downloadFinished(bool complete);

private:
    void dropRemains();
    void fail();

    QNetworkAccessManager *manager;
    QNetworkReply *reply = nullptr; ///< null when none
    QFile *file = nullptr;          ///< null when none
    QString url;
    QString savePath;
    int state = Idle;
};
