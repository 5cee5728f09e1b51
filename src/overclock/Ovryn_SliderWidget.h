#pragma once

#include "overclock/SliderRowLayout.h"

#include <QPixmap>
#include <QString>
#include <QWidget>

class ModifySpinBox;
class Ovryn_OverClockingSlider;

/// One row of the adjust page: a caption, a slider and a number box that follows it. A number typed into the box
/// changes the slider, and so the row, at the end of the edit.
///
/// The signals report the user's changes only; what the program sets is silent. GUI thread.
class Ovryn_SliderWidget : public QWidget
{
    Q_OBJECT

public:
    explicit Ovryn_SliderWidget(QWidget *parent = nullptr);

    void setText(const QString &text); ///< the caption; the next repaint shows it
    void setRange(int newMinimum, int newMaximum);
    void setValue(int newValue); ///< kept as given, even where the slider and the box must cut it to the range
    [[nodiscard]] int value() const { return currentValue; }

signals:
    void valueChanged(Ovryn_SliderWidget *sender);
    void sliderMoved(Ovryn_SliderWidget *sender, int move); ///< a drag is under way, now at `move`
    void sliderReleased(Ovryn_SliderWidget *sender);

protected:
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private slots:
    void onSliderValueChanged(int newValue);
    void onSpinBoxValueChanged();
    void onSliderMoved(int move);
    void onSliderReleased();

private:
    void connectAll();

    SliderRowLayout layout;
    QString caption;
    ModifySpinBox *spinBox;
    Ovryn_OverClockingSlider *slider;
    QPixmap backgroundPixmap;
    QPixmap disabledBackgroundPixmap;
    int currentValue = 0;
    int maximum = 0;
    int minimum = 0;
    bool changedByProgram = false; ///< while the slider's signals come from the program's own calls
};
