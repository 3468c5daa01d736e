#include "bench/scale/Runs.h"

#include "bench/scale/HoldWatcher.h"
#include "bench/scale/ThreadTimes.h"
#include "measurement/CameraLineData.h"

#include <QMutexLocker>

#include <stdexcept>

namespace scale {

namespace {

constexpr int warmUpRefreshes = 3;
constexpr double editSeconds = 5.0;

HoldWatcher watchMutexes(const Rig &rig, const GuiClock &clock, int pause)
{
    std::vector<QMutex *> mutexes;
    for (const Rig::Camera &camera : rig.cameras())
        mutexes.push_back(&camera.line->mutex);
    return {std::move(mutexes), [&clock] { return clock.isBusy(); }, pause};
}

quint64 recordedFrames(const Rig &rig)
{
    quint64 sum = 0;
    for (const Rig::Camera &camera : rig.cameras()) {
        const QMutexLocker locker(&camera.line->mutex);
        sum += camera.line->statCount;
    }
    return sum;
}

double captureSeconds(const Rig &rig)
{
    double sum = 0.0;
    for (const Rig::Camera &camera : rig.cameras())
        sum += camera.camera->captureSeconds();
    return sum;
}

double longestAbsence(const Rig &rig)
{
    double longest = 0.0;
    for (const Rig::Camera &camera : rig.cameras())
        longest = std::max(longest, camera.camera->longestAbsence());
    return longest;
}

/// Events of that kind in the last measurement, of all cameras.
quint64 countOf(const Rig &rig, host::LedgerEntryKind kind)
{
    std::int64_t sum = 0;
    for (const Rig::Camera &camera : rig.cameras())
        sum += camera.camera->simulated().ledger().count(kind);
    return static_cast<quint64>(sum);
}

nlohmann::ordered_json conditions(const Rig &rig, const Options &options)
{
    return {{"cameras", options.cameras},           {"rate_MBps", options.rateMBps},
            {"capacity_samples", options.capacity}, {"sample_period_bytes", options.samplePeriod},
            {"frame_bytes", rig.frameBytes()},      {"view_seconds", rig.viewSeconds()}};
}

nlohmann::ordered_json toJson(const HoldWatcher::Hold &hold)
{
    return {{"at_least_ms", hold.atLeast}, {"at_most_ms", hold.atMost}};
}

void addResolution(nlohmann::ordered_json &object, const HoldWatcher::Result &holds)
{
    object["poll_gap_median_us"] = holds.pollGapMedian;
    object["poll_gap_most_us"] = holds.pollGapMost;
}

void addProcessorTimes(nlohmann::ordered_json &object, const ThreadTimes &from, const ThreadTimes &to,
                       double simulation, double seconds)
{
    const auto percent = [seconds](double time) { return 100.0 * time / seconds; };
    object["cpu_percent"] = {{"simulation", percent(simulation)},
                             {"capture", percent(to.capture - from.capture - simulation)},
                             {"gui", percent(to.gui - from.gui)},
                             {"watcher", percent(to.watcher - from.watcher)},
                             {"other", percent(to.other - from.other)}};
}

/// What was measured before is forgotten.
void beginWindow(const Rig &rig, GuiClock &clock, HoldWatcher &watcher)
{
    clock.reset();
    for (const Rig::Camera &camera : rig.cameras())
        camera.camera->resetAbsence();
    watcher.take();
}

/// Of the last measurement as a whole, which is over.
void addFrames(nlohmann::ordered_json &object, const Rig &rig)
{
    using Kind = host::LedgerEntryKind;
    const quint64 fetched = countOf(rig, Kind::Fetched);
    // Those whose fate is decided, not those that were on their way at the end.
    const quint64 produced = fetched + countOf(rig, Kind::Damaged) + countOf(rig, Kind::TransportSkip) +
                             countOf(rig, Kind::ApiSkip);
    const quint64 recorded = recordedFrames(rig);
    object["frames_produced"] = produced;
    object["frames_fetched"] = fetched;
    object["frames_recorded"] = recorded;
    object["capture_loss_percent"] =
        produced == 0 ? 0.0 : 100.0 * (1.0 - static_cast<double>(recorded) / static_cast<double>(produced));
}

/// A short measurement: it brings the records into view, since the time axis
/// follows the time only while a camera measures. Made-up records cost the first
/// refresh more than captured ones, which is not what is to be measured.
void lookAtRecords(Rig &rig)
{
    rig.startAll();
    rig.runRefreshes(warmUpRefreshes);
    rig.stopAll();
}

nlohmann::ordered_json editStill(Rig &rig, GuiClock &clock, const Options &options)
{
    rig.followDrawing();
    rig.runUntilSettled();
    HoldWatcher watcher = watchMutexes(rig, clock, 0); // nobody else needs the processor
    beginWindow(rig, clock, watcher);
    rig.typeRequiredThroughput(static_cast<int>(options.rateMBps));
    const auto edited = Time::now();
    rig.runRefreshes(1);
    nlohmann::ordered_json result;
    const HoldWatcher::Result first = watcher.take();
    result["first_refresh_ms"] = clock.refreshes().front();
    result["first_refresh_gui_hold"] = toJson(first.gui);
    rig.runUntilSettled();
    if (rig.lastChange() < edited)
        throw std::runtime_error("the edit changes no graph");
    result["later_gui_hold"] = toJson(watcher.take().gui);
    result["graphs_new_after_ms"] = milliseconds(rig.lastChange() - edited);
    result["refresh_worst_ms"] = largest(clock.refreshes());
    addResolution(result, first);
    return result;
}

nlohmann::ordered_json editMeasuring(Rig &rig, GuiClock &clock, const Options &options)
{
    rig.startAll();
    HoldWatcher watcher = watchMutexes(rig, clock, options.pollMicroseconds);
    rig.runRefreshes(warmUpRefreshes);
    beginWindow(rig, clock, watcher);
    rig.typeRequiredThroughput(static_cast<int>(options.rateMBps * 0.95));
    rig.runFor(editSeconds);
    nlohmann::ordered_json result;
    const HoldWatcher::Result holds = watcher.take();
    result["gui_hold"] = toJson(holds.gui);
    result["capture_longest_absence_ms"] = longestAbsence(rig);
    result["refresh_worst_ms"] = largest(clock.refreshes());
    addResolution(result, holds);
    rig.stopAll();
    return result;
}

} // namespace

nlohmann::ordered_json runSteadily(Rig &rig, GuiClock &clock, const Options &options)
{
    nlohmann::ordered_json result = conditions(rig, options);
    lookAtRecords(rig);
    rig.startAll();
    HoldWatcher watcher = watchMutexes(rig, clock, options.pollMicroseconds);
    rig.runRefreshes(warmUpRefreshes);
    beginWindow(rig, clock, watcher);
    const auto begin = Time::now();
    const ThreadTimes threadsBefore = ThreadTimes::now();
    const double captureBefore = captureSeconds(rig);
    const quint64 recordedBefore = recordedFrames(rig);
    rig.runFor(options.seconds);
    const double seconds = milliseconds(Time::now() - begin) / 1000.0;
    const ThreadTimes threadsAfter = ThreadTimes::now();
    const HoldWatcher::Result holds = watcher.take();
    addProcessorTimes(result, threadsBefore, threadsAfter, captureSeconds(rig) - captureBefore, seconds);

    result["seconds"] = seconds;
    result["delivered_MBps"] = static_cast<double>(recordedFrames(rig) - recordedBefore) *
                               static_cast<double>(rig.frameBytes()) / seconds / 1e6 / options.cameras;
    result["refreshes"] = clock.refreshes().size();
    result["refresh_median_ms"] = median(clock.refreshes());
    result["refresh_worst_ms"] = largest(clock.refreshes());
    result["refresh_cpu_median_ms"] = median(clock.refreshProcessorTimes());
    result["refresh_cpu_worst_ms"] = largest(clock.refreshProcessorTimes());
    result["refresh_and_paint_median_ms"] = median(clock.refreshesWithPainting());
    result["refresh_and_paint_worst_ms"] = largest(clock.refreshesWithPainting());
    result["gui_longest_event_ms"] = clock.longestEvent();
    result["gui_hold"] = toJson(holds.gui);
    result["other_hold"] = toJson(holds.other);
    result["capture_longest_absence_ms"] = longestAbsence(rig);
    addResolution(result, holds);

    rig.stopAll();
    addFrames(result, rig);
    return result;
}

nlohmann::ordered_json runEdit(Rig &rig, GuiClock &clock, const Options &options)
{
    nlohmann::ordered_json result = conditions(rig, options);
    lookAtRecords(rig);
    result["still"] = editStill(rig, clock, options);
    result["measuring"] = editMeasuring(rig, clock, options);
    addFrames(result, rig);
    return result;
}

} // namespace scale
