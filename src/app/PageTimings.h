#pragma once

#include "board/lcd/Ovryn_LCDControllorWidget.h"
#include "board/led/Ovryn_LEDControlWidget.h"
#include "monitor/sampling/Ovryn_SendNvCardInfoThread.h"
#include "overclock/Ovryn_OverClockingWidget.h"

/// The pauses of the cards' pages, which tests shorten.
struct PageTimings
{
    LedTimings led;
    AdjustTimings adjust;
    quint32 sampleIntervalMs = Ovryn_SendNvCardInfoThread::kSleepMs;
    quint32 lcdFrameIntervalMs = Ovryn_SendNvInfoToLCDThread::kSleepMs;
};
