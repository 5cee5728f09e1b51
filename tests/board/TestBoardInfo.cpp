#include "board/temperatures/Ovryn_BoardInfoMainWidget.h"
#include "board/temperatures/Ovryn_BoardInfoMonitorWidget.h"
#include "board/temperatures/Ovryn_BoardInfoWidget.h"
#include "device/NvGpuControl.h"
#include "monitor/WidgetPainting.h"
#include "monitor/graphs/Ovryn_BaseInfoRow.h"
#include "monitor/graphs/Ovryn_BaseMonitorBox.h"
#include "monitor/sampling/SampleRecords.h"
#include "support/CheckedDriver.h"
#include "support/ConnectWarnings.h"

#include <QCheckBox>
#include <QSignalSpy>
#include <QtTest>

namespace
{

constexpr QSize kPage(382, 394);

BoardTempCompleteInfo sampleInfo()
{
    BoardTempCompleteInfo info;
    info.sensor9E = {71, 31, 51, 100, 0};
    info.sensor90 = {72, 32, 52, 100, 0};
    info.sensor96 = {73, -3, 53, 100, 0};
    info.sensor92 = {74, -34, -24, 100, 0};
    return info;
}

Lang_BoardInfo texts(LanguageType language)
{
    Ovryn_LanguageTable table;
    table.setLanguage(language);
    return table.boardInfo;
}

QStringList titlesOf(const Ovryn_BoardInfoWidget &rows)
{
    QStringList titles;
    for (int i = 0; i < 4; ++i)
        titles << rows.row(i)->titleText();
    return titles;
}

QStringList titlesOf(const Ovryn_BoardInfoMonitorWidget &graphs)
{
    QStringList titles;
    for (int i = 0; i < 4; ++i)
        titles << graphs.box(i)->captionRow()->titleText();
    return titles;
}

QString valuesOf(const Ovryn_BaseInfoRow &row)
{
    return row.currentValueText() + '/' + row.maxValueText() + '/' + row.minValueText();
}

/// What the sampling worker would send of a card: the sensors, then the extremes.
BoardTempCompleteInfo sampleOf(NvGpuControl &control)
{
    NvBoardTemperatures temperatures;
    control.getBoardTemperatures(temperatures);
    NvExtremes extremes;
    control.getExtremes(extremes);
    return boardTempInfoOf(temperatures, extremes);
}

/// A shown page with its parts at hand.
struct Page
{
    Page()
        : rows(widget.findChild<Ovryn_BoardInfoWidget *>()),
          graphs(widget.findChild<Ovryn_BoardInfoMonitorWidget *>()),
          topRight(widget.findChild<QCheckBox *>(QStringLiteral("ckbTopRight")))
    {
        widget.resize(kPage);
        widget.show();
        if (!QTest::qWaitForWindowExposed(&widget))
            qFatal("the page was not exposed");
    }

    void tick(int row) const
    {
        QTest::mouseClick(rows->row(row)->findChild<QCheckBox *>(), Qt::LeftButton, Qt::NoModifier, QPoint(7, 26));
    }

    Ovryn_BoardInfoMainWidget widget;
    Ovryn_BoardInfoWidget *rows;
    Ovryn_BoardInfoMonitorWidget *graphs;
    QCheckBox *topRight;
};

} // namespace

/// The board temperatures: rows, graphs and the page that holds both.
class TestBoardInfo : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { useProgramFonts(); }

    void titles_data();
    void titles();
    void values();
    void rowsAreAsHighAsOnTheMonitorPage_data();
    void rowsAreAsHighAsOnTheMonitorPage();
    void rowLines();
    void rowTickTellsWhetherAnyIsTicked();
    void everyGraphTakesItsSample();
    void graphsShownByMask_data();
    void graphsShownByMask();
    void lastGraphIsReachable();
    void pageStartsWithTheRows();
    void partsStandInTheirPlaces();
    void topRightFollowsTheTicks();
    void topRightSwitchesTheViews();
    void recordReachesBothViews();
    void hiddenGraphsKeepTheirHistory();
    void pagePainting();
    void titleFollowsTheLanguage();
    void everyConnectionHolds();
    void sensorsOnThePage_data();
    void sensorsOnThePage();
    void failedReadIsZero();
    void cardWithoutSensors();
};

void TestBoardInfo::titles_data()
{
    QTest::addColumn<LanguageType>("language");
    QTest::addColumn<QStringList>("titles");
    QTest::newRow("Chinese, as made") << kLanguageChinese << QStringList{"显存一", "显存二", "核心MOS", "显存MOS"};
    QTest::newRow("English") << kLanguageEnglish << QStringList{"Mem 1", "Mem 2", "Core MOS", "Mem MOS"};
}

