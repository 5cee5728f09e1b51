#pragma once

#include "device/DeviceRecords.h"
#include "monitor/sampling/SampleRecords.h"
#include "worker/WorkerThread.h"

#include <memory>

class NvGpuControl;

/// The sampling worker of one card: the pages' one source of live data. Once per refresh interval it reads
/// everything live from the card and sends three records, by value, to whoever listens.
///
/// Owned by the main dialog, which calls its operations on the GUI thread; the three records' names must be
/// registered as meta-types before a connection is made. A failed read is a zero in the record and nothing
/// else: the cycle goes on. A change of the interval and the end wait for a running cycle, since the mutex
/// is held through it.
class Ovryn_SendNvCardInfoThread : public WorkerThread
{
    Q_OBJECT

public:
    static constexpr quint32 kSleepMs = 1000;

    /// Does not start the thread. `card` is borrowed; without one the loop ends at once.
    explicit Ovryn_SendNvCardInfoThread(NvGpuControl *card, QObject *parent = nullptr, quint32 pauseMs = kSleepMs);
    ~Ovryn_SendNvCardInfoThread() override;

    void startSampling();                 ///< nothing while the loop runs
    void setRefreshTime(unsigned int ms); ///< pause between cycles; takes effect at the next one

    /// One cycle: reads the card and emits the three records. The loop calls it under the mutex; `control`
    /// must be there.
    void sampleOnce();

signals:
    void sendNvCardInfo(NvCardBaseInfo nvCardBaseInfo);
    void sendBoardTempCompleteInfo(BoardTempCompleteInfo boardTempInfo); ///< no page is connected to it
    void sendNVCardFixedInfo(NvInfo);

protected:
    void run() override;

private:
    NvGpuControl *control; ///< kept alive by cardShare where its owner shares it
    const std::shared_ptr<NvGpuControl> cardShare;
    quint32 sleepMs;      ///< guarded by mutex
    ScaleLatches latches; ///< touched by the cycle alone
};
