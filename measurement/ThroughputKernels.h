#pragma once

#include <cstddef>

/// Inner loops of the throughput model. One set for every processor, one for
/// those with AVX2; the results are the same bit for bit.
///
/// This header is read by code compiled for a newer processor than the program
/// may run on: it must not bring in inline functions.
namespace measurement::throughput {

/// Intervals that share one Extrema.
constexpr std::size_t blockLength = 128;

/// Longest and shortest of some intervals, in ticks. With the model's formulas
/// monotone in the length of an interval, even after rounding, these decide the
/// lowest speed and bound what the level can do, without a look at the rest.
struct Extrema
{
    unsigned long long longest;
    unsigned long long shortest;
};

/// What moves the level.
struct LevelRule
{
    double required; ///< bytes a microsecond that the sensor produces
    double interval; ///< bytes that the link carries between two stamps
    double size;     ///< bytes that the buffer holds
};

/// Levels, in bytes, from which scanGroup intervals cannot reach either end of
/// the buffer.
struct FreeRange
{
    double above;
    double below;
};

/// Intervals between two looks at the free range.
constexpr std::size_t scanGroup = 8;

/// Longest interval, in ticks, that the level loops take: up to here the bits
/// of a number are those of the double 2^52 + number.
constexpr unsigned long long longestPlainInterval = (1ULL << 52) - 1;

/// Frames that scanLanes advances together.
constexpr std::size_t laneCount = 8;

struct Kernels
{
    /// Of the `count` > 0 intervals between count + 1 stamps.
    Extrema (*extrema)(const unsigned long long *stamps, std::size_t count);

    /// Advances a level, in bytes, over `count` intervals of which none is
    /// longer than longestPlainInterval or empty. Returns the new level and
    /// raises `peak` to the highest level met before it is cut to the size.
    double (*scan)(const unsigned long long *stamps, std::size_t count, const LevelRule &rule,
                   const FreeRange &free, double level, double &peak);

    /// scan() for laneCount frames at once.
    void (*scanLanes)(const unsigned long long *const *stamps, std::size_t count, const LevelRule &rule,
                      double *levels, double *peaks);

    /// Whether one of the changes of `count` intervals lies just between two
    /// multiples of the unit in the last place of numbers from `binade`, a power
    /// of two, to twice that. No interval is longer than longestPlainInterval, no
    /// change as large as half of `binade`; empty intervals may make it a yes too many.
    bool (*hasTies)(const unsigned long long *stamps, std::size_t count, const LevelRule &rule,
                    double binade);

    /// From this many frames on scanLanes() is faster than one scan() each.
    std::size_t fewestLanes;
};

const Kernels &portableKernels();

/// The set for AVX2 with fused multiply-add, null where the processor has neither.
const Kernels *avx2Kernels();

/// The fastest set this processor runs.
const Kernels &bestKernels();

} // namespace measurement::throughput
