#include "MarkedCalls.h"

#include <QProcess>
#include <QtTest>

#include <memory>

using namespace simulated;

namespace
{

constexpr const char *kLeaveMarks = "--leave-marks";

} // namespace

/// What the driver marks in its journal as a call that no card would be asked.
class TestSimulatedViolations : public QObject
{
    Q_OBJECT

private slots:
    void marks_data();
    void marks();
    void cardWithoutPolicies_data();
    void cardWithoutPolicies();
    void nothingCanBeChanged();
    void session_data();
    void session();
    void sessionOfAFailedStart();
    void laterFailedStartEndsNothing();
    void faultHidesNoMark();
    void hostileCountsLeadAstray();
    void clearedCallsKeepTheirMarks();
    void markFailsTheTest();
};

/// Not a test by itself: what becomes of tests that leave a mark.
class LeavesMarks : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { kept.reset(); }
    void inTheTest()
    {
        CheckedDriver driver(knownCard());
        cooling(50, 0)(started(driver), driver.handle(0));
    }
    void untilTheCleanup()
    {
        kept = std::make_unique<CheckedDriver>(knownCard());
        cooling(50, 0)(started(*kept), kept->handle(0));
    }
    void takenOut()
    {
        CheckedDriver driver(knownCard());
        cooling(50, 0)(started(driver), driver.handle(0));
        QCOMPARE(driver.takeViolations().size(), 1);
    }
    void onPurpose()
    {
        CheckedDriver driver(knownCard());
        driver.expectsWrongCalls();
        cooling(50, 0)(started(driver), driver.handle(0));
    }

private:
    std::unique_ptr<CheckedDriver> kept;
};

