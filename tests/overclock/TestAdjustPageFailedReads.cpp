#include "overclock/AdjustFileWorld.h"

#include <QtTest>

#include <functional>

using Script = std::function<void(AdjustFileWorld &)>;
Q_DECLARE_METATYPE(Script)

namespace
{

constexpr Operation kBaseFrequencies = Operation::NvAPI_GPU_GetAllClockFrequencies;
constexpr Operation kPstates = Operation::NvAPI_GPU_GetPstates20;
constexpr Operation kPowerPolicies = Operation::NvAPI_GPU_ClientPowerPoliciesGetInfo;
constexpr Operation kPowerStatus = Operation::NvAPI_GPU_ClientPowerPoliciesGetStatus;
constexpr Operation kThermalPolicies = Operation::NvAPI_GPU_ClientThermalPoliciesGetInfo;
constexpr Operation kThermalStatus = Operation::NvAPI_GPU_ClientThermalPoliciesGetStatus;
constexpr Operation kCoolers = Operation::NvAPI_GPU_GetCoolerSettings;

constexpr int kForGood = StandInDriver::kForever;
constexpr int kOneRead = 3; ///< a read of clocks or states is tried at three record versions

/// The card's own figures, as a settings file keeps them.
AdjustModuleInfo stock()
{
    AdjustModuleInfo values;
    values.GpuFreClock = 1607;
    values.FanSpeedLevel = 20;
    values.Voltage = 1050;
    values.MemoryFreClock = 4004;
    values.Power = 100;
    values.Temperature = 83;
    return values;
}

AdjustModuleInfo raised()
{
    AdjustModuleInfo values = stock();
    values.GpuFreClock = 1707;
    values.MemoryFreClock = 4104;
    values.Voltage = 1070;
    values.Power = 110;
    values.Temperature = 88;
    return values;
}

QVector<int> numbers(const AdjustModuleInfo &values)
{
    return {values.GpuFreClock,    values.FanSpeedLevel, values.Voltage,
            values.MemoryFreClock, values.Power,         values.Temperature};
}

/// What stands on the card: offsets in kHz and microvolts, limits in thousandths of a percent and in degrees.
QVector<int> standing(const AdjustFileWorld &world)
{
    const simulated::CardSettings settings = world.driver.card(0).settings;
    return {settings.graphicsOffsetKHz, settings.memoryOffsetKHz, settings.voltageOffset_uV, int(settings.powerLimit),
            settings.temperatureLimit256 / 256};
}

const QVector<int> kStockStands = {0, 0, 0, 100000, 83};

/// The orders of a card that is to stay as it is.
const QString kFan = "fan 20 % automatic";
const QStringList kClocks = {"graphics offset 0 kHz", "memory offset 0 kHz"};
const QString kTemperature = "temperature limit 83 C first";
const QString kPower = "power limit 100 %";
const QString kVoltage = "voltage offset 0 uV";
const QStringList kAllOrders = QStringList{kFan} + kClocks + QStringList{kTemperature, kPower, kVoltage};
/// What besides does a card no harm: the other steps of Default, and the driver's own control of a fan.
const QStringList kHarmlessOrders = {"restore entry 1", "over-voltage 0 uV", "temperature limit 83 C",
                                     "fan 0 % automatic"};

void startWith(AdjustFileWorld &world, const AdjustModuleInfo &saved)
{
    world.save(saved);
    world.openFromFile();
}

void autoAndApply(AdjustFileWorld &world)
{
    world.click("btnFanAuto");
    world.apply();
}

} // namespace

/// A figure that could not be read from the card is never the base of an order to it, and never kept for the next
/// start. On cards that take what they are told, with a driver that fails for a while.
class TestAdjustPageFailedReads : public QObject
{
    Q_OBJECT

private slots:
    void ordersAndFile_data();
    void ordersAndFile();
    void failedReadBackThenHighPerformance_data();
    void failedReadBackThenHighPerformance();
    void highPerformanceOffWithAFailedReadBack();
    void highPerformanceEndedByAFailedRead();
    void cancelBehindAFailedReadBack();
    void defaultBehindRaisedValues();
    void loweredClockWithAFailedReadBack();
    void appliedClockWithAFailedReadBack();
    void unreadRowsShowNothingRaised();
    void manualFanOfAnUnreadCooler();
    void lostModeWithFailingReads();
    void anyReadMayFail_data();
    void anyReadMayFail();
};

