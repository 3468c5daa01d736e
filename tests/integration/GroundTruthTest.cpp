// The tool's four statistics against what the simulated link physically did.
// Expected values come from the scenario's numbers alone, or from the link's
// exact rate over time; nothing of the engine's arithmetic is used for them.

#include "host/core/simulation/Scenario.h"
#include "tests/integration/SimulatedRig.h"

#include <QtTest>

#include <algorithm>
#include <cmath>
#include <functional>

namespace {

using host::CameraSettings;
using host::JitterSettings;
using host::LinkModel;
using host::StallSettings;
using host::Ticks;
using host::TicksPerMicrosecond;
using host::TicksPerMillisecond;
using host::TicksPerSecond;

constexpr unsigned int sampleInterval = 4096;
constexpr double frameBytes = 4096.0 * 2048.0 * 2.0;
constexpr double runSeconds = 2.0;

struct Truth
{
    double avgMBps = 0.0;
    double minMBps = 0.0;
    double maxLevelBytes = 0.0;
    quint64 overflows = 0;
    int frames = 0; ///< that arrived during the run
};

using TruthOf = std::function<Truth(const LinkModel &)>;

CameraSettings camera(double linkMBps, double requiredMBps, double bufferMB, double frameRate)
{
    CameraSettings settings;
    settings.serial = "T-1";
    settings.width = 4096;
    settings.height = 2048;
    settings.linkMBps = linkMBps;
    settings.requiredMBps = requiredMBps;
    settings.internalBufferBytes = static_cast<std::int64_t>(bufferMB * 1e6);
    settings.frameRate = frameRate;
    return settings;
}

/// Frames whose last byte has arrived when the run ends, with a transfer of
/// `transferMs` that starts with every trigger.
int completeFrames(double frameRate, double transferMs)
{
    return static_cast<int>(std::floor((runSeconds - transferMs / 1000.0) * frameRate)) + 1;
}

/// Highest level of an endless buffer that starts empty with each frame, filled
/// at `requiredMBps` and drained by the link: the integral of the difference.
double highestLevel(const LinkModel &link, double requiredMBps, double frameRate, int frames)
{
    double highest = 0.0;
    for (int frame = 0; frame < frames; ++frame) {
        Ticks t = static_cast<Ticks>(frame * TicksPerSecond / frameRate);
        const Ticks end =
            link.timeWhenSent(t, static_cast<std::int64_t>(frameBytes), t + TicksPerSecond).value();
        double level = 0.0;
        while (t < end) {
            const LinkModel::Segment segment = link.segmentFrom(t);
            const Ticks next = std::min(segment.end, end);
            const double microseconds = static_cast<double>(next - t) / TicksPerMicrosecond;
            const double linkMBps = static_cast<double>(segment.rate) / 1e6;
            level = std::max(0.0, level + microseconds * (requiredMBps - linkMBps));
            highest = std::max(highest, level);
            t = next;
        }
    }
    return highest;
}

StallSettings stall(double startMs, double periodMs, double lengthMs)
{
    const auto ticks = [](double ms) { return static_cast<Ticks>(ms * TicksPerMillisecond); };
    return {ticks(startMs), ticks(periodMs), ticks(lengthMs), 1.0};
}

/// A frame's bytes over the time it takes at `linkMBps` and standing still.
double frameRateMBps(double linkMBps, double stillMs)
{
    return frameBytes / (frameBytes / linkMBps + stillMs * 1000.0);
}

/// The lowest rate over one sample interval in which the link stands still.
double intervalMBps(double linkMBps, double stillMs)
{
    return sampleInterval / (sampleInterval / linkMBps + stillMs * 1000.0);
}

void addRow(const char *name, const CameraSettings &settings, bool reset, const TruthOf &truth)
{
    QTest::newRow(name) << settings << reset << truth;
}

} // namespace

Q_DECLARE_METATYPE(host::CameraSettings)
Q_DECLARE_METATYPE(TruthOf)

class GroundTruthTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void statistics_data();
    void statistics();
    void readyStallsRunOver();
};

