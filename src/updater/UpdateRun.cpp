#include "updater/UpdateRun.h"

#include "platform/SingleInstanceChannel.h"
#include "update/InstallationPath.h"
#include "update/UpdateDecision.h"
#include "update/UpdateFiles.h"
#include "updater/ReleasePacket.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QStorageInfo>
#include <QThread>

#include <algorithm>

namespace
{

// The list of what is installed, and its signature: the manifest of that release under a name of its own.
const char *const kInstalledList = "release.xml";
const char *const kSignatureSuffix = ".minisig";

const char *const kManifestName = "update_info.xml";
const char *const kPacketFolder = "packets";

QByteArray contentOf(const QString &path, qint64 bytesMax)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.size() <= bytesMax ? file.readAll() : QByteArray();
}

bool write(const QString &path, const QByteArray &bytes)
{
    QFile::remove(path);
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::NewOnly) && file.write(bytes) == bytes.size() && file.flush();
}

bool isSignedByOneOf(const QVector<ReleaseKey> &keys, const QByteArray &bytes, const QByteArray &signature)
{
    return std::any_of(keys.cbegin(), keys.cend(),
                       [&](const ReleaseKey &key) { return isSignedBy(key, bytes, signature); });
}

UpdateFailure failureOf(PlanRefusal refusal)
{
    switch (refusal) {
    case PlanRefusal::OtherProduct:
    case PlanRefusal::OtherPlatform:
        return UpdateFailure::OtherProduct;
    case PlanRefusal::NotNewer:
        return UpdateFailure::NotNewer;
    case PlanRefusal::NeedsHands:
        return UpdateFailure::NeedsHands;
    case PlanRefusal::None:
        break;
    }
    return UpdateFailure::None;
}

UpdateFailure failureOf(FetchResult result)
{
    switch (result) {
    case FetchResult::Complete:
        break;
    case FetchResult::NoAnswer:
        return UpdateFailure::NoServer;
    case FetchResult::Damaged:
        return UpdateFailure::Damaged;
    case FetchResult::DiskFull:
        return UpdateFailure::DiskFull;
    }
    return UpdateFailure::None;
}

} // namespace

UpdateRun::UpdateRun(UpdateSite updateSite, QObject *parent)
    : QObject(parent), site(std::move(updateSite)), exchange(site.installation), fetcher(site.fetchTimings)
{
    programPoll.setInterval(site.programPollMs);
    connect(&programPoll, &QTimer::timeout, this, &UpdateRun::onProgramPoll);
    connect(&fetcher, &FileFetcher::finished, this, &UpdateRun::onFetched);
    connect(&fetcher, &FileFetcher::progressed, this, [this](qint64 bytes) {
        if (currentStage != Stage::Fetching)
            return;
        fetchedOfCurrent = bytes;
        emit progressed();
    });
}

UpdateRun::~UpdateRun()
{
    cancelled = true;
    if (!thread)
        return;
    thread->wait(); // an exchange is never broken off
    delete thread;  // its end is not heard of any more
}

QString UpdateRun::inTemp(const QString &name) const
{
    return site.installation + QLatin1Char('/') + QLatin1String(kUpdateFolder) + QLatin1Char('/') + name;
}

/// By its hash: a file that did not change between two releases is fetched once.
QString UpdateRun::packetPath(const ReleaseFile &file) const
{
    return inTemp(QLatin1String(kPacketFolder) + QLatin1Char('/') + QString::fromLatin1(file.archiveSha256.toHex()) +
                  QStringLiteral(".zip"));
}

/// False where a link would lead what is fetched into a folder that may be anybody's.
bool UpdateRun::hasPlainPackets() const
{
    return leadsThroughPlainFolders(site.installation, QLatin1String(kUpdateFolder) + QLatin1Char('/') +
                                                           QLatin1String(kPacketFolder) + QStringLiteral("/x"));
}

void UpdateRun::enter(Stage stage)
{
    currentStage = stage;
    emit stageChanged();
}

void UpdateRun::fail(UpdateFailure reason, const QString &path)
{
    fetcher.cancel();
    programPoll.stop();
    currentFailure = reason;
    failurePath = path;
    enter(Stage::Failed);
}

void UpdateRun::start()
{
    if (thread)
        return;
    currentFailure = UpdateFailure::None;
    failurePath.clear();
    cancelled = false;
    manifestIsFresh = false;
    fetchedBefore = 0;
    fetchedOfCurrent = 0;
    plan = {};
    if (exchange.isUnfinished()) {
        waitForProgram();
        return;
    }
    enter(Stage::Checking);
    if (site.keys.isEmpty()) {
        fail(UpdateFailure::NoKey);
        return;
    }
    if (!hasPlainPackets() || !QDir().mkpath(inTemp(QLatin1String(kPacketFolder)))) {
        fail(UpdateFailure::DiskFull);
        return;
    }
    fetchSignature();
}

