#include "tests/measurement/EngineFixture.h"
#include "tests/measurement/PreparationSteps.h"

#include <QMutexLocker>
#include <QtTest>

using Line = CxCameraLineData;

namespace {

void addStepRows()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("failing");
    for (int mode : {0, 1}) {
        const char *name = mode == 0 ? "throughput" : "acquisition";
        const QList<Step> &steps = stepsOf(MeasureMode(mode));
        QTest::addRow("%s, nothing fails", name) << mode << 0;
        for (int i = 0; i < steps.size(); ++i)
            QTest::addRow("%s, %d %s fails", name, i + 1, steps[i].call) << mode << i + 1;
    }
}

bool setUp(EngineFixture &engine)
{
    const QMutexLocker locker(&engine.line->mutex);
    return engine.line->setupCameraParameters();
}

void restore(EngineFixture &engine)
{
    const QMutexLocker locker(&engine.line->mutex);
    engine.line->restoreCameraParameters();
}

} // namespace

class CameraPreparationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void failureAtEveryStep_data() { addStepRows(); }
    void failureAtEveryStep();
    void restoreAfterFailureAtEveryStep_data() { addStepRows(); }
    void restoreAfterFailureAtEveryStep();
    void everyRestoreCallMayFail_data();
    void everyRestoreCallMayFail();
    void cameraIsAsBefore_data();
    void cameraIsAsBefore();
    void errorCodeIsNeverAskedFor();
    void countersThatAreSupported();
    void unreadSlotsKeepTheirValue();
    void frameBufferModeIsForgottenByTheNextSetup();
    void deviceRegisterIsNeverForgotten();
    void flagsSurviveARestore();
    void bufferSizeOfTheUser();
    void bufferSizeIsReadEvenWithoutFrameBufferMode();
    void queueSizeOfZeroIsNotWrittenBack();
    void negativeQueueSizeIsNotWrittenBack();
    void staleQueueSizeIsNotWrittenBack();
    void unknownMode();
    void bufferSize_data();
    void bufferSize();
    void bufferSizeIsNotStored();
};

void CameraPreparationTest::failureAtEveryStep()
{
    QFETCH(int, mode);
    QFETCH(int, failing);
    EngineFixture engine;
    engine.line->measureMode = MeasureMode(mode);
    engine.line->internalBuffSize = 77;
    if (failing > 0)
        engine.host.fail(scripted::Failure::step(failing));

    const Step *step = failing > 0 ? &stepsOf(MeasureMode(mode))[failing - 1] : nullptr;
    QCOMPARE(setUp(engine), !(step && step->effect == Step::Fatal));
    QCOMPARE(engine.calls(), expectedSetup(MeasureMode(mode), failing));

    QStringList messages;
    if (step && step->message)
        messages.append(QStringLiteral("CxCameraLineData::setupCameraParameters(): %1")
                            .arg(QLatin1String(step->message)));
    QCOMPARE(engine.log.messages(), messages);
    if (!messages.isEmpty())
        QVERIFY(engine.log.entries().first().file.endsWith("measurement/CameraPreparation.cpp"));

    const QStringList calls = engine.calls();
    QCOMPARE(engine.line->frameBufModeChanged, calls.contains(QStringLiteral("set dp_param_value 9")));
    QCOMPARE(engine.line->deviceRegChanged,
             calls.contains(QStringLiteral("set device_unit_register_value 25000")));
    quint64 size = 77;
    if (mode == 0 && !(step && step->effect == Step::Fatal))
        size = calls.last() == QLatin1String("get64 dp_param_value 67108864") ? 67108864 : 32768;
    QCOMPARE(engine.line->internalBuffSize, size);
}

void CameraPreparationTest::restoreAfterFailureAtEveryStep()
{
    QFETCH(int, mode);
    QFETCH(int, failing);
    EngineFixture engine;
    engine.line->measureMode = MeasureMode(mode);
    if (failing > 0)
        engine.host.fail(scripted::Failure::step(failing));
    setUp(engine);
    engine.host.clearCalls();
    engine.log.clear();

    restore(engine);
    QCOMPARE(engine.calls(), expectedRestore(MeasureMode(mode), expectedSetup(MeasureMode(mode), failing)));
    QVERIFY(engine.log.entries().isEmpty());
}

void CameraPreparationTest::everyRestoreCallMayFail_data()
{
    QTest::addColumn<int>("mode");
    QTest::newRow("throughput") << 0;
    QTest::newRow("acquisition") << 1;
}

void CameraPreparationTest::everyRestoreCallMayFail()
{
    QFETCH(int, mode);
    EngineFixture engine;
    engine.line->measureMode = MeasureMode(mode);
    QVERIFY(setUp(engine));
    engine.host.clearCalls();
    engine.host.fail({});

    restore(engine);
    QStringList expected;
    for (const QString &call : expectedRestore(MeasureMode(mode), expectedSetup(MeasureMode(mode), 0)))
        expected.append(call + QStringLiteral(" failed"));
    QCOMPARE(engine.calls(), expected);
    QVERIFY(engine.log.entries().isEmpty());
}

