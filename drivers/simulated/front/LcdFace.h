#pragma once

#include "simulated/front/CardFront.h"

#include <QtGlobal>

namespace cardfront
{

// the frame's command byte
constexpr int kLcdClock = 0x80;
constexpr int kLcdTemperature = 0x40;
constexpr int kLcdMemory = 0x20;
constexpr int kLcdOther = 0x10;
constexpr int kLcdOff = 0xF0;

/// What the LCD shows: texts of one page.
struct LcdFace
{
    bool lit = false;  ///< false: the panel is dark and everything else empty
    int page = 0;      ///< one of the four pages, 0 for a command that names none
    QString caption;   ///< above the digits
    QString digits;    ///< the big ones
    QString unit;      ///< of the digits
    QString detail;    ///< below
    double part = 0;   ///< of the bar, 0..1
    bool beat = false; ///< changes with each frame
};

/// Time that a page stays when the controller turns them itself, in ms, from the command's low half (1..0xF).
[[nodiscard]] qint64 pageStayMs(int command);

/// The page that a command shows `sinceMs` after it came first: its own, or with a rotation clock, temperature,
/// memory and other in turn; 0 for off and for a command that names no page.
[[nodiscard]] int lcdPageAt(int command, qint64 sinceMs);

/// "GTX 1070 Ti" from the frame's model, which only cards of that line have; empty without digits.
[[nodiscard]] QString modelText(const LcdState &lcd);

[[nodiscard]] LcdFace lcdFaceAt(const LcdState &lcd, qint64 sinceMs);

} // namespace cardfront
