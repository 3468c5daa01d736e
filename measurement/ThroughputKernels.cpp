#include "measurement/ThroughputKernels.h"

namespace measurement::throughput {

namespace {

using Stamp = unsigned long long;

// Callers keep intervals below 2^52 ticks, where the signed conversion is the
// unsigned one and takes a single instruction.
double levelChange(Stamp interval, const LevelRule &rule)
{
    return static_cast<double>(static_cast<long long>(interval)) / 250.0 * rule.required - rule.interval;
}

Extrema extrema(const Stamp *stamps, std::size_t count)
{
    Extrema result = {0, ~0ULL};
    for (std::size_t i = 0; i < count; ++i) {
        const Stamp interval = stamps[i + 1] - stamps[i];
        result.longest = interval > result.longest ? interval : result.longest;
        result.shortest = interval < result.shortest ? interval : result.shortest;
    }
    return result;
}

/// Conditional moves in place of branches: where the level hovers at an end of
/// the buffer, no predictor follows it.
double step(double level, double change, double size, double &highest)
{
    level += change;
    highest = level > highest ? level : highest;
    level = level > 0.0 ? level : 0.0;
    return level < size ? level : size;
}

double scan(const Stamp *stamps, std::size_t count, const LevelRule &rule, const FreeRange &free,
            double level, double &peak)
{
    double highest = peak;
    std::size_t i = 0;
    for (; i + scanGroup <= count; i += scanGroup) {
        double changes[scanGroup];
        for (std::size_t k = 0; k < scanGroup; ++k)
            changes[k] = levelChange(stamps[i + k + 1] - stamps[i + k], rule);
        if (level > free.above && level < free.below) {
            double groupHighest = 0.0;
            for (const double change : changes) {
                level += change;
                groupHighest = level > groupHighest ? level : groupHighest;
            }
            highest = groupHighest > highest ? groupHighest : highest;
        } else {
            for (const double change : changes)
                level = step(level, change, rule.size, highest);
        }
    }
    for (; i < count; ++i)
        level = step(level, levelChange(stamps[i + 1] - stamps[i], rule), rule.size, highest);
    peak = highest;
    return level;
}

void scanLanes(const Stamp *const *stamps, std::size_t count, const LevelRule &rule, double *levels,
               double *peaks)
{
    // As many chains as registers hold without spilling.
    constexpr std::size_t width = 4;
    static_assert(laneCount % width == 0);
    for (std::size_t first = 0; first < laneCount; first += width) {
        double level[width];
        double highest[width];
        for (std::size_t lane = 0; lane < width; ++lane) {
            level[lane] = levels[first + lane];
            highest[lane] = peaks[first + lane];
        }
        for (std::size_t i = 0; i < count; ++i) {
            for (std::size_t lane = 0; lane < width; ++lane) {
                const Stamp interval = stamps[first + lane][i + 1] - stamps[first + lane][i];
                level[lane] = step(level[lane], levelChange(interval, rule), rule.size, highest[lane]);
            }
        }
        for (std::size_t lane = 0; lane < width; ++lane) {
            levels[first + lane] = level[lane];
            peaks[first + lane] = highest[lane];
        }
    }
}

bool hasTies(const Stamp *stamps, std::size_t count, const LevelRule &rule, double binade)
{
    const double half = binade * 0x1p-53; // of the unit
    const double rounder = 1.5 * binade;
    bool found = false;
    for (std::size_t i = 0; i < count; ++i) {
        const double change = levelChange(stamps[i + 1] - stamps[i], rule);
        const double rest = change - ((change + rounder) - rounder);
        found |= rest == half || rest == -half;
    }
    return found;
}

} // namespace

const Kernels &portableKernels()
{
    static constexpr Kernels kernels = {extrema, scan, scanLanes, hasTies, 6};
    return kernels;
}

const Kernels &bestKernels()
{
    static const Kernels *const avx2 = avx2Kernels();
    return avx2 ? *avx2 : portableKernels();
}

} // namespace measurement::throughput
