#include "simulated/DriverCore.h"

#include "simulated/Operations.h"

#include <algorithm>

namespace simulated
{
namespace
{

/// A frame that the LED or LCD controller took: whoever looks at the state file is to see it at once.
bool changesLights(const Call &call)
{
    const bool write = call.operation == Operation::NvAPI_I2CWrite || call.operation == Operation::NvAPI_I2CWriteEx;
    return write && call.status == NVAPI_OK;
}

} // namespace

DriverCore::DriverCore(const Scenario &scenario, const Settings &coreSettings)
    : driver(scenario.driver),
      settings(coreSettings),
      clock(coreSettings.clock),
      journal(coreSettings.journalPath),
      stateFile(coreSettings.statePath)
{
    for (const CardParameters &parameters : scenario.cards) {
        if (cards.size() < kNvApiMaxGpus)
            cards.emplace_back(parameters);
    }
    for (const Fault &fault : scenario.faults)
        faults.add(fault);
    writeState(true);
}

DriverCore::~DriverCore()
{
    writeState(true);
}

NvAPI_Status DriverCore::perform(Operation operation, const CallSubject &subject,
                                 const std::function<NvAPI_Status(Operations &)> &run,
                                 const std::function<nlohmann::ordered_json()> &describe)
{
    Call call;
    call.operation = operation;
    FaultPlan::Effect effect;
    {
        const std::lock_guard<std::mutex> guard(mutex);
        call.timeMs = clock.elapsedMs();
        call.thread = threadNumber();
        if (subject.hasHandle)
            call.card = cardOf(subject.handle);
        if (subject.version)
            call.version = *subject.version;
        effect = faults.count(operation, call.card);
    }
    if (effect.delayMs > 0)
        std::this_thread::sleep_for(std::chrono::milliseconds(effect.delayMs));

    const std::lock_guard<std::mutex> guard(mutex);
    catchUp();
    call.status = effect.status.value_or(NVAPI_OK);
    if (call.status == NVAPI_OK)
        call.status = refusal(call, subject);
    if (call.status == NVAPI_OK && !effect.status) {
        Operations operations(*this, call);
        call.status = run(operations);
    }
    if (settings.keepCalls || journal.isOpen()) {
        // a record is looked into only when its version word says how much of it there is
        const std::vector<quint32> &versions = recordVersions(operation);
        const bool readable = !subject.nullPointer && (!call.version || std::find(versions.begin(), versions.end(),
                                                                                  *call.version) != versions.end());
        if (readable)
            call.arguments = describe();
        if (journal.isOpen())
            journal.write(journalLine(call));
        if (settings.keepCalls)
            calls.push_back(call);
    }
    writeState(operation == Operation::NvAPI_Unload || changesLights(call));
    return call.status;
}

NvAPI_Status DriverCore::refusal(const Call &call, const CallSubject &subject) const
{
    if (subject.nullPointer)
        return NVAPI_INVALID_ARGUMENT;
    if (subject.hasHandle && call.operation != Operation::NvAPI_GetAssociatedDisplayOutputId) {
        if (!subject.handle)
            return NVAPI_INVALID_HANDLE;
        if (!call.card || cards[*call.card].lost)
            return NVAPI_EXPECTED_PHYSICAL_GPU_HANDLE;
    }
    if (call.version) {
        const std::vector<quint32> &known = driver.of(call.operation).versions;
        if (std::find(known.begin(), known.end(), *call.version) == known.end())
            return NVAPI_INCOMPATIBLE_STRUCT_VERSION;
    }
    return NVAPI_OK;
}

void DriverCore::edit(const std::function<void(DriverCore &)> &change)
{
    const std::lock_guard<std::mutex> guard(mutex);
    catchUp();
    change(*this);
}

void DriverCore::advance(qint64 milliseconds)
{
    const std::lock_guard<std::mutex> guard(mutex);
    clock.push(milliseconds);
    catchUp();
    writeState(false);
}

bool DriverCore::isMissing(Operation operation)
{
    const std::lock_guard<std::mutex> guard(mutex);
    return driver.of(operation).missing;
}

std::optional<quint32> DriverCore::cardOf(const void *handle) const
{
    for (std::size_t i = 0; i < cards.size(); ++i) {
        if (handle == &handlePlaces[i])
            return static_cast<quint32>(i);
    }
    return std::nullopt;
}

quint32 DriverCore::displayCount() const
{
    quint32 count = 0;
    for (const Card &card : cards)
        count += card.parameters.tcc ? 0 : card.parameters.displays;
    return count;
}

void DriverCore::writeState(bool evenIfRecent)
{
    if (stateFile.isDue(evenIfRecent))
        stateFile.write(stateText(cards, clock.elapsedMs()));
}

int DriverCore::threadNumber()
{
    const int next = static_cast<int>(threads.size()) + 1;
    return threads.emplace(std::this_thread::get_id(), next).first->second;
}

void DriverCore::catchUp()
{
    const double simulatedMs = static_cast<double>(clock.elapsedMs()) * driver.timeScale;
    for (Card &card : cards)
        card.advanceTo(simulatedMs);
}

} // namespace simulated
