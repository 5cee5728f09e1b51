#include "app/MainDialogTest.h"
#include "board/led/Ovryn_LEDControlWidget.h"
#include "config/SampleConfig.h"
#include "monitor/graphs/Ovryn_NvCardInfoWidget.h"
#include "overclock/Ovryn_OverClockingWidget.h"

#include <QComboBox>

#include <iterator>

/// The values that the main dialog gives to its pages: the file's, or the defaults where the file has another root.
class TestMainDialogStoredSettings : public MainDialogTest
{
    Q_OBJECT

private slots:
    void foreignRootLeavesDefaults_data();
    void foreignRootLeavesDefaults();

private:
    void buildBothDialogs();

    QStringList stored;    ///< expected with the program's root element
    QStringList byDefault; ///< with a root of another name
    QStringList writes;    ///< the orders to the card in the first case
    QByteArray foreignFile;
    QByteArray foreignFileAfter;
};

namespace
{

QString chosen(const OvrynDeck2 &dialog, const char *comboBox)
{
    return dialog.findChild<QComboBox *>(QLatin1String(comboBox))->currentData().toString();
}

struct Look
{
    const char *what;
    QString (*at)(const OvrynDeck2 &dialog);
    const char *stored;
    const char *byDefault;
};

// clang-format off
const Look kLooks[] = {
    { "words", [](const OvrynDeck2 &dialog) {
          return dialog.findChild<QPushButton *>(QStringLiteral("btnMonitor"))->text();
      },
      "Monitor", "监控窗口" },
    { "settings page, language", [](const OvrynDeck2 &dialog) { return chosen(dialog, "cmb_language"); },
      "lang_en", "lang_ch" },
    { "settings page, refresh time", [](const OvrynDeck2 &dialog) { return chosen(dialog, "cmb_RefreshTime"); },
      "5", "1" },
    { "settings page, effects", [](const OvrynDeck2 &dialog) { return chosen(dialog, "cmb_PageEffect"); },
      "advanced", "normal" },
    { "settings page, check interval", [](const OvrynDeck2 &dialog) { return chosen(dialog, "cmb_UpdateFre"); },
      "30", "7" },
    { "monitor page", [](const OvrynDeck2 &dialog) {
          int mask = -1;
          dialog.findChild<Ovryn_NvCardInfoWidget *>()->getSelectOption(&mask);
          return QString::number(mask);
      },
      "21", "0" },
    { "adjust page", [](const OvrynDeck2 &dialog) {
          AdjustModuleInfo info;
          dialog.findChild<Ovryn_OverClockingWidget *>()->getParameter(info);
          return QString::number(info.FanMode);
      },
      "2", "1" }, // the card's own manual fan
    { "LED page", [](const OvrynDeck2 &dialog) {
          LedModuleInfo info;
          dialog.findChild<Ovryn_LEDControlWidget *>()->getLedModuleInfo(info);
          return QString::number(info.Interval);
      },
      "9", "2" },
};
// clang-format on

} // namespace

void TestMainDialogStoredSettings::foreignRootLeavesDefaults_data()
{
    QTest::addColumn<int>("row");
    for (int row = 0; row < int(std::size(kLooks)); ++row)
        QTest::newRow(kLooks[row].what) << row;
}

/// Once for all rows, because a dialog's start and end take long.
void TestMainDialogStoredSettings::buildBothDialogs()
{
    // The sample gets the name of the stand-in's card, and its settings are applied.
    QByteArray own = kSampleConfig;
    own.replace("ApplyLastParamOnStart=\"0\"", "ApplyLastParamOnStart=\"1\"");
    own.replace("EnableHighPerformance=\"1\"", "EnableHighPerformance=\"0\"");
    own.replace("286094199", QByteArray::number(driver->card().subSystemId));
    foreignFile = own;
    foreignFile.replace("OvrynParameter", "OtherParameter");
    {
        writeConfig(own);
        const OvrynDeck2 dialog;
        for (const Look &look : kLooks)
            stored << look.at(dialog);
    }
    writeConfig(foreignFile);
    driver->forgetCalls();
    const OvrynDeck2 dialog;
    for (const Look &look : kLooks)
        byDefault << look.at(dialog);
    writes = driver->orders();
    foreignFileAfter = savedText().toUtf8();
}

void TestMainDialogStoredSettings::foreignRootLeavesDefaults()
{
    QFETCH(int, row);

    if (stored.isEmpty())
        buildBothDialogs();
    QCOMPARE(stored.at(row), QString::fromUtf8(kLooks[row].stored));
    QCOMPARE(byDefault.at(row), QString::fromUtf8(kLooks[row].byDefault));
    QCOMPARE(writes, QStringList());
    QCOMPARE(foreignFileAfter, foreignFile);
}

QTEST_MAIN(TestMainDialogStoredSettings)

#include "TestMainDialogStoredSettings.moc"
