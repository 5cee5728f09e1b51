#include "simulated/Scenario.h"

namespace simulated
{

void DriverParameters::keepAllRecords()
{
    for (std::size_t i = 0; i < kOperationCount; ++i)
        knowledge[i].versions = recordVersions(static_cast<Operation>(i));
}

void DriverParameters::keepNewestRecords()
{
    keepAllRecords();
    for (OperationKnowledge &known : knowledge) {
        if (!known.versions.empty())
            known.versions = {known.versions.front()};
    }
}

void DriverParameters::keepOldestRecords()
{
    keepAllRecords();
    for (OperationKnowledge &known : knowledge) {
        if (!known.versions.empty())
            known.versions = {known.versions.back()};
    }
}

} // namespace simulated
