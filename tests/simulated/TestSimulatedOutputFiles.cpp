#include "TestScenes.h"
#include "Transfer.h"
#include "simulated/StateFile.h"

#include <QTemporaryDir>
#include <QtTest>

#include <nlohmann/json.hpp>

#include <thread>

using namespace simulated;

namespace
{

QByteArrayList linesOf(const QString &path)
{
    QFile file(path);
    QByteArrayList lines;
    if (file.open(QIODevice::ReadOnly)) {
        lines = file.readAll().split('\n');
        lines.removeLast(); // behind the last line end
    }
    return lines;
}

nlohmann::json stateOf(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return nlohmann::json::parse(file.readAll().toStdString(), nullptr, false);
}

} // namespace

class TestSimulatedOutputFiles : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void journalLines_data();
    void journalLines();
    void journalIsOnTheDiskAtOnce();
    void journalIsAppendedTo();
    void journalKeepsFailedWrites();
    void journalOfUnknownVersionTellsNothing();
    void hostileRequestIsJournalledSafely();
    void threadNumbers();
    void stateOfACard();
    void stateOfTheLightsIsWrittenAtOnce();
    void stateIsRewrittenSparingly();

private:
    [[nodiscard]] DriverSettings settings() const;

    std::unique_ptr<QTemporaryDir> folder;
    QString journal;
    QString state;
};

void TestSimulatedOutputFiles::init()
{
    folder = std::make_unique<QTemporaryDir>();
    QVERIFY(folder->isValid());
    journal = folder->filePath("journal");
    state = folder->filePath("state.json");
}

DriverSettings TestSimulatedOutputFiles::settings() const
{
    DriverSettings settings;
    settings.clock = SimulatedClock::Manual;
    settings.journalPath = journal.toStdString();
    settings.statePath = state.toStdString();
    return settings;
}

void TestSimulatedOutputFiles::journalLines_data()
{
    QTest::addColumn<int>("which");
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("no arguments") << 0
                                  << QByteArray(
                                         R"({"t":250,"thread":1,"op":"NvAPI_Initialize","gpu":null,"status":0})");
    QTest::newRow("plain read") << 1
                                << QByteArray(
                                       R"({"t":250,"thread":1,"op":"NvAPI_GPU_GetRamType","gpu":0,"status":0})");
    QTest::newRow("record") << 2
                            << QByteArray(R"({"t":250,"thread":1,"op":"NvAPI_GPU_GetAllClockFrequencies","gpu":0,)"
                                          R"("version":"0x30108","args":{"clockType":1},"status":0})");
    QTest::newRow("refused") << 3
                             << QByteArray(
                                    R"({"t":250,"thread":1,"op":"NvAPI_GPU_SetCoolerLevels","gpu":0,)"
                                    R"("version":"0x1001C","args":{"cooler":7,"levels":)"
                                    R"([{"index":0,"level":50,"policy":3}]},)"
                                    R"("note":"unknown cooler policy","violation":"cooler policy 3","status":-5})");
    QTest::newRow("clock write") << 4
                                 << QByteArray(R"({"t":250,"thread":1,"op":"NvAPI_GPU_SetPstates20","gpu":0,)"
                                               R"("version":"0x11C94","args":{"numPstates":1,"numClocks":1,)"
                                               R"("numBaseVoltages":0,"pstates":[{"id":0,"clocks":)"
                                               R"([{"domain":4,"delta_kHz":100000}],"voltages":[]}]},"status":0})");
    QTest::newRow("over-voltage write")
        << 5
        << QByteArray(
               R"({"t":250,"thread":1,"op":"NvAPI_GPU_SetPstates20","gpu":0,)"
               R"("version":"0x31CF8","args":{"numPstates":0,"numClocks":0,)"
               R"("numBaseVoltages":0,"pstates":[],"overVoltages":[{"domain":0,"delta_uV":12500}]},"status":0})");
    QTest::newRow("power write") << 6
                                 << QByteArray(R"({"t":250,"thread":1,"op":"NvAPI_GPU_ClientPowerPoliciesSetStatus",)"
                                               R"("gpu":0,"version":"0x10048","args":{"count":1,"entries":)"
                                               R"([{"policyId":2,"flags":0,"power":90000}]},"status":0})");
    QTest::newRow("thermal write, oldest record")
        << 7
        << QByteArray(R"({"t":250,"thread":1,"op":"NvAPI_GPU_ClientThermalPoliciesSetStatus",)"
                      R"("gpu":0,"version":"0x10028","args":{"count":1,"entries":)"
                      R"([{"policyId":1,"temperature":20480}]},"status":0})");
    QTest::newRow("LED frame")
        << 8
        << QByteArray(R"({"t":250,"thread":1,"op":"NvAPI_I2CWrite","gpu":0,)"
                      R"("version":"0x3002C","args":{"address":"0xA0","regSize":0,"reg":"00","size":5,)"
                      R"("data":"05 0A 00 00 F0","displayMask":0,"ddc":0,"speed":"0xFFFF",)"
                      R"("speedKhz":6,"port":1,"portSet":1},"status":0})");
    QTest::newRow("sensor read")
        << 9
        << QByteArray(R"({"t":250,"thread":1,"op":"NvAPI_I2CRead","gpu":0,)"
                      R"("version":"0x10020","args":{"address":"0x9E","regSize":1,"reg":"00","size":2,)"
                      R"("data":"2D 80","displayMask":0,"ddc":0,"speed":"0xFFFF"},"status":0})");
    QTest::newRow("restore entry") << 10
                                   << QByteArray(R"({"t":250,"thread":1,"op":"NvAPI_DriverEntry_B23B70EE","gpu":0,)"
                                                 R"("args":{"value":1},"status":0})");
    QTest::newRow("null handle") << 11
                                 << QByteArray(R"({"t":250,"thread":1,"op":"NvAPI_GPU_GetRamType","gpu":null,)"
                                               R"("handle":"null","status":-10})");
    QTest::newRow("unknown handle") << 12
                                    << QByteArray(R"({"t":250,"thread":1,"op":"NvAPI_GPU_GetRamType","gpu":null,)"
                                                  R"("handle":"unknown","violation":"unknown card handle",)"
                                                  R"("status":-101})");
}

