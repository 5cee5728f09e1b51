#include "board/lcd/LcdPageLayout.h"
#include "e2e/ProgramTest.h"
#include "ui/Ovryn_LanguageTable.h"

#include <QFontMetrics>
#include <QTest>

#include <memory>

/// The LCD page of the real executable: what its card's LCD is told, the hot key beside another program, and
/// what stays for the next start.
class TestLcd : public ProgramTest
{
    Q_OBJECT

private slots:
    void init();
    void applyHotKeyAndOff();
    void savedHotKeyWorksFromTheStart();
    void gaugeChoosesThePage();
    void cardWithoutAnLcd();

private:
    void openPage(InstalledProgram &program, qint64 window);
    void press(InstalledProgram &program, qint64 window, const QRect &part);
    /// Apply, answered with yes.
    void apply(InstalledProgram &program, qint64 window);
    /// A window of another program, with the keyboard's focus. Null when it can't be had.
    [[nodiscard]] std::unique_ptr<QProcess> otherProgramInFront();

    LcdPageLayout parts; ///< of the English page
};

namespace
{

constexpr int kMainThread = 1; // it is the first to call
constexpr int kOff = 0xF0;

/// The command bytes of the frames to a card's LCD by threads other than the main one, oldest first.
QList<int> workersCommands(const InstalledProgram &program, int card = 0)
{
    QList<int> commands;
    for (const QJsonObject &call : program.journal()) {
        if (operationOf(call) != QLatin1String("I2CWrite 0xAC") ||
            call.value(QStringLiteral("gpu")).toInt(-1) != card ||
            call.value(QStringLiteral("thread")).toInt() == kMainThread)
            continue;
        const QJsonObject arguments = call.value(QStringLiteral("args")).toObject();
        const QByteArray frame = QByteArray::fromHex(arguments.value(QStringLiteral("data")).toString().toLatin1());
        if (frame.size() == 35)
            commands << int(quint8(frame.at(3)));
    }
    return commands;
}

int samples(const InstalledProgram &program)
{
    int count = 0;
    for (const QJsonObject &call : program.journal())
        count += operationOf(call) == QLatin1String("GPU_GetDynamicPstatesInfoEx");
    return count;
}

/// How often each page stands in a row, without the last, which is not over.
QList<int> pageLengths(const QList<int> &commands)
{
    QList<int> lengths;
    for (int i = 0; i < commands.size(); ++i) {
        if (i == 0 || commands.at(i) != commands.at(i - 1))
            lengths << 0;
        ++lengths.last();
    }
    if (!lengths.isEmpty())
        lengths.removeLast();
    return lengths;
}

QByteArray configWithLcd(const QByteArray &attributes)
{
    return QByteArray(kQuietConfig)
        .replace("<GpuSettings/>", "<GpuSettings><GPU GpuName=\"GeForce GTX 1070 Ti\" SubSystemId=\"287142775\">"
                                   "<LcdModule " +
                                       attributes + "/></GPU></GpuSettings>");
}

} // namespace

void TestLcd::init()
{
    Ovryn_LanguageTable table;
    table.setLanguage(kLanguageEnglish);
    const auto width = [](const QString &text, int pixels) {
        QFont font(QStringLiteral("Arial"));
        font.setPixelSize(pixels);
        return QFontMetrics(font).horizontalAdvance(text);
    };
    parts = lcdPageLayoutFor(layout.pagePanel.size(), {width(table.lcd.autoSwitch, LcdPageLayout::radioPixels),
                                                       width(table.lcd.manualSwitch, LcdPageLayout::radioPixels),
                                                       width(table.lcd.time, LcdPageLayout::captionPixels),
                                                       width(table.lcd.hotkey, LcdPageLayout::captionPixels)});
}

void TestLcd::press(InstalledProgram &program, qint64 window, const QRect &part)
{
    // near the left end, where a radio and the switch have what takes the click
    program.clickIn(window, layout.pagePanel.topLeft() + part.topLeft() + QPoint(8, part.height() / 2));
}

void TestLcd::openPage(InstalledProgram &program, qint64 window)
{
    program.clickIn(window, layout.secondSlotButton.center());
    const QRect confirm = parts.confirm.translated(layout.pagePanel.topLeft());
    const auto stands = [&] {
        return isRed(screen.picture().pixel(screen.geometryOf(window).topLeft() + confirm.topLeft() + QPoint(3, 3)));
    };
    QTRY_VERIFY_WITH_TIMEOUT(stands(), kPatienceMs);
}

void TestLcd::apply(InstalledProgram &program, qint64 window)
{
    press(program, window, parts.confirm);
    pressBoxButton(program, true);
    QTRY_VERIFY_WITH_TIMEOUT(program.otherWindows().isEmpty(), kPatienceMs);
}

std::unique_ptr<QProcess> TestLcd::otherProgramInFront()
{
    auto other = std::make_unique<QProcess>();
    other->setProcessEnvironment(screen.environment());
    other->start(QStringLiteral("xev"), {QStringLiteral("-name"), QStringLiteral("in-front")});
    qint64 front = 0;
    if (!QTest::qWaitFor([&] { return (front = screen.findWindow(QStringLiteral("in-front"))) != 0; }, kPatienceMs))
        return nullptr;
    screen.activate(front);
    if (!QTest::qWaitFor([&] { return screen.activeWindow() == front; }, kPatienceMs))
        return nullptr;
    return other;
}

