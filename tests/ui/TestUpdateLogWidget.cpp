#include "support/ConnectWarnings.h"
#include "support/CurrentFolder.h"
#include "ui/Fonts.h"
#include "ui/Ovryn_UpdateLogWidget.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QLayout>
#include <QMouseEvent>
#include <QPushButton>
#include <QTest>
#include <QTextEdit>

#include <memory>

namespace
{

/// A dialog that is shown away from the screen's corner.
class ShownLog : public Ovryn_UpdateLogWidget
{
public:
    ShownLog() : Ovryn_UpdateLogWidget(1, nullptr)
    {
        move(100, 80);
        show();
    }
};

} // namespace

class TestUpdateLogWidget : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { substituteFontFamilies(); }
    void init();
    void cleanup();
    void text_data();
    void text();
    void textThatComesWithTheProgram_data();
    void textThatComesWithTheProgram();
    void missingFileLeavesTheBoxEmpty_data();
    void missingFileLeavesTheBoxEmpty();
    void controls();
    void isOverTheMiddleOfItsWindow();
    void buttonCloses();
    void drag_data();
    void drag();
    void dragFollowsBackToItsStart();
    void releaseEndsTheDrag();
    void look();
    void everyConnectionExists();

private:
    static void write(const QString &name, const QString &content);
    static void send(QWidget &dialog, QEvent::Type type, QPoint global, Qt::MouseButton button,
                     Qt::MouseButtons held);

    std::unique_ptr<CurrentFolder> folder;
};

void TestUpdateLogWidget::init()
{
    folder = std::make_unique<CurrentFolder>();
    QVERIFY(QDir().mkdir(QStringLiteral("updateLog")));
}

void TestUpdateLogWidget::cleanup()
{
    folder.reset();
}

void TestUpdateLogWidget::write(const QString &name, const QString &content)
{
    QFile file(QStringLiteral("updateLog/") + name);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content.toUtf8());
}

void TestUpdateLogWidget::send(QWidget &dialog, QEvent::Type type, QPoint global, Qt::MouseButton button,
                               Qt::MouseButtons held)
{
    QMouseEvent event(type, dialog.mapFromGlobal(global), global, button, held, Qt::NoModifier);
    QApplication::sendEvent(&dialog, &event);
}

void TestUpdateLogWidget::text_data()
{
    QTest::addColumn<int>("language");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("button");
    QTest::newRow("Chinese") << 0 << "第一行\n第二行"
                             << "关闭";
    QTest::newRow("English") << 1 << "first line\nsecond line"
                             << "Close";
    QTest::newRow("any other number is Chinese here") << 2 << "第一行\n第二行"
                                                      << "关闭";
}

void TestUpdateLogWidget::text()
{
    QFETCH(int, language);
    write(QStringLiteral("chinese.txt"), QStringLiteral("第一行\r\n第二行"));
    write(QStringLiteral("english.txt"), QStringLiteral("first line\nsecond line"));
    Ovryn_UpdateLogWidget dialog(language, nullptr);
    QTEST(dialog.findChild<QTextEdit *>("textEdit")->toPlainText(), "text");
    QTEST(dialog.findChild<QPushButton *>("pushButton")->text(), "button");
}

void TestUpdateLogWidget::textThatComesWithTheProgram_data()
{
    QTest::addColumn<int>("language");
    QTest::addColumn<QString>("word");
    QTest::newRow("Chinese") << 0 << "显卡";
    QTest::newRow("English") << 1 << "graphics cards";
}

void TestUpdateLogWidget::textThatComesWithTheProgram()
{
    QFETCH(int, language);
    QFETCH(QString, word);
    QVERIFY(QDir::setCurrent(QStringLiteral(OVRYN_PROGRAM_FOLDER)));
    Ovryn_UpdateLogWidget dialog(language, nullptr);
    const QString text = dialog.findChild<QTextEdit *>("textEdit")->toPlainText();
    QVERIFY2(text.contains(word), qPrintable(text));
    QVERIFY(!text.contains(QChar::ReplacementCharacter));
}

void TestUpdateLogWidget::missingFileLeavesTheBoxEmpty_data()
{
    QTest::addColumn<int>("language");
    QTest::newRow("Chinese, only the English file there") << 0;
    QTest::newRow("English, only the Chinese file there") << 1;
}

void TestUpdateLogWidget::missingFileLeavesTheBoxEmpty()
{
    QFETCH(int, language);
    write(language == 0 ? QStringLiteral("english.txt") : QStringLiteral("chinese.txt"), QStringLiteral("text"));
    Ovryn_UpdateLogWidget dialog(language, nullptr);
    QCOMPARE(dialog.findChild<QTextEdit *>("textEdit")->toPlainText(), QString());
}

