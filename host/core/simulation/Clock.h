#pragma once

#include "host/core/simulation/Ticks.h"
#include "zuCore/ZuCoreGlobal.h"

#include <condition_variable>
#include <cstdint>
#include <mutex>

namespace host {

/// The time a simulated camera lives in. Any thread may call any function; a
/// caller may hold its own mutex during all of them except waitUntil().
class ZUCORE_EXPORT Clock
{
public:
    enum class WaitEnd {
        DeadlineReached,
        Interrupted, ///< somebody raised the waiter's interrupt
        Released,    ///< the clock does not go on to the deadline
    };

    /// Lets one thread end the waits of others. A waiter reads raiseCount()
    /// before it gives up its own mutex, so that a raise between that and the
    /// wait is not lost. Guarded by the mutex of the clock it is used with.
    class Interrupt
    {
        friend class Clock;
        std::uint64_t m_raised = 0;
    };

    Clock() = default;
    virtual ~Clock();
    Clock(const Clock &) = delete;
    Clock &operator=(const Clock &) = delete;

    /// Ticks since the clock's own start; never steps back.
    virtual Ticks now() = 0;

    /// Waits until now() is at least `deadline`, or `interrupt` was raised more
    /// than `seen` times.
    virtual WaitEnd waitUntil(Ticks deadline, const Interrupt &interrupt, std::uint64_t seen) = 0;

    std::uint64_t raiseCount(const Interrupt &interrupt);
    void raise(Interrupt &interrupt);

protected:
    /// For implementations; called with `m_mutex` held.
    static bool isRaised(const Interrupt &interrupt, std::uint64_t seen)
    {
        return interrupt.m_raised != seen;
    }

    std::mutex m_mutex;
    std::condition_variable m_changed; ///< an interrupt was raised or the time went on
};

} // namespace host
