#include "measurement/LevelFollower.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace measurement::throughput {

namespace {

/// Share of the magnitudes involved that covers what scanGroup additions can
/// lose to rounding, 2^3 times 2^-53, with much to spare.
constexpr double roundingSlack = 1.0 / (1 << 30);

/// Equals no level.
constexpr double unknownLevel = -1.0;

/// What a binade is stored as, for 0 to mean none.
constexpr int binadeOffset = 2000;

/// Of a positive number: the power of two that is not above it.
int exponentOf(double level)
{
    return static_cast<int>(std::bit_cast<quint64>(level) >> 52 & 0x7ff) - 1023;
}

/// Of two levels between the same powers of two: in units of their last place.
bool areBothEvenOrOdd(double a, double b)
{
    return ((std::bit_cast<quint64>(a) ^ std::bit_cast<quint64>(b)) & 1) == 0;
}

/// As Kernels::scan(), but empty intervals change nothing and show no level.
double scanClimbs(const quint64 *stamps, std::size_t count, const LevelRule &rule, double level, double &peak)
{
    for (std::size_t i = 0; i < count; ++i) {
        const quint64 interval = stamps[i + 1] - stamps[i];
        if (interval == 0)
            continue;
        level += static_cast<double>(interval) / 250.0 * rule.required - rule.interval;
        peak = std::max(peak, level);
        level = std::min(std::max(level, 0.0), rule.size);
    }
    return level;
}

} // namespace

LevelFollower::LevelFollower(const LevelKey &key, const Kernels &kernels)
    : m_key(key)
    , m_rule{static_cast<double>(key.requiredMBps), static_cast<double>(key.sampleInterval),
             static_cast<double>(key.bufferSize)}
    , m_kernels(kernels)
{
}

/// Bytes that the sensor produces in an interval minus those the link carries.
double LevelFollower::changeOver(quint64 interval) const
{
    return static_cast<double>(interval) / 250.0 * m_rule.required - m_rule.interval;
}

/// The change is monotone in the interval, even after rounding.
LevelFollower::Changes LevelFollower::changesOver(const Extrema &extrema) const
{
    const double first = changeOver(extrema.shortest);
    const double second = changeOver(extrema.longest);
    return {std::min(first, second), std::max(first, second)};
}

/// Forgets levels of another key.
/// \return whether the level stays 0 when it starts there
bool LevelFollower::startAnew(FrameOutline &outline) const
{
    outline.m_key = m_key;
    outline.m_flat = changesOver(outline.m_extrema).largest <= 0.0;
    outline.m_startLevel = outline.m_flat ? 0.0 : unknownLevel;
    outline.m_endLevel = 0.0;
    outline.m_peak = 0.0;
    return outline.m_flat;
}

/// Gives the blocks the levels that the frame is known by.
void LevelFollower::enterLevels(FrameOutline &outline) const
{
    if (!outline.m_flat && outline.m_startLevel != unknownLevel)
        return;
    const double level = outline.m_flat ? 0.0 : unknownLevel;
    for (std::size_t block = 0; block < outline.m_blockCount; ++block) {
        outline.m_blocks[block].startLevel = level;
        outline.m_blocks[block].peak = 0.0;
        outline.m_blocks[block].binade = 0;
    }
    outline.m_flat = false;
}

quint64 LevelFollower::follow(FrameOutline &outline, double startLevel) const
{
    if (outline.m_startLevel < 0.0 || !(outline.m_key == m_key))
        startAnew(outline);
    if (outline.m_startLevel == startLevel)
        return 0;

    enterLevels(outline);
    outline.m_startLevel = startLevel;
    double level = startLevel;
    std::size_t number = 0;
    quint64 work = 0;
    for (; number < outline.m_blockCount && outline.m_blocks[number].startLevel != level; ++number)
        level = followBlock(outline, number, level, work);
    if (number == outline.m_blockCount)
        outline.m_endLevel = level;
    outline.m_peak = 0.0;
    for (std::size_t block = 0; block < outline.m_blockCount; ++block)
        outline.m_peak = std::max(outline.m_peak, outline.m_blocks[block].peak);
    return work;
}

/// \param work raised by the intervals that are looked at
/// \return the level behind the block
double LevelFollower::followBlock(FrameOutline &outline, std::size_t number, double level,
                                  quint64 &work) const
{
    BlockOutline &block = outline.m_blocks[number];
    const std::size_t size = outline.blockSize(number);
    if (block.extrema.longest == 0) {
        block.startLevel = level;
        block.peak = 0.0; // not even the start level counts
        return level;
    }
    const Changes changes = changesOver(block.extrema);
    const double known = block.startLevel;
    if (canShift(outline, number, changes, level, work)) {
        const bool isLast = number + 1 == outline.m_blockCount;
        const double knownEnd = isLast ? outline.m_endLevel : outline.m_blocks[number + 1].startLevel;
        block.startLevel = level;
        block.peak = level + (block.peak - known);
        return level + (knownEnd - known);
    }
    work += size;
    block.startLevel = level;
    block.peak = 0.0;
    return advance(outline.blockStamps(number), size, changes, outline.m_repeats, level, block.peak);
}

