#pragma once

#include "DriverCalls.h"
#include "simulated/Call.h"
#include "support/CheckedDriver.h"

/// The operations of a driver that has been started. The start is not in its list of calls.
inline DriverCalls started(CheckedDriver &driver)
{
    const DriverCalls calls(driver.queryInterface());
    calls.NvAPI_Initialize();
    driver.forgetCalls();
    return calls;
}

/// One card at a steady load that starts when the clock does.
inline simulated::Scenario oneCardAtLoad(double percent)
{
    simulated::Scenario scenario;
    simulated::CardParameters card;
    card.load = {{simulated::LoadPart::Constant, percent, 0, 1000, 1, {}}};
    scenario.cards.push_back(card);
    return scenario;
}

/// One card with the LED controller, the LCD controller and the four board sensors.
inline simulated::Scenario oneBoardCard()
{
    simulated::Scenario scenario = oneCardAtLoad(0);
    simulated::CardParameters &card = scenario.cards.front();
    card.ledControllerType = 3;
    card.lcd = true;
    card.boardSensors = {{0x9E, 0.8, {}}, {0x90, 0.6, {}}, {0x96, 0.4, {}}, {0x92, 0.2, {}}};
    return scenario;
}

/// Two coolers, so that the older entries' strides show.
inline simulated::Scenario twoCoolerScene()
{
    simulated::Scenario scenario = oneBoardCard();
    scenario.cards.front().fan.count = 2;
    return scenario;
}
