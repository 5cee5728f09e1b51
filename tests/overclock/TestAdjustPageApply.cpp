#include "overclock/AdjustPageWorld.h"
#include "support/ModalAnswer.h"

#include <QElapsedTimer>
#include <QThread>
#include <QtTest>

#include <atomic>
#include <functional>
#include <limits>

using Arrange = std::function<void(AdjustPageWorld &)>;
Q_DECLARE_METATYPE(Arrange)
using RawArrange = std::function<void(RawAdjustWorld &)>;
Q_DECLARE_METATYPE(RawArrange)

namespace
{

constexpr qint32 kLowest = std::numeric_limits<qint32>::min();
constexpr qint32 kHighest = std::numeric_limits<qint32>::max();

} // namespace

/// What Apply and Default tell the card, to the byte and in order.
class TestAdjustPageApply : public QObject
{
    Q_OBJECT

private slots:
    void apply_data();
    void apply();
    void applyShowsWhatTheDriverKept();
    void applyOnARefusingDriver();
    void applyWithoutCard();
    void changeOfFanModes();
    void curveAppliedWhileItDrivesTheFan();
    void curveAppliedInAutoModeStartsNothing();
    void restoreDefaults_data();
    void restoreDefaults();
    void restoreDefaultsWithoutCard();
    void defaultEndsTheFanWorkerFirst();
    void applyKeepsTheLink();
    void pauseBeforeReadingBack_data();
    void pauseBeforeReadingBack();
    void pauseOfTheFanCurve();
    void defaultPauses();
    void hostileRanges_data();
    void hostileRanges();
};

void TestAdjustPageApply::apply_data()
{
    QTest::addColumn<Arrange>("edit");
    QTest::addColumn<QString>("answer");
    QTest::addColumn<QStringList>("orders");
    QTest::addColumn<QVector<int>>("rows"); // what they show then; as edited where nothing was ordered

    const auto row = [](const char *name, const char *answer, const QStringList &orders, const QVector<int> &rows,
                        const Arrange &edit) {
        QTest::newRow(name) << edit << QString(answer) << orders << rows;
    };
    const Arrange everything = [](AdjustPageWorld &world) {
        world.type(RowGpuClock, 1707);
        world.type(RowFan, 60);
        world.type(RowVoltage, 1072);
        world.type(RowMemoryClock, 4106);
        world.type(RowPower, 115);
        world.type(RowTemperature, 85);
    };
    row("every row", "msgBoxYesBtn", fanThen(fanOrder(60), savedSettings()), kSavedRows, everything);
    row("a no gives no order", "msgBoxNoBtn", {}, kSavedRows, everything);
    row("a closed box gives no order", "no such button", {}, kSavedRows, everything);
    row("driver's fan", "msgBoxYesBtn", fanThen(kFanAutoOrder, unchangedSettings()),
        {1607, kDriversLevel, 1062, 4006, 110, 80}, [](AdjustPageWorld &world) { world.click("btnFanAuto"); });
    row("manual fan, chosen again", "msgBoxYesBtn", fanThen(kFanManualOrder, unchangedSettings()), kStockRows,
        [](AdjustPageWorld &world) {
            world.click("btnFanAuto");
            world.click("btnFanManual");
        });
    row("typed beyond the maximum", "msgBoxYesBtn",
        fanThen(kFanManualOrder, settingOrders(kGpuOffsetKHz.highest, 0, kStockTargetC, kStockPowerPercent, 0)),
        {2607, 33, 1062, 4006, 110, 80}, [](AdjustPageWorld &world) { world.type(RowGpuClock, 99999); });
    row("lowest end of every slider", "msgBoxYesBtn", fanThen(fanOrder(kFanRangePercent.lowest), lowestSettings()),
        kLowestRows, [](AdjustPageWorld &world) {
            for (int index = 0; index < AdjustRowCount; ++index) {
                QSlider *slider = world.slider(static_cast<AdjustRowIndex>(index));
                QTest::keyClick(slider, Qt::Key_Home);
            }
        });
}

void TestAdjustPageApply::apply()
{
    QFETCH(Arrange, edit);
    QFETCH(QString, answer);
    QFETCH(QStringList, orders);
    AdjustPageWorld world;
    world.open();
    QSignalSpy modeSpy(world.page.get(), SIGNAL(highPerformanceModeChanged(bool)));
    edit(world);
    QCOMPARE(world.visibleButtons(), QStringList({"btnApply", "btnCancel", "btnDefault"}));

    ModalAnswer answers({answer});
    world.driver.forgetCalls();
    world.click("btnApply");
    QCOMPARE(answers.texts(), QStringList{"Apply these settings ?"});
    QCOMPARE(world.orders(), orders);
    QTEST(world.rowValues(), "rows");
    if (orders.isEmpty()) {
        QCOMPARE(world.visibleButtons(), QStringList({"btnApply", "btnCancel", "btnDefault"}));
        QCOMPARE(modeSpy.count(), 0);
    } else {
        QCOMPARE(world.visibleButtons(), QStringList{"btnDefault"});
        QCOMPARE(told(modeSpy), QList<bool>{false});
    }
}

