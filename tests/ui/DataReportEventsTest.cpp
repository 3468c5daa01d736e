#include "tests/ui/ExportScene.h"
#include "tests/ui/SetupDialog.h"

#include <QSignalSpy>
#include <QTest>

using namespace rig;

/// What the window makes of cameras that come, go and measure while it writes a
/// report.
class DataReportEventsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tick_data();
    void tick();
    void refresh_data();
    void refresh();
    void startOfTheExported_data();
    void startOfTheExported();
    void startOfAnother();
    void stopOfAnother();
    void startAll();
    void setup();
    void cameraOpens_data();
    void cameraOpens();
    void anotherCloses_data();
    void anotherCloses();
    void exportedCloses_data();
    void exportedCloses();
    void hostAcquires_data();
    void hostAcquires();
    void secondExport_data();
    void secondExport();
    void everythingAtOnce();
};

void DataReportEventsTest::tick_data()
{
    ExportScene::addMoments();
}

/// It is not made up for: there will be another.
void DataReportEventsTest::tick()
{
    QFETCH(int, moment);
    ExportScene scene{Moment(moment)};
    const QSignalSpy replots(scene.cameras.rig.plot(), &QCustomPlot::afterReplot);
    const QString before = scene.cameras.cell(Beta, 4);
    const int drawn = replots.size();
    QVERIFY(scene.exportWhile([&] { scene.cameras.tick(); }));
    QCOMPARE(replots.size(), drawn);
    QCOMPARE(scene.cameras.cell(Beta, 4), before);
    scene.cameras.tick();
    QCOMPARE(replots.size(), drawn + 1);
    QCOMPARE(scene.cameras.cell(Beta, 4), QString("512"));
    QVERIFY(scene.exportsAgain());
}

void DataReportEventsTest::refresh_data()
{
    ExportScene::addMoments();
}

void DataReportEventsTest::refresh()
{
    QFETCH(int, moment);
    ExportScene scene{Moment(moment)};
    const QSignalSpy replots(scene.cameras.rig.plot(), &QCustomPlot::afterReplot);
    QVERIFY(scene.exportWhile([&] { scene.cameras.refresh(); }));
    QCOMPARE(replots.size(), 0);
    scene.catchUp();
    QCOMPARE(replots.size(), 1);
    QVERIFY(scene.exportsAgain());
}

void DataReportEventsTest::startOfTheExported_data()
{
    ExportScene::addMoments();
}

void DataReportEventsTest::startOfTheExported()
{
    QFETCH(int, moment);
    ExportScene scene{Moment(moment)};
    MeasuringCameras &cameras = scene.cameras;
    QVERIFY(scene.exportWhile([&] { cameras.clickMeasure(Alpha); }));
    QVERIFY(!cameras.isMeasuring(Alpha));
    scene.catchUp();
    QVERIFY(cameras.isMeasuring(Alpha));
    QCOMPARE(cameras.state(Alpha), QString("Testing Stop"));
    QCOMPARE(cameras.sequence(), QStringList({"start Alpha", "take Alpha"}));
    QVERIFY(cameras.boxes.modal.isEmpty());
    QVERIFY(cameras.deliver(Alpha, 1));
    cameras.clickMeasure(Alpha);
    QVERIFY(scene.exportsAgain());
}

void DataReportEventsTest::startOfAnother()
{
    ExportScene scene;
    MeasuringCameras &cameras = scene.cameras;
    QVERIFY(scene.exportWhile([&] {
        cameras.clickMeasure(Gamma);
        cameras.clickMeasure(Gamma);
        cameras.clickMeasure(Gamma);
    }));
    QVERIFY(!cameras.isMeasuring(Gamma));
    scene.catchUp();
    QCOMPARE(cameras.sequence(), QStringList({"start Gamma", "take Gamma", "stop Gamma", "release Gamma",
                                              "start Gamma", "take Gamma"}));
    QCOMPARE(cameras.state(Gamma), QString("Testing Stop"));
    QVERIFY(scene.exportsAgain());
}