void CameraPreparationTest::cameraIsAsBefore_data()
{
    QTest::addColumn<int>("mode");
    QTest::newRow("throughput") << 0;
    QTest::newRow("acquisition") << 1;
}

void CameraPreparationTest::cameraIsAsBefore()
{
    QFETCH(int, mode);
    EngineFixture engine;
    engine.line->measureMode = MeasureMode(mode);
    const QStringList names = {
        QStringLiteral("imgdataformat"),
        QStringLiteral("output_bit_depth"),
        QStringLiteral("output_bit_packing"),
        QStringLiteral("buffer_policy"),
        QStringLiteral("column_fpn_correction"),
        QStringLiteral("row_fpn_correction"),
        QStringLiteral("LUTEnable"),
        QStringLiteral("test_pattern_generator_selector"),
        QStringLiteral("test_pattern"),
        QStringLiteral("recent_frame"),
        QStringLiteral("buffers_queue_size"),
        QStringLiteral("dp_param_value[1,5,6]"),
        QStringLiteral("device_unit_register_value[1,55]"),
    };
    const auto values = [&] {
        QStringList list;
        for (const QString &name : names)
            list.append(
                QStringLiteral("%1 %2").arg(name).arg(engine.host.value(engine.camera, name.toStdString())));
        return list;
    };
    const QStringList before = values();
    QVERIFY(setUp(engine));
    QVERIFY(values() != before);
    restore(engine);
    QCOMPARE(values(), before);
}

void CameraPreparationTest::errorCodeIsNeverAskedFor()
{
    EngineFixture engine;
    for (MeasureMode mode : {MeasureModeThroughput, MeasureModeAcquisition}) {
        engine.line->measureMode = mode;
        setUp(engine);
        restore(engine);
    }
    engine.line->readDefaultAvgTransportSpeed();
    for (const scripted::Call &call : engine.host.calls()) {
        QVERIFY(!call.wantsError);
        QCOMPARE(call.handle, engine.camera);
    }
}

void CameraPreparationTest::countersThatAreSupported()
{
    EngineFixture engine;
    engine.line->measureMode = MeasureModeAcquisition;
    engine.host.fail(scripted::Failure::write("counter_selector:settable", 1));
    engine.host.fail(scripted::Failure::write("counter_selector:settable", 4));
    QVERIFY(setUp(engine));
    QList<bool> supported;
    for (const Line::CxCounterInfo *info : qAsConst(engine.line->counterInfos))
        supported.append(info->supported);
    QCOMPARE(supported, QList<bool>({true, false, true, true, false, true}));

    // The answer is that of the last setup.
    engine.host.clearFailures();
    engine.host.fail(scripted::Failure::write("counter_selector:settable", 0));
    QVERIFY(setUp(engine));
    QVERIFY(!engine.line->counterInfos[0]->supported);
    QVERIFY(engine.line->counterInfos[1]->supported);
}

void CameraPreparationTest::unreadSlotsKeepTheirValue()
{
    EngineFixture engine;
    for (int i = 0; i < Line::SavedParamCount; ++i)
        engine.line->savedParams[i] = 100 + i;
    for (const char *name : {"imgdataformat", "output_bit_depth", "output_bit_packing", "buffer_policy",
                             "column_fpn_correction", "row_fpn_correction", "LUTEnable"})
        engine.host.fail(scripted::Failure::read(name));
    QVERIFY(setUp(engine));
    const std::array<int, Line::SavedParamCount> expected = {100, 101, 102, 103, 104, 105,
                                                             106, 6,   9,   109, 110};
    QVERIFY(engine.line->savedParams == expected);
}

void CameraPreparationTest::frameBufferModeIsForgottenByTheNextSetup()
{
    EngineFixture engine;
    engine.line->frameBufModeChanged = true;
    engine.host.removeValue(engine.camera, "dp_unit_selector");
    QVERIFY(setUp(engine));
    QVERIFY(!engine.line->frameBufModeChanged);
    engine.host.clearCalls();
    restore(engine);
    QVERIFY(!engine.calls().contains(QStringLiteral("set dp_param_value 10")));
    QVERIFY(engine.log.entries().isEmpty());
}

void CameraPreparationTest::deviceRegisterIsNeverForgotten()
{
    EngineFixture engine;
    QVERIFY(setUp(engine));
    QVERIFY(engine.line->deviceRegChanged);
    engine.host.fail(scripted::Failure::write("device_unit_selector"));
    QVERIFY(setUp(engine));
    QVERIFY(engine.line->deviceRegChanged);
    engine.host.clearFailures();
    engine.host.clearCalls();
    restore(engine);
    QVERIFY(engine.calls().contains(QStringLiteral("set device_unit_register_value 1")));
}

void CameraPreparationTest::flagsSurviveARestore()
{
    EngineFixture engine;
    QVERIFY(setUp(engine));
    restore(engine);
    QVERIFY(engine.line->deviceRegChanged);
    QVERIFY(engine.line->frameBufModeChanged);
    engine.host.clearCalls();
    restore(engine);
    QCOMPARE(engine.calls(), expectedRestore(MeasureModeThroughput, expectedSetup(MeasureModeThroughput, 0)));
}

