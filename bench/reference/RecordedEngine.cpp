#include "bench/reference/RecordedEngine.h"

#include <algorithm>
#include <memory>
#include <span>

namespace reference {

using measurement::throughput::Frame;

Frame EngineFrames::at(std::size_t index) const
{
    const CxCameraLineData::CxFrameData &record = *m_line.frames[static_cast<int>(index)];
    return {record.cameraTimestamp, record.samples, record.sampleCount, record.sampleSpan, nullptr};
}

namespace {

void setUp(CxCameraLineData &line, quint64 bufferSize)
{
    line.sampleInterval = 4096;
    line.avgTransportSpeedMBps = 400;
    line.internalBuffSize = bufferSize;
}

void append(CxCameraLineData &line, qint64 timestamp, std::span<const quint64> stamps, bool captured)
{
    auto frame = std::make_unique<CxCameraLineData::CxFrameData>();
    frame->frameNumber = static_cast<quint64>(line.frames.size()) + 1;
    frame->cameraTimestamp = timestamp;
    frame->computerTimestamp = timestamp + 1500;
    frame->allocateSamples(stamps.size());
    std::copy(stamps.begin(), stamps.end(), frame->samples);
    frame->sampleSpan = stamps.size() < 2 ? 0 : static_cast<qint64>(stamps.back() - stamps.front());
    line.statAvg = static_cast<double>(frame->sampleSpan) / 250.0;
    if (captured)
        frame->describeSamples(
            {line.sampleInterval, static_cast<qint32>(line.avgTransportSpeedMBps), line.internalBuffSize});
    line.frames.append(frame.release());
}

} // namespace

void fillEngine(CxCameraLineData &line, const Regime &regime, std::size_t frames, std::size_t stampsPerFrame,
                bool captured)
{
    setUp(line, regime.bufferSize);
    drawFrames(regime, frames, stampsPerFrame, [&](qint64 timestamp, const std::vector<quint64> &stamps) {
        append(line, timestamp, stamps, captured);
    });
}

void fillEngine(CxCameraLineData &line, const Recording &recording, quint64 bufferSize)
{
    setUp(line, bufferSize);
    for (std::size_t i = 0; i < recording.size(); ++i) {
        const Frame frame = recording.at(i);
        append(line, frame.timestamp, std::span(frame.stamps, frame.count), true);
    }
}

} // namespace reference
