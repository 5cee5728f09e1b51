#include "overclock/AdjustCalls.h"
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

namespace
{

constexpr qint32 kLowest = std::numeric_limits<qint32>::min();
constexpr qint32 kHighest = std::numeric_limits<qint32>::max();

} // namespace

/// What Apply and Default tell the card, to the byte and in order.
class TestOverClockingApply : public QObject
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

void TestOverClockingApply::apply_data()
{
    QTest::addColumn<Arrange>("edit");
    QTest::addColumn<QString>("answer");
    QTest::addColumn<QStringList>("writes");

    const auto row = [](const char *name, const char *answer, const QStringList &writes, const Arrange &edit) {
        QTest::newRow(name) << edit << QString(answer) << writes;
    };
    const Arrange everything = [](AdjustPageWorld &world) {
        world.type(RowGpuClock, 1707);
        world.type(RowFan, 60);
        world.type(RowVoltage, 1072);
        world.type(RowMemoryClock, 4106);
        world.type(RowPower, 115);
        world.type(RowTemperature, 85);
    };
    row("every row", "msgBoxYesBtn", fanThen(fanLevelCall(60), savedSettings()), everything);
    row("a no gives no order", "msgBoxNoBtn", {}, everything);
    row("a closed box gives no order", "no such button", {}, everything);
    row("driver's fan", "msgBoxYesBtn", fanThen(kFanAutoCall, unchangedSettings()),
        [](AdjustPageWorld &world) { world.click("btnFanAuto"); });
    row("manual fan, chosen again", "msgBoxYesBtn", fanThen(kFanManualCall, unchangedSettings()),
        [](AdjustPageWorld &world) {
            world.click("btnFanAuto");
            world.click("btnFanManual");
        });
    row("typed beyond the maximum", "msgBoxYesBtn",
        fanThen(kFanManualCall, settingCalls(1000000, 0, 80 * 256, 110000, 0)),
        [](AdjustPageWorld &world) { world.type(RowGpuClock, 99999); });
    row("lowest end of every slider", "msgBoxYesBtn",
        fanThen(fanLevelCall(27), settingCalls(-200000, -502000, 60 * 256, 50000, -100000)),
        [](AdjustPageWorld &world) {
            for (int index = 0; index < AdjustRowCount; ++index) {
                QSlider *slider = world.slider(static_cast<AdjustRowIndex>(index));
                QTest::keyClick(slider, Qt::Key_Home);
            }
        });
}

void TestOverClockingApply::apply()
{
    QFETCH(Arrange, edit);
    QFETCH(QString, answer);
    QFETCH(QStringList, writes);
    AdjustPageWorld world;
    world.open();
    QSignalSpy modeSpy(world.page.get(), SIGNAL(highPerformanceModeChanged(bool)));
    edit(world);
    QCOMPARE(world.visibleButtons(), QStringList({"btnApply", "btnCancel", "btnDefault"}));
    const QVector<int> edited = world.rowValues();

    ModalAnswer answers({answer});
    world.driver.forgetCalls();
    world.click("btnApply");
    QCOMPARE(answers.texts(), QStringList{"Apply these settings ?"});
    QCOMPARE(world.writes(), writes);
    if (writes.isEmpty()) {
        QCOMPARE(world.rowValues(), edited);
        QCOMPARE(world.visibleButtons(), QStringList({"btnApply", "btnCancel", "btnDefault"}));
        QCOMPARE(modeSpy.count(), 0);
    } else {
        QCOMPARE(world.rowValues(), QVector<int>({1607, 33, 1062, 4006, 110, 80}));
        QCOMPARE(world.visibleButtons(), QStringList{"btnDefault"});
        QCOMPARE(told(modeSpy), QList<bool>{false});
    }
}

