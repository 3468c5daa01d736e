#pragma once

#include <QtGlobal>

#include <limits>

/// Integer arithmetic that stops at the ends of the range instead of wrapping,
/// for values that settings and time axes can drive anywhere.
namespace measurement {

/// `value` without its fraction, the nearest end of the range where that does
/// not fit, 0 for NaN.
inline qint64 truncateSaturated(double value)
{
    // 2^63 is a double, the largest qint64 is not.
    constexpr double end = 9223372036854775808.0;
    if (value >= end)
        return std::numeric_limits<qint64>::max();
    if (value < -end)
        return std::numeric_limits<qint64>::min();
    return value == value ? static_cast<qint64>(value) : 0;
}

inline qint64 addSaturated(qint64 a, qint64 b)
{
    qint64 sum = 0;
    if (__builtin_add_overflow(a, b, &sum))
        return b < 0 ? std::numeric_limits<qint64>::min() : std::numeric_limits<qint64>::max();
    return sum;
}

inline qint64 subtractSaturated(qint64 a, qint64 b)
{
    qint64 difference = 0;
    if (__builtin_sub_overflow(a, b, &difference))
        return b < 0 ? std::numeric_limits<qint64>::max() : std::numeric_limits<qint64>::min();
    return difference;
}

inline qint64 multiplySaturated(qint64 a, qint64 b)
{
    qint64 product = 0;
    if (__builtin_mul_overflow(a, b, &product))
        return (a < 0) == (b < 0) ? std::numeric_limits<qint64>::max() : std::numeric_limits<qint64>::min();
    return product;
}

} // namespace measurement
