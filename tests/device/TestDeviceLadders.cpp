#include "device/NvGpuControl.h"

#include "support/RawDriver.h"

#include <QtTest>

#include <functional>

using Action = std::function<bool(NvGpuControl &)>;
using Versions = std::vector<quint32>;

namespace
{

/// One operation of the driver, the versions that the device tries, and the device operation that makes it do so.
struct Ladder
{
    Operation operation;
    Versions versions; ///< in the order tried
    bool anyFailureGoesDown;
    Action succeeds; ///< true when the device operation got through
};

const std::vector<Ladder> &ladders()
{
    static const std::vector<Ladder> table = {
        {Operation::NvAPI_GPU_GetMemoryInfo,
         {0x30020, 0x20018, 0x10014},
         true,
         [](NvGpuControl &gpu) {
             NvMemoryInfo out;
             return gpu.getMemoryInfo(out) && out.totalKB == 8388608;
         }},
        {Operation::NvAPI_GPU_GetAllClockFrequencies,
         {0x30108, 0x20108, 0x10108},
         true,
         [](NvGpuControl &gpu) {
             NvClockSet out;
             return gpu.getClockFrequencies(out, 1) && out.gpuClock == 1607;
         }},
        {Operation::NvAPI_GPU_GetDynamicPstatesInfoEx,
         {0x10048},
         true,
         [](NvGpuControl &gpu) {
             NvUsageInfo out;
             return gpu.getGpuUsage(out) && out.gpu == 41;
         }},
        {Operation::NvAPI_GPU_GetThermalSettings,
         {0x20044, 0x10044},
         true,
         [](NvGpuControl &gpu) {
             NvThermalInfo out;
             return gpu.getThermalSensor(out) && out.currentTemp == 52;
         }},
        // reading the fan for the telemetry goes down on "unknown version" alone
        {Operation::NvAPI_GPU_GetCoolerSettings,
         {0x40558, 0x30508, 0x203C8, 0x103C8, 0x10098},
         false,
         [](NvGpuControl &gpu) {
             NvCoolerInfo out;
             return gpu.getCoolerInfo(out) && out.defaultMinLevel == 27;
         }},
        // reading it for the card's own default goes down on any failure
        {Operation::NvAPI_GPU_GetCoolerSettings,
         {0x40558, 0x30508, 0x203C8, 0x103C8, 0x10098},
         true,
         [](NvGpuControl &gpu) {
             return gpu.setCoolerLevel(-1, 1);
         }},
        {Operation::NvAPI_GPU_SetCoolerLevels,
         {0x100A4, 0x1001C},
         true,
         [](NvGpuControl &gpu) {
             return gpu.setCoolerLevel(50, 1);
         }},
        {Operation::NvAPI_GPU_SetCoolerLevels,
         {0x100A4, 0x1001C},
         true,
         [](NvGpuControl &gpu) {
             return gpu.setCoolerAuto();
         }},
        // no smaller form when the card's own default is restored
        {Operation::NvAPI_GPU_SetCoolerLevels,
         {0x100A4},
         true,
         [](NvGpuControl &gpu) {
             return gpu.setCoolerLevel(-1, 1);
         }},
        {Operation::NvAPI_GPU_GetPstates20,
         {0x31CF8, 0x21CF8, 0x11C94},
         true,
         [](NvGpuControl &gpu) {
             NvVoltageInfo out;
             return gpu.getVoltageInfo(out) && out.currentVoltage == 1062;
         }},
        {Operation::NvAPI_GPU_GetPstates20,
         {0x31CF8, 0x21CF8, 0x11C94},
         true,
         [](NvGpuControl &gpu) {
             NvClockSet out;
             return gpu.getBaseClocks(out, true);
         }},
        {Operation::NvAPI_GPU_GetPstates20,
         {0x31CF8, 0x21CF8, 0x11C94},
         true,
         [](NvGpuControl &gpu) {
             NvClockSet out;
             return gpu.getBaseClocks(out, false);
         }},
        {Operation::NvAPI_GPU_GetPstates20,
         {0x31CF8, 0x21CF8, 0x11C94},
         true,
         [](NvGpuControl &gpu) {
             NvClockOffsetRange out;
             gpu.getGpuClockRange(out);
             return out.maxOffset == 1000;
         }},
        {Operation::NvAPI_GPU_GetPstates20,
         {0x31CF8, 0x21CF8, 0x11C94},
         true,
         [](NvGpuControl &gpu) {
             NvClockOffsetRange out;
             gpu.getMemoryClockRange(out);
             return out.maxOffset == 1000;
         }},
        {Operation::NvAPI_GPU_SetPstates20,
         {0x31CF8, 0x21CF8, 0x11C94},
         true,
         [](NvGpuControl &gpu) {
             return gpu.setGpuClockOffset(100);
         }},
        // the memory write starts at the oldest version, so that a driver that takes it never sees the newest
        {Operation::NvAPI_GPU_SetPstates20,
         {0x11C94, 0x21CF8, 0x11C94},
         true,
         [](NvGpuControl &gpu) {
             return gpu.setMemoryClockOffset(100);
         }},
        {Operation::NvAPI_GPU_SetPstates20,
         {0x31CF8, 0x21CF8, 0x11C94},
         true,
         [](NvGpuControl &gpu) {
             return gpu.setVoltageOffset(100);
         }},
        {Operation::NvAPI_GPU_SetPstates20,
         {0x31CF8, 0x21CF8, 0x11C94},
         true,
         [](NvGpuControl &gpu) {
             return gpu.setOverVoltage(100);
         }},
        {Operation::NvAPI_GPU_ClientPowerTopologyGetInfo,
         {0x10018},
         true,
         [](NvGpuControl &gpu) {
             NvPowerInfo out;
             return gpu.getPowerInfo(out);
         }},
        {Operation::NvAPI_GPU_ClientPowerTopologyGetStatus,
         {0x10048},
         true,
         [](NvGpuControl &gpu) {
             NvPowerInfo out;
             return gpu.getPowerInfo(out);
         }},
        {Operation::NvAPI_GPU_ClientPowerPoliciesGetInfo,
         {0x100B8},
         true,
         [](NvGpuControl &gpu) {
             NvPowerInfo out;
             return gpu.getPowerInfo(out);
         }},
        {Operation::NvAPI_GPU_ClientPowerPoliciesGetInfo,
         {0x100B8},
         true,
         [](NvGpuControl &gpu) {
             return gpu.setPowerLimit(2, 100);
         }},
        {Operation::NvAPI_GPU_ClientPowerPoliciesGetInfo,
         {0x100B8},
         true,
         [](NvGpuControl &gpu) {
             NvLimitPair out;
             return gpu.powerToTemperature(2, 3, 100, out);
         }},
        {Operation::NvAPI_GPU_ClientPowerPoliciesGetStatus,
         {0x10048},
         true,
         [](NvGpuControl &gpu) {
             NvPowerInfo out;
             return gpu.getPowerInfo(out);
         }},
        {Operation::NvAPI_GPU_ClientPowerPoliciesSetStatus,
         {0x10048},
         true,
         [](NvGpuControl &gpu) {
             return gpu.setPowerLimit(2, 100);
         }},
        {Operation::NvAPI_GPU_ClientThermalPoliciesGetInfo,
         {0x20068, 0x10058},
         true,
         [](NvGpuControl &gpu) {
             NvThermalPolicyInfo out;
             return gpu.getThermalPolicyInfo(out) && out.defaultTemp == 83;
         }},
        {Operation::NvAPI_GPU_ClientThermalPoliciesGetInfo,
         {0x20068, 0x10058},
         true,
         [](NvGpuControl &gpu) {
             return gpu.setThermalLimit(3, 80, true);
         }},
        {Operation::NvAPI_GPU_ClientThermalPoliciesGetInfo,
         {0x20068, 0x10058},
         true,
         [](NvGpuControl &gpu) {
             NvLimitPair out;
             return gpu.temperatureToPower(2, 3, 80, 100, out);
         }},
        {Operation::NvAPI_GPU_ClientThermalPoliciesGetStatus,
         {0x20038, 0x10028},
         true,
         [](NvGpuControl &gpu) {
             NvThermalPolicyInfo out;
             return gpu.getThermalPolicyInfo(out) && out.currentTemp == 80;
         }},
        {Operation::NvAPI_GPU_ClientThermalPoliciesSetStatus,
         {0x20038, 0x10028},
         true,
         [](NvGpuControl &gpu) {
             return gpu.setThermalLimit(3, 80, true);
         }},
    };
    return table;
}

QString hexWord(quint32 word)
{
    return "0x" + QString::number(word, 16).toUpper();
}

QStringList firstWords(const Versions &versions, std::size_t count)
{
    QStringList words;
    for (std::size_t i = 0; i < count; ++i)
        words << hexWord(versions[i]);
    return words;
}

} // namespace

