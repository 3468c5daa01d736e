#include "tests/ui/Interruption.h"

#include <QTest>

using namespace rig;

/// Starting and stopping let the event loop run, and so does every message box.
class ReentryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void closesInItsStartingBox();
    void closesInItsStoppingBox();
    void closesInItsFailureBox();
    void closesWhileAllStart_data();
    void closesWhileAllStart();
    void closesWhileAllStop_data();
    void closesWhileAllStop();
    void closesInTheFailureBoxOfAll_data();
    void closesInTheFailureBoxOfAll();
    void secondClickStartsOnce();
    void secondClickStopsOnce();
    void stopAllReleasesOnlyWhatItStopped();
    void startAllMeetsACameraStartedMeanwhile();
    void tickWhileABoxIsShown_data();
    void tickWhileABoxIsShown();
    void windowGoesInTheStartingBox();
    void windowGoesWhileAllStart();
    void windowGoesInTheStoppingBox_data();
    void windowGoesInTheStoppingBox();
    void windowGoesInTheFailureBoxOfAll();
    void cameraOpensInAStartingBox_data();
    void cameraOpensInAStartingBox();
};

namespace {

QStringList only(const QStringList &sequence, const QString &verb)
{
    return sequence.filter(verb);
}

} // namespace

void ReentryTest::closesInItsStartingBox()
{
    MeasuringCameras cameras;
    QVERIFY(interrupt(cameras, Start, [&] {
        cameras.host.closeCamera(cameras[Beta]);
        cameras.host.clearCalls();
    }));
    QVERIFY(cameras.host.cameraCalls(cameras[Beta]).empty());
    QCOMPARE(cameras.sequence(), QStringList());
    QVERIFY(cameras.boxes.modal.isEmpty());
    QVERIFY(cameras.setup()->isEnabled());
}

void ReentryTest::closesInItsStoppingBox()
{
    MeasuringCameras cameras;
    cameras.clickMeasure(Beta);
    cameras.host.clearCalls();
    QVERIFY(interrupt(cameras, Stop, [&] { cameras.host.closeCamera(cameras[Beta]); }));
    QCOMPARE(only(cameras.sequence(), "stop"), QStringList("stop Beta"));
    QVERIFY(cameras.setup()->isEnabled());
}

void ReentryTest::closesInItsFailureBox()
{
    MeasuringCameras cameras;
    refuse(cameras, Beta);
    QVERIFY(interrupt(cameras, FailedStart, [&] { cameras.host.closeCamera(cameras[Beta]); }));
    QCOMPARE(cameras.boxes.modal.size(), 1);
    QCOMPARE(cameras.row(Gamma), 1);
    cameras.clickMeasure(Gamma);
    QVERIFY(cameras.isMeasuring(Gamma));
}

void ReentryTest::closesWhileAllStart_data()
{
    QTest::addColumn<int>("closing");
    QTest::addColumn<QStringList>("started");
    QTest::newRow("the one before") << Alpha << QStringList({"start Alpha", "start Beta", "start Gamma"});
    QTest::newRow("itself") << Beta << QStringList({"start Alpha", "start Gamma"});
    QTest::newRow("the one behind") << Gamma << QStringList({"start Alpha", "start Beta"});
}

/// A camera that has gone is no failed start.
void ReentryTest::closesWhileAllStart()
{
    QFETCH(int, closing);
    MeasuringCameras cameras;
    QVERIFY(interrupt(cameras, StartAll, [&] { cameras.host.closeCamera(cameras[closing]); }));
    QTEST(only(cameras.sequence(), "start"), "started");
    QVERIFY(cameras.boxes.modal.isEmpty());
    QCOMPARE(cameras.startAll()->text(), QString("Stop All"));
    QVERIFY(!cameras.setup()->isEnabled());
}

void ReentryTest::closesWhileAllStop_data()
{
    QTest::addColumn<int>("closing");
    QTest::newRow("the one before") << Alpha;
    QTest::newRow("itself") << Beta;
    QTest::newRow("the one behind") << Gamma;
}

