#include "measurement/ThroughputKernels.h"

#include <QTest>

#include <algorithm>
#include <array>
#include <bit>
#include <random>
#include <vector>

using namespace measurement::throughput;

namespace {

using Stamp = unsigned long long;

quint64 bits(double value)
{
    return std::bit_cast<quint64>(value);
}

std::vector<Stamp> randomStamps(std::mt19937_64 &random, std::size_t intervals, Stamp longest)
{
    std::uniform_int_distribution<Stamp> interval(1, longest);
    std::vector<Stamp> stamps = {random()};
    for (std::size_t i = 0; i < intervals; ++i)
        stamps.push_back(stamps.back() + interval(random));
    return stamps;
}

/// Lengths at which rounding is delicate: around multiples of 250 and powers of two.
std::vector<Stamp> delicateIntervals()
{
    std::vector<Stamp> intervals;
    for (Stamp ticks = 1; ticks < 300000; ++ticks)
        intervals.push_back(ticks);
    std::mt19937_64 random(5);
    for (int exponent = 19; exponent <= 51; ++exponent) {
        const Stamp power = Stamp(1) << exponent;
        for (Stamp offset = 0; offset < 300; ++offset) {
            intervals.push_back(power + offset);
            intervals.push_back(2 * power - 1 - offset);
            intervals.push_back(power + random() % power);
            intervals.push_back((power + random() % power) / 250 * 250 + offset % 3);
        }
    }
    return intervals;
}

using KernelsOf = const Kernels *(*)();

const Kernels *portable()
{
    return &portableKernels();
}

/// One row for each set of loops; those this processor lacks are skipped alone.
void addKernelRows()
{
    QTest::addColumn<KernelsOf>("kernelsOf");
    QTest::newRow("portable") << &portable;
    QTest::newRow("AVX2") << &avx2Kernels;
}

/// The level one interval after the other, as the formulas have it.
double levelAfter(const std::vector<Stamp> &stamps, const LevelRule &rule, double level, double &peak)
{
    for (std::size_t i = 1; i < stamps.size(); ++i) {
        level += static_cast<double>(stamps[i] - stamps[i - 1]) / 250.0 * rule.required - rule.interval;
        peak = std::max(peak, level);
        level = std::clamp(level, 0.0, rule.size);
    }
    return level;
}

} // namespace

Q_DECLARE_METATYPE(KernelsOf)

#define FETCH_KERNELS(kernels)                                                                               \
    QFETCH(KernelsOf, kernelsOf);                                                                            \
    const Kernels *const kernels = kernelsOf();                                                              \
    if (!(kernels))                                                                                          \
    QSKIP("This processor cannot run these loops")

/// Each set of inner loops against the plain formulas.
class ThroughputKernelsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bestSet();
    void extrema_data() { addKernelRows(); }
    void extrema();
    void extremaOfUnusualIntervals_data();
    void extremaOfUnusualIntervals();
    void divisions_data() { addKernelRows(); }
    void divisions();
    void scans_data();
    void scans();
    void freeRangeChangesNothing_data();
    void freeRangeChangesNothing();
};

void ThroughputKernelsTest::bestSet()
{
    QCOMPARE(&bestKernels(), avx2Kernels() ? avx2Kernels() : &portableKernels());
}

void ThroughputKernelsTest::extrema()
{
    FETCH_KERNELS(kernels);
    std::mt19937_64 random(1);
    for (std::size_t count = 1; count <= 140; ++count) {
        for (const Stamp longest : {Stamp(3), Stamp(5000), longestPlainInterval}) {
            const std::vector<Stamp> stamps = randomStamps(random, count, longest);
            std::vector<Stamp> intervals;
            for (std::size_t i = 0; i < count; ++i)
                intervals.push_back(stamps[i + 1] - stamps[i]);
            const auto [least, most] = std::minmax_element(intervals.begin(), intervals.end());
            const Extrema actual = kernels->extrema(stamps.data(), count);
            QCOMPARE(actual.longest, *most);
            QCOMPARE(actual.shortest, *least);
        }
    }
}

void ThroughputKernelsTest::extremaOfUnusualIntervals_data()
{
    QTest::addColumn<KernelsOf>("kernelsOf");
    QTest::addColumn<quint64>("interval");
    for (const auto &[set, kernelsOf] : {std::pair("portable", &portable), std::pair("AVX2", &avx2Kernels)}) {
        QTest::addRow("%s, none", set) << kernelsOf << quint64(0);
        QTest::addRow("%s, longest plain", set) << kernelsOf << quint64(longestPlainInterval);
        QTest::addRow("%s, one more", set) << kernelsOf << quint64(longestPlainInterval + 1);
        QTest::addRow("%s, half the range", set) << kernelsOf << (quint64(1) << 63);
        QTest::addRow("%s, backward", set) << kernelsOf << ~quint64(0);
    }
}

void ThroughputKernelsTest::extremaOfUnusualIntervals()
{
    FETCH_KERNELS(kernels);
    QFETCH(quint64, interval);
    for (std::size_t place = 0; place < 11; ++place) {
        std::vector<Stamp> stamps = {1000};
        for (std::size_t i = 0; i < 11; ++i)
            stamps.push_back(stamps.back() + (i == place ? interval : 100 + i));
        const Extrema extrema = kernels->extrema(stamps.data(), 11);
        const bool shorter = interval < 100;
        QCOMPARE(quint64(extrema.longest), shorter ? quint64(place == 10 ? 109 : 110) : interval);
        QCOMPARE(quint64(extrema.shortest), shorter ? interval : quint64(place == 0 ? 101 : 100));
    }
}

