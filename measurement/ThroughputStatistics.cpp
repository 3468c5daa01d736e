#include "measurement/Log.h"
#include "measurement/ThroughputEngine.h"

#include <QMutexLocker>

#include <limits>

namespace measurement {

namespace {

/// The engine's records as the model reads them, without a copy.
class RecordedFrames final : public throughput::FrameSource
{
public:
    RecordedFrames(const QList<CxCameraLineData::CxFrameData *> &records, ExTimestampOrigin origin)
        : m_records(records)
        , m_origin(origin)
    {
    }

    std::size_t size() const override { return static_cast<std::size_t>(m_records.size()); }

    throughput::Frame at(std::size_t index) const override
    {
        const CxCameraLineData::CxFrameData &record = *m_records.at(static_cast<int>(index));
        throughput::Frame frame;
        frame.timestamp = record.frameTimestamp(m_origin);
        frame.stamps = record.samples;
        frame.count = record.sampleCount;
        frame.span = record.sampleSpan;
        return frame;
    }

private:
    const QList<CxCameraLineData::CxFrameData *> &m_records;
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

} // namespace

bool evaluateThroughput(CxCameraLineData &line, const ThroughputWindow &window, throughput::PointSink *sink)
{
    if (line.isExporting())
        return false;
    const QMutexLocker locker(&line.mutex);
    if (line.frames.isEmpty())
        return false;

    const RecordedFrames frames(line.frames, window.origin);
    const throughput::Settings settings = settingsOf(line, window);
    const throughput::FrameRange range = throughput::selectFrames(frames, settings);
    if (!provideScratch(line, range.intervals)) {
        cxLogFailure("CxCameraLineData::calculateGraphsThrougput",
                     "Failed to allocate temporary buffers for internal calculations");
        return false;
    }

    const throughput::Scratch scratch = {line.linkSpeedBuf, line.bufferDeltaBuf, line.sampleTimeBuf,
                                         line.calcBufSize};
    throughput::Statistics statistics = {line.avgThroughput, line.minThroughput, line.maxBufferLevel,
                                         line.bufferOverflowCount};
    const bool processed = throughput::evaluate(frames, range, settings, scratch, sink, statistics);
    line.avgThroughput = statistics.avgThroughput;
    line.minThroughput = statistics.minThroughput;
    line.maxBufferLevel = statistics.maxBufferLevel;
    line.bufferOverflowCount = statistics.bufferOverflowCount;
    return processed;
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
