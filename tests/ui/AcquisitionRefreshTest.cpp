#include "tests/ui/MeasuringCameras.h"

#include <QPointer>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

using rig::CountedFrames;
using rig::MeasuringCameras;
using rig::Mode;

/// When the window draws in acquisition mode, and which cameras.
class AcquisitionRefreshTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void alwaysReplots();
    void liveGraphOff();
    void liveGraphOn();
    void noBoxTicked();
    void anyTickedRowWillDo();
    void tickingBoxesChoosesCameras();
    void lastBoxHidesThePlot();
    void boxWhileMeasuring();
    void tooNarrowViewSnapsBack();
    void zoomAndPanResets();
    void movedViewIsDrawnAtOnce();
    void movedViewOfAMeasuringCamera();
    void originFollowsTheMeasurement();
};

namespace {

QStringList titlesOf(const MeasuringCameras &cameras)
{
    QStringList titles;
    QCPLayoutGrid *grid = cameras.rig.plot()->plotLayout();
    for (int row = 0; row + 1 < grid->rowCount(); row += 2) {
        const auto *title = qobject_cast<QCPTextElement *>(grid->element(row, 0));
        const auto *rect = qobject_cast<QCPAxisRect *>(grid->element(row + 1, 0));
        const bool isInPlace =
            title && rect && rect->axis(QCPAxis::atLeft)->label() == "Counter value" &&
            title->text() == MeasuringCameras::name(cameras.handles().indexOf(rig::handleOf(rect)));
        titles.append(isInPlace ? title->text() : QString("misplaced"));
    }
    return titles;
}

std::size_t pointCount(const MeasuringCameras &cameras, int camera = 0)
{
    return cameras.points(camera, "API skip").size();
}

} // namespace

/// With something to draw or without.
void AcquisitionRefreshTest::alwaysReplots()
{
    MeasuringCameras cameras(2, Mode::Acquisition);
    QSignalSpy replots(cameras.rig.plot(), &QCustomPlot::afterReplot);
    cameras.refresh();
    QCOMPARE(replots.size(), 1);
    cameras.tick();
    QCOMPARE(replots.size(), 2);
    QVERIFY(cameras.measure(1, 2));
    replots.clear();
    cameras.refresh(); // once for all cameras
    QCOMPARE(replots.size(), 1);
}

void AcquisitionRefreshTest::liveGraphOff()
{
    MeasuringCameras cameras(1, Mode::Acquisition);
    cameras.showTime(0.0, 2.0);
    cameras.setCounters(
        0, {CountedFrames::all(1), CountedFrames::all(2), CountedFrames::all(3), CountedFrames::all(4)});
    cameras.liveGraph()->click();
    QVERIFY(cameras.measure(0, 2));
    cameras.refresh();
    const std::vector<QCPGraphData> drawn = cameras.points(0, "API skip");
    QCOMPARE(int(drawn.size()), 1);
    const QCPRange range = cameras.rig.axisRect(cameras[0])->axis(QCPAxis::atLeft)->range();

    QVERIFY(cameras.deliver(0, 2));
    QSignalSpy replots(cameras.rig.plot(), &QCustomPlot::afterReplot);
    cameras.tick();
    QCOMPARE(replots.size(), 0);
    QCOMPARE(int(pointCount(cameras)), 1);
    QCOMPARE(cameras.points(0, "API skip")[0].key, drawn[0].key);
    QCOMPARE(cameras.rig.axisRect(cameras[0])->axis(QCPAxis::atLeft)->range(), range);
    QCOMPARE(cameras.cell(0, 6), QString("4")); // the table follows

    cameras.refresh();
    QCOMPARE(replots.size(), 1);
    QCOMPARE(int(pointCount(cameras)), 3);
}

void AcquisitionRefreshTest::liveGraphOn()
{
    MeasuringCameras cameras(1, Mode::Acquisition);
    cameras.showTime(0.0, 2.0);
    QVERIFY(cameras.measure(0, 2));
    QSignalSpy replots(cameras.rig.plot(), &QCustomPlot::afterReplot);
    cameras.tick();
    QCOMPARE(replots.size(), 1);
    QCOMPARE(int(pointCount(cameras)), 1);
    QVERIFY(cameras.deliver(0, 2));
    cameras.tick();
    QCOMPARE(int(pointCount(cameras)), 3);
}

