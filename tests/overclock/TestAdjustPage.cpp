#include "overclock/AdjustPageWorld.h"
#include "overclock/Ovryn_UserDefineFanSpeed.h"
#include "support/ConnectWarnings.h"
#include "support/ModalAnswer.h"

#include <QDialog>
#include <QtTest>

#include <functional>

using Arrange = std::function<void(AdjustPageWorld &)>;
Q_DECLARE_METATYPE(Arrange)

namespace
{

const QStringList kAllButtons{"btnApply", "btnCancel", "btnDefault"};
const QList<QPoint> kDefaultCurve{{0, 0}, {30, 20}, {50, 50}, {80, 90}, {100, 100}};
const QList<QPoint> kCurve{{0, 0}, {40, 40}, {100, 100}};

/// The eleven widgets of the rows' face.
QWidgetList rowFace(const AdjustPageWorld &world)
{
    QWidgetList widgets{world.linkBox()};
    for (int index = 0; index < AdjustRowCount; ++index)
        widgets << world.row(static_cast<AdjustRowIndex>(index));
    for (const char *name : {"btnFanAuto", "btnFanManual", "btnFanUserDefined", "btnUserDefineConfig"})
        widgets << world.button(name);
    return widgets;
}

Ovryn_UserDefineFanSpeed *editorOf(const AdjustPageWorld &world)
{
    return world.find<Ovryn_UserDefineFanSpeed>("fanCurveEditor");
}

void showsRows(const AdjustPageWorld &world)
{
    QVERIFY(!editorOf(world)->isVisible());
    for (const QWidget *widget : rowFace(world))
        QVERIFY2(widget->isVisible(), qPrintable(widget->objectName()));
}

void showsCurve(const AdjustPageWorld &world)
{
    QVERIFY(editorOf(world)->isVisible());
    for (const QWidget *widget : rowFace(world))
        QVERIFY2(!widget->isVisible(), qPrintable(widget->objectName()));
}

/// Takes the middle node out of the curve that the editor shows, by a double click.
void removeMiddleNode(const AdjustPageWorld &world)
{
    Ovryn_UserDefineFanSpeed *editor = editorOf(world);
    const FanCurvePlot plot = FanCurvePlot::forSize(editor->size());
    const QList<QPoint> points = editor->getPoints();
    QTest::mouseDClick(editor, Qt::LeftButton, Qt::NoModifier, plot.pixelOf(points.at(points.size() / 2)));
    QCOMPARE(editor->getPoints().size(), points.size() - 1);
}

AdjustModuleInfo savedCurve()
{
    AdjustModuleInfo saved;
    saved.Nodes = kCurve;
    return saved;
}

} // namespace

/// The page in the hands of the user: rows, buttons, the link of the two targets and the two faces.
class TestAdjustPage : public QObject
{
    Q_OBJECT

private slots:
    void connections();
    void whatIsEditable_data();
    void whatIsEditable();
    void fanThatCantBeControlled_data();
    void fanThatCantBeControlled();
    void link_data();
    void link();
    void linkToggle();
    void drag();
    void cancel();
    void cancelAsksTheLinkNothing();
    void curveFace();
    void cancelOnTheCurve();
    void defaultOnTheCurve();
    void hidingThePage();
    void hidingTheCurve();
    void backgroundClickEndsTheEdit();
    void returnKeyPressesNoButton();
    void unappliedChoicesAreNotSaved();
};

void TestAdjustPage::connections()
{
    ConnectWarnings warnings;
    AdjustPageWorld world;
    world.open();
    QCOMPARE(warnings.list(), QStringList());
}

