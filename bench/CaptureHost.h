#pragma once

#include "zuCore/ZuApi.h"

#include <chrono>
#include <functional>
#include <vector>

namespace bench {

/// The camera functions as a benchmark wants them: a capture hands out the same
/// frame at once, with the words to be sampled out of every cache, and the time
/// it takes itself is left out of the measurement. One thread.
class CaptureHost
{
public:
    static CaptureHost &instance();

    /// \param firstByte, stride, count the words to be sampled, in bytes
    void setFrame(std::uint32_t width, std::uint32_t height, std::size_t firstByte, std::size_t stride,
                  std::size_t count);

    /// Restarts the clock. `last` is called with the last of that many frames.
    void deliver(int frames, std::function<void()> last);

    /// From each frame's handing out to the next capture; the frame under way
    /// when nothing more is captured counts up to now.
    double secondsOutside() const;

    bool capture(ZU_IMG &image);

private:
    using Clock = std::chrono::steady_clock;

    void makeCold() const;

    std::vector<char> m_frame;
    std::uint32_t m_width = 0;
    std::uint32_t m_height = 0;
    std::size_t m_firstByte = 0;
    std::size_t m_stride = 0;
    std::size_t m_count = 0;
    int m_left = 0;
    std::function<void()> m_last;
    bool m_running = false;
    Clock::time_point m_handedOut;
    Clock::duration m_outside = Clock::duration::zero();
};

} // namespace bench
