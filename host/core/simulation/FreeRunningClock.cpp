#include "host/core/simulation/FreeRunningClock.h"

#include <algorithm>

namespace host {

FreeRunningClock::FreeRunningClock(Ticks limit)
    : m_limit(limit)
{
}

Ticks FreeRunningClock::now()
{
    const std::lock_guard lock(m_mutex);
    return m_now;
}

Clock::WaitEnd FreeRunningClock::waitUntil(Ticks deadline, const Interrupt &interrupt, std::uint64_t seen)
{
    std::unique_lock lock(m_mutex);
    const auto self = m_waiters.insert(m_waiters.end(), {deadline, &interrupt, seen});
    m_changed.notify_all(); // runUntil() looks at the waiters
    auto end = WaitEnd::DeadlineReached;
    for (;;) {
        if (isRaised(interrupt, seen)) {
            end = WaitEnd::Interrupted;
            break;
        }
        if (deadline <= m_now)
            break;
        if (deadline <= m_limit && isEarliest(deadline)) {
            m_now = deadline;
            break;
        }
        if (deadline > m_limit && m_released) {
            end = WaitEnd::Released;
            break;
        }
        m_changed.wait(lock);
    }
    m_waiters.erase(self);
    m_changed.notify_all(); // another waiter may be the earliest now
    return end;
}

bool FreeRunningClock::runUntil(Ticks time, std::size_t waiters, std::chrono::milliseconds patience)
{
    std::unique_lock lock(m_mutex);
    m_limit = std::max(time, m_now);
    m_released = false;
    m_changed.notify_all();
    if (!m_changed.wait_for(lock, patience, [&] { return areBlocked(waiters); }))
        return false;
    m_now = std::max(m_now, time);
    return true;
}

void FreeRunningClock::release()
{
    const std::lock_guard lock(m_mutex);
    m_released = true;
    m_changed.notify_all();
}

void FreeRunningClock::advance(Ticks duration)
{
    const std::lock_guard lock(m_mutex);
    m_now += duration;
    m_limit = std::max(m_limit, m_now);
    m_changed.notify_all();
}

bool FreeRunningClock::isEarliest(Ticks deadline) const
{
    return std::ranges::all_of(m_waiters, [deadline](const Waiter &other) {
        return deadline <= other.deadline || isRaised(*other.interrupt, other.seen);
    });
}

bool FreeRunningClock::areBlocked(std::size_t waiters) const
{
    std::size_t waiting = 0;
    for (const Waiter &waiter : m_waiters) {
        if (isRaised(*waiter.interrupt, waiter.seen))
            continue;
        if (waiter.deadline <= m_limit)
            return false;
        ++waiting;
    }
    return waiting >= waiters;
}

} // namespace host
