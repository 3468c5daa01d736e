#include "measurement/AcquisitionThread.h"
#include "tests/measurement/EngineFixture.h"
#include "tests/measurement/PreparationSteps.h"

#include <QMutexLocker>
#include <QtTest>

using scripted::Failure;
using scripted::Function;

namespace {

const QStringList speedCalls = {
    QStringLiteral("get device_unit_selector 2"),
    QStringLiteral("get device_unit_register_selector 77"),
    QStringLiteral("set device_unit_selector 8"),
    QStringLiteral("set device_unit_register_selector 4096"),
    QStringLiteral("get device_unit_register_value 380"),
    QStringLiteral("set device_unit_selector 2"),
    QStringLiteral("set device_unit_register_selector 77"),
};

const QStringList startCalls = {QStringLiteral("set ts_rst_mode 0"), QStringLiteral("set ts_rst_source 19"),
                                QStringLiteral("start")};

} // namespace

class MeasurementRunTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void callsOfARun_data() { addModes(); }
    void callsOfARun();
    void transportSpeedOfTheUser();
    void statesOfARun();
    void argumentsAreStored();
    void noCamera();
    void failedPreparation_data() { addModes(); }
    void failedPreparation();
    void unknownModeDoesNotStart();
    void failedStart_data() { addModes(); }
    void failedStart();
    void failedStartKeepsTheArguments();
    void failedTimestampResetIsIgnored();
    void secondStartChangesNothing();
    void stopWithoutStart();
    void secondStop();
    void failedStopStillRestores();
    void threadOfAnUnknownModeEnds();
    void restartAfterAStop();

private:
    static void addModes();
};

void MeasurementRunTest::addModes()
{
    QTest::addColumn<int>("mode");
    QTest::newRow("throughput") << 0;
    QTest::newRow("acquisition") << 1;
}

void MeasurementRunTest::callsOfARun()
{
    QFETCH(int, mode);
    const MeasureMode measureMode = MeasureMode(mode);
    const QStringList setup = expectedSetup(measureMode);
    const QStringList restore = expectedRestore(measureMode, expectedSetup(measureMode));

    EngineFixture engine;
    engine.line->measureMode = measureMode;
    QVERIFY(engine.start());
    QVERIFY(engine.deliver(0));
    QCOMPARE(engine.calls(), speedCalls + setup + startCalls);
    QCOMPARE(engine.line->avgTransportSpeedMBps, 380U);

    engine.host.clearCalls();
    QVERIFY(engine.line->stopMeasurement());
    QCOMPARE(engine.calls(), QStringList({QStringLiteral("image failed"), QStringLiteral("stop")}) + restore);
}

void MeasurementRunTest::transportSpeedOfTheUser()
{
    const QStringList expected = expectedSetup(MeasureModeThroughput) + startCalls;
    EngineFixture engine;
    engine.line->autoTransportSpeed = false;
    engine.line->avgTransportSpeedMBps = 250;
    QVERIFY(engine.start());
    QVERIFY(engine.deliver(0));
    QCOMPARE(engine.calls(), expected);
    QCOMPARE(engine.line->avgTransportSpeedMBps, 250U);
}

void MeasurementRunTest::statesOfARun()
{
    EngineFixture engine;
    QVERIFY(!engine.line->running && !engine.line->stopRequested && !engine.line->acquisitionThread);
    QVERIFY(engine.start());
    QVERIFY(engine.line->running && !engine.line->stopRequested && engine.line->acquisitionThread);
    QVERIFY(engine.line->isMeasurementRunning());
    QVERIFY(!engine.line->acquisitionThread->parent());
    QCOMPARE(engine.line->acquisitionThread->priority(), QThread::InheritPriority);
    QVERIFY(engine.line->stopMeasurement());
    QVERIFY(!engine.line->running && engine.line->stopRequested && !engine.line->acquisitionThread);
    QVERIFY(!engine.line->isMeasurementRunning());
    QVERIFY(engine.start());
    QVERIFY(engine.line->running && !engine.line->stopRequested && engine.line->acquisitionThread);
}

