#pragma once

#include "guard/WatchList.h"

#include <QObject>
#include <QString>

#include <memory>

class QProcess;

/// The program's side of its fan guard, a small process that hands fans back to the driver should this process die
/// while they follow a curve. The guard runs only while a card is watched; it is started again when it dies.
///
/// Owned by the main dialog; GUI thread only. A guard that can't be started is done without, silently.
class FanGuard : public QObject
{
    Q_OBJECT

public:
    /// `program` is the guard's executable. Nothing is started yet.
    explicit FanGuard(const QString &program, QObject *parent = nullptr);
    /// Lets the guard go. With a card still on the list it stays until this process has ended, and then does its
    /// work.
    ~FanGuard() override;

    /// From now on the guard hands this card's fan back if the process dies. To be called before the first order of a
    /// curve; blocks for the few milliseconds of starting the guard.
    void watch(qint32 gpuIndex);
    /// This card's fan follows no curve any more.
    void release(qint32 gpuIndex);

    [[nodiscard]] qint64 processId() const; ///< of the guard; 0 while there is none

private slots:
    void onGuardEnded();

private:
    void start();
    void write(const std::string &line);
    void endGuard();

    const QString program;
    std::unique_ptr<QProcess> guard; ///< null while no card is watched
    WatchList list;
    int restarts = 0;
};
