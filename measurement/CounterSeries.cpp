#include "measurement/CounterSeries.h"

#include "measurement/Saturate.h"

#include <algorithm>

namespace measurement::counters {

namespace {

constexpr double microsecondsPerSecond = 1000000.0;
constexpr qint64 longestBelowSecond = 999999; ///< microseconds

/// Counters are few and far between where throughput samples are dense, so the
/// margin is wider than the throughput model's.
qint64 marginOf(const Window &window)
{
    const qint64 width = subtractSaturated(window.to, window.from);
    if (static_cast<double>(width) < 10.0 * window.meanInterval)
        return multiplySaturated(10, truncateSaturated(window.meanInterval));
    return width;
}

} // namespace

void counterSeries(const RecordList<Record> &records, const Window &window, CounterSink &sink)
{
    const qint64 margin = marginOf(window);
    const qint64 earliest = subtractSaturated(window.from, margin);
    const qint64 end = addSaturated(window.to, margin);
    const qint64 spacing = truncateSaturated(window.msPerPixel * 1000.0);

    auto record = std::find_if(records.cbegin(), records.cend(), [&](const Record *candidate) {
        return candidate->frameTimestamp(window.origin) >= earliest;
    });
    if (record == records.cend() || (*record)->frameTimestamp(window.origin) >= end)
        return;
    qint64 lastPoint = subtractSaturated((*record)->frameTimestamp(window.origin), window.to);
    for (++record; record != records.cend(); ++record) {
        const qint64 timestamp = (*record)->frameTimestamp(window.origin);
        if (timestamp >= end)
            return;
        const qint64 time = subtractSaturated(timestamp, window.to);
        if (subtractSaturated(time, lastPoint) <= spacing)
            continue;
        sink.addCounters(time, **record);
        lastPoint = time;
    }
}

void frameRateSeries(const RecordList<Record> &records, const Window &window, RateSink &sink)
{
    if (records.isEmpty())
        return;
    qint64 anchor = records.first()->frameTimestamp(window.origin);
    qint64 count = 0; // frames since the anchor, without the one that ends the span
    for (auto record = records.cbegin() + 1; record != records.cend(); ++record) {
        const qint64 timestamp = (*record)->frameTimestamp(window.origin);
        // A record without a time cannot start a span.
        if (anchor == 0) {
            anchor = timestamp;
            continue;
        }
        const qint64 span = subtractSaturated(timestamp, anchor);
        if (span <= longestBelowSecond) {
            ++count;
            continue;
        }
        sink.addFrameRate(subtractSaturated(timestamp, window.to),
                          static_cast<double>(count + 1) /
                              (static_cast<double>(span) / microsecondsPerSecond));
        count = 0;
        anchor = timestamp;
    }
}

} // namespace measurement::counters
