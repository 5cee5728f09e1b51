#include "monitor/graphs/Ovryn_NvCardInfoWidget.h"

#include "device/NvGpuControl.h"
#include "monitor/WidgetPainting.h"
#include "monitor/graphs/Ovryn_BaseInfoRow.h"
#include "monitor/graphs/Ovryn_BaseMonitorBox.h"
#include "monitor/graphs/Ovryn_GPUInfoMonitorWidget.h"
#include "monitor/graphs/Ovryn_GPUInfoWidget.h"
#include "simulated/ScenarioReader.h"
#include "support/CheckedDriver.h"

#include <QCheckBox>
#include <QtTest>

#include <memory>

namespace
{
constexpr QSize kPage(382, 394);

/// A page with its parts at hand.
struct Page
{
    explicit Page(std::unique_ptr<Ovryn_NvCardInfoWidget> page)
        : widget(std::move(page)),
          rows(widget->findChild<Ovryn_GPUInfoWidget *>()),
          graphs(widget->findChild<Ovryn_GPUInfoMonitorWidget *>()),
          topRight(widget->findChild<QCheckBox *>(QStringLiteral("ckbTopRight")))
    {
        widget->resize(kPage);
        widget->show();
        if (!QTest::qWaitForWindowExposed(widget.get()))
            qFatal("the page was not exposed");
    }

    std::unique_ptr<Ovryn_NvCardInfoWidget> widget;
    Ovryn_GPUInfoWidget *rows;
    Ovryn_GPUInfoMonitorWidget *graphs;
    QCheckBox *topRight;
};

Page pageWithMask(int mask)
{
    return Page(std::make_unique<Ovryn_NvCardInfoWidget>(mask, nullptr));
}

int selectOption(const Page &page)
{
    int mask = -1;
    page.widget->getSelectOption(&mask);
    return mask;
}

QStringList g_complaints;
QtMessageHandler g_nextHandler = nullptr;

void collectComplaints(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    if (type == QtWarningMsg)
        g_complaints.append(text);
    g_nextHandler(type, context, text);
}
} // namespace

/// The monitor page: which view shows when, and the header band.
class TestNvCardInfoWidget : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { useProgramFonts(); }

    void layout_data();
    void layout();
    void partsStandInTheirPlaces();
    void storedSelection_data();
    void storedSelection();
    void pageWithoutStoredSettings();
    void topRightFollowsTheTicks();
    void topRightSwitchesTheViews();
    void graphsGetTheirMaskWithEachSwitch();
    void recordReachesBothViews();
    void driverVersion_data();
    void driverVersion();
    void driverVersionWithoutDevice();
    void bandIsPainted();
    void titleFollowsTheLanguage();
    void languageIsPaintedLater();
    void everyConnectionHolds();
};

void TestNvCardInfoWidget::layout_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QRect>("topRight");
    QTest::addColumn<QRect>("view");
    QTest::addColumn<QRect>("title");
    QTest::addColumn<QRect>("version");
    QTest::newRow("as in the window") << kPage << QRect(342, 0, 38, 39) << QRect(0, 39, 382, 316)
                                      << QRect(19, 0, 382, 39) << QRect(254, 0, 127, 39);
    QTest::newRow("divisions truncate") << QSize(599, 999) << QRect(531, 0, 59, 99) << QRect(0, 99, 599, 801)
                                        << QRect(29, 0, 599, 99) << QRect(398, 0, 199, 99);
}

void TestNvCardInfoWidget::layout()
{
    QFETCH(QSize, size);
    const RowsAndGraphsLayout rects = rowsAndGraphsLayoutFor(size);
    QTEST(rects.topRightRect, "topRight");
    QTEST(rects.viewRect, "view");
    QTEST(rects.titleRect, "title");
    QTEST(rects.versionRect, "version");
    QCOMPARE(rects.bandHeight, size.height() / 10);
}

void TestNvCardInfoWidget::partsStandInTheirPlaces()
{
    const Page page = pageWithMask(1);
    QCOMPARE(page.topRight->geometry(), QRect(342, 0, 38, 39));
    QCOMPARE(page.rows->geometry(), QRect(0, 39, 382, 316));
    QCOMPARE(page.graphs->geometry(), QRect(0, 39, 382, 316));
}

