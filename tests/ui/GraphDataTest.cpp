#include "tests/ui/MeasuringCameras.h"

#include <QTest>

#include <cmath>

using rig::MeasuringCameras;
using rig::PacedFrames;

/// What a refresh makes of the frames: points of the graphs, statistics of the
/// rows.
///
/// The frames lie in the second after the start of their run, so that a view
/// from 0 to 2 s shows them. A frame starts in a pixel column of its own there:
/// its first interval makes the point of all since the point before.
class GraphDataTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void valuesOfTheGraphs();
    void timesOfTheGraphs();
    void timesStandStillAfterTheStop();
    void noMoreThanAPointForAColumn();
    void statisticsOfTheRow();
    void bufferModel_data();
    void bufferModel();
    void timestampOrigin_data();
    void timestampOrigin();
    void loadedPeriodCountsForTheFramesAtHand();
    void refreshAtTheEndOfTime();
};

namespace {

constexpr double microsecond = 1e-6;

/// Camera time, in seconds, of the first interval's end in the n-th frame.
double firstIntervalEnd(int frame)
{
    return 1.0 + 0.01 * frame + 2 * microsecond;
}

} // namespace

void GraphDataTest::valuesOfTheGraphs()
{
    MeasuringCameras cameras(1);
    cameras.showTime(0.0, 2.0);
    cameras.host.setValue(cameras[0], "device_unit_register_value[8,4096]", 1024);
    cameras.host.setValue(cameras[0], "dp_param_value[1,5,7]", 8192);
    PacedFrames frames;
    frames.ticks = {500, 1000, 250, 250, 500, 2000, 500};
    cameras.setFrames(0, frames);
    QVERIFY(cameras.measure(0, 7));
    cameras.refresh();

    // The lowest rate since the point before: the rest of the frame before and
    // this frame's first interval.
    QList<double> rates;
    for (const QCPGraphData &point : cameras.points(0))
        rates.append(point.value);
    QCOMPARE(rates, QList<double>({256, 256, 1024, 512, 128, 128}));

    // What the first interval alone adds to an empty buffer: 1024 bytes a
    // microsecond come in, 1024 bytes go out.
    QList<double> levels;
    for (const QCPGraphData &point : cameras.points(0, "Max buffer level"))
        levels.append(point.value);
    QCOMPARE(levels, QList<double>({37.5, 0, 0, 12.5, 87.5, 12.5}));
}

void GraphDataTest::timesOfTheGraphs()
{
    MeasuringCameras cameras(1);
    cameras.showTime(0.0, 2.0);
    const int beforeStart = rig::timeOfDay();
    QVERIFY(cameras.measure(0, 5));
    const int afterStart = rig::timeOfDay();
    for (int repetition = 0; repetition < 3; ++repetition) {
        const int beforeRefresh = rig::timeOfDay();
        cameras.refresh();
        const int afterRefresh = rig::timeOfDay();

        const std::vector<QCPGraphData> drawn = cameras.points(0);
        QCOMPARE(int(drawn.size()), 4);
        // Milliseconds from the origin to the start of the run.
        const double start = (drawn[0].key - firstIntervalEnd(1)) * 1000;
        QVERIFY(beforeStart - afterRefresh - 1e-6 <= start && start <= afterStart - beforeRefresh + 1e-6);
        QVERIFY(std::abs(start - std::round(start)) < 1e-6);
        for (int i = 0; i < 4; ++i)
            QVERIFY(std::abs(drawn[i].key - firstIntervalEnd(i + 1) - start / 1000) < 1e-9);
        const std::vector<QCPGraphData> levels = cameras.points(0, "Max buffer level");
        QCOMPARE(int(levels.size()), 4);
        QCOMPARE(levels[3].key, drawn[3].key);
    }
}

void GraphDataTest::timesStandStillAfterTheStop()
{
    MeasuringCameras cameras(2);
    cameras.showTime(0.0, 2.0);
    QVERIFY(cameras.measureAndStop(0, 5));
    cameras.refresh();
    const std::vector<QCPGraphData> first = cameras.points(0);
    QCOMPARE(int(first.size()), 4);
    const int refreshed = rig::timeOfDay();
    while (rig::timeOfDay() == refreshed) {
    }
    cameras.refresh();
    QCOMPARE(cameras.points(0)[0].key, first[0].key);

    // Another camera's measurement moves the time of all.
    QVERIFY(cameras.measure(1, 1));
    cameras.refresh();
    QVERIFY(cameras.points(0)[0].key < first[0].key);
}

void GraphDataTest::noMoreThanAPointForAColumn()
{
    MeasuringCameras cameras(1);
    cameras.showTime(0.0, 20.0);
    PacedFrames frames;
    frames.microsecondsPerFrame = 1000;
    frames.ticks.assign(1501, 500);
    frames.ticks[700] = 4000;
    cameras.setFrames(0, frames);
    QVERIFY(cameras.measureAndStop(0, 1500));
    cameras.refresh();

    const double column = std::floor(20.0 * 1e6 / cameras.rig.plot()->width()) * microsecond;
    const std::vector<QCPGraphData> drawn = cameras.points(0);
    // Frames that come every millisecond leave no column of 20 s empty.
    const int columns = int(1.5 / column);
    QVERIFY2(int(drawn.size()) <= columns + 1 && int(drawn.size()) >= columns * 9 / 10,
             qPrintable(QString("%1 points, %2 columns").arg(drawn.size()).arg(columns)));
    int drops = 0;
    for (std::size_t i = 0; i < drawn.size(); ++i) {
        QVERIFY(i == 0 || drawn[i].key - drawn[i - 1].key > column - 1e-9);
        drops += drawn[i].value == PacedFrames::rate(4000);
    }
    QVERIFY(drops == 1 || drops == 2); // the slow frame may lie on a column's edge
}