/// Every length on its own, so that one wrong last bit of a quotient shows.
void ThroughputKernelsTest::divisions()
{
    FETCH_KERNELS(kernels);
    const LevelRule rule = {1.0, 0.0, 1e300};
    for (const Stamp ticks : delicateIntervals()) {
        const std::array<Stamp, 5> stamps = {7, 7 + ticks, 7 + 2 * ticks, 7 + 3 * ticks, 7 + 4 * ticks};
        std::array<const Stamp *, laneCount> lanes;
        lanes.fill(stamps.data());
        std::array<double, laneCount> levels = {};
        std::array<double, laneCount> peaks = {};
        kernels->scanLanes(lanes.data(), 4, rule, levels.data(), peaks.data());
        const double quotient = static_cast<double>(ticks) / 250.0;
        QCOMPARE(bits(levels[5]), bits(quotient + quotient + quotient + quotient));
    }
}

void ThroughputKernelsTest::scans_data()
{
    QTest::addColumn<KernelsOf>("kernelsOf");
    QTest::addColumn<double>("size");
    QTest::addColumn<quint64>("longest"); // interval; 5120 is balanced
    for (const auto &[set, kernelsOf] : {std::pair("portable", &portable), std::pair("AVX2", &avx2Kernels)}) {
        QTest::addRow("%s, hovers above empty", set) << kernelsOf << 1e9 << quint64(5100);
        QTest::addRow("%s, meets both ends", set) << kernelsOf << 3000.0 << quint64(5120);
        QTest::addRow("%s, hovers below full", set) << kernelsOf << 20000.0 << quint64(7000);
        QTest::addRow("%s, no buffer", set) << kernelsOf << 0.0 << quint64(5120);
        QTest::addRow("%s, climbs", set) << kernelsOf << 1e18 << quint64(9000);
    }
}

void ThroughputKernelsTest::scans()
{
    FETCH_KERNELS(kernels);
    QFETCH(double, size);
    QFETCH(quint64, longest);
    const LevelRule rule = {400.0, 4096.0, size};
    const FreeRange never = {0.0, 0.0};
    std::mt19937_64 random(2);
    for (std::size_t count = 1; count <= blockLength; ++count) {
        std::array<std::vector<Stamp>, laneCount> stamps;
        std::array<const Stamp *, laneCount> lanes = {};
        std::array<double, laneCount> levels = {};
        std::array<double, laneCount> peaks = {};
        for (std::size_t lane = 0; lane < laneCount; ++lane) {
            stamps[lane] = randomStamps(random, count, longest);
            lanes[lane] = stamps[lane].data();
            levels[lane] = lane % 2 == 0 ? 0.0 : size / static_cast<double>(lane);
        }
        const std::array<double, laneCount> starts = levels;
        kernels->scanLanes(lanes.data(), count, rule, levels.data(), peaks.data());
        for (std::size_t lane = 0; lane < laneCount; ++lane) {
            double expectedPeak = 0.0;
            const double expected = levelAfter(stamps[lane], rule, starts[lane], expectedPeak);
            double peak = 0.0;
            const double level = kernels->scan(lanes[lane], count, rule, never, starts[lane], peak);
            QCOMPARE(bits(level), bits(expected));
            QCOMPARE(bits(peak), bits(expectedPeak));
            QCOMPARE(bits(levels[lane]), bits(expected));
            QCOMPARE(bits(peaks[lane]), bits(expectedPeak));
        }
    }
}

void ThroughputKernelsTest::freeRangeChangesNothing_data()
{
    QTest::addColumn<KernelsOf>("kernelsOf");
    QTest::addColumn<quint64>("longest"); // interval; 5120 is balanced
    QTest::addColumn<double>("start");
    for (const auto &[set, kernelsOf] : {std::pair("portable", &portable), std::pair("AVX2", &avx2Kernels)}) {
        QTest::addRow("%s, free at first", set) << kernelsOf << quint64(6000) << 50000.0;
        QTest::addRow("%s, rises from empty", set) << kernelsOf << quint64(5400) << 0.0;
        QTest::addRow("%s, hovers above empty", set) << kernelsOf << quint64(4800) << 0.0;
        QTest::addRow("%s, falls to empty", set) << kernelsOf << quint64(4000) << 30000.0;
        QTest::addRow("%s, rises to full", set) << kernelsOf << quint64(7000) << 60000.0;
        QTest::addRow("%s, hovers below full", set) << kernelsOf << quint64(5600) << 100000.0;
    }
}

void ThroughputKernelsTest::freeRangeChangesNothing()
{
    FETCH_KERNELS(kernels);
    QFETCH(quint64, longest);
    QFETCH(double, start);
    const LevelRule rule = {400.0, 4096.0, 100000.0};
    // The shortest interval, of 1 tick, changes the level by -4094.4 bytes.
    const double largest = static_cast<double>(longest) / 250.0 * rule.required - rule.interval;
    const FreeRange sometimes = {8 * 4097.0, rule.size - 8 * (largest + 1.0)};
    std::mt19937_64 random(3);
    for (std::size_t i = 0; i < 500; ++i) {
        const std::size_t count = i < 300 ? blockLength : i % blockLength + 1;
        const std::vector<Stamp> stamps = randomStamps(random, count, longest);
        double expectedPeak = 0.0;
        const double expected = levelAfter(stamps, rule, start, expectedPeak);
        double peak = 0.0;
        const double level = kernels->scan(stamps.data(), count, rule, sometimes, start, peak);
        QCOMPARE(bits(level), bits(expected));
        QCOMPARE(bits(peak), bits(expectedPeak));
    }
}

QTEST_APPLESS_MAIN(ThroughputKernelsTest)
#include "ThroughputKernelsTest.moc"
