#include "overclock/AdjustPageWorld.h"

#include <QtTest>

#include <functional>
#include <limits>

using Change = std::function<void(AdjustModuleInfo &)>;
Q_DECLARE_METATYPE(Change)

namespace
{

constexpr qint32 kLowest = std::numeric_limits<qint32>::min();
constexpr qint32 kHighest = std::numeric_limits<qint32>::max();

} // namespace

/// What the page reads and tells the card when it is made, with and without saved values, and what when it goes.
class TestAdjustPageStart : public QObject
{
    Q_OBJECT

private slots:
    void readingTheCard();
    void startWithoutSavedValues_data();
    void startWithoutSavedValues();
    void startWithSavedValues_data();
    void startWithSavedValues();
    void savedCurve_data();
    void savedCurve();
    void brokenSavedCurve_data();
    void brokenSavedCurve();
    void destruction_data();
    void destruction();
};

void TestAdjustPageStart::readingTheCard()
{
    AdjustPageWorld world;
    world.open();
    QStringList operations;
    for (const QString &call : world.driver.calls())
        operations << call.section(' ', 0, 0);
    operations.removeDuplicates(); // leaves the first call of each
    QCOMPARE(operations, QStringList({"GPU_GetTachReading", "GPU_GetCoolerSettings",
                                      "GPU_ClientThermalPoliciesGetInfo", "GPU_ClientThermalPoliciesGetStatus",
                                      "GPU_ClientPowerTopologyGetInfo", "GPU_ClientPowerTopologyGetStatus",
                                      "GPU_ClientPowerPoliciesGetInfo", "GPU_ClientPowerPoliciesGetStatus",
                                      "GPU_GetPstates20", "GPU_GetAllClockFrequencies", "GPU_GetRamType"}));
    QCOMPARE(world.orders(), QStringList());
    QCOMPARE(world.rowValues(), kStockRows);
}

void TestAdjustPageStart::startWithoutSavedValues_data()
{
    QTest::addColumn<quint32>("policy");
    QTest::addColumn<int>("fanMode");
    QTest::addColumn<QString>("caption");

    QTest::newRow("driver's own control") << 0x20U << 0 << "AUT";
    QTest::newRow("manual") << 1U << 1 << "MAN";
    QTest::newRow("any other policy counts as the driver's") << 8U << 0 << "AUT";
}

void TestAdjustPageStart::startWithoutSavedValues()
{
    QFETCH(quint32, policy);
    AdjustPageWorld world;
    world.editCard([policy](simulated::Card &card) { card.settings.coolers[0].policy = qint32(policy); });
    world.open();
    QCOMPARE(world.orders(), QStringList());
    QTEST(world.parameters().FanMode, "fanMode");
    QTEST(world.fanMode(), "caption");
    QCOMPARE(world.row(RowFan)->isEnabled(), policy == 1);
    QCOMPARE(world.visibleButtons(), QStringList{"btnDefault"});
}

void TestAdjustPageStart::startWithSavedValues_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<QStringList>("orders");
    QTest::addColumn<QVector<int>>("rows");

    const auto row = [](const char *name, const QStringList &orders, const QVector<int> &rows, const Change &change) {
        QTest::newRow(name) << change << orders << rows;
    };
    row("every number", fanThen(fanOrder(60), savedSettings()), kSavedRows, [](AdjustModuleInfo &) {});
    row("fan by the driver", fanThen("fan 60 % automatic", savedSettings()),
        {1707, kDriversLevel, 1072, 4106, 115, 85}, [](AdjustModuleInfo &saved) { saved.FanMode = FanAuto; });
    row("never adjusted", fanThen(kFanAutoOrder, unchangedSettings()), {1607, kDriversLevel, 1062, 4006, 110, 80},
        [](AdjustModuleInfo &saved) { saved = {}; });
    row("graphics clock of -1 leaves the card's own", fanThen(fanOrder(60), settingOrders(0, 100000, 85, 115, 10000)),
        {1607, 60, 1072, 4106, 115, 85}, [](AdjustModuleInfo &saved) { saved.GpuFreClock = -1; });
    row("every negative number leaves the card's own", fanThen(kFanManualOrder, unchangedSettings()), kStockRows,
        [](AdjustModuleInfo &saved) {
            saved.GpuFreClock = saved.FanSpeedLevel = saved.Voltage = -1;
            saved.MemoryFreClock = saved.Power = saved.Temperature = kLowest;
        });
    row("zeros are values, below every range", fanThen(fanOrder(kFanRangePercent.lowest), lowestSettings()),
        kLowestRows, [](AdjustModuleInfo &saved) {
            saved.GpuFreClock = saved.FanSpeedLevel = saved.Voltage = 0;
            saved.MemoryFreClock = saved.Power = saved.Temperature = 0;
        });
    row("far above every range", fanThen(fanOrder(kFanRangePercent.highest), highestSettings()), kHighestRows,
        [](AdjustModuleInfo &saved) {
            saved.GpuFreClock = saved.FanSpeedLevel = saved.Voltage = kHighest;
            saved.MemoryFreClock = saved.Power = saved.Temperature = kHighest;
        });
}

