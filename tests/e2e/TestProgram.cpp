#include "app/MainDialogLayout.h"
#include "config/ConfigRecords.h"
#include "e2e/InstalledProgram.h"
#include "e2e/VirtualScreen.h"
#include "ui/Fonts.h"
#include "ui/Ovryn_LanguageTable.h"
#include "ui/Ovryn_SettingParentWidget.h"
#include "ui/Ovryn_SettingWidget.h"

#include <QApplication>
#include <QDate>
#include <QTest>

/// The real executable on a real X server, used by mouse and keys as its users do.
class TestProgram : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void firstStart();
    void driverCallsOfDetection();
    void driverCallsOfASample();
    void secondStartBringsTheWindowToTheFront();
    void secondStartBringsTheWindowBackFromTheTray();
    void noCard_data();
    void noCard();
    void pageButtonsOpenAndCloseTheirPages();
    void adjustAsksOnceARun();
    void promptOfTheHighPerformanceMode();
    void tickedRowsBecomeGraphsAndAreKept();
    void changeOfCard();
    void changeOfLanguage();
    void gaugeSegmentsChangeTheReadout();
    void closeAsksFirst();
    void windowManagerCloseSaves();
    void escapeDoesNotClose();
    void dragByAFreeSpot();
    void badConfigFiles_data();
    void badConfigFiles();
    void flakyDriver();

private:
    // A program past its first prompt, with the main window up.
    qint64 startedWindow(InstalledProgram &program);
    void pressBoxButton(InstalledProgram &program, bool yes);
    void closeByButton(InstalledProgram &program, qint64 window);
    [[nodiscard]] QPoint settingControl(const QString &objectName) const;
    [[nodiscard]] bool pictureChanges(const QImage &before, const QRect &screenRect) const;
    [[nodiscard]] QRect onScreen(qint64 window, const QRect &rect) const;

    VirtualScreen screen;
    MainDialogLayout layout;
};

namespace
{

constexpr QSize kDialogSize(1020, 680);
constexpr int kPatienceMs = 20000;

const char *const kQuietConfig = R"(<?xml version="1.0" encoding="UTF-8"?>
<OvrynParameter>
    <GeneralSetting StartOnBoot="1" MinimizeOnStart="0" ApplyLastParamOnStart="1" Language="lang_en" RefreshTimeOfMonitor="1" PageEffects="normal"/>
    <UpdateSetting CheckInterval="7" UpdateMode="0" UpdateStatus="1"/>
    <GpuSettings/>
    <LastCloseDate>2020/02/29</LastCloseDate>
    <OtherSetting NotPromptHPS="1"/>
</OvrynParameter>
)";

QString today()
{
    return QDate::currentDate().toString(QStringLiteral("yyyy/MM/dd"));
}

/// What one card is asked while the cards are detected.
const QStringList kIdentity = {"GPU_GetPCIIdentifiers", "GPU_GetFullName"};
const QStringList kLcdReadings = {"GPU_GetPstates20", "GPU_GetAllClockFrequencies", "GPU_GetRamType",
                                  "GPU_GetAllClockFrequencies", "GPU_GetRamType",
                                  "GPU_GetTachReading", "GPU_GetCoolerSettings",
                                  "GPU_GetMemoryInfo",
                                  "GPU_GetThermalSettings",
                                  "GPU_ClientThermalPoliciesGetInfo", "GPU_ClientThermalPoliciesGetStatus",
                                  "GPU_GetFullName", "GPU_GetPCIIdentifiers"};

/// A line of the journal as "operation", with the device's address behind a transfer.
QString operationOf(const QJsonObject &call)
{
    const QString operation = call.value(QStringLiteral("op")).toString().mid(int(strlen("NvAPI_")));
    const QString address = call.value(QStringLiteral("args")).toObject().value(QStringLiteral("address")).toString();
    return address.isEmpty() ? operation : operation + QLatin1Char(' ') + address;
}

/// How many pixels of a region differ noticeably.
int differingPixels(const QImage &a, const QImage &b, const QRect &region)
{
    int count = 0;
    const QRect rect = region & a.rect() & b.rect();
    for (int y = rect.top(); y <= rect.bottom(); ++y) {
        for (int x = rect.left(); x <= rect.right(); ++x) {
            const QRgb p = a.pixel(x, y);
            const QRgb q = b.pixel(x, y);
            if (qAbs(qRed(p) - qRed(q)) + qAbs(qGreen(p) - qGreen(q)) + qAbs(qBlue(p) - qBlue(q)) > 48)
                ++count;
        }
    }
    return count;
}

