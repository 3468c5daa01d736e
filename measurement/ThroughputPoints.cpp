#include "measurement/Saturate.h"
#include "measurement/ThroughputPass.h"

#include <algorithm>

/// The half of the pass that turns speeds and levels into statistics and points.
namespace measurement::throughput {

namespace {

constexpr quint64 never = std::numeric_limits<quint64>::max();

} // namespace

double Pass::speedOver(quint64 interval) const
{
    return m_settings.sampleInterval / (static_cast<double>(interval) / 250.0);
}

/// \param peak highest level in bytes, before it is cut to the size
double Pass::percentOf(double peak) const
{
    if (peak <= 0.0)
        return 0.0;
    return peak > m_bufferSize ? 100.0 : peak / m_bufferSize * 100.0;
}

/// Speeds of 0 would flatten the graph; they stay out of it.
void Pass::lowerSpeed(double speed)
{
    if (speed > 0.0 && speed < m_pointSpeed)
        m_pointSpeed = speed;
}

/// NaN, a level of 0 in a buffer of size 0, raises nothing.
void Pass::raiseLevel(double percent)
{
    if (percent > m_pointLevel)
        m_pointLevel = percent;
}

void Pass::emitPoint(qint64 time)
{
    m_lastPoint = time;
    if (!m_sink)
        return;
    if (m_pointLongest > 0)
        lowerSpeed(speedOver(m_pointLongest));
    m_sink->addPoint(time, m_pointSpeed, m_pointLevel);
    m_pointLevel = 0.0;
    m_pointSpeed = std::numeric_limits<double>::max();
    m_pointLongest = 0;
}

/// Adds a frame through which the level has been followed.
void Pass::addOutlined(const Frame &frame)
{
    const FrameOutline &outline = *frame.outline;
    m_lastTime = frame.timestamp + outline.lastTime();
    if (m_first) {
        const quint64 origin = *frame.stamps;
        const quint64 *const next = std::partition_point(frame.stamps, frame.stamps + frame.count,
                                                         [=](quint64 stamp) { return stamp == origin; });
        m_lastPoint = frame.timestamp + static_cast<qint64>((*next - origin) / 250) - m_settings.to;
        m_first = false;
    }
    m_longest = std::max<quint64>(m_longest, outline.extrema().longest);
    m_peak = std::max(m_peak, outline.peak());
    if (outline.peak() > m_bufferSize)
        ++m_statistics.bufferOverflowCount;
    if (!m_sink)
        return;

    m_pointLevel = 0.0;
    const quint64 due = nextPointTicks(frame);
    if (due == never)
        m_pointLongest = std::max<quint64>(m_pointLongest, outline.extrema().longest);
    else
        addPoints(frame, due);
}

/// Ticks since the frame's first stamp from which on an interval's end yields
/// the next point; `never` where that lies behind the frame or the window.
quint64 Pass::nextPointTicks(const Frame &frame) const
{
    const qint64 earliest =
        std::max(m_settings.from - m_settings.to, addSaturated(m_lastPoint, m_spacing + 1));
    if (earliest > 0)
        return never;
    const qint64 time = addSaturated(earliest, m_settings.to - frame.timestamp);
    if (time > frame.outline->lastTime())
        return never;
    // No interval ends with the first stamp, nor with one that repeats it.
    return time > 0 ? static_cast<quint64>(time) * 250 : 1;
}

void Pass::addPoints(const Frame &frame, quint64 due)
{
    const FrameOutline &outline = *frame.outline;
    Segment segment;
    double framePeak = 0.0;
    std::size_t block = 0;
    while (block < outline.blocks()) {
        const std::size_t next = due == never ? outline.blocks() : blockOf(frame, block, due);
        for (; block < next; ++block)
            extendByBlock(outline, block, segment);
        if (block == outline.blocks())
            break;
        double level = outline.blockStart(block);
        const std::size_t done = addBlockPoints(frame, block, due, segment, level, framePeak);
        const std::size_t size = outline.blockSize(block);
        if (done == 0)
            extendByBlock(outline, block, segment);
        else if (done < size)
            extendSegment(outline, outline.blockStamps(block) + done, size - done, segment, level);
        ++block;
    }
    m_pointLongest = std::max(m_pointLongest, segment.longest);
}

/// The block in which the interval ends that yields the next point. It looks at
/// few stamps: those of a long frame are seldom in the processor's cache.
/// \param first the block to begin with; none before it reaches \p due
/// \param due from nextPointTicks(), not `never`
std::size_t Pass::blockOf(const Frame &frame, std::size_t first, quint64 due)
{
    const FrameOutline &outline = *frame.outline;
    const quint64 origin = frame.stamps[0];
    const auto reaches = [&](std::size_t block) {
        return outline.blockStamps(block)[outline.blockSize(block)] - origin >= due;
    };
    const std::size_t last = outline.blocks() - 1;
    // Whole ticks: from 2^53 on, doubles of different ticks may be the same.
    const quint64 start = *outline.blockStamps(first) - origin;
    const quint64 length = frame.stamps[frame.count - 1] - origin - start;
    const double share = std::min(static_cast<double>(due - start) / static_cast<double>(length), 1.0);
    const std::size_t guess = first + static_cast<std::size_t>(share * static_cast<double>(last - first));

    std::size_t from = guess;
    for (std::size_t step = 1; from > first && reaches(from - 1); step *= 2)
        from -= std::min(step, from - first);
    std::size_t to = guess;
    for (std::size_t step = 1; to < last && !reaches(to); step *= 2)
        to += std::min(step, last - to);
    while (from < to) {
        const std::size_t middle = from + (to - from) / 2;
        if (reaches(middle))
            to = middle;
        else
            from = middle + 1;
    }
    return from;
}

/// Adds the points that lie inside one block.
/// \param due in and out: nextPointTicks()
/// \return intervals of the block up to and with the last point's, 0 for none
std::size_t Pass::addBlockPoints(const Frame &frame, std::size_t block, quint64 &due, Segment &segment,
                                 double &level, double &framePeak)
{
    const quint64 *stamps = frame.outline->blockStamps(block);
    const quint64 origin = frame.stamps[0];
    const std::size_t size = frame.outline->blockSize(block);
    std::size_t done = 0;
    while (done < size && due != never && stamps[size] - origin >= due) {
        const quint64 *end = std::partition_point(stamps + done + 1, stamps + size,
                                                  [=](quint64 stamp) { return stamp - origin < due; });
        const qint64 time = frame.timestamp + static_cast<qint64>((*end - origin) / 250);
        if (time > m_settings.to) {
            due = never;
            return done;
        }
        const std::size_t count = static_cast<std::size_t>(end - stamps) - done;
        extendSegment(*frame.outline, stamps + done, count, segment, level);
        framePeak = std::max(framePeak, segment.peak);
        m_pointLongest = std::max(m_pointLongest, segment.longest);
        // Once the buffer has run over, the rest of the frame shows it full.
        raiseLevel(framePeak > m_bufferSize ? 100.0 : percentOf(segment.peak));
        emitPoint(time - m_settings.to);
        segment = Segment();
        done += count;
        due = nextPointTicks(frame);
    }
    return done;
}

/// Adds a block in which no point lies.
void Pass::extendByBlock(const FrameOutline &outline, std::size_t block, Segment &segment)
{
    segment.longest = std::max<quint64>(segment.longest, outline.block(block).extrema.longest);
    segment.peak = std::max(segment.peak, outline.blockPeak(block));
}

/// Adds intervals of one block to the segment and moves the level over them.
void Pass::extendSegment(const FrameOutline &outline, const quint64 *stamps, std::size_t count,
                         Segment &segment, double &level) const
{
    const Extrema extrema =
        outline.hasRepeats() ? extremaOfClimbs(stamps, count) : m_kernels.extrema(stamps, count);
    segment.longest = std::max<quint64>(segment.longest, extrema.longest);
    level = m_follower.advance(stamps, count, extrema, outline.hasRepeats(), level, segment.peak);
}

/// Adds a frame interval by interval, whatever its stamps.
void Pass::addSingly(const Frame &frame)
{
    const unsigned int count =
        frameSpeeds(frame.stamps, frame.count, m_settings.sampleInterval, m_settings.requiredMBps,
                    m_scratch.speeds, m_scratch.deltas, m_scratch.times);
    if (count == 0)
        return;
    m_pointLevel = 0.0;
    bool overflowed = false;
    for (unsigned int i = 0; i < count; ++i) {
        const qint64 time = addSaturated(frame.timestamp, static_cast<qint64>(m_scratch.times[i]));
        addInterval(m_scratch.speeds[i], time, m_scratch.deltas[i], overflowed);
    }
    if (overflowed)
        ++m_statistics.bufferOverflowCount;
}

void Pass::addInterval(double speed, qint64 time, double change, bool &overflowed)
{
    const qint64 relative = subtractSaturated(time, m_settings.to);
    m_lastTime = time;
    m_statistics.minThroughput = std::min(m_statistics.minThroughput, speed);

    m_level += change;
    double percent = 0.0;
    if (m_level < 0.0) {
        m_level = 0.0;
    } else if (m_level > m_bufferSize) {
        m_level = m_bufferSize;
        percent = 100.0;
        overflowed = true;
    } else {
        percent = m_level / m_bufferSize * 100.0;
    }
    raiseLevel(overflowed ? 100.0 : percent);
    m_peakPercent = std::max(m_peakPercent, m_pointLevel);

    if (m_first)
        m_lastPoint = relative;
    m_first = false;
    lowerSpeed(speed);
    if (time >= m_settings.from && time <= m_settings.to &&
        subtractSaturated(relative, m_lastPoint) > m_spacing)
        emitPoint(relative);
}

} // namespace measurement::throughput
