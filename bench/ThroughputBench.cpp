#include "bench/reference/RecordedEngine.h"
#include "bench/reference/ThroughputReference.h"
#include "measurement/ThroughputEngine.h"

#include <benchmark/benchmark.h>

#include <malloc.h>

/// Passes of the throughput model over an engine's records, beside the plain
/// formulas over the same records.
namespace {

using namespace measurement::throughput;
using measurement::ThroughputWindow;

constexpr std::size_t stampsPerFrame = 2000;
constexpr std::size_t usualFrames = 5000;  // 10 million samples
constexpr std::size_t manyFrames = 100000; // 200 million
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
    void restart() override { m_points.clear(); }

private:
    struct Point
    {
        double time, minSpeed, maxLevel;
    };
    std::vector<Point> m_points;
};

/// The engine in use; made once for all benchmarks of a regime.
CxCameraLineData &engineOf(const reference::Regime &regime, std::size_t frames)
{
    static std::string name;
    static std::unique_ptr<CxCameraLineData> engine;
    const std::string wanted = regime.name + std::to_string(frames);
    if (name != wanted) {
        engine.reset();
        engine = std::make_unique<CxCameraLineData>();
        reference::fillEngine(*engine, regime, frames, stampsPerFrame);
        name = wanted;
    }
    return *engine;
}

/// The windows that a benchmark goes through, one an iteration.
class Windows
{
public:
    Windows(const CxCameraLineData &engine, const reference::Regime &regime, bool reset)
        : m_settings(reference::settingsFor(reference::EngineFrames(engine), regime, pixels, reset))
    {
    }

    /// The last fifth of the recording, a frame later each time, as a live graph
    /// looks at the newest frames; after the last one back to the first.
    void slide()
    {
        const qint64 width = (m_settings.to - m_settings.from) / 5;
        const qint64 frame = static_cast<qint64>(m_settings.meanSpan);
        m_end = m_settings.to;
        m_settings.msPerPixel /= 5;
        m_settings.to -= frame * slides;
        m_settings.from = m_settings.to - width;
        m_step = frame;
    }

    void next()
    {
        if (m_step == 0)
            return;
        const qint64 step = m_settings.to + m_step > m_end ? -m_step * (slides - 1) : m_step;
        m_settings.from += step;
        m_settings.to += step;
    }

    const Settings &settings() const { return m_settings; }
    ThroughputWindow window() const
    {
        return {m_settings.from, m_settings.to, TimestampOriginCamera, m_settings.msPerPixel,
                m_settings.resetBufferLevel};
    }

private:
    static constexpr qint64 slides = 100;
    Settings m_settings;
    qint64 m_end = 0;
    qint64 m_step = 0;
};

enum class View { Whole, Sliding, StatisticsOnly };

struct Task
{
    reference::Regime regime;
    bool reset = false;
    std::size_t frames = usualFrames;
    View view = View::Whole;
};

Windows windowsOf(const Task &task, const CxCameraLineData &engine)
{
    Windows windows(engine, task.regime, task.reset);
    if (task.view == View::Sliding)
        windows.slide();
    return windows;
}

/// The plain formulas.
void runReference(benchmark::State &state, const Task &task)
{
    const CxCameraLineData &engine = engineOf(task.regime, task.frames);
    Windows windows = windowsOf(task, engine);
    reference::Buffers buffers;
    PointLog points;
    for ([[maybe_unused]] auto iteration : state) {
        Statistics statistics;
        points.restart();
        windows.next();
        benchmark::DoNotOptimize(
            reference::evaluate(reference::EngineFrames(engine), windows.settings(), buffers,
                                task.view == View::StatisticsOnly ? nullptr : &points, statistics));
    }
}

/// The engine's own pass, with what it keeps of the frames.
void runWarm(benchmark::State &state, const Task &task)
{
    CxCameraLineData &engine = engineOf(task.regime, task.frames);
    Windows windows = windowsOf(task, engine);
    PointLog points;
    PointSink *const sink = task.view == View::StatisticsOnly ? nullptr : &points;
    measurement::evaluateThroughput(engine, windows.window(), sink);
    for ([[maybe_unused]] auto iteration : state) {
        points.restart();
        windows.next();
        benchmark::DoNotOptimize(measurement::evaluateThroughput(engine, windows.window(), sink));
    }
}

