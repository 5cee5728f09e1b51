#include "overclock/Ovryn_OverClockingSlider.h"

#include <QImage>
#include <QPainter>
#include <QTest>

#include <limits>
#include <memory>

/// The painted slider: where its fill and its handle stand, and which image shows when.
class TestOverClockingSlider : public QObject
{
    Q_OBJECT

private slots:
    void marks_data();
    void marks();
    void fillEndsAtTheValue_data();
    void fillEndsAtTheValue();
    void handleShowsOnlyUnderTheMouse();
    void disabledShowsTheGreyTrackAlone();
    void clickJumpsByAPageStep();
    void paintsAtAnySize_data();
    void paintsAtAnySize();
};

namespace
{

constexpr int kTrackWidth = 263;
constexpr int kTrackHeight = 11;
constexpr int kHeight = 21;
constexpr int kTrackTop = (kHeight - kTrackHeight) / 2;
const QColor kGround(0, 0, 255); // no part of any slider image

QImage imageOf(QWidget &widget)
{
    QImage image(widget.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(kGround);
    widget.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    return image;
}

/// The track images one over the other, as the slider would lay them.
QImage tracks(const QStringList &names, const QList<int> &widths)
{
    QImage image(kTrackWidth, kHeight, QImage::Format_ARGB32_Premultiplied);
    image.fill(kGround);
    QPainter painter(&image);
    for (int i = 0; i < names.size(); ++i)
        painter.drawPixmap(0, kTrackTop, QPixmap(":/images/images/slider/" + names[i] + "_slider.png"), 0, 0,
                           widths[i], kTrackHeight);
    return image;
}

std::unique_ptr<Ovryn_OverClockingSlider> slider(int value)
{
    auto made = std::make_unique<Ovryn_OverClockingSlider>();
    made->setRange(0, 100);
    made->setValue(value);
    made->resize(kTrackWidth, kHeight);
    return made;
}

void mouseEnters(QWidget &widget)
{
    QEvent event(QEvent::Enter);
    QApplication::sendEvent(&widget, &event);
}

void mouseLeaves(QWidget &widget)
{
    QEvent event(QEvent::Leave);
    QApplication::sendEvent(&widget, &event);
}

} // namespace

void TestOverClockingSlider::marks_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("minimum");
    QTest::addColumn<int>("maximum");
    QTest::addColumn<int>("fillWidth");
    QTest::addColumn<QRect>("handle");
    const int lowest = std::numeric_limits<int>::min();
    const int highest = std::numeric_limits<int>::max();

    QTest::newRow("at the minimum one pixel is filled") << QSize(263, 21) << 0 << 0 << 100 << 1 << QRect(0, 0, 8, 21);
    QTest::newRow("at the maximum") << QSize(263, 21) << 100 << 0 << 100 << 263 << QRect(255, 0, 8, 21);
    QTest::newRow("half is truncated") << QSize(263, 21) << 50 << 0 << 100 << 131 << QRect(127, 0, 8, 21);
    QTest::newRow("negative range") << QSize(200, 21) << -75 << -100 << 0 << 50 << QRect(48, 0, 8, 21);
    QTest::newRow("range of one value") << QSize(263, 21) << 7 << 7 << 7 << 1 << QRect(0, 0, 8, 21);
    QTest::newRow("range of 0 to 0") << QSize(263, 21) << 0 << 0 << 0 << 1 << QRect(0, 0, 8, 21);
    QTest::newRow("all integers") << QSize(200, 21) << 0 << lowest << highest << 100 << QRect(96, 0, 8, 21);
    QTest::newRow("no size") << QSize(0, 0) << 50 << 0 << 100 << 1 << QRect(-4, 0, 8, 0);
}

void TestOverClockingSlider::marks()
{
    QFETCH(QSize, size);
    QFETCH(int, value);
    QFETCH(int, minimum);
    QFETCH(int, maximum);
    const SliderMarks marks = sliderMarksFor(size, 8, size.height(), value, minimum, maximum);
    QTEST(marks.fillWidth, "fillWidth");
    QTEST(marks.handle, "handle");
}