void TestNvCardInfoWidget::storedSelection_data()
{
    QTest::addColumn<int>("stored");
    QTest::addColumn<int>("ticked");
    QTest::addColumn<bool>("topRightShown");
    QTest::newRow("none") << 0 << 0 << false;
    QTest::newRow("temperature") << 4 << 4 << true;
    QTest::newRow("all") << 63 << 63 << true;
    QTest::newRow("bits above 5 tick nothing") << 0x105 << 5 << true;
    QTest::newRow("no bit that stands for a row") << 0x100 << 0 << false;
}

void TestNvCardInfoWidget::storedSelection()
{
    QFETCH(int, stored);
    const Page page = pageWithMask(stored);
    QTEST(selectOption(page), "ticked");
    QTEST(page.topRight->isVisible(), "topRightShown");
    QVERIFY(!page.topRight->isChecked());
    QVERIFY(page.rows->isVisible());
    QVERIFY(!page.graphs->isVisible());
}

void TestNvCardInfoWidget::pageWithoutStoredSettings()
{
    const Page page(std::make_unique<Ovryn_NvCardInfoWidget>(static_cast<NvGpuControl *>(nullptr)));
    QCOMPARE(selectOption(page), 0);
    QVERIFY(!page.topRight->isVisible());
    QVERIFY(page.rows->isVisible());
}

void TestNvCardInfoWidget::topRightFollowsTheTicks()
{
    const Page page = pageWithMask(0);
    const auto tick = [&](int row) {
        QTest::mouseClick(page.rows->row(row)->findChild<QCheckBox *>(), Qt::LeftButton, Qt::NoModifier,
                          QPoint(7, 26));
    };
    tick(1);
    QVERIFY(page.topRight->isVisible());
    tick(3);
    QVERIFY(page.topRight->isVisible());
    tick(1);
    QVERIFY(page.topRight->isVisible());
    tick(3); // the last one
    QVERIFY(!page.topRight->isVisible());
    QVERIFY(page.rows->isVisible());
}

void TestNvCardInfoWidget::topRightSwitchesTheViews()
{
    const Page page = pageWithMask(0x22);
    QTest::mouseClick(page.topRight, Qt::LeftButton);
    QVERIFY(page.topRight->isChecked());
    QVERIFY(page.graphs->isVisible());
    QVERIFY(!page.rows->isVisible());
    QVERIFY(page.topRight->isVisible());
    QCOMPARE(page.graphs->shownMask(), 0x22);
    QCOMPARE(page.graphs->box(1)->geometry(), QRect(19, 0, 344, 158));
    QCOMPARE(page.graphs->box(5)->geometry(), QRect(19, 158, 344, 158));
    QVERIFY(!page.graphs->box(2)->isVisible());

    QTest::mouseClick(page.topRight, Qt::LeftButton);
    QVERIFY(!page.graphs->isVisible());
    QVERIFY(page.rows->isVisible());
}

void TestNvCardInfoWidget::graphsGetTheirMaskWithEachSwitch()
{
    const Page page = pageWithMask(1);
    QCOMPARE(page.graphs->shownMask(), 4); // as made, until the first switch
    QTest::mouseClick(page.topRight, Qt::LeftButton);
    QCOMPARE(page.graphs->shownMask(), 1);
    QTest::mouseClick(page.topRight, Qt::LeftButton);
    page.rows->row(1)->setChecked(true);
    QCOMPARE(page.graphs->shownMask(), 1); // a tick alone changes nothing
    QTest::mouseClick(page.topRight, Qt::LeftButton);
    QCOMPARE(page.graphs->shownMask(), 3);
}

void TestNvCardInfoWidget::recordReachesBothViews()
{
    const Page page = pageWithMask(1);
    NvCardBaseInfo info;
    info.temperature = {71, 33, 52, 104, 0};
    page.widget->recvNvCardInfo(info);
    QCOMPARE(page.rows->row(2)->currentValueText(), QStringLiteral("52"));
    QCOMPARE(page.graphs->box(2)->history().size(), 1);
    QCOMPARE(page.graphs->box(2)->history().at(0).value, 52.0);
    QCOMPARE(page.graphs->box(2)->captionRow()->maxValueText(), QStringLiteral("71"));
}

