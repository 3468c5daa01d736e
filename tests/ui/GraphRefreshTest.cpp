#include "tests/ui/MeasuringCameras.h"

#include <QPointer>
#include <QSignalSpy>
#include <QTest>

using rig::MeasuringCameras;
using rig::PacedFrames;

/// When a refresh draws, which cameras and which graphs. A view from 0 to 2 s
/// shows all frames of a run, each but the first with a point.
class GraphRefreshTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void liveGraphOff();
    void liveGraphOffAndMoved();
    void liveGraphOn();
    void noBoxTicked();
    void oneRefreshForAllRows();
    void anyTickedRowWillDo();
    void unplottedCameraHasNoGraph();
    void plotNames_data();
    void plotNames();
    void interfaceLevels_data();
    void interfaceLevels();
    void interfaceLevelIsAskedEachTime();
    void nothingDrawnNoReplot();
    void failedCalculationKeepsTheRow();
    void failedCalculationClearsTheGraphs();
    void statisticsWithoutFramesInView();
    void stoppedCameraKeepsItsLastValues();
    void closedCameraLeavesItsArea();
};

namespace {

QCheckBox *quantityBox(const MeasuringCameras &cameras, int row)
{
    return cameras.rig.find<QTableWidget>("tablePlotCheck")->cellWidget(row, 0)->findChild<QCheckBox *>();
}

} // namespace

void GraphRefreshTest::liveGraphOff()
{
    MeasuringCameras cameras(1);
    cameras.showTime(0.0, 2.0);
    PacedFrames frames;
    frames.ticks = {500, 500, 500, 1000};
    cameras.setFrames(0, frames);
    cameras.liveGraph()->click();
    QVERIFY(cameras.measure(0, 3));
    cameras.refresh();
    const std::vector<QCPGraphData> drawn = cameras.points(0);
    QCOMPARE(int(drawn.size()), 2);

    QVERIFY(cameras.deliver(0, 2));
    QSignalSpy replots(cameras.rig.plot(), &QCustomPlot::afterReplot);
    cameras.tick();
    QCOMPARE(replots.size(), 0);
    QCOMPARE(int(cameras.points(0).size()), 2);
    QCOMPARE(cameras.points(0)[0].key, drawn[0].key);
    QCOMPARE(cameras.cell(0, 4), QString("256")); // the table follows

    cameras.refresh();
    QCOMPARE(replots.size(), 1);
    QCOMPARE(int(cameras.points(0).size()), 4);
}

/// Another view is drawn while nothing measures, and left to the user meanwhile.
void GraphRefreshTest::liveGraphOffAndMoved()
{
    MeasuringCameras cameras(1);
    cameras.liveGraph()->click();
    QVERIFY(cameras.measureAndStop(0, 3));
    QVERIFY(cameras.points(0).empty());
    cameras.showTime(0.0, 2.0);
    QCOMPARE(int(cameras.points(0).size()), 2);

    QVERIFY(cameras.measure(0, 2));
    const QPointer<QCPGraph> graph = cameras.rig.graph(cameras[0], "Min throughput");
    cameras.showTime(0.25, 2.25);
    cameras.tick();
    QVERIFY(graph);
    QCOMPARE(graph->dataCount(), 2);
}

void GraphRefreshTest::liveGraphOn()
{
    MeasuringCameras cameras(1);
    cameras.showTime(0.0, 2.0);
    QVERIFY(cameras.measure(0, 3));
    QSignalSpy replots(cameras.rig.plot(), &QCustomPlot::afterReplot);
    cameras.tick();
    QCOMPARE(replots.size(), 1);
    QCOMPARE(int(cameras.points(0).size()), 2);
    QVERIFY(cameras.deliver(0, 2));
    cameras.tick();
    QCOMPARE(int(cameras.points(0).size()), 4);
    QCOMPARE(cameras.rig.plot()->graphCount(), 2); // made anew, not added
}

void GraphRefreshTest::noBoxTicked()
{
    MeasuringCameras cameras(2);
    for (int camera = 0; camera < 2; ++camera)
        cameras.plotBox(camera)->click();
    QVERIFY(cameras.measure(1, 3));
    QSignalSpy replots(cameras.rig.plot(), &QCustomPlot::afterReplot);
    cameras.tick();
    QCOMPARE(cameras.cell(1, 4), QString("512"));
    QCOMPARE(cameras.rig.plot()->graphCount(), 0);
    QCOMPARE(replots.size(), 0);
}

