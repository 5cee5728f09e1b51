#include "DriverCalls.h"
#include "TestScenes.h"

#include <QtTest>

#include <array>
#include <atomic>
#include <thread>
#include <vector>

Q_DECLARE_METATYPE(std::vector<qint32>)

using namespace simulated;

class TestSimulatedOperations : public QObject
{
    Q_OBJECT

private slots:
    void everyEntryPointIsThere();
    void missingEntryPoint();
    void unknownIdentifier();
    void unknownHandles_data();
    void unknownHandles();
    void lostCard();
    void nullPointers();
    void enumeration();
    void enumerationWithoutCards();
    void displays();
    void fixedInformation();
    void errorTexts();
    void memoryByVersion_data();
    void memoryByVersion();
    void tccCardHasNoAvailability();
    void clockTypes_data();
    void clockTypes();
    void utilization();
    void thermalSensors_data();
    void thermalSensors();
    void withoutADriver();
    void manyThreads();
};

void TestSimulatedOperations::everyEntryPointIsThere()
{
    CheckedDriver driver(oneBoardCard());
#define OVRYN_CHECK(identifier, name, parameters, arguments) QVERIFY2(driver.queryInterface()(identifier), #name);
    OVRYN_NVAPI_OPERATIONS(OVRYN_CHECK)
#undef OVRYN_CHECK
}

void TestSimulatedOperations::missingEntryPoint()
{
    CheckedDriver driver(oneBoardCard());
    driver.lacks(Operation::NvAPI_EnumTCCPhysicalGPUs);
    const DriverCalls calls = started(driver);
    QVERIFY(!calls.NvAPI_EnumTCCPhysicalGPUs);
    QVERIFY(calls.NvAPI_EnumPhysicalGPUs);
}

void TestSimulatedOperations::unknownIdentifier()
{
    CheckedDriver driver(oneBoardCard());
    QVERIFY(!driver.queryInterface()(0));
    QVERIFY(!driver.queryInterface()(0xDEADBEEF));
}

void TestSimulatedOperations::unknownHandles_data()
{
    QTest::addColumn<quint64>("handle");
    QTest::addColumn<int>("status");
    QTest::newRow("null") << quint64(0) << int(NVAPI_INVALID_HANDLE);
    QTest::newRow("a display") << quint64(0x0D150000) << int(NVAPI_EXPECTED_PHYSICAL_GPU_HANDLE);
    QTest::newRow("anything") << quint64(0x1234) << int(NVAPI_EXPECTED_PHYSICAL_GPU_HANDLE);
}

void TestSimulatedOperations::unknownHandles()
{
    QFETCH(quint64, handle);
    QFETCH(int, status);
    CheckedDriver driver(oneBoardCard());
    driver.expectsWrongCalls();
    const DriverCalls calls = started(driver);
    void *const gpu = reinterpret_cast<void *>(static_cast<quintptr>(handle));
    char text[kNvApiShortTextSize] = "kept";
    QCOMPARE(calls.NvAPI_GPU_GetFullName(gpu, text), status);
    QCOMPARE(text, "kept");
    quint32 rpm = 0;
    QCOMPARE(calls.NvAPI_GPU_GetTachReading(gpu, &rpm), status);
    NvApiMemoryInfo record{};
    record.version = 0x70007; // the handle is looked at first
    QCOMPARE(calls.NvAPI_GPU_GetMemoryInfo(gpu, &record), status);
    QVERIFY(!driver.callRecords().back().card);
}

void TestSimulatedOperations::lostCard()
{
    CheckedDriver driver(oneBoardCard());
    const DriverCalls calls = started(driver);
    quint32 type = 0;
    QCOMPARE(calls.NvAPI_GPU_GetRamType(driver.handle(0), &type), NVAPI_OK);
    driver.edit(0, [](Card &card) { card.lost = true; });
    QCOMPARE(calls.NvAPI_GPU_GetRamType(driver.handle(0), &type), NVAPI_EXPECTED_PHYSICAL_GPU_HANDLE);
    QCOMPARE(driver.callRecords().back().card.value(), 0u); // the journal still tells which it was
}

