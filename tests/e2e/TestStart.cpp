#include "e2e/ProgramTest.h"
#include "e2e/ShownWindows.h"

#include <QTest>

/// The start of the real executable: first and second starts, their driver calls, and starts with bad files, cards
/// and drivers.
class TestStart : public ProgramTest
{
    Q_OBJECT

private slots:
    void firstStart();
    void windowHasNoFrame();
    void windowHasItsFlags();
    void driverCallsOfDetection();
    void driverCallsOfTheAdjustPage();
    void driverCallsOfASample();
    void secondStartBringsTheWindowToTheFront();
    void noCard_data();
    void noCard();
    void promptOfTheHighPerformanceMode();
    void badConfigFiles_data();
    void badConfigFiles();
    void flakyDriver();
};

namespace
{

/// How a device object finds the cards; the scene has three displays.
const QStringList kEnumeration = {"Initialize",
                                  "EnumNvidiaDisplayHandle",
                                  "EnumNvidiaDisplayHandle",
                                  "EnumNvidiaDisplayHandle",
                                  "EnumNvidiaDisplayHandle",
                                  "GetAssociatedDisplayOutputId",
                                  "EnumPhysicalGPUs",
                                  "EnumTCCPhysicalGPUs"};

/// What one card is asked while the cards are detected.
const QStringList kIdentity = {"GPU_GetPCIIdentifiers", "GPU_GetFullName"};
const QStringList kLcdReadings = {"GPU_GetPstates20",
                                  "GPU_GetAllClockFrequencies",
                                  "GPU_GetRamType",
                                  "GPU_GetAllClockFrequencies",
                                  "GPU_GetRamType",
                                  "GPU_GetTachReading",
                                  "GPU_GetCoolerSettings",
                                  "GPU_GetMemoryInfo",
                                  "GPU_GetThermalSettings",
                                  "GPU_ClientThermalPoliciesGetInfo",
                                  "GPU_ClientThermalPoliciesGetStatus",
                                  "GPU_GetFullName",
                                  "GPU_GetPCIIdentifiers"};

QList<QJsonObject> callsOfMainThread(const InstalledProgram &program)
{
    QList<QJsonObject> calls;
    for (const QJsonObject &call : program.journal())
        if (call.value(QStringLiteral("thread")).toInt() == 1) // it is the first to call
            calls.append(call);
    return calls;
}

QStringList operationsOf(const QList<QJsonObject> &calls)
{
    QStringList operations;
    for (const QJsonObject &call : calls)
        operations << operationOf(call);
    return operations;
}

} // namespace

void TestStart::firstStart()
{
    InstalledProgram program(screen);
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    QVERIFY(program.waitForBox() != 0); // a fresh installation asks about the high-performance mode
    QCOMPARE(program.configText(QStringLiteral("LastStartDate")), today());
    QCOMPARE(program.configAttribute(QStringLiteral("GeneralSetting"), QStringLiteral("Language")),
             QStringLiteral("lang_ch"));
    QCOMPARE(program.cardSections().size(), 0);

    QCOMPARE(screen.geometryOf(window).size(), kDialogSize);

    // Both cards are sampled repeatedly while the prompt is open.
    const int calls = program.journal().size();
    QTRY_VERIFY_WITH_TIMEOUT(program.journal().size() > calls + 80, kPatienceMs);
}

void TestStart::windowHasNoFrame()
{
    InstalledProgram program(screen);
    program.writeConfig(kQuietConfig);
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    const auto propertyOf = [this](qint64 id, const char *name) {
        return screen.run(QStringLiteral("xprop"), {QStringLiteral("-id"), QString::number(id), QLatin1String(name)});
    };
    // Left, right, top and bottom of what the window manager draws around it: no title bar, so no button to close it.
    QTRY_COMPARE_WITH_TIMEOUT(propertyOf(window, "_NET_FRAME_EXTENTS").section(QLatin1Char('='), 1).trimmed(),
                              QStringLiteral("0, 0, 0, 0"), kPatienceMs);
    closeByButton(program, window);
}

