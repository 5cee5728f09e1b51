#include "overclock/Ovryn_UserDefineFanSpeed.h"

#include "overclock/FanCurve.h"
#include "support/MouseMove.h"
#include "ui/Fonts.h"

#include <QImage>
#include <QSignalSpy>
#include <QTest>

#include <memory>
#include <random>

using Curve = QList<QPoint>;

/// The fan curve editor, driven by real mouse events at 376x376 pixels, where the default curve's nodes lie
/// at (30,346), (129,278), (195,176), (294,40) and (360,6).
class TestUserDefineFanSpeed : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
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
    void paintedNodes();
    void hoveredNodeLeavesAGapWhileAnotherIsDragged();
    void hoverValues_data();
    void hoverValues();
    void paintedGrid();
    void paintedScale();
    void paintsAtAnySize_data();
    void paintsAtAnySize();

private:
    void press(QPoint position) { QTest::mousePress(editor.get(), Qt::LeftButton, Qt::NoModifier, position); }
    void move(QPoint position) { moveMouse(*editor, position); }
    void release(QPoint position) { QTest::mouseRelease(editor.get(), Qt::LeftButton, Qt::NoModifier, position); }
    void doubleClickAt(QPoint position)
    {
        QTest::mouseDClick(editor.get(), Qt::LeftButton, Qt::NoModifier, position);
    }

    std::unique_ptr<Ovryn_UserDefineFanSpeed> editor;
    std::unique_ptr<QSignalSpy> changes;
};

namespace
{

constexpr int kSide = 376;
const QPoint kFirst(30, 346);
const QPoint kSecond(129, 278);
const QPoint kThird(195, 176);
const QPoint kFourth(294, 40);
const QPoint kLast(360, 6);
const Curve kElevenNodes = {{0, 0},   {10, 10}, {20, 20}, {30, 30}, {40, 40},  {50, 50},
                            {60, 60}, {70, 70}, {80, 80}, {90, 90}, {100, 100}};

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

QImage imageOf(QWidget &widget)
{
    QImage image(widget.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::black);
    widget.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    return image;
}

/// Grey as of text and nodes, and not red as of grid and curve.
int brightPixels(const QImage &image, const QRect &area)
{
    int count = 0;
    const QRect inside = area & image.rect();
    for (int y = inside.top(); y <= inside.bottom(); ++y) {
        for (int x = inside.left(); x <= inside.right(); ++x)
            count += image.pixelColor(x, y).green() > 100 ? 1 : 0;
    }
    return count;
}

/// A pixel of a node's square that neither the grid nor the rising curve touches.
QColor nodeColor(const QImage &image, QPoint node)
{
    return image.pixelColor(node - QPoint(2, 2));
}

} // namespace

void TestUserDefineFanSpeed::initTestCase()
{
    substituteFontFamilies();
    registerApplicationFonts();
}

void TestUserDefineFanSpeed::init()
{
    editor = std::make_unique<Ovryn_UserDefineFanSpeed>();
    editor->resize(kSide, kSide);
    editor->show();
    QVERIFY(QTest::qWaitForWindowExposed(editor.get()));
    changes = std::make_unique<QSignalSpy>(editor.get(), SIGNAL(pointChanged()));
}

void TestUserDefineFanSpeed::cleanup()
{
    changes.reset();
    editor.reset();
}

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

void TestUserDefineFanSpeed::paintedNodes()
{
    QCOMPARE(nodeColor(imageOf(*editor), kThird), QColor(150, 150, 150));
    move(kThird);
    QImage image = imageOf(*editor);
    QCOMPARE(nodeColor(image, kThird), QColor(200, 200, 200));
    QCOMPARE(nodeColor(image, kSecond), QColor(150, 150, 150));
    press(kThird);
    image = imageOf(*editor);
    QCOMPARE(nodeColor(image, kThird), QColor(Qt::white));
    QCOMPARE(nodeColor(image, kSecond), QColor(150, 150, 150));
    QCOMPARE(image.pixelColor(kThird - QPoint(5, 2)), QColor(Qt::black)); // the square and its edge end before
    release(kThird);
    QCOMPARE(nodeColor(imageOf(*editor), kThird), QColor(200, 200, 200));
    move({250, 300});
    QCOMPARE(nodeColor(imageOf(*editor), kThird), QColor(150, 150, 150));
    move(kFirst); // the ends are hovered too
    QCOMPARE(nodeColor(imageOf(*editor), kFirst), QColor(200, 200, 200));
}

void TestUserDefineFanSpeed::hoveredNodeLeavesAGapWhileAnotherIsDragged()
{
    press(kSecond);
    move(kLast); // the dragged node stays at its neighbour, the mouse stands on the last one
    const QImage image = imageOf(*editor);
    QCOMPARE(nodeColor(image, kLast), QColor(Qt::black));
    QCOMPARE(nodeColor(image, kThird), QColor(Qt::white));    // the dragged one, over its neighbour's grey
    QVERIFY(brightPixels(image, QRect(330, 0, 26, 30)) > 20); // the gap's values are told all the same
    release(kLast);
    QCOMPARE(nodeColor(imageOf(*editor), kLast), QColor(200, 200, 200));
}

