#include "overclock/FanCurveEditorTest.h"

#include <random>

namespace
{

Curve defaultWith(int index, QPoint value)
{
    Curve curve = FanCurve::defaultCurve();
    curve[index] = value;
    return curve;
}

Curve defaultAnd(int index, QPoint value)
{
    Curve curve = FanCurve::defaultCurve();
    curve.insert(index, value);
    return curve;
}

bool neverFalls(const Curve &curve)
{
    for (int i = 0; i + 1 < curve.size(); ++i) {
        if (curve[i].x() > curve[i + 1].x() || curve[i].y() > curve[i + 1].y())
            return false;
    }
    return true;
}

} // namespace

/// The fan curve editor under the mouse.
class TestUserDefineFanSpeed : public FanCurveEditorTest
{
    Q_OBJECT

private slots:
    void startsWithTheDefaultCurve();
    void setPoints_data();
    void setPoints();
    void resetToDefault();
    void resizeKeepsTheValues_data();
    void resizeKeepsTheValues();
    void reachOfAPress_data();
    void reachOfAPress();
    void drag_data();
    void drag();
    void dragEndsWithTheRelease();
    void nodeOnTheFirstNodeCanBeTakenAway();
    void draggedNodeTakesItsNeighboursValue();
    void doubleClick_data();
    void doubleClick();
    void elevenNodesAreTheMost();
    void curveReplacedInTheMiddleOfADrag();
    void randomHandsKeepACurve_data();
    void randomHandsKeepACurve();
};

void TestUserDefineFanSpeed::startsWithTheDefaultCurve()
{
    const Ovryn_UserDefineFanSpeed fresh;
    QCOMPARE(fresh.getPoints(), FanCurve::defaultCurve());
    QVERIFY(fresh.hasMouseTracking());
}

void TestUserDefineFanSpeed::setPoints_data()
{
    QTest::addColumn<Curve>("points");
    QTest::addColumn<Curve>("taken");
    const Curve other = {{0, 0}, {33, 44}, {100, 100}};

    QTest::newRow("own curve") << other << other;
    QTest::newRow("two nodes") << Curve{{0, 0}, {100, 100}} << Curve{{0, 0}, {100, 100}};
    QTest::newRow("last node (100,90)") << Curve{{0, 0}, {50, 50}, {100, 90}} << FanCurve::defaultCurve();
    QTest::newRow("first node (0,1)") << Curve{{0, 1}, {100, 100}} << FanCurve::defaultCurve();
    QTest::newRow("one node") << Curve{{0, 0}} << FanCurve::defaultCurve();
    QTest::newRow("none") << Curve{} << FanCurve::defaultCurve();
    QTest::newRow("eleven nodes") << kElevenNodes << kElevenNodes;
}

void TestUserDefineFanSpeed::setPoints()
{
    QFETCH(Curve, points);
    editor->setPoints({{0, 0}, {7, 7}, {100, 100}});
    editor->setPoints(points);
    QTEST(editor->getPoints(), "taken");
    QCOMPARE(changes->count(), 0);
}

void TestUserDefineFanSpeed::resetToDefault()
{
    editor->setPoints(kElevenNodes);
    editor->resetToDefault();
    QCOMPARE(editor->getPoints(), FanCurve::defaultCurve());
    QCOMPARE(changes->count(), 0);
    doubleClickAt(kThird); // the pixels follow
    QCOMPARE(editor->getPoints().size(), 4);
}

void TestUserDefineFanSpeed::resizeKeepsTheValues_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("larger") << QSize(700, 500);
    QTest::newRow("a cell is one pixel") << QSize(55, 45);
    QTest::newRow("no cell") << QSize(50, 40);
    QTest::newRow("nothing") << QSize(0, 0);
}

