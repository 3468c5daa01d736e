#include "SimulationTestHelpers.h"

#include "host/core/simulation/RealTimeClock.h"

#include <QElapsedTimer>
#include <QTest>

using namespace host;
using namespace std::chrono_literals;
using Entry = LedgerEntryKind;

namespace {

/// Stands still from the start on.
CameraSettings deadLink()
{
    CameraSettings settings = smallCamera();
    settings.stalls = {{0, 1000, 1000, 1.0}};
    return settings;
}

} // namespace

class SimulatedCaptureTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void timeOut_data();
    void timeOut();
    void frameAtTheDeadlineIsDelivered();
    void notStreamingFailsAfterTheTimeOut();
    void negativeTimeOutDoesNotWait();
    void interruptedClockFailsAtOnce();
    void startAndStopTwice();
    void aCaptureTakesNoFrameOfALaterOpening();
    void countsItsReturnAlthoughNobodyLooked();
    void realTimeFramesArePaced();
    void unpluggedCameraIsGone();
    void unplugDuringACapture();
    void cameraComesBack();
    void countersRestartWithThePower();
};

void SimulatedCaptureTest::timeOut_data()
{
    QTest::addColumn<int>("milliseconds");
    QTest::newRow("at once") << 0;
    QTest::newRow("1 ms") << 1;
    QTest::newRow("5 s") << 5000;
}

void SimulatedCaptureTest::timeOut()
{
    QFETCH(int, milliseconds);
    CameraSettings settings = deadLink();
    settings.frameRate = 1.0;
    CameraOnClock on(settings);
    QVERIFY(on.camera.writeParameter("imgdataformat", 7));
    QVERIFY(on.camera.startAcquisition());
    QVERIFY(!on.capture(std::chrono::milliseconds(milliseconds)));
    QCOMPARE(on.clock->now(), milliseconds * TicksPerMillisecond);
}

void SimulatedCaptureTest::frameAtTheDeadlineIsDelivered()
{
    CameraSettings settings = smallCamera();
    settings.linkMBps = 2.0; // 2000 bytes take exactly 1 ms
    settings.frameRate = 1.0;
    for (const bool late : {false, true}) {
        settings.stalls = {{100, 0, late ? 1 : 0, 1.0}};
        CameraOnClock on(settings);
        QVERIFY(on.selectCounterPattern());
        QVERIFY(on.camera.startAcquisition());
        QCOMPARE(on.capture(1ms), !late);
        QCOMPARE(on.clock->now(), TicksPerMillisecond);
    }
}

