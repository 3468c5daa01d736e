#include "measurement/ThroughputPass.h"

#include "measurement/LinkDrain.h"
#include "measurement/Saturate.h"

#include <algorithm>
#include <cmath>

namespace measurement::throughput {

namespace {

/// Times up to here, some 36 000 years, can be added and subtracted freely.
constexpr qint64 plainTime = Q_INT64_C(1) << 60;

/// Share of the magnitudes involved that covers what scanGroup additions can
/// lose to rounding, 2^3 times 2^-53, with much to spare.
constexpr double roundingSlack = 1.0 / (1 << 30);

/// Frames taken one by one after guessing has cost more than it gained.
constexpr std::size_t framesUnguessed = 64;

/// Equals no level.
constexpr double unknownLevel = -1.0;

bool isPlain(qint64 time)
{
    return time > -plainTime && time < plainTime;
}

} // namespace

std::size_t Pass::Outline::blockSize(std::size_t block) const
{
    return std::min(blockLength, intervals - block * blockLength);
}

const quint64 *Pass::Outline::blockStamps(std::size_t block) const
{
    return frame.stamps + block * blockLength;
}

Pass::Pass(const FrameSource &frames, const FrameRange &range, const Settings &settings,
           const Scratch &scratch, PointSink *sink, Statistics &statistics, const Kernels &kernels)
    : m_frames(frames)
    , m_range(range)
    , m_settings(settings)
    , m_scratch(scratch)
    , m_sink(sink)
    , m_statistics(statistics)
    , m_kernels(kernels)
    , m_rule{static_cast<double>(settings.requiredMBps), static_cast<double>(settings.sampleInterval),
             static_cast<double>(settings.bufferSize)}
    , m_spacing(truncateSaturated(settings.msPerPixel * 1000.0))
    , m_plainWindow(isPlain(settings.from) && isPlain(settings.to) && isPlain(m_spacing))
{
}

bool Pass::run()
{
    Q_ASSERT(m_scratch.capacity >= m_range.intervals);
    m_statistics.maxBufferLevel = 0.0;
    m_statistics.bufferOverflowCount = 0;
    m_statistics.minThroughput = std::numeric_limits<double>::max();

    for (std::size_t index = m_range.begin; index < m_range.end;)
        index += advance(index);

    if (m_frameCount == 0)
        return false;
    m_statistics.maxBufferLevel = m_peakPercent;
    m_statistics.avgThroughput = m_rateSum / static_cast<double>(m_frameCount);
    return true;
}

/// Takes at least one frame and returns the number taken.
std::size_t Pass::advance(std::size_t index)
{
    const std::size_t count = collect(index);
    if (count == 0) {
        const Frame frame = m_frames.at(index);
        drain(frame.timestamp);
        addSingly(frame);
        countFrame(meanRate(frame));
        return 1;
    }

    followLevels(count);
    std::size_t corrected = 0;
    for (std::size_t i = 0; i < count; ++i) {
        drain(m_batch[i].frame.timestamp);
        corrected += correctLevel(m_batch[i], m_level);
        addFrame(m_batch[i]);
        countFrame(m_batch[i].rate);
        m_level = m_batch[i].endLevel;
    }
    if (corrected * 2 > count * m_batch[0].blocks)
        m_unguessed = framesUnguessed;
    return count;
}

/// Describes the next frames that can be followed side by side.
/// \return their number; 0 where the first has to be evaluated by itself
std::size_t Pass::collect(std::size_t index)
{
    std::size_t most = std::min(laneCount, m_range.end - index);
    if (m_unguessed > 0 && !m_settings.resetBufferLevel) {
        --m_unguessed;
        most = 1;
    }
    std::size_t count = 0;
    while (count < most) {
        const Frame frame = m_frames.at(index + count);
        if (count > 0 && frame.count != m_batch[0].frame.count)
            break;
        if (!describe(frame, count, m_batch[count]))
            break;
        ++count;
    }
    return count;
}

/// While the sensor pauses, the link goes on emptying the buffer.
void Pass::drain(qint64 timestamp)
{
    if (m_settings.resetBufferLevel) {
        m_level = 0.0;
        return;
    }
    if (m_lastTime == 0)
        return;
    m_level = levelAfterPause(m_level, m_rate, m_lastTime, timestamp);
    m_lastTime = 0;
}

double Pass::meanRate(const Frame &frame) const
{
    return throughput::meanRate(m_settings.sampleInterval, frame.count, frame.span);
}

void Pass::countFrame(double rate)
{
    m_rate = rate;
    m_rateSum += rate;
    ++m_frameCount;
}

/// Fills the outline of a frame, as far as its level is not needed for it.
/// \param slot which share of the scratch arrays it uses
/// \return false where the frame has to be evaluated interval by interval
bool Pass::describe(const Frame &frame, std::size_t slot, Outline &outline) const
{
    if (!m_plainWindow || !isPlain(frame.timestamp) || !frame.stamps || frame.count < 2)
        return false;
    outline.frame = frame;
    outline.intervals = frame.count - 1;
    outline.blocks = (outline.intervals + blockLength - 1) / blockLength;
    outline.lastTime = static_cast<qint64>((frame.stamps[outline.intervals] - frame.stamps[0]) / 250);
    outline.rate = meanRate(frame);

    const std::size_t half = laneCount * outline.blocks;
    if (2 * half > m_scratch.capacity || isDense(outline))
        return false;
    const std::size_t first = slot * outline.blocks;
    outline.longestOf = m_scratch.times + first;
    outline.largestOf = m_scratch.speeds + first;
    outline.smallestOf = m_scratch.deltas + first;
    outline.peakOf = m_scratch.speeds + half + first;
    outline.startLevelOf = m_scratch.deltas + half + first;
    return describeBlocks(outline);
}

bool Pass::describeBlocks(Outline &outline) const
{
    outline.longest = 0;
    outline.staysEmpty = true;
    for (std::size_t block = 0; block < outline.blocks; ++block) {
        const Extrema extrema = outline.frame.extrema
                                    ? outline.frame.extrema[block]
                                    : m_kernels.extrema(outline.blockStamps(block), outline.blockSize(block));
        if (extrema.shortest == 0 || extrema.longest > longestPlainInterval)
            return false;
        outline.longest = std::max<quint64>(outline.longest, extrema.longest);
        outline.longestOf[block] = extrema.longest;
        const double first = changeOver(extrema.shortest);
        const double second = changeOver(extrema.longest);
        outline.largestOf[block] = std::max(first, second);
        outline.smallestOf[block] = std::min(first, second);
        outline.staysEmpty = outline.staysEmpty && outline.largestOf[block] <= 0.0;
    }
    // Short enough that the stamps climb from the first to the last.
    return static_cast<double>(outline.longest) * static_cast<double>(outline.intervals) < 0x1p62;
}

/// Whether the frame has so many points that blocks would be cut to pieces.
bool Pass::isDense(const Outline &outline) const
{
    const qint64 start = outline.frame.timestamp;
    if (!m_sink || start > m_settings.to || start + outline.lastTime < m_settings.from)
        return false;
    const double points = static_cast<double>(outline.lastTime) / (static_cast<double>(m_spacing) + 1.0);
    return m_spacing < 0 || points * 16.0 > static_cast<double>(outline.intervals);
}

/// Bytes that the sensor produces in an interval minus those the link carries.
double Pass::changeOver(quint64 interval) const
{
    return static_cast<double>(interval) / 250.0 * m_rule.required - m_rule.interval;
}

/// Follows the levels of the first frames of the batch, the first from the
/// present level, the others from empty.
void Pass::followLevels(std::size_t count)
{
    std::array<Outline *, laneCount> moving = {};
    std::size_t movingCount = 0;
    for (std::size_t i = 0; i < count; ++i) {
        m_batch[i].startLevel = 0.0;
        m_batch[i].endLevel = 0.0;
        m_batch[i].peak = 0.0;
        if (!m_batch[i].staysEmpty)
            moving[movingCount++] = &m_batch[i];
    }
    if (movingCount >= m_kernels.fewestLanes) {
        followLanes(moving, movingCount);
        return;
    }
    // Not worth a guess: correctLevel() does the work once the start is known.
    for (std::size_t i = 0; i < movingCount; ++i)
        moving[i]->startLevel = unknownLevel;
}

void Pass::followLanes(const std::array<Outline *, laneCount> &lanes, std::size_t count) const
{
    std::array<double, laneCount> levels = {};
    for (std::size_t block = 0; block < lanes[0]->blocks; ++block) {
        std::array<double, laneCount> peaks = {};
        std::size_t moving = 0;
        for (std::size_t lane = 0; lane < count; ++lane) {
            lanes[lane]->startLevelOf[block] = levels[lane];
            moving += levels[lane] > 0.0 || lanes[lane]->largestOf[block] > 0.0;
        }
        followBlock(lanes, count, block, moving >= m_kernels.fewestLanes, levels, peaks);
        for (std::size_t lane = 0; lane < count; ++lane) {
            lanes[lane]->peakOf[block] = peaks[lane];
            lanes[lane]->peak = std::max(lanes[lane]->peak, peaks[lane]);
        }
    }
    for (std::size_t lane = 0; lane < count; ++lane)
        lanes[lane]->endLevel = levels[lane];
}

void Pass::followBlock(const std::array<Outline *, laneCount> &lanes, std::size_t count, std::size_t block,
                       bool together, std::array<double, laneCount> &levels,
                       std::array<double, laneCount> &peaks) const
{
    if (together) {
        std::array<const unsigned long long *, laneCount> stamps = {};
        for (std::size_t lane = 0; lane < laneCount; ++lane)
            stamps[lane] = lanes[lane < count ? lane : 0]->blockStamps(block);
        m_kernels.scanLanes(stamps.data(), lanes[0]->blockSize(block), m_rule, levels.data(), peaks.data());
        return;
    }
    for (std::size_t lane = 0; lane < count; ++lane) {
        const Outline &outline = *lanes[lane];
        levels[lane] =
            advanceLevel(outline.blockStamps(block), outline.blockSize(block), outline.smallestOf[block],
                         outline.largestOf[block], levels[lane], peaks[lane]);
    }
}

/// Puts right what was followed from another level than the frame's own.
/// \return blocks that had to be followed for it
std::size_t Pass::correctLevel(Outline &outline, double startLevel) const
{
    if (outline.startLevel == startLevel)
        return 0;
    if (outline.staysEmpty) {
        std::fill_n(outline.startLevelOf, outline.blocks, 0.0);
        std::fill_n(outline.peakOf, outline.blocks, 0.0);
    } else if (outline.startLevel == unknownLevel) {
        std::fill_n(outline.startLevelOf, outline.blocks, unknownLevel);
    }
    outline.startLevel = startLevel;
    outline.staysEmpty = false;

    double level = startLevel;
    std::size_t block = 0;
    for (; block < outline.blocks && outline.startLevelOf[block] != level; ++block) {
        outline.startLevelOf[block] = level;
        outline.peakOf[block] = 0.0;
        level = advanceLevel(outline.blockStamps(block), outline.blockSize(block), outline.smallestOf[block],
                             outline.largestOf[block], level, outline.peakOf[block]);
    }
    if (block == outline.blocks)
        outline.endLevel = level;
    outline.peak = *std::max_element(outline.peakOf, outline.peakOf + outline.blocks);
    return block;
}

/// Moves the level over at most a block of intervals whose changes lie between
/// the two given ones.
double Pass::advanceLevel(const quint64 *stamps, std::size_t count, double smallest, double largest,
                          double level, double &peak) const
{
    if (level == 0.0 && largest <= 0.0)
        return level;
    if (level == m_rule.size && smallest >= 0.0) {
        peak = std::max(peak, level + largest);
        return level;
    }
    const double group = static_cast<double>(scanGroup);
    const double slack = group * std::max(std::fabs(smallest), std::fabs(largest)) * roundingSlack;
    const FreeRange free = {slack - group * std::min(smallest, 0.0),
                            m_rule.size * (1.0 - roundingSlack) - slack - group * std::max(largest, 0.0)};
    return m_kernels.scan(stamps, count, m_rule, free, level, peak);
}

} // namespace measurement::throughput