void TestUserDefineFanSpeed::resizeKeepsTheValues()
{
    QFETCH(QSize, size);
    const Curve odd = {{0, 0}, {33, 17}, {67, 71}, {100, 100}};
    editor->setPoints(odd);
    editor->resize(size);
    QCOMPARE(editor->getPoints(), odd);
    editor->resize(kSide, kSide);
    QCOMPARE(editor->getPoints(), odd);
    QCOMPARE(changes->count(), 0);

    editor->resize(700, 500);
    doubleClickAt(FanCurvePlot::forSize({700, 500}).pixelOf({33, 17})); // the pixels went with the size
    QCOMPARE(editor->getPoints(), Curve({{0, 0}, {67, 71}, {100, 100}}));
}

void TestUserDefineFanSpeed::reachOfAPress_data()
{
    QTest::addColumn<QPoint>("offset");
    QTest::addColumn<bool>("hit");

    QTest::newRow("on it") << QPoint(0, 0) << true;
    QTest::newRow("3 right and 3 down: each alone counts") << QPoint(3, 3) << true;
    QTest::newRow("3 left and 3 up") << QPoint(-3, -3) << true;
    QTest::newRow("4 right") << QPoint(4, 0) << false;
    QTest::newRow("4 left") << QPoint(-4, 0) << false;
    QTest::newRow("4 up") << QPoint(0, -4) << false;
    QTest::newRow("4 down") << QPoint(0, 4) << false;
}

void TestUserDefineFanSpeed::reachOfAPress()
{
    QFETCH(QPoint, offset);
    QFETCH(bool, hit);
    press(kThird + offset);
    move(QPoint(162, 210));
    QCOMPARE(editor->getPoints(), hit ? defaultWith(2, {40, 40}) : FanCurve::defaultCurve());
    QCOMPARE(changes->count(), hit ? 1 : 0);
}

void TestUserDefineFanSpeed::drag_data()
{
    QTest::addColumn<QPoint>("from");
    QTest::addColumn<QPoint>("to");
    QTest::addColumn<Curve>("curve");
    QTest::addColumn<int>("signalCount");
    const Curve same = FanCurve::defaultCurve();

    QTest::newRow("freely") << kThird << QPoint(162, 210) << defaultWith(2, {40, 40}) << 1;
    QTest::newRow("one pixel truncates") << kThird << QPoint(196, 176) << defaultWith(2, {50, 50}) << 1;
    QTest::newRow("first node") << kFirst << QPoint(100, 300) << same << 0;
    QTest::newRow("last node") << kLast << QPoint(300, 100) << same << 0;
    QTest::newRow("past the right neighbour stops at its x")
        << kThird << QPoint(340, 108) << defaultWith(2, {80, 70}) << 1;
    QTest::newRow("past the left neighbour stops at its x")
        << kThird << QPoint(60, 210) << defaultWith(2, {30, 40}) << 1;
    QTest::newRow("above the right neighbour stops at its height")
        << kThird << QPoint(228, 10) << defaultWith(2, {60, 90}) << 1;
    QTest::newRow("below the left neighbour stops at its height")
        << kThird << QPoint(162, 340) << defaultWith(2, {40, 20}) << 1;
    QTest::newRow("past and above: on the right neighbour")
        << kThird << QPoint(370, 0) << defaultWith(2, {80, 90}) << 1;
    QTest::newRow("past and below: on the left neighbour")
        << kThird << QPoint(31, 345) << defaultWith(2, {30, 20}) << 1;
    QTest::newRow("outside the widget, to the right")
        << kFourth << QPoint(2000, 40) << defaultWith(3, {100, 90}) << 1;
    QTest::newRow("outside the widget, above") << kFourth << QPoint(294, -2000) << defaultWith(3, {80, 100}) << 1;
    QTest::newRow("second node onto the first") << kSecond << QPoint(-50, 2000) << defaultWith(1, {0, 0}) << 1;
    QTest::newRow("from where no node is") << QPoint(250, 250) << QPoint(162, 210) << same << 0;
}

