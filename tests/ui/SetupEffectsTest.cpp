#include "tests/ui/MeasuringCameras.h"
#include "tests/ui/SetupChange.h"
#include "tests/ui/StartReport.h"

#include <QTest>

using rig::MeasuringCameras;
using rig::SetupDialog;
using rig::withSetup;
using namespace rig::change;

/// What becomes of the cameras after the setup dialog.
class SetupEffectsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void clearsRecords_data();
    void clearsRecords();
    void firstOkClearsRecords();
    void modeClearsCounters();
    void modeRebuildsTheTable();
    void modeReachesTheEngines();
    void modeReachesEnginesWithoutARow();
    void refreshesColumnNamesOnly_data();
    void refreshesColumnNamesOnly();
    void periodOfTheNextMeasurement();
    void capacityOfTheNextMeasurement();
    void originOfTheNextRefresh();
};

namespace {

constexpr int throughput = 0;
constexpr int acquisition = 1;
constexpr int periodOfTheDialog = 4096; ///< the least; the measured frames have such stamps, too

bool changeAndAccept(const MeasuringCameras &cameras, int change)
{
    return withSetup(cameras.rig, [change](const SetupDialog &setup) {
        enter(setup, change);
        setup.clickOk();
    });
}

bool measureAll(MeasuringCameras &cameras)
{
    bool good = true;
    for (int camera = 0; camera < cameras.handles().size(); ++camera)
        good = cameras.measureAndStop(camera, 5) && good;
    return good;
}

/// Whether each camera has records to draw, whatever the mode is now: "yes no".
QString drawnCameras(MeasuringCameras &cameras, const QString &graph = "Min throughput")
{
    cameras.showTime(0.5, 2.0);
    cameras.refresh();
    QStringList list;
    for (int camera = 0; camera < cameras.handles().size(); ++camera)
        list.append(cameras.points(camera, graph).empty() ? "no" : "yes");
    return list.join(' ');
}

void loadMode(MeasuringCameras &cameras, int mode)
{
    cameras.rig.loadSettings({{"DTGTMeasMode", mode}});
}

QPushButton *measureButton(const MeasuringCameras &cameras, int camera, int mode)
{
    return cameras.rig.cellWidget<QPushButton>(cameras.row(camera), mode == acquisition ? 3 : 2);
}

QString header(const MeasuringCameras &cameras, int column)
{
    return cameras.rig.table()->horizontalHeaderItem(column)->text();
}

/// Which of the two ways to measure the camera's calls show.
QString measuredMode(const MeasuringCameras &cameras, int camera)
{
    bool pattern = false;
    bool counters = false;
    for (const scripted::Call &call : cameras.host.calls()) {
        if (call.handle != cameras[camera])
            continue;
        pattern =
            pattern || (call.function == scripted::Function::SetParamInt && call.name == "test_pattern");
        counters = counters || call.name.rfind("counter", 0) == 0;
    }
    return QString(pattern ? "pattern" : "") + (counters ? "counters" : "");
}

} // namespace

void SetupEffectsTest::clearsRecords_data()
{
    QTest::addColumn<int>("change");
    QTest::addColumn<bool>("accepted");
    QTest::addColumn<QString>("drawn");
    for (int change = 0; change < ChangeCount; ++change) {
        const bool clears = change == Period || change == Mode || change == Both;
        QTest::addRow("%s", changeNames[change]) << change << true << (clears ? "no no" : "yes yes");
        QTest::addRow("%s cancelled", changeNames[change]) << change << false << "yes yes";
    }
}

