#include "guard/FanGuard.h"

#include <QProcess>

namespace
{

constexpr int kStartTimeoutMs = 2000;
constexpr int kWriteTimeoutMs = 1000;
constexpr int kEndTimeoutMs = 1000;

/// A guard that dies this often is not started again.
constexpr int kRestartsMax = 10;

} // namespace

FanGuard::FanGuard(const QString &guardProgram, QObject *parent) : QObject(parent), program(guardProgram) {}

FanGuard::~FanGuard()
{
    if (!guard)
        return;
    guard->disconnect(this);
    if (list.cards().empty())
        endGuard();
    else
        (void)guard.release(); // its destructor would kill the guard; the pipe closes with this process
}

void FanGuard::watch(qint32 gpuIndex)
{
    const bool first = list.cards().empty();
    list.apply(WatchList::watchLine(gpuIndex));
    if (first)
        start();
    else
        write(WatchList::watchLine(gpuIndex));
}

void FanGuard::release(qint32 gpuIndex)
{
    list.apply(WatchList::releaseLine(gpuIndex));
    write(WatchList::releaseLine(gpuIndex));
    if (list.cards().empty())
        endGuard();
}

qint64 FanGuard::processId() const
{
    return guard ? guard->processId() : 0;
}

void FanGuard::start()
{
    guard = std::make_unique<QProcess>();
    guard->setStandardOutputFile(QProcess::nullDevice());
    guard->setStandardErrorFile(QProcess::nullDevice());
    connect(guard.get(), SIGNAL(finished(int, QProcess::ExitStatus)), this, SLOT(onGuardEnded()));
    guard->start(program, QStringList());
    guard->waitForStarted(kStartTimeoutMs);
    for (const qint32 gpuIndex : list.cards())
        write(WatchList::watchLine(gpuIndex));
}

void FanGuard::write(const std::string &line)
{
    if (!guard || guard->state() == QProcess::NotRunning)
        return;
    // One write, so that a crash of this process never leaves a part of a line that looks like a complete one.
    guard->write(QByteArray::fromStdString(line + '\n'));
    guard->waitForBytesWritten(kWriteTimeoutMs);
}

void FanGuard::endGuard()
{
    if (!guard)
        return;
    guard->disconnect(this);
    guard->closeWriteChannel();
    guard->waitForFinished(kEndTimeoutMs);
    guard.reset();
}

void FanGuard::onGuardEnded()
{
    guard.release()->deleteLater(); // this runs inside one of its signals
    if (++restarts <= kRestartsMax)
        start();
}