void CameraPreparationTest::bufferSizeOfTheUser()
{
    EngineFixture engine;
    engine.line->autoInternalBuffSize = false;
    engine.line->internalBuffSize = 123000;
    QVERIFY(setUp(engine));
    QCOMPARE(engine.line->internalBuffSize, quint64(123000));
    QCOMPARE(engine.calls(), expectedSetup(MeasureModeThroughput, 0).mid(0, 25));
}

void CameraPreparationTest::bufferSizeIsReadEvenWithoutFrameBufferMode()
{
    EngineFixture engine;
    engine.host.fail(scripted::Failure::write("dp_param_value"));
    QVERIFY(setUp(engine));
    QCOMPARE(engine.line->internalBuffSize, quint64(67108864));
}

void CameraPreparationTest::queueSizeOfZeroIsNotWrittenBack()
{
    EngineFixture engine;
    engine.line->measureMode = MeasureModeAcquisition;
    engine.host.setValue(engine.camera, "buffers_queue_size", 0);
    QVERIFY(setUp(engine));
    engine.host.clearCalls();
    restore(engine);
    QCOMPARE(engine.calls(),
             QStringList({QStringLiteral("set buffer_policy 1"), QStringLiteral("set recent_frame 1")}));
}

void CameraPreparationTest::negativeQueueSizeIsNotWrittenBack()
{
    EngineFixture engine;
    engine.line->measureMode = MeasureModeAcquisition;
    engine.host.setValue(engine.camera, "buffers_queue_size", -1);
    QVERIFY(setUp(engine));
    engine.host.clearCalls();
    restore(engine);
    QCOMPARE(engine.calls().size(), 2);
}

void CameraPreparationTest::staleQueueSizeIsNotWrittenBack()
{
    EngineFixture engine;
    engine.line->measureMode = MeasureModeAcquisition;
    QVERIFY(setUp(engine));
    QCOMPARE(engine.line->savedParams[Line::SavedBuffersQueueSize], 14);
    engine.host.fail(scripted::Failure::read("buffers_queue_size"));
    QVERIFY(setUp(engine));
    QCOMPARE(engine.line->savedParams[Line::SavedBuffersQueueSize], 0);
}

void CameraPreparationTest::unknownMode()
{
    EngineFixture engine;
    engine.line->measureMode = MeasureMode(7);
    QVERIFY(!setUp(engine));
    QCOMPARE(
        engine.log.messages(),
        QStringList(QStringLiteral("CxCameraLineData::setupCameraParameters(): Unknown measurement mode")));
    restore(engine);
    QVERIFY(engine.calls().isEmpty());
    QCOMPARE(engine.log.entries().size(), 1);
}

void CameraPreparationTest::bufferSize_data()
{
    QTest::addColumn<int>("failing");
    QTest::addColumn<qint64>("cameraSize");
    QTest::addColumn<quint64>("size");
    QTest::addColumn<int>("callCount");
    QTest::newRow("read") << 0 << qint64(67108864) << quint64(67108864) << 4;
    QTest::newRow("beyond 32 bits") << 0 << qint64(0x123456789a) << quint64(0x123456789a) << 4;
    QTest::newRow("a size of 0 is a size") << 0 << qint64(0) << quint64(0) << 4;
    QTest::newRow("no unit") << 1 << qint64(5) << quint64(32768) << 1;
    QTest::newRow("no block") << 2 << qint64(5) << quint64(32768) << 2;
    QTest::newRow("no parameter") << 3 << qint64(5) << quint64(32768) << 3;
    QTest::newRow("no value") << 4 << qint64(5) << quint64(32768) << 4;
}

void CameraPreparationTest::bufferSize()
{
    QFETCH(int, failing);
    QFETCH(qint64, cameraSize);
    QFETCH(int, callCount);
    EngineFixture engine;
    engine.host.setValue(engine.camera, "dp_param_value[1,5,7]", cameraSize);
    if (failing > 0)
        engine.host.fail(scripted::Failure::step(failing));
    QTEST(engine.line->readInternalCameraBufferSize(), "size");
    QStringList expected = {
        QStringLiteral("set dp_unit_selector 1"), QStringLiteral("set dp_proc_selector 5"),
        QStringLiteral("set dp_param_selector 7"), QStringLiteral("get64 dp_param_value %1").arg(cameraSize)};
    expected = expected.mid(0, callCount);
    if (failing > 0)
        expected.last() = failed(qPrintable(expected.last()));
    QCOMPARE(engine.calls(), expected);
    QVERIFY(engine.log.entries().isEmpty());
}

void CameraPreparationTest::bufferSizeIsNotStored()
{
    EngineFixture engine;
    engine.line->internalBuffSize = 5;
    QCOMPARE(engine.line->readInternalCameraBufferSize(), quint64(67108864));
    QCOMPARE(engine.line->internalBuffSize, quint64(5));
}

QTEST_APPLESS_MAIN(CameraPreparationTest)
#include "CameraPreparationTest.moc"
