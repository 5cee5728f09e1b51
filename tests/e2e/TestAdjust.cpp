#include "e2e/AdjustPageHands.h"
#include "e2e/ProgramTest.h"
#include "overclock/FanCurve.h"

#include <QJsonArray>
#include <QTest>

/// Adjusting a card with the real executable: what its driver is told, what the card makes of it, and what
/// stays for the next start.
class TestAdjust : public ProgramTest
{
    Q_OBJECT

private slots:
    void draggedSliderShowsInTheGauge();
    void typedNumbersReachTheCardAndAreKept();
    void defaultGivesEverythingBack();
    void drawnCurveDrivesTheFan();
    void highPerformance();
    void savedNumbersOutOfRange();
    void brokenCurves();
    void driverThatRefusesEveryWrite();

private:
    /// Opens the page past the warning that stands in the way once in a run.
    void openPage(InstalledProgram &program, qint64 window, const AdjustPageHands &hands);
    void answerApply(InstalledProgram &program, const AdjustPageHands &hands, bool yes);
    /// Confirms Apply and waits until the main thread has written so often; what it wrote to the first card.
    [[nodiscard]] QStringList writesOfApply(InstalledProgram &program, const AdjustPageHands &hands, int howMany);
    [[nodiscard]] AdjustPageHands handsOn(const InstalledProgram &program, qint64 window) const;
    [[nodiscard]] QRect gaugeHole(qint64 window) const; ///< of the gauge beside a page, on the screen
};

namespace
{

/// A card under steady load, held at a temperature at which its clock doesn't fade: 1683 MHz all the time.
const QByteArray kSteadyCard = R"({ "thermal": { "pinnedC": 50 }, "load": { "kind": "constant", "percent": 90 } })";

constexpr int kFanAt50C = 25; // percent, of that card's own control

/// A small card that is hot two seconds after its load came and cool two seconds after it went.
const QByteArray kCardWithChangingLoad = R"({ "thermal": { "heatCapacityJK": 2 },
    "load": { "kind": "steps", "steps": [[6000, 4], [6000, 100]] } })";

/// A card held at a temperature, whose settings config.xml keeps under a number of its own.
QByteArray cardAt(int celsius, const QByteArray &subSystemId)
{
    return R"({ "thermal": { "pinnedC": )" + QByteArray::number(celsius) + R"( }, "pci": { "subSystemId": )" +
           subSystemId + " } }";
}

QByteArray sceneOf(const QList<QByteArray> &cards, const QList<QByteArray> &faults = {})
{
    return "{ \"cards\": [" + cards.join(", ") + "], \"faults\": [" + faults.join(", ") + "] }";
}

QByteArray cardSection(const QByteArray &subSystemId, const QByteArray &adjustAttributes)
{
    return "<GPU GpuName=\"GeForce GTX 1070 Ti\" SubSystemId=\"" + subSystemId + "\"><AdjustModule " +
           adjustAttributes + "/></GPU>";
}

QByteArray configWith(const QByteArray &cardSections)
{
    return QByteArray(kQuietConfig).replace("<GpuSettings/>", "<GpuSettings>" + cardSections + "</GpuSettings>");
}

const QByteArray kUsualBoard = QByteArray::number(0x111D7377u);

QString savedAdjustment(const InstalledProgram &program, const char *attribute, int card = 0)
{
    return program.cardSections()
        .value(card)
        .firstChildElement(QStringLiteral("AdjustModule"))
        .attribute(QLatin1String(attribute));
}

QJsonObject readings(const InstalledProgram &program, int card = 0)
{
    return program.cardState(card).value(QStringLiteral("readings")).toObject();
}

QJsonObject settings(const InstalledProgram &program, int card = 0)
{
    return program.cardState(card).value(QStringLiteral("settings")).toObject();
}

int graphicsMHz(const InstalledProgram &program)
{
    return readings(program).value(QStringLiteral("graphicsKHz")).toInt() / 1000;
}

QStringList coolerWrites(const InstalledProgram &program, int card, int from = 0)
{
    return writesTo(program.journal(), card, from).filter(QStringLiteral("cooler"));
}

constexpr int kMainThread = 1;

} // namespace

