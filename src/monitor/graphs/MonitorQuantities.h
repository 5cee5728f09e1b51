#pragma once

#include "device/DeviceRecords.h"
#include "ui/Ovryn_LanguageTable.h"

#include <iterator>

/// One quantity of a card's monitor page.
struct MonitorQuantity
{
    NvMonitorValue NvCardBaseInfo::*value; ///< group of the live record
    const char *suffix;                    ///< behind each number
    QString Lang_Monitor::*title;
};

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
constexpr int kMonitorQuantityCount = int(std::size(kMonitorQuantities));

/// The bit of a group's quantity in a selection mask; 0 for a group that no quantity shows.
[[nodiscard]] constexpr int monitorQuantityBit(NvMonitorValue NvCardBaseInfo::*value)
{
    for (int i = 0; i < kMonitorQuantityCount; ++i) {
        if (kMonitorQuantities[i].value == value)
            return 1 << i;
    }
    return 0;
}
