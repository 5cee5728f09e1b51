#include "board/LedPageWorld.h"
#include "board/led/Ovryn_SendColorToLed.h"
#include "support/ConnectWarnings.h"
#include "support/RawDriver.h"
#include "ui/Fonts.h"

#include <QElapsedTimer>
#include <QLabel>

/// The LED page as it comes up from nothing and from saved values, what it keeps, and how it goes.
class TestLedPageStart : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void connectionsAreGood();
    void withoutSavedValues();
    void savedMode_data();
    void savedMode();
    void savedMasks_data();
    void savedMasks();
    void savedInterval_data();
    void savedInterval();
    void savedColours();
    void presetColours();
    void restoredStateDisplayRests();
    void everyControllerType();
    void nothingElseOfTheStatusCounts();
    void controllerThatDoesNotAnswer();
    void withoutACard();
    void closingFrame_data();
    void closingFrame();
    void closingInStateDisplayEndsItsWorker();
    void requiredPauses();
    void words_data();
    void words();
    void geometry();
    void painting();
};

namespace
{

constexpr quint32 kWhite = 0xFFFFFFFF;

} // namespace

void TestLedPageStart::initTestCase()
{
    substituteFontFamilies();
}

void TestLedPageStart::connectionsAreGood()
{
    const ConnectWarnings warnings;
    LedPageWorld world;
    world.open();
    QCOMPARE(warnings.list(), QStringList());
}

void TestLedPageStart::withoutSavedValues()
{
    LedPageWorld world;
    world.open();
    QCOMPARE(world.frames(), QStringList()); // the LEDs keep what they ran
    QCOMPARE(world.checkedRadio(), QStringLiteral("rdbSingleBreath"));
    QVERIFY(!world.radio("rdbSingleBreath")->isVisible());
    QVERIFY(!world.radio("rdbSingleBright")->isVisible());
    QVERIFY(world.colorControlsEnabled());
    LedModuleInfo expected;
    expected.LedMode = 0;
    expected.CheckedColorButtonStatic = 1;
    expected.Colors.fill(kWhite);
    QVERIFY(world.info() == expected);
    QCOMPARE(world.spin()->value(), 2);
}

void TestLedPageStart::savedMode_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("controllerType");
    QTest::addColumn<QString>("radio");
    QTest::addColumn<int>("kept");
    QTest::addColumn<bool>("colours");
    QTest::addColumn<QStringList>("sent");

    const auto row = [](const char *name, int mode, int type, const char *radio, int kept, bool colours,
                        const QStringList &sent = {}) {
        QTest::newRow(name) << mode << type << QString::fromLatin1(radio) << kept << colours << sent;
    };
    row("single breathing", 0, 3, "rdbSingleBreath", 0, true);
    row("single steady", 1, 3, "rdbSingleBright", 1, true);
    row("multiple breathing", 2, 3, "rdbMultipleBreath", 2, true);
    row("multiple steady", 3, 3, "rdbMultipleBright", 3, true);
    row("State-Display", 4, 3, "rdbState", 4, false);
    row("gradient", 5, 3, "rdbGradient", 5, false);
    row("gradient on a controller without it", 5, 2, "rdbSingleBreath", 0, true, {"08 01 32 02 FF 00 00 C3"});
    row("sleep", 6, 3, "rdbSleep", 6, false);
    row("7 is sleep", 7, 3, "rdbSleep", 6, false);
    row("-1 is sleep", -1, 3, "rdbSleep", 6, false);
    row("the smallest number is sleep", std::numeric_limits<int>::min(), 3, "rdbSleep", 6, false);
}

void TestLedPageStart::savedMode()
{
    QFETCH(int, mode);
    QFETCH(int, controllerType);
    LedPageWorld world;
    world.setControllerType(quint8(controllerType));
    LedModuleInfo saved;
    saved.LedMode = mode;
    world.open(saved);
    QTEST(world.checkedRadio(), "radio");
    QTEST(world.info().LedMode, "kept");
    QTEST(world.colorControlsEnabled(), "colours");
    QTEST(world.frames(), "sent");
    QCOMPARE(world.radio("rdbGradient")->isVisible(), controllerType == 3);
}

