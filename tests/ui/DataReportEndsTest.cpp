#include "tests/ui/ExportScene.h"

#include "tests/measurement/report/FileLimit.h"
#include "tests/measurement/report/OtherUser.h"

#include <QDir>
#include <QTest>

using namespace rig;

/// Reports that end early: the user closes the dialog, the window goes, the disk
/// is full.
class DataReportEndsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void closing_data();
    void closing();
    void windowGoes_data();
    void windowGoes();
    void windowGoesBeforeWhatWasPutOff();
    void windowGoesInTheFileDialog();
    void windowGoesInTheInformationBox();
    void unusableFile_data();
    void unusableFile();
    void closedDirectory();
    void sizeLimit();
    void removedFile();
    void measuringCameraGoesOn_data();
    void measuringCameraGoesOn();
};

namespace {

/// What the log has about exports.
QStringList reasons(const ExportScene &scene)
{
    return scene.cameras.log.messages().filter("exportDataToFile");
}

/// Neither the row nor the cameras have suffered.
void compareUsable(ExportScene &scene)
{
    MeasuringCameras &cameras = scene.cameras;
    QVERIFY(cameras.boxes.modal.isEmpty());
    QVERIFY(cameras.rig.form()->findChildren<QDialog *>().isEmpty());
    QVERIFY(cameras.deliver(Beta, 2));
    cameras.tick();
    QCOMPARE(cameras.cell(Beta, 4), QString("512"));
    QVERIFY(scene.exportsAgain());
    cameras.clickMeasure(Alpha);
    QVERIFY(cameras.isMeasuring(Alpha));
}

} // namespace

void DataReportEndsTest::closing_data()
{
    QTest::addColumn<int>("look");
    QTest::newRow("before the rows") << 0;
    QTest::newRow("at the first look") << 1;
    QTest::newRow("at the second look") << 2;
}

void DataReportEndsTest::closing()
{
    QFETCH(int, look);
    ExportScene scene(Moment::AmongRows);
    scene.report.closeAt(look);
    scene.report.click(Alpha);
    const QByteArrayList rows = scene.report.rows();
    QVERIFY(rows != QByteArrayList{"broken"});
    QVERIFY(rows.size() < RowExport::longRows);
    QCOMPARE(rows.isEmpty(), look == 0);
    if (look > 0) {
        // Each frame's first stamp has no row, the next one is 20 ns later.
        const QByteArrayList last = rows.last().split(',');
        QCOMPARE(last.size(), 9);
        const int sample = last[3].toInt() / 1024;
        QCOMPARE(last[2].toInt(), 20 * sample);
        QCOMPARE((last[0].toInt() - 1) * 94399 + sample, rows.size());
    }
    QCOMPARE(reasons(scene), QStringList());
    compareUsable(scene);
}

void DataReportEndsTest::windowGoes_data()
{
    ExportScene::addMoments();
}

void DataReportEndsTest::windowGoes()
{
    QFETCH(int, moment);
    ExportScene scene{Moment(moment)};
    MeasuringCameras &cameras = scene.cameras;
    QPointer<QProgressDialog> dialog;
    QVERIFY(scene.exportWhile([&] {
        dialog = RowExport::progress();
        cameras.refresh(); // to be dropped
        cameras.clickMeasure(Alpha);
        cameras.rig.destroyForm();
    }));
    QVERIFY(!dialog);
    QVERIFY(!cameras.isMeasuring(Beta));
    QCOMPARE(cameras.sequence(), QStringList({"stop Beta", "release Beta"}));
    scene.catchUp();
    QCOMPARE(cameras.sequence().size(), 2);

    // The next window exports as if nothing had been.
    cameras.rig.createForm();
    cameras.showTime(-60.0, 60.0);
    QVERIFY(cameras.measureAndStop(Alpha, 2));
    QVERIFY(scene.exportsAgain());
}

void DataReportEndsTest::windowGoesBeforeWhatWasPutOff()
{
    ExportScene scene;
    QVERIFY(scene.exportWhile([&] { scene.cameras.clickMeasure(Alpha); }));
    scene.cameras.rig.destroyForm();
    scene.catchUp();
    QVERIFY(!scene.cameras.isMeasuring(Alpha));
}

void DataReportEndsTest::windowGoesInTheFileDialog()
{
    ExportScene scene;
    QPointer<QFileDialog> dialog;
    scene.report.onFileDialog = [&](QFileDialog &opened) {
        dialog = &opened;
        scene.cameras.rig.destroyForm();
    };
    scene.report.click(Alpha);
    QCOMPARE(scene.report.fileDialogs, 1);
    QVERIFY(!dialog);
    QVERIFY(!QFile::exists(scene.report.path()));
    QVERIFY(!scene.cameras.isMeasuring(Beta));
}