void TestSimulatedViolations::marks_data()
{
    QTest::addColumn<Act>("act");
    QTest::addColumn<QStringList>("marks");
    const auto row = [](const char *name, const Act &act, const char *mark) {
        QTest::newRow(name) << act << (mark ? QStringList{mark} : QStringList());
    };
    const char *const inOrder = nullptr;
    using Info = NV_I2C_INFO;
    using Record = NV_GPU_PERF_PSTATES20_INFO;

    // clang-format off
    row("a sensor is read",            reading([](Info &) {}), inOrder);
    row("display mask",                reading([](Info &r) { r.displayMask = 1; }), "I2CRead: display mask 1");
    row("display data channel",        reading([](Info &r) { r.bIsDDCPort = 1; }), "I2CRead: display data channel 1");
    row("speed",                       reading([](Info &r) { r.i2cSpeed = 100; }), "I2CRead: speed 100");
    row("speed code",                  reading([](Info &r) { r.i2cSpeedKhz = 4; }), "I2CRead: speed code 4");
    row("speed code of version 2",     reading([](Info &r) { r.i2cSpeedKhz = 4; }, kI2cInfoVersion2), "I2CRead: speed code 4");
    row("version 1 has no speed code", reading([](Info &r) { r.i2cSpeedKhz = 4; }, kI2cInfoVersion1), inOrder);
    row("port",                        reading([](Info &r) { r.portId = 2; }), "I2CRead: port 2");
    row("port 0",                      reading([](Info &r) { r.portId = 0; }), "I2CRead: port 0");
    row("version 2 has no port",       reading([](Info &r) { r.portId = 2; r.bIsPortIdSet = 0; }, kI2cInfoVersion2), inOrder);
    row("port not set",                reading([](Info &r) { r.bIsPortIdSet = 0; }), "I2CRead: mark of the port 0");
    row("port set by another bit",     reading([](Info &r) { r.bIsPortIdSet = 3; }), "I2CRead: mark of the port 3");
    row("address of no device",        reading([](Info &r) { r.i2cDevAddress = 0x98; }), "I2CRead: read from address 152");
    row("a read at a write address",   reading([](Info &r) { r.i2cDevAddress = 0xA0; }), "I2CRead: read from address 160");
    row("no register byte",            reading([](Info &r) { r.regAddrSize = 0; }), "I2CRead: register address of bytes: 0");
    row("another register",            reading([](Info &r) { *r.pbI2cRegAddress = 1; }), "I2CRead: register other than 0");
    row("register without a place",    reading([](Info &r) { r.pbI2cRegAddress = nullptr; }), "I2CRead: register other than 0");
    row("a byte of a sensor",          reading([](Info &r) { r.cbSize = 1; }), "I2CRead: bytes to transfer: 1");
    row("no place for the data",       reading([](Info &r) { r.pbData = nullptr; }), "I2CRead: no data");
    row("LEDs are probed",             writing([](Transfer &) {}), inOrder);
    row("a write at a read address",   writing([](Transfer &t) { t.record.i2cDevAddress = 0xA1; }), "I2CWrite: write to address 161");
    row("a write with a register",     writing([](Transfer &t) { t.record.regAddrSize = 1; }), "I2CWrite: register address of bytes: 1");
    row("checksum of the LEDs",        writing([](Transfer &t) { t.data.back() ^= 1; }), "I2CWrite: LED frame checksum does not match");
    row("display mask of a write",     writing([](Transfer &t) { t.record.displayMask = 4; }), "I2CWrite: display mask 4");
    row("an LCD frame of 5 bytes",     writing([](Transfer &t) { t.record.i2cDevAddress = 0xAC; }), "I2CWrite: bytes to transfer: 5");
    row("extended read",               extended(0, 0), inOrder);
    row("first word, extended read",   extended(1, 0), "I2CReadEx: words of the extended call");
    row("second word, extended read",  extended(0, 7), "I2CReadEx: words of the extended call");
    row("extended write",              extendedWrite(0, 0), inOrder);
    row("first word, extended write",  extendedWrite(1, 0), "I2CWriteEx: words of the extended call");
    row("second word, extended write", extendedWrite(0, 7), "I2CWriteEx: words of the extended call");

    row("lowest level",                cooling(27, 1), inOrder);
    row("highest level",               cooling(90, 1), inOrder);
    row("below the cooler's range",    cooling(26, 1), "GPU_SetCoolerLevels: cooler level out of range: 26");
    row("above the cooler's range",    cooling(91, 1), "GPU_SetCoolerLevels: cooler level out of range: 91");
    row("level of 120",                cooling(120, 8), "GPU_SetCoolerLevels: cooler level out of range: 120");
    row("level of -1",                 cooling(-1, 0x20), "GPU_SetCoolerLevels: cooler level out of range: -1");
    row("hand-back without a level",   cooling(0, 0x20), inOrder);
    row("hand-back at a level",        cooling(91, 0x20), "GPU_SetCoolerLevels: cooler level out of range: 91");
    row("level 0 by hand",             cooling(0, 1), "GPU_SetCoolerLevels: cooler level out of range: 0");
    row("policy 0",                    cooling(50, 0), "GPU_SetCoolerLevels: cooler policy 0");
    row("policy 3",                    cooling(50, 3), "GPU_SetCoolerLevels: cooler policy 3");
    row("policy 2",                    cooling(50, 2), inOrder);
    row("policy 4",                    cooling(50, 4), inOrder);
    row("one cooler",                  cooling(50, 1, 0), "GPU_SetCoolerLevels: cooler 0");
    row("small record of levels",      cooling(91, 1, kAllCoolers, kCoolerLevelsVersion1Small), "GPU_SetCoolerLevels: cooler level out of range: 91");
    row("a second level",              [](const DriverCalls &calls, NvPhysicalGpuHandle gpu) {
            auto record = ofVersion<NvApiCoolerLevels>(kCoolerLevelsVersion1);
            record.levels[0] = {50, 1};
            record.levels[1] = {50, 0};
            calls.NvAPI_GPU_SetCoolerLevels(gpu, kAllCoolers, &record);
        }, "GPU_SetCoolerLevels: levels behind the first");
    row("settings of one cooler",      [](const DriverCalls &calls, NvPhysicalGpuHandle gpu) {
            auto record = ofVersion<NvApiCoolerSettings>(kCoolerSettingsVersion4);
            calls.NvAPI_GPU_GetCoolerSettings(gpu, 0, &record);
        }, "GPU_GetCoolerSettings: cooler 0");

    row("graphics offset",             pstates([](Record &r) { r.pstates[0].clocks[0].freqDelta_kHz.value = 300000; }), inOrder);
    row("graphics offset too high",    pstates([](Record &r) { r.pstates[0].clocks[0].freqDelta_kHz.value = 300001; }),
        "GPU_SetPstates20: graphics offset out of range: 300001");
    row("memory offset",               pstates([](Record &r) { r.pstates[0].clocks[0] = {4, 0, 0, {-400000, {}}, {}}; }), inOrder);
    row("memory offset too low",       pstates([](Record &r) { r.pstates[0].clocks[0] = {4, 0, 0, {-400001, {}}, {}}; }),
        "GPU_SetPstates20: memory offset out of range: -400001");
    row("unknown clock domain",        pstates([](Record &r) { r.pstates[0].clocks[0].domainId = 7; }), "GPU_SetPstates20: unknown clock domain 7");
    row("another P-state",             pstates([](Record &r) { r.pstates[0].pstateId = 2; }), "GPU_SetPstates20: P-state 2");
    row("two P-states",                pstates([](Record &r) { r.numPstates = 2; }), "GPU_SetPstates20: more than one P-state, clock or voltage");
    row("two clocks",                  pstates([](Record &r) { r.numClocks = 2; }), "GPU_SetPstates20: more than one P-state, clock or voltage");
    row("flags of the record",         pstates([](Record &r) { r.bIsEditable = 1; }), "GPU_SetPstates20: flags, types or ranges in a write");
    row("flags of the P-state",        pstates([](Record &r) { r.pstates[0].bIsEditable = 1; }), "GPU_SetPstates20: flags, types or ranges in a write");
    row("flags of the clock",          pstates([](Record &r) { r.pstates[0].clocks[0].bIsEditable = 1; }), "GPU_SetPstates20: flags, types or ranges in a write");
    row("type of the clock",           pstates([](Record &r) { r.pstates[0].clocks[0].typeId = 1; }), "GPU_SetPstates20: flags, types or ranges in a write");
    row("range of the clock, version 1", pstates([](Record &r) { r.pstates[0].clocks[0].freqDelta_kHz.valueRange.max = 1; }, kPstates20Version1),
        "GPU_SetPstates20: flags, types or ranges in a write");
    row("voltage offset",              pstates([](Record &r) { r.numClocks = 0; r.numBaseVoltages = 1; r.pstates[0].baseVoltages[0].voltDelta_uV.value = 70000; }), inOrder);
    row("voltage offset too high",     pstates([](Record &r) { r.numClocks = 0; r.numBaseVoltages = 1; r.pstates[0].baseVoltages[0].voltDelta_uV.value = 70001; }),
        "GPU_SetPstates20: voltage offset out of range: 70001");
    row("voltage of minus everything", pstates([](Record &r) { r.numClocks = 0; r.numBaseVoltages = 1; r.pstates[0].baseVoltages[0].voltDelta_uV.value = -1062000; }),
        "GPU_SetPstates20: voltage offset out of range: -1062000");
    row("unknown voltage domain",      pstates([](Record &r) { r.numClocks = 0; r.numBaseVoltages = 1; r.pstates[0].baseVoltages[0].domainId = 1; }),
        "GPU_SetPstates20: unknown voltage domain 1");
    row("over-voltage",                pstates([](Record &r) { r.numPstates = r.numClocks = 0; r.ov.numVoltages = 1; r.ov.voltages[0].voltDelta_uV.value = 25000; }), inOrder);
    row("over-voltage too high",       pstates([](Record &r) { r.numPstates = r.numClocks = 0; r.ov.numVoltages = 1; r.ov.voltages[0].voltDelta_uV.value = 25001; }),
        "GPU_SetPstates20: over-voltage out of range: 25001");
    row("unknown over-voltage domain", pstates([](Record &r) { r.numPstates = r.numClocks = 0; r.ov.numVoltages = 1; r.ov.voltages[0].domainId = 2; }),
        "GPU_SetPstates20: unknown voltage domain 2");

    row("power limit",                 power(1, {2, 0, 120000, 0}), inOrder);
    row("power limit too high",        power(1, {2, 0, 120001, 0}), "GPU_ClientPowerPoliciesSetStatus: power limit out of range: 120001");
    row("power limit too low",         power(1, {2, 0, 49999, 0}), "GPU_ClientPowerPoliciesSetStatus: power limit out of range: 49999");
    row("unknown power policy",        power(1, {3, 0, 100000, 0}), "GPU_ClientPowerPoliciesSetStatus: unknown power policy 3");
    row("flags of the power policy",   power(1, {2, 1, 100000, 0}), "GPU_ClientPowerPoliciesSetStatus: unknown flags 1");
    row("no power policy",             power(0, {}), "GPU_ClientPowerPoliciesSetStatus: count 0");
    row("two power policies",          power(2, {2, 0, 100000, 0}), "GPU_ClientPowerPoliciesSetStatus: count 2");
    row("temperature limit",           temperature(1, {3, 92 * 256, 1}), inOrder);
    row("temperature limit too high",  temperature(1, {3, 92 * 256 + 1, 1}), "GPU_ClientThermalPoliciesSetStatus: temperature limit out of range: 23553");
    row("temperature limit times 256", temperature(1, {3, 92 * 256 * 256, 1}), "GPU_ClientThermalPoliciesSetStatus: temperature limit out of range: 6029312");
    row("temperature limit too low",   temperature(1, {3, 60 * 256 - 1, 1}), "GPU_ClientThermalPoliciesSetStatus: temperature limit out of range: 15359");
    row("unknown temperature policy",  temperature(1, {2, 80 * 256, 1}), "GPU_ClientThermalPoliciesSetStatus: unknown temperature policy 2");
    row("flags of the temperature",    temperature(1, {3, 80 * 256, 2}), "GPU_ClientThermalPoliciesSetStatus: unknown flags 2");
    row("no temperature policy",       temperature(0, {}), "GPU_ClientThermalPoliciesSetStatus: count 0");

    row("draw of a channel",           topologyFigures(1, 6), inOrder);
    row("draw of no channel",          topologyFigures(0, 6), "GPU_ClientPowerTopologyGetStatus: count 0");
    row("draw of five channels",       topologyFigures(5, 6), "GPU_ClientPowerTopologyGetStatus: count 5");
    row("draw of an unknown channel",  topologyFigures(1, 2), "GPU_ClientPowerTopologyGetStatus: unknown policy or channel");
    row("figures of a power policy",   powerFigures(1, 2), inOrder);
    row("of an unknown power policy",  powerFigures(1, 5), "GPU_ClientPowerPoliciesGetStatus: unknown policy or channel");
    row("of no power policy",          powerFigures(0, 2), "GPU_ClientPowerPoliciesGetStatus: count 0");
    row("figures of a temperature policy",  thermalFigures(1, 3), inOrder);
    row("of an unknown temperature policy", thermalFigures(1, 2), "GPU_ClientThermalPoliciesGetStatus: unknown policy or channel");
    row("of no temperature policy",         thermalFigures(0, 3), "GPU_ClientThermalPoliciesGetStatus: count 0");

    row("three sensors",               sensors(0, 3), inOrder);
    row("no sensor",                   sensors(0, 0), "GPU_GetThermalSettings: count 0");
    row("four sensors",                sensors(0, 4), "GPU_GetThermalSettings: count 4");
    row("all sensors by index",        sensors(15, 3), "GPU_GetThermalSettings: unknown thermal sensor 15");
    row("boost clocks",                clocks(2), inOrder);
    row("unknown clock type",          clocks(3), "GPU_GetAllClockFrequencies: unknown clock type 3");
    row("flags of the clock type",     clocks(4), "GPU_GetAllClockFrequencies: unknown flags of the clock type");
    row("entry of the restore",        [](const DriverCalls &calls, NvPhysicalGpuHandle gpu) { calls.NvAPI_DriverEntry_B23B70EE(gpu, 1); }, inOrder);
    row("its value",                   [](const DriverCalls &calls, NvPhysicalGpuHandle gpu) { calls.NvAPI_DriverEntry_B23B70EE(gpu, 0); }, "DriverEntry_B23B70EE: value 0");

    row("null handle",                 [](const DriverCalls &calls, NvPhysicalGpuHandle) { char name[64]; calls.NvAPI_GPU_GetFullName(nullptr, name); }, "GPU_GetFullName: null card handle");
    row("null handle, memory type",    [](const DriverCalls &calls, NvPhysicalGpuHandle) { quint32 type; calls.NvAPI_GPU_GetRamType(nullptr, &type); }, inOrder);
    row("unknown handle",              [](const DriverCalls &calls, NvPhysicalGpuHandle) { quint32 type; calls.NvAPI_GPU_GetRamType(&type, &type); }, "GPU_GetRamType: unknown card handle");
    row("null display",                [](const DriverCalls &calls, NvPhysicalGpuHandle) { quint32 id; calls.NvAPI_GetAssociatedDisplayOutputId(nullptr, &id); }, inOrder);
    row("null pointer",                [](const DriverCalls &calls, NvPhysicalGpuHandle gpu) { calls.NvAPI_GPU_GetFullName(gpu, nullptr); }, "GPU_GetFullName: null pointer");
    row("unknown version",             [](const DriverCalls &calls, NvPhysicalGpuHandle gpu) {
            auto record = ofVersion<NvApiMemoryInfo>(0x40020);
            calls.NvAPI_GPU_GetMemoryInfo(gpu, &record);
        }, "GPU_GetMemoryInfo: unknown version word");
    // clang-format on
}