void TestAdjustPageFailedReads::ordersAndFile_data()
{
    QTest::addColumn<Script>("script");
    QTest::addColumn<QStringList>("orders");
    QTest::addColumn<QVector<int>>("saved"); // graphics, fan, voltage, memory, power, temperature

    const auto row = [](const char *name, const QStringList &orders, const QVector<int> &saved,
                        const Script &script) {
        QTest::newRow(name) << script << orders << saved;
    };
    const QVector<int> stockFile = numbers(stock());
    const auto startWithout = [](Operation operation, int count, int from = 1) {
        return [=](AdjustFileWorld &world) {
            world.driver.fails(operation, NVAPI_ERROR, from, count);
            startWith(world, stock());
        };
    };
    const auto applyWithout = [](Operation operation, int count, int from = 1) {
        return [=](AdjustFileWorld &world) {
            world.driver.fails(operation, NVAPI_ERROR, from, count);
            world.openFromFile();
            autoAndApply(world);
        };
    };

    row("start, six failed base frequencies", kAllOrders, stockFile, startWithout(kBaseFrequencies, 6));
    row("start, nine failed base frequencies", kAllOrders, stockFile, startWithout(kBaseFrequencies, 9));
    row("start, no base frequencies at all", kAllOrders, stockFile, startWithout(kBaseFrequencies, kForGood));
    row("start, six failed P-states", kAllOrders.mid(0, 5), stockFile, startWithout(kPstates, 6));
    row("start, nine failed P-states", kAllOrders.mid(0, 5), stockFile, startWithout(kPstates, 9));
    row("start, no P-states at all", kAllOrders.mid(0, 5), stockFile, startWithout(kPstates, kForGood));
    row("start, no thermal policies", QStringList{kFan} + kClocks + QStringList{kPower, kVoltage}, stockFile,
        startWithout(kThermalPolicies, kForGood));
    row("start, no temperature limit", QStringList{kFan} + kClocks + QStringList{kPower, kVoltage}, stockFile,
        startWithout(kThermalStatus, kForGood));
    row("start, no power policies", QStringList{kFan} + kClocks + QStringList{kTemperature, kVoltage}, stockFile,
        startWithout(kPowerPolicies, kForGood));
    row("start, no power target", QStringList{kFan} + kClocks + QStringList{kTemperature, kVoltage}, stockFile,
        startWithout(kPowerStatus, kForGood));
    row("start, no coolers", QStringList{"fan 0 % automatic"} + kAllOrders.mid(1), stockFile,
        startWithout(kCoolers, kForGood));

    row("Apply, the clocks were read and their bases not", kAllOrders, stockFile,
        applyWithout(kBaseFrequencies, kOneRead * 2, 2));
    row("Apply, the graphics range was not read", kAllOrders, stockFile, applyWithout(kPstates, kOneRead, 3));
    row("Apply, neither range was read", kAllOrders, stockFile, applyWithout(kPstates, kOneRead * 2, 3));
    row("Apply, the bases were read and the clocks not", kAllOrders, stockFile, applyWithout(kPstates, kOneRead, 2));
    row("Apply, the clocks are those of the P-states", kAllOrders, stockFile,
        applyWithout(kBaseFrequencies, kOneRead));
    row("Apply, no base frequencies at all", kAllOrders, {-1, 20, 1050, -1, 100, 83},
        applyWithout(kBaseFrequencies, kForGood));
    row("Apply, no P-states at all", kAllOrders.mid(0, 5), {-1, 20, -1, -1, 100, 83},
        applyWithout(kPstates, kForGood));
    row("Apply, no policies at all", QStringList{kFan} + kClocks + QStringList{kVoltage},
        {1607, 20, 1050, 4004, -1, -1}, [](AdjustFileWorld &world) {
            world.driver.fails(kPowerPolicies);
            world.driver.fails(kThermalPolicies);
            world.openFromFile();
            autoAndApply(world);
        });
    row("Apply, no coolers", QStringList{"fan 0 % automatic"} + kAllOrders.mid(1), {1607, -1, 1050, 4004, 100, 83},
        applyWithout(kCoolers, kForGood));
    row("no base frequencies at a start that applies nothing", {}, {-1, 20, 1050, -1, 100, 83},
        [](AdjustFileWorld &world) {
            world.driver.fails(kBaseFrequencies);
            world.openFromFile();
        });
    row("no P-states at a start that applies nothing", {}, {-1, 20, -1, -1, 100, 83}, [](AdjustFileWorld &world) {
        world.driver.fails(kPstates);
        world.openFromFile();
    });
}

void TestAdjustPageFailedReads::ordersAndFile()
{
    QFETCH(Script, script);
    AdjustFileWorld world;
    script(world);
    QTEST(world.orders(), "orders");
    QCOMPARE(standing(world), kStockStands);
    world.close();
    QTEST(numbers(world.saved()), "saved");

    world.driver.clearFaults();
    world.openFromFile();
    QCOMPARE(standing(world), kStockStands);
}

