#include "tests/measurement/EngineFixture.h"
#include "tests/measurement/report/ExportRig.h"

#include <QTest>

/// Records are exported while the camera's thread goes on storing them.
class ExportThreadsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void capturesWhileExporting_data();
    void capturesWhileExporting();
};

namespace {

constexpr qint64 endOfTime = std::numeric_limits<qint64>::max();

/// Everything that the engine has at that moment; the rows, or "failed".
QByteArrayList exportedRows(CxCameraLineData &line, const ExportRig &rig)
{
    if (!line.exportDataToFile(rig.path(), rig.window.get(), 0, endOfTime, TimestampOriginComputer, false))
        return {"failed"};
    QByteArrayList rows = rig.contents().split('\n');
    rows.removeFirst(); // the header
    rows.removeLast();  // behind the last line feed
    return rows;
}

} // namespace

void ExportThreadsTest::capturesWhileExporting_data()
{
    QTest::addColumn<int>("mode");
    QTest::newRow("stamps") << int(MeasureModeThroughput);
    QTest::newRow("counters") << int(MeasureModeAcquisition);
}

void ExportThreadsTest::capturesWhileExporting()
{
    QFETCH(int, mode);
    constexpr int exports = 4;
    constexpr int framesAnExport = 50;

    EngineFixture engine;
    CxCameraLineData &line = *engine.line;
    line.measureMode = MeasureMode(mode);
    scripted::CounterFrames frames;
    frames.height = 8; // 1024 bytes: two stamps, one row
    engine.host.setImageSource(engine.camera, frames);
    QVERIFY(engine.start(512));
    QVERIFY(engine.deliver(1));

    ExportRig rig;
    QByteArrayList before;
    for (int i = 0; i < exports; ++i) {
        engine.host.deliver(engine.camera, framesAnExport);
        const QByteArrayList rows = exportedRows(line, rig);
        QVERIFY(!rows.isEmpty() && rows.size() <= 1 + (i + 1) * framesAnExport);
        QCOMPARE(rows.mid(0, before.size()), before);
        before = rows;
    }
    QVERIFY(engine.host.waitUntilStarved(engine.camera));
    QVERIFY(line.isMeasurementRunning());
    // Whatever came during an export was stored after it.
    const QByteArrayList all = exportedRows(line, rig);
    QCOMPARE(all.size(), 1 + exports * framesAnExport);
    QCOMPARE(all.mid(0, before.size()), before);
    QVERIFY(line.stopMeasurement());
}

QTEST_MAIN(ExportThreadsTest)
#include "ExportThreadsTest.moc"
