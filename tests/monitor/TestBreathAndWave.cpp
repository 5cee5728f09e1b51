#include "monitor/gauge/BreathAndWave.h"

#include <QPainter>
#include <QRadialGradient>
#include <QtTest>

#include <limits>

class TestBreathAndWave : public QObject
{
    Q_OBJECT

private slots:
    void pulseBreathes();
    void shape_data();
    void shape();
    void amplitudeJumpsOverZero_data();
    void amplitudeJumpsOverZero();
    void secondWaveMovesFaster();
    void phaseWraps();
    void motionOverChangingLevels();
    void pathAddsCrestsAndTakesTroughs();
    void disc_data();
    void disc();
    void discAtTheWaterline_data();
    void discAtTheWaterline();
    void discLooksLikeTheIntersection_data();
    void discLooksLikeTheIntersection();
    void stillPicturesChangeNothing_data();
    void stillPicturesChangeNothing();
    void stillPicturesFollowTheDisc();
    void glowLiesOutsideTheRing_data();
    void glowLiesOutsideTheRing();
    void glowLooksLikeTheWholeEllipse();
    void glowOverwritesAnEarlierOne();
    void extremeSizes_data();
    void extremeSizes();
};

namespace
{

constexpr int kSide = 400;
constexpr double kRadius = 81;
constexpr double kInnerRadius = 119;
constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinite = std::numeric_limits<double>::infinity();
const QColor kGlow(236, 9, 40, 180);
const QBrush kLight = QColor(236, 9, 40, 50);
const QBrush kDark = QColor(236, 9, 40, 150);

// Opacity of the layers that lie on each other, as source-over composes them.
constexpr int kOneLayer = 50;
constexpr int kFullDisc = 171;  // 50, 150
constexpr int kBothWaves = 220; // 50, 150, 150

QImage emptyPicture(int side = kSide)
{
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

WaveDisc discOf(double radius, double level, int width = kSide)
{
    return {width, radius, level, kLight, kDark};
}

bool isNear(int value, int expected)
{
    return qAbs(value - expected) <= 1;
}

double distanceFromCentre(int x, int y)
{
    return std::hypot(x + 0.5 - kSide / 2.0, y + 0.5 - kSide / 2.0);
}

/// How many pixels differ in opacity by more than `tolerance`.
int differences(const QImage &left, const QImage &right, int tolerance)
{
    int count = 0;
    for (int y = 0; y < left.height(); ++y) {
        for (int x = 0; x < left.width(); ++x)
            count += qAbs(qAlpha(left.pixel(x, y)) - qAlpha(right.pixel(x, y))) > tolerance ? 1 : 0;
    }
    return count;
}

} // namespace

void TestBreathAndWave::pulseBreathes()
{
    BreathPulse pulse;
    QVector<int> turns; // frames at which the pulse begins to rise
    for (int frame = 0; frame < 5000; ++frame) {
        const BreathPulse before = pulse;
        pulse = stepped(pulse);
        QVERIFY(qFuzzyCompare(qAbs(pulse.breathPos - before.breathPos), 0.006));
        QVERIFY(pulse.breathPos > 0.7 - 0.0061 && pulse.breathPos < 0.9 + 0.0061);
        QCOMPARE(pulse.breathPos < before.breathPos, pulse.breathFalling);
        if (before.breathFalling && !pulse.breathFalling)
            turns.append(frame);
    }
    QVERIFY(turns.size() > 60);
    for (int i = 1; i < turns.size(); ++i)
        QVERIFY2(qAbs(turns[i] - turns[i - 1] - 67) <= 2, qPrintable(QString::number(turns[i] - turns[i - 1])));
}

void TestBreathAndWave::shape_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<double>("radius");
    QTest::addColumn<double>("level");
    QTest::addColumn<double>("waterline");
    QTest::addColumn<double>("segment");
    QTest::addColumn<int>("segmentCount");
    const double atHalf = 0.5 * std::sqrt(6400.0 - 40.0 * 40.0);
    const double atQuarter = 0.5 * std::sqrt(6400.0 - 60.0 * 60.0);
    const double atThird = 0.5 * std::sqrt(6400.0 - 53.36 * 53.36);
    QTest::newRow("half full") << 400 << 80.0 << 0.5 << 200.0 << atHalf << 11;
    QTest::newRow("quarter full") << 400 << 80.0 << 0.25 << 240.0 << atQuarter << 15;
    QTest::newRow("three quarters mirror it") << 400 << 80.0 << 0.75 << 160.0 << atQuarter << 15;
    QTest::newRow("waterline is truncated") << 400 << 80.0 << 0.333 << 226.0 << atThird << 13;
    QTest::newRow("odd width") << 401 << 80.0 << 0.5 << 200.0 << atHalf << 11;
    QTest::newRow("nearly empty: shortest segments, as many as pixels") << 400 << 80.0 << 1e-9 << 279.0 << 1.0 << 400;
    QTest::newRow("nearly full") << 400 << 80.0 << 1.0 - 1e-9 << 120.0 << 1.0 << 400;
    QTest::newRow("no picture") << 0 << 80.0 << 0.5 << 0.0 << atHalf << 0;
}

