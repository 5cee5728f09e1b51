#pragma once

#include "device/Units.h"

#include <algorithm>

/// \file
/// The link between a card's power target and its temperature target: a straight line on each side of the
/// defaults. All arithmetic is in 32-bit floats, except the choice of the side.

/// The scale of a power policy in the arithmetic's own type.
constexpr float kThousandths = kThousandthsPerPercent;

/// A power policy, thousandths of a percent.
struct PowerLine
{
    float minPower = 0;
    float defaultPower = 0;
    float maxPower = 0;
};

/// A thermal policy, degrees Celsius.
struct TemperatureLine
{
    float minTemp = 0;
    float defaultTemp = 0;
    float maxTemp = 0;
};

/// The position of a value in a span. At the span's start it is 0, also for a span without length. Anywhere else a
/// span without length gives an infinity, which the bound of the other line limits if it has one.
[[nodiscard]] inline float shareOfSpan(float distance, float span)
{
    return distance == 0.0F ? 0.0F : distance / span;
}

/// Which side of the defaults a power target lies on.
[[nodiscard]] inline bool isAboveDefaultPower(float percent, const PowerLine &power)
{
    return percent * double(kThousandthsPerPercent) > static_cast<double>(power.defaultPower);
}

/// Degrees Celsius that go with a power target in percent.
[[nodiscard]] inline float temperatureForPower(float percent, const PowerLine &power, const TemperatureLine &line)
{
    const float target = percent * kThousandths;
    // The bound is the first argument of min and max, so that it also replaces NaN.
    if (isAboveDefaultPower(percent, power)) {
        const float share = shareOfSpan(target - power.defaultPower, power.maxPower - power.defaultPower);
        return std::min(line.maxTemp, line.defaultTemp + share * (line.maxTemp - line.defaultTemp));
    }
    const float share = shareOfSpan(power.defaultPower - target, power.defaultPower - power.minPower);
    return std::max(line.minTemp, line.defaultTemp - share * (line.defaultTemp - line.minTemp));
}

/// Percent that goes with a temperature target. The side of the line is chosen by the present power target, not by
/// the temperature.
[[nodiscard]] inline float powerForTemperature(float degrees, float currentPercent, const PowerLine &power,
                                               const TemperatureLine &line)
{
    if (isAboveDefaultPower(currentPercent, power)) {
        const float share = shareOfSpan(degrees - line.defaultTemp, line.maxTemp - line.defaultTemp);
        const float target = power.defaultPower + share * (power.maxPower - power.defaultPower);
        return std::min(power.maxPower / kThousandths, target / kThousandths);
    }
    const float share = shareOfSpan(line.defaultTemp - degrees, line.defaultTemp - line.minTemp);
    const float target = power.defaultPower - share * (power.defaultPower - power.minPower);
    return std::max(power.minPower / kThousandths, target / kThousandths);
}
