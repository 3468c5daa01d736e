#include "bench/reference/ThroughputReference.h"
#include "tests/measurement/model/PointList.h"
#include "tests/measurement/model/RandomCase.h"

#include <QTest>

#include <bit>
#include <limits>

using namespace measurement::throughput;

namespace {

/// Families of the random cases; the shares make each its own kind of trouble.
const std::vector<CaseFamily> &families()
{
    static const std::vector<CaseFamily> list = [] {
        std::vector<CaseFamily> all;
        all.push_back({.name = "steady, faster than the sensor", .shortest = 2300, .longest = 2320});
        all.push_back({.name = "slower than the sensor", .shortest = 2580, .longest = 2700});
        all.push_back({.name = "around the required speed"});
        all.push_back({.name = "wide jitter", .shortest = 100, .longest = 5020});
        all.push_back({.name = "stalls", .shortest = 2300, .longest = 2400, .stalls = 0.02});
        all.push_back({.name = "far too slow", .shortest = 3000, .longest = 9000});
        all.push_back({.name = "climbing far", .requiredMBps = 800, .largeBuffer = true});
        // Half bytes at levels whose unit is a byte or two.
        all.push_back({.name = "climbing to where halves are rounded",
                       .shortest = 1 << 17,
                       .longest = 1 << 20,
                       .grain = 125,
                       .requiredMBps = std::numeric_limits<qint32>::max(),
                       .largeBuffer = true});
        all.push_back({.name = "equal stamps", .repeats = 0.01});
        all.push_back({.name = "backward stamps", .stalls = 0.01, .backward = 0.002});
        all.push_back({.name = "huge gaps", .huge = 0.002});
        all.push_back({.name = "mixed lengths", .stalls = 0.01, .mixedLengths = true});
        all.push_back({.name = "disorder", .stalls = 0.01, .disorder = true});
        all.push_back({.name = "strange numbers",
                       .stalls = 0.02,
                       .repeats = 0.001,
                       .backward = 0.0003,
                       .huge = 0.0003,
                       .mixedLengths = true,
                       .disorder = true,
                       .strangeNumbers = true});
        return all;
    }();
    return list;
}

quint64 bits(double value)
{
    return std::bit_cast<quint64>(value);
}

struct Seen
{
    bool processed = false;
    // Values that no pass computes: what stays is seen to stay.
    Statistics statistics = {-1.25, -2.25, -3.25, 77};
    PointList sink;
};

Seen runReference(const RandomCase &drawn)
{
    Seen outcome;
    reference::Buffers buffers;
    outcome.processed =
        reference::evaluate(drawn.recording, drawn.settings, buffers,
                            drawn.statisticsOnly ? nullptr : &outcome.sink, outcome.statistics);
    return outcome;
}

/// \param allowed work of one call; the calls go on until one gets through
Seen runModel(const RandomCase &drawn, const Kernels &kernels, quint64 allowed = Work().allowed)
{
    using Result = measurement::throughput::Outcome;
    const FrameRange range = selectFrames(drawn.recording, drawn.settings);
    ScratchArrays arrays(range.intervals);
    for (int call = 0; call < 100000; ++call) {
        Seen outcome;
        Work work;
        work.allowed = allowed;
        const Result result =
            evaluate(drawn.recording, range, drawn.settings, arrays.scratch(),
                     drawn.statisticsOnly ? nullptr : &outcome.sink, outcome.statistics, kernels, &work);
        outcome.processed = result == Result::Processed;
        if (result != Result::Unfinished)
            return outcome;
    }
    return {};
}

/// What differs, empty for nothing.
QString difference(const Seen &expected, const Seen &actual)
{
    const auto mismatch = [](const char *what, double a, double b) {
        return QStringLiteral("%1: %2 expected, got %3")
            .arg(QLatin1String(what))
            .arg(a, 0, 'g', 17)
            .arg(b, 0, 'g', 17);
    };
    const Statistics &a = expected.statistics;
    const Statistics &b = actual.statistics;
    if (expected.processed != actual.processed)
        return mismatch("result", expected.processed, actual.processed);
    if (bits(a.avgThroughput) != bits(b.avgThroughput))
        return mismatch("average", a.avgThroughput, b.avgThroughput);
    if (bits(a.minThroughput) != bits(b.minThroughput))
        return mismatch("minimum", a.minThroughput, b.minThroughput);
    if (bits(a.maxBufferLevel) != bits(b.maxBufferLevel))
        return mismatch("level", a.maxBufferLevel, b.maxBufferLevel);
    if (a.bufferOverflowCount != b.bufferOverflowCount)
        return mismatch("overflows", static_cast<double>(a.bufferOverflowCount),
                        static_cast<double>(b.bufferOverflowCount));
    if (expected.sink.points.size() != actual.sink.points.size())
        return mismatch("points", static_cast<double>(expected.sink.points.size()),
                        static_cast<double>(actual.sink.points.size()));
    for (std::size_t i = 0; i < expected.sink.points.size(); ++i) {
        const Point &p = expected.sink.points[i];
        const Point &q = actual.sink.points[i];
        if (p.time != q.time)
            return mismatch("point's time", static_cast<double>(p.time), static_cast<double>(q.time));
        if (bits(p.minSpeed) != bits(q.minSpeed))
            return mismatch("point's speed", p.minSpeed, q.minSpeed);
        if (bits(p.maxLevel) != bits(q.maxLevel))
            return mismatch("point's level", p.maxLevel, q.maxLevel);
    }
    return QString();
}

} // namespace

