#pragma once

#include "board/led/HueRing.h"

#include <QColor>
#include <QLabel>

/// The marker on the hue ring, masked to its image. It moves on its parent, which shows the ring. GUI thread.
class Ovryn_TriangleButton : public QLabel
{
    Q_OBJECT

public:
    explicit Ovryn_TriangleButton(QWidget *parent);

    void setRing(const HueRing &newRing); ///< places the marker anew
    [[nodiscard]] const HueRing &getRing() const { return ring; }
    [[nodiscard]] double getHue() const { return hue; } ///< degrees, 0 to 360
    [[nodiscard]] QColor getColor() const;              ///< the hue, fully saturated
    /// Turns to a point of the parent, as a drag does, and emits onColorChanged.
    void turnTo(QPoint pointOfParent);

public slots:
    void setButtonColor(QColor color); ///< takes the colour's hue; a grey leaves the hue as it is
    void setButtonColorAndDoNotSendColorChangedSignal(QColor color);

signals:
    void onColorChanged(QColor color);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;

private:
    void drawMarker();

    HueRing ring;
    double hue = 0; ///< degrees
};
