#pragma once

#include "simulated/OperationList.h"
#include "simulated/SimulatedClock.h"

#include <functional>
#include <optional>
#include <string>

namespace simulated
{

struct Call;

/// How a driver runs, and who gets its calls.
struct DriverSettings
{
    SimulatedClock::Kind clock = SimulatedClock::Wall;
    std::string journalPath; ///< appended to; empty: none
    std::string statePath;   ///< rewritten; empty: none
    /// Called at the head of each call, on its thread and without the core's mutex. A status that it gives is the
    /// call's, in place of everything else.
    std::function<std::optional<NvAPI_Status>(Operation)> onCall;
    /// Gets each call as it was answered, within the core's mutex.
    std::function<void(const Call &)> onAnswer;
};

} // namespace simulated
