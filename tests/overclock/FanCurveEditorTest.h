#pragma once

#include "overclock/FanCurve.h"
#include "overclock/Ovryn_UserDefineFanSpeed.h"
#include "support/MouseMove.h"
#include "ui/Fonts.h"

#include <QImage>
#include <QSignalSpy>
#include <QTest>

#include <memory>

using Curve = QList<QPoint>;

constexpr int kSide = 376;
const QPoint kFirst(30, 346);
const QPoint kSecond(129, 278);
const QPoint kThird(195, 176);
const QPoint kFourth(294, 40);
const QPoint kLast(360, 6);
const Curve kElevenNodes = {{0, 0},   {10, 10}, {20, 20}, {30, 30}, {40, 40},  {50, 50},
                            {60, 60}, {70, 70}, {80, 80}, {90, 90}, {100, 100}};

inline QImage imageOf(QWidget &widget)
{
    QImage image(widget.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::black);
    widget.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    return image;
}

/// The fan curve editor, driven by real mouse events at 376x376 pixels, where the default curve's nodes lie
/// at (30,346), (129,278), (195,176), (294,40) and (360,6).
class FanCurveEditorTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        substituteFontFamilies();
        registerApplicationFonts();
    }
    void init()
    {
        editor = std::make_unique<Ovryn_UserDefineFanSpeed>();
        editor->resize(kSide, kSide);
        editor->show();
        QVERIFY(QTest::qWaitForWindowExposed(editor.get()));
        changes = std::make_unique<QSignalSpy>(editor.get(), SIGNAL(pointChanged()));
    }
    void cleanup()
    {
        changes.reset();
        editor.reset();
    }

protected:
    void press(QPoint position) { QTest::mousePress(editor.get(), Qt::LeftButton, Qt::NoModifier, position); }
    void move(QPoint position) { moveMouse(*editor, position); }
    void release(QPoint position) { QTest::mouseRelease(editor.get(), Qt::LeftButton, Qt::NoModifier, position); }
    void doubleClickAt(QPoint position)
    {
        QTest::mouseDClick(editor.get(), Qt::LeftButton, Qt::NoModifier, position);
    }

    std::unique_ptr<Ovryn_UserDefineFanSpeed> editor;
    std::unique_ptr<QSignalSpy> changes;
};