bool UpdateRun::cancel()
{
    if (currentStage == Stage::Exchanging || currentStage == Stage::Done)
        return false;
    cancelled = true;
    fetcher.cancel();
    programPoll.stop();
    program.reset();
    return true;
}

void UpdateRun::releaseProgram()
{
    program.reset();
}

// ---- the signed list ------------------------------------------------------------------------------------------

void UpdateRun::fetchSignature()
{
    const QString name = QLatin1String(kManifestName) + QLatin1String(kSignatureSuffix);
    afterFetch = [this](FetchResult result) {
        if (result == FetchResult::Complete)
            checkManifest();
        else
            fail(failureOf(result));
    };
    fetcher.fetch({QUrl(site.packets + name), inTemp(name), kSignatureBytesMax});
}

void UpdateRun::fetchManifest()
{
    manifestIsFresh = true;
    afterFetch = [this](FetchResult result) {
        if (result == FetchResult::Complete)
            fetchSignature();
        else
            fail(failureOf(result));
    };
    const QString name = QLatin1String(kManifestName);
    fetcher.fetch({QUrl(site.packets + name), inTemp(name), kReleaseManifestBytesMax});
}

void UpdateRun::onFetched(FetchResult result)
{
    afterFetch(result);
}

void UpdateRun::checkManifest()
{
    const QString name = QLatin1String(kManifestName);
    manifestBytes = contentOf(inTemp(name), kReleaseManifestBytesMax);
    signatureBytes = contentOf(inTemp(name + QLatin1String(kSignatureSuffix)), kSignatureBytesMax);
    if (!isSignedByOneOf(site.keys, manifestBytes, signatureBytes)) {
        // A release may have come out since the program fetched its copy, so that the signature is of the new one.
        if (manifestIsFresh)
            fail(UpdateFailure::NotSigned);
        else
            fetchManifest();
        return;
    }
    const std::optional<ReleaseManifest> offered = releaseManifestOf(manifestBytes);
    if (offered)
        usePlan(*offered);
    else
        fail(UpdateFailure::BadManifest);
}

std::optional<ReleaseManifest> UpdateRun::installedRelease() const
{
    const QString path = site.installation + QLatin1Char('/') + QLatin1String(kInstalledList);
    const QByteArray bytes = contentOf(path, kReleaseManifestBytesMax);
    const QByteArray signature = contentOf(path + QLatin1String(kSignatureSuffix), kSignatureBytesMax);
    return isSignedByOneOf(site.keys, bytes, signature) ? releaseManifestOf(bytes) : std::nullopt;
}

void UpdateRun::usePlan(const ReleaseManifest &offered)
{
    const std::optional<ReleaseManifest> installed = installedRelease();
    const bool listIsNewer = installed && isNewerVersion(installed->version, site.ownVersion);
    const QString installedVersion = listIsNewer ? installed->version : site.ownVersion;
    const auto hashOf = [this](const QString &path) {
        return sha256OfFile(path == QLatin1String(kUpdaterEntryName) ? installedUpdater(site.installation)
                                                                     : site.installation + QLatin1Char('/') + path);
    };
    auto decided = std::make_shared<UpdatePlan>();
    inThread([=] { *decided = planUpdate(offered, installed, installedVersion, hashOf); },
             [this, decided, offered] {
                 plan = *decided;
                 if (plan.refusal != PlanRefusal::None) {
                     fail(failureOf(plan.refusal));
                     return;
                 }
                 packetAddress = offered.serverAddress.isEmpty() ? site.packets : offered.serverAddress;
                 qint64 needed = 0;
                 for (const ReleaseFile &file : qAsConst(plan.fetched))
                     needed += file.size + file.archiveSize;
                 const QStorageInfo disk(site.installation);
                 if (disk.isValid() && disk.bytesAvailable() < needed) {
                     fail(UpdateFailure::DiskFull);
                     return;
                 }
                 nextPacket = 0;
                 enter(Stage::Fetching);
                 fetchNextPacket();
             });
}

// ---- the files ------------------------------------------------------------------------------------------------

void UpdateRun::fetchNextPacket()
{
    if (nextPacket == plan.fetched.size()) {
        prepare();
        return;
    }
    const ReleaseFile &file = plan.fetched.at(nextPacket);
    if (!hasPlainPackets()) {
        fail(UpdateFailure::DiskFull, file.path);
        return;
    }
    afterFetch = [this](FetchResult result) {
        onPacketFetched(result);
    };
    fetchedOfCurrent = 0;
    fetcher.fetch({QUrl(packetAddress + file.archive), packetPath(file), file.archiveSize, file.archiveSha256});
}