void TestSimulatedViolations::marks()
{
    QFETCH(Act, act);
    QFETCH(QStringList, marks);
    CheckedDriver driver(knownCard());
    act(started(driver), driver.handle(0));
    QCOMPARE(int(driver.callRecords().size()), 1);
    QCOMPARE(driver.takeViolations(), marks);
}

void TestSimulatedViolations::cardWithoutPolicies_data()
{
    QTest::addColumn<Act>("act");
    QTest::addColumn<QString>("mark");
    const QString text = QStringLiteral(": figures of a card without policies");
    QTest::newRow("power topology") << topologyFigures(1, 5) << "GPU_ClientPowerTopologyGetStatus" + text;
    QTest::newRow("power") << powerFigures(1, 2) << "GPU_ClientPowerPoliciesGetStatus" + text;
    QTest::newRow("temperature") << thermalFigures(1, 3) << "GPU_ClientThermalPoliciesGetStatus" + text;
    QTest::newRow("power limit") << power(1, {2, 0, 100000, 0})
                                 << "GPU_ClientPowerPoliciesSetStatus: unknown power policy 2";
    QTest::newRow("temperature limit") << temperature(1, {3, 80 * 256, 0})
                                       << "GPU_ClientThermalPoliciesSetStatus: unknown temperature policy 3";
}

