#include "bench/CaptureHost.h"
#include "measurement/CameraLineData.h"
#include "measurement/FrameSampling.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <memory>
#include <vector>

namespace {

constexpr std::uint32_t width = 4096;
constexpr std::uint32_t height = 2048; // 16 MiB of two bytes a pixel
constexpr int framesPerIteration = 64;

void ignoreLog(QtMsgType, const QMessageLogContext &, const QString &) {}

/// Time the engine spends on a frame from its arrival to its next capture:
/// sampling it, keeping the record, dropping the oldest.
void captureLoop(benchmark::State &state)
{
    const auto interval = static_cast<unsigned int>(state.range(0));
    const measurement::SamplePlan plan = measurement::planSamples(width, height, interval);
    bench::CaptureHost &host = bench::CaptureHost::instance();
    host.setFrame(width, height, plan.firstByte, plan.stride, plan.count);
    qInstallMessageHandler(ignoreLog);

    CxCameraLineData line;
    line.cameraHandle = &host;
    line.sampleInterval = interval;
    line.maxSamples = static_cast<long long>(plan.count) * 8; // full after nine frames
    for ([[maybe_unused]] auto iteration : state) {
        host.deliver(framesPerIteration, [&line] { line.stopRequested = true; });
        line.stopRequested = false;
        line.runMeasureLoopThrougput();
        state.SetIterationTime(host.secondsOutside() / framesPerIteration);
    }
    qInstallMessageHandler(nullptr);
    state.counters["samples"] = static_cast<double>(plan.count);
}

/// The same words copied to a place that is always the same.
void bareGather(benchmark::State &state)
{
    const auto interval = static_cast<unsigned int>(state.range(0));
    const measurement::SamplePlan plan = measurement::planSamples(width, height, interval);
    bench::CaptureHost &host = bench::CaptureHost::instance();
    host.setFrame(width, height, plan.firstByte, plan.stride, plan.count);
    std::vector<quint64> samples(plan.count);
    ZU_IMG image = {};
    for ([[maybe_unused]] auto iteration : state) {
        host.deliver(framesPerIteration, [] {});
        for (int frame = 0; frame < framesPerIteration; ++frame) {
            zuApi_GetImage(&host, 0, &image, nullptr, true);
            const auto *bytes = static_cast<const char *>(image.data) + plan.firstByte;
            for (std::size_t i = 0; i < plan.count; ++i)
                std::memcpy(&samples[i], bytes + i * plan.stride, sizeof(quint64));
            benchmark::DoNotOptimize(samples.data());
            benchmark::ClobberMemory();
        }
        zuApi_GetImage(&host, 0, &image, nullptr, true);
        state.SetIterationTime(host.secondsOutside() / framesPerIteration);
    }
    state.counters["samples"] = static_cast<double>(plan.count);
}

void periods(benchmark::internal::Benchmark *bench)
{
    bench->Arg(1024)->Arg(4096)->Arg(51200)->UseManualTime()->Iterations(5)->Unit(benchmark::kMicrosecond);
}

BENCHMARK(captureLoop)->Name("capture/loop")->Apply(periods);
BENCHMARK(bareGather)->Name("capture/gather")->Apply(periods);

} // namespace
