#include "board/led/Ovryn_ColorButton.h"
#include "board/led/Ovryn_ColorButtonGroup.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QtTest>

/// One swatch, driven by the mouse.
class TestColorButton : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void startsWhiteAndUnchecked();
    void clickIsActedOnLate();
    void clickTurnsChecked();
    void defaultDelay();
    void doubleClickSelectsNothing();
    void otherButtonsDoNothing();
    void disabledOneIsNotClicked();
    void clickOnTheSelectedOneOfAGroup();
    void twoClicksWithinTheDelayCountOnce();
    void goesBeforeItsGroupAndBehindIt();
    void fill_data();
    void fill();
    void outlineTellsTheState();
    void checkedCorner();

private:
    static constexpr int kDelayMs = 5;
    static constexpr int kSide = 28;

    [[nodiscard]] QColor pixel(int x, int y) const { return button->grab().toImage().pixelColor(x, y); }

    Ovryn_ColorButton *button = nullptr;
    QSignalSpy *clicked = nullptr;
    QSignalSpy *doubleClicked = nullptr;
    QSignalSpy *changed = nullptr;
};

void TestColorButton::init()
{
    button = new Ovryn_ColorButton;
    button->setClickDelay(kDelayMs);
    button->resize(kSide, kSide);
    button->setColor(QColor(0, 127, 255));
    button->show();
    clicked = new QSignalSpy(button, SIGNAL(onMouseClick(Ovryn_ColorButton *)));
    doubleClicked = new QSignalSpy(button, SIGNAL(onMouseDuobleClick(Ovryn_ColorButton *)));
    changed = new QSignalSpy(button, SIGNAL(stateChanged(bool)));
}

void TestColorButton::cleanup()
{
    delete clicked;
    delete doubleClicked;
    delete changed;
    delete button;
}

void TestColorButton::startsWhiteAndUnchecked()
{
    const Ovryn_ColorButton fresh;
    QCOMPARE(fresh.getColor(), QColor(255, 255, 255));
    QVERIFY(!fresh.isChecked());
}

void TestColorButton::clickIsActedOnLate()
{
    QTest::mouseClick(button, Qt::LeftButton);
    QVERIFY(!button->isChecked()); // a second click could still come
    QCOMPARE(clicked->size(), 0);
    QTRY_COMPARE(clicked->size(), 1);
    QVERIFY(button->isChecked());
    QCOMPARE(clicked->first().first().value<Ovryn_ColorButton *>(), button);
    QCOMPARE(changed->size(), 1);
}

void TestColorButton::clickTurnsChecked()
{
    button->onTimeOut();
    button->onTimeOut();
    QVERIFY(!button->isChecked());
    QCOMPARE(changed->size(), 2);
    QCOMPARE(changed->last().first().toBool(), false);
    button->setCheck(true);
    button->setCheck(true);
    QCOMPARE(changed->size(), 3);
    QCOMPARE(clicked->size(), 2); // setCheck is no click
}

void TestColorButton::defaultDelay()
{
    QCOMPARE(Ovryn_ColorButton::kClickDelayMs, 200);
    Ovryn_ColorButton fresh;
    QElapsedTimer clock;
    clock.start();
    QTest::mouseClick(&fresh, Qt::LeftButton);
    QTRY_VERIFY(fresh.isChecked());
    QVERIFY(clock.elapsed() >= 190); // a coarse timer may be early by a twentieth
}

void TestColorButton::doubleClickSelectsNothing()
{
    QTest::mouseDClick(button, Qt::LeftButton);
    QCOMPARE(doubleClicked->size(), 1);
    QTest::qWait(10 * kDelayMs); // nothing to poll for: nothing may come
    QVERIFY(!button->isChecked());
    QCOMPARE(clicked->size(), 0);
}

void TestColorButton::otherButtonsDoNothing()
{
    QTest::mouseClick(button, Qt::RightButton);
    QTest::mouseDClick(button, Qt::MiddleButton);
    QTest::qWait(10 * kDelayMs);
    QCOMPARE(clicked->size() + doubleClicked->size() + changed->size(), 0);
}

void TestColorButton::disabledOneIsNotClicked()
{
    button->setEnabled(false);
    QTest::mouseClick(button, Qt::LeftButton);
    QTest::qWait(10 * kDelayMs);
    QCOMPARE(clicked->size(), 0);
    QVERIFY(!button->isChecked());
}

