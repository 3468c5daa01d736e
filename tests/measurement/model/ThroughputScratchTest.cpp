#include "tests/measurement/LogCapture.h"
#include "tests/measurement/model/RecordedLine.h"

#include <QTest>

namespace {

std::vector<quint64> evenFrame(quint64 stamps)
{
    std::vector<quint64> times;
    for (quint64 i = 0; i < stamps; ++i)
        times.push_back(i * 10);
    return times;
}

const QString allocationFailure =
    QStringLiteral("CxCameraLineData::calculateGraphsThrougput(): Failed to allocate temporary buffers for "
                   "internal calculations");

void addEmptyWindows()
{
    QTest::addColumn<qint64>("from");
    QTest::addColumn<qint64>("to");
    QTest::newRow("all frames older") << qint64(100000) << qint64(101000);
    QTest::newRow("all frames newer") << qint64(-101000) << qint64(-100000);
}

} // namespace

/// The engine's scratch arrays around a pass.
class ThroughputScratchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sizeFollowsTheFrames_data();
    void sizeFollowsTheFrames();
    void nothingIsAllocatedAgain();
    void noArraysInAcquisitionMode();
    void moreThanTheArraysCanHold();
    void sizedBeforeTheWindowIsLookedAt_data();
    void sizedBeforeTheWindowIsLookedAt();
    void failsBeforeTheWindowIsLookedAt_data();
    void failsBeforeTheWindowIsLookedAt();
};

void ThroughputScratchTest::sizeFollowsTheFrames_data()
{
    QTest::addColumn<QVector<int>>("stamps");
    QTest::addColumn<int>("elements");
    QTest::newRow("one frame") << QVector<int>{300} << 299;
    QTest::newRow("growing") << QVector<int>{2, 3, 40, 500, 1001} << 1000;
    QTest::newRow("shrinking") << QVector<int>{800, 300, 2} << 799;
    QTest::newRow("first without intervals") << QVector<int>{0, 1, 65} << 64;
    QTest::newRow("no intervals at all") << QVector<int>{1, 0} << 0;
}

/// Under the address sanitizer this also shows that nothing beyond is touched.
void ThroughputScratchTest::sizeFollowsTheFrames()
{
    QFETCH(QVector<int>, stamps);
    QFETCH(int, elements);
    RecordedLine recorded;
    qint64 time = 1000;
    for (const int count : stamps) {
        recorded.addFrame(time, evenFrame(static_cast<quint64>(count)));
        // An equal pair sends every other frame down the path of single intervals.
        recorded.addFrame(time + 20000, evenFrame(static_cast<quint64>(count)));
        CxCameraLineData::CxFrameData &frame = *recorded.line.frames.last();
        if (count > 2)
            frame.samples[1] = frame.samples[0];
        time += 40000;
    }
    for (const double msPerPixel : {0.0, 0.3, 50.0}) {
        QVERIFY(recorded.evaluate(0, time, msPerPixel));
        QCOMPARE(recorded.line.calcBufSize, static_cast<quint64>(elements));
    }
    QCOMPARE(recorded.line.linkSpeedBuf != nullptr, elements > 0);
}

void ThroughputScratchTest::nothingIsAllocatedAgain()
{
    RecordedLine recorded;
    recorded.addFrame(1000, evenFrame(100));
    recorded.addFrame(5000, evenFrame(400));
    QVERIFY(recorded.evaluate(0, 10000));
    const double *const speeds = recorded.line.linkSpeedBuf;
    const double *const deltas = recorded.line.bufferDeltaBuf;
    const quint64 *const times = recorded.line.sampleTimeBuf;
    for (int pass = 0; pass < 3; ++pass) {
        // Blocks that are freed and allocated again could come back in place.
        const std::vector<std::vector<double>> taken(8, std::vector<double>(399));
        QVERIFY(recorded.evaluate(0, 10000));
        QCOMPARE(recorded.line.linkSpeedBuf, speeds);
        QCOMPARE(recorded.line.bufferDeltaBuf, deltas);
        QCOMPARE(recorded.line.sampleTimeBuf, times);
    }
}

void ThroughputScratchTest::noArraysInAcquisitionMode()
{
    RecordedLine recorded;
    recorded.line.measureMode = MeasureModeAcquisition;
    recorded.addFrame(1000, evenFrame(5));
    recorded.line.minThroughput = 2.5;
    const LogCapture log;
    QVERIFY(!recorded.line.calculateStatisticsThroughput(0, 2000, TimestampOriginCamera, false));
    QCOMPARE(log.messages(), QStringList(allocationFailure));
    QCOMPARE(recorded.line.minThroughput, 2.5);
    QVERIFY(recorded.line.mutex.tryLock());
    recorded.line.mutex.unlock();
}

void ThroughputScratchTest::moreThanTheArraysCanHold()
{
    RecordedLine recorded;
    recorded.addFrame(1000, evenFrame(5)).sampleCount = (Q_UINT64_C(1) << 32) + 5;
    const LogCapture log;
    QVERIFY(!recorded.line.calculateStatisticsThroughput(0, 2000, TimestampOriginCamera, false));
    QCOMPARE(log.messages(), QStringList(allocationFailure));
    QCOMPARE(recorded.line.calcBufSize, quint64(0));
}

void ThroughputScratchTest::sizedBeforeTheWindowIsLookedAt_data()
{
    addEmptyWindows();
}

void ThroughputScratchTest::sizedBeforeTheWindowIsLookedAt()
{
    QFETCH(qint64, from);
    QFETCH(qint64, to);
    RecordedLine recorded;
    recorded.addFrame(1000, evenFrame(801));
    recorded.addFrame(20000, evenFrame(40));
    recorded.line.maxBufferLevel = 3.5;
    QVERIFY(!recorded.evaluate(from, to));
    QCOMPARE(recorded.line.calcBufSize, quint64(800));
    QVERIFY(recorded.line.linkSpeedBuf);
    QVERIFY(recorded.line.bufferDeltaBuf);
    QVERIFY(recorded.line.sampleTimeBuf);
    QCOMPARE(recorded.line.maxBufferLevel, 0.0);
}

void ThroughputScratchTest::failsBeforeTheWindowIsLookedAt_data()
{
    addEmptyWindows();
}

void ThroughputScratchTest::failsBeforeTheWindowIsLookedAt()
{
    QFETCH(qint64, from);
    QFETCH(qint64, to);
    RecordedLine recorded;
    recorded.addFrame(1000, evenFrame(5)).sampleCount = (Q_UINT64_C(1) << 32) + 5;
    recorded.addFrame(20000, evenFrame(40));
    recorded.line.maxBufferLevel = 3.5;
    const LogCapture log;
    QVERIFY(!recorded.line.calculateStatisticsThroughput(from, to, TimestampOriginCamera, false));
    QCOMPARE(log.messages(), QStringList(allocationFailure));
    QCOMPARE(recorded.line.calcBufSize, quint64(0));
    QCOMPARE(recorded.line.maxBufferLevel, 3.5);
}

QTEST_APPLESS_MAIN(ThroughputScratchTest)
#include "ThroughputScratchTest.moc"
