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
                                 const std::function<std::string(const CallContext &)> &violation,
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
        if (subject.hasHandle && operation != Operation::NvAPI_GetAssociatedDisplayOutputId) {
            call.card = cardOf(subject.handle);
            call.handle = call.card        ? Call::Handle::Known
                          : subject.handle ? Call::Handle::Unknown
                                           : Call::Handle::Null;
        }
        if (subject.version)
            call.version = *subject.version;
        // Judged before a fault makes the call wait: it may end after the driver has been left.
        call.violation = violationOf(call, subject, violation);
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
    followSession(call);
    if (settings.keepCalls || journal.isOpen()) {
        if (isReadable(call, subject))
            call.arguments = describe();
        if (journal.isOpen())
            journal.write(journalLine(call));
        if (settings.keepCalls) {
            calls.push_back(call);
            if (!call.violation.empty())
                violations.push_back(call);
        }
    }
    writeState(operation == Operation::NvAPI_Unload || changesLights(call));
    return call.status;
}

NvAPI_Status DriverCore::refusal(const Call &call, const CallSubject &subject) const
{
    if (subject.nullPointer)
        return NVAPI_INVALID_ARGUMENT;
    if (call.handle == Call::Handle::Null)
        return NVAPI_INVALID_HANDLE;
    if (call.handle == Call::Handle::Unknown || (call.card && cards[*call.card].lost))
        return NVAPI_EXPECTED_PHYSICAL_GPU_HANDLE;
    if (call.version) {
        const std::vector<quint32> &known = driver.of(call.operation).versions;
        if (std::find(known.begin(), known.end(), *call.version) == known.end())
            return NVAPI_INCOMPATIBLE_STRUCT_VERSION;
    }
    return NVAPI_OK;
}

/// A record is looked into only when its version word says how much of it there is.
bool DriverCore::isReadable(const Call &call, const CallSubject &subject)
{
    const std::vector<quint32> &versions = recordVersions(call.operation);
    return !subject.nullPointer &&
           (!call.version || std::find(versions.begin(), versions.end(), *call.version) != versions.end());
}

std::string DriverCore::violationOf(const Call &call, const CallSubject &subject,
                                    const std::function<std::string(const CallContext &)> &violation) const
{
    if (session == Session::Closed && call.operation != Operation::NvAPI_Initialize)
        return "the driver is not started";
    const bool afterRefusal = call.operation == Operation::NvAPI_Initialize ||
                              call.operation == Operation::NvAPI_GetErrorMessage ||
                              call.operation == Operation::NvAPI_Unload;
    if (session == Session::Refused && !afterRefusal)
        return "the driver has refused to start";
    if (subject.nullPointer)
        return "null pointer";
    if (call.handle == Call::Handle::Unknown)
        return "unknown card handle";
    // These two go out without a look at the handle: the memory type, whose answer is for nobody, and the
    // over-voltage of a restore.
    if (call.handle == Call::Handle::Null && call.operation != Operation::NvAPI_GPU_GetRamType &&
        call.operation != Operation::NvAPI_GPU_SetPstates20)
        return "null card handle";
    if (!isReadable(call, subject))
        return "unknown version word";
    CallContext context;
    context.card = call.card ? &cards[*call.card] : nullptr;
    context.version = call.version.value_or(0);
    context.countsAreTrue = driver.hostility.count == 0;
    return violation(context);
}

void DriverCore::followSession(const Call &call)
{
    if (call.operation == Operation::NvAPI_Unload) {
        session = Session::Closed;
    } else if (call.operation == Operation::NvAPI_Initialize) {
        const bool refused = call.status == NVAPI_ERROR || call.status == NVAPI_LIBRARY_NOT_FOUND;
        if (!refused)
            session = Session::Open;
        else if (session == Session::Closed)
            session = Session::Refused;
    }
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
