#include "host/core/simulation/RealTimeClock.h"

#include <algorithm>

namespace host {

namespace {

using TickDuration = std::chrono::duration<Ticks, std::ratio<1, TicksPerSecond>>;

// Longer waits go in pieces of this length: a deadline at the end of time
// must not overflow the system's clock.
constexpr Ticks LongestPiece = 3600 * TicksPerSecond;

} // namespace

RealTimeClock::RealTimeClock()
    : m_start(std::chrono::steady_clock::now())
{
}

Ticks RealTimeClock::now()
{
    return std::chrono::duration_cast<TickDuration>(std::chrono::steady_clock::now() - m_start).count();
}

Clock::WaitEnd RealTimeClock::waitUntil(Ticks deadline, const Interrupt &interrupt, std::uint64_t seen)
{
    std::unique_lock lock(m_mutex);
    for (;;) {
        if (isRaised(interrupt, seen))
            return WaitEnd::Interrupted;
        const Ticks time = now();
        if (time >= deadline)
            return WaitEnd::DeadlineReached;
        const TickDuration wake(std::min(deadline, time + LongestPiece));
        m_changed.wait_until(lock, m_start + wake);
    }
}

} // namespace host
