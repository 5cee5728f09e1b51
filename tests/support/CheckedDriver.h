#pragma once

#include "simulated/Card.h"
#include "support/StandInDriver.h"

namespace simulated
{
class Operations;
}

/// A driver whose cards behave: a write changes what is read next, load makes heat, the LED controller shows a frame.
///
/// A call that no card would be asked fails the test when the driver goes. A test that makes such a call on purpose
/// takes the marks out, or says that it makes wrong calls.
class CheckedDriver : public StandInDriver
{
public:
    CheckedDriver(); ///< the built-in scene
    explicit CheckedDriver(const simulated::Scenario &scenario,
                           simulated::SimulatedClock::Kind clock = simulated::SimulatedClock::Manual);
    /// With a journal and a state file of its own.
    CheckedDriver(const simulated::Scenario &scenario, const simulated::DriverSettings &settings);
    ~CheckedDriver();

    [[nodiscard]] simulated::Card card(std::size_t index = 0) const; ///< a copy as of now
    void edit(std::size_t index, const std::function<void(simulated::Card &)> &change);
    void setHostility(const simulated::Hostility &hostility);

    /// For a test of what the driver itself makes of wrong calls.
    void expectsWrongCalls() { wrongCallsAreMeant = true; }
    /// The marks so far as "operation: what is wrong", each text once in the order of the calls. They count no more.
    QStringList takeViolations();

private:
    CheckedDriver(const std::shared_ptr<simulated::Operations> &cardMachine, const simulated::Scenario &scenario,
                  const simulated::DriverSettings &settings);

    std::shared_ptr<simulated::Operations> machine;
    bool wrongCallsAreMeant = false;
};
