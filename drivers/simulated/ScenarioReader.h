#pragma once

#include "simulated/Scenario.h"

#include <string>

namespace simulated
{

/// A scenario, or what is wrong with it: file, and line and column or the key's path.
struct ScenarioResult
{
    Scenario scenario;
    std::string error; ///< empty for a valid scenario; otherwise the scenario has no card
};

/// `fileName` only serves the message.
ScenarioResult readScenarioText(const std::string &text, const std::string &fileName);
ScenarioResult readScenarioFile(const std::string &path);

/// The default scene: one card with LEDs, LCD and board sensors, and a plain one.
Scenario builtInScenario();

} // namespace simulated