void DataReportEventsTest::stopOfAnother()
{
    ExportScene scene;
    MeasuringCameras &cameras = scene.cameras;
    QVERIFY(scene.exportWhile([&] { cameras.clickMeasure(Beta); }));
    QVERIFY(cameras.isMeasuring(Beta));
    scene.catchUp();
    QVERIFY(!cameras.isMeasuring(Beta));
    QCOMPARE(cameras.settings(Beta), cameras.settings(Gamma)); // put back
    QCOMPARE(cameras.state(Beta), QString("Stopped Start"));
    QVERIFY(scene.exportsAgain());
}

void DataReportEventsTest::startAll()
{
    ExportScene scene;
    MeasuringCameras &cameras = scene.cameras;
    QVERIFY(scene.exportWhile([&] { cameras.clickStartAll(); }));
    QCOMPARE(cameras.sequence(), QStringList());
    scene.catchUp();
    for (const int camera : {Alpha, Beta, Gamma})
        QVERIFY(cameras.isMeasuring(camera));
    QCOMPARE(cameras.startAll()->text(), QString("Stop All"));
    QVERIFY(cameras.boxes.modal.isEmpty());
}

void DataReportEventsTest::setup()
{
    ExportScene scene;
    scene.cameras.clickMeasure(Beta); // no setup during a measurement
    scene.report.during(Moment::Start, [&] { scene.cameras.setup()->click(); });
    scene.report.click(Alpha);
    QVERIFY(scene.report.hasRun());
    // Another mode clears the records, which the report may not live to see.
    QVERIFY(whileSetupIsOpen([&] { scene.catchUp(); },
                             [](const SetupDialog &setup) {
                                 setup.mode()->setCurrentIndex(1);
                                 setup.clickOk();
                             }));
    QCOMPARE(scene.report.rows().size(), 14);
    scene.cameras.setMode(Mode::Acquisition);
    scene.report.click(Alpha);
    QCOMPARE(scene.report.contents(), RowExport::countersHeader);
}

void DataReportEventsTest::cameraOpens_data()
{
    ExportScene::addMoments();
}

void DataReportEventsTest::cameraOpens()
{
    QFETCH(int, moment);
    ExportScene scene{Moment(moment)};
    int rows = 0;
    ZUCORE_HANDLE opened = nullptr;
    QVERIFY(scene.exportWhile([&] {
        opened = openCamera("Omega", "O-9");
        rows = scene.cameras.rig.table()->rowCount();
    }));
    QCOMPARE(rows, 3);
    scene.catchUp();
    QCOMPARE(scene.cameras.rig.table()->rowCount(), 4);
    QCOMPARE(scene.cameras.rig.row(opened), 3);
    QVERIFY(scene.cameras.rig.axisRect(opened));
    QCOMPARE(scene.cameras.state(Beta), QString("Testing Stop"));
    QVERIFY(scene.exportsAgain());
}

void DataReportEventsTest::anotherCloses_data()
{
    ExportScene::addMoments();
}

/// At once, while it can still be reached.
void DataReportEventsTest::anotherCloses()
{
    QFETCH(int, moment);
    ExportScene scene{Moment(moment)};
    MeasuringCameras &cameras = scene.cameras;
    int rows = 0;
    QVERIFY(scene.exportWhile([&] {
        cameras.host.closeCamera(cameras[Beta]);
        cameras.host.closeCamera(cameras[Gamma]);
        rows = cameras.rig.table()->rowCount();
    }));
    QCOMPARE(rows, 1);
    QCOMPARE(cameras.sequence(), QStringList({"stop Beta", "release Beta"}));
    QCOMPARE(cameras.settings(Beta), cameras.settings(Alpha));
    QVERIFY(cameras.setup()->isEnabled());
    scene.catchUp();
    QVERIFY(scene.exportsAgain());
}

void DataReportEventsTest::exportedCloses_data()
{
    ExportScene::addMoments();
}