void MeasurementRunTest::argumentsAreStored()
{
    EngineFixture engine;
    QVERIFY(engine.start(12288, 5000000000LL));
    QVERIFY(engine.line->stopMeasurement());
    QCOMPARE(engine.line->sampleInterval, 12288U);
    QCOMPARE(engine.line->maxSamples, 5000000000LL);
}

void MeasurementRunTest::noCamera()
{
    EngineFixture engine;
    engine.line->cameraHandle = nullptr;
    QVERIFY(!engine.start(512, 10));
    QVERIFY(engine.calls().isEmpty());
    QCOMPARE(engine.line->sampleInterval, 4096U);
    QVERIFY(!engine.line->running && !engine.line->acquisitionThread);
    QVERIFY(engine.log.entries().isEmpty());
}

void MeasurementRunTest::failedPreparation()
{
    QFETCH(int, mode);
    EngineFixture engine;
    engine.line->measureMode = MeasureMode(mode);
    engine.host.fail(Failure::write("buffer_policy", 0));
    QVERIFY(!engine.start(512, 10));

    // Restored although little was changed; the arguments are not taken.
    const QStringList calls = engine.calls();
    const int failed = calls.indexOf(QStringLiteral("set buffer_policy 0 failed"));
    QVERIFY(failed > 0);
    QVERIFY(calls.mid(failed + 1).contains(QStringLiteral("set buffer_policy 1")));
    QVERIFY(!calls.contains(QStringLiteral("set ts_rst_mode 0")));
    QVERIFY(!calls.contains(QStringLiteral("start")));
    QCOMPARE(engine.line->sampleInterval, 4096U);
    QCOMPARE(engine.line->maxSamples, 3000000LL);
    QVERIFY(!engine.line->running && !engine.line->stopRequested && !engine.line->acquisitionThread);
    QCOMPARE(engine.log.messages(),
             QStringList(QStringLiteral("CxCameraLineData::setupCameraParameters(): "
                                        "zuApi_SetParamInt(ZU_PRM_BUFFER_POLICY, ZU_BP_UNSAFE) failed")));
    QVERIFY(!engine.line->isMeasurementRunning()); // the mutex is free again
}

void MeasurementRunTest::unknownModeDoesNotStart()
{
    EngineFixture engine;
    engine.line->measureMode = MeasureMode(7);
    QVERIFY(!engine.start());
    QCOMPARE(engine.calls(), speedCalls);
    QCOMPARE(
        engine.log.messages(),
        QStringList(QStringLiteral("CxCameraLineData::setupCameraParameters(): Unknown measurement mode")));
    QVERIFY(!engine.line->isMeasurementRunning());
}

void MeasurementRunTest::failedStart()
{
    QFETCH(int, mode);
    const MeasureMode measureMode = MeasureMode(mode);
    const QStringList expected = speedCalls + expectedSetup(measureMode) + startCalls.mid(0, 2) +
                                 QStringList(QStringLiteral("start failed")) +
                                 expectedRestore(measureMode, expectedSetup(measureMode));
    EngineFixture engine;
    engine.line->measureMode = measureMode;
    engine.host.fail(Failure::call(Function::StartAcquisition));
    QVERIFY(!engine.start());
    QCOMPARE(engine.calls(), expected);
    QCOMPARE(engine.log.messages(), QStringList(QStringLiteral("CxCameraLineData::startMeasurement(): "
                                                               "zuApi_StartAcquisition failed")));
    QVERIFY(engine.log.entries().first().file.endsWith("measurement/MeasurementRun.cpp"));
    QVERIFY(!engine.line->running && !engine.line->acquisitionThread);

    // Idle again: the next start is as good as any.
    engine.host.clearFailures();
    QVERIFY(engine.start());
}

void MeasurementRunTest::failedStartKeepsTheArguments()
{
    EngineFixture engine;
    engine.host.fail(Failure::call(Function::StartAcquisition));
    QVERIFY(!engine.start(1000, 2000));
    QCOMPARE(engine.line->sampleInterval, 1000U);
    QCOMPARE(engine.line->maxSamples, 2000LL);
}