void ReentryTest::closesWhileAllStop()
{
    QFETCH(int, closing);
    MeasuringCameras cameras;
    cameras.clickStartAll();
    cameras.host.clearCalls();
    QVERIFY(interrupt(cameras, StopAll, [&] { cameras.host.closeCamera(cameras[closing]); }));
    QStringList stops = only(cameras.sequence(), "stop");
    stops.sort();
    QCOMPARE(stops, QStringList({"stop Alpha", "stop Beta", "stop Gamma"}));
    QCOMPARE(cameras.startAll()->text(), QString("Start All"));
    QVERIFY(cameras.setup()->isEnabled());
}

void ReentryTest::closesInTheFailureBoxOfAll_data()
{
    QTest::addColumn<int>("closing");
    QTest::newRow("a started one") << Alpha;
    QTest::newRow("the failed one") << Beta;
    QTest::newRow("one that was not reached") << Gamma;
}

void ReentryTest::closesInTheFailureBoxOfAll()
{
    QFETCH(int, closing);
    MeasuringCameras cameras;
    const QStringList before = cameras.settings(Alpha);
    refuse(cameras, Beta);
    QVERIFY(interrupt(cameras, FailedStartAll, [&] { cameras.host.closeCamera(cameras[closing]); }));
    QCOMPARE(only(cameras.sequence(), "stop"), QStringList("stop Alpha"));
    QCOMPARE(cameras.settings(Alpha), before);
    QCOMPARE(cameras.startAll()->text(), QString("Start All"));
    QCOMPARE(cameras.rig.table()->rowCount(), 2);
}

void ReentryTest::secondClickStartsOnce()
{
    MeasuringCameras cameras;
    QVERIFY(interrupt(cameras, Start, [&] { cameras.clickMeasure(Beta); }));
    QCOMPARE(only(cameras.sequence(), "start"), QStringList("start Beta"));
    QCOMPARE(only(cameras.sequence(), "take"), QStringList("take Beta"));
    QVERIFY(cameras.boxes.modal.isEmpty()); // it did not fail the second time
    QCOMPARE(cameras.state(Beta), QString("Testing Stop"));
    QVERIFY(!cameras.exportButton(Beta)->isEnabled());
}

void ReentryTest::secondClickStopsOnce()
{
    MeasuringCameras cameras;
    cameras.clickMeasure(Beta);
    cameras.host.clearCalls();
    QVERIFY(interrupt(cameras, Stop, [&] { cameras.clickMeasure(Beta); }));
    QCOMPARE(only(cameras.sequence(), "stop"), QStringList("stop Beta"));
    QCOMPARE(cameras.state(Beta), QString("Stopped Start"));
    QVERIFY(cameras.exportButton(Beta)->isEnabled());
}

/// Its button stopped the camera meanwhile and released it.
void ReentryTest::stopAllReleasesOnlyWhatItStopped()
{
    MeasuringCameras cameras;
    cameras.clickStartAll();
    cameras.host.clearCalls();
    QVERIFY(interrupt(cameras, StopAll, [&] { cameras.clickMeasure(Beta); }));
    QCOMPARE(cameras.sequence(), QStringList({"stop Alpha", "release Alpha", "stop Beta", "release Beta",
                                              "stop Gamma", "release Gamma"}));
    QCOMPARE(cameras.state(Beta), QString("Stopped Start"));
    QVERIFY(cameras.exportButton(Beta)->isEnabled());
}

void ReentryTest::startAllMeetsACameraStartedMeanwhile()
{
    MeasuringCameras cameras;
    QVERIFY(interrupt(cameras, StartAll, [&] { cameras.clickMeasure(Gamma); }));
    QCOMPARE(cameras.sequence(), QStringList({"start Alpha", "take Alpha", "start Gamma", "take Gamma",
                                              "start Beta", "take Beta"}));
    QVERIFY(cameras.boxes.modal.isEmpty());
    QCOMPARE(cameras.startAll()->text(), QString("Stop All"));
}

void ReentryTest::tickWhileABoxIsShown_data()
{
    QTest::addColumn<int>("situation");
    for (int situation = 0; situation < SituationCount; ++situation)
        QTest::newRow(situationNames[situation]) << situation;
}

