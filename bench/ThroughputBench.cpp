#include "bench/reference/Recordings.h"
#include "bench/reference/ThroughputReference.h"

#include <benchmark/benchmark.h>

namespace {

using namespace measurement::throughput;

constexpr std::size_t frameCount = 5000;
constexpr std::size_t stampsPerFrame = 2000;
constexpr int pixels = 1500;

/// Takes points as a graph would, without the graph.
class PointLog final : public PointSink
{
public:
    PointLog() { m_points.reserve(2 * pixels); }
    void addPoint(qint64 time, double minSpeed, double maxLevel) override
    {
        m_points.push_back({static_cast<double>(time), minSpeed, maxLevel});
    }
    void clear() { m_points.clear(); }

private:
    struct Point
    {
        double time, minSpeed, maxLevel;
    };
    std::vector<Point> m_points;
};

/// The recording in use; made once for all benchmarks of a regime.
const reference::Recording &recordingOf(const reference::Regime &regime, bool extrema)
{
    static std::string name;
    static std::unique_ptr<reference::Recording> recording;
    const std::string wanted = regime.name + (extrema ? "+" : "");
    if (name != wanted) {
        recording.reset();
        recording = std::make_unique<reference::Recording>(
            reference::makeRecording(regime, frameCount, stampsPerFrame));
        if (extrema)
            recording->prepareExtrema();
        name = wanted;
    }
    return *recording;
}

void runReference(benchmark::State &state, const reference::Regime &regime, bool reset)
{
    const reference::Recording &recording = recordingOf(regime, false);
    const Settings settings = reference::settingsFor(recording, regime, pixels, reset);
    reference::Buffers buffers;
    PointLog points;
    for ([[maybe_unused]] auto iteration : state) {
        Statistics statistics;
        points.clear();
        benchmark::DoNotOptimize(reference::evaluate(recording, settings, buffers, &points, statistics));
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * recording.sampleCount()));
}

void runModel(benchmark::State &state, const reference::Regime &regime, bool reset, const Kernels *kernels,
              bool extrema)
{
    const reference::Recording &recording = recordingOf(regime, extrema);
    const Settings settings = reference::settingsFor(recording, regime, pixels, reset);
    std::vector<double> speeds(stampsPerFrame);
    std::vector<double> deltas(stampsPerFrame);
    std::vector<quint64> times(stampsPerFrame);
    const Scratch scratch = {speeds.data(), deltas.data(), times.data(), stampsPerFrame};
    PointLog points;
    for ([[maybe_unused]] auto iteration : state) {
        Statistics statistics;
        points.clear();
        const FrameRange range = selectFrames(recording, settings);
        benchmark::DoNotOptimize(
            evaluate(recording, range, settings, scratch, &points, statistics, *kernels));
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * recording.sampleCount()));
}

const bool registered = [] {
    const auto add = [](const std::string &name, auto function, auto... arguments) {
        benchmark::RegisterBenchmark(name.c_str(), function, arguments...)->Unit(benchmark::kMillisecond);
    };
    for (const reference::Regime &regime : reference::benchmarkRegimes()) {
        for (const bool reset : {false, true}) {
            const std::string name = "throughput/" + regime.name + (reset ? "/reset/" : "/carried/");
            add(name + "reference", runReference, regime, reset);
            add(name + "model", runModel, regime, reset, &bestKernels(), false);
            add(name + "model-portable", runModel, regime, reset, &portableKernels(), false);
        }
        for (const bool reset : {false, true}) {
            const std::string name = "throughput/" + regime.name + (reset ? "/reset/" : "/carried/");
            add(name + "model-kept-extrema", runModel, regime, reset, &bestKernels(), true);
        }
    }
    return true;
}();

} // namespace
