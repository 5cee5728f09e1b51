#include "board/led/Ovryn_ColorPaletteBox.h"
#include "board/led/Ovryn_ColorSlider.h"
#include "board/led/Ovryn_TriangleButton.h"
#include "board/led/Ovryn_rgbBox.h"
#include "support/ConnectWarnings.h"
#include "support/MouseMove.h"
#include "ui/Fonts.h"
#include "ui/ModifySpinBox.h"

#include <QBitmap>
#include <QSignalSpy>
#include <QtTest>

/// The palette and its three tools, driven by mouse and keys at the size that the dialog gives it.
class TestColorPaletteBox : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void connectionsAreGood();
    void startsRed();

    void sliderShades_data();
    void sliderShades();
    void sliderOfAnotherRange_data();
    void sliderOfAnotherRange();
    void sliderTakesAHue();
    void sliderTakesAHueSilently();
    void sliderFollowsTheMouse();
    void sliderPicture();

    void markerDrag_data();
    void markerDrag();
    void markerIsMaskedToItsImage();
    void markerIsWhiteAlone();
    void markerTakesAColour();
    void pressOnTheRing();
    void pressBesideTheRing();

    void numbersShowAColour();
    void typedNumbers();
    void numbersKeepTheirRange();

    void adjustColorBringsAllToOneColour_data();
    void adjustColorBringsAllToOneColour();
    void toolsFollowOneAnother();
    void toolsLieInTheHole();
    void otherSizes();

private:
    static constexpr int kSide = 639;

    [[nodiscard]] QPoint middle() const { return {kSide / 2, kSide / 2}; }
    [[nodiscard]] QList<int> numbers() const
    {
        QList<int> values;
        for (const char *name : {"spinRed", "spinGreen", "spinBlue"})
            values << number(name)->value();
        return values;
    }
    [[nodiscard]] ModifySpinBox *number(const char *name) const
    {
        return palette->findChild<ModifySpinBox *>(QLatin1String(name));
    }
    /// Presses the marker and moves the pointer to a point of the palette.
    void dragMarkerTo(QPoint point) const
    {
        QTest::mousePress(marker, Qt::LeftButton, Qt::NoModifier, marker->rect().center());
        moveMouse(*marker, marker->mapFromParent(point), Qt::LeftButton);
        QTest::mouseRelease(marker, Qt::LeftButton, Qt::NoModifier, marker->rect().center());
    }

    Ovryn_ColorPaletteBox *palette = nullptr;
    Ovryn_ColorSlider *slider = nullptr;
    Ovryn_TriangleButton *marker = nullptr;
    QSignalSpy *chosen = nullptr;
};

namespace
{

QRgb lastOf(const QSignalSpy &spy)
{
    return spy.last().first().value<QColor>().rgb();
}

QList<int> partsOf(QRgb color)
{
    return {qRed(color), qGreen(color), qBlue(color)};
}

} // namespace

void TestColorPaletteBox::initTestCase()
{
    substituteFontFamilies();
}

void TestColorPaletteBox::init()
{
    palette = new Ovryn_ColorPaletteBox;
    palette->resize(kSide, kSide);
    palette->show();
    slider = palette->findChild<Ovryn_ColorSlider *>();
    marker = palette->findChild<Ovryn_TriangleButton *>();
    chosen = new QSignalSpy(palette, SIGNAL(colorChanged(QColor)));
}

void TestColorPaletteBox::cleanup()
{
    delete chosen;
    delete palette;
}

void TestColorPaletteBox::connectionsAreGood()
{
    const ConnectWarnings warnings;
    const Ovryn_ColorPaletteBox box;
    QCOMPARE(warnings.list(), QStringList());
}

void TestColorPaletteBox::startsRed()
{
    QCOMPARE(slider->minimum(), 0);
    QCOMPARE(slider->maximum(), 500);
    QCOMPARE(slider->value(), 255);
    QCOMPARE(marker->getHue(), 0.0);
    QCOMPARE(numbers(), QList<int>({255, 0, 0}));
}