void TestOverClockingApply::applyShowsWhatTheDriverKept()
{
    AdjustPageWorld world;
    world.open();
    world.type(RowGpuClock, 1707);
    world.type(RowTemperature, 85);
    world.driver.onCall("NvAPI_GPU_ClientThermalPoliciesSetStatus", [&world] {
        world.card().thermalStatus.entries[0].temperature = 82 * 256; // three degrees less than ordered
        world.card().p0Clock(0).freqDelta_kHz.value = 100000;
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

void TestOverClockingApply::applyOnARefusingDriver()
{
    AdjustPageWorld world;
    for (const char *operation :
         {"NvAPI_GPU_SetCoolerLevels", "NvAPI_GPU_SetPstates20", "NvAPI_GPU_ClientThermalPoliciesSetStatus",
          "NvAPI_GPU_ClientPowerPoliciesSetStatus"})
        world.driver.fails(operation, NVAPI_ERROR);
    world.open(savedValues());
    QStringList operations;
    for (const QString &call : world.writes())
        operations << call.section(' ', 0, 0) + call.section(' ', -2);
    // Every order is given, each on its own ladder; nothing stops at a refusal.
    QCOMPARE(operations, QStringList({"GPU_SetCoolerLevels-> -1", "GPU_SetCoolerLevels-> -1", // fan
                                      "GPU_SetPstates20-> -1", "GPU_SetPstates20-> -1",       // graphics clock
                                      "GPU_SetPstates20-> -1",                                //
                                      "GPU_SetPstates20-> -1", "GPU_SetPstates20-> -1",       // memory clock
                                      "GPU_SetPstates20-> -1",                                //
                                      "GPU_ClientThermalPoliciesSetStatus-> -1",              //
                                      "GPU_ClientThermalPoliciesSetStatus-> -1",              //
                                      "GPU_ClientPowerPoliciesSetStatus-> -1",                //
                                      "GPU_SetPstates20-> -1", "GPU_SetPstates20-> -1",       // voltage
                                      "GPU_SetPstates20-> -1"}));
    QCOMPARE(world.rowValues(), QVector<int>({1607, 33, 1062, 4006, 110, 80}));
    QCOMPARE(world.parameters().GpuFreClock, 1607);
}

void TestOverClockingApply::applyWithoutCard()
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

void TestOverClockingApply::changeOfFanModes()
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
    QTRY_VERIFY(world.fanWrites().size() > 2); // in every cycle anew
    QCOMPARE(world.distinctFanWrites(), QStringList{fanLevelCall(kSteepCurveLevel)});
    QCOMPARE(world.writesBesideFan(), unchangedSettings());

    world.click("btnFanManual");
    QVERIFY(world.row(RowFan)->isEnabled());
    world.driver.forgetCalls();
    world.click("btnApply");
    // The worker is over before the first order, so its level can't come behind the manual one.
    QCOMPARE(world.fanWrites().last(), kFanManualCall);
    QCOMPARE(world.fanWrites().count(kFanManualCall), 1);
    QCOMPARE(world.parameters().FanMode, 1);

    world.click("btnFanAuto");
    QVERIFY(!world.row(RowFan)->isEnabled());
    world.driver.forgetCalls();
    world.click("btnApply");
    QCOMPARE(world.writes(), fanThen(kFanAutoCall, unchangedSettings()));
    QCOMPARE(world.parameters().FanMode, 0);
    QCOMPARE(answers.problems(), QStringList());
}

void TestOverClockingApply::curveAppliedWhileItDrivesTheFan()
{
    AdjustModuleInfo saved = savedValues();
    saved.FanMode = FanUserDefined;
    saved.Nodes = kSteepCurve;
    AdjustPageWorld world;
    world.open(saved);
    QTRY_VERIFY(world.fanWrites().contains(fanLevelCall(kSteepCurveLevel)));

    world.click("btnUserDefineConfig");
    world.click("btnDefault"); // the editor alone, so far
    QCOMPARE(world.parameters().Nodes, kSteepCurve);
    world.driver.forgetCalls();
    ModalAnswer answers({"msgBoxYesBtn"});
    world.click("btnApply");
    QTRY_VERIFY(world.fanWrites().contains(fanLevelCall(kDefaultCurveLevel)));
    QCOMPARE(world.writesBesideFan(), QStringList());
    QCOMPARE(world.parameters().Nodes, (QList<QPoint>{{0, 0}, {30, 20}, {50, 50}, {80, 90}, {100, 100}}));
}

void TestOverClockingApply::curveAppliedInAutoModeStartsNothing()
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

void TestOverClockingApply::restoreDefaults_data()
{
    QTest::addColumn<int>("fanMode");

    QTest::newRow("from the driver's fan") << 0;
    QTest::newRow("from the manual fan") << 1;
    QTest::newRow("from the curve") << 2;
}

void TestOverClockingApply::restoreDefaults()
{
    QFETCH(int, fanMode);
    AdjustModuleInfo saved = savedValues();
    saved.FanMode = fanMode;
    saved.Nodes = kSteepCurve;
    saved.LinkOfPowerWithTemperature = true;
    AdjustPageWorld world;
    world.card().coolers.cooler[0].currentPolicy = 0x20; // as a card answers after Default's order to its fan
    world.open(saved);
    world.type(RowGpuClock, 1800);
    if (fanMode == 2)
        QTRY_VERIFY(!world.fanWrites().isEmpty());
    QSignalSpy modeSpy(world.page.get(), SIGNAL(highPerformanceModeChanged(bool)));

    world.driver.forgetCalls();
    world.click("btnDefault"); // asks nothing
    QStringList writes = world.writes();
    while (fanMode == 2 && writes.value(0) == fanLevelCall(kSteepCurveLevel))
        writes.removeFirst();                                          // the worker's last
    QCOMPARE(writes, QStringList({"DriverEntry_B23B70EE gpu0 value=1", //
                                  "GPU_SetPstates20 gpu0 0x31CF8 [8]=1 [12]=1",
                                  "GPU_SetPstates20 gpu0 0x31CF8 [8]=1 [12]=1 [28]=4",
                                  "GPU_ClientPowerPoliciesSetStatus gpu0 0x10048 [4]=1 [8]=2 [16]=100000",
                                  kFanHandedBack, "GPU_SetPstates20 gpu0 0x31CF8 [8]=1 [16]=1",
                                  "GPU_ClientThermalPoliciesSetStatus gpu0 0x20038 [4]=1 [8]=3 [12]=21248 [16]=1",
                                  "GPU_SetPstates20 gpu0 0x31CF8 [7316]=1",
                                  "GPU_ClientThermalPoliciesSetStatus gpu0 0x20038 [4]=1 [8]=3 [12]=20480"}));
    QCOMPARE(world.rowValues(), QVector<int>({1607, 33, 1062, 4006, 110, 80}));
    QCOMPARE(world.fanMode(), QString("AUT"));
    QVERIFY(!world.linkBox()->isChecked());
    QCOMPARE(world.visibleButtons(), QStringList{"btnDefault"});
    QCOMPARE(world.parameters().FanMode, 0);
    QVERIFY(!world.parameters().LinkOfPowerWithTemperature);
    QCOMPARE(told(modeSpy), QList<bool>{false});
}

void TestOverClockingApply::restoreDefaultsWithoutCard()
{
    AdjustPageWorld world;
    world.openWithoutCard();
    QSignalSpy modeSpy(world.page.get(), SIGNAL(highPerformanceModeChanged(bool)));
    world.click("btnDefault");
    QCOMPARE(modeSpy.count(), 0);
    QCOMPARE(world.driver.calls(), QStringList());
}

void TestOverClockingApply::defaultEndsTheFanWorkerFirst()
{
    std::atomic<QThread *> worker{nullptr};
    bool ended = false;
    AdjustPageWorld world;
    world.driver.onCall("NvAPI_GPU_GetThermalSettings", [&worker] { worker = QThread::currentThread(); });
    world.driver.onCall("NvAPI_DriverEntry_B23B70EE", [&] { ended = worker.load() && worker.load()->isFinished(); });
    AdjustModuleInfo saved = savedValues();
    saved.FanMode = FanUserDefined;
    world.open(saved);
    QTRY_VERIFY(worker.load());
    world.click("btnDefault");
    QVERIFY(ended); // at the head of the restoring, so its level can't come behind the hand-back
    QCOMPARE(world.fanWrites().last(), kFanHandedBack);
}

void TestOverClockingApply::applyKeepsTheLink()
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

void TestOverClockingApply::pauseBeforeReadingBack_data()
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

void TestOverClockingApply::pauseBeforeReadingBack()
{
    QFETCH(Arrange, press);
    constexpr unsigned int settleMs = 300;
    QElapsedTimer sinceOrder;
    qint64 pauseNs = -1;
    AdjustPageWorld world;
    world.timings.settleMs = settleMs;
    world.driver.onCall("NvAPI_GPU_SetPstates20", [&] {
        sinceOrder.start();
        pauseNs = -1;
    });
    world.driver.onCall("NvAPI_GPU_GetCoolerSettings", [&] {
        if (sinceOrder.isValid() && pauseNs < 0)
            pauseNs = sinceOrder.nsecsElapsed();
    });
    world.open();
    press(world);
    QVERIFY2(pauseNs >= qint64(settleMs) * 1000000, qPrintable(QString::number(pauseNs)));
}

void TestOverClockingApply::pauseOfTheFanCurve()
{
    constexpr unsigned int intervalMs = 300;
    QElapsedTimer sinceFirst; // of the worker's thread
    std::atomic<qint64> pauseNs{-1};
    AdjustPageWorld world;
    world.timings.fanIntervalMs = intervalMs;
    world.driver.onCall("NvAPI_GPU_GetThermalSettings", [&] {
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

void TestOverClockingApply::defaultPauses()
{
    const AdjustTimings timings;
    QCOMPARE(timings.settleMs, 500U);
    QCOMPARE(timings.fanIntervalMs, 1000U);
}

void TestOverClockingApply::hostileRanges_data()
{
    QTest::addColumn<Arrange>("arrange");

    const auto row = [](const char *name, const Arrange &arrange) {
        QTest::newRow(name) << arrange;
    };
    row("all ranges 0 to 0", [](AdjustPageWorld &world) {
        FakeCard &card = world.card();
        card.p0Clock(0).freqDelta_kHz = {};
        card.p0Clock(1).freqDelta_kHz = {};
        card.p0Voltage(0) = {};
        card.p0Voltage(0).bIsEditable = 1;
        card.coolers = {};
        card.powerPolicies.entries[0] = {};
        card.thermalPolicies.entries[0] = {};
    });
    row("minimum equals maximum", [](AdjustPageWorld &world) {
        FakeCard &card = world.card();
        card.p0Clock(0).freqDelta_kHz.valueRange = {5000, 5000};
        card.p0Clock(1).freqDelta_kHz.valueRange = {5000, 5000};
        card.p0Voltage(0).voltDelta_uV.valueRange = {5000, 5000};
        card.powerPolicies.entries[0].minPower = card.powerPolicies.entries[0].maxPower = 100000;
        card.thermalPolicies.entries[0].minTemp = card.thermalPolicies.entries[0].maxTemp = 83 * 256;
    });
    row("minimum above maximum", [](AdjustPageWorld &world) {
        FakeCard &card = world.card();
        card.p0Clock(0).freqDelta_kHz.valueRange = {1000000, -1000000};
        card.p0Voltage(0).voltDelta_uV.valueRange = {1000000, -1000000};
        card.coolers.cooler[0].defaultMin = 100;
        card.coolers.cooler[0].defaultMax = 27;
        card.powerPolicies.entries[0].minPower = 120000;
        card.powerPolicies.entries[0].maxPower = 50000;
        card.thermalPolicies.entries[0].minTemp = 90 * 256;
        card.thermalPolicies.entries[0].maxTemp = 60 * 256;
    });
    row("numbers of any size", [](AdjustPageWorld &world) {
        FakeCard &card = world.card();
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

void TestOverClockingApply::hostileRanges()
{
    QFETCH(Arrange, arrange);
    AdjustPageWorld world;
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
    QCOMPARE(world.writes().filter("GPU_SetPstates20").isEmpty(), false);
    world.page->render(&image);
    QCOMPARE(world.visibleButtons(), QStringList{"btnDefault"});
}

QTEST_MAIN(TestOverClockingApply)
#include "TestOverClockingApply.moc"
