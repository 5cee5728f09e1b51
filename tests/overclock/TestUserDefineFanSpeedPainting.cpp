#include "overclock/FanCurveEditorTest.h"

namespace
{

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

/// What the fan curve editor paints.
class TestUserDefineFanSpeedPainting : public FanCurveEditorTest
{
    Q_OBJECT

private slots:
    void paintedNodes();
    void hoveredNodeLeavesAGapWhileAnotherIsDragged();
    void hoverValues_data();
    void hoverValues();
    void paintedGrid();
    void paintedScale();
    void paintsAtAnySize_data();
    void paintsAtAnySize();
};

void TestUserDefineFanSpeedPainting::paintedNodes()
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

void TestUserDefineFanSpeedPainting::hoveredNodeLeavesAGapWhileAnotherIsDragged()
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

void TestUserDefineFanSpeedPainting::hoverValues_data()
{
    QTest::addColumn<QPoint>("value");
    QTest::addColumn<QRect>("temperature"); // where the digits stand, and nothing else bright
    QTest::addColumn<QRect>("fan");

    QTest::newRow("above the node") << QPoint(50, 50) << QRect(192, 150, 20, 9) << QRect(192, 163, 20, 9);
    QTest::newRow("first node") << QPoint(0, 0) << QRect(27, 320, 20, 9) << QRect(27, 333, 20, 9);
    QTest::newRow("last node: beside it, for lack of room above")
        << QPoint(100, 100) << QRect(330, 0, 25, 11) << QRect(330, 13, 25, 11);
}

void TestUserDefineFanSpeedPainting::hoverValues()
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

void TestUserDefineFanSpeedPainting::paintedGrid()
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

void TestUserDefineFanSpeedPainting::paintedScale()
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

void TestUserDefineFanSpeedPainting::paintsAtAnySize_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("nothing") << QSize(0, 0);
    QTest::newRow("one pixel") << QSize(1, 1);
    QTest::newRow("no cell") << QSize(50, 40);
    QTest::newRow("a line") << QSize(800, 1);
    QTest::newRow("large") << QSize(2000, 1500);
}

void TestUserDefineFanSpeedPainting::paintsAtAnySize()
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

QTEST_MAIN(TestUserDefineFanSpeedPainting)
#include "TestUserDefineFanSpeedPainting.moc"
