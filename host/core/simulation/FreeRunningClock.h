#pragma once

#include "host/core/simulation/Clock.h"

#include <chrono>
#include <limits>
#include <list>

namespace host {

/// A virtual time for tests: it stands still except that a wait takes it to
/// the waiter's deadline at once, up to a limit that the test sets.
///
/// Meant for one camera each. Cameras that share one clock see the earliest
/// deadline first among the threads that wait at that moment; the time does not
/// stand still for a thread that is busy.
class ZUCORE_EXPORT FreeRunningClock : public Clock
{
public:
    static constexpr Ticks NoLimit = std::numeric_limits<Ticks>::max();

    /// \param limit how far waits may take the time; 0 for a test that steers
    /// another thread with runUntil()
    explicit FreeRunningClock(Ticks limit = NoLimit);

    Ticks now() override;
    WaitEnd waitUntil(Ticks deadline, const Interrupt &interrupt, std::uint64_t seen) override;

    /// Sets the limit to `time`, lets the other threads run until `waiters` of
    /// them wait and all that wait want to go beyond it, then sets the time to it.
    /// \param patience computer time after which it gives up
    /// \return false when too few threads came to wait in that time
    bool runUntil(Ticks time, std::size_t waiters = 1,
                  std::chrono::milliseconds patience = std::chrono::seconds(60));

    /// Ends waits for deadlines beyond the limit, the present and all later
    /// ones until the next runUntil(), so that a thread that captures can be
    /// stopped. The limit stays.
    void release();

    /// Time passes although nobody waits: a reader that is slow. Raises the
    /// limit where it has to.
    void advance(Ticks duration);

private:
    struct Waiter
    {
        Ticks deadline;
        const Interrupt *interrupt;
        std::uint64_t seen;
    };

    /// Both leave out waiters whose interrupt was raised: they wait no more,
    /// although they may not have woken yet.
    bool isEarliest(Ticks deadline) const;
    bool areBlocked(std::size_t waiters) const;

    /// All guarded by `m_mutex`.
    Ticks m_now = 0;
    Ticks m_limit;
    bool m_released = false;
    std::list<Waiter> m_waiters;
};

} // namespace host
