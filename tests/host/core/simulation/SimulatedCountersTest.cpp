#include "SimulationTestHelpers.h"

#include <QTest>

using namespace host;
using Entry = LedgerEntryKind;

class SimulatedCountersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void queueKeepsTheOldest();
    void newestFrameDropsTheOlder();
    void pausedHostTakesNoFrame();
    void pauseBeyondTheTimeout();
    void overlapCounters();
    void overflowCounters();
    void lossyTransport();
    void damagedFramesArePaced();
    void countersRestartWithTheAcquisition();
    void ledgerAddsUp_data();
    void ledgerAddsUp();
};

void SimulatedCountersTest::queueKeepsTheOldest()
{
    CameraOnClock on(smallCamera());
    QVERIFY(on.camera.writeParameter("buffers_queue_size", 3));
    QVERIFY(on.camera.startAcquisition());
    // Frames arrive every 5000 ticks from 2500 on: 10 until here.
    on.clock->advance(50'000);
    QCOMPARE(on.counter(ZU_CNT_SEL_TRANSFERRED), std::int64_t{3});
    QCOMPARE(on.counter(ZU_CNT_SEL_API_SKIP), std::int64_t{7});
    for (const std::uint32_t number : {0U, 1U, 2U, 10U}) {
        QVERIFY(on.capture());
        QCOMPARE(on.image.frameNumber, number);
    }
    QCOMPARE(on.clock->now(), Ticks{52'500});
    QCOMPARE(on.counter(ZU_CNT_SEL_TRANSFERRED), std::int64_t{4});
}

void SimulatedCountersTest::newestFrameDropsTheOlder()
{
    CameraOnClock on(smallCamera());
    QVERIFY(on.camera.writeParameter("buffers_queue_size", 20));
    QVERIFY(on.camera.startAcquisition());
    QVERIFY(on.camera.writeParameter("recent_frame", 1));
    on.clock->advance(50'000);
    QVERIFY(on.capture());
    QCOMPARE(on.image.frameNumber, 9U);
    QCOMPARE(on.counter(ZU_CNT_SEL_TRANSFERRED), std::int64_t{10});
    QCOMPARE(on.counter(ZU_CNT_SEL_API_SKIP), std::int64_t{9});
    QVERIFY(on.capture());
    QCOMPARE(on.image.frameNumber, 10U);
    QCOMPARE(on.counter(ZU_CNT_SEL_API_SKIP), std::int64_t{9});
}

void SimulatedCountersTest::pausedHostTakesNoFrame()
{
    CameraSettings settings = smallCamera();
    settings.faults.hostPauses = {{10'000, 100'000, 40'000, 1.0}, {15'000, 0, 1'000, 1.0}};
    CameraOnClock on(settings);
    QVERIFY(on.camera.writeParameter("buffers_queue_size", 3));
    QVERIFY(on.camera.startAcquisition());
    // Frames arrive every 5000 ticks from 2500 on; 2, 3 and 4 wait through the
    // pause, five more come meanwhile.
    for (const std::uint32_t number : {0U, 1U, 2U}) {
        QVERIFY(on.capture());
        QCOMPARE(on.image.frameNumber, number);
    }
    QCOMPARE(on.clock->now(), Ticks{50'000});
    QCOMPARE(on.counter(ZU_CNT_SEL_API_SKIP), std::int64_t{5});
    for (const std::uint32_t number : {3U, 4U, 10U}) {
        QVERIFY(on.capture());
        QCOMPARE(on.image.frameNumber, number);
    }
    QCOMPARE(on.clock->now(), Ticks{52'500});
    on.clock->advance(110'000 - on.clock->now());
    QVERIFY(on.capture());
    QCOMPARE(on.clock->now(), Ticks{150'000});
}

void SimulatedCountersTest::pauseBeyondTheTimeout()
{
    CameraSettings settings = smallCamera();
    settings.faults.hostPauses = {{0, 0, 10 * TicksPerMillisecond, 1.0}};
    CameraOnClock on(settings);
    QVERIFY(on.camera.startAcquisition());
    QVERIFY(!on.capture(std::chrono::milliseconds(4)));
    QCOMPARE(on.clock->now(), 4 * TicksPerMillisecond);
    QVERIFY(on.capture(std::chrono::milliseconds(6)));
    QCOMPARE(on.clock->now(), 10 * TicksPerMillisecond);
}

void SimulatedCountersTest::overlapCounters()
{
    CameraSettings settings = smallCamera();
    settings.frameRate = 250'000.0; // every 1000 ticks, a readout takes 2000
    settings.linkMBps = 400.0;
    CameraOnClock on(settings);
    QVERIFY(on.camera.startAcquisition());
    on.clock->advance(100'999);
    QCOMPARE(on.counter(ZU_CNT_SEL_MISSED_TRG_OVERLAP), std::int64_t{50});
    QCOMPARE(on.truth(Entry::TriggerAccepted), std::int64_t{51});
    QCOMPARE(on.counter(ZU_CNT_SEL_MISSED_TRG_OVERFLOW), std::int64_t{0});
    QCOMPARE(on.counter(ZU_CNT_SEL_BUFFER_OVERFLOW), std::int64_t{0});
    QVERIFY(on.capture());
    QVERIFY(on.capture());
    QCOMPARE(on.image.frameNumber, 1U); // missed triggers leave no gap
}

void SimulatedCountersTest::overflowCounters()
{
    CameraSettings settings = smallCamera();
    settings.frameRate = 100'000.0;
    settings.internalBufferBytes = 500;
    settings.stalls = {{0, 0, 10'000, 1.0}};
    CameraOnClock on(settings);
    QVERIFY(on.camera.startAcquisition());
    QVERIFY(on.capture());
    QCOMPARE(on.image.frameNumber, 1U);
    QCOMPARE(on.clock->now(), Ticks{15'000});
    QCOMPARE(on.counter(ZU_CNT_SEL_BUFFER_OVERFLOW), std::int64_t{1});
    QCOMPARE(on.counter(ZU_CNT_SEL_MISSED_TRG_OVERFLOW), std::int64_t{4});
    QCOMPARE(on.counter(ZU_CNT_SEL_MISSED_TRG_OVERLAP), std::int64_t{0});
    QCOMPARE(on.counter(ZU_CNT_SEL_TRANSFERRED), std::int64_t{1});
    const Ledger ledger = on.camera.ledger();
    QCOMPARE(ledger.entries()[1].tick, Ticks{1001});
    QVERIFY(ledger.entries()[1].kind == Entry::BufferOverflow);
}

void SimulatedCountersTest::lossyTransport()
{
    CameraSettings settings = smallCamera();
    settings.faults.transportLoss = 0.25;
    CameraOnClock on(settings);
    QVERIFY(on.camera.startAcquisition());
    std::uint32_t next = 0;
    std::int64_t gaps = 0;
    for (int i = 0; i < 1000; ++i) {
        QVERIFY(on.capture());
        gaps += on.image.frameNumber - next;
        next = on.image.frameNumber + 1;
    }
    QCOMPARE(on.counter(ZU_CNT_SEL_TRANSPORT_SKIP), gaps);
    QCOMPARE(on.truth(Entry::TransportSkip), gaps);
    // expected 333, standard deviation 21
    QVERIFY2(gaps > 230 && gaps < 440, qPrintable(QString::number(gaps)));
    QCOMPARE(on.counter(ZU_CNT_SEL_API_SKIP), std::int64_t{0});
}

void SimulatedCountersTest::damagedFramesArePaced()
{
    CameraSettings settings = smallCamera();
    settings.faults.captureFailureEvery = 3;
    CameraOnClock on(settings);
    QVERIFY(on.camera.startAcquisition());
    for (std::uint32_t frame = 0; frame < 9; ++frame) {
        QCOMPARE(on.capture(), frame % 3 != 2);
        QCOMPARE(on.clock->now(), Ticks{frame} * 5000 + 2500);
        if (frame % 3 != 2)
            QCOMPARE(on.image.frameNumber, frame);
    }
    QCOMPARE(on.counter(ZU_CNT_SEL_TRANSFERRED), std::int64_t{9});
    QCOMPARE(on.truth(Entry::Damaged), std::int64_t{3});
}

void SimulatedCountersTest::countersRestartWithTheAcquisition()
{
    CameraOnClock on(smallCamera());
    QVERIFY(on.camera.startAcquisition());
    QVERIFY(on.capture());
    QVERIFY(on.capture());
    QVERIFY(on.camera.stopAcquisition());
    QCOMPARE(on.counter(ZU_CNT_SEL_TRANSFERRED), std::int64_t{2});
    on.clock->advance(100'000);
    QCOMPARE(on.counter(ZU_CNT_SEL_TRANSFERRED), std::int64_t{2});
    QVERIFY(on.camera.startAcquisition());
    QCOMPARE(on.counter(ZU_CNT_SEL_TRANSFERRED), std::int64_t{0});
    QVERIFY(on.capture());
    QCOMPARE(on.image.frameNumber, 0U);
}

void SimulatedCountersTest::ledgerAddsUp_data()
{
    QTest::addColumn<int>("format");
    QTest::newRow("normal") << 0;
    QTest::newRow("transport data") << 7;
}

void SimulatedCountersTest::ledgerAddsUp()
{
    QFETCH(int, format);
    CameraSettings settings = smallCamera();
    settings.frameRate = 130'000.0;
    settings.internalBufferBytes = 4000;
    settings.jitter = {0.5, 10'000};
    settings.stalls = {{5000, 60'000, 20'000, 1.0}};
    settings.faults.transportLoss = 0.1;
    settings.faults.captureFailureEvery = 7;
    CameraOnClock on(settings);
    QVERIFY(on.camera.writeParameter("imgdataformat", format));
    QVERIFY(on.camera.startAcquisition());
    std::int64_t delivered = 0;
    for (int i = 0; i < 500; ++i) {
        delivered += on.capture() ? 1 : 0;
        on.clock->advance(i % 50 == 0 ? 40'000 : 0);
    }
    const Ledger truth = on.camera.ledger();
    const Ticks end = on.clock->now();
    QCOMPARE(truth.count(Entry::Fetched), delivered);
    QCOMPARE(truth.count(Entry::Fetched) + truth.count(Entry::Damaged), std::int64_t{500});
    const std::int64_t triggers = truth.count(Entry::TriggerAccepted) + truth.count(Entry::MissedOverlap) +
                                  truth.count(Entry::MissedOverflow);
    QCOMPARE(triggers, end * 130'000 / TicksPerSecond + 1);
    const std::int64_t ended = truth.count(Entry::BufferOverflow) + truth.count(Entry::TransportSkip) +
                               truth.count(Entry::Transferred) + truth.count(Entry::ApiSkip);
    const std::int64_t onTheWay = truth.count(Entry::TriggerAccepted) - ended;
    QVERIFY(onTheWay >= 0 && onTheWay < 50);
    QVERIFY(truth.count(Entry::ApiSkip) > 0 && truth.count(Entry::TransportSkip) > 0);
    QVERIFY(truth.count(Entry::MissedOverlap) > 0);
    QCOMPARE(truth.count(Entry::BufferOverflow) > 0, format == 0);
    for (int selector = 0; selector < 6; ++selector) {
        const auto counter = static_cast<ZU_COUNTER_SELECTOR>(selector);
        QCOMPARE(on.counter(counter), truth.counter(counter));
    }
    std::int64_t entries = 0;
    for (int kind = 0; kind < LedgerEntryKindCount; ++kind)
        entries += truth.count(static_cast<Entry>(kind));
    QCOMPARE(static_cast<std::int64_t>(truth.entries().size()), entries);
    QVERIFY(std::ranges::is_sorted(truth.entries(), {}, &LedgerEntry::tick));
}

QTEST_APPLESS_MAIN(SimulatedCountersTest)
#include "SimulatedCountersTest.moc"
