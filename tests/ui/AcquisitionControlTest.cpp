#include "tests/ui/MeasuringCameras.h"

#include <QComboBox>
#include <QTest>

#include <algorithm>

using rig::MeasuringCameras;
using rig::Mode;
using scripted::Failure;
using scripted::Function;

/// How cameras are started and stopped in acquisition mode.
class AcquisitionControlTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void measureButton();
    void exportStaysInReach();
    void startAllAndStopAll();
    void startAllStartsOnlyTheOthers();
    void failedStart_data();
    void failedStart();
    void failedStartAll();
    void settingsComeBack();
    void closingWindowStops();
    void nothingIsReadForTheOtherModesRow();
};

void AcquisitionControlTest::measureButton()
{
    MeasuringCameras cameras(2, Mode::Acquisition);
    rig::ProgressNotes progress(cameras);
    cameras.clickMeasure(1);
    QVERIFY(cameras.isMeasuring(1));
    QCOMPARE(cameras.sequence(), QStringList({"start Beta", "take Beta"}));
    QCOMPARE(cameras.state(1), QString("Testing Stop"));
    QCOMPARE(cameras.state(0), QString("Stopped Start"));
    QCOMPARE(progress.notes, QStringList("Beta: Starting measurement | Starting camera Beta (B-2)..."));
    progress.notes.clear();
    cameras.host.clearCalls();
    cameras.clickMeasure(1);
    QVERIFY(!cameras.isMeasuring(1));
    QCOMPARE(cameras.sequence(), QStringList({"stop Beta", "release Beta"}));
    QCOMPARE(cameras.state(1), QString("Stopped Start"));
    QCOMPARE(progress.notes, QStringList("Beta: Stopping measurement | Stopping camera Beta (B-2)..."));
    QVERIFY(cameras.boxes.modal.isEmpty());
}

void AcquisitionControlTest::exportStaysInReach()
{
    MeasuringCameras cameras(2, Mode::Acquisition);
    cameras.clickMeasure(0);
    for (int camera = 0; camera < 2; ++camera) {
        QVERIFY(cameras.exportButton(camera)->isEnabled());
        QVERIFY(cameras.plotBox(camera)->isEnabled());
        QVERIFY(cameras.rig.cellWidget<QComboBox>(cameras.row(camera), 2)->isEnabled());
    }
    QVERIFY(!cameras.setup()->isEnabled());
    cameras.clickMeasure(1);
    cameras.clickMeasure(0);
    QVERIFY(!cameras.setup()->isEnabled());
    cameras.clickMeasure(1);
    QVERIFY(cameras.setup()->isEnabled());
}

void AcquisitionControlTest::startAllAndStopAll()
{
    MeasuringCameras cameras(3, Mode::Acquisition);
    cameras.clickStartAll();
    QCOMPARE(cameras.sequence(), QStringList({"start Alpha", "take Alpha", "start Beta", "take Beta",
                                              "start Gamma", "take Gamma"}));
    for (int camera = 0; camera < 3; ++camera) {
        QCOMPARE(cameras.state(camera), QString("Testing Stop"));
        QVERIFY(cameras.exportButton(camera)->isEnabled());
    }
    QVERIFY(!cameras.setup()->isEnabled());
    QCOMPARE(cameras.startAll()->text(), QString("Stop All"));

    cameras.host.clearCalls();
    cameras.clickStartAll();
    QCOMPARE(cameras.sequence(), QStringList({"stop Alpha", "release Alpha", "stop Beta", "release Beta",
                                              "stop Gamma", "release Gamma"}));
    for (int camera = 0; camera < 3; ++camera)
        QCOMPARE(cameras.state(camera), QString("Stopped Start"));
    QVERIFY(cameras.setup()->isEnabled());
    QCOMPARE(cameras.startAll()->text(), QString("Start All"));
    QVERIFY(cameras.boxes.modal.isEmpty());
}

void AcquisitionControlTest::startAllStartsOnlyTheOthers()
{
    MeasuringCameras cameras(3, Mode::Acquisition);
    cameras.clickMeasure(1);
    cameras.host.clearCalls();
    cameras.clickStartAll();
    QCOMPARE(cameras.sequence(), QStringList({"start Alpha", "take Alpha", "start Gamma", "take Gamma"}));
    QCOMPARE(cameras.startAll()->text(), QString("Stop All"));
    QCOMPARE(cameras.state(1), QString("Testing Stop"));
}

void AcquisitionControlTest::failedStart_data()
{
    QTest::addColumn<bool>("streams");
    QTest::addColumn<QStringList>("sequence");
    QTest::addColumn<QString>("logged");
    QTest::newRow("the camera refuses its preparation")
        << true << QStringList()
        << "CxCameraLineData::setupCameraParameters(): "
           "zuApi_SetParamInt(ZU_PRM_BUFFER_POLICY, ZU_BP_UNSAFE) failed";
    QTest::newRow("the camera does not stream")
        << false << QStringList("start Beta failed")
        << "CxCameraLineData::startMeasurement(): zuApi_StartAcquisition failed";
}