void GraphRefreshTest::oneRefreshForAllRows()
{
    MeasuringCameras cameras;
    cameras.showTime(0.0, 2.0);
    for (int camera = 0; camera < 3; ++camera)
        QVERIFY(cameras.measure(camera, 2));
    QSignalSpy replots(cameras.rig.plot(), &QCustomPlot::afterReplot);
    cameras.tick();
    QCOMPARE(replots.size(), 1);
    for (int camera = 0; camera < 3; ++camera) {
        QCOMPARE(int(cameras.points(camera).size()), 1);
        QCOMPARE(cameras.cell(camera, 4), QString("512"));
    }
}

void GraphRefreshTest::anyTickedRowWillDo()
{
    MeasuringCameras cameras;
    cameras.showTime(0.0, 2.0);
    cameras.plotBox(0)->click();
    cameras.plotBox(1)->click();
    QVERIFY(cameras.measure(2, 2));
    QSignalSpy replots(cameras.rig.plot(), &QCustomPlot::afterReplot);
    cameras.tick();
    QCOMPARE(replots.size(), 1);
    QCOMPARE(int(cameras.points(2).size()), 1);
}

/// A refresh with graphs leaves out the cameras that are not plotted; their
/// rows keep what they showed.
void GraphRefreshTest::unplottedCameraHasNoGraph()
{
    MeasuringCameras cameras(2);
    cameras.plotBox(1)->click();
    QVERIFY(cameras.measure(0, 2));
    QVERIFY(cameras.measure(1, 2));
    cameras.tick();
    QCOMPARE(cameras.rig.plot()->graphCount(), 2);
    QVERIFY(cameras.rig.graph(cameras[0], "Min throughput"));
    QCOMPARE(cameras.cell(0, 4), QString("512"));
    QCOMPARE(cameras.cell(1, 4), QString("0"));
}

void GraphRefreshTest::plotNames_data()
{
    QTest::addColumn<QList<int>>("unticked");
    QTest::addColumn<QStringList>("names");
    QTest::newRow("none") << QList<int>() << QStringList({"Min throughput", "Max buffer level"});
    QTest::newRow("rate") << QList<int>({0}) << QStringList("Max buffer level");
    QTest::newRow("level") << QList<int>({1}) << QStringList("Min throughput");
    QTest::newRow("both") << QList<int>({0, 1}) << QStringList();
}

void GraphRefreshTest::plotNames()
{
    QFETCH(QList<int>, unticked);
    MeasuringCameras cameras(2);
    for (int row : unticked)
        rig::PluginRig::click(quantityBox(cameras, row));
    QVERIFY(cameras.measure(0, 2));
    cameras.refresh();
    for (int camera = 0; camera < 2; ++camera) {
        QStringList names;
        for (const QCPGraph *graph : cameras.rig.axisRect(cameras[camera])->graphs())
            names.append(graph->name());
        QTEST(names, "names");
    }
    QCOMPARE(cameras.cell(0, 4), QString("512")); // statistics need no graph
}

void GraphRefreshTest::interfaceLevels_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<bool>("hasRate");
    QTest::newRow("0") << 0 << false;
    QTest::newRow("2") << 2 << false;
    QTest::newRow("3") << 3 << true;
    QTest::newRow("4") << 4 << true;
}

void GraphRefreshTest::interfaceLevels()
{
    QFETCH(int, level);
    QFETCH(bool, hasRate);
    MeasuringCameras cameras(1);
    scripted::Gui::instance().setInterfaceLevel(level);
    cameras.refresh();
    QCOMPARE(cameras.rig.graph(cameras[0], "Min throughput") != nullptr, hasRate);
    QVERIFY(cameras.rig.graph(cameras[0], "Max buffer level"));
}

void GraphRefreshTest::interfaceLevelIsAskedEachTime()
{
    MeasuringCameras cameras(1);
    cameras.showTime(0.0, 2.0);
    QVERIFY(cameras.measure(0, 3));
    cameras.tick();
    QCOMPARE(int(cameras.points(0).size()), 2);
    scripted::Gui::instance().setInterfaceLevel(2);
    cameras.tick();
    QVERIFY(!cameras.rig.graph(cameras[0], "Min throughput"));
    QCOMPARE(int(cameras.points(0, "Max buffer level").size()), 2);
    scripted::Gui::instance().setInterfaceLevel(3);
    cameras.tick();
    QCOMPARE(int(cameras.points(0).size()), 2);
}

