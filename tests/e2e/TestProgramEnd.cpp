#include "e2e/AdjustTest.h"

#include <QTest>

/// The ends of the real executable that do not come from its own buttons, and starts during an end.
class TestProgramEnd : public AdjustTest
{
    Q_OBJECT

private slots:
    void endDemandedByTheSystem_data();
    void endDemandedByTheSystem();
    void displayThatGoesAway();
    void endOfTheSession_data();
    void endOfTheSession();
    void endOfTheSessionThatIsCalledOff();
    void endDemandedBeforeAnyCardWasFound();
    void startRightAfterTheClose_data();
    void startRightAfterTheClose();
    void iconifiedWindowComesBack_data();
    void iconifiedWindowComesBack();
    void noCardMessageComesToTheFront_data();
    void noCardMessageComesToTheFront();
    void hangingCardKeepsNoOtherFromItsFan();
    void curveOfAnUnknownModeIsLeft();

private:
    /// Starts the program with the fan of its one card on a curve, and waits until the curve has given an order.
    [[nodiscard]] qint64 windowWithFanOnCurve(InstalledProgram &program, const QByteArray &fanMode = "2");
};

namespace
{

const QByteArray kNoCards = R"({ "cards": [] })";

/// A session manager that obeys the test.
class SessionManager
{
public:
    ~SessionManager()
    {
        process.closeWriteChannel();
        process.waitForFinished(5000);
    }

    bool start()
    {
        process.start(QStringLiteral(OVRYN_SESSION_MANAGER), QStringList());
        return QTest::qWaitFor([this] { return process.canReadLine(); }, kPatienceMs) &&
               !(networkId = QString::fromLatin1(process.readLine()).trimmed()).isEmpty();
    }
    [[nodiscard]] QString address() const { return networkId; }
    void order(const char *word)
    {
        process.write(QByteArray(word) + '\n');
        process.waitForBytesWritten(kPatienceMs);
    }
    /// Waits until the manager has said that word.
    [[nodiscard]] bool hears(const char *word)
    {
        return QTest::qWaitFor(
            [&] {
                said += process.readAllStandardOutput();
                return said.contains(word);
            },
            kPatienceMs);
    }

private:
    QProcess process;
    QString networkId;
    QByteArray said;
};

} // namespace

qint64 TestProgramEnd::windowWithFanOnCurve(InstalledProgram &program, const QByteArray &fanMode)
{
    program.writeConfig(configWith(cardSection(kUsualBoard, "FanMode=\"" + fanMode + "\"")));
    const qint64 window = startedWindow(program);
    const bool driven = QTest::qWaitFor([&] { return !coolerWrites(program, 0).isEmpty(); }, kPatienceMs);
    return driven ? window : 0;
}

void TestProgramEnd::endDemandedByTheSystem_data()
{
    QTest::addColumn<QByteArray>("signal");
    QTest::addColumn<bool>("hidden");
    QTest::newRow("SIGTERM") << QByteArray("TERM") << false;
    QTest::newRow("SIGTERM, hidden in the tray") << QByteArray("TERM") << true;
    QTest::newRow("SIGINT") << QByteArray("INT") << false;
    QTest::newRow("SIGHUP, hidden in the tray") << QByteArray("HUP") << true;
}

void TestProgramEnd::endDemandedByTheSystem()
{
    QFETCH(QByteArray, signal);
    QFETCH(bool, hidden);
    InstalledProgram program(screen);
    program.useScenario(sceneOf({kSteadyCard}));
    const qint64 window = windowWithFanOnCurve(program);
    QVERIFY(window != 0);
    if (hidden) {
        program.clickIn(window, layout.minimizeButton.center());
        QTRY_COMPARE_WITH_TIMEOUT(program.mainWindow(), qint64(0), kPatienceMs);
    }
    QVERIFY(program.signal(signal));
    QVERIFY(program.waitForEnd());
    QVERIFY(program.endedNormally());
    QCOMPARE(program.exitCode(), 0);
    QCOMPARE(program.configText(QStringLiteral("LastCloseDate")), today());
    QCOMPARE(savedAdjustment(program, "FanMode"), QStringLiteral("2"));
    QCOMPARE(coolerWrites(program, 0).last(), kFanToDriver);
    QTRY_COMPARE_WITH_TIMEOUT(program.guards(), QList<qint64>(), kPatienceMs);
    QCOMPARE(coolerWrites(program, 0).count(kFanToDriver),
             1); // by the program, not by its guard
}

