#include "bench/reference/ThroughputReference.h"

#include <cfloat>

namespace reference {

using measurement::throughput::Frame;
using measurement::throughput::FrameSource;
using measurement::throughput::PointSink;
using measurement::throughput::Settings;
using measurement::throughput::Statistics;

namespace {

// Written apart from the product's own saturating arithmetic, on the widest
// integers at hand, so that a mistake there shows.
__extension__ typedef __int128 Wide;

qint64 saturate(Wide value)
{
    if (value > INT64_MAX)
        return INT64_MAX;
    if (value < INT64_MIN)
        return INT64_MIN;
    return static_cast<qint64>(value);
}

qint64 truncate(double value)
{
    if (value != value)
        return 0;
    if (value >= 0x1p63)
        return INT64_MAX;
    if (value <= -0x1p63)
        return INT64_MIN;
    return static_cast<qint64>(value);
}

void fit(Buffers &buffers, quint64 count)
{
    if (count < 2 || buffers.speeds.size() >= count - 1)
        return;
    buffers.speeds.resize(count - 1);
    buffers.deltas.resize(count - 1);
    buffers.times.resize(count - 1);
}

struct State
{
    double level = 0.0;
    double rate = 0.0;
    qint64 lastAbs = 0;
    double peak = 0.0;
    double winMax = 0.0;
    double winMin = DBL_MAX;
    qint64 lastPoint = -100000000;
    bool first = true;
    double rateSum = 0.0;
    quint64 frameCount = 0;
};

void drain(State &state, qint64 ts, bool resetBufferLevel)
{
    if (resetBufferLevel) {
        state.level = 0.0;
    } else if (state.lastAbs != 0) {
        const quint64 gap = static_cast<quint64>(ts) - static_cast<quint64>(state.lastAbs);
        const double drained = state.rate * static_cast<double>(gap);
        if (drained > 0) {
            state.level -= drained;
            if (state.level < 0)
                state.level = 0;
        }
        state.lastAbs = 0;
    }
}

void addIntervals(State &state, const Settings &settings, qint64 ts, unsigned int n, const Buffers &buffers,
                  qint64 spacing, PointSink *sink, Statistics &statistics)
{
    const double size = static_cast<double>(settings.bufferSize);
    bool overflowed = false;
    state.winMax = 0.0;
    for (unsigned int k = 0; k < n; ++k) {
        const double speed = buffers.speeds[k];
        const qint64 abs = saturate(static_cast<Wide>(ts) + static_cast<Wide>(buffers.times[k]));
        const qint64 rel = saturate(static_cast<Wide>(abs) - settings.to);
        state.lastAbs = abs;
        if (speed < statistics.minThroughput)
            statistics.minThroughput = speed;

        state.level += buffers.deltas[k];
        double pct = 0.0;
        if (state.level < 0) {
            state.level = 0;
        } else if (state.level > size) {
            state.level = size;
            pct = 100.0;
            overflowed = true;
        } else {
            pct = state.level / size * 100.0;
        }
        if (overflowed)
            state.winMax = 100.0;
        if (pct > state.winMax)
            state.winMax = pct;
        if (state.winMax > state.peak)
            state.peak = state.winMax;

        if (state.first)
            state.lastPoint = rel;
        if (speed > 0 && speed < state.winMin)
            state.winMin = speed;
        if (settings.from <= abs && abs <= settings.to &&
            saturate(static_cast<Wide>(rel) - state.lastPoint) > spacing) {
            if (sink) {
                sink->addPoint(rel, state.winMin, state.winMax);
                state.winMax = 0.0;
                state.winMin = DBL_MAX;
            }
            state.lastPoint = rel;
        }
        state.first = false;
    }
    if (overflowed)
        ++statistics.bufferOverflowCount;
}

} // namespace

unsigned int frameSpeeds(const Frame &frame, quint32 sampleInterval, qint32 requiredMBps, double *speeds,
                         double *deltas, quint64 *times)
{
    if (!frame.stamps || frame.count < 2)
        return 0;
    unsigned int k = 0;
    quint64 prev = frame.stamps[0];
    for (quint64 i = 1; i < frame.count; ++i) {
        const double dt = static_cast<double>(frame.stamps[i] - prev) / 250.0;
        prev = frame.stamps[i];
        if (dt <= 0)
            continue;
        if (speeds)
            speeds[k] = sampleInterval / dt;
        if (deltas)
            deltas[k] = dt * requiredMBps - sampleInterval;
        if (times)
            times[k] = (frame.stamps[i] - frame.stamps[0]) / 250;
        ++k;
    }
    return k;
}

bool evaluate(const FrameSource &frames, const Settings &settings, Buffers &buffers, PointSink *sink,
              Statistics &statistics)
{
    const std::size_t size = frames.size();
    if (size == 0)
        return false;
    fit(buffers, frames.at(0).count);
    statistics.maxBufferLevel = 0.0;
    statistics.bufferOverflowCount = 0;

    qint64 margin = saturate(static_cast<Wide>(settings.to) - settings.from);
    if (static_cast<double>(margin) < 2 * settings.meanSpan)
        margin = truncate(settings.meanSpan);
    const qint64 earliest = saturate(static_cast<Wide>(settings.from) - margin);
    const qint64 end = saturate(static_cast<Wide>(settings.to) + margin);

    statistics.minThroughput = DBL_MAX;
    std::size_t index = 0;
    while (index < size && frames.at(index).timestamp < earliest)
        ++index;
    if (index == size)
        return false;
    const qint64 spacing = truncate(settings.msPerPixel * 1000.0);

    State state;
    for (; index < size; ++index) {
        const Frame frame = frames.at(index);
        if (frame.timestamp >= end)
            break;
        drain(state, frame.timestamp, settings.resetBufferLevel);
        fit(buffers, frame.stamps ? frame.count : 0);
        const unsigned int n =
            frameSpeeds(frame, settings.sampleInterval, settings.requiredMBps, buffers.speeds.data(),
                        buffers.deltas.data(), buffers.times.data());
        if (n > 0)
            addIntervals(state, settings, frame.timestamp, n, buffers, spacing, sink, statistics);
        const qint64 bytes = static_cast<qint64>(settings.sampleInterval * frame.count);
        state.rate = static_cast<double>(bytes) / static_cast<double>(frame.span) * 250.0;
        state.rateSum += state.rate;
        ++state.frameCount;
    }
    if (state.frameCount == 0)
        return false;
    statistics.maxBufferLevel = state.peak;
    statistics.avgThroughput = state.rateSum / static_cast<double>(state.frameCount);
    return true;
}

} // namespace reference
