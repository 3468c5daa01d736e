#include "tests/ui/MeasuringCameras.h"

#include <QApplication>
#include <QTest>

#include <algorithm>

using rig::MeasuringCameras;
using scripted::Failure;
using scripted::Function;

/// "Start All", which is "Stop All" after it: all cameras, one after the other.
class StartAllTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsInTheHostsOrder();
    void stopsInTheHostsOrder();
    void closingWindowStopsInTheOrderOfHandles();
    void progressNamesEachCamera();
    void progressBoxGoes();
    void startsOnlyTheOthers();
    void stopsOnlyThoseThatMeasure();
    void everythingMeasuresAlready();
    void onlyTheExactTextStarts_data();
    void onlyTheExactTextStarts();
    void firstFailureEndsTheStart_data();
    void firstFailureEndsTheStart();
    void failureBox();
    void namesAreNoRichText();
    void rollBackStopsThoseFromBefore();
    void rollBackComesAfterTheBoxes();
    void rollBackKeepsTextsAndDisabledWidgets();
    void startsAgainAfterARollBack();
    void failedStopReleasesTheCamera();
    void cameraWithoutARowIsPassedOver();
    void passesPeriodOfTheWindow();
    void readsTheDefaultSpeedOfEachCamera();
};

void StartAllTest::startsInTheHostsOrder()
{
    MeasuringCameras cameras;
    cameras.clickStartAll();
    QCOMPARE(cameras.sequence(), QStringList({"start Alpha", "take Alpha", "start Beta", "take Beta",
                                              "start Gamma", "take Gamma"}));
    for (int camera = 0; camera < 3; ++camera) {
        QCOMPARE(cameras.state(camera), QString("Testing Stop"));
        QVERIFY(!cameras.exportButton(camera)->isEnabled());
    }
    QVERIFY(!cameras.setup()->isEnabled());
    QCOMPARE(cameras.startAll()->text(), QString("Stop All"));
    QVERIFY(cameras.boxes.modal.isEmpty());
}

void StartAllTest::stopsInTheHostsOrder()
{
    MeasuringCameras cameras;
    cameras.clickStartAll();
    cameras.host.clearCalls();
    cameras.clickStartAll();
    QCOMPARE(cameras.sequence(), QStringList({"stop Alpha", "release Alpha", "stop Beta", "release Beta",
                                              "stop Gamma", "release Gamma"}));
    for (int camera = 0; camera < 3; ++camera) {
        QCOMPARE(cameras.state(camera), QString("Stopped Start"));
        QVERIFY(cameras.exportButton(camera)->isEnabled());
    }
    QVERIFY(cameras.setup()->isEnabled());
    QCOMPARE(cameras.startAll()->text(), QString("Start All"));
}

void StartAllTest::closingWindowStopsInTheOrderOfHandles()
{
    MeasuringCameras cameras;
    cameras.clickStartAll();
    cameras.host.clearCalls();
    cameras.rig.destroyForm();
    QList<ZUCORE_HANDLE> handles = cameras.handles();
    std::sort(handles.begin(), handles.end());
    QVERIFY(handles != cameras.handles());
    QStringList stops;
    for (ZUCORE_HANDLE camera : handles)
        stops.append("stop " + cameras.label(camera));
    QCOMPARE(cameras.sequence().filter("stop"), stops);
}

void StartAllTest::progressNamesEachCamera()
{
    MeasuringCameras cameras;
    rig::ProgressNotes progress(cameras);
    cameras.clickStartAll();
    QCOMPARE(progress.notes, QStringList({"Alpha: Starting measurement | Starting camera Alpha (A-1)...",
                                          "Beta: Starting measurement | Starting camera Beta (B-2)...",
                                          "Gamma: Starting measurement | Starting camera Gamma (C-3)..."}));
    progress.notes.clear();
    cameras.clickStartAll();
    QCOMPARE(progress.notes, QStringList({"Alpha: Stopping measurement | Stopping camera Alpha (A-1)...",
                                          "Beta: Stopping measurement | Stopping camera Beta (B-2)...",
                                          "Gamma: Stopping measurement | Stopping camera Gamma (C-3)..."}));
}

