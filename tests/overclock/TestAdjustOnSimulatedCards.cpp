#include "overclock/SimulatedAdjustWorld.h"

#include <QtTest>

namespace
{

QVector<int> clocksAndTargets(const SimulatedAdjustWorld &world)
{
    QVector<int> values;
    for (const AdjustRowIndex index : {RowGpuClock, RowMemoryClock, RowVoltage, RowPower, RowTemperature})
        values << world.row(index)->value();
    return values;
}

} // namespace

/// The page on cards that take what they are told: what was applied is read back and shown.
class TestAdjustOnSimulatedCards : public QObject
{
    Q_OBJECT

private slots:
    void applyThenDefault();
    void highPerformanceOnAndOff();
};

void TestAdjustOnSimulatedCards::applyThenDefault()
{
    SimulatedAdjustWorld world;
    world.open();
    const QVector<int> atStart = clocksAndTargets(world);
    const QVector<int> wanted = {atStart.at(0) + 100, atStart.at(1) + 100, atStart.at(2) + 10, 110, 80};
    world.move(RowGpuClock, wanted.at(0));
    world.move(RowMemoryClock, wanted.at(1));
    world.move(RowVoltage, wanted.at(2));
    world.move(RowPower, wanted.at(3));
    world.move(RowTemperature, wanted.at(4));
    world.apply();
    QCOMPARE(clocksAndTargets(world), wanted);

    world.click("btnDefault");
    QCOMPARE(clocksAndTargets(world), atStart);
}

void TestAdjustOnSimulatedCards::highPerformanceOnAndOff()
{
    SimulatedAdjustWorld world;
    world.open();
    const QVector<int> atStart = clocksAndTargets(world);
    QVERIFY(world.page->setHighPerformance(true));
    QCOMPARE(clocksAndTargets(world), QVector<int>({1733, atStart.at(1), atStart.at(2), 120, 83}));
    QVERIFY(world.page->setHighPerformance(false));
    QCOMPARE(clocksAndTargets(world), atStart);
}

QTEST_MAIN(TestAdjustOnSimulatedCards)
#include "TestAdjustOnSimulatedCards.moc"
