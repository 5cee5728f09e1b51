#include "simulated/Scenario.h"

namespace simulated
{

void DriverKnowledge::keepAllRecords()
{
    for (std::size_t i = 0; i < kOperationCount; ++i)
        operations[i].versions = recordVersions(static_cast<Operation>(i));
}

void DriverKnowledge::keepNewestRecords()
{
    keepAllRecords();
    for (OperationKnowledge &known : operations) {
        if (!known.versions.empty())
            known.versions = {known.versions.front()};
    }
}

void DriverKnowledge::keepOldestRecords()
{
    keepAllRecords();
    for (OperationKnowledge &known : operations) {
        if (!known.versions.empty())
            known.versions = {known.versions.back()};
    }
}

} // namespace simulated
