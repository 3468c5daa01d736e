#include "bench/CaptureHost.h"

#include <algorithm>
#include <cstring>

#if defined(__x86_64__)
#include <emmintrin.h>
#endif

namespace bench {

namespace {

/// Far more than a second-level cache, where lines cannot be flushed one by one.
[[maybe_unused]] constexpr std::size_t ballastBytes = std::size_t(64) << 20;

} // namespace

CaptureHost &CaptureHost::instance()
{
    static CaptureHost host;
    return host;
}

void CaptureHost::setFrame(std::uint32_t width, std::uint32_t height, std::size_t firstByte,
                           std::size_t stride, const std::vector<unsigned long long> &words)
{
    m_width = width;
    m_height = height;
    m_frame.assign(std::size_t(width) * height * 2, '\1');
    m_firstByte = firstByte;
    m_stride = stride;
    m_count = words.size();
    for (std::size_t i = 0; i < m_count; ++i)
        std::memcpy(m_frame.data() + firstByte + i * stride, &words[i], sizeof words[i]);
}

void CaptureHost::deliver(int frames, std::function<void()> last)
{
    m_left = frames;
    m_last = std::move(last);
    m_running = false;
    m_outside.clear();
    m_outside.reserve(static_cast<std::size_t>(frames));
}

double CaptureHost::secondsPerFrame()
{
    endFrame();
    const auto middle = m_outside.begin() + static_cast<std::ptrdiff_t>(m_outside.size() / 2);
    std::nth_element(m_outside.begin(), middle, m_outside.end());
    return std::chrono::duration<double>(*middle).count();
}

void CaptureHost::endFrame()
{
    if (m_running)
        m_outside.push_back(Clock::now() - m_handedOut);
    m_running = false;
}

bool CaptureHost::capture(ZU_IMG &image)
{
    endFrame();
    if (m_left == 0)
        return false;
    m_running = true;
    if (--m_left == 0)
        m_last();
    makeCold();
    image.data = m_frame.data();
    image.filledSize = static_cast<std::uint32_t>(m_frame.size());
    image.width = m_width;
    image.height = m_height;
    image.frameNumber += 1;
    m_handedOut = Clock::now();
    return true;
}

void CaptureHost::makeCold() const
{
#if defined(__x86_64__)
    for (std::size_t i = 0; i < m_count; ++i)
        _mm_clflush(m_frame.data() + m_firstByte + i * m_stride);
    _mm_mfence();
#else
    static std::vector<char> ballast(ballastBytes);
    for (std::size_t i = 0; i < ballast.size(); i += 64)
        ++ballast[i];
#endif
}

} // namespace bench

bool zuApi_GetImage(void *handle, unsigned int, ZU_IMG *img, int *, bool)
{
    return static_cast<bench::CaptureHost *>(handle)->capture(*img);
}

bool zuApi_GetParamInt(void *, const char *, int &, int *)
{
    return false;
}

bool zuApi_GetParamInt64(void *, const char *, unsigned long long &, int *)
{
    return false;
}

bool zuApi_SetParamInt(void *, const char *, int, int *)
{
    return false;
}

bool zuApi_StartAcquisition(void *)
{
    return false;
}

bool zuApi_StopAcquisition(void *)
{
    return false;
}