void SimulatedCaptureTest::notStreamingFailsAfterTheTimeOut()
{
    CameraOnClock on(smallCamera());
    QVERIFY(!on.capture(5s));
    QCOMPARE(on.clock->now(), 5 * TicksPerSecond);
    on.camera.close();
    QVERIFY(!on.capture(24h));
    QCOMPARE(on.clock->now(), (5 + 86'400) * TicksPerSecond);
}

void SimulatedCaptureTest::negativeTimeOutDoesNotWait()
{
    CameraOnClock on(smallCamera());
    QVERIFY(!on.capture(-1ms));
    QCOMPARE(on.clock->now(), Ticks{0});
}

void SimulatedCaptureTest::interruptedClockFailsAtOnce()
{
    CameraOnClock on(smallCamera(), 1, 100);
    QVERIFY(on.camera.startAcquisition());
    on.clock->release();
    QVERIFY(!on.capture(5s));
    QCOMPARE(on.clock->now(), Ticks{0});
}

void SimulatedCaptureTest::startAndStopTwice()
{
    CameraOnClock on(smallCamera());
    QVERIFY(!on.camera.stopAcquisition());
    QVERIFY(on.camera.startAcquisition());
    QVERIFY(!on.camera.startAcquisition());
    QVERIFY(on.capture());
    QVERIFY(on.camera.stopAcquisition());
    QVERIFY(!on.camera.stopAcquisition());
    QVERIFY(on.camera.startAcquisition());
    on.camera.close();
    QVERIFY(on.camera.open());
    QVERIFY(on.camera.startAcquisition());
}

void SimulatedCaptureTest::aCaptureTakesNoFrameOfALaterOpening()
{
    CameraOnClock on(smallCamera());
    on.camera.close();
    const auto next = on.camera.open();
    QVERIFY(next != on.opening);
    QVERIFY(on.camera.startAcquisition());
    on.clock->advance(4500); // frame 0 has arrived, frame 1 has not
    QVERIFY(!on.capture(5s));
    QCOMPARE(on.clock->now(), Ticks{4500});
    on.opening = next;
    QVERIFY(on.capture(0ms));
    QCOMPARE(on.image.frameNumber, 0U);
}

void SimulatedCaptureTest::countsItsReturnAlthoughNobodyLooked()
{
    CameraSettings settings = smallCamera();
    settings.faults.unplug = UnplugSettings{10'000, 20'000};
    CameraOnClock on(settings);
    QCOMPARE(on.camera.connectionCount(), 1U);
    on.clock->advance(30'000);
    QCOMPARE(on.camera.connectionCount(), 2U);
    on.clock->advance(30'000);
    QCOMPARE(on.camera.connectionCount(), 2U);
}

void SimulatedCaptureTest::realTimeFramesArePaced()
{
    CameraSettings settings = smallCamera();
    settings.frameRate = 1000.0;
    SimulatedCamera camera(settings, 1, 0, std::make_shared<RealTimeClock>());
    const auto opening = camera.open();
    QVERIFY(opening);
    QElapsedTimer timer;
    timer.start();
    QVERIFY(camera.startAcquisition());
    ZU_IMG image = emptyImage();
    do {
        QVERIFY(camera.captureImage(opening, 5s, image));
    } while (image.frameNumber < 5);
    QVERIFY(timer.nsecsElapsed() >= 5'000'000);
    QVERIFY(camera.stopAcquisition());
    timer.start();
    QVERIFY(!camera.captureImage(opening, 3ms, image));
    QVERIFY(timer.nsecsElapsed() >= 3'000'000);
}

void SimulatedCaptureTest::unpluggedCameraIsGone()
{
    CameraSettings settings = smallCamera();
    settings.faults.unplug = UnplugSettings{10'000, std::nullopt};
    CameraOnClock on(settings);
    QVERIFY(on.camera.startAcquisition());
    on.clock->advance(9999);
    QVERIFY(on.camera.isConnected());
    on.clock->advance(1);
    QVERIFY(!on.camera.isConnected());
    std::int64_t value = 0;
    QVERIFY(!on.camera.readParameter("width", value));
    QVERIFY(!on.camera.writeParameter("width", 10));
    QVERIFY(!on.camera.stopAcquisition());
    QVERIFY(!on.camera.open());
    QVERIFY(on.camera.parameters().empty());
    const Ticks before = on.clock->now();
    QVERIFY(!on.capture(5s));
    QCOMPARE(on.clock->now() - before, 5 * TicksPerSecond);
    // Two frames had arrived before.
    QCOMPARE(on.truth(Entry::Transferred), std::int64_t{2});
}

void SimulatedCaptureTest::unplugDuringACapture()
{
    CameraSettings settings = smallCamera();
    settings.faults.unplug = UnplugSettings{2000, std::nullopt};
    CameraOnClock on(settings);
    QVERIFY(on.camera.startAcquisition());
    QVERIFY(!on.capture(5s));
    QCOMPARE(on.clock->now(), 5 * TicksPerSecond);
    QVERIFY(!on.camera.isConnected());
}

void SimulatedCaptureTest::cameraComesBack()
{
    CameraSettings settings = smallCamera();
    settings.faults.unplug = UnplugSettings{10'000, 20'000};
    auto clock = std::make_shared<FreeRunningClock>();
    SimulatedCamera camera(settings, 1, 0, clock);
    clock->advance(1'000'000); // counts from the opening
    QVERIFY(camera.isConnected());
    QVERIFY(camera.open());
    QVERIFY(camera.writeParameter("width", 50));
    QVERIFY(camera.startAcquisition());
    clock->advance(19'999);
    QVERIFY(!camera.isConnected());
    QCOMPARE(camera.connectionCount(), 1U);
    clock->advance(1);
    QVERIFY(camera.isConnected());
    QCOMPARE(camera.connectionCount(), 2U);
    std::int64_t value = 0;
    QVERIFY(!camera.readParameter("width", value));
    const auto opening = camera.open();
    QVERIFY(opening);
    QVERIFY(camera.readParameter("width", value));
    QCOMPARE(value, std::int64_t{100});
    clock->advance(100'000'000);
    QVERIFY(camera.isConnected());
    QVERIFY(camera.startAcquisition());
    ZU_IMG image = emptyImage();
    QVERIFY(camera.captureImage(opening, 5s, image));
    // The time stamp restarted with the power, 100 000 000 ticks ago.
    QCOMPARE(microseconds(image), std::int64_t{400'000});
}

void SimulatedCaptureTest::countersRestartWithThePower()
{
    CameraSettings settings = smallCamera();
    settings.faults.unplug = UnplugSettings{10'000, 20'000};
    CameraOnClock on(settings);
    QVERIFY(on.camera.startAcquisition());
    on.clock->advance(9999);
    QCOMPARE(on.counter(ZU_CNT_SEL_TRANSFERRED), std::int64_t{2});
    on.clock->advance(10'001);
    on.opening = on.camera.open();
    QVERIFY(on.opening);
    QCOMPARE(on.counter(ZU_CNT_SEL_TRANSFERRED), std::int64_t{0});
    QCOMPARE(on.truth(Entry::Transferred), std::int64_t{2}); // the truth forgets nothing
    QVERIFY(on.camera.startAcquisition());
    QVERIFY(on.capture());
    QVERIFY(on.camera.stopAcquisition());
    QCOMPARE(on.counter(ZU_CNT_SEL_TRANSFERRED), std::int64_t{1});
}

QTEST_APPLESS_MAIN(SimulatedCaptureTest)
#include "SimulatedCaptureTest.moc"
