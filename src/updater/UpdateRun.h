#pragma once

#include "update/FileExchange.h"
#include "updater/DetachedSignature.h"
#include "updater/FileFetcher.h"
#include "updater/UpdatePlan.h"

#include <QObject>
#include <QTimer>

#include <atomic>
#include <functional>
#include <memory>

class QThread;
class SingleInstanceChannel;

/// Why an update did not come about. In every case but `HalfDone` the installed version stands as it was.
enum class UpdateFailure
{
    None,
    NoKey,          ///< this build knows no key, so it can trust nothing
    NoServer,       ///< the server can't be reached, or breaks off again and again
    NotSigned,      ///< the signature of what the server offers is wrong
    BadManifest,    ///< signed, but not a list that can be followed
    OtherProduct,   ///< signed, but for another product or system
    NotNewer,       ///< signed, but no newer than what is installed
    NeedsHands,     ///< what is installed is too old for this way
    Damaged,        ///< a fetched file is not the one that was signed
    DiskFull,       ///< or the folder can't be written
    ProgramRuns,    ///< the program did not end in time
    ExchangeFailed, ///< a file could not be replaced; all were put back
    HalfDone,       ///< a file could not be replaced, nor all be put back; the next start tries again
};

/// Where an update takes place and what it trusts.
struct UpdateSite
{
    QString installation;     ///< canonical path of the folder
    QString packets;          ///< address of the folder with the manifest, with a slash at the end
    QVector<ReleaseKey> keys; ///< each is trusted; empty where this build has none
    QString ownVersion;       ///< of the updater itself
    QString programId;        ///< of the program's single-instance lock
    FetchTimings fetchTimings{};
    int programPollMs = 200;
    int programPatienceMs = 10 * 60 * 1000; ///< for the end of the program
};

/// One update from the check of the manifest to the exchange of the files. Shows nothing; a window follows its
/// signals.
///
/// Trust begins with the signature: nothing of the manifest is looked at before that is checked, and nothing is put
/// in place whose content is not the one that the manifest lists. While files are exchanged the program can't start,
/// since this object holds its lock. GUI thread; long work runs in a thread of its own.
class UpdateRun : public QObject
{
    Q_OBJECT

public:
    enum class Stage
    {
        Checking,
        Fetching,
        Preparing,         ///< unpacks and checks; can be cancelled
        WaitingForProgram, ///< can be cancelled
        Exchanging,        ///< can't be cancelled any more
        Done,
        Failed,
    };
    Q_ENUM(Stage)

    explicit UpdateRun(UpdateSite site, QObject *parent = nullptr);
    ~UpdateRun() override;

    void start(); ///< also once more after a failure

    /// Ends everything where the exchange has not begun; true then. What was fetched stays for the next time.
    bool cancel();

    /// Lets the program start again; called before it is started.
    void releaseProgram();

    [[nodiscard]] Stage stage() const { return currentStage; }
    [[nodiscard]] UpdateFailure failure() const { return currentFailure; }
    [[nodiscard]] QString failedPath() const { return failurePath; } ///< the file that it is about; may be empty
    [[nodiscard]] qint64 bytesFetched() const { return fetchedBefore + fetchedOfCurrent; }
    [[nodiscard]] qint64 bytesToFetch() const { return plan.bytes; }

signals:
    void stageChanged();
    void progressed();

private:
    void enter(Stage stage);
    void fail(UpdateFailure reason, const QString &path = {});
    void fetchSignature();
    void fetchManifest();
    void onFetched(FetchResult result);
    void checkManifest();
    void usePlan(const ReleaseManifest &offered);
    void fetchNextPacket();
    void onPacketFetched(FetchResult result);
    void prepare();
    void waitForProgram();
    void onProgramPoll();
    void runExchange();
    void onExchanged(ExchangeOutcome outcome);
    void inThread(const std::function<void()> &work, const std::function<void()> &then);

    [[nodiscard]] QString inTemp(const QString &name) const;
    [[nodiscard]] bool hasPlainPackets() const;
    [[nodiscard]] QString packetPath(const ReleaseFile &file) const;
    [[nodiscard]] std::optional<ReleaseManifest> installedRelease() const;

    const UpdateSite site;
    FileExchange exchange;
    FileFetcher fetcher;
    std::unique_ptr<SingleInstanceChannel> program; ///< held while the program must not run
    QTimer programPoll;
    QElapsedTimer programWait;
    QThread *thread = nullptr; ///< of the long work; none when there is none

    Stage currentStage = Stage::Checking;
    UpdateFailure currentFailure = UpdateFailure::None;
    QString failurePath;
    std::function<void(FetchResult)> afterFetch;
    bool manifestIsFresh = false; ///< fetched by this run, not by the program
    QByteArray manifestBytes;     ///< whose signature was checked
    QByteArray signatureBytes;
    QString packetAddress; ///< of the folder with the archives, with a slash at the end
    UpdatePlan plan;
    int nextPacket = 0;
    qint64 fetchedBefore = 0;
    qint64 fetchedOfCurrent = 0;
    QVector<ExchangedFile> exchanged;
    std::atomic<bool> cancelled{false};
};
