#pragma once

#include "simulated/Call.h"
#include "simulated/CallRules.h"
#include "simulated/Card.h"
#include "simulated/FaultPlan.h"
#include "simulated/JournalFile.h"
#include "simulated/Scenario.h"
#include "simulated/SimulatedClock.h"
#include "simulated/StateFile.h"

#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace simulated
{

class Operations;

/// What can be told of a call from its arguments alone.
struct CallSubject
{
    void *handle = nullptr; ///< first argument, where that is a handle
    bool hasHandle = false;
    const quint32 *version = nullptr; ///< version word of the record, where there is one
    bool nullPointer = false;         ///< a pointer to write to or a record is null
};

/// The machine behind the entry points: cards, faults, clock, journal.
///
/// May be called from any thread. One mutex guards everything; a fault's delay is waited for without it,
/// so that a slow call does not hold up the calls of other threads.
class DriverCore
{
public:
    struct Settings
    {
        SimulatedClock::Kind clock = SimulatedClock::Wall;
        bool keepCalls = false;  ///< keep the calls in memory
        std::string journalPath; ///< appended to; empty: none
        std::string statePath;   ///< rewritten; empty: none
    };

    DriverCore(const Scenario &scenario, const Settings &settings);
    ~DriverCore();
    DriverCore(const DriverCore &) = delete;
    DriverCore &operator=(const DriverCore &) = delete;

    /// One call of the driver: faults, the checks that every operation shares, the operation, the journal.
    /// `violation` names what no card would be asked, from the arguments as they came in; `describe` tells the
    /// journal of them once the call has run.
    NvAPI_Status perform(Operation operation, const CallSubject &subject,
                         const std::function<std::string(const CallContext &)> &violation,
                         const std::function<NvAPI_Status(Operations &)> &run,
                         const std::function<nlohmann::ordered_json()> &describe);

    /// Runs something on the machine's parts while no call is under way.
    void edit(const std::function<void(DriverCore &)> &change);
    void advance(qint64 milliseconds);
    [[nodiscard]] bool isMissing(Operation operation);

    // ---- the parts; touch them only within `edit` or an operation ----

    [[nodiscard]] NvPhysicalGpuHandle cardHandle(std::size_t index) { return &handlePlaces.at(index); }
    [[nodiscard]] std::optional<quint32> cardOf(const void *handle) const; ///< also for a lost card
    [[nodiscard]] quint32 displayCount() const;
    void writeState(bool evenIfRecent); ///< to the state file, when there is one

    DriverParameters driver;
    std::vector<Card> cards;
    FaultPlan faults;
    std::vector<Call> calls;      ///< only grows when calls are kept
    std::vector<Call> violations; ///< the calls that no card would be asked; only grows when calls are kept

private:
    /// How far the driver has been started.
    enum class Session
    {
        Closed,
        Refused, ///< the start failed in a way that ends everything but the question why
        Open
    };

    [[nodiscard]] int threadNumber();
    [[nodiscard]] std::string violationOf(const Call &call, const CallSubject &subject,
                                          const std::function<std::string(const CallContext &)> &violation) const;
    [[nodiscard]] static bool isReadable(const Call &call, const CallSubject &subject);
    void followSession(const Call &call);
    [[nodiscard]] NvAPI_Status refusal(const Call &call, const CallSubject &subject) const;
    void catchUp(); ///< lets the cards run up to now

    Settings settings;
    std::mutex mutex; ///< guards all that follows and the public parts
    SimulatedClock clock;
    JournalFile journal;
    StateFile stateFile;
    std::map<std::thread::id, int> threads;
    Session session = Session::Closed;
    std::array<char, kNvApiMaxGpus> handlePlaces{}; ///< the address of each is a card's handle
};

} // namespace simulated