void TestProgramEnd::displayThatGoesAway()
{
    VirtualScreen ownScreen;
    QVERIFY2(ownScreen.start(), qPrintable(ownScreen.error()));
    InstalledProgram program(ownScreen);
    program.useScenario(sceneOf({kSteadyCard}));
    QVERIFY(windowWithFanOnCurve(program) != 0);
    ownScreen.breakDown();
    QVERIFY(program.waitForEnd());
    QVERIFY(program.endedNormally());
    QCOMPARE(program.configText(QStringLiteral("LastCloseDate")), today());
    QCOMPARE(savedAdjustment(program, "FanMode"), QStringLiteral("2"));
    QCOMPARE(coolerWrites(program, 0).last(), kFanToDriver);
    QTRY_COMPARE_WITH_TIMEOUT(program.guards(), QList<qint64>(), kPatienceMs);
    QCOMPARE(coolerWrites(program, 0).count(kFanToDriver), 1);
}

void TestProgramEnd::endOfTheSession_data()
{
    QTest::addColumn<bool>("hidden");
    QTest::newRow("shown") << false;
    QTest::newRow("hidden in the tray") << true;
}

void TestProgramEnd::endOfTheSession()
{
    QFETCH(bool, hidden);
    SessionManager manager;
    QVERIFY(manager.start());
    InstalledProgram program(screen);
    program.setVariable(QStringLiteral("SESSION_MANAGER"), manager.address());
    program.useScenario(sceneOf({kSteadyCard}));
    const qint64 window = windowWithFanOnCurve(program);
    QVERIFY(window != 0);
    QVERIFY(manager.hears("registered"));
    if (hidden) {
        program.clickIn(window, layout.minimizeButton.center());
        QTRY_COMPARE_WITH_TIMEOUT(program.mainWindow(), qint64(0), kPatienceMs);
    }
    QVERIFY(program.configText(QStringLiteral("LastCloseDate")) != today());
    manager.order("save");
    QVERIFY(manager.hears("saved"));
    QCOMPARE(program.configText(QStringLiteral("LastCloseDate")), today());
    QCOMPARE(savedAdjustment(program, "FanMode"), QStringLiteral("2"));
    QVERIFY(program.isRunning());
    QVERIFY(coolerWrites(program, 0).last() != kFanToDriver); // the curve is followed to the end

    manager.order("die");
    QVERIFY(program.waitForEnd());
    QVERIFY(program.endedNormally());
    QCOMPARE(coolerWrites(program, 0).last(), kFanToDriver);
    QTRY_COMPARE_WITH_TIMEOUT(program.guards(), QList<qint64>(), kPatienceMs);
}

void TestProgramEnd::endOfTheSessionThatIsCalledOff()
{
    SessionManager manager;
    QVERIFY(manager.start());
    InstalledProgram program(screen);
    program.setVariable(QStringLiteral("SESSION_MANAGER"), manager.address());
    program.useScenario(sceneOf({kSteadyCard}));
    const qint64 window = windowWithFanOnCurve(program);
    QVERIFY(window != 0);
    QVERIFY(manager.hears("registered"));
    manager.order("save");
    QVERIFY(manager.hears("saved"));
    manager.order("cancel");
    const int orders = coolerWrites(program, 0).size();
    QTRY_VERIFY_WITH_TIMEOUT(coolerWrites(program, 0).size() > orders + 1, kPatienceMs); // everything continues
    QCOMPARE(program.mainWindow(), window);
    closeByButton(program, window);
}

void TestProgramEnd::endDemandedBeforeAnyCardWasFound()
{
    InstalledProgram program(screen);
    program.useScenario(kNoCards);
    program.writeConfig(kQuietConfig);
    QVERIFY(program.start());
    QVERIFY(program.waitForBox() != 0);
    QVERIFY(program.signal("TERM"));
    QVERIFY(program.waitForEnd());
    QVERIFY(program.endedNormally());
    QCOMPARE(program.exitCode(), 0);
}

void TestProgramEnd::startRightAfterTheClose_data()
{
    QTest::addColumn<int>("cards");
    QTest::newRow("one card") << 1;
    QTest::newRow("eight cards") << 8;
}

void TestProgramEnd::startRightAfterTheClose()
{
    QFETCH(int, cards);
    // The fan's order takes a while, so that the second start certainly comes during the end.
    QList<QByteArray> scene;
    for (int card = 0; card < cards; ++card)
        scene << kSteadyCard;
    InstalledProgram first(screen);
    first.useScenario(sceneOf(scene, {R"({ "operation": "NvAPI_GPU_SetCoolerLevels", "delayMs": 800 })"}));
    const qint64 window = windowWithFanOnCurve(first);
    QVERIFY(window != 0);
    first.clickIn(window, layout.closeButton.center());
    pressBoxButton(first, true);
    QTRY_COMPARE_WITH_TIMEOUT(first.mainWindow(), qint64(0), kPatienceMs);
    QVERIFY(first.isRunning());

    QProcess second;
    first.prepare(second);
    second.start(first.path(), QStringList());
    QVERIFY(second.waitForStarted());
    QVERIFY(first.waitForEnd());
    QVERIFY(first.endedNormally());
    first.follow(second.processId());
    const bool came = first.waitForMainWindow() != 0;
    second.terminate();
    QVERIFY(second.waitForFinished());
    QVERIFY(came);
    QCOMPARE(second.exitCode(), 0);
    QCOMPARE(savedAdjustment(first, "FanMode"), QStringLiteral("2")); // of the first, taken up by the second
}

