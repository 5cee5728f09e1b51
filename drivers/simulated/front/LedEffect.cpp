#include "simulated/front/LedEffect.h"

#include <QtMath>

#include <cmath>

namespace cardfront
{
namespace
{

constexpr int kGradientStays = 6;           // red, yellow, green, cyan, blue, magenta
constexpr double kHuesAlongTheStrip = 0.45; // of the circle, so that the run of the colours shows

} // namespace

qint64 colourStayMs(const LedState &led)
{
    return static_cast<qint64>(qMax(led.interval, 1)) * kMsPerInterval;
}

LedLight ledLightAt(const LedState &led, qint64 sinceMs, double place)
{
    const double full = qBound(0.0, double(led.level) / kFullLevel, 1.0);
    const qint64 since = qMax<qint64>(sinceMs, 0);
    const qint64 stay = colourStayMs(led);
    const double phase = double(since % stay) / double(stay);

    if (led.effect == kEffectGradient) {
        const double turns = double(since % (stay * kGradientStays)) / double(stay * kGradientStays);
        const double hue = turns + (1.0 - qBound(0.0, place, 1.0)) * kHuesAlongTheStrip;
        return {QColor::fromHsvF(hue - std::floor(hue), 1.0, 1.0), full};
    }
    if (led.colours.isEmpty())
        return {};
    const QColor turn = led.colours.at(static_cast<int>(since / stay % led.colours.size()));
    switch (led.effect) {
    case kEffectSteady:
        return {led.colours.last(), full};
    case kEffectBreath:
        return {turn, full * (1.0 - std::cos(2.0 * M_PI * phase)) / 2.0};
    case kEffectInTurn:
        return {turn, full};
    default:
        return {};
    }
}

} // namespace cardfront