void TestOverClockingSlider::fillEndsAtTheValue_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("fillWidth");
    QTest::newRow("minimum: one pixel") << 0 << 1;
    QTest::newRow("a third") << 33 << 86;
    QTest::newRow("maximum") << 100 << 263;
}

void TestOverClockingSlider::fillEndsAtTheValue()
{
    QFETCH(int, value);
    QFETCH(int, fillWidth);
    const auto made = slider(value);
    QCOMPARE(imageOf(*made), tracks({"void", "full"}, {kTrackWidth, fillWidth}));
}

void TestOverClockingSlider::handleShowsOnlyUnderTheMouse()
{
    const auto made = slider(50);
    const QPoint inHandle(130, 1); // above the track
    const QPoint beside(120, 1);
    QCOMPARE(imageOf(*made).pixelColor(inHandle), kGround);

    mouseEnters(*made);
    QCOMPARE(imageOf(*made).pixelColor(inHandle), QColor(180, 180, 255));
    QCOMPARE(imageOf(*made).pixelColor(127, kHeight - 1), QColor(180, 180, 255));
    QCOMPARE(imageOf(*made).pixelColor(134, 0), QColor(180, 180, 255));
    QCOMPARE(imageOf(*made).pixelColor(126, 0), kGround);
    QCOMPARE(imageOf(*made).pixelColor(135, 0), kGround);

    QTest::mousePress(made.get(), Qt::LeftButton, Qt::NoModifier, made->rect().center());
    QCOMPARE(imageOf(*made).pixelColor(inHandle), QColor(Qt::white));
    QCOMPARE(imageOf(*made).pixelColor(beside), kGround);

    mouseLeaves(*made); // a drag goes on beyond the slider
    QCOMPARE(imageOf(*made).pixelColor(inHandle), QColor(Qt::white));

    QTest::mouseRelease(made.get(), Qt::LeftButton, Qt::NoModifier, made->rect().center());
    QCOMPARE(imageOf(*made).pixelColor(inHandle), kGround);
}

void TestOverClockingSlider::disabledShowsTheGreyTrackAlone()
{
    const auto made = slider(50);
    made->setEnabled(false);
    const QImage grey = tracks({"disable"}, {kTrackWidth});
    QCOMPARE(imageOf(*made), grey);
    QVERIFY(grey != tracks({"void"}, {kTrackWidth}));
    mouseEnters(*made);
    QCOMPARE(imageOf(*made), grey);
}

void TestOverClockingSlider::clickJumpsByAPageStep()
{
    const auto made = slider(0);
    made->setPageStep(5);
    QTest::mouseClick(made.get(), Qt::LeftButton, Qt::NoModifier, QPoint(200, 10));
    QCOMPARE(made->value(), 5);
}

void TestOverClockingSlider::paintsAtAnySize_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("maximum");
    QTest::newRow("nothing") << QSize(0, 0) << 100;
    QTest::newRow("one pixel") << QSize(1, 1) << 100;
    QTest::newRow("wider than the track's image") << QSize(600, 30) << 100;
    QTest::newRow("range of 0 to 0") << QSize(263, 21) << 0;
}

void TestOverClockingSlider::paintsAtAnySize()
{
    QFETCH(QSize, size);
    QFETCH(int, maximum);
    const auto made = slider(100);
    made->setRange(0, maximum);
    made->resize(size);
    mouseEnters(*made);
    QImage image(700, 40, QImage::Format_ARGB32_Premultiplied);
    image.fill(kGround);
    made->render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    // The handle reaches from top to bottom at whatever place, and nothing lies outside the slider.
    QCOMPARE(image.pixelColor(size.width(), 0), kGround);
    QCOMPARE(image.pixelColor(0, size.height()), kGround);
    if (!size.isEmpty()) {
        const int handleX = maximum == 0 ? 0 : size.width() - 1;
        QVERIFY(image.pixelColor(handleX, 0) != kGround);
        QVERIFY(image.pixelColor(handleX, size.height() - 1) != kGround);
    }
}

QTEST_MAIN(TestOverClockingSlider)
#include "TestOverClockingSlider.moc"
