#pragma once

#include "measurement/LevelFollower.h"
#include "measurement/ThroughputModel.h"

#include <limits>

namespace measurement::throughput {

/// One walk over the selected frames.
///
/// Straight evaluation costs two divisions and a handful of branches for each
/// interval. This walk looks at the outlines of frames instead, and at the
/// blocks and stamps of a frame only around the points that lie in it. The speed
/// of an interval falls and its buffer change grows with the interval's length,
/// and correct rounding keeps both orders, so the longest interval gives the
/// lowest speed. Likewise the highest level in bytes gives the highest in percent.
///
/// Frames without outline, those whose stamps step back or are all the same, those
/// at times near the ends of the range and those with so many points that an
/// outline saves nothing are evaluated interval by interval.
class Pass
{
public:
    Pass(const FrameSource &frames, const FrameRange &range, const Settings &settings, const Scratch &scratch,
         PointSink *sink, Statistics &statistics, const Kernels &kernels, Work &work);

    Outcome run();

    /// From Work::progress to the range's end, or to that of what is allowed. No
    /// statistics, no points.
    void continueWork();

private:
    /// The part of a frame since its last point.
    struct Segment
    {
        quint64 longest = 0; ///< interval, ticks
        double peak = 0.0;   ///< bytes
    };

    void keepProgress(std::size_t next);
    void addNext(std::size_t index);
    void drain(qint64 timestamp);
    void countFrame(const Frame &frame);

    bool useOutline(const Frame &frame);
    bool isDense(const Frame &frame) const;
    void followLevel(const Frame &frame, std::size_t index);
    void guessLevels(std::size_t index);
    bool isFollowed(const FrameOutline &outline) const;

    void addOutlined(const Frame &frame);
    void addPoints(const Frame &frame, quint64 due);
    static std::size_t blockOf(const Frame &frame, std::size_t first, quint64 due);
    static void extendByBlock(const FrameOutline &outline, std::size_t block, Segment &segment);
    std::size_t addBlockPoints(const Frame &frame, std::size_t block, quint64 &due, Segment &segment,
                               double &level, double &framePeak);
    quint64 nextPointTicks(const Frame &frame) const;
    void extendSegment(const FrameOutline &outline, const quint64 *stamps, std::size_t count,
                       Segment &segment, double &level) const;
    void addSingly(const Frame &frame);
    void addInterval(double speed, qint64 time, double change, bool &overflowed);

    double speedOver(quint64 interval) const;
    double percentOf(double peak) const;
    void lowerSpeed(double speed);
    void raiseLevel(double percent);
    void emitPoint(qint64 time);

    const FrameSource &m_frames;
    const FrameRange m_range;
    const Settings m_settings;
    const Scratch m_scratch;
    PointSink *const m_sink;
    Statistics &m_statistics;
    const Kernels &m_kernels;
    const LevelFollower m_follower;
    const double m_bufferSize;
    const qint64 m_spacing;   ///< microseconds that two points are further apart than
    const bool m_plainWindow; ///< no sum of its times can leave the range

    Work &m_work;
    std::size_t m_guessed = 0;   ///< frames followed from a guess and not yet met
    quint64 m_guessWork = 0;     ///< intervals that guessing these cost
    quint64 m_correction = 0;    ///< intervals that correcting them cost
    std::size_t m_unguessed = 0; ///< frames still to be followed one by one

    double m_level = 0.0;       ///< bytes
    double m_rate = 0.0;        ///< mean rate of the frame before, MB/s
    qint64 m_lastTime = 0;      ///< end of the last interval, microseconds; 0: none to drain from
    double m_peak = 0.0;        ///< bytes, of the outlined frames
    double m_peakPercent = 0.0; ///< of the others
    quint64 m_longest = 0;      ///< interval of the outlined frames, ticks
    double m_pointLevel = 0.0;  ///< highest level for the next point, percent
    double m_pointSpeed = std::numeric_limits<double>::max(); ///< lowest speed for it
    quint64 m_pointLongest = 0; ///< interval for it, of outlined frames; its speed is in no m_pointSpeed yet
    qint64 m_lastPoint = 0;     ///< relative to the window's end, microseconds
    bool m_first = true;        ///< no interval seen yet
    double m_rateSum = 0.0;
    quint64 m_frameCount = 0;
};

} // namespace measurement::throughput
