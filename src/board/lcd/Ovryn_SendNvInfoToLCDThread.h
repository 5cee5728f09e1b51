#pragma once

#include "device/DeviceRecords.h"
#include "device/Units.h"
#include "worker/WorkerThread.h"

#include <memory>

class NvGpuControl;

/// The LCD worker of one card: about once a second it sends one frame of live readings to the controller of the
/// card's LCD, which draws them, and rotates the page that the controller shows.
///
/// Owned by the LCD page, which calls its operations on the GUI thread. They wait for a running pass, since the mutex
/// is held through it, but never for the sleep. A refused frame changes nothing: the next one is sent a second later,
/// for ever on a card without an LCD. A failed reading shows as 0. When the LCD is switched off the loop sends one
/// frame with that command and ends by itself.
class Ovryn_SendNvInfoToLCDThread : public WorkerThread
{
    Q_OBJECT

public:
    static constexpr quint32 kSleepMs = 1000;         ///< a frame needs about ten driver queries: do not shorten it
    static constexpr int kDefaultSwitchSeconds = 10;  ///< time per page
    static constexpr quint32 kShortestSwitchTime = 1; ///< seconds
    static constexpr quint32 kLongestSwitchTime = 30; ///< seconds

    /// Does not start the thread. Automatic, 10 seconds a page, LCD on, clock page. `card` is borrowed; without one
    /// the loop ends at once.
    explicit Ovryn_SendNvInfoToLCDThread(NvGpuControl *card, QObject *parent = nullptr, quint32 pauseMs = kSleepMs);
    ~Ovryn_SendNvInfoToLCDThread() override;

    void startSending(); ///< nothing while the loop runs

    /// One pass: changes to the next page when its time has come, sends the frame and emits the result. The loop
    /// calls it under the mutex; the card must be there.
    void sendFrameOnce();

public slots:
    /// Automatic: the page's time starts again, and the page changes every `time` seconds, taken as unsigned and
    /// limited to 1 to 30. Otherwise the page does not change, and `time` is ignored.
    void setAutoSwitch(bool bAuto, int time = kDefaultSwitchSeconds);
    /// The next page, with the next frame; nothing while the pages rotate by themselves.
    void manualSwitch();
    /// Takes effect with the next frame; the loop ends after the frame that switches off. Starts nothing.
    void setEnableLCD(bool bEnable);
    /// Shows a page at once: the calling thread sends the frame itself, and its result is not emitted. The page's
    /// time starts again. Does nothing without a card.
    void setLCDCurrentDisplayMode(LCDDisplayMode displayMode);

signals:
    /// After each frame of the loop, from its thread and under the mutex: to be connected as queued.
    void sendDataToLCDResult(bool bSuccess);

protected:
    void run() override;

    // state, which a derived class may use; all of it is guarded by mutex
    quint32 elapsedMs = 0; ///< on the current page
    bool autoSwitch = true;
    quint32 switchMs = kMillisecondsPerSecond * kDefaultSwitchSeconds; ///< time per page
    bool enable = true;
    LCDDisplayMode mode = LcdDisplayClock; ///< page now shown

private:
    bool sendFrame(); ///< under the mutex; the card must be there

    NvGpuControl *const control; ///< kept alive by cardShare where its owner shares it
    const std::shared_ptr<NvGpuControl> cardShare;
    const quint32 sleepMs; ///< pause between frames; each frame adds it to elapsedMs
};
