#include "board/lcd/Ovryn_SendNvInfoToLCDThread.h"

#include "device/NvGpuControl.h"

#include <QMutexLocker>

#include <algorithm>
#include <iterator>

namespace
{

constexpr LCDDisplayMode kRotation[] = {
    LcdDisplayOther,
    LcdDisplayClock,
    LcdDisplayTemperature,
    LcdDisplayMemory,
};

/// Any value that is none of the rotation's is followed by its first.
LCDDisplayMode modeAfter(LCDDisplayMode mode)
{
    const auto *const shown = std::find(std::begin(kRotation), std::end(kRotation), mode);
    const bool isLast = shown == std::end(kRotation) || std::next(shown) == std::end(kRotation);
    return isLast ? kRotation[0] : *std::next(shown);
}

} // namespace

Ovryn_SendNvInfoToLCDThread::Ovryn_SendNvInfoToLCDThread(NvGpuControl *card, QObject *parent, quint32 pauseMs)
    : WorkerThread(parent), control(card), cardShare(shareOf(card)), sleepMs(pauseMs)
{
}

Ovryn_SendNvInfoToLCDThread::~Ovryn_SendNvInfoToLCDThread()
{
    endThread();
}

void Ovryn_SendNvInfoToLCDThread::startSending()
{
    startThread();
}

void Ovryn_SendNvInfoToLCDThread::setAutoSwitch(bool bAuto, int time)
{
    QMutexLocker held(&mutex);
    autoSwitch = bAuto;
    if (!bAuto)
        return;
    elapsedMs = 0;
    switchMs = kMillisecondsPerSecond * std::clamp(quint32(time), kShortestSwitchTime, kLongestSwitchTime);
}

void Ovryn_SendNvInfoToLCDThread::manualSwitch()
{
    QMutexLocker held(&mutex);
    if (!autoSwitch)
        mode = modeAfter(mode);
}

void Ovryn_SendNvInfoToLCDThread::setEnableLCD(bool bEnable)
{
    QMutexLocker held(&mutex);
    enable = bEnable;
}

void Ovryn_SendNvInfoToLCDThread::setLCDCurrentDisplayMode(LCDDisplayMode displayMode)
{
    if (control == nullptr)
        return;
    QMutexLocker held(&mutex);
    mode = displayMode;
    elapsedMs = 0;
    sendFrame(); // a card without an LCD refuses it
}

void Ovryn_SendNvInfoToLCDThread::run()
{
    QMutexLocker held(&mutex);
    while (control != nullptr) {
        sendFrameOnce();
        if (!enable || stopped || !pause(held, sleepMs))
            break;
    }
    leaveLoop();
}

void Ovryn_SendNvInfoToLCDThread::sendFrameOnce()
{
    if (autoSwitch) {
        // Compared before it is counted on: a page of 10 seconds stays for eleven frames. Wanted so.
        if (elapsedMs >= switchMs) {
            mode = modeAfter(mode);
            elapsedMs = 0;
        } else {
            elapsedMs += sleepMs;
        }
    }
    emit sendDataToLCDResult(sendFrame());
}

bool Ovryn_SendNvInfoToLCDThread::sendFrame()
{
    // Never the controller's own rotation: it would not know of the pages that the gauge and the hot key choose.
    return control->sendCardInfoToLcd(enable, false, int(switchMs), mode);
}
