#include "device/DeviceTest.h"

#include <QtTest>

/// Clocks, their ranges and core voltage: what is read.
class TestDeviceClocks : public QObject
{
    Q_OBJECT

private slots:
    void baseClocks_data();
    void baseClocks();
    void clocksOfThePstatesAreMarked();
    void failedPstatesZeroTheClocks_data();
    void failedPstatesZeroTheClocks();
    void clockRanges_data();
    void clockRanges();
    void rangeCalls();
    void voltage_data();
    void voltage();
    void failedVoltageReadLeavesZeros();
};

void TestDeviceClocks::baseClocks_data()
{
    QTest::addColumn<Arrange>("arrange");
    QTest::addColumn<bool>("wantDefault");
    QTest::addColumn<bool>("result");
    QTest::addColumn<FieldList>("MHz"); // graphics, memory, processor
    const auto row = [](const char *name, bool wantDefault, bool result, const FieldList &MHz,
                        const Arrange &arrange) {
        QTest::newRow(name) << arrange << wantDefault << result << MHz;
    };
    const auto offsets = [](RawDriver &driver) {
        driver.card().p0Clock(0).freqDelta_kHz.value = 150000;
        driver.card().p0Clock(1).freqDelta_kHz.value = 500000;
    };
    const auto singleMemory = [offsets](RawDriver &driver) {
        offsets(driver);
        driver.card().p0Clock(1).typeId = kPstateClockTypeSingle;
    };
    const auto p0Behind = [](RawDriver &driver) {
        NV_GPU_PERF_PSTATES20_INFO &record = driver.card().pstates;
        record.pstates[0].clocks[0].freqDelta_kHz.value = 150000;
        record.pstates[0].clocks[1].freqDelta_kHz.value = 500000;
        std::swap(record.pstates[0], record.pstates[1]);
    };
    const auto noP0 = [](RawDriver &driver) {
        driver.card().pstates.pstates[0].pstateId = 5;
        driver.card().p0Clock(0).freqDelta_kHz.value = 150000;
        driver.card().p0Clock(1) = driver.card().p0Clock(0);
    };
    const auto noClocks = [](RawDriver &driver, const Arrange &before) {
        before(driver);
        driver.card().pstates.numClocks = 0;
    };

    row("default, no offset", true, true, {1607, 4006, 1450}, [](RawDriver &) {});
    row("customised, no offset", false, true, {1607, 4006, 1450}, [](RawDriver &) {});
    row("default, offset on a range memory clock stays in", true, true, {1607, 4006, 1450}, offsets);
    row("default, memory offset of +500 on a single clock is taken out", true, true, {1607, 3506, 1450},
        singleMemory);
    row("customised, both offsets are added", false, true, {1757, 4506, 1450}, offsets);
    row("customised, single memory clock adds as well", false, true, {1757, 4506, 1450}, singleMemory);
    row("customised, negative offset truncates towards zero", false, true, {1606, 4006, 1450}, [](RawDriver &driver) {
        driver.card().p0Clock(0).freqDelta_kHz.value = -1999;
        driver.card().p0Clock(1).freqDelta_kHz.value = -999;
    });
    row("default, negative single memory offset", true, true, {1607, 4007, 1450}, [](RawDriver &driver) {
        driver.card().p0Clock(1).typeId = kPstateClockTypeSingle;
        driver.card().p0Clock(1).freqDelta_kHz.value = -1999;
    });
    row("customised, P0 behind another state", false, true, {1757, 4506, 1450}, p0Behind);
    row("default, no P0", true, true, {1607, 4006, 1450}, noP0);
    row("customised, no P0", false, true, {1607, 4006, 1450}, noP0);
    row("default, no clocks", true, true, {1607, 4006, 1450},
        [=](RawDriver &driver) { noClocks(driver, singleMemory); });
    row("customised, no clocks", false, true, {1607, 4006, 1450},
        [=](RawDriver &driver) { noClocks(driver, singleMemory); });
    row("customised, P0 behind the count", false, true, {1607, 4006, 1450}, [p0Behind](RawDriver &driver) {
        p0Behind(driver);
        driver.card().pstates.numPstates = 1;
    });
    row("counts far beyond the record, no P0", false, true, {1607, 4006, 1450}, [](RawDriver &driver) {
        for (auto &state : driver.card().pstates.pstates)
            state.pstateId = 9;
        driver.card().pstates.numPstates = 0xFFFFFFFF;
        driver.card().pstates.numClocks = 0xFFFFFFFF;
    });
    row("counts far beyond the record, P0 last", false, true, {1757, 4506, 1450}, [](RawDriver &driver) {
        NV_GPU_PERF_PSTATES20_INFO &record = driver.card().pstates;
        record.pstates[15] = record.pstates[0];
        for (int i = 0; i < 15; ++i)
            record.pstates[i].pstateId = 9;
        NV_GPU_PERF_PSTATES20_INFO::Pstate &p0 = record.pstates[15];
        for (auto &clock : p0.clocks)
            clock.domainId = 99;
        p0.clocks[6] = record.pstates[0].clocks[0];
        p0.clocks[7] = record.pstates[0].clocks[1];
        p0.clocks[6].freqDelta_kHz.value = 150000;
        p0.clocks[7].freqDelta_kHz.value = 500000;
        record.numPstates = 0xFFFFFFFF;
        record.numClocks = 0xFFFFFFFF;
    });
    row("count of 9 clocks reads 8", false, true, {1607, 4006, 1450}, [](RawDriver &driver) {
        for (auto &clock : driver.card().pstates.pstates[0].clocks)
            clock.domainId = 99;
        driver.card().pstates.numClocks = 9;
        driver.card().p0Voltage(0) = {0, 0, 777000, {777000, {777000, 777000}}}; // what lies behind the clocks
    });

    // Without base frequencies the customised clocks come out of the state record.
    const auto noFrequencies = [](RawDriver &driver) {
        driver.fails(Operation::NvAPI_GPU_GetAllClockFrequencies, -1);
    };
    row("default, no base frequencies", true, false, {0, 0, 0}, noFrequencies);
    row("customised, no base frequencies, range type", false, true, {1911, 4006, 0}, noFrequencies);
    row("customised, no base frequencies, single type", false, true, {1733, 4003, 0},
        [noFrequencies](RawDriver &driver) {
            noFrequencies(driver);
            driver.card().p0Clock(0).data.single.freq_kHz = 1733999;
            driver.card().p0Clock(1).typeId = kPstateClockTypeSingle;
            driver.card().p0Clock(1).data.single.freq_kHz = 4003999;
        });
    row("customised, no base frequencies, single memory clock through a float", false, true, {1733, 16778, 0},
        [noFrequencies](RawDriver &driver) {
            noFrequencies(driver);
            driver.card().p0Clock(0).data.single.freq_kHz = 1733999;
            driver.card().p0Clock(1).typeId = kPstateClockTypeSingle;
            driver.card().p0Clock(1).data.single.freq_kHz = 16777999; // the nearest float is 16778000
        });
    row("customised, no base frequencies, a third type", false, true, {139, 4006, 0},
        [noFrequencies](RawDriver &driver) {
            noFrequencies(driver);
            driver.card().p0Clock(1).typeId = 2; // neither single nor range: single for one, range for the other
        });
    row("customised, no base frequencies, clocks in other places", false, true, {405, 4006, 0},
        [noFrequencies](RawDriver &driver) {
            // The words of the first two entries are taken whatever domain stands in them.
            noFrequencies(driver);
            NV_GPU_PERF_PSTATES20_INFO &record = driver.card().pstates;
            std::swap(record.pstates[0].clocks[0], record.pstates[0].clocks[1]);
            record.pstates[0].clocks[1].typeId = kPstateClockTypeSingle;
            record.pstates[0].clocks[1].data.single.freq_kHz = 4006000;
        });
    row("customised, no base frequencies, words of the first state", false, true, {555, 666, 0},
        [noFrequencies, p0Behind](RawDriver &driver) {
            noFrequencies(driver);
            p0Behind(driver);
            NV_GPU_PERF_PSTATES20_INFO::Pstate &first = driver.card().pstates.pstates[0];
            first.clocks[0].data.range.maxFreq_kHz = 555000;
            first.clocks[1].typeId = kPstateClockTypeRange;
            first.clocks[1].data.range.maxFreq_kHz = 666000;
        });
    row("customised, neither frequencies nor P0", false, true, {0, 0, 0}, [noFrequencies, noP0](RawDriver &driver) {
        noFrequencies(driver);
        noP0(driver);
    });
    row("customised, no frequencies and no memory clock", false, true, {1911, 0, 0},
        [noFrequencies](RawDriver &driver) {
            noFrequencies(driver);
            driver.card().p0Clock(1).domainId = 8;
        });
}

