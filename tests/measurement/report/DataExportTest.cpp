#include "bench/reference/CsvReference.h"
#include "measurement/ExportGate.h"
#include "tests/measurement/MutexProbe.h"
#include "tests/measurement/report/ExportRig.h"
#include "tests/measurement/report/FileLimit.h"

#include <QBuffer>
#include <QDir>
#include <QLabel>
#include <QProgressDialog>
#include <QPushButton>
#include <QTest>

#include <numeric>
#include <thread>

class DataExportTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_rig = std::make_unique<ExportRig>(); }
    void cleanup();

    void frames();
    void resetReachesTheReport();
    void counters();
    void countersWithoutARecord();
    void unknownMode();
    void anyName();

    void dialogLook();
    void dialogRange();
    void dialogOutlivesItsMaximum();
    void closingAtTheStart();
    void closingAmongRows_data();
    void closingAmongRows();
    void closingAmongCounterRows();
    void slowEventsDoNotShowItAgain();

    void refusedFile_data();
    void refusedFile();
    void fullDisk();
    void removedFile();

private:
    /// The engine and the gate are as if there had been no export.
    bool isOver() const;
    QByteArray expectedFrames(bool reset = false) const;

    std::unique_ptr<ExportRig> m_rig;
};

void DataExportTest::cleanup()
{
    QVERIFY(isOver());
    QVERIFY(!ExportRig::dialog());
    m_rig.reset();
}

bool DataExportTest::isOver() const
{
    return !CxExportGate::isClosed() && !m_rig->line.isExporting() && isFree(m_rig->line.mutex);
}

QByteArray DataExportTest::expectedFrames(bool reset) const
{
    const CxCameraLineData &line = m_rig->line;
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    reference::writeFrames(buffer, line.frames, {m_rig->from, m_rig->to, TimestampOriginCamera, reset},
                           {line.sampleInterval, line.avgTransportSpeedMBps, line.internalBuffSize});
    return buffer.data();
}

void DataExportTest::frames()
{
    m_rig->recorded->addFrame(1000, {0, 10, 20});
    m_rig->recorded->addFrame(1500, {0, 10, 20});
    m_rig->from = 1011;
    QVERIFY(m_rig->exportAll());
    QCOMPARE(m_rig->contents(), expectedFrames());
    QCOMPARE(m_rig->contents().count('\n'), 4);

    QVERIFY(m_rig->line.exportDataToFile(m_rig->path(), nullptr, 0, 10, TimestampOriginComputer, false));
    QCOMPARE(m_rig->contents().count('\n'), 1);
    QCOMPARE(m_rig->log.messages(), QStringList());
}

void DataExportTest::resetReachesTheReport()
{
    m_rig->recorded->addFrame(1000, {0, 10, 20});
    m_rig->recorded->addFrame(1020, {0, 10, 20});
    QVERIFY(m_rig->line.exportDataToFile(m_rig->path(), nullptr, 0, 10000, TimestampOriginCamera, true));
    QCOMPARE(m_rig->contents(), expectedFrames(true));
    QVERIFY(expectedFrames(true) != expectedFrames(false));
}

void DataExportTest::counters()
{
    m_rig->line.measureMode = MeasureModeAcquisition;
    for (const qint64 timestamp : {100, 200, 300})
        m_rig->addCounters(timestamp, 4);
    m_rig->from = 200;
    m_rig->to = 250;
    QVERIFY(m_rig->exportAll());
    QCOMPARE(m_rig->contents().split('\n').mid(1), (QByteArrayList{"0,200,0,0,4,0,0,0", ""}));
}

void DataExportTest::countersWithoutARecord()
{
    m_rig->line.measureMode = MeasureModeAcquisition;
    m_rig->recorded->addFrame(1000, {0, 10, 20}); // of the other mode
    QVERIFY(m_rig->exportAll());
    QCOMPARE(m_rig->contents(),
             QByteArray("Frame number,Timestamp [\xCE\xBCs],Computer Timestamp [\xCE\xBCs],Transport skip,"
                        "API skip,Missed trg. overlap,Missed trg overflow,Buffer overflow\n"));
}

void DataExportTest::unknownMode()
{
    m_rig->line.measureMode = static_cast<MeasureMode>(2);
    m_rig->recorded->addFrame(1000, {0, 10, 20});
    QVERIFY(m_rig->exportAll());
    QCOMPARE(m_rig->contents(), QByteArray());
    QCOMPARE(m_rig->log.messages(),
             QStringList("CxCameraLineData::exportDataToFile(): Unknown measurement mode"));
}