void GroundTruthTest::statistics_data()
{
    QTest::addColumn<CameraSettings>("settings");
    QTest::addColumn<bool>("reset");
    QTest::addColumn<TruthOf>("truthOf");

    for (const bool reset : {true, false}) {
        addRow(reset ? "link faster than required" : "link faster than required, level carried",
               camera(500, 400, 4, 20), reset, [](const LinkModel &) {
                   return Truth{500, 500, 0, 0, completeFrames(20, 33.554)};
               });
    }

    addRow("link slower than required", camera(300, 400, 8, 15), true, [](const LinkModel &) {
        return Truth{300, 300, frameBytes * (400.0 / 300.0 - 1.0), 0, completeFrames(15, 55.924)};
    });

    CameraSettings stalls = camera(500, 400, 2, 20);
    stalls.stalls = {stall(10, 50, 0.5)};
    addRow("short stalls", stalls, true, [](const LinkModel &) {
        return Truth{frameRateMBps(500, 0.5), intervalMBps(500, 0.5), 500 * 400.0, 0,
                     completeFrames(20, 34.054)};
    });

    CameraSettings halved = camera(500, 400, 2, 20);
    halved.stalls = {stall(10, 50, 4)};
    halved.stalls.front().depth = 0.5;
    addRow("link at half speed for a while", halved, true, [](const LinkModel &) {
        return Truth{frameRateMBps(500, 2), 250, 4000 * (400.0 - 250.0), 0, completeFrames(20, 35.554)};
    });

    CameraSettings late = camera(500, 400, 4, 20);
    late.stalls = {stall(30, 50, 2)};
    addRow("stall late in each frame, level carried", late, false, [](const LinkModel &) {
        // The rest of the frame and the pause behind it empty the buffer again.
        return Truth{frameRateMBps(500, 2), intervalMBps(500, 2), 2000 * 400.0, 0,
                     completeFrames(20, 35.554)};
    });

    CameraSettings longStall = camera(500, 400, 4, 20);
    longStall.stalls = {stall(1010, 0, 20)};
    for (const bool reset : {true, false}) {
        addRow(reset ? "one long stall overflows the buffer"
                     : "one long stall overflows the buffer, level carried",
               longStall, reset, [](const LinkModel &) {
                   const int frames = completeFrames(20, 33.554);
                   const double avg = ((frames - 1) * 500.0 + frameRateMBps(500, 20)) / frames;
                   return Truth{avg, intervalMBps(500, 20), 4e6, 1, frames};
               });
    }

    CameraSettings jitter = camera(500, 450, 1, 20);
    jitter.jitter = JitterSettings{0.2, 100 * TicksPerMicrosecond};
    addRow("jitter", jitter, true, [](const LinkModel &link) {
        const int frames = completeFrames(20, 33.554);
        return Truth{500, 400, highestLevel(link, 450, 20, frames), 0, frames};
    });

    addRow("back-to-back frames", camera(400, 360, 2, 100), false, [](const LinkModel &) {
        return Truth{400, 400, 0, 0, static_cast<int>(runSeconds * 400e6 / frameBytes)};
    });
    addRow("back-to-back frames on a slow link", camera(300, 400, 8, 100), true, [](const LinkModel &) {
        return Truth{300, 300, frameBytes / 3.0, 0, static_cast<int>(runSeconds * 300e6 / frameBytes)};
    });
}

void GroundTruthTest::statistics()
{
    QFETCH(CameraSettings, settings);
    QFETCH(bool, reset);
    QFETCH(TruthOf, truthOf);

    SimulatedRig rig(settings);
    QVERIFY(rig.handle());
    QVERIFY(rig.measure(runSeconds, sampleInterval));
    QVERIFY(rig.calculateStatistics(reset));
    const CxCameraLineData &line = rig.line();
    const Truth truth = truthOf(rig.camera().link());

    const auto near = [](const char *what, double measured, double expected, double tolerance) {
        const bool ok = std::abs(measured - expected) <= tolerance;
        if (!ok)
            qWarning("%s: measured %.9g, true %.9g", what, measured, expected);
        return ok;
    };
    QCOMPARE(line.frames.size(), truth.frames);
    QCOMPARE(line.avgTransportSpeedMBps, static_cast<unsigned int>(settings.requiredMBps));
    QCOMPARE(line.internalBuffSize, static_cast<quint64>(settings.internalBufferBytes));
    QVERIFY(near("average MB/s", line.avgThroughput, truth.avgMBps, 0.01 * truth.avgMBps));
    QVERIFY(near("minimum MB/s", line.minThroughput, truth.minMBps, 0.01 * truth.minMBps));
    const double levelBytes = line.maxBufferLevel / 100.0 * static_cast<double>(settings.internalBufferBytes);
    QVERIFY(near("highest level, bytes", levelBytes, truth.maxLevelBytes,
                 std::max(0.01 * truth.maxLevelBytes, double(sampleInterval))));
    QCOMPARE(line.bufferOverflowCount, truth.overflows);
}

/// Each standstill of the ready scenario falls into a frame: between two of them
/// no stamp would tell of it.
void GroundTruthTest::readyStallsRunOver()
{
    const host::Scenario scenario = *host::builtinScenario("long-stall-overflow").scenario;
    SimulatedRig rig(scenario.cameras.front());
    QVERIFY(rig.measure(3.05, sampleInterval));
    QVERIFY(rig.calculateStatistics(false));
    QCOMPARE(rig.line().bufferOverflowCount, Q_UINT64_C(3));
    QCOMPARE(rig.line().maxBufferLevel, 100.0);
    QVERIFY(rig.line().minThroughput < 1.0);
}

QTEST_GUILESS_MAIN(GroundTruthTest)
#include "GroundTruthTest.moc"