void TestSimulatedOperations::nullPointers()
{
    CheckedDriver driver(oneBoardCard());
    driver.expectsWrongCalls();
    const DriverCalls calls = started(driver);
    void *const gpu = driver.handle(0);
    quint32 word = 0;
    QCOMPARE(calls.NvAPI_EnumPhysicalGPUs(nullptr, &word), NVAPI_INVALID_ARGUMENT);
    QCOMPARE(calls.NvAPI_GPU_GetFullName(gpu, nullptr), NVAPI_INVALID_ARGUMENT);
    QCOMPARE(calls.NvAPI_GPU_GetPCIIdentifiers(gpu, &word, &word, nullptr, &word), NVAPI_INVALID_ARGUMENT);
    QCOMPARE(calls.NvAPI_GPU_GetPstates20(gpu, nullptr), NVAPI_INVALID_ARGUMENT);
    QCOMPARE(calls.NvAPI_SYS_GetChipSetInfo(nullptr), NVAPI_INVALID_ARGUMENT);
    NV_I2C_INFO transfer{};
    transfer.version = kI2cInfoVersion3;
    QCOMPARE(calls.NvAPI_I2CReadEx(gpu, &transfer, nullptr), NVAPI_INVALID_ARGUMENT);
    QCOMPARE(calls.NvAPI_I2CRead(gpu, &transfer), NVAPI_INVALID_ARGUMENT); // no data
}

void TestSimulatedOperations::enumeration()
{
    Scenario scenario = oneCardAtLoad(0);
    scenario.cards.push_back(scenario.cards.front());
    scenario.cards.push_back(scenario.cards.front());
    scenario.cards[1].tcc = true;
    CheckedDriver driver(scenario);
    const DriverCalls calls = started(driver);
    NvPhysicalGpuHandle gpus[kNvApiMaxGpus] = {};
    quint32 count = 0;
    QCOMPARE(calls.NvAPI_EnumPhysicalGPUs(gpus, &count), NVAPI_OK);
    QCOMPARE(count, 2u);
    QCOMPARE(gpus[0], driver.handle(0));
    QCOMPARE(gpus[1], driver.handle(2));
    QCOMPARE(calls.NvAPI_EnumTCCPhysicalGPUs(gpus, &count), NVAPI_OK);
    QCOMPARE(count, 1u);
    QCOMPARE(gpus[0], driver.handle(1));
}

void TestSimulatedOperations::enumerationWithoutCards()
{
    CheckedDriver driver{Scenario()};
    const DriverCalls calls = started(driver);
    NvPhysicalGpuHandle gpus[kNvApiMaxGpus] = {};
    quint32 count = 7;
    QCOMPARE(calls.NvAPI_Initialize(), NVAPI_OK);
    QCOMPARE(calls.NvAPI_EnumPhysicalGPUs(gpus, &count), NVAPI_NVIDIA_DEVICE_NOT_FOUND);
    QCOMPARE(count, 0u);
    NvDisplayHandle display = nullptr;
    QCOMPARE(calls.NvAPI_EnumNvidiaDisplayHandle(0, &display), NVAPI_NVIDIA_DEVICE_NOT_FOUND);
}

void TestSimulatedOperations::displays()
{
    Scenario scenario = oneCardAtLoad(0);
    scenario.cards.front().displays = 3;
    CheckedDriver driver(scenario);
    const DriverCalls calls = started(driver);
    NvDisplayHandle display = nullptr;
    quint32 output = 0;
    quint32 outputs = 0;
    for (quint32 i = 0; i < 3; ++i) {
        QCOMPARE(calls.NvAPI_EnumNvidiaDisplayHandle(i, &display), NVAPI_OK);
        QVERIFY(display);
        QCOMPARE(calls.NvAPI_GetAssociatedDisplayOutputId(display, &output), NVAPI_OK);
        QVERIFY((outputs & output) == 0);
        outputs |= output;
    }
    QCOMPARE(calls.NvAPI_EnumNvidiaDisplayHandle(3, &display), NVAPI_END_ENUMERATION);
    QCOMPARE(calls.NvAPI_GetAssociatedDisplayOutputId(nullptr, &output), NVAPI_INVALID_HANDLE);
}

