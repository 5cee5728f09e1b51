#pragma once

#include "simulated/front/CardFront.h"
#include "simulated/front/FrontLayout.h"

#include <QPixmap>

#include <map>

class QPainter;

namespace cardfront
{

/// The moment that a picture of a card shows.
struct CardMoment
{
    qint64 ledSinceMs = 0; ///< since the LED frame came
    qint64 lcdSinceMs = 0; ///< since the LCD's command came
    double fanDegrees = 0; ///< how far the fans have turned
};

/// What the LEDs look like when they are off: the milky plastic before them.
constexpr QColor kUnlitLed(0x36, 0x38, 0x41);

/// Colour of an LED in a picture, off or on or anything between.
[[nodiscard]] QColor ledColourAt(const LedState &led, qint64 sinceMs, double place);

/// Paints cards. What does not move is painted once and kept. GUI thread, since it keeps pixmaps.
class CardPainter
{
public:
    /// The card with its upper left corner at the painter's origin.
    void paint(QPainter &painter, const CardFront &card, const CardMoment &moment);

private:
    [[nodiscard]] const QPixmap &body(const CardLayout &layout, qreal pixelRatio);
    [[nodiscard]] const QPixmap &blades(int side, qreal pixelRatio);

    std::map<int, QPixmap> bodies; ///< by number of fans
    QPixmap fan;
};

} // namespace cardfront
