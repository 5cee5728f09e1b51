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

qint64 colourStayMs(const LedFrame &frame)
{
    return static_cast<qint64>(qMax(frame.interval, 1)) * kMsPerInterval;
}

LedLight ledLightAt(const LedFrame &frame, qint64 sinceMs, double place)
{
    const double full = qBound(0.0, double(frame.level) / kFullLevel, 1.0);
    const qint64 since = qMax<qint64>(sinceMs, 0);
    const qint64 stay = colourStayMs(frame);
    const double phase = double(since % stay) / double(stay);

    if (frame.effect == kEffectGradient) {
        const double turns = double(since % (stay * kGradientStays)) / double(stay * kGradientStays);
        const double hue = turns + (1.0 - qBound(0.0, place, 1.0)) * kHuesAlongTheStrip;
        return {QColor::fromHsvF(hue - std::floor(hue), 1.0, 1.0), full};
    }
    if (frame.colours.isEmpty())
        return {};
    const QColor turn = frame.colours.at(static_cast<int>(since / stay % frame.colours.size()));
    switch (frame.effect) {
    case kEffectSteady:
        return {frame.colours.last(), full};
    case kEffectBreath:
        return {turn, full * (1.0 - std::cos(2.0 * M_PI * phase)) / 2.0};
    case kEffectInTurn:
        return {turn, full};
    default:
        return {};
    }
}

} // namespace cardfront
