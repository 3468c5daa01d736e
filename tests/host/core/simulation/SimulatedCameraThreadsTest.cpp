#include "SimulationTestHelpers.h"

#include "host/core/simulation/RealTimeClock.h"

#include <QTest>

#include <thread>

using namespace host;
using namespace std::chrono_literals;

namespace {

/// A flag between two threads that the race checker understands.
class Flag
{
public:
    void set()
    {
        const std::lock_guard lock(m_mutex);
        m_set = true;
    }

    bool isSet() const
    {
        const std::lock_guard lock(m_mutex);
        return m_set;
    }

private:
    mutable std::mutex m_mutex;
    bool m_set = false;
};

CameraSettings silentCamera()
{
    CameraSettings settings = smallCamera();
    settings.stalls = {{0, 0, 3600 * TicksPerSecond, 1.0}};
    return settings;
}

} // namespace

class SimulatedCameraThreadsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void stopEndsACapture_data();
    void stopEndsACapture();
    void closeEndsACaptureThatWaits_data();
    void closeEndsACaptureThatWaits();
    void startServesACaptureThatWaits();
    void stopLeavesTheFrameToItsReader();
    void tenSecondsThroughACaptureThread();
    void twoCamerasOnTheirOwnClocks();
    void twoThreadsOneCamera();
};

void SimulatedCameraThreadsTest::stopEndsACapture_data()
{
    QTest::addColumn<bool>("close");
    QTest::addColumn<bool>("realTime");
    QTest::newRow("stop, real time") << false << true;
    QTest::newRow("close, real time") << true << true;
    QTest::newRow("stop, virtual time") << false << false;
    QTest::newRow("close, virtual time") << true << false;
}

void SimulatedCameraThreadsTest::stopEndsACapture()
{
    QFETCH(bool, close);
    QFETCH(bool, realTime);
    std::shared_ptr<Clock> clock = std::make_shared<RealTimeClock>();
    if (!realTime)
        clock = std::make_shared<FreeRunningClock>(0);
    SimulatedCamera camera(silentCamera(), 1, 0, clock);
    const auto opening = camera.open();
    QVERIFY(opening);
    QVERIFY(camera.startAcquisition());
    Flag done;
    bool captured = true;
    const auto begin = std::chrono::steady_clock::now();
    std::thread thread([&] {
        ZU_IMG image = emptyImage();
        captured = camera.captureImage(opening, 60s, image);
        done.set();
    });
    // Again and again, because the first may come before the capture.
    while (!done.isSet()) {
        if (close) {
            camera.close();
            camera.open();
        } else {
            camera.stopAcquisition();
        }
        camera.startAcquisition();
        std::this_thread::yield();
    }
    thread.join();
    QVERIFY(!captured);
    QVERIFY(std::chrono::steady_clock::now() - begin < 30s);
}

void SimulatedCameraThreadsTest::closeEndsACaptureThatWaits_data()
{
    QTest::addColumn<bool>("streaming");
    QTest::addColumn<int>("backAfter");
    QTest::newRow("streaming") << true << -1;
    QTest::newRow("not streaming") << false << -1;
    QTest::newRow("unplugged") << true << 0;
    QTest::newRow("unplugged and back") << true << 600;
}

void SimulatedCameraThreadsTest::closeEndsACaptureThatWaits()
{
    QFETCH(bool, streaming);
    QFETCH(int, backAfter);
    CameraSettings settings = silentCamera();
    if (backAfter >= 0)
        settings.faults.unplug = UnplugSettings{500, std::nullopt};
    if (backAfter > 0)
        settings.faults.unplug->backAfter = backAfter;
    CameraOnClock on(settings, 1, 0);
    QCOMPARE(!streaming || on.camera.startAcquisition(), true);
    bool captured = true;
    std::thread thread([&] { captured = on.capture(60s); });
    QVERIFY(on.clock->runUntil(1000));
    on.camera.close();
    thread.join();
    QVERIFY(!captured);
    QCOMPARE(on.clock->now(), Ticks{1000});
}

void SimulatedCameraThreadsTest::startServesACaptureThatWaits()
{
    CameraOnClock on(smallCamera(), 1, 0);
    bool captured = false;
    std::thread thread([&] { captured = on.capture(5s); });
    QVERIFY(on.clock->runUntil(1000));
    QVERIFY(on.camera.startAcquisition());
    QVERIFY(on.clock->runUntil(1000));
    on.clock->advance(2500);
    thread.join();
    QVERIFY(captured);
    QCOMPARE(on.camera.acquisitionStart(), Ticks{1000});
    QCOMPARE(on.clock->now(), Ticks{3500});
}