void TestBreathAndWave::shape()
{
    QFETCH(int, width);
    QFETCH(double, radius);
    QFETCH(double, level);
    QFETCH(double, segment);
    const WaveShape found = waveShapeFor(width, radius, level);
    QTEST(found.waterline, "waterline");
    QCOMPARE(found.segment, segment);
    QTEST(found.segmentCount, "segmentCount");
    QCOMPARE(found.amplitudeLimit, segment / 3.0);
}

void TestBreathAndWave::amplitudeJumpsOverZero_data()
{
    QTest::addColumn<double>("level");
    QTest::newRow("smallest limit") << 1e-9;
    QTest::newRow("limit below one") << 0.0003;
    QTest::newRow("limit a little above one") << 0.002;
    QTest::newRow("low") << 0.1;
    QTest::newRow("half") << 0.5;
    QTest::newRow("nearly full") << 0.9999;
}

void TestBreathAndWave::amplitudeJumpsOverZero()
{
    QFETCH(double, level);
    const WaveShape water = waveShapeFor(640, 129.0, level);
    const double highest = qMax(1.0, water.amplitudeLimit * (1.0 + 1.0 / 40.0) + 1e-9);
    WaveMotion motion;
    int crests = 0;
    int troughs = 0;
    for (int frame = 0; frame < 5000; ++frame) {
        motion = stepped(motion, water);
        for (const double amplitude : {motion.amp1, motion.amp2}) {
            QVERIFY2(qAbs(amplitude) >= 1.0 && qAbs(amplitude) <= highest, qPrintable(QString::number(amplitude)));
            (amplitude > 0 ? crests : troughs) += 1;
        }
    }
    QVERIFY(crests > 1000 && troughs > 1000);
}

void TestBreathAndWave::secondWaveMovesFaster()
{
    const WaveShape water = waveShapeFor(640, 129.0, 0.5);
    WaveMotion motion;
    motion.amp1 = 5;
    motion.amp2 = 5;
    motion = stepped(motion, water);
    QCOMPARE(motion.amp1, 5 + water.amplitudeLimit / 50.0);
    QCOMPARE(motion.amp2, 5 + water.amplitudeLimit / 40.0);
    motion.amp1 = water.amplitudeLimit;
    motion.amp2 = -water.amplitudeLimit;
    motion.amp2Falling = true;
    motion = stepped(motion, water);
    QVERIFY(motion.amp1Falling && motion.amp1 < water.amplitudeLimit);
    QVERIFY(!motion.amp2Falling && motion.amp2 > -water.amplitudeLimit);
}

void TestBreathAndWave::phaseWraps()
{
    const WaveShape water = waveShapeFor(400, 80.0, 0.5);
    WaveMotion motion;
    int wraps = 0;
    for (int frame = 0; frame < 4000; ++frame) {
        const double before = motion.wavePhase;
        motion = stepped(motion, water);
        QVERIFY(motion.wavePhase > 0 && motion.wavePhase < 4.1 * water.segment + 1e-6);
        wraps += motion.wavePhase < before ? 1 : 0;
    }
    QVERIFY(qAbs(wraps - 100) <= 1); // forty frames for four segments
}