void TestNvCardInfoWidget::driverVersion_data()
{
    QTest::addColumn<quint32>("number");
    QTest::addColumn<NvAPI_Status>("status");
    QTest::addColumn<QString>("text");
    QTest::newRow("five digits") << 38813u << NVAPI_OK << "388.13";
    QTest::newRow("six digits") << 100123u << NVAPI_OK << "100.123";
    QTest::newRow("failed query") << 38813u << NVAPI_ERROR << "XXX.XX";
}

void TestNvCardInfoWidget::driverVersion()
{
    QFETCH(quint32, number);
    QFETCH(NvAPI_Status, status);
    QFETCH(QString, text);
    simulated::Scenario scene = simulated::builtInScenario();
    scene.driver.version = number;
    CheckedDriver driver(scene);
    NvGpuControl control;
    if (status != NVAPI_OK)
        driver.fails(Operation::NvAPI_SYS_GetDriverAndBranchVersion, status);
    driver.forgetCalls();
    const Page page(std::make_unique<Ovryn_NvCardInfoWidget>(&control));
    QCOMPARE(page.widget->driverVersionText(), text);
    QCOMPARE(driver.calls(Operation::NvAPI_SYS_GetDriverAndBranchVersion).size(), 1);
    QCOMPARE(driver.calls().size(), 1);
    page.widget->recvNvCardInfo(NvCardBaseInfo());
    QCOMPARE(driver.calls().size(), 1); // once, at construction
}

void TestNvCardInfoWidget::driverVersionWithoutDevice()
{
    QCOMPARE(pageWithMask(0).widget->driverVersionText(), QStringLiteral("XXX.XX"));
}

void TestNvCardInfoWidget::bandIsPainted()
{
    const Page page = pageWithMask(1);
    const QImage image = paintingOf(*page.widget);
    const int glass = qAlpha(image.pixel(3, 380));
    QCOMPARE(glass, 60);
    QVERIFY(qAlpha(image.pixel(3, 5)) > glass);   // the band lies over the glass
    QCOMPARE(qAlpha(image.pixel(379, 391)), 0);   // the corner is cut
    QVERIFY(qAlpha(image.pixel(191, 39)) >= 200); // the rule under the band
    // The version stands in its rectangle, left-aligned, and not under the check box.
    const QRect version = whiteBounds(image, QRect(254, 0, 88, 39));
    QVERIFY(!version.isEmpty());
    QVERIFY(version.left() - 254 <= 4);
    QVERIFY(version.right() < 342);
    QVERIFY(!whiteBounds(image, QRect(19, 0, 150, 39)).isEmpty());
}

void TestNvCardInfoWidget::titleFollowsTheLanguage()
{
    const Page page = pageWithMask(1);
    const QRect band(0, 0, 250, 39);
    const QImage chinese = paintingOf(*page.widget).copy(band);
    Ovryn_LanguageTable table;
    table.setLanguage(kLanguageEnglish);
    page.widget->setLanguage(table.monitor, kLanguageEnglish);
    const QImage english = paintingOf(*page.widget).copy(band);
    QVERIFY(chinese != english);
    QCOMPARE(page.rows->row(0)->titleText(), QStringLiteral("GPU Clock"));
    QCOMPARE(page.graphs->box(0)->captionRow()->titleText(), QStringLiteral("GPU Clock"));
    page.widget->setLanguage(Ovryn_LanguageTable().monitor, kLanguageChinese);
    QCOMPARE(paintingOf(*page.widget).copy(band), chinese);
}

void TestNvCardInfoWidget::languageIsPaintedLater()
{
    const Page page = pageWithMask(1);
    QCoreApplication::processEvents();
    PaintCounter counter(*page.widget);
    page.widget->setLanguage(Ovryn_LanguageTable().monitor, kLanguageChinese);
    const QRegion band(0, 0, 342, 39);          // left of the check box
    QVERIFY(!counter.painted.intersects(band)); // what shows rows is painted at once
    QTRY_VERIFY((band - counter.painted).isEmpty());
}

void TestNvCardInfoWidget::everyConnectionHolds()
{
    g_complaints.clear();
    g_nextHandler = qInstallMessageHandler(collectComplaints);
    {
        const Page page = pageWithMask(63);
        QTest::mouseClick(page.topRight, Qt::LeftButton);
    }
    qInstallMessageHandler(g_nextHandler);
    QCOMPARE(g_complaints, QStringList());
}

QTEST_MAIN(TestNvCardInfoWidget)
#include "TestNvCardInfoWidget.moc"
