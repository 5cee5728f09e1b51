#include "e2e/CardFrontTest.h"
#include "e2e/LedPageRobot.h"
#include "simulated/front/FrontLayout.h"

#include <QElapsedTimer>
#include <QTest>

/// The LED page of the real executable: the frames to the card's controller for each click, what is saved for the
/// next start, and the effect of a controller that fails or is slow.
class TestLed : public CardFrontTest
{
    Q_OBJECT

private slots:
    void init() { framesSeen = 0; }
    void everyEffect();
    void paletteAndReset();
    void steadyColourFollowsADrag();
    void controllerWithoutGradient();
    void controllerThatStopsAndComesBack();
    void slowDriver_data();
    void slowDriver();
    void lightsOnTheCard();

private:
    [[nodiscard]] bool openPage(InstalledProgram &program, qint64 window, const LedPageRobot &robot);
    /// Waits for so many more frames to the first card; all that have come since the last call.
    [[nodiscard]] QStringList newFrames(const InstalledProgram &program, int howMany = 1);
    /// The frames of a drag of the palette: those until half a second after it, and none before its end.
    [[nodiscard]] QStringList framesOfDrag(const InstalledProgram &program, QPoint from, QPoint to);

    int framesSeen = 0; ///< of the running program, already checked by the test
};

namespace
{

/// Half a second, minus the tolerance of a coarse timer.
constexpr int kAfterDragMs = 475;

constexpr int kSlowCallMs = 2000;
constexpr int kWorkers = 4;               // of a card: readings, LCD, LEDs, fan
constexpr int kLongestEndOfWorker = 2000; // after its running call; it is ended by force then
/// The call that the window's own thread is in when it gets the close, and another one that it waits for.
constexpr int kLongestCloseMs = kWorkers * (kSlowCallMs + kLongestEndOfWorker) + 2 * kSlowCallMs;

const QByteArray kCoolLedCard = R"({ "led": { "type": 3 }, "thermal": { "pinnedC": 40 } })";
const QByteArray kUsualBoard = QByteArray::number(0x111D7377u);
const QString kProbe = QStringLiteral("05 0A 00 00 F0");

QByteArray sceneOf(const QByteArray &card, const QByteArray &faults = {})
{
    return "{ \"cards\": [" + card + "], \"faults\": [" + faults + "] }";
}

QByteArray configWithLed(const QByteArray &ledAttributes)
{
    const QByteArray section = "<GPU GpuName=\"GeForce GTX 1070 Ti\" SubSystemId=\"" + kUsualBoard +
                               "\"><LedModule " + ledAttributes + "/></GPU>";
    return QByteArray(kQuietConfig).replace("<GpuSettings/>", "<GpuSettings>" + section + "</GpuSettings>");
}

/// Interval, effect, presets, custom buttons, and the colours of these: "9 3 8 1 FF0000 FFFFFF ...".
QString savedLed(const InstalledProgram &program)
{
    const QDomElement led = program.cardSections().value(0).firstChildElement(QStringLiteral("LedModule"));
    QStringList words;
    for (const char *name : {"Interval", "LedMode", "CheckedColorButtonStatic", "CheckedColorButtonDynamic"})
        words << led.attribute(QLatin1String(name));
    for (int i = 1; i <= 7; ++i) {
        const uint color = led.attribute(QStringLiteral("Color%1").arg(i)).toUInt();
        words << QString::number(color, 16).toUpper();
    }
    return words.join(QLatin1Char(' '));
}

QString whiteButtons(int howMany)
{
    return QStringLiteral(" FFFFFFFF").repeated(howMany);
}

QByteArray hexOf(const QColor &color)
{
    return color.name().mid(1).toLatin1();
}

} // namespace

bool TestLed::openPage(InstalledProgram &program, qint64 window, const LedPageRobot &robot)
{
    program.clickIn(window, layout.firstSlotButton.center());
    return QTest::qWaitFor([&] { return robot.isShown(); }, kPatienceMs);
}

QStringList TestLed::newFrames(const InstalledProgram &program, int howMany)
{
    QStringList frames;
    (void)QTest::qWaitFor(
        [&] {
            frames = ledFrames(program.journal()).mid(framesSeen);
            return frames.size() >= howMany;
        },
        kPatienceMs);
    framesSeen += frames.size();
    return frames;
}

