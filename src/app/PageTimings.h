#pragma once

#include "board/Ovryn_LCDControllorWidget.h"
#include "board/Ovryn_LEDControlWidget.h"
#include "monitor/Ovryn_SendNvCardInfoThread.h"
#include "overclock/Ovryn_OverClockingWidget.h"

/// The pauses of the cards' pages, which tests shorten.
struct PageTimings
{
    LedTimings led;
    AdjustTimings adjust;
    quint32 sampleIntervalMs = Ovryn_SendNvCardInfoThread::kSleepMs;
    quint32 lcdFrameIntervalMs = Ovryn_SendNvInfoToLCDThread::kSleepMs;
};