void TestSimulatedOutputFiles::journalLines()
{
    QFETCH(int, which);
    QFETCH(QByteArray, line);
    Scenario scenario = oneBoardCard();
    scenario.cards.front().boardSensors[0].pinnedC = 45.5;
    CheckedDriver driver(scenario, settings());
    driver.advance(250);
    const DriverCalls calls = started(driver);
    void *const gpu = driver.handle(0);
    quint32 word = 0;
    NV_GPU_PERF_PSTATES20_INFO pstates{};
    Transfer probe(0xA0, 0, {0x05, 0x0A, 0x00, 0x00, 0xF0});
    Transfer sensor(0x9E, 1, {0, 0}, kI2cInfoVersion1);
    switch (which) {
    case 0:
        calls.NvAPI_Initialize();
        break;
    case 1:
        calls.NvAPI_GPU_GetRamType(gpu, &word);
        break;
    case 2: {
        NvApiClockFrequencies record{};
        record.version = kClockFrequenciesVersion3;
        record.clockType = kClockTypeBase;
        calls.NvAPI_GPU_GetAllClockFrequencies(gpu, &record);
        break;
    }
    case 3: {
        NvApiCoolerLevels record{};
        record.version = kCoolerLevelsVersion1Small;
        record.levels[0] = {50, 3};
        calls.NvAPI_GPU_SetCoolerLevels(gpu, kAllCoolers, &record);
        break;
    }
    case 4:
        pstates.version = kPstates20Version1;
        pstates.numPstates = 1;
        pstates.numClocks = 1;
        pstates.pstates[0].clocks[0].domainId = kClockDomainMemory;
        pstates.pstates[0].clocks[0].freqDelta_kHz.value = 100000;
        calls.NvAPI_GPU_SetPstates20(gpu, &pstates);
        break;
    case 5:
        pstates.version = kPstates20Version3;
        pstates.ov.numVoltages = 1;
        pstates.ov.voltages[0].voltDelta_uV.value = 12500;
        calls.NvAPI_GPU_SetPstates20(gpu, &pstates);
        break;
    case 6: {
        NvApiPowerPoliciesStatus record{};
        record.version = kPowerPoliciesStatusVersion1;
        record.count = 1;
        record.entries[0] = {2, 0, 90000, 0};
        calls.NvAPI_GPU_ClientPowerPoliciesSetStatus(gpu, &record);
        break;
    }
    case 7: {
        NvApiThermalPoliciesStatus record{};
        record.version = kThermalPoliciesStatusVersion1;
        record.count = 1;
        record.entries[0] = {1, 80 * 256, 0};
        calls.NvAPI_GPU_ClientThermalPoliciesSetStatus(gpu, &record);
        break;
    }
    case 8:
        calls.NvAPI_I2CWrite(gpu, &probe.record);
        break;
    case 9:
        calls.NvAPI_I2CRead(gpu, &sensor.record);
        break;
    case 10:
        calls.NvAPI_DriverEntry_B23B70EE(gpu, 1);
        break;
    case 11:
        calls.NvAPI_GPU_GetRamType(nullptr, &word);
        break;
    default:
        calls.NvAPI_GPU_GetRamType(&word, &word);
        break;
    }
    if (line.contains("violation"))
        driver.expectsWrongCalls();
    QCOMPARE(linesOf(journal).mid(1), QByteArrayList{line}); // the first is the start
    QCOMPARE(QByteArray::fromStdString(journalLine(driver.callRecords().back())), line);
}

