#include "overclock/Ovryn_SliderWidget.h"

#include "overclock/Ovryn_OverClockingSlider.h"
#include "support/ConnectWarnings.h"
#include "support/MouseMove.h"
#include "ui/Fonts.h"
#include "ui/ModifySpinBox.h"

#include <QImage>
#include <QPainter>
#include <QSignalSpy>
#include <QStyle>
#include <QStyleOptionSlider>
#include <QTest>

#include <limits>
#include <memory>

/// One row of the adjust page, moved by mouse, keys and program.
class TestSliderWidget : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void layout_data();
    void layout();
    void childrenTakeTheLayout();
    void firstLook();
    void connectionsHold();
    void pageStep_data();
    void pageStep();
    void setValueIsSilent_data();
    void setValueIsSilent();
    void valueFromOutsideMovesOnAsUsual();
    void setRangeIsSilent();
    void keyOnTheSliderIsTheUsersChange();
    void typedValueArrivesAtTheEndOfTheEdit();
    void drag();
    void captionShowsWithTheNextRepaint();
    void backgroundImage_data();
    void backgroundImage();

private:
    std::unique_ptr<Ovryn_SliderWidget> row;
    Ovryn_OverClockingSlider *slider = nullptr;
    ModifySpinBox *box = nullptr;
};

namespace
{

const QSize kRowSize(400, 63);
const QColor kGround(0, 0, 255); // no part of any slider image
constexpr int kBackgroundWidth = 24;
constexpr int kLowest = std::numeric_limits<int>::min();
constexpr int kHighest = std::numeric_limits<int>::max();

QImage imageOf(QWidget &widget)
{
    QImage image(widget.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(kGround);
    widget.render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
    return image;
}

bool anythingPaintedIn(const QImage &image, const QRect &rect)
{
    for (int y = rect.top(); y <= rect.bottom(); ++y) {
        for (int x = rect.left(); x <= rect.right(); ++x) {
            if (image.pixelColor(x, y) != kGround)
                return true;
        }
    }
    return false;
}

QPoint handleCentre(const QSlider &slider)
{
    QStyleOptionSlider option;
    option.initFrom(&slider);
    option.orientation = Qt::Horizontal;
    option.minimum = slider.minimum();
    option.maximum = slider.maximum();
    option.sliderPosition = slider.sliderPosition();
    option.sliderValue = slider.value();
    option.subControls = QStyle::SC_All;
    return slider.style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, &slider).center();
}

} // namespace

void TestSliderWidget::initTestCase()
{
    substituteFontFamilies();
    registerApplicationFonts();
    QApplication::setFont(QFont("Arial"));
}

void TestSliderWidget::init()
{
    row = std::make_unique<Ovryn_SliderWidget>();
    slider = row->findChild<Ovryn_OverClockingSlider *>();
    box = row->findChild<ModifySpinBox *>();
    QVERIFY(slider != nullptr && box != nullptr);
    row->resize(kRowSize);
    row->setRange(0, 100);
}

void TestSliderWidget::cleanup()
{
    row.reset();
}

void TestSliderWidget::layout_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<double>("margin");
    QTest::addColumn<double>("usableWidth");
    QTest::addColumn<QRect>("caption");
    QTest::addColumn<QRect>("spin");
    QTest::addColumn<QRect>("slider");

    QTest::newRow("even") << QSize(400, 63) << 20.0 << 360.0 << QRect(40, 0, 360, 42) << QRect(308, 42, 60, 21)
                          << QRect(19, 42, 276, 21);
    // 359: margin 17, usable 325; 325 / 6 = 54.2; 325 / 5 * 4 + 17 = 277.
    QTest::newRow("divisions truncate") << QSize(359, 64) << 17.0 << 325.0 << QRect(34, 0, 325, 43)
                                        << QRect(277, 43, 54, 21) << QRect(19, 43, 247, 21);
    QTest::newRow("376 wide") << QSize(376, 62) << 18.0 << 340.0 << QRect(36, 0, 340, 42) << QRect(290, 42, 56, 20)
                              << QRect(19, 42, 260, 20);
    // 378: usable 342; 342 / 5 * 4 = 273.6 as a floating number, 272 in integers.
    QTest::newRow("a fifth keeps its fraction") << QSize(378, 62) << 18.0 << 342.0 << QRect(36, 0, 342, 42)
                                                << QRect(291, 42, 57, 20) << QRect(19, 42, 261, 20);
    QTest::newRow("no size") << QSize(0, 0) << 0.0 << 0.0 << QRect(0, 0, 0, 0) << QRect(0, 0, 0, 0)
                             << QRect(19, 0, -24, 0);
}

