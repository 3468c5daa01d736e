#include "bench/scale/Prefill.h"

#include "host/core/simulation/CounterPattern.h"
#include "measurement/FrameSampling.h"

#include <QMutexLocker>
#include <QTime>

#include <memory>
#include <vector>

namespace scale {

namespace {

constexpr std::uint64_t seed = 2;

qint64 microsecondsOfDay()
{
    return qint64{QTime::currentTime().msecsSinceStartOfDay()} * 1000;
}

} // namespace

double fillWithRecords(CxCameraLineData &line, const host::CameraSettings &settings, std::uint64_t camera,
                       unsigned int samplePeriod, long long capacity)
{
    const host::LinkModel link(settings, seed, camera);
    const measurement::SamplePlan plan =
        measurement::planSamples(static_cast<std::uint32_t>(settings.width),
                                 static_cast<std::uint32_t>(settings.height), samplePeriod);
    const std::int64_t bytes = std::int64_t{settings.width} * settings.height * 2;
    std::vector<std::uint64_t> words(static_cast<std::size_t>(bytes / 8));

    measurement::RecordList<CxCameraLineData::CxFrameData> frames;
    host::LinkPosition position;
    const long long count = plan.count == 0 ? 0 : capacity / static_cast<long long>(plan.count) + 1;
    for (long long number = 0; number < count; ++number) {
        host::fillCounterPattern(words, bytes, link, position, 0);
        auto frame = std::make_unique<CxCameraLineData::CxFrameData>();
        frame->samples = new quint64[plan.count];
        frame->sampleCount = plan.count;
        const std::span<measurement::Stamp> samples(frame->samples, plan.count);
        measurement::gatherSamples(reinterpret_cast<const std::byte *>(words.data()), plan, samples);
        frame->sampleSpan = measurement::stampSpan(samples);
        frame->frameNumber = static_cast<quint64>(number);
        frame->cameraTimestamp = position.tick / host::TicksPerMicrosecond;
        position.tick = static_cast<host::Ticks>(words.back());
        frame->computerTimestamp = position.tick / host::TicksPerMicrosecond;
        frames.append(frame.release());
    }
    const qint64 start = microsecondsOfDay() - position.tick / host::TicksPerMicrosecond;
    for (CxCameraLineData::CxFrameData *frame : frames) {
        frame->cameraTimestamp += start;
        frame->computerTimestamp += start;
    }
    const QMutexLocker locker(&line.mutex);
    line.clearData();
    line.frames.swap(frames);
    return static_cast<double>(position.tick) / host::TicksPerSecond;
}

} // namespace scale
