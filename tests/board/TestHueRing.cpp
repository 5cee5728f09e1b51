#include "board/led/HueRing.h"

#include <QtTest>

/// Geometry and picture of the hue ring.
class TestHueRing : public QObject
{
    Q_OBJECT

private slots:
    void radii_data();
    void radii();
    void hueOfAPointer_data();
    void hueOfAPointer();
    void pointsAndHuesGoTogether();
    void pureColors_data();
    void pureColors();
    void pictureHasTheHuesOfItsPoints();
    void pictureIsSoftAtBothRims();
    void pictureOfAnySize_data();
    void pictureOfAnySize();
    void softeningKeepsTheWholeAndReachesNoFurther();
    void softeningOfAnEvenAreaChangesNothing();
};

void TestHueRing::radii_data()
{
    QTest::addColumn<QSize>("box");
    QTest::addColumn<double>("outer");
    QTest::addColumn<double>("inner");

    QTest::newRow("as in the dialog") << QSize(639, 639) << 189.0 << 141.75; // 319 / 5 is 63
    QTest::newRow("the width alone counts") << QSize(639, 100) << 189.0 << 141.75;
    QTest::newRow("integers truncate") << QSize(29, 29) << 6.0 << 4.5;
    QTest::newRow("too small") << QSize(9, 9) << 0.0 << 0.0;
}

void TestHueRing::radii()
{
    QFETCH(QSize, box);
    const HueRing ring = HueRing::forSize(box);
    QTEST(ring.outerRadius, "outer");
    QTEST(ring.innerRadius, "inner");
}

void TestHueRing::hueOfAPointer_data()
{
    QTest::addColumn<QPoint>("offset");
    QTest::addColumn<double>("hue");

    QTest::newRow("exactly right") << QPoint(50, 0) << 180.0;
    QTest::newRow("exactly left") << QPoint(-50, 0) << 0.0;
    QTest::newRow("up") << QPoint(0, -50) << 90.0;
    QTest::newRow("down") << QPoint(0, 50) << 270.0;
    QTest::newRow("up left") << QPoint(-30, -30) << 45.0;
    QTest::newRow("down left") << QPoint(-30, 30) << 315.0;
    QTest::newRow("far beyond the ring") << QPoint(5000, 5000) << 225.0;
    QTest::newRow("the centre") << QPoint(0, 0) << 180.0;
}

void TestHueRing::hueOfAPointer()
{
    QFETCH(QPoint, offset);
    QFETCH(double, hue);
    for (const QSize &box : {QSize(639, 639), QSize(640, 480)}) {
        const HueRing ring = HueRing::forSize(box);
        QCOMPARE(ring.hueAt(QPoint(box.width() / 2, box.height() / 2) + offset), hue);
    }
}

void TestHueRing::pointsAndHuesGoTogether()
{
    const HueRing ring = HueRing::forSize(QSize(639, 639));
    for (int hue = 0; hue < 360; ++hue) {
        const QPoint point = ring.pointAt(hue, 165).toPoint();
        QVERIFY(ring.contains(point));
        const double off = std::abs(ring.hueAt(point) - hue);
        QVERIFY(std::min(off, 360 - off) < 0.5);
    }
    QVERIFY(!ring.contains(ring.center()));
    QVERIFY(!ring.contains(QPoint(0, 0)));
    QCOMPARE(ring.hole(), QRect(319 - 128, 319 - 59, 256, 118)); // 141.75 at 25 degrees
}

void TestHueRing::pureColors_data()
{
    QTest::addColumn<double>("hue");
    QTest::addColumn<QColor>("color");

    QTest::newRow("0") << 0.0 << QColor(255, 0, 0);
    QTest::newRow("60") << 60.0 << QColor(255, 255, 0);
    QTest::newRow("120") << 120.0 << QColor(0, 255, 0);
    QTest::newRow("180") << 180.0 << QColor(0, 255, 255);
    QTest::newRow("240") << 240.0 << QColor(0, 0, 255);
    QTest::newRow("300") << 300.0 << QColor(255, 0, 255);
    QTest::newRow("360 is 0") << 360.0 << QColor(255, 0, 0);
}

void TestHueRing::pureColors()
{
    QFETCH(double, hue);
    QTEST(HueRing::pureColor(hue), "color");
}