AdjustPageHands TestAdjust::handsOn(const InstalledProgram &program, qint64 window) const
{
    return AdjustPageHands(screen, program, window, layout.pagePanel);
}

QRect TestAdjust::gaugeHole(qint64 window) const
{
    return onScreen(window, QRect(layout.gaugeShown.center() - QPoint(110, 50), QSize(220, 100)));
}

void TestAdjust::openPage(InstalledProgram &program, qint64 window, const AdjustPageHands &hands)
{
    program.clickIn(window, layout.adjustButton.center());
    pressBoxButton(program, true);
    QTRY_VERIFY_WITH_TIMEOUT(program.otherWindows().isEmpty(), kPatienceMs);
    QTRY_VERIFY_WITH_TIMEOUT(hands.stands(), kPatienceMs);
}

void TestAdjust::answerApply(InstalledProgram &program, const AdjustPageHands &hands, bool yes)
{
    hands.press(hands.parts.applyButton);
    pressBoxButton(program, yes);
    QTRY_VERIFY_WITH_TIMEOUT(program.otherWindows().isEmpty(), kPatienceMs);
}

QStringList TestAdjust::writesOfApply(InstalledProgram &program, const AdjustPageHands &hands, int howMany)
{
    const int before = program.journal().size();
    answerApply(program, hands, true);
    QStringList writes;
    (void)QTest::qWaitFor(
        [&] {
            writes = writesTo(program.journal(), 0, before, kMainThread);
            return writes.size() >= howMany;
        },
        kPatienceMs);
    return writes;
}

