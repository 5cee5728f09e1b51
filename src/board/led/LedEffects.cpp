#include "board/led/LedEffects.h"

#include "device/LedFrame.h"

#include <algorithm>
#include <iterator>

namespace
{

constexpr quint8 kLit = 0x32;        // level of every effect that lights up
constexpr quint8 kPagesInterval = 0; // no interval of its own: what the page shows

enum class Colors
{
    None,
    Last, // of the selection
    All,  // of the selection, oldest first
};

struct EffectRow
{
    LedMode mode;
    quint8 effect;
    quint8 level;
    quint8 interval;
    Colors colors;
};

// clang-format off
constexpr EffectRow kEffects[] = {
    // mode                   effect level interval        colours
    { LedMode::SingleBreath,   1,    kLit, kPagesInterval, Colors::Last },
    { LedMode::SingleBright,   0,    kLit, 2,              Colors::Last },
    { LedMode::MultipleBreath, 1,    kLit, kPagesInterval, Colors::All  },
    { LedMode::MultipleBright, 2,    kLit, kPagesInterval, Colors::All  },
    { LedMode::StateDisplay,   1,    kLit, 4,              Colors::None }, // colour and interval from the temperature
    { LedMode::Gradient,       4,    kLit, 2,              Colors::None },
    { LedMode::Sleep,          0,    0,    0x0A,           Colors::None },
};
// clang-format on
static_assert(std::size(kEffects) == kLedModeCount, "one row per mode");

constexpr bool isInModeOrder()
{
    for (std::size_t i = 0; i < std::size(kEffects); ++i) {
        if (static_cast<std::size_t>(kEffects[i].mode) != i)
            return false;
    }
    return true;
}
static_assert(isInModeOrder(), "row order is mode order");

struct BandRow
{
    qint32 below; // degrees Celsius
    QRgb color;
    quint8 interval;
};

// Both red bands have one colour, and the worker compares colours: a rise that stops in the first of them keeps its
// slower interval at any temperature above.
// clang-format off
constexpr BandRow kBands[] = {
    // below color      interval
    { 50,    0xFF00FF00, 4 },
    { 64,    0xFFFFFF00, 4 },
    { 68,    0xFFFF0000, 4 },
};
// clang-format on
constexpr BandRow kHottestBand = {0, 0xFFFF0000, 2};

std::vector<quint8> bytesOf(const QList<QColor> &colors)
{
    std::vector<quint8> bytes;
    bytes.reserve(static_cast<std::size_t>(colors.size()) * kLedBytesPerColour);
    for (const QColor &color : colors) {
        const QRgb rgb = color.rgb();
        bytes.push_back(static_cast<quint8>(qRed(rgb)));
        bytes.push_back(static_cast<quint8>(qGreen(rgb)));
        bytes.push_back(static_cast<quint8>(qBlue(rgb)));
    }
    return bytes;
}

QList<QColor> colorsOf(Colors which, const QList<QColor> &selected)
{
    if (which == Colors::None)
        return {};
    if (selected.isEmpty())
        return {QColor(255, 0, 0)};
    return which == Colors::Last ? QList<QColor>{selected.last()} : selected.mid(0, int(kLedMaxColours));
}

} // namespace

LedMode ledModeOf(qint32 number)
{
    return number >= 0 && number < kLedModeCount ? static_cast<LedMode>(number) : LedMode::Sleep;
}

LedCommand ledCommandFor(LedMode mode, qint32 interval, const QList<QColor> &selected)
{
    if (mode == LedMode::StateDisplay)
        return ledStateCommandFor(ledStateBandFor(0));
    const EffectRow &row = kEffects[static_cast<std::size_t>(mode)];
    LedCommand command;
    command.colors = bytesOf(colorsOf(row.colors, selected));
    command.effect = row.effect;
    command.level = row.level;
    command.interval = row.interval == kPagesInterval ? static_cast<quint8>(interval) : row.interval;
    return command;
}

LedStateBand ledStateBandFor(qint32 degrees)
{
    const auto *const band = std::find_if(std::begin(kBands), std::end(kBands),
                                          [degrees](const BandRow &row) { return degrees < row.below; });
    const BandRow &row = band == std::end(kBands) ? kHottestBand : *band;
    return {QColor(row.color), row.interval};
}

LedCommand ledStateCommandFor(const LedStateBand &band)
{
    const EffectRow &row = kEffects[static_cast<std::size_t>(LedMode::StateDisplay)];
    return {bytesOf({band.color}), row.effect, row.level, band.interval};
}
