#include "measurement/CounterSeries.h"
#include "tests/measurement/model/CounterList.h"

#include <QTest>

#include <limits>

using namespace measurement::counters;

Q_DECLARE_METATYPE(Window)

namespace {

constexpr qint64 lowest = std::numeric_limits<qint64>::min();
constexpr qint64 highest = std::numeric_limits<qint64>::max();

class PointLog final : public CounterSink, public RateSink
{
public:
    void addCounters(qint64 time, const Record &record) override
    {
        times.append(time);
        numbers.append(record.frameNumber);
    }
    void addFrameRate(qint64 time, double framesPerSecond) override
    {
        times.append(time);
        rates.append(framesPerSecond);
    }

    QList<qint64> times;
    QList<quint64> numbers; ///< of the frames
    QList<double> rates;
};

PointLog counterPoints(const QList<qint64> &timestamps, const Window &window)
{
    CounterList records;
    for (const qint64 timestamp : timestamps)
        records.add(timestamp);
    PointLog log;
    counterSeries(records.pointers, window, log);
    return log;
}

PointLog ratePoints(const QList<qint64> &timestamps, qint64 to,
                    ExTimestampOrigin origin = TimestampOriginCamera)
{
    CounterList records;
    for (const qint64 timestamp : timestamps)
        records.add(timestamp);
    Window window;
    window.to = to;
    window.origin = origin;
    PointLog log;
    frameRateSeries(records.pointers, window, log);
    return log;
}

QList<qint64> every(qint64 step, int count, qint64 first = 1)
{
    QList<qint64> timestamps;
    for (int i = 0; i < count; ++i)
        timestamps.append(first + i * step);
    return timestamps;
}

} // namespace

class CounterSeriesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void counters_data();
    void counters();
    void countersOfTheComputersTime();
    void rates_data();
    void rates();
    void ratesOfTheComputersTime();
};

void CounterSeriesTest::counters_data()
{
    using Times = QList<qint64>;
    QTest::addColumn<Times>("timestamps");
    QTest::addColumn<Window>("window");
    QTest::addColumn<Times>("expected"); // relative to the window's end
    const auto row = [](const char *name, const Times &timestamps, const Window &window,
                        const Times &expected) { QTest::newRow(name) << timestamps << window << expected; };
    const auto window = [](qint64 from, qint64 to, double msPerPixel = 0.0, double meanInterval = 0.0) {
        return Window{from, to, TimestampOriginCamera, msPerPixel, meanInterval};
    };
    row("no record", {}, window(0, 1000), {});
    row("one record", {500}, window(0, 1000), {});
    row("all but the first", {100, 200, 300}, window(0, 1000), {-800, -700});
    row("equal times", {100, 200, 200, 300}, window(0, 1000), {-800, -700});
    // 1000 wide, so from 0 up to but not including 3000.
    row("margins", {-1, 0, 1, 999, 2000, 2999, 3000}, window(1000, 2000), {-1999, -1001, 0, 999});
    row("first in the margin", {-1, 0, 1}, window(1000, 2000), {-1999});
    row("none late enough", {1, 2, 3}, window(5000, 6000), {});
    row("none early enough", {7000, 7001}, window(5000, 6000), {});
    row("first beyond ends the series", {1500, 1600, 9000, 1700}, window(1000, 2000), {-400});
    row("stepping back", {1500, 1600, 1550, 1601}, window(1000, 2000), {-400, -399});
    row("one a step", {0, 999, 1000, 1001, 1002, 2000, 2001, 2002, 3003}, window(0, 5000, 1.0),
        {-3999, -2998, -1997});
    row("fraction of a microsecond", {0, 1, 2, 3}, window(0, 10, 0.0019), {-8});
    row("ten intervals", {-11, -10, -9, 2109, 2110}, window(1000, 1100, 0.0, 101.9), {-1109, 1009});
    row("narrower than ten intervals", {-1, 0, 1, 2499, 2500}, window(1000, 1500, 0.0, 100.0), {-1499, 999});
    row("margin as wide as ten intervals", {-1, 0, 1, 2999, 3000}, window(1000, 2000, 0.0, 100.0),
        {-1999, 999});
    row("reversed window", {1, 2000}, window(2000, 1000), {});
    row("any time", {lowest, -1, 0, highest - 1}, window(lowest, highest), {-highest, -1});
    row("endless intervals", {lowest, 5, highest - 1}, window(0, 10, 0.0, std::numeric_limits<double>::max()),
        {highest - 11});
    row("endless step", {0, 1, 2}, window(0, 10, std::numeric_limits<double>::infinity()), {});
}

