#include "cli/MeasureSession.h"

#include "zuCore/CxCameraManager.h"
#include "zuCore/CxCameraParameters.h"

#include <algorithm>

namespace cli {

namespace {

QString displayName(void *camera)
{
    const CxCameraParameters *parameters = CxCameraManager::instance()->cameraParameters(camera);
    if (!parameters)
        return QStringLiteral("camera");
    const CxCameraInfo info = parameters->cameraInfo();
    const QString identifier = info.userId.isEmpty() ? info.serialNumber : info.userId;
    return QStringLiteral("%1 (%2)").arg(info.modelName, identifier);
}

/// First and last stored time stamp of a record list.
struct StoredRange
{
    long long from = 0;
    long long to = 0;
};

StoredRange storedRange(const CxCameraLineData &engine, ExTimestampOrigin origin)
{
    if (engine.frames.isEmpty())
        return {};
    // The last frame's own samples lie behind its time stamp.
    const long long lastSpan = engine.frames.last()->sampleSpan / 250 + 1;
    return {engine.frames.first()->frameTimestamp(origin),
            engine.frames.last()->frameTimestamp(origin) + lastSpan};
}

/// Frames of the run, including those whose records fell to the capacity.
unsigned long long capturedFrames(const CxCameraLineData &engine)
{
    if (engine.measureMode == MeasureModeThroughput)
        return engine.statCount;
    // An interval needs two frames.
    return engine.counterData.isEmpty() ? 0 : engine.statCount + 1;
}

} // namespace

MeasureSession::MeasureSession(const Options &options, QObject *parent)
    : QObject(parent)
    , m_options(options)
{
    connect(CxCameraManager::instance(), &CxCameraManager::cameraClosed, this, &MeasureSession::cameraClosed);
}

MeasureSession::~MeasureSession()
{
    stop();
}

int MeasureSession::start()
{
    const QList<ZUCORE_HANDLE> handles = CxCameraManager::instance()->openedCameras();
    for (ZUCORE_HANDLE handle : handles) {
        Line line;
        line.engine = std::make_unique<CxCameraLineData>();
        line.engine->cameraHandle = handle;
        line.engine->cameraName = displayName(handle);
        line.engine->measureMode = m_options.mode;
        if (line.engine->startMeasurement(m_options.samplePeriod, m_options.capacity))
            line.state = CameraState::Measuring;
        m_lines.push_back(std::move(line));
    }
    return static_cast<int>(std::ranges::count(m_lines, CameraState::Measuring, &Line::state));
}

void MeasureSession::stop()
{
    for (Line &line : m_lines) {
        if (line.engine->stopMeasurement() && line.state == CameraState::Measuring)
            line.state = CameraState::Stopped;
    }
}

bool MeasureSession::isMeasuring() const
{
    return std::ranges::any_of(m_lines,
                               [](const Line &line) { return line.state == CameraState::Measuring; });
}

void MeasureSession::cameraClosed(ZUCORE_HANDLE hCam)
{
    const auto line = std::ranges::find_if(
        m_lines, [hCam](const Line &candidate) { return candidate.engine->cameraHandle == hCam; });
    if (line == m_lines.end() || line->state != CameraState::Measuring)
        return;
    line->engine->stopMeasurement();
    line->state = CameraState::Lost;
    if (!isMeasuring())
        Q_EMIT allCamerasLost();
}

std::vector<CameraResult> MeasureSession::results()
{
    std::vector<CameraResult> all;
    all.reserve(m_lines.size());
    for (Line &line : m_lines)
        all.push_back(result(line));
    return all;
}

CameraResult MeasureSession::result(Line &line) const
{
    CxCameraLineData &engine = *line.engine;
    CameraResult found;
    found.name = engine.cameraName.toStdString();
    found.state = line.state;
    found.requiredMBps = engine.avgTransportSpeedMBps;

    StoredRange range;
    {
        const QMutexLocker locker(&engine.mutex);
        range = storedRange(engine, m_options.timestampOrigin);
        found.frames = capturedFrames(engine);
        if (m_options.mode == MeasureModeAcquisition && engine.statCount > 0 && engine.statAvg > 0.0)
            found.framesPerSecond = 1e6 / engine.statAvg;
    }
    if (m_options.mode == MeasureModeAcquisition) {
        for (const CxCameraLineData::CxCounterInfo *info : engine.counterInfos) {
            if (info->supported)
                found.counters.at(static_cast<std::size_t>(info->selector)) =
                    engine.GetCounterValue(info->selector);
        }
    } else if (engine.calculateStatisticsThroughput(range.from, range.to, m_options.timestampOrigin,
                                                    m_options.resetBufferLevel)) {
        found.throughput = CameraResult::Throughput{engine.avgThroughput, engine.minThroughput,
                                                    engine.maxBufferLevel, engine.bufferOverflowCount};
    }
    return found;
}

} // namespace cli
