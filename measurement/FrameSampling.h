#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

/// Which words of a transport-data frame become samples.
///
/// The frame is an array of 64-bit words, four pixels of 16 bits each. The first
/// words of a large frame, still under the influence of the frame's start, are
/// left out.
namespace measurement {

/// One 64-bit word of transport data: a time stamp counting 4-ns ticks.
using Stamp = unsigned long long;

constexpr std::size_t bytesPerWord = sizeof(Stamp);
/// Words left out at the start of a large frame.
constexpr std::uint32_t skippedWords = 8000;
/// From this many words on a frame is large.
constexpr std::uint32_t largeFrameWords = 16000;

/// Where the samples of one frame lie.
struct SamplePlan
{
    std::size_t firstByte = 0; ///< offset of the first sample
    std::size_t stride = 0;    ///< bytes from one sample to the next; 0 when there is none
    std::size_t count = 0;     ///< samples; each lies wholly inside the frame
};

/// Bytes of a frame of two bytes a pixel, modulo 2^32, the width of the image
/// record's fields.
constexpr std::uint32_t frameBytes(std::uint32_t width, std::uint32_t height)
{
    return width * height * 2U;
}

/// Whole 64-bit words of such a frame; at most 2^29 - 1.
constexpr std::uint32_t frameWords(std::uint32_t width, std::uint32_t height)
{
    return frameBytes(width, height) / static_cast<std::uint32_t>(bytesPerWord);
}

/// \param sampleInterval bytes between two samples; below one word there are
/// no samples
SamplePlan planSamples(std::uint32_t width, std::uint32_t height, std::uint32_t sampleInterval);

/// Copies the planned words; the interval need not be a multiple of a word.
/// \param frame holds at least frameBytes() of the planned frame
/// \param samples plan.count entries
void gatherSamples(const std::byte *frame, const SamplePlan &plan, std::span<Stamp> samples);

/// Last stamp minus first in 4-ns ticks, negative when the counter was set
/// back; 0 for fewer than two stamps.
std::int64_t stampSpan(std::span<const Stamp> samples);

} // namespace measurement
