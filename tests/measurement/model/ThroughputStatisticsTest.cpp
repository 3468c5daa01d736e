#include "measurement/ThroughputEngine.h"
#include "tests/measurement/LogCapture.h"
#include "tests/measurement/model/RecordedLine.h"

#include <QTest>

#include <cmath>
#include <limits>

namespace {

constexpr double largest = std::numeric_limits<double>::max();

// 100, 100, 200 and 50 MB/s; level 500, 1000, 750 and 2750 bytes, 27.5 % at last.
const std::vector<quint64> ordinaryFrame = {0, 10, 20, 25, 45};
/// Five stamps of 1000 bytes in 45 microseconds, as the model rounds it.
const double ordinaryRate = 5000.0 / 11250.0 * 250.0;

void setResults(CxCameraLineData &line)
{
    line.avgThroughput = 1.5;
    line.minThroughput = 2.5;
    line.maxBufferLevel = 3.5;
    line.bufferOverflowCount = 4;
}

} // namespace

/// The four statistics, the choice of frames and the level between frames.
class ThroughputStatisticsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void ordinaryFrameAlone();
    void noFrames();
    void framesOutsideTheMargin_data();
    void framesOutsideTheMargin();
    void margin_data();
    void margin();
    void marginsCountToo();
    void drainBetweenFrames_data();
    void drainBetweenFrames();
    void drainOnce();
    void resetLevel();
    void framesWithoutIntervals_data();
    void framesWithoutIntervals();
    void rateOfASpanOfZero();
    void overflowsCountFrames();
    void bufferOfSizeZero();
    void backwardStamp();
    void requiredBeyondSignedRange();
    void origin();
    void statisticsWithoutGraphs();
};

void ThroughputStatisticsTest::ordinaryFrameAlone()
{
    RecordedLine recorded;
    recorded.addFrame(1000, ordinaryFrame);
    QVERIFY(recorded.evaluate(1000, 2000));
    QCOMPARE(recorded.line.avgThroughput, ordinaryRate);
    QCOMPARE(recorded.line.minThroughput, 50.0);
    QCOMPARE(recorded.line.maxBufferLevel, 27.5);
    QCOMPARE(recorded.line.bufferOverflowCount, quint64(0));
}

void ThroughputStatisticsTest::noFrames()
{
    RecordedLine recorded;
    setResults(recorded.line);
    QVERIFY(!recorded.evaluate(0, 1000));
    QCOMPARE(recorded.line.avgThroughput, 1.5);
    QCOMPARE(recorded.line.minThroughput, 2.5);
    QCOMPARE(recorded.line.maxBufferLevel, 3.5);
    QCOMPARE(recorded.line.bufferOverflowCount, quint64(4));
    QVERIFY(recorded.line.mutex.tryLock());
    recorded.line.mutex.unlock();
}

void ThroughputStatisticsTest::framesOutsideTheMargin_data()
{
    QTest::addColumn<qint64>("timestamp");
    QTest::newRow("all older") << qint64(-1001);
    QTest::newRow("all newer") << qint64(2000);
}

void ThroughputStatisticsTest::framesOutsideTheMargin()
{
    QFETCH(qint64, timestamp);
    RecordedLine recorded;
    recorded.addFrame(timestamp, ordinaryFrame);
    setResults(recorded.line);
    QVERIFY(!recorded.evaluate(0, 1000));
    QCOMPARE(recorded.line.avgThroughput, 1.5);
    QCOMPARE(recorded.line.minThroughput, largest);
    QCOMPARE(recorded.line.maxBufferLevel, 0.0);
    QCOMPARE(recorded.line.bufferOverflowCount, quint64(0));
    QVERIFY(recorded.line.mutex.tryLock());
    recorded.line.mutex.unlock();
}

