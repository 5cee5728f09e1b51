#include "ui/Ovryn_SettingWidget.h"

#include <QCheckBox>
#include <QComboBox>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QTest>

namespace
{

QComboBox *combo(const QWidget &page, const char *name)
{
    return page.findChild<QComboBox *>(QLatin1String(name));
}

GeneralSettingInfo generalOf(Ovryn_SettingWidget &page)
{
    GeneralSettingInfo info;
    page.getGeneralSetting(info);
    return info;
}

UpdateSettingInfo updateOf(Ovryn_SettingWidget &page)
{
    UpdateSettingInfo info;
    page.getUpdateSetting(info);
    return info;
}

/// How often the four signals came.
struct Heard
{
    explicit Heard(Ovryn_SettingWidget *page)
        : detect(page, SIGNAL(dectectUpdate())),
          language(page, SIGNAL(_languageChanged())),
          effect(page, SIGNAL(_pageEffectChanged())),
          refresh(page, SIGNAL(_refreshTimeChanged()))
    {
    }
    QList<int> counts() const { return {detect.count(), language.count(), effect.count(), refresh.count()}; }

    QSignalSpy detect;
    QSignalSpy language;
    QSignalSpy effect;
    QSignalSpy refresh;
};

} // namespace

/// The settings page and its two records: what it shows, returns and signals at once.
class TestSettingWidget : public QObject
{
    Q_OBJECT

private slots:
    void listData_data();
    void listData();
    void checkBoxes_data();
    void checkBoxes();
    void languageValue_data();
    void languageValue();
    void effectValue_data();
    void effectValue();
    void refreshValue_data();
    void refreshValue();
    void noMatchKeepsTheSelection();
    void intervalValue_data();
    void intervalValue();
    void modeValue_data();
    void modeValue();
    void updateStatusPassesThrough_data();
    void updateStatusPassesThrough();
    void choicesRaiseOneSignalEach_data();
    void choicesRaiseOneSignalEach();
    void detectButton();
    void quietControls();
    void languageChangeKeepsSelectionsAndIsQuiet_data();
    void languageChangeKeepsSelectionsAndIsQuiet();
};

void TestSettingWidget::listData_data()
{
    QTest::addColumn<QVariantList>("values");
    QTest::newRow("cmb_language") << QVariantList{"lang_ch", "lang_en"};
    QTest::newRow("cmb_PageEffect") << QVariantList{"normal", "advanced"};
    QTest::newRow("cmb_RefreshTime") << QVariantList{1, 3, 5, 10};
    QTest::newRow("cmb_UpdateFre") << QVariantList{10000, 7, 30, 90};
}

void TestSettingWidget::listData()
{
    Ovryn_SettingWidget page;
    const QComboBox *box = combo(page, QTest::currentDataTag());
    QCOMPARE(box->currentIndex(), 0);
    QVariantList found;
    for (int i = 0; i < box->count(); ++i)
        found.append(box->itemData(i, Qt::UserRole));
    QTEST(found, "values");
}

void TestSettingWidget::checkBoxes_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("boot");
    QTest::addColumn<bool>("minimize");
    QTest::addColumn<bool>("apply");
    QTest::newRow("StartOnBoot") << "ckb_StartOnBoot" << true << false << false;
    QTest::newRow("MinimizeOnStart") << "ckb_MinimizeOnStart" << false << true << false;
    QTest::newRow("ApplyLastParamOnStart") << "ckb_ApplyLastSettingOnStart" << false << false << true;
}

void TestSettingWidget::checkBoxes()
{
    QFETCH(QString, name);
    QFETCH(bool, boot);
    QFETCH(bool, minimize);
    QFETCH(bool, apply);
    Ovryn_SettingWidget page;
    GeneralSettingInfo info;
    info.StartOnBoot = boot;
    info.MinimizeOnStart = minimize;
    info.ApplyLastParamOnStart = apply;
    page.setGeneralSetting(info);
    for (const QCheckBox *box : page.findChildren<QCheckBox *>())
        QCOMPARE(box->isChecked(), box->objectName() == name);

    page.findChild<QCheckBox *>(name)->click();
    info = generalOf(page);
    QVERIFY(!info.StartOnBoot && !info.MinimizeOnStart && !info.ApplyLastParamOnStart);
}

