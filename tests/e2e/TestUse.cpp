#include "e2e/ProgramTest.h"

#include <QTest>

/// The real executable on a real X server, used by mouse and keys as its users do.
class TestUse : public ProgramTest
{
    Q_OBJECT

private slots:
    void pageButtonsOpenAndCloseTheirPages();
    void adjustAsksOnceARun();
    void tickedRowsBecomeGraphsAndAreKept();
    void changeOfCard();
    void changeOfLanguage();
    void gaugeSegmentsChangeTheReadout();
    void escapeDoesNotClose();
    void dragByAFreeSpot();
};

void TestUse::pageButtonsOpenAndCloseTheirPages()
{
    InstalledProgram program(screen);
    program.writeConfig(kQuietConfig);
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    const QRect panel = onScreen(window, layout.pagePanel);
    const QPoint ringAtHome =
        QPoint(layout.gaugeHome.center().x() - layout.gaugeHome.width() * 27 / 100, layout.gaugeHome.center().y());
    const QPoint ringAside = ringAtHome + layout.gaugeShown.topLeft() - layout.gaugeHome.topLeft();
    const auto ringIsShown = [&](QPoint at) {
        return isRed(screen.picture().pixel(screen.geometryOf(window).topLeft() + at));
    };
    QTRY_VERIFY_WITH_TIMEOUT(ringIsShown(ringAtHome), kPatienceMs);

    const QList<QPair<const char *, QRect>> buttons = {{"monitor", layout.monitorButton},
                                                       {"information", layout.fixedInfoButton},
                                                       {"LED", layout.firstSlotButton},
                                                       {"LCD", layout.secondSlotButton}};
    for (const auto &button : buttons) {
        const QImage home = screen.picture();
        program.clickIn(window, button.second.center());
        QVERIFY2(pictureChanges(home, panel), button.first);
        if (qstrcmp(button.first, "LED") != 0) // the colours take the gauge's place there
            QTRY_VERIFY2_WITH_TIMEOUT(ringIsShown(ringAside), button.first, kPatienceMs);
        program.clickIn(window, button.second.center());
        QTRY_VERIFY2_WITH_TIMEOUT(ringIsShown(ringAtHome), button.first, kPatienceMs);
    }

    // from page to page without going home
    program.clickIn(window, layout.monitorButton.center());
    QTRY_VERIFY_WITH_TIMEOUT(ringIsShown(ringAside), kPatienceMs);
    const QImage monitor = screen.picture();
    program.clickIn(window, layout.fixedInfoButton.center());
    QVERIFY(pictureChanges(monitor, panel));
    QVERIFY(ringIsShown(ringAside));
    closeByButton(program, window);
    QCOMPARE(program.cardSections().size(), 2);
}

void TestUse::adjustAsksOnceARun()
{
    InstalledProgram program(screen);
    program.writeConfig(kQuietConfig);
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    const QRect panel = onScreen(window, layout.pagePanel);

    for (const bool yes : {false, true}) { // after a refusal the next click asks again
        const QImage home = screen.picture();
        program.clickIn(window, layout.adjustButton.center());
        const qint64 box = program.waitForBox();
        QVERIFY(box != 0);
        const QPoint offset = screen.geometryOf(box).center() - screen.geometryOf(window).center();
        QVERIFY2(offset.manhattanLength() <= 2, "the box stands beside the window");
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

void TestUse::tickedRowsBecomeGraphsAndAreKept()
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
    // the page has slid in once its header band is at the panel's place
    const auto bandIsShown = [&] {
        return isRed(screen.picture().pixel(screen.geometryOf(window).topLeft() + page.topLeft() + QPoint(4, band)));
    };
    QTRY_VERIFY_WITH_TIMEOUT(bandIsShown(), kPatienceMs);

    program.clickIn(window, row(0));
    program.clickIn(window, row(2));
    before = screen.picture();
    program.clickIn(window, topRight);
    QVERIFY(pictureChanges(before, onScreen(window, page))); // graphs in place of rows
    closeByButton(program, window);

    const QList<QDomElement> sections = program.cardSections();
    QCOMPARE(sections.size(), 2);
    QCOMPARE(
        sections.at(0).firstChildElement(QStringLiteral("MonitorModule")).attribute(QStringLiteral("SelectOption")),
        QStringLiteral("5"));
    QCOMPARE(
        sections.at(1).firstChildElement(QStringLiteral("MonitorModule")).attribute(QStringLiteral("SelectOption")),
        QStringLiteral("0"));

    // the next start finds them ticked: unticking the first leaves the third
    window = startedWindow(program);
    QVERIFY(window != 0);
    program.clickIn(window, layout.monitorButton.center());
    QTRY_VERIFY_WITH_TIMEOUT(bandIsShown(), kPatienceMs);
    program.clickIn(window, row(0));
    closeByButton(program, window);
    QCOMPARE(program.cardSections()
                 .at(0)
                 .firstChildElement(QStringLiteral("MonitorModule"))
                 .attribute(QStringLiteral("SelectOption")),
             QStringLiteral("4"));
}

void TestUse::changeOfCard()
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

void TestUse::changeOfLanguage()
{
    const QPoint combo = settingControl(QStringLiteral("cmb_language"));
    QVERIFY(!combo.isNull());
    InstalledProgram program(screen);
    program.writeConfig(QByteArray(kQuietConfig).replace("lang_en", "lang_ch"));
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    const QRect button = onScreen(window, layout.monitorButton);
    const QImage chinese = screen.picture();
    openSettings(program, window, combo);

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

void TestUse::gaugeSegmentsChangeTheReadout()
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

void TestUse::escapeDoesNotClose()
{
    InstalledProgram program(screen);
    program.writeConfig(kQuietConfig);
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    screen.activate(window);
    QTRY_COMPARE_WITH_TIMEOUT(screen.activeWindow(), window, kPatienceMs);
    screen.key(QStringLiteral("Escape"));
    program.clickIn(window, layout.monitorButton.center()); // shows that a later event is handled
    const QImage before = screen.picture();
    QVERIFY(pictureChanges(before, onScreen(window, layout.pagePanel)));
    QVERIFY(program.isRunning());
    closeByButton(program, window);
}

void TestUse::dragByAFreeSpot()
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

int main(int argc, char **argv)
{
    return runProgramTest<TestUse>(argc, argv);
}

#include "TestUse.moc"