void TestColorButton::clickOnTheSelectedOneOfAGroup()
{
    Ovryn_ColorButtonGroup group; // single mode
    group.addButton(button);
    button->setCheck(true);
    QTest::mouseClick(button, Qt::LeftButton);
    QTRY_COMPARE(clicked->size(), 1); // told although the group refused
    QVERIFY(button->isChecked());
    QCOMPARE(changed->size(), 1);
}

void TestColorButton::twoClicksWithinTheDelayCountOnce()
{
    button->setClickDelay(100);
    QTest::mousePress(button, Qt::LeftButton);
    QTest::mouseRelease(button, Qt::LeftButton);
    QTest::mousePress(button, Qt::LeftButton); // not told as a double click, so the running time goes on
    QTest::mouseRelease(button, Qt::LeftButton);
    QTRY_COMPARE(clicked->size(), 1);
    QVERIFY(button->isChecked());
}

void TestColorButton::goesBeforeItsGroupAndBehindIt()
{
    Ovryn_ColorButtonGroup group;
    auto *shortLived = new Ovryn_ColorButton;
    group.addButton(shortLived);
    group.addButton(button);
    shortLived->setCheck(true);
    delete shortLived;
    QCOMPARE(group.selectedButtons(), QList<Ovryn_ColorButton *>());
    button->setCheck(true);
    QCOMPARE(group.selectedButtons(), QList<Ovryn_ColorButton *>{button});

    auto *shortGroup = new Ovryn_ColorButtonGroup;
    shortGroup->addButton(button);
    delete shortGroup;
    button->setCheck(true);
    QVERIFY(button->isChecked()); // on its own again
}

void TestColorButton::fill_data()
{
    QTest::addColumn<QColor>("color");
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<QColor>("painted");

    QTest::newRow("enabled") << QColor(0, 127, 255) << true << QColor(0, 127, 255);
    QTest::newRow("disabled keeps the hue") << QColor(255, 0, 0) << false << QColor(150, 0, 0);
    QTest::newRow("disabled light colour") << QColor(200, 255, 200) << false << QColor(0, 150, 0);
    QTest::newRow("disabled white has no hue") << QColor(255, 255, 255) << false << QColor(150, 150, 150);
    QTest::newRow("disabled black has no hue") << QColor(0, 0, 0) << false << QColor(150, 150, 150);
}

void TestColorButton::fill()
{
    QFETCH(QColor, color);
    QFETCH(bool, enabled);
    button->setColor(color);
    button->setEnabled(enabled);
    QTEST(pixel(kSide / 2, kSide / 2), "painted");
    if (!enabled)
        QCOMPARE(pixel(0, 0), pixel(kSide / 2, kSide / 2)); // no outline
}

void TestColorButton::outlineTellsTheState()
{
    button->setColor(Qt::black);
    const auto brightness = [this] {
        return pixel(0, kSide / 2).red();
    };
    const int normal = brightness();
    QEvent enter(QEvent::Enter);
    QApplication::sendEvent(button, &enter);
    const int hovered = brightness();
    QTest::mousePress(button, Qt::LeftButton);
    const int pressed = brightness();
    QVERIFY2(normal < hovered && hovered < pressed,
             qPrintable(QStringLiteral("%1 %2 %3").arg(normal).arg(hovered).arg(pressed)));
    QCOMPARE(pressed, 255);
    QTest::mouseRelease(button, Qt::LeftButton);
    QCOMPARE(brightness(), hovered);
    QTest::mousePress(button, Qt::LeftButton);
    QTest::mouseRelease(button, Qt::LeftButton, Qt::NoModifier, QPoint(kSide + 5, 0));
    QCOMPARE(brightness(), normal); // let go outside
    QApplication::sendEvent(button, &enter);
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(button, &leave);
    QCOMPARE(brightness(), normal);
}

void TestColorButton::checkedCorner()
{
    QCOMPARE(pixel(3, 3), QColor(0, 127, 255));
    button->setCheck(true);
    QCOMPARE(pixel(3, 3), QColor(255, 255, 255));
    QCOMPARE(pixel(kSide / 3, kSide / 3), QColor(0, 127, 255)); // beyond the diagonal
    QCOMPARE(pixel(kSide - 4, kSide - 4), QColor(0, 127, 255));
}

QTEST_MAIN(TestColorButton)
#include "TestColorButton.moc"
