#pragma once

#include "simulated/Answers.h"
#include "simulated/DriverSettings.h"
#include "simulated/FaultPlan.h"
#include "simulated/JournalFile.h"
#include "simulated/Scenario.h"
#include "simulated/StateFile.h"

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace simulated
{

/// What can be told of a call from its arguments alone.
struct CallSubject
{
    void *handle = nullptr; ///< first argument, where that is a handle
    bool hasHandle = false;
    const quint32 *version = nullptr; ///< version word of the record, where there is one
    bool nullPointer = false;         ///< a pointer to write to or a record is null
};

/// What every driver of ours has: its session, the versions that it knows, faults, clock and journal. What a call
/// that nothing stops is answered is the part of its `Answers`.
///
/// May be called from any thread. One mutex guards everything; a fault's delay is waited for without it,
/// so that a slow call does not hold up the calls of other threads.
class DriverCore
{
public:
    /// Knowledge and faults are those of the scenario.
    DriverCore(const Scenario &scenario, std::shared_ptr<Answers> answers, DriverSettings settings);
    ~DriverCore();
    DriverCore(const DriverCore &) = delete;
    DriverCore &operator=(const DriverCore &) = delete;

    /// One call of the driver: faults, the checks that every operation shares, the operation, the journal.
    /// `violation` names what no card would be asked, from the arguments as they came in; `describe` tells the
    /// journal of them once the call has run.
    NvAPI_Status perform(Operation operation, const CallSubject &subject,
                         const std::function<std::string(const CallContext &)> &violation,
                         const std::function<NvAPI_Status(Answers &)> &run,
                         const std::function<nlohmann::ordered_json()> &describe);

    /// Runs something on knowledge, faults and answers while no call is under way.
    void edit(const std::function<void(DriverCore &)> &change);
    void advance(qint64 milliseconds);
    /// Whether the library has the entry point; counts the question.
    [[nodiscard]] bool offers(Operation operation);
    [[nodiscard]] int queriesOf(Operation operation); ///< how often the entry point was asked for

    // ---- the parts; touch them only within `edit` ----
    DriverKnowledge knowledge;
    FaultPlan faults;

private:
    /// How far the driver has been started.
    enum class Session
    {
        Closed,
        Refused, ///< the start failed in a way that ends everything but the question why
        Open
    };

    [[nodiscard]] Call begin(Operation operation, const CallSubject &subject,
                             const std::function<std::string(const CallContext &)> &violation);
    [[nodiscard]] int threadNumber();
    [[nodiscard]] std::string violationOf(const Call &call, const CallSubject &subject,
                                          const std::function<std::string(const CallContext &)> &violation) const;
    [[nodiscard]] static bool isReadable(const Call &call, const CallSubject &subject);
    void followSession(const Call &call);
    [[nodiscard]] NvAPI_Status refusal(const Call &call, const CallSubject &subject) const;
    [[nodiscard]] bool canBeAnswered(const Call &call, const CallSubject &subject) const;
    void writeState(bool evenIfRecent); ///< to the state file, when there is one

    const DriverSettings settings;
    std::mutex mutex; ///< guards all that follows and the public parts
    const std::shared_ptr<Answers> answers;
    SimulatedClock clock;
    JournalFile journal;
    StateFile stateFile;
    std::map<std::thread::id, int> threads;
    Session session = Session::Closed;
    std::array<int, kOperationCount> queries{};
};

} // namespace simulated