void TestProgramEnd::iconifiedWindowComesBack_data()
{
    QTest::addColumn<QString>("way");
    QTest::newRow("by a click on the icon") << "icon";
    QTest::newRow("by a second start") << "second start";
}

void TestProgramEnd::iconifiedWindowComesBack()
{
    QFETCH(QString, way);
    InstalledProgram program(screen);
    program.writeConfig(kQuietConfig);
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    QRect icon;
    QTRY_VERIFY_WITH_TIMEOUT(!(icon = program.trayIcon()).isNull(), kPatienceMs);
    (void)screen.run(QStringLiteral("xdotool"), {QStringLiteral("windowminimize"), QString::number(window)});
    QTRY_COMPARE_WITH_TIMEOUT(program.mainWindow(), qint64(0), kPatienceMs);
    if (way == QLatin1String("icon"))
        screen.click(icon.center());
    else
        QCOMPARE(program.startAgain(), 0);
    QTRY_COMPARE_WITH_TIMEOUT(program.mainWindow(), window, kPatienceMs);
    QTRY_COMPARE_WITH_TIMEOUT(screen.activeWindow(), window, kPatienceMs);
    closeByButton(program, window);
}

void TestProgramEnd::noCardMessageComesToTheFront_data()
{
    iconifiedWindowComesBack_data();
}

void TestProgramEnd::noCardMessageComesToTheFront()
{
    QFETCH(QString, way);
    InstalledProgram program(screen);
    program.useScenario(kNoCards);
    program.writeConfig(kQuietConfig);
    QVERIFY(program.start());
    const qint64 box = program.waitForBox();
    QVERIFY(box != 0);
    QRect icon;
    QTRY_VERIFY_WITH_TIMEOUT(!(icon = program.trayIcon()).isNull(), kPatienceMs);
    (void)screen.run(QStringLiteral("xdotool"), {QStringLiteral("windowminimize"), QString::number(box)});
    QTRY_COMPARE_WITH_TIMEOUT(program.otherWindows(), QList<qint64>(), kPatienceMs);
    if (way == QLatin1String("icon"))
        screen.click(icon.center());
    else
        QCOMPARE(program.startAgain(), 0);
    QTRY_COMPARE_WITH_TIMEOUT(program.otherWindows(), QList<qint64>{box}, kPatienceMs);
    QTRY_COMPARE_WITH_TIMEOUT(screen.activeWindow(), box, kPatienceMs);
    QCOMPARE(program.mainWindow(), qint64(0));
    pressOnlyBoxButton(program);
    QVERIFY(program.waitForEnd());
    QCOMPARE(program.exitCode(), 0);
}

void TestProgramEnd::hangingCardKeepsNoOtherFromItsFan()
{
    const QByteArray secondBoard = QByteArray::number(0x111E7377u);
    InstalledProgram program(screen);
    program.useScenario(sceneOf({kSteadyCard, cardAt(50, secondBoard)},
                                {R"({ "operation": "NvAPI_GPU_GetThermalSettings", "card": 0, "from": 6,
                                      "delayMs": 600000 })"}));
    program.writeConfig(
        configWith(cardSection(kUsualBoard, "FanMode=\"2\"") + cardSection(secondBoard, "FanMode=\"2\"")));
    QVERIFY(startedWindow(program) != 0);
    for (const int card : {0, 1})
        QTRY_VERIFY_WITH_TIMEOUT(!coolerWrites(program, card).isEmpty(), kPatienceMs);
    QVERIFY(program.signal("TERM"));
    QVERIFY(program.waitForEnd());
    QVERIFY(program.endedNormally());
    QTRY_COMPARE_WITH_TIMEOUT(program.guards(), QList<qint64>(), kPatienceMs);
    for (const int card : {0, 1})
        QCOMPARE(coolerWrites(program, card).last(), kFanToDriver);
}

void TestProgramEnd::curveOfAnUnknownModeIsLeft()
{
    InstalledProgram program(screen);
    program.useScenario(sceneOf({kSteadyCard}));
    const qint64 window = windowWithFanOnCurve(program, "7");
    QVERIFY(window != 0);
    closeByButton(program, window);
    QCOMPARE(coolerWrites(program, 0).last(), kFanToDriver);
    QCOMPARE(savedAdjustment(program, "FanMode"), QStringLiteral("7"));
}

int main(int argc, char **argv)
{
    return runProgramTest<TestProgramEnd>(argc, argv);
}

#include "TestProgramEnd.moc"
