#pragma once

#include "simulated/front/CardFront.h"

#include <QRect>

class QPainter;

namespace cardfront
{

/// Where the parts of a page lie on the glass.
struct LcdLayout
{
    QRect caption;
    QRect digits;
    QRect unit;
    QRect detail;
    QRect bar;
    QRect dots[4]; ///< which of the pages is shown; the point dims with every other frame
};

[[nodiscard]] LcdLayout lcdLayout(const QRect &glass);

/// Paints the panel on its glass.
void paintLcd(QPainter &painter, const QRect &glass, const LcdState &lcd, qint64 sinceMs);

} // namespace cardfront
