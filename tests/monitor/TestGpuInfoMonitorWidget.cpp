#include "monitor/graphs/Ovryn_GPUInfoMonitorWidget.h"

#include "monitor/WidgetPainting.h"
#include "monitor/graphs/Ovryn_BaseInfoRow.h"
#include "monitor/graphs/Ovryn_BaseMonitorBox.h"

#include <QtTest>

#include <memory>

namespace
{
constexpr QSize kView(382, 316); ///< boxes of 344 by 158 at x 19
constexpr int kAll = 63;

std::unique_ptr<Ovryn_GPUInfoMonitorWidget> shownView(int mask, QSize size = kView)
{
    auto view = std::make_unique<Ovryn_GPUInfoMonitorWidget>();
    view->resize(size);
    view->setSelectMask(mask);
    view->show();
    if (!QTest::qWaitForWindowExposed(view.get()))
        qFatal("the view was not exposed");
    return view;
}

QList<int> topEdges(const Ovryn_GPUInfoMonitorWidget &view)
{
    QList<int> edges;
    for (int i = 0; i < 6; ++i) {
        if (!view.box(i)->isHidden())
            edges.append(view.box(i)->y());
    }
    return edges;
}

/// Turns the wheel over a place of the view; its window hands the event to the widget there.
void wheel(QWidget &view, int delta, QPoint position = QPoint(5, 5))
{
    QWheelEvent event(position, view.mapToGlobal(position), QPoint(), QPoint(0, delta), Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QSpontaneKeyEvent::setSpontaneous(&event); // as from the window system: only those go on to the parent
    qApp->notify(view.windowHandle(), &event);
}

/// Drags through the window system's own way of events, from and to positions of the view.
void drag(QWidget &view, Qt::MouseButton button, const QList<QPoint> &path)
{
    QWindow *window = view.windowHandle();
    QTest::mousePress(window, button, Qt::NoModifier, path.first());
    for (const QPoint &position : path.mid(1))
        QTest::mouseMove(window, position);
    QTest::mouseRelease(window, button, Qt::NoModifier, path.last());
    QCoreApplication::processEvents();
}

NvCardBaseInfo sampleInfo()
{
    NvCardBaseInfo info;
    info.gpuClock = {1800, 139, 1607, 2000, 0};
    info.memoryClock = {4100, 405, 4004, 5000, 0};
    info.fanSpeed = {1400, 0, 1200, 3000, 0};
    info.temperature = {71, -3, 52, 104, 0};
    info.memoryUsagePercent = {37, 12, 25, 100, 0};
    info.gpuUsage = {99, 1, 41, 100, 0};
    return info;
}
} // namespace

/// The graph view of the monitor page.
class TestGpuInfoMonitorWidget : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { useProgramFonts(); }

    void boundedScroll_data();
    void boundedScroll();
    void startsWithTheTemperature();
    void titlesFollowTheLanguage();
    void everyBoxTakesItsSample();
    void scaleIsTheRecords_data();
    void scaleIsTheRecords();
    void hiddenBoxesKeepTheirHistory();
    void masks_data();
    void masks();
    void maskLaysOutFromTheStart();
    void wheelSteps();
    void wheelAtTheEdges();
    void wheelOverABox();
    void oneBoxDoesNotMove();
    void lastBoxIsReachable();
    void dragOnTheView();
    void dragOnABox();
    void rightDragDoesNotScroll();
    void otherEventsReachTheBox();
    void scrollMovesThePicture();
    void maskIsPaintedAtOnce();
};

void TestGpuInfoMonitorWidget::boundedScroll_data()
{
    QTest::addColumn<int>("wanted");
    QTest::addColumn<int>("scrollY");
    QTest::addColumn<int>("contentHeight");
    QTest::addColumn<int>("change");
    QTest::newRow("within") << 10 << 50 << 900 << 10;
    QTest::newRow("up from the top edge") << -10 << 0 << 900 << 0;
    QTest::newRow("up beyond the top edge") << -10 << 4 << 900 << -4;
    QTest::newRow("down to the end exactly") << 10 << 590 << 900 << 10;
    QTest::newRow("down beyond the end") << 10 << 595 << 900 << 5;
    QTest::newRow("down at the end") << 10 << 600 << 900 << 0;
    QTest::newRow("content as high as the view, down") << 10 << 0 << 300 << 0;
    QTest::newRow("content as high as the view, up") << -10 << 0 << 300 << 0;
}