QStringList TestLed::framesOfDrag(const InstalledProgram &program, QPoint from, QPoint to)
{
    QElapsedTimer sinceStart;
    sinceStart.start();
    screen.hold(from, (from + to) / 2);
    QStringList frames = ledFrames(program.journal()).mid(framesSeen);
    if (frames.size() <= sinceStart.elapsed() / kAfterDragMs) { // the pointer rested too long
        framesSeen += frames.size();
        frames.clear();
    }
    QElapsedTimer sinceLastMovement; // started before the movement, so that it never measures too little
    sinceLastMovement.start();
    screen.movePointer(to);
    screen.release();
    const auto arrived = [&] {
        return ledFrames(program.journal()).size() > framesSeen + frames.size();
    };
    (void)QTest::qWaitFor(arrived, kPatienceMs); // without a frame the list below stays empty
    const qint64 waited = sinceLastMovement.elapsed();
    frames = ledFrames(program.journal()).mid(framesSeen);
    if (waited < kAfterDragMs)
        frames << QStringLiteral("too early: %1 ms").arg(waited);
    // as long again: a second frame would have come by then
    if (QTest::qWaitFor([&] { return ledFrames(program.journal()).size() > framesSeen + frames.size(); }, 700))
        frames << QStringLiteral("and another one");
    framesSeen = ledFrames(program.journal()).size();
    return frames;
}

void TestLed::everyEffect()
{
    InstalledProgram program(screen);
    program.useScenario(sceneOf(kCoolLedCard));
    program.writeConfig(kQuietConfig);
    qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    const LedPageRobot robot(screen, program, window, layout);
    const LedPageLayout &parts = robot.parts;
    QVERIFY(openPage(program, window, robot));
    QCOMPARE(newFrames(program), QStringList(kProbe)); // start and opening send nothing to the LEDs

    robot.press(parts.breath);
    QCOMPARE(newFrames(program), QStringList(ledFrame("01 32 02 FF0000")));
    robot.press(parts.bright);
    QCOMPARE(newFrames(program), QStringList(ledFrame("02 32 02 FF0000")));

    // the colours in the order of their choice, whatever the order of the buttons
    robot.press(parts.presets[3]);
    QCOMPARE(newFrames(program), QStringList(ledFrame("02 32 02 FF0000 00FF00")));
    robot.press(parts.customs[5]);
    QCOMPARE(newFrames(program), QStringList(ledFrame("02 32 02 FF0000 00FF00 FFFFFF")));
    robot.press(parts.presets[1]);
    QCOMPARE(newFrames(program), QStringList(ledFrame("02 32 02 FF0000 00FF00 FFFFFF FFA500")));
    robot.press(parts.presets[0]); // removes the oldest
    QCOMPARE(newFrames(program), QStringList(ledFrame("02 32 02 00FF00 FFFFFF FFA500")));

    // the interval: a step, and a typed number
    program.clickIn(window, robot.placeOf(parts.interval).center());
    screen.key(QStringLiteral("Up"));
    QCOMPARE(newFrames(program), QStringList(ledFrame("02 32 03 00FF00 FFFFFF FFA500")));
    robot.typeInto(robot.placeOf(parts.interval), QStringLiteral("9"), QStringLiteral("Tab"));
    QCOMPARE(newFrames(program), QStringList(ledFrame("02 32 09 00FF00 FFFFFF FFA500")));

    robot.press(parts.sleep);
    QCOMPARE(newFrames(program), QStringList(ledFrame("00 00 0A")));
    robot.press(parts.gradient);
    QCOMPARE(newFrames(program), QStringList(ledFrame("04 32 02")));
    robot.press(parts.state);
    QCOMPARE(newFrames(program), QStringList(ledFrame("01 32 04 00FF00")));
    QVERIFY(program.journal().last().value(QStringLiteral("thread")).toInt() != 1); // its own thread's
    robot.press(parts.presets[4]);                                                  // the colours are greyed out
    robot.press(parts.reset);
    robot.press(parts.bright);
    QCOMPARE(newFrames(program), QStringList(ledFrame("02 32 09 00FF00 FFFFFF FFA500")));

    closeByButton(program, window);
    QCOMPARE(newFrames(program), QStringList(ledFrame("02 32 09 00FF00 FFFFFF FFA500", true)));
    QCOMPARE(program.journal().last().value(QStringLiteral("op")).toString(), QStringLiteral("NvAPI_Unload"));
    QCOMPARE(savedLed(program), QStringLiteral("9 3 10 32") + whiteButtons(7));

    // the next start shows all of it and sends nothing to the LEDs; the selected ones have another order then
    window = startedWindow(program);
    QVERIFY(window != 0);
    const LedPageRobot newRobot(screen, program, window, layout);
    QVERIFY(openPage(program, window, newRobot));
    QCOMPARE(newFrames(program), QStringList(kProbe));
    newRobot.press(parts.presets[6]);
    QCOMPARE(newFrames(program), QStringList(ledFrame("02 32 09 FFFFFF FFA500 00FF00 8B00FF")));
    closeByButton(program, window);
    QCOMPARE(newFrames(program), QStringList(ledFrame("02 32 09 FFFFFF FFA500 00FF00 8B00FF", true)));
}

