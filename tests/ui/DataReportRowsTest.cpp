#include "tests/ui/RowExport.h"

#include <QTest>

#include <cmath>

using rig::CountedFrames;
using rig::MeasuringCameras;
using rig::Mode;
using rig::PacedFrames;
using rig::RowExport;

/// What a row's report holds, byte for byte, and which part of the records.
class DataReportRowsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void frames();
    void resetOfTheBufferLevel_data();
    void resetOfTheBufferLevel();
    void timestampOrigin_data();
    void timestampOrigin();
    void visibleFrames();
    void nothingInView();
    void counters();
    void counterOrigin_data();
    void counterOrigin();
};

namespace {

/// Has the camera produce 1024 MB/s and buffer 8192 bytes.
void setUpLink(MeasuringCameras &cameras)
{
    cameras.host.setValue(cameras[0], "device_unit_register_value[8,4096]", 1024);
    cameras.host.setValue(cameras[0], "dp_param_value[1,5,7]", 8192);
}

/// Microseconds of the day between which something happened.
struct Period
{
    Period()
        : begin(now())
    {
    }
    void end() { last = now() + 1000; }
    bool includes(qint64 time) const { return begin <= time && time <= last; }

    static qint64 now() { return qint64(rig::timeOfDay()) * 1000; }

    qint64 begin;
    qint64 last = 0;
};

/// Takes a time stamp out of each row, the text "T" in its place.
QList<qint64> takeTimes(QByteArrayList &rows, int column)
{
    QList<qint64> times;
    for (QByteArray &row : rows) {
        QByteArrayList fields = row.split(',');
        times.append(fields.value(column).toLongLong());
        if (column < fields.size())
            fields[column] = "T";
        row = fields.join(',');
    }
    return times;
}

} // namespace

void DataReportRowsTest::frames()
{
    MeasuringCameras cameras(1);
    setUpLink(cameras);
    RowExport report(cameras);
    PacedFrames frames;
    frames.ticks = {500, 0, 1000};
    cameras.setFrames(0, frames);
    Period period;
    QVERIFY(cameras.measureAndStop(0, 3));
    period.end();
    cameras.showTime(-60.0, 60.0);
    report.click(0);

    QVERIFY(report.contents().startsWith(RowExport::framesHeader));
    QByteArrayList rows = report.rows();
    const QList<qint64> times = takeTimes(rows, 1);
    QCOMPARE(rows, (QByteArrayList{
                       "1,T,2000,1024,6000,1024,512,1024,12.5",
                       "1,T,4000,2048,8000,1024,512,2048,25",
                       "1,T,6000,3072,10000,1024,512,3072,37.5",
                       "1,T,8000,4096,12000,1024,512,4096,50",
                       "1,T,10000,5120,14000,1024,512,5120,62.5",
                       "1,T,12000,6144,16000,1024,512,6144,75",
                       "1,T,14000,7168,18000,1024,512,7168,87.5",
                       "2,T,0,1024,4000,1024,",
                       "2,T,0,2048,4000,1024,",
                       "2,T,0,3072,4000,1024,",
                       "2,T,0,4096,4000,1024,",
                       "2,T,0,5120,4000,1024,",
                       "2,T,0,6144,4000,1024,",
                       "2,T,0,7168,4000,1024,",
                       "3,T,4000,1024,8000,1024,256,3072,37.5",
                       "3,T,8000,2048,12000,1024,256,6144,75",
                       "3,T,12000,3072,16000,1024,256,8192,100",
                       "3,T,16000,4096,20000,1024,256,8192,100",
                       "3,T,20000,5120,24000,1024,256,8192,100",
                       "3,T,24000,6144,28000,1024,256,8192,100",
                       "3,T,28000,7168,32000,1024,256,8192,100",
                   }));
    for (int row = 0; row < times.size(); ++row) {
        QVERIFY(period.includes(times[row]));
        QVERIFY(times[row] >= times[qMax(0, row - 1)]);
        QCOMPARE(times[row], times[row - row % 7]); // that of its frame
    }
}

void DataReportRowsTest::resetOfTheBufferLevel_data()
{
    QTest::addColumn<bool>("reset");
    QTest::addColumn<QByteArray>("second");
    QTest::newRow("each frame on its own") << true << QByteArray("1024,12.5");
    // A microsecond at the first frame's mean rate lies between them.
    QTest::newRow("from frame to frame") << false << QByteArray("7606.86,92.8571");
}

void DataReportRowsTest::resetOfTheBufferLevel()
{
    QFETCH(bool, reset);
    QFETCH(QByteArray, second);
    MeasuringCameras cameras(1);
    cameras.rig.loadSettings({{"DTGTResetBufferLevel", reset}});
    setUpLink(cameras);
    RowExport report(cameras);
    PacedFrames frames;
    frames.microsecondsPerFrame = 15;
    cameras.setFrames(0, frames);
    QVERIFY(cameras.measureAndStop(0, 2));
    cameras.showTime(-60.0, 60.0);
    report.click(0);
    const QByteArrayList rows = report.rows();
    QCOMPARE(rows.size(), 14);
    QVERIFY(rows[6].endsWith(",7168,87.5"));
    QVERIFY2(rows[7].endsWith("," + second), rows[7]);
}

void DataReportRowsTest::timestampOrigin_data()
{
    QTest::addColumn<int>("origin");
    QTest::addColumn<int>("rows");
    QTest::newRow("camera") << 0 << 0;
    QTest::newRow("computer") << 1 << 14;
    QTest::newRow("unknown") << 7 << 0;
}

