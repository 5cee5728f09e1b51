#include "overclock/AdjustPageWorld.h"
#include "support/ModalAnswer.h"

#include <QtTest>

#include <functional>

using Arrange = std::function<void(AdjustPageWorld &)>;
Q_DECLARE_METATYPE(Arrange)

namespace
{

/// The healthy card's orders of the preset: 1733 less 1607 MHz, 83 degrees, 120 percent.
QStringList presetOrders(int gpuKHz = 126000)
{
    return fanThen(kFanAutoOrder, settingOrders(gpuKHz, 0, kDefaultTargetC, kPowerLimitPercent.highest, 0));
}

/// The rows with the preset, and after Default: the driver controls the fan.
const QVector<int> kPresetRows{
    1733, kDriversLevel, kStockMillivolt, kStockMemoryMHz, kPowerLimitPercent.highest, kDefaultTargetC};
const QVector<int> kDefaultRows{kStockGpuMHz,    kDriversLevel,        kStockMillivolt,
                                kStockMemoryMHz, kDefaultPowerPercent, kDefaultTargetC};

/// Back to the healthy card as it stands, with its manual fan.
QStringList orderBack()
{
    return fanThen(kFanManualOrder, unchangedSettings());
}

AdjustModuleInfo savedMode()
{
    AdjustModuleInfo saved;
    saved.EnableHighPerformance = true;
    saved.GpuFreClock = 1800;
    saved.FanSpeedLevel = 60;
    saved.Voltage = 1072;
    saved.MemoryFreClock = 4106;
    saved.Power = 115;
    saved.Temperature = 85;
    saved.FanMode = FanUserDefined;
    saved.Nodes = kSteepCurve;
    saved.LinkOfPowerWithTemperature = true;
    return saved;
}

} // namespace

/// The factory overclock: who may have it, what it asks of the card, how it ends, and what a restart makes of it.
class TestAdjustPageHighPerformance : public QObject
{
    Q_OBJECT

private slots:
    void eligibility_data();
    void eligibility();
    void onAndOff();
    void onTwice();
    void offWhenNotOn();
    void endsByTheCardsLoss();
    void endsByApply();
    void endsByDefault();
    void cancelKeepsIt();
    void curveApplyKeepsIt();
    void fromTheUsersCurve();
    void dropsEditsThatWereNotApplied();
    void start_data();
    void start();
    void startThenOff();
    void startOnALostCard();
    void withoutCard();
};

void TestAdjustPageHighPerformance::eligibility_data()
{
    QTest::addColumn<Arrange>("arrange");
    QTest::addColumn<bool>("granted");
    QTest::addColumn<QStringList>("writes");

    const auto row = [](const char *name, const QStringList &writes, const Arrange &arrange) {
        QTest::newRow(name) << arrange << !writes.isEmpty() << writes;
    };
    const auto board = [](quint32 id) {
        return [id](AdjustPageWorld &w) {
            w.editCard([id](simulated::Card &card) { card.parameters.pci.subSystemId = id; });
        };
    };
    row("0x111E", presetOrders(152000), board(0x111E7377));
    row("0x111D", presetOrders(126000), board(0x111D7377));
    row("0x11DC", presetOrders(101000), board(0x11DC7377));
    row("0x112B", presetOrders(76000), board(0x112B7377));
    row("0x1118 shows the switch and is not in the table", {}, board(0x11187377));
    row("board of the table, other maker", {}, board(0x111D7378));
    row("other model", {}, [](AdjustPageWorld &w) {
        w.editCard([](simulated::Card &card) { card.parameters.name = "GeForce GTX 1070"; });
    });
    row("name can't be read", {},
        [](AdjustPageWorld &w) { w.driver.fails(Operation::NvAPI_GPU_GetFullName, NVAPI_ERROR); });
    row("identifiers can't be read", {},
        [](AdjustPageWorld &w) { w.driver.fails(Operation::NvAPI_GPU_GetPCIIdentifiers, NVAPI_ERROR); });
    row("offset beyond the card's range is cut", presetOrders(100000), [](AdjustPageWorld &w) {
        w.editCard([](simulated::Card &card) { card.parameters.clocks.graphicsOffsetKHz.maximum = 100000; });
    });
}

void TestAdjustPageHighPerformance::eligibility()
{
    QFETCH(Arrange, arrange);
    QFETCH(bool, granted);
    QFETCH(QStringList, writes);
    AdjustPageWorld world;
    arrange(world);
    world.open();
    QSignalSpy modeSpy(world.page.get(), SIGNAL(highPerformanceModeChanged(bool)));
    world.driver.forgetCalls();
    QCOMPARE(world.page->setHighPerformance(true), granted);
    QCOMPARE(world.page->isHighPerformance(), granted);
    QCOMPARE(told(modeSpy), QList<bool>{granted});
    QCOMPARE(world.orders(), writes);
    QCOMPARE(world.parameters().EnableHighPerformance, granted);
}

