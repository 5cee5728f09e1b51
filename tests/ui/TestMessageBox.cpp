#include "support/ConnectWarnings.h"
#include "support/ModalAnswer.h"
#include "ui/Fonts.h"
#include "ui/Ovryn_LanguageTable.h"
#include "ui/Ovryn_MessageBox1.h"

#include <QCheckBox>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QImage>
#include <QLabel>
#include <QPushButton>
#include <QRegularExpression>
#include <QScreen>
#include <QTest>

namespace
{

/// The window flags of every caller of the box.
const Qt::WindowFlags kCallersFlags = Qt::CustomizeWindowHint | Qt::WindowTitleHint;

constexpr int kOneButton = 0;
constexpr int kTwoButtons = 1;
constexpr int kWithCheckBox = 0x1000;

QImage painted(QWidget &widget)
{
    QImage image(widget.size(), QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    widget.render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
    return image;
}

QPushButton *button(QWidget &box, const char *name)
{
    return box.findChild<QPushButton *>(QLatin1String(name));
}

QLabel *label(QWidget &box)
{
    return box.findChild<QLabel *>(QStringLiteral("msgBoxInfoLabel"));
}

/// The layout that holds a control directly.
QLayout *rowOf(QWidget &box, QWidget *control)
{
    for (QHBoxLayout *row : box.findChildren<QHBoxLayout *>())
        if (row->indexOf(control) >= 0)
            return row;
    return nullptr;
}

} // namespace

class TestMessageBox : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void result_data();
    void result();
    void resultOfThePicturedBox_data();
    void resultOfThePicturedBox();
    void escapeIsNoAnswer();
    void captions_data();
    void captions();
    void yesTextCanBeReplaced();
    void textLabel_data();
    void textLabel();
    void controlsOfFlags_data();
    void controlsOfFlags();
    void rowMargins();
    void windowFlags_data();
    void windowFlags();
    void size_data();
    void size();
    void textFits_data();
    void textFits();
    void centredOnTheParentsWindow();
    void centredOnTheScreenWithoutParent();
    void paintedGlass_data();
    void paintedGlass();
    void styleRules_data();
    void styleRules();
    void pictureIsTheBackground();
    void everyConnectionExists();
    void unnamedButtonIsReported();
    void secondBoxIsReported();
    void failedConnectionIsSeen();
};

void TestMessageBox::initTestCase()
{
    substituteFontFamilies();
    registerApplicationFonts();
}

static void resultRows()
{
    QTest::addColumn<int>("flags");
    QTest::addColumn<bool>("tick");
    QTest::addColumn<QString>("clicked");
    QTest::addColumn<int>("result");
    QTest::newRow("no") << kTwoButtons << false << "msgBoxNoBtn" << 2;
    QTest::newRow("yes") << kTwoButtons << false << "msgBoxYesBtn" << 3;
    QTest::newRow("no, check box there") << (kTwoButtons | kWithCheckBox) << false << "msgBoxNoBtn" << 2;
    QTest::newRow("no, ticked: the tick counts for a yes only")
        << (kTwoButtons | kWithCheckBox) << true << "msgBoxNoBtn" << 2;
    QTest::newRow("yes, not ticked") << (kTwoButtons | kWithCheckBox) << false << "msgBoxYesBtn" << 3;
    QTest::newRow("yes, ticked") << (kTwoButtons | kWithCheckBox) << true << "msgBoxYesBtn" << 6;
    QTest::newRow("one button") << kOneButton << false << "msgBoxYesBtn" << 4;
    QTest::newRow("one button, not ticked") << kWithCheckBox << false << "msgBoxYesBtn" << 4;
    QTest::newRow("one button, ticked: 7 and not 3") << kWithCheckBox << true << "msgBoxYesBtn" << 7;
}

void TestMessageBox::result_data()
{
    resultRows();
}

void TestMessageBox::result()
{
    QFETCH(int, flags);
    QFETCH(bool, tick);
    QFETCH(QString, clicked);
    ModalAnswer answer({clicked}, tick ? QStringLiteral("msgBoxCheckBox") : QString());
    Ovryn_MessageBox box(flags, QString(), QStringLiteral("Exit program?"), 1, nullptr, kCallersFlags);
    QTEST(box.exec(), "result");
    QCOMPARE(answer.texts(), QStringList{"Exit program?"});
    QCOMPARE(answer.problems(), QStringList());
}