/// Of a camera whose clock is far ahead.
void DataReportRowsTest::timestampOrigin()
{
    QFETCH(int, origin);
    MeasuringCameras cameras(1);
    cameras.rig.loadSettings({{"DTGTTimestampOrigin", origin}});
    RowExport report(cameras);
    PacedFrames frames;
    frames.firstMicroseconds = 3600000000;
    cameras.setFrames(0, frames);
    QVERIFY(cameras.measureAndStop(0, 2));
    cameras.showTime(-60.0, 60.0);
    report.click(0);
    QTEST(report.rows().size(), "rows");
}

/// To the microsecond: the samples of a frame lie 2 of them apart.
void DataReportRowsTest::visibleFrames()
{
    MeasuringCameras cameras(1);
    setUpLink(cameras);
    RowExport report(cameras);
    PacedFrames frames;
    frames.microsecondsPerFrame = 600000;
    cameras.setFrames(0, frames);
    QVERIFY(cameras.measureAndStop(0, 5));
    cameras.showTime(0.0, 5.0);

    // The second frame's first interval makes the first point; runs start at a
    // whole millisecond of the axis.
    QVERIFY(!cameras.points(0).empty());
    constexpr double firstPoint = 1.6 + 2e-6;
    const double start = std::round((cameras.points(0)[0].key - firstPoint) * 1000.0) / 1000.0;
    const auto exported = [&](double lower, double upper) {
        cameras.showTime(start + lower, start + upper);
        report.click(0);
        QByteArrayList rows = report.rows();
        takeTimes(rows, 1);
        return rows;
    };
    // A bound between two microseconds takes in the one beyond.
    QCOMPARE(exported(1.6 + 9.5e-6, 2.8 + 3.5e-6), (QByteArrayList{
                                                       // the level starts in the window
                                                       "2,T,10000,5120,14000,1024,512,1024,12.5",
                                                       "2,T,12000,6144,16000,1024,512,2048,25",
                                                       "2,T,14000,7168,18000,1024,512,3072,37.5",
                                                       "3,T,2000,1024,6000,1024,512,1024,12.5",
                                                       "3,T,4000,2048,8000,1024,512,2048,25",
                                                       "3,T,6000,3072,10000,1024,512,3072,37.5",
                                                       "3,T,8000,4096,12000,1024,512,4096,50",
                                                       "3,T,10000,5120,14000,1024,512,5120,62.5",
                                                       "3,T,12000,6144,16000,1024,512,6144,75",
                                                       "3,T,14000,7168,18000,1024,512,7168,87.5",
                                                       "4,T,2000,1024,6000,1024,512,1024,12.5",
                                                       "4,T,4000,2048,8000,1024,512,2048,25",
                                                   }));
    QCOMPARE(exported(1.6 + 10.5e-6, 2.8 + 1.5e-6).size(), 11);
    QCOMPARE(exported(1.6 + 11.5e-6, 2.8 + 0.5e-6).size(), 9);
}

void DataReportRowsTest::nothingInView()
{
    MeasuringCameras cameras(1);
    RowExport report(cameras);
    QVERIFY(cameras.measureAndStop(0, 3));
    cameras.showTime(-60.0, -50.0);
    report.click(0);
    QCOMPARE(report.contents(), RowExport::framesHeader);
    QVERIFY(cameras.boxes.modal.isEmpty());
}

void DataReportRowsTest::counters()
{
    MeasuringCameras cameras(1, Mode::Acquisition);
    RowExport report(cameras);
    CountedFrames frames(cameras[0]);
    frames.counters = {{1, 2, 3, 4, 5, 6}, {11, 12, 13, 14, 15, 16}, {21, 22, 23, 24, 25, 26}, {31}};
    // So far apart that the run's start may lie anywhere between them.
    const QList<quint64> seconds = {0, 100, 200, 300};
    frames.microseconds.clear();
    for (const quint64 second : seconds)
        frames.microseconds.push_back(second * 1000000);
    cameras.setFrames(0, frames);
    Period period;
    QVERIFY(cameras.measureAndStop(0, 4));
    period.end();
    cameras.showTime(50.0, 250.0);
    report.click(0);

    QVERIFY(report.contents().startsWith(RowExport::countersHeader));
    QByteArrayList rows = report.rows();
    const QList<qint64> camera = takeTimes(rows, 1);
    const QList<qint64> computer = takeTimes(rows, 2);
    QCOMPARE(rows, (QByteArrayList{"2,T,T,11,12,14,15,16", "3,T,T,21,22,24,25,26"}));
    const qint64 start = camera[0] - 100000000;
    QVERIFY(period.includes(start));
    QCOMPARE(start % 1000, 0);
    QCOMPARE(camera[1], start + 200000000);
    QVERIFY(period.includes(computer[0]) && period.includes(computer[1]));
    QVERIFY(computer[0] <= computer[1]);
}

void DataReportRowsTest::counterOrigin_data()
{
    QTest::addColumn<int>("origin");
    QTest::addColumn<int>("rows");
    QTest::newRow("camera") << 0 << 0;
    QTest::newRow("computer") << 1 << 2;
}

void DataReportRowsTest::counterOrigin()
{
    QFETCH(int, origin);
    MeasuringCameras cameras(1, Mode::Acquisition);
    cameras.rig.loadSettings({{"DTGTMeasMode", 1}, {"DTGTTimestampOrigin", origin}});
    RowExport report(cameras);
    CountedFrames frames(cameras[0]);
    frames.microseconds = {3600000000};
    cameras.setFrames(0, frames);
    QVERIFY(cameras.measureAndStop(0, 2));
    cameras.showTime(-60.0, 60.0);
    report.click(0);
    QTEST(report.rows().size(), "rows");
}

QTEST_MAIN(DataReportRowsTest)
#include "DataReportRowsTest.moc"
