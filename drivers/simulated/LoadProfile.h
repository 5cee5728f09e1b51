#pragma once

#include <QtGlobal>

#include <vector>

namespace simulated
{

/// One part of a card's load over time; a card's load is the sum of its parts, cut to 0..100 percent.
struct LoadPart
{
    enum Kind
    {
        Constant, ///< `percent` all the time
        Steps,    ///< `steps` one after the other, then from the start again
        Sine,     ///< around `percent`, `amplitudePercent` up and down, once in `periodMs`
        Noise,    ///< around `percent`, up to `amplitudePercent` up and down, a new aim every `periodMs`
    };
    struct Step
    {
        qint64 durationMs = 1000; ///< at least 1
        double percent = 0;
    };

    Kind kind = Constant;
    double percent = 0;
    double amplitudePercent = 0;
    qint64 periodMs = 10000; ///< at least 1
    quint32 seed = 1;        ///< the same seed gives the same noise on every platform
    std::vector<Step> steps;
};

using LoadProfile = std::vector<LoadPart>;

/// The load at a moment of simulated time, 0 to 100 percent. A pure function of its arguments.
double loadPercentAt(const LoadProfile &profile, double simulatedMs);

} // namespace simulated
