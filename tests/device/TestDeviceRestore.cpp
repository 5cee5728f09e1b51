#include "device/DeviceTest.h"

#include <QtTest>

namespace
{

/// What the driver of the healthy card is told when everything goes back to its defaults.
const QStringList kEntry = {"DriverEntry_B23B70EE gpu0 value=1"};
const QStringList kGraphics = {"GPU_SetPstates20 gpu0 0x31CF8 [8]=1 [12]=1"};
const QStringList kMemory = {"GPU_SetPstates20 gpu0 0x31CF8 [8]=1 [12]=1 [28]=4"};
const QStringList kReadPower = {
    "GPU_ClientPowerTopologyGetInfo gpu0 0x10018",
    "GPU_ClientPowerTopologyGetStatus gpu0 0x10048 [4]=1 [8]=1",
    "GPU_ClientPowerPoliciesGetInfo gpu0 0x100B8",
    "GPU_ClientPowerPoliciesGetStatus gpu0 0x10048 [4]=1 [8]=2",
};
const QStringList kWritePower = {"GPU_ClientPowerPoliciesSetStatus gpu0 0x10048 [4]=1 [8]=2 [16]=100000"};
const QStringList kCooler = {"GPU_SetCoolerLevels gpu0 cooler=7 0x100A4 [8]=32"};
const QStringList kVoltage = {"GPU_SetPstates20 gpu0 0x31CF8 [8]=1 [16]=1"};
const QStringList kReadThermal = {
    "GPU_ClientThermalPoliciesGetInfo gpu0 0x20068",
    "GPU_ClientThermalPoliciesGetStatus gpu0 0x20038 [4]=1 [8]=3",
};
const QStringList kWriteThermal = {
    "GPU_ClientThermalPoliciesGetInfo gpu0 0x20068",
    "GPU_ClientThermalPoliciesSetStatus gpu0 0x20038 [4]=1 [8]=3 [12]=21248 [16]=1", // 83 degrees
};
const QStringList kOverVoltage = {"GPU_SetPstates20 gpu0 0x31CF8 [7316]=1"};
const QStringList kPriority = {
    "GPU_ClientThermalPoliciesGetInfo gpu0 0x20068", "GPU_ClientThermalPoliciesGetStatus gpu0 0x20038 [4]=1 [8]=3",
    "GPU_ClientThermalPoliciesSetStatus gpu0 0x20038 [4]=1 [8]=3 [12]=20480", // 80 degrees, kept
};

/// The same calls with another status.
QStringList giving(NvAPI_Status status, const QStringList &calls)
{
    QStringList lines;
    for (const QString &call : calls)
        lines << call + QString(" -> %1").arg(status);
    return lines;
}

QStringList atVersion(const QString &version, const QStringList &calls)
{
    QStringList lines = calls;
    return lines.replaceInStrings(QRegularExpression("0x[0-9A-F]+"), version);
}

/// A ladder of which every rung fails.
QStringList wholeLadder(const QStringList &call)
{
    return giving(-1, atVersion("0x31CF8", call) + atVersion("0x21CF8", call) + atVersion("0x11C94", call));
}

} // namespace

/// The restore sequence, call by call, also when single steps fail.
class TestDeviceRestore : public QObject
{
    Q_OBJECT

private slots:
    void restore_data();
    void restore();
    void withoutCard();
    void afterUserSettings();
};

