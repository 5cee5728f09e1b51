#include "monitor/WidgetPainting.h"
#include "monitor/gauge/CreateBreathCircleAndWaveCircleThread.h"
#include "monitor/gauge/Ovryn_CircleButton.h"
#include "monitor/gauge/Ovryn_GpuInfoCircleBox.h"
#include "ui/Fonts.h"

#include <QPaintEvent>
#include <QPainter>
#include <QSignalSpy>
#include <QWindow>
#include <QtTest>

namespace
{

constexpr int kSide = 400; // ring from 80 to 120 pixels around (200, 200)
constexpr int kPatienceMs = 20000;

const QPoint kOnClock(113, 150);
const QPoint kOnTemperature(287, 150);
const QPoint kOnMemory(200, 300);
const QPoint kInHole(200, 200);
const QPoint kInGlow(200, 60);

Lang_BreathCircle englishWords()
{
    return {"C L O C K", "T E M P", "M E M O R Y", "Preset ", "Present ", "Dec ", "Inc "};
}

class OpenGauge : public Ovryn_GpuInfoCircleBox
{
public:
    OpenGauge()
    {
        setAttribute(Qt::WA_TranslucentBackground);
        setLanguage(englishWords(), kLanguageEnglish);
        resize(kSide, kSide);
    }

    using Ovryn_GpuInfoCircleBox::adjustChanged;
    using Ovryn_GpuInfoCircleBox::adjustCurrent;
    using Ovryn_GpuInfoCircleBox::adjustSize;
    using Ovryn_GpuInfoCircleBox::background;
    using Ovryn_GpuInfoCircleBox::btnMemory;
    using Ovryn_GpuInfoCircleBox::displayMode;
    using Ovryn_GpuInfoCircleBox::enableWave;
    using Ovryn_GpuInfoCircleBox::fadeTimer;
    using Ovryn_GpuInfoCircleBox::holeRadius;
    using Ovryn_GpuInfoCircleBox::nvCardBaseInfo;
    using Ovryn_GpuInfoCircleBox::overlayAlpha;
    using Ovryn_GpuInfoCircleBox::renderer;
    using Ovryn_GpuInfoCircleBox::ringSize;
    using Ovryn_GpuInfoCircleBox::waveLevel;

    void showReady()
    {
        show();
        QVERIFY(QTest::qWaitForWindowExposed(this));
    }

    /// The renderer's next picture has water in the lower part of its disc.
    [[nodiscard]] bool showsWater() const
    {
        const QImage picture = renderer->renderFrame();
        return qAlpha(picture.pixel(picture.width() / 2, int(picture.width() / 2 + 0.9 * holeRadius))) > 100;
    }

    /// The renderer's next picture has a glow around the ring.
    [[nodiscard]] bool showsGlow() const
    {
        const QImage picture = renderer->renderFrame();
        return qAlpha(picture.pixel(picture.width() / 2, int(picture.width() / 2 - 0.5 * ringSize - 3))) > 0;
    }

    /// What the box itself paints, without its buttons.
    QImage painted()
    {
        QImage image(size(), QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        render(&image, QPoint(), QRegion(), IgnoreMask);
        return image;
    }
};

NvCardBaseInfo sample()
{
    NvCardBaseInfo info;
    info.gpuClock = {1987, 139, 1911, 2000, 0};
    info.temperature = {83, 31, 64, 104, 0};
    info.memoryUsage = {7112, 420, 3276, 8192, 0};
    info.memoryUsagePercent.currentValue = 40;
    return info;
}

void click(OpenGauge &gauge, const QPoint &position, Qt::MouseButton button = Qt::LeftButton)
{
    QTest::mousePress(gauge.windowHandle(), button, Qt::NoModifier, position);
    QTest::mouseRelease(gauge.windowHandle(), button, Qt::NoModifier, position);
}

QStringList connectWarnings;
void collectConnectWarnings(QtMsgType, const QMessageLogContext &, const QString &message)
{
    if (message.startsWith("QObject::connect"))
        connectWarnings.append(message);
}

} // namespace

class TestGpuInfoCircleBox : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
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
    void painting_data();
    void painting();
    void readoutFollows_data();
    void readoutFollows();
    void changesArePaintedLater_data();
    void changesArePaintedLater();
    void aFrameRepaintsAllThatItChanges_data();
    void aFrameRepaintsAllThatItChanges();
    void waterShowsOnTheMemoryReadoutOnly();
    void theMemorySegmentNeedsEnableWave();
    void enableWaveActsOnTheMemoryReadoutAlone();
    void breathingCircleGlows();
    void rendererRunsWhileShown();
    void switchingAnEffectOnStartsTheRendererAgain();
    void hiddenBoxStartsNoRendererForASetting();
    void languageChangesTheRing();
};