void TestBreathAndWave::motionOverChangingLevels()
{
    WaveMotion motion;
    for (int frame = 0; frame < 20000; ++frame) {
        const double level = (frame * 37 % 1000 + 0.5) / 1000.0;
        motion = stepped(motion, waveShapeFor(640, 129.0, level));
        QVERIFY(qAbs(motion.amp1) >= 1.0 && qAbs(motion.amp1) < 129.0);
        QVERIFY(qAbs(motion.amp2) >= 1.0 && qAbs(motion.amp2) < 129.0);
        QVERIFY(motion.wavePhase > 0 && motion.wavePhase < 4.1 * 64.5);
    }
}

void TestBreathAndWave::pathAddsCrestsAndTakesTroughs()
{
    const WaveShape water = {200.0, 40.0, 10, 40.0 / 3.0};
    const QPainterPath path = wavePath(water, 400, 20.0, 0.0);
    QVERIFY(!path.contains(QPointF(50, 203))); // a trough first
    QVERIFY(path.contains(QPointF(130, 197))); // then a crest
    QVERIFY(!path.contains(QPointF(130, 180)));
    QVERIFY(path.contains(QPointF(1, 399)));
    QVERIFY(path.contains(QPointF(399, 399)));
    QVERIFY(!path.contains(QPointF(200, 150)));
    const QPainterPath mirrored = wavePath(water, 400, -20.0, 0.0);
    QVERIFY(mirrored.contains(QPointF(50, 197)));
    QVERIFY(!mirrored.contains(QPointF(130, 203)));
    QCOMPARE(wavePath(water, 400, 20.0, 30.0).boundingRect().right(), 400.0 + 30.0);
}

void TestBreathAndWave::disc_data()
{
    QTest::addColumn<double>("level");
    QTest::addColumn<int>("alpha"); // everywhere within the disc
    QTest::newRow("empty") << 0.0 << kOneLayer;
    QTest::newRow("below empty") << -0.5 << kOneLayer;
    QTest::newRow("no number") << kNoNumber << kOneLayer;
    QTest::newRow("minus infinite") << -kInfinite << kOneLayer;
    QTest::newRow("full") << 1.0 << kFullDisc;
    QTest::newRow("above full") << 7.0 << kFullDisc;
    QTest::newRow("infinite") << kInfinite << kFullDisc;
}

void TestBreathAndWave::disc()
{
    QFETCH(double, level);
    QFETCH(int, alpha);
    QVERIFY(!discOf(kRadius, level).hasWave());
    QImage image = emptyPicture();
    paintWaveDisc(image, discOf(kRadius, level), {});
    for (int y = 0; y < kSide; ++y) {
        for (int x = 0; x < kSide; ++x) {
            const double distance = distanceFromCentre(x, y);
            if (distance < kRadius - 1)
                QVERIFY(isNear(qAlpha(image.pixel(x, y)), alpha));
            else if (distance > kRadius + 1)
                QCOMPARE(qAlpha(image.pixel(x, y)), 0);
        }
    }
}

void TestBreathAndWave::discAtTheWaterline_data()
{
    QTest::addColumn<double>("level");
    QTest::newRow("low") << 0.1;
    QTest::newRow("two fifths") << 0.4;
    QTest::newRow("half") << 0.5;
    QTest::newRow("high") << 0.9;
}

void TestBreathAndWave::discAtTheWaterline()
{
    QFETCH(double, level);
    const WaveDisc disc = discOf(kRadius, level);
    QVERIFY(disc.hasWave());
    const int line = static_cast<int>(kSide / 2.0 + kRadius - 2.0 * kRadius * level);
    QImage image = emptyPicture();
    paintWaveDisc(image, disc, {}); // both waves level
    for (int y = 0; y < kSide; ++y) {
        const double distance = distanceFromCentre(kSide / 2, y);
        const int alpha = qAlpha(image.pixel(kSide / 2, y));
        if (distance > kRadius + 1)
            QCOMPARE(alpha, 0);
        else if (distance < kRadius - 1)
            QVERIFY(isNear(alpha, y < line ? kOneLayer : kBothWaves));
    }
}

