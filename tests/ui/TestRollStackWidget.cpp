#include "support/ConnectWarnings.h"
#include "ui/RollStackWidget.h"

#include <QPointer>
#include <QTest>
#include <QTimer>

#include <memory>

namespace
{

constexpr QSize kSize(100, 50);
constexpr int kStartX = 133; // 100 + 100 / 3

} // namespace

/// The slides, stepped by hand: each tick moves both pages 15 pixels to the left.
class TestRollStackWidget : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void addedPage();
    void nullIsIgnored();
    void addingTwiceChangesNothing();
    void firstPage_data();
    void firstPage();
    void resizeFitsEveryPage();
    void currentPageAgainDoesNothing();
    void strangeWidgetIsIgnored();
    void step_data();
    void step();
    void firstSlideHasNoOldPage();
    void secondChangeFinishesTheFirst();
    void hiddenStackChangesUnseen();
    void showAndHide();
    void clearedStackHasNoPage();
    void tickWithoutPagesStopsTheTimer();
    void clearedInMidSlide();
    void deletedPageIsForgotten_data();
    void deletedPageIsForgotten();
    void timerRunsTheSlideToItsEnd();
    void everyConnectionExists();

private:
    void tick(int times)
    {
        for (int i = 0; i < times; ++i)
            stack->onSettingTimerTimeout();
    }
    /// A shown stack with page a at rest and the timer still.
    void restOnA()
    {
        stack->showStack();
        stack->addWidget(a);
        stack->addWidget(b);
        stack->addWidget(c);
        a->show();
    }

    std::unique_ptr<QWidget> window;
    RollStackWidget *stack = nullptr;
    QTimer *timer = nullptr;
    QPointer<QWidget> a;
    QPointer<QWidget> b;
    QPointer<QWidget> c;
};

void TestRollStackWidget::init()
{
    window = std::make_unique<QWidget>();
    window->resize(200, 200);
    stack = new RollStackWidget(window.get());
    stack->resize(kSize);
    window->show();
    timer = stack->findChild<QTimer *>();
    QVERIFY(timer);
    a = new QWidget(window.get());
    b = new QWidget(window.get());
    c = new QWidget(window.get());
}

void TestRollStackWidget::cleanup()
{
    window.reset();
}

void TestRollStackWidget::addedPage()
{
    QVERIFY(!stack->isShown());
    a->show();
    stack->addWidget(a);
    QCOMPARE(a->parentWidget(), stack);
    QCOMPARE(a->geometry(), QRect(0, 0, 100, 50));
    QVERIFY(a->isHidden());
    QVERIFY(!timer->isActive());
}

void TestRollStackWidget::nullIsIgnored()
{
    stack->addWidget(nullptr);
    stack->setCurrentWidget(nullptr);
    QVERIFY(!timer->isActive());
    stack->showStack();
    stack->addWidget(a);
    stack->setCurrentWidget(a); // it is current only as the first of the list
    QVERIFY(!timer->isActive());
}

void TestRollStackWidget::addingTwiceChangesNothing()
{
    stack->addWidget(a);
    a->setGeometry(3, 4, 5, 6);
    a->show();
    stack->addWidget(a);
    QCOMPARE(a->geometry(), QRect(3, 4, 5, 6));
    QVERIFY(!a->isHidden());
}

void TestRollStackWidget::firstPage_data()
{
    QTest::addColumn<bool>("shown");
    QTest::addColumn<bool>("changeStartsTheTimer");
    QTest::newRow("current at once on a shown stack") << true << false;
    QTest::newRow("not current on a hidden stack") << false << true;
}

void TestRollStackWidget::firstPage()
{
    QFETCH(bool, shown);
    if (shown)
        stack->showStack();
    stack->addWidget(a);
    QVERIFY(a->isHidden());
    stack->setCurrentWidget(a);
    QTEST(timer->isActive(), "changeStartsTheTimer");
}

void TestRollStackWidget::resizeFitsEveryPage()
{
    restOnA();
    stack->resize(70, 30);
    for (QWidget *page : {a.data(), b.data(), c.data()})
        QCOMPARE(page->geometry(), QRect(0, 0, 70, 30));
    stack->setCurrentWidget(b);
    QCOMPARE(b->x(), 93); // 70 + 70 / 3
}

void TestRollStackWidget::currentPageAgainDoesNothing()
{
    restOnA();
    a->move(7, 8);
    stack->setCurrentWidget(a);
    QVERIFY(!timer->isActive());
    QCOMPARE(a->pos(), QPoint(7, 8));
    QVERIFY(a->isVisible());
}

void TestRollStackWidget::strangeWidgetIsIgnored()
{
    restOnA();
    QWidget strange(window.get());
    strange.move(7, 8);
    stack->setCurrentWidget(&strange);
    QVERIFY(!timer->isActive());
    QCOMPARE(strange.pos(), QPoint(7, 8));
    QCOMPARE(strange.parentWidget(), window.get());
}

void TestRollStackWidget::step_data()
{
    QTest::addColumn<int>("ticks");
    QTest::addColumn<int>("oldX");
    QTest::addColumn<bool>("oldVisible");
    QTest::addColumn<int>("newX");
    QTest::addColumn<bool>("running");
    QTest::newRow("start") << 0 << 0 << true << kStartX << true;
    QTest::newRow("first step") << 1 << -15 << true << 118 << true;
    QTest::newRow("the gap stays a third wide") << 6 << -90 << true << 43 << true;
    QTest::newRow("the old page is out first and back at rest") << 7 << 0 << false << 28 << true;
    QTest::newRow("last step but one") << 8 << 0 << false << 13 << true;
    QTest::newRow("the new page stops at 0") << 9 << 0 << false << 0 << false;
    QTest::newRow("a step too many") << 10 << 0 << false << 0 << false;
}

