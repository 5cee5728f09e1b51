#pragma once

#include <QRect>
#include <QSize>

/// Widths of the LCD page's texts in the language in force, in pixels.
struct LcdTextWidths
{
    int autoSwitch = 0;
    int manualSwitch = 0;
    int timeCaption = 0;
    int hotkeyCaption = 0;
};

/// Where everything of the LCD page lies, in page pixels. Integer divisions truncate.
struct LcdPageLayout
{
    static constexpr int radioPixels = 18;   ///< font of both radios
    static constexpr int captionPixels = 15; ///< font of the captions and of the plus

    int titleHeight = 0;
    QRect title;
    int titlePixels = 0;
    QRect autoSwitch;
    QRect timeCaption;
    QRect switchTime;
    QRect manualSwitch;
    QRect hotkeyCaption;
    QRect modifierKey;
    QRect plus; ///< between the two key fields
    QRect normalKey;
    QRect enableLcd;
    QRect confirm;
    QRect cancel;
    int buttonPixels = 0; ///< font of both buttons
};

[[nodiscard]] LcdPageLayout lcdPageLayoutFor(QSize page, const LcdTextWidths &texts);
