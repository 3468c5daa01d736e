#pragma once

#include "host/core/simulation/Clock.h"

#include <chrono>

namespace host {

/// The computer's monotonic clock, counted from the object's construction.
class ZUCORE_EXPORT RealTimeClock : public Clock
{
public:
    RealTimeClock();

    Ticks now() override;
    WaitEnd waitUntil(Ticks deadline, const Interrupt &interrupt, std::uint64_t seen) override;

private:
    std::chrono::steady_clock::time_point m_start;
};

} // namespace host