/// Every operation that passes a versioned record, against drivers that know one version each, that fail, and
/// that lack the entry point.
class TestDeviceLadders : public QObject
{
    Q_OBJECT

private slots:
    void driverKnowsOneVersion_data();
    void driverKnowsOneVersion();
    void driverKnowsNoVersion_data() { ladderRows(); }
    void driverKnowsNoVersion();
    void driverFails_data();
    void driverFails();
    void driverLacksTheEntry_data() { ladderRows(); }
    void driverLacksTheEntry();
    void chipset_data();
    void chipset();

private:
    void ladderRows();
};

void TestDeviceLadders::ladderRows()
{
    QTest::addColumn<int>("row");
    for (std::size_t i = 0; i < ladders().size(); ++i)
        QTest::addRow("%zu %s", i, operationName(ladders()[i].operation)) << int(i);
}

void TestDeviceLadders::driverKnowsOneVersion_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("rung");
    for (std::size_t i = 0; i < ladders().size(); ++i) {
        const Ladder &ladder = ladders()[i];
        for (std::size_t rung = 0; rung < ladder.versions.size(); ++rung) {
            // where a ladder comes back to a version, its first place is the one that counts
            if (std::find(ladder.versions.begin(), ladder.versions.begin() + int(rung), ladder.versions[rung]) ==
                ladder.versions.begin() + int(rung))
                QTest::addRow("%zu %s knows %s", i, operationName(ladder.operation),
                              qPrintable(hexWord(ladder.versions[rung])))
                    << int(i) << int(rung);
        }
    }
}