void StartAllTest::progressBoxGoes()
{
    MeasuringCameras cameras(2);
    QPointer<QMessageBox> shown;
    rig::Meanwhile meanwhile("Beta", [&] {
        shown = rig::progressBox();
        QCOMPARE(shown->parentWidget(), cameras.rig.form());
        QVERIFY(shown->buttons().isEmpty());
    });
    cameras.clickStartAll();
    QVERIFY(meanwhile.hasRun());
    QVERIFY(!rig::progressBox());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!shown);
    QVERIFY(cameras.rig.form()->findChildren<QMessageBox *>().isEmpty());
}

void StartAllTest::startsOnlyTheOthers()
{
    MeasuringCameras cameras;
    cameras.clickMeasure(1);
    cameras.host.clearCalls();
    cameras.clickStartAll();
    QCOMPARE(cameras.sequence(), QStringList({"start Alpha", "take Alpha", "start Gamma", "take Gamma"}));
    QCOMPARE(cameras.startAll()->text(), QString("Stop All"));
    QCOMPARE(cameras.state(1), QString("Testing Stop"));
}

void StartAllTest::stopsOnlyThoseThatMeasure()
{
    MeasuringCameras cameras;
    cameras.clickStartAll();
    cameras.clickMeasure(1);
    cameras.host.clearCalls();
    cameras.clickStartAll();
    QCOMPARE(cameras.sequence(), QStringList({"stop Alpha", "release Alpha", "stop Gamma", "release Gamma"}));
    QCOMPARE(cameras.startAll()->text(), QString("Start All"));
}

void StartAllTest::everythingMeasuresAlready()
{
    MeasuringCameras cameras(2);
    cameras.clickMeasure(0);
    cameras.clickMeasure(1);
    cameras.host.clearCalls();
    cameras.clickStartAll();
    QCOMPARE(cameras.sequence(), QStringList());
    QCOMPARE(cameras.startAll()->text(), QString("Stop All"));
    QVERIFY(!rig::progressBox());
}

void StartAllTest::onlyTheExactTextStarts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("starts");
    QTest::newRow("exact") << "Start All" << true;
    QTest::newRow("other case") << "Start all" << false;
    QTest::newRow("longer") << "Start All " << false;
    QTest::newRow("stop") << "Stop All" << false;
}

void StartAllTest::onlyTheExactTextStarts()
{
    QFETCH(QString, text);
    QFETCH(bool, starts);
    MeasuringCameras cameras(1);
    cameras.startAll()->setText(text);
    cameras.clickStartAll();
    QCOMPARE(cameras.isMeasuring(0), starts);
    QCOMPARE(cameras.startAll()->text(), QString(starts ? "Stop All" : "Start All"));
}

void StartAllTest::firstFailureEndsTheStart_data()
{
    QTest::addColumn<int>("failing");
    QTest::addColumn<QStringList>("sequence");
    QTest::newRow("first") << 0 << QStringList();
    QTest::newRow("second") << 1 << QStringList({"start Alpha", "take Alpha", "stop Alpha", "release Alpha"});
    QTest::newRow("third") << 2
                           << QStringList({"start Alpha", "take Alpha", "start Beta", "take Beta",
                                           "stop Alpha", "release Alpha", "stop Beta", "release Beta"});
}