void TestGpuInfoMonitorWidget::boundedScroll()
{
    QFETCH(int, wanted);
    QFETCH(int, scrollY);
    QFETCH(int, contentHeight);
    QTEST(::boundedScroll(wanted, scrollY, contentHeight, 300), "change");
}

void TestGpuInfoMonitorWidget::startsWithTheTemperature()
{
    Ovryn_GPUInfoMonitorWidget view;
    QCOMPARE(view.shownMask(), 4);
    view.resize(kView);
    view.grab(); // delivers the resize
    for (int i = 0; i < 6; ++i)
        QCOMPARE(view.box(i)->isHidden(), i != 2);
    QCOMPARE(view.box(2)->geometry(), QRect(19, 0, 344, 158));
}

void TestGpuInfoMonitorWidget::titlesFollowTheLanguage()
{
    Ovryn_GPUInfoMonitorWidget view;
    QCOMPARE(view.box(0)->captionRow()->titleText(), QStringLiteral("核心频率"));
    Ovryn_LanguageTable table;
    table.setLanguage(kLanguageEnglish);
    view.setLanguage(table.monitor, kLanguageEnglish);
    QStringList titles;
    for (int i = 0; i < 6; ++i)
        titles.append(view.box(i)->captionRow()->titleText());
    QCOMPARE(titles, (QStringList{"GPU Clock", "Fan Speed", "Temp", "Mem Clock", "Mem Usage", "GPU Usage"}));
}

void TestGpuInfoMonitorWidget::everyBoxTakesItsSample()
{
    Ovryn_GPUInfoMonitorWidget view;
    view.receiveNvCardBaseInfo(sampleInfo());
    QStringList taken;
    for (int i = 0; i < 6; ++i) {
        const Ovryn_BaseMonitorBox *box = view.box(i);
        const Ovryn_BaseInfoRow *row = box->captionRow();
        taken.append(QStringLiteral("%1 of %2 to %3: %4/%5/%6")
                         .arg(box->history().at(0).value)
                         .arg(box->rangeBottom())
                         .arg(box->rangeTop())
                         .arg(row->currentValueText(), row->maxValueText(), row->minValueText()));
    }
    QCOMPARE(taken, (QStringList{"1607 of 0 to 2000: 1607/1800/139", "1200 of 0 to 3000: 1200/1400/0",
                                 "52 of 0 to 104: 52/71/-3", "4004 of 0 to 5000: 4004/4100/405",
                                 "25 of 0 to 100: 25%/37%/12%", "41 of 0 to 100: 41%/99%/1%"}));
}

void TestGpuInfoMonitorWidget::scaleIsTheRecords_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("upperLimit");
    QTest::addColumn<int>("lowerLimit");

    QTest::newRow("a value above the limit raises nothing") << 2500 << 2000 << 0;
    QTest::newRow("a value below the limit lowers nothing") << -50 << 2000 << 0;
    QTest::newRow("a limit that falls again is followed") << 100 << 500 << 0;
    QTest::newRow("a lower limit other than 0") << 100 << 500 << 40;
}

/// The graphs take both ends of their scale from the record and keep no opinion of their own.
void TestGpuInfoMonitorWidget::scaleIsTheRecords()
{
    QFETCH(int, value);
    QFETCH(int, upperLimit);
    QFETCH(int, lowerLimit);

    const auto view = shownView(kAll);
    NvCardBaseInfo info;
    const NvMonitorValue before = {3000, 0, 2900, 3000, 0};
    const NvMonitorValue sample = {9000, -9000, value, upperLimit, lowerLimit};
    for (const NvMonitorValue &given : {before, sample}) {
        info.gpuClock = info.memoryClock = info.fanSpeed = info.temperature = given;
        info.memoryUsagePercent = info.gpuUsage = info.memoryUsage = given;
        view->receiveNvCardBaseInfo(info);
    }
    for (int i = 0; i < 6; ++i) {
        QCOMPARE(view->box(i)->rangeTop(), double(upperLimit));
        QCOMPARE(view->box(i)->rangeBottom(), double(lowerLimit));
        QCOMPARE(view->box(i)->history().at(0).y, monitorBoxRowOf(value, lowerLimit, upperLimit, 128));
        QCOMPARE(view->box(i)->history().at(1).y, monitorBoxRowOf(2900, lowerLimit, upperLimit, 128));
    }
}

