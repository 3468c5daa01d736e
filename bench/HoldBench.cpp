#include "bench/CaptureHost.h"
#include "measurement/CameraLineData.h"
#include "measurement/FrameSampling.h"

#include <benchmark/benchmark.h>

#include <sched.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

/// How long the capture holds the engine's mutex for a frame. In acquisition mode
/// five of six holds read a counter.
namespace {

using Clock = std::chrono::steady_clock;

constexpr int framesAtOnce = 20000;
constexpr std::size_t fewestHolds = 100000;
constexpr int mostTurns = 200; // of framesAtOnce

void ignoreLog(QtMsgType, const QMessageLogContext &, const QString &) {}

/// Keeps the calling thread on a processor of its own, by number among those that
/// the program may use: left to the system, two threads often share one.
class OwnProcessor
{
public:
    explicit OwnProcessor(int number)
    {
        sched_getaffinity(0, sizeof m_before, &m_before);
        cpu_set_t one;
        CPU_ZERO(&one);
        for (int processor = 0; processor < CPU_SETSIZE; ++processor) {
            if (CPU_ISSET(processor, &m_before) && number-- == 0)
                CPU_SET(processor, &one);
        }
        sched_setaffinity(0, sizeof one, &one);
    }
    ~OwnProcessor() { sched_setaffinity(0, sizeof m_before, &m_before); }
    OwnProcessor(const OwnProcessor &) = delete;
    OwnProcessor &operator=(const OwnProcessor &) = delete;

private:
    cpu_set_t m_before;
};

/// Looks at the word of the mutex, which is null while nobody has it, from the
/// other processor all the time. Trying the mutex instead would get in the way
/// of the capture. A hold seems longer by what a cache line takes between the
/// processors; some of the shortest are not seen.
class HoldObserver
{
public:
    explicit HoldObserver(const QMutex &mutex)
        : m_word(*reinterpret_cast<const std::atomic<void *> *>(&mutex))
        , m_thread([this] { observe(); })
    {
        static_assert(sizeof(QMutex) == sizeof(std::atomic<void *>));
    }
    ~HoldObserver() { end(); }

    std::size_t seen() const { return m_seen; }

    std::vector<double> end() ///< seconds, shortest first
    {
        m_ended = true;
        if (m_thread.joinable())
            m_thread.join();
        std::sort(m_holds.begin(), m_holds.end());
        return std::move(m_holds);
    }

private:
    void observe()
    {
        const OwnProcessor processor(1);
        m_holds.reserve(fewestHolds + 10 * framesAtOnce);
        while (!m_ended) {
            if (!m_word.load(std::memory_order_relaxed))
                continue;
            const Clock::time_point start = Clock::now();
            while (m_word.load(std::memory_order_relaxed) && !m_ended) {
            }
            m_holds.push_back(std::chrono::duration<double>(Clock::now() - start).count());
            m_seen = m_holds.size();
        }
    }

    const std::atomic<void *> &m_word;
    std::atomic<bool> m_ended{false};
    std::atomic<std::size_t> m_seen{0};
    std::vector<double> m_holds;
    std::thread m_thread;
};

double microsecondsAt(const std::vector<double> &sorted, double share)
{
    return sorted.empty()
               ? 0.0
               : sorted[static_cast<std::size_t>(static_cast<double>(sorted.size() - 1) * share)] * 1e6;
}

/// \param loop captures one frame after the other into a list that is full
void observeHolds(benchmark::State &state, CxCameraLineData &line, void (CxCameraLineData::*loop)())
{
    bench::CaptureHost &host = bench::CaptureHost::instance();
    line.cameraHandle = &host;
    qInstallMessageHandler(ignoreLog);
    const auto capture = [&](int count) {
        host.deliver(count, [&line] { line.stopRequested = true; });
        line.stopRequested = false;
        (line.*loop)();
    };
    capture(static_cast<int>(line.maxSamples));
    for ([[maybe_unused]] auto iteration : state) {
        HoldObserver observer(line.mutex);
        const OwnProcessor processor(0);
        // It takes a while until the observer is there.
        for (int turn = 0; observer.seen() < fewestHolds && turn < mostTurns; ++turn)
            capture(framesAtOnce);
        const std::vector<double> holds = observer.end();
        state.SetIterationTime(microsecondsAt(holds, 0.5) / 1e6);
        state.counters["seen"] = static_cast<double>(holds.size());
        state.counters["p999_us"] = microsecondsAt(holds, 0.999);
        state.counters["longest_us"] = microsecondsAt(holds, 1.0);
    }
    qInstallMessageHandler(nullptr);
}

/// Frames of one sample, so that as many as can be are in the list.
void holdThroughput(benchmark::State &state)
{
    const measurement::SamplePlan plan = measurement::planSamples(512, 4, 4096);
    bench::CaptureHost::instance().setFrame(512, 4, plan.firstByte, plan.stride, {1});
    CxCameraLineData line;
    observeHolds(state, line, &CxCameraLineData::runMeasureLoopThrougput);
}

void holdAcquisition(benchmark::State &state)
{
    bench::CaptureHost::instance().setFrame(512, 4, 0, 8, {1});
    CxCameraLineData line;
    observeHolds(state, line, &CxCameraLineData::runMeasureLoopAcquisition);
}

BENCHMARK(holdThroughput)->Name("store/hold/throughput")->UseManualTime()->Iterations(1);
BENCHMARK(holdAcquisition)->Name("store/hold/acquisition")->UseManualTime()->Iterations(1);

} // namespace