void StartAllTest::firstFailureEndsTheStart()
{
    QFETCH(int, failing);
    MeasuringCameras cameras;
    QList<QStringList> before;
    for (int camera = 0; camera < 3; ++camera) {
        before.append(cameras.settings(camera));
        // Every row is updated, those of cameras that were not reached as well.
        cameras.rig.table()->item(cameras.row(camera), 1)->setText("outdated");
    }
    cameras.host.fail({Function::SetParamInt, "test_pattern", 11, cameras[failing]});
    cameras.clickStartAll();
    QTEST(cameras.sequence(), "sequence");
    QCOMPARE(cameras.boxes.modal.size(), 1);
    QCOMPARE(cameras.startAll()->text(), QString("Start All"));
    for (int camera = 0; camera < 3; ++camera) {
        QCOMPARE(cameras.settings(camera), before[camera]);
        QCOMPARE(cameras.cell(camera, 1), QString("Stopped"));
        QCOMPARE(cameras.host.cameraCalls(cameras[camera]).empty(), camera > failing);
    }
    QVERIFY(!rig::progressBox());
}

void StartAllTest::failureBox()
{
    MeasuringCameras cameras(2);
    cameras.host.fail({Function::StartAcquisition, {}, {}, cameras[1]});
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    int boxes = 0;
    bool progressVisible = false;
    cameras.boxes.onModal = [&] {
        progressVisible = rig::progressBox() != nullptr;
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            const auto *box = qobject_cast<QMessageBox *>(widget);
            if (box && box->isVisible() && box->isModal()) {
                ++boxes;
                icon = box->icon();
            }
        }
    };
    cameras.clickStartAll();
    QCOMPARE(cameras.boxes.modal.size(), 1);
    const rig::ShownBox &box = cameras.boxes.modal.first();
    QCOMPARE(box.title, QString("Failed to start measurement"));
    QCOMPARE(box.text, QString("Camera Beta (B-2) does not support \n data throughput analysis in Velmora."));
    QVERIFY(!box.hasParent);
    QCOMPARE(box.standardButtons, int(QMessageBox::Ok));
    QCOMPARE(icon, QMessageBox::Critical);
    QCOMPARE(boxes, 1);
    QVERIFY(progressVisible);
}

void StartAllTest::namesAreNoRichText()
{
    MeasuringCameras cameras(0);
    rig::openCamera("<b>M</b>", "1");
    cameras.clickStartAll();
    cameras.clickStartAll();
    cameras.host.fail(Failure::call(Function::StartAcquisition));
    cameras.clickStartAll();
    QCOMPARE(cameras.boxes.progress.size(), 3); // a start, a stop, the start that failed
    QCOMPARE(cameras.boxes.modal.size(), 1);
    for (const rig::ShownBox &box : cameras.boxes.progress + cameras.boxes.modal) {
        QVERIFY2(box.text.contains(" <b>M</b> (1)"), qPrintable(box.text));
        QCOMPARE(box.textFormat, Qt::PlainText);
    }
}

void StartAllTest::rollBackStopsThoseFromBefore()
{
    MeasuringCameras cameras;
    cameras.clickMeasure(2);
    cameras.host.clearCalls();
    cameras.host.fail({Function::StartAcquisition, {}, {}, cameras[1]});
    cameras.clickStartAll();
    QCOMPARE(cameras.sequence(), QStringList({"start Alpha", "take Alpha", "start Beta failed", "stop Alpha",
                                              "release Alpha", "stop Gamma", "release Gamma"}));
    QCOMPARE(cameras.cell(2, 1), QString("Stopped"));
}

/// The box about the failure stands alone, the roll-back shows none.
void StartAllTest::rollBackComesAfterTheBoxes()
{
    MeasuringCameras cameras;
    cameras.host.fail({Function::SetParamInt, "output_bit_depth", 16, cameras[1]});
    rig::ProgressNotes progress(cameras);
    QStringList whileFailing;
    cameras.boxes.onModal = [&] { whileFailing = cameras.sequence(); };
    cameras.clickStartAll();
    QCOMPARE(whileFailing, QStringList({"start Alpha", "take Alpha"}));
    QCOMPARE(progress.notes,
             QStringList({"Alpha: Starting measurement | Starting camera Alpha (A-1)...",
                          "Beta: Starting measurement | Starting camera Beta (B-2)...", "Alpha:  | "}));
}