void TestColorPaletteBox::sliderShades_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<QColor>("color");

    QTest::newRow("0 is white") << 0 << QColor::fromHsv(120, 0, 255);
    QTest::newRow("255 is the pure hue") << 255 << QColor(0, 255, 0);
    QTest::newRow("254 is nearly pure") << 254 << QColor::fromHsv(120, 254, 255);
    QTest::newRow("256 begins the dark side") << 256 << QColor::fromHsv(120, 255, 244);
    QTest::newRow("400") << 400 << QColor::fromHsv(120, 255, 100);
    QTest::newRow("500 is black") << 500 << QColor::fromHsv(120, 255, 0);
    QTest::newRow("100") << 100 << QColor::fromHsv(120, 100, 255);
}

void TestColorPaletteBox::sliderShades()
{
    QFETCH(int, value);
    QFETCH(QColor, color);
    slider->setSliderBarColor(QColor(0, 255, 0));
    slider->setValue(77); // so that every row is a change
    QSignalSpy told(slider, SIGNAL(colorChanged(QColor)));
    slider->setValue(value);
    QCOMPARE(told.size(), 1);
    QCOMPARE(lastOf(told), color.rgb());
    QCOMPARE(slider->getCurrentColor().rgb(), color.rgb());
}

void TestColorPaletteBox::sliderOfAnotherRange_data()
{
    QTest::addColumn<int>("minimum");
    QTest::addColumn<int>("maximum");
    QTest::addColumn<int>("value");
    QTest::addColumn<QColor>("color");

    QTest::newRow("shifted start") << 100 << 1100 << 100 << QColor(255, 255, 255);
    QTest::newRow("shifted end") << 100 << 1100 << 1100 << QColor(0, 0, 0);
    QTest::newRow("no way at all is the pure hue") << 7 << 7 << 7 << QColor(255, 0, 0);
}

void TestColorPaletteBox::sliderOfAnotherRange()
{
    QFETCH(int, minimum);
    QFETCH(int, maximum);
    QFETCH(int, value);
    QFETCH(QColor, color);
    Ovryn_ColorSlider other;
    other.resize(200, 30);
    other.setRange(minimum, maximum);
    other.setValue(value);
    QCOMPARE(other.getCurrentColor().rgb(), color.rgb());
    other.grab(); // painting divides by the range too
    QTest::mouseClick(&other, Qt::LeftButton, Qt::NoModifier, QPoint(150, 15));
}

void TestColorPaletteBox::sliderTakesAHue()
{
    QSignalSpy told(slider, SIGNAL(colorChanged(QColor)));
    slider->setValue(400);
    slider->setSliderBarColor(QColor(0, 0, 100)); // only the hue counts
    QCOMPARE(slider->value(), 255);
    QCOMPARE(told.size(), 2); // once for each
    QCOMPARE(lastOf(told), qRgb(0, 0, 255));
    slider->setSliderBarColor(QColor(0, 0, 255)); // told also where nothing changed
    QCOMPARE(told.size(), 3);
}

void TestColorPaletteBox::sliderTakesAHueSilently()
{
    QSignalSpy told(slider, SIGNAL(colorChanged(QColor)));
    slider->setValue(400);
    told.clear();
    slider->setSliderBarColorAndDoNotSendColorChangedSignal(QColor(0, 0, 255));
    QCOMPARE(told.size(), 0);
    QCOMPARE(slider->value(), 255);
    QCOMPARE(slider->getCurrentColor().rgb(), qRgb(0, 0, 255));
    slider->setValue(0); // the next change by hand is told again
    QCOMPARE(told.size(), 1);
}

void TestColorPaletteBox::sliderFollowsTheMouse()
{
    const int y = slider->height() / 2;
    QTest::mousePress(slider, Qt::LeftButton, Qt::NoModifier, QPoint(0, y));
    QCOMPARE(slider->value(), 0);
    moveMouse(*slider, QPoint(slider->width() / 2, y), Qt::LeftButton);
    QVERIFY(std::abs(slider->value() - 250) < 6);
    moveMouse(*slider, QPoint(slider->width() + 500, y), Qt::LeftButton);
    QCOMPARE(slider->value(), 500);
    moveMouse(*slider, QPoint(-500, y), Qt::LeftButton);
    QCOMPARE(slider->value(), 0);
    QTest::mouseRelease(slider, Qt::LeftButton, Qt::NoModifier, QPoint(0, y));
    moveMouse(*slider, QPoint(100, y));
    QCOMPARE(slider->value(), 0); // let go
    QTest::mousePress(slider, Qt::RightButton, Qt::NoModifier, QPoint(100, y));
    QCOMPARE(slider->value(), 0);
}