void TestLedPageStart::savedMasks_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("presets");
    QTest::addColumn<int>("customs");
    QTest::addColumn<int>("keptPresets");
    QTest::addColumn<int>("keptCustoms");

    QTest::newRow("single: one preset") << 0 << 0x04 << 0 << 0x04 << 0;
    QTest::newRow("single: one custom") << 0 << 0 << 0x10 << 0 << 0x10;
    QTest::newRow("single: the last preset wins") << 1 << 0x15 << 0x7F << 0x10 << 0;
    QTest::newRow("single: the last custom wins") << 1 << 0 << 0x2A << 0 << 0x20;
    QTest::newRow("single: none") << 0 << 0 << 0 << 0 << 0;
    QTest::newRow("single: the bit beyond seven is nothing") << 0 << 0x80 << 0x80 << 0 << 0;
    QTest::newRow("multiple: three and four") << 2 << 0x07 << 0x78 << 0x07 << 0x78;
    QTest::newRow("multiple: presets push customs out") << 2 << 0x7F << 0x7F << 0x7F << 0;
    QTest::newRow("multiple: the oldest customs go") << 3 << 0x0F << 0x7F << 0x0F << 0x70;
    QTest::newRow("multiple: none") << 3 << 0 << 0 << 0 << 0;
    QTest::newRow("multiple: the bit beyond seven is nothing") << 2 << 0xFF << 0xFF << 0x7F << 0;
    QTest::newRow("State-Display: the rules of the single mode") << 4 << 0x03 << 0x01 << 0x02 << 0;
    QTest::newRow("sleep: the rules of the single mode") << 6 << 0x03 << 0x01 << 0x02 << 0;
}

void TestLedPageStart::savedMasks()
{
    QFETCH(int, mode);
    QFETCH(int, presets);
    QFETCH(int, customs);
    LedPageWorld world;
    LedModuleInfo saved;
    saved.LedMode = mode;
    saved.CheckedColorButtonStatic = quint8(presets);
    saved.CheckedColorButtonDynamic = quint8(customs);
    world.open(saved);
    QTEST(int(world.info().CheckedColorButtonStatic), "keptPresets");
    QTEST(int(world.info().CheckedColorButtonDynamic), "keptCustoms");
    QCOMPARE(world.frames(), QStringList());
}

void TestLedPageStart::savedInterval_data()
{
    QTest::addColumn<int>("saved");
    QTest::addColumn<int>("kept");

    QTest::newRow("2") << 2 << 2;
    QTest::newRow("16") << 16 << 16;
    QTest::newRow("9") << 9 << 9;
    QTest::newRow("17") << 17 << 16;
    QTest::newRow("1") << 1 << 2;
    QTest::newRow("0") << 0 << 2;
    QTest::newRow("-1 is a large number") << -1 << 16;
    QTest::newRow("the smallest is a large number") << std::numeric_limits<int>::min() << 16;
    QTest::newRow("the largest") << std::numeric_limits<int>::max() << 16;
}

void TestLedPageStart::savedInterval()
{
    QFETCH(int, saved);
    QFETCH(int, kept);
    LedPageWorld world;
    LedModuleInfo info;
    info.Interval = saved;
    world.open(info);
    QCOMPARE(world.info().Interval, kept);
    QCOMPARE(world.spin()->value(), kept);
    QCOMPARE(world.frames(), QStringList());
}

void TestLedPageStart::savedColours()
{
    LedPageWorld world;
    LedModuleInfo saved;
    saved.Colors = {0xFF0000, 0x0000FF00, 0x800000FF, 0xFF123456, 0, 0xFFFFFF, 0x00FFFFFF};
    world.open(saved);
    const std::array<quint32, 7> kept = {0xFFFF0000, 0xFF00FF00, 0xFF0000FF, 0xFF123456, 0xFF000000, kWhite, kWhite};
    QCOMPARE(world.info().Colors, kept);
    QCOMPARE(world.custom(3)->getColor(), QColor(0x12, 0x34, 0x56));
}

void TestLedPageStart::presetColours()
{
    LedPageWorld world;
    world.open();
    const QList<QColor> colors{QColor(255, 0, 0),   QColor(255, 165, 0), QColor(255, 255, 0), QColor(0, 255, 0),
                               QColor(0, 127, 255), QColor(0, 0, 255),   QColor(139, 0, 255)};
    for (int i = 0; i < colors.size(); ++i)
        QCOMPARE(world.preset(i)->getColor(), colors.at(i));
}

void TestLedPageStart::restoredStateDisplayRests()
{
    LedPageWorld world;
    world.openInMode(LedMode::StateDisplay);
    QVERIFY(!world.page->findChild<Ovryn_SendColorToLed *>()->isRunning());
    QCOMPARE(world.driver.calls(Operation::NvAPI_GPU_GetThermalSettings), QStringList());
    QCOMPARE(world.frames(), QStringList());
    world.choose("rdbState"); // checked already: no toggle
    QCOMPARE(world.frames(), QStringList());
    world.choose("rdbMultipleBright");
    QCOMPARE(world.frames(), QStringList("08 02 32 02 FF 00 00 C2"));
    QVERIFY(world.colorControlsEnabled());
}

