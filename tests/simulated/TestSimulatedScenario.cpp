#include "TestScenes.h"

#include "simulated/ScenarioReader.h"

#include <QDir>
#include <QtTest>

using namespace simulated;

class TestSimulatedScenario : public QObject
{
    Q_OBJECT

private slots:
    void shippedScenesParse_data();
    void shippedScenesParse();
    void builtInSceneIsTheDefaultPair();
    void builtInCardsMove();
    void values();
    void recordChoices_data();
    void recordChoices();
    void mistakes_data();
    void mistakes();
    void unreadableFile();
};

void TestSimulatedScenario::shippedScenesParse_data()
{
    QTest::addColumn<QString>("path");
    const QDir folder(OVRYN_SCENES);
    const QStringList files = folder.entryList({"*.json"}, QDir::Files);
    const QStringList expected = {"default-pair.json",   "flaky-driver.json",        "foreign-card.json",
                                  "hostile-driver.json", "identical-pair.json",      "no-card.json",
                                  "old-driver.json",     "single-memory-clock.json", "tcc-pair.json"};
    QCOMPARE(files, expected);
    for (const QString &file : files)
        QTest::newRow(qPrintable(file)) << folder.filePath(file);
}

void TestSimulatedScenario::shippedScenesParse()
{
    QFETCH(QString, path);
    const ScenarioResult result = readScenarioFile(path.toStdString());
    QCOMPARE(QString::fromStdString(result.error), QString());
    QCOMPARE(result.scenario.cards.empty(), path.endsWith("no-card.json"));
}

void TestSimulatedScenario::builtInSceneIsTheDefaultPair()
{
    const Scenario scenario = builtInScenario();
    QCOMPARE(scenario.cards.size(), std::size_t(2));
    const CardParameters &own = scenario.cards[0];
    QCOMPARE(own.name, std::string("GeForce GTX 1070 Ti"));
    QCOMPARE(own.pci.subSystemId, 0x111D7377u);
    QCOMPARE(int(own.ledControllerType.value()), 3);
    QVERIFY(own.lcd);
    QVERIFY(own.clocks.memoryIsRange);
    std::vector<int> addresses;
    for (const BoardSensorParameters &sensor : own.boardSensors)
        addresses.push_back(sensor.address);
    QVERIFY((addresses == std::vector<int>{0x9E, 0x90, 0x96, 0x92}));
    const CardParameters &foreign = scenario.cards[1];
    QVERIFY((foreign.pci.subSystemId & 0xFFFF) != 0x7377);
    QVERIFY(!foreign.ledControllerType);
    QVERIFY(!foreign.lcd);
    QVERIFY(foreign.boardSensors.empty());
    QVERIFY(foreign.name != own.name);
}

void TestSimulatedScenario::builtInCardsMove()
{
    for (const CardParameters &parameters : builtInScenario().cards) {
        Card card(parameters);
        double least[4] = {1e9, 1e9, 1e9, 1e9};
        double most[4] = {};
        for (int second = 0; second < 120; ++second) {
            card.advanceTo(second * 1000);
            const double readings[4] = {card.state.loadPercent, card.state.graphicsKHz / 1000.0,
                                        card.state.temperatureC, double(card.fanRpm())};
            for (int i = 0; i < 4; ++i) {
                least[i] = std::min(least[i], readings[i]);
                most[i] = std::max(most[i], readings[i]);
            }
        }
        QVERIFY(most[0] - least[0] > 60);
        QVERIFY(most[1] - least[1] > 1000);
        QVERIFY2(most[2] - least[2] > 20 && most[2] < 80, qPrintable(QString::number(most[2])));
        QVERIFY(most[3] - least[3] > 300);
    }
}

