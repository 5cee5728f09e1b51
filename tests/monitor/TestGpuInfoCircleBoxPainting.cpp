#include "monitor/OpenGauge.h"
#include "monitor/WidgetPainting.h"

#include <QPaintEvent>
#include <QPainter>
#include <QSignalSpy>
#include <QWindow>
#include <QtTest>

/// What the gauge paints, and when.
class TestGpuInfoCircleBoxPainting : public GaugeTest
{
    Q_OBJECT

private slots:
    void painting_data();
    void painting();
    void readoutFollows_data();
    void readoutFollows();
    void changesArePaintedLater_data();
    void changesArePaintedLater();
    void aFrameRepaintsAllThatItChanges_data();
    void aFrameRepaintsAllThatItChanges();
    void languageChangesTheRing();
};

void TestGpuInfoCircleBoxPainting::painting_data()
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

void TestGpuInfoCircleBoxPainting::painting()
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

void TestGpuInfoCircleBoxPainting::readoutFollows_data()
{
    QTest::addColumn<QString>("change");
    for (const char *change : {"sample", "quantity", "size", "font"})
        QTest::newRow(change) << change;
}

void TestGpuInfoCircleBoxPainting::readoutFollows()
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

void TestGpuInfoCircleBoxPainting::changesArePaintedLater_data()
{
    QTest::addColumn<QString>("change");
    for (const char *change : {"sample", "clock", "temperature", "memory", "adjustment", "end of an adjustment",
                               "step of the fade", "picture"})
        QTest::newRow(change) << change;
}

void TestGpuInfoCircleBoxPainting::changesArePaintedLater()
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

void TestGpuInfoCircleBoxPainting::aFrameRepaintsAllThatItChanges_data()
{
    QTest::addColumn<bool>("glow");
    QTest::addColumn<bool>("water");
    QTest::newRow("glow") << true << false;
    QTest::newRow("water") << false << true;
    QTest::newRow("both") << true << true;
}

void TestGpuInfoCircleBoxPainting::aFrameRepaintsAllThatItChanges()
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

void TestGpuInfoCircleBoxPainting::languageChangesTheRing()
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

QTEST_MAIN(TestGpuInfoCircleBoxPainting)
#include "TestGpuInfoCircleBoxPainting.moc"
