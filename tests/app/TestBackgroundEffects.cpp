#include "app/Ovryn_BackgroundEffects.h"

#include <QBitmap>
#include <QPainter>
#include <QtTest>

namespace
{

QPixmap filled(QSize size, const QColor &color)
{
    QPixmap pixmap(size);
    pixmap.fill(color);
    return pixmap;
}

/// A picture of 1020 x 680 whose upper left corner is cut off.
BackgroundEffectImages testImages()
{
    QPixmap mask = filled({1020, 680}, Qt::transparent);
    QPainter(&mask).fillRect(10, 10, 1010, 670, Qt::white);
    return {mask, filled({240, 36}, Qt::green), filled({200, 200}, Qt::red)};
}

class OpenEffects : public Ovryn_BackgroundEffects
{
public:
    explicit OpenEffects(const BackgroundEffectImages &pictures = testImages())
        : Ovryn_BackgroundEffects(nullptr, pictures)
    {
    }

    using Ovryn_BackgroundEffects::delayTimer;
    using Ovryn_BackgroundEffects::hideSecondLogo;
    using Ovryn_BackgroundEffects::logo2X;
    using Ovryn_BackgroundEffects::logo2Y;
    using Ovryn_BackgroundEffects::logoX;
    using Ovryn_BackgroundEffects::logoY;
    using Ovryn_BackgroundEffects::moveTimer;
    using Ovryn_BackgroundEffects::movingIn;
    using Ovryn_BackgroundEffects::track;

    /// Ticks until the slide has ended; -1 when it does not end.
    int slide()
    {
        for (int tick = 1; tick <= 1000; ++tick) {
            onMoveTimerTimeout();
            if (!moveTimer->isActive())
                return tick;
        }
        return -1;
    }