void TestLedPageStart::everyControllerType()
{
    LedPageWorld world;
    for (int type = 0; type < 256; ++type) {
        world.setControllerType(quint8(type));
        world.open();
        QCOMPARE(world.radio("rdbGradient")->isVisible(), type == 3);
        QCOMPARE(world.frames(), QStringList());
        world.page.reset();
        QCOMPARE(world.frames().size(), type == 3 ? 1 : 0);
    }
}

void TestLedPageStart::nothingElseOfTheStatusCounts()
{
    LedModuleInfo expected;
    {
        LedPageWorld world;
        world.open();
        expected = world.info();
    }
    RawDriver driver; // no controller has such a status
    NvGpuControl control;
    for (int value = 0; value < 256; ++value) {
        QByteArray status(27, char(value));
        status[0] = 3;
        driver.card().i2cReplies[kLedAddress + 1] = status;
        driver.forgetCalls();
        const Ovryn_LEDControlWidget page(&control, nullptr, LedPageWorld::kTimings);
        LedModuleInfo info;
        page.getLedModuleInfo(info);
        QVERIFY2(info == expected, qPrintable(QString::number(value)));
        QVERIFY(page.findChild<ModifySpinBox *>(QStringLiteral("spinInterval"))->isEnabled());
        QCOMPARE(driver.frames(kLedAddress), QStringList());
    }
}

void TestLedPageStart::controllerThatDoesNotAnswer()
{
    LedPageWorld world;
    world.loseController();
    world.openInMode(LedMode::MultipleBreath);
    QVERIFY(!world.radio("rdbGradient")->isVisible());
    world.choose("rdbMultipleBright");
    QVERIFY(!world.frames().isEmpty()); // tried, refused, and nobody is told
    QVERIFY(world.colorControlsEnabled());
    QCOMPARE(world.info().LedMode, 3);
    world.driver.forgetCalls();
    world.page.reset();
    QCOMPARE(world.frames(), QStringList());
}

void TestLedPageStart::withoutACard()
{
    const CheckedDriver driver;
    Ovryn_LEDControlWidget page(nullptr, nullptr, LedPageWorld::kTimings);
    page.resize(LedPageWorld::kPageSize);
    page.show();
    for (const char *name : {"rdbState", "rdbSleep", "rdbMultipleBright", "rdbSingleBright"})
        page.findChild<QRadioButton *>(QLatin1String(name))->setChecked(true);
    auto *custom = page.findChild<Ovryn_ColorButton *>(QStringLiteral("custom0"));
    custom->onTimeOut();
    page.setCurrentBindColorCircleButtonColor(Qt::green);
    QCOMPARE(custom->getColor(), QColor(255, 255, 255));
    page.onResetButtonClick();
    page.findChild<ModifySpinBox *>()->setValue(7);
    LedModuleInfo out;
    page.getLedModuleInfo(out);
    QCOMPARE(out.Interval, 7);
    QCOMPARE(driver.calls(), QStringList());
}

void TestLedPageStart::closingFrame_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("controllerType");
    QTest::addColumn<QStringList>("sent");

    QTest::newRow("single steady") << 1 << 3 << QStringList{"88 00 32 02 FF 00 00 44"};
    QTest::newRow("single breathing") << 0 << 3 << QStringList{"88 01 32 02 FF 00 00 43"};
    QTest::newRow("multiple steady") << 3 << 3 << QStringList{"88 02 32 02 FF 00 00 42"};
    QTest::newRow("gradient") << 5 << 3 << QStringList{"85 04 32 02 42"};
    QTest::newRow("sleep") << 6 << 3 << QStringList{"85 00 00 0A 70"};
    QTest::newRow("another controller is told nothing") << 1 << 2 << QStringList();
    QTest::newRow("nor one of type 0") << 6 << 0 << QStringList();
}

void TestLedPageStart::closingFrame()
{
    QFETCH(int, mode);
    QFETCH(int, controllerType);
    LedPageWorld world;
    world.setControllerType(quint8(controllerType));
    world.openInMode(LedMode(mode));
    QCOMPARE(world.frames(), QStringList());
    world.page.reset();
    QTEST(world.frames(), "sent");
}

void TestLedPageStart::closingInStateDisplayEndsItsWorker()
{
    LedPageWorld world;
    world.openInMode(LedMode::StateDisplay);
    world.page.reset(); // starts the worker, whose own destructor ends it
    QVERIFY(world.frames().size() <= 1);
    for (const QString &frame : world.frames())
        QVERIFY(frame.startsWith(QLatin1String("08 01 32")));
    world.control.reset();
    QCOMPARE(world.driver.strayCalls(), 0);
}

