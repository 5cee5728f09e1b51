#pragma once

#include <QtGlobal>

#include <cmath>
#include <limits>

/// \file
/// Conversions between the driver's words and the records' signed integers that are defined for every input.

/// Drops the fraction. Values beyond 32 bits become the nearest 32-bit integer, NaN becomes 0.
[[nodiscard]] inline qint32 cutToInt(double value)
{
    if (std::isnan(value))
        return 0;
    if (value >= double(std::numeric_limits<qint32>::max()))
        return std::numeric_limits<qint32>::max();
    if (value <= double(std::numeric_limits<qint32>::min()))
        return std::numeric_limits<qint32>::min();
    return static_cast<qint32>(value);
}

/// The value, not above the maximum and not below the minimum. A minimum above the maximum wins, as in a number box.
[[nodiscard]] constexpr qint32 withinRange(qint32 value, qint32 minimum, qint32 maximum)
{
    const qint32 notAbove = value > maximum ? maximum : value;
    return notAbove < minimum ? minimum : notAbove;
}

/// Sum, difference and product of 32-bit integers that wrap instead of overflowing: the driver's numbers have no
/// bounds.
[[nodiscard]] constexpr qint32 wrappingSum(qint32 left, qint32 right)
{
    return static_cast<qint32>(static_cast<quint32>(left) + static_cast<quint32>(right));
}
[[nodiscard]] constexpr qint32 wrappingDifference(qint32 left, qint32 right)
{
    return static_cast<qint32>(static_cast<quint32>(left) - static_cast<quint32>(right));
}
[[nodiscard]] constexpr qint32 wrappingProduct(qint32 left, qint32 right)
{
    return static_cast<qint32>(static_cast<quint32>(left) * static_cast<quint32>(right));
}
