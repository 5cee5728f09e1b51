#pragma once

#include "simulated/front/CardFront.h"

#include <QtGlobal>

/// The LED controller's effects as functions of time. What the interval means is the controller's own affair; here
/// an interval of 2, the shortest that a user can choose, is one second.
namespace cardfront
{

// the codes of the frame's effect
constexpr int kEffectSteady = 0;
constexpr int kEffectBreath = 1;
constexpr int kEffectInTurn = 2;
constexpr int kEffectGradient = 4;

constexpr int kMsPerInterval = 500; ///< a colour stays, and a breath takes, interval times this
constexpr int kFullLevel = 50;      ///< the level of every lit frame

/// The light of one LED: its colour, and how bright it is from 0 (off) to 1.
struct LedLight
{
    QColor colour = Qt::black;
    double brightness = 0;
};

/// How long a colour stays, in ms; an interval of 0 counts as 1.
[[nodiscard]] qint64 colourStayMs(const LedState &led);

/// The light `sinceMs` after the frame came, at `place` of the strip, 0 left to 1 right. Only the gradient differs
/// from place to place. Dark without level or colours, and for an effect that the controller does not know.
///   steady    the last colour
///   breath    each colour swells and fades once, then the next one
///   in turn   each colour stays for its time, then the next one
///   gradient  once around the hues in six stays, running along the strip
[[nodiscard]] LedLight ledLightAt(const LedState &led, qint64 sinceMs, double place);

} // namespace cardfront
