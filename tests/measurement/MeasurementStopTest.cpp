#include "tests/measurement/EngineFixture.h"
#include "tests/measurement/PreparationSteps.h"

#include <QMutexLocker>
#include <QtTest>

#include <thread>

using Line = CxCameraLineData;
using scripted::Failure;

/// What the end of a measurement puts back, and in which state it does so.
class MeasurementStopTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void runningUntilTheCameraIsRestored_data() { addModes(); }
    void runningUntilTheCameraIsRestored();
    void restoresTheModeOfTheStart_data() { addModes(); }
    void restoresTheModeOfTheStart();
    void stopWithoutAThread_data() { addModes(); }
    void stopWithoutAThread();
    void modeOfAnEarlierRunIsForgotten();
    void unreadableValueKeepsThatOfTheRunBefore_data();
    void unreadableValueKeepsThatOfTheRunBefore();
    void unreadableQueueSizeIsForgotten();
    void earlyFailureKeepsTheFrameBufferFlag_data();
    void earlyFailureKeepsTheFrameBufferFlag();

private:
    static void addModes();
};

namespace {

/// A camera that was prepared and streams, but has no thread.
void runWithoutAThread(EngineFixture &engine, MeasureMode mode)
{
    const QMutexLocker locker(&engine.line->mutex);
    engine.line->measureMode = mode;
    QVERIFY(engine.line->setupCameraParameters());
    QVERIFY(zuApi_StartAcquisition(engine.camera));
    engine.line->stopRequested = false;
    engine.line->running = true;
}

MeasureMode otherMode(MeasureMode mode)
{
    return mode == MeasureModeThroughput ? MeasureModeAcquisition : MeasureModeThroughput;
}

} // namespace

void MeasurementStopTest::addModes()
{
    QTest::addColumn<int>("mode");
    QTest::newRow("throughput") << 0;
    QTest::newRow("acquisition") << 1;
}

void MeasurementStopTest::runningUntilTheCameraIsRestored()
{
    QFETCH(int, mode);
    const MeasureMode measureMode = MeasureMode(mode);
    const int restoreCalls = expectedRestore(measureMode, expectedSetup(measureMode)).size();

    EngineFixture engine;
    engine.line->measureMode = measureMode;
    QVERIFY(engine.start());
    QVERIFY(engine.deliver(1));

    QStringList whileRunning;
    QStringList whileIdle;
    engine.host.observe([&, owner = std::this_thread::get_id()](const scripted::Call &call) {
        if (call.thread != owner)
            return; // the loop's captures
        (engine.line->running ? whileRunning : whileIdle).append(QString::fromStdString(call.text()));
    });
    QVERIFY(engine.line->stopMeasurement());
    QCOMPARE(whileIdle, QStringList());
    QCOMPARE(whileRunning.size(), 1 + restoreCalls);
    QCOMPARE(whileRunning.first(), QStringLiteral("stop"));
    QVERIFY(!engine.line->running);
}

/// The owner chose another mode for the next measurement while this one ran.
void MeasurementStopTest::restoresTheModeOfTheStart()
{
    QFETCH(int, mode);
    const MeasureMode started = MeasureMode(mode);
    const MeasureMode next = otherMode(started);
    EngineFixture engine;
    engine.line->autoTransportSpeed = false;
    engine.line->measureMode = started;
    QVERIFY(engine.start());
    QVERIFY(engine.deliver(1));
    {
        const QMutexLocker locker(&engine.line->mutex);
        engine.line->measureMode = next;
    }
    engine.host.clearCalls();
    QVERIFY(engine.line->stopMeasurement());
    QCOMPARE(engine.calls(), QStringList({QStringLiteral("image failed"), QStringLiteral("stop")}) +
                                 expectedRestore(started, expectedSetup(started)));
    QCOMPARE(engine.line->measureMode, next);

    // The chosen mode is that of the next start and of its stop.
    engine.host.clearCalls();
    QVERIFY(engine.start());
    QVERIFY(engine.deliver(0));
    const QStringList setup = expectedSetup(next);
    QCOMPARE(engine.calls().mid(0, setup.size()), setup);
    engine.host.clearCalls();
    QVERIFY(engine.line->stopMeasurement());
    QCOMPARE(engine.calls().mid(2), expectedRestore(next, setup));
}

