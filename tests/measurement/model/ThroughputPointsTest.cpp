#include "tests/measurement/model/RecordedLine.h"

#include <QTest>

#include <limits>

namespace {

std::vector<quint64> evenFrame(quint64 intervals, quint64 microseconds)
{
    std::vector<quint64> times;
    for (quint64 i = 0; i <= intervals; ++i)
        times.push_back(i * microseconds);
    return times;
}

} // namespace

/// Which intervals yield a point and what the point carries.
class ThroughputPointsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyIntervalButTheFirst();
    void equalMicrosecondsShareAPoint();
    void windowEdgesBelongToIt();
    void spacingMustBeExceeded();
    void spacingIsCut();
    void speedsCarryOverLevelsDoNot();
    void overflowStaysForTheFrame();
    void speedOfZeroStaysOut();
    void levelRestartsAfterAPoint();
    void closedForm_data();
    void closedForm();
};

void ThroughputPointsTest::everyIntervalButTheFirst()
{
    RecordedLine recorded;
    recorded.addFrame(1000, {0, 10, 20, 25, 45});
    recorded.addFrame(3000, {0, 10});
    QVERIFY(recorded.evaluate(1000, 3500));
    QCOMPARE(recorded.points.size(), std::size_t(4));
    QCOMPARE(recorded.points[0].time, qint64(1020 - 3500));
    QCOMPARE(recorded.points[0].minSpeed, 100.0);
    QCOMPARE(recorded.points[0].maxLevel, 10.0); // of 5 % and 10 %
    QCOMPARE(recorded.points[1].minSpeed, 200.0);
    QCOMPARE(recorded.points[1].maxLevel, 7.5);
    QCOMPARE(recorded.points[2].minSpeed, 50.0);
    QCOMPARE(recorded.points[2].maxLevel, 27.5);
    QCOMPARE(recorded.points[3].time, qint64(3010 - 3500));
    QCOMPARE(recorded.points[3].maxLevel, 5.0);
}

void ThroughputPointsTest::equalMicrosecondsShareAPoint()
{
    RecordedLine recorded;
    // Ends at 10, 20, 20 and 21 whole microseconds.
    recorded.addFrameOfTicks(1000, {0, 2500, 5000, 5249, 5250});
    QVERIFY(recorded.evaluate(1000, 2000));
    QCOMPARE(recorded.points.size(), std::size_t(2));
    QCOMPARE(recorded.points[0].time, qint64(-980));
    QCOMPARE(recorded.points[1].time, qint64(-979));
    QCOMPARE(recorded.points[1].minSpeed, 1000.0 / (249 / 250.0));
}

void ThroughputPointsTest::windowEdgesBelongToIt()
{
    RecordedLine recorded;
    recorded.addFrame(1000, evenFrame(6, 10));
    QVERIFY(recorded.evaluate(1020, 1050));
    QCOMPARE(recorded.points.size(), std::size_t(4));
    QCOMPARE(recorded.points.front().time, qint64(-30));
    QCOMPARE(recorded.points.back().time, qint64(0));
    QVERIFY(recorded.evaluate(1021, 1049));
    QCOMPARE(recorded.points.size(), std::size_t(2));
}

void ThroughputPointsTest::spacingMustBeExceeded()
{
    RecordedLine recorded;
    recorded.addFrame(1000, evenFrame(9, 10));
    QVERIFY(recorded.evaluate(1000, 2000, 0.020));
    // More than 20 microseconds after the first end at 10: 40, 70.
    QCOMPARE(recorded.points.size(), std::size_t(2));
    QCOMPARE(recorded.points[0].time, qint64(-960));
    QCOMPARE(recorded.points[1].time, qint64(-930));
    QVERIFY(recorded.evaluate(1000, 2000, 0.019));
    QCOMPARE(recorded.points.size(), std::size_t(4));
    QCOMPARE(recorded.points[0].time, qint64(-970));
}

void ThroughputPointsTest::spacingIsCut()
{
    RecordedLine recorded;
    recorded.addFrame(1000, evenFrame(9, 10));
    QVERIFY(recorded.evaluate(1000, 2000, 0.0199));
    QCOMPARE(recorded.points.size(), std::size_t(4));
    QVERIFY(recorded.evaluate(1000, 2000, std::numeric_limits<double>::quiet_NaN()));
    QCOMPARE(recorded.points.size(), std::size_t(8));
    QVERIFY(recorded.evaluate(1000, 2000, 1e300));
    QCOMPARE(recorded.points.size(), std::size_t(0));
    QVERIFY(recorded.evaluate(1000, 2000, -1.0));
    QCOMPARE(recorded.points.size(), std::size_t(9));
}

