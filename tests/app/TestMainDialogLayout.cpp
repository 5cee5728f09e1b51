#include "app/MainDialogLayout.h"

#include <QTest>

class TestMainDialogLayout : public QObject
{
    Q_OBJECT

private slots:
    void rectangles_data();
    void rectangles();
    void gaugeSteps_data();
    void gaugeSteps();
    void nothingOverlapsTheRail();
};

void TestMainDialogLayout::rectangles_data()
{
    QTest::addColumn<QRect>("actual");
    QTest::addColumn<QRect>("expected");

    const MainDialogLayout layout = mainDialogLayout(QSize(1020, 680));
    // clang-format off
    QTest::newRow("selector")         << layout.selector              << QRect(360, 85, 300, 50);
    QTest::newRow("monitor")          << layout.monitorButton         << QRect(785, 120, 80, 20);
    QTest::newRow("adjust")           << layout.adjustButton          << QRect(870, 120, 80, 20);
    QTest::newRow("board temp")       << layout.boardTempButton       << QRect(785, 95, 80, 20);
    QTest::newRow("high performance") << layout.highPerformanceButton << QRect(700, 120, 80, 20);
    QTest::newRow("card information") << layout.fixedInfoButton       << QRect(280, 52, 20, 20);
    QTest::newRow("setting")          << layout.settingButton         << QRect(996, 62, 19, 19);
    QTest::newRow("minimize")         << layout.minimizeButton        << QRect(996, 92, 19, 19);
    QTest::newRow("close")            << layout.closeButton           << QRect(996, 122, 19, 19);
    QTest::newRow("gauge at home")    << layout.gaugeHome             << QRect(191, 97, 639, 639);
    QTest::newRow("gauge aside")      << layout.gaugeShown            << QRect(-65, 97, 639, 639);
    QTest::newRow("page panel")       << layout.pagePanel             << QRect(542, 212, 382, 394);

    const MainDialogLayout small = mainDialogLayout(QSize(600, 435));
    QTest::newRow("gauge at home, small") << small.gaugeHome << QRect(96, 62, 408, 408);
    QTest::newRow("page panel, small")    << small.pagePanel << QRect(295, 135, 244, 252);
    // clang-format on
}

void TestMainDialogLayout::rectangles()
{
    QFETCH(QRect, actual);
    QTEST(actual, "expected");
}

void TestMainDialogLayout::gaugeSteps_data()
{
    QTest::addColumn<int>("x");
    QTest::addColumn<int>("target");
    QTest::addColumn<int>("next");

    QTest::newRow("left by ten") << 191 << -65 << 181;
    QTest::newRow("right by ten") << -65 << 191 << -55;
    QTest::newRow("last step left is cut") << -59 << -65 << -65;
    QTest::newRow("last step right is cut") << 185 << 191 << 191;
    QTest::newRow("already there") << 191 << 191 << 191;
}

void TestMainDialogLayout::gaugeSteps()
{
    QFETCH(int, x);
    QFETCH(int, target);
    QTEST(nextGaugeX(x, target), "next");
}

void TestMainDialogLayout::nothingOverlapsTheRail()
{
    const MainDialogLayout layout = mainDialogLayout(QSize(1020, 680));
    const QRect rail = layout.settingButton | layout.minimizeButton | layout.closeButton;
    for (const QRect &rect : {layout.selector, layout.monitorButton, layout.adjustButton, layout.boardTempButton,
                              layout.highPerformanceButton, layout.fixedInfoButton, layout.firstSlotButton,
                              layout.secondSlotButton, layout.pagePanel})
        QVERIFY2(!rail.intersects(rect), qPrintable(QStringLiteral("x %1 y %2").arg(rect.x()).arg(rect.y())));
    QVERIFY(!layout.adjustButton.intersects(layout.monitorButton));
    QVERIFY(!layout.firstSlotButton.intersects(layout.secondSlotButton));
}

QTEST_APPLESS_MAIN(TestMainDialogLayout)
#include "TestMainDialogLayout.moc"