/// The first pass after an edit of the required throughput.
void runEdited(benchmark::State &state, const Task &task)
{
    CxCameraLineData &engine = engineOf(task.regime, task.frames);
    Windows windows = windowsOf(task, engine);
    PointLog points;
    measurement::evaluateThroughput(engine, windows.window(), nullptr);
    for ([[maybe_unused]] auto iteration : state) {
        points.restart();
        engine.avgTransportSpeedMBps = engine.avgTransportSpeedMBps == 400 ? 401 : 400;
        benchmark::DoNotOptimize(measurement::evaluateThroughput(engine, windows.window(), &points));
    }
    // Or the next edit would find what it needs.
    engine.avgTransportSpeedMBps = 400;
    measurement::evaluateThroughput(engine, windows.window(), nullptr);
}

/// The first pass over records that were not captured.
void runFirst(benchmark::State &state, const Task &task)
{
    PointLog points;
    for ([[maybe_unused]] auto iteration : state) {
        state.PauseTiming();
        CxCameraLineData engine;
        reference::fillEngine(engine, task.regime, task.frames, stampsPerFrame, false);
        const Windows windows = windowsOf(task, engine);
        points.restart();
        state.ResumeTiming();
        benchmark::DoNotOptimize(measurement::evaluateThroughput(engine, windows.window(), &points));
        state.PauseTiming();
        engine.clearData();
        state.ResumeTiming();
    }
}

/// Memory that captured records take over their bare samples, in percent, by
/// what the allocator hands out.
void measureMemory(benchmark::State &state, const reference::Regime &regime)
{
    constexpr double sampleBytes = static_cast<double>(usualFrames * stampsPerFrame * sizeof(quint64));
    double over = 0.0;
    for ([[maybe_unused]] auto iteration : state) {
        CxCameraLineData engine;
        const auto allocated = [] {
            const struct mallinfo2 info = mallinfo2();
            return static_cast<double>(info.uordblks + info.hblkhd);
        };
        const double before = allocated();
        reference::fillEngine(engine, regime, usualFrames, stampsPerFrame);
        over = (allocated() - before) / sampleBytes - 1.0;
    }
    state.counters["percent_over_samples"] = 100.0 * over;
}

void add(const std::string &name, void (*run)(benchmark::State &, const Task &), const Task &task)
{
    benchmark::RegisterBenchmark(name.c_str(), run, task)->Unit(benchmark::kMillisecond);
}

void addPair(const std::string &name, const Task &task)
{
    add(name + "/reference", runReference, task);
    add(name + "/warm", runWarm, task);
}

const bool registered = [] {
    const bool isShort = qgetenv("VELMORA_BENCH_FORM") == "short";
    for (const reference::Regime &regime : reference::benchmarkRegimes()) {
        const std::string name = "throughput/" + regime.name;
        addPair(name + "/carried", {.regime = regime});
        addPair(name + "/reset", {.regime = regime, .reset = true});
        addPair(name + "/sliding", {.regime = regime, .view = View::Sliding});
        addPair(name + "/statistics", {.regime = regime, .view = View::StatisticsOnly});
        add(name + "/edited", runEdited, {.regime = regime});
        add(name + "/first", runFirst, {.regime = regime});
    }
    benchmark::RegisterBenchmark("throughput/memory", measureMemory, reference::benchmarkRegimes().front())
        ->Iterations(1)
        ->Unit(benchmark::kMillisecond);
    if (isShort)
        return true;
    for (const reference::Regime &regime : reference::benchmarkRegimes()) {
        if (regime.name != "jitter" && regime.name != "stalls" && regime.name != "climbing")
            continue;
        addPair("throughput/200M/" + regime.name, {.regime = regime, .frames = manyFrames});
        add("throughput/200M/" + regime.name + "/edited", runEdited,
            {.regime = regime, .frames = manyFrames});
    }
    return true;
}();

} // namespace
