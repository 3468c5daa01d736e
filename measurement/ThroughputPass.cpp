#include "measurement/ThroughputPass.h"

#include "measurement/LinkDrain.h"
#include "measurement/Saturate.h"

#include <algorithm>
#include <array>

namespace measurement::throughput {

namespace {

/// Times up to here, some 36 000 years, can be added and subtracted freely.
constexpr qint64 plainTime = Q_INT64_C(1) << 60;

/// Frames followed one by one after guessing has cost more than it gained.
constexpr std::size_t framesUnguessed = 64;

/// Intervals between two points below which a frame is evaluated interval by
/// interval: a bisection and two short scans a point cost as much as two to four.
constexpr double fewestIntervals = 4.0;

bool isPlain(qint64 time)
{
    return time > -plainTime && time < plainTime;
}

} // namespace

Pass::Pass(const FrameSource &frames, const FrameRange &range, const Settings &settings,
           const Scratch &scratch, PointSink *sink, Statistics &statistics, const Kernels &kernels,
           Work &work)
    : m_frames(frames)
    , m_range(range)
    , m_settings(settings)
    , m_scratch(scratch)
    , m_sink(sink)
    , m_statistics(statistics)
    , m_kernels(kernels)
    , m_follower({settings.sampleInterval, settings.requiredMBps, settings.bufferSize}, kernels)
    , m_bufferSize(static_cast<double>(settings.bufferSize))
    , m_spacing(truncateSaturated(settings.msPerPixel * 1000.0))
    , m_plainWindow(isPlain(settings.from) && isPlain(settings.to) && isPlain(m_spacing))
    , m_work(work)
{
}

Outcome Pass::run()
{
    Q_ASSERT(m_scratch.capacity >= m_range.intervals);
    m_statistics.maxBufferLevel = 0.0;
    m_statistics.bufferOverflowCount = 0;
    m_statistics.minThroughput = std::numeric_limits<double>::max();

    for (std::size_t index = m_range.begin; index < m_range.end; ++index) {
        if (m_work.done >= m_work.allowed) {
            keepProgress(index);
            return Outcome::Unfinished;
        }
        addNext(index);
    }
    if (m_frameCount == 0)
        return Outcome::Nothing;
    if (m_longest > 0)
        m_statistics.minThroughput = std::min(m_statistics.minThroughput, speedOver(m_longest));
    m_statistics.maxBufferLevel = std::max(m_peakPercent, percentOf(m_peak));
    m_statistics.avgThroughput = m_rateSum / static_cast<double>(m_frameCount);
    return Outcome::Processed;
}

void Pass::continueWork()
{
    m_level = m_work.progress.level;
    m_rate = m_work.progress.rate;
    m_lastTime = m_work.progress.lastTime;
    std::size_t index = m_range.begin;
    for (; index < m_range.end && m_work.done + m_work.repeated < m_work.allowed; ++index)
        addNext(index);
    keepProgress(index);
}

void Pass::keepProgress(std::size_t next)
{
    m_work.progress = {next, m_level, m_rate, m_lastTime};
}

void Pass::addNext(std::size_t index)
{
    const Frame frame = m_frames.at(index);
    drain(frame.timestamp);
    if (useOutline(frame)) {
        followLevel(frame, index);
        addOutlined(frame);
        m_level = frame.outline->endLevel();
    } else {
        m_work.repeated += frame.count;
        addSingly(frame);
    }
    countFrame(frame);
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

void Pass::countFrame(const Frame &frame)
{
    m_rate = meanRate(m_settings.sampleInterval, frame.count, frame.span);
    m_rateSum += m_rate;
    ++m_frameCount;
}

/// Whether the frame can be told by its outline, which is made where it is missing.
bool Pass::useOutline(const Frame &frame)
{
    if (!frame.outline || !m_plainWindow || !isPlain(frame.timestamp))
        return false;
    if (!frame.outline->describes(frame.stamps, frame.count)) {
        frame.outline->describe(frame.stamps, frame.count, nullptr, m_kernels);
        m_work.done += frame.count;
    }
    return frame.outline->isPlain() && !isDense(frame);
}

/// Whether the frame has so many points that its outline saves nothing.
bool Pass::isDense(const Frame &frame) const
{
    const qint64 start = frame.timestamp;
    const qint64 length = frame.outline->lastTime();
    if (!m_sink || start > m_settings.to || start + length < m_settings.from)
        return false;
    const double points = static_cast<double>(length) / (static_cast<double>(m_spacing) + 1.0);
    return m_spacing < 0 || points * fewestIntervals > static_cast<double>(frame.count);
}

/// Whether the outline's levels are of these settings.
bool Pass::isFollowed(const FrameOutline &outline) const
{
    return outline.startLevel() >= 0.0 && outline.key() == m_follower.key();
}

void Pass::followLevel(const Frame &frame, std::size_t index)
{
    if (!isFollowed(*frame.outline))
        guessLevels(index);
    const quint64 work = m_follower.follow(*frame.outline, m_level);
    m_work.done += work;
    if (m_guessed == 0)
        return;
    m_correction += work;
    if (--m_guessed == 0 && m_correction * 2 > m_guessWork)
        m_unguessed = framesUnguessed;
}

/// Follows the level through this frame and those after it that were not
/// followed yet, as if each started with an empty buffer.
void Pass::guessLevels(std::size_t index)
{
    // Of large frames, not so many that they are more work than allowed.
    const quint64 length = m_frames.at(index).count;
    const std::size_t affordable = std::max<quint64>(1, m_work.allowed / std::max<quint64>(1, length));
    std::size_t most = std::min({laneCount, m_range.end - index, affordable});
    if (m_unguessed > 0 && !m_settings.resetBufferLevel) {
        --m_unguessed;
        most = 1;
    }
    std::array<FrameOutline *, laneCount> outlines = {};
    std::size_t count = 0;
    for (; count < most; ++count) {
        const Frame frame = m_frames.at(index + count);
        if (frame.count != length || !useOutline(frame) || isFollowed(*frame.outline))
            break;
        outlines[count] = frame.outline;
    }
    m_guessed = count;
    m_guessWork = m_follower.followEmpty(outlines, count);
    m_correction = 0;
    m_work.done += m_guessWork;
}

} // namespace measurement::throughput
