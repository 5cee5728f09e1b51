#pragma once

#include "device/DeviceRecords.h"

#include <QVector>
#include <QtTest>

#include <string>

Q_DECLARE_METATYPE(std::string)

namespace QTest
{

/// Lets a failing comparison of narrow texts show both.
template <>
inline char *toString(const std::string &text)
{
    return qstrdup(text.c_str());
}

} // namespace QTest

/// The fields of the device layer's small records as lists in declaration order, for comparing in one line.

using FieldList = QVector<qint32>;

inline FieldList fields(const NvClockSet &r)
{
    return {r.gpuClock, r.memoryClock, r.processorClock};
}

inline FieldList fields(const NvUsageInfo &r)
{
    return {r.gpu, r.frameBuffer, r.video, r.bus};
}

inline FieldList fields(const NvThermalInfo &r)
{
    return {r.defaultMinTemp, r.defaultMaxTemp, r.currentTemp};
}

inline FieldList fields(const NvMemoryInfo &r)
{
    return {r.usedKB, r.totalKB, r.freeKB, r.availableKB};
}

/// Without the two words that nothing fills.
inline FieldList fields(const NvCoolerInfo &r)
{
    return {r.defaultMaxLevel, r.defaultMinLevel, r.tachRpm, r.tachMin, r.tachMax, r.currentLevel, r.currentPolicy};
}

inline FieldList fields(const NvClockOffsetRange &r)
{
    return {r.baseClock, r.minOffset, r.maxOffset, r.editable};
}

inline FieldList fields(const NvVoltageInfo &r)
{
    return {r.maxVoltage, r.minVoltage, r.baseVoltage, r.baseVoltageAgain, r.currentVoltage, r.editable};
}

inline FieldList fields(const NvPowerInfo &r)
{
    return {r.minPower, r.maxPower, r.defaultPower, r.currentPower, r.topologyPower, r.policyId, r.present};
}

inline FieldList fields(const NvThermalPolicyInfo &r)
{
    return {r.minTemp, r.maxTemp, r.defaultTemp, r.currentTemp, r.priority, r.policyId, r.present};
}

inline FieldList fields(const NvBoardTemperatures &r)
{
    return {r.sensor9E, r.sensor90, r.sensor96, r.sensor92};
}

inline FieldList fields(const NvExtreme &r)
{
    return {r.maxValue, r.minValue};
}