void UpdateRun::onPacketFetched(FetchResult result)
{
    const ReleaseFile &file = plan.fetched.at(nextPacket);
    if (result != FetchResult::Complete) {
        fail(failureOf(result), file.path);
        return;
    }
    fetchedBefore += file.archiveSize;
    fetchedOfCurrent = 0;
    emit progressed();
    ++nextPacket;
    fetchNextPacket();
}

void UpdateRun::prepare()
{
    enter(Stage::Preparing);
    if (!exchange.begin()) {
        fail(UpdateFailure::DiskFull);
        return;
    }
    struct Result
    {
        UpdateFailure failure = UpdateFailure::None;
        QString path;
        QVector<ExchangedFile> files;
    };
    auto result = std::make_shared<Result>();
    const auto work = [this, result] {
        const auto stage = [&](const QString &path, const QByteArray &bytes) {
            const int index = result->files.size();
            result->files.append({path, QCryptographicHash::hash(bytes, QCryptographicHash::Sha256), bytes.size()});
            return write(exchange.stagedPath(index), bytes);
        };
        for (const ReleaseFile &file : qAsConst(plan.fetched)) {
            if (cancelled)
                return;
            const bool isSuccessor = file.isUpdater();
            const QString target =
                isSuccessor ? inTemp(QStringLiteral("successor")) : exchange.stagedPath(result->files.size());
            result->path = file.path;
            if (!unpackReleaseFile(packetPath(file), file, target) || sha256OfFile(target) != file.sha256) {
                result->failure = UpdateFailure::Damaged;
                return;
            }
            if (!isSuccessor) {
                result->files.append({file.path, file.sha256, file.size, file.executable});
                continue;
            }
            // The program puts it in place: an updater can't replace itself while it runs.
            QFile::remove(target);
            const QString packet = inTemp(file.version + QStringLiteral(".zip"));
            QFile::remove(packet);
            if (!QFile::copy(packetPath(file), packet) || !syncFileAt(packet)) {
                result->failure = UpdateFailure::DiskFull;
                return;
            }
        }
        for (const QString &path : qAsConst(plan.removed))
            result->files.append({path, {}, 0});
        result->path = QLatin1String(kInstalledList);
        if (!stage(result->path, manifestBytes) ||
            !stage(result->path + QLatin1String(kSignatureSuffix), signatureBytes))
            result->failure = UpdateFailure::DiskFull;
    };
    inThread(work, [this, result] {
        if (cancelled)
            return;
        exchanged = result->files;
        if (result->failure != UpdateFailure::None)
            fail(result->failure, result->path);
        else
            waitForProgram();
    });
}

// ---- the exchange ---------------------------------------------------------------------------------------------

void UpdateRun::waitForProgram()
{
    enter(Stage::WaitingForProgram);
    programWait.start();
    programPoll.start();
    onProgramPoll();
}

void UpdateRun::onProgramPoll()
{
    if (!program)
        program = std::make_unique<SingleInstanceChannel>(site.programId);
    if (program->isFirst()) {
        programPoll.stop();
        runExchange();
    } else if (programWait.hasExpired(site.programPatienceMs)) {
        program.reset();
        fail(UpdateFailure::ProgramRuns);
    }
}

void UpdateRun::runExchange()
{
    enter(Stage::Exchanging);
    const bool isResumed = exchange.isUnfinished();
    auto outcome = std::make_shared<ExchangeOutcome>(ExchangeOutcome::Nothing);
    inThread([=] { *outcome = isResumed ? exchange.resume() : exchange.exchange(exchanged); },
             [this, outcome] { onExchanged(*outcome); });
}

void UpdateRun::onExchanged(ExchangeOutcome outcome)
{
    switch (outcome) {
    case ExchangeOutcome::Completed:
    case ExchangeOutcome::CompletedBefore:
        enter(Stage::Done);
        break;
    case ExchangeOutcome::Nothing:
    case ExchangeOutcome::WentBack:
        fail(UpdateFailure::ExchangeFailed, exchange.failedPath());
        break;
    case ExchangeOutcome::Unfinished:
        fail(UpdateFailure::HalfDone, exchange.failedPath());
        break;
    }
}

/// Does long work in a thread of its own, then the rest here.
void UpdateRun::inThread(const std::function<void()> &work, const std::function<void()> &then)
{
    thread = QThread::create(work);
    connect(thread, &QThread::finished, this, [this, then] {
        thread->deleteLater();
        thread = nullptr;
        if (!cancelled || currentStage == Stage::Exchanging)
            then();
    });
    thread->start();
}
