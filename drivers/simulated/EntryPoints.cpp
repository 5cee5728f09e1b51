#include "simulated/EntryPoints.h"

#include "simulated/CallArguments.h"
#include "simulated/CallRules.h"
#include "simulated/DriverCore.h"

#include <mutex>
#include <type_traits>
#include <utility>

namespace simulated
{
namespace
{

std::mutex activeMutex;
std::shared_ptr<DriverCore> activeCore; // guarded by activeMutex

std::shared_ptr<DriverCore> currentCore()
{
    const std::lock_guard<std::mutex> guard(activeMutex);
    return activeCore;
}

template <class Record, class = void>
struct HasVersion : std::false_type
{
};
template <class Record>
struct HasVersion<Record, std::void_t<decltype(std::declval<Record>().version)>> : std::true_type
{
};

template <class Argument>
void inspectArgument(CallSubject &subject, Argument argument)
{
    if constexpr (std::is_same_v<Argument, NvPhysicalGpuHandle>) {
        subject.handle = argument;
        subject.hasHandle = true;
    } else if constexpr (std::is_pointer_v<Argument>) {
        if (!argument)
            subject.nullPointer = true;
        else if constexpr (HasVersion<std::remove_pointer_t<Argument>>::value)
            subject.version = &argument->version;
    }
}

template <class... Arguments>
CallSubject inspect(Arguments... arguments)
{
    CallSubject subject;
    (inspectArgument(subject, arguments), ...);
    return subject;
}

// clang-format off
#define OVRYN_SIMULATED_ENTRY(identifier, name, parameters, arguments) \
    NvAPI_Status OVRYN_NVAPI_CALL enter_##name parameters \
    { \
        const std::shared_ptr<DriverCore> core = currentCore(); \
        if (!core) \
            return NVAPI_LIBRARY_NOT_FOUND; \
        return core->perform( \
            Operation::name, inspect arguments, \
            [&](const CallContext &context) { return CallRule<Operation::name>(context).broken arguments; }, \
            [&](Answers &answers) { return answers.name arguments; }, \
            [&] { return CallArguments<Operation::name>::of arguments; }); \
    }
OVRYN_NVAPI_OPERATIONS(OVRYN_SIMULATED_ENTRY)
#undef OVRYN_SIMULATED_ENTRY

struct Entry
{
    quint32 identifier;
    Operation operation;
    void *function;
};

const Entry kEntries[] = {
#define OVRYN_SIMULATED_ROW(identifier, name, parameters, arguments) \
    {identifier, Operation::name, reinterpret_cast<void *>(&enter_##name)},
    OVRYN_NVAPI_OPERATIONS(OVRYN_SIMULATED_ROW)
#undef OVRYN_SIMULATED_ROW
};
// clang-format on

} // namespace

void setActiveCore(std::shared_ptr<DriverCore> core)
{
    const std::lock_guard<std::mutex> guard(activeMutex);
    activeCore = std::move(core);
}

void removeActiveCore(const DriverCore *core)
{
    const std::lock_guard<std::mutex> guard(activeMutex);
    if (activeCore.get() == core)
        activeCore.reset();
}

void *OVRYN_NVAPI_CALL queryInterface(quint32 identifier)
{
    const std::shared_ptr<DriverCore> core = currentCore();
    for (const Entry &entry : kEntries) {
        if (entry.identifier == identifier)
            return !core || core->offers(entry.operation) ? entry.function : nullptr;
    }
    return nullptr;
}

} // namespace simulated
