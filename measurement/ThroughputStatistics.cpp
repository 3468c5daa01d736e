#include "measurement/Log.h"
#include "measurement/ThroughputEngine.h"

#include <QMutexLocker>
#include <QThread>

#include <algorithm>
#include <limits>

namespace measurement {

namespace {

/// The engine's records as the model reads them, without a copy.
class RecordedFrames final : public throughput::FrameSource
{
public:
    RecordedFrames(const RecordList<CxCameraLineData::CxFrameData> &records, ExTimestampOrigin origin)
        : m_records(records)
        , m_origin(origin)
    {
    }

    std::size_t size() const override { return static_cast<std::size_t>(m_records.size()); }

    throughput::Frame at(std::size_t index) const override
    {
        const int position = static_cast<int>(index);
        // Records lie all over the memory, and a pass takes nothing else of most.
        if (position + ahead < m_records.size())
            prefetch(m_records.at(position + ahead));
        CxCameraLineData::CxFrameData &record = *m_records.at(position);
        return {record.frameTimestamp(m_origin), record.samples, record.sampleCount, record.sampleSpan,
                &record.outline};
    }

private:
    static constexpr int ahead = 12; ///< records; fewer come too late, more gain nothing

    static void prefetch(const CxCameraLineData::CxFrameData *record)
    {
        constexpr std::size_t line = 64;
        const char *bytes = reinterpret_cast<const char *>(record);
        for (std::size_t offset = 0; offset < sizeof *record; offset += line)
            __builtin_prefetch(bytes + offset);
    }