void TestSimulatedOutputFiles::journalIsOnTheDiskAtOnce()
{
    CheckedDriver driver(oneBoardCard(), settings());
    const DriverCalls calls = started(driver);
    for (int i = 1; i <= 5; ++i) {
        calls.NvAPI_Initialize();
        QCOMPARE(linesOf(journal).size(), 1 + i); // the first is the start
    }
}

void TestSimulatedOutputFiles::journalIsAppendedTo()
{
    for (int i = 1; i <= 2; ++i) {
        CheckedDriver driver(oneBoardCard(), settings());
        started(driver).NvAPI_Unload();
        QCOMPARE(linesOf(journal).size(), 2 * i);
    }
}

void TestSimulatedOutputFiles::journalKeepsFailedWrites()
{
    CheckedDriver driver(oneBoardCard(), settings());
    driver.fails(Operation::NvAPI_GPU_SetPstates20, NVAPI_ERROR);
    const DriverCalls calls = started(driver);
    NV_GPU_PERF_PSTATES20_INFO record{};
    record.version = kPstates20Version3;
    record.numPstates = 1;
    record.numClocks = 1;
    record.pstates[0].clocks[0].freqDelta_kHz.value = 77000;
    QCOMPARE(calls.NvAPI_GPU_SetPstates20(driver.handle(0), &record), NVAPI_ERROR);
    QVERIFY(linesOf(journal).back().contains(R"("delta_kHz":77000)"));
    QVERIFY(linesOf(journal).back().endsWith(R"("status":-1})"));
    QCOMPARE(driver.card(0).settings.graphicsOffsetKHz, 0);
}

void TestSimulatedOutputFiles::journalOfUnknownVersionTellsNothing()
{
    CheckedDriver driver(oneBoardCard(), settings());
    const DriverCalls calls = started(driver);
    quint32 versionAlone = 0x50005; // nothing says that there is more than this word
    QCOMPARE(
        calls.NvAPI_GPU_SetPstates20(driver.handle(0), reinterpret_cast<NV_GPU_PERF_PSTATES20_INFO *>(&versionAlone)),
        NVAPI_INCOMPATIBLE_STRUCT_VERSION);
    QVERIFY(!linesOf(journal).back().contains("args"));
    QVERIFY(linesOf(journal).back().contains(R"("version":"0x50005")"));
    QCOMPARE(driver.takeViolations(), QStringList{"GPU_SetPstates20: unknown version word"});
}

void TestSimulatedOutputFiles::hostileRequestIsJournalledSafely()
{
    CheckedDriver driver(oneBoardCard(), settings());
    const DriverCalls calls = started(driver);
    NV_GPU_PERF_PSTATES20_INFO pstates{};
    pstates.version = kPstates20Version3;
    pstates.numPstates = 0xFFFFFFFF;
    pstates.numClocks = 0xFFFFFFFF;
    pstates.numBaseVoltages = 0xFFFFFFFF;
    pstates.ov.numVoltages = 0xFFFFFFFF;
    QCOMPARE(calls.NvAPI_GPU_SetPstates20(driver.handle(0), &pstates), NVAPI_INVALID_ARGUMENT);
    quint8 byte = 1;
    NV_I2C_INFO transfer{};
    transfer.version = kI2cInfoVersion3;
    transfer.pbData = &byte;
    transfer.cbSize = 0xFFFFFFFF;
    transfer.regAddrSize = 0xFFFFFFFF;
    transfer.pbI2cRegAddress = &byte;
    QCOMPARE(calls.NvAPI_I2CWrite(driver.handle(0), &transfer), NVAPI_INVALID_ARGUMENT);
    QCOMPARE(linesOf(journal).size(), 3);
    QVERIFY(!linesOf(journal).back().contains(R"("data")"));
    driver.expectsWrongCalls();
}