void TestStart::windowHasItsFlags()
{
    InstalledProgram program(screen, QStringLiteral(OVRYN_PROGRAM_NOTING_ITS_WINDOWS));
    const QString notes = program.path(QStringLiteral("windows.jsonl"));
    program.setVariable(QStringLiteral("OVRYN_WINDOW_NOTES"), notes);
    program.writeConfig(kQuietConfig);
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    const QList<QJsonObject> shown = shownWindows(notes, "OvrynDeck2");
    QCOMPARE(shown.size(), 1);
    constexpr int kWindow = 0x1; // every window has it
    QCOMPARE(shown.first().value(QStringLiteral("flags")).toInt(), 0x4800 | kWindow);
    closeByButton(program, window);
}

void TestStart::driverCallsOfDetection()
{
    InstalledProgram program(screen);
    program.writeConfig(kQuietConfig);
    QVERIFY(startedWindow(program) != 0);

    QStringList expected = kEnumeration;
    expected << kIdentity << "I2CWrite 0xA0" << kLcdReadings << "I2CWrite 0xAC"; // the maker's card acknowledges
    expected << kIdentity << "I2CWrite 0xA0"
             << "I2CWriteEx 0xA0"
             << "I2CWriteEx 0xA0" // the foreign one does not
             << kLcdReadings << "I2CWrite 0xAC"
             << "I2CWriteEx 0xAC"
             << "I2CWriteEx 0xAC";
    expected << "Unload";
    expected << kEnumeration; // the long-lived device object of the first card
    QCOMPARE(QStringList(operationsOf(callsOfMainThread(program)).mid(0, expected.size())), expected);
}

void TestStart::driverCallsOfTheAdjustPage()
{
    InstalledProgram program(screen);
    program.writeConfig(kQuietConfig);
    QVERIFY(startedWindow(program) != 0);

    const QStringList fan = {"GPU_GetTachReading", "GPU_GetCoolerSettings"};
    const QStringList temperatureLimit = {"GPU_ClientThermalPoliciesGetInfo", "GPU_ClientThermalPoliciesGetStatus"};
    const QStringList powerLimit = {"GPU_ClientPowerTopologyGetInfo", "GPU_ClientPowerTopologyGetStatus",
                                    "GPU_ClientPowerPoliciesGetInfo", "GPU_ClientPowerPoliciesGetStatus"};
    const QStringList voltage = {"GPU_GetPstates20"};
    const QStringList clocks = {"GPU_GetPstates20", "GPU_GetAllClockFrequencies", "GPU_GetRamType"};
    const QStringList graphicsRange = {"GPU_GetPstates20", "GPU_GetAllClockFrequencies"};
    const QStringList memoryRange = {"GPU_GetPstates20", "GPU_GetAllClockFrequencies", "GPU_GetRamType"};
    const QStringList expected = fan + temperatureLimit + powerLimit + voltage + clocks + graphicsRange + memoryRange;

    // The page is built with the window, on the main thread, and reads the card once: other pages may ask
    // the driver before and after it, but not between.
    for (int card = 0; card < 2; ++card) {
        QList<QJsonObject> ofThePages;
        bool detected = false;
        for (const QJsonObject &call : callsOfMainThread(program)) {
            detected = detected || operationOf(call) == QLatin1String("Unload");
            if (detected && call.value(QStringLiteral("gpu")).toInt(-1) == card)
                ofThePages.append(call);
        }
        const QString operations = operationsOf(ofThePages).join(QLatin1Char('\n'));
        const QString readings = expected.join(QLatin1Char('\n'));
        QVERIFY2(operations.count(readings) == 1, qPrintable(operations));
        for (const QJsonObject &call : ofThePages)
            QVERIFY2(!operationOf(call).startsWith(QLatin1String("GPU_Set")), qPrintable(operationOf(call)));
    }
}

