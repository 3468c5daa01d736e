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
    return peak > m_rule.size ? 100.0 : peak / m_rule.size * 100.0;
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
    m_sink->addPoint(time, m_pointSpeed, m_pointLevel);
    m_pointLevel = 0.0;
    m_pointSpeed = std::numeric_limits<double>::max();
}

/// Adds a frame whose level has been followed.
void Pass::addFrame(const Outline &outline)
{
    m_lastTime = outline.frame.timestamp + outline.lastTime;
    if (m_first) {
        const quint64 *stamps = outline.frame.stamps;
        const qint64 time = outline.frame.timestamp + static_cast<qint64>((stamps[1] - stamps[0]) / 250);
        m_lastPoint = time - m_settings.to;
        m_first = false;
    }
    m_statistics.minThroughput = std::min(m_statistics.minThroughput, speedOver(outline.longest));
    m_peakPercent = std::max(m_peakPercent, percentOf(outline.peak));
    if (outline.peak > m_rule.size)
        ++m_statistics.bufferOverflowCount;
    if (!m_sink)
        return;

    m_pointLevel = 0.0;
    if (nextPointTicks(outline) == never)
        lowerSpeed(speedOver(outline.longest));
    else
        addPoints(outline);
}

/// Ticks since the frame's first stamp from which on an interval's end yields
/// the next point; `never` where that lies behind the frame or the window.
quint64 Pass::nextPointTicks(const Outline &outline) const
{
    const qint64 earliest =
        std::max(m_settings.from - m_settings.to, addSaturated(m_lastPoint, m_spacing + 1));
    if (earliest > 0)
        return never;
    const qint64 time = addSaturated(earliest, m_settings.to - outline.frame.timestamp);
    if (time > outline.lastTime)
        return never;
    return time > 0 ? static_cast<quint64>(time) * 250 : 0;
}

void Pass::addPoints(const Outline &outline)
{
    Segment segment;
    double framePeak = 0.0;
    for (std::size_t block = 0; block < outline.blocks; ++block) {
        double level = outline.staysEmpty ? 0.0 : outline.startLevelOf[block];
        const std::size_t done = addBlockPoints(outline, block, segment, level, framePeak);
        if (done > 0 && done < outline.blockSize(block)) {
            extendSegment(outline.blockStamps(block) + done, outline.blockSize(block) - done, segment, level);
        } else if (done == 0) {
            segment.longest = std::max(segment.longest, outline.longestOf[block]);
            segment.peak = std::max(segment.peak, outline.staysEmpty ? 0.0 : outline.peakOf[block]);
        }
    }
    if (segment.longest > 0)
        lowerSpeed(speedOver(segment.longest));
}

/// Adds the points that lie inside one block.
/// \return intervals of the block up to and with the last point's, 0 for none
std::size_t Pass::addBlockPoints(const Outline &outline, std::size_t block, Segment &segment, double &level,
                                 double &framePeak)
{
    const quint64 *stamps = outline.blockStamps(block);
    const quint64 origin = outline.frame.stamps[0];
    const std::size_t size = outline.blockSize(block);
    std::size_t done = 0;
    for (;;) {
        const quint64 ticks = nextPointTicks(outline);
        if (done == size || ticks == never || stamps[size] - origin < ticks)
            return done;
        const quint64 *end = std::partition_point(stamps + done + 1, stamps + size,
                                                  [=](quint64 stamp) { return stamp - origin < ticks; });
        const qint64 time = outline.frame.timestamp + static_cast<qint64>((*end - origin) / 250);
        if (time > m_settings.to)
            return done;

        const std::size_t count = static_cast<std::size_t>(end - stamps) - done;
        extendSegment(stamps + done, count, segment, level);
        framePeak = std::max(framePeak, segment.peak);
        lowerSpeed(speedOver(segment.longest));
        // Once the buffer has run over, the rest of the frame shows it full.
        raiseLevel(framePeak > m_rule.size ? 100.0 : percentOf(segment.peak));
        emitPoint(time - m_settings.to);
        segment = Segment();
        done += count;
    }
}

/// Adds intervals of one block to the segment and moves the level over them.
void Pass::extendSegment(const quint64 *stamps, std::size_t count, Segment &segment, double &level) const
{
    const Extrema extrema = m_kernels.extrema(stamps, count);
    const double first = changeOver(extrema.shortest);
    const double second = changeOver(extrema.longest);
    segment.longest = std::max<quint64>(segment.longest, extrema.longest);
    level =
        advanceLevel(stamps, count, std::min(first, second), std::max(first, second), level, segment.peak);
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
    } else if (m_level > m_rule.size) {
        m_level = m_rule.size;
        percent = 100.0;
        overflowed = true;
    } else {
        percent = m_level / m_rule.size * 100.0;
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