void TestColorPaletteBox::sliderPicture()
{
    slider->setSliderBarColor(QColor(0, 255, 0));
    const auto pixel = [this](int part) {
        return slider->grab().toImage().pixelColor(slider->width() * part / 100, slider->height() / 2);
    };
    QCOMPARE(pixel(51), QColor(255, 255, 255)); // the handle stands at the pure hue
    slider->setValue(0);
    QVERIFY(pixel(51).green() > 245 && pixel(51).red() < 15);
    QVERIFY(pixel(25).red() > 100 && pixel(25).green() > 245);
    QVERIFY(pixel(75).green() < 160 && pixel(75).red() < 5);
    QCOMPARE(pixel(3), QColor(255, 255, 255));
    slider->setSliderBarColor(QColor(0, 0, 255)); // drawn anew in its hue
    slider->setValue(0);
    QVERIFY(pixel(51).blue() > 245 && pixel(51).green() < 15);
}

void TestColorPaletteBox::markerDrag_data()
{
    QTest::addColumn<QPoint>("offset"); // of the pointer from the middle
    QTest::addColumn<double>("hue");
    QTest::addColumn<QColor>("color");

    QTest::newRow("exactly right") << QPoint(160, 0) << 180.0 << QColor(0, 255, 255);
    QTest::newRow("exactly left") << QPoint(-160, 0) << 0.0 << QColor(255, 0, 0);
    QTest::newRow("up") << QPoint(0, -10) << 90.0 << QColor(128, 255, 0);
    QTest::newRow("down, far off the ring") << QPoint(0, 3000) << 270.0 << QColor(127, 0, 255);
}

void TestColorPaletteBox::markerDrag()
{
    QFETCH(QPoint, offset);
    QFETCH(double, hue);
    QFETCH(QColor, color);
    palette->adjustColor(QColor(255, 255, 0)); // so that every row is a change
    QSignalSpy told(marker, SIGNAL(onColorChanged(QColor)));
    dragMarkerTo(middle() + offset);
    QCOMPARE(told.size(), 1);
    QCOMPARE(marker->getHue(), hue);
    const QList<int> expected = partsOf(color.rgb());
    const QList<int> sent = partsOf(lastOf(told));
    for (int i = 0; i < 3; ++i)
        QVERIFY(std::abs(sent.at(i) - expected.at(i)) <= 1); // a component may lie on a half
    const HueRing ring = HueRing::forSize(palette->size());
    QVERIFY((marker->geometry().center() - ring.pointAt(hue, 165).toPoint()).manhattanLength() <= 4);
    moveMouse(*marker, QPoint(500, 500)); // no button held
    QCOMPARE(told.size(), 1);
}

void TestColorPaletteBox::markerIsMaskedToItsImage()
{
    for (int hue = 0; hue < 360; hue += 45) {
        marker->setButtonColor(QColor::fromHsv(hue, 255, 255));
        const QImage image = marker->pixmap(Qt::ReturnByValue).toImage();
        QVERIFY(!image.isNull());
        const QRegion mask = marker->mask();
        int painted = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const bool isPainted = image.pixelColor(x, y).alpha() > 0;
                painted += int(isPainted);
                QCOMPARE(mask.contains(QPoint(x, y)), isPainted);
            }
        }
        QVERIFY(painted > 150);
        for (int i = 0; i < image.width(); ++i) // the whole triangle is on it
            QVERIFY(image.pixelColor(i, 0).alpha() < 64 && image.pixelColor(0, i).alpha() < 64);
    }
}

void TestColorPaletteBox::markerIsWhiteAlone()
{
    for (int hue = 0; hue < 360; hue += 45) {
        marker->setButtonColor(QColor::fromHsv(hue, 255, 255));
        const QImage image =
            marker->pixmap(Qt::ReturnByValue).toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
        for (int y = 0; y < image.height(); ++y) {
            const auto *row = reinterpret_cast<const QRgb *>(image.constScanLine(y));
            for (int x = 0; x < image.width(); ++x) // also where its edge is smoothed
                QCOMPARE(partsOf(row[x]), QList<int>({qAlpha(row[x]), qAlpha(row[x]), qAlpha(row[x])}));
        }
    }
}

