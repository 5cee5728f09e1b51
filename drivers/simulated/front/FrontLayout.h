#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

/// The rectangles of the window "Card front", in pixels. A program that examines the screen finds a card's LEDs and
/// LCD by them: the LEDs' rectangles are filled completely with their colour.
namespace cardfront
{

constexpr const char *kWindowTitle = "Card front";

constexpr int kMargin = 8;           ///< so narrow that the window fits beside the program on a screen of 1920 pixels
constexpr QSize kCellSize(424, 216); ///< a card with its name above
constexpr int kCardTop = 26;         ///< of the card in its cell
constexpr QSize kCardSize(424, 184);
constexpr int kRows = 3;      ///< cards one above the other, then a new column
constexpr int kMostCards = 6; ///< further ones are not shown

/// Where everything of one card lies, in pixels of the card.
struct CardLayout
{
    QRect shroud;
    QRect strip;      ///< the LED strip; its inner pixels all have the LEDs' colour
    QRect logo;       ///< the lit emblem
    QRect logoCore;   ///< part of it that is filled with the LEDs' colour edge to edge
    QRect lcd;        ///< glass of the LCD; empty without one
    QRect fans[3];    ///< the first `fanCount`
    int fanCount = 3; ///< two beside an LCD, else three
};

inline CardLayout cardLayout(bool hasLcd)
{
    CardLayout layout;
    layout.shroud = QRect(16, 4, 402, 166);
    layout.strip = QRect(44, 12, 346, 6);
    constexpr int kFan = 118;
    constexpr int kFanTop = 38;
    layout.fans[0] = QRect(28, kFanTop, kFan, kFan);
    layout.fans[1] = QRect(288, kFanTop, kFan, kFan);
    layout.fans[2] = QRect(158, kFanTop, kFan, kFan);
    layout.fanCount = hasLcd ? 2 : 3;
    // beside the LCD above the glass, else on the hub of the middle fan
    const QPoint logoCentre = hasLcd ? QPoint(217, 42) : QPoint(217, kFanTop + kFan / 2);
    layout.logo = QRect(logoCentre - QPoint(14, 14), QSize(28, 28));
    layout.logoCore = QRect(logoCentre + QPoint(-1, 1), QSize(3, 3));
    if (hasLcd)
        layout.lcd = QRect(152, 66, 130, 92);
    return layout;
}

/// Number of cards that are shown of `count`.
inline int shownCards(int count)
{
    return count < 0 ? 0 : count < kMostCards ? count : kMostCards;
}

/// Size of the window for a number of cards; without any there is room for a message.
inline QSize windowSize(int count)
{
    const int cells = shownCards(count) > 0 ? shownCards(count) : 1;
    const int rows = cells < kRows ? cells : kRows;
    const int columns = (cells + kRows - 1) / kRows;
    return QSize(columns * (kCellSize.width() + kMargin) + kMargin, rows * kCellSize.height() + 2 * kMargin);
}

/// Cell of a card in the window: its name, and below the card.
inline QRect cellRect(int index)
{
    return QRect(
        QPoint(kMargin + index / kRows * (kCellSize.width() + kMargin), kMargin + index % kRows * kCellSize.height()),
        kCellSize);
}

/// The card in the window.
inline QRect cardRect(int index)
{
    return QRect(cellRect(index).topLeft() + QPoint(0, kCardTop), kCardSize);
}

/// A rectangle of a card's layout in window pixels.
inline QRect inWindow(int index, const QRect &rect)
{
    return rect.translated(cardRect(index).topLeft());
}

} // namespace cardfront
