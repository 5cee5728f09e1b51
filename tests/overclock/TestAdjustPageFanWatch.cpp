#include "overclock/AdjustFileWorld.h"

#include <QtTest>

/// Whom the page tells that a fan follows a curve, so that somebody hands it back should the program die.
class TestAdjustPageFanWatch : public QObject
{
    Q_OBJECT

private slots:
    void beginsBeforeTheFirstOrder();
    void beginsWithASavedCurve();
    void endsWithAnotherMode_data();
    void endsWithAnotherMode();
    void endsWithDefault();
    void endsWithThePage();
    void refusedModeGivesTheFanToTheDriver();
    void goesOnWhileTheDriverRefuses();
    void levelOfTheUserIsNobodysToWatch();

private:
    static void applyMode(AdjustFileWorld &world, const char *button)
    {
        world.click(button);
        world.apply();
    }
    /// Opens the page and puts the fan on the curve; waits for its first order.
    static void followCurve(AdjustFileWorld &world)
    {
        world.openFromFile();
        applyMode(world, "btnFanUserDefined");
        QTRY_VERIFY(!world.fanOrders().isEmpty());
        QCOMPARE(world.watch, QStringList("on after 0"));
        world.watch.clear();
    }
};

namespace
{

constexpr int kRecordVersions = 2; // in which a level is ordered before it counts as refused

} // namespace

void TestAdjustPageFanWatch::beginsBeforeTheFirstOrder()
{
    AdjustFileWorld world;
    followCurve(world);
    applyMode(world, "btnFanUserDefined");
    QCOMPARE(world.watch, QStringList()); // it follows the curve already
}

void TestAdjustPageFanWatch::beginsWithASavedCurve()
{
    AdjustFileWorld world;
    AdjustModuleInfo saved;
    saved.FanMode = 7; // every mode but the first two is the curve
    world.save(saved);
    world.openFromFile();
    QCOMPARE(world.watch, QStringList("on after 0"));
}

void TestAdjustPageFanWatch::endsWithAnotherMode_data()
{
    QTest::addColumn<QByteArray>("button");
    QTest::newRow("automatic") << QByteArray("btnFanAuto");
    QTest::newRow("by hand") << QByteArray("btnFanManual");
}

void TestAdjustPageFanWatch::endsWithAnotherMode()
{
    QFETCH(QByteArray, button);
    AdjustFileWorld world;
    followCurve(world);
    applyMode(world, button);
    const int orders = world.fanOrders().size(); // the curve's thread has ended
    QCOMPARE(world.watch, QStringList(QStringLiteral("off after %1").arg(orders)));
}

void TestAdjustPageFanWatch::endsWithDefault()
{
    AdjustFileWorld world;
    followCurve(world);
    world.click("btnDefault");
    QCOMPARE(world.watch.size(), 1);
    QVERIFY(world.watch.first().startsWith(QLatin1String("off")));
    QCOMPARE(world.fanOrders().last(), kFanHandedBack);
}

void TestAdjustPageFanWatch::endsWithThePage()
{
    AdjustFileWorld world;
    followCurve(world);
    world.page.reset();
    QCOMPARE(world.watch.size(), 1);
    QVERIFY(world.watch.first().startsWith(QLatin1String("off")));
    QCOMPARE(world.fanOrders().last(), kFanHandedBack);
}

void TestAdjustPageFanWatch::refusedModeGivesTheFanToTheDriver()
{
    AdjustFileWorld world;
    followCurve(world);
    // From the first order of the GUI thread on, which comes after the end of the curve's thread: the level by hand
    // is refused, and the order after it taken. Before each level the cooler's range is read.
    QThread *const guiThread = QThread::currentThread();
    bool refused = false;
    world.driver.onCall(Operation::NvAPI_GPU_GetCoolerSettings, [&] {
        if (QThread::currentThread() != guiThread || refused)
            return;
        refused = true;
        world.driver.fails(Operation::NvAPI_GPU_SetCoolerLevels, NVAPI_ERROR, 1, kRecordVersions);
    });
    applyMode(world, "btnFanManual");
    QVERIFY(refused);
    QCOMPARE(world.watch.size(), 1);
    QVERIFY(world.watch.first().startsWith(QLatin1String("off")));
    QCOMPARE(world.fanOrders().last(), kFanHandedBack);
}

void TestAdjustPageFanWatch::goesOnWhileTheDriverRefuses()
{
    AdjustFileWorld world;
    followCurve(world);
    world.driver.fails(Operation::NvAPI_GPU_SetCoolerLevels);
    applyMode(world, "btnFanAuto");
    QCOMPARE(world.watch, QStringList());
    world.page.reset();
    QCOMPARE(world.watch, QStringList()); // somebody else has to try, after the end of the process
}

void TestAdjustPageFanWatch::levelOfTheUserIsNobodysToWatch()
{
    AdjustFileWorld world;
    world.openFromFile();
    applyMode(world, "btnFanManual");
    world.page.reset();
    QCOMPARE(world.watch, QStringList());
}

QTEST_MAIN(TestAdjustPageFanWatch)
#include "TestAdjustPageFanWatch.moc"
