#include "bench/reference/Recordings.h"
#include "bench/reference/ThroughputReference.h"
#include "tests/measurement/model/PointList.h"

#include <QTest>

#include <bit>

using namespace measurement::throughput;

namespace {

constexpr std::size_t frameCount = 400;
constexpr std::size_t samples = 500;
constexpr quint64 intervals = samples - 1;

/// Counts how often frames are looked at.
class CountedFrames final : public FrameSource
{
public:
    explicit CountedFrames(const FrameSource &frames)
        : m_frames(frames)
    {
    }

    std::size_t size() const override { return m_frames.size(); }
    Frame at(std::size_t index) const override
    {
        ++looks;
        return m_frames.at(index);
    }

    mutable std::size_t looks = 0;

private:
    const FrameSource &m_frames;
};

/// A pass as far as it gets.
Outcome evaluateSome(const FrameSource &frames, const Settings &settings, Statistics &statistics, Work &work)
{
    const FrameRange range = selectFrames(frames, settings);
    ScratchArrays arrays(range.intervals);
    return evaluate(frames, range, settings, arrays.scratch(), nullptr, statistics, bestKernels(), &work);
}

/// Goes on with an unfinished pass, `allowed` at a time, to the end.
/// \return calls it took
int continueToTheEnd(const FrameSource &frames, const Settings &settings, Work work, std::size_t most = 16)
{
    const quint64 allowed = work.allowed;
    for (int calls = 0;; ++calls) {
        const FrameRange range = selectSome(frames, settings, work.progress.frame, most);
        if (range.begin == range.end)
            return calls;
        ScratchArrays arrays(range.intervals);
        work.done = 0;
        work.repeated = 0;
        continueWork(frames, range, settings, arrays.scratch(), work);
        // A frame and a guess may come on top, and both may have to be described.
        if (work.done + work.repeated > 3 * allowed + 2 * samples || work.progress.frame <= range.begin)
            return -1;
    }
}

} // namespace

/// An unfinished pass, and the work that goes on where it stopped.
class ThroughputWorkTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingIsLeft_data();
    void nothingIsLeft();
    void framesAreNotWalkedAgain();
    void framesWithoutOutline();
    void someFrames();
};

void ThroughputWorkTest::nothingIsLeft_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<bool>("reset");
    for (std::size_t number = 0; number < reference::benchmarkRegimes().size(); ++number) {
        const char *name = reference::benchmarkRegimes()[number].name.c_str();
        QTest::addRow("%s", name) << static_cast<int>(number) << false;
        QTest::addRow("%s, reset", name) << static_cast<int>(number) << true;
    }
}

void ThroughputWorkTest::nothingIsLeft()
{
    QFETCH(int, number);
    QFETCH(bool, reset);
    const reference::Regime &regime = reference::benchmarkRegimes()[static_cast<std::size_t>(number)];
    reference::Recording recording = reference::makeRecording(regime, frameCount, samples);
    recording.addOutlines();
    const Settings settings = reference::settingsFor(recording, regime, 100, reset);

    Statistics statistics;
    Work work;
    work.allowed = 3000;
    QVERIFY(evaluateSome(recording, settings, statistics, work) == Outcome::Unfinished);
    QVERIFY(work.progress.frame > 0 && work.progress.frame < 30);
    QVERIFY(continueToTheEnd(recording, settings, work) > 20);

    Work left;
    QVERIFY(evaluateSome(recording, settings, statistics, left) == Outcome::Processed);
    QCOMPARE(left.done, Q_UINT64_C(0));
    QCOMPARE(left.repeated, Q_UINT64_C(0));
    Statistics expected;
    reference::Buffers buffers;
    QVERIFY(reference::evaluate(recording, settings, buffers, nullptr, expected));
    QCOMPARE(std::bit_cast<quint64>(statistics.maxBufferLevel),
             std::bit_cast<quint64>(expected.maxBufferLevel));
    QCOMPARE(std::bit_cast<quint64>(statistics.minThroughput),
             std::bit_cast<quint64>(expected.minThroughput));
    QCOMPARE(statistics.bufferOverflowCount, expected.bufferOverflowCount);
}

/// The cost of work in many slices is that of its frames, not of frames times slices.
void ThroughputWorkTest::framesAreNotWalkedAgain()
{
    const reference::Regime &regime = reference::benchmarkRegimes().front();
    reference::Recording recording = reference::makeRecording(regime, frameCount, samples);
    recording.addOutlines();
    const Settings settings = reference::settingsFor(recording, regime, 100, false);
    Statistics statistics;
    Work work;
    work.allowed = 1000;
    QVERIFY(evaluateSome(recording, settings, statistics, work) == Outcome::Unfinished);

    const CountedFrames counted(recording);
    QVERIFY(continueToTheEnd(counted, settings, work) > 20);
    QVERIFY2(counted.looks < 20 * frameCount, qPrintable(QString::number(counted.looks)));
}

/// Stamps that step back tell nothing that could be kept.
void ThroughputWorkTest::framesWithoutOutline()
{
    reference::Recording recording;
    std::vector<quint64> stamps;
    for (quint64 i = 0; i < samples; ++i)
        stamps.push_back(1000000 + (i % 2 == 0 ? i : i - 2) * 2500);
    for (std::size_t frame = 0; frame < frameCount; ++frame)
        recording.append(static_cast<qint64>(frame) * 10000, stamps);
    recording.addOutlines();
    const Settings settings =
        reference::settingsFor(recording, reference::benchmarkRegimes().front(), 100, false);

    Statistics statistics;
    Work work;
    QVERIFY(evaluateSome(recording, settings, statistics, work) == Outcome::Processed);
    work = Work();
    work.allowed = 4 * intervals;
    const FrameRange range = selectSome(recording, settings, 0, frameCount);
    QCOMPARE(range.end, frameCount);
    ScratchArrays arrays(range.intervals);
    continueWork(recording, range, settings, arrays.scratch(), work);
    QVERIFY(work.repeated > 0);
    QVERIFY2(work.progress.frame <= 4, qPrintable(QString::number(work.progress.frame)));
    QVERIFY(continueToTheEnd(recording, settings, work) >= static_cast<int>(frameCount / 4) - 1);
}

void ThroughputWorkTest::someFrames()
{
    reference::Recording recording;
    for (int frame = 0; frame < 10; ++frame)
        recording.append(frame * 1000, std::vector<quint64>(frame == 5 ? 7 : 3, 5));
    Settings settings;
    settings.from = 2000;
    settings.to = 5000; // and as much on both sides
    const auto some = [&](std::size_t begin, std::size_t most) {
        const FrameRange range = selectSome(recording, settings, begin, most);
        return std::vector<quint64>{range.begin, range.end, range.intervals};
    };
    QCOMPARE(some(0, 3), (std::vector<quint64>{0, 3, 2}));
    QCOMPARE(some(4, 3), (std::vector<quint64>{4, 7, 6}));
    QCOMPARE(some(6, 100), (std::vector<quint64>{6, 8, 2}));
    QCOMPARE(some(8, 100), (std::vector<quint64>{8, 8, 0}));
    QCOMPARE(some(12, 100), (std::vector<quint64>{12, 12, 0}));
}

QTEST_APPLESS_MAIN(ThroughputWorkTest)
#include "ThroughputWorkTest.moc"
