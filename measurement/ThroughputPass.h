#pragma once

#include "measurement/ThroughputModel.h"

#include <array>
#include <limits>

namespace measurement::throughput {

/// One walk over the selected frames.
///
/// Straight evaluation costs two divisions and a handful of branches for each
/// interval. This walk looks at the intervals in blocks instead. The speed of an
/// interval falls and its buffer change grows with the interval's length, and
/// correct rounding keeps both orders, so the longest interval of a block gives
/// the block's lowest speed, and the extremes of its buffer changes tell
/// whether the level can move at all. Only where it can are the intervals
/// summed up one by one, in their order, because a sum of doubles depends on it.
///
/// Such sums are chains of dependent additions, which a processor can only
/// overlap across frames. So several frames are summed up side by side, each as
/// if it started empty. Where a frame turns out not to have, it is summed up
/// again, up to where the level meets the guessed one, as it does at the next
/// time it reaches an end of the buffer; from there on both are the same.
///
/// Frames with equal or backward stamps, and those with more points than blocks,
/// are evaluated interval by interval.
class Pass
{
public:
    Pass(const FrameSource &frames, const FrameRange &range, const Settings &settings, const Scratch &scratch,
         PointSink *sink, Statistics &statistics, const Kernels &kernels);

    bool run();

private:
    /// What a frame's blocks say about it.
    struct Outline
    {
        Frame frame;
        std::size_t intervals = 0;
        std::size_t blocks = 0;
        quint64 longest = 0;     ///< interval, ticks
        qint64 lastTime = 0;     ///< microseconds from the first stamp to the last
        double rate = 0.0;       ///< mean, MB/s
        double startLevel = 0.0; ///< bytes
        double endLevel = 0.0;   ///< bytes
        double peak = 0.0;       ///< bytes, highest level before it is cut to the size
        bool staysEmpty = false; ///< no change could lift the level off 0

        // Of each block, in the scratch arrays:
        quint64 *longestOf = nullptr; ///< interval, ticks
        double *largestOf = nullptr;  ///< change of the level, bytes
        double *smallestOf = nullptr;
        double *startLevelOf = nullptr; ///< bytes; set when the level is followed
        double *peakOf = nullptr;

        std::size_t blockSize(std::size_t block) const;
        const quint64 *blockStamps(std::size_t block) const;
    };

    /// The part of a frame since its last point.
    struct Segment
    {
        quint64 longest = 0;
        double peak = 0.0;
    };

    std::size_t advance(std::size_t index);
    void drain(qint64 timestamp);
    double meanRate(const Frame &frame) const;
    void countFrame(double rate);

    std::size_t collect(std::size_t index);
    bool describe(const Frame &frame, std::size_t slot, Outline &outline) const;
    bool describeBlocks(Outline &outline) const;
    bool isDense(const Outline &outline) const;
    double changeOver(quint64 interval) const;

    void followLevels(std::size_t count);
    void followBlock(const std::array<Outline *, laneCount> &lanes, std::size_t count, std::size_t block,
                     bool together, std::array<double, laneCount> &levels,
                     std::array<double, laneCount> &peaks) const;
    std::size_t correctLevel(Outline &outline, double startLevel) const;
    void followLanes(const std::array<Outline *, laneCount> &lanes, std::size_t count) const;
    double advanceLevel(const quint64 *stamps, std::size_t count, double smallest, double largest,
                        double level, double &peak) const;

    void addFrame(const Outline &outline);
    void addPoints(const Outline &outline);
    std::size_t addBlockPoints(const Outline &outline, std::size_t block, Segment &segment, double &level,
                               double &framePeak);
    quint64 nextPointTicks(const Outline &outline) const;
    void extendSegment(const quint64 *stamps, std::size_t count, Segment &segment, double &level) const;
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
    const LevelRule m_rule;
    const qint64 m_spacing;   ///< microseconds that two points are further apart than
    const bool m_plainWindow; ///< no sum of its times can leave the range

    std::array<Outline, laneCount> m_batch;
    std::size_t m_unguessed = 0; ///< frames still to be taken one by one

    double m_level = 0.0;  ///< bytes
    double m_rate = 0.0;   ///< mean rate of the frame before, MB/s
    qint64 m_lastTime = 0; ///< end of the last interval, microseconds; 0: none to drain from
    double m_peakPercent = 0.0;
    double m_pointLevel = 0.0;                                ///< highest level for the next point, percent
    double m_pointSpeed = std::numeric_limits<double>::max(); ///< lowest speed for it
    qint64 m_lastPoint = 0;                                   ///< relative to the window's end, microseconds
    bool m_first = true;                                      ///< no interval seen yet
    double m_rateSum = 0.0;
    quint64 m_frameCount = 0;
};

} // namespace measurement::throughput