void MeasurementRunTest::failedTimestampResetIsIgnored()
{
    EngineFixture engine;
    engine.host.fail(Failure::write("ts_rst_mode"));
    engine.host.fail(Failure::write("ts_rst_source"));
    QVERIFY(engine.start());
    QVERIFY(engine.calls().contains(QStringLiteral("set ts_rst_mode 0 failed")));
    QVERIFY(engine.calls().contains(QStringLiteral("set ts_rst_source 19 failed")));
}

void MeasurementRunTest::secondStartChangesNothing()
{
    EngineFixture engine;
    QVERIFY(engine.start(512, 1000));
    QVERIFY(engine.deliver(1));
    const QStringList before = engine.calls();
    const CxAcquisitionThread *thread = engine.line->acquisitionThread;
    QVERIFY(!engine.line->startMeasurement(999, 1));
    QCOMPARE(engine.calls(), before);
    QCOMPARE(engine.line->acquisitionThread, thread);
    QCOMPARE(engine.line->sampleInterval, 512U);
    QCOMPARE(engine.line->maxSamples, 1000LL);
    QVERIFY(engine.line->running && !engine.line->stopRequested);
}

void MeasurementRunTest::stopWithoutStart()
{
    EngineFixture engine;
    QVERIFY(!engine.line->stopMeasurement());
    QVERIFY(engine.calls().isEmpty());
    QVERIFY(!engine.line->stopRequested);
}

void MeasurementRunTest::secondStop()
{
    EngineFixture engine;
    QVERIFY(engine.start());
    QVERIFY(engine.line->stopMeasurement());
    const QStringList before = engine.calls();
    QVERIFY(!engine.line->stopMeasurement());
    QCOMPARE(engine.calls(), before);
}

void MeasurementRunTest::failedStopStillRestores()
{
    const QStringList restore = expectedRestore(MeasureModeThroughput, expectedSetup(MeasureModeThroughput));
    EngineFixture engine;
    QVERIFY(engine.start());
    QVERIFY(engine.deliver(0));
    engine.host.clearCalls();
    engine.log.clear();
    engine.host.fail(Failure::call(Function::StopAcquisition));
    QVERIFY(engine.line->stopMeasurement());
    QCOMPARE(engine.calls(),
             QStringList({QStringLiteral("image failed"), QStringLiteral("stop failed")}) + restore);
    QCOMPARE(engine.log.messages().last(), QStringLiteral("CxCameraLineData::stopMeasurement(): "
                                                          "zuApi_StopAcquisition failed"));
    QVERIFY(!engine.line->running);
}

void MeasurementRunTest::threadOfAnUnknownModeEnds()
{
    const QStringList restore = expectedRestore(MeasureModeThroughput, expectedSetup(MeasureModeThroughput));
    EngineFixture engine;
    {
        const QMutexLocker locker(&engine.line->mutex);
        QVERIFY(engine.line->setupCameraParameters());
        zuApi_StartAcquisition(engine.camera);
    }
    engine.host.clearCalls();
    engine.line->acquisitionThread = new CxAcquisitionThread(engine.line.get(), MeasureMode(7));
    engine.line->running = true;
    engine.line->acquisitionThread->start();
    QVERIFY(engine.line->acquisitionThread->wait());
    QCOMPARE(engine.log.messages(),
             QStringList(QStringLiteral("CxAcquisitionThread::run(): Unknown measurement mode selected")));
    QVERIFY(engine.log.entries().first().file.endsWith("measurement/AcquisitionThread.cpp"));
    QVERIFY(engine.calls().isEmpty());

    QVERIFY(engine.line->stopMeasurement());
    QCOMPARE(engine.calls(), QStringList(QStringLiteral("stop")) + restore);
    QVERIFY(!engine.line->acquisitionThread);
}

void MeasurementRunTest::restartAfterAStop()
{
    EngineFixture engine;
    QVERIFY(engine.run(2, 512, 1000)); // leaves its own device unit selected
    engine.host.clearCalls();
    QVERIFY(engine.run(2, 512, 1000));
    const QStringList second = engine.calls();
    engine.host.clearCalls();
    QVERIFY(engine.run(2, 512, 1000));
    QCOMPARE(engine.calls(), second);
    QCOMPARE(engine.line->frames.size(), 6);
}

QTEST_APPLESS_MAIN(MeasurementRunTest)
#include "MeasurementRunTest.moc"
