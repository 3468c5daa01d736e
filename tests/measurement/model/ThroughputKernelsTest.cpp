#include "measurement/ThroughputKernels.h"

#include <QTest>

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

} // namespace

/// The loops for newer processors against the portable ones.
class ThroughputKernelsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void extrema();
    void extremaOfUnusualIntervals_data();
    void extremaOfUnusualIntervals();
    void divisions();
    void scans_data();
    void scans();
    void freeRangeChangesNothing();
};

void ThroughputKernelsTest::initTestCase()
{
    if (!avx2Kernels())
        QSKIP("This processor runs the portable loops only");
    QCOMPARE(&bestKernels(), avx2Kernels());
}

void ThroughputKernelsTest::extrema()
{
    std::mt19937_64 random(1);
    for (std::size_t count = 1; count <= 140; ++count) {
        for (const Stamp longest : {Stamp(3), Stamp(5000), longestPlainInterval}) {
            const std::vector<Stamp> stamps = randomStamps(random, count, longest);
            const Extrema expected = portableKernels().extrema(stamps.data(), count);
            const Extrema actual = avx2Kernels()->extrema(stamps.data(), count);
            QCOMPARE(actual.longest, expected.longest);
            QCOMPARE(actual.shortest, expected.shortest);
        }
    }
}

void ThroughputKernelsTest::extremaOfUnusualIntervals_data()
{
    QTest::addColumn<quint64>("interval");
    QTest::newRow("none") << quint64(0);
    QTest::newRow("longest plain") << quint64(longestPlainInterval);
    QTest::newRow("one more") << quint64(longestPlainInterval + 1);
    QTest::newRow("half the range") << (quint64(1) << 63);
    QTest::newRow("backward") << ~quint64(0);
}

void ThroughputKernelsTest::extremaOfUnusualIntervals()
{
    QFETCH(quint64, interval);
    for (std::size_t place = 0; place < 11; ++place) {
        std::vector<Stamp> stamps = {1000};
        for (std::size_t i = 0; i < 11; ++i)
            stamps.push_back(stamps.back() + (i == place ? interval : 100 + i));
        for (const Kernels *kernels : {&portableKernels(), avx2Kernels()}) {
            const Extrema extrema = kernels->extrema(stamps.data(), 11);
            const bool shorter = interval < 100;
            QCOMPARE(quint64(extrema.longest), shorter ? quint64(place == 10 ? 109 : 110) : interval);
            QCOMPARE(quint64(extrema.shortest), shorter ? interval : quint64(place == 0 ? 101 : 100));
        }
    }
}

/// Every length on its own, so that one wrong last bit of a quotient shows.
void ThroughputKernelsTest::divisions()
{
    const LevelRule rule = {1.0, 0.0, 1e300};
    for (const Stamp ticks : delicateIntervals()) {
        const std::array<Stamp, 5> stamps = {7, 7 + ticks, 7 + 2 * ticks, 7 + 3 * ticks, 7 + 4 * ticks};
        std::array<const Stamp *, laneCount> lanes;
        lanes.fill(stamps.data());
        std::array<double, laneCount> levels = {};
        std::array<double, laneCount> peaks = {};
        avx2Kernels()->scanLanes(lanes.data(), 4, rule, levels.data(), peaks.data());
        const double quotient = static_cast<double>(ticks) / 250.0;
        QCOMPARE(bits(levels[5]), bits(quotient + quotient + quotient + quotient));
    }
}

void ThroughputKernelsTest::scans_data()
{
    QTest::addColumn<double>("size");
    QTest::addColumn<quint64>("longest"); // interval; 5120 is balanced
    QTest::newRow("hovers above empty") << 1e9 << quint64(5100);
    QTest::newRow("meets both ends") << 3000.0 << quint64(5120);
    QTest::newRow("hovers below full") << 20000.0 << quint64(7000);
    QTest::newRow("no buffer") << 0.0 << quint64(5120);
    QTest::newRow("climbs") << 1e18 << quint64(9000);
}

void ThroughputKernelsTest::scans()
{
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
        avx2Kernels()->scanLanes(lanes.data(), count, rule, levels.data(), peaks.data());
        for (std::size_t lane = 0; lane < laneCount; ++lane) {
            double expectedPeak = 0.0;
            const double expected =
                portableKernels().scan(lanes[lane], count, rule, never, starts[lane], expectedPeak);
            double peak = 0.0;
            const double level = avx2Kernels()->scan(lanes[lane], count, rule, never, starts[lane], peak);
            QCOMPARE(bits(level), bits(expected));
            QCOMPARE(bits(peak), bits(expectedPeak));
            QCOMPARE(bits(levels[lane]), bits(expected));
            QCOMPARE(bits(peaks[lane]), bits(expectedPeak));
        }
    }
}

void ThroughputKernelsTest::freeRangeChangesNothing()
{
    const LevelRule rule = {400.0, 4096.0, 100000.0};
    const FreeRange never = {0.0, 0.0};
    // No interval of up to 9000 ticks changes the level by more than 10304 bytes.
    const FreeRange sometimes = {8 * 4097.0, 100000.0 - 8 * 10305.0 / 2};
    std::mt19937_64 random(3);
    for (int i = 0; i < 500; ++i) {
        const std::vector<Stamp> stamps = randomStamps(random, blockLength, 6000);
        double peaks[3] = {};
        const double level =
            portableKernels().scan(stamps.data(), blockLength, rule, never, 50000.0, peaks[0]);
        QCOMPARE(bits(portableKernels().scan(stamps.data(), blockLength, rule, sometimes, 50000.0, peaks[1])),
                 bits(level));
        QCOMPARE(bits(avx2Kernels()->scan(stamps.data(), blockLength, rule, sometimes, 50000.0, peaks[2])),
                 bits(level));
        QCOMPARE(bits(peaks[1]), bits(peaks[0]));
        QCOMPARE(bits(peaks[2]), bits(peaks[0]));
    }
}

QTEST_APPLESS_MAIN(ThroughputKernelsTest)
#include "ThroughputKernelsTest.moc"