void SimulatedCameraThreadsTest::stopLeavesTheFrameToItsReader()
{
    CameraOnClock on(smallCamera());
    QVERIFY(on.selectCounterPattern());
    QVERIFY(on.camera.startAcquisition());
    QVERIFY(on.capture());
    std::thread thread([&] { on.camera.stopAcquisition(); });
    std::uint64_t sum = 0;
    for (const std::uint64_t word : on.words())
        sum += word;
    thread.join();
    QCOMPARE(sum, std::uint64_t{20 * 250 * 251 / 2});
    QCOMPARE(on.words()[0], std::uint64_t{20});
}

void SimulatedCameraThreadsTest::tenSecondsThroughACaptureThread()
{
    CameraSettings settings = smallCamera();
    settings.frameRate = 100.0;
    CameraOnClock on(settings, 1, 0);
    QVERIFY(on.selectCounterPattern());
    QVERIFY(on.camera.startAcquisition());
    std::vector<std::uint32_t> numbers;
    std::thread thread([&] {
        while (on.capture())
            numbers.push_back(on.image.frameNumber);
    });
    // Frame 999 arrives at 9.99002 s.
    QVERIFY(on.clock->runUntil(10 * TicksPerSecond - 1));
    QCOMPARE(on.truth(LedgerEntryKind::Fetched), std::int64_t{1000});
    on.clock->release();
    thread.join();
    QCOMPARE(numbers.size(), std::size_t{1000});
    QCOMPARE(numbers.back(), 999U);
    QCOMPARE(on.clock->now(), 10 * TicksPerSecond - 1);
}

void SimulatedCameraThreadsTest::twoCamerasOnTheirOwnClocks()
{
    CameraOnClock first(smallCamera(), 1, 0);
    CameraSettings slower = smallCamera();
    slower.frameRate = 1000.0;
    CameraOnClock second(slower, 1, 0);
    int counts[2] = {};
    std::vector<std::thread> threads;
    for (CameraOnClock *on : {&first, &second}) {
        QVERIFY(on->camera.startAcquisition());
        threads.emplace_back([on, &count = counts[on == &first ? 0 : 1]] {
            while (on->capture())
                ++count;
        });
    }
    QVERIFY(first.clock->runUntil(10 * TicksPerMillisecond));
    QVERIFY(second.clock->runUntil(10 * TicksPerMillisecond));
    first.clock->release();
    second.clock->release();
    for (std::thread &thread : threads)
        thread.join();
    QCOMPARE(counts[0], 500);
    QCOMPARE(counts[1], 10);
}

void SimulatedCameraThreadsTest::twoThreadsOneCamera()
{
    CameraSettings settings = smallCamera();
    settings.jitter = {0.3, 2500};
    CameraOnClock on(settings);
    QVERIFY(on.camera.writeParameter("imgdataformat", 7));
    Flag done;
    std::mutex mutex; // of the opening
    int captured = 0;
    std::thread reader([&, image = emptyImage()]() mutable {
        while (!done.isSet()) {
            std::unique_lock lock(mutex);
            const auto opening = on.opening;
            lock.unlock();
            captured += on.camera.captureImage(opening, 1ms, image) ? 1 : 0;
        }
    });
    for (int round = 0; round < 200; ++round) {
        QVERIFY(on.camera.startAcquisition());
        for (int i = 0; i < 6; ++i) {
            QVERIFY(on.counter(static_cast<ZU_COUNTER_SELECTOR>(i)) >= 0);
            QVERIFY(on.camera.isConnected());
            QVERIFY(!on.camera.parameters().empty());
            on.camera.ledger();
        }
        QVERIFY(on.camera.writeParameter("recent_frame", round % 2));
        if (round % 3 == 0) {
            on.camera.close();
            const std::lock_guard lock(mutex);
            on.opening = on.camera.open();
            QVERIFY(on.opening);
        } else {
            QVERIFY(on.camera.stopAcquisition());
        }
        QVERIFY(on.camera.writeParameter("width", round % 100 + 1));
    }
    QVERIFY(on.camera.startAcquisition());
    while (on.truth(LedgerEntryKind::Fetched) < 10)
        std::this_thread::yield();
    done.set();
    reader.join();
    QVERIFY(captured >= 10);
}

QTEST_APPLESS_MAIN(SimulatedCameraThreadsTest)
#include "SimulatedCameraThreadsTest.moc"
