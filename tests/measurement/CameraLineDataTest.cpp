#include "measurement/AcquisitionThread.h"
#include "tests/measurement/EngineFixture.h"

#include <QtTest>

#include <limits>
#include <type_traits>

static_assert(std::is_same_v<decltype(CxCameraLineData::CxFrameData::samples), quint64 *>);
static_assert(sizeof(MeasureMode) == 4 && sizeof(ExTimestampOrigin) == 4);
static_assert(std::is_base_of_v<QThread, CxAcquisitionThread>);

using Line = CxCameraLineData;

class CameraLineDataTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initialSettings();
    void initialResults();
    void counterList();
    void recordsStartAtZero();
    void frameTimestamp_data();
    void frameTimestamp();
    void buffersAreGivenOnce();
    void buffersChangeTheirSize();
    void noBuffersInAcquisitionMode();
    void clearDataOfAnUnusedEngine();
    void clearDataKeepsTheRest();
    void isMeasurementRunning();
    void destructionDeletesRecordsAndBuffers();
    void destructionWaitsForTheThread();
};

void CameraLineDataTest::initialSettings()
{
    Line line;
    QVERIFY(!line.cameraHandle);
    QVERIFY(line.cameraName.isEmpty());
    QCOMPARE(line.measureMode, MeasureModeThroughput);
    QVERIFY(!line.elapsedTimer.isValid());
    QVERIFY(line.frames.isEmpty());
    QVERIFY(line.counterData.isEmpty());
    QCOMPARE(line.sampleInterval, 4096U);
    QCOMPARE(line.maxSamples, 3000000LL);
    QCOMPARE(line.internalBuffSize, quint64(0));
    QVERIFY(line.autoInternalBuffSize);
    QVERIFY(line.plotEnabled);
    QCOMPARE(line.avgTransportSpeedMBps, 0U);
    QVERIFY(line.autoTransportSpeed);
    QCOMPARE(line.savedParams.size(), std::size_t(11));
    for (int saved : line.savedParams)
        QCOMPARE(saved, 0);
    QVERIFY(!line.frameBufModeChanged);
    QVERIFY(!line.deviceRegChanged);
}

void CameraLineDataTest::initialResults()
{
    Line line;
    QVERIFY(!line.linkSpeedBuf);
    QVERIFY(!line.bufferDeltaBuf);
    QVERIFY(!line.sampleTimeBuf);
    QCOMPARE(line.calcBufSize, quint64(0));
    QCOMPARE(line.statAvg, 0.0);
    QVERIFY(line.statMax == std::numeric_limits<double>::min());
    QVERIFY(line.statMin == std::numeric_limits<double>::max());
    QCOMPARE(line.statCount, quint64(0));
    QCOMPARE(line.avgThroughput, 0.0);
    QCOMPARE(line.minThroughput, 0.0);
    QCOMPARE(line.maxBufferLevel, 0.0);
    QCOMPARE(line.bufferOverflowCount, quint64(0));
    QVERIFY(!line.running);
    QVERIFY(!line.stopRequested);
    QVERIFY(!line.acquisitionThread);
    QVERIFY(line.mutex.tryLock());
    QVERIFY(!line.mutex.tryLock()); // not recursive
    line.mutex.unlock();
}

void CameraLineDataTest::counterList()
{
    const QList<QPair<int, QString>> expected = {
        {0, QStringLiteral("Transport skip")},      {1, QStringLiteral("API skip")},
        {2, QStringLiteral("Transferred")},         {3, QStringLiteral("Missed trg. overlap")},
        {4, QStringLiteral("Missed trg overflow")}, {5, QStringLiteral("Buffer overflow")},
    };
    Line line;
    QCOMPARE(line.counterInfos.size(), expected.size());
    for (int i = 0; i < expected.size(); ++i) {
        const Line::CxCounterInfo &info = *line.counterInfos.at(i);
        QCOMPARE(int(info.selector), expected[i].first);
        QCOMPARE(info.name, expected[i].second);
        QVERIFY(!info.supported);
        QCOMPARE(info.value.load(), 0);
    }
}

