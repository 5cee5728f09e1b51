#include "simulated/DriverCore.h"

#include <algorithm>
#include <utility>

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

/// The record as it is now, without the zeros at its end. Only for a record whose version word tells its size.
std::vector<quint8> contentOf(const CallSubject &subject)
{
    const auto *bytes = reinterpret_cast<const quint8 *>(subject.version);
    std::size_t size = nvApiRecordSize(*subject.version);
    while (size > 0 && bytes[size - 1] == 0)
        --size;
    return {bytes, bytes + size};
}

} // namespace

DriverCore::DriverCore(const Scenario &scenario, std::shared_ptr<Answers> cardAnswers, DriverSettings coreSettings)
    : knowledge(scenario.knowledge),
      settings(std::move(coreSettings)),
      answers(std::move(cardAnswers)),
      clock(settings.clock),
      journal(settings.journalPath),
      stateFile(settings.statePath)
{
    for (const Fault &fault : scenario.faults)
        faults.add(fault);
    writeState(true);
}

DriverCore::~DriverCore()
{
    writeState(true);
}

Call DriverCore::begin(Operation operation, const CallSubject &subject,
                       const std::function<std::string(const CallContext &)> &violation)
{
    const std::lock_guard<std::mutex> guard(mutex);
    Call call;
    call.operation = operation;
    call.timeMs = clock.elapsedMs();
    call.thread = threadNumber();
    if (subject.hasHandle && operation != Operation::NvAPI_GetAssociatedDisplayOutputId) {
        call.card = answers->cardOf(subject.handle);
        call.handle = call.card ? Call::Handle::Known : subject.handle ? Call::Handle::Unknown : Call::Handle::Null;
    }
    if (subject.version)
        call.version = *subject.version;
    // Judged before anything makes the call wait: it may end after the driver has been left.
    call.violation = violationOf(call, subject, violation);
    if (settings.onAnswer && subject.version && isReadable(call, subject))
        call.record = contentOf(subject);
    return call;
}

NvAPI_Status DriverCore::perform(Operation operation, const CallSubject &subject,
                                 const std::function<std::string(const CallContext &)> &violation,
                                 const std::function<NvAPI_Status(Answers &)> &run,
                                 const std::function<nlohmann::ordered_json()> &describe)
{
    Call call = begin(operation, subject, violation);
    std::optional<NvAPI_Status> imposed = settings.onCall ? settings.onCall(operation) : std::nullopt;

    std::unique_lock<std::mutex> guard(mutex);
    const FaultPlan::Effect effect = faults.count(operation, call.card);
    if (effect.delayMs > 0) {
        guard.unlock();
        std::this_thread::sleep_for(std::chrono::milliseconds(effect.delayMs));
        guard.lock();
    }
    if (!imposed)
        imposed = effect.status;

    answers->catchUp(clock.elapsedMs());
    answers->begin(call);
    call.status = imposed.value_or(NVAPI_OK);
    if (call.status == NVAPI_OK)
        call.status = refusal(call, subject);
    if (call.status == NVAPI_OK && !imposed)
        call.status = run(*answers);
    else if (knowledge.of(operation).fillsDespiteFailure && canBeAnswered(call, subject))
        run(*answers);
    followSession(call);
    if (settings.onAnswer || journal.isOpen()) {
        if (isReadable(call, subject))
            call.arguments = describe();
        if (journal.isOpen())
            journal.write(journalLine(call));
        if (settings.onAnswer)
            settings.onAnswer(call);
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
    if (call.handle == Call::Handle::Unknown || (call.card && answers->isLost(*call.card)))
        return NVAPI_EXPECTED_PHYSICAL_GPU_HANDLE;
    if (call.version) {
        const std::vector<quint32> &known = knowledge.of(call.operation).versions;
        if (std::find(known.begin(), known.end(), *call.version) == known.end())
            return NVAPI_INCOMPATIBLE_STRUCT_VERSION;
    }
    return NVAPI_OK;
}

bool DriverCore::canBeAnswered(const Call &call, const CallSubject &subject) const
{
    const NvAPI_Status reason = refusal(call, subject);
    // Of a version that the driver does not know the record is there all the same.
    return reason == NVAPI_OK || (reason == NVAPI_INCOMPATIBLE_STRUCT_VERSION && isReadable(call, subject));
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
    CallContext context = answers->contextOf(call.card);
    context.version = call.version.value_or(0);
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
    answers->catchUp(clock.elapsedMs());
    change(*this);
}

void DriverCore::advance(qint64 milliseconds)
{
    const std::lock_guard<std::mutex> guard(mutex);
    clock.push(milliseconds);
    answers->catchUp(clock.elapsedMs());
    writeState(false);
}

bool DriverCore::offers(Operation operation)
{
    const std::lock_guard<std::mutex> guard(mutex);
    ++queries[static_cast<std::size_t>(operation)];
    return !knowledge.of(operation).missing;
}

int DriverCore::queriesOf(Operation operation)
{
    const std::lock_guard<std::mutex> guard(mutex);
    return queries[static_cast<std::size_t>(operation)];
}

void DriverCore::writeState(bool evenIfRecent)
{
    if (stateFile.isDue(evenIfRecent))
        stateFile.write(answers->stateText(clock.elapsedMs()));
}

int DriverCore::threadNumber()
{
    const int next = static_cast<int>(threads.size()) + 1;
    return threads.emplace(std::this_thread::get_id(), next).first->second;
}

} // namespace simulated
