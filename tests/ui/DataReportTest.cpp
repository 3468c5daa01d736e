#include "tests/ui/RowExport.h"

#include <QDir>
#include <QMessageBox>
#include <QTest>
#include <QToolButton>

using rig::MeasuringCameras;
using rig::Mode;
using rig::RowExport;
using scripted::Function;

/// A row's button "Export Data...": what it asks before it writes.
class DataReportTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingMeasured();
    void countersNeedNoRecord();
    void fileDialog_data();
    void fileDialog();
    void cancelledFileDialog();
    void savePath_data();
    void savePath();
    void anyName();
    void asksBeforeItReplaces_data();
    void asksBeforeItReplaces();
    void progressDialog();
    void otherSenders_data();
    void otherSenders();
    void directCall();
    void closesInTheFileDialog();
    void settingsOfTheMomentCount();
};

namespace {

int countOf(const MeasuringCameras &cameras, Function function)
{
    int count = 0;
    for (const scripted::Call &call : cameras.host.calls())
        count += call.function == function;
    return count;
}

QStringList setSavePaths(const MeasuringCameras &cameras)
{
    QStringList paths;
    for (const scripted::Call &call : cameras.host.calls()) {
        if (call.function == Function::SetDefaultSavePath)
            paths.append(QString::fromStdString(call.name));
    }
    return paths;
}

} // namespace

void DataReportTest::nothingMeasured()
{
    MeasuringCameras cameras(2);
    RowExport report(cameras);
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    cameras.boxes.onModal = [&icon] {
        if (const auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget()))
            icon = box->icon();
    };
    report.click(1);
    QCOMPARE(cameras.boxes.modal.size(), 1);
    QCOMPARE(icon, QMessageBox::Information);
    const rig::ShownBox &box = cameras.boxes.modal.first();
    QCOMPARE(box.title, QString("Export Measured Data"));
    QCOMPARE(box.text, QString("No measured data to export."));
    QCOMPARE(box.standardButtons, int(QMessageBox::Ok));
    QVERIFY(box.hasParent);
    QCOMPARE(report.fileDialogs, 0);
    QCOMPARE(countOf(cameras, Function::DefaultSavePath), 0);
    QVERIFY(cameras.rig.form()->findChildren<QDialog *>().isEmpty());
}

void DataReportTest::countersNeedNoRecord()
{
    MeasuringCameras cameras(1, Mode::Acquisition);
    RowExport report(cameras);
    report.click(0);
    QCOMPARE(report.contents(), RowExport::countersHeader);
    QVERIFY(cameras.boxes.modal.isEmpty());
    QCOMPARE(cameras.log.messages().filter("xport"), QStringList());
}

void DataReportTest::fileDialog_data()
{
    QTest::addColumn<int>("mode");
    QTest::newRow("throughput") << int(Mode::Throughput);
    QTest::newRow("acquisition") << int(Mode::Acquisition);
}

void DataReportTest::fileDialog()
{
    QFETCH(int, mode);
    MeasuringCameras cameras(1, Mode(mode));
    RowExport report(cameras);
    QVERIFY(cameras.measureAndStop(0, 1));
    const QString start = report.path("records");
    QVERIFY(QDir().mkdir(start));
    scripted::Gui::instance().setSavePath(start);
    report.onFileDialog = [&](QFileDialog &dialog) {
        QCOMPARE(dialog.windowTitle(), QString("Select Output File for Measured Data"));
        QCOMPARE(dialog.nameFilters(), QStringList("CSV files (*.csv)"));
        QCOMPARE(dialog.directory().absolutePath(), start);
        QCOMPARE(dialog.acceptMode(), QFileDialog::AcceptSave);
        QCOMPARE(dialog.fileMode(), QFileDialog::AnyFile);
        QCOMPARE(dialog.defaultSuffix(), QString());
        QVERIFY(dialog.isModal());
        QCOMPARE(dialog.parentWidget(), cameras.rig.form());
    };
    report.click(0, "report.csv");
    QCOMPARE(report.fileDialogs, 1);
    QVERIFY(QFile::exists(start + "/report.csv"));
    QVERIFY(cameras.rig.form()->findChildren<QDialog *>().isEmpty());
}

void DataReportTest::cancelledFileDialog()
{
    MeasuringCameras cameras(1);
    RowExport report(cameras);
    QVERIFY(cameras.measureAndStop(0, 1));
    report.click(0, QString());
    QCOMPARE(report.fileDialogs, 1);
    QCOMPARE(report.progressDialogs, 0);
    QCOMPARE(setSavePaths(cameras), QStringList());
    QVERIFY(QDir(report.path(".")).entryList(QDir::Files).isEmpty());
    QVERIFY(cameras.rig.form()->findChildren<QDialog *>().isEmpty());
}

void DataReportTest::savePath_data()
{
    QTest::addColumn<QString>("name"); // as it is typed
    QTest::addColumn<QString>("directory");
    QTest::newRow("beside") << "report.csv"
                            << ".";
    QTest::newRow("relative") << "deeper/report.csv"
                              << "deeper";
    QTest::newRow("cannot be opened") << "missing/report.csv"
                                      << "missing";
}