void TestSimulatedScenario::values()
{
    const ScenarioResult result = readScenarioText(R"({
        "driver": { "version": 40000, "branch": "b", "timeScale": 2.5, "missing": ["NvAPI_I2CRead"],
                    "versions": { "NvAPI_GPU_GetMemoryInfo": ["0x10014"], "NvAPI_GPU_GetPstates20": [] },
                    "chipset": { "vendorId": "0x10", "vendorName": "maker" },
                    "hostile": { "count": 99, "unterminatedTexts": true } },
        "cards": [ {
            "copies": 2, "name": "n", "biosVersion": "v", "tcc": true, "displays": 3,
            "pci": { "deviceId": 1, "subSystemId": "0xABCD1234", "revisionId": 2, "extDeviceId": 3 },
            "memory": { "totalKB": 4294967295, "reservedKB": 5, "idleUsedKB": 6, "loadUsedKB": 7, "systemKB": 8,
                        "sharedKB": 9, "ramType": 10, "busWidthBits": 11 },
            "clocks": { "idleMHz": 100.5, "baseMHz": 200, "boostMHz": 300, "memoryIdleMHz": 400, "memoryMHz": 500,
                        "memoryType": "single", "graphicsOffset": { "editable": false, "minMHz": 0, "maxMHz": 0 },
                        "memoryOffset": { "minMHz": -10, "maxMHz": 20 }, "pstateIds": [8, 0] },
            "voltage": { "present": false, "idleMillivolt": 500, "fullMillivolt": 900,
                         "offset": { "minMillivolt": -12.5, "maxMillivolt": 50 } },
            "power": { "present": false, "nominalW": 100, "idleW": 1, "fullLoadW": 90, "policyId": 4, "domainId": 5,
                       "channelIds": [5], "minPercent": 40, "defaultPercent": 90, "maxPercent": 110.5 },
            "thermal": { "ambientC": 20, "pinnedC": 64, "sensorTargets": [2, 1], "policyPresent": false,
                         "policyId": 6, "minC": 50, "defaultC": 70, "maxC": 80 },
            "fan": { "count": 2, "tachometer": false, "minPercent": 10, "maxPercent": 90, "minRpm": 100,
                     "maxRpm": 2000, "curve": [[0, 30], [90, 100]] },
            "load": { "kind": "steps", "steps": [[100, 5]] },
            "utilizationDomains": [0],
            "boardSensors": [ { "address": "0x9E", "pinnedC": -0.5 } ],
            "led": { "type": 2 }, "lcd": true
        } ],
        "faults": [ { "operation": "NvAPI_I2CRead", "card": 1, "status": -9, "from": 2, "count": 3, "every": 4,
                      "delayMs": 5 }, { "operation": "*", "status": -1 } ]
    })",
                                                   "s.json");
    QCOMPARE(QString::fromStdString(result.error), QString());
    const DriverParameters &driver = result.scenario.driver;
    QCOMPARE(driver.version, 40000u);
    QCOMPARE(driver.timeScale, 2.5);
    QVERIFY(result.scenario.knowledge.of(Operation::NvAPI_I2CRead).missing);
    QVERIFY(result.scenario.knowledge.of(Operation::NvAPI_GPU_GetMemoryInfo).versions ==
            std::vector<quint32>{0x10014});
    QVERIFY(result.scenario.knowledge.of(Operation::NvAPI_GPU_GetPstates20).versions.empty());
    QCOMPARE(driver.chipset.vendorId, 0x10u);
    QCOMPARE(driver.hostility.count, 99u);
    QVERIFY(driver.hostility.unterminatedTexts);

    QCOMPARE(result.scenario.cards.size(), std::size_t(2));
    const CardParameters &card = result.scenario.cards[1];
    QVERIFY(card.tcc);
    QCOMPARE(card.displays, 3u);
    QCOMPARE(card.pci.subSystemId, 0xABCD1234u);
    QCOMPARE(card.memory.totalKB, 4294967295u);
    QCOMPARE(card.clocks.idleKHz, 100500u);
    QVERIFY(!card.clocks.memoryIsRange);
    QVERIFY(!card.clocks.graphicsOffsetKHz.editable);
    QCOMPARE(card.clocks.memoryOffsetKHz.minimum, -10000);
    QVERIFY((card.clocks.pstateIds == std::vector<quint32>{8, 0}));
    QVERIFY(!card.voltage.present);
    QCOMPARE(card.voltage.offset_uV.minimum, -12500);
    QCOMPARE(card.power.maximum, 110500u);
    QVERIFY(card.power.channelIds == std::vector<quint32>{5});
    QCOMPARE(card.thermal.pinnedC.value(), 64.0);
    QCOMPARE(card.thermal.standardC, 70);
    QCOMPARE(card.fan.curve.back().percent, 100.0);
    QCOMPARE(card.load.front().steps.front().durationMs, qint64(100));
    QCOMPARE(card.boardSensors.front().pinnedC.value(), -0.5);
    QCOMPARE(int(card.ledControllerType.value()), 2);

    QCOMPARE(result.scenario.faults.size(), std::size_t(2));
    const Fault &fault = result.scenario.faults.front();
    QVERIFY(fault.operation == Operation::NvAPI_I2CRead);
    QCOMPARE(fault.card.value(), 1u);
    QCOMPARE(fault.status.value(), -9);
    QCOMPARE(fault.every, quint64(4));
    QCOMPARE(fault.delayMs, qint64(5));
    QVERIFY(!result.scenario.faults.back().operation);
}

