#include "host/core/simulation/SensorPipeline.h"
#include "host/core/simulation/TransportPipeline.h"

#include <QTest>

#include <random>

using namespace host;
using Kind = PipelineEvent::Kind;

namespace {

using Events = std::vector<PipelineEvent>;

QByteArray toText(const Events &events)
{
    static const char *const names[] = {"accepted", "overlap", "overflow", "aborted", "lost", "arrival"};
    QByteArray text;
    for (const PipelineEvent &event : events)
        text += QByteArray::number(qint64{event.tick}) + ' ' + names[static_cast<int>(event.kind)] + ' ' +
                QByteArray::number(event.frame.number) + '\n';
    return text;
}

Events run(FramePipeline &pipeline, Ticks end)
{
    std::deque<PipelineEvent> events;
    while (pipeline.time() <= end)
        pipeline.step(events);
    Events result;
    for (const PipelineEvent &event : events) {
        if (event.tick <= end)
            result.push_back(event);
    }
    return result;
}

CameraSettings link(double megabytesPerSecond)
{
    CameraSettings settings;
    settings.linkMBps = megabytesPerSecond;
    return settings;
}

/// 1000 bytes a frame, 100 a line, read out in 2000 ticks, every 2500 ticks.
SensorTiming timing(std::int64_t bufferBytes)
{
    return {100'000.0, 125'000'000, 1000, 100, bufferBytes};
}

/// The fluid queue one tick after the other.
Events naiveSensor(const LinkModel &model, const SensorTiming &timing, Ticks end)
{
    struct Frame
    {
        std::uint32_t number;
        WideAmount left;
        bool complete;
        bool aborted;
    };
    Events events;
    std::deque<Frame> frames;
    TriggerSchedule triggers(timing.frameRate);
    const WideAmount capacity = static_cast<WideAmount>(timing.bufferBytes) * AmountPerByte;
    WideAmount level = 0;
    std::int64_t toRead = 0;
    std::uint32_t number = 0;
    bool overrun = false;
    for (Ticks t = 0;; ++t) {
        if (t == triggers.next()) {
            triggers.advance();
            if (toRead == 0 && (level == 0 || capacity - level >=
                                                  static_cast<WideAmount>(timing.frameBytes) * AmountPerByte))
                overrun = false;
            if (toRead > 0) {
                events.push_back({t, Kind::MissedOverlap, {number, {}}});
            } else if (overrun ||
                       capacity - level < static_cast<WideAmount>(timing.lineBytes) * AmountPerByte) {
                events.push_back({t, Kind::MissedOverflow, {number, {}}});
            } else {
                events.push_back({t, Kind::TriggerAccepted, {number, {}}});
                frames.push_back({number++, 0, false, false});
                toRead = timing.frameBytes * AmountPerByte;
            }
        }
        if (t == end)
            return events;
        const std::int64_t in = std::min(timing.readoutRate, toRead);
        toRead -= in;
        if (in > 0) {
            frames.back().left += in;
            frames.back().complete = toRead == 0;
        }
        WideAmount out = std::min<WideAmount>(model.rateAt(t), level + in);
        level += in - out;
        if (level > capacity) {
            events.push_back({t + 1, Kind::BufferOverflow, {frames.back().number, {}}});
            frames.back().left -= level - capacity;
            level = capacity;
            overrun = true;
            frames.back().complete = frames.back().aborted = true;
            toRead = 0;
        }
        while (!frames.empty()) {
            const WideAmount taken = std::min(out, frames.front().left);
            frames.front().left -= taken;
            out -= taken;
            if (!frames.front().complete || frames.front().left > 0)
                break;
            if (!frames.front().aborted)
                events.push_back({t + 1, Kind::Arrival, {frames.front().number, {}}});
            frames.pop_front();
        }
    }
}

/// The generator on the link, one tick after the other.
Events naiveTransport(const LinkModel &model, double frameRate, std::int64_t frameBytes, Ticks end)
{
    Events events;
    TriggerSchedule triggers(frameRate);
    WideAmount left = 0;
    bool pending = false;
    std::uint32_t number = 0;
    std::uint32_t sending = 0;
    for (Ticks t = 0;; ++t) {
        if (t == triggers.next()) {
            triggers.advance();
            if (left > 0 && pending) {
                events.push_back({t, Kind::MissedOverlap, {number, {}}});
            } else {
                events.push_back({t, Kind::TriggerAccepted, {number++, {}}});
                pending = left > 0;
                if (!pending) {
                    sending = number - 1;
                    left = frameBytes * AmountPerByte;
                }
            }
        }
        if (t == end)
            return events;
        WideAmount out = model.rateAt(t);
        while (left > 0 && out > 0) {
            const WideAmount taken = std::min(out, left);
            left -= taken;
            out -= taken;
            if (left > 0)
                break;
            events.push_back({t + 1, Kind::Arrival, {sending, {}}});
            if (pending) {
                pending = false;
                sending = number - 1;
                left = frameBytes * AmountPerByte;
            }
        }
    }
}

LinkModel randomLink(std::mt19937 &random)
{
    const auto pick = [&random](int low, int high) {
        return std::uniform_int_distribution<int>(low, high)(random);
    };
    CameraSettings settings = link(pick(20, 400));
    if (pick(0, 1) != 0)
        settings.jitter = {pick(1, 10) / 10.0, pick(2500, 9000)};
    for (int stalls = pick(0, 2); stalls > 0; --stalls)
        settings.stalls.push_back(
            {pick(0, 20'000), pick(0, 1) * pick(9'000, 50'000), pick(1, 9'000), pick(1, 4) / 4.0});
    return {settings, random(), 0};
}

} // namespace

class FramePipelinesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void triggersCome_data();
    void triggersCome();
    void transportFramesWaitForTheLink();
    void transportStartsShareATick();
    void transportStandsStill();
    void sensorFramePassesAFastLink();
    void sensorFrameWaitsForASlowLink();
    void triggerDuringReadoutIsMissed();
    void fullBufferAbortsAndMisses();
    void overrunBufferOpensForAWholeFrame();
    void frameThatJustFitsIsNotAborted();
    void bufferedFramesComeInTheirOrder();
    void sensorEqualsTheNaiveModel_data();
    void sensorEqualsTheNaiveModel();
    void transportEqualsTheNaiveModel_data();
    void transportEqualsTheNaiveModel();
};