/// A tick is no part of starting and stopping: they end as without it.
void ReentryTest::tickWhileABoxIsShown()
{
    QFETCH(int, situation);
    QStringList sequences[2];
    QStringList states[2];
    for (int ticks : {0, 1}) {
        MeasuringCameras cameras;
        prepare(cameras, situation);
        QVERIFY(interrupt(cameras, situation, [&] {
            if (ticks > 0)
                cameras.tick();
        }));
        sequences[ticks] = cameras.sequence();
        for (int camera : {Alpha, Beta, Gamma})
            states[ticks].append(cameras.state(camera));
        states[ticks].append(cameras.startAll()->text());
    }
    QCOMPARE(sequences[1], sequences[0]);
    QCOMPARE(states[1], states[0]);
}

void ReentryTest::windowGoesInTheStartingBox()
{
    MeasuringCameras cameras;
    QVERIFY(interrupt(cameras, Start, [&] {
        cameras.rig.destroyForm();
        cameras.host.clearCalls();
    }));
    QVERIFY(cameras.host.calls().empty());
    QVERIFY(cameras.boxes.modal.isEmpty());
}

void ReentryTest::windowGoesWhileAllStart()
{
    MeasuringCameras cameras;
    const QStringList before = cameras.settings(Alpha);
    QVERIFY(interrupt(cameras, StartAll, [&] { cameras.rig.destroyForm(); }));
    QCOMPARE(only(cameras.sequence(), "start"), QStringList("start Alpha"));
    QCOMPARE(only(cameras.sequence(), "stop"), QStringList("stop Alpha"));
    QCOMPARE(cameras.settings(Alpha), before);
    QVERIFY(cameras.boxes.modal.isEmpty());
}

void ReentryTest::windowGoesInTheStoppingBox_data()
{
    QTest::addColumn<int>("situation");
    QTest::addColumn<QStringList>("stops");
    QTest::newRow("one") << int(Stop) << QStringList("stop Beta");
    QTest::newRow("all") << int(StopAll) << QStringList({"stop Alpha", "stop Beta", "stop Gamma"});
}

void ReentryTest::windowGoesInTheStoppingBox()
{
    QFETCH(int, situation);
    MeasuringCameras cameras;
    const QStringList before = cameras.settings(Beta);
    prepare(cameras, situation);
    QVERIFY(interrupt(cameras, situation, [&] { cameras.rig.destroyForm(); }));
    QTEST(only(cameras.sequence(), "stop"), "stops");
    QCOMPARE(cameras.settings(Beta), before);
}

void ReentryTest::windowGoesInTheFailureBoxOfAll()
{
    MeasuringCameras cameras;
    const QStringList before = cameras.settings(Alpha);
    refuse(cameras, Beta);
    QVERIFY(interrupt(cameras, FailedStartAll, [&] { cameras.rig.destroyForm(); }));
    QCOMPARE(only(cameras.sequence(), "stop"), QStringList("stop Alpha"));
    QCOMPARE(cameras.settings(Alpha), before);
}

void ReentryTest::cameraOpensInAStartingBox_data()
{
    QTest::addColumn<int>("situation");
    QTest::newRow("one") << int(Start);
    QTest::newRow("all") << int(StartAll);
}

/// The row's widgets, the clicked button among them, have been made anew.
void ReentryTest::cameraOpensInAStartingBox()
{
    QFETCH(int, situation);
    MeasuringCameras cameras;
    QVERIFY(interrupt(cameras, situation, [&] { openCamera("Omega", "O-9"); }));
    QCOMPARE(cameras.rig.table()->rowCount(), 4);
    QCOMPARE(cameras.state(Beta), QString("Testing Stop"));
    QVERIFY(!cameras.exportButton(Beta)->isEnabled());
    QVERIFY(!cameras.setup()->isEnabled());
    cameras.clickMeasure(Beta);
    QVERIFY(!cameras.isMeasuring(Beta));
}

QTEST_MAIN(ReentryTest)
#include "ReentryTest.moc"
