#include "TestScenes.h"

#include "simulated/Card.h"
#include "simulated/LoadProfile.h"

#include <QtTest>

Q_DECLARE_METATYPE(simulated::LoadProfile)

using namespace simulated;

namespace
{

constexpr double kSettledMs = 600000; // ten minutes: far beyond every lag of the model

Card cardAt(double loadPercent)
{
    return Card(oneCardAtLoad(loadPercent).cards.front());
}

void setManualFan(Card &card, qint32 percent)
{
    card.settings.coolers[0] = {kCoolerPolicyManual, percent};
}

} // namespace

class TestSimulatedCardModel : public QObject
{
    Q_OBJECT

private slots:
    void load_data();
    void load();
    void sameSeedSameNoise();
    void clocksFollowLoad_data();
    void clocksFollowLoad();
    void offsetMovesClocksWithinASecond();
    void loadRaisesTemperature();
    void fullFanCoolsWithinSeconds();
    void fanFollowsPolicy_data();
    void fanFollowsPolicy();
    void tachometerFollowsTheFan();
    void lowPowerLimitThrottles();
    void higherVoltageDrawsMore();
    void lowTemperatureLimitThrottlesAndHolds();
    void restoredLimitsRestoreClocks();
    void memoryFillsUnderLoad();
    void pinnedTemperatureStands();
    void oneLongStepEndsWhereShortOnesDo();
    void earlierMomentChangesNothing();
    void boardSensorsLieBetweenRoomAndGpu();
};

void TestSimulatedCardModel::load_data()
{
    QTest::addColumn<LoadProfile>("profile");
    QTest::addColumn<double>("atMs");
    QTest::addColumn<double>("percent");
    const LoadPart steps = {LoadPart::Steps, 0, 0, 1000, 1, {{1000, 10}, {500, 90}}};
    const LoadPart sine = {LoadPart::Sine, 50, 40, 4000, 1, {}};
    QTest::newRow("no part rests") << LoadProfile{} << 500.0 << 0.0;
    QTest::newRow("constant") << LoadProfile{{LoadPart::Constant, 42, 0, 1, 1, {}}} << 1e9 << 42.0;
    QTest::newRow("first step") << LoadProfile{steps} << 999.0 << 10.0;
    QTest::newRow("second step") << LoadProfile{steps} << 1000.0 << 90.0;
    QTest::newRow("steps start again") << LoadProfile{steps} << 1500.0 << 10.0;
    QTest::newRow("steps without a duration") << LoadProfile{{LoadPart::Steps, 0, 0, 1, 1, {{0, 70}}}} << 5.0 << 0.0;
    QTest::newRow("sine at its start") << LoadProfile{sine} << 0.0 << 50.0;
    QTest::newRow("sine at its top") << LoadProfile{sine} << 1000.0 << 90.0;
    QTest::newRow("sine at its bottom") << LoadProfile{sine} << 3000.0 << 10.0;
    QTest::newRow("parts add up") << LoadProfile{steps, sine} << 0.0 << 60.0;
    QTest::newRow("sum cut to 100") << LoadProfile{{LoadPart::Constant, 80, 0, 1, 1, {}}, sine} << 1000.0 << 100.0;
    QTest::newRow("sum cut to 0") << LoadProfile{{LoadPart::Constant, -80, 0, 1, 1, {}}, sine} << 0.0 << 0.0;
    QTest::newRow("before the start") << LoadProfile{steps} << -5.0 << 10.0;
}

void TestSimulatedCardModel::load()
{
    QFETCH(LoadProfile, profile);
    QFETCH(double, atMs);
    QFETCH(double, percent);
    QVERIFY(std::abs(loadPercentAt(profile, atMs) - percent) < 1e-9);
}

void TestSimulatedCardModel::sameSeedSameNoise()
{
    const LoadProfile one = {{LoadPart::Noise, 50, 20, 700, 7, {}}};
    const LoadProfile other = {{LoadPart::Noise, 50, 20, 700, 8, {}}};
    bool differs = false;
    double least = 100;
    double most = 0;
    for (int ms = 0; ms < 100000; ms += 130) {
        const double percent = loadPercentAt(one, ms);
        QCOMPARE(percent, loadPercentAt(one, ms));
        differs = differs || percent != loadPercentAt(other, ms);
        least = std::min(least, percent);
        most = std::max(most, percent);
    }
    QVERIFY(differs);
    QVERIFY(least >= 30 && most <= 70);
    QVERIFY(most - least > 20); // it really moves
    // pinned figures: the noise must not depend on the platform's library
    QCOMPARE(qRound(loadPercentAt(one, 0) * 1000), 59508);
    QCOMPARE(qRound(loadPercentAt(one, 70000) * 1000), 32624);
}