void TestLcd::applyHotKeyAndOff()
{
    InstalledProgram program(screen);
    program.writeConfig(kQuietConfig);
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    openPage(program, window);

    // a switch time of two seconds: three frames a page
    press(program, window, parts.switchTime);
    screen.key(QStringLiteral("ctrl+a"));
    screen.type(QStringLiteral("2"));
    screen.key(QStringLiteral("Tab"));
    const int beforeApply = workersCommands(program).size();
    apply(program, window);
    QTRY_VERIFY_WITH_TIMEOUT(pageLengths(workersCommands(program).mid(beforeApply)).size() >= 4, kPatienceMs);
    const QList<int> lengths = pageLengths(workersCommands(program).mid(beforeApply));
    QCOMPARE(lengths.at(1), 3);
    QCOMPARE(lengths.at(2), 3);
    QCOMPARE(lengths.at(3), 3);

    // by hand: the pages stand still until the hot key is pressed, whoever has the focus
    press(program, window, parts.manualSwitch);
    apply(program, window);
    const std::unique_ptr<QProcess> other = otherProgramInFront();
    QVERIFY(other);
    const QList<int> rotation = {0x10, 0x80, 0x40, 0x20};
    for (int pressed = 0; pressed < 3; ++pressed) {
        const int sent = workersCommands(program).size();
        QTRY_VERIFY_WITH_TIMEOUT(workersCommands(program).size() >= sent + 2, kPatienceMs);
        const int stands = workersCommands(program).last();
        QCOMPARE(workersCommands(program).mid(sent + 1).count(stands),
                 workersCommands(program).size() - sent - 1); // no rotation by itself
        screen.key(QStringLiteral("ctrl+1"));
        QTRY_COMPARE_WITH_TIMEOUT(workersCommands(program).last(),
                                  rotation.at((rotation.indexOf(stands) + 1) % rotation.size()), kPatienceMs);
    }
    other->kill();
    other->waitForFinished();

    // off: one frame tells it, and then there is silence while the sampling goes on
    screen.activate(window);
    press(program, window, parts.enableLcd);
    apply(program, window);
    QTRY_COMPARE_WITH_TIMEOUT(workersCommands(program).last(), kOff, kPatienceMs);
    const int sampled = samples(program);
    QTRY_VERIFY_WITH_TIMEOUT(samples(program) >= sampled + 8, kPatienceMs); // two cards, a sample a second
    QCOMPARE(workersCommands(program).count(kOff), 1);
    QCOMPARE(workersCommands(program).last(), kOff);

    press(program, window, parts.enableLcd); // unapplied: not kept
    closeByButton(program, window);
    const auto saved = [&](const char *attribute) {
        return program.cardSections()
            .value(0)
            .firstChildElement(QStringLiteral("LcdModule"))
            .attribute(QLatin1String(attribute));
    };
    QCOMPARE(saved("AutoSwitch"), QStringLiteral("0"));
    QCOMPARE(saved("SwitchTime"), QStringLiteral("2"));
    QCOMPARE(saved("ModifierKey"), QStringLiteral("17"));
    QCOMPARE(saved("NormalKey"), QStringLiteral("49"));
    QCOMPARE(saved("EnableLcd"), QStringLiteral("0"));
}

void TestLcd::savedHotKeyWorksFromTheStart()
{
    InstalledProgram program(screen);
    program.writeConfig(
        configWithLcd(R"(AutoSwitch="0" SwitchTime="10" ModifierKey="18" NormalKey="75" EnableLcd="1")"));
    QVERIFY(startedWindow(program) != 0);
    const std::unique_ptr<QProcess> other = otherProgramInFront();
    QVERIFY(other);
    QTRY_VERIFY_WITH_TIMEOUT(!workersCommands(program).isEmpty(), kPatienceMs);
    QCOMPARE(workersCommands(program).last(), 0x80);
    screen.key(QStringLiteral("ctrl+k")); // shown as Alt and K, taken as Ctrl and K
    QTRY_COMPARE_WITH_TIMEOUT(workersCommands(program).last(), 0x40, kPatienceMs);
    other->kill();
    other->waitForFinished();
}

void TestLcd::gaugeChoosesThePage()
{
    InstalledProgram program(screen);
    program.writeConfig(
        configWithLcd(R"(AutoSwitch="0" SwitchTime="10" ModifierKey="17" NormalKey="49" EnableLcd="1")"));
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    QTRY_VERIFY_WITH_TIMEOUT(workersCommands(program).contains(0x80), kPatienceMs);
    // the lowest segment of the ring is the memory's
    program.clickIn(window, layout.gaugeHome.center() + QPoint(0, layout.gaugeHome.height() * 27 / 100));
    QTRY_COMPARE_WITH_TIMEOUT(workersCommands(program).last(), 0x20, kPatienceMs);
}

void TestLcd::cardWithoutAnLcd()
{
    InstalledProgram program(screen);
    program.useScene(QStringLiteral("foreign-card.json"));
    program.writeConfig(kQuietConfig);
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    QTRY_VERIFY_WITH_TIMEOUT(workersCommands(program).size() >= 4, kPatienceMs); // refused, and sent all the same
    QVERIFY(program.isRunning());
    QVERIFY(program.otherWindows().isEmpty());
    closeByButton(program, window);
}

int main(int argc, char **argv)
{
    return runProgramTest<TestLcd>(argc, argv);
}

#include "TestLcd.moc"
