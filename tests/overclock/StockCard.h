#pragma once

#include "config/ConfigRecords.h"

#include <QList>
#include <QPoint>
#include <QStringList>
#include <QVector>

/// The card of the adjust page's tests: what its rows show from top to bottom, how far each goes, and what the page
/// orders it to do. Orders are lines of `StandInDriver::orders`.

constexpr int kStockGpuMHz = 1607;
constexpr int kStockFanPercent = 33; ///< by hand
constexpr int kStockMillivolt = 1062;
constexpr int kStockMemoryMHz = 4006;
constexpr int kStockPowerPercent = 110;
constexpr int kStockTargetC = 80;
const QVector<int> kStockRows{kStockGpuMHz,    kStockFanPercent,   kStockMillivolt,
                              kStockMemoryMHz, kStockPowerPercent, kStockTargetC};

constexpr int kDefaultPowerPercent = 100;
constexpr int kDefaultTargetC = 83;

struct ValueRange
{
    int lowest;
    int highest;
};
constexpr ValueRange kGpuOffsetKHz{-200000, 1000000};
constexpr ValueRange kMemoryOffsetKHz{-502000, 1000000};
constexpr ValueRange kVoltageOffsetMicrovolt{-100000, 100000};
constexpr ValueRange kPowerLimitPercent{50, 120};
constexpr ValueRange kTargetRangeC{60, 90};
constexpr ValueRange kFanRangePercent{27, 100};
constexpr int kGpuTemperatureC = 52;

const QString kFanAutoOrder = QStringLiteral("fan 33 % automatic");
const QString kFanManualOrder = QStringLiteral("fan 33 % manual");
const QString kFanHandedBack = QStringLiteral("fan 0 % automatic");

inline QString fanOrder(int percent)
{
    return QStringLiteral("fan %1 % manual").arg(percent);
}

inline QStringList fanThen(const QString &order, const QStringList &others)
{
    return QStringList{order} + others;
}

/// The orders that bring a card to clock offsets, limits and a voltage offset, as every apply gives them after the
/// fan's.
inline QStringList settingOrders(int gpuKHz, int memoryKHz, int celsius, int powerPercent, int microvolts)
{
    return {
        QStringLiteral("graphics offset %1 kHz").arg(gpuKHz), QStringLiteral("memory offset %1 kHz").arg(memoryKHz),
        QStringLiteral("temperature limit %1 C first").arg(celsius),
        QStringLiteral("power limit %1 %").arg(powerPercent), QStringLiteral("voltage offset %1 uV").arg(microvolts)};
}

/// Everything at the values that the card has.
inline QStringList unchangedSettings()
{
    return settingOrders(0, 0, kStockTargetC, kStockPowerPercent, 0);
}

/// Every setting at an end of its range, for a card whose rows are drawn or saved beyond it.
inline QStringList lowestSettings()
{
    return settingOrders(kGpuOffsetKHz.lowest, kMemoryOffsetKHz.lowest, kTargetRangeC.lowest,
                         kPowerLimitPercent.lowest, kVoltageOffsetMicrovolt.lowest);
}
inline QStringList highestSettings()
{
    return settingOrders(kGpuOffsetKHz.highest, kMemoryOffsetKHz.highest, kTargetRangeC.highest,
                         kPowerLimitPercent.highest, kVoltageOffsetMicrovolt.highest);
}
const QVector<int> kLowestRows{1407, 27, 962, 3504, 50, 60};
const QVector<int> kHighestRows{2607, 100, 1162, 5006, 120, 90};

/// Saved values, all beside the card's own, with a manual fan; and what they order beside the fan's level.
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
const QVector<int> kSavedRows{1707, 60, 1072, 4106, 115, 85};
inline QStringList savedSettings()
{
    return settingOrders(100000, 100000, 85, 115, 10000);
}

/// A fan curve, and the levels that it, the default curve and the driver's own control give for 52 degrees.
const QList<QPoint> kSteepCurve{{0, 0}, {52, 77}, {100, 100}};
constexpr int kSteepCurveLevel = 77;
constexpr int kDefaultCurveLevel = 52; // 50 and two thirtieths of 40
constexpr int kDriversLevel = 27;
