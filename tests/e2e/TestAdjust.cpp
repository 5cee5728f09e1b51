#include "e2e/AdjustTest.h"
#include "overclock/FanCurve.h"

#include <QJsonArray>
#include <QTest>

/// Adjusting a card with the real executable: the orders to the driver, their effects on the card, and what is saved
/// for the next start.
class TestAdjust : public AdjustTest
{
    Q_OBJECT

private slots:
    void draggedSliderShowsInTheGauge();
    void typedNumbersReachTheCardAndAreKept();
    void defaultGivesEverythingBack();
    void drawnCurveDrivesTheFan();
    void highPerformance();
};

namespace
{

constexpr int kFanAt50C = 25; // percent, of that card's own control

/// A small card that is hot two seconds after its load begins and cool two seconds after it ends.
const QByteArray kCardWithChangingLoad = R"({ "thermal": { "heatCapacityJK": 2 },
    "load": { "kind": "steps", "steps": [[6000, 4], [6000, 100]] } })";

int graphicsMHz(const InstalledProgram &program)
{
    return readings(program).value(QStringLiteral("graphicsKHz")).toInt() / 1000;
}

} // namespace

void TestAdjust::draggedSliderShowsInTheGauge()
{
    InstalledProgram program(screen);
    program.useScenario(sceneOf({kSteadyCard}));
    program.writeConfig(kQuietConfig);
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    const AdjustPageRobot robot = robotFor(program, window);
    openPage(program, window, robot);

    const QRect hole = gaugeHole(window);
    const QRect row = robot.onScreen(robot.rowPlace(RowGpuClock));
    const QRect buttons = robot.onScreen(robot.placeOf(robot.parts.applyButton | robot.parts.cancelButton));
    const QPoint aside = robot.onScreen(robot.placeOf(robot.parts.defaultButton).center());
    const auto looksAsBefore = [&](const QImage &before, const QRect &rect) {
        return QTest::qWaitFor([&] { return differingPixels(before, screen.picture(), rect) == 0; }, kPatienceMs);
    };
    screen.movePointer(aside);
    QTRY_VERIFY_WITH_TIMEOUT(differingPixels(screen.picture(), screen.picture(), hole | row) == 0, kPatienceMs);
    const QImage atRest = screen.picture();

    const double atBase = 200.0 / 1400.0; // offsets reach from -200 to +1200 MHz
    screen.hold(robot.onScreen(robot.sliderPoint(RowGpuClock, atBase)),
                robot.onScreen(robot.sliderPoint(RowGpuClock, 0.6)));
    QVERIFY(pictureChanges(atRest, hole)); // the three rows of the adjustment replace the reading
    QVERIFY(pictureChanges(atRest, row));
    QVERIFY(pictureChanges(atRest, buttons)); // there is something to apply now

    // still held, it goes on to another number
    const QImage held = screen.picture();
    screen.movePointer(robot.onScreen(robot.sliderPoint(RowGpuClock, 0.02)));
    QTRY_VERIFY_WITH_TIMEOUT(differingPixels(held, screen.picture(), hole) > 0, kPatienceMs);
    screen.release();
    QVERIFY(looksAsBefore(atRest, hole)); // the overlay has faded

    // neither a refused question nor Cancel reaches the card
    answerApply(program, robot, false);
    screen.movePointer(aside);
    QVERIFY(differingPixels(atRest, screen.picture(), row) > 0);
    robot.press(robot.parts.cancelButton);
    screen.movePointer(aside);
    QVERIFY(looksAsBefore(atRest, row));
    QVERIFY(looksAsBefore(atRest, buttons));
    closeByButton(program, window);
    QCOMPARE(writesTo(program.journal(), 0), QStringList());
    QCOMPARE(savedAdjustment(program, "GpuFreClock"), QStringLiteral("1607"));
}