void CameraLineDataTest::recordsStartAtZero()
{
    const Line::CxFrameData frame;
    QCOMPARE(frame.computerTimestamp, qint64(0));
    QCOMPARE(frame.cameraTimestamp, qint64(0));
    QCOMPARE(frame.frameNumber, quint64(0));
    QVERIFY(!frame.samples);
    QCOMPARE(frame.sampleCount, quint64(0));
    QCOMPARE(frame.sampleSpan, qint64(0));

    const Line::CxCounterData counters;
    QCOMPARE(counters.computerTimestamp, qint64(0));
    QCOMPARE(counters.cameraTimestamp, qint64(0));
    QCOMPARE(counters.frameNumber, quint64(0));
    QCOMPARE(counters.transportSkip, 0);
    QCOMPARE(counters.apiSkip, 0);
    QCOMPARE(counters.missedTrgOverlap, 0);
    QCOMPARE(counters.missedTrgOverflow, 0);
    QCOMPARE(counters.bufferOverflow, 0);
}

void CameraLineDataTest::frameTimestamp_data()
{
    QTest::addColumn<int>("origin");
    QTest::addColumn<qint64>("expected");
    QTest::newRow("camera") << 0 << qint64(11);
    QTest::newRow("computer") << 1 << qint64(22);
    QTest::newRow("unknown 7") << 7 << qint64(11);
    QTest::newRow("unknown -1") << -1 << qint64(11);
}

void CameraLineDataTest::frameTimestamp()
{
    QFETCH(int, origin);
    Line::CxFrameData frame;
    frame.cameraTimestamp = 11;
    frame.computerTimestamp = 22;
    QTEST(frame.frameTimestamp(ExTimestampOrigin(origin)), "expected");
    Line::CxCounterData counters;
    counters.cameraTimestamp = 11;
    counters.computerTimestamp = 22;
    QTEST(counters.frameTimestamp(ExTimestampOrigin(origin)), "expected");
}

void CameraLineDataTest::buffersAreGivenOnce()
{
    Line line;
    QVERIFY(line.AllocateBuffers(0)); // the size they have
    QVERIFY(!line.linkSpeedBuf);

    QVERIFY(line.AllocateBuffers(1000));
    QCOMPARE(line.calcBufSize, quint64(1000));
    const double *speeds = line.linkSpeedBuf;
    const double *deltas = line.bufferDeltaBuf;
    const quint64 *times = line.sampleTimeBuf;
    QVERIFY(speeds && deltas && times);
    line.linkSpeedBuf[999] = 1.5;
    line.bufferDeltaBuf[999] = 2.5;
    line.sampleTimeBuf[999] = 3;

    QVERIFY(line.AllocateBuffers(1000));
    QCOMPARE(line.linkSpeedBuf, speeds);
    QCOMPARE(line.bufferDeltaBuf, deltas);
    QCOMPARE(line.sampleTimeBuf, times);
    QCOMPARE(line.linkSpeedBuf[999], 1.5);
    QCOMPARE(line.bufferDeltaBuf[999], 2.5);
    QCOMPARE(line.sampleTimeBuf[999], quint64(3));
}

void CameraLineDataTest::buffersChangeTheirSize()
{
    Line line;
    // The address checker sees an array that is too small or left behind.
    for (unsigned int count : {10U, 20000U, 3U, 0U, 7U}) {
        QVERIFY(line.AllocateBuffers(count));
        QCOMPARE(line.calcBufSize, quint64(count));
        QVERIFY(line.linkSpeedBuf && line.bufferDeltaBuf && line.sampleTimeBuf);
        for (unsigned int i = 0; i < count; ++i) {
            line.linkSpeedBuf[i] = 0.0;
            line.bufferDeltaBuf[i] = 0.0;
            line.sampleTimeBuf[i] = 0;
        }
    }
}