void TestBreathAndWave::discLooksLikeTheIntersection_data()
{
    QTest::addColumn<double>("level");
    QTest::newRow("nearly empty") << 0.01;
    QTest::newRow("low") << 0.2;
    QTest::newRow("half") << 0.5;
    QTest::newRow("high") << 0.8;
}

void TestBreathAndWave::discLooksLikeTheIntersection()
{
    QFETCH(double, level);
    const WaveDisc disc = discOf(kRadius, level);
    WaveMotion motion;
    for (int frame = 0; frame < 25; ++frame)
        motion = stepped(motion, disc.shape());

    QImage expected = emptyPicture();
    {
        QPainterPath circle;
        circle.addEllipse(QPointF(kSide / 2.0, kSide / 2.0), kRadius, kRadius);
        QPainter painter(&expected);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.fillPath(circle, kLight);
        for (const double amplitude : {motion.amp1, motion.amp2}) {
            const QPainterPath water = wavePath(disc.shape(), kSide, amplitude, motion.wavePhase);
            painter.fillPath(water.intersected(circle), kDark);
        }
    }
    QImage image = emptyPicture();
    paintWaveDisc(image, disc, motion);
    // Path arithmetic moves the disc's edge by up to a tenth of a pixel, and where the surface meets the edge
    // a clip counts half-covered pixels differently; the rest is the same.
    QVERIFY(differences(image, expected, 26) < 10);
    QCOMPARE(differences(image, expected, 45), 0);
}

void TestBreathAndWave::stillPicturesChangeNothing_data()
{
    QTest::addColumn<double>("radius");
    QTest::addColumn<double>("level");
    QTest::newRow("empty") << kRadius << 0.0;
    QTest::newRow("no number") << kRadius << kNoNumber;
    QTest::newRow("waves above the lower edge") << kRadius << 0.01;
    QTest::newRow("low") << kRadius << 0.2;
    QTest::newRow("half") << kRadius << 0.5;
    QTest::newRow("high") << kRadius << 0.83;
    QTest::newRow("waves below the upper edge") << kRadius << 0.99;
    QTest::newRow("full") << kRadius << 1.0;
    QTest::newRow("radius with a fraction") << 66.7 << 0.4;
    QTest::newRow("waves that end within the disc") << 0.6 * kSide << 0.5;
    QTest::newRow("disc beyond the picture") << 2.0 * kSide << 0.55;
    QTest::newRow("single pixel") << 0.5 << 0.5;
    QTest::newRow("no disc") << 0.0 << 0.5;
}

void TestBreathAndWave::stillPicturesChangeNothing()
{
    QFETCH(double, radius);
    QFETCH(double, level);
    const WaveDisc disc = discOf(radius, level);
    WaveDiscPainter discPainter;
    WaveMotion motion;
    for (int frame = 0; frame < 250; ++frame) { // crests up and down
        if (disc.hasWave())
            motion = stepped(motion, disc.shape());
        QImage expected = emptyPicture();
        paintWaveDisc(expected, disc, motion);
        QImage image = emptyPicture();
        discPainter.paint(image, disc, motion);
        QVERIFY2(image == expected, QByteArray::number(frame).constData());
    }
}

void TestBreathAndWave::stillPicturesFollowTheDisc()
{
    const QBrush blue = QColor(0, 0, 250, 80);
    WaveDiscPainter discPainter;
    for (const WaveDisc &disc : {WaveDisc{200, 50.0, 0.5, kLight, kDark}, WaveDisc{200, 40.0, 0.5, kLight, kDark},
                                 WaveDisc{300, 40.0, 0.5, kLight, kDark}, WaveDisc{300, 40.0, 0.5, blue, kDark},
                                 WaveDisc{300, 40.0, 0.5, blue, blue}, WaveDisc{300, 40.0, 0.0, blue, blue}}) {
        QImage expected = emptyPicture(disc.width);
        paintWaveDisc(expected, disc, {});
        QImage image = emptyPicture(disc.width);
        discPainter.paint(image, disc, {});
        QCOMPARE(image, expected);
    }
}