void TestAdjust::typedNumbersReachTheCardAndAreKept()
{
    InstalledProgram program(screen);
    program.useScenario(sceneOf({kSteadyCard}));
    program.writeConfig(kQuietConfig);
    qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    const AdjustPageRobot robot = robotFor(program, window);
    openPage(program, window, robot);
    QTRY_COMPARE_WITH_TIMEOUT(graphicsMHz(program), 1683, kPatienceMs);

    robot.press(robot.parts.manualButton);                            // the fan's row can be edited from here on
    robot.type(RowFan, QStringLiteral("999"), QStringLiteral("Tab")); // beyond 100
    robot.type(RowMemoryClock, QStringLiteral("9999"), QStringLiteral("Tab")); // beyond 5004
    robot.type(RowGpuClock, QStringLiteral("1707"), QStringLiteral("Return"));
    robot.type(RowVoltage, QStringLiteral("1075"), QStringLiteral("KP_Enter"));
    robot.type(RowPower, QStringLiteral("110"), QStringLiteral("Tab"));
    robot.type(RowTemperature, QStringLiteral("85"), QStringLiteral("Return"));
    QVERIFY(program.otherWindows().isEmpty()); // Return pressed no button of the dialog
    QCOMPARE(writesTo(program.journal(), 0), QStringList());

    const QStringList wanted = {
        "cooler 100% policy 1", "graphics 100000 kHz",
        "memory 1000000 kHz",   QStringLiteral("temperature %1/256 C priority 1").arg(85 * 256),
        "power 110000",         "voltage 25000 uV"};
    QCOMPARE(writesOfApply(program, robot, wanted.size()), wanted);
    QTRY_COMPARE_WITH_TIMEOUT(graphicsMHz(program), 1783, kPatienceMs);
    QTRY_COMPARE_WITH_TIMEOUT(readings(program).value(QStringLiteral("memoryKHz")).toInt(), 5004000, kPatienceMs);
    QTRY_COMPARE_WITH_TIMEOUT(readings(program).value(QStringLiteral("fanPercent")).toInt(), 100, kPatienceMs);

    // half of the power is too little for that clock
    QVERIFY(!readings(program).value(QStringLiteral("powerLimited")).toBool());
    robot.type(RowPower, QStringLiteral("50"), QStringLiteral("Tab"));
    QCOMPARE(writesOfApply(program, robot, wanted.size()).value(4), QStringLiteral("power 50000"));
    QTRY_VERIFY_WITH_TIMEOUT(readings(program).value(QStringLiteral("powerLimited")).toBool(), kPatienceMs);
    QVERIFY(graphicsMHz(program) < 1683);

    closeByButton(program, window);
    const QList<QPair<const char *, const char *>> saved = {{"GpuFreClock", "1707"},
                                                            {"FanSpeedLevel", "100"},
                                                            {"Voltage", "1075"},
                                                            {"MemoryFreClock", "5004"},
                                                            {"Power", "50"},
                                                            {"Temperature", "85"},
                                                            {"FanMode", "1"},
                                                            {"Nodes", ""},
                                                            {"LinkOfPowerWithTemperature", "0"},
                                                            {"EnableHighPerformance", "0"}};
    for (const auto &value : saved)
        QCOMPARE(QString::fromLatin1(value.first) + QLatin1Char(' ') + savedAdjustment(program, value.first),
                 QString::fromLatin1(value.first) + QLatin1Char(' ') + QLatin1String(value.second));
    // a level set by hand stays when the program ends
    QCOMPARE(coolerWrites(program, 0).last(), QStringLiteral("cooler 100% policy 1"));

    const int firstRun = program.journal().size();
    window = startedWindow(program);
    QVERIFY(window != 0);
    QStringList again = wanted;
    again[4] = QStringLiteral("power 50000");
    QCOMPARE(writesTo(program.journal(), 0, firstRun), again);
    QTRY_VERIFY_WITH_TIMEOUT(readings(program).value(QStringLiteral("powerLimited")).toBool(), kPatienceMs);
    closeByButton(program, window);
}

