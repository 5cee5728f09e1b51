#pragma once

#include "config/ConfigRecords.h"

#include <QList>
#include <QPoint>
#include <QStringList>

/// What the driver of the healthy FakeCard is told, as lines of the journal. That card runs at 1607 and 4006 MHz and
/// 1062 mV, with targets of 110 percent and 80 degrees, a fan at 33 percent, and has 52 degrees.

const QString kFanAutoCall = QStringLiteral("GPU_SetCoolerLevels gpu0 cooler=7 0x100A4 [4]=33 [8]=32");
const QString kFanManualCall = QStringLiteral("GPU_SetCoolerLevels gpu0 cooler=7 0x100A4 [4]=33 [8]=1");
const QString kFanHandedBack = QStringLiteral("GPU_SetCoolerLevels gpu0 cooler=7 0x100A4 [8]=32");

inline QString fanLevelCall(int percent)
{
    return QStringLiteral("GPU_SetCoolerLevels gpu0 cooler=7 0x100A4 [4]=%1 [8]=1").arg(percent);
}

inline QStringList fanThen(const QString &fanCall, const QStringList &others)
{
    return QStringList{fanCall} + others;
}

/// The calls that bring a card to clock offsets, limits and a voltage offset, as every apply gives them behind the
/// fan's. The offsets in kHz and microvolts, the temperature in 1/256 of a degree, the power in thousandths.
inline QStringList settingCalls(int gpuKHz, int memoryKHz, int rawTemperature, int rawPower, int microvolts)
{
    const auto word = [](int offset, int value) {
        return value ? QStringLiteral(" [%1]=%2").arg(offset).arg(value) : QString();
    };
    return {
        QStringLiteral("GPU_SetPstates20 gpu0 0x31CF8 [8]=1 [12]=1") + word(40, gpuKHz),
        QStringLiteral("GPU_SetPstates20 gpu0 0x11C94 [8]=1 [12]=1 [28]=4") + word(40, memoryKHz),
        QStringLiteral("GPU_ClientThermalPoliciesSetStatus gpu0 0x20038 [4]=1 [8]=3") + word(12, rawTemperature) +
            QStringLiteral(" [16]=1"),
        QStringLiteral("GPU_ClientPowerPoliciesSetStatus gpu0 0x10048 [4]=1 [8]=2") + word(16, rawPower),
        QStringLiteral("GPU_SetPstates20 gpu0 0x31CF8 [8]=1 [16]=1") + word(392, microvolts),
    };
}

/// Everything at the values that the card has.
inline QStringList unchangedSettings()
{
    return settingCalls(0, 0, 80 * 256, 110000, 0);
}

/// Saved values, all beside the card's own, with a manual fan; and what they tell the driver beside the fan's level.
inline AdjustModuleInfo savedValues()
{
    AdjustModuleInfo saved;
    saved.GpuFreClock = 1707;
    saved.FanSpeedLevel = 60;
    saved.Voltage = 1072;
    saved.MemoryFreClock = 4106;
    saved.Power = 115;
    saved.Temperature = 85;
    saved.FanMode = 1;
    return saved;
}
inline QStringList savedSettings()
{
    return settingCalls(100000, 100000, 85 * 256, 115000, 10000);
}

/// A fan curve, and the levels that it and the default curve give for 52 degrees.
const QList<QPoint> kSteepCurve{{0, 0}, {52, 77}, {100, 100}};
constexpr int kSteepCurveLevel = 77;
constexpr int kDefaultCurveLevel = 52; // 50 and two thirtieths of 40