void TestAdjustPageApply::applyShowsWhatTheDriverKept()
{
    RawAdjustWorld world;
    world.open();
    world.type(RowGpuClock, 1707);
    world.type(RowTemperature, 85);
    world.driver.onCall(Operation::NvAPI_GPU_ClientThermalPoliciesSetStatus, [&world] {
        world.driver.card().thermalStatus.entries[0].temperature = 82 * 256; // three degrees less than ordered
        world.driver.card().p0Clock(0).freqDelta_kHz.value = 100000;
    });
    ModalAnswer answers({"msgBoxYesBtn"});
    world.click("btnApply");
    QCOMPARE(world.rowValues(), QVector<int>({1707, 33, 1062, 4006, 110, 82}));
    QCOMPARE(world.parameters().GpuFreClock, 1707);
    QCOMPARE(world.parameters().Temperature, 82);

    // That is what Cancel returns to from now on.
    world.type(RowGpuClock, 1800);
    world.click("btnCancel");
    QCOMPARE(world.rowValues(), QVector<int>({1707, 33, 1062, 4006, 110, 82}));
}

void TestAdjustPageApply::applyOnARefusingDriver()
{
    AdjustPageWorld world;
    for (const Operation operation :
         {Operation::NvAPI_GPU_SetCoolerLevels, Operation::NvAPI_GPU_SetPstates20,
          Operation::NvAPI_GPU_ClientThermalPoliciesSetStatus, Operation::NvAPI_GPU_ClientPowerPoliciesSetStatus})
        world.driver.fails(operation, NVAPI_ERROR);
    world.open(savedValues());
    // Every order is given, each at all its record versions; nothing stops at a refusal.
    const auto tries = [](int count, const char *order) {
        QStringList list;
        for (int i = 0; i < count; ++i)
            list << QString(order) + " -> -1";
        return list;
    };
    QCOMPARE(world.orders(), tries(2, "fan 60 % manual") + tries(3, "graphics offset 100000 kHz") +
                                 tries(3, "memory offset 100000 kHz") + tries(1, "temperature limit 85 C first") +
                                 tries(1, "temperature limit 85 C") // the older record has no priority
                                 + tries(1, "power limit 115 %") + tries(3, "voltage offset 10000 uV"));
    QCOMPARE(world.rowValues(), kStockRows);
    QCOMPARE(world.parameters().GpuFreClock, kStockGpuMHz);
}

void TestAdjustPageApply::applyWithoutCard()
{
    AdjustPageWorld world;
    world.openWithoutCard();
    QSignalSpy modeSpy(world.page.get(), SIGNAL(highPerformanceModeChanged(bool)));
    world.page->onSliderChanged(world.row(RowPower));
    QCOMPARE(world.visibleButtons(), QStringList{"btnDefault"});
    ModalAnswer answers({"msgBoxYesBtn"});
    world.page->onBtnApplyClick();
    QCOMPARE(answers.texts().size(), 1);
    QCOMPARE(told(modeSpy), QList<bool>{false});
    QCOMPARE(world.rowValues(), QVector<int>(6, 0));
    QCOMPARE(world.driver.calls(), QStringList());
}

void TestAdjustPageApply::changeOfFanModes()
{
    AdjustModuleInfo saved = savedValues();
    saved.Nodes = kSteepCurve;
    AdjustPageWorld world;
    world.open(saved);
    ModalAnswer answers({"msgBoxYesBtn", "msgBoxYesBtn", "msgBoxYesBtn"});

    world.driver.forgetCalls();
    world.click("btnFanUserDefined");
    QVERIFY(!world.row(RowFan)->isEnabled());
    QCOMPARE(world.driver.calls(), QStringList()); // the choice acts at Apply
    world.click("btnApply");
    QTRY_VERIFY(world.fanOrders().size() > 2); // in every cycle anew
    QCOMPARE(world.distinctFanOrders(), QStringList{fanOrder(kSteepCurveLevel)});
    QCOMPARE(world.ordersBesideFan(), savedSettings());

    world.click("btnFanManual");
    QVERIFY(world.row(RowFan)->isEnabled());
    world.slider(RowFan)->setValue(45);
    world.driver.forgetCalls();
    world.click("btnApply");
    // The worker is over before the first order, so its level can't come behind the manual one.
    QCOMPARE(world.fanOrders().last(), fanOrder(45));
    QCOMPARE(world.fanOrders().count(fanOrder(45)), 1);
    QCOMPARE(world.parameters().FanMode, 1);

    world.click("btnFanAuto");
    QVERIFY(!world.row(RowFan)->isEnabled());
    world.driver.forgetCalls();
    world.click("btnApply");
    QCOMPARE(world.orders(), fanThen("fan 45 % automatic", savedSettings()));
    QCOMPARE(world.parameters().FanMode, 0);
    QCOMPARE(answers.problems(), QStringList());
}