    const RecordList<CxCameraLineData::CxFrameData> &m_records;
    const ExTimestampOrigin m_origin;
};

throughput::Settings settingsOf(const CxCameraLineData &line, const ThroughputWindow &window)
{
    throughput::Settings settings;
    settings.sampleInterval = line.sampleInterval;
    settings.requiredMBps = static_cast<qint32>(line.avgTransportSpeedMBps);
    settings.bufferSize = line.internalBuffSize;
    settings.meanSpan = line.statAvg;
    settings.from = window.from;
    settings.to = window.to;
    settings.msPerPixel = window.msPerPixel;
    settings.resetBufferLevel = window.resetBufferLevel;
    return settings;
}

/// Intervals that are looked at in one hold of the mutex: one to four milliseconds
/// of work, for which a camera's driver has buffers.
constexpr quint64 sliceWork = Q_UINT64_C(1) << 19;

/// Frames that need no work any more are passed by as many at a time.
constexpr std::size_t sliceFrames = 1024;

/// Microseconds in which a waiting capture can take the mutex.
constexpr unsigned long captureTurn = 50;

/// Sizes the scratch arrays for the largest frame of the pass, normally the
/// first: frames differ only after a restart with another image size, and
/// resizing from frame to frame would allocate at every refresh.
bool provideScratch(CxCameraLineData &line, quint64 intervals)
{
    if (intervals == 0)
        return true;
    if (intervals > std::numeric_limits<unsigned int>::max())
        return false;
    return line.AllocateBuffers(static_cast<unsigned int>(intervals)) && line.calcBufSize >= intervals;
}

/// What is done of a pass in one hold of the mutex.
struct Slice
{
    throughput::Work work;
    quint64 intervals = 0; ///< of the frames in the window
    std::size_t taken = 0; ///< records of the list to which `work.progress` belongs
};

throughput::Scratch scratchOf(const CxCameraLineData &line)
{
    return {line.linkSpeedBuf, line.bufferDeltaBuf, line.sampleTimeBuf, line.calcBufSize};
}

/// One pass with the mutex held, or as much of it as the slice allows.
throughput::Outcome evaluateSlice(CxCameraLineData &line, const ThroughputWindow &window,
                                  throughput::PointSink *sink, Slice &slice)
{
    const QMutexLocker locker(&line.mutex);
    if (line.frames.isEmpty())
        return throughput::Outcome::Nothing;

    const RecordedFrames frames(line.frames, window.origin);
    const throughput::Settings settings = settingsOf(line, window);
    const throughput::FrameRange range = throughput::selectFrames(frames, settings);
    slice.intervals = range.intervals * (range.end - range.begin);
    slice.taken = line.frames.taken();
    if (!provideScratch(line, range.intervals)) {
        cxLogFailure("CxCameraLineData::calculateGraphsThrougput",
                     "Failed to allocate temporary buffers for internal calculations");
        return throughput::Outcome::Nothing;
    }

    throughput::Statistics statistics = {line.avgThroughput, line.minThroughput, line.maxBufferLevel,
                                         line.bufferOverflowCount};
    const throughput::Outcome outcome = throughput::evaluate(
        frames, range, settings, scratchOf(line), sink, statistics, throughput::bestKernels(), &slice.work);
    if (outcome == throughput::Outcome::Unfinished)
        return outcome;
    line.avgThroughput = statistics.avgThroughput;
    line.minThroughput = statistics.minThroughput;
    line.maxBufferLevel = statistics.maxBufferLevel;
    line.bufferOverflowCount = statistics.bufferOverflowCount;
    return outcome;
}

/// Goes on with the work where a slice has stopped. The capture may have added
/// frames and taken the oldest: what is found out may be of no use then, but what
/// a pass makes of it is right all the same.
/// \return whether there are frames left
bool continueSlice(CxCameraLineData &line, const ThroughputWindow &window, Slice &slice)
{
    const QMutexLocker locker(&line.mutex);
    throughput::Work work;
    work.allowed = sliceWork;
    const std::size_t takenSince = line.frames.taken() - slice.taken;
    if (takenSince <= slice.work.progress.frame) {
        work.progress = slice.work.progress;
        work.progress.frame -= takenSince;
    }
    slice = {work, slice.intervals, line.frames.taken()};

    const RecordedFrames frames(line.frames, window.origin);
    const throughput::Settings settings = settingsOf(line, window);
    const throughput::FrameRange range =
        throughput::selectSome(frames, settings, work.progress.frame, sliceFrames);
    if (range.begin == range.end || !provideScratch(line, std::max(range.intervals, line.calcBufSize)))
        return false;
    throughput::continueWork(frames, range, settings, scratchOf(line), slice.work);
    return true;
}

/// A pass in as many holds of the mutex as it takes, unless that is more work
/// than allowed.
throughput::Outcome evaluateInSlices(CxCameraLineData &line, const ThroughputWindow &window,
                                     throughput::PointSink *sink, Preparation &preparation)
{
    const quint64 before = preparation.done; // for other cameras
    quint64 intervals = 0;
    // A level that meets neither end of the buffer has to be followed anew
    // through everything whenever the capture drops the oldest frame. It must
    // not go on for ever.
    const auto isWorthSlices = [&] { return preparation.done - before <= 3 * intervals; };
    for (;;) {
        Slice slice;
        if (isWorthSlices())
            slice.work.allowed = sliceWork;
        const throughput::Outcome outcome = evaluateSlice(line, window, sink, slice);
        preparation.intervals += slice.intervals - intervals;
        intervals = slice.intervals;
        preparation.done += slice.work.done + slice.work.repeated;
        if (outcome != throughput::Outcome::Unfinished)
            return outcome;
        if (sink)
            sink->restart();
        bool isAtEnd = false;
        while (!isAtEnd && isWorthSlices() && preparation.done < preparation.allowed) {
            // A mutex that is taken again at once is not given to who waits for it.
            QThread::usleep(captureTurn);
            isAtEnd = !continueSlice(line, window, slice);
            preparation.done += slice.work.done + slice.work.repeated;
        }
        if (preparation.done >= preparation.allowed)
            return outcome;
        QThread::usleep(captureTurn);
    }
}

} // namespace

bool evaluateThroughput(CxCameraLineData &line, const ThroughputWindow &window, throughput::PointSink *sink)
{
    if (line.isExporting())
        return false;
    Preparation unlimited;
    return evaluateInSlices(line, window, sink, unlimited) == throughput::Outcome::Processed;
}

bool prepareThroughput(CxCameraLineData &line, const ThroughputWindow &window, Preparation &preparation)
{
    return line.isExporting() ||
           evaluateInSlices(line, window, nullptr, preparation) != throughput::Outcome::Unfinished;
}

} // namespace measurement

unsigned int CxCameraLineData::CxFrameData::calculateFrameSpeeds(unsigned int sampleInterval,
                                                                 int requiredMBps, double *linkSpeeds,
                                                                 double *bufferDeltas,
                                                                 unsigned long long *sampleTimes) const
{
    return measurement::throughput::frameSpeeds(samples, sampleCount, sampleInterval, requiredMBps,
                                                linkSpeeds, bufferDeltas, sampleTimes);
}

bool CxCameraLineData::calculateStatisticsThroughput(long long from, long long to, ExTimestampOrigin origin,
                                                     bool resetBufferLevel)
{
    measurement::ThroughputWindow window;
    window.from = from;
    window.to = to;
    window.origin = origin;
    window.resetBufferLevel = resetBufferLevel;
    return measurement::evaluateThroughput(*this, window, nullptr);
}
