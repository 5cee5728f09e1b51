#include "simulated/ScenarioReader.h"

#include "simulated/BuiltInScene.h"
#include "simulated/CardReader.h"
#include "simulated/Hex.h"
#include "simulated/JsonObject.h"

#include <algorithm>
#include <fstream>
#include <iostream>
#include <sstream>

namespace simulated
{
namespace
{

constexpr double kWordMax = 4294967295.0;
constexpr qint64 kStatusMin = -1000000;
constexpr const char *kEveryOperation = "*";

Operation readOperation(const JsonNode &node, const std::string &name)
{
    const Operation operation = operationNamed(name);
    if (operation == Operation::Count)
        node.fail("no such operation");
    return operation;
}

void readVersions(const JsonNode &node, DriverKnowledge &knowledge)
{
    for (const auto &[name, entry] : JsonObject(node).entries()) {
        const Operation operation = readOperation(entry, name);
        const std::vector<quint32> &all = recordVersions(operation);
        std::vector<quint32> known;
        for (const JsonNode &word : entry.list(0, 16)) {
            const auto version = static_cast<quint32>(word.integer(0, static_cast<qint64>(kWordMax)));
            if (std::find(all.begin(), all.end(), version) == all.end())
                word.fail("the operation has no record version " + hexWord(version));
            known.push_back(version);
        }
        knowledge.of(operation).versions = known;
    }
}

void readChipset(const JsonNode &node, ChipsetParameters &chipset)
{
    JsonObject keys(node);
    keys.number("vendorId", chipset.vendorId, 0, kWordMax);
    keys.number("deviceId", chipset.deviceId, 0, kWordMax);
    keys.text("vendorName", chipset.vendorName);
    keys.text("chipsetName", chipset.chipsetName);
    keys.number("subSysVendorId", chipset.subSysVendorId, 0, kWordMax);
    keys.number("subSysDeviceId", chipset.subSysDeviceId, 0, kWordMax);
    keys.text("subSysVendorName", chipset.subSysVendorName);
    keys.finish();
}

void readHostility(const JsonNode &node, Hostility &hostility)
{
    JsonObject keys(node);
    keys.number("count", hostility.count, 0, kWordMax);
    keys.flag("unterminatedTexts", hostility.unterminatedTexts);
    keys.finish();
}

void readDriver(const JsonNode &node, DriverParameters &driver, DriverKnowledge &knowledge)
{
    JsonObject keys(node);
    keys.number("version", driver.version, 0, kWordMax);
    keys.text("branch", driver.branch);
    keys.number("timeScale", driver.timeScale, 0.001, 100000);
    keys.with("records", [&](const JsonNode &entry) {
        switch (entry.choice({"all", "newest", "oldest"})) {
        case 1:
            return knowledge.keepNewestRecords();
        case 2:
            return knowledge.keepOldestRecords();
        default:
            return knowledge.keepAllRecords();
        }
    });
    keys.with("versions", [&](const JsonNode &entry) { readVersions(entry, knowledge); });
    keys.with("missing", [&](const JsonNode &entry) {
        for (const JsonNode &name : entry.list(0, kOperationCount))
            knowledge.of(readOperation(name, name.text(63))).missing = true;
    });
    keys.with("chipset", [&](const JsonNode &entry) { readChipset(entry, driver.chipset); });
    keys.with("hostile", [&](const JsonNode &entry) { readHostility(entry, driver.hostility); });
    keys.finish();
}

Fault readFault(const JsonNode &node)
{
    constexpr double kMostCalls = 1e9;
    constexpr double kMostDelayMs = 600000;
    Fault fault;
    JsonObject keys(node);
    const bool told = keys.with("operation", [&](const JsonNode &entry) {
        const std::string name = entry.text(63);
        if (name != kEveryOperation)
            fault.operation = readOperation(entry, name);
    });
    if (!told)
        keys.failAt("operation", "missing");
    keys.with("card", [&](const JsonNode &entry) { fault.card = static_cast<quint32>(entry.integer(0, 63)); });
    keys.with("status", [&](const JsonNode &entry) {
        fault.status = static_cast<NvAPI_Status>(entry.integer(kStatusMin, -1));
    });
    keys.number("from", fault.from, 1, kMostCalls);
    keys.number("count", fault.count, 0, kMostCalls);
    keys.number("every", fault.every, 0, kMostCalls);
    keys.number("delayMs", fault.delayMs, 0, kMostDelayMs);
    keys.finish();
    if (!fault.status && fault.delayMs == 0)
        keys.failAt("status", "missing, and there is no delayMs either");
    return fault;
}

Scenario readScenario(const JsonNode &node)
{
    Scenario scenario;
    JsonObject keys(node);
    keys.with("driver", [&](const JsonNode &entry) { readDriver(entry, scenario.driver, scenario.knowledge); });
    const bool hasCards = keys.with("cards", [&](const JsonNode &entry) {
        for (const JsonNode &card : entry.list(0, kNvApiMaxGpus)) {
            quint32 copies = 1;
            const CardParameters parameters = readCard(card, copies);
            if (scenario.cards.size() + copies > kNvApiMaxGpus)
                card.fail("more than " + std::to_string(kNvApiMaxGpus) + " cards");
            scenario.cards.insert(scenario.cards.end(), copies, parameters);
        }
    });
    if (!hasCards)
        keys.failAt("cards", "missing");
    keys.with("faults", [&](const JsonNode &entry) {
        for (const JsonNode &fault : entry.list(0, 1000))
            scenario.faults.push_back(readFault(fault));
    });
    keys.finish();
    return scenario;
}

/// "12:5" for the place of a byte, counted from 1.
std::string placeOf(const std::string &text, std::size_t byte)
{
    const std::size_t end = std::min(byte > 0 ? byte - 1 : 0, text.size());
    const auto line = 1 + std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(end), '\n');
    const std::size_t lineStart = end == 0 ? std::string::npos : text.rfind('\n', end - 1);
    const std::size_t column = lineStart == std::string::npos ? end + 1 : end - lineStart;
    return std::to_string(line) + ":" + std::to_string(column);
}

/// The parser's own words without its code and its own account of the place.
std::string complaintOf(const nlohmann::json::parse_error &error)
{
    const std::string text = error.what();
    const std::size_t place = text.find("column ");
    const std::size_t colon = place == std::string::npos ? std::string::npos : text.find(": ", place);
    return colon == std::string::npos ? text : text.substr(colon + 2);
}

} // namespace

ScenarioResult readScenarioText(const std::string &text, const std::string &fileName)
{
    constexpr bool kCommentsAllowed = true;
    ScenarioResult result;
    try {
        const nlohmann::json root = nlohmann::json::parse(text, nullptr, true, kCommentsAllowed);
        result.scenario = readScenario(JsonNode(root, {}));
    } catch (const nlohmann::json::parse_error &error) {
        result.error = fileName + ":" + placeOf(text, error.byte) + ": " + complaintOf(error);
    } catch (const ScenarioError &error) {
        result.error = fileName + ": " + error.what();
    }
    return result;
}

ScenarioResult readScenarioFile(const std::string &path)
{
    const std::ifstream stream(path, std::ios::in | std::ios::binary);
    std::ostringstream text;
    if (stream.is_open())
        text << stream.rdbuf();
    if (!stream.is_open() || !text)
        return {Scenario(), path + ": cannot be read"};
    return readScenarioText(text.str(), path);
}

Scenario builtInScenario()
{
    const ScenarioResult result = readScenarioText(kBuiltInSceneText, "default-pair.json");
    if (!result.error.empty())
        std::cerr << "simulated driver: " << result.error << std::endl;
    return result.scenario;
}

} // namespace simulated