void TestAdjustPageApply::curveAppliedWhileItDrivesTheFan()
{
    AdjustModuleInfo saved = savedValues();
    saved.FanMode = FanUserDefined;
    saved.Nodes = kSteepCurve;
    AdjustPageWorld world;
    world.open(saved);
    QTRY_VERIFY(world.fanOrders().contains(fanOrder(kSteepCurveLevel)));

    world.click("btnUserDefineConfig");
    world.click("btnDefault"); // the editor alone, so far
    QCOMPARE(world.parameters().Nodes, kSteepCurve);
    world.driver.forgetCalls();
    ModalAnswer answers({"msgBoxYesBtn"});
    world.click("btnApply");
    QTRY_VERIFY(world.fanOrders().contains(fanOrder(kDefaultCurveLevel)));
    QCOMPARE(world.ordersBesideFan(), QStringList());
    QCOMPARE(world.parameters().Nodes, (QList<QPoint>{{0, 0}, {30, 20}, {50, 50}, {80, 90}, {100, 100}}));
}

void TestAdjustPageApply::curveAppliedInAutoModeStartsNothing()
{
    AdjustModuleInfo saved = savedValues();
    saved.FanMode = FanAuto;
    AdjustPageWorld world;
    world.open(saved);
    QSignalSpy modeSpy(world.page.get(), SIGNAL(highPerformanceModeChanged(bool)));
    world.click("btnUserDefineConfig");
    world.driver.forgetCalls();
    ModalAnswer answers({"msgBoxYesBtn"});
    world.click("btnApply");
    QCOMPARE(answers.texts(), QStringList{"Apply these settings ?"});
    QCOMPARE(world.visibleButtons(), QStringList()); // Default goes too
    QCOMPARE(world.parameters().FanMode, 0);
    QCOMPARE(world.parameters().Nodes.size(), 5);
    QCOMPARE(modeSpy.count(), 0);
    world.page.reset(); // waits for a worker, if there were one
    QCOMPARE(world.driver.calls(), QStringList());
}

void TestAdjustPageApply::restoreDefaults_data()
{
    QTest::addColumn<int>("fanMode");

    QTest::newRow("from the driver's fan") << 0;
    QTest::newRow("from the manual fan") << 1;
    QTest::newRow("from the curve") << 2;
}

void TestAdjustPageApply::restoreDefaults()
{
    QFETCH(int, fanMode);
    AdjustModuleInfo saved = savedValues();
    saved.FanMode = fanMode;
    saved.Nodes = kSteepCurve;
    saved.LinkOfPowerWithTemperature = true;
    AdjustPageWorld world;
    world.open(saved);
    world.type(RowGpuClock, 1800);
    if (fanMode == 2)
        QTRY_VERIFY(!world.fanOrders().isEmpty());
    QSignalSpy modeSpy(world.page.get(), SIGNAL(highPerformanceModeChanged(bool)));

    world.driver.forgetCalls();
    world.click("btnDefault"); // asks nothing
    QStringList orders = world.orders();
    while (fanMode == 2 && orders.value(0) == fanOrder(kSteepCurveLevel))
        orders.removeFirst(); // the worker's last
    QCOMPARE(orders, QStringList({"restore entry 1", "graphics offset 0 kHz", "memory offset 0 kHz",
                                  "power limit 100 %", kFanHandedBack, "voltage offset 0 uV",
                                  "temperature limit 83 C first", "over-voltage 0 uV", "temperature limit 83 C"}));
    QCOMPARE(world.rowValues(), QVector<int>({kStockGpuMHz, kDriversLevel, kStockMillivolt, kStockMemoryMHz,
                                              kDefaultPowerPercent, kDefaultTargetC}));
    QCOMPARE(world.fanMode(), QString("AUT"));
    QVERIFY(!world.linkBox()->isChecked());
    QCOMPARE(world.visibleButtons(), QStringList{"btnDefault"});
    QCOMPARE(world.parameters().FanMode, 0);
    QVERIFY(!world.parameters().LinkOfPowerWithTemperature);
    QCOMPARE(told(modeSpy), QList<bool>{false});
}