void TestAdjustPage::whatIsEditable_data()
{
    QTest::addColumn<Arrange>("arrange");
    QTest::addColumn<QVector<int>>("disabledRows");

    const auto row = [](const char *name, const QVector<int> &disabled, const Arrange &arrange) {
        QTest::newRow(name) << arrange << disabled;
    };
    row("everything", {}, [](AdjustPageWorld &) {});
    row("no graphics offset", {RowGpuClock}, [](AdjustPageWorld &w) {
        w.editCard([](simulated::Card &card) { card.parameters.clocks.graphicsOffsetKHz.editable = false; });
    });
    row("no memory offset", {RowMemoryClock}, [](AdjustPageWorld &w) {
        w.editCard([](simulated::Card &card) { card.parameters.clocks.memoryOffsetKHz.editable = false; });
    });
    row("no voltage", {RowVoltage}, [](AdjustPageWorld &w) {
        w.editCard([](simulated::Card &card) { card.parameters.voltage.offset_uV.editable = false; });
    });
    row("no power policy", {RowPower},
        [](AdjustPageWorld &w) { w.editCard([](simulated::Card &card) { card.parameters.power.present = false; }); });
    row("no thermal policy", {RowTemperature}, [](AdjustPageWorld &w) {
        w.editCard([](simulated::Card &card) { card.parameters.thermal.policyPresent = false; });
    });
    row("fan by the driver", {RowFan}, [](AdjustPageWorld &w) {
        w.editCard([](simulated::Card &card) { card.settings.coolers[0].policy = kCoolerPolicyDefault; });
    });
}

void TestAdjustPage::whatIsEditable()
{
    QFETCH(Arrange, arrange);
    QFETCH(QVector<int>, disabledRows);
    AdjustPageWorld world;
    arrange(world);
    world.open();
    for (int index = 0; index < AdjustRowCount; ++index)
        QCOMPARE(world.row(static_cast<AdjustRowIndex>(index))->isEnabled(), !disabledRows.contains(index));
}

void TestAdjustPage::fanThatCantBeControlled_data()
{
    QTest::addColumn<int>("fanMode");

    QTest::newRow("auto") << 0;
    QTest::newRow("manual") << 1;
    QTest::newRow("user-defined") << 2;
}

void TestAdjustPage::fanThatCantBeControlled()
{
    QFETCH(int, fanMode);
    AdjustModuleInfo saved;
    saved.FanMode = fanMode;
    AdjustPageWorld world;
    world.editCard(
        [](simulated::Card &card) { card.parameters.fan.minimumPercent = card.parameters.fan.maximumPercent = 40; });
    world.open(saved);
    QCOMPARE(world.fanMode(), QString("AUT"));
    QVERIFY(!world.row(RowFan)->isEnabled());
    for (const char *name : {"btnFanAuto", "btnFanManual", "btnFanUserDefined"})
        QVERIFY2(!world.button(name)->isEnabled(), name);
    QCOMPARE(world.parameters().FanMode, fanMode);
}

