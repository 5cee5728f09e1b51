#include "simulated/CardReader.h"

#include "simulated/JsonObject.h"

namespace simulated
{
namespace
{

constexpr double kWordMax = 4294967295.0;
constexpr double kMostMHz = 100000;
constexpr double kMostMillivolt = 10000;
constexpr double kMostW = 10000;
constexpr double kMostC = 1000;
constexpr double kMostRpm = 20000;

constexpr double kKHzPerMHz = 1000;
constexpr double kMicrovoltPerMillivolt = 1000;
constexpr double kThousandthsPerPercent = 1000;

void readPci(const JsonNode &node, PciParameters &pci)
{
    JsonObject keys(node);
    keys.number("deviceId", pci.deviceId, 0, kWordMax);
    keys.number("subSystemId", pci.subSystemId, 0, kWordMax);
    keys.number("revisionId", pci.revisionId, 0, kWordMax);
    keys.number("extDeviceId", pci.extDeviceId, 0, kWordMax);
    keys.finish();
}

void readMemory(const JsonNode &node, MemoryParameters &memory)
{
    JsonObject keys(node);
    keys.number("totalKB", memory.totalKB, 0, kWordMax);
    keys.number("reservedKB", memory.reservedKB, 0, kWordMax);
    keys.number("idleUsedKB", memory.idleUsedKB, 0, kWordMax);
    keys.number("loadUsedKB", memory.loadUsedKB, 0, kWordMax);
    keys.number("systemKB", memory.systemKB, 0, kWordMax);
    keys.number("sharedKB", memory.sharedKB, 0, kWordMax);
    keys.number("ramType", memory.ramType, 0, kWordMax);
    keys.number("busWidthBits", memory.busWidthBits, 0, kWordMax);
    keys.finish();
    if (memory.loadUsedKB > memory.totalKB)
        keys.failAt("loadUsedKB", "more than totalKB");
    if (memory.idleUsedKB > memory.loadUsedKB)
        keys.failAt("idleUsedKB", "more than loadUsedKB");
}

void readOffset(const JsonNode &node, OffsetRange &range, const char *minimumKey, const char *maximumKey, double most,
                double factor)
{
    JsonObject keys(node);
    keys.flag("editable", range.editable);
    keys.number(minimumKey, range.minimum, -most, most, factor);
    keys.number(maximumKey, range.maximum, -most, most, factor);
    keys.finish();
    if (range.minimum > range.maximum)
        keys.failAt(minimumKey, std::string("more than ") + maximumKey);
}

void readClocks(const JsonNode &node, ClockParameters &clocks)
{
    JsonObject keys(node);
    keys.number("idleMHz", clocks.idleKHz, 1, kMostMHz, kKHzPerMHz);
    keys.number("baseMHz", clocks.baseKHz, 1, kMostMHz, kKHzPerMHz);
    keys.number("boostMHz", clocks.boostKHz, 1, kMostMHz, kKHzPerMHz);
    keys.number("memoryIdleMHz", clocks.memoryIdleKHz, 1, kMostMHz, kKHzPerMHz);
    keys.number("memoryMHz", clocks.memoryKHz, 1, kMostMHz, kKHzPerMHz);
    keys.with("memoryType", [&](const JsonNode &entry) {
        clocks.memoryIsRange = entry.choice({"single", "range"}) == 1;
    });
    keys.with("graphicsOffset", [&](const JsonNode &entry) {
        readOffset(entry, clocks.graphicsOffsetKHz, "minMHz", "maxMHz", kMostMHz, kKHzPerMHz);
    });
    keys.with("memoryOffset", [&](const JsonNode &entry) {
        readOffset(entry, clocks.memoryOffsetKHz, "minMHz", "maxMHz", kMostMHz, kKHzPerMHz);
    });
    keys.numbers("pstateIds", clocks.pstateIds, 16, 0, 15);
    keys.finish();
    if (clocks.idleKHz > clocks.baseKHz)
        keys.failAt("idleMHz", "more than baseMHz");
    if (clocks.baseKHz > clocks.boostKHz)
        keys.failAt("baseMHz", "more than boostMHz");
}

void readVoltage(const JsonNode &node, VoltageParameters &voltage)
{
    JsonObject keys(node);
    keys.flag("present", voltage.present);
    keys.number("idleMillivolt", voltage.idle_uV, 0, kMostMillivolt, kMicrovoltPerMillivolt);
    keys.number("fullMillivolt", voltage.full_uV, 1, kMostMillivolt, kMicrovoltPerMillivolt);
    keys.with("offset", [&](const JsonNode &entry) {
        readOffset(entry, voltage.offset_uV, "minMillivolt", "maxMillivolt", kMostMillivolt, kMicrovoltPerMillivolt);
    });
    keys.with("overVoltage", [&](const JsonNode &entry) {
        readOffset(entry, voltage.overVoltage_uV, "minMillivolt", "maxMillivolt", kMostMillivolt,
                   kMicrovoltPerMillivolt);
    });
    keys.finish();
    if (voltage.idle_uV > voltage.full_uV)
        keys.failAt("idleMillivolt", "more than fullMillivolt");
}

void readPower(const JsonNode &node, PowerParameters &power)
{
    constexpr double kMostPercent = 1000;
    JsonObject keys(node);
    keys.flag("present", power.present);
    keys.number("nominalW", power.nominalW, 1, kMostW);
    keys.number("idleW", power.idleW, 0, kMostW);
    keys.number("fullLoadW", power.fullLoadW, 0, kMostW);
    keys.number("policyId", power.policyId, 0, kWordMax);
    keys.number("domainId", power.domainId, 0, kWordMax);
    keys.numbers("channelIds", power.channelIds, 4, 0, kWordMax);
    keys.number("minPercent", power.minimum, 0, kMostPercent, kThousandthsPerPercent);
    keys.number("defaultPercent", power.standard, 0, kMostPercent, kThousandthsPerPercent);
    keys.number("maxPercent", power.maximum, 0, kMostPercent, kThousandthsPerPercent);
    keys.finish();
    if (power.idleW > power.fullLoadW)
        keys.failAt("idleW", "more than fullLoadW");
    if (power.minimum > power.standard)
        keys.failAt("minPercent", "more than defaultPercent");
    if (power.standard > power.maximum)
        keys.failAt("defaultPercent", "more than maxPercent");
}

void readThermal(const JsonNode &node, ThermalParameters &thermal)
{
    JsonObject keys(node);
    keys.number("ambientC", thermal.ambientC, -kMostC, kMostC);
    keys.number("heatCapacityJK", thermal.heatCapacityJK, 0.1, 1e6);
    keys.number("stillConductanceWK", thermal.stillConductanceWK, 0.01, 1e4);
    keys.number("fullConductanceWK", thermal.fullConductanceWK, 0.01, 1e4);
    keys.with("pinnedC", [&](const JsonNode &entry) { thermal.pinnedC = entry.number(-kMostC, kMostC); });
    keys.number("sensorMinimumC", thermal.sensorMinimumC, -kMostC, kMostC);
    keys.number("sensorMaximumC", thermal.sensorMaximumC, -kMostC, kMostC);
    keys.numbers("sensorTargets", thermal.sensorTargets, 3, -1, 15);
    keys.flag("policyPresent", thermal.policyPresent);
    keys.number("policyId", thermal.policyId, 0, kWordMax);
    keys.number("minC", thermal.minimumC, -kMostC, kMostC);
    keys.number("defaultC", thermal.standardC, -kMostC, kMostC);
    keys.number("maxC", thermal.maximumC, -kMostC, kMostC);
    keys.finish();
    if (thermal.minimumC > thermal.standardC)
        keys.failAt("minC", "more than defaultC");
    if (thermal.standardC > thermal.maximumC)
        keys.failAt("defaultC", "more than maxC");
}

void readCurve(const JsonNode &node, std::vector<FanParameters::CurvePoint> &curve)
{
    curve.clear();
    for (const JsonNode &entry : node.list(1, 32)) {
        const std::vector<JsonNode> pair = entry.list(2, 2);
        const FanParameters::CurvePoint point = {pair[0].number(-kMostC, kMostC), pair[1].number(0, 100)};
        if (!curve.empty() &&
            (point.temperatureC < curve.back().temperatureC || point.percent < curve.back().percent))
            entry.fail("lower than the point before it");
        curve.push_back(point);
    }
}

void readFan(const JsonNode &node, FanParameters &fan)
{
    JsonObject keys(node);
    keys.number("count", fan.count, 0, 20);
    keys.flag("tachometer", fan.tachometer);
    keys.number("minPercent", fan.minimumPercent, 0, 100);
    keys.number("maxPercent", fan.maximumPercent, 0, 100);
    keys.number("minRpm", fan.minimumRpm, 0, kMostRpm);
    keys.number("maxRpm", fan.maximumRpm, 0, kMostRpm);
    keys.number("percentPerSecond", fan.percentPerSecond, 0.1, 1e6);
    keys.with("curve", [&](const JsonNode &entry) { readCurve(entry, fan.curve); });
    keys.finish();
    if (fan.minimumPercent > fan.maximumPercent)
        keys.failAt("minPercent", "more than maxPercent");
    if (fan.minimumRpm > fan.maximumRpm)
        keys.failAt("minRpm", "more than maxRpm");
}

LoadPart readLoadPart(const JsonNode &node)
{
    constexpr double kMostMs = 1e9;
    LoadPart part;
    JsonObject keys(node);
    const bool told = keys.with("kind", [&](const JsonNode &entry) {
        part.kind = static_cast<LoadPart::Kind>(entry.choice({"constant", "steps", "sine", "noise"}));
    });
    if (!told)
        keys.failAt("kind", "missing");
    if (part.kind == LoadPart::Steps) {
        const bool hasSteps = keys.with("steps", [&](const JsonNode &entry) {
            for (const JsonNode &step : entry.list(1, 1000)) {
                const std::vector<JsonNode> pair = step.list(2, 2);
                part.steps.push_back({pair[0].integer(1, static_cast<qint64>(kMostMs)), pair[1].number(-100, 100)});
            }
        });
        if (!hasSteps)
            keys.failAt("steps", "missing");
    } else {
        keys.number("percent", part.percent, -100, 100);
    }
    if (part.kind == LoadPart::Sine || part.kind == LoadPart::Noise) {
        keys.number("amplitudePercent", part.amplitudePercent, 0, 100);
        keys.number("periodMs", part.periodMs, 1, kMostMs);
    }
    if (part.kind == LoadPart::Noise)
        keys.number("seed", part.seed, 0, kWordMax);
    keys.finish();
    return part;
}

void readLoad(const JsonNode &node, LoadProfile &load)
{
    load.clear();
    if (!node.isList()) {
        load.push_back(readLoadPart(node));
        return;
    }
    for (const JsonNode &entry : node.list(0, 16))
        load.push_back(readLoadPart(entry));
}

BoardSensorParameters readBoardSensor(const JsonNode &node)
{
    BoardSensorParameters sensor;
    JsonObject keys(node);
    keys.number("address", sensor.address, 0, 255);
    keys.number("share", sensor.share, 0, 10);
    keys.with("pinnedC", [&](const JsonNode &entry) { sensor.pinnedC = entry.number(-128, 127.9375); });
    keys.finish();
    return sensor;
}

} // namespace

CardParameters readCard(const JsonNode &node, quint32 &copies)
{
    CardParameters card;
    JsonObject keys(node);
    keys.number("copies", copies, 1, 64);
    keys.text("name", card.name);
    keys.text("biosVersion", card.biosVersion);
    keys.flag("tcc", card.tcc);
    keys.number("displays", card.displays, 0, 100000);
    keys.with("pci", [&](const JsonNode &entry) { readPci(entry, card.pci); });
    keys.with("memory", [&](const JsonNode &entry) { readMemory(entry, card.memory); });
    keys.with("clocks", [&](const JsonNode &entry) { readClocks(entry, card.clocks); });
    keys.with("voltage", [&](const JsonNode &entry) { readVoltage(entry, card.voltage); });
    keys.with("power", [&](const JsonNode &entry) { readPower(entry, card.power); });
    keys.with("thermal", [&](const JsonNode &entry) { readThermal(entry, card.thermal); });
    keys.with("fan", [&](const JsonNode &entry) { readFan(entry, card.fan); });
    keys.with("load", [&](const JsonNode &entry) { readLoad(entry, card.load); });
    keys.numbers("utilizationDomains", card.utilizationDomains, 4, 0, 3);
    keys.with("boardSensors", [&](const JsonNode &entry) {
        for (const JsonNode &sensor : entry.list(0, 16))
            card.boardSensors.push_back(readBoardSensor(sensor));
    });
    keys.with("led", [&](const JsonNode &entry) {
        quint8 type = 3;
        JsonObject ledKeys(entry);
        ledKeys.number("type", type, 0, 255);
        ledKeys.finish();
        card.ledControllerType = type;
    });
    keys.flag("lcd", card.lcd);
    keys.finish();
    return card;
}

} // namespace simulated
