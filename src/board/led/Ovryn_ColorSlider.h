#pragma once

#include <QColor>
#include <QImage>
#include <QSlider>

/// The shade of one hue: white at the left, the pure hue at 255, black at the right end. GUI thread.
class Ovryn_ColorSlider : public QSlider
{
    Q_OBJECT

public:
    static constexpr int kMaximum = 500;
    static constexpr int kPureHueValue = 255;

    explicit Ovryn_ColorSlider(QWidget *parent = nullptr);

    [[nodiscard]] QColor getCurrentColor() const { return currentColor; }

    /// Puts the handle where `color` lies among the shades of its own hue, the nearest one where it isn't among
    /// them. The hue of a grey is that of `pureHue`. Emits nothing of its own.
    void showShade(QColor pureHue, QColor color);

public slots:
    /// Takes the hue of `color`, goes to the pure hue and emits colorChanged.
    void setSliderBarColor(QColor color);
    void setSliderBarColorAndDoNotSendColorChangedSignal(QColor color);

signals:
    void colorChanged(QColor color);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private slots:
    void onValueChanged(int newValue);

private:
    [[nodiscard]] QColor shadeAt(int sliderValue) const;
    void moveSilently(int newValue);
    void drawBar();
    [[nodiscard]] int handleX() const; ///< middle of the handle, pixels
    void goTo(int x);                  ///< the handle follows the pointer

    QColor baseColor{255, 0, 0};    ///< its hue is the one shown
    QColor currentColor{255, 0, 0}; ///< what the value makes of it
    QImage bar;                     ///< painted anew when hue or size change
    bool silent = false;            ///< the value is moved from inside
};