/// The model against its plain formulas, bit by bit, on random recordings.
class ThroughputDifferentialTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void randomCases_data();
    void randomCases();
    void longRecording_data();
    void longRecording();
    void stampsPastTheirRange();
    void stampsCloserThanDoublesTell();
    void coverage();

private:
    void count(const Seen &expected);

    quint64 m_cases = 0;
    quint64 m_points = 0;
    quint64 m_overflows = 0;
    quint64 m_partLevels = 0;
    quint64 m_refused = 0;
};

void ThroughputDifferentialTest::randomCases_data()
{
    QTest::addColumn<int>("family");
    QTest::addColumn<quint64>("seed");
    for (std::size_t family = 0; family < families().size(); ++family)
        QTest::newRow(families()[family].name) << static_cast<int>(family) << quint64(1000 + family);
}

void ThroughputDifferentialTest::randomCases()
{
    QFETCH(int, family);
    QFETCH(quint64, seed);
    constexpr int recordings = 500;
    constexpr int changes = 5;
    const CaseFamily &chosen = families()[static_cast<std::size_t>(family)];
    std::mt19937_64 random(seed);
    for (int number = 0; number < recordings; ++number) {
        RandomCase drawn = drawCase(chosen, random);
        QCOMPARE(difference(runReference(drawn), runModel(drawn, bestKernels())), QString());
        drawn.recording.addOutlines();
        const Kernels &kernels = number % 2 == 0 ? bestKernels() : portableKernels();
        for (int change = 0; change <= changes; ++change) {
            if (change > 0)
                drawChange(drawn, chosen, random);
            const Seen expected = runReference(drawn);
            const quint64 work = number % 3 == 0 ? 1 + random() % 5000 : Work().allowed;
            const QString text = difference(expected, runModel(drawn, kernels, work));
            QVERIFY2(
                text.isEmpty(),
                qPrintable(QStringLiteral("recording %1, change %2: %3").arg(number).arg(change).arg(text)));
            count(expected);
        }
    }
}

void ThroughputDifferentialTest::count(const Seen &expected)
{
    ++m_cases;
    m_points += expected.sink.points.size();
    m_overflows += expected.processed && expected.statistics.bufferOverflowCount > 0;
    m_partLevels += expected.statistics.maxBufferLevel > 0.0 && expected.statistics.maxBufferLevel < 100.0;
    m_refused += !expected.processed;
}

void ThroughputDifferentialTest::longRecording_data()
{
    QTest::addColumn<int>("regime");
    QTest::addColumn<bool>("reset");
    for (std::size_t regime = 0; regime < reference::benchmarkRegimes().size(); ++regime) {
        const std::string &name = reference::benchmarkRegimes()[regime].name;
        QTest::newRow((name + " carried").c_str()) << static_cast<int>(regime) << false;
        QTest::newRow((name + " reset").c_str()) << static_cast<int>(regime) << true;
    }
}

