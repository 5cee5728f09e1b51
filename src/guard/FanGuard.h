#pragma once

#include "guard/WatchList.h"

#include <QObject>
#include <QString>

#include <memory>

class QProcess;

/// The program's side of its fan guard: a small process that returns fans to the driver when this process dies while
/// they follow a curve. The guard runs only while a card is watched; it is started again when it dies.
///
/// Owned by the main dialog; GUI thread only. When the guard can't be started the program continues without it and
/// reports nothing.
class FanGuard : public QObject
{
    Q_OBJECT

public:
    /// `program` is the guard's executable. Nothing is started yet.
    explicit FanGuard(const QString &program, QObject *parent = nullptr);
    /// Ends the guard. While a card is still on the list, the guard keeps running until this process has ended, and
    /// then returns the fans.
    ~FanGuard() override;

    /// From now on the guard returns this card's fan to the driver if the process dies. To be called before the first
    /// order of a curve. Blocks for the few milliseconds that the start of the guard takes.
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