void TestStart::driverCallsOfASample()
{
    InstalledProgram program(screen);
    program.writeConfig(kQuietConfig);
    QVERIFY(startedWindow(program) != 0);

    const QStringList baseClocks = {"GPU_GetPstates20", "GPU_GetAllClockFrequencies", "GPU_GetRamType"};
    QStringList expected = {
        "GPU_ClientThermalPoliciesGetInfo", "GPU_ClientThermalPoliciesGetStatus", "GPU_GetMemoryInfo",
        "GPU_GetThermalSettings",           "GPU_GetAllClockFrequencies",         "GPU_GetRamType"};
    expected << baseClocks;
    expected << "GPU_GetTachReading"
             << "GPU_GetCoolerSettings"
             << "GPU_GetDynamicPstatesInfoEx";
    expected << "GPU_GetFullName"
             << "GPU_GetMemoryInfo"
             << "GPU_GetRamType" << baseClocks << baseClocks << "SYS_GetDriverAndBranchVersion"
             << "SYS_GetChipSetInfo"
             << "GPU_GetFBWidthAndLocation"
             << "GPU_GetVbiosVersionString";
    for (const char *sensor : {"0x9E", "0x90", "0x96", "0x92"})
        expected << QStringLiteral("I2CRead ") + QLatin1String(sensor);

    // The LCD's worker asks the card too, and from a thread of its own; the load is read by the sampling worker
    // alone.
    const auto cycles = [&] {
        const QList<QJsonObject> journal = program.journal();
        int worker = 0;
        for (const QJsonObject &call : journal)
            if (operationOf(call) == QLatin1String("GPU_GetDynamicPstatesInfoEx") &&
                call.value(QStringLiteral("gpu")).toInt(-1) == 0)
                worker = call.value(QStringLiteral("thread")).toInt();
        QStringList operations;
        for (const QJsonObject &call : journal)
            if (worker != 0 && call.value(QStringLiteral("thread")).toInt() == worker)
                operations << operationOf(call);
        return operations;
    };
    QTRY_VERIFY_WITH_TIMEOUT(cycles().size() >= 2 * expected.size(), kPatienceMs);
    const QStringList operations = cycles();
    QCOMPARE(QStringList(operations.mid(0, expected.size())), expected);
    QCOMPARE(QStringList(operations.mid(expected.size(), expected.size())), expected); // nothing is cached
}

void TestStart::secondStartBringsTheWindowToTheFront()
{
    InstalledProgram program(screen);
    program.writeConfig(kQuietConfig);
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);

    QProcess other; // a window of another program, in front
    other.setProcessEnvironment(screen.environment());
    other.start(QStringLiteral("xev"), {QStringLiteral("-name"), QStringLiteral("in-front")});
    qint64 front = 0;
    QTRY_VERIFY_WITH_TIMEOUT((front = screen.findWindow(QStringLiteral("in-front"))) != 0, kPatienceMs);
    screen.activate(front);
    QTRY_COMPARE_WITH_TIMEOUT(screen.activeWindow(), front, kPatienceMs);

    const int callsBefore = program.journal().size();
    QCOMPARE(program.startAgain(), 0);
    QTRY_COMPARE_WITH_TIMEOUT(screen.activeWindow(), window, kPatienceMs);
    QVERIFY(program.isRunning());
    QVERIFY(callsBefore > 0);
    int initialised = 0;
    for (const QJsonObject &call : program.journal())
        if (call.value(QStringLiteral("op")).toString() == QLatin1String("NvAPI_Initialize"))
            ++initialised;
    QCOMPARE(initialised, 5); // detection, two cards and their two information pages: none for the second start
    other.kill();
    other.waitForFinished();
}

void TestStart::noCard_data()
{
    QTest::addColumn<QByteArray>("config");
    QTest::addColumn<QString>("box");
    // Text, family, button and window flags: 0x2001000 as given, a dialog, without a frame, on top of everything.
    const QString chinese = QStringLiteral("未发现英伟达显卡! | 微软雅黑 | 确定 | 0x2041803");
    const QString english = QStringLiteral("No nvidia card found | Arial | Confirm | 0x2041803");
    QTest::newRow("fresh installation") << QByteArray() << chinese;
    QTest::newRow("English") << QByteArray(kQuietConfig) << english;
    QTest::newRow("a language that there isn't") << QByteArray(kQuietConfig).replace("lang_en", "klingon") << english;
    QTest::newRow("to start minimized")
        << QByteArray(kQuietConfig).replace("MinimizeOnStart=\"0\"", "MinimizeOnStart=\"1\"") << english;
}