void TestGpuInfoMonitorWidget::hiddenBoxesKeepTheirHistory()
{
    const auto view = shownView(1);
    for (int i = 0; i < 30; ++i)
        view->receiveNvCardBaseInfo(sampleInfo());
    view->setSelectMask(32);
    const Ovryn_BaseMonitorBox *usage = view->box(5);
    QVERIFY(usage->isVisible());
    QCOMPARE(usage->history().size(), 30);
    QCOMPARE(usage->history().last().y, monitorBoxRowOf(41, 0, 100, 128)); // rescaled when it got its size
}

void TestGpuInfoMonitorWidget::masks_data()
{
    QTest::addColumn<int>("mask");
    QTest::addColumn<QList<int>>("tops");
    QTest::addColumn<int>("contentHeight");
    QTest::newRow("none") << 0 << QList<int>{} << 316;
    QTest::newRow("one: as high as the view") << 8 << QList<int>{0} << 316;
    QTest::newRow("two fill the view") << 0x21 << QList<int>{0, 158} << 316;
    QTest::newRow("three") << 0x07 << QList<int>{0, 158, 316} << 474;
    QTest::newRow("six: three views high") << kAll << QList<int>{0, 158, 316, 474, 632, 790} << 948;
    QTest::newRow("bits above 5 are ignored") << 0xC1 << QList<int>{0} << 316;
}

void TestGpuInfoMonitorWidget::masks()
{
    QFETCH(int, mask);
    const auto view = shownView(mask);
    QTEST(topEdges(*view), "tops");
    QTEST(view->stackHeight(), "contentHeight");
}

void TestGpuInfoMonitorWidget::maskLaysOutFromTheStart()
{
    const auto view = shownView(kAll);
    wheel(*view, -120);
    QCOMPARE(view->scrollPosition(), 10);
    view->setSelectMask(kAll);
    QCOMPARE(view->scrollPosition(), 0);
    QCOMPARE(topEdges(*view).first(), 0);
}

void TestGpuInfoMonitorWidget::wheelSteps()
{
    const auto view = shownView(kAll);
    wheel(*view, -120);
    wheel(*view, -15); // the step does not follow the size of the turn
    QCOMPARE(view->scrollPosition(), 20);
    QCOMPARE(topEdges(*view), (QList<int>{-20, 138, 296, 454, 612, 770}));
    wheel(*view, 120);
    QCOMPARE(view->scrollPosition(), 10);
    wheel(*view, 0); // no turn counts as one downwards
    QCOMPARE(view->scrollPosition(), 20);
}

void TestGpuInfoMonitorWidget::wheelAtTheEdges()
{
    const auto view = shownView(kAll);
    wheel(*view, 120);
    QCOMPARE(view->scrollPosition(), 0);
    QCOMPARE(topEdges(*view).first(), 0);
    for (int i = 0; i < 70; ++i)
        wheel(*view, -120);
    QCOMPARE(view->scrollPosition(), 632); // two views further down
    QCOMPARE(topEdges(*view).last(), 158);
}

void TestGpuInfoMonitorWidget::wheelOverABox()
{
    const auto view = shownView(kAll);
    wheel(*view, -120, QPoint(200, 100));
    wheel(*view, -120, QPoint(200, 10)); // on its caption
    QCOMPARE(view->scrollPosition(), 20);
}