void AcquisitionControlTest::failedStart()
{
    QFETCH(bool, streams);
    QFETCH(QString, logged);
    MeasuringCameras cameras(2, Mode::Acquisition);
    const QStringList before = cameras.settings(1);
    QVERIFY(cameras.measureAndStop(1, 1));
    cameras.host.clearCalls();
    cameras.log.clear();
    cameras.host.fail(streams ? Failure::write("buffer_policy", 0)
                              : Failure::call(Function::StartAcquisition));
    cameras.rig.table()->item(cameras.row(1), 1)->setText("outdated");
    cameras.clickMeasure(1);
    QTEST(cameras.sequence(), "sequence");
    QCOMPARE(cameras.log.messages().filter("Cx"), QStringList(logged));
    QCOMPARE(cameras.settings(1), before);
    QCOMPARE(cameras.state(1), QString("Stopped Start"));
    QVERIFY(cameras.setup()->isEnabled());
    QVERIFY(!rig::progressBox());
    QCOMPARE(cameras.boxes.modal.size(), 1);
    const rig::ShownBox &box = cameras.boxes.modal.first();
    QCOMPARE(box.title, QString("Failed to start measurement"));
    QCOMPARE(box.text, QString("Camera Beta (B-2) does not support data throughput analysis in Velmora. "
                               "See Error log for details."));
    cameras.host.clearFailures();
    cameras.clickMeasure(1);
    QCOMPARE(cameras.state(1), QString("Testing Stop"));
}

void AcquisitionControlTest::failedStartAll()
{
    MeasuringCameras cameras(3, Mode::Acquisition);
    cameras.host.fail({Function::SetParamInt, "buffer_policy", 0, cameras[1]});
    cameras.clickStartAll();
    QCOMPARE(cameras.sequence(), QStringList({"start Alpha", "take Alpha", "stop Alpha", "release Alpha"}));
    QVERIFY(cameras.host.cameraCalls(cameras[2]).empty());
    QCOMPARE(cameras.startAll()->text(), QString("Start All"));
    QCOMPARE(cameras.boxes.modal.size(), 1);
    QCOMPARE(cameras.boxes.modal.first().text,
             QString("Camera Beta (B-2) does not support \n data throughput analysis in Velmora."));
    // The roll-back leaves texts as they were; nothing but the setup was disabled.
    QCOMPARE(cameras.state(0), QString("Stopped Stop"));
    QCOMPARE(cameras.state(1), QString("Stopped Start"));
    QCOMPARE(cameras.state(2), QString("Stopped Start"));
    QVERIFY(cameras.exportButton(0)->isEnabled());
    QVERIFY(!cameras.setup()->isEnabled());
}

/// The format is the user's, and may change meanwhile.
void AcquisitionControlTest::settingsComeBack()
{
    MeasuringCameras cameras(1, Mode::Acquisition);
    const QStringList before = cameras.settings(0);
    QVERIFY(cameras.measure(0, 2));
    QStringList changed;
    const QStringList during = cameras.settings(0);
    for (int i = 0; i < before.size(); ++i) {
        if (during[i] != before[i])
            changed.append(during[i]);
    }
    QCOMPARE(changed, QStringList({"buffer_policy 0", "recent_frame 0", "buffers_queue_size 64"}));
    cameras.clickMeasure(0);
    QCOMPARE(cameras.settings(0), before);
}

void AcquisitionControlTest::closingWindowStops()
{
    MeasuringCameras cameras(2, Mode::Acquisition);
    const QStringList before = cameras.settings(1);
    QVERIFY(cameras.measure(0, 2));
    QVERIFY(cameras.measure(1, 2));
    cameras.rig.destroyForm();
    for (int camera = 0; camera < 2; ++camera)
        QVERIFY(!cameras.isMeasuring(camera));
    QCOMPARE(cameras.settings(1), before);
}

/// The engine reads the speed for itself; no row shows it.
void AcquisitionControlTest::nothingIsReadForTheOtherModesRow()
{
    MeasuringCameras cameras(1, Mode::Acquisition);
    cameras.clickMeasure(0);
    const std::vector<std::string> calls = cameras.host.cameraCalls(cameras[0]);
    QCOMPARE(int(std::count(calls.begin(), calls.end(), "get device_unit_register_value 380")), 1);
    QCOMPARE(int(std::count(calls.begin(), calls.end(), "get64 dp_param_value 67108864")), 0);
}

QTEST_MAIN(AcquisitionControlTest)
#include "AcquisitionControlTest.moc"