void TestSimulatedViolations::cardWithoutPolicies()
{
    QFETCH(Act, act);
    QFETCH(QString, mark);
    Scenario scenario = knownCard();
    scenario.cards.front().power.present = false;
    scenario.cards.front().thermal.policyPresent = false;
    CheckedDriver driver(scenario);
    act(started(driver), driver.handle(0));
    QCOMPARE(driver.takeViolations(), QStringList{mark});
}

void TestSimulatedViolations::nothingCanBeChanged()
{
    Scenario scenario = knownCard();
    scenario.cards.front().clocks.graphicsOffsetKHz.editable = false;
    CheckedDriver driver(scenario);
    const DriverCalls calls = started(driver);
    pstates([](NV_GPU_PERF_PSTATES20_INFO &) {})(calls, driver.handle(0));
    QCOMPARE(driver.takeViolations(), QStringList()); // 0 is where the card stands
    pstates([](NV_GPU_PERF_PSTATES20_INFO &record) { record.pstates[0].clocks[0].freqDelta_kHz.value = 1000; })(
        calls, driver.handle(0));
    QCOMPARE(driver.takeViolations(), QStringList{"GPU_SetPstates20: graphics offset out of range: 1000"});
}

void TestSimulatedViolations::session_data()
{
    QTest::addColumn<QString>("steps"); // Start, Unload, Read
    QTest::addColumn<QStringList>("marks");
    const QStringList early = {"GPU_GetRamType: the driver is not started"};
    QTest::newRow("read before the start") << "R" << early;
    QTest::newRow("read between start and end") << "SRU" << QStringList();
    QTest::newRow("read after the end") << "SRUR" << early;
    QTest::newRow("read after the next start") << "SUSRU" << QStringList();
    QTest::newRow("two starts, one end") << "SSRU" << QStringList();
    QTest::newRow("an end before the start") << "U" << QStringList{"Unload: the driver is not started"};
    QTest::newRow("a second end") << "SUU" << QStringList{"Unload: the driver is not started"};
}

