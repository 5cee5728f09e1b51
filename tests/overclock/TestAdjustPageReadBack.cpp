#include "overclock/AdjustFileWorld.h"

#include <QtTest>

namespace
{

QVector<int> clocksAndTargets(const AdjustFileWorld &world)
{
    QVector<int> values;
    for (const AdjustRowIndex index : {RowGpuClock, RowMemoryClock, RowVoltage, RowPower, RowTemperature})
        values << world.row(index)->value();
    return values;
}

} // namespace

/// The page on cards that take what they are told: what was applied is read back and shown.
class TestAdjustPageReadBack : public QObject
{
    Q_OBJECT

private slots:
    void applyThenDefault();
    void highPerformanceOnAndOff();
    void memoryOffsetThatTheBaseContains();
};

void TestAdjustPageReadBack::applyThenDefault()
{
    AdjustFileWorld world;
    world.openFromFile();
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

void TestAdjustPageReadBack::highPerformanceOnAndOff()
{
    AdjustFileWorld world;
    world.openFromFile();
    const QVector<int> atStart = clocksAndTargets(world);
    QVERIFY(world.page->setHighPerformance(true));
    QCOMPARE(clocksAndTargets(world), QVector<int>({1733, atStart.at(1), atStart.at(2), 120, 83}));
    QVERIFY(world.page->setHighPerformance(false));
    QCOMPARE(clocksAndTargets(world), atStart);
}

void TestAdjustPageReadBack::memoryOffsetThatTheBaseContains()
{
    simulated::Scenario scene = simulated::builtInScenario();
    scene.cards.front().clocks.memoryIsRange = false;
    AdjustFileWorld world(scene);
    world.openFromFile();
    const int stock = world.row(RowMemoryClock)->value();
    world.move(RowMemoryClock, stock + 100);
    world.apply();
    QCOMPARE(world.row(RowMemoryClock)->value(), stock + 100);
    world.close();
    const AdjustModuleInfo saved = world.saved();
    QCOMPARE(saved.MemoryFreClock, stock + 100);

    // The program starts again, on a card that has kept the offset.
    world.openFromFile();
    QVERIFY(world.orders().contains(QStringLiteral("memory offset 100000 kHz")));
    world.close();
    QCOMPARE(world.saved().MemoryFreClock, stock + 100);

    // The machine was switched off meanwhile: the card has no offset.
    AdjustFileWorld afterwards(scene);
    afterwards.save(saved);
    afterwards.openFromFile();
    QCOMPARE(afterwards.orders().filter(QStringLiteral("memory")), QStringList("memory offset 100000 kHz"));
    afterwards.close();
    QCOMPARE(afterwards.saved().MemoryFreClock, stock + 100);
}

QTEST_MAIN(TestAdjustPageReadBack)
#include "TestAdjustPageReadBack.moc"