void TestDeviceRestore::restore_data()
{
    QTest::addColumn<Arrange>("arrange");
    QTest::addColumn<bool>("result");
    QTest::addColumn<QStringList>("calls");
    const auto row = [](const char *name, bool result, const QStringList &calls, const Arrange &arrange) {
        QTest::newRow(name) << arrange << result << calls;
    };
    const auto failing = [](Operation operation, int fromCall = 1, int count = RawDriver::kForever) {
        return Arrange([=](RawDriver &driver) { driver.fails(operation, -1, fromCall, count); });
    };
    const QStringList clocks = kEntry + kGraphics + kMemory;
    const QStringList power = kReadPower + kWritePower;
    const QStringList end = kCooler + kVoltage + kReadThermal + kWriteThermal + kOverVoltage + kPriority;

    row("everything well", true, clocks + power + end, [](RawDriver &) {});
    row("driver entry fails", true, giving(-1, kEntry) + kGraphics + kMemory + power + end,
        failing(Operation::NvAPI_DriverEntry_B23B70EE));
    row("driver entry missing", true, kGraphics + kMemory + power + end,
        [](RawDriver &driver) { driver.lacks(Operation::NvAPI_DriverEntry_B23B70EE); });

    // the memory write starts where the graphics write ended
    row("graphics write falls one version", true,
        kEntry + giving(-1, kGraphics) + atVersion("0x21CF8", kGraphics + kMemory) + power + end,
        failing(Operation::NvAPI_GPU_SetPstates20, 1, 1));
    row("graphics write falls two versions", true,
        kEntry + giving(-1, kGraphics + atVersion("0x21CF8", kGraphics)) + atVersion("0x11C94", kGraphics + kMemory) +
            power + end,
        failing(Operation::NvAPI_GPU_SetPstates20, 1, 2));
    row("graphics write fails, memory write at the oldest version", true,
        kEntry + wholeLadder(kGraphics) + atVersion("0x11C94", kMemory) + power + end,
        failing(Operation::NvAPI_GPU_SetPstates20, 1, 3));
    row("memory write falls one version", true,
        kEntry + kGraphics + giving(-1, kMemory) + atVersion("0x21CF8", kMemory) + power + end,
        failing(Operation::NvAPI_GPU_SetPstates20, 2, 1));
    row("memory write fails", true, kEntry + kGraphics + wholeLadder(kMemory) + power + end,
        failing(Operation::NvAPI_GPU_SetPstates20, 2, 3));
    row("memory write at the oldest version fails, the ladder begins below the newest", true,
        kEntry + wholeLadder(kGraphics) + giving(-1, atVersion("0x11C94", kMemory) + atVersion("0x21CF8", kMemory)) +
            atVersion("0x11C94", kMemory) + power + end,
        failing(Operation::NvAPI_GPU_SetPstates20, 1, 5));
    row("no clock write gets through", true,
        kEntry + wholeLadder(kGraphics) +
            giving(-1,
                   atVersion("0x11C94", kMemory) + atVersion("0x21CF8", kMemory) + atVersion("0x11C94", kMemory)) +
            power + end,
        failing(Operation::NvAPI_GPU_SetPstates20, 1, 6));

    row("only the power write fails", false, clocks + kReadPower + giving(-1, kWritePower) + end,
        failing(Operation::NvAPI_GPU_ClientPowerPoliciesSetStatus));
    row("power write missing", false, clocks + kReadPower + end,
        [](RawDriver &driver) { driver.lacks(Operation::NvAPI_GPU_ClientPowerPoliciesSetStatus); });
    // policy and default of a failed read are no figures to order
    row("power topology fails", false, clocks + giving(-1, kReadPower.mid(0, 1)) + end,
        failing(Operation::NvAPI_GPU_ClientPowerTopologyGetInfo));
    row("power policies fail", false, clocks + kReadPower.mid(0, 2) + giving(-1, kReadPower.mid(2, 1)) + end,
        failing(Operation::NvAPI_GPU_ClientPowerPoliciesGetInfo));
    row("power target unreadable, its default is known", true,
        clocks + kReadPower.mid(0, 3) + giving(-1, kReadPower.mid(3)) + kWritePower + end,
        failing(Operation::NvAPI_GPU_ClientPowerPoliciesGetStatus));
    row("cooler write fails", true,
        clocks + power + giving(-1, kCooler + QStringList{"GPU_SetCoolerLevels gpu0 cooler=7 0x1001C [8]=32"}) +
            end.mid(1),
        failing(Operation::NvAPI_GPU_SetCoolerLevels));
    row("voltage write fails", true, clocks + power + kCooler + wholeLadder(kVoltage) + end.mid(2),
        failing(Operation::NvAPI_GPU_SetPstates20, 3, 3));
    row("over-voltage write fails", true,
        clocks + power + kCooler + kVoltage + kReadThermal + kWriteThermal +
            giving(-1, {"GPU_SetPstates20 gpu0 0x31CF8 [7316]=1", "GPU_SetPstates20 gpu0 0x21CF8 [7316]=1",
                        "GPU_SetPstates20 gpu0 0x11C94"}) +
            kPriority,
        failing(Operation::NvAPI_GPU_SetPstates20, 4, 3));
    row("thermal writes fail", true,
        clocks + power + kCooler + kVoltage + kReadThermal + kWriteThermal.mid(0, 1) +
            giving(-1, {"GPU_ClientThermalPoliciesSetStatus gpu0 0x20038 [4]=1 [8]=3 [12]=21248 [16]=1",
                        "GPU_ClientThermalPoliciesSetStatus gpu0 0x10028 [4]=1 [8]=3 [12]=21248 [16]=1"}) +
            kOverVoltage + kPriority.mid(0, 2) + giving(-1, kPriority.mid(2)),
        failing(Operation::NvAPI_GPU_ClientThermalPoliciesSetStatus));
    const QStringList thermalInfoFails = {"GPU_ClientThermalPoliciesGetInfo gpu0 0x20068 -> -1",
                                          "GPU_ClientThermalPoliciesGetInfo gpu0 0x10058 -> -1"};
    row("thermal reads fail", true, clocks + power + kCooler + kVoltage + thermalInfoFails + kOverVoltage,
        failing(Operation::NvAPI_GPU_ClientThermalPoliciesGetInfo));
    const auto policyZero = [](RawDriver &driver) {
        driver.card().thermalPolicies.entries[0].policyId = 0;
        driver.card().powerPolicies.entries[0].policyId = 0;
    };
    row("one failed thermal read brings no limit to policy 0", true,
        clocks + QStringList(kReadPower).replaceInStrings(" [8]=2", "") +
            QStringList(kWritePower).replaceInStrings(" [8]=2", "") + kCooler + kVoltage + thermalInfoFails +
            kOverVoltage,
        [policyZero](RawDriver &driver) {
            policyZero(driver);
            driver.fails(Operation::NvAPI_GPU_ClientThermalPoliciesGetInfo, -1, 1, 2);
        });
}

