#pragma once

#include "host/core/simulation/Scenario.h"

#include <limits>

namespace host {

/// A change that never comes.
inline constexpr Ticks Never = std::numeric_limits<Ticks>::max();

/// Whether a stall is active at a time, and when that changes next.
struct StallState
{
    bool active;
    Ticks until;
};

inline StallState stallAt(const StallSettings &stall, Ticks t)
{
    if (t < stall.start)
        return {false, stall.start};
    const Ticks sinceStart = t - stall.start;
    if (stall.period == 0) {
        if (sinceStart < stall.length)
            return {true, stall.start + stall.length};
        return {false, Never};
    }
    const Ticks phase = sinceStart % stall.period;
    const Ticks periodBegin = t - phase;
    if (phase < stall.length)
        return {true, periodBegin + stall.length};
    return {false, periodBegin + stall.period};
}

} // namespace host