void DataReportEventsTest::exportedCloses()
{
    QFETCH(int, moment);
    ExportScene scene{Moment(moment)};
    MeasuringCameras &cameras = scene.cameras;
    int rows = 0;
    QVERIFY(scene.exportWhile([&] {
        cameras.host.closeCamera(cameras[Alpha]);
        rows = cameras.rig.table()->rowCount();
    }));
    QCOMPARE(rows, 3);
    scene.catchUp();
    QCOMPARE(cameras.rig.table()->rowCount(), 2);
    QCOMPARE(cameras.row(Alpha), -1);
    QCOMPARE(cameras.sequence(), QStringList());
    cameras.tick();
    QCOMPARE(cameras.cell(Beta, 4), QString("512"));
}

void DataReportEventsTest::hostAcquires_data()
{
    QTest::addColumn<int>("camera");
    QTest::newRow("exported") << Alpha;
    QTest::newRow("another") << Gamma;
}

void DataReportEventsTest::hostAcquires()
{
    QFETCH(int, camera);
    ExportScene scene;
    MeasuringCameras &cameras = scene.cameras;
    QString status;
    bool enabled = true;
    QVERIFY(scene.exportWhile([&] {
        cameras.host.setHostAcquisition(cameras[camera], true);
        status = cameras.cell(camera, 1);
        enabled = cameras.measureButton(camera)->isEnabled();
        cameras.host.setHostAcquisition(cameras[camera], false);
    }));
    QCOMPARE(status, QString("Acq"));
    QVERIFY(!enabled);
    QCOMPARE(cameras.state(camera), QString("Stopped Start"));
    QVERIFY(cameras.measureButton(camera)->isEnabled());
    QVERIFY(scene.exportsAgain());
}

void DataReportEventsTest::secondExport_data()
{
    QTest::addColumn<int>("camera");
    QTest::newRow("of the same") << Alpha;
    QTest::newRow("of another") << Gamma;
}

void DataReportEventsTest::secondExport()
{
    QFETCH(int, camera);
    ExportScene scene;
    QVERIFY(scene.cameras.measureAndStop(Gamma, 1));
    scene.cameras.showTime(-60.0, 60.0);
    QVERIFY(scene.exportWhile([&] { scene.cameras.exportButton(camera)->click(); }));
    QCOMPARE(scene.report.fileDialogs, 1);
    scene.report.setName(scene.report.path("second.csv"));
    scene.catchUp();
    QCOMPARE(scene.report.fileDialogs, 2);
    QCOMPARE(scene.report.rows("second.csv").size(), camera == Alpha ? 14 : 7);
    QVERIFY(scene.exportsAgain());
}

/// All that was put off is done in its order, as far as it still makes sense.
void DataReportEventsTest::everythingAtOnce()
{
    ExportScene scene;
    MeasuringCameras &cameras = scene.cameras;
    ZUCORE_HANDLE opened = nullptr;
    QVERIFY(scene.exportWhile([&] {
        cameras.clickMeasure(Alpha);
        cameras.clickMeasure(Gamma);
        cameras.refresh();
        cameras.host.closeCamera(cameras[Gamma]);
        cameras.exportButton(Alpha)->click();
        opened = openCamera("Omega", "O-9");
        cameras.clickMeasure(Beta);
        cameras.tick();
    }));
    scene.report.setName(scene.report.path("second.csv"));
    scene.catchUp();
    QCOMPARE(cameras.sequence(), QStringList({"start Alpha", "take Alpha", "stop Beta", "release Beta"}));
    QCOMPARE(scene.report.rows("second.csv").size(), 14);
    QCOMPARE(cameras.rig.row(opened), 2);
    QCOMPARE(cameras.state(Alpha), QString("Testing Stop"));
    QCOMPARE(cameras.state(Beta), QString("Stopped Start"));
    QVERIFY(cameras.boxes.modal.isEmpty());
}

QTEST_MAIN(DataReportEventsTest)
#include "DataReportEventsTest.moc"
