#include "monitor/gauge/SharedGaugeAnimation.h"

#include <mutex>

namespace
{

std::mutex animationMutex;
BreathPulse sharedPulse; // guarded by animationMutex
WaveMotion sharedWave;   // guarded by animationMutex

} // namespace

BreathPulse SharedGaugeAnimation::stepPulse()
{
    const std::lock_guard<std::mutex> lock(animationMutex);
    sharedPulse = stepped(sharedPulse);
    return sharedPulse;
}

WaveMotion SharedGaugeAnimation::stepWave(const WaveShape &shape)
{
    const std::lock_guard<std::mutex> lock(animationMutex);
    sharedWave = stepped(sharedWave, shape);
    return sharedWave;
}

BreathPulse SharedGaugeAnimation::pulse()
{
    const std::lock_guard<std::mutex> lock(animationMutex);
    return sharedPulse;
}

WaveMotion SharedGaugeAnimation::wave()
{
    const std::lock_guard<std::mutex> lock(animationMutex);
    return sharedWave;
}