void TestUpdateLogWidget::controls()
{
    Ovryn_UpdateLogWidget dialog(1, nullptr);
    QVERIFY(dialog.isWindow());
    QVERIFY(dialog.windowFlags().testFlag(Qt::FramelessWindowHint));
    QVERIFY(dialog.testAttribute(Qt::WA_TranslucentBackground));
    QCOMPARE(dialog.windowOpacity(), 1.0);
    QVERIFY(dialog.styleSheet().startsWith("QPushButton{border:1px solid white; padding: 1px 2px 1px 2px;"));
    auto *container = dialog.findChild<QWidget *>("verticalLayoutWidget");
    QVERIFY(container);
    QVERIFY(dialog.findChild<QLayout *>("verticalLayout"));
    QVERIFY(dialog.findChild<QLayout *>("horizontalLayout"));
    QVERIFY(dialog.findChild<QTextEdit *>("textEdit")->isReadOnly());
    dialog.show();
    dialog.resize(600, 500);
    QCOMPARE(container->geometry().center(), dialog.rect().center());
    QVERIFY(dialog.rect().contains(container->geometry()));
}

void TestUpdateLogWidget::isOverTheMiddleOfItsWindow()
{
    QWidget window;
    window.setGeometry(40, 30, 700, 520);
    auto *page = new QWidget(&window);
    page->setGeometry(400, 100, 200, 200); // not of the page that opens it
    window.show();
    Ovryn_UpdateLogWidget dialog(1, page);
    dialog.show();
    QCOMPARE(dialog.geometry().center(), window.geometry().center());
}

void TestUpdateLogWidget::buttonCloses()
{
    Ovryn_UpdateLogWidget dialog(1, nullptr);
    dialog.show();
    QTest::mouseClick(dialog.findChild<QPushButton *>("pushButton"), Qt::LeftButton);
    QVERIFY(!dialog.isVisible());
}

void TestUpdateLogWidget::drag_data()
{
    QTest::addColumn<int>("pressed");
    QTest::addColumn<int>("held");
    QTest::addColumn<QPoint>("by");
    QTest::addColumn<QPoint>("moved");
    const int start = QApplication::startDragDistance();
    const int left = Qt::LeftButton;
    const int right = Qt::RightButton;
    const int none = Qt::NoButton;
    QTest::newRow("not beyond the start distance") << left << left << QPoint(start, 0) << QPoint(0, 0);
    QTest::newRow("one pixel beyond it") << left << left << QPoint(start, 1) << QPoint(start, 1);
    QTest::newRow("up and left") << left << left << QPoint(-40, -30) << QPoint(-40, -30);
    QTest::newRow("button no longer held") << left << none << QPoint(40, 30) << QPoint(0, 0);
    QTest::newRow("right button") << right << right << QPoint(40, 30) << QPoint(0, 0);
    QTest::newRow("left joined a press of the right one") << right << left << QPoint(40, 30) << QPoint(0, 0);
}

void TestUpdateLogWidget::drag()
{
    QFETCH(int, pressed);
    QFETCH(int, held);
    QFETCH(QPoint, by);
    QFETCH(QPoint, moved);
    ShownLog dialog;
    const QPoint before = dialog.pos();
    const QPoint press = before + QPoint(5, 5);
    send(dialog, QEvent::MouseButtonPress, press, Qt::MouseButton(pressed), Qt::MouseButtons(pressed));
    send(dialog, QEvent::MouseMove, press + by, Qt::NoButton, Qt::MouseButtons(held));
    QCOMPARE(dialog.pos() - before, moved);
}

void TestUpdateLogWidget::dragFollowsBackToItsStart()
{
    ShownLog dialog;
    const QPoint before = dialog.pos();
    const QPoint press = before + QPoint(5, 5);
    send(dialog, QEvent::MouseButtonPress, press, Qt::LeftButton, Qt::LeftButton);
    send(dialog, QEvent::MouseMove, press + QPoint(50, 0), Qt::NoButton, Qt::LeftButton);
    send(dialog, QEvent::MouseMove, press + QPoint(2, 0), Qt::NoButton, Qt::LeftButton);
    QCOMPARE(dialog.pos() - before, QPoint(2, 0));
}

void TestUpdateLogWidget::releaseEndsTheDrag()
{
    ShownLog dialog;
    const QPoint before = dialog.pos();
    const QPoint press = before + QPoint(5, 5);
    send(dialog, QEvent::MouseButtonPress, press, Qt::LeftButton, Qt::LeftButton);
    send(dialog, QEvent::MouseButtonRelease, press, Qt::LeftButton, Qt::NoButton);
    send(dialog, QEvent::MouseMove, press + QPoint(50, 50), Qt::NoButton, Qt::LeftButton);
    QCOMPARE(dialog.pos(), before);
}

void TestUpdateLogWidget::look()
{
    Ovryn_UpdateLogWidget dialog(1, nullptr);
    dialog.show();
    QImage image(dialog.size(), QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    dialog.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    QCOMPARE(image.pixelColor(0, 0).alpha(), 0);
    QCOMPARE(image.pixelColor(0, 100), QColor(252, 10, 53, 255));
    QCOMPARE(image.pixelColor(dialog.width() / 2, 100), QColor(0, 0, 0, 220)); // the text box is clear
}

void TestUpdateLogWidget::everyConnectionExists()
{
    ConnectWarnings warnings;
    Ovryn_UpdateLogWidget dialog(1, nullptr);
    QCOMPARE(warnings.list(), QStringList());
}

QTEST_MAIN(TestUpdateLogWidget)
#include "TestUpdateLogWidget.moc"
