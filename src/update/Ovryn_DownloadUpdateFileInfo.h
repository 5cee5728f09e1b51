#pragma once

#include <QNetworkAccessManager>
#include <QObject>
#include <QString>

class QFile;
class QNetworkReply;

/// Fetches the update manifest into the folder temp of the current folder.
///
/// One lives as long as the main dialog and serves every check. GUI thread; data come through its event loop and go
/// to the disk as they arrive. It has no time-out and no retry. A failed download leaves no manifest on the disk, not
/// the earlier one either. The user sees no message; only `downloadFinished(false)` reports the failure.
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
    /// for the rest of its life: this and every later call do nothing until the program restarts.
    void startDownload();

    [[nodiscard]] int currentState() const { return state; } ///< a value of State
    [[nodiscard]] QString address() const { return url; }

public slots:
    void httpFinished();
    void httpReadyRead();

signals:
    /// True: a response without an error is on the disk, whether or not it is a manifest; a redirect counts as such a
    /// response and is not followed. False also when the disk did not take all of it, and when it is larger than
    /// `kManifestBytesMax`: such a response is cut off.
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
