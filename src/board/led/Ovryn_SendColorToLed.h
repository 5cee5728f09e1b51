#pragma once

#include "worker/WorkerThread.h"

#include <QColor>

#include <memory>

class NvGpuControl;

/// The worker behind the State-Display effect: once per interval it reads the GPU temperature and, when the colour
/// of its band is another than the one sent last, tells the LED controller. The controller keeps an effect by
/// itself, so nothing is streamed.
///
/// Owned by the LED page, which calls its operations on the GUI thread. They wait for a running pass, since the
/// mutex is held through it, but never for the sleep. A failed temperature read counts as 0 degrees. A frame that
/// the controller refuses ends the loop and leaves `stopped` unset: the worker is dead until a stopStateDisplay.
class Ovryn_SendColorToLed : public WorkerThread
{
    Q_OBJECT

public:
    static constexpr unsigned int kSleepMs = 1000;

    /// Does not start the thread. `card` is borrowed; without one the loop ends at once.
    explicit Ovryn_SendColorToLed(NvGpuControl *card, QObject *parent = nullptr, unsigned int pauseMs = kSleepMs);
    ~Ovryn_SendColorToLed() override;

    /// The next pass sends its colour whatever was sent before. Starts the thread unless `stopped` is unset.
    void startStateDisplay();
    /// Only asks: the loop ends after its next pass. Wait for the thread before starting it again.
    void stopStateDisplay();

    /// One pass: reads the temperature and sends the colour of a new band. False when the controller refused the
    /// frame. The loop calls it under the mutex; the card must be there.
    bool showStateOnce();

signals:
    void sendDataToLCDResult(bool bSuccess); ///< part of the interface since ever; nothing emits it

protected:
    void run() override;

private:
    NvGpuControl *const control; ///< kept alive by cardShare where its owner shares it
    const std::shared_ptr<NvGpuControl> cardShare;
    const unsigned int sleepMs; ///< pause between passes
    QColor lastColor;           ///< the colour sent last; guarded by mutex
};
