#include "host/core/simulation/CounterPattern.h"

#include "host/core/simulation/StampFill.h"

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

/// part / whole in units of 2^-32, rounded down; part < whole.
std::uint64_t fraction(std::uint64_t part, std::uint64_t whole)
{
    if (part >> 32 == 0)
        return (part << 32) / whole;
    return static_cast<std::uint64_t>((static_cast<WideAmount>(part) << 32) / static_cast<WideAmount>(whole));
}

void fillRun(std::span<std::uint64_t> words, const Run &run)
{
    static const StampFill fill = bestStampFill();
    const auto rate = static_cast<std::uint64_t>(run.rate);
    const std::uint64_t step = (static_cast<std::uint64_t>(AmountPerWord) << 32) / rate;
    // A chunk's time must not leave 64 bits at the slowest rates.
    const std::size_t chunk = std::clamp<std::size_t>((std::uint64_t{1} << 63) / (step + 1), 1, ChunkWords);
    auto sent = static_cast<std::uint64_t>(run.first);
    for (std::size_t done = 0; done < words.size(); done += chunk) {
        const std::size_t count = std::min(chunk, words.size() - done);
        const std::uint64_t time = fraction(sent % rate, rate) + (count > 1 ? ChunkBias : 0);
        fill(words.data() + done, count, {static_cast<std::uint64_t>(run.base) + sent / rate, time, step});
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
            const Amount all = next + AmountPerWord * static_cast<Amount>(fullWords - done - 1);
            const Amount sent = carried < all ? static_cast<Amount>(carried) : all;
            const auto count = 1 + static_cast<std::size_t>((sent - next) / AmountPerWord);
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