void TestUserDefineFanSpeed::hoverValues_data()
{
    QTest::addColumn<QPoint>("value");
    QTest::addColumn<QRect>("temperature"); // where the digits stand, and nothing else bright
    QTest::addColumn<QRect>("fan");

    QTest::newRow("above the node") << QPoint(50, 50) << QRect(192, 150, 20, 9) << QRect(192, 163, 20, 9);
    QTest::newRow("first node") << QPoint(0, 0) << QRect(27, 320, 20, 9) << QRect(27, 333, 20, 9);
    QTest::newRow("last node: beside it, for lack of room above")
        << QPoint(100, 100) << QRect(330, 0, 25, 11) << QRect(330, 13, 25, 11);
}

void TestUserDefineFanSpeed::hoverValues()
{
    QFETCH(QPoint, value);
    QFETCH(QRect, temperature);
    QFETCH(QRect, fan);
    const QPoint node = FanCurvePlot::forSize({kSide, kSide}).pixelOf(value);
    const QRect whole = editor->rect();
    const QImage calm = imageOf(*editor);
    move(node);
    const QImage hovered = imageOf(*editor);
    QCOMPARE(brightPixels(calm, temperature), 0);
    QCOMPARE(brightPixels(calm, fan), 0);
    QVERIFY(brightPixels(hovered, temperature) > 5);
    QVERIFY(brightPixels(hovered, fan) > 5);
    // All that came is the two numbers: the node itself was bright before.
    const QRect square(node - QPoint(4, 4), QSize(8, 8));
    const auto withoutNode = [&](const QImage &image) {
        return brightPixels(image, whole) - brightPixels(image, square);
    };
    QCOMPARE(withoutNode(hovered) - withoutNode(calm),
             brightPixels(hovered, temperature) + brightPixels(hovered, fan));
}

void TestUserDefineFanSpeed::paintedGrid()
{
    const QImage image = imageOf(*editor);
    const QColor once(49, 2, 10); // alpha 50 on black
    QCOMPARE(image.pixelColor(240, 346 - 34), once);
    QCOMPARE(image.pixelColor(30 + 33, 100), once);
    QCOMPARE(image.pixelColor(45, 20), QColor(Qt::black));
    QVERIFY(image.pixelColor(30, 100).red() > once.red() + 20); // the axes got a second coat
    QVERIFY(image.pixelColor(240, 346).red() > once.red() + 20);
    QCOMPARE(image.pixelColor(340, 100), QColor(Qt::black));
    QVERIFY(image.pixelColor(162, 227).red() > 100); // the curve, half way from (30,20) to (50,50)
}

void TestUserDefineFanSpeed::paintedScale()
{
    const QImage image = imageOf(*editor);
    for (int i = 0; i <= 10; ++i) {
        const int y = 346 - 34 * i;
        const int x = 30 + 33 * i;
        // The left column has no 0, the bottom row prints it.
        QVERIFY2((brightPixels(image, QRect(0, y - 5, 26, 10)) > 10) == (i > 0), qPrintable(QString::number(i)));
        QVERIFY2(brightPixels(image, QRect(x - 16, 351, 33, 10)) > 10, qPrintable(QString::number(i)));
    }
    QVERIFY(brightPixels(image, QRect(0, 12, 26, 10)) > 5); // "(%)"
    const QRect unit(365, 340, 11, 11);                     // "(C)", right of the last node's reach
    QVERIFY(brightPixels(image, unit) > 5);
    QVERIFY(brightPixels(image, QRect(370, 340, 6, 11)) > 0); // the closing bracket is inside
}

void TestUserDefineFanSpeed::paintsAtAnySize_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("nothing") << QSize(0, 0);
    QTest::newRow("one pixel") << QSize(1, 1);
    QTest::newRow("no cell") << QSize(50, 40);
    QTest::newRow("a line") << QSize(800, 1);
    QTest::newRow("large") << QSize(2000, 1500);
}

void TestUserDefineFanSpeed::paintsAtAnySize()
{
    QFETCH(QSize, size);
    editor->resize(size);
    move({size.width() / 2, size.height() / 2});
    QImage image(2000, 1500, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::black);
    editor->render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    QCOMPARE(editor->size(), size);
    // Nothing reaches beyond the widget, and a large one is painted to its far labels.
    QCOMPARE(brightPixels(image, QRect(size.width(), 0, 2000, 1500)), 0);
    QCOMPARE(brightPixels(image, QRect(0, size.height(), 2000, 1500)), 0);
    QVERIFY(size.width() < 2000 || brightPixels(image, QRect(1900, 1400, 100, 100)) > 10);
}

QTEST_MAIN(TestUserDefineFanSpeed)
#include "TestUserDefineFanSpeed.moc"
