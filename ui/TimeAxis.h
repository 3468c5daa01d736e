#pragma once

#include "measurement/Saturate.h"

#include <QTime>

#include <cmath>

/// Arithmetic of the time axis, which shows seconds from an origin, itself a
/// time of day in microseconds. Zooming out can drive an axis anywhere, so that
/// whole microseconds stop at the ends of their range.
namespace timeaxis {

constexpr double defaultLower = -20.0; ///< seconds: the last 20 of them
constexpr double defaultUpper = 0.0;

/// Microseconds since midnight, 0 for an invalid time.
inline qint64 microsecondsOfDay(const QTime &time)
{
    return time.isValid() ? qint64(time.msecsSinceStartOfDay()) * 1000 : 0;
}

/// The last microsecond not after `seconds` from the origin.
inline qint64 floorMicroseconds(qint64 origin, double seconds)
{
    return measurement::addSaturated(origin, measurement::truncateSaturated(std::floor(seconds * 1000000.0)));
}

/// The first microsecond not before `seconds` from the origin.
inline qint64 ceilMicroseconds(qint64 origin, double seconds)
{
    return measurement::addSaturated(origin, measurement::truncateSaturated(std::ceil(seconds * 1000000.0)));
}

/// Milliseconds that one pixel column of a plot stands for; a plot that has no
/// width yet counts as one column wide.
inline double millisecondsPerPixel(double lower, double upper, int plotWidth)
{
    return (upper - lower) * 1000.0 / (plotWidth > 0 ? plotWidth : 1);
}

/// Whether a view is narrower than the narrowest allowed, a whole second.
inline bool isTooNarrow(double lower, double upper)
{
    return measurement::truncateSaturated(lower - upper) == 0;
}

} // namespace timeaxis