/// True where the ring's red lies.
bool isRed(QRgb pixel)
{
    return qRed(pixel) > 90 && qRed(pixel) > 2 * qGreen(pixel) && qRed(pixel) > 2 * qBlue(pixel);
}

} // namespace

void TestProgram::initTestCase()
{
    QVERIFY2(screen.start(), qPrintable(screen.error()));
    layout = mainDialogLayout(kDialogSize);
    substituteFontFamilies();
    registerApplicationFonts();
}

qint64 TestProgram::startedWindow(InstalledProgram &program)
{
    if (!program.start())
        return 0;
    return program.waitForMainWindow();
}

QRect TestProgram::onScreen(qint64 window, const QRect &rect) const
{
    return rect.translated(screen.geometryOf(window).topLeft());
}

bool TestProgram::pictureChanges(const QImage &before, const QRect &screenRect) const
{
    const int enough = screenRect.width() * screenRect.height() / 50;
    return QTest::qWaitFor([&] { return differingPixels(before, screen.picture(), screenRect) > enough; },
                           kPatienceMs);
}

void TestProgram::pressBoxButton(InstalledProgram &program, bool yes)
{
    const qint64 box = program.waitForBox();
    QVERIFY(box != 0);
    const QSize size = screen.geometryOf(box).size();
    // The buttons stand in a row at the bottom, yes left of no.
    const int y = size.height() - 10 - 15;
    const int fromCentre = 75;
    program.clickIn(box, QPoint(size.width() / 2 + (yes ? -fromCentre : fromCentre), y));
}

void TestProgram::closeByButton(InstalledProgram &program, qint64 window)
{
    program.clickIn(window, layout.closeButton.center());
    pressBoxButton(program, true);
    QVERIFY(program.waitForEnd());
    QVERIFY(program.endedNormally());
    QCOMPARE(program.exitCode(), 0);
}

/// Where a control of the settings page lies in the main window, asked of a page built the same way.
QPoint TestProgram::settingControl(const QString &objectName) const
{
    QWidget dialog;
    dialog.resize(kDialogSize);
    Ovryn_LanguageTable table;
    table.setLanguage(kLanguageEnglish);
    Ovryn_SettingParentWidget panel{GeneralSettingInfo(), UpdateSettingInfo(), &dialog};
    panel.setLanguage(table.setting, kLanguageEnglish);
    dialog.show();
    panel.setShowSettingWidget(true);
    const auto *page = panel.findChild<Ovryn_SettingWidget *>();
    const auto *control = panel.findChild<QWidget *>(objectName);
    if (!page || !control || !QTest::qWaitFor([&] { return page->isVisible() && page->x() == 0; }, kPatienceMs))
        return {};
    return settingPanelPosition(kDialogSize, panel.size()) + control->mapTo(&panel, control->rect().center());
}

void TestProgram::firstStart()
{
    InstalledProgram program(screen);
    QVERIFY(program.start());
    const qint64 prompt = program.waitForBox(); // a fresh installation asks about the high-performance mode
    QVERIFY(prompt != 0);
    QCOMPARE(program.configText(QStringLiteral("LastStartDate")), today());
    QCOMPARE(program.configAttribute(QStringLiteral("GeneralSetting"), QStringLiteral("Language")),
             QStringLiteral("lang_ch"));
    QCOMPARE(program.cardSections().size(), 0);

    const qint64 window = program.mainWindow();
    QVERIFY(window != 0);
    QCOMPARE(screen.geometryOf(window).size(), kDialogSize);

    // Both cards are sampled again and again while the prompt stands.
    const int calls = program.journal().size();
    QTRY_VERIFY_WITH_TIMEOUT(program.journal().size() > calls + 80, kPatienceMs);
}

