#include "tests/ui/MeasuringCameras.h"

#include "zuCore/CxCameraManager.h"

#include <QSignalBlocker>
#include <QTest>

using rig::MeasuringCameras;
using scripted::Failure;
using scripted::Function;

/// Whatever ends a measurement, the camera is as it was before it.
class RestoreTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void changesTheCameraMeanwhile();
    void restores_data();
    void restores();
    void restoresInOrder_data() { restores_data(); }
    void restoresInOrder();
    void failedStartRestores_data();
    void failedStartRestores();
    void rollBackRestores();
    void lostCameraGetsEveryAttempt_data();
    void lostCameraGetsEveryAttempt();
    void cameraLostForAWhile();
    void cameraThatVanishedWithoutASignal();
    void restoresWhatStoodAtTheStart();
    void closingAnotherCameraLeavesTheRest();
    void hostThatAcquiresAgain_data();
    void hostThatAcquiresAgain();
    void rebuildLeavesTheMeasurement();
};

namespace {

enum Ending { ByButton, ByStopAll, ByWindow, ByPlugIn, ByClosing };

void end(MeasuringCameras &cameras, int ending)
{
    switch (ending) {
    case ByButton:
        cameras.clickMeasure(0);
        break;
    case ByStopAll:
        cameras.startAll()->setText("Stop All");
        cameras.clickStartAll();
        break;
    case ByWindow:
        cameras.rig.destroyForm();
        break;
    case ByPlugIn:
        scripted::Gui::instance().reset(); // a main window that goes with its docks
        break;
    case ByClosing:
        cameras.host.closeCamera(cameras[0]);
        break;
    }
}

/// Everything that this thread did with the camera.
QStringList callsOfTheWindow(const MeasuringCameras &cameras, int camera)
{
    QStringList list;
    for (const scripted::Call &call : cameras.host.calls()) {
        if (call.handle == cameras[camera] && isCameraFunction(call.function) &&
            call.thread == std::this_thread::get_id())
            list.append(QString::fromStdString(call.text()));
    }
    return list;
}

const QStringList restoring = {
    "stop",
    "set device_unit_selector 1",
    "set device_unit_register_selector 55",
    "set device_unit_register_value 1",
    "set test_pattern 9",
    "set test_pattern_generator_selector 6",
    "set output_bit_packing 3",
    "set output_bit_depth 8",
    "set imgdataformat 2",
    "set buffer_policy 1",
    "set column_fpn_correction 1",
    "set row_fpn_correction 4",
    "set LUTEnable 5",
    "set dp_unit_selector 1",
    "set dp_proc_selector 5",
    "set dp_param_selector 6",
    "set dp_param_value 10",
};

} // namespace

void RestoreTest::changesTheCameraMeanwhile()
{
    MeasuringCameras cameras(1);
    const QStringList before = cameras.settings(0);
    QVERIFY(cameras.measure(0, 3));
    const QStringList during = cameras.settings(0);
    int changed = 0;
    for (int i = 0; i < before.size(); ++i)
        changed += during[i] != before[i];
    QCOMPARE(changed, 11);
    QVERIFY(during.contains("imgdataformat 7"));
    QVERIFY(during.contains("test_pattern 11"));
}

void RestoreTest::restores_data()
{
    QTest::addColumn<int>("ending");
    QTest::newRow("the row's button") << int(ByButton);
    QTest::newRow("stop all") << int(ByStopAll);
    QTest::newRow("the window goes") << int(ByWindow);
    QTest::newRow("the main window goes") << int(ByPlugIn);
    QTest::newRow("the host closes the camera") << int(ByClosing);
}

void RestoreTest::restores()
{
    QFETCH(int, ending);
    MeasuringCameras cameras(2);
    const QStringList before = cameras.settings(0);
    const QStringList beforeOfTheOther = cameras.settings(1);
    QVERIFY(cameras.measure(0, 3));
    end(cameras, ending);
    QVERIFY(!cameras.isMeasuring(0));
    QCOMPARE(cameras.settings(0), before);
    QCOMPARE(cameras.settings(1), beforeOfTheOther);
}

