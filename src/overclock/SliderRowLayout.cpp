#include "overclock/SliderRowLayout.h"

SliderRowLayout sliderRowLayoutFor(QSize row, int backgroundWidth)
{
    const int margin = row.width() / 20;
    const int lowerHeight = row.height() / 3; // of the slider and the box; the caption has the rest
    const int lowerTop = row.height() - lowerHeight;

    SliderRowLayout layout;
    layout.margin = margin;
    layout.usableWidth = row.width() - 2 * layout.margin;
    const int spinWidth = int(layout.usableWidth / 6);
    layout.spinRect = QRect(int(layout.usableWidth / 5 * 4 + layout.margin), lowerTop, spinWidth, lowerHeight);
    // The slider begins within the background image, whose right part it covers.
    layout.sliderRect =
        QRect(backgroundWidth - 5, lowerTop, int(layout.usableWidth - spinWidth - backgroundWidth), lowerHeight);
    layout.captionRect = QRect(int(2 * layout.margin), 0, int(layout.usableWidth), lowerTop);
    return layout;
}
