#include "board/led/LedPageLayout.h"

#include <QtTest>

/// The rectangles of the LED page.
class TestLedPageLayout : public QObject
{
    Q_OBJECT

private slots:
    void ofTheDialogsPage();
    void swatchesAreSquareAndEven();
    void anySize_data();
    void anySize();
};

void TestLedPageLayout::ofTheDialogsPage()
{
    // 382 by 394: title 39, rows 52, margin 19, content 344, column 172, swatch 28, gap 9
    const LedPageLayout layout = ledPageLayoutFor(QSize(382, 394));
    QCOMPARE(layout.titleHeight, 39);
    QCOMPARE(layout.title, QRect(19, 0, 114, 39));
    QCOMPARE(layout.titlePixels, 26); // 39 / 1.5, less than 114 x 0.25
    QCOMPARE(layout.breath, QRect(19, 52, 172, 52));
    QCOMPARE(layout.bright, QRect(191, 52, 172, 52));
    QCOMPARE(layout.intervalCaption, QRect(19, 104, 172, 52));
    QCOMPARE(layout.interval, QRect(191, 117, 86, 26));
    QCOMPARE(layout.presets.front(), QRect(56, 169, 28, 28));
    QCOMPARE(layout.presets.back(), QRect(56 + 6 * 37, 169, 28, 28));
    QCOMPARE(layout.customs.front(), QRect(56, 206, 28, 28));
    QCOMPARE(layout.customs.back(), QRect(56 + 6 * 37, 206, 28, 28));
    QCOMPARE(layout.reset, QRect(56 + 7 * 37, 206, 28, 28));
    QCOMPARE(layout.state, QRect(19, 247, 172, 52));
    QCOMPARE(layout.sleep, QRect(191, 247, 172, 52));
    QCOMPARE(layout.gradient, QRect(19, 299, 172, 52));
}

void TestLedPageLayout::swatchesAreSquareAndEven()
{
    // 500 by 300: title 30, rows 40, margin 25, content 450, swatch 37 (50 x 3 x 0.25 is 37.5), gap 12
    const LedPageLayout layout = ledPageLayoutFor(QSize(500, 300));
    for (int i = 0; i < LedPageLayout::colorCount; ++i) {
        QCOMPARE(layout.presets[std::size_t(i)], QRect(74 + i * 49, 130, 37, 37));
        QCOMPARE(layout.customs[std::size_t(i)], QRect(74 + i * 49, 179, 37, 37));
    }
    QCOMPARE(layout.titlePixels, 20);
}

void TestLedPageLayout::anySize_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("nothing") << QSize(0, 0);
    QTest::newRow("one pixel") << QSize(1, 1);
    QTest::newRow("odd") << QSize(383, 391);
    QTest::newRow("odd and flat") << QSize(383, 61);
    QTest::newRow("odd and narrow") << QSize(61, 383);
}

void TestLedPageLayout::anySize()
{
    QFETCH(QSize, size);
    const LedPageLayout layout = ledPageLayoutFor(size);
    const QRect page(QPoint(0, 0), size);
    for (const QRect &rect : {layout.breath, layout.bright, layout.intervalCaption, layout.interval, layout.reset,
                              layout.state, layout.sleep, layout.gradient}) {
        QVERIFY(rect.width() >= 0 && rect.height() >= 0);
        if (size.height() >= 300 && size.width() >= 300) // below, the fixed sizes of the number box don't fit
            QVERIFY(page.contains(rect));
    }
}

QTEST_APPLESS_MAIN(TestLedPageLayout)
#include "TestLedPageLayout.moc"