void TestSimulatedScenario::recordChoices_data()
{
    QTest::addColumn<QByteArray>("choice");
    QTest::addColumn<int>("count");
    QTest::addColumn<quint32>("first");
    QTest::newRow("all") << QByteArray("all") << 5 << kCoolerSettingsVersion4;
    QTest::newRow("newest") << QByteArray("newest") << 1 << kCoolerSettingsVersion4;
    QTest::newRow("oldest") << QByteArray("oldest") << 1 << kCoolerSettingsVersion1Small;
}

void TestSimulatedScenario::recordChoices()
{
    QFETCH(QByteArray, choice);
    QFETCH(int, count);
    QFETCH(quint32, first);
    const QByteArray text = R"({"cards": [], "driver": {"records": ")" + choice + R"("}})";
    const ScenarioResult result = readScenarioText(text.toStdString(), "s.json");
    QCOMPARE(QString::fromStdString(result.error), QString());
    const std::vector<quint32> &known = result.scenario.knowledge.of(Operation::NvAPI_GPU_GetCoolerSettings).versions;
    QCOMPARE(int(known.size()), count);
    QCOMPARE(known.front(), first);
}

void TestSimulatedScenario::mistakes_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("message"); // its beginning
    const auto row = [](const char *name, const char *text, const char *message) {
        QTest::newRow(name) << QByteArray(text) << QString(message);
    };
    const auto inSecondCard = [&row](const char *name, const char *keys, const char *message) {
        const QByteArray text = QByteArray(R"({"cards": [{}, {)") + keys + "}]}";
        row(name, text.constData(), message);
    };
    row("empty file", "", "s.json:1:1: syntax error");
    row("syntax on the first line", "{,}", "s.json:1:2: syntax error");
    row("syntax further down", "{\n  \"cards\": [\n    {]\n", "s.json:3:6: syntax error");
    row("cut off", "{\n\"cards\": [", "s.json:2:11: syntax error");
    row("no object", "[]", "s.json: the scenario: expected an object, found []");
    row("no cards", "{}", "s.json: cards: missing");
    row("cards no list", R"({"cards": {}})", "s.json: cards: expected a list of 0 to 64 entries, found {}");
    row("card no object", R"({"cards": [7]})", "s.json: cards[0]: expected an object, found 7");
    row("unknown key at the top", R"({"cards": [], "card": 1})", "s.json: card: unknown key");
    row("too many cards", R"({"cards": [{"copies": 64}, {}]})", "s.json: cards[1]: more than 64 cards");
    inSecondCard("unknown key in a card", R"("fans": 1)", "s.json: cards[1].fans: unknown key");
    inSecondCard("unknown key further in", R"("fan": {"rpm": 1})", "s.json: cards[1].fan.rpm: unknown key");
    inSecondCard("text for a number", R"("fan": {"maxRpm": "fast"})",
                 "s.json: cards[1].fan.maxRpm: expected a whole number from 0 to 20000, found \"fast\"");
    inSecondCard("number out of range", R"("fan": {"maxRpm": 20001})",
                 "s.json: cards[1].fan.maxRpm: expected a whole number from 0 to 20000, found 20001");
    inSecondCard("fraction for a whole number", R"("fan": {"maxRpm": 1.5})", "s.json: cards[1].fan.maxRpm: expected");
    inSecondCard("number beyond 64 bits", R"("fan": {"maxRpm": 18446744073709551615})",
                 "s.json: cards[1].fan.maxRpm: expected");
    inSecondCard("number for a flag", R"("tcc": 1)", "s.json: cards[1].tcc: expected true or false, found 1");
    inSecondCard("number for a text", R"("name": 5)",
                 "s.json: cards[1].name: expected a text of at most 63 characters, found 5");
    inSecondCard("bad hexadecimal", R"("pci": {"deviceId": "0x12G"})", "s.json: cards[1].pci.deviceId: expected");
    inSecondCard("hexadecimal too long", R"("pci": {"deviceId": "0x123456789"})",
                 "s.json: cards[1].pci.deviceId: expected");
    inSecondCard("unknown memory type", R"("clocks": {"memoryType": "double"})",
                 "s.json: cards[1].clocks.memoryType: expected one of \"single\", \"range\", found \"double\"");
    inSecondCard("range upside down", R"("clocks": {"memoryOffset": {"minMHz": 5, "maxMHz": 4}})",
                 "s.json: cards[1].clocks.memoryOffset.minMHz: more than maxMHz");
    inSecondCard("power range upside down", R"("power": {"minPercent": 130})",
                 "s.json: cards[1].power.minPercent: more than defaultPercent");
    inSecondCard("falling curve", R"("fan": {"curve": [[50, 30], [60, 20]]})",
                 "s.json: cards[1].fan.curve[1]: lower than the point before it");
    inSecondCard("curve point of three", R"("fan": {"curve": [[50, 30, 1]]})",
                 "s.json: cards[1].fan.curve[0]: expected a list of 2 to 2 entries");
    inSecondCard("load without a kind", R"("load": {"percent": 4})", "s.json: cards[1].load.kind: missing");
    inSecondCard("step of no time", R"("load": [{"kind": "steps", "steps": [[0, 4]]}])",
                 "s.json: cards[1].load[0].steps[0][0]: expected a whole number from 1");
    inSecondCard("more memory in use than there is", R"("memory": {"totalKB": 100})",
                 "s.json: cards[1].memory.loadUsedKB: more than totalKB");
    row("unknown operation", R"({"cards": [], "driver": {"missing": ["NvAPI_Nothing"]}})",
        "s.json: driver.missing[0]: no such operation");
    row("version that never was",
        R"({"cards": [], "driver": {"versions": {"NvAPI_GPU_GetMemoryInfo": ["0x40020"]}}})",
        "s.json: driver.versions.NvAPI_GPU_GetMemoryInfo[0]: the operation has no record version 0x40020");
    row("versions of an unknown operation", R"({"cards": [], "driver": {"versions": {"Nothing": []}}})",
        "s.json: driver.versions.Nothing: no such operation");
    row("fault without an operation", R"({"cards": [], "faults": [{"status": -1}]})",
        "s.json: faults[0].operation: missing");
    row("fault that does nothing", R"({"cards": [], "faults": [{"operation": "*"}]})",
        "s.json: faults[0].status: missing");
    row("fault that succeeds", R"({"cards": [], "faults": [{"operation": "*", "status": 0}]})",
        "s.json: faults[0].status: expected a whole number from -1000000 to -1, found 0");
}

void TestSimulatedScenario::mistakes()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, message);
    const ScenarioResult result = readScenarioText(text.toStdString(), "s.json");
    const QString error = QString::fromStdString(result.error);
    QVERIFY2(error.startsWith(message), qPrintable(error));
    QVERIFY(result.scenario.cards.empty());
}

void TestSimulatedScenario::unreadableFile()
{
    const ScenarioResult result = readScenarioFile("/nowhere/scene.json");
    QCOMPARE(result.error, std::string("/nowhere/scene.json: cannot be read"));
    QVERIFY(result.scenario.cards.empty());
    const ScenarioResult folder = readScenarioFile(OVRYN_SCENES);
    QVERIFY(!folder.error.empty());
}

QTEST_APPLESS_MAIN(TestSimulatedScenario)
#include "TestSimulatedScenario.moc"
