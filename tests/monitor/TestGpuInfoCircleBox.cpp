#include "monitor/OpenGauge.h"
#include "monitor/WidgetPainting.h"
#include "support/ConnectWarnings.h"

#include <QPaintEvent>
#include <QPainter>
#include <QSignalSpy>
#include <QWindow>
#include <QtTest>

namespace
{

const QPoint kOnClock(113, 150);
const QPoint kOnTemperature(287, 150);
const QPoint kOnMemory(200, 300);
const QPoint kInHole(200, 200);
const QPoint kInGlow(200, 60);

void click(OpenGauge &gauge, const QPoint &position, Qt::MouseButton button = Qt::LeftButton)
{
    QTest::mousePress(gauge.windowHandle(), button, Qt::NoModifier, position);
    QTest::mouseRelease(gauge.windowHandle(), button, Qt::NoModifier, position);
}

} // namespace

class TestGpuInfoCircleBox : public GaugeTest
{
    Q_OBJECT

private slots:
    void everyConnectionHolds();
    void startsOnTheClockWithoutEffects();
    void aClickSelectsTheReadout_data();
    void aClickSelectsTheReadout();
    void noClick_data();
    void noClick();
    void nonSquareBoxUsesTheSmallerSide();
    void sizes_data();
    void sizes();
    void aSampleMovesTheWater();
    void fadeTakes26Ticks();
    void adjustmentDuringTheFadeShowsAtOnce();
    void closingWithTheOverlayGoneOnlyRepaints();
    void aClickEndsTheOverlay();
    void waterShowsOnTheMemoryReadoutOnly();
    void theMemorySegmentNeedsEnableWave();
    void enableWaveActsOnTheMemoryReadoutAlone();
    void breathingCircleGlows();
    void rendererRunsWhileShown();
    void switchingAnEffectOnStartsTheRendererAgain();
    void hiddenBoxStartsNoRendererForASetting();
};

void TestGpuInfoCircleBox::everyConnectionHolds()
{
    ConnectWarnings warnings;
    const OpenGauge gauge;
    QCOMPARE(warnings.list(), QStringList());
}

void TestGpuInfoCircleBox::startsOnTheClockWithoutEffects()
{
    const OpenGauge gauge;
    QCOMPARE(gauge.displayMode, 0);
    QCOMPARE(gauge.overlayAlpha, 255);
    QCOMPARE(gauge.adjustCurrent, QString("00"));
    QCOMPARE(gauge.adjustChanged, QString("00"));
    QCOMPARE(gauge.adjustSize, 0);
    QCOMPARE(gauge.waveLevel, 0.5);
    QVERIFY(gauge.enableWave);
    QCOMPARE(gauge.fadeTimer->interval(), 20);
    QVERIFY(!gauge.fadeTimer->isActive());
    QVERIFY(!gauge.renderer->isRunning());
}

void TestGpuInfoCircleBox::aClickSelectsTheReadout_data()
{
    QTest::addColumn<QPoint>("position");
    QTest::addColumn<int>("displayMode");
    QTest::addColumn<int>("lcdDisplayMode");
    QTest::newRow("clock") << kOnClock << 0 << 0x80;
    QTest::newRow("temperature") << kOnTemperature << 1 << 0x40;
    QTest::newRow("memory") << kOnMemory << 2 << 0x20;
}

void TestGpuInfoCircleBox::aClickSelectsTheReadout()
{
    QFETCH(QPoint, position);
    QFETCH(int, lcdDisplayMode);
    OpenGauge gauge;
    gauge.showReady();
    gauge.displayMode = 77; // none of the three
    const QSignalSpy lcd(&gauge, SIGNAL(setLcdDisplayMode(LCDDisplayMode)));
    click(gauge, position);
    QTEST(gauge.displayMode, "displayMode");
    QCOMPARE(lcd.count(), 1);
    QCOMPARE(int(lcd.at(0).at(0).value<LCDDisplayMode>()), lcdDisplayMode);
}

void TestGpuInfoCircleBox::noClick_data()
{
    QTest::addColumn<QPoint>("press");
    QTest::addColumn<QPoint>("release");
    QTest::addColumn<bool>("rightButton");
    QTest::newRow("released in the hole") << kOnMemory << kInHole << false;
    QTest::newRow("released on another segment") << kOnMemory << kOnClock << false;
    QTest::newRow("released outside the box") << kOnMemory << QPoint(-30, 700) << false;
    QTest::newRow("pressed in the hole, released on a segment") << kInHole << kOnMemory << false;
    QTest::newRow("pressed in the glow") << kInGlow << kInGlow << false;
    QTest::newRow("in the gap between two segments") << QPoint(200, 100) << QPoint(200, 100) << false;
    QTest::newRow("right button") << kOnMemory << kOnMemory << true;
}