void TestAdjustPageHighPerformance::onAndOff()
{
    AdjustPageWorld world;
    world.open();
    QSignalSpy modeSpy(world.page.get(), SIGNAL(highPerformanceModeChanged(bool)));
    QVERIFY(world.page->setHighPerformance(true));
    QCOMPARE(world.fanMode(), QString("MAN")); // the page keeps its own mode
    QCOMPARE(world.visibleButtons(), QStringList{"btnDefault"});

    world.driver.forgetCalls();
    QVERIFY(world.page->setHighPerformance(false));
    QCOMPARE(world.orders(), orderBack());
    QVERIFY(!world.page->isHighPerformance());
    QCOMPARE(told(modeSpy), (QList<bool>{true, false}));
    QCOMPARE(world.visibleButtons(), QStringList{"btnDefault"});
}

void TestAdjustPageHighPerformance::onTwice()
{
    AdjustPageWorld world;
    world.open();
    QSignalSpy modeSpy(world.page.get(), SIGNAL(highPerformanceModeChanged(bool)));
    QVERIFY(world.page->setHighPerformance(true));
    world.driver.forgetCalls();
    QVERIFY(world.page->setHighPerformance(true));
    QCOMPARE(world.orders(), QStringList());
    QCOMPARE(told(modeSpy), QList<bool>{true});
}

void TestAdjustPageHighPerformance::offWhenNotOn()
{
    AdjustPageWorld world;
    world.open();
    QSignalSpy modeSpy(world.page.get(), SIGNAL(highPerformanceModeChanged(bool)));
    world.driver.forgetCalls();
    QVERIFY(world.page->setHighPerformance(false));
    QCOMPARE(world.orders(), QStringList());
    QCOMPARE(told(modeSpy), QList<bool>{false});
}

void TestAdjustPageHighPerformance::endsByTheCardsLoss()
{
    AdjustPageWorld world;
    world.open();
    QVERIFY(world.page->setHighPerformance(true));
    QSignalSpy modeSpy(world.page.get(), SIGNAL(highPerformanceModeChanged(bool)));
    world.driver.fails(Operation::NvAPI_GPU_GetFullName, NVAPI_ERROR);
    world.driver.forgetCalls();
    QVERIFY(!world.page->setHighPerformance(false));
    QVERIFY(!world.page->isHighPerformance());
    QCOMPARE(told(modeSpy), QList<bool>{false});
    QCOMPARE(world.orders(), QStringList());
}

void TestAdjustPageHighPerformance::endsByApply()
{
    AdjustPageWorld world;
    world.open();
    QVERIFY(world.page->setHighPerformance(true));
    QSignalSpy modeSpy(world.page.get(), SIGNAL(highPerformanceModeChanged(bool)));
    world.type(RowGpuClock, 1700);
    ModalAnswer answers({"msgBoxYesBtn"});
    world.driver.forgetCalls();
    world.click("btnApply");
    QCOMPARE(world.orders(), fanThen(fanOrder(kDriversLevel),
                                     settingOrders(93000, 0, kDefaultTargetC, kPowerLimitPercent.highest, 0)));
    QVERIFY(!world.page->isHighPerformance());
    QCOMPARE(told(modeSpy), QList<bool>{false});

    world.driver.forgetCalls();
    QVERIFY(world.page->setHighPerformance(false)); // nothing is left to go back to
    QCOMPARE(world.orders(), QStringList());
}

void TestAdjustPageHighPerformance::endsByDefault()
{
    AdjustPageWorld world;
    world.open();
    QVERIFY(world.page->setHighPerformance(true));
    QSignalSpy modeSpy(world.page.get(), SIGNAL(highPerformanceModeChanged(bool)));
    world.click("btnDefault");
    QVERIFY(!world.page->isHighPerformance());
    QCOMPARE(told(modeSpy), QList<bool>{false});
}

void TestAdjustPageHighPerformance::cancelKeepsIt()
{
    AdjustPageWorld world;
    world.open();
    QVERIFY(world.page->setHighPerformance(true));
    QSignalSpy modeSpy(world.page.get(), SIGNAL(highPerformanceModeChanged(bool)));
    world.type(RowGpuClock, 1700);
    world.click("btnCancel");
    QVERIFY(world.page->isHighPerformance());
    QCOMPARE(modeSpy.count(), 0);
}

void TestAdjustPageHighPerformance::curveApplyKeepsIt()
{
    AdjustPageWorld world;
    world.open();
    QVERIFY(world.page->setHighPerformance(true));
    world.click("btnUserDefineConfig");
    ModalAnswer answers({"msgBoxYesBtn"});
    world.click("btnApply");
    QCOMPARE(answers.problems(), QStringList());
    QVERIFY(world.page->isHighPerformance());
}