void FramePipelinesTest::triggersCome_data()
{
    QTest::addColumn<double>("rate");
    QTest::addColumn<int>("index");
    QTest::addColumn<qint64>("tick");
    QTest::newRow("first") << 40.0 << 0 << qint64{0};
    QTest::newRow("whole ticks") << 40.0 << 3 << qint64{18'750'000};
    QTest::newRow("rounded up") << 30.0 << 1 << qint64{8'333'334};
    QTest::newRow("no drift") << 30.0 << 3'000'000 << qint64{25'000'000'000'000};
    QTest::newRow("once in 1000 s") << 0.001 << 1 << qint64{250'000'000'000};
}

void FramePipelinesTest::triggersCome()
{
    QFETCH(double, rate);
    QFETCH(int, index);
    TriggerSchedule triggers(rate);
    for (int i = 0; i < index; ++i)
        triggers.advance();
    QTEST(qint64{triggers.next()}, "tick");
}

void FramePipelinesTest::transportFramesWaitForTheLink()
{
    // 2000 bytes take 5000 ticks, triggers come every 2500.
    const LinkModel model(link(100.0), 1, 0);
    TransportPipeline pipeline(model, 100'000.0, 2000);
    QCOMPARE(toText(run(pipeline, 15'000)), QByteArray("0 accepted 0\n"
                                                       "2500 accepted 1\n"
                                                       "5000 arrival 0\n"
                                                       "5000 accepted 2\n"
                                                       "7500 overlap 3\n"
                                                       "10000 arrival 1\n"
                                                       "10000 accepted 3\n"
                                                       "12500 overlap 4\n"
                                                       "15000 arrival 2\n"
                                                       "15000 accepted 4\n"));
}

void FramePipelinesTest::transportStartsShareATick()
{
    // 2 bytes take 1.25 ticks at 400 MB/s; a trigger every second tick keeps
    // one waiting at most.
    const LinkModel model(link(400.0), 1, 0);
    TransportPipeline fast(model, 125'000'000.0, 2);
    QCOMPARE(toText(run(fast, 4)),
             QByteArray("0 accepted 0\n2 arrival 0\n2 accepted 1\n4 arrival 1\n4 accepted 2\n"));

    // 10 bytes take 6.25 ticks, a trigger every 5: the second frame begins a
    // quarter into tick 6.
    TransportPipeline pipeline(model, 50'000'000.0, 10);
    const Events events = run(pipeline, 13);
    QCOMPARE(toText(events),
             QByteArray("0 accepted 0\n5 accepted 1\n7 arrival 0\n10 accepted 2\n13 arrival 1\n"));
    QCOMPARE(events[4].frame.begin.tick, Ticks{6});
    QCOMPARE(events[4].frame.begin.lead, Amount{100'000'000});
}

void FramePipelinesTest::transportStandsStill()
{
    CameraSettings settings = link(100.0);
    settings.stalls = {{1000, 0, 3000, 1.0}};
    const LinkModel model(settings, 1, 0);
    TransportPipeline pipeline(model, 10'000.0, 2000);
    QCOMPARE(toText(run(pipeline, 8000)), QByteArray("0 accepted 0\n8000 arrival 0\n"));
}

void FramePipelinesTest::sensorFramePassesAFastLink()
{
    const LinkModel model(link(200.0), 1, 0);
    SensorPipeline pipeline(model, timing(1000));
    QCOMPARE(toText(run(pipeline, 4500)),
             QByteArray("0 accepted 0\n2000 arrival 0\n2500 accepted 1\n4500 arrival 1\n"));
}

void FramePipelinesTest::sensorFrameWaitsForASlowLink()
{
    // 1000 bytes at 0.3 bytes a tick: 3333.3 ticks; the second follows at once.
    const LinkModel model(link(75.0), 1, 0);
    SensorPipeline pipeline(model, timing(5000));
    QCOMPARE(toText(run(pipeline, 7000)),
             QByteArray("0 accepted 0\n2500 accepted 1\n3334 arrival 0\n5000 accepted 2\n6667 arrival 1\n"));
}

void FramePipelinesTest::triggerDuringReadoutIsMissed()
{
    const LinkModel model(link(400.0), 1, 0);
    SensorTiming fast = timing(1000);
    fast.frameRate = 250'000'000.0 / 1800.0; // every 1800 ticks, a readout takes 2000
    SensorPipeline pipeline(model, fast);
    QCOMPARE(toText(run(pipeline, 9000)), QByteArray("0 accepted 0\n"
                                                     "1800 overlap 1\n"
                                                     "2000 arrival 0\n"
                                                     "3600 accepted 1\n"
                                                     "5400 overlap 2\n"
                                                     "5600 arrival 1\n"
                                                     "7200 accepted 2\n"
                                                     "9000 overlap 3\n"));

    // A trigger in the tick in which the readout ends is in time.
    fast.frameRate = 125'000.0;
    SensorPipeline exact(model, fast);
    QCOMPARE(toText(run(exact, 4000)), QByteArray("0 accepted 0\n2000 arrival 0\n2000 accepted 1\n"
                                                  "4000 arrival 1\n4000 accepted 2\n"));
}

void FramePipelinesTest::fullBufferAbortsAndMisses()
{
    // Nothing leaves before tick 10000; 500 bytes fit, full after 1000 ticks.
    CameraSettings settings = link(100.0);
    settings.stalls = {{0, 0, 10'000, 1.0}};
    const LinkModel model(settings, 1, 0);
    SensorPipeline pipeline(model, timing(500));
    // The rest of frame 0 leaves until 11250; frame 1 fills by 0.1 bytes a tick.
    QCOMPARE(toText(run(pipeline, 15'000)), QByteArray("0 accepted 0\n"
                                                       "1001 aborted 0\n"
                                                       "2500 overflow 1\n"
                                                       "5000 overflow 1\n"
                                                       "7500 overflow 1\n"
                                                       "10000 overflow 1\n"
                                                       "12500 accepted 1\n"
                                                       "15000 arrival 1\n"
                                                       "15000 accepted 2\n"));
}

void FramePipelinesTest::overrunBufferOpensForAWholeFrame()
{
    // The link takes half of what the sensor makes: 0.2 bytes a tick out, 0.5 in.
    const LinkModel model(link(50.0), 1, 0);
    SensorPipeline pipeline(model, timing(2000));
    // A trigger that finds room for some lines only would lead to the next
    // aborted frame, and so on for ever.
    const Events events = run(pipeline, 200'000);
    const auto count = [&](Kind kind) {
        return std::ranges::count_if(events,
                                     [kind](const PipelineEvent &event) { return event.kind == kind; });
    };
    QVERIFY(count(Kind::BufferOverflow) > 0);
    QVERIFY(count(Kind::MissedOverflow) > 0);
    // What the link carries in that time, less the parts of aborted frames.
    QVERIFY2(count(Kind::Arrival) > 20, toText(events).constData());
}

void FramePipelinesTest::frameThatJustFitsIsNotAborted()
{
    CameraSettings settings = link(400.0);
    settings.stalls = {{0, 0, 3000, 1.0}};
    const LinkModel model(settings, 1, 0);
    SensorPipeline fits(model, timing(1000));
    QCOMPARE(toText(run(fits, 4000)), QByteArray("0 accepted 0\n2500 overflow 1\n3625 arrival 0\n"));
    SensorPipeline tooSmall(model, timing(999));
    QCOMPARE(toText(run(tooSmall, 4000)), QByteArray("0 accepted 0\n1999 aborted 0\n2500 overflow 1\n"));
    // The readout's last tick is one in part only: 1000 bytes at 0.52 a tick.
    SensorTiming uneven = timing(1000);
    uneven.readoutRate = 130'000'000;
    SensorPipeline fitsUnevenly(model, uneven);
    QCOMPARE(toText(run(fitsUnevenly, 4000)), QByteArray("0 accepted 0\n2500 overflow 1\n3625 arrival 0\n"));
    // A line must fit for a trigger to count.
    SensorPipeline line(model, timing(1100));
    QCOMPARE(toText(run(line, 2800)), QByteArray("0 accepted 0\n2500 accepted 1\n2701 aborted 1\n"));
}

void FramePipelinesTest::bufferedFramesComeInTheirOrder()
{
    // Three frames wait for the stall's end and then leave 2500 ticks apart.
    CameraSettings settings = link(100.0);
    settings.stalls = {{0, 0, 7400, 1.0}};
    const LinkModel model(settings, 1, 0);
    SensorTiming slow = timing(100'000);
    slow.frameRate = 100'000.0;
    SensorPipeline pipeline(model, slow);
    Events arrivals = run(pipeline, 15'000);
    std::erase_if(arrivals, [](const PipelineEvent &event) { return event.kind != Kind::Arrival; });
    QCOMPARE(toText(arrivals), QByteArray("9900 arrival 0\n12400 arrival 1\n14900 arrival 2\n"));
}

void FramePipelinesTest::sensorEqualsTheNaiveModel_data()
{
    QTest::addColumn<int>("seed");
    for (int seed = 0; seed < 40; ++seed)
        QTest::addRow("seed %d", seed) << seed;
}

void FramePipelinesTest::sensorEqualsTheNaiveModel()
{
    QFETCH(int, seed);
    std::mt19937 random(static_cast<unsigned>(seed));
    const auto pick = [&random](int low, int high) {
        return std::uniform_int_distribution<int>(low, high)(random);
    };
    const LinkModel model = randomLink(random);
    const SensorTiming settings{static_cast<double>(pick(20'000, 200'000)),
                                pick(20, 400) * std::int64_t{999'983}, pick(1, 3000), pick(1, 200),
                                pick(0, 5000)};
    SensorPipeline pipeline(model, settings);
    const Events expected = naiveSensor(model, settings, 200'000);
    QVERIFY(expected.size() > 10);
    QCOMPARE(toText(run(pipeline, 200'000)), toText(expected));
}

void FramePipelinesTest::transportEqualsTheNaiveModel_data()
{
    sensorEqualsTheNaiveModel_data();
}

void FramePipelinesTest::transportEqualsTheNaiveModel()
{
    QFETCH(int, seed);
    std::mt19937 random(static_cast<unsigned>(seed));
    const LinkModel model = randomLink(random);
    const double rate = std::uniform_int_distribution<int>(20'000, 200'000)(random);
    const std::int64_t bytes = 2 * std::uniform_int_distribution<int>(1, 1500)(random);
    TransportPipeline pipeline(model, rate, bytes);
    const Events expected = naiveTransport(model, rate, bytes, 200'000);
    QVERIFY(expected.size() > 10);
    QCOMPARE(toText(run(pipeline, 200'000)), toText(expected));
}

QTEST_APPLESS_MAIN(FramePipelinesTest)
#include "FramePipelinesTest.moc"