void TestAdjustPageApply::restoreDefaultsWithoutCard()
{
    AdjustPageWorld world;
    world.openWithoutCard();
    QSignalSpy modeSpy(world.page.get(), SIGNAL(highPerformanceModeChanged(bool)));
    world.click("btnDefault");
    QCOMPARE(modeSpy.count(), 0);
    QCOMPARE(world.driver.calls(), QStringList());
}

void TestAdjustPageApply::defaultEndsTheFanWorkerFirst()
{
    std::atomic<QThread *> worker{nullptr};
    bool ended = false;
    AdjustPageWorld world;
    world.driver.onCall(Operation::NvAPI_GPU_GetThermalSettings, [&worker] { worker = QThread::currentThread(); });
    world.driver.onCall(Operation::NvAPI_DriverEntry_B23B70EE,
                        [&] { ended = worker.load() && worker.load()->isFinished(); });
    AdjustModuleInfo saved = savedValues();
    saved.FanMode = FanUserDefined;
    world.open(saved);
    QTRY_VERIFY(worker.load());
    world.click("btnDefault");
    QVERIFY(ended); // at the head of the restoring, so its level can't come behind the hand-back
    QCOMPARE(world.fanOrders().last(), kFanHandedBack);
}

void TestAdjustPageApply::applyKeepsTheLink()
{
    AdjustPageWorld world;
    world.open();
    ModalAnswer answers({"msgBoxYesBtn", "msgBoxYesBtn"});
    for (const bool linked : {true, false}) {
        world.clickLink();
        world.click("btnApply");
        QCOMPARE(world.linkBox()->isChecked(), linked);
        QCOMPARE(world.parameters().LinkOfPowerWithTemperature, linked);
        world.page->hide(); // what Cancel returns to has it too
        world.page->show();
        QCOMPARE(world.linkBox()->isChecked(), linked);
    }
}

void TestAdjustPageApply::pauseBeforeReadingBack_data()
{
    QTest::addColumn<Arrange>("press");

    QTest::newRow("Apply") << Arrange([](AdjustPageWorld &world) {
        world.click("btnFanAuto");
        ModalAnswer answers({"msgBoxYesBtn"});
        world.click("btnApply");
    });
    QTest::newRow("Default") << Arrange([](AdjustPageWorld &world) { world.click("btnDefault"); });
    QTest::newRow("mode switch") << Arrange(
        [](AdjustPageWorld &world) { QVERIFY(world.page->setHighPerformance(true)); });
}

void TestAdjustPageApply::pauseBeforeReadingBack()
{
    QFETCH(Arrange, press);
    constexpr unsigned int settleMs = 300;
    QElapsedTimer sinceOrder;
    qint64 pauseNs = -1;
    AdjustPageWorld world;
    world.timings.settleMs = settleMs;
    world.driver.onCall(Operation::NvAPI_GPU_SetPstates20, [&] {
        sinceOrder.start();
        pauseNs = -1;
    });
    world.driver.onCall(Operation::NvAPI_GPU_GetCoolerSettings, [&] {
        if (sinceOrder.isValid() && pauseNs < 0)
            pauseNs = sinceOrder.nsecsElapsed();
    });
    world.open();
    press(world);
    QVERIFY2(pauseNs >= qint64(settleMs) * 1000000, qPrintable(QString::number(pauseNs)));
}

void TestAdjustPageApply::pauseOfTheFanCurve()
{
    constexpr unsigned int intervalMs = 300;
    QElapsedTimer sinceFirst; // of the worker's thread
    std::atomic<qint64> pauseNs{-1};
    AdjustPageWorld world;
    world.timings.fanIntervalMs = intervalMs;
    world.driver.onCall(Operation::NvAPI_GPU_GetThermalSettings, [&] {
        if (!sinceFirst.isValid())
            sinceFirst.start();
        else if (pauseNs < 0)
            pauseNs = sinceFirst.nsecsElapsed();
    });
    AdjustModuleInfo saved = savedValues();
    saved.FanMode = FanUserDefined;
    world.open(saved);
    QTRY_VERIFY(pauseNs >= 0);
    QVERIFY2(pauseNs >= qint64(intervalMs) * 1000000, qPrintable(QString::number(pauseNs)));
}

