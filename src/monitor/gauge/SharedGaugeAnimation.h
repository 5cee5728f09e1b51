#pragma once

#include "monitor/gauge/BreathAndWave.h"

/// The one animation that all renderers of the program move: with two of them running it goes at twice the
/// speed. Any thread; each call is one whole step or one whole look, nothing more is ordered.
namespace SharedGaugeAnimation
{

BreathPulse stepPulse();                     ///< steps the pulse and answers where it is now
WaveMotion stepWave(const WaveShape &shape); ///< likewise the waves

[[nodiscard]] BreathPulse pulse();
[[nodiscard]] WaveMotion wave();

} // namespace SharedGaugeAnimation