void AcquisitionRefreshTest::noBoxTicked()
{
    MeasuringCameras cameras(2, Mode::Acquisition);
    cameras.setCounters(1, {CountedFrames::all(6)});
    for (int camera = 0; camera < 2; ++camera)
        cameras.plotBox(camera)->click();
    QVERIFY(cameras.liveGraph()->isChecked());
    QVERIFY(cameras.measure(1, 3));
    QSignalSpy replots(cameras.rig.plot(), &QCustomPlot::afterReplot);
    cameras.tick();
    QCOMPARE(cameras.cell(1, 4), QString("6"));
    QCOMPARE(cameras.rig.plot()->graphCount(), 0);
    QCOMPARE(replots.size(), 0);
}

/// A refresh with graphs leaves out the cameras that are not plotted; their
/// rows keep what they showed.
void AcquisitionRefreshTest::anyTickedRowWillDo()
{
    MeasuringCameras cameras(3, Mode::Acquisition);
    cameras.showTime(0.0, 2.0);
    for (int camera = 0; camera < 3; ++camera)
        cameras.setCounters(camera, {CountedFrames::all(3), CountedFrames::all(5)});
    cameras.plotBox(0)->click();
    cameras.plotBox(1)->click();
    QVERIFY(cameras.measure(1, 1));
    QVERIFY(cameras.measure(2, 1));
    cameras.liveGraph()->setChecked(false);
    cameras.tick(); // statistics of all
    cameras.liveGraph()->setChecked(true);
    QCOMPARE(cameras.cell(1, 4), QString("3"));
    QVERIFY(cameras.deliver(1, 1));
    QVERIFY(cameras.deliver(2, 1));
    QSignalSpy replots(cameras.rig.plot(), &QCustomPlot::afterReplot);
    cameras.tick();
    QCOMPARE(replots.size(), 1);
    QCOMPARE(int(pointCount(cameras, 2)), 1);
    QCOMPARE(cameras.rig.plot()->graphCount(), 6);
    QCOMPARE(cameras.cell(2, 4), QString("5"));
    QCOMPARE(cameras.cell(1, 4), QString("3"));
}

void AcquisitionRefreshTest::tickingBoxesChoosesCameras()
{
    MeasuringCameras cameras(3, Mode::Acquisition);
    QCOMPARE(titlesOf(cameras), QStringList({"Alpha (A-1)", "Beta (B-2)", "Gamma (C-3)"}));
    rig::PluginRig::click(cameras.plotBox(0));
    QCOMPARE(titlesOf(cameras), QStringList({"Beta (B-2)", "Gamma (C-3)"}));
    rig::PluginRig::click(cameras.plotBox(2));
    QCOMPARE(titlesOf(cameras), QStringList("Beta (B-2)"));
    rig::PluginRig::click(cameras.plotBox(0));
    QCOMPARE(titlesOf(cameras), QStringList({"Alpha (A-1)", "Beta (B-2)"}));
    cameras.rig.call("updateCameraList");
    QCOMPARE(titlesOf(cameras), QStringList({"Alpha (A-1)", "Beta (B-2)", "Gamma (C-3)"}));
    cameras.refresh();
    QCOMPARE(cameras.rig.plot()->graphCount(), 3); // a frame rate each
}

void AcquisitionRefreshTest::lastBoxHidesThePlot()
{
    MeasuringCameras cameras(2, Mode::Acquisition);
    cameras.showTime(0.0, 2.0);
    QVERIFY(cameras.measureAndStop(1, 3));
    rig::PluginRig::click(cameras.plotBox(0));
    QVERIFY(cameras.rig.plot()->isVisible());
    rig::PluginRig::click(cameras.plotBox(1));
    QVERIFY(cameras.rig.plot()->isHidden());
    QCOMPARE(cameras.rig.plot()->axisRectCount(), 0);
    QCOMPARE(cameras.rig.plot()->graphCount(), 0);
    rig::PluginRig::click(cameras.plotBox(1));
    QVERIFY(cameras.rig.plot()->isVisible());
    QCOMPARE(titlesOf(cameras), QStringList("Beta (B-2)"));
    cameras.refresh();
    QCOMPARE(int(pointCount(cameras, 1)), 2);
}