void CameraLineDataTest::noBuffersInAcquisitionMode()
{
    Line line;
    line.measureMode = MeasureModeAcquisition;
    QVERIFY(line.AllocateBuffers(100));
    QVERIFY(!line.linkSpeedBuf && !line.bufferDeltaBuf && !line.sampleTimeBuf);
    QCOMPARE(line.calcBufSize, quint64(0));

    line.measureMode = MeasureMode(7);
    QVERIFY(line.AllocateBuffers(100));
    QCOMPARE(line.calcBufSize, quint64(0));

    line.measureMode = MeasureModeThroughput;
    QVERIFY(line.AllocateBuffers(100));
    const double *speeds = line.linkSpeedBuf;
    line.measureMode = MeasureModeAcquisition;
    QVERIFY(line.AllocateBuffers(50));
    QCOMPARE(line.linkSpeedBuf, speeds);
    QCOMPARE(line.calcBufSize, quint64(100));
}

void CameraLineDataTest::clearDataOfAnUnusedEngine()
{
    Line line;
    line.clearData();
    line.clearData();
    QVERIFY(!line.linkSpeedBuf && !line.bufferDeltaBuf && !line.sampleTimeBuf);
    QCOMPARE(line.calcBufSize, quint64(0));
    QVERIFY(line.frames.isEmpty());
    QVERIFY(line.counterData.isEmpty());
}

void CameraLineDataTest::clearDataKeepsTheRest()
{
    Line line;
    line.frames.append(new Line::CxFrameData);
    line.frames.append(new Line::CxFrameData);
    line.frames.last()->samples = new quint64[4];
    line.counterData.append(new Line::CxCounterData);
    line.AllocateBuffers(10);
    line.statAvg = 1.0;
    line.statMax = 2.0;
    line.statMin = 3.0;
    line.statCount = 4;
    line.counterInfos.first()->supported = true;
    line.counterInfos.first()->value = 99;
    line.savedParams[Line::SavedTestPattern] = 5;
    line.maxBufferLevel = 6.0;

    line.clearData();

    QVERIFY(line.frames.isEmpty());
    QVERIFY(line.counterData.isEmpty());
    QVERIFY(!line.linkSpeedBuf && !line.bufferDeltaBuf && !line.sampleTimeBuf);
    QCOMPARE(line.calcBufSize, quint64(0));
    QCOMPARE(line.statAvg, 1.0);
    QCOMPARE(line.statMax, 2.0);
    QCOMPARE(line.statMin, 3.0);
    QCOMPARE(line.statCount, quint64(4));
    QCOMPARE(line.counterInfos.size(), 6);
    QVERIFY(line.counterInfos.first()->supported);
    QCOMPARE(line.counterInfos.first()->value.load(), 99);
    QCOMPARE(line.savedParams[Line::SavedTestPattern], 5);
    QCOMPARE(line.maxBufferLevel, 6.0);
    // The mutex is the caller's.
    QVERIFY(line.mutex.tryLock());
    line.clearData();
    line.mutex.unlock();
}

void CameraLineDataTest::isMeasurementRunning()
{
    Line line;
    QVERIFY(!line.isMeasurementRunning());
    line.running = true;
    QVERIFY(line.isMeasurementRunning());
    line.running = false;
    QVERIFY(!line.isMeasurementRunning());
    QVERIFY(line.mutex.tryLock());
    line.mutex.unlock();
}

void CameraLineDataTest::destructionDeletesRecordsAndBuffers()
{
    // The leak checker is the judge.
    auto line = std::make_unique<Line>();
    line->frames.append(new Line::CxFrameData);
    line->frames.first()->samples = new quint64[0];
    line->counterData.append(new Line::CxCounterData);
    line->AllocateBuffers(10);
    line.reset();
    QVERIFY(!line);
}

void CameraLineDataTest::destructionWaitsForTheThread()
{
    EngineFixture engine;
    QVERIFY(engine.start());
    QVERIFY(engine.deliver(2));
    const QStringList before = engine.calls();
    // Only the flag ends the loop; the camera is neither stopped nor restored.
    engine.line->stopRequested = true;
    engine.line.reset();
    QCOMPARE(engine.calls(), before + QStringList(QStringLiteral("image failed")));
    QVERIFY(engine.host.isStreaming(engine.camera));
}

QTEST_APPLESS_MAIN(CameraLineDataTest)
#include "CameraLineDataTest.moc"
