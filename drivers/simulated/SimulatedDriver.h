#pragma once

#include "simulated/Call.h"
#include "simulated/Card.h"
#include "simulated/DriverCore.h"
#include "simulated/Scenario.h"

#include <functional>
#include <memory>
#include <vector>

namespace simulated
{

/// A driver with simulated cards for tests in the same process.
///
/// Give `queryInterface()` to whatever loads the driver library. The entry points are plain functions, so
/// the object constructed last is the one that they lead to; after its end they answer "library not
/// found". Every operation may be called from any thread. Its clock stands still unless it is told to run
/// with the wall clock: `advance` lets time pass, at once.
///
/// A derived class looks at `violations` at the end of a test, which is why this one cannot be used alone.
class SimulatedDriver
{
public:
    using QueryInterface = void *(OVRYN_NVAPI_CALL *)(quint32 identifier);

    /// The built-in scene.
    SimulatedDriver();
    explicit SimulatedDriver(const Scenario &scenario, SimulatedClock::Kind clock = SimulatedClock::Manual);
    SimulatedDriver(const Scenario &scenario, const DriverCore::Settings &settings);
    SimulatedDriver(const SimulatedDriver &) = delete;
    SimulatedDriver &operator=(const SimulatedDriver &) = delete;

    [[nodiscard]] QueryInterface queryInterface() const;

    /// The handle that the driver gives out for a card.
    [[nodiscard]] NvPhysicalGpuHandle handle(std::size_t card) const;

    // ---- time ----
    void advance(qint64 milliseconds); ///< real milliseconds; the scenario's time scale applies

    // ---- cards ----
    [[nodiscard]] Card card(std::size_t index) const; ///< a copy as of now
    void edit(std::size_t index, const std::function<void(Card &)> &change);

    // ---- what the driver knows ----
    void knows(Operation operation, std::vector<quint32> versions); ///< these version words and no others
    void knowsOldestRecords();
    void knowsAllRecords();
    void lacks(Operation operation); ///< the library has no such entry point
    void addFault(const Fault &fault);
    /// Every call of the operation answers `status` from now on.
    void fails(Operation operation, NvAPI_Status status);
    void clearFaults();
    void setHostility(const Hostility &hostility);

    // ---- what the driver was told ----
    [[nodiscard]] std::vector<Call> calls() const;
    [[nodiscard]] std::vector<Call> calls(Operation operation) const;
    void clearCalls();
    /// The calls that no card would be asked, as "operation: what is wrong"; `clearCalls` leaves them.
    [[nodiscard]] std::vector<std::string> violations() const;
    void clearViolations();

protected:
    ~SimulatedDriver();

private:
    std::shared_ptr<DriverCore> core;
};

} // namespace simulated