void TestProgram::driverCallsOfDetection()
{
    InstalledProgram program(screen);
    program.writeConfig(kQuietConfig);
    QVERIFY(startedWindow(program) != 0);

    const QStringList start = {"Initialize", "EnumNvidiaDisplayHandle", "EnumNvidiaDisplayHandle",
                               "EnumNvidiaDisplayHandle", "EnumNvidiaDisplayHandle", "GetAssociatedDisplayOutputId",
                               "EnumPhysicalGPUs", "EnumTCCPhysicalGPUs"}; // the scene has three displays
    QStringList expected = start;
    expected << kIdentity << "I2CWrite 0xA0" << kLcdReadings << "I2CWrite 0xAC"; // the maker's card answers
    expected << kIdentity << "I2CWrite 0xA0" << "I2CWriteEx 0xA0" << "I2CWriteEx 0xA0" // the foreign one does not
             << kLcdReadings << "I2CWrite 0xAC" << "I2CWriteEx 0xAC" << "I2CWriteEx 0xAC";
    expected << "Unload";
    for (int card = 0; card < 2; ++card)
        expected << start; // its long-lived device object

    QStringList onMainThread;
    for (const QJsonObject &call : program.journal())
        if (call.value(QStringLiteral("thread")).toInt() == 1)
            onMainThread << operationOf(call);
    // each card's monitor page asks for the driver's version while it is built
    onMainThread.removeAll(QStringLiteral("SYS_GetDriverAndBranchVersion"));
    QCOMPARE(QStringList(onMainThread.mid(0, expected.size())), expected);
}

void TestProgram::driverCallsOfASample()
{
    InstalledProgram program(screen);
    program.writeConfig(kQuietConfig);
    QVERIFY(startedWindow(program) != 0);

    const QStringList baseClocks = {"GPU_GetPstates20", "GPU_GetAllClockFrequencies", "GPU_GetRamType"};
    QStringList expected = {"GPU_ClientThermalPoliciesGetInfo", "GPU_ClientThermalPoliciesGetStatus",
                            "GPU_GetMemoryInfo",
                            "GPU_GetThermalSettings",
                            "GPU_GetAllClockFrequencies", "GPU_GetRamType"};
    expected << baseClocks;
    expected << "GPU_GetTachReading" << "GPU_GetCoolerSettings" << "GPU_GetDynamicPstatesInfoEx";
    expected << "GPU_GetFullName" << "GPU_GetMemoryInfo" << "GPU_GetRamType" << baseClocks << baseClocks
             << "SYS_GetDriverAndBranchVersion" << "SYS_GetChipSetInfo" << "GPU_GetFBWidthAndLocation"
             << "GPU_GetVbiosVersionString";
    for (const char *sensor : {"0x9E", "0x90", "0x96", "0x92"})
        expected << QStringLiteral("I2CRead ") + QLatin1String(sensor);

    // The worker of the maker's card is the thread whose first call about that card is no call of the main thread.
    const auto cycles = [&] {
        QStringList operations;
        int worker = 0;
        for (const QJsonObject &call : program.journal()) {
            const int thread = call.value(QStringLiteral("thread")).toInt();
            if (worker == 0 && thread != 1 && call.value(QStringLiteral("gpu")).toInt(-1) == 0)
                worker = thread;
            if (worker != 0 && thread == worker)
                operations << operationOf(call);
        }
        return operations;
    };
    QTRY_VERIFY_WITH_TIMEOUT(cycles().size() >= 2 * expected.size(), kPatienceMs);
    const QStringList operations = cycles();
    QCOMPARE(QStringList(operations.mid(0, expected.size())), expected);
    QCOMPARE(QStringList(operations.mid(expected.size(), expected.size())), expected); // nothing is cached
}

void TestProgram::secondStartBringsTheWindowToTheFront()
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
    QCOMPARE(initialised, 3); // detection and two cards: the second start never loaded the driver
    other.kill();
    other.waitForFinished();
}

void TestProgram::secondStartBringsTheWindowBackFromTheTray()
{
    InstalledProgram program(screen);
    program.writeConfig(kQuietConfig);
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    program.clickIn(window, layout.minimizeButton.center());
    QTRY_COMPARE_WITH_TIMEOUT(program.mainWindow(), qint64(0), kPatienceMs);
    QVERIFY(program.isRunning());
    QCOMPARE(program.startAgain(), 0);
    QTRY_VERIFY_WITH_TIMEOUT(program.mainWindow() != 0, kPatienceMs);
    closeByButton(program, program.mainWindow());
}