void TestAdjustPageApply::defaultPauses()
{
    const AdjustTimings timings;
    QCOMPARE(timings.settleMs, 500U);
    QCOMPARE(timings.fanIntervalMs, 1000U);
}

void TestAdjustPageApply::hostileRanges_data()
{
    QTest::addColumn<RawArrange>("arrange");

    const auto row = [](const char *name, const RawArrange &arrange) {
        QTest::newRow(name) << arrange;
    };
    row("all ranges 0 to 0", [](RawAdjustWorld &world) {
        RawCard &card = world.driver.card();
        card.p0Clock(0).freqDelta_kHz = {};
        card.p0Clock(1).freqDelta_kHz = {};
        card.p0Voltage(0) = {};
        card.p0Voltage(0).bIsEditable = 1;
        card.coolers = {};
        card.powerPolicies.entries[0] = {};
        card.thermalPolicies.entries[0] = {};
    });
    row("minimum equals maximum", [](RawAdjustWorld &world) {
        RawCard &card = world.driver.card();
        card.p0Clock(0).freqDelta_kHz.valueRange = {5000, 5000};
        card.p0Clock(1).freqDelta_kHz.valueRange = {5000, 5000};
        card.p0Voltage(0).voltDelta_uV.valueRange = {5000, 5000};
        card.powerPolicies.entries[0].minPower = card.powerPolicies.entries[0].maxPower = 100000;
        card.thermalPolicies.entries[0].minTemp = card.thermalPolicies.entries[0].maxTemp = 83 * 256;
    });
    row("minimum above maximum", [](RawAdjustWorld &world) {
        RawCard &card = world.driver.card();
        card.p0Clock(0).freqDelta_kHz.valueRange = {1000000, -1000000};
        card.p0Voltage(0).voltDelta_uV.valueRange = {1000000, -1000000};
        card.coolers.cooler[0].defaultMin = 100;
        card.coolers.cooler[0].defaultMax = 27;
        card.powerPolicies.entries[0].minPower = 120000;
        card.powerPolicies.entries[0].maxPower = 50000;
        card.thermalPolicies.entries[0].minTemp = 90 * 256;
        card.thermalPolicies.entries[0].maxTemp = 60 * 256;
    });
    row("numbers of any size", [](RawAdjustWorld &world) {
        RawCard &card = world.driver.card();
        card.clocks[1].domain[0].frequencyKHz = 0xFFFFFFFFU;
        card.clocks[1].domain[4].frequencyKHz = 0xFFFFFFFFU;
        card.p0Clock(0).freqDelta_kHz = {kHighest, {kLowest, kHighest}};
        card.p0Clock(1).freqDelta_kHz = {kLowest, {kHighest, kLowest}};
        card.p0Voltage(0).volt_uV = 0xFFFFFFFFU;
        card.p0Voltage(0).voltDelta_uV = {kLowest, {kLowest, kHighest}};
        card.coolers.cooler[0].defaultMin = 0x80000000U;
        card.coolers.cooler[0].defaultMax = 0x7FFFFFFFU;
        card.coolers.cooler[0].currentLevel = 0x80000000U;
        card.powerPolicies.entries[0] = {};
        card.powerPolicies.entries[0].maxPower = 0xFFFFFFFFU;
        card.powerStatus.entries[0].power = 0xFFFFFFFFU;
        card.thermalPolicies.entries[0].minTemp = kLowest;
        card.thermalPolicies.entries[0].maxTemp = kHighest;
        card.thermalStatus.entries[0].temperature = kLowest;
    });
}

void TestAdjustPageApply::hostileRanges()
{
    QFETCH(RawArrange, arrange);
    RawAdjustWorld world;
    arrange(world);
    world.open();
    QImage image(world.page->size(), QImage::Format_ARGB32);
    world.page->render(&image);
    world.clickLink();
    for (int number : {0, 7, 99999}) {
        for (int index = 0; index < AdjustRowCount; ++index) {
            const auto row = static_cast<AdjustRowIndex>(index);
            world.type(row, number);
            QTest::keyClick(world.slider(row), Qt::Key_PageUp);
            world.page->onSliderMoved(world.row(row), kLowest);
            world.page->onSliderMoved(world.row(row), kHighest);
        }
    }
    ModalAnswer answers({"msgBoxYesBtn"});
    world.page->onBtnApplyClick();
    QCOMPARE(answers.texts().size(), 1);
    QCOMPARE(world.orders().filter("offset").isEmpty(), false);
    world.page->render(&image);
    QCOMPARE(world.visibleButtons(), QStringList{"btnDefault"});
}

QTEST_MAIN(TestAdjustPageApply)
#include "TestAdjustPageApply.moc"