void TestSimulatedOperations::fixedInformation()
{
    CheckedDriver driver;
    const DriverCalls calls = started(driver);
    char text[kNvApiShortTextSize];
    QCOMPARE(calls.NvAPI_GPU_GetFullName(driver.handle(0), text), NVAPI_OK);
    QCOMPARE(text, "GeForce GTX 1070 Ti");
    QCOMPARE(calls.NvAPI_GPU_GetVbiosVersionString(driver.handle(0), text), NVAPI_OK);
    QCOMPARE(text, "86.04.85.00.c1");
    quint32 device = 0;
    quint32 subsystem = 0;
    quint32 revision = 0;
    quint32 extended = 0;
    QCOMPARE(calls.NvAPI_GPU_GetPCIIdentifiers(driver.handle(0), &device, &subsystem, &revision, &extended),
             NVAPI_OK);
    QCOMPARE(device, 0x1B8210DEu);
    QCOMPARE(subsystem, 0x111D7377u);
    QCOMPARE(revision, 0xA1u);
    QCOMPARE(extended, 0x1B82u);
    QCOMPARE(calls.NvAPI_GPU_GetPCIIdentifiers(driver.handle(1), &device, &subsystem, &revision, &extended),
             NVAPI_OK);
    QVERIFY((subsystem & 0xFFFF) != 0x7377);
    quint32 type = 0;
    QCOMPARE(calls.NvAPI_GPU_GetRamType(driver.handle(0), &type), NVAPI_OK);
    QCOMPARE(type, 8u);
    quint32 width = 0;
    quint32 location = 0;
    QCOMPARE(calls.NvAPI_GPU_GetFBWidthAndLocation(driver.handle(0), &width, &location), NVAPI_OK);
    QCOMPARE(width, 256u);
    quint32 version = 0;
    QCOMPARE(calls.NvAPI_SYS_GetDriverAndBranchVersion(&version, text), NVAPI_OK);
    QCOMPARE(version, 38532u);
    QCOMPARE(text, "r385_00");
    NvApiChipsetInfo chipset{};
    chipset.version = kChipsetInfoVersion4;
    QCOMPARE(calls.NvAPI_SYS_GetChipSetInfo(&chipset), NVAPI_OK);
    QCOMPARE(chipset.szVendorName, "Simulated");
    QCOMPARE(chipset.vendorId, 0x8086u);
}

void TestSimulatedOperations::errorTexts()
{
    CheckedDriver driver(oneBoardCard());
    const DriverCalls calls = started(driver);
    char text[kNvApiShortTextSize];
    QCOMPARE(calls.NvAPI_GetErrorMessage(NVAPI_INCOMPATIBLE_STRUCT_VERSION, text), NVAPI_OK);
    QCOMPARE(text, "NVAPI_INCOMPATIBLE_STRUCT_VERSION");
    QCOMPARE(calls.NvAPI_GetErrorMessage(-12345, text), NVAPI_OK);
    QCOMPARE(text, "NVAPI_UNKNOWN_STATUS");
    QCOMPARE(driver.callRecords().back().arguments.at("status").get<int>(), -12345);
}

void TestSimulatedOperations::memoryByVersion_data()
{
    QTest::addColumn<quint32>("version");
    QTest::addColumn<quint32>("available");
    QTest::newRow("newest") << kMemoryInfoVersion3 << 8388608u - 131072u;
    QTest::newRow("second") << kMemoryInfoVersion2 << 8388608u - 131072u;
    QTest::newRow("oldest tells what is free now") << kMemoryInfoVersion1 << 8388608u - 524288u;
}