void TestProgram::noCard_data()
{
    QTest::addColumn<QByteArray>("config");
    QTest::newRow("fresh installation") << QByteArray();
    QTest::newRow("English") << QByteArray(kQuietConfig);
    QTest::newRow("to start minimized")
        << QByteArray(kQuietConfig).replace("MinimizeOnStart=\"0\"", "MinimizeOnStart=\"1\"");
}

void TestProgram::noCard()
{
    QFETCH(QByteArray, config);
    InstalledProgram program(screen);
    program.useScene(QStringLiteral("no-card.json"));
    if (!config.isEmpty())
        program.writeConfig(config);
    QVERIFY(program.start());
    const qint64 box = program.waitForBox();
    QVERIFY(box != 0);
    QCOMPARE(program.mainWindow(), qint64(0));
    QCOMPARE(program.configText(QStringLiteral("LastStartDate")), today());
    const QSize size = screen.geometryOf(box).size();
    program.clickIn(box, QPoint(size.width() / 2, size.height() - 10 - 15));
    QVERIFY(program.waitForEnd());
    QVERIFY(program.endedNormally());
    QCOMPARE(program.exitCode(), 0);
}

void TestProgram::pageButtonsOpenAndCloseTheirPages()
{
    InstalledProgram program(screen);
    program.writeConfig(kQuietConfig);
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    const QRect panel = onScreen(window, layout.pagePanel);
    const QPoint ringAtHome = QPoint(layout.gaugeHome.center().x() - layout.gaugeHome.width() * 27 / 100,
                                     layout.gaugeHome.center().y());
    const QPoint ringAside = ringAtHome + layout.gaugeShown.topLeft() - layout.gaugeHome.topLeft();
    const auto ringStands = [&](QPoint at) {
        return isRed(screen.picture().pixel(screen.geometryOf(window).topLeft() + at));
    };
    QTRY_VERIFY_WITH_TIMEOUT(ringStands(ringAtHome), kPatienceMs);

    const QList<QPair<const char *, QRect>> buttons = {{"monitor", layout.monitorButton},
                                                       {"information", layout.fixedInfoButton},
                                                       {"LED", layout.firstSlotButton},
                                                       {"LCD", layout.secondSlotButton}};
    for (const auto &button : buttons) {
        const QImage home = screen.picture();
        program.clickIn(window, button.second.center());
        QVERIFY2(pictureChanges(home, panel), button.first);
        if (qstrcmp(button.first, "LED") != 0) // the colours take the gauge's place there
            QTRY_VERIFY2_WITH_TIMEOUT(ringStands(ringAside), button.first, kPatienceMs);
        program.clickIn(window, button.second.center());
        QTRY_VERIFY2_WITH_TIMEOUT(ringStands(ringAtHome), button.first, kPatienceMs);
    }

    // from page to page without going home
    program.clickIn(window, layout.monitorButton.center());
    QTRY_VERIFY_WITH_TIMEOUT(ringStands(ringAside), kPatienceMs);
    const QImage monitor = screen.picture();
    program.clickIn(window, layout.fixedInfoButton.center());
    QVERIFY(pictureChanges(monitor, panel));
    QVERIFY(ringStands(ringAside));
    closeByButton(program, window);
    QCOMPARE(program.cardSections().size(), 2);
}

void TestProgram::adjustAsksOnceARun()
{
    InstalledProgram program(screen);
    program.writeConfig(kQuietConfig);
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    const QRect panel = onScreen(window, layout.pagePanel);

    for (const bool yes : {false, true}) { // a refusal keeps the question armed
        const QImage home = screen.picture();
        program.clickIn(window, layout.adjustButton.center());
        pressBoxButton(program, yes);
        QTRY_VERIFY_WITH_TIMEOUT(program.otherWindows().isEmpty(), kPatienceMs);
        if (yes)
            QVERIFY(pictureChanges(home, panel));
    }
    program.clickIn(window, layout.adjustButton.center()); // closes
    const QImage closing = screen.picture();
    QVERIFY(pictureChanges(closing, panel));
    const QImage home = screen.picture();
    program.clickIn(window, layout.adjustButton.center());
    QVERIFY(pictureChanges(home, panel)); // opened without a question
    QVERIFY(program.otherWindows().isEmpty());
    closeByButton(program, window);
}

