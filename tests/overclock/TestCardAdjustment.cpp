#include "device/NvGpuControl.h"
#include "overclock/CardAdjustment.h"
#include "overclock/StockCard.h"
#include "support/RawDriver.h"

#include <QStringList>
#include <QtTest>

#include <functional>
#include <memory>

namespace
{

/// A card's adjustment, started on the card as it stands, and what it reports: "snapshot", "mode on", "mode off".
struct AdjustmentWorld
{
    RawDriver driver; ///< first, since the device object needs it
    NvGpuControl control;
    CardAdjustment adjustment;
    QStringList reports;
    std::function<void()> onSnapshot; ///< called with each "snapshot"

    explicit AdjustmentWorld(bool withCard = true) : adjustment(cardOrNone(withCard), AdjustTimings{1, 5}, FanWatch())
    {
        adjustment.startFromCard();
        QObject::connect(&adjustment, &CardAdjustment::snapshotRead, [this] {
            reports << QStringLiteral("snapshot");
            if (onSnapshot)
                onSnapshot();
        });
        QObject::connect(&adjustment, &CardAdjustment::highPerformanceModeChanged, [this](bool on) {
            reports << (on ? QStringLiteral("mode on") : QStringLiteral("mode off"));
        });
        driver.forgetCalls();
    }

    [[nodiscard]] QStringList orders() const { return driver.orders(); }

private:
    NvGpuControl *cardOrNone(bool withCard)
    {
        control.setCurrentGpu(0);
        return withCard ? &control : nullptr;
    }
};

using Act = std::function<void(AdjustmentWorld &)>;

/// The snapshot with the fan in the driver's hands and the two targets linked.
OverClockingParam edited(const CardAdjustment &adjustment)
{
    OverClockingParam param = adjustment.snapshot();
    param.fanMode = FanAuto;
    param.linkOfPowerWithTemperature = true;
    return param;
}

} // namespace

Q_DECLARE_METATYPE(Act)

/// The part of the adjust page that has no widgets: what it reports, and when.
class TestCardAdjustment : public QObject
{
    Q_OBJECT

private slots:
    void reports_data();
    void reports();
    void reportsWhatTheCardAnswersAfterTheOrders();
    void withoutCard();
};

void TestCardAdjustment::reports_data()
{
    QTest::addColumn<Act>("act");
    QTest::addColumn<QStringList>("reports");
    QTest::addColumn<bool>("orders");
    const auto row = [](const char *name, const QStringList &reports, bool orders, const Act &act) {
        QTest::newRow(name) << act << reports << orders;
    };
    row("apply", {"snapshot", "mode off"}, true,
        [](AdjustmentWorld &w) { w.adjustment.apply(edited(w.adjustment)); });
    row("defaults", {"snapshot", "mode off"}, true, [](AdjustmentWorld &w) { w.adjustment.restoreDefaults(); });
    row("preset on", {"snapshot", "mode on"}, true,
        [](AdjustmentWorld &w) { w.adjustment.setHighPerformance(true); });
    row("preset off, when it is not on", {"mode off"}, false,
        [](AdjustmentWorld &w) { w.adjustment.setHighPerformance(false); });
    row("preset for another maker's board", {"mode off"}, false, [](AdjustmentWorld &w) {
        w.driver.card().subSystemId = 0x111D7378;
        w.adjustment.setHighPerformance(true);
    });
    row("another curve", {}, false, [](AdjustmentWorld &w) { w.adjustment.setCurve(kSteepCurve); });
    row("edits dropped", {}, false, [](AdjustmentWorld &w) { w.adjustment.returnToApplied(); });
}

void TestCardAdjustment::reports()
{
    QFETCH(Act, act);
    QFETCH(QStringList, reports);
    QFETCH(bool, orders);
    AdjustmentWorld world;
    act(world);
    QCOMPARE(world.reports, reports);
    QCOMPARE(!world.orders().isEmpty(), orders);
}

void TestCardAdjustment::reportsWhatTheCardAnswersAfterTheOrders()
{
    AdjustmentWorld world;
    int ordersBefore = 0;
    OverClockingParam reported;
    world.onSnapshot = [&] {
        ordersBefore = world.orders().size();
        reported = world.adjustment.snapshot();
    };
    OverClockingParam wanted = edited(world.adjustment);
    const qint32 before = wanted.power.currentPower;
    wanted.power.currentPower = before + 5; // this card keeps its values
    world.adjustment.apply(wanted);

    QVERIFY(ordersBefore > 0);
    QCOMPARE(ordersBefore, world.orders().size()); // none comes later
    QCOMPARE(reported.power.currentPower, before);
    QCOMPARE(reported.fanMode, qint32(FanAuto)); // the page's own, no answer of the card changes it
    QVERIFY(reported.linkOfPowerWithTemperature);

    world.adjustment.returnToApplied(); // what the card answered is what counts as applied
    QCOMPARE(world.adjustment.snapshot().fanMode, qint32(FanAuto));
    QCOMPARE(world.adjustment.snapshot().power.currentPower, before);
}

void TestCardAdjustment::withoutCard()
{
    AdjustmentWorld world(false);
    OverClockingParam wanted = edited(world.adjustment);
    wanted.fanMode = FanUserDefined; // no worker starts
    world.adjustment.apply(wanted);
    world.adjustment.restoreDefaults();
    QCOMPARE(world.reports, QStringList{"mode off"}); // of apply
    AdjustModuleInfo kept;
    world.adjustment.getParameter(kept);
    QCOMPARE(kept.FanMode, qint32(FanUserDefined));
    QCOMPARE(kept.Power, AdjustModuleInfo::kNeverAdjusted);
    QVERIFY(!world.adjustment.temperatureForPower(100));
    QVERIFY(!world.adjustment.powerForTemperature(80, 100));
    QCOMPARE(world.driver.calls(), QStringList());
}

QTEST_GUILESS_MAIN(TestCardAdjustment)
#include "TestCardAdjustment.moc"
