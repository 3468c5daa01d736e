#include "measurement/ThroughputKernels.h"

#if defined(__x86_64__)

#include <immintrin.h>

// Set on every function instead of the whole file, so that nothing else here
// is compiled for a processor that the program may not run on.
#define VELMORA_AVX2 __attribute__((target("avx2,fma")))
#define VELMORA_AVX2_INLINE __attribute__((target("avx2,fma"), always_inline)) inline

namespace measurement::throughput {

namespace {

using Stamp = unsigned long long;

constexpr long long exponentOf2p52 = 0x4330000000000000;
constexpr double twoTo52 = 4503599627370496.0;

VELMORA_AVX2_INLINE __m256i loadStamps(const Stamp *stamps)
{
    return _mm256_loadu_si256(reinterpret_cast<const __m256i *>(stamps));
}

VELMORA_AVX2_INLINE __m256i intervalsAt(const Stamp *stamps)
{
    return _mm256_sub_epi64(loadStamps(stamps + 1), loadStamps(stamps));
}

/// The double 2^52 + interval: its order is that of the intervals.
VELMORA_AVX2_INLINE __m256d raised(__m256i intervals)
{
    return _mm256_castsi256_pd(_mm256_or_si256(intervals, _mm256_set1_epi64x(exponentOf2p52)));
}

/// interval / 250, rounded once as a division rounds.
///
/// Markstein: with y the double next to 1/b and q within one unit in the last
/// place of a/b, r = a - bq is exact and q + ry rounds to a/b correctly. Here
/// y is 0.19 * 2^-53 off in relative terms, which leaves q = ay at most 0.69
/// units off. No step over- or underflows for whole ticks.
VELMORA_AVX2_INLINE __m256d microseconds(__m256i intervals)
{
    const __m256d reciprocal = _mm256_set1_pd(1.0 / 250.0);
    const __m256d ticks = _mm256_sub_pd(raised(intervals), _mm256_set1_pd(twoTo52));
    const __m256d quotient = _mm256_mul_pd(ticks, reciprocal);
    const __m256d remainder = _mm256_fnmadd_pd(quotient, _mm256_set1_pd(250.0), ticks);
    return _mm256_fmadd_pd(remainder, reciprocal, quotient);
}

VELMORA_AVX2_INLINE __m256d levelChanges(const Stamp *stamps, __m256d required, __m256d interval)
{
    return _mm256_sub_pd(_mm256_mul_pd(microseconds(intervalsAt(stamps)), required), interval);
}

VELMORA_AVX2 Extrema extrema(const Stamp *stamps, std::size_t count)
{
    __m256i bits = _mm256_setzero_si256();
    // Two chains of each: a maximum takes longer than all else there is to do.
    __m256d longest[2] = {_mm256_set1_pd(twoTo52), _mm256_set1_pd(twoTo52)};
    __m256d shortest[2] = {_mm256_set1_pd(2 * twoTo52), _mm256_set1_pd(2 * twoTo52)};
    std::size_t i = 0;
    for (; i + 8 <= count; i += 8) {
        for (std::size_t half = 0; half < 2; ++half) {
            const __m256i intervals = intervalsAt(stamps + i + half * 4);
            bits = _mm256_or_si256(bits, intervals);
            longest[half] = _mm256_max_pd(longest[half], raised(intervals));
            shortest[half] = _mm256_min_pd(shortest[half], raised(intervals));
        }
    }
    longest[0] = _mm256_max_pd(longest[0], longest[1]);
    shortest[0] = _mm256_min_pd(shortest[0], shortest[1]);
    // An interval of 2^52 ticks or more has spoilt the doubles.
    if (!_mm256_testz_si256(bits, _mm256_set1_epi64x(static_cast<long long>(~longestPlainInterval))))
        return portableKernels().extrema(stamps, count);

    alignas(32) double longestOf[4];
    alignas(32) double shortestOf[4];
    _mm256_store_pd(longestOf, longest[0]);
    _mm256_store_pd(shortestOf, shortest[0]);
    Extrema result = {0, ~0ULL};
    for (int lane = 0; lane < 4 && i > 0; ++lane) {
        const Stamp most = static_cast<Stamp>(longestOf[lane] - twoTo52);
        const Stamp least = static_cast<Stamp>(shortestOf[lane] - twoTo52);
        result.longest = most > result.longest ? most : result.longest;
        result.shortest = least < result.shortest ? least : result.shortest;
    }
    for (; i < count; ++i) {
        const Stamp interval = stamps[i + 1] - stamps[i];
        result.longest = interval > result.longest ? interval : result.longest;
        result.shortest = interval < result.shortest ? interval : result.shortest;
    }
    return result;
}

/// One interval of a level that may meet an end of the buffer, without branches.
VELMORA_AVX2_INLINE __m128d step(__m128d level, double change, __m128d size, __m128d &highest)
{
    level = _mm_add_sd(level, _mm_set_sd(change));
    highest = _mm_max_sd(highest, level);
    return _mm_min_sd(_mm_max_sd(level, _mm_setzero_pd()), size);
}

/// Four lanes, four intervals each: lane k of change[i] is frame k's interval i.
VELMORA_AVX2_INLINE void transpose(__m256d (&change)[4])
{
    const __m256d low01 = _mm256_unpacklo_pd(change[0], change[1]);
    const __m256d high01 = _mm256_unpackhi_pd(change[0], change[1]);
    const __m256d low23 = _mm256_unpacklo_pd(change[2], change[3]);
    const __m256d high23 = _mm256_unpackhi_pd(change[2], change[3]);
    change[0] = _mm256_permute2f128_pd(low01, low23, 0x20);
    change[1] = _mm256_permute2f128_pd(high01, high23, 0x20);
    change[2] = _mm256_permute2f128_pd(low01, low23, 0x31);
    change[3] = _mm256_permute2f128_pd(high01, high23, 0x31);
}

/// Four groups of intervals: their changes and what becomes in each of a level
/// that starts at 0.
struct Groups
{
    static constexpr std::size_t count = 4;

