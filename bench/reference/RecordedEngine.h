#pragma once

#include "bench/reference/Recordings.h"
#include "measurement/CameraLineData.h"

namespace reference {

/// An engine's records as the plain formulas read them: by the camera's time
/// stamps and without anything that the engine keeps of them.
class EngineFrames final : public measurement::throughput::FrameSource
{
public:
    explicit EngineFrames(const CxCameraLineData &line)
        : m_line(line)
    {
    }

    std::size_t size() const override { return static_cast<std::size_t>(m_line.frames.size()); }
    measurement::throughput::Frame at(std::size_t index) const override;

private:
    const CxCameraLineData &m_line;
};

/// Gives the engine the settings of settingsFor() and the frames of a recording.
/// \param captured whether the records are made as the capture makes them, or
/// hold nothing but their samples
void fillEngine(CxCameraLineData &line, const Regime &regime, std::size_t frames, std::size_t stampsPerFrame,
                bool captured = true);

/// The same with a recording's frames, which may serve several engines.
/// \param bufferSize bytes
void fillEngine(CxCameraLineData &line, const Recording &recording, quint64 bufferSize);

} // namespace reference
