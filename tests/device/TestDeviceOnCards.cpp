#include "device/NvGpuControl.h"
#include "device/nvapi/NvApi.h"

#include "simulated/Call.h"
#include "simulated/ScenarioReader.h"
#include "support/CheckedDriver.h"

#include <QtTest>

#include <functional>

/// Everything that the device layer can do, on cards that mark what they would not be asked.
class TestDeviceOnCards : public QObject
{
    Q_OBJECT

private slots:
    void everyOperation_data();
    void everyOperation();
};

namespace
{

using Change = std::function<void(simulated::Scenario &)>;

void readEverything(NvGpuControl &gpu)
{
    NvInfo info;
    NvPciIds ids;
    NvClockSet clocks;
    NvUsageInfo usage;
    NvThermalInfo thermal;
    NvMemoryInfo memory;
    NvBoardTemperatures board;
    NvClockOffsetRange range;
    NvVoltageInfo voltage;
    NvPowerInfo power;
    NvThermalPolicyInfo policy;
    NvCoolerInfo cooler;
    LedControllerState led;
    gpu.getFixedInfo(info);
    gpu.getPciIdentifiers(ids);
    for (const quint32 type : {0, 1, 2})
        gpu.getClockFrequencies(clocks, type);
    gpu.getCurrentClocks(clocks);
    gpu.getGpuUsage(usage);
    gpu.getThermalSensor(thermal);
    gpu.getMemoryInfo(memory);
    gpu.getBoardTemperatures(board);
    gpu.getBaseClocks(clocks, true);
    gpu.getGpuClockRange(range);
    gpu.getMemoryClockRange(range);
    gpu.getVoltageInfo(voltage);
    gpu.getPowerInfo(power);
    gpu.getThermalPolicyInfo(policy);
    gpu.getCoolerInfo(cooler);
    gpu.readLedState(led);
}

/// What the pages order: offsets and limits within and beyond what the card allows, levels of its fan.
void orderEverything(NvGpuControl &gpu)
{
    NvPowerInfo power;
    NvThermalPolicyInfo policy;
    NvCoolerInfo cooler;
    NvLimitPair pair;
    NvClockOffsetRange graphics;
    NvClockOffsetRange memory;
    gpu.getGpuClockRange(graphics);
    gpu.getMemoryClockRange(memory);
    for (const qint32 megahertz : {0, 50, 9000, -9000}) {
        if (megahertz == 0 || graphics.editable) // the pages offer nothing else
            gpu.setGpuClockOffset(megahertz);
        if (megahertz == 0 || memory.editable)
            gpu.setMemoryClockOffset(megahertz);
    }
    gpu.setVoltageOffset(0);
    gpu.setOverVoltage(0);
    if (gpu.getPowerInfo(power)) {
        for (const float percent : {100.0f, 1.0f, 900.0f})
            gpu.setPowerLimit(quint32(power.policyId), percent);
    }
    if (gpu.getThermalPolicyInfo(policy)) {
        for (const qint32 degrees : {policy.minTemp, policy.maxTemp, policy.minTemp - 20})
            gpu.setThermalLimit(quint32(policy.policyId), float(degrees), true);
        gpu.setThermalPriority(quint32(policy.policyId), 0);
        gpu.powerToTemperature(quint32(power.policyId), quint32(policy.policyId), 100, pair);
        gpu.temperatureToPower(quint32(power.policyId), quint32(policy.policyId), 80, 100, pair);
    }
    if (gpu.getCoolerInfo(cooler)) {
        for (const qint32 coolerPolicy : {1, 2, 4, 8, 0x20}) {
            gpu.setCoolerLevel(cooler.defaultMinLevel, coolerPolicy);
            gpu.setCoolerLevel(cooler.defaultMaxLevel, coolerPolicy);
        }
        gpu.setCoolerLevel(-1, 1);
    }
    gpu.setCoolerAuto();
    const quint8 colours[21] = {};
    for (const quint8 effect : {0, 1, 2, 4, 10}) {
        for (const qint32 size : {0, 3, 21})
            gpu.i2cWriteFramed(colours, size, effect, 0x32, 2, size == 3);
    }
    gpu.sendCardInfoToLcd(true, true, 10, 0x80);
    gpu.sendCardInfoToLcd(false, false, 10, 0x10);
}

} // namespace

Q_DECLARE_METATYPE(Change)

void TestDeviceOnCards::everyOperation_data()
{
    QTest::addColumn<Change>("change");
    const auto row = [](const char *name, const Change &change) {
        QTest::newRow(name) << change;
    };
    using simulated::Scenario;
    row("as shipped", [](Scenario &) {});
    row("newest records", [](Scenario &scene) { scene.knowledge.keepNewestRecords(); });
    row("oldest records", [](Scenario &scene) { scene.knowledge.keepOldestRecords(); });
    row("nothing can be changed", [](Scenario &scene) {
        for (simulated::CardParameters &card : scene.cards) {
            card.clocks.graphicsOffsetKHz.editable = card.clocks.memoryOffsetKHz.editable = false;
            card.voltage.offset_uV.editable = card.voltage.overVoltage_uV.editable = false;
        }
    });
    row("no voltage", [](Scenario &scene) { scene.cards.front().voltage.present = false; });
    row("no policies", [](Scenario &scene) {
        scene.cards.front().power.present = false;
        scene.cards.front().thermal.policyPresent = false;
    });
    row("two coolers", [](Scenario &scene) { scene.cards.front().fan.count = 2; });
    row("compute cards", [](Scenario &scene) { scene.cards.front().tcc = scene.cards.back().tcc = true; });
    row("hostile counts", [](Scenario &scene) { scene.driver.hostility = {255, true}; });
    row("no card", [](Scenario &scene) { scene.cards.clear(); });
    row("every other write fails", [](Scenario &scene) {
        for (const Operation operation :
             {Operation::NvAPI_GPU_SetPstates20, Operation::NvAPI_GPU_SetCoolerLevels, Operation::NvAPI_I2CWrite,
              Operation::NvAPI_I2CRead, Operation::NvAPI_GPU_ClientThermalPoliciesSetStatus}) {
            simulated::Fault fault;
            fault.operation = operation;
            fault.status = NVAPI_ERROR;
            fault.count = 1;
            fault.every = 2;
            scene.faults.push_back(fault);
        }
    });
}

void TestDeviceOnCards::everyOperation()
{
    QFETCH(Change, change);
    simulated::Scenario scene = simulated::builtInScenario();
    change(scene);
    CheckedDriver driver(scene);
    {
        NvGpuControl keepsTheLibrary;
        for (std::size_t card = 0; card < std::max<std::size_t>(scene.cards.size(), 1); ++card) {
            NvGpuControl gpu;
            gpu.setCurrentGpu(qint32(card));
            readEverything(gpu);
            orderEverything(gpu);
            gpu.restoreDefaults();
            readEverything(gpu);
        }
    }
    QCOMPARE(driver.takeViolations().join(", "), QString());
    QCOMPARE(driver.callRecords().back().name(), std::string("NvAPI_Unload"));
}

QTEST_APPLESS_MAIN(TestDeviceOnCards)
#include "TestDeviceOnCards.moc"
