#pragma once

#include "board/led/HueRing.h"

#include <QImage>
#include <QWidget>

class Ovryn_ColorSlider;
class Ovryn_TriangleButton;
class Ovryn_rgbBox;

/// The colour palette: a hue ring with a marker, and in its hole the shade slider and the numbers. The three always
/// show one colour. It stands in the gauge's place while the LED page is open; owned by the main dialog. GUI thread.
class Ovryn_ColorPaletteBox : public QWidget
{
    Q_OBJECT

public:
    explicit Ovryn_ColorPaletteBox(QWidget *parent = nullptr);

public slots:
    void onSliderColorChanged(QColor color);
    void adjustColor(QColor color); ///< shows a colour that comes from outside; emits nothing

signals:
    void colorChanged(QColor color); ///< the user chose another one
    void closeadjustColor();         ///< part of the interface since ever; nothing emits it

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private slots:
    void onNumbersChanged(QColor color);

private:
    void showHueAndShade(QColor color);

    QImage ringImage; ///< cut to the ring
    QPoint ringTopLeft;
    bool turning = false; ///< the left button went down on the ring
    Ovryn_TriangleButton *marker;
    Ovryn_ColorSlider *slider;
    Ovryn_rgbBox *rgbBox;
};
