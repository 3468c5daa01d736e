#include "measurement/FrameSampling.h"

#include <algorithm>
#include <cstring>

namespace measurement {

namespace {

/// A frame is far larger than any cache, and each sample lies in a line of its
/// own. Processors ask for some lines at a time, and for hardly any while they
/// work on something else; words asked for this far ahead do better.
constexpr std::size_t wordsAhead = 48;
constexpr std::size_t wordsAtOnce = 8;
/// The lines of a round period fall into few places of the first level.
constexpr int secondLevelCache = 2;

} // namespace

SamplePlan planSamples(std::uint32_t width, std::uint32_t height, std::uint32_t sampleInterval)
{
    SamplePlan plan;
    std::uint32_t words = frameWords(width, height);
    std::size_t bytes = frameBytes(width, height);
    if (words >= largeFrameWords) {
        plan.firstByte = skippedWords * bytesPerWord;
        words -= skippedWords;
        bytes -= plan.firstByte;
    }

    const std::uint32_t wordsPerStep = sampleInterval / static_cast<std::uint32_t>(bytesPerWord);
    if (wordsPerStep == 0 || bytes < bytesPerWord)
        return plan;
    plan.stride = sampleInterval;
    // The count goes by whole words, the stride by bytes: with an interval that
    // is no multiple of a word the last ones could lie behind the frame's end.
    const std::size_t inside = (bytes - bytesPerWord) / plan.stride + 1;
    plan.count = std::min<std::size_t>(words / wordsPerStep, inside);
    return plan;
}

void gatherSamples(const std::byte *frame, const SamplePlan &plan, std::span<Stamp> samples)
{
    const std::byte *word = frame + plan.firstByte;
    const std::size_t stride = plan.stride;
    Stamp *sample = samples.data();
    std::size_t left = plan.count;
    for (; left >= wordsAhead + wordsAtOnce; left -= wordsAtOnce) {
        for (std::size_t i = 0; i < wordsAtOnce; ++i)
            __builtin_prefetch(word + (wordsAhead + i) * stride, 0, secondLevelCache);
        for (std::size_t i = 0; i < wordsAtOnce; ++i)
            std::memcpy(sample + i, word + i * stride, bytesPerWord);
        word += wordsAtOnce * stride;
        sample += wordsAtOnce;
    }
    for (; left > 0; --left) {
        std::memcpy(sample++, word, bytesPerWord);
        word += stride;
    }
}

std::int64_t stampSpan(std::span<const Stamp> samples)
{
    return samples.size() < 2 ? 0 : static_cast<std::int64_t>(samples.back() - samples.front());
}

} // namespace measurement