void TestSimulatedViolations::session()
{
    QFETCH(QString, steps);
    QFETCH(QStringList, marks);
    CheckedDriver driver(knownCard());
    const DriverCalls calls(driver.queryInterface());
    for (const QChar step : steps) {
        quint32 type = 0;
        if (step == 'S')
            calls.NvAPI_Initialize();
        else if (step == 'U')
            calls.NvAPI_Unload();
        else
            calls.NvAPI_GPU_GetRamType(driver.handle(0), &type);
    }
    QCOMPARE(driver.takeViolations(), marks);
}

void TestSimulatedViolations::sessionOfAFailedStart()
{
    const QStringList refused = {"EnumPhysicalGPUs: the driver has refused to start"};
    for (const NvAPI_Status status : {-1, -2, -4}) {
        CheckedDriver driver(knownCard());
        driver.fails(Operation::NvAPI_Initialize, status);
        const DriverCalls calls = started(driver);
        char text[kNvApiShortTextSize] = {};
        calls.NvAPI_GetErrorMessage(status, text);
        QCOMPARE(driver.takeViolations(), QStringList());
        NvPhysicalGpuHandle gpus[kNvApiMaxGpus] = {};
        quint32 count = 0;
        calls.NvAPI_EnumPhysicalGPUs(gpus, &count);
        QCOMPARE(driver.takeViolations(), status == -4 ? QStringList() : refused);
        calls.NvAPI_Unload();
        QCOMPARE(driver.takeViolations(), QStringList());
    }
}