void TestAdjustPage::link_data()
{
    QTest::addColumn<bool>("linked");
    QTest::addColumn<Arrange>("move");
    QTest::addColumn<int>("power");
    QTest::addColumn<int>("temperature");

    // The card: 50, 100, 120 percent and 60, 83, 90 degrees; at 110 percent and 80 degrees.
    const auto row = [](const char *name, bool linked, int power, int temperature, const Arrange &move) {
        QTest::newRow(name) << linked << move << power << temperature;
    };
    row("power to its default", true, 100, 83, [](AdjustPageWorld &w) { w.type(RowPower, 100); });
    row("power to its maximum", true, 120, 90, [](AdjustPageWorld &w) { w.type(RowPower, 120); });
    row("power to its minimum", true, 50, 60, [](AdjustPageWorld &w) { w.type(RowPower, 50); });
    row("power above its default, fraction dropped", true, 105, 84,
        [](AdjustPageWorld &w) { w.type(RowPower, 105); });
    row("power below its default, fraction dropped", true, 75, 71, [](AdjustPageWorld &w) { w.type(RowPower, 75); });
    row("temperature on the power's high side", true, 114, 88,
        [](AdjustPageWorld &w) { w.type(RowTemperature, 88); });
    row("temperature below its default leaves power on its side", true, 62, 70, [](AdjustPageWorld &w) {
        w.type(RowPower, 101);
        w.type(RowTemperature, 70); // 100 - 13 / 7 * 20
    });
    row("temperature above its default leaves power on its side", true, 115, 90, [](AdjustPageWorld &w) {
        w.type(RowPower, 99);
        w.type(RowTemperature, 90); // 100 + 7 / 23 * 50
    });
    row("another row leaves both", true, 110, 86, [](AdjustPageWorld &w) { w.type(RowGpuClock, 1700); });
    row("unlinked power", false, 120, 80, [](AdjustPageWorld &w) { w.type(RowPower, 120); });
    row("unlinked temperature", false, 110, 88, [](AdjustPageWorld &w) { w.type(RowTemperature, 88); });
    row("power outside the policy's range", true, 55, 83, [](AdjustPageWorld &w) {
        w.type(RowPower, 100);
        w.editCard(
            [](simulated::Card &card) { card.parameters.power.minimum = 60000; }); // the row still goes down to 50
        w.type(RowPower, 55);
    });
    row("thermal policy gone", true, 120, 86, [](AdjustPageWorld &w) {
        w.driver.fails(Operation::NvAPI_GPU_ClientThermalPoliciesGetInfo, NVAPI_ERROR);
        w.type(RowPower, 120);
    });
    row("power policy gone", true, 110, 88, [](AdjustPageWorld &w) {
        w.driver.fails(Operation::NvAPI_GPU_ClientPowerPoliciesGetInfo, NVAPI_ERROR);
        w.type(RowTemperature, 88);
    });
}

void TestAdjustPage::link()
{
    QFETCH(bool, linked);
    QFETCH(Arrange, move);
    AdjustPageWorld world;
    world.open();
    if (linked)
        world.clickLink();
    world.driver.forgetCalls();
    move(world);
    QTEST(world.row(RowPower)->value(), "power");
    QTEST(world.row(RowTemperature)->value(), "temperature");
    QCOMPARE(world.visibleButtons(), kAllButtons);
    QCOMPARE(world.orders(), QStringList());
}

void TestAdjustPage::linkToggle()
{
    AdjustPageWorld world;
    world.open();
    world.clickLink();
    QVERIFY(world.linkBox()->isChecked());
    QCOMPARE(world.row(RowTemperature)->value(), 86); // where 110 percent pulls it
    QCOMPARE(world.visibleButtons(), kAllButtons);

    world.page->hide();
    world.page->show();
    world.linkBox()->blockSignals(true); // linked, with a temperature that the link would change
    world.linkBox()->setChecked(true);
    world.linkBox()->blockSignals(false);
    QCOMPARE(world.visibleButtons(), QStringList{"btnDefault"});
    world.clickLink();
    QVERIFY(!world.linkBox()->isChecked());
    QCOMPARE(world.rowValues(), kStockRows);
    QCOMPARE(world.visibleButtons(), kAllButtons);
}

