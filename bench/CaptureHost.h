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

    /// \param firstByte, stride where the words to be sampled lie, in bytes
    void setFrame(std::uint32_t width, std::uint32_t height, std::size_t firstByte, std::size_t stride,
                  const std::vector<unsigned long long> &words);

    /// Restarts the clock. `last` is called with the last of that many frames.
    void deliver(int frames, std::function<void()> last);

    /// From a frame's handing out to the next capture, or up to now when nothing
    /// more was captured: the median of the frames delivered, since some meet
    /// another program on their processor.
    double secondsPerFrame();

    bool capture(ZU_IMG &image);

private:
    using Clock = std::chrono::steady_clock;

    void makeCold() const;
    void endFrame();

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
    std::vector<Clock::duration> m_outside;
};

} // namespace bench