void TestSliderWidget::layout()
{
    QFETCH(QSize, size);
    const SliderRowLayout layout = sliderRowLayoutFor(size, kBackgroundWidth);
    QTEST(layout.margin, "margin");
    QTEST(layout.usableWidth, "usableWidth");
    QTEST(layout.captionRect, "caption");
    QTEST(layout.spinRect, "spin");
    QTEST(layout.sliderRect, "slider");
}

void TestSliderWidget::childrenTakeTheLayout()
{
    const SliderRowLayout layout = sliderRowLayoutFor(kRowSize, kBackgroundWidth);
    row->grab(); // the first resize is told with the first show or grab
    QCOMPARE(slider->geometry(), layout.sliderRect);
    QCOMPARE(box->geometry(), layout.spinRect);
    row->resize(0, 0);
    row->grab();
}

void TestSliderWidget::firstLook()
{
    QVERIFY(slider->isVisibleTo(row.get()));
    QVERIFY(box->isVisibleTo(row.get()));
    QCOMPARE(slider->orientation(), Qt::Horizontal);
    QCOMPARE(box->buttonSymbols(), QAbstractSpinBox::NoButtons);
    QCOMPARE(row->styleSheet(), QString("ModifySpinBox{font-size:13px;}"));
    QCOMPARE(row->value(), 0);
}

void TestSliderWidget::connectionsHold()
{
    const ConnectWarnings watcher;
    const Ovryn_SliderWidget another;
    QCOMPARE(watcher.list(), QStringList());
}

void TestSliderWidget::pageStep_data()
{
    QTest::addColumn<int>("minimum");
    QTest::addColumn<int>("maximum");
    QTest::addColumn<int>("step");

    QTest::newRow("0 to 19 has none") << 0 << 19 << 0;
    QTest::newRow("0 to 20") << 0 << 20 << 1;
    QTest::newRow("0 to 0") << 0 << 0 << 0;
    QTest::newRow("negative minimum") << -200 << 1000 << 60;
    QTest::newRow("truncated") << 0 << 119 << 5;
    QTest::newRow("all integers") << kLowest << kHighest << 214748364;
}

void TestSliderWidget::pageStep()
{
    QFETCH(int, minimum);
    QFETCH(int, maximum);
    row->setRange(minimum, maximum);
    QTEST(slider->pageStep(), "step");
    QCOMPARE(slider->minimum(), minimum);
    QCOMPARE(slider->maximum(), maximum);
    QCOMPARE(box->minimum(), minimum);
    QCOMPARE(box->maximum(), maximum);
}

void TestSliderWidget::setValueIsSilent_data()
{
    QTest::addColumn<int>("before");
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("shown");

    QTest::newRow("inside the range") << 0 << 42 << 42;
    QTest::newRow("the value already held") << 42 << 42 << 42;
    QTest::newRow("above the range") << 42 << 150 << 100;
    QTest::newRow("above the range, slider at its end") << 100 << 150 << 100;
    QTest::newRow("below the range") << 42 << -5 << 0;
    QTest::newRow("below the range, slider at its start") << 0 << -5 << 0;
    QTest::newRow("back inside from outside") << 150 << 42 << 42;
    QTest::newRow("the cut value after one from outside") << 150 << 100 << 100;
    QTest::newRow("the largest integer") << 0 << kHighest << 100;
}

void TestSliderWidget::setValueIsSilent()
{
    QFETCH(int, before);
    QFETCH(int, value);
    QFETCH(int, shown);
    row->setValue(before);
    QSignalSpy changed(row.get(), SIGNAL(valueChanged(Ovryn_SliderWidget *)));
    QSignalSpy moved(row.get(), SIGNAL(sliderMoved(Ovryn_SliderWidget *, int)));
    row->setValue(value);
    QCOMPARE(row->value(), value);
    QCOMPARE(slider->value(), shown);
    QCOMPARE(box->value(), shown);
    QCOMPARE(changed.count(), 0);
    QCOMPARE(moved.count(), 0);
}

void TestSliderWidget::valueFromOutsideMovesOnAsUsual()
{
    row->setValue(150);
    QSignalSpy changed(row.get(), SIGNAL(valueChanged(Ovryn_SliderWidget *)));
    QTest::keyClick(slider, Qt::Key_Left);
    QCOMPARE(row->value(), 99);
    QTest::keyClick(slider, Qt::Key_Right);
    QCOMPARE(row->value(), 100);
    QCOMPARE(changed.count(), 2);
}

void TestSliderWidget::setRangeIsSilent()
{
    row->setValue(10);
    QSignalSpy changed(row.get(), SIGNAL(valueChanged(Ovryn_SliderWidget *)));
    row->setRange(50, 120);
    QCOMPARE(changed.count(), 0);
    QCOMPARE(slider->value(), 50);
    QCOMPARE(row->value(), 50);
    QCOMPARE(box->value(), 50);
    row->setRange(0, 200);
    QCOMPARE(row->value(), 50);
    QCOMPARE(changed.count(), 0);
}