/// Whether the levels in a block that starts at `level` are the known ones, all
/// shifted by the same amount.
bool LevelFollower::canShift(FrameOutline &outline, std::size_t number, const Changes &changes, double level,
                             quint64 &work) const
{
    BlockOutline &block = outline.m_blocks[number];
    const double known = block.startLevel;
    if (exponentOf(known) != exponentOf(level) || !(known > 0.0) || !(level > 0.0))
        return false;
    const std::size_t size = outline.blockSize(number);
    // At least twice, so that no change is as large as half the range.
    const double reach = static_cast<double>(std::max<std::size_t>(size, 2)) * (1.0 + roundingSlack);
    const double lowest =
        std::min(known, level) * (1.0 - roundingSlack) + reach * std::min(changes.smallest, 0.0);
    const double highest =
        std::max(known, level) * (1.0 + roundingSlack) + reach * std::max(changes.largest, 0.0);
    const double begin = std::ldexp(1.0, exponentOf(level));
    if (!(lowest > begin && highest < 2.0 * begin && highest < m_rule.size))
        return false;
    if (areBothEvenOrOdd(known, level))
        return true;
    if (block.binade != exponentOf(level) + binadeOffset) {
        work += size;
        block.binade = exponentOf(level) + binadeOffset;
        block.hasTies = m_kernels.hasTies(outline.blockStamps(number), size, m_rule, begin);
    }
    return !block.hasTies;
}

quint64 LevelFollower::followEmpty(const std::array<FrameOutline *, laneCount> &outlines,
                                   std::size_t count) const
{
    std::array<FrameOutline *, laneCount> moving = {};
    std::size_t movingCount = 0;
    for (std::size_t i = 0; i < count; ++i) {
        if (!startAnew(*outlines[i]) && !outlines[i]->m_repeats)
            moving[movingCount++] = outlines[i];
    }
    // Too few are not worth a guess: follow() does the work once the start is known.
    return movingCount >= m_kernels.fewestLanes ? followLanes(moving, movingCount) : 0;
}

quint64 LevelFollower::followLanes(const std::array<FrameOutline *, laneCount> &lanes,
                                   std::size_t count) const
{
    std::array<double, laneCount> levels = {};
    for (std::size_t lane = 0; lane < count; ++lane)
        lanes[lane]->m_startLevel = 0.0;
    for (std::size_t number = 0; number < lanes[0]->m_blockCount; ++number) {
        std::array<double, laneCount> peaks = {};
        std::array<const unsigned long long *, laneCount> stamps = {};
        std::size_t moving = 0;
        for (std::size_t lane = 0; lane < laneCount; ++lane) {
            FrameOutline &outline = *lanes[lane < count ? lane : 0];
            stamps[lane] = outline.blockStamps(number);
            if (lane >= count)
                continue;
            outline.m_blocks[number].startLevel = levels[lane];
            outline.m_blocks[number].binade = 0;
            moving += levels[lane] > 0.0 || changesOver(outline.m_blocks[number].extrema).largest > 0.0;
        }
        const std::size_t size = lanes[0]->blockSize(number);
        if (moving >= m_kernels.fewestLanes) {
            m_kernels.scanLanes(stamps.data(), size, m_rule, levels.data(), peaks.data());
        } else {
            for (std::size_t lane = 0; lane < count; ++lane)
                levels[lane] = advance(stamps[lane], size, lanes[lane]->m_blocks[number].extrema, false,
                                       levels[lane], peaks[lane]);
        }
        for (std::size_t lane = 0; lane < count; ++lane) {
            lanes[lane]->m_blocks[number].peak = peaks[lane];
            lanes[lane]->m_peak = std::max(lanes[lane]->m_peak, peaks[lane]);
        }
    }
    for (std::size_t lane = 0; lane < count; ++lane)
        lanes[lane]->m_endLevel = levels[lane];
    return count * (lanes[0]->m_count - 1);
}

double LevelFollower::advance(const quint64 *stamps, std::size_t count, const Extrema &extrema, bool repeats,
                              double level, double &peak) const
{
    return extrema.longest == 0 ? level : advance(stamps, count, changesOver(extrema), repeats, level, peak);
}

double LevelFollower::advance(const quint64 *stamps, std::size_t count, const Changes &changes, bool repeats,
                              double level, double &peak) const
{
    const auto [smallest, largest] = changes;
    if (level == 0.0 && largest <= 0.0)
        return level;
    if (level == m_rule.size && smallest >= 0.0) {
        peak = std::max(peak, level + largest);
        return level;
    }
    if (repeats)
        return scanClimbs(stamps, count, m_rule, level, peak);
    const double group = static_cast<double>(scanGroup);
    const double slack = group * std::max(std::fabs(smallest), std::fabs(largest)) * roundingSlack;
    const FreeRange free = {slack - group * std::min(smallest, 0.0),
                            m_rule.size * (1.0 - roundingSlack) - slack - group * std::max(largest, 0.0)};
    return m_kernels.scan(stamps, count, m_rule, free, level, peak);
}

} // namespace measurement::throughput