void DataExportTest::anyName()
{
    const QString name = m_rig->folder.filePath("100 %1 \u03BC");
    QVERIFY(m_rig->exportAll(name));
    QCOMPARE(QDir(m_rig->folder.path()).entryList(QDir::Files), QStringList("100 %1 \u03BC"));
}

void DataExportTest::dialogLook()
{
    bool looked = false;
    m_rig->atStart([&](QProgressDialog &dialog) {
        looked = true;
        QCOMPARE(dialog.windowTitle(), QString("Data throughput monitor"));
        QCOMPARE(dialog.labelText(), QString("Exporting MC-100 (7) data"));
        QCOMPARE(dialog.size(), QSize(300, 100));
        QCOMPARE(dialog.parentWidget(), m_rig->window.get());
        QCOMPARE(dialog.windowModality(), Qt::ApplicationModal);
        const auto buttons = dialog.findChildren<QPushButton *>();
        QCOMPARE(buttons.size(), 1);
        QCOMPARE(buttons.first()->text(), QString("Cancel"));
        QVERIFY(buttons.first()->isHidden());
        QVERIFY(CxExportGate::isClosed());
        QVERIFY(!isFree(m_rig->line.mutex));
        // Only here: the camera's thread has to wait for the mutex.
        QVERIFY(m_rig->line.isExporting());
        bool elsewhere = true;
        std::thread([&] { elsewhere = m_rig->line.isExporting(); }).join();
        QVERIFY(!elsewhere);
    });
    QVERIFY(m_rig->exportAll());
    QVERIFY(looked);
}

void DataExportTest::dialogRange()
{
    int maximum = -1;
    const auto note = [&](QProgressDialog &dialog) {
        QCOMPARE(dialog.minimum(), 0);
        maximum = dialog.maximum();
    };
    for (const qint64 timestamp : {100, 200, 300, 400, 500, 600}) {
        m_rig->recorded->addFrame(timestamp, {0});
        m_rig->addCounters(timestamp + 1, 0);
    }
    m_rig->from = 301;
    m_rig->to = 401;
    m_rig->line.statMin = 0.0;
    m_rig->atStart(note);
    QVERIFY(m_rig->exportAll());
    QCOMPARE(maximum, 2); // 251 to 451
    m_rig->line.measureMode = MeasureModeAcquisition;
    m_rig->line.statMin = 101.0;
    m_rig->atStart(note);
    QVERIFY(m_rig->exportAll());
    QCOMPARE(maximum, 4); // 200 to 502
}

/// A frame that begins long before the window counts for nothing, but takes its
/// time, here with the progress at its maximum: the dialog has to stay. Every
/// sample of it makes a row, and there are as many as this machine needs for a
/// look at the events.
void DataExportTest::dialogOutlivesItsMaximum()
{
    m_rig->line.statMin = 0.0;
    m_rig->from = 2000000;
    m_rig->to = 3900000; // and half as much around: 1050000 to 4850000
    bool reached = false;
    bool stayed = true;
    QTimer watch;
    connect(&watch, &QTimer::timeout, this, [&] {
        const QProgressDialog *dialog = ExportRig::dialog();
        stayed = stayed && dialog;
        reached = reached || (dialog && dialog->value() == dialog->maximum());
    });
    watch.start(0);
    for (std::size_t samples = 4000000; !reached && samples < 100000000; samples *= 2) {
        std::vector<quint64> stamps(samples);
        std::iota(stamps.begin(), stamps.end(), 250 * m_rig->from);
        stamps[0] = 0;
        m_rig->line.clearData();
        m_rig->recorded->addFrame(m_rig->from, {0});
        m_rig->recorded->addFrameOfTicks(1000, stamps);
        QVERIFY(m_rig->exportAll("/dev/null"));
    }
    QVERIFY(reached);
    QVERIFY(stayed);
}

void DataExportTest::closingAtTheStart()
{
    m_rig->recorded->addFrame(1000, {0, 10, 20});
    m_rig->atStart([](QProgressDialog &dialog) { dialog.close(); });
    QVERIFY(m_rig->exportAll());
    QCOMPARE(m_rig->contents().count('\n'), 1);
}

void DataExportTest::closingAmongRows_data()
{
    QTest::addColumn<int>("way");
    QTest::newRow("close") << 0;
    QTest::newRow("escape") << 1;
    QTest::newRow("reject") << 2;
}

