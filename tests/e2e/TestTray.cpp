#include "e2e/AdjustTest.h"

#include <QTest>

/// The real executable in a real tray: hidden and shown again, the ways to its end, and what is saved then.
class TestTray : public ProgramTest
{
    Q_OBJECT

private slots:
    void minimisedAndBack_data();
    void minimisedAndBack();
    void exitByTheMenuAsksNothing_data();
    void exitByTheMenuAsksNothing();
    void closeAsksFirst();
    void windowManagerCloseSaves();
    void autoStartBoxTakesEffectAtClose_data();
    void autoStartBoxTakesEffectAtClose();
    void minimisedStartHasTheIcon();
    void threadThatHangsInTheDriver();
    void driverThatHangsAtTheEnd();

private:
    enum MenuItem
    {
        Display,
        Exit
    };
    void chooseInMenu(InstalledProgram &program, MenuItem item);
    void minimise(InstalledProgram &program, qint64 window);
    [[nodiscard]] int samples(const InstalledProgram &program) const;
};

/// The menu has two items of one height, about a line's separator between them.
void TestTray::chooseInMenu(InstalledProgram &program, MenuItem item)
{
    QRect icon;
    QTRY_VERIFY_WITH_TIMEOUT(!(icon = program.trayIcon()).isNull(), kPatienceMs);
    const QList<qint64> before = program.otherWindows();
    screen.rightClick(icon.center());
    qint64 menu = 0;
    QTRY_VERIFY_WITH_TIMEOUT(
        [&] {
            for (const qint64 window : program.otherWindows()) {
                if (!before.contains(window))
                    menu = window;
            }
            return menu != 0;
        }(),
        kPatienceMs);
    const QSize size = screen.geometryOf(menu).size();
    QVERIFY(size.width() >= 150);
    program.clickIn(menu, QPoint(size.width() / 2, item == Display ? size.height() / 4 : size.height() * 3 / 4));
}

void TestTray::minimise(InstalledProgram &program, qint64 window)
{
    program.clickIn(window, layout.minimizeButton.center());
    QTRY_COMPARE_WITH_TIMEOUT(program.mainWindow(), qint64(0), kPatienceMs);
    QVERIFY(program.isRunning());
}

int TestTray::samples(const InstalledProgram &program) const
{
    int count = 0;
    for (const QJsonObject &call : program.journal()) {
        if (operationOf(call) == QLatin1String("GPU_GetDynamicPstatesInfoEx"))
            ++count;
    }
    return count;
}

void TestTray::minimisedAndBack_data()
{
    QTest::addColumn<QString>("way");
    QTest::newRow("by a click on the icon") << "icon";
    QTest::newRow("by the menu") << "menu";
    QTest::newRow("by a second start") << "second start";
}

void TestTray::minimisedAndBack()
{
    QFETCH(QString, way);
    InstalledProgram program(screen);
    program.writeConfig(kQuietConfig);
    qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    const QRect place = screen.geometryOf(window);
    minimise(program, window);
    QCOMPARE(program.otherWindows(), QList<qint64>());
    const int before = samples(program);
    QTRY_VERIFY_WITH_TIMEOUT(samples(program) > before + 1, kPatienceMs); // the cards are sampled nevertheless

    if (way == QLatin1String("icon")) {
        QRect icon;
        QTRY_VERIFY_WITH_TIMEOUT(!(icon = program.trayIcon()).isNull(), kPatienceMs);
        screen.click(icon.center());
    } else if (way == QLatin1String("menu")) {
        chooseInMenu(program, Display);
    } else {
        QCOMPARE(program.startAgain(), 0);
    }
    QTRY_VERIFY_WITH_TIMEOUT((window = program.mainWindow()) != 0, kPatienceMs);
    QTRY_COMPARE_WITH_TIMEOUT(screen.activeWindow(), window, kPatienceMs);
    QTRY_COMPARE_WITH_TIMEOUT(screen.geometryOf(window), place, kPatienceMs);

    // Neither hiding nor showing is an end or a start: nothing is saved, and no card gets an order.
    QCOMPARE(program.cardSections().size(), 0);
    QCOMPARE(program.configText(QStringLiteral("LastCloseDate")), QStringLiteral("2020/02/29"));
    QCOMPARE(program.autoStartEntry(), QByteArray());
    QCOMPARE(writesTo(program.journal(), 0), QStringList());
    closeByButton(program, window);
    QCOMPARE(program.cardSections().size(), 2);
}

void TestTray::exitByTheMenuAsksNothing_data()
{
    QTest::addColumn<bool>("hidden");
    QTest::newRow("while the window is shown") << false;
    QTest::newRow("while it is in the tray") << true;
}

void TestTray::exitByTheMenuAsksNothing()
{
    QFETCH(bool, hidden);
    InstalledProgram program(screen);
    program.writeConfig(kQuietConfig);
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    if (hidden)
        minimise(program, window);
    chooseInMenu(program, Exit);
    QVERIFY(program.waitForEnd());
    QVERIFY(program.endedNormally());
    QCOMPARE(program.exitCode(), 0);
    QCOMPARE(program.configText(QStringLiteral("LastCloseDate")), today());
    QCOMPARE(program.cardSections().size(), 2);
    QVERIFY(program.autoStartEntry().contains(QFile::encodeName(program.path())));
}

