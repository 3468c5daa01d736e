#include "measurement/ThroughputEngine.h"
#include "tests/measurement/model/RecordedLine.h"

#include <QMutexLocker>
#include <QTest>

#include <atomic>
#include <functional>
#include <memory>
#include <thread>

namespace {

constexpr int frameCount = 300;
constexpr int samples = 10001;
constexpr qint64 period = 200000; // microseconds from frame to frame

const measurement::ThroughputWindow everything = {0, frameCount *period, TimestampOriginCamera, 0.0, false};

/// Three million intervals, which a pass does not follow in one hold of the mutex.
void fill(RecordedLine &recorded)
{
    std::vector<quint64> stamps(samples);
    for (std::size_t i = 0; i < stamps.size(); ++i)
        stamps[i] = 2500 * i;
    for (int i = 0; i < frameCount; ++i)
        recorded.addFrameOfTicks(i * period, stamps);
}

/// Does what the capture does with the mutex, beside a pass: takes it whenever it
/// is free, and sees how many of the frames the pass has followed so far.
class Bystander
{
public:
    explicit Bystander(CxCameraLineData &line)
        : m_line(line)
        , m_thread([this] { watch(); })
    {
    }
    ~Bystander() { end(); }
    Bystander(const Bystander &) = delete;
    Bystander &operator=(const Bystander &) = delete;

    bool end() ///< \return whether it had the mutex in the middle of a pass
    {
        m_ended = true;
        if (m_thread.joinable())
            m_thread.join();
        return m_seen;
    }

private:
    void watch()
    {
        while (!m_ended && !m_seen) {
            {
                const QMutexLocker locker(&m_line.mutex);
                m_seen = followed(m_line.frames.first()) && !followed(m_line.frames.last());
            }
            std::this_thread::yield();
        }
    }

    bool followed(const CxCameraLineData::CxFrameData *frame) const
    {
        return frame->outline.startLevel() >= 0.0 &&
               frame->outline.key().requiredMBps == static_cast<qint32>(m_line.avgTransportSpeedMBps);
    }

    CxCameraLineData &m_line;
    std::atomic<bool> m_ended = false;
    std::atomic<bool> m_seen = false;
    std::thread m_thread;
};

} // namespace

/// Work on many records, such as after an edit, lets the capture in again and
/// again, whoever does it and whatever was done for other cameras before.
class ThroughputSlicesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void pass();
    void preparation();
    void preparationAfterAnotherCamera();
    void littleAtATime();
    void recordsComeAndGoMeanwhile();
    void framesBeforeAreNotEvaluatedAgain();

private:
    static bool isSeen(RecordedLine &recorded, const std::function<void()> &pass);
};

/// Edits until a bystander has had the mutex in the middle of a pass: a busy
/// machine may keep it from its turn.
bool ThroughputSlicesTest::isSeen(RecordedLine &recorded, const std::function<void()> &pass)
{
    constexpr int mostEdits = 200;
    for (int edit = 0; edit < mostEdits; ++edit) {
        {
            const QMutexLocker locker(&recorded.line.mutex);
            recorded.line.avgTransportSpeedMBps = 150 + edit % 2;
        }
        Bystander capture(recorded.line);
        pass();
        if (capture.end())
            return true;
    }
    return false;
}

void ThroughputSlicesTest::pass()
{
    RecordedLine recorded;
    fill(recorded);
    QVERIFY(isSeen(recorded, [&] { measurement::evaluateThroughput(recorded.line, everything, nullptr); }));
    QCOMPARE(recorded.line.minThroughput, 100.0);
    QCOMPARE(recorded.line.bufferOverflowCount, static_cast<quint64>(frameCount));
}

void ThroughputSlicesTest::preparation()
{
    RecordedLine recorded;
    fill(recorded);
    QVERIFY(isSeen(recorded, [&] {
        measurement::Preparation work;
        QVERIFY(measurement::prepareThroughput(recorded.line, everything, work));
    }));
}

void ThroughputSlicesTest::preparationAfterAnotherCamera()
{
    RecordedLine before;
    RecordedLine recorded;
    fill(before);
    fill(recorded);
    QVERIFY(isSeen(recorded, [&] {
        before.line.avgTransportSpeedMBps = recorded.line.avgTransportSpeedMBps;
        measurement::Preparation work;
        QVERIFY(measurement::prepareThroughput(before.line, everything, work));
        QVERIFY(work.done >= quint64{frameCount} * (samples - 1));
        QVERIFY(measurement::prepareThroughput(recorded.line, everything, work));
    }));
}

/// A preparation that may do little does little, and a later one goes on from there.
void ThroughputSlicesTest::littleAtATime()
{
    RecordedLine recorded;
    fill(recorded);
    int turns = 1;
    for (;; ++turns) {
        measurement::Preparation work;
        work.allowed = 1000000;
        if (measurement::prepareThroughput(recorded.line, everything, work))
            break;
        QVERIFY(work.done < 2000000);
        QVERIFY(turns < 10);
    }
    QVERIFY(turns > 1);
}

/// What the work was done for may be gone when the pass is made.
void ThroughputSlicesTest::recordsComeAndGoMeanwhile()
{
    RecordedLine recorded;
    fill(recorded);
    CxCameraLineData &line = recorded.line;
    const std::vector<quint64> stamps(line.frames.first()->samples, line.frames.first()->samples + samples);
    std::atomic<bool> ended = false;
    std::thread capture([&] {
        for (qint64 number = frameCount; !ended; ++number) {
            std::unique_ptr<CxCameraLineData::CxFrameData> dropped;
            {
                const QMutexLocker locker(&line.mutex);
                recorded.addFrameOfTicks(number * period, stamps);
                dropped.reset(line.frames.takeFirst());
            }
            std::this_thread::yield();
        }
    });
    for (int edit = 0; edit < 20; ++edit) {
        {
            const QMutexLocker locker(&line.mutex);
            line.avgTransportSpeedMBps = 101 + edit % 2;
        }
        measurement::evaluateThroughput(line, everything, nullptr);
    }
    ended = true;
    capture.join();
    QVERIFY(line.frames.first()->cameraTimestamp > 0);
    recorded.evaluate(0, line.frames.last()->cameraTimestamp + period, 1000.0);
}

/// Frames whose stamps step back are evaluated in every pass, but not in every
/// slice of one.
void ThroughputSlicesTest::framesBeforeAreNotEvaluatedAgain()
{
    constexpr quint64 backwardFrames = 100;
    std::vector<quint64> stamps(samples);
    for (std::size_t i = 0; i < stamps.size(); ++i)
        stamps[i] = 2500 * (i % 2 == 0 ? i + 2 : i);
    RecordedLine recorded;
    for (quint64 i = 0; i < backwardFrames; ++i)
        recorded.addFrameOfTicks(0, stamps);
    fill(recorded);

    measurement::Preparation first;
    QVERIFY(measurement::prepareThroughput(recorded.line, everything, first));
    recorded.line.avgTransportSpeedMBps += 1;
    measurement::Preparation work;
    QVERIFY(measurement::prepareThroughput(recorded.line, everything, work));
    const quint64 once = backwardFrames * samples;
    QVERIFY2(work.done >= quint64{frameCount} * (samples - 1) + 2 * once,
             qPrintable(QString::number(work.done)));
    QVERIFY2(work.done < quint64{frameCount} * samples + 3 * once, qPrintable(QString::number(work.done)));
}

QTEST_APPLESS_MAIN(ThroughputSlicesTest)
#include "ThroughputSlicesTest.moc"
