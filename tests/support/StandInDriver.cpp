#include "support/StandInDriver.h"

#include "simulated/DriverCore.h"
#include "simulated/EntryPoints.h"
#include "simulated/Hex.h"
#include "support/CallText.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <mutex>
#include <utility>

using simulated::Call;
using simulated::DriverCore;
using simulated::Fault;

namespace
{

bool isOrder(Operation operation)
{
    constexpr Operation orders[] = {
        Operation::NvAPI_GPU_SetCoolerLevels,
        Operation::NvAPI_GPU_SetPstates20,
        Operation::NvAPI_DriverEntry_B23B70EE,
        Operation::NvAPI_GPU_ClientPowerPoliciesSetStatus,
        Operation::NvAPI_GPU_ClientThermalPoliciesSetStatus,
    };
    return std::find(std::begin(orders), std::end(orders), operation) != std::end(orders);
}

} // namespace

/// What was asked, and what the test wants to happen meanwhile.
struct StandInDriver::Journal
{
    struct Entry
    {
        Call call;
        QString text;
    };

    template <class Condition>
    [[nodiscard]] std::vector<Call> callsWhere(const Condition &holds) const
    {
        const std::lock_guard<std::mutex> guard(mutex);
        std::vector<Call> list;
        for (const Entry &entry : entries) {
            if (holds(entry.call))
                list.push_back(entry.call);
        }
        return list;
    }
    template <class Condition>
    [[nodiscard]] QStringList textsWhere(const Condition &holds) const
    {
        const std::lock_guard<std::mutex> guard(mutex);
        QStringList list;
        for (const Entry &entry : entries) {
            if (holds(entry.call))
                list << entry.text;
        }
        return list;
    }

    mutable std::mutex mutex; ///< guards everything; taken after the core's
    std::vector<Entry> entries;
    QStringList violations;
    std::map<Operation, std::function<void()>> hooks;
    bool loaded = false;
    int loads = 0;
    int releases = 0;
    int strayCalls = 0;
};

StandInDriver::StandInDriver(const simulated::Scenario &scenario,
                             const std::shared_ptr<simulated::Answers> &cardAnswers,
                             simulated::DriverSettings settings, bool wantsNativeI2cSize)
    : journal(std::make_unique<Journal>()), answers(cardAnswers)
{
    settings.onCall = [this](Operation operation) {
        return meet(operation);
    };
    settings.onAnswer = [this](const Call &call) {
        const std::lock_guard<std::mutex> guard(journal->mutex);
        journal->entries.push_back({call, callText(call)});
        if (!call.violation.empty())
            journal->violations << operationText(call.operation) + QStringLiteral(": ") +
                                       QString::fromStdString(call.violation);
    };
    core = std::make_shared<DriverCore>(scenario, answers, settings);
    simulated::setActiveCore(core);
    plugIn(wantsNativeI2cSize);
}

StandInDriver::~StandInDriver()
{
    setNvApiLibrarySource({});
    simulated::removeActiveCore(core.get());
}

void StandInDriver::plugIn(bool wantsNativeI2cSize)
{
    NvApiLibrarySource source;
    source.load = [this]() -> NvApiQueryInterface {
        if (!libraryExists)
            return nullptr;
        const std::lock_guard<std::mutex> guard(journal->mutex);
        ++journal->loads;
        journal->loaded = true;
        return &simulated::queryInterface;
    };
    source.unload = [this] {
        if (onRelease)
            onRelease();
        const std::lock_guard<std::mutex> guard(journal->mutex);
        ++journal->releases;
        journal->loaded = false;
    };
    source.wantsNativeI2cSize = wantsNativeI2cSize;
    setNvApiLibrarySource(source);
}

std::optional<NvAPI_Status> StandInDriver::meet(Operation operation)
{
    std::function<void()> hook;
    {
        const std::lock_guard<std::mutex> guard(journal->mutex);
        const auto found = journal->hooks.find(operation);
        if (found != journal->hooks.end())
            hook = found->second;
    }
    if (hook)
        hook();
    {
        const std::lock_guard<std::mutex> guard(journal->mutex);
        if (!journal->loaded)
            ++journal->strayCalls;
    }
    return decides ? decides() : std::nullopt;
}

NvApiQueryInterface StandInDriver::queryInterface() const
{
    return &simulated::queryInterface;
}

NvPhysicalGpuHandle StandInDriver::handle(std::size_t card) const
{
    return answers->cardHandle(card);
}

void StandInDriver::advance(qint64 milliseconds)
{
    core->advance(milliseconds);
}

void StandInDriver::knows(Operation operation, std::vector<quint32> versions)
{
    core->edit([&](DriverCore &machine) { machine.knowledge.of(operation).versions = std::move(versions); });
}