void TestSliderWidget::keyOnTheSliderIsTheUsersChange()
{
    row->setValue(42);
    QSignalSpy changed(row.get(), SIGNAL(valueChanged(Ovryn_SliderWidget *)));
    QTest::keyClick(slider, Qt::Key_PageUp);
    QCOMPARE(row->value(), 47);
    QCOMPARE(box->value(), 47);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.first().first().value<Ovryn_SliderWidget *>(), row.get());
}

void TestSliderWidget::typedValueArrivesAtTheEndOfTheEdit()
{
    row->show();
    row->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(row.get()));
    row->setValue(4);
    box->setFocus();
    QTRY_VERIFY(box->hasFocus());
    QSignalSpy changed(row.get(), SIGNAL(valueChanged(Ovryn_SliderWidget *)));
    QTest::keyClick(box, Qt::Key_End);
    QTest::keyClick(box, Qt::Key_2);
    QCOMPARE(box->value(), 42);
    QCOMPARE(slider->value(), 4);
    QCOMPARE(row->value(), 4);
    QCOMPARE(changed.count(), 0);

    QTest::keyClick(box, Qt::Key_Enter, Qt::KeypadModifier);
    QVERIFY(row->hasFocus());
    QCOMPARE(slider->value(), 42);
    QCOMPARE(row->value(), 42);
    QCOMPARE(changed.count(), 1);

    box->setFocus();
    QTest::keyClick(box, Qt::Key_Return); // nothing was typed since
    QCOMPARE(changed.count(), 1);
}

void TestSliderWidget::drag()
{
    row->grab();
    row->setValue(50);
    QSignalSpy changed(row.get(), SIGNAL(valueChanged(Ovryn_SliderWidget *)));
    QSignalSpy moved(row.get(), SIGNAL(sliderMoved(Ovryn_SliderWidget *, int)));
    QSignalSpy released(row.get(), SIGNAL(sliderReleased(Ovryn_SliderWidget *)));
    const QPoint grip = handleCentre(*slider);
    QTest::mousePress(slider, Qt::LeftButton, Qt::NoModifier, grip);
    QCOMPARE(moved.count(), 0);
    moveMouse(*slider, grip + QPoint(60, 0), Qt::LeftButton);
    QCOMPARE(moved.count(), 1);
    QCOMPARE(released.count(), 0);
    QTest::mouseRelease(slider, Qt::LeftButton, Qt::NoModifier, grip + QPoint(60, 0));

    QVERIFY(row->value() > 60);
    QCOMPARE(moved.first().at(0).value<Ovryn_SliderWidget *>(), row.get());
    QCOMPARE(moved.first().at(1).toInt(), row->value());
    QCOMPARE(changed.count(), 1);
    QCOMPARE(released.count(), 1);
    QCOMPARE(released.first().at(0).value<Ovryn_SliderWidget *>(), row.get());
    QCOMPARE(box->value(), row->value());
}

void TestSliderWidget::captionShowsWithTheNextRepaint()
{
    const QRect caption = sliderRowLayoutFor(kRowSize, kBackgroundWidth).captionRect;
    QVERIFY(!anythingPaintedIn(imageOf(*row), caption));
    row->setText("Fanspeed(%)");
    const QImage image = imageOf(*row);
    QVERIFY(anythingPaintedIn(image, caption));
    QVERIFY(!anythingPaintedIn(image, QRect(0, 0, caption.left() - 1, caption.height())));
    QVERIFY(!anythingPaintedIn(image, QRect(caption.left() + 200, 0, 160, caption.height()))); // it stands left
}

void TestSliderWidget::backgroundImage_data()
{
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<QString>("file");
    QTest::newRow("enabled") << true << ":/images/images/slider/background_slider.png";
    QTest::newRow("disabled") << false << ":/images/images/slider/disable_background_slider.png";
}

void TestSliderWidget::backgroundImage()
{
    QFETCH(bool, enabled);
    QFETCH(QString, file);
    row->setEnabled(enabled);
    const QImage painted = imageOf(*row);
    QImage expected(19, 19, QImage::Format_ARGB32_Premultiplied); // the slider covers the image's right end
    expected.fill(kGround);
    QPainter(&expected).drawPixmap(0, 0, QPixmap(file));
    QCOMPARE(painted.copy(0, 42 + (21 - 19) / 2, 19, 19), expected);
    QVERIFY(!anythingPaintedIn(painted, QRect(0, 0, 19, 42)));
}

QTEST_MAIN(TestSliderWidget)
#include "TestSliderWidget.moc"