void RestoreTest::restoresInOrder()
{
    QFETCH(int, ending);
    MeasuringCameras cameras(1);
    QVERIFY(cameras.measure(0, 3));
    cameras.host.clearCalls();
    end(cameras, ending);
    QCOMPARE(callsOfTheWindow(cameras, 0), restoring);
    // And its host may control it again.
    const QStringList sequence = cameras.sequence();
    QCOMPARE(sequence.size(), 2);
    QVERIFY(sequence[0].startsWith("stop "));
    QVERIFY(sequence[1].startsWith("release "));
}

void RestoreTest::failedStartRestores_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("value");
    QTest::newRow("buffer policy") << "buffer_policy" << 0;
    QTest::newRow("format") << "imgdataformat" << 7;
    QTest::newRow("depth") << "output_bit_depth" << 16;
    QTest::newRow("packing") << "output_bit_packing" << 0;
    QTest::newRow("generator") << "test_pattern_generator_selector" << 1;
    QTest::newRow("pattern") << "test_pattern" << 11;
    QTest::newRow("streaming") << "" << 0;
}

void RestoreTest::failedStartRestores()
{
    QFETCH(QString, name);
    QFETCH(int, value);
    MeasuringCameras cameras(1);
    // Every value has been saved once, so that none is put back from nothing.
    QVERIFY(cameras.measureAndStop(0, 1));
    const QStringList before = cameras.settings(0);
    cameras.host.fail(name.isEmpty() ? Failure::call(Function::StartAcquisition)
                                     : Failure::write(name.toStdString(), value));
    cameras.clickMeasure(0);
    QVERIFY(!cameras.isMeasuring(0));
    QCOMPARE(cameras.boxes.modal.size(), 1);
    QCOMPARE(cameras.settings(0), before);
}

void RestoreTest::rollBackRestores()
{
    MeasuringCameras cameras;
    QList<QStringList> before;
    for (int camera = 0; camera < 3; ++camera)
        before.append(cameras.settings(camera));
    QVERIFY(cameras.measure(2, 1)); // before the click
    cameras.host.fail({Function::StartAcquisition, {}, {}, cameras[1]});
    cameras.host.clearCalls();
    cameras.clickStartAll();
    for (int camera = 0; camera < 3; ++camera) {
        QVERIFY(!cameras.isMeasuring(camera));
        QCOMPARE(cameras.settings(camera), before[camera]);
    }
    QCOMPARE(callsOfTheWindow(cameras, 2), restoring);
}

void RestoreTest::lostCameraGetsEveryAttempt_data()
{
    restores_data();
}

void RestoreTest::lostCameraGetsEveryAttempt()
{
    QFETCH(int, ending);
    MeasuringCameras cameras(1);
    QVERIFY(cameras.measure(0, 3));
    cameras.host.setLost(cameras[0], true);
    cameras.host.clearCalls();
    end(cameras, ending);
    const QStringList calls = callsOfTheWindow(cameras, 0);
    for (const QString &call : restoring)
        QVERIFY2(calls.contains(call + " failed"), qPrintable(call));
    QCOMPARE(calls.size(), restoring.size());
}

void RestoreTest::cameraLostForAWhile()
{
    MeasuringCameras cameras(1);
    const QStringList before = cameras.settings(0);
    QVERIFY(cameras.measure(0, 3));
    cameras.host.setLost(cameras[0], true);
    cameras.tick();
    cameras.refresh();
    QCOMPARE(cameras.state(0), QString("Testing Stop")); // it goes on trying
    cameras.host.setLost(cameras[0], false);
    QVERIFY(cameras.deliver(0, 2));
    cameras.clickMeasure(0);
    QCOMPARE(cameras.settings(0), before);
    QCOMPARE(cameras.state(0), QString("Stopped Start"));
}