void TestMessageBox::resultOfThePicturedBox_data()
{
    resultRows();
}

void TestMessageBox::resultOfThePicturedBox()
{
    QFETCH(int, flags);
    QFETCH(bool, tick);
    QFETCH(QString, clicked);
    ModalAnswer answer({clicked}, tick ? QStringLiteral("msgBoxCheckBox") : QString());
    Ovryn_MessageBox1 box(flags, QString(), QStringLiteral("?"), 0, nullptr, kCallersFlags);
    QTEST(box.exec(), "result");
    QCOMPARE(answer.problems(), QStringList());
}

void TestMessageBox::escapeIsNoAnswer()
{
    Ovryn_MessageBox box(kTwoButtons, QString(), QStringLiteral("?"), 1, nullptr, kCallersFlags);
    box.show();
    QTest::keyClick(&box, Qt::Key_Escape);
    QVERIFY(!box.isVisible());
    QCOMPARE(box.result(), 0);
}

void TestMessageBox::captions_data()
{
    QTest::addColumn<int>("flags");
    QTest::addColumn<int>("language");
    QTest::addColumn<QString>("yes");
    QTest::addColumn<QString>("no");
    QTest::addColumn<QString>("check");
    QTest::newRow("two buttons, Chinese") << kTwoButtons << 0 << "是"
                                          << "否" << QString();
    QTest::newRow("two buttons, English") << kTwoButtons << 1 << "Yes"
                                          << "No" << QString();
    QTest::newRow("one button, Chinese") << kOneButton << 0 << "确定" << QString() << QString();
    QTest::newRow("one button, English") << kOneButton << 1 << "Confirm" << QString() << QString();
    QTest::newRow("check box, Chinese") << kWithCheckBox << 0 << "确定" << QString() << "不再提示。";
    QTest::newRow("check box, English") << kWithCheckBox << 1 << "Confirm" << QString() << "Don't show again.";
    QTest::newRow("everything, another number") << (kTwoButtons | kWithCheckBox) << 7 << "Yes"
                                                << "No"
                                                << "Don't show again.";
}

void TestMessageBox::captions()
{
    QFETCH(int, flags);
    QFETCH(int, language);
    QFETCH(QString, no);
    QFETCH(QString, check);
    Ovryn_MessageBox box(flags, QString(), QStringLiteral("?"), language, nullptr, kCallersFlags);
    QTEST(button(box, "msgBoxYesBtn")->text(), "yes");

    const QPushButton *noButton = button(box, "msgBoxNoBtn");
    QCOMPARE(noButton != nullptr, !no.isEmpty());
    if (noButton)
        QCOMPARE(noButton->text(), no);

    const auto *checkBox = box.findChild<QCheckBox *>();
    QCOMPARE(checkBox != nullptr, !check.isEmpty());
    if (checkBox)
        QCOMPARE(checkBox->text(), check);
}

void TestMessageBox::yesTextCanBeReplaced()
{
    Ovryn_MessageBox box(kOneButton, QString(), QStringLiteral("未知错误发生\r\nAn unknown error has occurred"), 0,
                         nullptr, kCallersFlags);
    box.setYesText(QStringLiteral("确定/Comfirm"));
    QCOMPARE(button(box, "msgBoxYesBtn")->text(), QStringLiteral("确定/Comfirm"));
    QVERIFY(button(box, "msgBoxYesBtn")->fontMetrics().horizontalAdvance("确定/Comfirm") <= 96);
}

void TestMessageBox::textLabel_data()
{
    QTest::addColumn<int>("language");
    QTest::addColumn<QString>("family");
    QTest::newRow("Chinese") << 0 << "微软雅黑";
    QTest::newRow("English") << 1 << "Arial";
    QTest::newRow("another number") << 3 << "Arial";
}