void TestSimulatedCardModel::clocksFollowLoad_data()
{
    QTest::addColumn<double>("percent");
    QTest::addColumn<int>("graphicsMHz");
    QTest::addColumn<int>("memoryMHz");
    QTest::newRow("at rest") << 0.0 << 139 << 405;
    QTest::newRow("nearly at rest") << 7.9 << 139 << 405;
    QTest::newRow("light load") << 20.0 << 1607 << 4004;
    QTest::newRow("half way up") << 57.5 << 1657 << 4004;
    QTest::newRow("full load") << 100.0 << 1683 << 4004;
}

void TestSimulatedCardModel::clocksFollowLoad()
{
    QFETCH(double, percent);
    QFETCH(int, graphicsMHz);
    QFETCH(int, memoryMHz);
    const Card card = cardAt(percent);
    QCOMPARE(int(card.state.graphicsKHz / 1000), graphicsMHz);
    QCOMPARE(int(card.state.memoryKHz / 1000), memoryMHz);
}

void TestSimulatedCardModel::offsetMovesClocksWithinASecond()
{
    Card card = cardAt(90);
    card.parameters.thermal.pinnedC = 50;
    card.advanceTo(1000);
    const qint64 graphicsKHz = card.state.graphicsKHz;
    const qint64 memoryKHz = card.state.memoryKHz;
    card.settings.graphicsOffsetKHz = -150000;
    card.settings.memoryOffsetKHz = 250000;
    card.advanceTo(2000);
    QCOMPARE(card.state.graphicsKHz, graphicsKHz - 150000);
    QCOMPARE(card.state.memoryKHz, memoryKHz + 250000);
}

void TestSimulatedCardModel::loadRaisesTemperature()
{
    Card card = cardAt(100);
    const double startC = card.state.temperatureC;
    card.advanceTo(3000);
    const double soonC = card.state.temperatureC;
    card.advanceTo(kSettledMs);
    QVERIFY(soonC > startC + 3);
    QVERIFY(card.state.temperatureC > 65);
    QVERIFY(card.state.temperatureC < 84); // its own fan curve holds it near the limit at most
}

void TestSimulatedCardModel::fullFanCoolsWithinSeconds()
{
    Card card = cardAt(100);
    card.advanceTo(kSettledMs);
    const double hotC = card.state.temperatureC;
    setManualFan(card, 100);
    card.advanceTo(kSettledMs + 5000);
    QVERIFY2(card.state.temperatureC < hotC - 4, qPrintable(QString::number(card.state.temperatureC)));
    setManualFan(card, 0);
    card.advanceTo(kSettledMs + 65000);
    QVERIFY(card.state.temperatureC > hotC + 4);
}

void TestSimulatedCardModel::fanFollowsPolicy_data()
{
    QTest::addColumn<qint32>("policy");
    QTest::addColumn<double>("percent");
    // the curve of the default card at 65 degrees gives 41.67 percent
    QTest::newRow("driver's own control") << qint32(kCoolerPolicyDefault) << 41.67;
    QTest::newRow("continuous") << qint32(kCoolerPolicyContinuousTemperature) << 41.67;
    QTest::newRow("discrete rounds up to tens") << qint32(kCoolerPolicyDiscreteTemperature) << 50.0;
    QTest::newRow("performance runs higher") << qint32(kCoolerPolicyPerformance) << 61.67;
    QTest::newRow("manual") << qint32(kCoolerPolicyManual) << 77.0;
}

void TestSimulatedCardModel::fanFollowsPolicy()
{
    QFETCH(qint32, policy);
    QFETCH(double, percent);
    Card card = cardAt(50);
    card.parameters.thermal.pinnedC = 65;
    card.settings.coolers[0] = {policy, 77};
    card.advanceTo(5000);
    QVERIFY(std::abs(card.state.fanPercent - percent) < 0.01);
}

void TestSimulatedCardModel::tachometerFollowsTheFan()
{
    Card card = cardAt(0);
    setManualFan(card, 100);
    card.advanceTo(10000);
    QCOMPARE(card.fanRpm(), quint32(card.parameters.fan.maximumRpm));
    setManualFan(card, 50);
    card.advanceTo(10100); // the fan needs its time
    QVERIFY(card.fanRpm() > quint32(card.parameters.fan.maximumRpm) * 9 / 10);
    card.advanceTo(20000);
    QCOMPARE(card.fanRpm(), quint32(card.parameters.fan.maximumRpm) / 2);
    card.parameters.fan.tachometer = false;
    QCOMPARE(card.fanRpm(), 0u);
}

