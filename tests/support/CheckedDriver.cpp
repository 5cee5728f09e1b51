#include "support/CheckedDriver.h"

#include "simulated/Operations.h"
#include "simulated/ScenarioReader.h"

#include <QtTest>

using simulated::Card;
using simulated::DriverSettings;
using simulated::Scenario;
using simulated::SimulatedClock;

CheckedDriver::CheckedDriver() : CheckedDriver(simulated::builtInScenario()) {}

CheckedDriver::CheckedDriver(const Scenario &scenario, SimulatedClock::Kind clock)
    : CheckedDriver(scenario, DriverSettings{clock, {}, {}, {}, {}})
{
}

CheckedDriver::CheckedDriver(const Scenario &scenario, const DriverSettings &settings)
    : CheckedDriver(std::make_shared<simulated::Operations>(scenario), scenario, settings)
{
}

CheckedDriver::CheckedDriver(const std::shared_ptr<simulated::Operations> &cardMachine, const Scenario &scenario,
                             const DriverSettings &settings)
    : StandInDriver(scenario, cardMachine, settings), machine(cardMachine)
{
}

CheckedDriver::~CheckedDriver()
{
    const QStringList left = takeViolations();
    if (!wrongCallsAreMeant && !left.isEmpty() && !QTest::currentTestFailed())
        QTest::qFail(qPrintable("no card would be asked this: " + left.join(", ")), __FILE__, __LINE__);
}

Card CheckedDriver::card(std::size_t index) const
{
    Card copy{simulated::CardParameters()};
    whileNoCall([&] { copy = machine->cards.at(index); });
    return copy;
}

void CheckedDriver::edit(std::size_t index, const std::function<void(Card &)> &change)
{
    whileNoCall([&] { change(machine->cards.at(index)); });
}

void CheckedDriver::setHostility(const simulated::Hostility &hostility)
{
    whileNoCall([&] { machine->driver.hostility = hostility; });
}

QStringList CheckedDriver::takeViolations()
{
    QStringList texts = takeViolationTexts();
    texts.removeDuplicates();
    return texts;
}