void TestMessageBox::textLabel()
{
    QFETCH(int, language);
    Ovryn_MessageBox box(kOneButton, QStringLiteral("a title"), QStringLiteral("<b>text</b>"), language, nullptr,
                         kCallersFlags);
    const QLabel *text = label(box);
    QTEST(text->font().family(), "family");
    QCOMPARE(text->font().pixelSize(), 15);
    QCOMPARE(text->font().weight(), 75);
    QVERIFY(text->wordWrap());
    QCOMPARE(text->alignment(), Qt::AlignLeft | Qt::AlignVCenter);
    QCOMPARE(text->text(), QStringLiteral("<b>text</b>"));
    QCOMPARE(text->textFormat(), Qt::PlainText);
    QCOMPARE(box.windowTitle(), QStringLiteral("a title"));
}

void TestMessageBox::controlsOfFlags_data()
{
    QTest::addColumn<int>("flags");
    QTest::addColumn<int>("buttons");
    QTest::newRow("one") << kOneButton << 1;
    QTest::newRow("two") << kTwoButtons << 2;
    QTest::newRow("other bits mean nothing") << 0x2 << 1;
    QTest::newRow("bit 1 among others") << 0x11 << 2;
}

void TestMessageBox::controlsOfFlags()
{
    QFETCH(int, flags);
    Ovryn_MessageBox box(flags, QString(), QStringLiteral("?"), 1, nullptr, kCallersFlags);
    box.show();
    const QList<QPushButton *> buttons = box.findChildren<QPushButton *>();
    QTEST(int(buttons.size()), "buttons");
    for (const QPushButton *each : buttons) {
        QCOMPARE(each->size(), QSize(100, 30));
        QCOMPARE(each->focusPolicy(), Qt::NoFocus);
    }
}

void TestMessageBox::rowMargins()
{
    Ovryn_MessageBox box(kWithCheckBox, QString(), QStringLiteral("?"), 1, nullptr, kCallersFlags);
    QCOMPARE(rowOf(box, label(box))->contentsMargins(), QMargins(10, 5, 0, 10));
    QCOMPARE(rowOf(box, box.findChild<QCheckBox *>())->contentsMargins(), QMargins(10, 0, 0, 0));
}

void TestMessageBox::windowFlags_data()
{
    QTest::addColumn<bool>("hasParent");
    QTest::addColumn<bool>("onTop");
    QTest::newRow("with a parent") << true << false;
    QTest::newRow("without a parent it stays on top") << false << true;
}

void TestMessageBox::windowFlags()
{
    QFETCH(bool, hasParent);
    QFETCH(bool, onTop);
    QWidget parent;
    Ovryn_MessageBox box(kOneButton, QString(), QStringLiteral("?"), 1, hasParent ? &parent : nullptr,
                         Qt::WindowFlags(0x2001000));
    QVERIFY(box.isWindow());
    // The given flags, a dialog's window type, no frame, and on top; nothing else.
    QCOMPARE(int(box.windowFlags()), 0x2001000 | 0x3 | 0x800 | (onTop ? 0x40000 : 0));
    QVERIFY(box.testAttribute(Qt::WA_TranslucentBackground));
    QCOMPARE(box.windowOpacity(), 1.0);
}

void TestMessageBox::size_data()
{
    QTest::addColumn<int>("flags");
    QTest::addColumn<int>("language");
    QTest::addColumn<QString>("text");
    QTest::newRow("one word") << kTwoButtons << 1 << "?";
    QTest::newRow("exit question, English") << kTwoButtons << 1 << "Exit program?";
    QTest::newRow("exit question, Chinese") << kTwoButtons << 0 << "确定退出程序吗?";
    QTest::newRow("no card, English") << kOneButton << 1 << "No nvidia card found";
    QTest::newRow("two lines of different languages")
        << kOneButton << 0 << "未知错误发生\r\nAn unknown error has occurred";
}

void TestMessageBox::size()
{
    QFETCH(int, flags);
    QFETCH(int, language);
    QFETCH(QString, text);
    Ovryn_MessageBox box(flags, QString(), text, language, nullptr, kCallersFlags);
    QCOMPARE(box.minimumSize(), QSize(320, 160));
    box.show();
    QCOMPARE(box.size(), QSize(320, 160));
}