void TestSimulatedOperations::memoryByVersion()
{
    QFETCH(quint32, version);
    QFETCH(quint32, available);
    CheckedDriver driver(oneCardAtLoad(0));
    const DriverCalls calls = started(driver);
    NvApiMemoryInfo record{};
    record.version = version;
    QCOMPARE(calls.NvAPI_GPU_GetMemoryInfo(driver.handle(0), &record), NVAPI_OK);
    QCOMPARE(record.dedicatedVideoMemory, 8388608u);
    QCOMPARE(record.availableDedicatedVideoMemory, available);
    QCOMPARE(record.curAvailableDedicatedVideoMemory, version == kMemoryInfoVersion1 ? 0u : 8388608u - 524288u);
}

void TestSimulatedOperations::tccCardHasNoAvailability()
{
    Scenario scenario = oneCardAtLoad(50);
    scenario.cards.front().tcc = true;
    CheckedDriver driver(scenario);
    const DriverCalls calls = started(driver);
    NvApiMemoryInfo record{};
    record.version = kMemoryInfoVersion3;
    QCOMPARE(calls.NvAPI_GPU_GetMemoryInfo(driver.handle(0), &record), NVAPI_OK);
    QCOMPARE(record.dedicatedVideoMemory, 8388608u);
    QCOMPARE(record.availableDedicatedVideoMemory, 0u);
    QCOMPARE(record.curAvailableDedicatedVideoMemory, 0u);
}

void TestSimulatedOperations::clockTypes_data()
{
    QTest::addColumn<bool>("memoryIsRange");
    QTest::addColumn<quint32>("clockType");
    QTest::addColumn<int>("status");
    QTest::addColumn<quint32>("graphicsKHz");
    QTest::addColumn<quint32>("memoryKHz");
    QTest::newRow("current, range") << true << 0u << 0 << 1707000u << 4104000u;
    QTest::newRow("base leaves a range clock's offset out") << true << 1u << 0 << 1607000u << 4004000u;
    QTest::newRow("base contains a single clock's offset") << false << 1u << 0 << 1607000u << 4104000u;
    QTest::newRow("boost") << true << 2u << 0 << 1683000u << 4004000u;
    QTest::newRow("upper bits are not the type") << true << 5u << 0 << 1607000u << 4004000u;
    QTest::newRow("no such type") << true << 3u << int(NVAPI_INVALID_ARGUMENT) << 0u << 0u;
}

void TestSimulatedOperations::clockTypes()
{
    QFETCH(bool, memoryIsRange);
    QFETCH(quint32, clockType);
    QFETCH(int, status);
    QFETCH(quint32, graphicsKHz);
    QFETCH(quint32, memoryKHz);
    Scenario scenario = oneCardAtLoad(20);
    scenario.cards.front().clocks.memoryIsRange = memoryIsRange;
    CheckedDriver driver(scenario);
    driver.expectsWrongCalls();
    driver.edit(0, [](Card &card) {
        card.settings.graphicsOffsetKHz = 100000;
        card.settings.memoryOffsetKHz = 100000;
    });
    driver.advance(1000);
    const DriverCalls calls = started(driver);
    NvApiClockFrequencies record{};
    record.version = kClockFrequenciesVersion2;
    record.clockType = clockType;
    QCOMPARE(calls.NvAPI_GPU_GetAllClockFrequencies(driver.handle(0), &record), status);
    QCOMPARE(record.domain[kClockDomainGraphics].frequencyKHz, graphicsKHz);
    QCOMPARE(record.domain[kClockDomainMemory].frequencyKHz, memoryKHz);
    QCOMPARE(record.domain[kClockDomainProcessor].frequencyKHz, graphicsKHz);
    QCOMPARE(record.clockType, clockType);
}

void TestSimulatedOperations::utilization()
{
    Scenario scenario = oneCardAtLoad(60);
    scenario.cards.front().utilizationDomains = {0, 2};
    CheckedDriver driver(scenario);
    const DriverCalls calls = started(driver);
    NvApiDynamicPstates record{};
    record.version = kDynamicPstatesVersion1;
    QCOMPARE(calls.NvAPI_GPU_GetDynamicPstatesInfoEx(driver.handle(0), &record), NVAPI_OK);
    QCOMPARE(record.utilization[0].present, 1u);
    QCOMPARE(record.utilization[0].percentage, 60u);
    QCOMPARE(record.utilization[1].present, 0u);
    QCOMPARE(record.utilization[2].present, 1u);
    QCOMPARE(record.utilization[2].percentage, 9u);
    QCOMPARE(record.utilization[3].present, 0u);
}