void CounterSeriesTest::counters()
{
    QFETCH(QList<qint64>, timestamps);
    QFETCH(Window, window);
    QFETCH(QList<qint64>, expected);
    const PointLog log = counterPoints(timestamps, window);
    QCOMPARE(log.times, expected);
    // Each point shows the record of its own time.
    for (int i = 0; i < log.times.size(); ++i) {
        const qint64 timestamp = timestamps[static_cast<int>(log.numbers[i]) - 1];
        if (window.to != highest)
            QCOMPARE(timestamp - window.to, log.times[i]);
    }
}

void CounterSeriesTest::countersOfTheComputersTime()
{
    constexpr qint64 shift = 1000000000000;
    Window window = {shift, shift + 1000, TimestampOriginComputer};
    QCOMPARE(counterPoints({100, 200, 300}, window).times, (QList<qint64>{-800, -700}));
    window.origin = static_cast<ExTimestampOrigin>(7);
    QCOMPARE(counterPoints({100, 200, 300}, window).times, QList<qint64>());
}

void CounterSeriesTest::rates_data()
{
    using Times = QList<qint64>;
    QTest::addColumn<Times>("timestamps");
    QTest::addColumn<Times>("times"); // relative to 2 s
    QTest::addColumn<QList<double>>("rates");
    const auto row = [](const char *name, const Times &timestamps, const Times &times,
                        const QList<double> &rates) { QTest::newRow(name) << timestamps << times << rates; };
    row("no record", {}, {}, {});
    row("one record", {5}, {}, {});
    row("half a second apart", every(500000, 6), {-999999, 1}, {2.0, 2.0});
    row("just below a second", {1, 1000000}, {}, {});
    row("a second", {1, 1000001}, {-999999}, {1.0});
    row("ends late", {1, 400001, 800001, 1250001, 1300001}, {-749999}, {3.0 / 1.25});
    row("count starts again", {1, 400001, 1000001, 1500001, 2000001}, {-999999, 1}, {2.0, 2.0});
    row("zero at the start", {0, 0, 500000, 1000000, 1500000}, {-500000}, {2.0});
    row("only zeros", {0, 0, 0}, {}, {});
    // Only a zero anchor is replaced; this one counts as a frame.
    row("zero in the middle", {1, 0, 500001, 1000001}, {-999999}, {3.0});
    row("zero ends no span", {-1000000, 0, 500000, 1000000, 1500000}, {-2000000, -500000}, {1.0, 2.0});
    row("stepping back", {5000000, 1000000, 1500000, 6000000}, {4000000}, {3.0});
    row("outside the window too", {-90000000, -88000000, 90000000}, {-90000000, 88000000},
        {0.5, 1.0 / 178.0});
    row("any time", {lowest, highest}, {highest - 2000000},
        {1.0 / (static_cast<double>(highest) / 1000000.0)});
}

void CounterSeriesTest::rates()
{
    QFETCH(QList<qint64>, timestamps);
    QFETCH(QList<qint64>, times);
    QFETCH(QList<double>, rates);
    const PointLog log = ratePoints(timestamps, 2000000);
    QCOMPARE(log.times, times);
    QCOMPARE(log.rates, rates);
}

void CounterSeriesTest::ratesOfTheComputersTime()
{
    // The camera's time is 0 throughout there, the computer's is not.
    const QList<qint64> timestamps = {0, 0, 1000000};
    QCOMPARE(ratePoints(timestamps, 0).times, QList<qint64>());
    QCOMPARE(ratePoints(timestamps, 1000000000000, TimestampOriginComputer).times, QList<qint64>{1000000});
}

QTEST_APPLESS_MAIN(CounterSeriesTest)
#include "CounterSeriesTest.moc"
