#pragma once

#include <QColor>
#include <QList>
#include <QtGlobal>

#include <vector>

/// What the LED page shows; the number is the one that config.xml keeps.
enum class LedMode
{
    SingleBreath = 0,
    SingleBright = 1,
    MultipleBreath = 2,
    MultipleBright = 3,
    StateDisplay = 4, ///< the LEDs follow the GPU's temperature
    Gradient = 5,     ///< for controllers of type 3
    Sleep = 6,        ///< LEDs off; any other number counts as this one
};
constexpr int kLedModeCount = int(LedMode::Sleep) + 1;

/// The mode of a number of config.xml.
[[nodiscard]] LedMode ledModeOf(qint32 number);
[[nodiscard]] constexpr bool isSingle(LedMode mode)
{
    return mode == LedMode::SingleBreath || mode == LedMode::SingleBright;
}
[[nodiscard]] constexpr bool isMultiple(LedMode mode)
{
    return mode == LedMode::MultipleBreath || mode == LedMode::MultipleBright;
}

constexpr quint8 kLedControllerWithGradient = 3; ///< type that the controller tells of itself

/// The interval is sent as it stands; what the firmware makes of it is its own affair.
constexpr qint32 kMinLedInterval = 2;
constexpr qint32 kMaxLedInterval = 16;

/// What is told to the LED controller.
struct LedCommand
{
    std::vector<quint8> colors; ///< red, green and blue of each colour; none for the effects that bring their own
    quint8 effect = 0;
    quint8 level = 0;
    quint8 interval = 0;
};

/// The command of a mode. `selected` in order of selection: the single modes take the last colour, the multiple ones
/// the first seven, and all of them red when there is none. StateDisplay has no command of its own; it gives
/// that of 0 degrees.
[[nodiscard]] LedCommand ledCommandFor(LedMode mode, qint32 interval, const QList<QColor> &selected);

/// How the State-Display effect shows a temperature.
struct LedStateBand
{
    QColor color;
    quint8 interval = 0;
};

[[nodiscard]] LedStateBand ledStateBandFor(qint32 degrees);
[[nodiscard]] LedCommand ledStateCommandFor(const LedStateBand &band);
