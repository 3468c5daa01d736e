#include "tests/ui/MeasuringCameras.h"

#include <QApplication>
#include <QSignalSpy>
#include <QTest>

using rig::MeasuringCameras;
using scripted::Failure;
using scripted::Function;

/// A row's Measure button: what it does with the camera, the host and the row.
class MeasureButtonTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void starts();
    void stops();
    void progressBoxShowsWhatGoesOn();
    void progressBoxIsPlain();
    void progressBoxGoes();
    void exportButtonOfTheMeasuringCameraOnly();
    void setupWaitsForTheLastCamera();
    void startAllKeepsItsText();
    void failedStart_data();
    void failedStart();
    void failureBox();
    void namesAreNoRichText();
    void failedStopReleasesTheCamera();
    void camerasWithoutAnEngine_data();
    void camerasWithoutAnEngine();
    void otherSendersAreIgnored();
    void passesPeriodOfTheWindow();
    void passesCapacityOfTheWindow();
    void readsTheDefaultSpeedBeforeTheStart_data();
    void readsTheDefaultSpeedBeforeTheStart();
};

void MeasureButtonTest::starts()
{
    MeasuringCameras cameras(2);
    QCOMPARE(cameras.state(0), QString("Stopped Start"));
    cameras.clickMeasure(0);
    QVERIFY(cameras.isMeasuring(0));
    QCOMPARE(cameras.sequence(), QStringList({"start Alpha", "take Alpha"}));
    QCOMPARE(cameras.state(0), QString("Testing Stop"));
    QVERIFY(cameras.measureButton(0)->isEnabled());
    QVERIFY(!cameras.isMeasuring(1));
    QCOMPARE(cameras.state(1), QString("Stopped Start"));
    QVERIFY(cameras.boxes.modal.isEmpty());
}

void MeasureButtonTest::stops()
{
    MeasuringCameras cameras(2);
    cameras.clickMeasure(0);
    cameras.clickMeasure(1);
    cameras.host.clearCalls();
    cameras.clickMeasure(0);
    QVERIFY(!cameras.isMeasuring(0));
    QCOMPARE(cameras.sequence(), QStringList({"stop Alpha", "release Alpha"}));
    QCOMPARE(cameras.state(0), QString("Stopped Start"));
    QVERIFY(cameras.isMeasuring(1));
    QCOMPARE(cameras.state(1), QString("Testing Stop"));
    QVERIFY(cameras.boxes.modal.isEmpty());
}

void MeasureButtonTest::progressBoxShowsWhatGoesOn()
{
    MeasuringCameras cameras(2);
    rig::ProgressNotes progress(cameras);
    cameras.clickMeasure(1);
    QCOMPARE(progress.notes, QStringList("Beta: Starting measurement | Starting camera Beta (B-2)..."));
    progress.notes.clear();
    cameras.clickMeasure(1);
    QCOMPARE(progress.notes, QStringList("Beta: Stopping measurement | Stopping camera Beta (B-2)..."));
}

void MeasureButtonTest::progressBoxIsPlain()
{
    MeasuringCameras cameras(1);
    int boxes = 0;
    cameras.host.observe([&, gui = std::this_thread::get_id()](const scripted::Call &call) {
        if (call.thread != gui || ++boxes > 1)
            return;
        const QMessageBox *box = rig::progressBox();
        QVERIFY(box);
        QCOMPARE(box->parentWidget(), cameras.rig.form());
        QCOMPARE(box->standardButtons(), QMessageBox::StandardButtons(QMessageBox::NoButton));
        QVERIFY(box->buttons().isEmpty());
        QVERIFY(!box->isModal());
        QVERIFY(box->testAttribute(Qt::WA_DeleteOnClose));
    });
    cameras.clickMeasure(0);
    QVERIFY(boxes > 0);
    cameras.host.observe([](const scripted::Call &) {});
}

void MeasureButtonTest::progressBoxGoes()
{
    MeasuringCameras cameras(1);
    QPointer<QMessageBox> shown;
    rig::Meanwhile meanwhile("Starting camera", [&] { shown = rig::progressBox(); });
    cameras.clickMeasure(0);
    QVERIFY(meanwhile.hasRun());
    QVERIFY(!rig::progressBox());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!shown);
    QVERIFY(cameras.rig.form()->findChildren<QMessageBox *>().isEmpty());
}

void MeasureButtonTest::exportButtonOfTheMeasuringCameraOnly()
{
    MeasuringCameras cameras(2);
    cameras.clickMeasure(0);
    QVERIFY(!cameras.exportButton(0)->isEnabled());
    QVERIFY(cameras.exportButton(1)->isEnabled());
    cameras.clickMeasure(0);
    QVERIFY(cameras.exportButton(0)->isEnabled());
}

