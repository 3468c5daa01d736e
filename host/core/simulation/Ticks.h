#pragma once

#include <chrono>
#include <cstdint>

namespace host {

/// Time in units of 4 ns, the resolution of the camera's stamps.
using Ticks = std::int64_t;

inline constexpr Ticks TicksPerMicrosecond = 250;
inline constexpr Ticks TicksPerMillisecond = 250'000;
inline constexpr Ticks TicksPerSecond = 250'000'000;

constexpr Ticks ticksFromMilliseconds(std::chrono::milliseconds time)
{
    return time.count() * TicksPerMillisecond;
}

} // namespace host
