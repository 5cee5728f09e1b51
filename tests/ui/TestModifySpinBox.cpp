#include "ui/ModifySpinBox.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

/// The number box, typed into by real key events.
class TestModifySpinBox : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void typing_data();
    void typing();
    void snappedCursorIsAtTheEnd();
    void selectionGoesBeforeTheDigitCounts();
    void editChanging_data();
    void editChanging();
    void keypadEnterEndsTheEdit();
    void keypadEnterWithoutAParentIsAnOrdinaryKey();
    void returnIsLeftToTheToolkit();
    void noInputMethodAndNoContextMenu();

private:
    QWidget *parent = nullptr;
    ModifySpinBox *box = nullptr;
};

void TestModifySpinBox::init()
{
    parent = new QWidget;
    box = new ModifySpinBox(parent);
    box->setRange(0, 100);
    parent->show();
    parent->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(parent));
    box->setFocus();
    QTRY_VERIFY(box->hasFocus());
}

void TestModifySpinBox::cleanup()
{
    delete parent;
    parent = nullptr;
}

void TestModifySpinBox::typing_data()
{
    QTest::addColumn<int>("minimum");
    QTest::addColumn<int>("maximum");
    QTest::addColumn<int>("held");
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QString>("text");

    QTest::newRow("10 and a 5 snap to 100") << 0 << 100 << 10 << "5"
                                            << "100";
    QTest::newRow("4 and a 5 are 45") << 0 << 100 << 4 << "5"
                                      << "45";
    QTest::newRow("exactly the maximum") << 0 << 100 << 10 << "0"
                                         << "100";
    QTest::newRow("one below the maximum") << 0 << 100 << 9 << "9"
                                           << "99";
    QTest::newRow("beyond the maximum again and again") << 0 << 100 << 10 << "57310"
                                                        << "100";
    QTest::newRow("a maximum of many digits") << 0 << 2147483647 << 2147483646 << "9"
                                              << "2147483647";
    QTest::newRow("negative numbers count with their sign") << -100 << 50 << -1 << "5"
                                                            << "-15";
    QTest::newRow("below a negative minimum the toolkit refuses") << -100 << 50 << -15 << "5"
                                                                  << "-15";
    QTest::newRow("a letter is refused") << 0 << 100 << 10 << "x"
                                         << "10";
    QTest::newRow("an empty range snaps at once") << 0 << 0 << 0 << "7"
                                                  << "0";
}

void TestModifySpinBox::typing()
{
    QFETCH(int, minimum);
    QFETCH(int, maximum);
    QFETCH(int, held);
    QFETCH(QString, keys);
    box->setRange(minimum, maximum);
    box->setValue(held);
    QTest::keyClick(box, Qt::Key_End);
    QTest::keyClicks(box, keys);
    QTEST(box->text(), "text");
}

void TestModifySpinBox::snappedCursorIsAtTheEnd()
{
    auto *line = box->findChild<QLineEdit *>();
    box->setValue(10);
    line->setCursorPosition(0); // the digit counts as typed at the end all the same
    QTest::keyClick(box, Qt::Key_5);
    QCOMPARE(box->text(), QString("100"));
    QCOMPARE(line->cursorPosition(), 3);
    QVERIFY(!line->hasSelectedText());
}

void TestModifySpinBox::selectionGoesBeforeTheDigitCounts()
{
    box->setValue(10);
    box->selectAll();
    QTest::keyClick(box, Qt::Key_5);
    QCOMPARE(box->text(), QString("5"));

    box->setValue(10);
    box->findChild<QLineEdit *>()->setSelection(1, 1);
    QTest::keyClick(box, Qt::Key_7);
    QCOMPARE(box->text(), QString("17"));
}

void TestModifySpinBox::editChanging_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("signalCount");

    QTest::newRow("0") << int(Qt::Key_0) << 1;
    QTest::newRow("9") << int(Qt::Key_9) << 1;
    QTest::newRow("before 0") << int(Qt::Key_Slash) << 0;
    QTest::newRow("after 9") << int(Qt::Key_Colon) << 0;
    QTest::newRow("native code of the pad's 0") << 0x60 << 1;
    QTest::newRow("native code of the pad's 9") << 0x69 << 1;
    QTest::newRow("after the pad's 9") << 0x6A << 0;
    QTest::newRow("backspace") << int(Qt::Key_Backspace) << 1;
    QTest::newRow("delete") << int(Qt::Key_Delete) << 0;
    QTest::newRow("up") << int(Qt::Key_Up) << 0;
}

void TestModifySpinBox::editChanging()
{
    QFETCH(int, key);
    box->setValue(42);
    QSignalSpy spy(box, SIGNAL(editChanging()));
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier); // the toolkit's test call knows no native codes
    QApplication::sendEvent(box, &event);
    QTEST(spy.count(), "signalCount");
}

void TestModifySpinBox::keypadEnterEndsTheEdit()
{
    box->setValue(10);
    QTest::keyClick(box, Qt::Key_End);
    QSignalSpy finished(box, SIGNAL(editingFinished()));
    QTest::keyClick(box, Qt::Key_Backspace);
    QCOMPARE(finished.count(), 0);
    QTest::keyClick(box, Qt::Key_Enter, Qt::KeypadModifier);
    QVERIFY(parent->hasFocus());
    QVERIFY(!box->hasFocus());
    QCOMPARE(finished.count(), 1); // only from the lost focus: the key itself is consumed
    QCOMPARE(box->value(), 1);
}

void TestModifySpinBox::keypadEnterWithoutAParentIsAnOrdinaryKey()
{
    ModifySpinBox alone;
    alone.show();
    QVERIFY(QTest::qWaitForWindowExposed(&alone));
    QSignalSpy finished(&alone, SIGNAL(editingFinished()));
    QTest::keyClick(&alone, Qt::Key_Enter, Qt::KeypadModifier);
    QCOMPARE(finished.count(), 1);
}

void TestModifySpinBox::returnIsLeftToTheToolkit()
{
    QSignalSpy finished(box, SIGNAL(editingFinished()));
    QTest::keyClick(box, Qt::Key_Return);
    QCOMPARE(finished.count(), 1);
    QVERIFY(box->hasFocus());
}

void TestModifySpinBox::noInputMethodAndNoContextMenu()
{
    QVERIFY(!box->testAttribute(Qt::WA_InputMethodEnabled));
    QVERIFY(!box->findChild<QLineEdit *>()->testAttribute(Qt::WA_InputMethodEnabled));
    QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(2, 2), box->mapToGlobal(QPoint(2, 2)));
    QApplication::sendEvent(box, &event); // a menu would run its own event loop here
    QVERIFY(QApplication::activePopupWidget() == nullptr);
    QCOMPARE(box->contextMenuPolicy(), Qt::NoContextMenu);
}

QTEST_MAIN(TestModifySpinBox)
#include "TestModifySpinBox.moc"
