#include "host/core/simulation/StampFill.h"

#include <memory>

#define VELMORA_INLINE __attribute__((always_inline)) inline

namespace host {

namespace {

constexpr std::size_t LineBytes = 64; // of the cache
constexpr std::size_t LineWords = LineBytes / sizeof(std::uint64_t);

/// Additions and shifts only, so that it vectorises.
VELMORA_INLINE void write(std::uint64_t *words, std::size_t count, std::uint64_t base, std::uint64_t time,
                          std::uint64_t step)
{
    for (std::size_t i = 0; i < count; ++i) {
        words[i] = base + (time >> 32);
        time += step;
    }
}

/// Stores that cross the border of two lines would cost a tenth of the speed:
/// the middle is written in whole lines. The words around it are written with
/// a line's worth each that overlaps it, since of loops over that few words
/// the processor mispredicts the end.
VELMORA_INLINE void fill(std::uint64_t *words, std::size_t count, const StampSequence &stamps)
{
    const auto [base, time, step] = stamps;
    if (count < LineWords) {
        write(words, count, base, time, step);
        return;
    }
    const std::size_t last = count - LineWords;
    write(words, LineWords, base, time, step);
    write(words + last, LineWords, base, time + last * step, step);
    const std::size_t misplaced = reinterpret_cast<std::uintptr_t>(words) / sizeof *words % LineWords;
    const std::size_t first = (LineWords - misplaced) % LineWords;
    const std::size_t middle = (count - first) / LineWords * LineWords;
    write(std::assume_aligned<LineBytes>(words + first), middle, base, time + first * step, step);
}

void fillPortably(std::uint64_t *words, std::size_t count, const StampSequence &stamps)
{
    fill(words, count, stamps);
}

#if defined(__x86_64__)
__attribute__((target("avx2"))) void fillWithAvx2(std::uint64_t *words, std::size_t count,
                                                  const StampSequence &stamps)
{
    fill(words, count, stamps);
}
#endif

} // namespace

StampFill portableStampFill()
{
    return fillPortably;
}

StampFill avx2StampFill()
{
#if defined(__x86_64__)
    static const bool usable = __builtin_cpu_supports("avx2");
    return usable ? fillWithAvx2 : nullptr;
#else
    return nullptr;
#endif
}

StampFill bestStampFill()
{
    const StampFill avx2 = avx2StampFill();
    return avx2 ? avx2 : portableStampFill();
}

} // namespace host
