#pragma once

#include "monitor/gauge/BreathAndWave.h"

/// The one animation that all renderers of the program share: with two of them running it is twice as fast. Any
/// thread; each call is one complete step or one complete read, and the calls of different threads have no fixed
/// order.
namespace SharedGaugeAnimation
{

BreathPulse stepPulse();                     ///< makes one step of the pulse and returns its new state
WaveMotion stepWave(const WaveShape &shape); ///< likewise the waves

[[nodiscard]] BreathPulse pulse();
[[nodiscard]] WaveMotion wave();

} // namespace SharedGaugeAnimation
