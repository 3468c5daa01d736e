#pragma once

#include <chrono>
#include <deque>

namespace host {

/// Frames a second, over about the last second.
class FrameRate
{
public:
    using Time = std::chrono::steady_clock::time_point;

    /// A frame came; times never step back.
    void add(Time time);

    /// 0 before the second frame. Falls once the next frame is overdue.
    double value(Time now) const;

    void clear();

private:
    std::deque<Time> m_times; ///< of the last second, but at least two
};

} // namespace host