void TestRollStackWidget::step()
{
    QFETCH(int, ticks);
    restOnA();
    stack->setCurrentWidget(b);
    tick(ticks);
    QTEST(a->x(), "oldX");
    QTEST(a->isVisible(), "oldVisible");
    QTEST(b->x(), "newX");
    QVERIFY(b->isVisible());
    QTEST(timer->isActive(), "running");
    QCOMPARE(a->y(), 0);
    QCOMPARE(b->y(), 0);
}

void TestRollStackWidget::firstSlideHasNoOldPage()
{
    stack->addWidget(a);
    stack->addWidget(b);
    stack->showStack();
    stack->setCurrentWidget(b);
    tick(8);
    QCOMPARE(b->x(), 13);
    QVERIFY(timer->isActive());
    tick(1);
    QCOMPARE(b->x(), 0);
    QVERIFY(!timer->isActive());
    QVERIFY(a->isHidden());
}

void TestRollStackWidget::secondChangeFinishesTheFirst()
{
    restOnA();
    stack->setCurrentWidget(b);
    tick(3);
    QCOMPARE(a->x(), -45);
    stack->setCurrentWidget(c);
    QVERIFY(a->isHidden());
    QCOMPARE(b->pos(), QPoint(0, 0));
    QVERIFY(b->isVisible());
    QCOMPARE(c->pos(), QPoint(kStartX, 0));
    QVERIFY(timer->isActive());
    tick(1);
    QCOMPARE(b->x(), -15);
    QCOMPARE(c->x(), 118);
    tick(8);
    QVERIFY(b->isHidden());
    QCOMPARE(c->x(), 0);
    QVERIFY(!timer->isActive());
}

void TestRollStackWidget::hiddenStackChangesUnseen()
{
    restOnA();
    stack->hideStack();
    stack->setCurrentWidget(b);
    QVERIFY(b->isHidden());
    QVERIFY(timer->isActive());
    tick(1);
    QCOMPARE(a->x(), 0); // there is no page going out
    QCOMPARE(b->x(), 118);
    tick(8);
    QVERIFY(!timer->isActive());
    QVERIFY(b->isHidden());
    stack->showStack();
    QVERIFY(b->isVisible());
    QVERIFY(a->isHidden());
}

void TestRollStackWidget::showAndHide()
{
    stack->hideStack();
    QVERIFY(!stack->isShown());
    stack->showStack();
    QVERIFY(stack->isShown());
    stack->addWidget(a);
    stack->showStack();
    QVERIFY(a->isVisible());
    stack->hideStack();
    QVERIFY(!stack->isShown());
    QVERIFY(a->isHidden());
}

void TestRollStackWidget::clearedStackHasNoPage()
{
    stack->clearCurrent();
    restOnA();
    stack->clearCurrent();
    QVERIFY(!stack->isShown());
    QVERIFY(a->isHidden());
    stack->showStack();
    QVERIFY(a->isHidden());
    stack->setCurrentWidget(a);
    QVERIFY(timer->isActive());
    QVERIFY(a->isVisible());
}

void TestRollStackWidget::tickWithoutPagesStopsTheTimer()
{
    stack->addWidget(a);
    stack->setCurrentWidget(a);
    stack->clearCurrent();
    QVERIFY(timer->isActive());
    tick(1);
    QVERIFY(!timer->isActive());
}

void TestRollStackWidget::clearedInMidSlide()
{
    restOnA();
    stack->setCurrentWidget(b);
    tick(2);
    stack->clearCurrent();
    QVERIFY(b->isHidden());
    tick(1);
    QCOMPARE(a->x(), -45);
    QCOMPARE(b->x(), 103);
    tick(20);
    QVERIFY(a->isHidden());
    QCOMPARE(a->x(), 0);
    QVERIFY(timer->isActive()); // the page that was cleared never arrives
    stack->showStack();
    stack->setCurrentWidget(c);
    QCOMPARE(c->x(), kStartX);
    tick(9);
    QCOMPARE(c->x(), 0);
    QVERIFY(!timer->isActive());
}

void TestRollStackWidget::deletedPageIsForgotten_data()
{
    QTest::addColumn<bool>("incoming");
    QTest::newRow("the page going out") << false;
    QTest::newRow("the page coming in") << true;
}

void TestRollStackWidget::deletedPageIsForgotten()
{
    QFETCH(bool, incoming);
    restOnA();
    stack->setCurrentWidget(b);
    tick(2);
    delete (incoming ? b : a);
    tick(10);
    stack->resize(80, 40);
    stack->setCurrentWidget(c);
    QCOMPARE(c->x(), 106);
    tick(20);
    QCOMPARE(c->x(), 0);
    QVERIFY(c->isVisible());
}

void TestRollStackWidget::timerRunsTheSlideToItsEnd()
{
    QCOMPARE(timer->interval(), 15);
    restOnA();
    stack->setCurrentWidget(b);
    QTRY_VERIFY(!timer->isActive());
    QCOMPARE(b->pos(), QPoint(0, 0));
    QVERIFY(a->isHidden());
}

void TestRollStackWidget::everyConnectionExists()
{
    ConnectWarnings warnings;
    RollStackWidget another;
    QCOMPARE(warnings.list(), QStringList());
}

QTEST_MAIN(TestRollStackWidget)
#include "TestRollStackWidget.moc"
