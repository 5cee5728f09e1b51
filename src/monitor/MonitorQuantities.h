#pragma once

#include "device/DeviceRecords.h"
#include "ui/Ovryn_LanguageTable.h"

/// One quantity of a card's monitor page.
struct MonitorQuantity
{
    NvMonitorValue NvCardBaseInfo::*value; ///< group of the live record
    const char *suffix;                    ///< behind each number
    QString Lang_Monitor::*title;
};

constexpr int kMonitorQuantityCount = 6;

/// The quantities in the order of the rows, of the graphs and of the bits of a selection mask.
// clang-format off
constexpr MonitorQuantity kMonitorQuantities[] = {
    // group                              suffix  title
    {&NvCardBaseInfo::gpuClock,           "",     &Lang_Monitor::gpuClock},
    {&NvCardBaseInfo::fanSpeed,           "",     &Lang_Monitor::fanSpeed},
    {&NvCardBaseInfo::temperature,        "",     &Lang_Monitor::temperature},
    {&NvCardBaseInfo::memoryClock,        "",     &Lang_Monitor::memoryClock},
    {&NvCardBaseInfo::memoryUsagePercent, "%",    &Lang_Monitor::memoryUsage},
    {&NvCardBaseInfo::gpuUsage,           "%",    &Lang_Monitor::gpuUsage},
};
// clang-format on
static_assert(sizeof(kMonitorQuantities) / sizeof(kMonitorQuantities[0]) == kMonitorQuantityCount,
              "one row a quantity");
