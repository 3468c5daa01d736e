#include "measurement/CameraLineData.h"

#include "measurement/AcquisitionThread.h"
#include "measurement/LevelFollower.h"
#include "measurement/RaceCheck.h"

#include <QMutexLocker>
#include <QThread>

#include <memory>

namespace {

template <typename T> void freeArray(T *&array)
{
    delete[] array;
    array = nullptr;
}

} // namespace

CxCameraLineData::CxFrameData::~CxFrameData()
{
    delete[] samples;
}

void CxCameraLineData::CxFrameData::allocateSamples(quint64 count)
{
    using measurement::throughput::BlockOutline;
    static_assert(sizeof(BlockOutline) % sizeof(quint64) == 0 && alignof(BlockOutline) <= alignof(quint64));
    const std::size_t blockTotal = measurement::throughput::blockCount(count);
    delete[] samples;
    samples = nullptr;
    sampleCount = 0;
    outline.describe(nullptr, 0);
    samples = new quint64[count + blockTotal * (sizeof(BlockOutline) / sizeof(quint64))];
    sampleCount = count;
    blocks = reinterpret_cast<BlockOutline *>(samples + count);
    std::uninitialized_default_construct_n(blocks, blockTotal);
}

void CxCameraLineData::CxFrameData::describeSamples(const measurement::throughput::LevelKey &settings)
{
    // The level of one frame is a chain of sums, which takes longer than gathering
    // the samples where these are few. A pass follows such frames side by side.
    constexpr quint64 fewest = 1024;
    outline.describe(samples, sampleCount, blocks);
    if (outline.isPlain() && sampleCount >= fewest)
        measurement::throughput::LevelFollower(settings).follow(outline, 0.0);
}

qint64 CxCameraLineData::CxFrameData::frameTimestamp(ExTimestampOrigin origin) const
{
    return origin == TimestampOriginComputer ? computerTimestamp : cameraTimestamp;
}

qint64 CxCameraLineData::CxCounterData::frameTimestamp(ExTimestampOrigin origin) const
{
    return origin == TimestampOriginComputer ? computerTimestamp : cameraTimestamp;
}

CxCameraLineData::CxCounterInfo::CxCounterInfo(ZU_COUNTER_SELECTOR counter, const QString &displayName)
    : selector(counter)
    , name(displayName)
{
    measurement::exemptFromRaceCheck(value);
}

CxCameraLineData::CxCameraLineData()
{
    measurement::exemptFromRaceCheck(running);
    measurement::exemptFromRaceCheck(stopRequested);
    measurement::exemptFromRaceCheck(exportingThread);

    counterInfos.append(new CxCounterInfo(ZU_CNT_SEL_TRANSPORT_SKIP, QStringLiteral("Transport skip")));
    counterInfos.append(new CxCounterInfo(ZU_CNT_SEL_API_SKIP, QStringLiteral("API skip")));
    counterInfos.append(new CxCounterInfo(ZU_CNT_SEL_TRANSFERRED, QStringLiteral("Transferred")));
    counterInfos.append(
        new CxCounterInfo(ZU_CNT_SEL_MISSED_TRG_OVERLAP, QStringLiteral("Missed trg. overlap")));
    counterInfos.append(
        new CxCounterInfo(ZU_CNT_SEL_MISSED_TRG_OVERFLOW, QStringLiteral("Missed trg overflow")));
    counterInfos.append(new CxCounterInfo(ZU_CNT_SEL_BUFFER_OVERFLOW, QStringLiteral("Buffer overflow")));
}

CxCameraLineData::~CxCameraLineData()
{
    if (acquisitionThread) {
        acquisitionThread->quit();
        acquisitionThread->wait();
        delete acquisitionThread;
    }
    clearData();
    qDeleteAll(counterInfos);
}

void CxCameraLineData::clearData()
{
    qDeleteAll(frames);
    frames.clear();
    qDeleteAll(counterData);
    counterData.clear();

    freeArray(linkSpeedBuf);
    freeArray(bufferDeltaBuf);
    freeArray(sampleTimeBuf);
    calcBufSize = 0;
}

bool CxCameraLineData::AllocateBuffers(unsigned int count)
{
    if (measureMode != MeasureModeThroughput || count == calcBufSize)
        return true;

    freeArray(linkSpeedBuf);
    freeArray(bufferDeltaBuf);
    freeArray(sampleTimeBuf);
    // An allocation below may throw; the size must not promise what is gone.
    calcBufSize = 0;

    linkSpeedBuf = new double[count];
    bufferDeltaBuf = new double[count];
    sampleTimeBuf = new quint64[count];
    calcBufSize = count;
    return true;
}

bool CxCameraLineData::isMeasurementRunning()
{
    const QMutexLocker locker(isExporting() ? nullptr : &mutex);
    return running.load();
}

measurement::throughput::LevelKey CxCameraLineData::levelKey() const
{
    return {sampleInterval, static_cast<qint32>(avgTransportSpeedMBps), internalBuffSize};
}

bool CxCameraLineData::isExporting() const
{
    return exportingThread == QThread::currentThreadId();
}