void ThroughputStatisticsTest::margin_data()
{
    QTest::addColumn<qint64>("from");
    QTest::addColumn<qint64>("to");
    QTest::addColumn<double>("meanSpan");
    QTest::addColumn<qint64>("before"); // first time that takes part
    QTest::addColumn<qint64>("end");    // first time that does not any more
    QTest::newRow("wide window: its own width")
        << qint64(5000) << qint64(6000) << 499.0 << qint64(4000) << qint64(7000);
    QTest::newRow("exactly two mean spans")
        << qint64(5000) << qint64(6000) << 500.0 << qint64(4000) << qint64(7000);
    QTest::newRow("narrow window: one mean span, cut")
        << qint64(5000) << qint64(5100) << 300.9 << qint64(4700) << qint64(5400);
    QTest::newRow("window of no width")
        << qint64(5000) << qint64(5000) << 20.0 << qint64(4980) << qint64(5020);
    QTest::newRow("turned window") << qint64(5000) << qint64(4990) << 20.0 << qint64(4980) << qint64(5010);
}

void ThroughputStatisticsTest::margin()
{
    QFETCH(qint64, from);
    QFETCH(qint64, to);
    QFETCH(double, meanSpan);
    QFETCH(qint64, before);
    QFETCH(qint64, end);

    // Frames of 100, 200, 50 and 25 MB/s at the four edges.
    RecordedLine recorded;
    recorded.line.statAvg = meanSpan;
    recorded.addFrame(before - 1, {0, 40});
    recorded.addFrame(before, {0, 10});
    recorded.addFrame(end - 1, {0, 5});
    recorded.addFrame(end, {0, 20});
    QVERIFY(recorded.evaluate(from, to));
    QCOMPARE(recorded.line.minThroughput, 100.0);
    QCOMPARE(recorded.line.avgThroughput, (200.0 + 400.0) / 2.0);
}

void ThroughputStatisticsTest::marginsCountToo()
{
    RecordedLine recorded;
    recorded.addFrame(4500, {0, 500});
    recorded.addFrame(5500, {0, 5});
    QVERIFY(recorded.evaluate(5400, 6400));
    QCOMPARE(recorded.line.minThroughput, 2.0);
    QCOMPARE(recorded.line.maxBufferLevel, 100.0);
    QCOMPARE(recorded.line.bufferOverflowCount, quint64(1));
    QCOMPARE(recorded.points.size(), std::size_t(1));
    // Speeds carry over from the margin, levels do not.
    QCOMPARE(recorded.points[0].minSpeed, 2.0);
}

void ThroughputStatisticsTest::drainBetweenFrames_data()
{
    QTest::addColumn<qint64>("start"); // of the second frame, the first ends at 1040
    QTest::addColumn<double>("peak");  // percent after the second frame's first interval of +500 bytes
    // The first frame leaves 2000 bytes and carries 5000 bytes in 40 us: 125 MB/s.
    QTest::newRow("no gap") << qint64(1040) << 25.0;
    QTest::newRow("part") << qint64(1048) << 15.0;
    QTest::newRow("just empty") << qint64(1056) << 5.0;
    QTest::newRow("long empty") << qint64(1500) << 5.0;
    QTest::newRow("starts before the other ended") << qint64(1039) << 5.0;
}

void ThroughputStatisticsTest::drainBetweenFrames()
{
    QFETCH(qint64, start);
    QFETCH(double, peak);
    RecordedLine recorded;
    recorded.addFrame(1000, {0, 10, 20, 30, 40});
    recorded.addFrame(start, {0, 10});
    QVERIFY(recorded.evaluate(1000, 3000));
    QVERIFY(!recorded.points.empty());
    QCOMPARE(recorded.points.back().maxLevel, peak);
}

/// A frame without intervals drains, and the next one does not drain again.
void ThroughputStatisticsTest::drainOnce()
{
    RecordedLine recorded;
    recorded.addFrame(1000, {0, 10, 20, 30, 40});
    recorded.addFrame(1048, {0}).sampleSpan = 1;
    recorded.addFrame(1100, {0, 10});
    QVERIFY(recorded.evaluate(1000, 3000));
    QCOMPARE(recorded.points.back().maxLevel, 15.0);

    // An end at the very moment 0 reads as no end at all.
    RecordedLine atZero;
    atZero.addFrame(-40, {0, 10, 20, 30, 40});
    atZero.addFrame(500, {0, 10});
    QVERIFY(atZero.evaluate(-40, 3000));
    QCOMPARE(atZero.points.back().maxLevel, 25.0);
}

