#include "bench/CaptureHost.h"
#include "measurement/CameraLineData.h"
#include "tests/measurement/model/CountingAllocations.h"

#include <QtTest>

namespace {

using Line = CxCameraLineData;

constexpr unsigned int interval = 8;
constexpr int samples = 256;      // two blocks of intervals
constexpr int manySamples = 1024; // from here on the capture follows the level
constexpr int chunk = 2048;       // records of the list

void ignoreLog(QtMsgType, const QMessageLogContext &, const QString &) {}

/// An engine whose camera delivers the same frame again and again.
class Capture
{
public:
    explicit Capture(void (Line::*loop)(), int stampCount = samples)
        : m_loop(loop)
    {
        // Stamps with which the level of the buffer rises.
        std::vector<unsigned long long> stamps(static_cast<std::size_t>(stampCount));
        for (std::size_t i = 0; i < stamps.size(); ++i)
            stamps[i] = 100000 + 9 * i;
        m_host.setFrame(stampCount * 4, 1, 0, interval, stamps);
        line.cameraHandle = &m_host;
        line.sampleInterval = interval;
        line.avgTransportSpeedMBps = 400;
        line.internalBuffSize = 1 << 20;
        m_host.deliver(4 * chunk, nullptr); // room for the times of so many frames
        qInstallMessageHandler(ignoreLog);
    }
    ~Capture() { qInstallMessageHandler(nullptr); }

    /// Allocations while so many frames are captured.
    long over(int frames)
    {
        const long before = allocations::count();
        m_host.deliver(frames, [this] { line.stopRequested = true; });
        line.stopRequested = false;
        (line.*m_loop)();
        return allocations::count() - before;
    }

    Line line;

private:
    void (Line::*const m_loop)();
    bench::CaptureHost &m_host = bench::CaptureHost::instance();
};

} // namespace

/// What the capture takes from the heap for each frame. A run begins with some
/// allocations of its own, so two runs are compared.
class CaptureAllocationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fullListOfFrames();
    void growingListOfFrames();
    void fullListOfCounters();
    void growingListOfCounters();
};

/// The record and its samples, with what is kept of them.
void CaptureAllocationTest::fullListOfFrames()
{
    Capture capture(&Line::runMeasureLoopThrougput, manySamples);
    capture.line.maxSamples = manySamples * 20;
    capture.over(3 * chunk);
    QCOMPARE(capture.line.frames.size(), 21);
    QVERIFY(capture.line.frames.first()->outline.isPlain());
    QVERIFY(capture.line.frames.first()->outline.peak() > 0.0);
    const long few = capture.over(100);
    QCOMPARE(capture.over(5100) - few, 2L * 5000);
}

void CaptureAllocationTest::growingListOfFrames()
{
    Capture capture(&Line::runMeasureLoopThrougput);
    capture.line.maxSamples = 100000000;
    capture.over(2 * chunk);
    const long few = capture.over(2 * chunk); // two chunks
    const long more = capture.over(3 * chunk);
    QCOMPARE(more - few, 2L * chunk + 1);
    QCOMPARE(capture.line.frames.size(), 7 * chunk);
}

void CaptureAllocationTest::fullListOfCounters()
{
    Capture capture(&Line::runMeasureLoopAcquisition);
    capture.line.maxSamples = 20;
    capture.over(3 * chunk);
    QCOMPARE(capture.line.counterData.size(), 21);
    const long few = capture.over(100);
    QCOMPARE(capture.over(5100) - few, 5000L);
}

void CaptureAllocationTest::growingListOfCounters()
{
    Capture capture(&Line::runMeasureLoopAcquisition);
    capture.over(2 * chunk);
    const long few = capture.over(2 * chunk);
    const long more = capture.over(3 * chunk);
    QCOMPARE(more - few, 1L * chunk + 1);
    QCOMPARE(capture.line.counterData.size(), 7 * chunk);
}

QTEST_APPLESS_MAIN(CaptureAllocationTest)
#include "CaptureAllocationTest.moc"
