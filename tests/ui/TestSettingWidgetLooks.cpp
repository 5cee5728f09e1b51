#include "support/ConnectWarnings.h"
#include "support/ModalAnswer.h"
#include "ui/Fonts.h"
#include "ui/NoFocusFrameDelegate.h"
#include "ui/Ovryn_SettingWidget.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QCursor>
#include <QImage>
#include <QLabel>
#include <QLayout>
#include <QListView>
#include <QPushButton>
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

} // namespace

/// The looks of the settings page: its texts in both languages, its parts and their style.
class TestSettingWidgetLooks : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void captions_data();
    void captions();
    void listTexts_data();
    void listTexts();
    void objectNames_data();
    void objectNames();
    void listViews();
    void styleRules_data();
    void styleRules();
    void nothingIsClipped_data();
    void nothingIsClipped();
    void picture();
    void clickLeavesNoFocus_data();
    void clickLeavesNoFocus();
    void closedListLeavesTheBoxAsTheMouseIs_data();
    void closedListLeavesTheBoxAsTheMouseIs();
    void logOpensInTheLanguage_data();
    void logOpensInTheLanguage();
    void shortListsKeepTheirTexts();
    void everyConnectionExists();
};

void TestSettingWidgetLooks::initTestCase()
{
    substituteFontFamilies();
    registerApplicationFonts();
}

void TestSettingWidgetLooks::captions_data()
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

void TestSettingWidgetLooks::captions()
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

void TestSettingWidgetLooks::listTexts_data()
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

void TestSettingWidgetLooks::listTexts()
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

void TestSettingWidgetLooks::objectNames_data()
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

void TestSettingWidgetLooks::objectNames()
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

void TestSettingWidgetLooks::listViews()
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

void TestSettingWidgetLooks::styleRules_data()
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

void TestSettingWidgetLooks::styleRules()
{
    QFETCH(QString, rule);
    QVERIFY(Ovryn_SettingWidget().styleSheet().contains(rule));
}

void TestSettingWidgetLooks::nothingIsClipped_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("Chinese") << 0;
    QTest::newRow("English") << 1;
}

void TestSettingWidgetLooks::nothingIsClipped()
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

void TestSettingWidgetLooks::picture()
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

void TestSettingWidgetLooks::clickLeavesNoFocus_data()
{
    QTest::addColumn<int>("index");
    const QStringList names = {"ckb_StartOnBoot",
                               "ckb_MinimizeOnStart",
                               "ckb_ApplyLastSettingOnStart",
                               "rdb_AutomaticDownloadAndInstall",
                               "rdb_TellMeButDoNotDownload",
                               "btnDetectUpdate"};
    for (int index = 0; index < names.size(); ++index)
        QTest::newRow(qPrintable(names.at(index))) << index;
}

void TestSettingWidgetLooks::clickLeavesNoFocus()
{
    Ovryn_SettingWidget page;
    page.show();
    QApplication::setActiveWindow(&page);
    auto *button = page.findChild<QAbstractButton *>(QString::fromLatin1(QTest::currentDataTag()));
    page.setFocus();
    QTest::mouseClick(button, Qt::LeftButton, Qt::NoModifier, QPoint(8, button->height() / 2));
    QVERIFY(!button->hasFocus());
    QVERIFY(button->focusPolicy() & Qt::TabFocus); // the keyboard still gets there
}

void TestSettingWidgetLooks::closedListLeavesTheBoxAsTheMouseIs_data()
{
    QTest::addColumn<bool>("over");
    QTest::newRow("the mouse chose in the list: not lit") << false;
    QTest::newRow("the mouse is over the box: lit") << true;
}

void TestSettingWidgetLooks::closedListLeavesTheBoxAsTheMouseIs()
{
    QFETCH(bool, over);
    Ovryn_SettingWidget page;
    page.show();
    QComboBox *box = combo(page, "cmb_PageEffect");
    box->setAttribute(Qt::WA_UnderMouse); // as the click left it that opened the list
    box->showPopup();
    const QPoint middle = box->rect().center();
    QCursor::setPos(box->mapToGlobal(over ? middle : middle + QPoint(0, 2 * box->height())));
    box->hidePopup();
    QCOMPARE(box->underMouse(), over);
}

void TestSettingWidgetLooks::logOpensInTheLanguage_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<QString>("buttonText");
    QTest::newRow("Chinese") << 0 << "关闭";
    QTest::newRow("English") << 1 << "Close";
}

void TestSettingWidgetLooks::logOpensInTheLanguage()
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

void TestSettingWidgetLooks::shortListsKeepTheirTexts()
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

void TestSettingWidgetLooks::everyConnectionExists()
{
    ConnectWarnings warnings;
    Ovryn_SettingWidget page;
    QCOMPARE(warnings.list(), QStringList());
}

QTEST_MAIN(TestSettingWidgetLooks)
#include "TestSettingWidgetLooks.moc"