void AcquisitionRefreshTest::boxWhileMeasuring()
{
    MeasuringCameras cameras(2, Mode::Acquisition);
    QSignalSpy replots(cameras.rig.plot(), &QCustomPlot::afterReplot);
    rig::PluginRig::click(cameras.plotBox(0));
    QCOMPARE(replots.size(), 1);
    QVERIFY(cameras.measure(1, 2));
    replots.clear();
    rig::PluginRig::click(cameras.plotBox(0)); // the next tick draws it
    QCOMPARE(replots.size(), 0);
    QCOMPARE(cameras.rig.plot()->graphCount(), 0);
    cameras.tick();
    QCOMPARE(cameras.rig.axisRect(cameras[1])->graphs().size(), 6);
}

void AcquisitionRefreshTest::tooNarrowViewSnapsBack()
{
    MeasuringCameras cameras(2, Mode::Acquisition);
    cameras.showTime(-7.0, -2.0);
    cameras.showTime(-4.9, -4.0);
    for (int camera = 0; camera < 2; ++camera)
        QCOMPARE(cameras.timeAxis(camera)->range(), QCPRange(-7.0, -2.0));
    cameras.showTime(-5.0, -4.0); // the narrowest
    for (int camera = 0; camera < 2; ++camera)
        QCOMPARE(cameras.timeAxis(camera)->range(), QCPRange(-5.0, -4.0));
}

void AcquisitionRefreshTest::zoomAndPanResets()
{
    MeasuringCameras cameras(2, Mode::Acquisition);
    cameras.showTime(-9.0, -4.0);
    rig::PluginRig::click(cameras.rig.find<QPushButton>("resetPan"));
    for (int camera = 0; camera < 2; ++camera)
        QCOMPARE(cameras.timeAxis(camera)->range(), QCPRange(-5.0, 0.0));
    rig::PluginRig::click(cameras.rig.find<QPushButton>("btnResetZoom"));
    for (int camera = 0; camera < 2; ++camera)
        QCOMPARE(cameras.timeAxis(camera)->range(), QCPRange(-20.0, 0.0));
}

/// While nothing measures, with the graph live or not.
void AcquisitionRefreshTest::movedViewIsDrawnAtOnce()
{
    MeasuringCameras cameras(1, Mode::Acquisition);
    cameras.liveGraph()->click();
    QVERIFY(cameras.measureAndStop(0, 3));
    QCOMPARE(int(pointCount(cameras)), 0);
    cameras.showTime(0.0, 2.0);
    const std::vector<QCPGraphData> drawn = cameras.points(0, "API skip");
    QCOMPARE(int(drawn.size()), 2);
    cameras.showTime(0.25, 2.25); // around the origin of before
    QCOMPARE(int(pointCount(cameras)), 2);
    QVERIFY(qAbs(cameras.points(0, "API skip")[0].key - drawn[0].key) < 1e-9);
    cameras.showTime(500.0, 510.0);
    QCOMPARE(int(pointCount(cameras)), 0);
}

void AcquisitionRefreshTest::movedViewOfAMeasuringCamera()
{
    MeasuringCameras cameras(1, Mode::Acquisition);
    cameras.showTime(0.0, 2.0);
    QVERIFY(cameras.measure(0, 3));
    cameras.tick();
    const QPointer<QCPGraph> graph = cameras.rig.graph(cameras[0], "API skip");
    QSignalSpy replots(cameras.rig.plot(), &QCustomPlot::afterReplot);
    cameras.showTime(0.25, 2.25);
    QVERIFY(graph); // the next tick makes another
    QCoreApplication::processEvents();
    QVERIFY(replots.size() > 0);
    cameras.tick();
    QVERIFY(!graph);
}

/// And stands still with it: points stay where they are.
void AcquisitionRefreshTest::originFollowsTheMeasurement()
{
    MeasuringCameras cameras(1, Mode::Acquisition);
    cameras.showTime(0.0, 2.0);
    QVERIFY(cameras.measure(0, 2));
    // The second frame's time, milliseconds from the origin.
    const auto frameTime = [&cameras] { return cameras.points(0, "API skip")[0].key * 1000; };
    const auto letTimePass = [] {
        for (const int now = rig::timeOfDay(); rig::timeOfDay() == now;)
            QThread::yieldCurrentThread();
    };
    letTimePass();
    cameras.refresh();
    const double first = frameTime();
    letTimePass();
    cameras.tick();
    const double second = frameTime();
    QVERIFY(second <= first - 1 + 1e-6);

    cameras.clickMeasure(0);
    cameras.refresh();
    const double stopped = frameTime();
    letTimePass();
    cameras.refresh();
    QCOMPARE(frameTime(), stopped);
}

QTEST_MAIN(AcquisitionRefreshTest)
#include "AcquisitionRefreshTest.moc"
