#include "monitor/gauge/Ovryn_CircleButton.h"
#include "ui/Fonts.h"

#include <QMouseEvent>
#include <QSignalSpy>
#include <QtTest>

namespace
{

constexpr int kSide = 240;

/// A clock segment whose pictures can be looked at.
class OpenButton : public Ovryn_CircleButton
{
public:
    OpenButton() : Ovryn_CircleButton(RingSegmentClock)
    {
        setFont(QFont("Arial"));
        setThickness(40);
        resize(kSide, kSide);
        setText("C L O C K");
    }

    using Ovryn_CircleButton::hoverPixmap;
    using Ovryn_CircleButton::normalPixmap;
    using Ovryn_CircleButton::pressPixmap;

    [[nodiscard]] QString shown() const
    {
        const qint64 key = pixmap(Qt::ReturnByValue).cacheKey();
        if (key == normalPixmap.cacheKey())
            return "normal";
        if (key == hoverPixmap.cacheKey())
            return "hover";
        return key == pressPixmap.cacheKey() ? "press" : "other";
    }
};

const QPoint kOnSegment(33, 70); // 100 pixels from the centre, at 150 degrees
const QPoint kInHole(120, 120);

QMouseEvent mouse(QEvent::Type type, const QPoint &position, Qt::MouseButton button, Qt::MouseButtons held)
{
    return QMouseEvent(type, position, button, held, Qt::NoModifier);
}

void send(QWidget &widget, QEvent &&event)
{
    QCoreApplication::sendEvent(&widget, &event);
}

} // namespace

class TestCircleButton : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { substituteFontFamilies(); }
    void picturesDifferInTheirColour();
    void maskIsTheSegment();
    void maskFollowsTheSize();
    void lookFollowsTheMouse();
    void release_data();
    void release();
    void otherButtonsDoNothing();
    void aNewTextIsPainted();
    void tinySizesHaveNoSegment_data();
    void tinySizesHaveNoSegment();
};

void TestCircleButton::picturesDifferInTheirColour()
{
    OpenButton button;
    QCOMPARE(button.shown(), QString("normal"));
    const QColor normal = button.normalPixmap.toImage().pixelColor(kOnSegment + QPoint(-10, -4));
    QCOMPARE(normal.red(), 236);
    QCOMPARE(normal.alpha(), 150);
    QCOMPARE(button.hoverPixmap.toImage().pixelColor(kOnSegment + QPoint(-10, -4)).alpha(), 180);
    QCOMPARE(button.pressPixmap.toImage().pixelColor(kOnSegment + QPoint(-10, -4)).alpha(), 200);
    QVERIFY(button.hasMouseTracking());
    QCOMPARE(button.styleSheet(), QString("background-color: rgba(0, 0, 0, 0);"));
}

void TestCircleButton::maskIsTheSegment()
{
    const OpenButton button;
    QVERIFY(button.mask().contains(kOnSegment));
    QVERIFY(!button.mask().contains(kInHole));
    QVERIFY(!button.mask().contains(QPoint(207, 70))); // the upper right segment
    QVERIFY(!button.mask().contains(QPoint(120, 20))); // the gap at the top
    QVERIFY(!button.mask().contains(QPoint(2, 2)));
}

void TestCircleButton::maskFollowsTheSize()
{
    OpenButton button;
    button.show(); // a hidden widget is told of its size later
    button.resize(120, 160);
    QCOMPARE(button.normalPixmap.size(), QSize(120, 120));
    QVERIFY(button.mask().contains(QPoint(16, 35)));
    QVERIFY(!button.mask().contains(kOnSegment + QPoint(20, 80)));
}

void TestCircleButton::lookFollowsTheMouse()
{
    OpenButton button;
    send(button, QEvent(QEvent::Enter));
    QCOMPARE(button.shown(), QString("hover"));
    send(button, mouse(QEvent::MouseButtonPress, kOnSegment, Qt::LeftButton, Qt::LeftButton));
    QCOMPARE(button.shown(), QString("press"));
    send(button, mouse(QEvent::MouseMove, kInHole, Qt::NoButton, Qt::LeftButton));
    QCOMPARE(button.shown(), QString("press"));
    send(button, mouse(QEvent::MouseButtonRelease, kOnSegment, Qt::LeftButton, Qt::NoButton));
    QCOMPARE(button.shown(), QString("hover"));
    send(button, QEvent(QEvent::Leave));
    QCOMPARE(button.shown(), QString("normal"));
    send(button, mouse(QEvent::MouseMove, kOnSegment, Qt::NoButton, Qt::NoButton));
    QCOMPARE(button.shown(), QString("hover"));
}

void TestCircleButton::release_data()
{
    QTest::addColumn<QPoint>("position");
    QTest::addColumn<int>("clicks");
    QTest::addColumn<QString>("shown");
    QTest::newRow("on the segment") << kOnSegment << 1 << "hover";
    QTest::newRow("in the hole") << kInHole << 0 << "normal";
    QTest::newRow("on another segment") << QPoint(207, 70) << 0 << "normal";
    QTest::newRow("outside the label") << QPoint(-50, 900) << 0 << "normal";
}

void TestCircleButton::release()
{
    QFETCH(QPoint, position);
    OpenButton button;
    const QSignalSpy clicked(&button, SIGNAL(onMouseClick()));
    send(button, mouse(QEvent::MouseButtonPress, kOnSegment, Qt::LeftButton, Qt::LeftButton));
    send(button, mouse(QEvent::MouseButtonRelease, position, Qt::LeftButton, Qt::NoButton));
    QTEST(int(clicked.count()), "clicks");
    QTEST(button.shown(), "shown");
}

void TestCircleButton::otherButtonsDoNothing()
{
    OpenButton button;
    const QSignalSpy clicked(&button, SIGNAL(onMouseClick()));
    send(button, mouse(QEvent::MouseButtonPress, kOnSegment, Qt::RightButton, Qt::RightButton));
    QCOMPARE(button.shown(), QString("normal"));
    send(button, mouse(QEvent::MouseButtonRelease, kOnSegment, Qt::RightButton, Qt::NoButton));
    QCOMPARE(button.shown(), QString("normal"));
    QCOMPARE(clicked.count(), 0);
}

void TestCircleButton::aNewTextIsPainted()
{
    OpenButton button;
    const QImage before = button.normalPixmap.toImage();
    send(button, QEvent(QEvent::Enter));
    button.setText("X");
    QVERIFY(button.normalPixmap.toImage() != before);
    QCOMPARE(button.shown(), QString("normal"));
}

void TestCircleButton::tinySizesHaveNoSegment_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("nothing") << QSize(0, 0);
    QTest::newRow("no height") << QSize(50, 0);
    QTest::newRow("single pixel") << QSize(1, 1);
    QTest::newRow("three pixels") << QSize(3, 3);
}

void TestCircleButton::tinySizesHaveNoSegment()
{
    QFETCH(QSize, size);
    OpenButton button;
    button.resize(size);
    button.setText("C L O C K");
    const int side = qMin(size.width(), size.height());
    QCOMPARE(button.normalPixmap.size(), QSize(side, side));
    button.setThickness(-4);
    button.setText("");
    QCOMPARE(button.normalPixmap.size(), QSize(side, side));
}

QTEST_MAIN(TestCircleButton)
#include "TestCircleButton.moc"