void TestAdjust::draggedSliderShowsInTheGauge()
{
    InstalledProgram program(screen);
    program.useScenario(sceneOf({kSteadyCard}));
    program.writeConfig(kQuietConfig);
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    const AdjustPageHands hands = handsOn(program, window);
    openPage(program, window, hands);

    const QRect hole = gaugeHole(window);
    const QRect row = hands.onScreen(hands.rowPlace(RowGpuClock));
    const QRect buttons = hands.onScreen(hands.placeOf(hands.parts.applyButton | hands.parts.cancelButton));
    const QPoint aside = hands.onScreen(hands.placeOf(hands.parts.defaultButton).center());
    const auto looksAsBefore = [&](const QImage &before, const QRect &rect) {
        return QTest::qWaitFor([&] { return differingPixels(before, screen.picture(), rect) == 0; }, kPatienceMs);
    };
    screen.movePointer(aside);
    QTRY_VERIFY_WITH_TIMEOUT(differingPixels(screen.picture(), screen.picture(), hole | row) == 0, kPatienceMs);
    const QImage atRest = screen.picture();

    const double atBase = 200.0 / 1400.0; // offsets reach from -200 to +1200 MHz
    screen.hold(hands.onScreen(hands.sliderPoint(RowGpuClock, atBase)),
                hands.onScreen(hands.sliderPoint(RowGpuClock, 0.6)));
    QVERIFY(pictureChanges(atRest, hole)); // preset, present and difference in place of the reading
    QVERIFY(pictureChanges(atRest, row));
    QVERIFY(pictureChanges(atRest, buttons)); // there is something to apply now

    // still held, it goes on to another number
    const QImage held = screen.picture();
    screen.movePointer(hands.onScreen(hands.sliderPoint(RowGpuClock, 0.02)));
    QTRY_VERIFY_WITH_TIMEOUT(differingPixels(held, screen.picture(), hole) > 0, kPatienceMs);
    screen.release();
    QVERIFY(looksAsBefore(atRest, hole)); // the overlay has faded

    // neither a refused question nor Cancel reaches the card
    answerApply(program, hands, false);
    screen.movePointer(aside);
    QVERIFY(differingPixels(atRest, screen.picture(), row) > 0);
    hands.press(hands.parts.cancelButton);
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
    const AdjustPageHands hands = handsOn(program, window);
    openPage(program, window, hands);
    QTRY_COMPARE_WITH_TIMEOUT(graphicsMHz(program), 1683, kPatienceMs);

    hands.press(hands.parts.manualButton);                            // the fan's row can be edited from here on
    hands.type(RowFan, QStringLiteral("999"), QStringLiteral("Tab")); // beyond 100
    hands.type(RowMemoryClock, QStringLiteral("9999"), QStringLiteral("Tab")); // beyond 5004
    hands.type(RowGpuClock, QStringLiteral("1707"), QStringLiteral("Return"));
    hands.type(RowVoltage, QStringLiteral("1075"), QStringLiteral("KP_Enter"));
    hands.type(RowPower, QStringLiteral("110"), QStringLiteral("Tab"));
    hands.type(RowTemperature, QStringLiteral("85"), QStringLiteral("Return"));
    QVERIFY(program.otherWindows().isEmpty()); // Return pressed no button of the dialog
    QCOMPARE(writesTo(program.journal(), 0), QStringList());

    const QStringList wanted = {
        "cooler 100% policy 1", "graphics 100000 kHz",
        "memory 1000000 kHz",   QStringLiteral("temperature %1/256 C priority 1").arg(85 * 256),
        "power 110000",         "voltage 25000 uV"};
    QCOMPARE(writesOfApply(program, hands, wanted.size()), wanted);
    QTRY_COMPARE_WITH_TIMEOUT(graphicsMHz(program), 1783, kPatienceMs);
    QTRY_COMPARE_WITH_TIMEOUT(readings(program).value(QStringLiteral("memoryKHz")).toInt(), 5004000, kPatienceMs);
    QTRY_COMPARE_WITH_TIMEOUT(readings(program).value(QStringLiteral("fanPercent")).toInt(), 100, kPatienceMs);

    // half of the power is too little for that clock
    QVERIFY(!readings(program).value(QStringLiteral("powerLimited")).toBool());
    hands.type(RowPower, QStringLiteral("50"), QStringLiteral("Tab"));
    QCOMPARE(writesOfApply(program, hands, wanted.size()).value(4), QStringLiteral("power 50000"));
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
    const AdjustPageHands hands = handsOn(program, window);
    openPage(program, window, hands);
    QTRY_COMPARE_WITH_TIMEOUT(graphicsMHz(program), 1726, kPatienceMs);

    const int before = program.journal().size();
    hands.press(hands.parts.defaultButton);
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
    const AdjustPageHands hands = handsOn(program, window);
    openPage(program, window, hands);

    hands.press(hands.parts.configButton);
    const QList<QPoint> atFirst = FanCurve::defaultCurve();
    for (int i = atFirst.size() - 2; i > 0; --i)
        hands.doubleClickNode(atFirst.at(i)); // away with the middle ones: a straight line is left
    for (const QPoint node : {QPoint(40, 30), QPoint(60, 60), QPoint(75, 85), QPoint(90, 95)})
        hands.doubleClickNode(node);
    hands.doubleClickNode(QPoint(60, 60)); // away again
    hands.dragNode(QPoint(75, 85), QPoint(70, 80));
    QList<QPoint> drawn = {QPoint(0, 0)};
    for (const QPoint node : {QPoint(40, 30), QPoint(70, 80), QPoint(90, 95)})
        drawn << hands.placedNode(node);
    drawn << QPoint(100, 100);

    // the curve alone doesn't take the fan out of the driver's hands
    answerApply(program, hands, true);
    QTRY_VERIFY_WITH_TIMEOUT(hands.stands(), kPatienceMs);
    int calls = program.journal().size();
    QTRY_VERIFY_WITH_TIMEOUT(program.journal().size() > calls + 40, kPatienceMs);
    QCOMPARE(writesTo(program.journal(), 0), QStringList());

    hands.press(hands.parts.userDefinedButton);
    const QStringList limits = {"graphics 0 kHz", "memory 0 kHz",
                                QStringLiteral("temperature %1/256 C priority 1").arg(83 * 256), "power 100000",
                                "voltage 0 uV"};
    QCOMPARE(writesOfApply(program, hands, limits.size()), limits); // no level: that is for the curve's thread

    // Both ends of the temperature's swing are seen with the level that the curve has there. The thread may be a
    // reading behind, and tells whole degrees: so only a card at rest agrees, and within a degree.
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
        screen.movePointer(button.topLeft() - QPoint(0, 60)); // the picture under the pointer is another one
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
    QVERIFY(switched(off)); // to the card's defaults: what stood before the mode isn't known any more
    closeByButton(program, window);
    QCOMPARE(savedAdjustment(program, "EnableHighPerformance"), QStringLiteral("0"));
}