void TestDeviceClocks::baseClocks()
{
    QFETCH(Arrange, arrange);
    QFETCH(bool, wantDefault);
    QFETCH(bool, result);
    QFETCH(FieldList, MHz);
    RawDriver driver;
    arrange(driver);
    NvGpuControl gpu;
    NvClockSet out{7, 8, 9};
    QCOMPARE(gpu.getBaseClocks(out, wantDefault), result);
    QCOMPARE(fields(out), MHz);
}

void TestDeviceClocks::clocksOfThePstatesAreMarked()
{
    RawDriver driver;
    NvGpuControl gpu;
    NvClockSet out;
    driver.fails(Operation::NvAPI_GPU_GetAllClockFrequencies, NVAPI_ERROR, 1, 3);
    QVERIFY(gpu.getBaseClocks(out, false));
    QVERIFY(out.fromPstates); // 1911 MHz with the boost, where the base is 1607
    QVERIFY(gpu.getBaseClocks(out, false));
    QVERIFY(!out.fromPstates);
}

void TestDeviceClocks::failedPstatesZeroTheClocks_data()
{
    QTest::addColumn<bool>("wantDefault");
    QTest::addColumn<bool>("cardMissing");
    QTest::newRow("default, states unreadable") << true << false;
    QTest::newRow("customised, states unreadable") << false << false;
    QTest::newRow("default, no card") << true << true;
    QTest::newRow("customised, no card") << false << true;
}

