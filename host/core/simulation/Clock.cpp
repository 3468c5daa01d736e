#include "host/core/simulation/Clock.h"

namespace host {

Clock::~Clock() = default;

std::uint64_t Clock::raiseCount(const Interrupt &interrupt)
{
    const std::lock_guard lock(m_mutex);
    return interrupt.m_raised;
}

void Clock::raise(Interrupt &interrupt)
{
    const std::lock_guard lock(m_mutex);
    ++interrupt.m_raised;
    m_changed.notify_all();
}

} // namespace host