void TestSettingWidget::languageValue_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("readBack");
    QTest::newRow("Chinese") << "lang_ch" << 0 << "lang_ch";
    QTest::newRow("English") << "lang_en" << 1 << "lang_en";
    QTest::newRow("unknown: first item") << "lang_fr" << 0 << "lang_ch";
    QTest::newRow("other case: first item") << "LANG_EN" << 0 << "lang_ch";
    QTest::newRow("empty: first item") << "" << 0 << "lang_ch";
}

void TestSettingWidget::languageValue()
{
    QFETCH(QString, stored);
    Ovryn_SettingWidget page;
    GeneralSettingInfo info;
    info.Language = stored;
    page.setGeneralSetting(info);
    QTEST(combo(page, "cmb_language")->currentIndex(), "index");
    QTEST(generalOf(page).Language, "readBack");
}

void TestSettingWidget::effectValue_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("readBack");
    QTest::newRow("normal") << "normal"
                            << "normal";
    QTest::newRow("advanced") << "advanced"
                              << "advanced";
    QTest::newRow("unknown: first item") << "fancy"
                                         << "normal";
}

void TestSettingWidget::effectValue()
{
    QFETCH(QString, stored);
    Ovryn_SettingWidget page;
    GeneralSettingInfo info;
    info.PageEffects = stored;
    page.setGeneralSetting(info);
    QTEST(generalOf(page).PageEffects, "readBack");
}

void TestSettingWidget::refreshValue_data()
{
    QTest::addColumn<int>("stored");
    QTest::addColumn<int>("readBack");
    QTest::newRow("1") << 1 << 1;
    QTest::newRow("3") << 3 << 3;
    QTest::newRow("5") << 5 << 5;
    QTest::newRow("10") << 10 << 10;
    QTest::newRow("2 is in no item and gives 1") << 2 << 1;
    QTest::newRow("0 gives 1") << 0 << 1;
    QTest::newRow("-1 gives 1") << -1 << 1;
}

void TestSettingWidget::refreshValue()
{
    QFETCH(int, stored);
    Ovryn_SettingWidget page;
    GeneralSettingInfo info;
    info.RefreshTimeOfMonitor = stored;
    page.setGeneralSetting(info);
    QTEST(generalOf(page).RefreshTimeOfMonitor, "readBack");
}

void TestSettingWidget::noMatchKeepsTheSelection()
{
    Ovryn_SettingWidget page;
    GeneralSettingInfo info;
    info.RefreshTimeOfMonitor = 5;
    page.setGeneralSetting(info);
    info.RefreshTimeOfMonitor = 2;
    page.setGeneralSetting(info);
    QCOMPARE(generalOf(page).RefreshTimeOfMonitor, 5);
}

void TestSettingWidget::intervalValue_data()
{
    QTest::addColumn<int>("stored");
    QTest::addColumn<int>("readBack");
    QTest::newRow("never") << 10000 << 10000;
    QTest::newRow("a week") << 7 << 7;
    QTest::newRow("a month") << 30 << 30;
    QTest::newRow("three months") << 90 << 90;
    QTest::newRow("14 is in no item and gives never") << 14 << 10000;
}

void TestSettingWidget::intervalValue()
{
    QFETCH(int, stored);
    Ovryn_SettingWidget page;
    UpdateSettingInfo info;
    info.CheckInterval = stored;
    page.setUpdateSetting(info);
    QTEST(updateOf(page).CheckInterval, "readBack");
}

void TestSettingWidget::modeValue_data()
{
    QTest::addColumn<int>("stored");
    QTest::addColumn<bool>("install");
    QTest::addColumn<int>("readBack");
    QTest::newRow("install") << 0 << true << 0;
    QTest::newRow("1 is shown as notify and read back as 2") << 1 << false << 2;
    QTest::newRow("notify") << 2 << false << 2;
    QTest::newRow("anything else notifies") << -5 << false << 2;
}