void TestGpuInfoCircleBox::noClick()
{
    QFETCH(QPoint, press);
    QFETCH(QPoint, release);
    QFETCH(bool, rightButton);
    const Qt::MouseButton button = rightButton ? Qt::RightButton : Qt::LeftButton;
    OpenGauge gauge;
    gauge.showReady();
    const QSignalSpy lcd(&gauge, SIGNAL(setLcdDisplayMode(LCDDisplayMode)));
    QTest::mousePress(gauge.windowHandle(), button, Qt::NoModifier, press);
    QTest::mouseRelease(gauge.windowHandle(), button, Qt::NoModifier, release);
    QCOMPARE(lcd.count(), 0);
    QCOMPARE(gauge.displayMode, 0);
    click(gauge, kOnMemory); // and the segment still answers
    QCOMPARE(lcd.count(), 1);
}

void TestGpuInfoCircleBox::nonSquareBoxUsesTheSmallerSide()
{
    OpenGauge gauge;
    gauge.resize(700, kSide);
    gauge.showReady();
    QCOMPARE(gauge.mask(), QRegion(0, 0, kSide, kSide, QRegion::Ellipse));
    QVERIFY(!gauge.mask().contains(QPoint(500, 200)));
    QCOMPARE(gauge.btnMemory->geometry(), QRect(80, 80, 240, 240));
    QCOMPARE(gauge.childAt(kOnMemory), static_cast<QWidget *>(gauge.btnMemory));
    QCOMPARE(gauge.childAt(kInHole), static_cast<QWidget *>(nullptr));
    QCOMPARE(gauge.renderer->renderFrame().size(), QSize(kSide, kSide));
}

void TestGpuInfoCircleBox::sizes_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("nothing") << QSize(0, 0);
    QTest::newRow("single pixel") << QSize(1, 1);
    QTest::newRow("no height") << QSize(300, 0);
    QTest::newRow("too small for a ring") << QSize(4, 4);
    QTest::newRow("too small for its texts") << QSize(25, 25);
    QTest::newRow("large") << QSize(1500, 1400);
}

void TestGpuInfoCircleBox::sizes()
{
    QFETCH(QSize, size);
    OpenGauge gauge;
    gauge.setEnableBreathingCircle(true);
    gauge.resize(size);
    gauge.show();
    gauge.btnMemory_MouseClick();
    gauge.setAdjustInfo("1", "2", 3);
    gauge.onTimer1Timerout();
    const int side = qMin(size.width(), size.height());
    QCOMPARE(gauge.renderer->renderFrame().size(), QSize(side, side));
    if (side > 0) // nothing paints on nothing
        QCOMPARE(gauge.painted().size(), size);
}

void TestGpuInfoCircleBox::aSampleMovesTheWater()
{
    OpenGauge gauge;
    gauge.recvNvCardInfo(sample());
    QCOMPARE(gauge.waveLevel, 0.4);
    QCOMPARE(gauge.nvCardBaseInfo.gpuClock.currentValue, 1911);
    gauge.showReady();
    gauge.btnMemory_MouseClick();
    QVERIFY(gauge.showsWater());
    NvCardBaseInfo info = sample();
    info.memoryUsagePercent.currentValue = 0;
    gauge.recvNvCardInfo(info);
    QVERIFY(!gauge.showsWater());
}

void TestGpuInfoCircleBox::fadeTakes26Ticks()
{
    OpenGauge gauge;
    gauge.setAdjustInfo("1911", "1886", -25);
    QCOMPARE(gauge.adjustCurrent, QString("1911"));
    QCOMPARE(gauge.adjustChanged, QString("1886"));
    QCOMPARE(gauge.adjustSize, -25);
    QCOMPARE(gauge.overlayAlpha, 0);
    QVERIFY(!gauge.fadeTimer->isActive());
    gauge.closeDisplayInfo();
    QVERIFY(gauge.fadeTimer->isActive());
    for (int tick = 1; tick <= 25; ++tick) {
        gauge.onTimer1Timerout();
        QCOMPARE(gauge.overlayAlpha, 10 * tick);
        QVERIFY(gauge.fadeTimer->isActive());
    }
    gauge.onTimer1Timerout();
    QCOMPARE(gauge.overlayAlpha, 255);
    QVERIFY(!gauge.fadeTimer->isActive());
}

void TestGpuInfoCircleBox::adjustmentDuringTheFadeShowsAtOnce()
{
    OpenGauge gauge;
    gauge.setAdjustInfo("1911", "1886", -25);
    gauge.closeDisplayInfo();
    for (int tick = 0; tick < 10; ++tick)
        gauge.onTimer1Timerout();
    gauge.setAdjustInfo("1911", "1936", 25);
    QCOMPARE(gauge.overlayAlpha, 0);
    QVERIFY(!gauge.fadeTimer->isActive());
}