void TestUserDefineFanSpeed::drag()
{
    QFETCH(QPoint, from);
    QFETCH(QPoint, to);
    press(from);
    QCOMPARE(changes->count(), 0);
    move(to);
    release(to);
    QTEST(editor->getPoints(), "curve");
    QTEST(changes->count(), "signalCount");
}

void TestUserDefineFanSpeed::dragEndsWithTheRelease()
{
    press(kThird);
    move({162, 210});
    release({162, 210});
    move(kThird);
    QCOMPARE(editor->getPoints(), defaultWith(2, {40, 40}));
    QCOMPARE(changes->count(), 1);
}

void TestUserDefineFanSpeed::nodeOnTheFirstNodeCanBeTakenAway()
{
    editor->setPoints({{0, 0}, {0, 0}, {100, 100}});
    press(kFirst);
    move({195, 176});
    release({195, 176});
    QCOMPARE(editor->getPoints(), Curve({{0, 0}, {50, 50}, {100, 100}}));
}

void TestUserDefineFanSpeed::draggedNodeTakesItsNeighboursValue()
{
    // The pixel of 33 degrees maps back to 32. A curve that fell by that unit would be dropped when it is
    // read back from the settings.
    editor->setPoints({{0, 0}, {33, 33}, {50, 50}, {100, 100}});
    press(kThird);
    move({31, 345});
    QCOMPARE(editor->getPoints(), Curve({{0, 0}, {33, 33}, {33, 33}, {100, 100}}));
}

void TestUserDefineFanSpeed::doubleClick_data()
{
    QTest::addColumn<QPoint>("position");
    QTest::addColumn<Curve>("curve");
    QTest::addColumn<int>("signalCount");
    const Curve same = FanCurve::defaultCurve();

    QTest::newRow("between two nodes adds one") << QPoint(162, 227) << defaultAnd(2, {40, 35}) << 1;
    QTest::newRow("on a middle node removes it") << kThird << Curve{{0, 0}, {30, 20}, {80, 90}, {100, 100}} << 1;
    QTest::newRow("at the edge of a node's reach removes it")
        << kThird + QPoint(3, -3) << Curve{{0, 0}, {30, 20}, {80, 90}, {100, 100}} << 1;
    QTest::newRow("below the left neighbour is lifted to it") << QPoint(162, 340) << defaultAnd(2, {40, 20}) << 1;
    QTest::newRow("above the right neighbour is lowered to it") << QPoint(162, 10) << defaultAnd(2, {40, 50}) << 1;
    QTest::newRow("above the plot is lowered too") << QPoint(162, 1) << defaultAnd(2, {40, 50}) << 1;
    QTest::newRow("below the plot is lifted too") << QPoint(162, 370) << defaultAnd(2, {40, 20}) << 1;
    QTest::newRow("exactly above a node finds no segment") << QPoint(195, 100) << same << 0;
    QTest::newRow("exactly below a node finds no segment") << QPoint(129, 340) << same << 0;
    QTest::newRow("left of the plot") << QPoint(29, 200) << same << 0;
    QTest::newRow("right of the plot") << QPoint(361, 200) << same << 0;
    QTest::newRow("on the first node's column") << kFirst << same << 0;
    QTest::newRow("on the first node, outside the nodes") << kFirst + QPoint(-2, 0) << same << 0;
    QTest::newRow("on the first node, between the nodes") << kFirst + QPoint(2, 0) << defaultAnd(1, {0, 0}) << 1;
    QTest::newRow("on the last node's column") << kLast << same << 0;
    QTest::newRow("on the last node, outside the nodes") << kLast + QPoint(2, 0) << same << 0;
    QTest::newRow("on the last node, between the nodes") << kLast + QPoint(-2, 0) << defaultAnd(4, {99, 100}) << 1;
}