void TestBoardInfo::titles()
{
    QFETCH(LanguageType, language);
    Ovryn_BoardInfoWidget rows;
    Ovryn_BoardInfoMonitorWidget graphs;
    Ovryn_BoardInfoMainWidget page;
    if (language != kLanguageChinese) {
        rows.setLanguage(texts(language), language);
        graphs.setLanguage(texts(language), language);
        page.setLanguage(texts(language), language);
    }
    QTEST(titlesOf(rows), "titles");
    QTEST(titlesOf(graphs), "titles");
    QTEST(titlesOf(*page.findChild<Ovryn_BoardInfoWidget *>()), "titles");
    QTEST(titlesOf(*page.findChild<Ovryn_BoardInfoMonitorWidget *>()), "titles");
}

void TestBoardInfo::values()
{
    Ovryn_BoardInfoWidget rows;
    rows.receiveBoardTempCompleteInfo(sampleInfo());
    QStringList shown;
    for (int i = 0; i < 4; ++i)
        shown << valuesOf(*rows.row(i));
    QCOMPARE(shown, (QStringList{"51/71/31", "52/72/32", "53/73/-3", "-24/74/-34"}));
}

void TestBoardInfo::rowsAreAsHighAsOnTheMonitorPage_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QRect>("first");
    QTest::addColumn<QRect>("last");
    QTest::newRow("as in the window") << QSize(382, 316) << QRect(19, 0, 344, 52) << QRect(19, 156, 344, 52);
    QTest::newRow("divisions truncate") << QSize(399, 305) << QRect(19, 0, 361, 50) << QRect(19, 150, 361, 50);
}

void TestBoardInfo::rowsAreAsHighAsOnTheMonitorPage()
{
    QFETCH(QSize, size);
    Ovryn_BoardInfoWidget rows;
    rows.resize(size);
    rows.grab(); // delivers the resize
    QTEST(rows.row(0)->geometry(), "first");
    QTEST(rows.row(3)->geometry(), "last");
    QCOMPARE(rows.findChildren<Ovryn_BaseInfoRow *>().size(), 4);
}

void TestBoardInfo::rowLines()
{
    Ovryn_BoardInfoWidget rows;
    rows.resize(382, 316);
    const QImage image = paintingOf(rows);
    for (int line = 1; line <= 5; ++line) {
        const QColor color = image.pixelColor(2, 52 * line);
        QVERIFY2(color.alpha() > 100 && color.red() > 250 && color.green() == 0, qPrintable(QString::number(line)));
        QCOMPARE(qAlpha(image.pixel(2, 52 * line - 10)), 0);
    }
}

void TestBoardInfo::rowTickTellsWhetherAnyIsTicked()
{
    Ovryn_BoardInfoWidget rows;
    QSignalSpy have(&rows, SIGNAL(isHaveChecked(bool)));
    rows.row(0)->setChecked(true);
    rows.row(3)->setChecked(true);
    QCOMPARE(rows.selectOption(), 9);
    rows.row(0)->setChecked(false);
    rows.row(3)->setChecked(false);
    QCOMPARE(rows.selectOption(), 0);
    QList<bool> told;
    for (const QList<QVariant> &arguments : have)
        told << arguments.at(0).toBool();
    QCOMPARE(told, (QList<bool>{true, true, true, false}));
}

void TestBoardInfo::everyGraphTakesItsSample()
{
    Ovryn_BoardInfoMonitorWidget graphs;
    graphs.receiveBoardTempCompleteInfo(sampleInfo());
    QStringList taken;
    for (int i = 0; i < 4; ++i) {
        const Ovryn_BaseMonitorBox *box = graphs.box(i);
        taken << QStringLiteral("%1 of %2 to %3: %4")
                     .arg(box->history().at(0).value)
                     .arg(box->rangeBottom())
                     .arg(box->rangeTop())
                     .arg(valuesOf(*box->captionRow()));
    }
    QCOMPARE(taken, (QStringList{"51 of 0 to 100: 51/71/31", "52 of 0 to 100: 52/72/32", "53 of 0 to 100: 53/73/-3",
                                 "-24 of 0 to 100: -24/74/-34"}));
}

void TestBoardInfo::graphsShownByMask_data()
{
    QTest::addColumn<int>("mask");
    QTest::addColumn<QList<int>>("tops"); // of each graph, -1 where it is hidden
    QTest::addColumn<int>("stackHeight");
    QTest::newRow("none, as made") << 0 << QList<int>{-1, -1, -1, -1} << 316;
    QTest::newRow("Mem 1") << 1 << QList<int>{0, -1, -1, -1} << 316;
    QTest::newRow("Mem 2") << 2 << QList<int>{-1, 0, -1, -1} << 316;
    QTest::newRow("Core MOS") << 4 << QList<int>{-1, -1, 0, -1} << 316;
    QTest::newRow("Mem MOS") << 8 << QList<int>{-1, -1, -1, 0} << 316;
    QTest::newRow("first and last") << 9 << QList<int>{0, -1, -1, 158} << 316;
    QTest::newRow("all") << 15 << QList<int>{0, 158, 316, 474} << 632;
    QTest::newRow("bits above 3 stand for no sensor") << 0xF2 << QList<int>{-1, 0, -1, -1} << 316;
}