void TestAdjustPageStart::startWithSavedValues()
{
    QFETCH(Change, change);
    AdjustModuleInfo saved = savedValues();
    change(saved);
    AdjustPageWorld world;
    world.open(saved);
    QTEST(world.orders(), "orders");
    QTEST(world.rowValues(), "rows");
    QCOMPARE(world.parameters().FanMode, saved.FanMode);
    QCOMPARE(world.visibleButtons(), QStringList{"btnDefault"});
}

void TestAdjustPageStart::savedCurve_data()
{
    QTest::addColumn<int>("fanMode");
    QTest::addColumn<QList<QPoint>>("nodes");
    QTest::addColumn<int>("level");

    QTest::newRow("user's curve") << 2 << kSteepCurve << kSteepCurveLevel;
    QTest::newRow("no curve saved: the default one drives") << 2 << QList<QPoint>{} << kDefaultCurveLevel;
    QTest::newRow("fan mode 7 is the curve") << 7 << kSteepCurve << kSteepCurveLevel;
    QTest::newRow("a negative fan mode is the curve") << -1 << kSteepCurve << kSteepCurveLevel;
    QTest::newRow("an unknown fan mode is the curve") << 9 << kSteepCurve << kSteepCurveLevel;
}

void TestAdjustPageStart::savedCurve()
{
    QFETCH(int, fanMode);
    QFETCH(QList<QPoint>, nodes);
    QFETCH(int, level);
    AdjustModuleInfo saved = savedValues();
    saved.FanMode = fanMode;
    saved.Nodes = nodes;
    saved.LinkOfPowerWithTemperature = true;
    AdjustPageWorld world;
    world.open(saved);
    QTRY_VERIFY(world.fanOrders().contains(fanOrder(level)));
    QCOMPARE(world.distinctFanOrders(), QStringList{fanOrder(level)});
    QCOMPARE(world.ordersBesideFan(), savedSettings());
    QCOMPARE(world.fanMode(), QString("UDF"));
    QVERIFY(world.linkBox()->isChecked());

    const AdjustModuleInfo out = world.parameters();
    QCOMPARE(out.FanMode, fanMode);
    QCOMPARE(out.Nodes, nodes);
    QVERIFY(out.LinkOfPowerWithTemperature);
}

void TestAdjustPageStart::brokenSavedCurve_data()
{
    QTest::addColumn<QList<QPoint>>("nodes");

    QTest::newRow("one node") << QList<QPoint>{{0, 0}};
    QTest::newRow("starts beside the origin") << QList<QPoint>{{0, 1}, {52, 77}, {100, 100}};
    QTest::newRow("ends below full speed") << QList<QPoint>{{0, 0}, {52, 77}, {100, 90}};
    QTest::newRow("numbers of any size") << QList<QPoint>{{kLowest, kHighest}, {kHighest, kLowest}};
}

void TestAdjustPageStart::brokenSavedCurve()
{
    QFETCH(QList<QPoint>, nodes);
    AdjustModuleInfo saved = savedValues();
    saved.FanMode = FanUserDefined;
    saved.Nodes = nodes;
    AdjustPageWorld world;
    world.open(saved);
    QTRY_COMPARE(world.distinctFanOrders(), QStringList{fanOrder(kDefaultCurveLevel)});
    world.click("btnUserDefineConfig"); // shows its default curve
    QCOMPARE(world.parameters().Nodes, nodes);
}

void TestAdjustPageStart::destruction_data()
{
    QTest::addColumn<int>("fanMode");
    QTest::addColumn<QStringList>("lastOrders");

    QTest::newRow("driver's fan stays") << 0 << QStringList();
    QTest::newRow("manual level stays") << 1 << QStringList();
    QTest::newRow("curve hands the fan back") << 2 << QStringList{kFanHandedBack};
    QTest::newRow("fan mode 7 is the curve too") << 7 << QStringList{kFanHandedBack};
    QTest::newRow("a negative fan mode is the curve too") << -1 << QStringList{kFanHandedBack};
}

void TestAdjustPageStart::destruction()
{
    QFETCH(int, fanMode);
    AdjustModuleInfo saved = savedValues();
    saved.FanMode = fanMode;
    saved.Nodes = kSteepCurve;
    AdjustPageWorld world;
    world.open(saved);
    const bool curve = fanMode != FanAuto && fanMode != FanManual;
    if (curve)
        QTRY_VERIFY(world.fanOrders().contains(fanOrder(kSteepCurveLevel)));
    world.driver.forgetCalls();
    world.page.reset();
    QStringList orders = world.orders();
    orders.removeAll(fanOrder(kSteepCurveLevel));
    QTEST(orders, "lastOrders");
    if (curve)
        QCOMPARE(world.fanOrders().last(), kFanHandedBack); // the worker is over before
}

QTEST_MAIN(TestAdjustPageStart)
#include "TestAdjustPageStart.moc"