void TestSimulatedCardModel::lowPowerLimitThrottles()
{
    Card card = cardAt(100);
    card.advanceTo(1000);
    const qint64 freeKHz = card.state.graphicsKHz;
    QVERIFY(!card.state.powerLimited);
    card.settings.powerLimit = 50000;
    card.advanceTo(2000);
    QVERIFY(card.state.powerLimited);
    QVERIFY(card.state.graphicsKHz < freeKHz - 100000);
    QVERIFY(card.state.powerW <= card.parameters.power.nominalW / 2 + 0.5);
}

void TestSimulatedCardModel::higherVoltageDrawsMore()
{
    Card card = cardAt(100);
    card.settings.powerLimit = 200000;
    card.advanceTo(100);
    const double plainW = card.state.powerW;
    card.settings.voltageOffset_uV = 50000;
    card.advanceTo(200);
    QVERIFY(card.state.powerW > plainW + 5);
    QCOMPARE(qRound(card.state.voltage_uV), 1100000);
}

void TestSimulatedCardModel::lowTemperatureLimitThrottlesAndHolds()
{
    Card card = cardAt(100);
    card.advanceTo(kSettledMs);
    const qint64 freeKHz = card.state.graphicsKHz;
    QVERIFY(card.state.temperatureC > 66);
    setManualFan(card, 30);
    card.settings.temperatureLimit256 = 62 * 256;
    card.advanceTo(kSettledMs * 2);
    QVERIFY(card.state.temperatureLimited);
    QVERIFY(card.state.graphicsKHz < freeKHz);
    QVERIFY2(std::abs(card.state.temperatureC - 62) < 3, qPrintable(QString::number(card.state.temperatureC)));
}

void TestSimulatedCardModel::restoredLimitsRestoreClocks()
{
    Card card = cardAt(100);
    card.parameters.thermal.pinnedC = 55;
    card.advanceTo(1000);
    const qint64 freeKHz = card.state.graphicsKHz;
    card.settings.powerLimit = 50000;
    card.settings.graphicsOffsetKHz = 200000;
    card.advanceTo(3000);
    QVERIFY(card.state.graphicsKHz != freeKHz);
    card.settings.powerLimit = 100000;
    card.settings.graphicsOffsetKHz = 0;
    card.advanceTo(4000);
    QCOMPARE(card.state.graphicsKHz, freeKHz);
}

void TestSimulatedCardModel::memoryFillsUnderLoad()
{
    Card card = cardAt(100);
    card.parameters.load = {{LoadPart::Constant, 0, 0, 1, 1, {}}};
    card.advanceTo(kSettledMs);
    QVERIFY(card.state.memoryUsedKB <= card.parameters.memory.idleUsedKB + 1);
    card.parameters.load = {{LoadPart::Constant, 100, 0, 1, 1, {}}};
    card.advanceTo(kSettledMs + 2000);
    QVERIFY(card.state.memoryUsedKB > card.parameters.memory.idleUsedKB + 1000000);
    QVERIFY(card.state.memoryUsedKB < card.parameters.memory.loadUsedKB);
}

void TestSimulatedCardModel::pinnedTemperatureStands()
{
    CardParameters parameters = oneCardAtLoad(100).cards.front();
    parameters.thermal.pinnedC = 64;
    Card card(parameters);
    QCOMPARE(card.state.temperatureC, 64.0);
    card.advanceTo(kSettledMs);
    QCOMPARE(card.state.temperatureC, 64.0);
}

void TestSimulatedCardModel::oneLongStepEndsWhereShortOnesDo()
{
    Card atOnce = cardAt(100);
    Card bitByBit = cardAt(100);
    atOnce.advanceTo(kSettledMs * 1000); // a week's sleep must not take a week's work
    for (int ms = 0; ms <= int(kSettledMs); ms += 170)
        bitByBit.advanceTo(ms);
    QVERIFY(std::abs(atOnce.state.temperatureC - bitByBit.state.temperatureC) < 1);
}

void TestSimulatedCardModel::earlierMomentChangesNothing()
{
    Card card = cardAt(100);
    card.advanceTo(5000);
    const double temperatureC = card.state.temperatureC;
    card.advanceTo(1000);
    card.advanceTo(5000);
    QCOMPARE(card.state.temperatureC, temperatureC);
}

void TestSimulatedCardModel::boardSensorsLieBetweenRoomAndGpu()
{
    CardParameters parameters = oneBoardCard().cards.front();
    parameters.thermal.pinnedC = 78;
    const Card card(parameters);
    QCOMPARE(card.boardTemperature16(parameters.boardSensors[0]), qint32((28 + 40) * 16));
    QCOMPARE(card.boardTemperature16(parameters.boardSensors[3]), qint32((28 + 10) * 16));
    QCOMPARE(card.boardTemperature16({0x9E, 0.5, -0.5}), qint32(-8));
}

QTEST_APPLESS_MAIN(TestSimulatedCardModel)
#include "TestSimulatedCardModel.moc"
