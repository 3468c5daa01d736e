// The plug-in's window in another language than that of its sources, on a host
// that knows nothing of it.

#include "tests/ui/MeasuringCameras.h"
#include "tests/ui/SetupDialog.h"

#include <QLabel>
#include <QLocale>
#include <QtTest>

using rig::MeasuringCameras;

class GermanWindowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void followsTheApplication_data();
    void followsTheApplication();
    void goesWithThePlugin();
    void startAllTurnsIntoStopAll();
    void rowFollowsTheMeasurement();
    void headersKeepTheirUnits();
    void plotNames();
    void acquisitionMode();
    void curvesOfAcquisitionMode();
    void setupDialog();
    void nothingToExport();
    void startFailure();
    void numbersStayPlain();
};

void GermanWindowTest::init()
{
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
}

void GermanWindowTest::cleanup()
{
    QLocale::setDefault(QLocale::c());
}

void GermanWindowTest::followsTheApplication_data()
{
    QTest::addColumn<QLocale>("locale");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("title");
    const QString english("Data Throughput Graph");
    const QString german("Datendurchsatz-Diagramm");
    QTest::newRow("C") << QLocale::c() << "Data Throughput Graph Tool" << english;
    QTest::newRow("English") << QLocale(QLocale::English) << "Data Throughput Graph Tool" << english;
    QTest::newRow("no catalogue") << QLocale(QLocale::Finnish) << "Data Throughput Graph Tool" << english;
    QTest::newRow("German") << QLocale(QLocale::German) << german << german;
    QTest::newRow("Swiss German") << QLocale(QLocale::German, QLocale::Switzerland) << german << german;
}

void GermanWindowTest::followsTheApplication()
{
    QFETCH(QLocale, locale);
    QFETCH(QString, name);
    QFETCH(QString, title);
    QLocale::setDefault(locale);
    rig::PluginRig rig;
    QCOMPARE(rig.plugin()->name(), name); // which hosts ask for before init()
    rig.createForm();
    QCOMPARE(rig.form()->windowTitle(), title);
}

void GermanWindowTest::goesWithThePlugin()
{
    const auto start = [] { return QCoreApplication::translate("CxDataGraphForm", "Start"); };
    {
        const rig::PluginRig rig;
        QCOMPARE(start(), QString("Starten"));
    }
    QCOMPARE(start(), QString("Start"));
}

void GermanWindowTest::startAllTurnsIntoStopAll()
{
    MeasuringCameras cameras(2);
    QCOMPARE(cameras.startAll()->text(), QString("Alle starten"));
    cameras.clickStartAll();
    QVERIFY(cameras.isMeasuring(0) && cameras.isMeasuring(1));
    QCOMPARE(cameras.startAll()->text(), QString("Alle stoppen"));
    cameras.clickStartAll();
    QVERIFY(!cameras.isMeasuring(0) && !cameras.isMeasuring(1));
    QCOMPARE(cameras.startAll()->text(), QString("Alle starten"));
    cameras.clickStartAll();
    QVERIFY(cameras.isMeasuring(0) && cameras.isMeasuring(1));
}

void GermanWindowTest::rowFollowsTheMeasurement()
{
    MeasuringCameras cameras(1);
    QCOMPARE(cameras.state(0), QString("Gestoppt Starten"));
    cameras.clickMeasure(0);
    QCOMPARE(cameras.state(0), QString("Misst Stoppen"));
    cameras.clickMeasure(0);
    QCOMPARE(cameras.state(0), QString("Gestoppt Starten"));
}

void GermanWindowTest::headersKeepTheirUnits()
{
    const MeasuringCameras cameras(1);
    const auto header = [&](int column) { return cameras.rig.table()->horizontalHeaderItem(column)->text(); };
    QCOMPARE(header(3), QString("Mittlerer\nDurchsatz [MB/s]"));
    QCOMPARE(header(4), QString("Minimaler\nDurchsatz [MB/s]"));
    QCOMPARE(header(6), QString("Anzahl\nPufferüberläufe"));
    QCOMPARE(header(8), QString("Erforderlicher\nDurchsatz [MB/s]"));
    QCOMPARE(header(9), QString("Größe des\nKamerapuffers [kB]"));
    QCOMPARE(cameras.rig.table()->horizontalHeaderItem(3)->toolTip(), QString("Mittlere Datenrate"));
}

