#include "host/app/FrameRate.h"

#include <algorithm>

namespace host {

namespace {

constexpr std::chrono::seconds window{1};

double seconds(std::chrono::steady_clock::duration duration)
{
    return std::chrono::duration<double>(duration).count();
}

} // namespace

void FrameRate::add(Time time)
{
    m_times.push_back(time);
    while (m_times.size() > 2 && m_times.front() < time - window)
        m_times.pop_front();
}

double FrameRate::value(Time now) const
{
    if (m_times.size() < 2)
        return 0;
    const double span = seconds(m_times.back() - m_times.front());
    if (span <= 0)
        return 0;
    const double rate = static_cast<double>(m_times.size() - 1) / span;
    const double sinceLast = seconds(now - m_times.back());
    return sinceLast > 0 ? std::min(rate, 1 / sinceLast) : rate;
}

void FrameRate::clear()
{
    m_times.clear();
}

} // namespace host