void TestSimulatedOperations::thermalSensors_data()
{
    QTest::addColumn<std::vector<qint32>>("targets");
    QTest::addColumn<quint32>("index");
    QTest::addColumn<int>("status");
    QTest::addColumn<quint32>("count");
    QTest::addColumn<qint32>("firstTemp");
    using Targets = std::vector<qint32>;
    QTest::newRow("GPU alone") << Targets{1} << 0u << 0 << 1u << 71;
    QTest::newRow("GPU second") << Targets{2, 1} << 0u << 0 << 2u << 28;
    QTest::newRow("from the second on") << Targets{2, 1} << 1u << 0 << 1u << 71;
    QTest::newRow("all") << Targets{1, 2, 4} << 15u << 0 << 3u << 71;
    QTest::newRow("none") << Targets{} << 0u << 0 << 0u << 0;
    QTest::newRow("index beyond") << Targets{1} << 1u << int(NVAPI_INVALID_ARGUMENT) << 3u << 0;
}

void TestSimulatedOperations::thermalSensors()
{
    QFETCH(std::vector<qint32>, targets);
    QFETCH(quint32, index);
    QFETCH(int, status);
    QFETCH(quint32, count);
    QFETCH(qint32, firstTemp);
    Scenario scenario = oneCardAtLoad(0);
    scenario.cards.front().thermal.pinnedC = 71;
    scenario.cards.front().thermal.sensorTargets = targets;
    CheckedDriver driver(scenario);
    driver.expectsWrongCalls();
    const DriverCalls calls = started(driver);
    NvApiThermalSettings record{};
    record.version = kThermalSettingsVersion2;
    record.count = kThermalSensorCount;
    QCOMPARE(calls.NvAPI_GPU_GetThermalSettings(driver.handle(0), index, &record), status);
    QCOMPARE(record.count, count);
    QCOMPARE(record.sensor[0].currentTemp, firstTemp);
}

void TestSimulatedOperations::withoutADriver()
{
    NvApiQueryInterface query = nullptr;
    {
        const CheckedDriver driver(oneBoardCard());
        query = driver.queryInterface();
    }
    const DriverCalls calls(query);
    QCOMPARE(calls.NvAPI_Initialize(), NVAPI_LIBRARY_NOT_FOUND);
}

void TestSimulatedOperations::manyThreads()
{
    CheckedDriver driver(oneBoardCard(), SimulatedClock::Wall);
    const DriverCalls calls = started(driver); // by the first thread that calls
    constexpr int kThreads = 4;
    constexpr int kRounds = 200;
    std::vector<std::thread> threads;
    std::atomic<int> failures{0};
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < kRounds; ++round) {
                NvApiClockFrequencies clocks{};
                clocks.version = kClockFrequenciesVersion3;
                quint32 rpm = 0;
                if (calls.NvAPI_GPU_GetAllClockFrequencies(driver.handle(0), &clocks) != NVAPI_OK ||
                    calls.NvAPI_GPU_GetTachReading(driver.handle(0), &rpm) != NVAPI_OK)
                    ++failures;
            }
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    QCOMPARE(failures.load(), 0);
    std::array<int, kThreads + 2> callsOfThread{};
    for (const Call &call : driver.callRecords()) {
        QVERIFY(call.thread >= 2 && call.thread <= kThreads + 1);
        ++callsOfThread[static_cast<std::size_t>(call.thread)];
    }
    for (int i = 2; i <= kThreads + 1; ++i)
        QCOMPARE(callsOfThread[static_cast<std::size_t>(i)], kRounds * 2);
}

QTEST_APPLESS_MAIN(TestSimulatedOperations)
#include "TestSimulatedOperations.moc"
