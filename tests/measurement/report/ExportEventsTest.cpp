#include "measurement/ExportGate.h"
#include "tests/measurement/EngineFixture.h"
#include "tests/measurement/MutexProbe.h"
#include "tests/measurement/report/ExportRig.h"

#include <QProgressDialog>
#include <QTest>

/// What other events may do while a report is written.
class ExportEventsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyCallReturns();
    void eventsRunWhileRowsAreWritten();
    void postponedWorkComesAfterwards();
    void anotherExportIsRefused();
    void parentMayGo_data();
    void parentMayGo();
    void engineMayBeDiscarded_data();
    void engineMayBeDiscarded();
    void discardWithoutAnExport();
    void captureGoesOnAfterwards();
    void measuringEngineIsStoppedWhenDiscarded();
};

/// The mutex is held by this very thread: a call that takes it never returns.
void ExportEventsTest::everyCallReturns()
{
    EngineFixture fixture;
    CxCameraLineData &line = *fixture.line;
    ExportRig rig;
    int calls = 0;
    rig.atStart([&](QProgressDialog &) {
        QVERIFY(!line.isMeasurementRunning());
        QVERIFY(!line.startMeasurement(512, 1000));
        line.running = true; // as a measurement that runs meanwhile
        QVERIFY(line.isMeasurementRunning());
        QVERIFY(!line.stopMeasurement());
        line.running = false;
        QVERIFY(!line.calculateStatisticsThroughput(0, 1, TimestampOriginCamera, true));
        QVERIFY(!line.calculateGraphsThrougput(nullptr, nullptr, nullptr, 0, 1, TimestampOriginCamera, 0.0,
                                               true));
        QVERIFY(!line.calculateGraphsAcquisition(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                                 nullptr, 0, 1, TimestampOriginCamera, 0.0));
        QCOMPARE(line.GetCounterValue(ZU_CNT_SEL_API_SKIP), 0);
        ++calls;
    });
    QVERIFY(line.exportDataToFile(rig.path(), nullptr, 0, 1, TimestampOriginCamera, false));
    QCOMPARE(calls, 1);
    QCOMPARE(rig.log.messages(),
             (QStringList{"CxCameraLineData::startMeasurement(): The records are being exported",
                          "CxCameraLineData::stopMeasurement(): The records are being exported"}));
    QVERIFY(fixture.calls().isEmpty());
}

void ExportEventsTest::eventsRunWhileRowsAreWritten()
{
    ExportRig rig;
    rig.addLongRecording();
    bool ran = false;
    rig.amongRows([&](QProgressDialog &) { ran = true; });
    QVERIFY(rig.exportAll("/dev/null"));
    QVERIFY(ran);
}

void ExportEventsTest::postponedWorkComesAfterwards()
{
    ExportRig rig;
    bool done = false;
    rig.atStart([&](QProgressDialog &) {
        QVERIFY(CxExportGate::putOff(rig.window.get(), [&] { done = isFree(rig.line.mutex); }));
    });
    QVERIFY(rig.exportAll());
    QVERIFY(!done);
    QCoreApplication::processEvents();
    QVERIFY(done);
}

void ExportEventsTest::anotherExportIsRefused()
{
    ExportRig rig;
    RecordedLine other;
    const QString otherPath = rig.folder.filePath("other.csv");
    int refused = 0;
    rig.atStart([&](QProgressDialog &) {
        refused += !rig.exportAll(otherPath);
        refused += !other.line.exportDataToFile(otherPath, nullptr, 0, 1, TimestampOriginCamera, false);
    });
    QVERIFY(rig.exportAll());
    QCOMPARE(refused, 2);
    QVERIFY(!QFile::exists(otherPath));
    const QString message = "CxCameraLineData::exportDataToFile(): Another export is running";
    QCOMPARE(rig.log.messages(), (QStringList{message, message}));
    QVERIFY(!CxExportGate::isClosed());
}

void ExportEventsTest::parentMayGo_data()
{
    QTest::addColumn<bool>("amongRows");
    QTest::newRow("at the start") << false;
    QTest::newRow("among rows") << true;
}