void TestDeviceClocks::failedPstatesZeroTheClocks()
{
    QFETCH(bool, wantDefault);
    QFETCH(bool, cardMissing);
    RawDriver driver;
    if (cardMissing)
        driver.cards.clear();
    else
        driver.fails(Operation::NvAPI_GPU_GetPstates20, NVAPI_ERROR);
    NvGpuControl gpu;
    NvClockSet out{7, 8, 9};
    QCOMPARE(gpu.getBaseClocks(out, wantDefault), false);
    QCOMPARE(fields(out), (FieldList{0, 0, 0}));
}

void TestDeviceClocks::clockRanges_data()
{
    QTest::addColumn<Arrange>("arrange");
    QTest::addColumn<FieldList>("graphics"); // base clock, lowest and highest offset, editable
    QTest::addColumn<FieldList>("memory");
    const auto row = [](const char *name, const FieldList &graphics, const FieldList &memory,
                        const Arrange &arrange) {
        QTest::newRow(name) << arrange << graphics << memory;
    };
    const FieldList zero = {0, 0, 0, 0};
    row("healthy card", {1607, -200, 1000, 1}, {4006, -502, 1000, 1}, [](RawDriver &) {});
    row("offsets truncate towards zero", {1607, -1, 1, 1}, {4006, 0, 0, 1}, [](RawDriver &driver) {
        driver.card().p0Clock(0).freqDelta_kHz.valueRange = {-1999, 1999};
        driver.card().p0Clock(1).freqDelta_kHz.valueRange = {-999, 999};
    });
    row("not editable", {1607, 0, 0, 0}, {4006, -502, 1000, 0}, [](RawDriver &driver) {
        driver.card().p0Clock(0).bIsEditable = 0;
        driver.card().p0Clock(0).freqDelta_kHz.valueRange = {0, 0};
        driver.card().p0Clock(1).bIsEditable = 0xFFFFFFFE;
    });
    row("states unreadable", zero, zero,
        [](RawDriver &driver) { driver.fails(Operation::NvAPI_GPU_GetPstates20, -1); });
    row("base frequencies unreadable", zero, zero,
        [](RawDriver &driver) { driver.fails(Operation::NvAPI_GPU_GetAllClockFrequencies, -1); });
    row("no P0", {1607, 0, 0, 0}, {4006, 0, 0, 0},
        [](RawDriver &driver) { driver.card().pstates.pstates[0].pstateId = 2; });
    row("no clock of the domain", {1607, 0, 0, 0}, {4006, 0, 0, 0}, [](RawDriver &driver) {
        driver.card().p0Clock(0).domainId = 7;
        driver.card().p0Clock(1).domainId = 8;
    });
    row("the first clock of the domain", {1607, -200, 1000, 1}, {4006, 0, 0, 0}, [](RawDriver &driver) {
        driver.card().p0Clock(1) = driver.card().p0Clock(0);
        driver.card().p0Clock(1).freqDelta_kHz.valueRange = {-1000, 1000};
    });
    row("counts far beyond the record", {1607, 0, 0, 0}, {4006, 0, 0, 0}, [](RawDriver &driver) {
        for (auto &state : driver.card().pstates.pstates) {
            for (auto &clock : state.clocks)
                clock.domainId = 99;
        }
        driver.card().pstates.numPstates = 0xFFFFFFFF;
        driver.card().pstates.numClocks = 0xFFFFFFFF;
    });
}