void TestColorPaletteBox::markerTakesAColour()
{
    QSignalSpy told(marker, SIGNAL(onColorChanged(QColor)));
    marker->setButtonColor(QColor(0, 0, 90));
    QCOMPARE(marker->getHue(), 240.0);
    QCOMPARE(told.size(), 1);
    QCOMPARE(lastOf(told), qRgb(0, 0, 255));
    marker->setButtonColorAndDoNotSendColorChangedSignal(QColor(0, 255, 0));
    QCOMPARE(marker->getHue(), 120.0);
    marker->setButtonColorAndDoNotSendColorChangedSignal(QColor(80, 80, 80));
    QCOMPARE(marker->getHue(), 120.0); // a grey has none
    QCOMPARE(told.size(), 1);
}

void TestColorPaletteBox::pressOnTheRing()
{
    const HueRing ring = HueRing::forSize(palette->size());
    QTest::mousePress(palette, Qt::LeftButton, Qt::NoModifier, middle() + QPoint(160, 0));
    QCOMPARE(marker->getHue(), 180.0);
    QCOMPARE(lastOf(*chosen), qRgb(0, 255, 255));
    moveMouse(*palette, middle() + QPoint(0, -20), Qt::LeftButton);
    QCOMPARE(marker->getHue(), 90.0);
    QTest::mouseRelease(palette, Qt::LeftButton, Qt::NoModifier, middle());
    moveMouse(*palette, middle() + QPoint(0, 160), Qt::LeftButton);
    QCOMPARE(marker->getHue(), 90.0);
    QVERIFY(ring.contains(middle() + QPoint(160, 0)));
}

void TestColorPaletteBox::pressBesideTheRing()
{
    for (const QPoint &point : {QPoint(5, 5), middle() + QPoint(0, 110)}) {
        QTest::mousePress(palette, Qt::LeftButton, Qt::NoModifier, point);
        moveMouse(*palette, middle() + QPoint(160, 0), Qt::LeftButton);
        QTest::mouseRelease(palette, Qt::LeftButton, Qt::NoModifier, point);
    }
    QTest::mousePress(palette, Qt::RightButton, Qt::NoModifier, middle() + QPoint(160, 0));
    QCOMPARE(marker->getHue(), 0.0);
    QCOMPARE(chosen->size(), 0);
}

void TestColorPaletteBox::numbersShowAColour()
{
    auto *box = palette->findChild<Ovryn_rgbBox *>();
    QSignalSpy told(box, SIGNAL(colorChanged(QColor)));
    box->setColor(QColor(1, 22, 255, 9));
    QCOMPARE(numbers(), QList<int>({1, 22, 255}));
    QCOMPARE(told.size(), 0);
    QCOMPARE(box->styleSheet(), QStringLiteral("ModifySpinBox{font-size:13px;}"));
    const auto *caption = box->findChild<QLabel *>();
    QCOMPARE(caption->text(), QStringLiteral("RGB"));
    QCOMPARE(caption->font().family(), QStringLiteral("Tessmar_KuHei"));
}

void TestColorPaletteBox::typedNumbers()
{
    palette->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(palette));
    ModifySpinBox *green = number("spinGreen");
    green->setFocus();
    green->selectAll();
    QTest::keyClicks(green, QStringLiteral("128"));
    QCOMPARE(chosen->size(), 0); // not before the edit ends
    QTest::keyClick(green, Qt::Key_Return);
    QCOMPARE(chosen->size(), 1);
    QCOMPARE(lastOf(*chosen), qRgb(255, 128, 0)); // exactly what was typed
    QCOMPARE(chosen->last().first().value<QColor>().alpha(), 255);
    QCOMPARE(numbers(), QList<int>({255, 128, 0}));
    QVERIFY(std::abs(marker->getHue() - 30) < 0.5);
    QCOMPARE(slider->value(), 255);
    QTest::keyClick(green, Qt::Key_Enter); // of the numeric pad: the focus goes, which ends the edit
    QVERIFY(!green->hasFocus());
    QCOMPARE(chosen->size(), 2);
}