void TestProgram::promptOfTheHighPerformanceMode()
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

void TestProgram::tickedRowsBecomeGraphsAndAreKept()
{
    InstalledProgram program(screen);
    program.writeConfig(kQuietConfig);
    qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    const QRect page = layout.pagePanel;
    const int band = page.height() / 10;
    const int rowHeight = (page.height() - 2 * band) / 6;
    const auto row = [&](int i) {
        return page.topLeft() + QPoint(page.width() / 20 + 8, band + rowHeight * i + rowHeight / 2);
    };
    const QPoint topRight = page.topLeft() + QPoint(page.width() / 10 * 9 + 12, band / 2);

    QImage before = screen.picture();
    program.clickIn(window, layout.monitorButton.center());
    QVERIFY(pictureChanges(before, onScreen(window, page)));
    // the page has slid in once its header band stands at the panel's place
    const auto bandStands = [&] {
        return isRed(screen.picture().pixel(screen.geometryOf(window).topLeft() + page.topLeft() +
                                            QPoint(4, band)));
    };
    QTRY_VERIFY_WITH_TIMEOUT(bandStands(), kPatienceMs);

    program.clickIn(window, row(0));
    program.clickIn(window, row(2));
    before = screen.picture();
    program.clickIn(window, topRight);
    QVERIFY(pictureChanges(before, onScreen(window, page))); // graphs in place of rows
    closeByButton(program, window);

    const QList<QDomElement> sections = program.cardSections();
    QCOMPARE(sections.size(), 2);
    QCOMPARE(sections.at(0).firstChildElement(QStringLiteral("MonitorModule")).attribute(QStringLiteral("SelectOption")),
             QStringLiteral("5"));
    QCOMPARE(sections.at(1).firstChildElement(QStringLiteral("MonitorModule")).attribute(QStringLiteral("SelectOption")),
             QStringLiteral("0"));

    // the next start finds them ticked: unticking the first leaves the third
    window = startedWindow(program);
    QVERIFY(window != 0);
    program.clickIn(window, layout.monitorButton.center());
    QTRY_VERIFY_WITH_TIMEOUT(bandStands(), kPatienceMs);
    program.clickIn(window, row(0));
    closeByButton(program, window);
    QCOMPARE(program.cardSections().at(0).firstChildElement(QStringLiteral("MonitorModule"))
                 .attribute(QStringLiteral("SelectOption")),
             QStringLiteral("4"));
}

void TestProgram::changeOfCard()
{
    InstalledProgram program(screen);
    program.writeConfig(kQuietConfig);
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    const QRect slots2 = onScreen(window, layout.firstSlotButton | layout.secondSlotButton);
    const QImage firstCard = screen.picture();
    program.clickIn(window, layout.selector.center());
    QTRY_VERIFY_WITH_TIMEOUT(!program.otherWindows().isEmpty(), kPatienceMs);
    screen.key(QStringLiteral("Down"));
    screen.key(QStringLiteral("Return"));
    // the foreign card has neither LEDs nor an LCD
    QVERIFY(pictureChanges(firstCard, slots2));
    closeByButton(program, window);
    QCOMPARE(program.cardSections().size(), 2);
}

void TestProgram::changeOfLanguage()
{
    const QPoint combo = settingControl(QStringLiteral("cmb_language"));
    QVERIFY(!combo.isNull());
    InstalledProgram program(screen);
    program.writeConfig(QByteArray(kQuietConfig).replace("lang_en", "lang_ch"));
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    const QRect button = onScreen(window, layout.monitorButton);
    const QImage chinese = screen.picture();
    program.clickIn(window, layout.settingButton.center());
    const QRect panel = onScreen(window, QRect(combo - QPoint(40, 10), QSize(80, 20)));
    QVERIFY(pictureChanges(chinese, panel));
    QTRY_VERIFY_WITH_TIMEOUT(differingPixels(screen.picture(), screen.picture(), panel) == 0, kPatienceMs);

    program.clickIn(window, combo);
    QTRY_VERIFY_WITH_TIMEOUT(!program.otherWindows().isEmpty(), kPatienceMs);
    screen.key(QStringLiteral("Down"));
    screen.key(QStringLiteral("Return"));
    QVERIFY(pictureChanges(chinese, button)); // its caption is another one
    QCOMPARE(program.configAttribute(QStringLiteral("GeneralSetting"), QStringLiteral("Language")),
             QStringLiteral("lang_ch")); // on the disk at close only
    closeByButton(program, window);
    QCOMPARE(program.configAttribute(QStringLiteral("GeneralSetting"), QStringLiteral("Language")),
             QStringLiteral("lang_en"));
}

