#include "board/lcd/LcdPageLayout.h"

#include <QtTest>

/// The rectangles of the LCD page.
class TestLcdPageLayout : public QObject
{
    Q_OBJECT

private slots:
    void ofTheDialogsPage();
    void divisionsTruncate();
    void titleOfANarrowPage();
    void textsMoveWhatStandsBehindThem();
    void anySize_data();
    void anySize();
};

void TestLcdPageLayout::ofTheDialogsPage()
{
    // 382 by 394: title 39, rows (394 - 78) / 8 = 39, margin 25, indent 55, fields 11 below the top of their rows
    const LcdPageLayout layout = lcdPageLayoutFor(QSize(382, 394), {72, 90, 105, 60});
    QCOMPARE(layout.titleHeight, 39);
    QCOMPARE(layout.title, QRect(25, 0, 382, 39));
    QCOMPARE(layout.titlePixels, 26); // 39 / 1.5, less than 382 / 4
    QCOMPARE(layout.autoSwitch, QRect(25, 78, 102, 39));
    QCOMPARE(layout.timeCaption, QRect(55, 117, 105, 39));
    QCOMPARE(layout.switchTime, QRect(160, 128, 50, 16));
    QCOMPARE(layout.manualSwitch, QRect(25, 156, 120, 39));
    QCOMPARE(layout.hotkeyCaption, QRect(55, 195, 60, 39));
    QCOMPARE(layout.modifierKey, QRect(115, 206, 50, 16));
    QCOMPARE(layout.plus, QRect(165, 195, 15, 39));
    QCOMPARE(layout.normalKey, QRect(180, 206, 50, 16));
    QCOMPARE(layout.enableLcd, QRect(25, 234, 382, 39));
    QCOMPARE(layout.confirm, QRect(95, 355, 76, 26)); // 39 / 3 * 2
    QCOMPARE(layout.cancel, QRect(191, 355, 76, 26));
    QCOMPARE(layout.buttonPixels, 19);
}

void TestLcdPageLayout::divisionsTruncate()
{
    // 449 by 359: title 35, rows (359 - 70) / 8 = 36, margin 29, indent 59, fields 10 below the top of their rows
    const LcdPageLayout layout = lcdPageLayoutFor(QSize(449, 359), {10, 20, 30, 40});
    QCOMPARE(layout.title, QRect(29, 0, 449, 35));
    QCOMPARE(layout.titlePixels, 23);
    QCOMPARE(layout.autoSwitch, QRect(29, 71, 40, 36));
    QCOMPARE(layout.switchTime, QRect(89, 117, 50, 16));
    QCOMPARE(layout.manualSwitch, QRect(29, 143, 50, 36));
    QCOMPARE(layout.modifierKey, QRect(99, 189, 50, 16));
    QCOMPARE(layout.normalKey, QRect(164, 189, 50, 16));
    QCOMPARE(layout.enableLcd, QRect(29, 215, 449, 36));
    QCOMPARE(layout.confirm, QRect(112, 324, 89, 24));
    QCOMPARE(layout.cancel, QRect(224, 324, 89, 24));
    QCOMPARE(layout.buttonPixels, 18);
    // rows of 35: a third is 11, twice that 22
    QCOMPARE(lcdPageLayoutFor(QSize(382, 350), {}).confirm.height(), 22);
}

void TestLcdPageLayout::titleOfANarrowPage()
{
    QCOMPARE(lcdPageLayoutFor(QSize(79, 600), {}).titlePixels, 19); // 79 / 4, less than 60 / 1.5
}

void TestLcdPageLayout::textsMoveWhatStandsBehindThem()
{
    const LcdPageLayout none = lcdPageLayoutFor(QSize(382, 394), {});
    const LcdPageLayout some = lcdPageLayoutFor(QSize(382, 394), {1, 2, 3, 4});
    QCOMPARE(some.autoSwitch.width(), none.autoSwitch.width() + 1);
    QCOMPARE(some.manualSwitch.width(), none.manualSwitch.width() + 2);
    QCOMPARE(some.switchTime, none.switchTime.translated(3, 0));
    QCOMPARE(some.modifierKey, none.modifierKey.translated(4, 0));
    QCOMPARE(some.plus, none.plus.translated(4, 0));
    QCOMPARE(some.normalKey, none.normalKey.translated(4, 0));
    QCOMPARE(some.confirm, none.confirm);
}

void TestLcdPageLayout::anySize_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("nothing") << QSize(0, 0);
    QTest::newRow("one pixel") << QSize(1, 1);
    QTest::newRow("rows lower than the fields") << QSize(382, 91);
    QTest::newRow("odd and narrow") << QSize(61, 383);
}

void TestLcdPageLayout::anySize()
{
    QFETCH(QSize, size);
    const LcdPageLayout layout = lcdPageLayoutFor(size, {72, 90, 105, 60});
    QCOMPARE(layout.switchTime.size(), QSize(50, 16));
    QCOMPARE(layout.modifierKey.size(), QSize(50, 16));
    QCOMPARE(layout.normalKey.left() - layout.modifierKey.left(), 65);
    QVERIFY(layout.confirm.height() >= 0);
    QVERIFY(layout.titlePixels >= 0);
    // the fields stay in the middle of their rows, also where they stand out above and below
    const int rowTop = layout.timeCaption.top();
    QCOMPARE(layout.switchTime.top() - rowTop, (layout.timeCaption.height() - 16) / 2);
}

QTEST_APPLESS_MAIN(TestLcdPageLayout)
#include "TestLcdPageLayout.moc"
