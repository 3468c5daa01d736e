#include "tests/ui/Interruption.h"

#include "zuCore/CxCameraManager.h"

#include <QTest>

using namespace rig;

/// Whatever happens in whichever box: the window, the host and the cameras stay
/// in step, and every camera is restored in the end.
class ReentryMatrixTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void staysInStep_data();
    void staysInStep();
};

namespace {

enum Event {
    ClosesBeta,
    ClosesAlpha,
    ClosesGamma,
    ClosesAll,
    OpensAnother,
    Ticks,
    RefreshesGraph,
    ClicksBeta,
    ClicksGamma,
    ClicksStartAll,
    LoadsSettings,
    ClicksPlotBox,
    DestroysWindow
};
const QStringList eventNames = {
    "Beta closes",    "Alpha closes", "Gamma closes",    "all close",      "another opens",
    "a tick",         "a refresh",    "the same button", "Gamma's button", "the common button",
    "other settings", "a plot box",   "the window goes"};

void perform(MeasuringCameras &cameras, int event)
{
    switch (event) {
    case ClosesBeta:
        return cameras.host.closeCamera(cameras[Beta]);
    case ClosesAlpha:
        return cameras.host.closeCamera(cameras[Alpha]);
    case ClosesGamma:
        return cameras.host.closeCamera(cameras[Gamma]);
    case ClosesAll:
        for (ZUCORE_HANDLE camera : cameras.handles())
            cameras.host.closeCamera(camera);
        return;
    case OpensAnother:
        rig::openCamera("Omega", "O-9");
        return;
    case Ticks:
        return cameras.tick();
    case RefreshesGraph:
        return cameras.refresh();
    case ClicksBeta:
        return cameras.clickMeasure(Beta);
    case ClicksGamma:
        return cameras.clickMeasure(Gamma);
    case ClicksStartAll:
        return cameras.clickStartAll();
    case LoadsSettings:
        return cameras.rig.loadSettings({{"DTGTSamplePeriod", 2048}});
    case ClicksPlotBox:
        return cameras.plotBox(Beta)->click();
    case DestroysWindow:
        return cameras.rig.destroyForm();
    }
}

QString lastControl(const MeasuringCameras &cameras, int camera)
{
    const QStringList controls =
        cameras.sequence().filter(QRegularExpression("(take|release) " + cameras.label(cameras[camera])));
    return controls.isEmpty() ? "release" : controls.last().section(' ', 0, 0);
}

void compareWindowWithCameras(const MeasuringCameras &cameras)
{
    QVERIFY(!rig::progressBox());
    const QList<ZUCORE_HANDLE> opened = CxCameraManager::instance()->openedCameras();
    bool anyMeasures = false;
    for (int camera : {Alpha, Beta, Gamma}) {
        const bool isOpen = opened.contains(cameras[camera]);
        const bool measures = cameras.isMeasuring(camera);
        QCOMPARE(cameras.row(camera) >= 0, isOpen);
        QVERIFY(isOpen || !measures);
        if (!isOpen)
            continue;
        anyMeasures = anyMeasures || measures;
        QCOMPARE(cameras.cell(camera, 1), QString(measures ? "Testing" : "Stopped"));
        QCOMPARE(lastControl(cameras, camera), QString(measures ? "take" : "release"));
        if (measures)
            QCOMPARE(cameras.measureButton(camera)->text(), QString("Stop"));
    }
    if (anyMeasures)
        QVERIFY(!cameras.setup()->isEnabled());
}

} // namespace

void ReentryMatrixTest::staysInStep_data()
{
    QTest::addColumn<int>("situation");
    QTest::addColumn<int>("event");
    for (int situation = 0; situation < SituationCount; ++situation) {
        for (int event = 0; event < eventNames.size(); ++event)
            QTest::addRow("%s, %s", situationNames[situation], qPrintable(eventNames[event]))
                << situation << event;
    }
}

void ReentryMatrixTest::staysInStep()
{
    QFETCH(int, situation);
    QFETCH(int, event);
    MeasuringCameras cameras;
    QList<QStringList> before;
    for (int camera : {Alpha, Beta, Gamma})
        before.append(cameras.settings(camera));
    prepare(cameras, situation);
    QVERIFY(interrupt(cameras, situation, [&] { perform(cameras, event); }));
    QCOMPARE(cameras.rig.form() == nullptr, event == DestroysWindow);
    if (cameras.rig.form()) {
        compareWindowWithCameras(cameras);
        cameras.tick();
    }
    cameras.rig.destroyForm();
    for (int camera : {Alpha, Beta, Gamma}) {
        QVERIFY(!cameras.isMeasuring(camera));
        QCOMPARE(cameras.settings(camera), before[camera]);
    }
}

QTEST_MAIN(ReentryMatrixTest)
#include "ReentryMatrixTest.moc"