void ExportEventsTest::parentMayGo()
{
    QFETCH(bool, amongRows);
    ExportRig rig;
    rig.addLongRecording();
    const auto close = [&](QProgressDialog &) { rig.window.reset(); };
    if (amongRows)
        rig.amongRows(close);
    else
        rig.atStart(close);
    QVERIFY(rig.exportAll());
    QVERIFY(!rig.window);
    const int rows = rig.contents().count('\n') - 1;
    QVERIFY(amongRows ? rows > 0 : rows == 0);
    QVERIFY(rows < 3998000);
    QVERIFY(isFree(rig.line.mutex));
}

void ExportEventsTest::engineMayBeDiscarded_data()
{
    parentMayGo_data();
}

/// As when the window that owns it goes.
void ExportEventsTest::engineMayBeDiscarded()
{
    QFETCH(bool, amongRows);
    ExportRig rig;
    rig.addLongRecording();
    // Only the engine itself, with the records, is left to be discarded.
    auto *line = new CxCameraLineData;
    line->frames.swap(rig.line.frames);
    line->sampleInterval = 1000;
    const auto discard = [&](QProgressDialog &) {
        CxCameraLineData::discard(line);
        CxCameraLineData::discard(line); // once more makes no difference
        QCOMPARE(line->frames.size(), ExportRig::longRecording);
    };
    if (amongRows)
        rig.amongRows(discard);
    else
        rig.atStart(discard);
    QVERIFY(
        line->exportDataToFile(rig.path(), rig.window.get(), rig.from, rig.to, TimestampOriginCamera, true));
    const int rows = rig.contents().count('\n') - 1;
    QVERIFY(amongRows ? rows > 0 : rows == 0);
    QVERIFY(rows < 3998000);
}

void ExportEventsTest::discardWithoutAnExport()
{
    EngineFixture fixture;
    QVERIFY(fixture.start());
    QVERIFY(fixture.deliver(2));
    QVERIFY(fixture.host.isStreaming(fixture.camera));
    CxCameraLineData::discard(fixture.line.release());
    QVERIFY(!fixture.host.isStreaming(fixture.camera));
    CxCameraLineData::discard(nullptr);
}

/// The disk is full; the engine's thread waited for the mutex and gets it.
void ExportEventsTest::captureGoesOnAfterwards()
{
    EngineFixture fixture;
    CxCameraLineData &line = *fixture.line;
    QVERIFY(fixture.start());
    QVERIFY(fixture.deliver(3));
    ExportRig rig;
    bool delivered = false;
    rig.atStart([&](QProgressDialog &) {
        fixture.host.deliver(fixture.camera, 4);
        delivered = true;
    });
    QVERIFY(line.exportDataToFile("/dev/full", rig.window.get(), std::numeric_limits<qint64>::min(),
                                  std::numeric_limits<qint64>::max(), TimestampOriginCamera, false));
    QVERIFY(delivered);
    QCOMPARE(rig.log.messages().filter("exportDataToFile"),
             QStringList("CxCameraLineData::exportDataToFile(): Cannot write /dev/full: "
                         "No space left on device"));
    QVERIFY(fixture.host.waitUntilStarved(fixture.camera));
    QVERIFY(line.isMeasurementRunning());
    QVERIFY(line.stopMeasurement());
    QCOMPARE(line.frames.size(), 7);
}

void ExportEventsTest::measuringEngineIsStoppedWhenDiscarded()
{
    EngineFixture fixture;
    QVERIFY(fixture.start());
    QVERIFY(fixture.deliver(3));
    ExportRig rig;
    CxCameraLineData *line = fixture.line.release();
    bool streaming = false;
    rig.atStart([&](QProgressDialog &) {
        CxCameraLineData::discard(line);
        streaming = fixture.host.isStreaming(fixture.camera);
    });
    QVERIFY(line->exportDataToFile(rig.path(), nullptr, 0, Q_INT64_C(1) << 60, TimestampOriginCamera, false));
    QVERIFY(streaming);
    QVERIFY(!fixture.host.isStreaming(fixture.camera));
}

QTEST_MAIN(ExportEventsTest)
#include "ExportEventsTest.moc"