void TestAdjustPage::drag()
{
    AdjustPageWorld world;
    world.open();
    QSignalSpy changed(world.page.get(), SIGNAL(adjustChanged(QString, QString, int)));
    QSignalSpy closed(world.page.get(), SIGNAL(closeDisplayAdjustInfo()));
    const QVector<QPair<int, int>> drags = {{RowGpuClock, 1700},    {RowFan, 30},    {RowVoltage, 1000},
                                            {RowMemoryClock, 4200}, {RowPower, 120}, {RowTemperature, 60}};
    const QVector<int> baselines = kStockRows;
    for (const auto &step : drags) {
        QSlider *slider = world.slider(static_cast<AdjustRowIndex>(step.first));
        changed.clear();
        closed.clear();
        slider->setSliderDown(true);
        slider->setSliderPosition(step.second);
        const int baseline = baselines.at(step.first);
        QCOMPARE(changed.size(), 1);
        QCOMPARE(changed.at(0),
                 (QVariantList{QString::number(baseline), QString::number(step.second), step.second - baseline}));
        QCOMPARE(closed.size(), 0);
        slider->setSliderDown(false);
        QCOMPARE(closed.size(), 1);
    }
    // A second drag starts from what is in force, not from where the first one ended.
    QSlider *slider = world.slider(RowGpuClock);
    changed.clear();
    slider->setSliderDown(true);
    slider->setSliderPosition(1600);
    QCOMPARE(changed.at(0), (QVariantList{"1607", "1600", -7}));
    slider->setSliderDown(false);

    Ovryn_SliderWidget foreign;
    world.page->onSliderMoved(&foreign, 5);
    QCOMPARE(changed.size(), 1);
}

void TestAdjustPage::cancel()
{
    AdjustPageWorld world;
    world.open();
    world.clickLink();
    world.type(RowGpuClock, 1800);
    world.click("btnFanUserDefined");
    world.driver.forgetCalls();
    world.click("btnCancel");
    QCOMPARE(world.rowValues(), kStockRows);
    QVERIFY(!world.linkBox()->isChecked());
    QCOMPARE(world.fanMode(), QString("MAN"));
    QVERIFY(world.row(RowFan)->isEnabled());
    QCOMPARE(world.visibleButtons(), QStringList{"btnDefault"});
    QCOMPARE(world.driver.calls(), QStringList());
}

void TestAdjustPage::cancelAsksTheLinkNothing()
{
    AdjustModuleInfo saved;
    saved.LinkOfPowerWithTemperature = true;
    AdjustPageWorld world;
    world.open(saved);
    world.clickLink();
    QVERIFY(!world.linkBox()->isChecked());
    world.driver.forgetCalls();
    world.click("btnCancel");
    QVERIFY(world.linkBox()->isChecked());
    QCOMPARE(world.row(RowTemperature)->value(), 80); // the card's, not the link's 86
    QCOMPARE(world.driver.calls(), QStringList());
}

void TestAdjustPage::curveFace()
{
    AdjustPageWorld world;
    world.open(savedCurve());
    showsRows(world);
    QCOMPARE(world.visibleButtons(), QStringList{"btnDefault"});
    world.type(RowGpuClock, 1800);

    world.click("btnUserDefineConfig");
    showsCurve(world);
    QCOMPARE(world.visibleButtons(), kAllButtons);
    QCOMPARE(editorOf(world)->getPoints(), kCurve);

    removeMiddleNode(world);
    ModalAnswer answers({"msgBoxNoBtn", "msgBoxYesBtn"});
    world.click("btnApply");
    showsCurve(world);
    QCOMPARE(world.parameters().Nodes, kCurve);

    world.click("btnApply");
    showsRows(world);
    QCOMPARE(world.parameters().Nodes, (QList<QPoint>{{0, 0}, {100, 100}}));
    QCOMPARE(world.visibleButtons(), QStringList());
    QCOMPARE(world.rowValues().at(RowGpuClock), 1607); // the rows' edits are dropped by the change of faces
    QCOMPARE(answers.problems(), QStringList());
}

void TestAdjustPage::cancelOnTheCurve()
{
    AdjustPageWorld world;
    world.open(savedCurve());
    world.click("btnUserDefineConfig");
    removeMiddleNode(world);
    world.click("btnCancel");
    showsRows(world);
    QCOMPARE(world.visibleButtons(), QStringList{"btnDefault"});
    QCOMPARE(world.parameters().Nodes, kCurve);
    world.click("btnUserDefineConfig");
    QCOMPARE(editorOf(world)->getPoints(), kCurve);
}

