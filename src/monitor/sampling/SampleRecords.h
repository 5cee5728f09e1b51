#pragma once

#include "device/DeviceRecords.h"

/// \file
/// How one cycle's readings become the records that the pages receive. Pure functions of the readings and
/// of the scales raised so far; any thread.

/// What the sampling worker read of a card in one cycle. A failed read is zero.
struct CardReadings
{
    NvMemoryInfo memory;
    NvThermalInfo thermal;
    NvClockSet clocks;
    NvCoolerInfo cooler;
    NvUsageInfo usage;
    NvExtremes extremes;
};

/// Which graph scales were raised. Each is set by the first value beyond its threshold and stays set.
struct ScaleLatches
{
    bool gpuClockScaleRaised = false;
    bool memClockScaleRaised = false;
    bool fanScaleRaised = false;
};

/// The live record of a cycle. Raises the latches that the readings call for before it takes the scales.
NvCardBaseInfo cardBaseInfoOf(const CardReadings &readings, ScaleLatches &latches);

/// The board sensors' record of a cycle; the extremes are taken after the sensors were read.
BoardTempCompleteInfo boardTempInfoOf(const NvBoardTemperatures &temperatures, const NvExtremes &extremes);