void TestSimulatedViolations::laterFailedStartEndsNothing()
{
    CheckedDriver driver(knownCard());
    const DriverCalls calls = started(driver);
    driver.fails(Operation::NvAPI_Initialize, NVAPI_ERROR);
    QCOMPARE(calls.NvAPI_Initialize(), NVAPI_ERROR);
    quint32 type = 0;
    calls.NvAPI_GPU_GetRamType(driver.handle(0), &type);
    QCOMPARE(driver.takeViolations(), QStringList());
}

void TestSimulatedViolations::faultHidesNoMark()
{
    CheckedDriver driver(knownCard());
    driver.fails(Operation::NvAPI_GPU_SetCoolerLevels, NVAPI_ERROR);
    cooling(120, 1)(started(driver), driver.handle(0));
    QCOMPARE(driver.takeViolations(), QStringList{"GPU_SetCoolerLevels: cooler level out of range: 120"});
    QCOMPARE(driver.callRecords().back().status, NVAPI_ERROR);
}

void TestSimulatedViolations::hostileCountsLeadAstray()
{
    CheckedDriver driver(knownCard());
    driver.setHostility({255, false});
    const DriverCalls calls = started(driver);
    topologyFigures(4, 5)(calls, driver.handle(0)); // the channels that the driver's own count told of
    QCOMPARE(driver.takeViolations(), QStringList());
    cooling(0, 1)(calls, driver.handle(0)); // the range of a cooler that there is not
    power(1, {0, 0, 0, 0})(calls, driver.handle(0));
    temperature(1, {0, 0, 0})(calls, driver.handle(0));
    QCOMPARE(driver.takeViolations(), QStringList());
    topologyFigures(5, 5)(calls, driver.handle(0)); // no count leads out of the record
    QCOMPARE(driver.takeViolations(), QStringList{"GPU_ClientPowerTopologyGetStatus: count 5"});
}

void TestSimulatedViolations::clearedCallsKeepTheirMarks()
{
    CheckedDriver driver(knownCard());
    cooling(50, 0)(started(driver), driver.handle(0));
    driver.forgetCalls();
    QCOMPARE(driver.takeViolations(), QStringList{"GPU_SetCoolerLevels: cooler policy 0"});
}

/// In a process of its own, for its tests are to fail.
void TestSimulatedViolations::markFailsTheTest()
{
    QProcess process;
    process.start(QCoreApplication::applicationFilePath(), {kLeaveMarks});
    QVERIFY(process.waitForFinished());
    const QByteArray output = process.readAllStandardOutput();
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 2); // tests that failed
    for (const char *line : {"FAIL!  : LeavesMarks::inTheTest()", "FAIL!  : LeavesMarks::untilTheCleanup()",
                             "PASS   : LeavesMarks::takenOut()", "PASS   : LeavesMarks::onPurpose()"})
        QVERIFY2(output.contains(line), output.constData());
    QCOMPARE(output.count("no card would be asked this: GPU_SetCoolerLevels: cooler policy 0"), 2);
}

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    if (application.arguments().value(1) == kLeaveMarks) {
        LeavesMarks marks;
        return QTest::qExec(&marks);
    }
    TestSimulatedViolations test;
    return QTest::qExec(&test, argc, argv);
}

#include "TestSimulatedViolations.moc"
