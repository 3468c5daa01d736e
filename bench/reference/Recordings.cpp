#include "bench/reference/Recordings.h"

#include <algorithm>

namespace reference {

using namespace measurement::throughput;

void Recording::append(qint64 timestamp, const std::vector<quint64> &stamps)
{
    append(timestamp, stamps, stamps.size() < 2 ? 0 : static_cast<qint64>(stamps.back() - stamps.front()));
}

void Recording::append(qint64 timestamp, const std::vector<quint64> &stamps, qint64 span)
{
    m_stamps.push_back(std::make_unique<quint64[]>(stamps.size()));
    std::copy(stamps.begin(), stamps.end(), m_stamps.back().get());
    Frame frame;
    frame.timestamp = timestamp;
    frame.stamps = m_stamps.back().get();
    frame.count = stamps.size();
    frame.span = span;
    m_frames.push_back(frame);
}

void Recording::addOutlines()
{
    for (Frame &frame : m_frames) {
        m_outlines.push_back(std::make_unique<FrameOutline>());
        frame.outline = m_outlines.back().get();
    }
}

quint64 Recording::sampleCount() const
{
    quint64 count = 0;
    for (const Frame &frame : m_frames)
        count += frame.count;
    return count;
}

const std::vector<Regime> &benchmarkRegimes()
{
    static const std::vector<Regime> regimes = {
        // The link is faster than the sensor throughout.
        {"fast", 2250, 2350, 0.0, 0, 1000, 1 << 20},
        // Slower: the level climbs through every frame and drains in the pause.
        {"slow", 2560, 2680, 0.0, 0, 1000, 1 << 20},
        // Slower, and the pause is too short to empty a large buffer.
        {"climbing", 2520, 2640, 0.0, 0, 20, 256 << 20},
        // As fast as the sensor on average; the level hovers above empty.
        {"jitter", 2060, 3060, 0.0, 0, 1000, 1 << 20},
        {"jitter-unpaused", 2060, 3060, 0.0, 0, 20, 1 << 20},
        // Fast with rare long stalls that a small buffer does not survive.
        {"stalls", 2250, 2350, 0.001, 60000, 100, 1 << 16},
        // Far too slow: the buffer is full nearly all the time.
        {"overrun", 2400, 3400, 0.0, 0, 20, 1 << 15},
    };
    return regimes;
}

void drawFrames(const Regime &regime, std::size_t frames, std::size_t stampsPerFrame,
                const std::function<void(qint64, const std::vector<quint64> &)> &take)
{
    std::mt19937_64 random(20240229);
    std::uniform_int_distribution<quint64> ordinary(regime.shortest, regime.longest);
    std::bernoulli_distribution stalls(regime.stallShare);
    std::vector<quint64> stamps(stampsPerFrame);
    quint64 now = Q_UINT64_C(36000000000) * 250; // ten in the morning
    for (std::size_t frame = 0; frame < frames; ++frame) {
        for (std::size_t i = 0; i < stampsPerFrame; ++i) {
            stamps[i] = now;
            if (i + 1 < stampsPerFrame)
                now += regime.stallShare > 0.0 && stalls(random) ? regime.stall : ordinary(random);
        }
        take(static_cast<qint64>(stamps[0] / 250), stamps);
        now += regime.pause * 250;
    }
}

Recording makeRecording(const Regime &regime, std::size_t frames, std::size_t stampsPerFrame)
{
    Recording recording;
    drawFrames(regime, frames, stampsPerFrame, [&](qint64 timestamp, const std::vector<quint64> &stamps) {
        recording.append(timestamp, stamps);
    });
    return recording;
}

Settings settingsFor(const FrameSource &recording, const Regime &regime, int pixels, bool resetBufferLevel)
{
    const Frame first = recording.at(0);
    const Frame last = recording.at(recording.size() - 1);
    Settings settings;
    settings.sampleInterval = 4096;
    settings.requiredMBps = 400;
    settings.bufferSize = regime.bufferSize;
    settings.meanSpan = static_cast<double>(first.span) / 250.0;
    settings.from = first.timestamp;
    settings.to = last.timestamp + last.span / 250 + 1;
    settings.msPerPixel = static_cast<double>(settings.to - settings.from) / 1000.0 / pixels;
    settings.resetBufferLevel = resetBufferLevel;
    return settings;
}

} // namespace reference
