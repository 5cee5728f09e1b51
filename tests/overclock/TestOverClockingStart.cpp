#include "overclock/AdjustCalls.h"
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
class TestOverClockingStart : public QObject
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

void TestOverClockingStart::readingTheCard()
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
    QCOMPARE(world.writes(), QStringList());
    QCOMPARE(world.rowValues(), QVector<int>({1607, 33, 1062, 4006, 110, 80}));
}

void TestOverClockingStart::startWithoutSavedValues_data()
{
    QTest::addColumn<quint32>("policy");
    QTest::addColumn<int>("fanMode");
    QTest::addColumn<QString>("caption");

    QTest::newRow("driver's own control") << 0x20U << 0 << "AUT";
    QTest::newRow("manual") << 1U << 1 << "MAN";
    QTest::newRow("any other policy counts as the driver's") << 8U << 0 << "AUT";
}

void TestOverClockingStart::startWithoutSavedValues()
{
    QFETCH(quint32, policy);
    AdjustPageWorld world;
    world.card().coolers.cooler[0].currentPolicy = policy;
    world.open();
    QCOMPARE(world.writes(), QStringList());
    QTEST(world.parameters().FanMode, "fanMode");
    QTEST(world.fanMode(), "caption");
    QCOMPARE(world.row(RowFan)->isEnabled(), policy == 1);
    QCOMPARE(world.visibleButtons(), QStringList{"btnDefault"});
}

void TestOverClockingStart::startWithSavedValues_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<QStringList>("writes");

    const auto row = [](const char *name, const QStringList &writes, const Change &change) {
        QTest::newRow(name) << change << writes;
    };
    row("every number", fanThen(fanLevelCall(60), savedSettings()), [](AdjustModuleInfo &) {});
    row("fan by the driver", fanThen("GPU_SetCoolerLevels gpu0 cooler=7 0x100A4 [4]=60 [8]=32", savedSettings()),
        [](AdjustModuleInfo &saved) { saved.FanMode = FanAuto; });
    row("never adjusted", fanThen(kFanAutoCall, unchangedSettings()), [](AdjustModuleInfo &saved) { saved = {}; });
    row("graphics clock of -1 leaves the card's own",
        fanThen(fanLevelCall(60), settingCalls(0, 100000, 85 * 256, 115000, 10000)),
        [](AdjustModuleInfo &saved) { saved.GpuFreClock = -1; });
    row("every negative number leaves the card's own", fanThen(kFanManualCall, unchangedSettings()),
        [](AdjustModuleInfo &saved) {
            saved.GpuFreClock = saved.FanSpeedLevel = saved.Voltage = -1;
            saved.MemoryFreClock = saved.Power = saved.Temperature = kLowest;
        });
    row("zeros are values, below every range",
        fanThen(fanLevelCall(27), settingCalls(-200000, -502000, 60 * 256, 50000, -100000)),
        [](AdjustModuleInfo &saved) {
            saved.GpuFreClock = saved.FanSpeedLevel = saved.Voltage = 0;
            saved.MemoryFreClock = saved.Power = saved.Temperature = 0;
        });
    row("far above every range", fanThen(fanLevelCall(100), settingCalls(1000000, 1000000, 90 * 256, 120000, 100000)),
        [](AdjustModuleInfo &saved) {
            saved.GpuFreClock = saved.FanSpeedLevel = saved.Voltage = kHighest;
            saved.MemoryFreClock = saved.Power = saved.Temperature = kHighest;
        });
}

void TestOverClockingStart::startWithSavedValues()
{
    QFETCH(Change, change);
    AdjustModuleInfo saved = savedValues();
    change(saved);
    AdjustPageWorld world;
    world.open(saved);
    QTEST(world.writes(), "writes");
    // The card of this driver keeps its own values, and these are shown.
    QCOMPARE(world.rowValues(), QVector<int>({1607, 33, 1062, 4006, 110, 80}));
    QCOMPARE(world.parameters().FanMode, saved.FanMode);
    QCOMPARE(world.visibleButtons(), QStringList{"btnDefault"});
}

void TestOverClockingStart::savedCurve_data()
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

void TestOverClockingStart::savedCurve()
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
    QTRY_VERIFY(world.fanWrites().contains(fanLevelCall(level)));
    QCOMPARE(world.distinctFanWrites(), QStringList{fanLevelCall(level)});
    QCOMPARE(world.writesBesideFan(), savedSettings());
    QCOMPARE(world.fanMode(), QString("UDF"));
    QVERIFY(world.linkBox()->isChecked());

    const AdjustModuleInfo out = world.parameters();
    QCOMPARE(out.FanMode, fanMode);
    QCOMPARE(out.Nodes, nodes);
    QVERIFY(out.LinkOfPowerWithTemperature);
}

void TestOverClockingStart::brokenSavedCurve_data()
{
    QTest::addColumn<QList<QPoint>>("nodes");

    QTest::newRow("one node") << QList<QPoint>{{0, 0}};
    QTest::newRow("starts beside the origin") << QList<QPoint>{{0, 1}, {52, 77}, {100, 100}};
    QTest::newRow("ends below full speed") << QList<QPoint>{{0, 0}, {52, 77}, {100, 90}};
    QTest::newRow("numbers of any size") << QList<QPoint>{{kLowest, kHighest}, {kHighest, kLowest}};
}

void TestOverClockingStart::brokenSavedCurve()
{
    QFETCH(QList<QPoint>, nodes);
    AdjustModuleInfo saved = savedValues();
    saved.FanMode = FanUserDefined;
    saved.Nodes = nodes;
    AdjustPageWorld world;
    world.open(saved);
    QTRY_COMPARE(world.distinctFanWrites(), QStringList{fanLevelCall(kDefaultCurveLevel)});
    world.click("btnUserDefineConfig"); // shows its default curve
    QCOMPARE(world.parameters().Nodes, nodes);
}

void TestOverClockingStart::destruction_data()
{
    QTest::addColumn<int>("fanMode");
    QTest::addColumn<QStringList>("lastWrites");

    QTest::newRow("driver's fan stays") << 0 << QStringList();
    QTest::newRow("manual level stays") << 1 << QStringList();
    QTest::newRow("curve hands the fan back") << 2 << QStringList{kFanHandedBack};
    QTest::newRow("fan mode 7 is the curve too") << 7 << QStringList{kFanHandedBack};
    QTest::newRow("a negative fan mode is the curve too") << -1 << QStringList{kFanHandedBack};
}

void TestOverClockingStart::destruction()
{
    QFETCH(int, fanMode);
    AdjustModuleInfo saved = savedValues();
    saved.FanMode = fanMode;
    saved.Nodes = kSteepCurve;
    AdjustPageWorld world;
    world.open(saved);
    const bool curve = fanMode != FanAuto && fanMode != FanManual;
    if (curve)
        QTRY_VERIFY(world.fanWrites().contains(fanLevelCall(kSteepCurveLevel)));
    world.driver.forgetCalls();
    world.page.reset();
    QStringList writes = world.writes();
    writes.removeAll(fanLevelCall(kSteepCurveLevel));
    QTEST(writes, "lastWrites");
    if (curve)
        QCOMPARE(world.fanWrites().last(), kFanHandedBack); // the worker is over before
}

QTEST_MAIN(TestOverClockingStart)
#include "TestOverClockingStart.moc"
