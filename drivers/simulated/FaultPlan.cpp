#include "simulated/FaultPlan.h"

namespace simulated
{
namespace
{

bool concerns(const Fault &fault, Operation operation, std::optional<quint32> card)
{
    return (!fault.operation || *fault.operation == operation) && (!fault.card || fault.card == card);
}

bool strikes(const Fault &fault, quint64 callNumber)
{
    const quint64 inPeriod = fault.every > 0 ? (callNumber - 1) % fault.every + 1 : callNumber;
    return inPeriod >= fault.from && (fault.count == 0 || inPeriod - fault.from < fault.count);
}

} // namespace

FaultPlan::Effect FaultPlan::count(Operation operation, std::optional<quint32> card)
{
    Effect effect;
    for (Entry &entry : entries) {
        if (!concerns(entry.fault, operation, card))
            continue;
        ++entry.callsSeen;
        if (!strikes(entry.fault, entry.callsSeen))
            continue;
        effect.delayMs += entry.fault.delayMs;
        if (!effect.status)
            effect.status = entry.fault.status;
    }
    return effect;
}

} // namespace simulated