void GraphRefreshTest::nothingDrawnNoReplot()
{
    MeasuringCameras cameras(2);
    QSignalSpy replots(cameras.rig.plot(), &QCustomPlot::afterReplot);
    cameras.refresh();
    cameras.tick();
    QCOMPARE(replots.size(), 0);
    QVERIFY(cameras.measure(1, 1)); // one is enough
    replots.clear();
    cameras.refresh();
    QCOMPARE(replots.size(), 1);
}

void GraphRefreshTest::failedCalculationKeepsTheRow()
{
    MeasuringCameras cameras(1);
    QVERIFY(cameras.measureAndStop(0, 2));
    cameras.refresh();
    QCOMPARE(cameras.cell(0, 4), QString("512"));
    cameras.showTime(500.0, 510.0);
    cameras.refresh();
    QCOMPARE(cameras.cell(0, 4), QString("512"));
}

void GraphRefreshTest::failedCalculationClearsTheGraphs()
{
    MeasuringCameras cameras(1);
    cameras.showTime(0.0, 2.0);
    QVERIFY(cameras.measureAndStop(0, 3));
    cameras.refresh();
    QCOMPARE(int(cameras.points(0).size()), 2);
    QSignalSpy replots(cameras.rig.plot(), &QCustomPlot::afterReplot);
    cameras.showTime(500.0, 510.0);
    QVERIFY(cameras.rig.graph(cameras[0], "Min throughput"));
    QVERIFY(cameras.points(0).empty());
    QVERIFY(cameras.points(0, "Max buffer level").empty());
    QCOMPARE(replots.size(), 0);
}

void GraphRefreshTest::statisticsWithoutFramesInView()
{
    MeasuringCameras cameras(1);
    cameras.liveGraph()->click();
    cameras.showTime(500.0, 510.0);
    QVERIFY(cameras.measure(0, 2));
    cameras.tick();
    QCOMPARE(cameras.cell(0, 4), QString("2147483647"));
    QCOMPARE(cameras.cell(0, 5), QString("0 %"));
    QCOMPARE(cameras.cell(0, 6), QString("0"));
}

/// Statistics alone are made for measuring cameras, a view of later frames or
/// not; graphs are made for all.
void GraphRefreshTest::stoppedCameraKeepsItsLastValues()
{
    MeasuringCameras cameras(2);
    PacedFrames frames;
    frames.ticks = {500, 1000};
    frames.microsecondsPerFrame = 100000000; // the second frame: 100 s later
    cameras.setFrames(0, frames);
    cameras.setFrames(1, frames);
    cameras.liveGraph()->click();
    QVERIFY(cameras.measure(0, 2));
    QVERIFY(cameras.measure(1, 2));
    cameras.tick();
    cameras.clickMeasure(0);
    QCOMPARE(cameras.cell(0, 4), QString("512"));

    cameras.showTime(96.0, 106.0);
    cameras.tick();
    QCOMPARE(cameras.cell(0, 4), QString("512"));
    QCOMPARE(cameras.cell(1, 4), QString("256"));
    cameras.liveGraph()->click();
    cameras.tick();
    QCOMPARE(cameras.cell(0, 4), QString("256"));
}

void GraphRefreshTest::closedCameraLeavesItsArea()
{
    MeasuringCameras cameras(2);
    cameras.showTime(0.0, 2.0);
    QVERIFY(cameras.measure(0, 3));
    QVERIFY(cameras.measure(1, 3));
    cameras.refresh();
    cameras.host.closeCamera(cameras[0]);
    QVERIFY(cameras.rig.axisRect(cameras[0]));
    QVERIFY(!cameras.rig.plot()->grab().isNull());

    cameras.tick();
    cameras.refresh();
    QVERIFY(cameras.rig.axisRect(cameras[0])->graphs().isEmpty());
    QCOMPARE(int(cameras.points(1).size()), 2);
    cameras.rig.axisRect(cameras[0])->axis(QCPAxis::atBottom)->setRange(0.5, 2.5);
    QCOMPARE(cameras.timeAxis(1)->range(), QCPRange(0.5, 2.5));
    QVERIFY(!cameras.rig.plot()->grab().isNull());
    cameras.clickMeasure(1);
    cameras.refresh();
    QCOMPARE(int(cameras.points(1).size()), 2);
}

QTEST_MAIN(GraphRefreshTest)
#include "GraphRefreshTest.moc"