    alignas(32) double changes[count][scanGroup];
    alignas(32) double ends[count];
    alignas(32) double peaks[count];
};

VELMORA_AVX2_INLINE void enter(Groups &groups, const Stamp *stamps, __m256d required, __m256d interval)
{
    static_assert(scanGroup == 8 && Groups::count == 4,
                  "a register holds four changes or a step of four groups");
    __m256d level = _mm256_setzero_pd();
    __m256d highest = level;
    __m256d steps[2][4];
    for (std::size_t i = 0; i < Groups::count; ++i) {
        for (std::size_t half = 0; half < 2; ++half) {
            steps[half][i] = levelChanges(stamps + i * scanGroup + half * 4, required, interval);
            _mm256_store_pd(groups.changes[i] + half * 4, steps[half][i]);
        }
    }
    for (auto &half : steps) {
        transpose(half);
        for (const __m256d &step : half) {
            level = _mm256_add_pd(level, step);
            highest = _mm256_max_pd(highest, level);
            level = _mm256_max_pd(level, _mm256_setzero_pd());
        }
    }
    _mm256_store_pd(groups.ends, level);
    _mm256_store_pd(groups.peaks, highest);
}

/// The changes of 32 intervals at a time, the level one by one.
///
/// Cutting the level to the ends of the buffer after each sum makes a chain that
/// takes two to three times as long as the sums. But adding keeps the order of
/// two levels, also after rounding, and so does cutting. Where only the lower end
/// is near, a level that does not meet it stays above one that starts there, and
/// one that does is the same as that from there on: it is the higher one of that
/// and of its plain sum. So groups that start at 0 are followed side by side,
/// long before the level is known, and the sums are cut once a group.
VELMORA_AVX2 double scan(const Stamp *stamps, std::size_t count, const LevelRule &rule, const FreeRange &free,
                         double level, double &peak)
{
    const __m256d required = _mm256_set1_pd(rule.required);
    const __m256d interval = _mm256_set1_pd(rule.interval);
    const __m128d size = _mm_set_sd(rule.size);
    __m128d highest = _mm_set_sd(peak);
    __m256d highestSum = _mm256_setzero_pd();
    std::size_t i = 0;
    for (; i + Groups::count * scanGroup <= count; i += Groups::count * scanGroup) {
        Groups groups;
        enter(groups, stamps + i, required, interval);
        for (std::size_t number = 0; number < Groups::count; ++number) {
            double(&changes)[scanGroup] = groups.changes[number];
            if (level < free.below) {
                // The sums first, their maximum after: a maximum takes longer
                // than a sum, so one a step would set the pace.
                for (double &change : changes) {
                    level += change;
                    change = level;
                }
                highestSum = _mm256_max_pd(
                    highestSum, _mm256_max_pd(_mm256_load_pd(changes), _mm256_load_pd(changes + 4)));
                highest = _mm_max_sd(highest, _mm_load_sd(groups.peaks + number));
                level = _mm_cvtsd_f64(_mm_max_sd(_mm_set_sd(level), _mm_load_sd(groups.ends + number)));
            } else {
                __m128d clamped = _mm_set_sd(level);
                for (const double change : changes)
                    clamped = step(clamped, change, size, highest);
                level = _mm_cvtsd_f64(clamped);
            }
        }
    }
    const __m128d two = _mm_max_pd(_mm256_castpd256_pd128(highestSum), _mm256_extractf128_pd(highestSum, 1));
    peak = _mm_cvtsd_f64(_mm_max_sd(highest, _mm_max_sd(two, _mm_unpackhi_pd(two, two))));
    return i < count ? portableKernels().scan(stamps + i, count - i, rule, free, level, peak) : level;
}

VELMORA_AVX2 void scanLanes(const Stamp *const *stamps, std::size_t count, const LevelRule &rule,
                            double *levels, double *peaks)
{
    static_assert(laneCount == 8, "two registers of four frames");
    const __m256d required = _mm256_set1_pd(rule.required);
    const __m256d interval = _mm256_set1_pd(rule.interval);
    const __m256d size = _mm256_set1_pd(rule.size);
    const __m256d zero = _mm256_setzero_pd();
    __m256d level[2] = {_mm256_loadu_pd(levels), _mm256_loadu_pd(levels + 4)};
    __m256d highest[2] = {_mm256_loadu_pd(peaks), _mm256_loadu_pd(peaks + 4)};

    std::size_t i = 0;
    for (; i + 4 <= count; i += 4) {
        for (std::size_t half = 0; half < 2; ++half) {
            __m256d change[4];
            for (std::size_t lane = 0; lane < 4; ++lane)
                change[lane] = levelChanges(stamps[half * 4 + lane] + i, required, interval);
            transpose(change);
            for (const __m256d &step : change) {
                level[half] = _mm256_add_pd(level[half], step);
                highest[half] = _mm256_max_pd(highest[half], level[half]);
                level[half] = _mm256_min_pd(_mm256_max_pd(level[half], zero), size);
            }
        }
    }
    for (std::size_t half = 0; half < 2; ++half) {
        _mm256_storeu_pd(levels + half * 4, level[half]);
        _mm256_storeu_pd(peaks + half * 4, highest[half]);
    }
    constexpr FreeRange neverFree = {0.0, 0.0};
    for (std::size_t lane = 0; lane < laneCount && i < count; ++lane)
        levels[lane] =
            portableKernels().scan(stamps[lane] + i, count - i, rule, neverFree, levels[lane], peaks[lane]);
}

VELMORA_AVX2 bool hasTies(const Stamp *stamps, std::size_t count, const LevelRule &rule, double binade)
{
    const __m256d required = _mm256_set1_pd(rule.required);
    const __m256d interval = _mm256_set1_pd(rule.interval);
    const __m256d rounder = _mm256_set1_pd(1.5 * binade);
    const __m256d half = _mm256_set1_pd(binade * 0x1p-53);
    const __m256d sign = _mm256_set1_pd(-0.0);
    __m256d found = _mm256_setzero_pd();
    std::size_t i = 0;
    for (; i + 4 <= count; i += 4) {
        const __m256d change = levelChanges(stamps + i, required, interval);
        const __m256d rounded = _mm256_sub_pd(_mm256_add_pd(change, rounder), rounder);
        const __m256d rest = _mm256_andnot_pd(sign, _mm256_sub_pd(change, rounded));
        found = _mm256_or_pd(found, _mm256_cmp_pd(rest, half, _CMP_EQ_OQ));
    }
    if (_mm256_movemask_pd(found) != 0)
        return true;
    return i < count && portableKernels().hasTies(stamps + i, count - i, rule, binade);
}

} // namespace

const Kernels *avx2Kernels()
{
    static constexpr Kernels kernels = {extrema, scan, scanLanes, hasTies, 3};
    static const bool usable = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma");
    return usable ? &kernels : nullptr;
}

} // namespace measurement::throughput

#else

namespace measurement::throughput {

const Kernels *avx2Kernels()
{
    return nullptr;
}

} // namespace measurement::throughput

#endif