void TestMessageBox::textFits_data()
{
    QTest::addColumn<int>("flags");
    QTest::addColumn<int>("language");
    QTest::addColumn<QString>("text");
    Ovryn_LanguageTable table;
    for (int language : {kLanguageChinese, kLanguageEnglish}) {
        table.setLanguage(language);
        const char *name = language == kLanguageChinese ? "Chinese" : "English";
        const Lang_MainDialog &texts = table.mainDialog;
        QTest::addRow("adjust warning, %s", name) << kTwoButtons << language << texts.adjustWarning;
        QTest::addRow("version too old, %s", name) << kOneButton << language << texts.updateTooOld;
        QTest::addRow("version too old, all controls, %s", name)
            << (kTwoButtons | kWithCheckBox) << language << texts.updateTooOld;
        QTest::addRow("high performance, %s", name) << kWithCheckBox << language << texts.highPerformance;
        QTest::addRow("five times as long, %s", name) << kOneButton << language << texts.updateTooOld.repeated(5);
    }
}

void TestMessageBox::textFits()
{
    QFETCH(int, flags);
    QFETCH(int, language);
    QFETCH(QString, text);
    Ovryn_MessageBox box(flags, QString(), text, language, nullptr, kCallersFlags);
    box.show();
    const QLabel *shown = label(box);
    QVERIFY(shown->height() >= shown->heightForWidth(shown->width()));
    QVERIFY(box.rect().contains(QRect(shown->mapTo(&box, QPoint()), shown->size())));
    QVERIFY(box.width() >= 320 && box.width() <= 480);
    const QPushButton *yes = button(box, "msgBoxYesBtn");
    QVERIFY(box.rect().contains(QRect(yes->mapTo(&box, QPoint()), yes->size())));
    QVERIFY(yes->mapTo(&box, QPoint()).y() >= shown->mapTo(&box, QPoint(0, shown->height())).y());
}

void TestMessageBox::centredOnTheParentsWindow()
{
    QWidget window;
    window.setGeometry(100, 50, 601, 401);
    QWidget page(&window);
    page.setGeometry(300, 200, 40, 30);
    window.show();
    Ovryn_MessageBox box(kOneButton, QString(), QStringLiteral("?"), 1, &page, kCallersFlags);
    box.show();
    QVERIFY((box.geometry().center() - window.geometry().center()).manhattanLength() <= 2);
    box.resize(400, 200);
    QCOMPARE(box.size(), QSize(400, 200));
    QVERIFY((box.geometry().center() - window.geometry().center()).manhattanLength() <= 2);
}

void TestMessageBox::centredOnTheScreenWithoutParent()
{
    Ovryn_MessageBox box(kOneButton, QString(), QStringLiteral("?"), 1, nullptr, kCallersFlags);
    box.show();
    const QPoint middle = QGuiApplication::primaryScreen()->geometry().center();
    QVERIFY((box.geometry().center() - middle).manhattanLength() <= 2);
}

void TestMessageBox::paintedGlass_data()
{
    QTest::addColumn<QPoint>("point");
    QTest::addColumn<QColor>("colour");
    QTest::newRow("inside") << QPoint(160, 80) << QColor(0, 0, 0, 220);
    QTest::newRow("left edge") << QPoint(0, 80) << QColor(252, 10, 53, 255);
    QTest::newRow("right edge") << QPoint(319, 80) << QColor(252, 10, 53, 255);
    QTest::newRow("top edge") << QPoint(160, 0) << QColor(252, 10, 53, 255);
    QTest::newRow("bottom edge") << QPoint(160, 159) << QColor(252, 10, 53, 255);
    QTest::newRow("round corner") << QPoint(0, 0) << QColor(0, 0, 0, 0);
    QTest::newRow("inside of the corner") << QPoint(6, 6) << QColor(0, 0, 0, 220);
}

void TestMessageBox::paintedGlass()
{
    QFETCH(QPoint, point);
    Ovryn_MessageBox box(kOneButton, QString(), QStringLiteral("?"), 1, nullptr, kCallersFlags);
    box.show();
    QTEST(painted(box).pixelColor(point), "colour");
}

