#pragma once

#include "measurement/FrameOutline.h"

#include <QtGlobal>

#include <cstddef>
#include <limits>

/// The throughput model: what the link carried, how full that leaves the
/// camera's frame buffer, and the few numbers and points the user sees of it.
///
/// Stamps count ticks of 4 ns and are compared as unsigned numbers. Frame times
/// are microseconds, speeds bytes a microsecond (MB/s), levels bytes or percent
/// of the buffer. Nothing here knows how frames are stored, or locks; memory is
/// allocated only for outlines that nobody made before.
namespace measurement::throughput {

/// One stored frame.
struct Frame
{
    qint64 timestamp = 0;            ///< of its first stamp, microseconds
    const quint64 *stamps = nullptr; ///< 4-ns ticks; may be null
    quint64 count = 0;               ///< of stamps
    qint64 span = 0;                 ///< last stamp minus first, ticks
    FrameOutline *outline = nullptr; ///< kept with the frame; made, and made anew, where needed. Null: none
};

/// The stored frames, oldest first.
class FrameSource
{
public:
    virtual ~FrameSource() = default;
    virtual std::size_t size() const = 0;
    virtual Frame at(std::size_t index) const = 0;
};

/// Takes the points of the graphs, in the order of the pass.
class PointSink
{
public:
    virtual ~PointSink() = default;
    /// \param time microseconds relative to the window's end, at most 0
    /// \param minSpeed lowest speed above 0 since the point before, MB/s; the
    /// largest double where there was none
    /// \param maxLevel highest level since the point before or the start of the
    /// frame, whichever is later, percent
    virtual void addPoint(qint64 time, double minSpeed, double maxLevel) = 0;
    /// The pass begins again: forgets the points so far.
    virtual void restart() = 0;
};

struct Settings
{
    quint32 sampleInterval = 0; ///< bytes between two stamps
    qint32 requiredMBps = 0;    ///< what the sensor produces
    quint64 bufferSize = 0;     ///< bytes
    double meanSpan = 0.0;      ///< mean time from a frame's first stamp to its last, microseconds
    qint64 from = 0;            ///< visible window, microseconds
    qint64 to = 0;
    double msPerPixel = 0.0;       ///< width of a pixel column, milliseconds
    bool resetBufferLevel = false; ///< every frame starts with an empty buffer
};

/// The frames that take part in a pass: those of the visible window and of a
/// margin on both sides, in which the level builds up.
struct FrameRange
{
    std::size_t begin = 0;
    std::size_t end = 0;   ///< one past the last
    quint64 intervals = 0; ///< the most that one of them, or the first stored frame, can have
};

FrameRange selectFrames(const FrameSource &frames, const Settings &settings);

/// Some of the frames that selectFrames() selects.
/// \param begin the first of them
FrameRange selectSome(const FrameSource &frames, const Settings &settings, std::size_t begin,
                      std::size_t most);

/// Working memory of a pass: three arrays of `capacity` elements, at least
/// FrameRange::intervals.
struct Scratch
{
    double *speeds = nullptr;
    double *deltas = nullptr;
    quint64 *times = nullptr;
    quint64 capacity = 0;
};

struct Statistics
{
    double avgThroughput = 0.0;      ///< MB/s, mean of the frames' mean rates
    double minThroughput = 0.0;      ///< MB/s; the largest double when no interval was seen
    double maxBufferLevel = 0.0;     ///< percent
    quint64 bufferOverflowCount = 0; ///< frames in which the level passed the buffer's size
};

enum class Outcome {
    Nothing,    ///< no frame took part
    Processed,  ///< at least one did
    Unfinished, ///< there was more work than allowed; the statistics mean nothing
};

/// How far a pass has come.
struct Progress
{
    std::size_t frame = 0; ///< the next one
    double level = 0.0;    ///< bytes, at the end of the frame before
    double rate = 0.0;     ///< mean rate of the frame before, MB/s
    qint64 lastTime = 0;   ///< end of the frame before, microseconds; 0: nothing to drain from
};

/// Intervals that a pass has to look at because outlines do not tell of them.
struct Work
{
    quint64 allowed = std::numeric_limits<quint64>::max();
    quint64 done = 0;     ///< more than allowed by up to a frame of its own and one of guesses
    quint64 repeated = 0; ///< intervals that every pass has to look at, not counted as done
    Progress progress;    ///< of a pass that had more to do than allowed
};

/// Walks the selected frames. Every statistic and point has exactly the bits
/// that evaluating each interval on its own in double precision gives.
///
/// What had to be found out about frames stays in their outlines, so that the
/// next pass need not look at their stamps again.
/// \param sink null: statistics only
/// \param statistics in and out: the average stays as it was when no frame takes part
/// \param kernels inner loops; all sets give the same results
/// \param work null: as much as it takes. A pass that comes to the end of what is
/// allowed has got further than the one before, as long as the frames are the
/// same; after some more calls one gets through.
Outcome evaluate(const FrameSource &frames, const FrameRange &range, const Settings &settings,
                 const Scratch &scratch, PointSink *sink, Statistics &statistics,
                 const Kernels &kernels = bestKernels(), Work *work = nullptr);

/// Does the work of an unfinished pass on some more frames, without a walk over
/// those before them.
/// \param range from Work::progress on
/// \param work `progress` in and out; repeated intervals count as done here
void continueWork(const FrameSource &frames, const FrameRange &range, const Settings &settings,
                  const Scratch &scratch, Work &work, const Kernels &kernels = bestKernels());

/// Speed, buffer change and end time of each interval of one frame; intervals
/// between equal stamps are left out.
/// \param speeds MB/s; \param deltas bytes, positive where the buffer fills;
/// \param times whole microseconds since the first stamp. Each holds count - 1
/// entries or is null.
/// \return the number of entries
unsigned int frameSpeeds(const quint64 *stamps, quint64 count, quint32 sampleInterval, qint32 requiredMBps,
                         double *speeds, double *deltas, quint64 *times);

} // namespace measurement::throughput