void TestUserDefineFanSpeed::doubleClick()
{
    QFETCH(QPoint, position);
    doubleClickAt(position);
    QTEST(editor->getPoints(), "curve");
    QTEST(changes->count(), "signalCount");
    move({250, 300}); // the press before it selected nothing that a move could still drag
    QTEST(editor->getPoints(), "curve");
}

void TestUserDefineFanSpeed::elevenNodesAreTheMost()
{
    const QPoint offEveryNode(30 + 5 * 33 + 16, 346 - 5 * 34 - 17);
    editor->setPoints(kElevenNodes);
    doubleClickAt(offEveryNode);
    QCOMPARE(editor->getPoints(), kElevenNodes);
    QCOMPARE(changes->count(), 0);

    doubleClickAt(FanCurvePlot::forSize({kSide, kSide}).pixelOf({90, 90}));
    QCOMPARE(editor->getPoints().size(), 10);
    QCOMPARE(changes->count(), 1);

    doubleClickAt(offEveryNode); // ten can grow once more
    QCOMPARE(editor->getPoints().size(), 11);
    QCOMPARE(editor->getPoints().at(6), QPoint(54, 55));
    QCOMPARE(changes->count(), 2);
}

void TestUserDefineFanSpeed::curveReplacedInTheMiddleOfADrag()
{
    move(kLast);
    press(kFourth);
    const Curve shorter = {{0, 0}, {100, 100}};
    editor->setPoints(shorter);
    imageOf(*editor); // neither the dragged nor the hovered node exists any more
    move({200, 200});
    release({200, 200});
    QCOMPARE(editor->getPoints(), shorter);

    editor->setPoints(kElevenNodes);
    const QPoint ninth = FanCurvePlot::forSize({kSide, kSide}).pixelOf({90, 90});
    move(ninth);
    press(ninth);
    editor->resetToDefault();
    move({200, 200});
    QCOMPARE(editor->getPoints(), FanCurve::defaultCurve());
    QCOMPARE(changes->count(), 0);
}

void TestUserDefineFanSpeed::randomHandsKeepACurve_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("as on the page") << QSize(kSide, kSide);
    QTest::newRow("pixels finer than units") << QSize(1500, 1300);
    QTest::newRow("pixels coarser than units") << QSize(110, 90);
    QTest::newRow("a cell is one pixel") << QSize(55, 45);
    QTest::newRow("no cell") << QSize(50, 40);
    QTest::newRow("nothing") << QSize(0, 0);
}

void TestUserDefineFanSpeed::randomHandsKeepACurve()
{
    QFETCH(QSize, size);
    editor->resize(size);
    std::mt19937 random(20240607); // the same hands in every run
    const auto below = [&random](int bound) {
        return int(random() % unsigned(bound));
    };
    for (int step = 0; step < 1500; ++step) {
        const Curve curve = editor->getPoints();
        const FanCurvePlot plot = FanCurvePlot::forSize(editor->size());
        const QPoint anywhere(below(size.width() + 40) - 20, below(size.height() + 40) - 20);
        switch (below(8)) {
        case 0:
        case 1:
        case 2:
            doubleClickAt(anywhere);
            break;
        case 3:
            doubleClickAt(plot.pixelOf(curve[below(curve.size())]));
            break;
        case 4: // a size in between, so that pixels are rebuilt from values
            editor->resize(size.width() + below(30), size.height() + below(30));
            break;
        default:
            press(plot.pixelOf(curve[below(curve.size())]));
            move(anywhere);
            move(anywhere + QPoint(below(60) - 30, below(60) - 30));
            release(anywhere);
        }
        const Curve now = editor->getPoints();
        QVERIFY2(FanCurve::hasValidEnds(now) && now.size() <= 11 && neverFalls(now),
                 qPrintable(QStringLiteral("step %1").arg(step)));
    }
    QVERIFY(size.isEmpty() || changes->count() > 100);
}

QTEST_MAIN(TestUserDefineFanSpeed)
#include "TestUserDefineFanSpeed.moc"