void MeasurementStopTest::stopWithoutAThread()
{
    QFETCH(int, mode);
    const MeasureMode measureMode = MeasureMode(mode);
    EngineFixture engine;
    runWithoutAThread(engine, measureMode);
    engine.host.clearCalls();

    QVERIFY(engine.line->stopMeasurement());
    QVERIFY(!engine.line->stopRequested); // there was no loop to ask
    QVERIFY(!engine.line->running);
    QVERIFY(!engine.host.isStreaming(engine.camera));
    QCOMPARE(engine.calls(),
             QStringList(QStringLiteral("stop")) + expectedRestore(measureMode, expectedSetup(measureMode)));
    QCOMPARE(engine.line->measureMode, measureMode);
}

void MeasurementStopTest::modeOfAnEarlierRunIsForgotten()
{
    EngineFixture engine;
    QVERIFY(engine.run(1, 512, 1000));
    runWithoutAThread(engine, MeasureModeAcquisition);
    engine.host.clearCalls();
    QVERIFY(engine.line->stopMeasurement());
    QCOMPARE(engine.calls(),
             QStringList(QStringLiteral("stop")) +
                 expectedRestore(MeasureModeAcquisition, expectedSetup(MeasureModeAcquisition)));
}

void MeasurementStopTest::unreadableValueKeepsThatOfTheRunBefore_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("buffer policy") << QStringLiteral("buffer_policy");
    QTest::newRow("recent frame") << QStringLiteral("recent_frame");
}

void MeasurementStopTest::unreadableValueKeepsThatOfTheRunBefore()
{
    QFETCH(QString, name);
    const std::string param = name.toStdString();
    EngineFixture engine;
    engine.line->measureMode = MeasureModeAcquisition;
    engine.host.setValue(engine.camera, param, 3);
    QVERIFY(engine.run(1, 512, 1000));
    QCOMPARE(engine.host.value(engine.camera, param), 3LL);

    engine.host.setValue(engine.camera, param, 2);
    engine.host.fail(Failure::read(param));
    engine.host.clearCalls();
    QVERIFY(engine.run(1, 512, 1000));
    QVERIFY(engine.calls().contains(QStringLiteral("get %1 failed").arg(name)));
    QCOMPARE(engine.host.value(engine.camera, param), 3LL);
}

/// A queue of a length that nobody knows is left as the run made it.
void MeasurementStopTest::unreadableQueueSizeIsForgotten()
{
    EngineFixture engine;
    engine.line->measureMode = MeasureModeAcquisition;
    QVERIFY(engine.run(1, 512, 1000));
    QCOMPARE(engine.host.value(engine.camera, "buffers_queue_size"), 14LL);

    engine.host.setValue(engine.camera, "buffers_queue_size", 20);
    engine.host.fail(Failure::read("buffers_queue_size"));
    QVERIFY(engine.run(1, 512, 1000));
    QCOMPARE(engine.host.value(engine.camera, "buffers_queue_size"), 64LL);
    QCOMPARE(engine.line->savedParams[Line::SavedBuffersQueueSize], 0);
}

void MeasurementStopTest::earlyFailureKeepsTheFrameBufferFlag_data()
{
    QTest::addColumn<int>("failing");
    const QList<Step> &steps = stepsOf(MeasureModeThroughput);
    for (int i = 0; i < steps.size(); ++i) {
        if (steps[i].effect == Step::Fatal)
            QTest::newRow(steps[i].call) << i + 1;
    }
}

/// A start that gives up before it comes to the frame buffer must not forget
/// what an earlier one did to it: its restore writes the mode again.
void MeasurementStopTest::earlyFailureKeepsTheFrameBufferFlag()
{
    QFETCH(int, failing);
    const QStringList setup = expectedSetup(MeasureModeThroughput, failing);
    const QStringList restore = expectedRestore(MeasureModeThroughput, expectedSetup(MeasureModeThroughput));
    QCOMPARE(restore.last(), QStringLiteral("set dp_param_value 10"));

    EngineFixture engine;
    engine.line->autoTransportSpeed = false;
    QVERIFY(engine.run(1, 512, 1000));
    QVERIFY(engine.line->frameBufModeChanged);

    engine.host.clearCalls();
    engine.host.fail(Failure::step(failing));
    QVERIFY(!engine.start());
    QVERIFY(engine.line->frameBufModeChanged);
    QCOMPARE(engine.calls(), setup + restore);
}

QTEST_APPLESS_MAIN(MeasurementStopTest)
#include "MeasurementStopTest.moc"
