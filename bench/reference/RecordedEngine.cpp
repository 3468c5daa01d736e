#include "bench/reference/RecordedEngine.h"

#include <algorithm>
#include <memory>

namespace reference {

using measurement::throughput::Frame;

Frame EngineFrames::at(std::size_t index) const
{
    const CxCameraLineData::CxFrameData &record = *m_line.frames[static_cast<int>(index)];
    return {record.cameraTimestamp, record.samples, record.sampleCount, record.sampleSpan, nullptr};
}

void fillEngine(CxCameraLineData &line, const Regime &regime, std::size_t frames, std::size_t stampsPerFrame,
                bool captured)
{
    line.sampleInterval = 4096;
    line.avgTransportSpeedMBps = 400;
    line.internalBuffSize = regime.bufferSize;
    drawFrames(regime, frames, stampsPerFrame, [&](qint64 timestamp, const std::vector<quint64> &stamps) {
        auto frame = std::make_unique<CxCameraLineData::CxFrameData>();
        frame->frameNumber = static_cast<quint64>(line.frames.size()) + 1;
        frame->cameraTimestamp = timestamp;
        frame->computerTimestamp = timestamp + 1500;
        frame->allocateSamples(stamps.size());
        std::copy(stamps.begin(), stamps.end(), frame->samples);
        frame->sampleSpan = stamps.size() < 2 ? 0 : static_cast<qint64>(stamps.back() - stamps.front());
        if (captured)
            frame->describeSamples({line.sampleInterval, static_cast<qint32>(line.avgTransportSpeedMBps),
                                    line.internalBuffSize});
        line.frames.append(frame.release());
    });
    const CxCameraLineData::CxFrameData &first = *line.frames.first();
    line.statAvg = static_cast<double>(first.sampleSpan) / 250.0;
}

} // namespace reference