void TestDeviceClocks::clockRanges()
{
    QFETCH(Arrange, arrange);
    QFETCH(FieldList, graphics);
    QFETCH(FieldList, memory);
    RawDriver driver;
    arrange(driver);
    NvGpuControl gpu;
    NvClockOffsetRange out{9, 9, 9, true};
    gpu.getGpuClockRange(out);
    QCOMPARE(fields(out), graphics);
    out = {9, 9, 9, true};
    gpu.getMemoryClockRange(out);
    QCOMPARE(fields(out), memory);
}

void TestDeviceClocks::rangeCalls()
{
    RawDriver driver;
    NvGpuControl gpu;
    NvClockOffsetRange out;
    driver.forgetCalls();
    gpu.getGpuClockRange(out);
    QCOMPARE(driver.rawCalls(), (QStringList{kReadPstates, kReadBaseClocks}));
    driver.forgetCalls();
    gpu.getMemoryClockRange(out);
    QCOMPARE(driver.rawCalls(), (QStringList{kReadPstates, kReadBaseClocks, kReadRamType}));
}

void TestDeviceClocks::voltage_data()
{
    QTest::addColumn<Arrange>("arrange");
    QTest::addColumn<FieldList>("milliVolt"); // highest, lowest, base, base again, current, editable
    const auto row = [](const char *name, const FieldList &milliVolt, const Arrange &arrange) {
        QTest::newRow(name) << arrange << milliVolt;
    };
    const FieldList zero = {0, 0, 0, 0, 0, 0};
    row("no offset", {1162, 962, 1062, 1062, 1062, 1}, [](RawDriver &) {});
    row("base leaves the offset out", {1112, 912, 1012, 1012, 1062, 1},
        [](RawDriver &driver) { driver.card().p0Voltage(0).voltDelta_uV.value = 50000; });
    row("negative offset", {1212, 1012, 1112, 1112, 1062, 1},
        [](RawDriver &driver) { driver.card().p0Voltage(0).voltDelta_uV.value = -50000; });
    row("range truncates towards zero", {1063, 1061, 1062, 1062, 1062, 1}, [](RawDriver &driver) {
        driver.card().p0Voltage(0).voltDelta_uV.valueRange = {-1999, 1999};
    });
    row("not editable", {1162, 962, 1062, 1062, 1062, 0},
        [](RawDriver &driver) { driver.card().p0Voltage(0).bIsEditable = 2; });
    row("another domain has no current voltage", {1162, 962, 1062, 1062, 0, 1},
        [](RawDriver &driver) { driver.card().p0Voltage(0).domainId = 1; });
    row("the last voltage stands", {910, 890, 900, 900, 1062, 0}, [](RawDriver &driver) {
        driver.card().pstates.numBaseVoltages = 2;
        driver.card().p0Voltage(1) = {1, 0, 900000, {0, {-10000, 10000}}};
    });
    row("no P0", zero, [](RawDriver &driver) { driver.card().pstates.pstates[0].pstateId = 3; });
    row("no states", zero, [](RawDriver &driver) { driver.card().pstates.numPstates = 0; });
    row("no voltages", zero, [](RawDriver &driver) { driver.card().pstates.numBaseVoltages = 0; });
    row("count far beyond the record", {810, 790, 800, 800, 800, 1}, [](RawDriver &driver) {
        for (auto &voltage : driver.card().pstates.pstates[0].baseVoltages)
            voltage = {0, 0, 700000, {0, {0, 0}}};
        driver.card().p0Voltage(3) = {0, 1, 800000, {0, {-10000, 10000}}};
        driver.card().pstates.pstates[1] = {}; // what lies behind the voltages
        driver.card().pstates.numBaseVoltages = 0xFFFFFFFF;
    });
}

void TestDeviceClocks::voltage()
{
    QFETCH(Arrange, arrange);
    QFETCH(FieldList, milliVolt);
    RawDriver driver;
    arrange(driver);
    NvGpuControl gpu;
    driver.forgetCalls();
    NvVoltageInfo out{9, 9, 9, 9, 9, true};
    QCOMPARE(gpu.getVoltageInfo(out), true);
    QCOMPARE(fields(out), milliVolt);
    QCOMPARE(driver.rawCalls(), QStringList{kReadPstates});
}

void TestDeviceClocks::failedVoltageReadLeavesZeros()
{
    RawDriver driver;
    driver.fails(Operation::NvAPI_GPU_GetPstates20, NVAPI_ERROR);
    NvGpuControl gpu;
    NvVoltageInfo out{9, 9, 9, 9, 9, true};
    QCOMPARE(gpu.getVoltageInfo(out), false);
    QCOMPARE(fields(out), (FieldList{0, 0, 0, 0, 0, 0}));
}

QTEST_APPLESS_MAIN(TestDeviceClocks)
#include "TestDeviceClocks.moc"