void ThroughputStatisticsTest::resetLevel()
{
    RecordedLine recorded;
    recorded.addFrame(1000, {0, 10, 20, 30, 40});
    recorded.addFrame(1040, {0, 10, 20});
    QVERIFY(recorded.evaluate(1000, 3000, 0.0, true));
    QCOMPARE(recorded.points.back().maxLevel, 10.0);
    QCOMPARE(recorded.line.maxBufferLevel, 20.0);
}

void ThroughputStatisticsTest::framesWithoutIntervals_data()
{
    QTest::addColumn<int>("stamps");
    QTest::addColumn<qint64>("span");
    QTest::addColumn<double>("rate");
    QTest::newRow("one stamp") << 1 << qint64(2500) << 100.0;
    QTest::newRow("no stamp") << 0 << qint64(2500) << 0.0;
}

void ThroughputStatisticsTest::framesWithoutIntervals()
{
    QFETCH(int, stamps);
    QFETCH(qint64, span);
    QFETCH(double, rate);
    RecordedLine recorded;
    recorded.addFrame(1000, std::vector<quint64>(static_cast<std::size_t>(stamps))).sampleSpan = span;
    QVERIFY(recorded.evaluate(1000, 2000));
    QCOMPARE(recorded.line.avgThroughput, rate);
    QCOMPARE(recorded.line.minThroughput, largest);
    QCOMPARE(recorded.line.maxBufferLevel, 0.0);
    QCOMPARE(recorded.line.calcBufSize, quint64(0));

    recorded.addFrame(1100, ordinaryFrame);
    QVERIFY(recorded.evaluate(1000, 2000));
    QCOMPARE(recorded.line.avgThroughput, (rate + ordinaryRate) / 2.0);
    QCOMPARE(recorded.line.minThroughput, 50.0);
}

void ThroughputStatisticsTest::rateOfASpanOfZero()
{
    RecordedLine recorded;
    recorded.addFrame(1000, {0});
    QVERIFY(recorded.evaluate(1000, 2000));
    QVERIFY(std::isinf(recorded.line.avgThroughput));

    RecordedLine empty;
    empty.addFrame(1000, {});
    QVERIFY(empty.evaluate(1000, 2000));
    QVERIFY(std::isnan(empty.line.avgThroughput));

    // Infinitely fast over no time drains nothing, over some time everything.
    RecordedLine fast;
    fast.addFrame(1000, {0, 10, 20, 30, 40}).sampleSpan = 0;
    fast.addFrame(1040, {0, 10});
    QVERIFY(fast.evaluate(1000, 2000));
    QCOMPARE(fast.points.back().maxLevel, 25.0);
    fast.line.frames.last()->cameraTimestamp = 1041;
    QVERIFY(fast.evaluate(1000, 2000));
    QCOMPARE(fast.points.back().maxLevel, 5.0);

    // Slower than nothing: a frame whose counter was set back drains nothing.
    RecordedLine backward;
    backward.addFrame(1000, {0, 10, 20, 30, 40}).sampleSpan = -10000;
    backward.addFrame(1500, {0, 10});
    QVERIFY(backward.evaluate(1000, 2000));
    QCOMPARE(backward.points.back().maxLevel, 25.0);
}

void ThroughputStatisticsTest::overflowsCountFrames()
{
    RecordedLine recorded;
    // +500 bytes each: 20 intervals fill the buffer exactly, 21 overflow it.
    std::vector<quint64> times;
    for (quint64 i = 0; i <= 20; ++i)
        times.push_back(i * 10);
    recorded.addFrame(1000, times);
    QVERIFY(recorded.evaluate(1000, 2000));
    QCOMPARE(recorded.line.maxBufferLevel, 100.0);
    QCOMPARE(recorded.line.bufferOverflowCount, quint64(0));

    for (quint64 i = 21; i <= 25; ++i)
        times.push_back(i * 10);
    recorded.addFrame(5000, times);
    recorded.addFrame(9000, times);
    QVERIFY(recorded.evaluate(1000, 20000));
    QCOMPARE(recorded.line.maxBufferLevel, 100.0);
    QCOMPARE(recorded.line.bufferOverflowCount, quint64(2));
}

