#pragma once

#include "overclock/OverClockingParam.h"

#include <vector>

class NvGpuControl;

/// One order to a card, in the units of NvGpuControl's operations.
struct CardWrite
{
    enum Operation
    {
        CoolerLevel,       ///< `id` a cooler policy, `value` percent
        GpuClockOffset,    ///< `value` MHz
        MemoryClockOffset, ///< `value` MHz
        ThermalLimit,      ///< `id` a thermal policy, `value` degrees Celsius
        PowerLimit,        ///< `id` a power policy, `value` percent
        VoltageOffset,     ///< `value` microvolts
    };

    Operation operation;
    qint32 id; ///< 0 where the operation has none
    qint32 value;
};

/// The orders that bring a card to a snapshot, in the order in which they must reach it: the fan first, and the
/// voltage last. The user's fan curve gets no order here: its thread drives the fan. No order exceeds the range of
/// its row, and none depends on a value that was not read.
[[nodiscard]] std::vector<CardWrite> writesFor(const OverClockingParam &wanted);

/// Gives one order. False when the driver refused it. The effect of an accepted order shows when the card is read
/// again.
bool send(const CardWrite &write, NvGpuControl &gpu);

/// Reads everything of a card that a snapshot holds; the link and the fan mode keep their defaults. Limits that were
/// read only in part count as absent, and a clock or voltage that was not read gets its base value.
[[nodiscard]] OverClockingParam readSnapshot(NvGpuControl &gpu);
