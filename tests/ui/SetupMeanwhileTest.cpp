#include "tests/ui/MeasuringCameras.h"
#include "tests/ui/SetupChange.h"

#include <QTest>

using rig::MeasuringCameras;
using rig::SetupDialog;
using rig::withSetup;
using namespace rig::change;

/// What may happen while the setup dialog is open.
class SetupMeanwhileTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cameraCloses();
    void cameraOpens();
    void measurementStarts_data();
    void measurementStarts();
    void settingsAreLoaded_data();
    void settingsAreLoaded();
    void windowGoes_data();
    void windowGoes();
};

namespace {

QPushButton *measureButton(const MeasuringCameras &cameras, int mode)
{
    return cameras.rig.cellWidget<QPushButton>(cameras.row(0), mode == 0 ? 2 : 3);
}

QString header(const MeasuringCameras &cameras, int column)
{
    return cameras.rig.table()->horizontalHeaderItem(column)->text();
}

} // namespace

void SetupMeanwhileTest::cameraCloses()
{
    MeasuringCameras cameras(2);
    QVERIFY(withSetup(cameras.rig, [&](const SetupDialog &setup) {
        enter(setup, Both);
        cameras.host.closeCamera(cameras[0]);
        setup.clickOk();
    }));
    QCOMPARE(cameras.row(0), -1);
    QCOMPARE(cameras.row(1), 0);
    QCOMPARE(header(cameras, 2), "Data Format");
}

void SetupMeanwhileTest::cameraOpens()
{
    MeasuringCameras cameras(1);
    ZUCORE_HANDLE another = nullptr;
    QVERIFY(withSetup(cameras.rig, [&](const SetupDialog &setup) {
        enter(setup, Both);
        another = rig::openCamera("Another", "9");
        setup.clickOk();
    }));
    QCOMPARE(cameras.rig.row(another), 1);
    QCOMPARE(header(cameras, 2), "Data Format");
    QVERIFY(cameras.rig.axisRect(another));
}

void SetupMeanwhileTest::measurementStarts_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("change");
    for (int mode : {0, 1}) {
        for (int change : {Nothing, Period, Mode, Both})
            QTest::addRow("mode %d %s", mode, changeNames[change]) << mode << change;
    }
}

/// Not by a click, as the dialog is modal.
void SetupMeanwhileTest::measurementStarts()
{
    QFETCH(int, mode);
    QFETCH(int, change);
    MeasuringCameras cameras(1);
    cameras.rig.loadSettings({{"DTGTSamplePeriod", 4096}, {"DTGTMeasMode", mode}}); // within the dialog
    const QStringList settings = cameras.settings(0);
    QVERIFY(withSetup(cameras.rig, [&](const SetupDialog &setup) {
        measureButton(cameras, mode)->click();
        QVERIFY(cameras.deliver(0, 3));
        cameras.host.deliver(cameras[0], 200); // comes in while the records are cleared
        enter(setup, change);
        setup.clickOk();
    }));
    QVERIFY(cameras.isMeasuring(0));
    QVERIFY(cameras.deliver(0, 3));
    cameras.tick();
    const int modeNow = change == Mode || change == Both ? 1 - mode : mode;
    QPushButton *button = measureButton(cameras, modeNow);
    QCOMPARE(button->text(), "Stop");
    button->click();
    QVERIFY(!cameras.isMeasuring(0));
    QCOMPARE(cameras.settings(0), settings);
    QVERIFY(cameras.setup()->isEnabled());
    cameras.refresh();
}

void SetupMeanwhileTest::settingsAreLoaded_data()
{
    QTest::addColumn<bool>("accepted");
    QTest::newRow("OK") << true;
    QTest::newRow("cancel") << false;
}

/// By the host, with the other mode: OK goes back to the one that the dialog shows.
void SetupMeanwhileTest::settingsAreLoaded()
{
    QFETCH(bool, accepted);
    MeasuringCameras cameras(1);
    cameras.rig.loadSettings({{"DTGTSamplePeriod", 4096}, {"DTGTMeasMode", 0}});
    QVERIFY(withSetup(cameras.rig, [&](const SetupDialog &setup) {
        cameras.rig.loadSettings({{"DTGTSamplePeriod", 8192}, {"DTGTMeasMode", 1}});
        QCOMPARE(header(cameras, 2), "Data Format");
        if (accepted)
            setup.clickOk();
        else
            setup.clickCancel();
    }));
    QCOMPARE(header(cameras, 2), accepted ? "Measure" : "Data Format");
    QPushButton *button = measureButton(cameras, accepted ? 0 : 1);
    QVERIFY(button);
    button->click();
    QVERIFY(cameras.deliver(0, 1));
    // Transport data in throughput mode only.
    QCOMPARE(cameras.host.value(cameras[0], "imgdataformat") == 7, accepted);
    button->click();
}

void SetupMeanwhileTest::windowGoes_data()
{
    QTest::addColumn<bool>("docked");
    QTest::addColumn<bool>("accepted");
    QTest::newRow("alone") << false << false;
    QTest::newRow("alone, then OK") << false << true;
    QTest::newRow("with its dock") << true << false;
}

void SetupMeanwhileTest::windowGoes()
{
    QFETCH(bool, docked);
    QFETCH(bool, accepted);
    MeasuringCameras cameras(1);
    QPointer<QWidget> dock(docked ? new QWidget : nullptr);
    cameras.rig.form()->setParent(dock);
    cameras.rig.form()->show();
    if (dock)
        dock->show();
    QPointer<QDialog> dialog;
    QVERIFY(withSetup(cameras.rig, [&](const SetupDialog &setup) {
        dialog = setup.dialog();
        enter(setup, Both);
        if (docked)
            delete dock.data();
        else
            cameras.rig.destroyForm();
        QCOMPARE(dialog.isNull(), docked);
        if (dialog)
            QVERIFY(!dialog->isVisible());
        if (accepted)
            dialog->accept();
    }));
    QVERIFY(!dialog);
    QVERIFY(!cameras.rig.form());
}

QTEST_MAIN(SetupMeanwhileTest)
#include "SetupMeanwhileTest.moc"