void TestDeviceLadders::driverKnowsOneVersion()
{
    QFETCH(int, row);
    QFETCH(int, rung);
    const Ladder &ladder = ladders()[std::size_t(row)];
    RawDriver driver;
    driver.knows(ladder.operation, {ladder.versions[std::size_t(rung)]});
    NvGpuControl gpu;
    QVERIFY(ladder.succeeds(gpu));
    QCOMPARE(driver.versionsTried(ladder.operation), firstWords(ladder.versions, std::size_t(rung) + 1));
}

void TestDeviceLadders::driverKnowsNoVersion()
{
    QFETCH(int, row);
    const Ladder &ladder = ladders()[std::size_t(row)];
    RawDriver driver;
    driver.knows(ladder.operation, {});
    NvGpuControl gpu;
    QVERIFY(!ladder.succeeds(gpu));
    QCOMPARE(driver.versionsTried(ladder.operation), firstWords(ladder.versions, ladder.versions.size()));
}

void TestDeviceLadders::driverFails_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<NvAPI_Status>("status");
    QTest::addColumn<int>("failures");
    for (std::size_t i = 0; i < ladders().size(); ++i) {
        const Ladder &ladder = ladders()[i];
        if (!ladder.anyFailureGoesDown)
            continue;
        for (const NvAPI_Status status : {-1, -5, -9, -10, -101, -104}) {
            for (std::size_t failures = 1; failures <= ladder.versions.size(); ++failures)
                QTest::addRow("%zu %s gives %d %zu times", i, operationName(ladder.operation), status, failures)
                    << int(i) << status << int(failures);
        }
    }
}

void TestDeviceLadders::driverFails()
{
    QFETCH(int, row);
    QFETCH(NvAPI_Status, status);
    QFETCH(int, failures);
    const Ladder &ladder = ladders()[std::size_t(row)];
    RawDriver driver;
    driver.fails(ladder.operation, status, 1, failures);
    NvGpuControl gpu;
    const bool getsThrough = failures < int(ladder.versions.size());
    QCOMPARE(ladder.succeeds(gpu), getsThrough);
    QCOMPARE(driver.versionsTried(ladder.operation),
             firstWords(ladder.versions, std::min(std::size_t(failures) + 1, ladder.versions.size())));
}

void TestDeviceLadders::driverLacksTheEntry()
{
    QFETCH(int, row);
    const Ladder &ladder = ladders()[std::size_t(row)];
    RawDriver driver;
    driver.lacks(ladder.operation);
    NvGpuControl gpu;
    QVERIFY(!ladder.succeeds(gpu));
    QCOMPARE(driver.rawCalls(ladder.operation), QStringList{});
}

void TestDeviceLadders::chipset_data()
{
    QTest::addColumn<std::vector<int>>("statuses");
    QTest::addColumn<QStringList>("calls");
    using Statuses = std::vector<int>;
    QTest::newRow("newest") << Statuses{0} << QStringList{"0x400E8"};
    QTest::newRow("one down") << Statuses{-9, 0} << QStringList{"0x400E8", "0x300D8"};
    QTest::newRow("two down") << Statuses{-9, -9, 0} << QStringList{"0x400E8", "0x300D8", "0x20090"};
    QTest::newRow("all unknown") << Statuses{-9, -9, -9} << QStringList{"0x400E8", "0x300D8", "0x20090"};
    QTest::newRow("error ends it") << Statuses{-1, 0} << QStringList{"0x400E8"};
    QTest::newRow("invalid argument ends it") << Statuses{-5, 0} << QStringList{"0x400E8"};
    QTest::newRow("another failure one down ends it") << Statuses{-9, -104, 0} << QStringList{"0x400E8", "0x300D8"};
}

void TestDeviceLadders::chipset()
{
    QFETCH(std::vector<int>, statuses);
    QFETCH(QStringList, calls);
    RawDriver driver;
    driver.answersInTurn(Operation::NvAPI_SYS_GetChipSetInfo, statuses);
    NvGpuControl gpu;
    NvInfo info;
    gpu.getFixedInfo(info);
    QCOMPARE(driver.versionsTried(Operation::NvAPI_SYS_GetChipSetInfo), calls);
    QCOMPARE(driver.rawCalls(Operation::NvAPI_GetErrorMessage),
             statuses.front() == -1 ? QStringList{"GetErrorMessage status=-1"} : QStringList{});
    QCOMPARE(info.biosVersion, std::string("86.04.85.00.AB"));
}

QTEST_APPLESS_MAIN(TestDeviceLadders)
#include "TestDeviceLadders.moc"
