#include "support/ConnectWarnings.h"
#include "support/ModalAnswer.h"
#include "ui/Fonts.h"
#include "ui/NoFocusFrameDelegate.h"
#include "ui/Ovryn_SettingWidget.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QImage>
#include <QLabel>
#include <QLayout>
#include <QListView>
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

QString textOf(const QWidget &page, const QString &name)
{
    if (const auto *label = page.findChild<QLabel *>(name))
        return label->text();
    if (const auto *button = page.findChild<QAbstractButton *>(name))
        return button->text();
    return QStringLiteral("no such control");
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

class TestSettingWidget : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void captions_data();
    void captions();
    void listTexts_data();
    void listTexts();
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
    void shortListsKeepTheirTexts();
    void logOpensInTheLanguage_data();
    void logOpensInTheLanguage();
    void objectNames_data();
    void objectNames();
    void listViews();
    void styleRules_data();
    void styleRules();
    void nothingIsClipped_data();
    void nothingIsClipped();
    void picture();
    void connectionsHold();
};

void TestSettingWidget::initTestCase()
{
    substituteFontFamilies();
    registerApplicationFonts();
}

void TestSettingWidget::captions_data()
{
    QTest::addColumn<QString>("english");
    QTest::addColumn<QString>("chinese");
    QTest::newRow("lbl_Setting") << "Settings"
                                 << "设置选项";
    QTest::newRow("lbl_Boot") << "Startup"
                              << "软件启动";
    QTest::newRow("ckb_StartOnBoot") << "Automatically start OvrynDeck II when I log on to windows"
                                     << "开机自启动软件";
    QTest::newRow("ckb_MinimizeOnStart") << "Minimize OvrynDeck II when it starts"
                                         << "启动后自动最小化";
    QTest::newRow("ckb_ApplyLastSettingOnStart") << "Apply last settings each time OvrynDeck II starts"
                                                 << "启动自动应用上次配置";
    QTest::newRow("lbl_PageEffect") << "Effects"
                                    << "界面效果";
    QTest::newRow("lbl_Language") << "Language"
                                  << "语言";
    QTest::newRow("lbl_Monitor") << "Monitor setting"
                                 << "监控窗体";
    QTest::newRow("lbl_RefreshTime") << "Refresh frequency"
                                     << "刷新频率";
    QTest::newRow("lbl_UpdateInOnline") << "Live update"
                                        << "在线更新";
    QTest::newRow("lbl_UpdateFre") << "Update check frequency"
                                   << "软件检测更新频率";
    QTest::newRow("rdb_AutomaticDownloadAndInstall") << "Download updates and install them"
                                                     << "自动下载更新并安装";
    QTest::newRow("rdb_TellMeButDoNotDownload") << "Notify me but not download automatically "
                                                << "通知我但不自动下载";
    QTest::newRow("btnDetectUpdate") << "Detection Update"
                                     << "检测更新";
    QTest::newRow("btnUpdateLog") << "History"
                                  << "更新日志";
}

void TestSettingWidget::captions()
{
    const QString name = QString::fromLatin1(QTest::currentDataTag());
    Ovryn_SettingWidget page;
    Ovryn_LanguageTable table;
    QTEST(textOf(page, name), "chinese"); // what it starts with
    table.setLanguage(kLanguageEnglish);
    page.setLanguage(table.setting, table.language());
    QTEST(textOf(page, name), "english");
    table.setLanguage(kLanguageChinese);
    page.setLanguage(table.setting, table.language());
    QTEST(textOf(page, name), "chinese");
}

void TestSettingWidget::listTexts_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("language");
    QTest::addColumn<QStringList>("texts");
    QTest::newRow("effects, English") << "cmb_PageEffect" << 1 << QStringList{"Normal", "Advanced"};
    QTest::newRow("effects, Chinese") << "cmb_PageEffect" << 0 << QStringList{"普通", "高级"};
    QTest::newRow("interval, English") << "cmb_UpdateFre" << 1
                                       << QStringList{"None", "One week", "One month", "Three months"};
    QTest::newRow("interval, Chinese") << "cmb_UpdateFre" << 0 << QStringList{"从不", "一周", "一个月", "三个月"};
    QTest::newRow("refresh, English") << "cmb_RefreshTime" << 1 << QStringList{"1", "3", "5", "10"};
    QTest::newRow("refresh, Chinese") << "cmb_RefreshTime" << 0 << QStringList{"1", "3", "5", "10"};
    QTest::newRow("languages bear their own names in English")
        << "cmb_language" << 1 << QStringList{"简体中文", "English"};
    QTest::newRow("languages bear their own names in Chinese")
        << "cmb_language" << 0 << QStringList{"简体中文", "English"};
}

void TestSettingWidget::listTexts()
{
    QFETCH(QString, name);
    QFETCH(int, language);
    Ovryn_SettingWidget page;
    Ovryn_LanguageTable table;
    table.setLanguage(language);
    page.setLanguage(table.setting, language);
    const QComboBox *box = page.findChild<QComboBox *>(name);
    QStringList found;
    for (int i = 0; i < box->count(); ++i)
        found.append(box->itemText(i));
    QTEST(found, "texts");
}

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

void TestSettingWidget::shortListsKeepTheirTexts()
{
    Ovryn_SettingWidget page;
    QComboBox *effects = combo(page, "cmb_PageEffect");
    QComboBox *interval = combo(page, "cmb_UpdateFre");
    effects->removeItem(1);
    interval->removeItem(3);
    Ovryn_LanguageTable table;
    table.setLanguage(kLanguageEnglish);
    page.setLanguage(table.setting, kLanguageEnglish);
    QCOMPARE(effects->itemText(0), QStringLiteral("普通"));
    QCOMPARE(interval->itemText(2), QStringLiteral("一个月"));
    QCOMPARE(textOf(page, QStringLiteral("lbl_Setting")), QStringLiteral("Settings"));
}