void SetupEffectsTest::clearsRecords()
{
    QFETCH(int, change);
    QFETCH(bool, accepted);
    QFETCH(QString, drawn);
    MeasuringCameras cameras(2);
    cameras.rig.loadSettings({{"DTGTSamplePeriod", periodOfTheDialog}});
    QVERIFY(measureAll(cameras));
    QCOMPARE(drawnCameras(cameras), "yes yes");
    const QVariantMap before = cameras.rig.savedSettings();
    QVERIFY(withSetup(cameras.rig, [&](const SetupDialog &setup) {
        enter(setup, change);
        if (accepted)
            setup.clickOk();
        else
            setup.clickCancel();
    }));
    const QVariantMap saved = cameras.rig.savedSettings();
    QCOMPARE(saved != before, accepted && change != Nothing && change != Refresh);
    cameras.rig.loadSettings({{"DTGTTimestampOrigin", 0}}); // and the first mode; clears nothing
    QCOMPARE(drawnCameras(cameras), drawn);
}

/// The window starts with a period below the dialog's range.
void SetupEffectsTest::firstOkClearsRecords()
{
    MeasuringCameras cameras(2);
    QVERIFY(measureAll(cameras));
    QCOMPARE(drawnCameras(cameras), "yes yes");
    QVERIFY(changeAndAccept(cameras, Nothing));
    QCOMPARE(drawnCameras(cameras), "no no");
    QVERIFY(measureAll(cameras));
    QVERIFY(changeAndAccept(cameras, Nothing)); // now it is within
    QCOMPARE(drawnCameras(cameras), "yes yes");
}

void SetupEffectsTest::modeClearsCounters()
{
    MeasuringCameras cameras(1);
    loadMode(cameras, acquisition);
    measureButton(cameras, 0, acquisition)->click();
    QVERIFY(cameras.deliver(0, 5));
    cameras.tick();
    measureButton(cameras, 0, acquisition)->click();
    QVERIFY(!cameras.isMeasuring(0));
    QCOMPARE(drawnCameras(cameras, "API skip"), "yes");
    QVERIFY(changeAndAccept(cameras, Mode));
    loadMode(cameras, acquisition);
    QCOMPARE(drawnCameras(cameras, "API skip"), "no");
}

void SetupEffectsTest::modeRebuildsTheTable()
{
    MeasuringCameras cameras(2);
    cameras.showTime(-3.0, 1.0);
    QVERIFY(changeAndAccept(cameras, Mode));
    QCOMPARE(header(cameras, 2), "Data Format");
    QCOMPARE(header(cameras, 3), "Measure");
    QCOMPARE(cameras.rig.find<QTableWidget>("tablePlotCheck")->rowCount(), 6);
    for (int camera = 0; camera < 2; ++camera) {
        QCOMPARE(cameras.cell(camera, 0), MeasuringCameras::name(camera));
        QVERIFY(measureButton(cameras, camera, acquisition));
        QVERIFY(cameras.rig.axisRect(cameras[camera]));
    }
    QCOMPARE(cameras.rig.plot()->axisRects().size(), 2);
    QCOMPARE(cameras.timeAxis(0)->range().lower, -20.0);

    QVERIFY(changeAndAccept(cameras, Mode));
    QCOMPARE(header(cameras, 2), "Measure");
    QCOMPARE(header(cameras, 3), "Average\nthroughput [MB/s]");
    QCOMPARE(cameras.rig.find<QTableWidget>("tablePlotCheck")->rowCount(), 2);
    QCOMPARE(cameras.rig.plot()->axisRects().size(), 2);
}

void SetupEffectsTest::modeReachesTheEngines()
{
    MeasuringCameras cameras(2);
    for (int mode : {acquisition, throughput}) {
        QVERIFY(changeAndAccept(cameras, Mode));
        for (int camera = 0; camera < 2; ++camera) {
            cameras.host.clearCalls();
            measureButton(cameras, camera, mode)->click();
            QVERIFY(cameras.deliver(camera, 2));
            measureButton(cameras, camera, mode)->click();
            QVERIFY(!cameras.isMeasuring(camera));
            QCOMPARE(measuredMode(cameras, camera), mode == acquisition ? "counters" : "pattern");
        }
    }
}