void TestGpuInfoCircleBox::closingWithTheOverlayGoneOnlyRepaints()
{
    OpenGauge gauge;
    gauge.showReady();
    QTRY_VERIFY_WITH_TIMEOUT(gauge.renderer->isFinished() && !gauge.background.isNull(), kPatienceMs);
    QCoreApplication::processEvents();
    PaintCounter counter(gauge);
    QCoreApplication::processEvents();
    QCOMPARE(counter.paints, 0);
    gauge.closeDisplayInfo();
    QTRY_COMPARE_WITH_TIMEOUT(counter.paints, 1, kPatienceMs);
    QCOMPARE(gauge.overlayAlpha, 255);
    QVERIFY(!gauge.fadeTimer->isActive());
}

void TestGpuInfoCircleBox::aClickEndsTheOverlay()
{
    OpenGauge gauge;
    gauge.showReady();
    gauge.setAdjustInfo("1911", "1886", -25);
    click(gauge, kOnTemperature);
    QCOMPARE(gauge.overlayAlpha, 255);
}

void TestGpuInfoCircleBox::waterShowsOnTheMemoryReadoutOnly()
{
    OpenGauge gauge;
    gauge.recvNvCardInfo(sample());
    gauge.showReady();
    QVERIFY(!gauge.showsWater());
    click(gauge, kOnMemory);
    QVERIFY(gauge.showsWater());
    click(gauge, kOnClock);
    QVERIFY(!gauge.showsWater());
    click(gauge, kOnMemory);
    QVERIFY(gauge.showsWater());
    click(gauge, kOnTemperature);
    QVERIFY(!gauge.showsWater());
}

void TestGpuInfoCircleBox::theMemorySegmentNeedsEnableWave()
{
    OpenGauge gauge;
    gauge.recvNvCardInfo(sample());
    gauge.showReady();
    gauge.setEnableWave(false);
    click(gauge, kOnMemory);
    QVERIFY(!gauge.showsWater());
    QCOMPARE(gauge.displayMode, 2);
}

void TestGpuInfoCircleBox::enableWaveActsOnTheMemoryReadoutAlone()
{
    OpenGauge gauge;
    gauge.recvNvCardInfo(sample());
    gauge.showReady();
    gauge.setEnableWave(false);
    gauge.setEnableWave(true);
    QVERIFY(!gauge.showsWater());
    click(gauge, kOnMemory);
    QVERIFY(gauge.showsWater());
    gauge.setEnableWave(false);
    QVERIFY(!gauge.enableWave);
    QVERIFY(!gauge.showsWater());
    gauge.setEnableWave(true);
    QVERIFY(gauge.showsWater());
}

void TestGpuInfoCircleBox::breathingCircleGlows()
{
    OpenGauge gauge;
    gauge.showReady();
    QVERIFY(!gauge.showsGlow());
    gauge.setEnableBreathingCircle(true);
    QVERIFY(gauge.showsGlow());
    gauge.setEnableBreathingCircle(false);
    QVERIFY(!gauge.showsGlow());
}

void TestGpuInfoCircleBox::rendererRunsWhileShown()
{
    OpenGauge gauge;
    gauge.setEnableBreathingCircle(true);
    QVERIFY(!gauge.renderer->isRunning());
    gauge.showReady();
    QVERIFY(gauge.renderer->isRunning());
    QTRY_COMPARE_WITH_TIMEOUT(gauge.background.size(), QSize(kSide, kSide), kPatienceMs);
    gauge.hide();
    QTRY_VERIFY_WITH_TIMEOUT(gauge.renderer->isFinished(), kPatienceMs);
    gauge.show();
    QTRY_VERIFY_WITH_TIMEOUT(gauge.renderer->isRunning(), kPatienceMs);
}

void TestGpuInfoCircleBox::switchingAnEffectOnStartsTheRendererAgain()
{
    OpenGauge gauge;
    gauge.showReady();
    QTRY_VERIFY_WITH_TIMEOUT(gauge.renderer->isFinished(), kPatienceMs); // nothing to do
    gauge.setEnableBreathingCircle(true);
    QVERIFY(gauge.renderer->isRunning());
    gauge.setEnableBreathingCircle(false);
    QTRY_VERIFY_WITH_TIMEOUT(gauge.renderer->isFinished(), kPatienceMs);
    click(gauge, kOnMemory);
    QVERIFY(gauge.renderer->isRunning());
    gauge.setEnableWave(false);
    QTRY_VERIFY_WITH_TIMEOUT(gauge.renderer->isFinished(), kPatienceMs);
    gauge.setEnableWave(true);
    QVERIFY(gauge.renderer->isRunning());
}

void TestGpuInfoCircleBox::hiddenBoxStartsNoRendererForASetting()
{
    OpenGauge gauge;
    gauge.setEnableBreathingCircle(true);
    gauge.setEnableWave(true);
    QVERIFY(!gauge.renderer->isRunning());
}

QTEST_MAIN(TestGpuInfoCircleBox)
#include "TestGpuInfoCircleBox.moc"