void TestSettingWidget::modeValue()
{
    QFETCH(int, stored);
    QFETCH(bool, install);
    Ovryn_SettingWidget page;
    UpdateSettingInfo info;
    info.UpdateMode = stored;
    page.setUpdateSetting(info);
    QCOMPARE(page.findChild<QRadioButton *>("rdb_AutomaticDownloadAndInstall")->isChecked(), install);
    QCOMPARE(page.findChild<QRadioButton *>("rdb_TellMeButDoNotDownload")->isChecked(), !install);
    QTEST(updateOf(page).UpdateMode, "readBack");
}

void TestSettingWidget::updateStatusPassesThrough_data()
{
    QTest::addColumn<int>("status");
    QTest::newRow("0") << 0;
    QTest::newRow("1") << 1;
    QTest::newRow("-7") << -7;
}

void TestSettingWidget::updateStatusPassesThrough()
{
    QFETCH(int, status);
    Ovryn_SettingWidget page;
    UpdateSettingInfo info;
    info.UpdateStatus = status;
    page.setUpdateSetting(info);
    QCOMPARE(updateOf(page).UpdateStatus, status);
}

void TestSettingWidget::choicesRaiseOneSignalEach_data()
{
    QTest::addColumn<QList<int>>("counts"); // detect, language, effect, refresh
    QTest::newRow("cmb_language") << QList<int>{0, 1, 0, 0};
    QTest::newRow("cmb_PageEffect") << QList<int>{0, 0, 1, 0};
    QTest::newRow("cmb_RefreshTime") << QList<int>{0, 0, 0, 1};
    QTest::newRow("cmb_UpdateFre") << QList<int>{0, 0, 0, 0};
}

void TestSettingWidget::choicesRaiseOneSignalEach()
{
    Ovryn_SettingWidget page;
    Heard heard(&page);
    QComboBox *box = combo(page, QTest::currentDataTag());
    page.show();
    QTest::keyClick(box, Qt::Key_Down);
    QCOMPARE(box->currentIndex(), 1);
    QTEST(heard.counts(), "counts");
}

void TestSettingWidget::detectButton()
{
    Ovryn_SettingWidget page;
    page.show();
    Heard heard(&page);
    QTest::mouseClick(page.findChild<QPushButton *>("btnDetectUpdate"), Qt::LeftButton);
    QCOMPARE(heard.counts(), (QList<int>{1, 0, 0, 0}));
}

void TestSettingWidget::quietControls()
{
    Ovryn_SettingWidget page;
    Heard heard(&page);
    for (QCheckBox *box : page.findChildren<QCheckBox *>())
        box->click();
    for (QRadioButton *button : page.findChildren<QRadioButton *>())
        button->click();
    QCOMPARE(heard.counts(), (QList<int>{0, 0, 0, 0}));
}

void TestSettingWidget::languageChangeKeepsSelectionsAndIsQuiet_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("to English") << 1;
    QTest::newRow("to Chinese again") << 0;
}

void TestSettingWidget::languageChangeKeepsSelectionsAndIsQuiet()
{
    QFETCH(int, number);
    Ovryn_SettingWidget page;
    GeneralSettingInfo general;
    general.Language = QStringLiteral("lang_en");
    general.PageEffects = QStringLiteral("advanced");
    general.RefreshTimeOfMonitor = 10;
    page.setGeneralSetting(general);
    UpdateSettingInfo update;
    update.CheckInterval = 30;
    page.setUpdateSetting(update);

    Heard heard(&page);
    Ovryn_LanguageTable table;
    table.setLanguage(number);
    page.setLanguage(table.setting, number);
    QCOMPARE(heard.counts(), (QList<int>{0, 0, 0, 0}));
    QCOMPARE(combo(page, "cmb_PageEffect")->currentText(), table.setting.advanced);
    QCOMPARE(combo(page, "cmb_UpdateFre")->currentText(), table.setting.oneMonth);
    const GeneralSettingInfo after = generalOf(page);
    QCOMPARE(after.Language, general.Language);
    QCOMPARE(after.PageEffects, general.PageEffects);
    QCOMPARE(after.RefreshTimeOfMonitor, 10);
    QCOMPARE(updateOf(page).CheckInterval, 30);
}

QTEST_MAIN(TestSettingWidget)
#include "TestSettingWidget.moc"