void ThroughputStatisticsTest::bufferOfSizeZero()
{
    RecordedLine recorded;
    recorded.line.internalBuffSize = 0;
    recorded.addFrame(1000, {0, 5, 10, 15});
    QVERIFY(recorded.evaluate(1000, 2000));
    QCOMPARE(recorded.line.maxBufferLevel, 0.0);
    QCOMPARE(recorded.line.bufferOverflowCount, quint64(0));

    // 0 bytes of 0: no number, and no influence on the level shown.
    RecordedLine undefined;
    undefined.line.internalBuffSize = 0;
    undefined.line.avgTransportSpeedMBps = 100;
    undefined.addFrame(1000, {0, 10, 20, 30});
    QVERIFY(undefined.evaluate(1000, 2000));
    QCOMPARE(undefined.line.maxBufferLevel, 0.0);
    QCOMPARE(undefined.points.size(), std::size_t(2));
    QCOMPARE(undefined.points[0].maxLevel, 0.0);
    QCOMPARE(undefined.line.bufferOverflowCount, quint64(0));

    recorded.addFrame(1100, {0, 10});
    QVERIFY(recorded.evaluate(1000, 2000));
    QCOMPARE(recorded.line.maxBufferLevel, 100.0);
    QCOMPARE(recorded.line.bufferOverflowCount, quint64(1));
}

void ThroughputStatisticsTest::backwardStamp()
{
    RecordedLine recorded;
    recorded.addFrameOfTicks(1000, {250000, 252500, 251250, 253750});
    QVERIFY(recorded.evaluate(1000, 2000));
    const double speed = 1000.0 / (18446744073709550366.0 / 250.0);
    QVERIFY(speed > 0.0);
    QCOMPARE(recorded.line.minThroughput, speed);
    QCOMPARE(recorded.line.maxBufferLevel, 100.0);
    QCOMPARE(recorded.line.bufferOverflowCount, quint64(1));
    QVERIFY(!recorded.points.empty());
    QCOMPARE(recorded.points.back().minSpeed, speed);
}

void ThroughputStatisticsTest::requiredBeyondSignedRange()
{
    // 2^32 - 1 MB/s is passed on as -1: the buffer only ever empties.
    RecordedLine recorded;
    recorded.line.avgTransportSpeedMBps = 0xffffffffU;
    recorded.addFrame(1000, ordinaryFrame);
    QVERIFY(recorded.evaluate(1000, 2000));
    QCOMPARE(recorded.line.maxBufferLevel, 0.0);
}

void ThroughputStatisticsTest::origin()
{
    RecordedLine recorded;
    recorded.addFrame(1000, ordinaryFrame).computerTimestamp = 9000;
    CxCameraLineData &line = recorded.line;
    for (const int camera : {0, 7, -1}) {
        QVERIFY(
            line.calculateStatisticsThroughput(1000, 1200, static_cast<ExTimestampOrigin>(camera), false));
        QVERIFY(
            !line.calculateStatisticsThroughput(9000, 9200, static_cast<ExTimestampOrigin>(camera), false));
    }
    QVERIFY(!line.calculateStatisticsThroughput(1000, 1200, TimestampOriginComputer, false));
    QVERIFY(line.calculateStatisticsThroughput(9000, 9200, TimestampOriginComputer, false));
}

void ThroughputStatisticsTest::statisticsWithoutGraphs()
{
    RecordedLine recorded;
    recorded.addFrame(1000, {0, 10, 20, 30, 40});
    recorded.addFrame(1040, {0, 10, 20});
    QVERIFY(recorded.line.calculateStatisticsThroughput(1000, 3000, TimestampOriginCamera, false));
    QCOMPARE(recorded.line.maxBufferLevel, 30.0);
    QCOMPARE(recorded.line.minThroughput, 100.0);
    QCOMPARE(recorded.line.avgThroughput, (125.0 + 150.0) / 2.0);
    QVERIFY(recorded.line.calculateStatisticsThroughput(1000, 3000, TimestampOriginCamera, true));
    QCOMPARE(recorded.line.maxBufferLevel, 20.0);
}

QTEST_APPLESS_MAIN(ThroughputStatisticsTest)
#include "ThroughputStatisticsTest.moc"