void TestAdjustPageFailedReads::failedReadBackThenHighPerformance_data()
{
    QTest::addColumn<int>("operation");

    QTest::newRow("base frequencies") << int(kBaseFrequencies);
    QTest::newRow("P-states") << int(kPstates);
}

void TestAdjustPageFailedReads::failedReadBackThenHighPerformance()
{
    QFETCH(int, operation);
    AdjustFileWorld world;
    world.openFromFile();
    world.driver.forgetCalls();
    world.click("btnFanAuto");
    world.driver.fails(static_cast<Operation>(operation));
    world.apply();
    world.driver.clearFaults();
    // The driver answers again, and what the page knows of the card is still the failed read.
    QVERIFY(world.page->setHighPerformance(true));
    QCOMPARE(world.orders().filter(QRegularExpression("graphics|memory")), kClocks + kClocks);

    world.driver.forgetCalls();
    QVERIFY(world.page->setHighPerformance(false));
    QCOMPARE(world.orders().filter(QRegularExpression("graphics|memory")), kClocks);
    QCOMPARE(standing(world), kStockStands);
    world.close();
    QCOMPARE(numbers(world.saved()), numbers(stock()));
    world.openFromFile();
    QCOMPARE(standing(world), kStockStands);
}

void TestAdjustPageFailedReads::highPerformanceOffWithAFailedReadBack()
{
    AdjustFileWorld world;
    world.openFromFile();
    QVERIFY(world.page->setHighPerformance(true));
    QCOMPARE(standing(world), QVector<int>({126000, 0, 0, 120000, 83}));
    for (const Operation operation : {kBaseFrequencies, kPstates, kPowerStatus})
        world.driver.fails(operation);
    QVERIFY(world.page->setHighPerformance(false));
    QCOMPARE(standing(world), kStockStands);
    world.close();
    QCOMPARE(numbers(world.saved()), numbers(stock())); // not the preset's, which were read last
    QVERIFY(!world.saved().EnableHighPerformance);
}

void TestAdjustPageFailedReads::highPerformanceEndedByAFailedRead()
{
    AdjustFileWorld world;
    world.openFromFile();
    QVERIFY(world.page->setHighPerformance(true));
    world.driver.fails(Operation::NvAPI_GPU_GetFullName, NVAPI_ERROR, 1, 1);
    QVERIFY(!world.page->setHighPerformance(false));
    world.close();
    QCOMPARE(numbers(world.saved()), numbers(stock())); // the next start brings no preset of a mode that is off
    world.openFromFile();
    QCOMPARE(standing(world), kStockStands);
}

void TestAdjustPageFailedReads::cancelBehindAFailedReadBack()
{
    AdjustFileWorld world;
    world.openFromFile();
    world.driver.fails(kBaseFrequencies);
    autoAndApply(world);
    world.driver.clearFaults();
    world.move(RowPower, 90);
    world.click("btnCancel");
    world.driver.forgetCalls();
    autoAndApply(world);
    QCOMPARE(world.orders(), kAllOrders);
    world.close();
    QCOMPARE(numbers(world.saved()), numbers(stock()));
}

void TestAdjustPageFailedReads::defaultBehindRaisedValues()
{
    AdjustFileWorld world;
    startWith(world, raised());
    QCOMPARE(standing(world), QVector<int>({100000, 100000, 20000, 110000, 88}));
    world.driver.fails(kBaseFrequencies);
    world.driver.fails(kPstates);
    world.click("btnDefault");
    QCOMPARE(standing(world), kStockStands);
    world.close();
    // What was raised before is not kept although the new figures could not be read.
    QCOMPARE(numbers(world.saved()), QVector<int>({-1, 20, -1, -1, 100, 83}));
    world.driver.clearFaults();
    world.openFromFile();
    QCOMPARE(standing(world), kStockStands);
}

void TestAdjustPageFailedReads::loweredClockWithAFailedReadBack()
{
    AdjustFileWorld world;
    startWith(world, raised());
    world.move(RowGpuClock, 1607);
    world.driver.forgetCalls();
    world.driver.fails(kBaseFrequencies, NVAPI_ERROR, 3); // the two orders read their ranges still
    world.apply();
    QCOMPARE(world.orders().value(1), QString("graphics offset 0 kHz"));
    world.close();
    QCOMPARE(world.saved().GpuFreClock, 1607); // not the 1707 that were read last
    QCOMPARE(world.saved().MemoryFreClock, 4104);
}

void TestAdjustPageFailedReads::appliedClockWithAFailedReadBack()
{
    AdjustFileWorld world;
    world.openFromFile();
    world.move(RowGpuClock, 1707);
    world.driver.forgetCalls();
    world.driver.fails(kBaseFrequencies, NVAPI_ERROR, 3);
    world.apply();
    QCOMPARE(world.orders().value(1), QString("graphics offset 100000 kHz"));
    // The next Apply has no base, so the offset goes; what the user asked for stays in the file.
    world.driver.forgetCalls();
    autoAndApply(world);
    QCOMPARE(world.orders().value(1), QString("graphics offset 0 kHz"));
    world.close();
    QCOMPARE(world.saved().GpuFreClock, 1707);
}