void TestAdjustPage::defaultOnTheCurve()
{
    AdjustPageWorld world;
    world.open(savedCurve());
    world.click("btnUserDefineConfig");
    world.driver.forgetCalls();
    world.click("btnDefault");
    QCOMPARE(editorOf(world)->getPoints(), kDefaultCurve);
    showsCurve(world);
    QCOMPARE(world.visibleButtons(), kAllButtons);
    QCOMPARE(world.parameters().Nodes, kCurve);
    QCOMPARE(world.driver.calls(), QStringList());
}

void TestAdjustPage::hidingThePage()
{
    AdjustPageWorld world;
    world.open();
    world.clickLink();
    world.type(RowMemoryClock, 4300);
    world.click("btnFanAuto");
    world.page->hide();
    world.page->show();
    QCOMPARE(world.rowValues(), kStockRows);
    QVERIFY(!world.linkBox()->isChecked());
    QCOMPARE(world.fanMode(), QString("MAN"));
    QCOMPARE(world.visibleButtons(), QStringList{"btnDefault"});
}

void TestAdjustPage::hidingTheCurve()
{
    AdjustPageWorld world;
    world.open(savedCurve());
    world.click("btnUserDefineConfig");
    removeMiddleNode(world);
    world.page->hide();
    world.page->show();
    showsCurve(world);
    QCOMPARE(editorOf(world)->getPoints(), kCurve);
    QCOMPARE(world.visibleButtons(), kAllButtons);
}

void TestAdjustPage::backgroundClickEndsTheEdit()
{
    AdjustPageWorld world;
    world.open();
    ModifySpinBox *box = world.numberBox(RowGpuClock);
    box->setFocus();
    box->selectAll();
    QTest::keyClicks(box, "1700");
    QCOMPARE(world.row(RowGpuClock)->value(), 1607);
    QTest::mouseClick(world.page.get(), Qt::LeftButton, Qt::NoModifier, QPoint(30, 385));
    QVERIFY(world.page->hasFocus());
    QCOMPARE(world.row(RowGpuClock)->value(), 1700);
    QCOMPARE(world.visibleButtons(), kAllButtons);
}

void TestAdjustPage::returnKeyPressesNoButton()
{
    QDialog dialog;
    AdjustPageWorld world;
    world.open();
    world.page->setParent(&dialog);
    world.page->show();
    dialog.show();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    world.page->onSliderChanged(world.row(RowGpuClock)); // shows Apply
    world.driver.forgetCalls();
    ModalAnswer answers({});
    for (const char *name : {"btnApply", "btnCancel", "btnDefault"}) {
        QVERIFY2(world.button(name)->isVisible(), name);
        QVERIFY2(!world.button(name)->isDefault(), name);
    }
    ModifySpinBox *box = world.numberBox(RowGpuClock);
    box->setFocus();
    QTest::keyClick(box, Qt::Key_Return);
    QCOMPARE(answers.texts(), QStringList());
    QCOMPARE(world.orders(), QStringList());
    QCOMPARE(world.visibleButtons(), kAllButtons);
    world.page->setParent(nullptr);
}

void TestAdjustPage::unappliedChoicesAreNotSaved()
{
    AdjustPageWorld world;
    world.open();
    world.clickLink();
    world.click("btnFanUserDefined");
    for (int index = 0; index < AdjustRowCount; ++index)
        world.type(static_cast<AdjustRowIndex>(index), 1);
    const AdjustModuleInfo out = world.parameters();
    QCOMPARE(QVector<int>(
                 {out.GpuFreClock, out.FanSpeedLevel, out.Voltage, out.MemoryFreClock, out.Power, out.Temperature}),
             kStockRows);
    QCOMPARE(out.FanMode, 1);
    QCOMPARE(out.Nodes, QList<QPoint>());
    QVERIFY(!out.LinkOfPowerWithTemperature);
    QVERIFY(!out.EnableHighPerformance);
}

QTEST_MAIN(TestAdjustPage)
#include "TestAdjustPage.moc"
