#pragma once

#include "device/DeviceRecords.h"
#include "ui/Ovryn_LanguageTable.h"

#include <iterator>

/// One temperature sensor of the board.
struct BoardSensorQuantity
{
    NvMonitorValue BoardTempCompleteInfo::*value; ///< group of the sample, degrees Celsius
    QString Lang_BoardInfo::*title;
};

/// The sensors in the order of the rows, of the graphs and of the bits of a selection mask.
// clang-format off
constexpr BoardSensorQuantity kBoardSensors[] = {
    // group                            title
    {&BoardTempCompleteInfo::sensor9E,  &Lang_BoardInfo::mem1},
    {&BoardTempCompleteInfo::sensor90,  &Lang_BoardInfo::mem2},
    {&BoardTempCompleteInfo::sensor96,  &Lang_BoardInfo::coreMos},
    {&BoardTempCompleteInfo::sensor92,  &Lang_BoardInfo::memMos},
};
// clang-format on
constexpr int kBoardSensorCount = int(std::size(kBoardSensors));
