#pragma once

#include "worker/WorkerThread.h"

#include <QList>
#include <QPoint>

#include <memory>

class NvGpuControl;

/// The fan worker of one card: once per interval it reads the GPU temperature, looks it up on the user's
/// curve and orders that level. The driver holds no curve: it acts only as long as this thread runs.
///
/// Owned by CardAdjustment, which calls its operations on the GUI thread. They wait for a running cycle,
/// since the mutex is held through it, but never for the sleep. For a cycle without a temperature the driver
/// gets the fan, and a level that the card refuses is ordered again by the next cycle.
class Ovryn_SetUserDefineFanSpeedThread : public WorkerThread
{
    Q_OBJECT

public:
    static constexpr unsigned int kIntervalMs = 1000;

    /// Does not start the thread; holds the default curve. `card` is borrowed; without one the loop ends at once.
    explicit Ovryn_SetUserDefineFanSpeedThread(NvGpuControl *card, QObject *parent = nullptr,
                                               unsigned int intervalMs = kIntervalMs);
    ~Ovryn_SetUserDefineFanSpeedThread() override;

    /// Replaces the curve; takes effect at the next cycle. The default curve where the ends are not (0,0)
    /// and (100,100).
    void setTemperatureToFanSpeedData(const QList<QPoint> &curve);

    void startWork(); ///< nothing while the loop runs
    /// Only asks: the loop ends after its next level. Wait for the thread before starting it again.
    void stopWork();

    /// One cycle: reads the temperature and orders the level, or hands the fan to the driver. The loop calls it under
    /// the mutex; the card must be there.
    void followCurveOnce();

protected:
    void run() override;

private:
    NvGpuControl *const gpuControl; ///< kept alive by cardShare where its owner shares it
    const std::shared_ptr<NvGpuControl> cardShare;
    const unsigned int interval; ///< milliseconds between cycles
    QList<QPoint> nodes;         ///< guarded by mutex
};