void ThroughputPointsTest::speedsCarryOverLevelsDoNot()
{
    RecordedLine recorded;
    recorded.addFrame(1000, {0, 20, 25, 30}); // 50 MB/s, 20 % at first
    recorded.addFrame(1500, {0, 5, 10});      // 200 MB/s, empty
    QVERIFY(recorded.evaluate(1000, 2000, 0.4));
    QCOMPARE(recorded.points.size(), std::size_t(1));
    QCOMPARE(recorded.points[0].time, qint64(1505 - 2000));
    QCOMPARE(recorded.points[0].minSpeed, 50.0);
    QCOMPARE(recorded.points[0].maxLevel, 0.0);
    QCOMPARE(recorded.line.maxBufferLevel, 20.0);
}

void ThroughputPointsTest::overflowStaysForTheFrame()
{
    RecordedLine recorded;
    recorded.addFrame(1000, {0, 10, 100, 105, 110, 115});
    recorded.addFrame(9000, {0, 10, 20});
    QVERIFY(recorded.evaluate(1000, 10000));
    QCOMPARE(recorded.points.size(), std::size_t(6));
    for (int i = 0; i < 4; ++i)
        QCOMPARE(recorded.points[static_cast<std::size_t>(i)].maxLevel, 100.0);
    QCOMPARE(recorded.points[4].maxLevel, 5.0);
    QCOMPARE(recorded.points[5].maxLevel, 10.0);
    QCOMPARE(recorded.line.bufferOverflowCount, quint64(1));
}

void ThroughputPointsTest::speedOfZeroStaysOut()
{
    RecordedLine recorded;
    recorded.line.sampleInterval = 0;
    recorded.addFrame(1000, {0, 10, 20});
    QVERIFY(recorded.evaluate(1000, 2000));
    QCOMPARE(recorded.line.minThroughput, 0.0);
    QCOMPARE(recorded.points.size(), std::size_t(1));
    QCOMPARE(recorded.points[0].minSpeed, std::numeric_limits<double>::max());
}

void ThroughputPointsTest::levelRestartsAfterAPoint()
{
    RecordedLine recorded;
    recorded.addFrame(1000, {0, 10, 30, 35, 40, 45, 50, 55});
    QVERIFY(recorded.evaluate(1000, 2000));
    // 25 %, then falling by 2.5 % each: nothing of the past peak is left.
    QCOMPARE(recorded.points.size(), std::size_t(6));
    QCOMPARE(recorded.points[0].maxLevel, 25.0);
    QCOMPARE(recorded.points[1].maxLevel, 22.5);
    QCOMPARE(recorded.points[5].maxLevel, 12.5);
}

void ThroughputPointsTest::closedForm_data()
{
    QTest::addColumn<quint64>("intervals");
    QTest::addColumn<quint64>("columns"); // intervals a point
    QTest::newRow("one block") << quint64(128) << quint64(40);
    QTest::newRow("several blocks") << quint64(1999) << quint64(300);
    QTest::newRow("points at block ends") << quint64(1024) << quint64(128);
    QTest::newRow("points closer than blocks") << quint64(1024) << quint64(17);
    QTest::newRow("points wider than frames") << quint64(300) << quint64(450);
}

/// Frames long enough to be taken in blocks: every interval of 10 us adds 10
/// bytes, so the level at the n-th interval of a frame is 10 n, and 1 % is 100.
void ThroughputPointsTest::closedForm()
{
    QFETCH(quint64, intervals);
    QFETCH(quint64, columns);
    RecordedLine recorded;
    recorded.line.avgTransportSpeedMBps = 101;
    recorded.line.internalBuffSize = 100000;
    constexpr qint64 period = 1000000;
    constexpr qint64 frames = 11;
    for (qint64 frame = 0; frame < frames; ++frame)
        recorded.addFrame(period * frame + 7, evenFrame(intervals, 10));
    const qint64 to = period * frames;
    QVERIFY(recorded.evaluate(0, to, static_cast<double>(columns) * 0.01 - 0.005));

    std::size_t next = 0;
    qint64 last = 17;
    for (qint64 frame = 0; frame < frames; ++frame) {
        for (quint64 n = 1; n <= intervals; ++n) {
            const qint64 end = period * frame + 7 + static_cast<qint64>(n) * 10;
            if (end - last <= static_cast<qint64>(columns) * 10 - 5)
                continue;
            last = end;
            QVERIFY(next < recorded.points.size());
            QCOMPARE(recorded.points[next].time, end - to);
            QCOMPARE(recorded.points[next].minSpeed, 100.0);
            QCOMPARE(recorded.points[next].maxLevel, static_cast<double>(n) * 10.0 / 100000.0 * 100.0);
            ++next;
        }
    }
    QCOMPARE(next, recorded.points.size());
    QVERIFY(next > 5);
    QCOMPARE(recorded.line.maxBufferLevel, static_cast<double>(intervals) * 10.0 / 100000.0 * 100.0);
}

QTEST_APPLESS_MAIN(ThroughputPointsTest)
#include "ThroughputPointsTest.moc"