/// A rebuild passes over cameras of which the host has no parameters any more.
void SetupEffectsTest::modeReachesEnginesWithoutARow()
{
    MeasuringCameras cameras(1);
    cameras.host.removeParameterSet(cameras[0]);
    QVERIFY(changeAndAccept(cameras, Mode));
    QCOMPARE(cameras.row(0), -1);
    cameras.host.clearCalls();
    cameras.clickStartAll();
    QVERIFY(cameras.deliver(0, 2));
    QCOMPARE(measuredMode(cameras, 0), "counters");
}

void SetupEffectsTest::refreshesColumnNamesOnly_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("change");
    QTest::addColumn<bool>("accepted");
    QTest::addColumn<QString>("name");
    for (int change : {Nothing, Period, Capacity, Origin, Reset, Refresh})
        QTest::addRow("%s", changeNames[change])
            << throughput << change << true << "Average\nthroughput [MB/s]";
    QTest::newRow("cancelled") << throughput << int(Mode) << false << "spoilt";
    QTest::newRow("acquisition") << acquisition << int(Nothing) << true << "spoilt"; // it has no units
}

void SetupEffectsTest::refreshesColumnNamesOnly()
{
    QFETCH(int, mode);
    QFETCH(int, change);
    QFETCH(bool, accepted);
    QFETCH(QString, name);
    MeasuringCameras cameras(1);
    cameras.rig.loadSettings({{"DTGTSamplePeriod", periodOfTheDialog}});
    loadMode(cameras, mode);
    cameras.rig.table()->horizontalHeaderItem(3)->setText("spoilt");
    cameras.showTime(-3.0, 1.0);
    const QPushButton *button = measureButton(cameras, 0, mode);
    cameras.host.clearCalls();
    QVERIFY(withSetup(cameras.rig, [&](const SetupDialog &setup) {
        enter(setup, change);
        if (accepted)
            setup.clickOk();
    }));
    QCOMPARE(header(cameras, 3), name);
    QCOMPARE(measureButton(cameras, 0, mode), button);
    QCOMPARE(cameras.timeAxis(0)->range().lower, -3.0);
    QVERIFY(cameras.host.calls().empty());
}

/// A start passes the window's settings, whatever the engine holds since it was
/// made.
void SetupEffectsTest::periodOfTheNextMeasurement()
{
    MeasuringCameras cameras(1);
    QVERIFY(changeAndAccept(cameras, Period));
    QCOMPARE(rig::measure(cameras.rig, cameras[0]).sampleInterval, "5120");
}

/// Room for the last frames, the fast ones, or for the slow ones before as well.
void SetupEffectsTest::capacityOfTheNextMeasurement()
{
    MeasuringCameras cameras(1);
    rig::PacedFrames frames;
    frames.ticks = {1000, 1000, 500};
    cameras.rig.loadSettings({{"DTGTSamplePeriod", periodOfTheDialog}, {"DTGTMaxSamples", 2}});
    const auto minimum = [&] {
        cameras.setFrames(0, frames);
        return cameras.measureAndStop(0, 4) ? cameras.cell(0, 4) : QString();
    };
    QCOMPARE(minimum(), "512");
    QVERIFY(changeAndAccept(cameras, Capacity));
    QCOMPARE(minimum(), "256");
}

void SetupEffectsTest::originOfTheNextRefresh()
{
    MeasuringCameras cameras(1);
    cameras.rig.loadSettings({{"DTGTSamplePeriod", periodOfTheDialog}});
    QVERIFY(measureAll(cameras));
    // By the camera's clock the frames begin a second after the start, by the
    // computer's they lie before the last tick.
    QCOMPARE(drawnCameras(cameras), "yes");
    QVERIFY(changeAndAccept(cameras, Origin));
    QCOMPARE(drawnCameras(cameras), "no");
    QVERIFY(changeAndAccept(cameras, Origin));
    QCOMPARE(drawnCameras(cameras), "yes");
}

QTEST_MAIN(SetupEffectsTest)
#include "SetupEffectsTest.moc"