void DataReportTest::savePath()
{
    QFETCH(QString, name);
    QFETCH(QString, directory);
    MeasuringCameras cameras(1);
    RowExport report(cameras);
    QVERIFY(QDir().mkdir(report.path("deeper")));
    QVERIFY(cameras.measureAndStop(0, 1));
    report.click(0, name);
    const QString expected = QDir::cleanPath(report.path(directory));
    QCOMPARE(setSavePaths(cameras), QStringList(expected));

    // The next dialog starts there.
    QString start;
    report.onFileDialog = [&](QFileDialog &dialog) { start = dialog.directory().absolutePath(); };
    report.click(0, QString());
    if (QDir(expected).exists())
        QCOMPARE(start, expected);
}

void DataReportTest::anyName()
{
    MeasuringCameras cameras(1);
    RowExport report(cameras);
    QVERIFY(cameras.measureAndStop(0, 1));
    const QStringList names = {"100 %1 \u03BC", "report", "report.txt"};
    for (const QString &name : names)
        report.click(0, name);
    QCOMPARE(QDir(report.path(".")).entryList(QDir::Files), names);
}

void DataReportTest::asksBeforeItReplaces_data()
{
    QTest::addColumn<bool>("yes");
    QTest::newRow("yes") << true;
    QTest::newRow("no") << false;
}

void DataReportTest::asksBeforeItReplaces()
{
    QFETCH(bool, yes);
    MeasuringCameras cameras(1);
    RowExport report(cameras);
    QVERIFY(cameras.measureAndStop(0, 1));
    QFile older(report.path());
    QVERIFY(older.open(QIODevice::WriteOnly));
    older.write(QByteArray(10000, 'x'));
    older.close();
    report.replaces = false;
    cameras.boxes.onModal = [yes] {
        if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget()))
            box->button(yes ? QMessageBox::Yes : QMessageBox::No)->click();
    };
    report.click(0);
    QCOMPARE(cameras.boxes.modal.size(), 1);
    QCOMPARE(report.contents(), yes ? RowExport::framesHeader : QByteArray(10000, 'x'));
    QCOMPARE(setSavePaths(cameras).size(), yes ? 1 : 0);
}

void DataReportTest::progressDialog()
{
    MeasuringCameras cameras(2, Mode::Acquisition);
    RowExport report(cameras);
    QString label;
    QWidget *parent = nullptr;
    report.during(rig::Moment::Start, [&] {
        label = RowExport::progress()->labelText();
        parent = RowExport::progress()->parentWidget();
    });
    report.click(1);
    QCOMPARE(label, QString("Exporting Beta (B-2) data"));
    QCOMPARE(parent, cameras.rig.form());
    QCOMPARE(report.progressDialogs, 1);
    QVERIFY(cameras.rig.form()->findChildren<QDialog *>().isEmpty());
}

void DataReportTest::otherSenders_data()
{
    QTest::addColumn<int>("sender");
    QTest::newRow("a button of no camera") << 0;
    QTest::newRow("a button of an unknown camera") << 1;
    QTest::newRow("a button of a closed camera") << 2;
    QTest::newRow("no push button") << 3;
    QTest::newRow("a button of the camera") << 4; // any will do
}

void DataReportTest::otherSenders()
{
    QFETCH(int, sender);
    MeasuringCameras cameras(2, Mode::Acquisition);
    RowExport report(cameras);
    cameras.host.closeCamera(cameras[1]);
    cameras.host.clearCalls();

    QWidget window; // the sender is none of the form's own
    auto *pushButton = new QPushButton(&window);
    auto *toolButton = new QToolButton(&window);
    QAbstractButton *const buttons[] = {pushButton, toolButton};
    QAbstractButton *button = buttons[sender == 3];
    const quint64 handles[] = {0, 4711, quint64(quintptr(cameras[1])), quint64(quintptr(cameras[0])),
                               quint64(quintptr(cameras[0]))};
    if (sender > 0)
        button->setProperty("hCam", handles[sender]);
    connect(button, SIGNAL(clicked()), cameras.rig.form(), SLOT(onBtnCamExportData()));
    button->click();
    QCOMPARE(report.fileDialogs, sender == 4 ? 1 : 0);
    QCOMPARE(countOf(cameras, Function::DefaultSavePath), sender == 4 ? 1 : 0);
    QVERIFY(cameras.boxes.modal.isEmpty());
}

void DataReportTest::directCall()
{
    MeasuringCameras cameras(1, Mode::Acquisition);
    RowExport report(cameras);
    cameras.rig.call("onBtnCamExportData");
    QCOMPARE(report.fileDialogs, 0);
    QVERIFY(cameras.boxes.modal.isEmpty());
}

void DataReportTest::closesInTheFileDialog()
{
    MeasuringCameras cameras(2);
    RowExport report(cameras);
    QVERIFY(cameras.measureAndStop(0, 1));
    report.onFileDialog = [&](QFileDialog &) { cameras.host.closeCamera(cameras[0]); };
    report.click(0);
    QCOMPARE(report.progressDialogs, 0);
    QVERIFY(!QFile::exists(report.path()));
    QCOMPARE(cameras.rig.table()->rowCount(), 1);
    QVERIFY(cameras.boxes.modal.isEmpty());
}

/// The view and the settings may change until a name has been chosen.
void DataReportTest::settingsOfTheMomentCount()
{
    MeasuringCameras cameras(1);
    RowExport report(cameras);
    QVERIFY(cameras.measureAndStop(0, 2));
    cameras.showTime(-60.0, -50.0);
    report.onFileDialog = [&](QFileDialog &) { cameras.showTime(-60.0, 60.0); };
    report.click(0);
    QCOMPARE(report.rows().size(), 14);
}

QTEST_MAIN(DataReportTest)
#include "DataReportTest.moc"