/// The next change of the host's list ends the measurement of a camera that is
/// on it no longer.
void RestoreTest::cameraThatVanishedWithoutASignal()
{
    MeasuringCameras cameras(2);
    QVERIFY(cameras.measure(0, 3));
    {
        const QSignalBlocker silence(CxCameraManager::instance());
        cameras.host.closeCamera(cameras[0]);
    }
    cameras.host.clearCalls();
    rig::openCamera("Omega", "O-9");
    QVERIFY(callsOfTheWindow(cameras, 0).contains("stop failed"));
    QCOMPARE(cameras.rig.row(cameras[0]), -1);
    QCOMPARE(cameras.rig.table()->rowCount(), 2);
    cameras.host.clearCalls();
    cameras.rig.destroyForm();
    QVERIFY(callsOfTheWindow(cameras, 0).isEmpty());
}

/// The user may change the camera between two measurements.
void RestoreTest::restoresWhatStoodAtTheStart()
{
    MeasuringCameras cameras(1);
    QVERIFY(cameras.measureAndStop(0, 1));
    cameras.host.setValue(cameras[0], "imgdataformat", 3);
    cameras.host.setValue(cameras[0], "output_bit_depth", 12);
    const QStringList before = cameras.settings(0);
    QVERIFY(cameras.measureAndStop(0, 1));
    QCOMPARE(cameras.settings(0), before);
}

void RestoreTest::closingAnotherCameraLeavesTheRest()
{
    MeasuringCameras cameras;
    for (int camera = 0; camera < 3; ++camera)
        QVERIFY(cameras.measure(camera, 1));
    cameras.host.closeCamera(cameras[1]);
    QCOMPARE(cameras.rig.row(cameras[1]), -1);
    QCOMPARE(cameras.rig.row(cameras[2]), 1);
    QCOMPARE(cameras.state(0), QString("Testing Stop"));
    QCOMPARE(cameras.state(2), QString("Testing Stop"));
    cameras.clickMeasure(2);
    QVERIFY(!cameras.isMeasuring(2));
    QVERIFY(cameras.isMeasuring(0));
}

void RestoreTest::hostThatAcquiresAgain_data()
{
    QTest::addColumn<int>("ending");
    QTest::newRow("button") << int(ByButton);
    QTest::newRow("stop all") << int(ByStopAll);
    QTest::newRow("window") << int(ByWindow);
}

/// A host may go on with its own acquisition of a camera as soon as it is released.
void RestoreTest::hostThatAcquiresAgain()
{
    QFETCH(int, ending);
    MeasuringCameras cameras;
    for (int camera = 0; camera < 3; ++camera)
        QVERIFY(cameras.measure(camera, 1));
    QStringList released;
    scripted::Gui::instance().setReleaseAction([&](void *camera) {
        released.append(cameras.label(camera));
        cameras.host.setHostAcquisition(camera, true);
        QCoreApplication::processEvents();
    });
    end(cameras, ending);
    scripted::Gui::instance().setReleaseAction(nullptr);
    released.sort();
    QCOMPARE(released, ending == ByButton ? QStringList("Alpha") : QStringList({"Alpha", "Beta", "Gamma"}));
    if (ending != ByWindow)
        QCOMPARE(cameras.cell(0, 1), QString("Acq"));
}

/// A camera that the host opens has the table built again under a running
/// measurement.
void RestoreTest::rebuildLeavesTheMeasurement()
{
    MeasuringCameras cameras(1);
    const QStringList before = cameras.settings(0);
    QVERIFY(cameras.measure(0, 3));
    rig::openCamera("Omega", "O-9");
    QVERIFY(cameras.isMeasuring(0));
    QCOMPARE(cameras.cell(0, 1), QString("Testing"));
    cameras.clickMeasure(0);
    QVERIFY(!cameras.isMeasuring(0));
    QCOMPARE(cameras.settings(0), before);
}

QTEST_MAIN(RestoreTest)
#include "RestoreTest.moc"
