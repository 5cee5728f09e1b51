#pragma once

#include "device/DeviceRecords.h"
#include "device/Units.h"
#include "worker/WorkerThread.h"

#include <memory>

class NvGpuControl;

/// The LCD worker of one card: about once a second it sends one frame of live readings to the controller behind the
/// card's LCD, which draws them, and rotates the page that the controller shows.
///
/// Owned by the LCD page, which calls its operations on the GUI thread. They wait for a running pass, since the mutex
/// is held through it, but never for the sleep. A refused frame changes nothing: the next one goes out a second
/// later, for ever on a card without an LCD. A reading that fails shows as 0. With the LCD switched off the loop
/// tells the controller once and ends by itself.
class Ovryn_SendNvInfoToLCDThread : public WorkerThread
{
    Q_OBJECT

public:
    static constexpr quint32 kSleepMs = 1000;         ///< a frame costs ten or so queries: not to be shortened
    static constexpr int kDefaultSwitchSeconds = 10;  ///< time per page
    static constexpr quint32 kShortestSwitchTime = 1; ///< seconds
    static constexpr quint32 kLongestSwitchTime = 30; ///< seconds

    /// Does not start the thread. Automatic, 10 seconds a page, LCD on, clock page. `card` is borrowed; without one
    /// the loop ends at once.
    explicit Ovryn_SendNvInfoToLCDThread(NvGpuControl *card, QObject *parent = nullptr, quint32 pauseMs = kSleepMs);
    ~Ovryn_SendNvInfoToLCDThread() override;

    void startSending(); ///< nothing while the loop runs

    /// One pass: turns to the next page when its time has come, sends the frame and emits the result. The loop
    /// calls it under the mutex; the card must be there.
    void sendFrameOnce();

public slots:
    /// Automatic: the page begins anew and then changes every `time` seconds, taken as unsigned and held to 1 to 30.
    /// Otherwise the pages stand still, and `time` is ignored.
    void setAutoSwitch(bool bAuto, int time = kDefaultSwitchSeconds);
    /// The next page, with the next frame; nothing while the pages rotate by themselves.
    void manualSwitch();
    /// With the next frame; the loop ends behind the one that switches off. Starts nothing.
    void setEnableLCD(bool bEnable);
    /// Shows a page at once, by a frame that the calling thread sends itself; its result is not emitted. The page
    /// begins anew. Nothing without a card.
    void setLCDCurrentDisplayMode(LCDDisplayMode displayMode);

signals:
    /// After each frame of the loop, from its thread and under the mutex: to be connected as queued.
    void sendDataToLCDResult(bool bSuccess);

protected:
    void run() override;

    // its state, open to a derived class; all of it is guarded by mutex
    quint32 elapsedMs = 0; ///< on the current page
    bool autoSwitch = true;
    quint32 switchMs = kMillisecondsPerSecond * kDefaultSwitchSeconds; ///< time per page
    bool enable = true;
    LCDDisplayMode mode = LcdDisplayClock; ///< page now shown

private:
    bool sendFrame(); ///< under the mutex; the card must be there

    NvGpuControl *const control; ///< kept alive by cardShare where its owner shares it
    const std::shared_ptr<NvGpuControl> cardShare;
    const quint32 sleepMs; ///< pause between frames, and what a frame adds to elapsedMs
};
