#include "tests/measurement/EngineFixture.h"

#include <QMutexLocker>
#include <QtTest>

#include <atomic>
#include <thread>

using Line = CxCameraLineData;
using scripted::Function;

class MeasurementThreadsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void stopWaitsForTheCapture();
    void stopDuringAStop();
    void threadsOfTheCalls();
    void mutexDuringTheCalls();
    void twoEnginesAtOnce();
    void ownerReadsWhileTheLoopWrites_data();
    void ownerReadsWhileTheLoopWrites();
};

void MeasurementThreadsTest::stopWaitsForTheCapture()
{
    EngineFixture engine;
    std::atomic<bool> mayEnd{false};
    engine.host.endCapturesWhen(engine.camera, [&mayEnd] { return mayEnd.load(); });
    QVERIFY(engine.start());
    QVERIFY(engine.deliver(2));
    engine.host.clearCalls();

    std::atomic<bool> stopped{false};
    std::thread stopper([&] { stopped = engine.line->stopMeasurement(); });
    while (!engine.line->stopRequested)
        std::this_thread::yield();
    // The capture still waits, so nothing of the stop may have happened; the
    // mutex is free meanwhile.
    QVERIFY(engine.host.waitUntilStarved(engine.camera));
    QVERIFY(engine.calls().isEmpty());
    QVERIFY(engine.line->isMeasurementRunning());
    QVERIFY(!stopped);
    mayEnd = true;
    stopper.join();

    QVERIFY(stopped);
    QCOMPARE(engine.calls().mid(0, 2), QStringList({QStringLiteral("image failed"), QStringLiteral("stop")}));
    QCOMPARE(engine.line->frames.size(), 2);
}

void MeasurementThreadsTest::stopDuringAStop()
{
    EngineFixture engine;
    std::atomic<bool> mayEnd{false};
    engine.host.endCapturesWhen(engine.camera, [&mayEnd] { return mayEnd.load(); });
    QVERIFY(engine.start());
    QVERIFY(engine.deliver(0));
    std::thread stopper([&] { engine.line->stopMeasurement(); });
    while (!engine.line->stopRequested)
        std::this_thread::yield();
    QVERIFY(!engine.line->stopMeasurement()); // returns at once
    QVERIFY(!engine.line->startMeasurement(1, 1));
    mayEnd = true;
    stopper.join();
    QCOMPARE(engine.calls().count(QStringLiteral("stop")), 1);
}

void MeasurementThreadsTest::threadsOfTheCalls()
{
    for (MeasureMode mode : {MeasureModeThroughput, MeasureModeAcquisition}) {
        EngineFixture engine;
        engine.line->measureMode = mode;
        QVERIFY(engine.run(2, 512, 1000));
        std::thread::id capturing;
        for (const scripted::Call &call : engine.host.calls()) {
            const bool byTheLoop = call.function == Function::GetImage ||
                                   call.name == ZU_PRM_COUNTER_SELECTOR || call.name == ZU_PRM_COUNTER_VALUE;
            if (!byTheLoop) {
                QVERIFY2(call.thread == std::this_thread::get_id(), call.text().c_str());
                continue;
            }
            QVERIFY2(call.thread != std::this_thread::get_id(), call.text().c_str());
            if (capturing == std::thread::id())
                capturing = call.thread;
            QVERIFY(call.thread == capturing);
        }
        QVERIFY(capturing != std::thread::id());
    }
}

void MeasurementThreadsTest::mutexDuringTheCalls()
{
    for (MeasureMode mode : {MeasureModeThroughput, MeasureModeAcquisition}) {
        EngineFixture engine;
        engine.line->measureMode = mode;
        const std::thread::id owner = std::this_thread::get_id();
        std::atomic<int> unguarded{0};
        std::atomic<int> seen{0};
        engine.host.observe([&](const scripted::Call &) {
            ++seen;
            // Start and stop hold the mutex whenever they touch the camera. The
            // loop never does, but this thread could not tell it from the owner.
            if (std::this_thread::get_id() == owner && engine.line->mutex.tryLock()) {
                ++unguarded;
                engine.line->mutex.unlock();
            }
        });
        QVERIFY(engine.start());
        QVERIFY(engine.deliver(1));
        const int afterStart = seen;
        QVERIFY(afterStart > 20);
        QVERIFY(engine.line->mutex.tryLock()); // the capture waits without it
        engine.line->mutex.unlock();
        QVERIFY(engine.line->stopMeasurement());
        QVERIFY(seen > afterStart);
        QCOMPARE(unguarded.load(), 0);
    }
}

