#include "app/MainDialogTest.h"
#include "board/led/Ovryn_LEDControlWidget.h"
#include "config/SampleConfig.h"
#include "monitor/graphs/Ovryn_NvCardInfoWidget.h"
#include "overclock/Ovryn_OverClockingWidget.h"

#include <QComboBox>

#include <iterator>

/// What the main dialog builds its pages from: the file's values, or their defaults where the file is another's.
class TestStoredSettings : public MainDialogTest
{
    Q_OBJECT

private slots:
    void foreignRootLeavesDefaults_data();
    void foreignRootLeavesDefaults();

private:
    void buildBothDialogs();

    QStringList stored;    ///< what each row sees with the file's own root
    QStringList byDefault; ///< with a root of another name
    QStringList writes;    ///< what the card was told then
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

void TestStoredSettings::foreignRootLeavesDefaults_data()
{
    QTest::addColumn<int>("row");
    for (int row = 0; row < int(std::size(kLooks)); ++row)
        QTest::newRow(kLooks[row].what) << row;
}

/// Once for all rows, since a dialog takes its time to come and to go.
void TestStoredSettings::buildBothDialogs()
{
    // The sample's card is the stand-in's, and its settings are to be applied.
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

void TestStoredSettings::foreignRootLeavesDefaults()
{
    QFETCH(int, row);

    if (stored.isEmpty())
        buildBothDialogs();
    QCOMPARE(stored.at(row), QString::fromUtf8(kLooks[row].stored));
    QCOMPARE(byDefault.at(row), QString::fromUtf8(kLooks[row].byDefault));
    QCOMPARE(writes, QStringList());
    QCOMPARE(foreignFileAfter, foreignFile);
}

QTEST_MAIN(TestStoredSettings)

#include "TestStoredSettings.moc"
