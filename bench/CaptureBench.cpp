#include "bench/CaptureHost.h"
#include "bench/reference/Recordings.h"
#include "measurement/CameraLineData.h"
#include "measurement/FrameSampling.h"

#include <benchmark/benchmark.h>

#include <sys/resource.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <thread>
#include <vector>

namespace {

constexpr std::uint32_t width = 4096;
constexpr std::uint32_t height = 2048; // 16 MiB of two bytes a pixel
constexpr int framesPerIteration = 64;
constexpr int framesKept = 8;

void ignoreLog(QtMsgType, const QMessageLogContext &, const QString &) {}

const reference::Regime &jitter()
{
    const auto &regimes = reference::benchmarkRegimes();
    return *std::find_if(regimes.begin(), regimes.end(),
                         [](const reference::Regime &regime) { return regime.name == "jitter"; });
}

/// Stamps with which the level of a buffer of 1 MiB climbs and falls: a link
/// that is on average as fast as a sensor of 400 MB/s.
std::vector<unsigned long long> jitteringStamps(std::size_t count, unsigned int interval)
{
    const reference::Regime &regime = jitter();
    std::mt19937_64 random(interval);
    std::uniform_int_distribution<quint64> ordinary(regime.shortest * interval / 4096,
                                                    regime.longest * interval / 4096);
    std::vector<unsigned long long> stamps(count);
    quint64 now = Q_UINT64_C(36000000000) * 250;
    for (unsigned long long &stamp : stamps) {
        stamp = now;
        now += ordinary(random);
    }
    return stamps;
}

measurement::SamplePlan provideFrame(unsigned int interval)
{
    const measurement::SamplePlan plan = measurement::planSamples(width, height, interval);
    bench::CaptureHost::instance().setFrame(width, height, plan.firstByte, plan.stride,
                                            jitteringStamps(plan.count, interval));
    return plan;
}

long pageFaults()
{
    struct rusage usage = {};
    getrusage(RUSAGE_THREAD, &usage);
    return usage.ru_minflt;
}

/// Time the engine spends on a frame from its arrival to its next capture:
/// sampling it, describing the samples, keeping the record, dropping the oldest.
void captureOnThread(benchmark::State &state)
{
    const auto interval = static_cast<unsigned int>(state.range(0));
    const measurement::SamplePlan plan = provideFrame(interval);
    bench::CaptureHost &host = bench::CaptureHost::instance();
    qInstallMessageHandler(ignoreLog);

    CxCameraLineData line;
    line.cameraHandle = &host;
    line.sampleInterval = interval;
    line.avgTransportSpeedMBps = 400;
    line.internalBuffSize = jitter().bufferSize;
    line.maxSamples = static_cast<long long>(plan.count) * framesKept;
    const auto run = [&host, &line] {
        host.deliver(framesPerIteration, [&line] { line.stopRequested = true; });
        line.stopRequested = false;
        line.runMeasureLoopThrougput();
    };
    run(); // until the list is full
    long faults = pageFaults();
    for ([[maybe_unused]] auto iteration : state) {
        run();
        state.SetIterationTime(host.secondsPerFrame());
    }
    faults = pageFaults() - faults;
    qInstallMessageHandler(nullptr);
    state.counters["samples"] = static_cast<double>(plan.count);
    state.counters["faults_per_frame"] =
        static_cast<double>(faults) / static_cast<double>(state.iterations() * framesPerIteration);
}

/// As in a measurement: memory comes from a heap that is not the main thread's.
void captureLoop(benchmark::State &state)
{
    std::thread([&state] { captureOnThread(state); }).join();
}

/// The same words copied to a place that is always the same.
void bareGather(benchmark::State &state)
{
    const auto interval = static_cast<unsigned int>(state.range(0));
    const measurement::SamplePlan plan = provideFrame(interval);
    bench::CaptureHost &host = bench::CaptureHost::instance();
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
        state.SetIterationTime(host.secondsPerFrame());
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