void TestAdjustPageHighPerformance::fromTheUsersCurve()
{
    AdjustModuleInfo saved;
    saved.FanMode = FanUserDefined;
    saved.Nodes = kSteepCurve;
    saved.LinkOfPowerWithTemperature = true;
    AdjustPageWorld world;
    world.open(saved);
    QTRY_VERIFY(world.fanOrders().contains(fanOrder(kSteepCurveLevel)));

    world.driver.forgetCalls();
    QVERIFY(world.page->setHighPerformance(true));
    // The worker is over before the driver gets the fan, and stays so.
    // The level of that order is what was read last, before or after the curve's own order.
    QVERIFY2(world.fanOrders().last().endsWith(QLatin1String(" % automatic")), qPrintable(world.fanOrders().last()));
    QCOMPARE(world.ordersBesideFan(), presetOrders().mid(1));
    // The page's own mode and link stay, and are saved so.
    QCOMPARE(world.fanMode(), QString("UDF"));
    QVERIFY(world.linkBox()->isChecked());
    QCOMPARE(world.parameters().FanMode, 2);
    QVERIFY(world.parameters().LinkOfPowerWithTemperature);
    QCOMPARE(world.parameters().Nodes, kSteepCurve);

    world.driver.forgetCalls();
    QVERIFY(world.page->setHighPerformance(false));
    QTRY_VERIFY(world.fanOrders().contains(fanOrder(kSteepCurveLevel)));
    QCOMPARE(world.distinctFanOrders(), QStringList{fanOrder(kSteepCurveLevel)});

    QVERIFY(world.page->setHighPerformance(true));
    world.driver.forgetCalls();
    world.page.reset(); // its mode is still the curve
    QCOMPARE(world.orders(), QStringList{kFanHandedBack});
}

void TestAdjustPageHighPerformance::dropsEditsThatWereNotApplied()
{
    AdjustPageWorld world;
    world.open();
    world.type(RowMemoryClock, 4300);
    world.driver.forgetCalls();
    QVERIFY(world.page->setHighPerformance(true));
    QCOMPARE(world.orders(), presetOrders());
    QCOMPARE(world.rowValues(), kPresetRows);
    QCOMPARE(world.visibleButtons(), QStringList{"btnDefault"});
}

void TestAdjustPageHighPerformance::start_data()
{
    QTest::addColumn<int>("shows"); // how often the page was shown

    QTest::newRow("first showing") << 1;
    QTest::newRow("shown again") << 2;
}

void TestAdjustPageHighPerformance::start()
{
    QFETCH(int, shows);
    AdjustPageWorld world;
    world.open(savedMode());
    if (shows == 2) {
        world.page->hide();
        world.page->show();
    }
    QCOMPARE(world.orders(), presetOrders()); // no other saved number counts
    QVERIFY(world.page->isHighPerformance());
    QCOMPARE(world.rowValues(), kPresetRows);
    QCOMPARE(world.fanMode(), QString("AUT"));
    QVERIFY(!world.linkBox()->isChecked());
    QCOMPARE(world.visibleButtons(), QStringList{"btnDefault"});
    QVERIFY(world.parameters().EnableHighPerformance);
    QCOMPARE(world.parameters().FanMode, 0);
    QCOMPARE(world.parameters().Nodes, QList<QPoint>());
}

void TestAdjustPageHighPerformance::startThenOff()
{
    AdjustPageWorld world;
    world.open(savedMode());
    world.driver.forgetCalls();
    QVERIFY(world.page->setHighPerformance(false));
    // To the card's defaults: what stood before the mode isn't known any more.
    QCOMPARE(world.orders(), fanThen(kFanAutoOrder, settingOrders(0, 0, kDefaultTargetC, kDefaultPowerPercent, 0)));
}

void TestAdjustPageHighPerformance::startOnALostCard()
{
    AdjustPageWorld world;
    world.editCard([](simulated::Card &card) { card.parameters.pci.subSystemId = 0x11187377; });
    world.open(savedMode());
    QCOMPARE(world.orders(), QStringList());
    QVERIFY(!world.page->isHighPerformance());
    // Nothing was applied, and the showing goes back to just that.
    QCOMPARE(world.rowValues(), QVector<int>(6, 0));
    QCOMPARE(world.visibleButtons(), QStringList{"btnDefault"});
    QCOMPARE(world.parameters().GpuFreClock, 1607); // the zeros are no figures to apply at the next start

    world.click("btnDefault");
    QCOMPARE(world.rowValues(), kDefaultRows);
    world.page->hide();
    world.page->show();
    QCOMPARE(world.rowValues(), kDefaultRows);
}

void TestAdjustPageHighPerformance::withoutCard()
{
    AdjustPageWorld world;
    world.openWithoutCard();
    QSignalSpy modeSpy(world.page.get(), SIGNAL(highPerformanceModeChanged(bool)));
    QVERIFY(!world.page->setHighPerformance(true));
    QVERIFY(!world.page->setHighPerformance(false));
    QCOMPARE(told(modeSpy), (QList<bool>{false, false}));
    QCOMPARE(world.driver.calls(), QStringList());
}

QTEST_MAIN(TestAdjustPageHighPerformance)
#include "TestAdjustPageHighPerformance.moc"
