#pragma once

#include <QByteArray>
#include <QColor>
#include <QString>
#include <QVector>

#include <array>
#include <optional>

/// What can be seen on the front of simulated cards, as the driver's state file tells it.
namespace cardfront
{

/// What the LED controller runs: the last frame that it took.
struct LedState
{
    int effect = 0;          ///< the frame's effect code, 0..255
    int level = 0;           ///< 0 is dark, 50 the full light
    int interval = 0;        ///< the frame's interval, 0..255
    QVector<QColor> colours; ///< at most 7
    int accepted = 0;        ///< frames taken so far; each starts its effect anew
};

/// What the LCD controller knows: the last frame that it took.
struct LcdState
{
    int command = 0xF0; ///< page, off or rotation, 0..255
    int sequence = 0;   ///< number of the frame, 0..255
    double memoryTotalKB = 0;
    double memoryUsedKB = 0;
    int baseClockMHz = 0;
    int currentClockMHz = 0;
    int thermalLimitC = 0;
    int temperatureC = 0;
    int fanMaxRpm = 0;
    int fanRpm = 0;
    bool fanFlag = false;
    std::array<int, 4> modelDigits{}; ///< a character less "0" each, right-aligned, so letters are above 9
    bool modelTi = false;
};

/// One card. Plain value.
struct CardFront
{
    QString name;
    double fanRpm = 0;           ///< of the card itself, 0 without a tachometer
    double fanPercent = 0;       ///< 0..100
    std::optional<LedState> led; ///< nothing without an LED controller
    std::optional<LcdState> lcd; ///< nothing without an LCD controller
};

bool operator==(const LedState &a, const LedState &b);
bool operator==(const LcdState &a, const LcdState &b);
bool operator==(const CardFront &a, const CardFront &b);

/// The cards of a state file's text. What a card lacks or has with a wrong type keeps its default, numbers are
/// held within what a frame can carry, and entries that are no card are left out. Nothing at all when the text
/// as a whole is none of a state file, such as half of one.
[[nodiscard]] std::optional<QVector<CardFront>> cardFrontsOf(const QByteArray &text);

} // namespace cardfront
