// The shared library's one export, and what it takes from the environment.

#include "simulated/DriverCore.h"
#include "simulated/EntryPoints.h"
#include "simulated/Operations.h"
#include "simulated/ScenarioReader.h"

#include <cstdlib>
#include <iostream>

#if defined(_WIN32)
#define OVRYN_SIMULATED_EXPORT extern "C" __declspec(dllexport)
#else
#define OVRYN_SIMULATED_EXPORT extern "C" __attribute__((visibility("default")))
#endif

namespace
{

std::string environment(const char *name)
{
    const char *value = std::getenv(name);
    return value ? value : "";
}

simulated::Scenario scenarioFromEnvironment()
{
    const std::string path = environment("NVAPI_SIM_SCENARIO");
    if (path.empty())
        return simulated::builtInScenario();
    const simulated::ScenarioResult result = simulated::readScenarioFile(path);
    if (!result.error.empty())
        std::cerr << "simulated driver: " << result.error << std::endl;
    return result.scenario;
}

/// The machine of this process. It lasts until the process ends, whatever is unloaded in between, as a
/// card does.
class Machine
{
public:
    Machine()
    {
        simulated::DriverSettings settings;
        settings.journalPath = environment("NVAPI_SIM_JOURNAL");
        settings.statePath = environment("NVAPI_SIM_STATE");
        const simulated::Scenario scenario = scenarioFromEnvironment();
        core = std::make_shared<simulated::DriverCore>(scenario, std::make_shared<simulated::Operations>(scenario),
                                                       settings);
        simulated::setActiveCore(core);
    }
    ~Machine() { simulated::removeActiveCore(core.get()); }
    Machine(const Machine &) = delete;
    Machine &operator=(const Machine &) = delete;

private:
    std::shared_ptr<simulated::DriverCore> core;
};

} // namespace

OVRYN_SIMULATED_EXPORT void *OVRYN_NVAPI_CALL nvapi_QueryInterface(quint32 identifier)
{
    static const Machine machine;
    return simulated::queryInterface(identifier);
}