void GraphDataTest::statisticsOfTheRow()
{
    MeasuringCameras cameras(2);
    PacedFrames frames;
    frames.ticks = {500, 1000};
    cameras.setFrames(0, frames);
    QCOMPARE(cameras.cell(0, 3) + "," + cameras.cell(0, 4), QString("0,0"));
    QVERIFY(cameras.measure(0, 2));
    cameras.refresh();
    // Bytes of the eight stamps in the time of the seven intervals between them.
    QCOMPARE(cameras.cell(0, 3), QString::number(int((8192 / 14.0 + 8192 / 28.0) / 2)));
    QCOMPARE(cameras.cell(0, 4), QString("256"));
    QCOMPARE(cameras.cell(0, 1), QString("Testing"));
    QCOMPARE(cameras.cell(1, 4), QString("0"));
}

void GraphDataTest::bufferModel_data()
{
    QTest::addColumn<bool>("reset");
    QTest::addColumn<bool>("graphs");
    QTest::addColumn<QString>("level");
    QTest::addColumn<QString>("overflows");
    for (const bool graphs : {false, true}) {
        const char *how = graphs ? "with graphs" : "statistics";
        QTest::addRow("each frame on its own, %s", how) << true << graphs << "87 %"
                                                        << "0";
        QTest::addRow("from frame to frame, %s", how) << false << graphs << "100 %"
                                                      << "2";
    }
}

void GraphDataTest::bufferModel()
{
    QFETCH(bool, reset);
    QFETCH(bool, graphs);
    MeasuringCameras cameras(1);
    cameras.rig.loadSettings({{"DTGTResetBufferLevel", reset}, {"DTGTLiveGraph", int(graphs)}});
    cameras.host.setValue(cameras[0], "device_unit_register_value[8,4096]", 1024);
    cameras.host.setValue(cameras[0], "dp_param_value[1,5,7]", 8192);
    PacedFrames frames;
    frames.microsecondsPerFrame = 15; // one more than the seven intervals take
    cameras.setFrames(0, frames);
    QVERIFY(cameras.measure(0, 3));
    cameras.tick();
    QTEST(cameras.cell(0, 5), "level");
    QTEST(cameras.cell(0, 6), "overflows");
}

void GraphDataTest::timestampOrigin_data()
{
    QTest::addColumn<int>("origin");
    QTest::addColumn<bool>("graphs");
    QTest::addColumn<QString>("rate");
    QTest::newRow("camera, statistics") << 0 << false << "2147483647";
    QTest::newRow("computer, statistics") << 1 << false << "512";
    QTest::newRow("camera, with graphs") << 0 << true << "0";
    QTest::newRow("computer, with graphs") << 1 << true << "512";
}

/// A camera whose clock is far ahead shows up at the computer's time only.
void GraphDataTest::timestampOrigin()
{
    QFETCH(int, origin);
    QFETCH(bool, graphs);
    MeasuringCameras cameras(1);
    cameras.rig.loadSettings({{"DTGTTimestampOrigin", origin}, {"DTGTLiveGraph", int(graphs)}});
    PacedFrames frames;
    frames.firstMicroseconds = 3600000000;
    cameras.setFrames(0, frames);
    QVERIFY(cameras.measure(0, 2));
    cameras.tick();
    QTEST(cameras.cell(0, 4), "rate");
}

/// Loaded settings reach the engines at once, not only with the next start.
void GraphDataTest::loadedPeriodCountsForTheFramesAtHand()
{
    MeasuringCameras cameras(1);
    cameras.showTime(0.0, 2.0);
    QVERIFY(cameras.measureAndStop(0, 2));
    QCOMPARE(cameras.cell(0, 4), QString("512"));
    cameras.rig.loadSettings({{"DTGTSamplePeriod", 2048}});
    cameras.showTime(0.0, 2.0);
    QCOMPARE(cameras.cell(0, 4), QString("1024"));
}

/// A view that no 64-bit time reaches.
void GraphDataTest::refreshAtTheEndOfTime()
{
    MeasuringCameras cameras(1);
    QVERIFY(cameras.measure(0, 3));
    for (const QCPRange &range : {QCPRange(-1e30, 1e30), QCPRange(1e20, 1e21), QCPRange(-1e21, -1e20)}) {
        cameras.timeAxis(0)->setRange(range);
        cameras.tick();
        cameras.refresh();
        QVERIFY(!cameras.rig.plot()->grab().isNull());
    }
    cameras.clickMeasure(0);
    cameras.showTime(0.0, 2.0);
    QCOMPARE(int(cameras.points(0).size()), 2);
}

QTEST_MAIN(GraphDataTest)
#include "GraphDataTest.moc"