void TestBoardInfo::graphsShownByMask()
{
    QFETCH(int, mask);
    Ovryn_BoardInfoMonitorWidget graphs;
    graphs.resize(382, 316);
    graphs.show();
    if (mask != 0)
        graphs.setSelectMask(mask);
    QCOMPARE(graphs.shownMask(), mask);
    QList<int> tops;
    for (int i = 0; i < 4; ++i)
        tops << (graphs.box(i)->isHidden() ? -1 : graphs.box(i)->y());
    QTEST(tops, "tops");
    QTEST(graphs.stackHeight(), "stackHeight");
}

void TestBoardInfo::lastGraphIsReachable()
{
    Ovryn_BoardInfoMonitorWidget graphs;
    graphs.resize(382, 316);
    graphs.setSelectMask(15);
    graphs.show();
    QVERIFY(QTest::qWaitForWindowExposed(&graphs));
    QTest::mousePress(&graphs, Qt::LeftButton, Qt::NoModifier, QPoint(5, 310));
    for (const int y : {200, 100, 5}) {
        QMouseEvent move(QEvent::MouseMove, QPoint(5, y), graphs.mapToGlobal(QPoint(5, y)), Qt::NoButton,
                         Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&graphs, &move);
    }
    QCOMPARE(graphs.scrollPosition(), 305);
    QTest::mouseRelease(&graphs, Qt::LeftButton, Qt::NoModifier, QPoint(5, 5));
    QWheelEvent wheel(QPoint(5, 5), graphs.mapToGlobal(QPoint(5, 5)), QPoint(), QPoint(0, -120), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    for (int turn = 0; turn < 3; ++turn)
        QApplication::sendEvent(&graphs, &wheel);
    QCOMPARE(graphs.scrollPosition(), 316);
    QCOMPARE(graphs.box(3)->y(), 158); // at the lower edge
}

void TestBoardInfo::pageStartsWithTheRows()
{
    const Page page;
    QVERIFY(page.rows->isVisible());
    QVERIFY(!page.graphs->isVisible());
    QVERIFY(!page.topRight->isVisible());
    QVERIFY(!page.topRight->isChecked());
    QCOMPARE(page.rows->selectOption(), 0);
    QCOMPARE(page.graphs->shownMask(), 0);
}

void TestBoardInfo::partsStandInTheirPlaces()
{
    const Page page;
    QCOMPARE(page.topRight->geometry(), QRect(342, 0, 38, 39));
    QCOMPARE(page.rows->geometry(), QRect(0, 39, 382, 316));
    QCOMPARE(page.graphs->geometry(), QRect(0, 39, 382, 316));
}

void TestBoardInfo::topRightFollowsTheTicks()
{
    const Page page;
    page.tick(0);
    QVERIFY(page.topRight->isVisible());
    page.tick(3);
    page.tick(0);
    QVERIFY(page.topRight->isVisible());
    page.tick(3); // the last one
    QVERIFY(!page.topRight->isVisible());
    QVERIFY(page.rows->isVisible());
}

void TestBoardInfo::topRightSwitchesTheViews()
{
    const Page page;
    page.tick(1);
    page.tick(2);
    QTest::mouseClick(page.topRight, Qt::LeftButton);
    QVERIFY(page.graphs->isVisible());
    QVERIFY(!page.rows->isVisible());
    QCOMPARE(page.graphs->shownMask(), 6);
    QCOMPARE(page.graphs->box(1)->geometry(), QRect(19, 0, 344, 158));
    QCOMPARE(page.graphs->box(2)->geometry(), QRect(19, 158, 344, 158));
    QTest::mouseClick(page.topRight, Qt::LeftButton);
    QVERIFY(!page.graphs->isVisible());
    QVERIFY(page.rows->isVisible());
    page.tick(1);
    QCOMPARE(page.graphs->shownMask(), 6); // until the next switch
}

void TestBoardInfo::recordReachesBothViews()
{
    Page page;
    page.widget.recvBoardTempCompleteInfo(sampleInfo());
    QCOMPARE(valuesOf(*page.rows->row(2)), QStringLiteral("53/73/-3"));
    QCOMPARE(page.graphs->box(2)->history().size(), 1);
    QCOMPARE(page.graphs->box(2)->history().at(0).value, 53.0);
}

void TestBoardInfo::hiddenGraphsKeepTheirHistory()
{
    Page page;
    for (int i = 0; i < 30; ++i)
        page.widget.recvBoardTempCompleteInfo(sampleInfo());
    page.tick(3);
    QTest::mouseClick(page.topRight, Qt::LeftButton);
    QVERIFY(page.graphs->box(3)->isVisible());
    QCOMPARE(page.graphs->box(3)->history().size(), 30);
}

void TestBoardInfo::pagePainting()
{
    Page page;
    const QImage image = paintingOf(page.widget);
    QCOMPARE(qAlpha(image.pixel(3, 380)), 60);    // glass
    QVERIFY(qAlpha(image.pixel(3, 5)) > 60);      // the band lies over it
    QCOMPARE(qAlpha(image.pixel(379, 391)), 0);   // the corner is cut
    QVERIFY(qAlpha(image.pixel(191, 39)) >= 200); // the rule under the band
    QVERIFY(!whiteBounds(image, QRect(19, 0, 150, 39)).isEmpty());
    QVERIFY(whiteBounds(image, QRect(254, 0, 128, 39)).isEmpty());  // no version here
    QVERIFY(!whiteBounds(image, QRect(19, 39, 100, 52)).isEmpty()); // title of the first row
}

void TestBoardInfo::titleFollowsTheLanguage()
{
    Page page;
    const QRect band(0, 0, 250, 39);
    const QImage chinese = paintingOf(page.widget).copy(band);
    page.widget.setLanguage(texts(kLanguageEnglish), kLanguageEnglish);
    QVERIFY(paintingOf(page.widget).copy(band) != chinese);
    page.widget.setLanguage(texts(kLanguageChinese), kLanguageChinese);
    QCOMPARE(paintingOf(page.widget).copy(band), chinese);
}

void TestBoardInfo::everyConnectionHolds()
{
    ConnectWarnings warnings;
    const Page page;
    QCOMPARE(warnings.list(), QStringList());
}

void TestBoardInfo::sensorsOnThePage_data()
{
    QTest::addColumn<double>("degrees");
    QTest::addColumn<QString>("current");
    QTest::newRow("25 degrees") << 25.0 << "25";
    QTest::newRow("25 degrees below zero") << -25.0 << "-25";
    QTest::newRow("a sixteenth below zero is cut to zero") << -0.0625 << "0";
    QTest::newRow("zero") << 0.0 << "0";
}

void TestBoardInfo::sensorsOnThePage()
{
    QFETCH(double, degrees);
    QFETCH(QString, current);
    for (int position = 0; position < 4; ++position) {
        CheckedDriver driver;
        driver.edit(0, [&](simulated::Card &card) {
            for (simulated::BoardSensorParameters &sensor : card.parameters.boardSensors)
                sensor.pinnedC = 100;
            card.parameters.boardSensors.at(std::size_t(position)).pinnedC = degrees;
        });
        NvGpuControl control;
        Page page;
        page.widget.recvBoardTempCompleteInfo(sampleOf(control));
        for (int row = 0; row < 4; ++row)
            QCOMPARE(page.rows->row(row)->currentValueText(), row == position ? current : QStringLiteral("100"));
        QCOMPARE(page.graphs->box(position)->history().at(0).value, current.toDouble());
    }
}

void TestBoardInfo::failedReadIsZero()
{
    CheckedDriver driver;
    NvGpuControl control;
    Page page;
    page.widget.recvBoardTempCompleteInfo(sampleOf(control));
    QVERIFY(page.rows->row(1)->currentValueText() != QLatin1String("0"));
    driver.edit(0, [](simulated::Card &card) {
        std::vector<simulated::BoardSensorParameters> &sensors = card.parameters.boardSensors;
        sensors.erase(sensors.begin() + 1);
    });
    page.widget.recvBoardTempCompleteInfo(sampleOf(control));
    QCOMPARE(page.rows->row(1)->currentValueText(), QStringLiteral("0")); // nothing tells it from a reading of 0
    QVERIFY(page.rows->row(0)->currentValueText() != QLatin1String("0"));
}

void TestBoardInfo::cardWithoutSensors()
{
    CheckedDriver driver;
    driver.edit(0, [](simulated::Card &card) { card.parameters.boardSensors.clear(); });
    NvGpuControl control;
    Page page;
    for (int sample = 0; sample < 3; ++sample)
        page.widget.recvBoardTempCompleteInfo(sampleOf(control));
    for (int row = 0; row < 4; ++row)
        QCOMPARE(valuesOf(*page.rows->row(row)), QStringLiteral("0/0/0"));
}

QTEST_MAIN(TestBoardInfo)
#include "TestBoardInfo.moc"