void TestSimulatedOutputFiles::threadNumbers()
{
    CheckedDriver driver(oneBoardCard(), settings());
    const DriverCalls calls = started(driver);
    calls.NvAPI_Initialize();
    std::thread([&] { calls.NvAPI_Initialize(); }).join();
    calls.NvAPI_Initialize();
    const std::vector<Call> told = driver.callRecords();
    QCOMPARE(told[0].thread, 1);
    QCOMPARE(told[1].thread, 2);
    QCOMPARE(told[2].thread, 1);
}

void TestSimulatedOutputFiles::stateOfACard()
{
    Scenario scenario = oneBoardCard();
    scenario.cards.push_back(oneCardAtLoad(50).cards.front());
    scenario.cards.front().thermal.pinnedC = 64;
    {
        CheckedDriver driver(scenario, settings());
        QCOMPARE(stateOf(state)["cards"].size(), std::size_t(2)); // there from the start
        const DriverCalls calls = started(driver);
        Transfer frame(0xA0, 0, {0x08, 0x00, 0x32, 0x02, 0xFF, 0x00, 0x00, 0xC4}, kI2cInfoVersion2);
        QCOMPARE(calls.NvAPI_I2CWrite(driver.handle(0), &frame.record), NVAPI_OK);
        QCOMPARE(calls.NvAPI_Unload(), NVAPI_OK);
        QCOMPARE(stateOf(state)["cards"][0]["led"]["accepted"].get<int>(), 1); // an unload writes in any case
    }
    const nlohmann::json own = stateOf(state)["cards"][0];
    QCOMPARE(own["name"].get<std::string>(), std::string("GeForce GTX 1070 Ti"));
    QCOMPARE(own["readings"]["temperatureC"].get<double>(), 64.0);
    QCOMPARE(own["led"]["colours"].dump(), std::string("[[255,0,0]]"));
    QCOMPARE(own["led"]["frame"].get<std::string>(), std::string("08 00 32 02 FF 00 00 C4"));
    QCOMPARE(own["lcd"]["command"].get<int>(), 0xF0);
    QCOMPARE(own["settings"]["powerLimitPercent"].get<double>(), 100.0);
    const nlohmann::json other = stateOf(state)["cards"][1];
    QVERIFY(other["led"].is_null());
    QVERIFY(other["lcd"].is_null());
    QVERIFY(QDir(folder->path()).entryList({"*.new"}).isEmpty());
}

void TestSimulatedOutputFiles::stateOfTheLightsIsWrittenAtOnce()
{
    CheckedDriver driver(oneBoardCard(), settings());
    const DriverCalls calls = started(driver);
    Transfer red(0xA0, 0, {0x08, 0x00, 0x32, 0x02, 0xFF, 0x00, 0x00, 0xC4}, kI2cInfoVersion2);
    Transfer off(0xA0, 0, {0x05, 0x00, 0x00, 0x0A, 0xF0}, kI2cInfoVersion2);
    QCOMPARE(calls.NvAPI_I2CWrite(driver.handle(0), &red.record), NVAPI_OK);
    QCOMPARE(stateOf(state)["cards"][0]["led"]["level"].get<int>(), 0x32);
    QCOMPARE(calls.NvAPI_I2CWrite(driver.handle(0), &off.record), NVAPI_OK);
    QCOMPARE(stateOf(state)["cards"][0]["led"]["level"].get<int>(), 0);
    QCOMPARE(stateOf(state)["cards"][0]["led"]["accepted"].get<int>(), 2);
}

void TestSimulatedOutputFiles::stateIsRewrittenSparingly()
{
    StateFile file(state.toStdString());
    QVERIFY(file.isDue(false));
    file.write("{}");
    QVERIFY(!file.isDue(false));
    QVERIFY(file.isDue(true));
    QTRY_VERIFY(file.isDue(false));
    QVERIFY(!StateFile("").isDue(true));
}

QTEST_GUILESS_MAIN(TestSimulatedOutputFiles)
#include "TestSimulatedOutputFiles.moc"
