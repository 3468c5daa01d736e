#include "tests/measurement/model/RecordedLine.h"

#include "bench/reference/RecordedEngine.h"
#include "bench/reference/ThroughputReference.h"
#include "measurement/Saturate.h"
#include "measurement/ThroughputEngine.h"

#include <QTest>

#include <algorithm>
#include <bit>

namespace {

void compareDoubles(double actual, double expected)
{
    QCOMPARE(std::bit_cast<quint64>(actual), std::bit_cast<quint64>(expected));
}

} // namespace

RecordedLine::RecordedLine()
{
    line.sampleInterval = 1000;
    line.avgTransportSpeedMBps = 150;
    line.internalBuffSize = 10000;
}

CxCameraLineData::CxFrameData &RecordedLine::addFrame(qint64 timestamp, const std::vector<quint64> &times)
{
    std::vector<quint64> stamps;
    for (const quint64 time : times)
        stamps.push_back(1000000 + time * 250);
    return addFrameOfTicks(timestamp, stamps);
}

CxCameraLineData::CxFrameData &RecordedLine::addFrameOfTicks(qint64 timestamp,
                                                             const std::vector<quint64> &stamps)
{
    auto *frame = new CxCameraLineData::CxFrameData;
    frame->cameraTimestamp = timestamp;
    // Far off: a mix-up of the two finds no frame in any window.
    frame->computerTimestamp = measurement::addSaturated(timestamp, Q_INT64_C(1000000000000));
    frame->samples = new quint64[stamps.size()];
    std::copy(stamps.begin(), stamps.end(), frame->samples);
    frame->sampleCount = stamps.size();
    frame->sampleSpan = stamps.size() < 2 ? 0 : static_cast<qint64>(stamps.back() - stamps.front());
    line.frames.append(frame);
    return *frame;
}

bool RecordedLine::evaluate(qint64 from, qint64 to, double msPerPixel, bool reset)
{
    measurement::throughput::Settings settings;
    settings.sampleInterval = line.sampleInterval;
    settings.requiredMBps = static_cast<qint32>(line.avgTransportSpeedMBps);
    settings.bufferSize = line.internalBuffSize;
    settings.meanSpan = line.statAvg;
    settings.from = from;
    settings.to = to;
    settings.msPerPixel = msPerPixel;
    settings.resetBufferLevel = reset;
    measurement::throughput::Statistics expected = {line.avgThroughput, line.minThroughput,
                                                    line.maxBufferLevel, line.bufferOverflowCount};
    PointList expectedSink;
    reference::Buffers buffers;
    const bool expectedResult =
        reference::evaluate(reference::EngineFrames(line), settings, buffers, &expectedSink, expected);

    PointList sink;
    const measurement::ThroughputWindow window = {from, to, TimestampOriginCamera, msPerPixel, reset};
    const bool result = measurement::evaluateThroughput(line, window, &sink);
    points = sink.points;

    [&] {
        QCOMPARE(result, expectedResult);
        compareDoubles(line.avgThroughput, expected.avgThroughput);
        compareDoubles(line.minThroughput, expected.minThroughput);
        compareDoubles(line.maxBufferLevel, expected.maxBufferLevel);
        QCOMPARE(line.bufferOverflowCount, expected.bufferOverflowCount);
        QCOMPARE(points.size(), expectedSink.points.size());
        for (std::size_t i = 0; i < points.size(); ++i) {
            QCOMPARE(points[i].time, expectedSink.points[i].time);
            compareDoubles(points[i].minSpeed, expectedSink.points[i].minSpeed);
            compareDoubles(points[i].maxLevel, expectedSink.points[i].maxLevel);
        }
    }();
    return result;
}