void TestGpuInfoMonitorWidget::oneBoxDoesNotMove()
{
    const auto view = shownView(16);
    wheel(*view, -120);
    wheel(*view, -120, QPoint(200, 100));
    drag(*view, Qt::LeftButton, {QPoint(100, 120), QPoint(100, 20)});
    QCOMPARE(view->scrollPosition(), 0);
    QCOMPARE(topEdges(*view), QList<int>{0});
}

void TestGpuInfoMonitorWidget::lastBoxIsReachable()
{
    const auto view = shownView(kAll);
    for (int i = 0; i < 4; ++i)
        drag(*view, Qt::LeftButton, {QPoint(5, 310), QPoint(5, 5)});
    QCOMPARE(view->scrollPosition(), 632);
    QCOMPARE(view->box(5)->geometry(), QRect(19, 158, 344, 158));
}

void TestGpuInfoMonitorWidget::dragOnTheView()
{
    const auto view = shownView(kAll);
    drag(*view, Qt::LeftButton, {QPoint(5, 200), QPoint(5, 190), QPoint(9, 150)}); // in the left margin
    QCOMPARE(view->scrollPosition(), 50);
    drag(*view, Qt::LeftButton, {QPoint(5, 200), QPoint(5, 230)});
    QCOMPARE(view->scrollPosition(), 20);
    QCOMPARE(topEdges(*view).first(), -20);
}

void TestGpuInfoMonitorWidget::dragOnABox()
{
    const auto view = shownView(kAll);
    for (int i = 0; i < 10; ++i)
        view->receiveNvCardBaseInfo(sampleInfo());
    // From the first box into the second, over its newest samples; the boxes move under the mouse meanwhile.
    drag(*view, Qt::LeftButton, {QPoint(358, 100), QPoint(358, 80), QPoint(358, 60)});
    QCOMPARE(view->scrollPosition(), 40);
    // On the caption row, which is the box's child.
    drag(*view, Qt::LeftButton, {QPoint(100, 150), QPoint(100, 140)});
    QCOMPARE(view->scrollPosition(), 50);
}

void TestGpuInfoMonitorWidget::rightDragDoesNotScroll()
{
    const auto view = shownView(kAll);
    drag(*view, Qt::RightButton, {QPoint(100, 120), QPoint(100, 20)});
    drag(*view, Qt::RightButton, {QPoint(5, 120), QPoint(5, 20)});
    QCOMPARE(view->scrollPosition(), 0);
}

void TestGpuInfoMonitorWidget::otherEventsReachTheBox()
{
    const auto view = shownView(1);
    for (int i = 0; i < 10; ++i)
        view->receiveNvCardBaseInfo(sampleInfo());
    Ovryn_BaseMonitorBox *box = view->box(0);
    const auto move = [&](QPoint position, Qt::MouseButtons buttons) {
        QMouseEvent event(QEvent::MouseMove, position, box->mapToGlobal(position), Qt::NoButton, buttons,
                          Qt::NoModifier);
        QCoreApplication::sendEvent(box, &event);
    };
    move(QPoint(340, 100), Qt::LeftButton); // a drag: the box does not see it
    QVERIFY(!box->isHovering());
    move(QPoint(340, 100), Qt::NoButton);
    QVERIFY(box->isHovering());
}

void TestGpuInfoMonitorWidget::scrollMovesThePicture()
{
    const auto view = shownView(kAll);
    for (int i = 0; i < 10; ++i)
        wheel(*view, -120);
    // The second box has come up by 100: its caption stands at 58.
    const QImage image = paintingOf(*view);
    const QRect caption = whiteBounds(image, QRect(19 + 29, 58, 100, 30));
    QVERIFY(!caption.isEmpty());
    QVERIFY(caption.top() > 60 && caption.bottom() < 86);
}

void TestGpuInfoMonitorWidget::maskIsPaintedAtOnce()
{
    const auto view = shownView(kAll);
    QCoreApplication::processEvents();
    const PaintCounter counter(*view);
    view->setSelectMask(4);
    QCOMPARE(counter.painted, QRegion(view->rect()));
}

QTEST_MAIN(TestGpuInfoMonitorWidget)
#include "TestGpuInfoMonitorWidget.moc"