void TestBreathAndWave::glowLiesOutsideTheRing_data()
{
    QTest::addColumn<double>("breathPos");
    QTest::newRow("smallest") << 0.7;
    QTest::newRow("middle") << 0.8;
    QTest::newRow("largest") << 0.904;
}

void TestBreathAndWave::glowLiesOutsideTheRing()
{
    QFETCH(double, breathPos);
    QImage image = emptyPicture();
    paintGlow(image, kInnerRadius, breathPos, kGlow);
    const double outerRadius = breathPos * kSide / 2.0;
    for (int y = 0; y < kSide; ++y) {
        for (int x = 0; x < kSide; ++x) {
            const double distance = distanceFromCentre(x, y);
            const int alpha = qAlpha(image.pixel(x, y));
            if (distance < kInnerRadius - 1 || distance > outerRadius + 2)
                QCOMPARE(alpha, 0);
            else if (distance > kInnerRadius + 1 && distance < outerRadius - 4)
                QVERIFY(alpha > 0);
        }
    }
}

void TestBreathAndWave::glowLooksLikeTheWholeEllipse()
{
    for (const double breathPos : {0.7, 0.753, 0.9}) {
        QImage expected = emptyPicture();
        {
            const QPointF centre(kSide / 2.0, kSide / 2.0);
            QRadialGradient gradient(centre, kSide / 2.0, centre, 0.0);
            gradient.setColorAt(0.35, kGlow);
            gradient.setColorAt(breathPos, QColor(255, 0, 0, 0));
            QPainterPath whole;
            whole.addEllipse(0, 0, kSide, kSide);
            QPainterPath inner;
            inner.addEllipse(centre, kInnerRadius, kInnerRadius);
            QPainter painter(&expected);
            painter.setRenderHint(QPainter::Antialiasing);
            painter.fillPath(whole.subtracted(inner), gradient);
        }
        QImage image = emptyPicture();
        paintGlow(image, kInnerRadius, breathPos, kGlow);
        // The edge at the ring is softened by distance, not by covered area.
        QVERIFY(differences(image, expected, 5) < 30);
        QCOMPARE(differences(image, expected, 8), 0);
    }
}

void TestBreathAndWave::glowOverwritesAnEarlierOne()
{
    for (const int side : {kSide, kSide + 1}) {
        QImage image = emptyPicture(side);
        double earlier = 0;
        for (const double breathPos : {0.753, 0.906, 0.7, 0.8}) {
            QImage expected = emptyPicture(side);
            paintGlow(expected, kInnerRadius, breathPos, kGlow);
            paintGlow(image, kInnerRadius, breathPos, kGlow, earlier);
            QCOMPARE(image, expected);
            earlier = breathPos;
        }
    }
}

void TestBreathAndWave::extremeSizes_data()
{
    QTest::addColumn<int>("side");
    QTest::addColumn<double>("radius");
    for (const int side : {0, 1, 2, 33}) {
        for (const double radius : {-kInfinite, -20.0, 0.0, 0.4, 1.0, 500.0, 1e9, 1e300, kInfinite, kNoNumber})
            QTest::addRow("side %d, radius %g", side, radius) << side << radius;
    }
}

void TestBreathAndWave::extremeSizes()
{
    QFETCH(int, side);
    QFETCH(double, radius);
    for (const double level : {-1.0, 0.0, 1e-12, 0.5, 1.0, 2.0, kNoNumber, kInfinite}) {
        QImage image = emptyPicture(side);
        const WaveDisc disc = discOf(radius, level, side);
        paintWaveDisc(image, disc, disc.hasWave() ? stepped({}, disc.shape()) : WaveMotion());
        paintGlow(image, radius, 0.8, kGlow);
        QCOMPARE(image.width(), side);
        if (side > 1 && !(radius > 0) && !(radius <= 0)) // no number: no disc, and a glow without a hole
            QVERIFY(qAlpha(image.pixel(side / 2, side / 2)) > 0);
    }
}

QTEST_MAIN(TestBreathAndWave)
#include "TestBreathAndWave.moc"