void MeasurementThreadsTest::twoEnginesAtOnce()
{
    EngineFixture engine;
    Line second;
    ZUCORE_HANDLE camera = engine.host.addCamera();
    second.cameraHandle = camera;
    second.measureMode = MeasureModeAcquisition;
    engine.host.endCapturesWhen(camera, [&second] { return second.stopRequested.load(); });

    QVERIFY(engine.start());
    QVERIFY(second.startMeasurement(512, 1000));
    engine.host.deliver(engine.camera, 40);
    engine.host.deliver(camera, 60);
    // The owner reads while both threads write.
    for (int i = 0; i < 200; ++i) {
        for (Line *line : {engine.line.get(), &second}) {
            const QMutexLocker locker(&line->mutex);
            QVERIFY(line->frames.size() <= 40 && line->counterData.size() <= 60);
            QVERIFY(line->statCount <= 60);
        }
    }
    QVERIFY(engine.host.waitUntilStarved(engine.camera));
    QVERIFY(engine.host.waitUntilStarved(camera));

    QVERIFY(engine.line->stopMeasurement());
    QVERIFY(second.isMeasurementRunning()); // untouched by the other's stop
    QVERIFY(engine.host.isStreaming(camera));
    engine.host.deliver(camera, 1);
    QVERIFY(engine.host.waitUntilStarved(camera));
    QVERIFY(second.stopMeasurement());

    QCOMPARE(engine.line->frames.size(), 40);
    QVERIFY(engine.line->counterData.isEmpty());
    QCOMPARE(second.counterData.size(), 61);
    QVERIFY(second.frames.isEmpty());
    for (const std::string &call : engine.host.cameraCalls(engine.camera))
        QVERIFY2(call.find("counter") == std::string::npos, call.c_str());
}

void MeasurementThreadsTest::ownerReadsWhileTheLoopWrites_data()
{
    QTest::addColumn<int>("mode");
    QTest::newRow("throughput") << 0;
    QTest::newRow("acquisition") << 1;
}

/// Long enough for both threads to meet in the record lists; the race checker
/// and the address checker judge.
void MeasurementThreadsTest::ownerReadsWhileTheLoopWrites()
{
    constexpr int frames = 500;
    QFETCH(int, mode);
    EngineFixture engine;
    engine.line->measureMode = MeasureMode(mode);
    engine.host.setImageSource(engine.camera, [count = 0U](ZU_IMG &image) mutable {
        static unsigned long long words[16];
        image.data = words;
        image.width = 64;
        image.height = 1;
        image.frameNumber = ++count;
        return true;
    });
    QVERIFY(engine.start(32, 40));
    engine.host.deliver(engine.camera, frames);

    quint64 newest = 0;
    quint64 sum = 0;
    int rounds = 0;
    while (newest < frames) {
        const int selector = ++rounds % 6;
        sum += quint64(engine.line->GetCounterValue(ZU_COUNTER_SELECTOR(selector)));
        const QMutexLocker locker(&engine.line->mutex);
        QVERIFY(engine.line->statCount <= frames);
        QVERIFY(engine.line->frames.size() <= 11 && engine.line->counterData.size() <= 41);
        for (const Line::CxFrameData *frame : qAsConst(engine.line->frames)) {
            sum += frame->samples[frame->sampleCount - 1];
            newest = frame->frameNumber;
        }
        for (const Line::CxCounterData *record : qAsConst(engine.line->counterData))
            newest = record->frameNumber;
        if (rounds % 64 == 0 && newest < frames)
            engine.line->clearData();
    }
    QCOMPARE(sum, quint64(0));
    QVERIFY(engine.line->stopMeasurement());
    QCOMPARE(engine.line->statCount, quint64(mode == 0 ? frames : frames - 1));
}

QTEST_APPLESS_MAIN(MeasurementThreadsTest)
#include "MeasurementThreadsTest.moc"