void StartAllTest::rollBackKeepsTextsAndDisabledWidgets()
{
    MeasuringCameras cameras;
    cameras.host.fail({Function::StartAcquisition, {}, {}, cameras[1]});
    cameras.clickStartAll();
    QCOMPARE(cameras.state(0), QString("Stopped Stop"));
    QVERIFY(!cameras.exportButton(0)->isEnabled());
    QVERIFY(!cameras.setup()->isEnabled());
    QCOMPARE(cameras.state(1), QString("Stopped Start"));
    QVERIFY(cameras.exportButton(1)->isEnabled());
    QCOMPARE(cameras.state(2), QString("Stopped Start"));
}

void StartAllTest::startsAgainAfterARollBack()
{
    MeasuringCameras cameras;
    cameras.host.fail({Function::StartAcquisition, {}, {}, cameras[1]});
    cameras.clickStartAll();
    cameras.host.clearFailures();
    cameras.host.clearCalls();
    cameras.clickStartAll();
    QCOMPARE(cameras.sequence(), QStringList({"start Alpha", "take Alpha", "start Beta", "take Beta",
                                              "start Gamma", "take Gamma"}));
    cameras.clickStartAll();
    QCOMPARE(cameras.state(0), QString("Stopped Start"));
    QVERIFY(cameras.exportButton(0)->isEnabled());
    QVERIFY(cameras.setup()->isEnabled());
}

void StartAllTest::failedStopReleasesTheCamera()
{
    MeasuringCameras cameras(2);
    cameras.clickStartAll();
    cameras.host.fail({Function::StopAcquisition, {}, {}, cameras[0]});
    cameras.host.clearCalls();
    cameras.clickStartAll();
    QCOMPARE(cameras.sequence(),
             QStringList({"stop Alpha failed", "release Alpha", "stop Beta", "release Beta"}));
    QCOMPARE(cameras.state(0), QString("Stopped Start"));
}

void StartAllTest::cameraWithoutARowIsPassedOver()
{
    MeasuringCameras cameras(1);
    cameras.host.removeParameterSet(cameras.host.addCamera());
    rig::openCamera("Omega", "O-9"); // has the table built again
    cameras.host.clearCalls();
    cameras.clickStartAll();
    QCOMPARE(cameras.sequence(), QStringList({"start Alpha", "take Alpha", "start ?", "take ?"}));
    cameras.host.clearCalls();
    cameras.clickStartAll();
    QCOMPARE(cameras.sequence(), QStringList({"stop Alpha", "release Alpha", "stop ?", "release ?"}));
}

void StartAllTest::passesPeriodOfTheWindow()
{
    MeasuringCameras cameras(2);
    cameras.rig.loadSettings({{"DTGTSamplePeriod", 2048}});
    cameras.clickStartAll();
    QVERIFY(cameras.deliver(0, 1) && cameras.deliver(1, 1));
    cameras.clickStartAll();
    QCOMPARE(cameras.log.messages().filter("Start Measure").filter("sampleInterval 2048,").size(), 2);
}

void StartAllTest::readsTheDefaultSpeedOfEachCamera()
{
    MeasuringCameras cameras(2);
    cameras.host.setValue(cameras[0], "device_unit_register_value[8,4096]", 111);
    cameras.host.setValue(cameras[1], "device_unit_register_value[8,4096]", 222);
    cameras.rig.cellWidget<QCheckBox>(0, 8)->click(); // by hand from here on
    cameras.host.clearCalls();
    cameras.clickStartAll();
    QCOMPARE(cameras.rig.cellWidget<QLineEdit>(0, 8)->text(), QString("380"));
    QCOMPARE(cameras.rig.cellWidget<QLineEdit>(1, 8)->text(), QString("222"));
    const std::vector<std::string> calls = cameras.host.cameraCalls(cameras[1]);
    QCOMPARE(int(std::count(calls.begin(), calls.end(), "get device_unit_register_value 222")), 2);
}

QTEST_MAIN(StartAllTest)
#include "StartAllTest.moc"