void StandInDriver::knowsOldestRecords()
{
    core->edit([](DriverCore &machine) { machine.knowledge.keepOldestRecords(); });
}

void StandInDriver::knowsAllRecords()
{
    core->edit([](DriverCore &machine) { machine.knowledge.keepAllRecords(); });
}

void StandInDriver::lacks(Operation operation)
{
    core->edit([&](DriverCore &machine) { machine.knowledge.of(operation).missing = true; });
}

void StandInDriver::fails(Operation operation, NvAPI_Status status, int fromCall, int count)
{
    Fault fault;
    fault.operation = operation;
    fault.status = status;
    fault.from = quint64(fromCall);
    fault.count = quint64(count);
    addFault(fault);
}

void StandInDriver::answersInTurn(Operation operation, const std::vector<NvAPI_Status> &statuses)
{
    for (std::size_t i = 0; i < statuses.size(); ++i) {
        if (statuses[i] != NVAPI_OK)
            fails(operation, statuses[i], int(i) + 1, 1);
    }
}

void StandInDriver::fillsDespiteFailure(Operation operation)
{
    core->edit([&](DriverCore &machine) { machine.knowledge.of(operation).fillsDespiteFailure = true; });
}

void StandInDriver::addFault(const Fault &fault)
{
    core->edit([&](DriverCore &machine) { machine.faults.add(fault); });
}

void StandInDriver::clearFaults()
{
    core->edit([](DriverCore &machine) { machine.faults.clear(); });
}

void StandInDriver::onCall(Operation operation, const std::function<void()> &hook)
{
    const std::lock_guard<std::mutex> guard(journal->mutex);
    journal->hooks[operation] = hook;
}

QStringList StandInDriver::calls() const
{
    return journal->textsWhere([](const Call &) { return true; });
}

QStringList StandInDriver::calls(Operation operation) const
{
    return journal->textsWhere([operation](const Call &call) { return call.operation == operation; });
}

QStringList StandInDriver::orders() const
{
    QStringList list;
    for (const Call &call : journal->callsWhere([](const Call &each) { return isOrder(each.operation); }))
        list << orderText(call);
    return list;
}

QStringList StandInDriver::rawCalls() const
{
    QStringList lines;
    for (const Call &call : callRecords())
        lines << rawCallText(call);
    return lines;
}

QStringList StandInDriver::rawCalls(Operation operation) const
{
    QStringList lines;
    for (const Call &call : callRecords(operation))
        lines << rawCallText(call);
    return lines;
}

std::vector<Call> StandInDriver::callRecords() const
{
    return journal->callsWhere([](const Call &) { return true; });
}

std::vector<Call> StandInDriver::callRecords(Operation operation) const
{
    return journal->callsWhere([operation](const Call &call) { return call.operation == operation; });
}

QStringList StandInDriver::versionsTried(Operation operation) const
{
    QStringList words;
    for (const Call &call : callRecords(operation))
        words << versionText(call);
    return words;
}

QStringList StandInDriver::frames(quint8 address, std::optional<quint32> card) const
{
    QStringList list;
    const std::string wanted = simulated::hexWord(address);
    for (const Call &call : callRecords(Operation::NvAPI_I2CWrite)) {
        const nlohmann::ordered_json &arguments = call.arguments;
        if (card && call.card != card)
            continue;
        if (arguments.is_object() && arguments.value("address", std::string()) == wanted)
            list << QString::fromStdString(arguments.value("data", std::string()));
    }
    return list;
}

void StandInDriver::forgetCalls()
{
    const std::lock_guard<std::mutex> guard(journal->mutex);
    journal->entries.clear();
}

int StandInDriver::queries(Operation operation) const
{
    return core->queriesOf(operation);
}

int StandInDriver::loads() const
{
    const std::lock_guard<std::mutex> guard(journal->mutex);
    return journal->loads;
}

int StandInDriver::releases() const
{
    const std::lock_guard<std::mutex> guard(journal->mutex);
    return journal->releases;
}

int StandInDriver::strayCalls() const
{
    const std::lock_guard<std::mutex> guard(journal->mutex);
    return journal->strayCalls;
}

std::vector<Operation> StandInDriver::operations()
{
    std::vector<Operation> list;
    for (std::size_t i = 0; i < simulated::kOperationCount; ++i)
        list.push_back(static_cast<Operation>(i));
    return list;
}

void StandInDriver::whileNoCall(const std::function<void()> &change) const
{
    core->edit([&](DriverCore &) { change(); });
}

QStringList StandInDriver::takeViolationTexts()
{
    const std::lock_guard<std::mutex> guard(journal->mutex);
    return std::exchange(journal->violations, {});
}
