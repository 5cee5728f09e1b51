#include "ui/Fonts.h"
#include "ui/NoFocusFrameDelegate.h"
#include "ui/Ovryn_ComboBox.h"
#include "ui/ReadonlyLineEdit.h"
#include "ui/UiStyle.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QContextMenuEvent>
#include <QListView>
#include <QMenu>
#include <QPainter>
#include <QProxyStyle>
#include <QStandardItemModel>
#include <QTest>
#include <QToolTip>

namespace
{

/// Records whether an item was painted with the focus state.
class FocusWatchingStyle : public QProxyStyle
{
public:
    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                     const QWidget *widget) const override
    {
        if (element == CE_ItemViewItem) {
            ++items;
            sawFocus = sawFocus || (option->state & State_HasFocus);
            sawSelection = sawSelection || (option->state & State_Selected);
        }
        QProxyStyle::drawControl(element, option, painter, widget);
    }
    mutable int items = 0;
    mutable bool sawFocus = false;
    mutable bool sawSelection = false;
};

} // namespace

/// The card selector, the read-only line and the list item without a focus frame.
class TestSmallWidgets : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { substituteFontFamilies(); }
    void popup_data();
    void popup();
    void popupRepaintsTheBox();
    void comboFont_data();
    void comboFont();
    void comboStyle_data();
    void comboStyle();
    void popupListIsDarkGlass();
    void chosenByMouse();
    void toolTipsAreLightOnDark();
    void lineTakesNoText();
    void lineHasNoContextMenu();
    void draggingSelectsNothing();
    void doubleClickSelectsNothing();
    void rightButtonMovesNoCursor();
    void leftButtonMovesTheCursor();
    void itemHasNoFocusFrame();
};

void TestSmallWidgets::popup_data()
{
    QTest::addColumn<int>("entries");
    QTest::addColumn<bool>("opens");
    QTest::newRow("no entry") << 0 << false;
    QTest::newRow("a single card opens no list") << 1 << false;
    QTest::newRow("two cards") << 2 << true;
    QTest::newRow("five cards") << 5 << true;
}

void TestSmallWidgets::popup()
{
    QFETCH(int, entries);
    Ovryn_ComboBox box;
    for (int i = 0; i < entries; ++i)
        box.addItem(QStringLiteral("GTX %1").arg(i));
    box.resize(300, 50);
    box.show();
    QTest::mouseClick(&box, Qt::LeftButton);
    QTEST(box.view()->isVisible(), "opens");
    box.hidePopup();
    QVERIFY(!box.view()->isVisible());
}

void TestSmallWidgets::popupRepaintsTheBox()
{
    class Counted : public Ovryn_ComboBox
    {
    public:
        int paints = 0;

    protected:
        void paintEvent(QPaintEvent *event) override
        {
            ++paints;
            Ovryn_ComboBox::paintEvent(event);
        }
    } box;
    box.addItems({"a", "b"});
    box.show();
    QVERIFY(QTest::qWaitForWindowExposed(&box));
    const int before = box.paints;
    box.showPopup();
    QVERIFY(box.paints > before);
    const int open = box.paints;
    box.hidePopup();
    QVERIFY(box.paints > open);
}

void TestSmallWidgets::comboFont_data()
{
    QTest::addColumn<int>("height");
    QTest::addColumn<int>("pixels");
    QTest::newRow("the main dialog's 50") << 50 << 30;
    QTest::newRow("the division truncates first") << 49 << 27;
    QTest::newRow("small") << 5 << 3;
}

void TestSmallWidgets::comboFont()
{
    QFETCH(int, height);
    Ovryn_ComboBox box;
    box.addItem(QStringLiteral("GTX"));
    box.resize(300, height);
    box.show();
    QCOMPARE(box.height(), height);
    QTEST(box.font().pixelSize(), "pixels");
    QTEST(box.view()->font().pixelSize(), "pixels");
    QCOMPARE(box.view()->minimumHeight(), height);
    box.resize(300, 4); // too low for any font: the size stays
    QTEST(box.font().pixelSize(), "pixels");
}

void TestSmallWidgets::comboStyle_data()
{
    QTest::addColumn<QString>("rule");
    QTest::newRow("clear box") << "QComboBox{background-color:rgba(255,255,255,0);}";
    QTest::newRow("red list frame")
        << "QListView{color:white;background-color:rgba(255,255,255,0);border-top:1px solid red;border-right:1px "
           "solid red;border-bottom :1px solid red; border-left:1px solid red; }";
    QTest::newRow("clear items") << "QListView::item{ background-color:rgba(255,255,255,0);}";
    QTest::newRow("red selection")
        << "QListView::item:selected:active{background-color:rgba(255,0,0,0);color:rgb(236,9,40); }";
    QTest::newRow("white selection where the list isn't active")
        << "QListView::item:selected{ color: rgba(255,255,255,255); background-color:rgba(255,255,255,0);}";
}

void TestSmallWidgets::comboStyle()
{
    QFETCH(QString, rule);
    Ovryn_ComboBox box;
    QVERIFY(box.styleSheet().contains(rule));
    QVERIFY(qobject_cast<QListView *>(box.view()));
}