void TestColorPaletteBox::numbersKeepTheirRange()
{
    for (const char *name : {"spinRed", "spinGreen", "spinBlue"}) {
        number(name)->setValue(256);
        QCOMPARE(number(name)->value(), 255);
        number(name)->setValue(-1);
        QCOMPARE(number(name)->value(), 0);
    }
}

void TestColorPaletteBox::adjustColorBringsAllToOneColour_data()
{
    QTest::addColumn<QColor>("color");
    QTest::addColumn<double>("hue");
    QTest::addColumn<int>("value");

    QTest::newRow("a pure hue") << QColor(0, 0, 255) << 240.0 << 255;
    QTest::newRow("white keeps the hue") << QColor(255, 255, 255) << 120.0 << 0;
    QTest::newRow("black keeps the hue") << QColor(0, 0, 0) << 120.0 << 500;
    QTest::newRow("a light red") << QColor(255, 155, 155) << 0.0 << 100;
    QTest::newRow("a dark red") << QColor(100, 0, 0) << 0.0 << 400;
    QTest::newRow("a slightly dark red") << QColor(250, 0, 0) << 0.0 << 255; // the slider leaps over it
    QTest::newRow("a grey") << QColor(128, 128, 128) << 120.0 << 0;
}

void TestColorPaletteBox::adjustColorBringsAllToOneColour()
{
    QFETCH(QColor, color);
    palette->adjustColor(QColor(0, 255, 0));
    palette->adjustColor(color);
    QTEST(marker->getHue(), "hue");
    QTEST(slider->value(), "value");
    QCOMPARE(numbers(), partsOf(color.rgb()));
    QCOMPARE(chosen->size(), 0); // nothing echoes
}

void TestColorPaletteBox::toolsFollowOneAnother()
{
    dragMarkerTo(middle() + QPoint(160, 0));
    QCOMPARE(chosen->size(), 1); // one movement, one signal
    QCOMPARE(lastOf(*chosen), qRgb(0, 255, 255));
    QCOMPARE(slider->value(), 255);
    QCOMPARE(slider->getCurrentColor().rgb(), qRgb(0, 255, 255));
    QCOMPARE(numbers(), QList<int>({0, 255, 255}));

    slider->setValue(0);
    QCOMPARE(chosen->size(), 2);
    QCOMPARE(lastOf(*chosen), qRgb(255, 255, 255));
    QCOMPARE(numbers(), QList<int>({255, 255, 255}));
    QCOMPARE(marker->getHue(), 180.0); // the hue waits for the way back

    slider->setValue(500);
    QCOMPARE(lastOf(*chosen), qRgb(0, 0, 0));

    dragMarkerTo(middle() + QPoint(-160, 0)); // a new hue begins at its pure colour
    QCOMPARE(lastOf(*chosen), qRgb(255, 0, 0));
    QCOMPARE(slider->value(), 255);
    QCOMPARE(chosen->size(), 4);
}

void TestColorPaletteBox::toolsLieInTheHole()
{
    const HueRing ring = HueRing::forSize(palette->size());
    auto *box = palette->findChild<Ovryn_rgbBox *>();
    for (const QWidget *tool : {static_cast<QWidget *>(slider), static_cast<QWidget *>(box)}) {
        const QRect place = tool->geometry();
        for (const QPoint &corner : {place.topLeft(), place.topRight(), place.bottomLeft(), place.bottomRight()}) {
            const QPoint offset = corner - middle();
            QVERIFY(std::hypot(offset.x(), offset.y()) < ring.innerRadius);
        }
    }
    QVERIFY(!slider->geometry().intersects(box->geometry()));
}

void TestColorPaletteBox::otherSizes()
{
    for (const QSize &size :
         {QSize(0, 0), QSize(1, 1), QSize(9, 9), QSize(200, 20), QSize(20, 200), QSize(801, 600)}) {
        palette->resize(size);
        palette->grab();
        palette->adjustColor(QColor(10, 200, 30));
        marker->turnTo(QPoint(3, 3));
        QTest::mouseClick(slider, Qt::LeftButton);
    }
    QVERIFY(chosen->size() >= 6);
}

QTEST_MAIN(TestColorPaletteBox)
#include "TestColorPaletteBox.moc"
