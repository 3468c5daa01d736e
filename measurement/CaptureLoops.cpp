#include "measurement/CameraLineData.h"

#include "measurement/FrameSampling.h"
#include "measurement/Log.h"
#include "measurement/RunningStatistics.h"

#include <QMutexLocker>
#include <QTime>
#include <QVarLengthArray>

#include <memory>

namespace {

constexpr unsigned int captureTimeoutMs = 5000;
constexpr qint64 microsecondsPerSecond = 1000000;
constexpr double ticksPerMicrosecond = 250.0;

/// Puts both kinds of time stamp of one run on the same scale: microseconds
/// since local midnight at the run's start.
class RunClock
{
public:
    explicit RunClock(QElapsedTimer &elapsedTimer)
        : timer(elapsedTimer)
    {
        const QTime now = QTime::currentTime();
        startOfRun = now.isValid() ? qint64(now.msecsSinceStartOfDay()) * 1000 : 0;
        timer.start();
    }

    qint64 computerTimestamp() const { return timer.nsecsElapsed() / 1000 + startOfRun; }

    qint64 cameraTimestamp(const ZU_IMG &image) const
    {
        return qint64(image.timestampSeconds) * microsecondsPerSecond + image.timestampMicroseconds +
               startOfRun;
    }

private:
    QElapsedTimer &timer;
    qint64 startOfRun;
};

bool captureImage(void *camera, ZU_IMG &image)
{
    image = ZU_IMG{};
    image.size = sizeof image;
    return zuApi_GetImage(camera, captureTimeoutMs, &image, nullptr, true) && image.data;
}

/// Called with the engine's mutex held.
void publish(CxCameraLineData &line, const measurement::RunningStatistics &statistics)
{
    line.statAvg = statistics.mean;
    line.statMax = statistics.maximum;
    line.statMin = statistics.minimum;
    line.statCount = statistics.count;
}

/// Records taken out of a list under the mutex and deleted without it. A full
/// list loses one record a frame, so the array hardly ever needs the heap.
template <typename Record> using Dropped = QVarLengthArray<Record *, 16>;

/// Takes the oldest records until the list holds at most `capacity` + 1. A
/// capacity below -1 empties the list.
template <typename Record>
void trim(measurement::RecordList<Record> &records, qint64 capacity, Dropped<Record> &dropped)
{
    while (!records.isEmpty() && records.size() - 1 > capacity)
        dropped.append(records.takeFirst());
}

template <typename Record> void deleteAll(Dropped<Record> &dropped)
{
    qDeleteAll(dropped);
    dropped.clear();
}

std::unique_ptr<CxCameraLineData::CxFrameData> sampleFrame(const ZU_IMG &image, unsigned int sampleInterval)
{
    const measurement::SamplePlan plan = measurement::planSamples(image.width, image.height, sampleInterval);
    auto frame = std::make_unique<CxCameraLineData::CxFrameData>();
    frame->allocateSamples(plan.count);
    const std::span<measurement::Stamp> samples(frame->samples, plan.count);
    measurement::gatherSamples(static_cast<const std::byte *>(image.data), plan, samples);
    frame->sampleSpan = measurement::stampSpan(samples);
    return frame;
}

} // namespace

void CxCameraLineData::runMeasureLoopThrougput()
{
    const RunClock clock(elapsedTimer);
    measurement::RunningStatistics statistics;
    Dropped<CxFrameData> dropped;
    QString startLine = QStringLiteral("Start Measure Throiughput with sampleInterval %1, "
                                       "internlaBuffSize %2, avgTransportSpeedMBps %3");

    QMutexLocker locker(&mutex);
    // The owner may edit the settings for its graphs while this run goes on.
    const unsigned int interval = sampleInterval;
    const qint64 capacity = maxSamples;
    measurement::throughput::LevelKey levelSettings = levelKey();
    startLine = startLine.arg(interval).arg(internalBuffSize).arg(avgTransportSpeedMBps);
    publish(*this, statistics);
    locker.unlock();
    cxLog(startLine);

    ZU_IMG image;
    while (!stopRequested) {
        if (!captureImage(cameraHandle, image)) {
            cxLogFailure("CxCameraLineData::runMeasureLoopThrougput",
                         "zuApi_GetImage failed to capture image");
            continue;
        }
        std::unique_ptr<CxFrameData> frame = sampleFrame(image, interval);
        frame->computerTimestamp = clock.computerTimestamp();
        frame->frameNumber = image.frameNumber;
        frame->cameraTimestamp = clock.cameraTimestamp(image);
        frame->describeSamples(levelSettings);
        const qint64 count = qint64(frame->sampleCount);
        statistics.add(double(frame->sampleSpan) / ticksPerMicrosecond);

        locker.relock();
        publish(*this, statistics);
        frames.append(frame.release());
        trim(frames, count == 0 ? 0 : capacity / count, dropped);
        levelSettings = levelKey();
        locker.unlock();
        deleteAll(dropped);
    }
}

void CxCameraLineData::runMeasureLoopAcquisition()
{
    const RunClock clock(elapsedTimer);
    measurement::RunningStatistics statistics;
    Dropped<CxCounterData> dropped;

    QMutexLocker locker(&mutex);
    const qint64 capacity = maxSamples;
    publish(*this, statistics);
    locker.unlock();

    qint64 previousTimestamp = 0;
    ZU_IMG image;
    while (!stopRequested) {
        if (!captureImage(cameraHandle, image)) {
            cxLogFailure("CxCameraLineData::runMeasureLoopAcquisition",
                         "zuApi_GetImage failed to capture image");
            continue;
        }
        const qint64 timestamp = clock.cameraTimestamp(image);
        ReadCounterValues();
        auto record = std::make_unique<CxCounterData>();
        record->computerTimestamp = clock.computerTimestamp();
        record->cameraTimestamp = timestamp;
        record->frameNumber = image.frameNumber;
        record->transportSkip = GetCounterValue(ZU_CNT_SEL_TRANSPORT_SKIP);
        record->apiSkip = GetCounterValue(ZU_CNT_SEL_API_SKIP);
        record->missedTrgOverlap = GetCounterValue(ZU_CNT_SEL_MISSED_TRG_OVERLAP);
        record->missedTrgOverflow = GetCounterValue(ZU_CNT_SEL_MISSED_TRG_OVERFLOW);
        record->bufferOverflow = GetCounterValue(ZU_CNT_SEL_BUFFER_OVERFLOW);

        locker.relock();
        counterData.append(record.release());
        if (previousTimestamp > 0) {
            statistics.add(double(timestamp - previousTimestamp));
            publish(*this, statistics);
        }
        trim(counterData, capacity, dropped);
        locker.unlock();
        deleteAll(dropped);
        previousTimestamp = timestamp;
    }
}
