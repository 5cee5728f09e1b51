#pragma once

#include <QRect>
#include <QSize>

#include <array>

/// Where everything of the LED page lies, in page pixels. Integer divisions truncate.
struct LedPageLayout
{
    static constexpr int colorCount = 7;

    int titleHeight = 0;
    QRect title;
    int titlePixels = 0;
    QRect breath; ///< of both breathing radios; only one of them ever shows
    QRect bright; ///< of both steady radios
    QRect intervalCaption;
    QRect interval;
    std::array<QRect, colorCount> presets;
    std::array<QRect, colorCount> customs;
    QRect reset;
    QRect state;
    QRect sleep;
    QRect gradient;
};

[[nodiscard]] LedPageLayout ledPageLayoutFor(QSize page);
