#include "monitor/sampling/SampleRecords.h"

#include "device/Arithmetic.h"
#include "device/Units.h"

namespace
{
constexpr qint32 kGpuClockScaleMHz = 2000;
constexpr qint32 kGpuClockRaisedScaleMHz = 3000;
constexpr qint32 kMemoryClockScaleMHz = 5000;
constexpr qint32 kMemoryClockRaisedScaleMHz = 10000;
// Half of the lower scale on purpose, where the clocks are raised only beyond theirs.
constexpr quint32 kFanThresholdRpm = 1500;
constexpr qint32 kFanScaleRpm = 3000;
constexpr qint32 kFanRaisedScaleRpm = 5000;
constexpr qint32 kTemperatureScale = 104;
constexpr qint32 kPercentScale = 100;
constexpr qint32 kBoardTemperatureScale = 100;

NvMonitorValue tracked(const NvExtremes &extremes, NvExtremeIndex index, qint32 currentValue, qint32 upperLimit)
{
    const NvExtreme &seen = extremes.pairs[index];
    return {seen.maxValue, seen.minValue, currentValue, upperLimit, 0};
}

qint32 percentOf(double partKB, quint32 totalKB)
{
    return totalKB == 0 ? 0 : cutToInt(partKB / totalKB * 100.0);
}
} // namespace

NvCardBaseInfo cardBaseInfoOf(const CardReadings &readings, ScaleLatches &latches)
{
    if (readings.clocks.gpuClock > kGpuClockScaleMHz)
        latches.gpuClockScaleRaised = true;
    if (readings.clocks.memoryClock > kMemoryClockScaleMHz)
        latches.memClockScaleRaised = true;
    if (static_cast<quint32>(readings.cooler.tachRpm) > kFanThresholdRpm)
        latches.fanScaleRaised = true;

    const NvExtremes &extremes = readings.extremes;
    NvCardBaseInfo info;
    info.gpuClock = tracked(extremes, ExtremeGpuClock, readings.clocks.gpuClock,
                            latches.gpuClockScaleRaised ? kGpuClockRaisedScaleMHz : kGpuClockScaleMHz);
    info.memoryClock = tracked(extremes, ExtremeMemoryClock, readings.clocks.memoryClock,
                               latches.memClockScaleRaised ? kMemoryClockRaisedScaleMHz : kMemoryClockScaleMHz);
    info.fanSpeed = tracked(extremes, ExtremeTachRpm, readings.cooler.tachRpm,
                            latches.fanScaleRaised ? kFanRaisedScaleRpm : kFanScaleRpm);
    info.temperature = tracked(extremes, ExtremeTemperature, readings.thermal.currentTemp, kTemperatureScale);
    info.gpuUsage = tracked(extremes, ExtremeGpuUsage, readings.usage.gpu, kPercentScale);

    // The driver's memory figures are unsigned words; the tracked extremes of them are signed.
    const auto usedKB = static_cast<quint32>(readings.memory.usedKB);
    const auto totalKB = static_cast<quint32>(readings.memory.totalKB);
    const NvExtreme &used = extremes.pairs[ExtremeMemoryUsed];
    info.memoryUsagePercent = {percentOf(used.maxValue, totalKB), percentOf(used.minValue, totalKB),
                               percentOf(usedKB, totalKB), kPercentScale, 0};
    info.memoryUsage = {used.maxValue / kKBPerMB, used.minValue / kKBPerMB, static_cast<qint32>(usedKB / kKBPerMB),
                        static_cast<qint32>(totalKB / kKBPerMB), 0};
    return info;
}

BoardTempCompleteInfo boardTempInfoOf(const NvBoardTemperatures &temperatures, const NvExtremes &extremes)
{
    return {tracked(extremes, ExtremeSensor9E, temperatures.sensor9E, kBoardTemperatureScale),
            tracked(extremes, ExtremeSensor90, temperatures.sensor90, kBoardTemperatureScale),
            tracked(extremes, ExtremeSensor96, temperatures.sensor96, kBoardTemperatureScale),
            tracked(extremes, ExtremeSensor92, temperatures.sensor92, kBoardTemperatureScale)};
}
