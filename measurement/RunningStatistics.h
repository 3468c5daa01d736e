#pragma once

#include <limits>

namespace measurement {

/// Mean, maximum and minimum of a stream of values, kept without the values.
struct RunningStatistics
{
    double mean = 0.0;
    double maximum = std::numeric_limits<double>::min(); ///< no value seen: the smallest positive double
    double minimum = std::numeric_limits<double>::max(); ///< no value seen: the largest double
    unsigned long long count = 0;

    void add(double value)
    {
        ++count;
        const double share = 1.0 / static_cast<double>(count);
        mean = share * value + (1.0 - share) * mean;
        if (value > maximum)
            maximum = value;
        if (value < minimum)
            minimum = value;
    }
};

} // namespace measurement
