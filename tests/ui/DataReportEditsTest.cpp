#include "tests/ui/ExportScene.h"

#include <QComboBox>
#include <QTest>

using namespace rig;

/// Settings and views that change while the window writes a report: the report
/// in the making keeps those it began with.
class DataReportEditsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void requiredThroughput_data();
    void requiredThroughput();
    void bufferSize_data();
    void bufferSize();
    void automaticValues_data();
    void automaticValues();
    void plotBox_data();
    void plotBox();
    void loadedSettings_data();
    void loadedSettings();
    void savedSettings();
    void timeAxis();
    void buttonsOfTheView();
    void graphImage();
    void dataFormat();
};

namespace {

enum { RequiredColumn = 5, BufferColumn = 7, LevelColumn = 8 };

constexpr int speedCell = 8;
constexpr int bufferCell = 9;

void addMomentsOfCameras()
{
    QTest::addColumn<int>("moment");
    QTest::addColumn<int>("camera");
    QTest::newRow("exported, before the rows") << int(Moment::Start) << Alpha;
    QTest::newRow("exported, among rows") << int(Moment::AmongRows) << Alpha;
    QTest::newRow("measuring") << int(Moment::Start) << Beta;
    QTest::newRow("idle") << int(Moment::Start) << Gamma;
}

QLineEdit *edit(const ExportScene &scene, int camera, int cell)
{
    return scene.cameras.rig.cellWidget<QLineEdit>(scene.cameras.row(camera), cell);
}

QCheckBox *automatic(const ExportScene &scene, int camera, int cell)
{
    return scene.cameras.rig.cellWidget<QCheckBox>(scene.cameras.row(camera), cell);
}

/// What a column of Alpha's report holds in its first and its last row, "A, B"
/// where they differ.
QByteArray columnOf(const QByteArrayList &rows, int column)
{
    const QByteArray first = rows.value(0).split(',').value(column);
    const QByteArray last = rows.value(rows.size() - 1).split(',').value(column);
    return first == last ? first : first + ", " + last;
}

/// Exports Alpha into the report's file, has it close soon after the event.
QByteArrayList rowsWhile(ExportScene &scene, Moment moment, const std::function<void()> &event)
{
    scene.report.during(moment, event);
    scene.report.closeAt(2);
    scene.report.click(Alpha);
    return scene.report.hasRun() ? scene.report.rows() : QByteArrayList();
}

QByteArrayList rowsAfterwards(ExportScene &scene)
{
    ExportScene::catchUp();
    scene.report.closeAt(1);
    scene.report.click(Alpha);
    return scene.report.rows();
}

} // namespace

void DataReportEditsTest::requiredThroughput_data()
{
    addMomentsOfCameras();
}

void DataReportEditsTest::requiredThroughput()
{
    QFETCH(int, moment);
    QFETCH(int, camera);
    ExportScene scene{Moment(moment)};
    const QByteArray before = edit(scene, Alpha, speedCell)->text().toLatin1();
    const QByteArrayList rows = rowsWhile(scene, Moment(moment), [&] {
        automatic(scene, camera, speedCell)->click();
        edit(scene, camera, speedCell)->setText("123");
    });
    QVERIFY(edit(scene, camera, speedCell)->isEnabled());
    QCOMPARE(columnOf(rows, RequiredColumn), before);
    QCOMPARE(columnOf(rowsAfterwards(scene), RequiredColumn), camera == Alpha ? QByteArray("123") : before);
}

void DataReportEditsTest::bufferSize_data()
{
    addMomentsOfCameras();
}

void DataReportEditsTest::bufferSize()
{
    QFETCH(int, moment);
    QFETCH(int, camera);
    ExportScene scene{Moment(moment)};
    const QByteArrayList rows = rowsWhile(scene, Moment(moment), [&] {
        automatic(scene, camera, bufferCell)->click();
        edit(scene, camera, bufferCell)->setText("0");
    });
    QVERIFY(!rows.isEmpty());
    for (const QByteArray &row : {rows.first(), rows.last()})
        QVERIFY2(!row.endsWith("nan"), row);
    const QByteArrayList later = rowsAfterwards(scene);
    QCOMPARE(columnOf(later, LevelColumn) == "nan", camera == Alpha);
    QCOMPARE(columnOf(later, BufferColumn) == "0", camera == Alpha || columnOf(rows, BufferColumn) == "0");
}

void DataReportEditsTest::automaticValues_data()
{
    addMomentsOfCameras();
}

/// They are read from the camera at once.
void DataReportEditsTest::automaticValues()
{
    QFETCH(int, moment);
    QFETCH(int, camera);
    ExportScene scene{Moment(moment)};
    scripted::Host &host = scene.cameras.host;
    for (const int cell : {speedCell, bufferCell})
        automatic(scene, camera, cell)->click();
    host.setValue(scene.cameras[camera], "device_unit_register_value[8,4096]", 321);
    host.setValue(scene.cameras[camera], "dp_param_value[1,5,7]", 54321);
    QStringList shown;
    QVERIFY(scene.exportWhile([&] {
        for (const int cell : {speedCell, bufferCell}) {
            automatic(scene, camera, cell)->click();
            shown.append(edit(scene, camera, cell)->text());
        }
    }));
    QCOMPARE(shown, QStringList({"321", "54"}));
    QVERIFY(scene.exportsAgain());
}

void DataReportEditsTest::plotBox_data()
{
    addMomentsOfCameras();
}