void TestLed::paletteAndReset()
{
    InstalledProgram program(screen);
    program.useScenario(sceneOf(kCoolLedCard));
    program.writeConfig(kQuietConfig);
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    const LedPageRobot robot(screen, program, window, layout);
    QVERIFY(openPage(program, window, robot));
    QCOMPARE(newFrames(program), QStringList(kProbe));

    // without a click on a custom button the palette's colour is not used
    screen.drag(robot.ringPoint(100), robot.ringPoint(140));

    robot.press(robot.parts.customs[2]);
    QCOMPARE(newFrames(program), QStringList(ledFrame("01 32 02 FFFFFF")));
    const QPoint blue = robot.ringPoint(230);
    QCOMPARE(framesOfDrag(program, robot.ringPoint(160), blue),
             QStringList(ledFrame("01 32 02" + hexOf(robot.colorAt(blue)))));
    QCOMPARE(framesOfDrag(program, robot.sliderPoint(0.5), robot.sliderPoint(1)),
             QStringList(ledFrame("01 32 02 000000")));
    robot.typeInto(robot.numberBox("spinGreen"), QStringLiteral("200"), QStringLiteral("Return"));
    QCOMPARE(newFrames(program), QStringList(ledFrame("01 32 02 00C800")));
    program.clickIn(window,
                    robot.numberBox("spinRed").center()); // the box that loses the focus emits its number again
    QCOMPARE(newFrames(program), QStringList(ledFrame("01 32 02 00C800")));
    robot.typeInto(robot.numberBox("spinRed"), QStringLiteral("999"), QStringLiteral("Return")); // beyond 255
    QCOMPARE(newFrames(program), QStringList(ledFrame("01 32 02 FFC800")));
    QVERIFY(program.otherWindows().isEmpty()); // Return pressed no button of the dialog

    // Reset removes the custom colours; the palette edits nothing after it
    robot.press(robot.parts.breath); // at once, and once more for the number box that loses the focus
    QCOMPARE(newFrames(program, 2), QStringList({ledFrame("01 32 02 FFC800"), ledFrame("01 32 02 FFC800")}));
    robot.press(robot.parts.reset);
    QCOMPARE(newFrames(program), QStringList(ledFrame("01 32 02 FF0000")));
    screen.drag(robot.ringPoint(100), robot.ringPoint(140));
    closeByButton(program, window);
    QCOMPARE(newFrames(program), QStringList(ledFrame("01 32 02 FF0000", true)));
    QCOMPARE(savedLed(program), QStringLiteral("2 0 1 0") + whiteButtons(7));
}