void TestDeviceRestore::restore()
{
    QFETCH(Arrange, arrange);
    QFETCH(bool, result);
    QFETCH(QStringList, calls);
    RawDriver driver;
    arrange(driver);
    NvGpuControl gpu;
    driver.forgetCalls();
    QCOMPARE(gpu.restoreDefaults(), result);
    QCOMPARE(driver.rawCalls(), calls);
}

void TestDeviceRestore::withoutCard()
{
    RawDriver driver;
    driver.cards.clear();
    NvGpuControl gpu;
    driver.forgetCalls();
    QCOMPARE(gpu.restoreDefaults(), false);
    QCOMPARE(driver.rawCalls(), QStringList{});
}

void TestDeviceRestore::afterUserSettings()
{
    RawDriver driver;
    driver.card().p0Clock(0).freqDelta_kHz.value = 150000;
    driver.card().p0Clock(1).freqDelta_kHz.value = 500000;
    driver.card().p0Voltage(0).voltDelta_uV.value = 50000;
    driver.card().powerStatus.entries[0].power = 80000;
    NvGpuControl gpu;
    driver.forgetCalls();
    QCOMPARE(gpu.restoreDefaults(), true);
    QCOMPARE(driver.rawCalls(), kEntry + kGraphics + kMemory + kReadPower + kWritePower + kCooler + kVoltage +
                                    kReadThermal + kWriteThermal + kOverVoltage + kPriority);
}

QTEST_APPLESS_MAIN(TestDeviceRestore)
#include "TestDeviceRestore.moc"