void MeasureButtonTest::setupWaitsForTheLastCamera()
{
    MeasuringCameras cameras(2);
    QVERIFY(cameras.setup()->isEnabled());
    cameras.clickMeasure(0);
    QVERIFY(!cameras.setup()->isEnabled());
    cameras.clickMeasure(1);
    cameras.clickMeasure(0);
    QVERIFY(!cameras.setup()->isEnabled());
    cameras.clickMeasure(1);
    QVERIFY(cameras.setup()->isEnabled());
}

void MeasureButtonTest::startAllKeepsItsText()
{
    MeasuringCameras cameras(1);
    cameras.clickMeasure(0);
    QCOMPARE(cameras.startAll()->text(), QString("Start All"));
    cameras.clickMeasure(0);
    cameras.clickStartAll();
    QCOMPARE(cameras.startAll()->text(), QString("Stop All"));
    cameras.clickMeasure(0);
    QCOMPARE(cameras.startAll()->text(), QString("Stop All"));
}

void MeasureButtonTest::failedStart_data()
{
    QTest::addColumn<int>("failing");
    QTest::addColumn<QStringList>("sequence");
    QTest::addColumn<QString>("logged"); // the details that the box refers to
    QTest::newRow("the camera refuses its preparation")
        << 0 << QStringList()
        << "CxCameraLineData::setupCameraParameters(): "
           "zuApi_SetParamInt(ZU_PRM_TEST_PATTERN, ZU_TESTPAT_DEVICE_SPEC_COUNTER) failed";
    QTest::newRow("the camera does not stream")
        << 1 << QStringList("start Beta failed")
        << "CxCameraLineData::startMeasurement(): zuApi_StartAcquisition failed";
}

void MeasureButtonTest::failedStart()
{
    QFETCH(int, failing);
    QFETCH(QString, logged);
    MeasuringCameras cameras(2);
    const QStringList before = cameras.settings(1);
    cameras.host.fail(failing == 0 ? Failure::write("test_pattern", 11)
                                   : Failure::call(Function::StartAcquisition));
    cameras.rig.table()->item(cameras.row(1), 1)->setText("outdated");
    cameras.clickMeasure(1);
    QTEST(cameras.sequence(), "sequence");
    QVERIFY(cameras.log.messages().contains(logged));
    QCOMPARE(cameras.settings(1), before);
    QCOMPARE(cameras.state(1), QString("Stopped Start"));
    QVERIFY(cameras.exportButton(1)->isEnabled());
    QVERIFY(cameras.setup()->isEnabled());
    QVERIFY(!rig::progressBox());
    QCOMPARE(cameras.boxes.modal.size(), 1);

    cameras.host.clearFailures();
    cameras.clickMeasure(1);
    QCOMPARE(cameras.state(1), QString("Testing Stop"));
}

void MeasureButtonTest::failureBox()
{
    MeasuringCameras cameras(2);
    cameras.host.fail(Failure::write("test_pattern", 11));
    bool progressVisible = true;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    cameras.boxes.onModal = [&] {
        progressVisible = rig::progressBox() != nullptr;
        if (const auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget()))
            icon = box->icon();
    };
    cameras.clickMeasure(1);
    QCOMPARE(cameras.boxes.modal.size(), 1);
    const rig::ShownBox &box = cameras.boxes.modal.first();
    QCOMPARE(box.title, QString("Failed to start measurement"));
    QCOMPARE(box.text, QString("Camera Beta (B-2) does not support data throughput analysis in Velmora. "
                               "See Error log for details."));
    QVERIFY(!box.hasParent);
    QCOMPARE(box.standardButtons, int(QMessageBox::Ok));
    QCOMPARE(icon, QMessageBox::Critical);
    QVERIFY(!progressVisible);
}

void MeasureButtonTest::namesAreNoRichText()
{
    MeasuringCameras cameras(0);
    const QPointer<QPushButton> button =
        cameras.rig.measureButton(cameras.rig.row(rig::openCamera("<b>M</b>", "1")));
    rig::PluginRig::click(button);
    rig::PluginRig::click(button);
    cameras.host.fail(Failure::call(Function::StartAcquisition));
    rig::PluginRig::click(button);
    QCOMPARE(cameras.boxes.progress.size(), 3); // a start, a stop, the start that failed
    QCOMPARE(cameras.boxes.modal.size(), 1);
    for (const rig::ShownBox &box : cameras.boxes.progress + cameras.boxes.modal) {
        QVERIFY2(box.text.contains(" <b>M</b> (1)"), qPrintable(box.text));
        QCOMPARE(box.textFormat, Qt::PlainText);
    }
}

/// A camera whose stream does not stop is stopped all the same.
void MeasureButtonTest::failedStopReleasesTheCamera()
{
    MeasuringCameras cameras(1);
    cameras.clickMeasure(0);
    cameras.host.fail(Failure::call(Function::StopAcquisition));
    cameras.host.clearCalls();
    cameras.clickMeasure(0);
    QCOMPARE(cameras.sequence(), QStringList({"stop Alpha failed", "release Alpha"}));
    QCOMPARE(cameras.state(0), QString("Stopped Start"));
    QVERIFY(cameras.setup()->isEnabled());
}