void TestSmallWidgets::popupListIsDarkGlass()
{
    Ovryn_ComboBox box;
    box.addItems({"GTX 1080", "GTX 1080 1"});
    box.resize(300, 50);
    box.show();
    box.showPopup();
    QWidget *list = box.view()->window();
    QImage image(list->size(), QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    list->render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    const QColor right = image.pixelColor(image.width() - 8, image.height() / 2);
    QVERIFY(right.alpha() > 220);
    QVERIFY(right.lightness() < 40);
    QCOMPARE(image.pixelColor(0, image.height() / 2).rgb(), QColor(Qt::red).rgb());
    box.hidePopup();
}

void TestSmallWidgets::chosenByMouse()
{
    Ovryn_ComboBox box;
    box.addItems({"first", "second"});
    box.resize(300, 50);
    box.show();
    box.showPopup();
    QVERIFY(QTest::qWaitForWindowExposed(box.view()->window()));
    const QRect second = box.view()->visualRect(box.model()->index(1, 0));
    // The toolkit takes a release right after the opening for the end of the opening click.
    const auto clickUntilClosed = [&] {
        QTest::mouseMove(box.view()->viewport(), second.center());
        QTest::mouseClick(box.view()->viewport(), Qt::LeftButton, Qt::NoModifier, second.center());
        return !box.view()->isVisible();
    };
    QTRY_VERIFY(clickUntilClosed());
    QCOMPARE(box.currentIndex(), 1);
}

void TestSmallWidgets::toolTipsAreLightOnDark()
{
    const QPalette before = QToolTip::palette();
    UiStyle::colorToolTips();
    const QPalette palette = QToolTip::palette();
    QToolTip::setPalette(before);
    QVERIFY(palette.color(QPalette::ToolTipBase).lightness() < 40);
    QVERIFY(palette.color(QPalette::ToolTipText).lightness() > 200);
    QVERIFY(palette.color(QPalette::Window).lightness() < 40); // what some styles paint with
    QVERIFY(palette.color(QPalette::WindowText).lightness() > 200);
}

void TestSmallWidgets::lineTakesNoText()
{
    ReadonlyLineEdit line;
    line.setText(QStringLiteral("8192 MB"));
    line.show();
    QTest::keyClicks(&line, QStringLiteral("12"));
    QTest::keyClick(&line, Qt::Key_Backspace);
    QCOMPARE(line.text(), QStringLiteral("8192 MB"));
    QVERIFY(line.isReadOnly());
}

void TestSmallWidgets::lineHasNoContextMenu()
{
    ReadonlyLineEdit line;
    line.show();
    QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(5, 5), line.mapToGlobal(QPoint(5, 5)));
    QApplication::sendEvent(&line, &event);
    QVERIFY(!QApplication::activePopupWidget());
    QVERIFY(line.findChildren<QMenu *>().isEmpty());
}

void TestSmallWidgets::draggingSelectsNothing()
{
    ReadonlyLineEdit line;
    line.setText(QStringLiteral("a long value to drag over"));
    line.resize(200, 24);
    line.show();
    QTest::mousePress(&line, Qt::LeftButton, Qt::NoModifier, QPoint(5, 12));
    QMouseEvent move(QEvent::MouseMove, QPointF(150, 12), Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&line, &move);
    QTest::mouseRelease(&line, Qt::LeftButton, Qt::NoModifier, QPoint(150, 12));
    QVERIFY(!line.hasSelectedText());
}

void TestSmallWidgets::doubleClickSelectsNothing()
{
    ReadonlyLineEdit line;
    line.setText(QStringLiteral("GDDR5"));
    line.resize(200, 24);
    line.show();
    QTest::mouseDClick(&line, Qt::LeftButton, Qt::NoModifier, QPoint(10, 12));
    QVERIFY(!line.hasSelectedText());
}

void TestSmallWidgets::rightButtonMovesNoCursor()
{
    ReadonlyLineEdit line;
    line.setText(QStringLiteral("GDDR5"));
    line.resize(200, 24);
    line.show();
    line.selectAll();
    QTest::mousePress(&line, Qt::RightButton, Qt::NoModifier, QPoint(3, 12));
    QCOMPARE(line.selectedText(), QStringLiteral("GDDR5"));
}

void TestSmallWidgets::leftButtonMovesTheCursor()
{
    ReadonlyLineEdit line;
    line.setText(QStringLiteral("GDDR5"));
    line.resize(200, 24);
    line.show();
    line.setCursorPosition(5);
    QTest::mouseClick(&line, Qt::LeftButton, Qt::NoModifier, QPoint(3, 12));
    QCOMPARE(line.cursorPosition(), 0);
}

void TestSmallWidgets::itemHasNoFocusFrame()
{
    FocusWatchingStyle style;
    QListView list;
    list.setStyle(&style);
    QStandardItemModel model(1, 1);
    list.setModel(&model);

    QStyleOptionViewItem option;
    option.widget = &list;
    option.rect = QRect(0, 0, 80, 20);
    option.state = QStyle::State_Enabled | QStyle::State_HasFocus | QStyle::State_Selected;
    QImage image(80, 20, QImage::Format_ARGB32);
    QPainter painter(&image);
    NoFocusFrameDelegate().paint(&painter, option, model.index(0, 0));

    QCOMPARE(style.items, 1);
    QVERIFY(!style.sawFocus);
    QVERIFY(style.sawSelection);
    QVERIFY(option.state & QStyle::State_HasFocus); // the caller's option is unchanged
}

QTEST_MAIN(TestSmallWidgets)
#include "TestSmallWidgets.moc"
