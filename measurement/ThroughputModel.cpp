#include "measurement/ThroughputModel.h"

#include "measurement/Saturate.h"
#include "measurement/ThroughputPass.h"

#include <algorithm>

namespace measurement::throughput {

namespace {

quint64 intervalsOf(const Frame &frame)
{
    return frame.count > 1 ? frame.count - 1 : 0;
}

qint64 marginOf(const Settings &settings)
{
    const qint64 width = subtractSaturated(settings.to, settings.from);
    if (static_cast<double>(width) < 2.0 * settings.meanSpan)
        return truncateSaturated(settings.meanSpan);
    return width;
}

/// From there on frames take no part.
qint64 endOf(const Settings &settings)
{
    return addSaturated(settings.to, marginOf(settings));
}

} // namespace

FrameRange selectFrames(const FrameSource &frames, const Settings &settings)
{
    const qint64 earliest = subtractSaturated(settings.from, marginOf(settings));
    const std::size_t size = frames.size();

    std::size_t begin = 0;
    while (begin < size && frames.at(begin).timestamp < earliest)
        ++begin;
    FrameRange range = selectSome(frames, settings, begin, size);
    if (size > 0)
        range.intervals = std::max(range.intervals, intervalsOf(frames.at(0)));
    return range;
}

FrameRange selectSome(const FrameSource &frames, const Settings &settings, std::size_t begin,
                      std::size_t most)
{
    const qint64 end = endOf(settings);
    const std::size_t size = frames.size();
    FrameRange range = {begin, begin, 0};
    for (; range.end < size && range.end - begin < most; ++range.end) {
        const Frame frame = frames.at(range.end);
        if (frame.timestamp >= end)
            break;
        range.intervals = std::max(range.intervals, intervalsOf(frame));
    }
    return range;
}

Outcome evaluate(const FrameSource &frames, const FrameRange &range, const Settings &settings,
                 const Scratch &scratch, PointSink *sink, Statistics &statistics, const Kernels &kernels,
                 Work *work)
{
    Work unlimited;
    return Pass(frames, range, settings, scratch, sink, statistics, kernels, work ? *work : unlimited).run();
}

void continueWork(const FrameSource &frames, const FrameRange &range, const Settings &settings,
                  const Scratch &scratch, Work &work, const Kernels &kernels)
{
    Statistics ignored;
    Pass(frames, range, settings, scratch, nullptr, ignored, kernels, work).continueWork();
}

unsigned int frameSpeeds(const quint64 *stamps, quint64 count, quint32 sampleInterval, qint32 requiredMBps,
                         double *speeds, double *deltas, quint64 *times)
{
    if (!stamps || count < 2)
        return 0;
    unsigned int entries = 0;
    quint64 previous = stamps[0];
    for (quint64 i = 1; i < count; ++i) {
        const double duration = static_cast<double>(stamps[i] - previous) / 250.0;
        previous = stamps[i];
        if (duration <= 0.0)
            continue;
        if (speeds)
            speeds[entries] = sampleInterval / duration;
        if (deltas)
            deltas[entries] = duration * requiredMBps - sampleInterval;
        if (times)
            times[entries] = (stamps[i] - stamps[0]) / 250;
        ++entries;
    }
    return entries;
}

} // namespace measurement::throughput