void TestHueRing::pictureHasTheHuesOfItsPoints()
{
    const HueRing ring = HueRing::forSize(QSize(639, 639));
    QPoint topLeft;
    const QImage image = ring.image(&topLeft);
    for (int hue = 0; hue < 360; hue += 15) {
        const QColor color = image.pixelColor(ring.pointAt(hue, 165).toPoint() - topLeft);
        const int off = std::abs(color.hsvHue() - hue);
        QVERIFY2(std::min(off, 360 - off) <= 3, qPrintable(QStringLiteral("%1: %2").arg(hue).arg(color.name())));
        QVERIFY(color.alpha() > 250);
        QVERIFY(color.hsvSaturation() > 235);
    }
    QCOMPARE(image.pixelColor(ring.center() - topLeft).alpha(), 0);
}

void TestHueRing::pictureIsSoftAtBothRims()
{
    const HueRing ring = HueRing::forSize(QSize(639, 639));
    QPoint topLeft;
    const QImage image = ring.image(&topLeft);
    const auto alphaAt = [&](double radius) {
        return image.pixelColor(ring.pointAt(70, radius).toPoint() - topLeft).alpha();
    };
    for (double rim : {ring.outerRadius, ring.innerRadius}) {
        QVERIFY(std::abs(alphaAt(rim) - 128) < 40);
        QVERIFY(alphaAt(rim + 6) != alphaAt(rim - 6));
        QVERIFY(alphaAt(rim) > 0);
    }
    QCOMPARE(alphaAt(ring.innerRadius - HueRing::kBlurRadius - 1), 0);
}

void TestHueRing::pictureOfAnySize_data()
{
    QTest::addColumn<QSize>("box");
    QTest::newRow("nothing") << QSize(0, 0);
    QTest::newRow("no height") << QSize(100, 0);
    QTest::newRow("one pixel") << QSize(1, 1);
    QTest::newRow("flat") << QSize(639, 40);
    QTest::newRow("narrow") << QSize(40, 639);
    QTest::newRow("even") << QSize(300, 300);
}

void TestHueRing::pictureOfAnySize()
{
    QFETCH(QSize, box);
    QPoint topLeft;
    const QImage image = HueRing::forSize(box).image(&topLeft);
    QVERIFY(QRect(QPoint(0, 0), box).contains(QRect(topLeft, image.size())) || image.isNull());
    // cut evenly, so that the centre stays the centre
    if (!image.isNull())
        QCOMPARE(image.size() + 2 * QSize(topLeft.x(), topLeft.y()), box);
}

void TestHueRing::softeningKeepsTheWholeAndReachesNoFurther()
{
    QImage image(61, 61, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    for (int y = 26; y < 35; ++y)
        for (int x = 26; x < 35; ++x)
            image.setPixelColor(x, y, QColor(255, 128, 0));
    softenImage(image, 15);
    qint64 alpha = 0;
    QRect painted;
    for (int y = 0; y < 61; ++y) {
        for (int x = 0; x < 61; ++x) {
            const QRgb pixel = reinterpret_cast<const QRgb *>(image.constScanLine(y))[x];
            alpha += qAlpha(pixel);
            QVERIFY(qRed(pixel) <= qAlpha(pixel) && qGreen(pixel) <= qAlpha(pixel) && qBlue(pixel) == 0);
            if (pixel != 0)
                painted |= QRect(x, y, 1, 1);
        }
    }
    QVERIFY(std::abs(alpha - 81 * 255) < 81 * 255 / 10); // roundings
    QVERIFY(QRect(11, 11, 39, 39).contains(painted));    // 15 pixels around
    QCOMPARE(painted.center(), QPoint(30, 30));
}

void TestHueRing::softeningOfAnEvenAreaChangesNothing()
{
    QImage image(80, 80, QImage::Format_ARGB32_Premultiplied);
    image.fill(QColor(200, 100, 50));
    softenImage(image, 15);
    QCOMPARE(image.pixelColor(40, 40), QColor(200, 100, 50));
    QVERIFY(image.pixelColor(0, 0).alpha() < 128); // beyond the edge there is nothing

    QImage tiny(1, 1, QImage::Format_ARGB32_Premultiplied);
    tiny.fill(Qt::white);
    softenImage(tiny, 0); // no reach
    QCOMPARE(tiny.pixelColor(0, 0), QColor(Qt::white));
    softenImage(tiny, 15); // a reach beyond both ends
    QVERIFY(tiny.pixelColor(0, 0).alpha() < 128);
}

QTEST_APPLESS_MAIN(TestHueRing)
#include "TestHueRing.moc"
