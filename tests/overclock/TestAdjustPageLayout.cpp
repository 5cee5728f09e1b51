#include "overclock/AdjustPageLayout.h"

#include <QtTest>

/// Where everything of the adjust page lies, and the shape of its glass.
class TestAdjustPageLayout : public QObject
{
    Q_OBJECT

private slots:
    void places_data();
    void places();
    void everythingInsideTheDialogsPage();
    void frame_data();
    void frame();
};

void TestAdjustPageLayout::places_data()
{
    QTest::addColumn<QSize>("page");
    QTest::addColumn<int>("rowHeight");
    QTest::addColumn<QRect>("lastRow");
    QTest::addColumn<QRect>("editor");
    QTest::addColumn<QList<QRect>>("actions"); // Apply, Cancel, Default
    QTest::addColumn<QList<QRect>>("fan");     // AUT, MAN, UDF, curve
    QTest::addColumn<QRect>("link");

    QTest::newRow("the dialog's page") << QSize(382, 394) << 55 << QRect(3, 275, 382, 55) << QRect(3, 3, 376, 376)
                                       << QList<QRect>{{68, 364, 68, 19}, {155, 364, 68, 19}, {242, 364, 68, 19}}
                                       << QList<QRect>{{176, 65, 47, 18},
                                                       {228, 65, 47, 18},
                                                       {280, 65, 47, 18},
                                                       {332, 65, 18, 18}}
                                       << QRect(216, 275, 26, 26);
    QTest::newRow("one less than 0.9 is no whole tenth, so half a foot of 40 is below 20")
        << QSize(400, 400) << 56 << QRect(3, 280, 400, 56) << QRect(3, 3, 394, 394)
        << QList<QRect>{{72, 370, 72, 19}, {164, 370, 72, 19}, {256, 370, 72, 19}}
        << QList<QRect>{{182, 66, 50, 18}, {237, 66, 50, 18}, {292, 66, 50, 18}, {347, 66, 18, 18}}
        << QRect(228, 280, 26, 26);
    QTest::newRow("the editor's height follows the width")
        << QSize(200, 600) << 85 << QRect(3, 425, 200, 85) << QRect(3, 3, 194, 194)
        << QList<QRect>{{36, 555, 36, 29}, {82, 555, 36, 29}, {128, 555, 36, 29}}
        << QList<QRect>{{72, 95, 25, 28}, {102, 95, 25, 28}, {132, 95, 25, 28}, {162, 95, 28, 28}}
        << QRect(112, 425, 26, 26);
    QTest::newRow("no size") << QSize(0, 0) << 0 << QRect(3, 0, 0, 0) << QRect(3, 3, -6, -6)
                             << QList<QRect>{{0, 0, 0, 0}, {0, 0, 0, 0}, {0, 0, 0, 0}}
                             << QList<QRect>{{0, 10, 0, 0}, {5, 10, 0, 0}, {10, 10, 0, 0}, {15, 10, 0, 0}}
                             << QRect(0, 0, 26, 26);
}

void TestAdjustPageLayout::places()
{
    QFETCH(QSize, page);
    const AdjustPageLayout rects = adjustPageLayoutFor(page);
    QTEST(rects.rowHeight, "rowHeight");
    QTEST(rects.rows.back(), "lastRow");
    QTEST(rects.editor, "editor");
    QTEST((QList<QRect>{rects.applyButton, rects.cancelButton, rects.defaultButton}), "actions");
    QTEST((QList<QRect>{rects.autoButton, rects.manualButton, rects.userDefinedButton, rects.configButton}), "fan");
    QTEST(rects.linkBox, "link");
    for (int row = 0; row < AdjustPageLayout::rowCount; ++row)
        QCOMPARE(rects.rows[static_cast<std::size_t>(row)],
                 QRect(3, row * rects.rowHeight, page.width(), rects.rowHeight));
}

void TestAdjustPageLayout::everythingInsideTheDialogsPage()
{
    const AdjustPageLayout rects = adjustPageLayoutFor(QSize(382, 394));
    const QPainterPath glass = adjustFramePath(QSize(382, 394));
    for (const QRect &rect : {rects.applyButton, rects.cancelButton, rects.defaultButton, rects.autoButton,
                              rects.manualButton, rects.userDefinedButton, rects.configButton, rects.linkBox})
        QVERIFY2(glass.contains(QRectF(rect)), qPrintable(QStringLiteral("%1,%2").arg(rect.x()).arg(rect.y())));
}

void TestAdjustPageLayout::frame_data()
{
    QTest::addColumn<QPointF>("point");
    QTest::addColumn<bool>("inside");

    QTest::newRow("middle") << QPointF(50, 100) << true;
    QTest::newRow("top left corner of the rectangle") << QPointF(2.5, 2.5) << true;
    QTest::newRow("left of the rectangle") << QPointF(1.5, 100) << false;
    QTest::newRow("above the rectangle") << QPointF(50, 1.5) << false;
    QTest::newRow("at the right edge") << QPointF(98.5, 100) << true;
    QTest::newRow("right of the rectangle") << QPointF(99.5, 100) << false;
    QTest::newRow("at the bottom edge") << QPointF(50, 198.5) << true;
    QTest::newRow("below the rectangle") << QPointF(50, 199.5) << false;
    QTest::newRow("inside the cut") << QPointF(95, 188) << true;
    QTest::newRow("behind the cut") << QPointF(96, 192) << false;
    QTest::newRow("bottom right corner") << QPointF(98, 198) << false;
}

void TestAdjustPageLayout::frame()
{
    QFETCH(QPointF, point);
    QTEST(adjustFramePath(QSize(100, 200)).contains(point), "inside");
}

QTEST_APPLESS_MAIN(TestAdjustPageLayout)
#include "TestAdjustPageLayout.moc"
