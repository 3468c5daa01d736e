#include "measurement/ThroughputEngine.h"
#include "tests/measurement/MutexProbe.h"
#include "tests/measurement/model/RecordedLine.h"

#include <QMutexLocker>
#include <QTest>

#include <memory>
#include <thread>

namespace {

/// Tries the engine's mutex at every point.
class LockProbe final : public measurement::throughput::PointSink
{
public:
    explicit LockProbe(QMutex &mutex)
        : m_mutex(mutex)
    {
    }

    void addPoint(qint64, double, double) override
    {
        ++points;
        if (isFree(m_mutex))
            ++free;
    }
    void restart() override {}

    int points = 0;
    int free = 0; ///< of the points, those at which the mutex was free

private:
    QMutex &m_mutex;
};

} // namespace

/// A pass while another thread adds records and drops the oldest, as a running
/// measurement does.
class ThroughputWhileCapturingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void passesSeeWholeLists();
    void mutexIsHeldAtEveryPoint();
};

void ThroughputWhileCapturingTest::passesSeeWholeLists()
{
    constexpr int appended = 300;
    constexpr int kept = 5;
    RecordedLine recorded;
    CxCameraLineData &line = recorded.line;
    std::thread capture([&] {
        for (int i = 0; i < appended; ++i) {
            std::unique_ptr<CxCameraLineData::CxFrameData> dropped;
            const QMutexLocker locker(&line.mutex);
            recorded.addFrame(1000 + i * 100, {0, 10, 20, 25, 45});
            line.statAvg = 45.0;
            if (line.frames.size() > kept)
                dropped.reset(line.frames.takeFirst());
        }
    });
    int wrong = 0; // judged after the thread has ended
    for (int pass = 0; pass < 100; ++pass) {
        if (line.calculateStatisticsThroughput(0, 1000000, TimestampOriginCamera, true))
            wrong += line.minThroughput != 50.0 || line.maxBufferLevel != 2750.0 / 10000.0 * 100.0;
    }
    capture.join();
    QCOMPARE(wrong, 0);
    QVERIFY(line.calculateStatisticsThroughput(0, 1000000, TimestampOriginCamera, true));
    QCOMPARE(line.frames.size(), kept);
    QCOMPARE(line.minThroughput, 50.0);
}

void ThroughputWhileCapturingTest::mutexIsHeldAtEveryPoint()
{
    RecordedLine recorded;
    for (int i = 0; i < 12; ++i)
        recorded.addFrame(1000 + i * 100, {0, 10, 20});
    CxCameraLineData &line = recorded.line;
    QVERIFY(isFree(line.mutex));

    LockProbe probe(line.mutex);
    const measurement::ThroughputWindow window = {0, 1000000, TimestampOriginCamera, 0.0, false};
    QVERIFY(measurement::evaluateThroughput(line, window, &probe));
    QCOMPARE(probe.points, 23); // the very first interval only begins the spacing
    QCOMPARE(probe.free, 0);
    QVERIFY(isFree(line.mutex));

    const measurement::ThroughputWindow empty = {5000000, 5000100, TimestampOriginCamera, 0.0, false};
    QVERIFY(!measurement::evaluateThroughput(line, empty, &probe));
    QVERIFY(isFree(line.mutex));
}

QTEST_APPLESS_MAIN(ThroughputWhileCapturingTest)
#include "ThroughputWhileCapturingTest.moc"