void DataReportEndsTest::windowGoesInTheInformationBox()
{
    ExportScene scene;
    QPointer<QWidget> box;
    scene.cameras.boxes.onModal = [&] {
        box = QApplication::activeModalWidget();
        scene.cameras.rig.destroyForm();
    };
    scene.report.click(Gamma);
    QCOMPARE(scene.cameras.boxes.modal.size(), 1);
    QVERIFY(!box);
    QVERIFY(!scene.cameras.rig.form());
    QCOMPARE(scene.report.fileDialogs, 0);
}

void DataReportEndsTest::unusableFile_data()
{
    QTest::addColumn<QString>("name"); // in the report's directory unless absolute
    QTest::addColumn<QString>("reason");
    QTest::newRow("full disk") << "/dev/full"
                               << "Cannot write %1: No space left on device";
    QTest::newRow("a file as directory") << "file/report.csv"
                                         << "Cannot open %1: Not a directory";
    QTest::newRow("removed directory") << "gone/report.csv"
                                       << "Cannot open %1: No such file or directory";
    QTest::newRow("no place for files") << "/proc/report.csv"
                                        << "Cannot open %1: "; // which of several reasons, the system decides
}

void DataReportEndsTest::unusableFile()
{
    QFETCH(QString, name);
    QFETCH(QString, reason);
    ExportScene scene;
    QFile file(scene.report.path("file"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    const QString path = name.startsWith('/') ? name : scene.report.path(name);
    scene.report.click(Alpha, path);
    QCOMPARE(reasons(scene).size(), 1);
    const QString expected = "CxCameraLineData::exportDataToFile(): " + reason.arg(path);
    QVERIFY2(reasons(scene).first().startsWith(expected), qPrintable(reasons(scene).first()));
    QCOMPARE(scene.report.progressDialogs, reason.startsWith("Cannot open") ? 0 : 1);
    compareUsable(scene);
}

void DataReportEndsTest::closedDirectory()
{
    ExportScene scene;
    const QString folder = scene.report.path("closed");
    QVERIFY(QDir().mkdir(folder));
    QVERIFY(QFile::setPermissions(folder, QFileDevice::ReadOwner | QFileDevice::ExeOwner));
    {
        const OtherUser user;
        scene.report.click(Alpha, folder + "/report.csv");
    }
    QCOMPARE(reasons(scene), QStringList("CxCameraLineData::exportDataToFile(): Cannot open " + folder +
                                         "/report.csv: Permission denied"));
    compareUsable(scene);
}

void DataReportEndsTest::sizeLimit()
{
    ExportScene scene(Moment::AmongRows);
    {
        const FileLimit full(1000000);
        scene.report.click(Alpha);
    }
    QCOMPARE(reasons(scene), QStringList("CxCameraLineData::exportDataToFile(): Cannot write " +
                                         scene.report.path() + ": File too large"));
    QCOMPARE(scene.report.contents().size(), 1000000);
    compareUsable(scene);
}

void DataReportEndsTest::removedFile()
{
    ExportScene scene(Moment::AmongRows);
    bool removed = false;
    scene.report.during(Moment::AmongRows, [&] { removed = QFile::remove(scene.report.path()); });
    scene.report.click(Alpha);
    QVERIFY(removed);
    QCOMPARE(reasons(scene), QStringList("CxCameraLineData::exportDataToFile(): Cannot write " +
                                         scene.report.path() + ": The file was removed"));
    compareUsable(scene);
}

void DataReportEndsTest::measuringCameraGoesOn_data()
{
    QTest::addColumn<QString>("target");
    QTest::newRow("written") << QString();
    QTest::newRow("full disk") << "/dev/full";
    QTest::newRow("cannot be opened") << "/proc/report.csv";
}

/// Counters are exported while their camera measures: what it captures
/// meanwhile waits and is stored behind the report.
void DataReportEndsTest::measuringCameraGoesOn()
{
    QFETCH(QString, target);
    MeasuringCameras cameras(2, Mode::Acquisition);
    RowExport report(cameras);
    QVERIFY(cameras.measure(Alpha, 3));
    QVERIFY(cameras.measure(Beta, 3));
    cameras.showTime(-60.0, 60.0);
    bool goesOn = true;
    report.during(Moment::Start, [&] {
        cameras.host.deliver(cameras[Alpha], 4);
        goesOn = cameras.deliver(Beta, 4);
        cameras.tick();
    });
    report.click(Alpha, target.isEmpty() ? report.path() : target);
    QVERIFY(goesOn);
    QCOMPARE(report.hasRun(), target != "/proc/report.csv");
    if (target.isEmpty())
        QCOMPARE(report.rows().size(), 3);
    QVERIFY(cameras.deliver(Alpha, 2));
    QVERIFY(cameras.isMeasuring(Alpha));
    QVERIFY(cameras.boxes.modal.isEmpty());
    report.click(Alpha);
    QCOMPARE(report.rows().size(), report.progressDialogs > 1 ? 9 : 5);
    cameras.clickMeasure(Alpha);
    QVERIFY(!cameras.isMeasuring(Alpha));
}

QTEST_MAIN(DataReportEndsTest)
#include "DataReportEndsTest.moc"
