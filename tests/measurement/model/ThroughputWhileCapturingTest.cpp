#include "tests/measurement/model/RecordedLine.h"

#include <QMutexLocker>
#include <QTest>

#include <memory>
#include <thread>

/// A pass while another thread adds records and drops the oldest, as a running
/// measurement does.
class ThroughputWhileCapturingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void passesSeeWholeLists();
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

QTEST_APPLESS_MAIN(ThroughputWhileCapturingTest)
#include "ThroughputWhileCapturingTest.moc"