void TestLed::steadyColourFollowsADrag()
{
    InstalledProgram program(screen);
    program.useScenario(sceneOf(kCoolLedCard));
    program.writeConfig(configWithLed(R"(Interval="5" LedMode="1" CheckedColorButtonStatic="0"
        CheckedColorButtonDynamic="1" Color1="4278190335")"));
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    const LedPageRobot robot(screen, program, window, layout);
    QVERIFY(openPage(program, window, robot));
    QCOMPARE(newFrames(program), QStringList(kProbe));
    robot.press(robot.parts.customs[0]);
    QCOMPARE(newFrames(program), QStringList(ledFrame("00 32 02 0000FF")));

    const QPoint end = robot.ringPoint(140);
    screen.drag(robot.ringPoint(20), end);
    const QByteArray color = hexOf(robot.colorAt(end)); // asked now: it takes the window's place on the screen
    const QString last = ledFrame("00 32 02" + color);
    QTRY_COMPARE_WITH_TIMEOUT(ledFrames(program.journal()).last(), last, kPatienceMs);
    const QStringList frames = newFrames(program);
    QVERIFY2(frames.size() > 3, qPrintable(frames.join(QLatin1Char('|')))); // one at each movement
    for (const QString &frame : frames)
        QVERIFY2(frame.startsWith(QLatin1String("08 00 32 02 ")), qPrintable(frame));

    closeByButton(program, window);
    QCOMPARE(newFrames(program), QStringList(ledFrame("00 32 02" + color, true)));
    QCOMPARE(savedLed(program),
             QStringLiteral("5 1 0 1 FF") + QString::fromLatin1(color.toUpper()) +
                 QStringLiteral(" FF000000").repeated(6)); // a colour that the file leaves out is black
}

void TestLed::controllerWithoutGradient()
{
    InstalledProgram program(screen);
    program.useScenario(sceneOf(R"({ "led": { "type": 1 } })"));
    program.writeConfig(configWithLed(R"(Interval="17" LedMode="5" CheckedColorButtonStatic="255"
        CheckedColorButtonDynamic="0")"));
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    const LedPageRobot robot(screen, program, window, layout);
    QVERIFY(openPage(program, window, robot));
    // the one case in which a start sends a frame to the LEDs
    QCOMPARE(newFrames(program, 2), QStringList({kProbe, ledFrame("01 32 10 8B00FF")}));
    robot.press(robot.parts.gradient); // there is no such button
    robot.press(robot.parts.sleep);
    QCOMPARE(newFrames(program), QStringList(ledFrame("00 00 0A")));
    closeByButton(program, window);
    QCOMPARE(ledFrames(program.journal()).size(), framesSeen); // the LEDs stay as they are
    QVERIFY2(savedLed(program).startsWith(QLatin1String("16 6 64 0 ")), qPrintable(savedLed(program)));
}

void TestLed::controllerThatStopsAndComesBack()
{
    // Both of the first calls are the detection's. The plain calls fail for a while, the extended ones always.
    InstalledProgram program(screen);
    program.useScenario(sceneOf(kCoolLedCard, R"(
        { "operation": "NvAPI_I2CWrite", "status": -1, "from": 3, "count": 12 },
        { "operation": "NvAPI_I2CWriteEx", "status": -1 })"));
    program.writeConfig(kQuietConfig);
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    const LedPageRobot robot(screen, program, window, layout);
    QVERIFY(openPage(program, window, robot));
    QCOMPARE(newFrames(program), QStringList(kProbe));

    robot.press(robot.parts.bright);
    QCOMPARE(newFrames(program), QStringList(ledFrame("02 32 02 FF0000") + QStringLiteral(" -> -1")));
    robot.press(robot.parts.state); // its thread ends with this
    QCOMPARE(newFrames(program), QStringList(ledFrame("01 32 04 00FF00") + QStringLiteral(" -> -1")));
    QVERIFY(program.otherWindows().isEmpty()); // and no message is shown

    // the window works as usual
    robot.press(robot.parts.breath);
    QCOMPARE(newFrames(program), QStringList(ledFrame("01 32 02 FF0000") + QStringLiteral(" -> -1")));
    QStringList frames;
    for (int i = 0; i < 25 && (frames.isEmpty() || frames.last().contains(QLatin1String("->"))); ++i) {
        robot.press(i % 2 == 0 ? robot.parts.bright : robot.parts.breath);
        frames = newFrames(program);
    }
    QVERIFY2(!frames.isEmpty() && !frames.last().contains(QLatin1String("->")), qPrintable(frames.join(' ')));

    robot.press(robot.parts.state); // which revived its thread when it was left
    QCOMPARE(newFrames(program), QStringList(ledFrame("01 32 04 00FF00")));
    closeByButton(program, window);
}

void TestLed::slowDriver_data()
{
    QTest::addColumn<QByteArray>("faults");
    QTest::newRow("2 s for each write to the bus")
        << QByteArray(R"({ "operation": "NvAPI_I2CWrite", "delayMs": 2000, "from": 3 })");
    QTest::newRow("2 s for each read of the temperature")
        << QByteArray(R"({ "operation": "NvAPI_GPU_GetThermalSettings", "delayMs": 2000, "from": 2 })");
    QTest::newRow("2 s for each refused write")
        << QByteArray(R"({ "operation": "NvAPI_I2CWrite", "delayMs": 2000, "status": -1, "from": 3 })");
}

void TestLed::slowDriver()
{
    QFETCH(QByteArray, faults);
    InstalledProgram program(screen);
    program.useScenario(sceneOf(kCoolLedCard, faults));
    program.writeConfig(kQuietConfig);
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    const LedPageRobot robot(screen, program, window, layout);
    QVERIFY(openPage(program, window, robot));
    QCOMPARE(newFrames(program).size(), 1);
    robot.press(robot.parts.state);

    // the slow calls are the worker's: the window's pages change meanwhile
    const QRect panel = onScreen(window, layout.pagePanel);
    const QImage ledPage = screen.picture();
    program.clickIn(window, layout.monitorButton.center());
    QVERIFY(pictureChanges(ledPage, panel));
    QVERIFY(openPage(program, window, robot));

    program.clickIn(window, layout.closeButton.center());
    QVERIFY(program.waitForBox() != 0);
    QElapsedTimer closing;
    closing.start();
    pressBoxButton(program, true);
    const bool over = program.waitForEnd(kLongestCloseMs);
    qInfo("closed after %lld ms", closing.elapsed());
    QVERIFY(over);
    QVERIFY(program.endedNormally());
    QCOMPARE(program.exitCode(), 0);
    QVERIFY2(savedLed(program).startsWith(QLatin1String("2 4 1 0 ")), qPrintable(savedLed(program)));
}

void TestLed::lightsOnTheCard()
{
    InstalledProgram program(screen);
    program.useScenario(sceneOf(kCoolLedCard));
    program.writeConfig(kQuietConfig);
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    QVERIFY(startFront({program.statePath()}));
    const qint64 cardWindow = waitForFront();
    QVERIFY(cardWindow != 0);
    QTRY_COMPARE_WITH_TIMEOUT(screen.geometryOf(cardWindow).size(), cardfront::windowSize(1), kPatienceMs);
    QVERIFY(!screen.geometryOf(cardWindow).intersects(screen.geometryOf(window)));
    const bool hasLcd = !program.cardState(0).value(QStringLiteral("lcd")).isNull();
    const auto lights = [&](const std::function<bool(const QColor &)> &wanted) {
        return becomes(cardWindow, 0, hasLcd, wanted);
    };
    const LedPageRobot robot(screen, program, window, layout);
    QVERIFY(openPage(program, window, robot));

    robot.press(robot.parts.bright);
    QVERIFY2(lights(is(QColor(255, 0, 0))), qPrintable(seen.name()));
    robot.press(robot.parts.presets[4]);
    QCOMPARE(newFrames(program, 3).last(), ledFrame("02 32 02 FF0000 007FFF"));
    robot.press(robot.parts.presets[0]); // removes the other one
    QCOMPARE(newFrames(program), QStringList(ledFrame("02 32 02 007FFF")));
    QVERIFY2(lights(is(QColor(0, 127, 255))), qPrintable(seen.name()));
    robot.press(robot.parts.customs[2]);
    QCOMPARE(newFrames(program), QStringList(ledFrame("02 32 02 007FFF FFFFFF")));
    robot.press(robot.parts.presets[4]);
    QCOMPARE(newFrames(program), QStringList(ledFrame("02 32 02 FFFFFF")));
    QVERIFY2(lights(is(QColor(255, 255, 255))), qPrintable(seen.name()));

    const QPoint end = robot.ringPoint(140);
    const QColor green = robot.colorAt(end);
    screen.drag(robot.ringPoint(20), end);
    QVERIFY2(lights(is(green)), qPrintable(seen.name()));

    // up and down without a new frame, always in that colour
    robot.press(robot.parts.breath);
    const auto isShade = [](const QColor &color) {
        return color.green() > color.blue() && color.blue() > color.red(); // unlit glass is grey
    };
    const auto darker = [&](const QColor &color) {
        return isShade(color) && color.green() < 120;
    };
    const auto brighter = [&](const QColor &color) {
        return isShade(color) && color.green() > 180;
    };
    QVERIFY2(lights(darker), qPrintable(seen.name()));
    QVERIFY2(lights(brighter), qPrintable(seen.name()));
    robot.press(robot.parts.sleep);
    QVERIFY2(lights([](const QColor &color) { return color.value() < 80; }), qPrintable(seen.name()));
    closeByButton(program, window);
}

int main(int argc, char **argv)
{
    return runProgramTest<TestLed>(argc, argv);
}

#include "TestLed.moc"