void DataReportEditsTest::plotBox()
{
    QFETCH(int, moment);
    QFETCH(int, camera);
    ExportScene scene{Moment(moment)};
    QVERIFY(scene.exportWhile([&] { scene.cameras.plotBox(camera)->click(); }));
    QVERIFY(!scene.cameras.rig.axisRect(scene.cameras[camera]));
    QCOMPARE(scene.cameras.rig.plot()->axisRectCount(), 2);
    scene.catchUp();
    scene.cameras.tick();
    QCOMPARE(scene.cameras.cell(Beta, 1), QString("Testing"));
    QVERIFY(scene.exportsAgain());
}

void DataReportEditsTest::loadedSettings_data()
{
    ExportScene::addMoments();
}

void DataReportEditsTest::loadedSettings()
{
    QFETCH(int, moment);
    ExportScene scene{Moment(moment)};
    const QByteArrayList rows = rowsWhile(scene, Moment(moment), [&] {
        scene.cameras.rig.loadSettings({{"DTGTMeasMode", 1}, {"DTGTSamplePeriod", 2048}});
        scene.cameras.tick();
        scene.cameras.host.setHostAcquisition(scene.cameras[Gamma], true);
        scene.cameras.host.setHostAcquisition(scene.cameras[Gamma], false);
    });
    QCOMPARE(rows.last().split(',').size(), 9);
    const int sample = (rows.size() - 1) % (moment == int(Moment::Start) ? 7 : 94399) + 1;
    QCOMPARE(rows.last().split(',')[3].toInt(), 1024 * sample);

    // The table of the other mode comes afterwards.
    QCOMPARE(scene.cameras.rig.table()->horizontalHeaderItem(7)->text(), QString("Export data"));
    scene.catchUp();
    QCOMPARE(scene.cameras.rig.table()->horizontalHeaderItem(10)->text(), QString("Export data"));
    scene.cameras.setMode(Mode::Acquisition);
    scene.report.click(Alpha);
    QCOMPARE(scene.report.contents(), RowExport::countersHeader);
    QVERIFY(scene.cameras.deliver(Beta, 1));
    scene.cameras.clickMeasure(Beta);
    QVERIFY(!scene.cameras.isMeasuring(Beta));
}

void DataReportEditsTest::savedSettings()
{
    ExportScene scene;
    const QVariantMap before = scene.cameras.rig.savedSettings();
    QVariantMap meanwhile;
    QVERIFY(scene.exportWhile([&] { meanwhile = scene.cameras.rig.savedSettings(); }));
    QCOMPARE(meanwhile, before);
    QVERIFY(scene.exportsAgain());
}

/// The report keeps to the part that was in view.
void DataReportEditsTest::timeAxis()
{
    ExportScene scene;
    const QByteArrayList rows =
        rowsWhile(scene, Moment::Start, [&] { scene.cameras.showTime(-60.0, -50.0); });
    QCOMPARE(rows.size(), ExportScene::shortRows);
    QCOMPARE(scene.cameras.timeAxis(Gamma)->range(), QCPRange(-60.0, -50.0));
    QCOMPARE(rowsAfterwards(scene).size(), 0);
}

void DataReportEditsTest::buttonsOfTheView()
{
    ExportScene scene;
    scene.cameras.clickMeasure(Beta); // a view that nothing measures is drawn at once
    const QByteArrayList rows = rowsWhile(scene, Moment::Start, [&] {
        scene.cameras.rig.call("on_resetPan_clicked");
        scene.cameras.rig.call("on_btnResetZoom_clicked");
    });
    QCOMPARE(rows.size(), ExportScene::shortRows);
    QCOMPARE(scene.cameras.timeAxis(Gamma)->range(), QCPRange(-20.0, 0.0));
    scene.catchUp();
    QVERIFY(scene.exportsAgain());
}

void DataReportEditsTest::graphImage()
{
    ExportScene scene;
    QVERIFY(scene.exportWhile(
        [&] { QMetaObject::invokeMethod(scene.cameras.rig.form(), "onBtnExport", Q_ARG(int, 1)); }));
    QCOMPARE(scripted::Gui::instance().exportedImages().size(), 1);
    QVERIFY(scene.exportsAgain());
}

void DataReportEditsTest::dataFormat()
{
    MeasuringCameras cameras(2, Mode::Acquisition);
    cameras.host.clearCalls();
    RowExport report(cameras);
    QVERIFY(cameras.measure(Alpha, 2));
    QVERIFY(cameras.measure(Beta, 2));
    cameras.showTime(-60.0, 60.0);
    auto *box = cameras.rig.cellWidget<QComboBox>(cameras.row(Alpha), 2);
    QVERIFY(box && box->count() > 1);
    const int other = box->currentIndex() == 0 ? 1 : 0;
    bool goesOn = false;
    report.during(Moment::Start, [&] {
        box->setCurrentIndex(other);
        cameras.host.emitImageFormatChanged(cameras[Alpha]);
        cameras.host.emitImageFormatChanged(cameras[Beta]);
        goesOn = cameras.deliver(Beta, 2);
    });
    report.click(Alpha);
    QVERIFY(goesOn);
    QCOMPARE(report.rows().size(), 2);
    QCOMPARE(box->currentIndex(), other);
    QCOMPARE(cameras.host.value(cameras[Alpha], "imgdataformat"), box->itemData(other).toInt());
}

QTEST_MAIN(DataReportEditsTest)
#include "DataReportEditsTest.moc"
