#pragma once

#include <cmath>
#include <limits>

/// Cuts towards zero, as a cast does, without its undefined results: what no integer can hold becomes the
/// nearest one that can be held, and what is no number becomes 0.
inline int cutToInt(double value)
{
    if (std::isnan(value))
        return 0;
    if (value >= static_cast<double>(std::numeric_limits<int>::max()))
        return std::numeric_limits<int>::max();
    if (value <= static_cast<double>(std::numeric_limits<int>::min()))
        return std::numeric_limits<int>::min();
    return static_cast<int>(value);
}