void TestTray::closeAsksFirst()
{
    InstalledProgram program(screen);
    program.writeConfig(kQuietConfig);
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    program.clickIn(window, layout.closeButton.center());
    pressBoxButton(program, false);
    QTRY_VERIFY_WITH_TIMEOUT(program.otherWindows().isEmpty(), kPatienceMs);
    QVERIFY(program.isRunning());
    QCOMPARE(program.configText(QStringLiteral("LastCloseDate")), QStringLiteral("2020/02/29"));

    closeByButton(program, window);
    QCOMPARE(program.configText(QStringLiteral("LastCloseDate")), today());
    const QList<QDomElement> sections = program.cardSections();
    QCOMPARE(sections.size(), 2);
    QCOMPARE(sections.at(0).attribute(QStringLiteral("GpuName")), QStringLiteral("GeForce GTX 1070 Ti"));
    QCOMPARE(sections.at(0).attribute(QStringLiteral("SubSystemId")), QString::number(0x111D7377u));
    // the driver is unloaded last: no worker called it afterwards
    QCOMPARE(program.journal().last().value(QStringLiteral("op")).toString(), QStringLiteral("NvAPI_Unload"));
}

void TestTray::windowManagerCloseSaves()
{
    InstalledProgram program(screen);
    program.writeConfig(kQuietConfig);
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    screen.activate(window);
    QTRY_COMPARE_WITH_TIMEOUT(screen.activeWindow(), window, kPatienceMs);
    (void)screen.run(QStringLiteral("wmctrl"), {QStringLiteral("-i"), QStringLiteral("-c"), QString::number(window)});
    QVERIFY(program.waitForEnd());
    QVERIFY(program.endedNormally());
    QCOMPARE(program.configText(QStringLiteral("LastCloseDate")), today());
}

void TestTray::autoStartBoxTakesEffectAtClose_data()
{
    QTest::addColumn<bool>("stored");
    QTest::newRow("unticked: the entry goes") << true;
    QTest::newRow("ticked: the entry comes") << false;
}

void TestTray::autoStartBoxTakesEffectAtClose()
{
    QFETCH(bool, stored);
    const QPoint box = settingControl(QStringLiteral("ckb_StartOnBoot"));
    QVERIFY(!box.isNull());
    const QByteArray config =
        QByteArray(kQuietConfig).replace("StartOnBoot=\"1\"", stored ? "StartOnBoot=\"1\"" : "StartOnBoot=\"0\"");
    InstalledProgram program(screen);
    program.writeConfig(config);

    // A first run without a click keeps the file's setting.
    qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    closeByButton(program, window);
    QCOMPARE(!program.autoStartEntry().isEmpty(), stored);

    window = startedWindow(program);
    QVERIFY(window != 0);
    openSettings(program, window, box);
    const QImage before = screen.picture();
    program.clickIn(window, box);
    QTRY_VERIFY_WITH_TIMEOUT(
        differingPixels(before, screen.picture(), onScreen(window, QRect(QPoint(), kDialogSize))) > 0, kPatienceMs);
    QCOMPARE(!program.autoStartEntry().isEmpty(), stored); // not before the close
    QCOMPARE(program.configAttribute(QStringLiteral("GeneralSetting"), QStringLiteral("StartOnBoot")),
             stored ? QStringLiteral("1") : QStringLiteral("0"));
    closeByButton(program, window);
    QCOMPARE(program.configAttribute(QStringLiteral("GeneralSetting"), QStringLiteral("StartOnBoot")),
             stored ? QStringLiteral("0") : QStringLiteral("1"));
    QCOMPARE(program.autoStartEntry().contains(QFile::encodeName(program.path())), !stored);
    QCOMPARE(program.autoStartEntry().isEmpty(), stored);
}

void TestTray::minimisedStartHasTheIcon()
{
    InstalledProgram program(screen);
    program.writeConfig(QByteArray(kQuietConfig).replace("MinimizeOnStart=\"0\"", "MinimizeOnStart=\"1\""));
    QVERIFY(program.start());
    QRect icon;
    QTRY_VERIFY_WITH_TIMEOUT(!(icon = program.trayIcon()).isNull(), kPatienceMs);
    QCOMPARE(program.mainWindow(), qint64(0));
    screen.click(icon.center());
    QTRY_VERIFY_WITH_TIMEOUT(program.mainWindow() != 0, kPatienceMs);
    closeByButton(program, program.mainWindow());
    QCOMPARE(program.configAttribute(QStringLiteral("GeneralSetting"), QStringLiteral("MinimizeOnStart")),
             QStringLiteral("1"));
}

void TestTray::threadThatHangsInTheDriver()
{
    InstalledProgram program(screen);
    program.useScenario(R"({ "cards": [{}], "faults": [
        { "operation": "NvAPI_GPU_GetDynamicPstatesInfoEx", "from": 2, "delayMs": 600000 }] })");
    program.writeConfig(kQuietConfig);
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    QTRY_VERIFY_WITH_TIMEOUT(samples(program) >= 1, kPatienceMs);
    closeByButton(program, window);
    QCOMPARE(program.configText(QStringLiteral("LastCloseDate")), today());
}

void TestTray::driverThatHangsAtTheEnd()
{
    InstalledProgram program(screen);
    program.useScenario(R"({ "cards": [{}], "faults": [
        { "operation": "NvAPI_GPU_SetCoolerLevels", "delayMs": 600000 }] })");
    program.writeConfig(configWith(cardSection(kUsualBoard, "FanMode=\"2\"")));
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    program.clickIn(window, layout.closeButton.center());
    pressBoxButton(program, true);
    QVERIFY(program.waitForEnd(90000)); // the call that returns the fan takes ten minutes
    QVERIFY(program.endedNormally());
    QCOMPARE(program.exitCode(), 0);
    QCOMPARE(program.configText(QStringLiteral("LastCloseDate")), today());
    QVERIFY(!program.autoStartEntry().isEmpty());
    QCOMPARE(program.guards().size(), 1); // it tries the same now, for a minute at most
}

int main(int argc, char **argv)
{
    return runProgramTest<TestTray>(argc, argv);
}

#include "TestTray.moc"