void MeasureButtonTest::camerasWithoutAnEngine_data()
{
    QTest::addColumn<QVariant>("handle");
    QTest::newRow("a handle that no camera has") << QVariant(qulonglong(7));
    QTest::newRow("null") << QVariant(qulonglong(0));
    QTest::newRow("none") << QVariant();
}

void MeasureButtonTest::camerasWithoutAnEngine()
{
    QFETCH(QVariant, handle);
    MeasuringCameras cameras(1);
    QPushButton *button = cameras.measureButton(0);
    button->setProperty("hCam", handle);
    rig::PluginRig::click(button);
    QVERIFY(cameras.host.calls().empty());
    QCOMPARE(cameras.state(0), QString("Stopped Start"));
    QVERIFY(cameras.boxes.progress.isEmpty());
    QVERIFY(cameras.boxes.modal.isEmpty());
}

void MeasureButtonTest::otherSendersAreIgnored()
{
    MeasuringCameras cameras(1);
    QCheckBox box;
    box.setProperty("hCam", cameras.measureButton(0)->property("hCam"));
    QVERIFY(connect(&box, SIGNAL(clicked()), cameras.rig.form(), SLOT(onBtnMeasure())));
    box.click();
    cameras.rig.call("onBtnMeasure"); // no sender at all
    QVERIFY(cameras.host.calls().empty());
    QVERIFY(cameras.boxes.progress.isEmpty());
}

void MeasureButtonTest::passesPeriodOfTheWindow()
{
    MeasuringCameras cameras(1);
    const auto periods = [&cameras] {
        return cameras.log.messages()
            .filter("Start Measure")
            .replaceInStrings(QRegularExpression(".*sampleInterval (\\d+),.*"), "\\1");
    };
    QVERIFY(cameras.measureAndStop(0, 1));
    QCOMPARE(periods(), QStringList("1024"));
    cameras.rig.loadSettings({{"DTGTSamplePeriod", 2048}});
    QVERIFY(cameras.measureAndStop(0, 1));
    QCOMPARE(periods(), QStringList({"1024", "2048"}));
}

/// Room for one frame's stamps: the last two frames are kept, here the fast ones.
void MeasureButtonTest::passesCapacityOfTheWindow()
{
    MeasuringCameras cameras(1);
    rig::PacedFrames frames;
    frames.ticks = {1000, 1000, 500};
    cameras.setFrames(0, frames);
    cameras.rig.loadSettings({{"DTGTMaxSamples", rig::PacedFrames::stampsPerFrame}});
    QVERIFY(cameras.measure(0, 4));
    cameras.rig.call("timerSignal");
    QCOMPARE(cameras.cell(0, 4), QString("512"));

    cameras.clickMeasure(0);
    cameras.rig.loadSettings({{"DTGTMaxSamples", 2 * rig::PacedFrames::stampsPerFrame}});
    cameras.setFrames(0, frames);
    QVERIFY(cameras.measure(0, 4));
    cameras.rig.call("timerSignal");
    QCOMPARE(cameras.cell(0, 4), QString("256"));
}

void MeasureButtonTest::readsTheDefaultSpeedBeforeTheStart_data()
{
    QTest::addColumn<bool>("automatic");
    QTest::addColumn<bool>("startSucceeds");
    QTest::newRow("automatic") << true << true;
    QTest::newRow("automatic, failing start") << true << false;
    QTest::newRow("by hand") << false << true;
}

void MeasureButtonTest::readsTheDefaultSpeedBeforeTheStart()
{
    QFETCH(bool, automatic);
    QFETCH(bool, startSucceeds);
    MeasuringCameras cameras(1);
    auto *box = cameras.rig.cellWidget<QCheckBox>(0, 8);
    const auto *edit = cameras.rig.cellWidget<QLineEdit>(0, 8);
    QCOMPARE(edit->text(), QString("380"));
    if (!automatic)
        box->click();
    cameras.host.setValue(cameras[0], "device_unit_register_value[8,4096]", 777);
    if (!startSucceeds)
        cameras.host.fail(Failure::write("imgdataformat", 7));
    cameras.host.clearCalls();
    cameras.clickMeasure(0);
    QCOMPARE(edit->text(), QString(automatic ? "777" : "380"));
    QCOMPARE(cameras.isMeasuring(0), startSucceeds);

    // The row's reading comes before the engine's own, both before the format.
    std::vector<std::string> calls = cameras.host.cameraCalls(cameras[0]);
    const auto format = std::find(calls.begin(), calls.end(), "get imgdataformat 2");
    QVERIFY(format != calls.end());
    QCOMPARE(int(std::count(calls.begin(), format, "get device_unit_register_value 777")), automatic ? 2 : 0);
    QCOMPARE(int(std::count(format, calls.end(), "get device_unit_register_value 777")), 0);
}

QTEST_MAIN(MeasureButtonTest)
#include "MeasureButtonTest.moc"
