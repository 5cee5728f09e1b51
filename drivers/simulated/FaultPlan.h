#pragma once

#include "simulated/Scenario.h"

#include <optional>
#include <vector>

namespace simulated
{

/// The faults of a scenario and how many calls each has seen.
class FaultPlan
{
public:
    struct Effect
    {
        std::optional<NvAPI_Status> status; ///< that of the first fault that strikes and has one
        qint64 delayMs = 0;                 ///< of all faults that strike together
    };

    void add(const Fault &fault) { entries.push_back({fault, 0}); }
    void clear() { entries.clear(); }

    /// Counts a call and returns what happens to it. `card` has no value for a call without a known card.
    Effect count(Operation operation, std::optional<quint32> card);

private:
    struct Entry
    {
        Fault fault;
        quint64 callsSeen = 0;
    };
    std::vector<Entry> entries;
};

} // namespace simulated