/// Enough frames of the measured size that guessing starts stops and resumes.
void ThroughputDifferentialTest::longRecording()
{
    QFETCH(int, regime);
    QFETCH(bool, reset);
    const reference::Regime &chosen = reference::benchmarkRegimes()[static_cast<std::size_t>(regime)];
    for (const int pixels : {40, 1500, 40000}) {
        RandomCase drawn;
        drawn.recording = reference::makeRecording(chosen, 150, 2000);
        drawn.settings = reference::settingsFor(drawn.recording, chosen, pixels, reset);
        const Seen expected = runReference(drawn);
        QVERIFY(expected.sink.points.size() > static_cast<std::size_t>(pixels) / 2);
        QCOMPARE(difference(expected, runModel(drawn, bestKernels())), QString());
        drawn.recording.addOutlines();
        QCOMPARE(difference(expected, runModel(drawn, bestKernels())), QString());
        QCOMPARE(difference(expected, runModel(drawn, bestKernels())), QString());
        drawn.recording = reference::makeRecording(chosen, 150, 2000);
        drawn.recording.addOutlines();
        QCOMPARE(difference(expected, runModel(drawn, portableKernels(), 5000)), QString());
    }
}

/// Intervals that are each short enough for blocks, in frames that are not: the
/// counter runs past its start, so the times within a frame step back.
void ThroughputDifferentialTest::stampsPastTheirRange()
{
    RandomCase drawn;
    for (const int exponent : {51, 52}) {
        std::vector<quint64> stamps = {5};
        for (int i = 0; i < 9000; ++i)
            stamps.push_back(stamps.back() + (Q_UINT64_C(1) << exponent) - 1 - static_cast<quint64>(i));
        drawn.recording.append(1000, stamps);
    }
    drawn.settings.sampleInterval = 4096;
    drawn.settings.requiredMBps = 400;
    drawn.settings.bufferSize = 1000000;
    drawn.settings.to = std::numeric_limits<qint64>::max() / 64;
    drawn.settings.msPerPixel = 1e12;
    const Seen expected = runReference(drawn);
    QVERIFY(expected.sink.points.size() > 10);
    QCOMPARE(difference(expected, runModel(drawn, bestKernels())), QString());
    drawn.recording.addOutlines();
    QCOMPARE(difference(expected, runModel(drawn, bestKernels())), QString());
}

/// A first block so long that the rest of the frame ends with it, as far as
/// doubles can tell, and a point in both.
void ThroughputDifferentialTest::stampsCloserThanDoublesTell()
{
    std::vector<quint64> stamps = {0};
    for (int i = 0; i < 127; ++i)
        stamps.push_back(stamps.back() + (Q_UINT64_C(1) << 52) - 1);
    // A whole microsecond, not halfway between doubles, which are 64 apart here.
    const quint64 last = (stamps.back() + (Q_UINT64_C(1) << 51)) / 16000 * 16000 + 3000;
    for (quint64 stamp = last - 1; stamp <= last + 1; ++stamp)
        stamps.push_back(stamp);
    RandomCase drawn;
    drawn.recording.append(1000, stamps);
    drawn.recording.addOutlines();
    drawn.settings.sampleInterval = 4096;
    drawn.settings.requiredMBps = 400;
    drawn.settings.bufferSize = 1000000;
    drawn.settings.meanSpan = 1e17;
    drawn.settings.to = 1000 + static_cast<qint64>(last / 250);
    int tried = 0;
    for (std::size_t first = 40; first < 128; ++first) {
        const auto spacing = static_cast<qint64>(last / 250 - stamps[first] / 250) - 1;
        drawn.settings.from = 1000 + static_cast<qint64>(stamps[first] / 250);
        drawn.settings.msPerPixel = static_cast<double>(spacing) / 1000.0;
        tried += static_cast<qint64>(drawn.settings.msPerPixel * 1000.0) == spacing;
        const Seen expected = runReference(drawn);
        QVERIFY(!expected.sink.points.empty());
        QCOMPARE(difference(expected, runModel(drawn, bestKernels())), QString());
    }
    QVERIFY(tried > 0);
}

/// The random cases must not agree by being empty.
void ThroughputDifferentialTest::coverage()
{
    QVERIFY(m_cases >= 10000);
    QVERIFY2(m_points > 20 * m_cases, qPrintable(QString::number(m_points)));
    QVERIFY2(m_overflows > m_cases / 10, qPrintable(QString::number(m_overflows)));
    QVERIFY2(m_partLevels > m_cases / 10, qPrintable(QString::number(m_partLevels)));
    QVERIFY2(m_refused > m_cases / 100, qPrintable(QString::number(m_refused)));
}

QTEST_APPLESS_MAIN(ThroughputDifferentialTest)
#include "ThroughputDifferentialTest.moc"