void TestAdjust::savedNumbersOutOfRange()
{
    // One card for each kind of number; all are applied while the window is built.
    const QList<QPair<QByteArray, QByteArray>> cards = {
        {"288191351", R"(GpuFreClock="2147483647" FanSpeedLevel="2147483647" Voltage="2147483647"
                         MemoryFreClock="2147483647" Power="2147483647" Temperature="2147483647" FanMode="1")"},
        {"288256887", R"(GpuFreClock="0" FanSpeedLevel="0" Voltage="0" MemoryFreClock="0" Power="0" Temperature="0"
                         FanMode="1" LinkOfPowerWithTemperature="1")"},
        {"288322423", R"(GpuFreClock="-2147483648" FanSpeedLevel="-2147483648" Voltage="-2147483648"
                         MemoryFreClock="-2147483648" Power="-2147483648" Temperature="-2147483648" FanMode="-7")"},
        {"288387959", R"(GpuFreClock="99999999999999" FanSpeedLevel="many" Voltage="" MemoryFreClock="0x10"
                         Power="1e3" Temperature="83.5" FanMode="automatic" Nodes="0,0|100,100|")"}};
    QByteArray sections;
    QList<QByteArray> scene;
    for (const auto &card : cards) {
        sections += cardSection(card.first, card.second);
        scene << cardAt(50, card.first);
    }
    InstalledProgram program(screen);
    program.useScenario(sceneOf(scene));
    program.writeConfig(configWith(sections));
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);

    // Clocks and power are cut to the card's range; the temperature target beyond it is refused by the driver.
    const QJsonObject high = settings(program, 0);
    QCOMPARE(high.value(QStringLiteral("graphicsOffsetKHz")).toInt(), 1200000);
    QCOMPARE(high.value(QStringLiteral("memoryOffsetKHz")).toInt(), 1000000);
    QCOMPARE(high.value(QStringLiteral("powerLimitPercent")).toInt(), 120);
    QCOMPARE(high.value(QStringLiteral("temperatureLimitC")).toInt(), 83);
    const QJsonObject low = settings(program, 1);
    QCOMPARE(low.value(QStringLiteral("graphicsOffsetKHz")).toInt(), -200000);
    QCOMPARE(low.value(QStringLiteral("memoryOffsetKHz")).toInt(), -1000000);
    QCOMPARE(low.value(QStringLiteral("powerLimitPercent")).toInt(), 50);
    QCOMPARE(low.value(QStringLiteral("temperatureLimitC")).toInt(), 60);

    const AdjustPageHands hands = handsOn(program, window);
    openPage(program, window, hands);
    hands.press(hands.parts.autoButton);
    hands.type(RowGpuClock, QStringLiteral("1700"), QStringLiteral("Tab"));
    QVERIFY(writesOfApply(program, hands, 6).contains(QStringLiteral("graphics 93000 kHz")));
    closeByButton(program, window);
    QCOMPARE(program.cardSections().size(), cards.size());
    QCOMPARE(savedAdjustment(program, "GpuFreClock"), QStringLiteral("1700"));
    // negative numbers leave the card's own in place
    QCOMPARE(savedAdjustment(program, "GpuFreClock", 2), QStringLiteral("1607"));
    QCOMPARE(savedAdjustment(program, "Power", 2), QStringLiteral("100"));
}

