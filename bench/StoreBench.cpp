#include "measurement/CameraLineData.h"
#include "measurement/RecordList.h"

#include <benchmark/benchmark.h>

#include <malloc.h>

#include <algorithm>
#include <chrono>
#include <deque>
#include <limits>
#include <vector>

/// Appends to the engine's list of records, which the capture makes while it
/// holds the engine's mutex: whoever draws waits for the longest of them, and so
/// does the capture for whoever draws.
namespace {

using Record = CxCameraLineData::CxCounterData;
using Clock = std::chrono::steady_clock;

constexpr std::size_t capacity = 3000000; // records, the engine's own default
constexpr int rounds = 4;

/// The longest of a sequence of steps. Each counts as long as it took in the
/// fastest of some rounds: a stall that belongs to the step shows in all of
/// them, another program on the processor hardly ever does.
class LongestStep
{
public:
    explicit LongestStep(std::size_t steps)
        : m_fastest(steps, std::numeric_limits<float>::max())
    {
    }

    template <typename Step> void time(std::size_t number, Step step)
    {
        const Clock::time_point start = Clock::now();
        step();
        const std::chrono::duration<float> taken = Clock::now() - start;
        m_fastest[number] = std::min(m_fastest[number], taken.count());
    }

    double seconds() const { return *std::max_element(m_fastest.begin(), m_fastest.end()); }

    double mean() const
    {
        double sum = 0.0;
        for (const float taken : m_fastest)
            sum += taken;
        return sum / static_cast<double>(m_fastest.size());
    }

private:
    std::vector<float> m_fastest;
};

void report(benchmark::State &state, const LongestStep &steps)
{
    state.SetIterationTime(steps.seconds());
    state.counters["mean_ns"] = steps.mean() * 1e9;
}

/// From nothing to full. Records come from the heap between the appends, as the
/// capture takes them.
template <typename List> void growing(benchmark::State &state)
{
    for ([[maybe_unused]] auto iteration : state) {
        LongestStep steps(capacity);
        for (int round = 0; round < rounds; ++round) {
            malloc_trim(0); // fresh memory each time
            List list;
            for (std::size_t i = 0; i < capacity; ++i) {
                auto *const record = new Record;
                steps.time(i, [&list, record] { list.append(record); });
            }
            qDeleteAll(list);
        }
        report(state, steps);
    }
}

/// Full, several times over: an append and the removal of the oldest.
template <typename List> void full(benchmark::State &state)
{
    constexpr std::size_t turns = 5;
    Record record;
    for ([[maybe_unused]] auto iteration : state) {
        LongestStep steps(turns * capacity);
        for (int round = 0; round < rounds; ++round) {
            malloc_trim(0);
            List list;
            for (std::size_t i = 0; i < capacity; ++i)
                list.append(&record);
            for (std::size_t i = 0; i < turns * capacity; ++i) {
                steps.time(i, [&list, &record] {
                    list.append(&record);
                    benchmark::DoNotOptimize(list.takeFirst());
                });
            }
        }
        report(state, steps);
    }
}

using RecordList = measurement::RecordList<Record>;

/// The standard library's queue, under the names of QList.
class Deque : public std::deque<Record *>
{
public:
    void append(Record *record) { push_back(record); }
    Record *takeFirst()
    {
        Record *const record = front();
        pop_front();
        return record;
    }
};

BENCHMARK_TEMPLATE(growing, RecordList)->Name("store/growing/list")->UseManualTime()->Iterations(1);
BENCHMARK_TEMPLATE(growing, QList<Record *>)->Name("store/growing/QList")->UseManualTime()->Iterations(1);
BENCHMARK_TEMPLATE(growing, Deque)->Name("store/growing/deque")->UseManualTime()->Iterations(1);
BENCHMARK_TEMPLATE(full, RecordList)->Name("store/full/list")->UseManualTime()->Iterations(1);
BENCHMARK_TEMPLATE(full, QList<Record *>)->Name("store/full/QList")->UseManualTime()->Iterations(1);
BENCHMARK_TEMPLATE(full, Deque)->Name("store/full/deque")->UseManualTime()->Iterations(1);

} // namespace
