#pragma once

#include <algorithm>
#include <chrono>
#include <vector>

namespace scale {

using Time = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

inline double milliseconds(Time::duration time)
{
    return Milliseconds(time).count();
}

/// 0 for none.
inline double median(std::vector<double> values)
{
    if (values.empty())
        return 0.0;
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// 0 for none.
inline double largest(const std::vector<double> &values)
{
    return values.empty() ? 0.0 : *std::max_element(values.begin(), values.end());
}

} // namespace scale
