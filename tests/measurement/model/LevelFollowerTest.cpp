#include "measurement/LevelFollower.h"

#include <QTest>

#include <bit>
#include <cmath>
#include <random>
#include <vector>

using namespace measurement::throughput;

namespace {

struct Levels
{
    std::vector<double> starts; ///< of each block
    std::vector<double> peaks;
    double end = 0.0;
    double peak = 0.0;
};

/// Interval by interval, as the model is defined.
Levels followPlainly(const std::vector<quint64> &stamps, const LevelKey &key, double level)
{
    Levels levels;
    const double size = static_cast<double>(key.bufferSize);
    for (std::size_t i = 0; i + 1 < stamps.size(); ++i) {
        if (i % blockLength == 0) {
            levels.starts.push_back(level);
            levels.peaks.push_back(0.0);
        }
        const quint64 interval = stamps[i + 1] - stamps[i];
        if (interval == 0)
            continue;
        level += static_cast<double>(interval) / 250.0 * key.requiredMBps - key.sampleInterval;
        levels.peaks.back() = std::max(levels.peaks.back(), level);
        levels.peak = std::max(levels.peak, level);
        level = level < 0.0 ? 0.0 : level > size ? size : level;
    }
    levels.end = level;
    return levels;
}

bool equal(double a, double b)
{
    return std::bit_cast<quint64>(a) == std::bit_cast<quint64>(b);
}

QString difference(const Levels &expected, const FrameOutline &outline)
{
    for (std::size_t block = 0; block < outline.blocks(); ++block) {
        if (!equal(outline.blockStart(block), expected.starts[block]))
            return QStringLiteral("start of block %1").arg(block);
        if (!equal(outline.blockPeak(block), expected.peaks[block]))
            return QStringLiteral("peak of block %1").arg(block);
    }
    if (!equal(outline.endLevel(), expected.end))
        return QStringLiteral("end %1 is not %2")
            .arg(outline.endLevel(), 0, 'g', 17)
            .arg(expected.end, 0, 'g', 17);
    return equal(outline.peak(), expected.peak) ? QString() : QStringLiteral("peak");
}

struct Family
{
    const char *name;
    LevelKey key;
    quint64 shortest; ///< interval, ticks
    quint64 longest;
    quint64 grain;  ///< of which all intervals are multiples
    double repeats; ///< share of empty intervals
    double lowest;  ///< start level, bytes
    double highest;
    double unit;        ///< of which the start levels are multiples; 0: none in particular
    bool saves = false; ///< whether most blocks can be told without a look at their stamps
    quint64 stop = 1;   ///< most empty intervals in a row
};

constexpr quint64 huge = Q_UINT64_C(1) << 62;

const Family families[] = {
    {"climbing", {4096, 450, huge}, 2560, 2700, 1, 0.0, 1e8, 1.3e8, 0.0, true},
    {"falling", {4096, 350, huge}, 2560, 2700, 1, 0.0, 1e8, 1.3e8, 0.0, true},
    {"hovering", {4096, 400, huge}, 2060, 3060, 1, 0.0, 1e8, 1.3e8, 0.0, true},
    {"with repeats", {4096, 450, huge}, 2560, 2700, 1, 0.05, 1e8, 1.3e8, 0.0},
    {"with long stops", {4096, 450, huge}, 2560, 2700, 1, 0.05, 1e8, 1.3e8, 0.0, false, 300},
    {"through a power of two", {4096, 450, huge}, 2560, 2700, 1, 0.0, 0x1p27 - 1e5, 0x1p27 + 1e4, 0.0},
    {"down through a power of two", {4096, 350, huge}, 2560, 2700, 1, 0.0, 0x1p27 - 1e4, 0x1p27 + 1e5, 0.0},
    {"into the end of the buffer", {4096, 450, 100000000}, 2560, 2700, 1, 0.0, 9.99e7, 1e8, 0.0},
    {"into the empty end", {4096, 350, huge}, 2560, 2700, 1, 0.0, 0.0, 3e5, 0.0},
    // Changes of half bytes at levels that are whole ones: half of the sums are ties.
    {"ties", {0, 3, huge}, 125, 125 * 99, 125, 0.0, 0x1.4p52, 0x1.5p52, 1.0},
    {"ties and signs", {60, 3, huge}, 125, 125 * 99, 125, 0.0, 0x1.4p52, 0x1.5p52, 1.0},
    {"rare ties", {0, 3, huge}, 250, 250 * 99, 250, 0.0, 0x1.4p53, 0x1.5p53, 2.0},
    {"no ties", {0, 4, huge}, 250, 250 * 99, 250, 0.0, 0x1.4p53, 0x1.5p53, 2.0, true},
    {"large changes", {0, 2147483647, huge}, 1 << 20, 1 << 30, 1, 0.0, 0x1p40, 0x1p50, 0.0},
};

} // namespace