void GermanWindowTest::plotNames()
{
    MeasuringCameras cameras(1);
    const auto *plots = cameras.rig.find<QTableWidget>("tablePlotCheck");
    QCOMPARE(plots->item(0, 1)->text(), QString("Min. Durchsatz"));
    QCOMPARE(plots->item(1, 1)->text(), QString("Max. Füllstand"));
    QCOMPARE(plots->item(1, 1)->toolTip(), QString("Füllstand des kamerainternen Puffers in Prozent"));
    // The box decides about the graph whatever either is called.
    auto *box = plots->cellWidget(1, 0)->findChild<QCheckBox *>();
    cameras.showTime(0.0, 2.0);
    QVERIFY(cameras.measureAndStop(0, 5));
    cameras.refresh();
    QVERIFY(!cameras.points(0, "Max buffer level").empty());
    box->setChecked(false);
    cameras.refresh();
    QVERIFY(cameras.points(0, "Max buffer level").empty());
}

void GermanWindowTest::acquisitionMode()
{
    MeasuringCameras cameras(1);
    cameras.rig.loadSettings({{"DTGTMeasMode", 1}});
    QStringList headers;
    for (int column = 0; column < cameras.rig.table()->columnCount(); ++column)
        headers.append(cameras.rig.table()->horizontalHeaderItem(column)->text());
    QCOMPARE(headers, QStringList({"Kamera", "Status", "Datenformat", "Messung", "Übertragen",
                                   "Transportverluste", "API-Verluste", "Verp. Trg. Überlappung",
                                   "Verp. Trg. Überlauf", "Pufferüberlauf", "Datenexport", "Diagramm"}));
    const auto *plots = cameras.rig.find<QTableWidget>("tablePlotCheck");
    QCOMPARE(plots->item(0, 1)->text(), QString("Transportverluste"));
    QCOMPARE(plots->item(5, 1)->text(), QString("Frames/s"));
}

/// Curves, boxes and axis find each other by names that no language changes.
void GermanWindowTest::curvesOfAcquisitionMode()
{
    MeasuringCameras cameras(1, rig::Mode::Acquisition);
    cameras.setCounters(0, {rig::CountedFrames::all(10)});
    cameras.showTime(0.0, 2.0);
    QVERIFY(cameras.measure(0, 3));
    cameras.tick();
    QCOMPARE(cameras.rig.plot()->graphCount(), 6);
    const QCPAxis *axis = cameras.rig.axisRect(cameras[0])->axis(QCPAxis::atLeft);
    QCOMPARE(axis->label(), QString("Zählerstand"));
    QCOMPARE(axis->range(), QCPRange(8.0, 12.0));
    cameras.quantityBox(5)->click();
    cameras.tick();
    QCOMPARE(cameras.rig.plot()->graphCount(), 5);
}

/// Its choices count by their places.
void GermanWindowTest::setupDialog()
{
    MeasuringCameras cameras(1);
    QVERIFY(rig::withSetup(cameras.rig, [](const rig::SetupDialog &setup) {
        QCOMPARE(setup->windowTitle(), QString("Datendurchsatz-Test einrichten"));
        QCOMPARE(setup.find<QLabel>("label_sampleDescription")->text(),
                 QString("Millionen Abtastwerte pro Kamera"));
        setup.mode()->setCurrentText("Normale Sensoraufnahme");
        setup.clickOk();
    }));
    QCOMPARE(cameras.rig.savedSettings()["DTGTMeasMode"].toInt(), 1);
    QCOMPARE(cameras.rig.table()->horizontalHeaderItem(2)->text(), QString("Datenformat"));
}

void GermanWindowTest::nothingToExport()
{
    MeasuringCameras cameras(1);
    QCOMPARE(cameras.exportButton(0)->text(), QString("Daten exportieren..."));
    cameras.exportButton(0)->click();
    QCOMPARE(cameras.boxes.modal.size(), 1);
    QCOMPARE(cameras.boxes.modal.first().title, QString("Messdaten exportieren"));
    QCOMPARE(cameras.boxes.modal.first().text, QString("Keine Messdaten zum Exportieren vorhanden."));
}

void GermanWindowTest::startFailure()
{
    MeasuringCameras cameras(1);
    cameras.host.fail(scripted::Failure::write("test_pattern", 11));
    cameras.clickMeasure(0);
    QCOMPARE(cameras.boxes.modal.size(), 1);
    QCOMPARE(cameras.boxes.modal.first().title, QString("Messung konnte nicht gestartet werden"));
    QVERIFY(cameras.boxes.modal.first().text.startsWith("Die Kamera Alpha (A-1) unterstützt keine"));
}

void GermanWindowTest::numbersStayPlain()
{
    MeasuringCameras cameras(1);
    rig::PacedFrames frames;
    frames.ticks = {10};
    cameras.setFrames(0, frames);
    QVERIFY(cameras.measureAndStop(0, 3));
    cameras.rig.call("timerSignal");
    QCOMPARE(cameras.cell(0, 4), QString("25600"));
    QCOMPARE(cameras.rig.cellWidget<QLineEdit>(0, 9)->text().count(QRegularExpression("\\D")), 0);
}

QTEST_MAIN(GermanWindowTest)
#include "GermanWindowTest.moc"
