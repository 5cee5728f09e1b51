#pragma once

#include <QPixmap>
#include <QRect>
#include <QSlider>

/// What an enabled slider paints over its empty track, in slider pixels.
struct SliderMarks
{
    int fillWidth; ///< left part of the filled track, at least 1
    QRect handle;  ///< shown only while the mouse is over the slider or holds it
};

/// A range of one value has no ratio: its fill and its handle are at the left end.
SliderMarks sliderMarksFor(QSize slider, int handleWidth, int handleHeight, int value, int minimum, int maximum);

/// A horizontal slider painted from images. The fill's end marks the value; a handle appears only under
/// the mouse. Owned by its row; GUI thread.
class Ovryn_OverClockingSlider : public QSlider
{
    Q_OBJECT

public:
    explicit Ovryn_OverClockingSlider(QWidget *parent = nullptr);

protected:
    void enterEvent(QEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QPixmap voidPixmap;    ///< the empty track
    QPixmap fullPixmap;    ///< the filled track
    QPixmap disablePixmap; ///< the greyed track
    bool hover = false;
    bool pressed = false;
    int handleWidth = 8; ///< pixels
    int handleHeight;    ///< pixels; the slider's height
};