void TestProgram::gaugeSegmentsChangeTheReadout()
{
    InstalledProgram program(screen);
    program.writeConfig(kQuietConfig);
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    // the middle of the ring's band: 0.25 of the box from its centre
    const QPoint centre = layout.gaugeHome.center();
    const int reach = layout.gaugeHome.width() / 4;
    const QRect readout = onScreen(window, QRect(centre - QPoint(110, 50), QSize(220, 100)));
    const QList<QPair<const char *, QPoint>> segments = {
        {"temperature, to the right", centre + QPoint(reach * 86 / 100, -reach / 2)},
        {"memory, at the bottom", centre + QPoint(0, reach)},
        {"clock, to the left", centre + QPoint(-reach * 86 / 100, -reach / 2)}};
    for (const auto &segment : segments) {
        const QImage before = screen.picture();
        program.clickIn(window, segment.second);
        QVERIFY2(pictureChanges(before, readout), segment.first);
    }
    closeByButton(program, window);
}

void TestProgram::closeAsksFirst()
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
    // the driver is let go last: no worker asked it for anything afterwards
    QCOMPARE(program.journal().last().value(QStringLiteral("op")).toString(), QStringLiteral("NvAPI_Unload"));
}

void TestProgram::windowManagerCloseSaves()
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

void TestProgram::escapeDoesNotClose()
{
    InstalledProgram program(screen);
    program.writeConfig(kQuietConfig);
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    screen.activate(window);
    QTRY_COMPARE_WITH_TIMEOUT(screen.activeWindow(), window, kPatienceMs);
    screen.key(QStringLiteral("Escape"));
    program.clickIn(window, layout.monitorButton.center()); // a later event has been handled
    const QImage before = screen.picture();
    QVERIFY(pictureChanges(before, onScreen(window, layout.pagePanel)));
    QVERIFY(program.isRunning());
    closeByButton(program, window);
}

void TestProgram::dragByAFreeSpot()
{
    InstalledProgram program(screen);
    program.writeConfig(kQuietConfig);
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    const QRect before = screen.geometryOf(window);
    const QPoint spot = before.topLeft() + QPoint(700, 60);
    screen.drag(spot, spot + QPoint(40, 60));
    QTRY_COMPARE_WITH_TIMEOUT(screen.geometryOf(window).topLeft(), before.topLeft() + QPoint(40, 60), kPatienceMs);
    closeByButton(program, window);
}

void TestProgram::badConfigFiles_data()
{
    QTest::addColumn<QByteArray>("config");
    QTest::addColumn<bool>("replaced");

    const QByteArray good = kQuietConfig;
    QTest::newRow("empty") << QByteArray("") << true;
    QTest::newRow("cut in half") << good.left(good.size() / 2) << true;
    QTest::newRow("not XML") << QByteArray("\x7f" "ELF\0\1 no xml here", 20) << true;
    QTest::newRow("a million cards")
        << QByteArray("<OvrynParameter><GpuSettings>" + QByteArray("<GPU GpuName=\"x\"/>").repeated(1000000) +
                      "</GpuSettings></OvrynParameter>")
        << true;
    QTest::newRow("of another root") << QByteArray("<Other><GeneralSetting/></Other>") << false;
    QTest::newRow("numbers that are none")
        << QByteArray(good).replace("CheckInterval=\"7\"", "CheckInterval=\"seven\"") << false;
}

void TestProgram::badConfigFiles()
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

void TestProgram::flakyDriver()
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
    qputenv("QT_QPA_PLATFORM", "offscreen"); // the test itself draws nothing; only the program needs the screen
    QApplication application(argc, argv);
    TestProgram test;
    return QTest::qExec(&test, argc, argv);
}

#include "TestProgram.moc"