void TestAdjust::defaultGivesEverythingBack()
{
    InstalledProgram program(screen);
    program.useScenario(sceneOf({kSteadyCard}));
    program.writeConfig(configWith(cardSection(
        kUsualBoard, R"(GpuFreClock="1650" FanSpeedLevel="70" Voltage="1060" MemoryFreClock="4104" Power="90"
                        Temperature="80" FanMode="1")")));
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    const AdjustPageRobot robot = robotFor(program, window);
    openPage(program, window, robot);
    QTRY_COMPARE_WITH_TIMEOUT(graphicsMHz(program), 1726, kPatienceMs);

    const int before = program.journal().size();
    robot.press(robot.parts.defaultButton);
    const QStringList defaults = {"entry 1",
                                  "graphics 0 kHz",
                                  "memory 0 kHz",
                                  "power 100000",
                                  "cooler 0% policy 32",
                                  "voltage 0 uV",
                                  QStringLiteral("temperature %1/256 C priority 1").arg(83 * 256),
                                  "over-voltage 0 uV",
                                  QStringLiteral("temperature %1/256 C priority 0").arg(83 * 256)};
    QTRY_COMPARE_WITH_TIMEOUT(writesTo(program.journal(), 0, before), defaults, kPatienceMs);
    QTRY_COMPARE_WITH_TIMEOUT(graphicsMHz(program), 1683, kPatienceMs);
    QTRY_COMPARE_WITH_TIMEOUT(readings(program).value(QStringLiteral("fanPercent")).toInt(), kFanAt50C, kPatienceMs);
    QVERIFY(program.otherWindows().isEmpty()); // and nothing was asked

    closeByButton(program, window);
    QCOMPARE(savedAdjustment(program, "GpuFreClock"), QStringLiteral("1607"));
    QCOMPARE(savedAdjustment(program, "Power"), QStringLiteral("100"));
    QCOMPARE(savedAdjustment(program, "FanMode"), QStringLiteral("0"));
}

void TestAdjust::drawnCurveDrivesTheFan()
{
    InstalledProgram program(screen);
    program.useScenario(sceneOf({kCardWithChangingLoad}));
    program.writeConfig(kQuietConfig);
    qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    const AdjustPageRobot robot = robotFor(program, window);
    openPage(program, window, robot);

    robot.press(robot.parts.configButton);
    const QList<QPoint> atFirst = FanCurve::defaultCurve();
    for (int i = atFirst.size() - 2; i > 0; --i)
        robot.doubleClickNode(atFirst.at(i)); // removes the middle ones: a straight line is left
    for (const QPoint node : {QPoint(40, 30), QPoint(60, 60), QPoint(75, 85), QPoint(90, 95)})
        robot.doubleClickNode(node);
    robot.doubleClickNode(QPoint(60, 60)); // removes it again
    robot.dragNode(QPoint(75, 85), QPoint(70, 80));
    QList<QPoint> drawn = {QPoint(0, 0)};
    for (const QPoint node : {QPoint(40, 30), QPoint(70, 80), QPoint(90, 95)})
        drawn << robot.placedNode(node);
    drawn << QPoint(100, 100);

    // the curve alone doesn't take the fan out of the driver's control
    answerApply(program, robot, true);
    QTRY_VERIFY_WITH_TIMEOUT(robot.isShown(), kPatienceMs);
    int calls = program.journal().size();
    QTRY_VERIFY_WITH_TIMEOUT(program.journal().size() > calls + 40, kPatienceMs);
    QCOMPARE(writesTo(program.journal(), 0), QStringList());

    robot.press(robot.parts.userDefinedButton);
    const QStringList limits = {"graphics 0 kHz", "memory 0 kHz",
                                QStringLiteral("temperature %1/256 C priority 1").arg(83 * 256), "power 100000",
                                "voltage 0 uV"};
    QCOMPARE(writesOfApply(program, robot, limits.size()), limits); // no level: that is for the curve's thread

    // Both ends of the temperature's range must show the curve's level for them. The thread may use the previous
    // reading, and it reads whole degrees: so only a card with a steady temperature agrees, within a degree.
    const auto followsAtLoad = [&](int from, int to) {
        const QJsonObject now = readings(program);
        const int load = now.value(QStringLiteral("loadPercent")).toInt();
        const int celsius = int(now.value(QStringLiteral("temperatureC")).toDouble());
        const QJsonObject cooler = settings(program).value(QStringLiteral("coolers")).toArray().first().toObject();
        const int level = cooler.value(QStringLiteral("manualPercent")).toInt();
        return load >= from && load <= to && cooler.value(QStringLiteral("policy")).toInt() == 1 &&
               level >= FanCurve::levelFor(drawn, celsius - 1) && level <= FanCurve::levelFor(drawn, celsius + 1);
    };
    QTRY_VERIFY_WITH_TIMEOUT(followsAtLoad(90, 100), kPatienceMs);
    QTRY_VERIFY_WITH_TIMEOUT(followsAtLoad(0, 10), kPatienceMs);
    QSet<QString> possible;
    for (int celsius = 0; celsius <= 100; ++celsius)
        possible << QStringLiteral("cooler %1% policy 1").arg(FanCurve::levelFor(drawn, celsius));
    const QStringList levels = coolerWrites(program, 0);
    for (const QString &level : levels)
        QVERIFY2(possible.contains(level), qPrintable(level));

    closeByButton(program, window);
    QCOMPARE(coolerWrites(program, 0).last(), QStringLiteral("cooler 0% policy 32"));
    QCOMPARE(savedAdjustment(program, "FanMode"), QStringLiteral("2"));
    QString nodes;
    for (const QPoint node : drawn)
        nodes += QStringLiteral("%1,%2|").arg(node.x()).arg(node.y());
    QCOMPARE(savedAdjustment(program, "Nodes"), nodes);

    calls = program.journal().size();
    window = startedWindow(program);
    QVERIFY(window != 0);
    QCOMPARE(writesTo(program.journal(), 0, calls, kMainThread), limits);
    QTRY_VERIFY_WITH_TIMEOUT(followsAtLoad(90, 100), kPatienceMs);
    for (const QString &level : coolerWrites(program, 0, calls))
        QVERIFY2(possible.contains(level), qPrintable(level));
    closeByButton(program, window);
    QCOMPARE(coolerWrites(program, 0).last(), QStringLiteral("cooler 0% policy 32"));
}

void TestAdjust::highPerformance()
{
    InstalledProgram program(screen);
    program.writeConfig(kQuietConfig);
    qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    const QRect button = onScreen(window, layout.highPerformanceButton);
    const auto limits = [](int graphicsKHz, int power) {
        return QStringList{QStringLiteral("graphics %1 kHz").arg(graphicsKHz), "memory 0 kHz",
                           QStringLiteral("temperature %1/256 C priority 1").arg(83 * 256),
                           QStringLiteral("power %1").arg(power), "voltage 0 uV"};
    };
    const QStringList on = limits((1733 - 1607) * 1000, 120000);
    const QStringList off = limits(0, 100000);
    // The fan goes to the driver first, with the level at which it was found.
    const auto isPreset = [](const QStringList &writes, const QStringList &expected) {
        return writes.size() == expected.size() + 1 && writes.first().endsWith(QLatin1String("% policy 32")) &&
               writes.mid(1) == expected;
    };
    const auto switched = [&](const QStringList &expected) {
        const int before = program.journal().size();
        const QImage picture = screen.picture();
        program.clickIn(window, layout.highPerformanceButton.center());
        screen.movePointer(button.topLeft() - QPoint(0, 60)); // a hovered button has another picture
        return QTest::qWaitFor([&] { return isPreset(writesTo(program.journal(), 0, before), expected); },
                               kPatienceMs) &&
               pictureChanges(picture, button);
    };
    QVERIFY2(switched(on), qPrintable(writesTo(program.journal(), 0).join(QLatin1Char('\n'))));
    QVERIFY2(switched(off), qPrintable(writesTo(program.journal(), 0).join(QLatin1Char('\n'))));
    QVERIFY2(switched(on), qPrintable(writesTo(program.journal(), 0).join(QLatin1Char('\n'))));
    QCOMPARE(writesTo(program.journal(), 1), QStringList()); // the other card is left alone
    closeByButton(program, window);
    QCOMPARE(savedAdjustment(program, "EnableHighPerformance"), QStringLiteral("1"));
    QCOMPARE(savedAdjustment(program, "GpuFreClock"), QStringLiteral("1733"));
    QCOMPARE(savedAdjustment(program, "EnableHighPerformance", 1), QStringLiteral("0"));

    const int firstRun = program.journal().size();
    window = startedWindow(program);
    QVERIFY(window != 0);
    QVERIFY(isPreset(writesTo(program.journal(), 0, firstRun), on));
    QVERIFY(switched(off)); // to the card's defaults: the values from before the mode aren't known any more
    closeByButton(program, window);
    QCOMPARE(savedAdjustment(program, "EnableHighPerformance"), QStringLiteral("0"));
}

int main(int argc, char **argv)
{
    return runProgramTest<TestAdjust>(argc, argv);
}

#include "TestAdjust.moc"