void TestAdjustPageFailedReads::unreadRowsShowNothingRaised()
{
    AdjustFileWorld world;
    world.driver.fails(kBaseFrequencies);
    startWith(world, raised());
    for (const AdjustRowIndex index : {RowGpuClock, RowMemoryClock}) {
        QCOMPARE(world.row(index)->value(), 0);
        QCOMPARE(world.slider(index)->value(), 0);
        QVERIFY(!world.row(index)->isEnabled());
    }
    world.close();
    QCOMPARE(numbers(world.saved()), numbers(raised())); // the user's own, for a start that can read the card
}

void TestAdjustPageFailedReads::manualFanOfAnUnreadCooler()
{
    AdjustModuleInfo values = stock();
    values.FanMode = 1;
    values.FanSpeedLevel = 60;
    AdjustFileWorld world;
    world.driver.fails(kCoolers);
    startWith(world, values);
    QCOMPARE(world.orders().value(0), QString("fan 0 % automatic")); // the driver drives it
    world.close();
    QCOMPARE(world.saved().FanSpeedLevel, 60);
    QCOMPARE(world.saved().FanMode, 1);

    world.driver.clearFaults();
    world.driver.forgetCalls();
    world.openFromFile();
    QCOMPARE(world.orders().value(0), QString("fan 60 % manual"));
}

void TestAdjustPageFailedReads::lostModeWithFailingReads()
{
    AdjustModuleInfo values = raised();
    values.EnableHighPerformance = true;
    AdjustFileWorld world;
    world.driver.fails(Operation::NvAPI_GPU_GetFullName);
    world.driver.fails(kBaseFrequencies);
    startWith(world, values);
    QCOMPARE(world.orders(), QStringList());
    world.close();
    // The mode's numbers are no longer the user's wish once the mode is gone.
    QCOMPARE(numbers(world.saved()), QVector<int>({-1, 20, 1050, -1, 100, 83}));
    world.driver.clearFaults();
    world.openFromFile();
    QCOMPARE(standing(world), kStockStands);
}

void TestAdjustPageFailedReads::anyReadMayFail_data()
{
    QTest::addColumn<int>("operation");
    QTest::addColumn<Script>("script");

    const QList<QPair<const char *, Script>> scripts = {
        {"start with stock values, Default",
         [](AdjustFileWorld &world) {
             startWith(world, stock());
             world.click("btnDefault");
         }},
        {"start, Apply",
         [](AdjustFileWorld &world) {
             world.openFromFile();
             autoAndApply(world);
         }},
    };
    for (const auto &script : scripts) {
        for (const Operation operation : {kBaseFrequencies, kPstates, kPowerPolicies, kPowerStatus, kThermalPolicies,
                                          kThermalStatus, kCoolers, Operation::NvAPI_GPU_ClientPowerTopologyGetInfo})
            QTest::newRow(qPrintable(QString("%1, %2").arg(script.first, operationName(operation))))
                << int(operation) << script.second;
    }
}

void TestAdjustPageFailedReads::anyReadMayFail()
{
    QFETCH(int, operation);
    QFETCH(Script, script);
    const auto failing = static_cast<Operation>(operation);
    // Every read in turn, alone and with those behind it, until the script has no such call left.
    for (const int count : {kOneRead, kForGood}) {
        bool struck = true;
        for (int from = 1; struck; ++from) {
            const QByteArray which = QString("call %1, %2").arg(from).arg(count).toLatin1();
            AdjustFileWorld world;
            world.driver.fails(failing, NVAPI_ERROR, from, count);
            script(world);
            struck = world.driver.calls(failing).size() >= from;
            for (const QString &order : world.orders()) {
                QVERIFY2(kAllOrders.contains(order) || kHarmlessOrders.contains(order),
                         which + ": " + order.toLatin1());
            }
            QVERIFY2(standing(world) == kStockStands, which);
            world.close();
            const QVector<int> kept = numbers(world.saved());
            const QVector<int> own = numbers(stock());
            for (int index = 0; index < kept.size(); ++index)
                QVERIFY2(kept.at(index) == own.at(index) || kept.at(index) == -1, which);
            world.driver.clearFaults();
            world.openFromFile();
            QVERIFY2(standing(world) == kStockStands, which);
        }
    }
}

QTEST_MAIN(TestAdjustPageFailedReads)
#include "TestAdjustPageFailedReads.moc"
