#include "host/core/simulation/CounterPattern.h"

#include <algorithm>

namespace host {

namespace {

constexpr Amount AmountPerWord = 8 * AmountPerByte;

// Words between two exact computations of the time. The fixed-point time falls
// behind by less than 2^-32 ticks a word; the bias, as large as that error can
// get in a chunk, keeps it from ever falling below the exact time.
constexpr std::size_t ChunkWords = 4096;
constexpr std::uint64_t ChunkBias = ChunkWords;

/// Words that leave at a constant rate.
struct Run
{
    Ticks base;   ///< stamp of the moment from which `first` counts
    Amount first; ///< what has left when the first word has
    std::int64_t rate;
};

void fillChunk(std::uint64_t *words, std::size_t count, std::uint64_t base, std::uint64_t time,
               std::uint64_t step)
{
    // 32.32 fixed point: additions and shifts only, so that it vectorises.
    for (std::size_t i = 0; i < count; ++i) {
        words[i] = base + (time >> 32);
        time += step;
    }
}

void fillRun(std::span<std::uint64_t> words, const Run &run)
{
    const auto rate = static_cast<std::uint64_t>(run.rate);
    const std::uint64_t step = (static_cast<std::uint64_t>(AmountPerWord) << 32) / rate;
    // A chunk's time must not leave 64 bits at the slowest rates.
    const std::size_t chunk = std::clamp<std::size_t>((std::uint64_t{1} << 63) / (step + 1), 1, ChunkWords);
    auto sent = static_cast<std::uint64_t>(run.first);
    for (std::size_t done = 0; done < words.size(); done += chunk) {
        const std::uint64_t whole = sent / rate;
        const auto fraction = static_cast<std::uint64_t>((static_cast<WideAmount>(sent % rate) << 32) /
                                                         static_cast<WideAmount>(rate));
        const std::size_t count = std::min(chunk, words.size() - done);
        fillChunk(words.data() + done, count, static_cast<std::uint64_t>(run.base) + whole,
                  fraction + (count > 1 ? ChunkBias : 0), step);
        sent += static_cast<std::uint64_t>(AmountPerWord) * count;
    }
}

} // namespace

void fillCounterPattern(std::span<std::uint64_t> words, std::int64_t bytes, const LinkModel &link,
                        LinkPosition position, Ticks clockOffset)
{
    const std::size_t fullWords = static_cast<std::size_t>(bytes / 8);
    Amount next = position.lead + AmountPerWord; // what must leave from `t` on until the next word is through
    std::size_t done = 0;
    Ticks t = position.tick;
    while (done < fullWords) {
        const LinkModel::Segment segment = link.segmentFrom(t);
        const WideAmount carried = static_cast<WideAmount>(segment.rate) * (segment.end - t);
        if (carried >= next) {
            const auto fitting = static_cast<WideAmount>(1) + (carried - next) / AmountPerWord;
            const std::size_t left = fullWords - done;
            const std::size_t count =
                fitting < static_cast<WideAmount>(left) ? static_cast<std::size_t>(fitting) : left;
            fillRun(words.subspan(done, count), {clockOffset + t, next, segment.rate});
            done += count;
            next += AmountPerWord * static_cast<Amount>(count);
        }
        if (done < fullWords) {
            next -= static_cast<Amount>(carried);
            t = segment.end;
        }
    }
    if (const std::int64_t rest = bytes % 8; rest != 0) {
        next -= AmountPerByte * (8 - rest);
        for (LinkModel::Segment segment = link.segmentFrom(t);; segment = link.segmentFrom(t)) {
            const WideAmount carried = static_cast<WideAmount>(segment.rate) * (segment.end - t);
            if (carried >= next) {
                words[fullWords] = static_cast<std::uint64_t>(clockOffset + t + next / segment.rate);
                break;
            }
            next -= static_cast<Amount>(carried);
            t = segment.end;
        }
    }
}

} // namespace host
