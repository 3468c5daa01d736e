#pragma once

#include "measurement/ThroughputModel.h"

#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

/// Made-up recordings for tests and benchmarks.
namespace reference {

/// Frames in memory. Each has its own allocation, as captured frames do.
class Recording final : public measurement::throughput::FrameSource
{
public:
    std::size_t size() const override { return m_frames.size(); }
    measurement::throughput::Frame at(std::size_t index) const override { return m_frames[index]; }

    void append(qint64 timestamp, const std::vector<quint64> &stamps);
    /// A frame whose span says something else than its stamps.
    void append(qint64 timestamp, const std::vector<quint64> &stamps, qint64 span);

    /// Gives every frame an outline, as an engine's records have one; nothing is in it yet.
    void addOutlines();

    quint64 sampleCount() const;

private:
    std::vector<measurement::throughput::Frame> m_frames;
    std::vector<std::unique_ptr<quint64[]>> m_stamps;
    std::vector<std::unique_ptr<measurement::throughput::FrameOutline>> m_outlines;
};

/// How the intervals of a recording are drawn, in ticks of 4 ns.
struct Regime
{
    std::string name;
    quint64 shortest = 0; ///< of an ordinary interval
    quint64 longest = 0;
    double stallShare = 0.0; ///< how many of the intervals are stalls instead
    quint64 stall = 0;       ///< length of a stall
    quint64 pause = 0;       ///< from a frame's last stamp to the next one's first, microseconds
    quint64 bufferSize = 0;  ///< bytes
};

/// Against the 2560 ticks in which the sensor fills 4096 bytes at 400 MB/s.
const std::vector<Regime> &benchmarkRegimes();

/// Draws the frames of a recording, the same ones each time.
/// \param take is given each frame's time stamp, microseconds, and its stamps
void drawFrames(const Regime &regime, std::size_t frames, std::size_t stampsPerFrame,
                const std::function<void(qint64, const std::vector<quint64> &)> &take);

Recording makeRecording(const Regime &regime, std::size_t frames, std::size_t stampsPerFrame);

/// 4096 bytes, 400 MB/s, the whole recording visible on `pixels` columns.
measurement::throughput::Settings settingsFor(const measurement::throughput::FrameSource &recording,
                                              const Regime &regime, int pixels, bool resetBufferLevel);

} // namespace reference