void TestStart::noCard()
{
    QFETCH(QByteArray, config);
    InstalledProgram program(screen, QStringLiteral(OVRYN_PROGRAM_NOTING_ITS_WINDOWS));
    const QString notes = program.path(QStringLiteral("windows.jsonl"));
    program.setVariable(QStringLiteral("OVRYN_WINDOW_NOTES"), notes);
    program.useScene(QStringLiteral("no-card.json"));
    if (!config.isEmpty())
        program.writeConfig(config);
    QVERIFY(program.start());
    const qint64 box = program.waitForBox();
    QVERIFY(box != 0);
    QCOMPARE(program.mainWindow(), qint64(0));
    QCOMPARE(shownWindows(notes, "OvrynDeck2").size(), 0);
    const QList<QJsonObject> boxes = shownWindows(notes, "Ovryn_MessageBox");
    QCOMPARE(boxes.size(), 1);
    QTEST(describedBox(boxes.first()), "box");
    QCOMPARE(program.configText(QStringLiteral("LastStartDate")), today());
    const QSize size = screen.geometryOf(box).size();
    program.clickIn(box, QPoint(size.width() / 2, size.height() - 10 - 15));
    QVERIFY(program.waitForEnd());
    QVERIFY(program.endedNormally());
    QCOMPARE(program.exitCode(), 0);
}

void TestStart::promptOfTheHighPerformanceMode()
{
    InstalledProgram program(screen);
    program.writeConfig(QByteArray(kQuietConfig).replace("NotPromptHPS=\"1\"", "NotPromptHPS=\"0\""));
    QVERIFY(program.start());
    const qint64 box = program.waitForBox();
    QVERIFY(box != 0);
    const QSize size = screen.geometryOf(box).size();
    program.clickIn(box, QPoint(24, size.height() - 10 - 30 - 20)); // "Don't show again."
    program.clickIn(box, QPoint(size.width() / 2, size.height() - 10 - 15));
    QTRY_VERIFY_WITH_TIMEOUT(program.otherWindows().isEmpty(), kPatienceMs);
    QCOMPARE(program.configAttribute(QStringLiteral("OtherSetting"), QStringLiteral("NotPromptHPS")),
             QStringLiteral("0")); // in memory only until the next save
    closeByButton(program, program.mainWindow());
    QCOMPARE(program.configAttribute(QStringLiteral("OtherSetting"), QStringLiteral("NotPromptHPS")),
             QStringLiteral("1"));
}

void TestStart::badConfigFiles_data()
{
    QTest::addColumn<QByteArray>("config");
    QTest::addColumn<bool>("replaced");

    const QByteArray good = kQuietConfig;
    QTest::newRow("empty") << QByteArray("") << true;
    QTest::newRow("cut in half") << good.left(good.size() / 2) << true;
    QTest::newRow("not XML") << QByteArray("\x7f"
                                           "ELF\0\1 no xml here",
                                           20)
                             << true;
    QTest::newRow("a million cards") << QByteArray("<OvrynParameter><GpuSettings>" +
                                                   QByteArray("<GPU GpuName=\"x\"/>").repeated(1000000) +
                                                   "</GpuSettings></OvrynParameter>")
                                     << true;
    QTest::newRow("of another root") << QByteArray("<Other><GeneralSetting/></Other>") << false;
    QTest::newRow("numbers that are none")
        << QByteArray(good).replace("CheckInterval=\"7\"", "CheckInterval=\"seven\"") << false;
}

void TestStart::badConfigFiles()
{
    QFETCH(QByteArray, config);
    QFETCH(bool, replaced);
    InstalledProgram program(screen);
    program.writeConfig(config);
    QVERIFY(program.start());
    const qint64 window = program.waitForMainWindow();
    QVERIFY(window != 0);
    if (replaced) {
        QCOMPARE(program.config().tagName(), QStringLiteral("OvrynParameter"));
        QCOMPARE(program.configText(QStringLiteral("LastStartDate")), today());
    }
    QVERIFY(program.isRunning());
}

void TestStart::flakyDriver()
{
    InstalledProgram program(screen);
    program.useScene(QStringLiteral("flaky-driver.json"));
    program.writeConfig(kQuietConfig);
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    const int calls = program.journal().size();
    QTRY_VERIFY_WITH_TIMEOUT(program.journal().size() > calls + 60, kPatienceMs);
    QVERIFY(program.isRunning());
    closeByButton(program, window);
}

int main(int argc, char **argv)
{
    return runProgramTest<TestStart>(argc, argv);
}

#include "TestStart.moc"
