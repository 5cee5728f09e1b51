#include "app/MainDialogTest.h"
#include "board/Ovryn_LEDControlWidget.h"
#include "config/SampleConfig.h"
#include "monitor/Ovryn_NvCardInfoWidget.h"
#include "overclock/Ovryn_OverClockingWidget.h"

#include <QComboBox>

#include <functional>

using Look = std::function<QString(const OvrynDeck2 &)>;
Q_DECLARE_METATYPE(Look)

/// What the main dialog builds its pages from: the file's values, or their defaults where the file is another's.
class TestStoredSettings : public MainDialogTest
{
    Q_OBJECT

private slots:
    void foreignRootLeavesDefaults_data();
    void foreignRootLeavesDefaults();
};

namespace
{

QString chosen(const OvrynDeck2 &dialog, const char *comboBox)
{
    return dialog.findChild<QComboBox *>(QLatin1String(comboBox))->currentData().toString();
}

} // namespace

void TestStoredSettings::foreignRootLeavesDefaults_data()
{
    QTest::addColumn<Look>("look");
    QTest::addColumn<QString>("stored");    // what the file's value makes of it
    QTest::addColumn<QString>("byDefault"); // what stands where the root has another name

    QTest::newRow("words") << Look([](const OvrynDeck2 &dialog) { return button(dialog, "btnMonitor")->text(); })
                           << "Monitor" << QStringLiteral("监控窗口");
    QTest::newRow("settings page, language")
        << Look([](const OvrynDeck2 &dialog) { return chosen(dialog, "cmb_language"); }) << "lang_en"
        << "lang_ch";
    QTest::newRow("settings page, refresh time")
        << Look([](const OvrynDeck2 &dialog) { return chosen(dialog, "cmb_RefreshTime"); }) << "5"
        << "1";
    QTest::newRow("settings page, effects")
        << Look([](const OvrynDeck2 &dialog) { return chosen(dialog, "cmb_PageEffect"); }) << "advanced"
        << "normal";
    QTest::newRow("settings page, check interval")
        << Look([](const OvrynDeck2 &dialog) { return chosen(dialog, "cmb_UpdateFre"); }) << "30"
        << "7";
    QTest::newRow("monitor page") << Look([](const OvrynDeck2 &dialog) {
        int mask = -1;
        dialog.findChild<Ovryn_NvCardInfoWidget *>()->getSelectOption(&mask);
        return QString::number(mask);
    }) << "21"
                                  << "0";
    QTest::newRow("adjust page") << Look([](const OvrynDeck2 &dialog) {
        AdjustModuleInfo info;
        dialog.findChild<Ovryn_OverClockingWidget *>()->getParameter(info);
        return QString::number(info.FanMode);
    }) << "2"
                                 << "1"; // the card's own manual fan
    QTest::newRow("LED page") << Look([](const OvrynDeck2 &dialog) {
        LedModuleInfo info;
        dialog.findChild<Ovryn_LEDControlWidget *>()->getLedModuleInfo(info);
        return QString::number(info.Interval);
    }) << "9"
                              << "2";
}

void TestStoredSettings::foreignRootLeavesDefaults()
{
    QFETCH(Look, look);

    // The sample's card is this one, and its settings are to be applied.
    QByteArray own = kSampleConfig;
    own.replace("ApplyLastParamOnStart=\"0\"", "ApplyLastParamOnStart=\"1\"");
    own.replace("EnableHighPerformance=\"1\"", "EnableHighPerformance=\"0\"");
    own.replace("286094199", QByteArray::number(driver->card().subSystemId));
    {
        writeConfig(own);
        const OvrynDeck2 dialog;
        QTEST(look(dialog), "stored");
    }
    QByteArray foreign = own;
    foreign.replace("OvrynParameter", "OtherParameter");
    writeConfig(foreign);
    driver->forgetCalls();
    const OvrynDeck2 dialog;
    QTEST(look(dialog), "byDefault");
    QCOMPARE(driver->calls().filter(QStringLiteral("GPU_Set")), QStringList());
    QCOMPARE(savedText().toUtf8(), foreign);
}

QTEST_MAIN(TestStoredSettings)

#include "TestStoredSettings.moc"