void TestMessageBox::styleRules_data()
{
    QTest::addColumn<QString>("rule");
    QTest::newRow("white text") << "QLabel{color:rgb(255,255,255);}";
    QTest::newRow("button's edge") << "border: 1px solid rgba(252, 10, 53,150);";
    QTest::newRow("button's glass") << "background-color:rgba(252, 10, 53,80);";
    QTest::newRow("button's text") << "color:rgb(220, 220, 220);";
    QTest::newRow("hover") << "QPushButton:hover{border: 1px solid rgba(252, 10, 53,180);"
                              "background-color:rgba(252, 10, 53,150);}";
    QTest::newRow("pressed") << "QPushButton:pressed{border: 1px solid rgba(252, 10, 53,200);"
                                "background-color:rgba(252, 10, 53,140);}";
    QTest::newRow("checked") << "QPushButton:checked{background-color:rgba(252, 10, 53,120);}";
    QTest::newRow("indicator") << "QCheckBox::indicator{width:18px;height:18px;}";
    QTest::newRow("unchecked") << ":/images/images/messageBox/unchecked.png";
    QTest::newRow("unchecked, hovered") << ":/images/images/messageBox/hover_unchecked.png";
    QTest::newRow("checked picture") << ":/images/images/messageBox/checked.png";
    QTest::newRow("checked, hovered") << ":/images/images/messageBox/hover_checked.png";
}

void TestMessageBox::styleRules()
{
    QFETCH(QString, rule);
    Ovryn_MessageBox box(kOneButton, QString(), QStringLiteral("?"), 1, nullptr, kCallersFlags);
    QVERIFY(box.styleSheet().contains(rule));
}

void TestMessageBox::pictureIsTheBackground()
{
    const QImage picture(QStringLiteral(":/images/images/messageBox/msgbkground.png"));
    QVERIFY(!picture.isNull());
    Ovryn_MessageBox1 box(kWithCheckBox, QString(), Ovryn_LanguageTable().mainDialog.highPerformance, 0, nullptr,
                          kCallersFlags);
    box.show();
    QCOMPARE(box.size(), picture.size());
    const QImage image = painted(box);
    const QImage expected = picture.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    for (const QPoint point : {QPoint(0, 0), QPoint(1, 100), QPoint(210, 2), QPoint(400, 190), QPoint(15, 8)})
        QCOMPARE(image.convertToFormat(QImage::Format_ARGB32_Premultiplied).pixel(point), expected.pixel(point));
}

void TestMessageBox::everyConnectionExists()
{
    ConnectWarnings warnings;
    Ovryn_MessageBox box(kTwoButtons | kWithCheckBox, QString(), QStringLiteral("?"), 1, nullptr, kCallersFlags);
    Ovryn_MessageBox1 pictured(kTwoButtons | kWithCheckBox, QString(), QStringLiteral("?"), 1, nullptr,
                               kCallersFlags);
    QCOMPARE(warnings.list(), QStringList());
}

void TestMessageBox::unnamedButtonIsReported()
{
    ModalAnswer answer({QStringLiteral("msgBoxNoBtn")});
    Ovryn_MessageBox box(kOneButton, QString(), QStringLiteral("?"), 1, nullptr, kCallersFlags);
    QCOMPARE(box.exec(), 0);
    QCOMPARE(answer.problems(), QStringList{"no control named msgBoxNoBtn"});
}

void TestMessageBox::secondBoxIsReported()
{
    ModalAnswer answer({QStringLiteral("msgBoxYesBtn")});
    Ovryn_MessageBox first(kTwoButtons, QString(), QStringLiteral("first"), 1, nullptr, kCallersFlags);
    QCOMPARE(first.exec(), 3);
    Ovryn_MessageBox second(kTwoButtons, QString(), QStringLiteral("second"), 1, nullptr, kCallersFlags);
    QCOMPARE(second.exec(), 0);
    QCOMPARE(answer.texts(), (QStringList{"first", "second"}));
    QCOMPARE(answer.problems(), QStringList{"one box too many: second"});
}

void TestMessageBox::failedConnectionIsSeen()
{
    ConnectWarnings warnings;
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("QObject::connect: No such slot .*noSuchSlot.*"));
    QPushButton sender;
    connect(&sender, SIGNAL(released()), &sender, SLOT(noSuchSlot()));
    QCOMPARE(warnings.list().size(), 1);
}

QTEST_MAIN(TestMessageBox)
#include "TestMessageBox.moc"