void TestGpuInfoCircleBox::initTestCase()
{
    substituteFontFamilies();
    QApplication::setFont(QFont(QString::fromUtf8("微软雅黑"))); // as the program does
}

void TestGpuInfoCircleBox::everyConnectionHolds()
{
    const QtMessageHandler before = qInstallMessageHandler(collectConnectWarnings);
    {
        const OpenGauge gauge;
    }
    qInstallMessageHandler(before);
    QCOMPARE(connectWarnings, QStringList());
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

void TestGpuInfoCircleBox::painting_data()
{
    QTest::addColumn<int>("ticks"); // of the fade; -1 for no overlay at all
    QTest::addColumn<int>("readoutAlpha");
    QTest::addColumn<int>("overlayAlpha");
    QTest::newRow("readout alone") << -1 << 255 << 0;
    QTest::newRow("overlay alone") << 0 << 0 << 255;
    QTest::newRow("first tick") << 1 << 10 << 245;
    QTest::newRow("half-way") << 13 << 130 << 125;
    QTest::newRow("last tick but one") << 25 << 250 << 5;
    QTest::newRow("faded") << 26 << 255 << 0;
}

void TestGpuInfoCircleBox::painting()
{
    QFETCH(int, ticks);
    QFETCH(int, readoutAlpha);
    QFETCH(int, overlayAlpha);
    OpenGauge gauge;
    gauge.show();
    gauge.hide(); // laid out, and no picture comes in between
    gauge.recvNvCardInfo(sample());
    QPixmap glass(kSide, kSide);
    glass.fill(QColor(0, 0, 90));
    QTRY_VERIFY_WITH_TIMEOUT(gauge.renderer->isFinished(), kPatienceMs);
    QCoreApplication::processEvents();
    gauge.recvBkImg(glass);
    if (ticks >= 0)
        gauge.setAdjustInfo("1911", "1886", -25);
    for (int tick = 0; tick < ticks; ++tick)
        gauge.onTimer1Timerout();

    QImage expected(kSide, kSide, QImage::Format_ARGB32_Premultiplied);
    {
        expected.fill(Qt::transparent);
        QPainter painter(&expected);
        painter.setFont(gauge.font());
        painter.drawPixmap(0, 0, glass);
        if (readoutAlpha > 0)
            paintReadout(painter, readoutLayoutFor(kSide, 80.0), readoutTextsFor(0, sample()), readoutAlpha);
        if (overlayAlpha > 0)
            paintOverlay(painter, overlayLayoutFor(kSide, 80.0, 0.2),
                         overlayTextsFor(englishWords(), "1911", "1886", -25), "Arial", overlayAlpha);
    }
    QImage bare(kSide, kSide, QImage::Format_ARGB32_Premultiplied);
    bare.fill(QColor(0, 0, 90));
    QVERIFY(expected != bare);
    const QRect hole(130, 130, 140, 140);
    QCOMPARE(gauge.painted().copy(hole), expected.copy(hole));
}

void TestGpuInfoCircleBox::readoutFollows_data()
{
    QTest::addColumn<QString>("change");
    for (const char *change : {"sample", "quantity", "size", "font"})
        QTest::newRow(change) << change;
}

void TestGpuInfoCircleBox::readoutFollows()
{
    QFETCH(QString, change);
    const auto make = [&](OpenGauge &gauge) {
        if (change == "sample")
            gauge.recvNvCardInfo(sample());
        else if (change == "quantity")
            gauge.btnTemperature_MouseClick();
        else if (change == "size")
            gauge.resize(kSide + 60, kSide + 60);
        else
            gauge.setFont([] {
                QFont slanted;
                slanted.setItalic(true);
                return slanted;
            }());
    };
    OpenGauge painted;
    const QImage before = painted.painted();
    make(painted);
    OpenGauge fresh;
    make(fresh);
    QVERIFY(fresh.painted() != before);
    QCOMPARE(painted.painted(), fresh.painted());
}

void TestGpuInfoCircleBox::changesArePaintedLater_data()
{
    QTest::addColumn<QString>("change");
    for (const char *change : {"sample", "clock", "temperature", "memory", "adjustment", "end of an adjustment",
                               "step of the fade", "picture"})
        QTest::newRow(change) << change;
}

void TestGpuInfoCircleBox::changesArePaintedLater()
{
    QFETCH(QString, change);
    OpenGauge gauge;
    gauge.setEnableWave(false); // so that the renderer rests
    gauge.showReady();
    QTRY_VERIFY_WITH_TIMEOUT(gauge.renderer->isFinished() && !gauge.background.isNull(), kPatienceMs);
    if (change == QLatin1String("step of the fade"))
        gauge.setAdjustInfo("1", "2", 3);
    QCoreApplication::processEvents();
    const PaintCounter counter(gauge);
    if (change == QLatin1String("sample"))
        gauge.recvNvCardInfo(sample());
    else if (change == QLatin1String("clock"))
        gauge.btnFreClock_MouseClick();
    else if (change == QLatin1String("temperature"))
        gauge.btnTemperature_MouseClick();
    else if (change == QLatin1String("memory"))
        gauge.btnMemory_MouseClick();
    else if (change == QLatin1String("adjustment"))
        gauge.setAdjustInfo("1", "2", 3);
    else if (change == QLatin1String("end of an adjustment"))
        gauge.closeDisplayInfo();
    else if (change == QLatin1String("step of the fade"))
        gauge.onTimer1Timerout();
    else
        gauge.recvBkImg(QPixmap(kSide, kSide));
    QCOMPARE(counter.paints, 0);
    QTRY_COMPARE_WITH_TIMEOUT(counter.paints, 1, kPatienceMs);
}

void TestGpuInfoCircleBox::aFrameRepaintsAllThatItChanges_data()
{
    QTest::addColumn<bool>("glow");
    QTest::addColumn<bool>("water");
    QTest::newRow("glow") << true << false;
    QTest::newRow("water") << false << true;
    QTest::newRow("both") << true << true;
}

void TestGpuInfoCircleBox::aFrameRepaintsAllThatItChanges()
{
    class RegionKeeper : public QObject
    {
    public:
        QRegion painted;
        bool eventFilter(QObject *, QEvent *event) override
        {
            if (event->type() == QEvent::Paint)
                painted += static_cast<QPaintEvent *>(event)->region();
            return false;
        }
    };
    QFETCH(bool, glow);
    QFETCH(bool, water);
    OpenGauge gauge;
    gauge.recvNvCardInfo(sample());
    gauge.showReady();
    QTRY_VERIFY_WITH_TIMEOUT(gauge.renderer->isFinished() && !gauge.background.isNull(), kPatienceMs);
    QCoreApplication::processEvents();
    gauge.renderer->setBreathEnabled(glow); // on the renderer itself: the test calls for the frames
    gauge.renderer->setWaveEnabled(water);
    RegionKeeper keeper;
    gauge.installEventFilter(&keeper);
    for (int frame = 0; frame < 100; ++frame) {
        if (frame == 80)
            gauge.renderer->setBreathEnabled(!glow); // a glow that ends has to be cleared
        if (frame == 85)
            gauge.renderer->setWaveEnabled(!water);
        if (frame == 90)
            gauge.renderer->setWaveLevel(1.0);
        if (frame == 95)
            gauge.renderer->setWaveEnabled(false);
        if (frame == 98) {
            QPixmap other(kSide, kSide);
            other.fill(Qt::red);
            gauge.recvBkImg(other);
            QCoreApplication::processEvents();
        }
        const QImage before = gauge.background.toImage();
        const GaugeFrame next = gauge.renderer->nextFrame();
        const QImage after = next.picture;
        keeper.painted = QRegion();
        QVERIFY(QMetaObject::invokeMethod(&gauge, "recvRenderedFrame", Q_ARG(GaugeFrame, next)));
        if (before != after)
            QTRY_VERIFY_WITH_TIMEOUT(!keeper.painted.isEmpty(), kPatienceMs);
        for (int y = 0; y < kSide; ++y) {
            if (before.copy(0, y, kSide, 1) == after.copy(0, y, kSide, 1))
                continue;
            for (int x = 0; x < kSide; ++x) {
                if (before.pixel(x, y) != after.pixel(x, y) && gauge.mask().contains(QPoint(x, y)))
                    QVERIFY(keeper.painted.contains(QPoint(x, y)));
            }
        }
    }
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

void TestGpuInfoCircleBox::languageChangesTheRing()
{
    OpenGauge gauge;
    gauge.showReady();
    const QImage before = gauge.btnMemory->pixmap(Qt::ReturnByValue).toImage();
    QVERIFY(!before.isNull());
    gauge.setLanguage({QString::fromUtf8("核 心 频 率"), QString::fromUtf8("核 心 温 度"),
                       QString::fromUtf8("显 存 占 用"), QString::fromUtf8("预设 "), QString::fromUtf8("当前 "),
                       QString::fromUtf8("减少 "), QString::fromUtf8("增加 ")},
                      kLanguageChinese);
    QVERIFY(gauge.btnMemory->pixmap(Qt::ReturnByValue).toImage() != before);
}

QTEST_MAIN(TestGpuInfoCircleBox)
#include "TestGpuInfoCircleBox.moc"