void DataExportTest::closingAmongRows()
{
    QFETCH(int, way);
    m_rig->addLongRecording();
    bool shown = false;
    m_rig->amongRows([&](QProgressDialog &dialog) {
        shown = dialog.value() > 0 && dialog.value() < dialog.maximum();
        if (way == 0)
            dialog.close();
        else if (way == 1)
            QTest::keyClick(&dialog, Qt::Key_Escape);
        else
            dialog.reject();
    });
    QVERIFY(m_rig->exportAll());
    QVERIFY(shown);
    const QByteArray contents = m_rig->contents();
    const int rows = contents.count('\n') - 1;
    QVERIFY2(rows > 0 && rows < 3998000, qPrintable(QString::number(rows)));
    const int lastRow = contents.lastIndexOf('\n', contents.size() - 2) + 1;
    QCOMPARE(contents.mid(lastRow).count(','), 8);
    QVERIFY(contents.endsWith('\n'));
}

void DataExportTest::closingAmongCounterRows()
{
    constexpr int records = 2000000;
    m_rig->line.measureMode = MeasureModeAcquisition;
    for (int i = 0; i < records; ++i)
        m_rig->addCounters(i + 1, 4);
    int shown = 0;
    m_rig->amongRows([&](QProgressDialog &dialog) {
        shown = dialog.value();
        dialog.close();
    });
    QVERIFY(m_rig->exportAll());
    const QByteArray contents = m_rig->contents();
    // Nothing is written any more once it was closed.
    QVERIFY(0 < shown && shown < records);
    QCOMPARE(contents.count('\n') - 1, shown);
    QVERIFY(contents.endsWith("\n0," + QByteArray::number(shown) + ",0,0,4,0,0,0\n"));
}

/// Qt's dialog would resize and show itself once its own estimate says so.
void DataExportTest::slowEventsDoNotShowItAgain()
{
    m_rig->addLongRecording();
    QSize size;
    m_rig->amongRows([&](QProgressDialog &dialog) {
        QCOMPARE(dialog.minimumDuration(), std::numeric_limits<int>::max());
        size = dialog.size();
        dialog.close();
    });
    QVERIFY(m_rig->exportAll());
    QCOMPARE(size, QSize(300, 100));
}

void DataExportTest::refusedFile_data()
{
    QTest::addColumn<QString>("name"); // in the test's folder
    QTest::addColumn<QString>("reason");
    QTest::newRow("removed directory") << "gone/report.csv"
                                       << "No such file or directory";
    QTest::newRow("a file as directory") << "file/report.csv"
                                         << "Not a directory";
    QTest::newRow("a directory") << "directory"
                                 << "Is a directory";
}

void DataExportTest::refusedFile()
{
    QFETCH(QString, name);
    QFETCH(QString, reason);
    QFile file(m_rig->folder.filePath("file"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(QDir(m_rig->folder.path()).mkdir("directory"));
    bool shown = false;
    m_rig->atStart([&](QProgressDialog &) { shown = true; });
    const QString path = m_rig->folder.filePath(name);
    QVERIFY(!m_rig->exportAll(path));
    QCOMPARE(m_rig->log.messages(),
             QStringList("CxCameraLineData::exportDataToFile(): Cannot open " + path + ": " + reason));
    QVERIFY(!shown);
}

void DataExportTest::fullDisk()
{
    m_rig->addLongRecording();
    {
        const FileLimit full(1000000);
        QVERIFY(m_rig->exportAll());
    }
    QCOMPARE(m_rig->log.messages(), QStringList("CxCameraLineData::exportDataToFile(): Cannot write " +
                                                m_rig->path() + ": File too large"));
    QCOMPARE(m_rig->contents().size(), 1000000);

    // The row's button works on.
    QVERIFY(isOver());
    m_rig->to = 1000 + 7;
    QVERIFY(m_rig->exportAll());
    QCOMPARE(m_rig->contents(), expectedFrames());
    QVERIFY(m_rig->line.calculateStatisticsThroughput(0, 10000, TimestampOriginCamera, true));
}

void DataExportTest::removedFile()
{
    m_rig->addLongRecording();
    m_rig->amongRows([&](QProgressDialog &) { QFile::remove(m_rig->path()); });
    QVERIFY(m_rig->exportAll());
    QCOMPARE(m_rig->log.messages(), QStringList("CxCameraLineData::exportDataToFile(): Cannot write " +
                                                m_rig->path() + ": The file was removed"));
}

QTEST_MAIN(DataExportTest)
#include "DataExportTest.moc"
