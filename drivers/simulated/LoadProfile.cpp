#include "simulated/LoadProfile.h"

#include <algorithm>
#include <cmath>

namespace simulated
{
namespace
{

constexpr double kTwoPi = 6.283185307179586;

double stepsAt(const std::vector<LoadPart::Step> &steps, double simulatedMs)
{
    double cycleMs = 0;
    for (const LoadPart::Step &step : steps)
        cycleMs += static_cast<double>(step.durationMs);
    if (cycleMs <= 0)
        return 0;
    double leftMs = std::fmod(simulatedMs, cycleMs);
    for (const LoadPart::Step &step : steps) {
        leftMs -= static_cast<double>(step.durationMs);
        if (leftMs < 0)
            return step.percent;
    }
    return steps.back().percent;
}

/// -1 to 1 for a slot of time. The standard library's distributions differ between platforms, so the
/// bits are mixed here (the finaliser of SplitMix64).
double noiseOfSlot(quint32 seed, quint64 slot)
{
    quint64 bits = (quint64(seed) << 32) + slot * 0x9E3779B97F4A7C15u + 0x9E3779B97F4A7C15u;
    bits = (bits ^ (bits >> 30)) * 0xBF58476D1CE4E5B9u;
    bits = (bits ^ (bits >> 27)) * 0x94D049BB133111EBu;
    bits ^= bits >> 31;
    return static_cast<double>(bits >> 11) / 4503599627370496.0 - 1.0; // 2^52: 53 bits become 0 to 2
}

double noiseAt(const LoadPart &part, double simulatedMs)
{
    const double slot = simulatedMs / static_cast<double>(std::max<qint64>(part.periodMs, 1));
    const double whole = std::floor(slot);
    const double from = noiseOfSlot(part.seed, static_cast<quint64>(whole));
    const double to = noiseOfSlot(part.seed, static_cast<quint64>(whole) + 1);
    return from + (to - from) * (slot - whole);
}

double partAt(const LoadPart &part, double simulatedMs)
{
    switch (part.kind) {
    case LoadPart::Constant:
        return part.percent;
    case LoadPart::Steps:
        return stepsAt(part.steps, simulatedMs);
    case LoadPart::Sine: {
        const double turns = simulatedMs / static_cast<double>(std::max<qint64>(part.periodMs, 1));
        return part.percent + part.amplitudePercent * std::sin(kTwoPi * turns);
    }
    case LoadPart::Noise:
        return part.percent + part.amplitudePercent * noiseAt(part, simulatedMs);
    }
    return 0;
}

} // namespace

double loadPercentAt(const LoadProfile &profile, double simulatedMs)
{
    const double fromStart = std::max(simulatedMs, 0.0);
    double sum = 0;
    for (const LoadPart &part : profile)
        sum += partAt(part, fromStart);
    return std::clamp(sum, 0.0, 100.0);
}

} // namespace simulated