    QImage painted()
    {
        QImage image(1020, 680, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        render(&image, QPoint(), QRegion(), IgnoreMask);
        return image;
    }
};

} // namespace

class TestBackgroundEffects : public QObject
{
    Q_OBJECT

private slots:
    void takesSizeAndShapeFromTheMask();
    void timersHaveTheirIntervals();
    void timersDriveTheSlideAndTheDelay();
    void logosRestInsideThePicture_data();
    void logosRestInsideThePicture();
    void slidesInStepByStep();
    void slidesOutStepByStep();
    void turnsBackInMidSlide();
    void movingInAtRestStartsTheDelayAgain();
    void eachLogoStopsAtItsOwnLimit();
    void secondLogoGoesAfterTheDelay();
    void secondLogoComesBackOnShowing();
    void showingDuringTheDelayChangesNothing();
    void movingOutEndsTheDelay();
    void painting();
    void missingImages();
};

void TestBackgroundEffects::takesSizeAndShapeFromTheMask()
{
    const OpenEffects effects;
    QCOMPARE(effects.size(), QSize(1020, 680));
    QVERIFY(effects.mask().contains(QPoint(500, 300)));
    QVERIFY(!effects.mask().contains(QPoint(3, 3)));
    QVERIFY(effects.testAttribute(Qt::WA_TransparentForMouseEvents));
}

void TestBackgroundEffects::timersHaveTheirIntervals()
{
    const OpenEffects effects;
    QCOMPARE(effects.moveTimer->interval(), 15);
    QCOMPARE(effects.delayTimer->interval(), 3000);
    QVERIFY(effects.moveTimer->isActive()); // the start-up picture slides by itself
    QVERIFY(!effects.delayTimer->isActive());
    QVERIFY(effects.movingIn);
    QVERIFY(!effects.hideSecondLogo);
}

void TestBackgroundEffects::timersDriveTheSlideAndTheDelay()
{
    OpenEffects effects;
    effects.moveTimer->setInterval(0);
    effects.delayTimer->setInterval(0);
    QTRY_VERIFY(effects.hideSecondLogo);
    QCOMPARE(effects.logoX, effects.track.logoXLimit);
    QCOMPARE(effects.logo2X, effects.track.logo2XLimit);
    QVERIFY(!effects.moveTimer->isActive());
    QVERIFY(!effects.delayTimer->isActive());
}

void TestBackgroundEffects::logosRestInsideThePicture_data()
{
    QTest::addColumn<QSize>("picture");
    QTest::addColumn<QSize>("logo");
    QTest::addColumn<int>("logoXLimit");
    QTest::addColumn<int>("logo2XLimit");
    QTest::addColumn<int>("logo2XFarLimit");
    QTest::addColumn<int>("y");
    QTest::newRow("the window") << QSize(1020, 680) << QSize(200, 200) << 769 << 51 << 1020 << 446;
    QTest::newRow("picture narrower than the logo") << QSize(100, 100) << QSize(200, 50) << 5 << 5 << 100 << 45;
    QTest::newRow("no picture") << QSize(0, 0) << QSize(0, 0) << 0 << 0 << 0 << 0;
}

void TestBackgroundEffects::logosRestInsideThePicture()
{
    QFETCH(QSize, picture);
    QFETCH(QSize, logo);
    const LogoTrack track = logoTrackFor(picture, logo);
    QTEST(track.logoXLimit, "logoXLimit");
    QTEST(track.logo2XLimit, "logo2XLimit");
    QTEST(track.logo2XFarLimit, "logo2XFarLimit");
    QTEST(track.logoY, "y");
    QTEST(track.logo2Y, "y");
}

void TestBackgroundEffects::slidesInStepByStep()
{
    OpenEffects effects;
    QCOMPARE(effects.logo2X, 1020);
    QCOMPARE(effects.logoX, 1020 + 769 - 51); // both outside
    effects.onMoveTimerTimeout();
    QCOMPARE(effects.logo2X, 1005);
    QCOMPARE(effects.logoX, 1723);
    QCOMPARE(effects.slide(), 64); // 65 steps of 15 pixels for 969
    QCOMPARE(effects.logoX, 769);
    QCOMPARE(effects.logo2X, 51);
    QCOMPARE(effects.logoY, 446);
    QCOMPARE(effects.logo2Y, 446);
    QVERIFY(effects.delayTimer->isActive());
}

void TestBackgroundEffects::slidesOutStepByStep()
{
    OpenEffects effects;
    effects.slide();
    effects.moveOut();
    QVERIFY(effects.moveTimer->isActive());
    QVERIFY(!effects.movingIn);
    effects.onMoveTimerTimeout();
    QCOMPARE(effects.logo2X, 66);
    QCOMPARE(effects.logoX, 784); // derived from the second
    QCOMPARE(effects.slide(), 64);
    QCOMPARE(effects.logo2X, 1020);
    QVERIFY(!effects.delayTimer->isActive());
    effects.moveIn();
    QVERIFY(effects.movingIn);
    QCOMPARE(effects.slide(), 65);
}

void TestBackgroundEffects::turnsBackInMidSlide()
{
    OpenEffects effects;
    for (int tick = 0; tick < 10; ++tick)
        effects.onMoveTimerTimeout();
    QCOMPARE(effects.logo2X, 1020 - 150);
    effects.moveOut();
    effects.onMoveTimerTimeout();
    QCOMPARE(effects.logo2X, 1020 - 135);
    QCOMPARE(effects.logoX, 1020 - 135 + 769 - 51);
    effects.moveIn();
    QCOMPARE(effects.slide(), 56); // 834 pixels
    QCOMPARE(effects.logoX, 769);
    QCOMPARE(effects.logo2X, 51);
}

void TestBackgroundEffects::movingInAtRestStartsTheDelayAgain()
{
    OpenEffects effects;
    effects.slide();
    effects.onDelayTimerTimeout();
    effects.moveIn();
    QCOMPARE(effects.slide(), 1);
    QVERIFY(effects.delayTimer->isActive());
    QVERIFY(effects.hideSecondLogo); // only a showing and the way out bring the second logo back
}

void TestBackgroundEffects::eachLogoStopsAtItsOwnLimit()
{
    OpenEffects effects;
    effects.logoX = 775;
    effects.logo2X = 100;
    effects.onMoveTimerTimeout();
    QCOMPARE(effects.logoX, 769);
    QCOMPARE(effects.logo2X, 85);
    QVERIFY(effects.moveTimer->isActive()); // one of two has arrived
    QCOMPARE(effects.slide(), 3);
    QCOMPARE(effects.logoX, 769);
    QCOMPARE(effects.logo2X, 51);
}

void TestBackgroundEffects::secondLogoGoesAfterTheDelay()
{
    OpenEffects effects;
    effects.slide();
    effects.onDelayTimerTimeout();
    QVERIFY(effects.hideSecondLogo);
    QVERIFY(!effects.delayTimer->isActive());
}

void TestBackgroundEffects::secondLogoComesBackOnShowing()
{
    OpenEffects effects;
    effects.slide();
    effects.onDelayTimerTimeout();
    effects.show();
    QVERIFY(!effects.hideSecondLogo);
    QVERIFY(effects.delayTimer->isActive());
}

void TestBackgroundEffects::showingDuringTheDelayChangesNothing()
{
    OpenEffects effects;
    effects.show();
    QVERIFY(!effects.delayTimer->isActive()); // nothing was hidden
    effects.hide();
    effects.slide();
    effects.hideSecondLogo = true; // with the delay running
    effects.show();
    QVERIFY(effects.hideSecondLogo);
}

void TestBackgroundEffects::movingOutEndsTheDelay()
{
    OpenEffects effects;
    effects.slide();
    effects.onDelayTimerTimeout();
    effects.moveOut();
    effects.onMoveTimerTimeout();
    QVERIFY(!effects.hideSecondLogo);
    QVERIFY(!effects.delayTimer->isActive());
}

void TestBackgroundEffects::painting()
{
    OpenEffects effects;
    QCOMPARE(effects.painted().pixelColor(60, 500).alpha(), 0); // still outside
    effects.slide();
    QImage image = effects.painted();
    QCOMPARE(image.pixelColor(860, 540), QColor(Qt::red));
    QCOMPARE(image.pixelColor(150, 540), QColor(Qt::red));
    QCOMPARE(image.pixelColor(500, 540).alpha(), 0);
    QCOMPARE(image.pixelColor(400, 22), QColor(Qt::green)); // (1020 - 240) / 2 + 10, 680 / 30
    QCOMPARE(image.pixelColor(399, 22).alpha(), 0);
    QCOMPARE(image.pixelColor(400, 21).alpha(), 0);
    effects.onDelayTimerTimeout();
    image = effects.painted();
    QCOMPARE(image.pixelColor(860, 540), QColor(Qt::red));
    QCOMPARE(image.pixelColor(150, 540).alpha(), 0);
    QCOMPARE(image.pixelColor(410, 30), QColor(Qt::green));
}

void TestBackgroundEffects::missingImages()
{
    OpenEffects effects{BackgroundEffectImages()};
    QCOMPARE(effects.slide(), 1);
    const QImage image = effects.painted();
    QCOMPARE(image.pixelColor(0, 0).alpha(), 0);
    effects.moveOut();
    QCOMPARE(effects.slide(), 1);
}

QTEST_MAIN(TestBackgroundEffects)
#include "TestBackgroundEffects.moc"