void TestAdjust::brokenCurves()
{
    // At 65 degrees, where the curve that stands in for a broken one has 70 percent.
    struct Curve
    {
        const char *what;
        QByteArray text;
        int percent;
    };
    QByteArray endless;
    for (int i = 0; i < 20000; ++i)
        endless += "0,0|";
    const QList<Curve> curves = {{"none", "", 70},
                                 {"bars alone", "|||||", 70},
                                 {"one node", "0,0|", 70},
                                 {"falling", "0,0|50,60|60,40|100,100|", 70},
                                 {"going back", "0,0|50,40|40,60|100,100|", 70},
                                 {"off the scale", "0,0|50,400|100,100|", 70},
                                 {"negative", "0,0|-5,10|100,100|", 70},
                                 {"without its first node", "10,10|100,100|", 70},
                                 {"without its last node", "0,0|90,90|", 70},
                                 {"words", "a,b|c,d|e,f", 70},
                                 {"three fields", "0,0,0|100,100,100|", 70},
                                 {"broken parts between good ones", "0,0|7|60,10|70,30|,,|100,100", 20},
                                 {"very long", endless + "100,100|", 65}};
    QByteArray sections;
    QList<QByteArray> scene;
    for (int i = 0; i < curves.size(); ++i) {
        const QByteArray board = QByteArray::number(0x20000000 + i);
        sections += cardSection(board, "FanMode=\"2\" Nodes=\"" + curves.at(i).text + '"');
        scene << cardAt(65, board);
    }
    InstalledProgram program(screen);
    program.useScenario(sceneOf(scene));
    program.writeConfig(configWith(sections));
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    for (int i = 0; i < curves.size(); ++i) {
        QTRY_VERIFY_WITH_TIMEOUT(!coolerWrites(program, i).isEmpty(), kPatienceMs);
        QCOMPARE(QString::fromLatin1(curves.at(i).what) + ": " + coolerWrites(program, i).first(),
                 QString::fromLatin1(curves.at(i).what) +
                     QStringLiteral(": cooler %1% policy 1").arg(curves.at(i).percent));
    }
    closeByButton(program, window);
    for (int i = 0; i < curves.size(); ++i)
        QCOMPARE(coolerWrites(program, i).last(), QStringLiteral("cooler 0% policy 32"));
}

void TestAdjust::driverThatRefusesEveryWrite()
{
    QList<QByteArray> faults;
    for (const char *operation :
         {"NvAPI_GPU_SetPstates20", "NvAPI_GPU_SetCoolerLevels", "NvAPI_GPU_ClientPowerPoliciesSetStatus",
          "NvAPI_GPU_ClientThermalPoliciesSetStatus", "NvAPI_DriverEntry_B23B70EE", "NvAPI_I2CWrite",
          "NvAPI_I2CWriteEx"})
        faults << R"({ "operation": ")" + QByteArray(operation) + R"(", "status": -1 })";
    InstalledProgram program(screen);
    program.useScenario(sceneOf({kSteadyCard}, faults));
    program.writeConfig(configWith(cardSection(kUsualBoard, R"(GpuFreClock="1700" FanSpeedLevel="80" Power="60"
                                                              FanMode="2" Nodes="")")));
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    const AdjustPageHands hands = handsOn(program, window);
    openPage(program, window, hands);

    QTRY_VERIFY_WITH_TIMEOUT(coolerWrites(program, 0).size() > 4, kPatienceMs); // the curve's thread goes on trying
    hands.press(hands.parts.manualButton);
    hands.type(RowGpuClock, QStringLiteral("1800"), QStringLiteral("Tab"));
    const int before = program.journal().size();
    answerApply(program, hands, true);
    QTRY_VERIFY_WITH_TIMEOUT(
        writesTo(program.journal(), 0, before, kMainThread).contains(QStringLiteral("graphics 193000 kHz")),
        kPatienceMs);
    hands.press(hands.parts.defaultButton);
    QTRY_VERIFY_WITH_TIMEOUT(writesTo(program.journal(), 0, before, kMainThread).contains(QStringLiteral("entry 1")),
                             kPatienceMs);
    program.clickIn(window, layout.highPerformanceButton.center());
    QTRY_VERIFY_WITH_TIMEOUT(
        writesTo(program.journal(), 0, before, kMainThread).contains(QStringLiteral("graphics 126000 kHz")),
        kPatienceMs);
    closeByButton(program, window);
    QCOMPARE(savedAdjustment(program, "GpuFreClock"),
             QStringLiteral("1607")); // what the card has, not what was wanted
    QCOMPARE(savedAdjustment(program, "Power"), QStringLiteral("100"));
}

int main(int argc, char **argv)
{
    return runProgramTest<TestAdjust>(argc, argv);
}

#include "TestAdjust.moc"