/// The level through one frame, from one start after the other, against the sum
/// over its intervals.
class LevelFollowerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fromManyStarts_data();
    void fromManyStarts();
    void ofOtherSettings();
    void ofOtherStamps();
};

void LevelFollowerTest::fromManyStarts_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<bool>("portable");
    for (int number = 0; number < int(std::size(families)); ++number) {
        QTest::newRow(families[number].name) << number << false;
        QTest::addRow("%s, portable", families[number].name) << number << true;
    }
}

void LevelFollowerTest::fromManyStarts()
{
    QFETCH(int, number);
    QFETCH(bool, portable);
    const Family &family = families[number];
    const Kernels &kernels = portable ? portableKernels() : bestKernels();
    std::mt19937_64 random(static_cast<quint64>(number) + 7);
    const auto drawStart = [&](double before) {
        if (random() % 4 == 0) // the next or the next but one number
            return std::nextafter(random() % 2 ? before : std::nextafter(before, 0.0), 0.0);
        const double start = std::uniform_real_distribution<double>(family.lowest, family.highest)(random);
        return family.unit > 0.0 ? std::floor(start / family.unit) * family.unit : start;
    };
    quint64 work = 0;
    quint64 intervals = 0;
    for (int frame = 0; frame < 60; ++frame) {
        std::vector<quint64> stamps = {random() % 1000000};
        const std::size_t count = 2 + random() % 1500;
        while (stamps.size() < count) {
            const quint64 steps = family.shortest / family.grain +
                                  random() % ((family.longest - family.shortest) / family.grain + 1);
            if (std::bernoulli_distribution(family.repeats)(random) && stamps.size() > 1)
                stamps.resize(std::min<std::size_t>(count, stamps.size() + 1 + random() % family.stop),
                              stamps.back());
            else
                stamps.push_back(stamps.back() + steps * family.grain);
        }
        FrameOutline outline;
        outline.describe(stamps.data(), stamps.size(), nullptr, kernels);
        QVERIFY(outline.isPlain());
        const LevelFollower follower(family.key, kernels);
        double start = drawStart(family.lowest);
        follower.follow(outline, start);
        for (int turn = 0; turn < 20; ++turn) {
            start = drawStart(start);
            work += follower.follow(outline, start);
            intervals += stamps.size() - 1;
            const QString text = difference(followPlainly(stamps, family.key, start), outline);
            QVERIFY2(text.isEmpty(),
                     qPrintable(QStringLiteral("frame %1, turn %2: %3").arg(frame).arg(turn).arg(text)));
        }
    }
    QVERIFY2(!family.saves || work * 5 < intervals,
             qPrintable(QStringLiteral("%1 of %2").arg(work).arg(intervals)));
}

void LevelFollowerTest::ofOtherSettings()
{
    std::vector<quint64> stamps = {5};
    for (quint64 i = 0; i < 1000; ++i)
        stamps.push_back(stamps.back() + 2500 + i * 37 % 200);
    FrameOutline outline;
    outline.describe(stamps.data(), stamps.size());
    const LevelKey keys[] = {{4096, 400, 100000}, {4096, 390, 100000}, {4096, 390, 3000}, {4000, 390, 3000},
                             {4096, 100, 100000}, {4096, 410, 100000}, {4096, 410, 0}};
    for (const LevelKey &key : keys) {
        for (const double start : {0.0, 2000.0}) {
            if (start > static_cast<double>(key.bufferSize))
                continue;
            LevelFollower(key).follow(outline, start);
            QCOMPARE(difference(followPlainly(stamps, key, start), outline), QString());
            QVERIFY(outline.key() == key);
        }
    }
}

void LevelFollowerTest::ofOtherStamps()
{
    const LevelKey key = {4096, 450, 1000000};
    FrameOutline outline;
    for (const quint64 length : {2700U, 2600U}) {
        std::vector<quint64> stamps;
        for (quint64 i = 0; i < 300; ++i)
            stamps.push_back(i * length);
        QVERIFY(!outline.describes(stamps.data(), stamps.size()));
        outline.describe(stamps.data(), stamps.size());
        QVERIFY(outline.describes(stamps.data(), stamps.size()));
        LevelFollower(key).follow(outline, 0.0);
        QCOMPARE(difference(followPlainly(stamps, key, 0.0), outline), QString());
        outline.describe(nullptr, 0);
        QVERIFY(!outline.isPlain());
    }
}

QTEST_APPLESS_MAIN(LevelFollowerTest)
#include "LevelFollowerTest.moc"
