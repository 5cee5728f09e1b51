#include "simulated/SimulatedDriver.h"

#include "simulated/EntryPoints.h"
#include "simulated/ScenarioReader.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace simulated
{
namespace
{

DriverCore::Settings settingsFor(SimulatedClock::Kind clock)
{
    DriverCore::Settings settings;
    settings.clock = clock;
    settings.keepCalls = true;
    return settings;
}

} // namespace

SimulatedDriver::SimulatedDriver() : SimulatedDriver(builtInScenario()) {}

SimulatedDriver::SimulatedDriver(const Scenario &scenario, SimulatedClock::Kind clock)
    : SimulatedDriver(scenario, settingsFor(clock))
{
}

SimulatedDriver::SimulatedDriver(const Scenario &scenario, const DriverCore::Settings &settings)
    : core(std::make_shared<DriverCore>(scenario, settings))
{
    setActiveCore(core);
}

SimulatedDriver::~SimulatedDriver()
{
    removeActiveCore(core.get());
}

SimulatedDriver::QueryInterface SimulatedDriver::queryInterface() const
{
    return &simulated::queryInterface;
}

NvPhysicalGpuHandle SimulatedDriver::handle(std::size_t card) const
{
    return core->cardHandle(card);
}

void SimulatedDriver::advance(qint64 milliseconds)
{
    core->advance(milliseconds);
}

Card SimulatedDriver::card(std::size_t index) const
{
    Card copy{CardParameters()};
    core->edit([&](DriverCore &machine) { copy = machine.cards.at(index); });
    return copy;
}

void SimulatedDriver::edit(std::size_t index, const std::function<void(Card &)> &change)
{
    core->edit([&](DriverCore &machine) { change(machine.cards.at(index)); });
}

void SimulatedDriver::knows(Operation operation, std::vector<quint32> versions)
{
    core->edit([&](DriverCore &machine) { machine.driver.of(operation).versions = std::move(versions); });
}

void SimulatedDriver::knowsOldestRecords()
{
    core->edit([](DriverCore &machine) { machine.driver.keepOldestRecords(); });
}

void SimulatedDriver::knowsAllRecords()
{
    core->edit([](DriverCore &machine) { machine.driver.keepAllRecords(); });
}

void SimulatedDriver::lacks(Operation operation)
{
    core->edit([&](DriverCore &machine) { machine.driver.of(operation).missing = true; });
}

void SimulatedDriver::addFault(const Fault &fault)
{
    core->edit([&](DriverCore &machine) { machine.faults.add(fault); });
}

void SimulatedDriver::fails(Operation operation, NvAPI_Status status)
{
    Fault fault;
    fault.operation = operation;
    fault.status = status;
    addFault(fault);
}

void SimulatedDriver::clearFaults()
{
    core->edit([](DriverCore &machine) { machine.faults.clear(); });
}

void SimulatedDriver::setHostility(const Hostility &hostility)
{
    core->edit([&](DriverCore &machine) { machine.driver.hostility = hostility; });
}

std::vector<Call> SimulatedDriver::calls() const
{
    std::vector<Call> copy;
    core->edit([&](DriverCore &machine) { copy = machine.calls; });
    return copy;
}

std::vector<Call> SimulatedDriver::calls(Operation operation) const
{
    const std::vector<Call> all = calls();
    std::vector<Call> some;
    std::copy_if(all.begin(), all.end(), std::back_inserter(some),
                 [operation](const Call &call) { return call.operation == operation; });
    return some;
}

void SimulatedDriver::clearCalls()
{
    core->edit([](DriverCore &machine) { machine.calls.clear(); });
}

std::vector<std::string> SimulatedDriver::violations() const
{
    std::vector<std::string> texts;
    core->edit([&](DriverCore &machine) {
        for (const Call &call : machine.violations)
            texts.push_back(call.name() + ": " + call.violation);
    });
    return texts;
}

void SimulatedDriver::clearViolations()
{
    core->edit([](DriverCore &machine) { machine.violations.clear(); });
}

} // namespace simulated