void TestSettingWidget::logOpensInTheLanguage_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<QString>("buttonText");
    QTest::newRow("Chinese") << 0 << "关闭";
    QTest::newRow("English") << 1 << "Close";
}

void TestSettingWidget::logOpensInTheLanguage()
{
    QFETCH(int, number);
    Ovryn_SettingWidget page;
    Ovryn_LanguageTable table;
    table.setLanguage(number);
    page.setLanguage(table.setting, number);
    page.show();

    ModalAnswer answer({QStringLiteral("pushButton")});
    QTest::mouseClick(page.findChild<QPushButton *>("btnUpdateLog"), Qt::LeftButton);
    QCOMPARE(answer.problems(), QStringList());
    QTEST(answer.captions().join(','), "buttonText");
}

void TestSettingWidget::objectNames_data()
{
    QTest::addColumn<bool>("isLayout");
    for (const char *name :
         {"verticalLayout_main", "verticalLayout", "verticalLayout_2", "verticalLayout_3", "verticalLayout_4",
          "verticalLayout_5", "verticalLayout_6", "verticalLayout_7", "horizontalLayout", "horizontalLayout_2",
          "horizontalLayout_3", "horizontalLayout_4", "horizontalLayout_5"})
        QTest::newRow(name) << true;
    for (const char *name : {"verticalLayoutWidget_8", "widget", "widget_4"})
        QTest::newRow(name) << false;
}

void TestSettingWidget::objectNames()
{
    QFETCH(bool, isLayout);
    const QString name = QString::fromLatin1(QTest::currentDataTag());
    Ovryn_SettingWidget page;
    if (isLayout) {
        const auto *layout = page.findChild<QLayout *>(name);
        QVERIFY(layout);
        QVERIFY(layout->count() > 0);
    } else {
        QVERIFY(page.findChild<QWidget *>(name));
    }
}

void TestSettingWidget::listViews()
{
    Ovryn_SettingWidget page;
    const QList<QComboBox *> boxes = page.findChildren<QComboBox *>();
    QCOMPARE(boxes.size(), 4);
    for (const QComboBox *box : boxes) {
        QVERIFY(qobject_cast<QListView *>(box->view()));
        QVERIFY(qobject_cast<NoFocusFrameDelegate *>(box->itemDelegate()));
        QVERIFY(box->view()->styleSheet().startsWith(
            "QListView{font-family:微软雅黑;}"
            "QListView::item:selected:active{background-color:rgba(255,0,0,230);}"
            "QListView::item:selected{color: white;}"));
    }
}

void TestSettingWidget::styleRules_data()
{
    QTest::addColumn<QString>("rule");
    QTest::newRow("font") << "QWidget{font-family:微软雅黑;}";
    QTest::newRow("combo box") << "QComboBox{ border: 1px solid white; padding: 1px 2px 1px 2px; min-width: 9em; }";
    QTest::newRow("drop-down") << "QComboBox::drop-down{ border-left-color: rgba(0,0,0,0);}";
    QTest::newRow("button") << "QPushButton{border:1px solid white; padding: 1px 2px 1px 2px; min-width: "
                               "9em;background-color:white;color:black;}";
    QTest::newRow("hovered button") << "QPushButton:hover{font-size:13px;}";
    QTest::newRow("pressed button") << "QPushButton:pressed{font-size:11px;}";
}

void TestSettingWidget::styleRules()
{
    QFETCH(QString, rule);
    QVERIFY(Ovryn_SettingWidget().styleSheet().contains(rule));
}

void TestSettingWidget::nothingIsClipped_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("Chinese") << 0;
    QTest::newRow("English") << 1;
}

void TestSettingWidget::nothingIsClipped()
{
    QFETCH(int, number);
    Ovryn_SettingWidget page;
    Ovryn_LanguageTable table;
    table.setLanguage(number);
    page.setLanguage(table.setting, number);
    page.show();
    for (const QWidget *control : page.findChildren<QWidget *>()) {
        const bool hasText = qobject_cast<const QLabel *>(control) ||
                             qobject_cast<const QAbstractButton *>(control) ||
                             qobject_cast<const QComboBox *>(control);
        if (!hasText)
            continue;
        const QByteArray name = control->objectName().toUtf8();
        const QRect place(control->mapTo(&page, QPoint()), control->size());
        QVERIFY2(page.rect().contains(place), name.constData());
        QVERIFY2(control->width() >= control->sizeHint().width(), name.constData());
        QVERIFY2(control->height() >= control->fontMetrics().height(), name.constData());
    }
}

void TestSettingWidget::picture()
{
    const QImage background(QStringLiteral(":/images/images/SettingBKImage.png"));
    QVERIFY(!background.isNull());
    Ovryn_SettingWidget page;
    QCOMPARE(page.size(), background.size());
    QVERIFY(page.windowFlags().testFlag(Qt::FramelessWindowHint));
    QVERIFY(page.testAttribute(Qt::WA_TranslucentBackground));
    page.show();
    QImage image(page.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    page.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    const QImage expected = background.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    for (const QPoint point : {QPoint(0, 0), QPoint(2, 200), QPoint(300, 10), QPoint(469, 439)})
        QCOMPARE(image.pixel(point), expected.pixel(point));
}

void TestSettingWidget::connectionsHold()
{
    ConnectWarnings warnings;
    Ovryn_SettingWidget page;
    QCOMPARE(warnings.list(), QStringList());
}

QTEST_MAIN(TestSettingWidget)
#include "TestSettingWidget.moc"