void TestLedPageStart::requiredPauses()
{
    const LedTimings timings;
    QCOMPARE(timings.beforeDefaultsMs, 50U);
    QCOMPARE(timings.afterStatusMs, 100U);
    QCOMPARE(timings.beforeSleepFrameMs, 100U);
    QCOMPARE(timings.colorChangedMs, 500);
    QCOMPARE(timings.workerSleepMs, 1000U);

    LedPageWorld world;
    QElapsedTimer clock;
    clock.start();
    world.open(timings);
    QVERIFY(clock.elapsed() >= 150);
    clock.restart();
    world.choose("rdbSleep");
    QVERIFY(clock.elapsed() >= 100);
}

void TestLedPageStart::words_data()
{
    QTest::addColumn<int>("language");
    QTest::addColumn<QStringList>("texts");

    QTest::newRow("Chinese") << 0 << QStringList{"单色呼吸", "单色常亮", "呼吸", "常亮",          "切换间隔",
                                                 "状态显示", "睡  眠",   "渐变", "重置自定义颜色"};
    QTest::newRow("English") << 1 << QStringList{"Breath",        "Bright",  "Breath",   "Bright", "Interval",
                                                 "State-Display", "LED Off", "Gradient", "Reset"};
}

void TestLedPageStart::words()
{
    QFETCH(int, language);
    QFETCH(QStringList, texts);
    LedPageWorld world;
    world.open();
    const auto shown = [&world] {
        return QStringList{world.radio("rdbSingleBreath")->text(),
                           world.radio("rdbSingleBright")->text(),
                           world.radio("rdbMultipleBreath")->text(),
                           world.radio("rdbMultipleBright")->text(),
                           world.page->findChild<QLabel *>(QStringLiteral("lblInterval"))->text(),
                           world.radio("rdbState")->text(),
                           world.radio("rdbSleep")->text(),
                           world.radio("rdbGradient")->text(),
                           world.reset()->toolTip()};
    };
    if (language == 0)
        QCOMPARE(shown(), texts); // the table that a page starts with
    Ovryn_LanguageTable table;
    table.setLanguage(1 - language);
    world.page->setLanguage(table.led, 1 - language);
    const QImage other = world.page->grab().toImage();
    table.setLanguage(language);
    world.page->setLanguage(table.led, language);
    QCOMPARE(shown(), texts);
    QVERIFY(world.reset()->text().isEmpty()); // icon only
    const QRect title(0, 0, LedPageWorld::kPageSize.width(), 39);
    QVERIFY(world.page->grab(title).toImage() != other.copy(title)); // the painted title changed too
}

void TestLedPageStart::geometry()
{
    LedPageWorld world;
    world.open();
    const LedPageLayout layout = ledPageLayoutFor(LedPageWorld::kPageSize);
    QCOMPARE(world.radio("rdbSingleBreath")->geometry(), layout.breath);
    QCOMPARE(world.radio("rdbMultipleBreath")->geometry(), layout.breath);
    QCOMPARE(world.radio("rdbSingleBright")->geometry(), layout.bright);
    QCOMPARE(world.radio("rdbMultipleBright")->geometry(), layout.bright);
    QCOMPARE(world.radio("rdbState")->geometry(), layout.state);
    QCOMPARE(world.radio("rdbSleep")->geometry(), layout.sleep);
    QCOMPARE(world.radio("rdbGradient")->geometry(), layout.gradient);
    QCOMPARE(world.spin()->geometry(), layout.interval);
    QCOMPARE(world.reset()->geometry(), layout.reset);
    for (int i = 0; i < 7; ++i) {
        QCOMPARE(world.preset(i)->geometry(), layout.presets[std::size_t(i)]);
        QCOMPARE(world.custom(i)->geometry(), layout.customs[std::size_t(i)]);
    }
    QCOMPARE(world.radio("rdbState")->font().pixelSize(), 16);
}

void TestLedPageStart::painting()
{
    LedPageWorld world;
    world.open();
    QImage image(LedPageWorld::kPageSize, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    world.page->render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
    QCOMPARE(image.pixelColor(5, 380).alpha(), 60);
    QVERIFY(std::abs(image.pixelColor(5, 5).alpha() - 106) <= 1); // 60 over 60
    QCOMPARE(image.pixelColor(380, 392).alpha(), 0);              // the cut corner
    QCOMPARE(image.pixelColor(5, 39).alpha(), 60);                // no rule under the title
    const QColor glass = image.pixelColor(5, 380);
    QVERIFY(std::abs(glass.red() - 252) < 3 && std::abs(glass.green() - 10) < 3 && std::abs(glass.blue() - 53) < 3);
}

QTEST_MAIN(TestLedPageStart)
#include "TestLedPageStart.moc"
