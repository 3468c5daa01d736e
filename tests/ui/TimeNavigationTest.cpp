#include "tests/ui/MeasuringCameras.h"

#include <QApplication>
#include <QSignalSpy>
#include <QTest>
#include <QWheelEvent>

#include <cmath>

Q_DECLARE_METATYPE(QCPRange)

using rig::MeasuringCameras;

/// Moving about on the time axis, with the mouse and with the buttons.
class TimeNavigationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void wheelZooms_data();
    void wheelZooms();
    void wheelStopsAtASecond();
    void wheelLeavesTheValueAxes();
    void dragPans_data();
    void dragPans();
    void dragLeavesTheValueAxes();
    void narrowestView_data();
    void narrowestView();
    void resetZoom();
    void resetPan_data();
    void resetPan();
    void resetPanTwice();
    void resetsReplot_data();
    void resetsReplot();
    void panWhileStoppedRecomputes();
    void panWhileStoppedKeepsTheOrigin();
    void zoomWhileStoppedMakesNewColumns();
    void zoomWhileMeasuringOnlyReplots();
    void refusedZoomWhileMeasuringReplots();
    void refusedZoomWhileStoppedMakesNewGraphs();
    void resetWhileStoppedMakesNewColumns_data();
    void resetWhileStoppedMakesNewColumns();
    void resetWhileMeasuringMakesNoPoints_data();
    void resetWhileMeasuringMakesNoPoints();
    void rebuildResetsTheView();

private:
    static void compareViews(const MeasuringCameras &cameras, const QCPRange &expected);
    static int pointCount(const MeasuringCameras &cameras, int camera)
    {
        return int(cameras.points(camera).size());
    }
};

namespace {

QPoint centreOf(const MeasuringCameras &cameras, int camera)
{
    return cameras.rig.axisRect(cameras[camera])->rect().center();
}

void turnWheel(const MeasuringCameras &cameras, const QPoint &position, int steps)
{
    QCustomPlot *plot = cameras.rig.plot();
    QWheelEvent event(position, plot->mapToGlobal(position), QPoint(), QPoint(0, 120 * steps), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(plot, &event);
}

void send(QCustomPlot *plot, QEvent::Type type, const QPoint &position, Qt::MouseButtons held)
{
    const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, position, plot->mapToGlobal(position), button, held, Qt::NoModifier);
    QApplication::sendEvent(plot, &event);
}

void drag(const MeasuringCameras &cameras, const QPoint &from, const QPoint &by)
{
    QCustomPlot *plot = cameras.rig.plot();
    send(plot, QEvent::MouseButtonPress, from, Qt::LeftButton);
    send(plot, QEvent::MouseMove, from + by / 2, Qt::LeftButton);
    send(plot, QEvent::MouseMove, from + by, Qt::LeftButton);
    send(plot, QEvent::MouseButtonRelease, from + by, Qt::NoButton);
}

} // namespace

void TimeNavigationTest::compareViews(const MeasuringCameras &cameras, const QCPRange &expected)
{
    for (int camera = 0; camera < cameras.handles().size(); ++camera) {
        QCOMPARE(cameras.timeAxis(camera)->range().lower, expected.lower);
        QCOMPARE(cameras.timeAxis(camera)->range().upper, expected.upper);
    }
}

void TimeNavigationTest::wheelZooms_data()
{
    QTest::addColumn<int>("steps");
    QTest::newRow("in") << 1;
    QTest::newRow("further in") << 4;
    QTest::newRow("out") << -1;
    QTest::newRow("further out") << -6;
}

void TimeNavigationTest::wheelZooms()
{
    QFETCH(int, steps);
    MeasuringCameras cameras;
    const QPoint mouse = centreOf(cameras, 1) + QPoint(40, 0);
    const double underMouse = cameras.timeAxis(1)->pixelToCoord(mouse.x());
    turnWheel(cameras, mouse, steps);
    const QCPRange view = cameras.timeAxis(1)->range();
    const double factor = std::pow(cameras.rig.axisRect(cameras[1])->rangeZoomFactor(Qt::Horizontal), steps);
    QVERIFY(std::abs(view.size() - 20.0 * factor) < 1e-9);
    QVERIFY(std::abs(cameras.timeAxis(1)->pixelToCoord(mouse.x()) - underMouse) < 1e-9);
    compareViews(cameras, view);
}

void TimeNavigationTest::wheelStopsAtASecond()
{
    MeasuringCameras cameras(2);
    double narrowest = 20.0;
    QCPRange view;
    do {
        view = cameras.timeAxis(0)->range();
        narrowest = view.size();
        turnWheel(cameras, centreOf(cameras, 0), 1);
    } while (cameras.timeAxis(0)->range().size() < narrowest);
    // The next step would have led below a second.
    QVERIFY(narrowest >= 1.0);
    QVERIFY(narrowest * cameras.rig.axisRect(cameras[0])->rangeZoomFactor(Qt::Horizontal) < 1.0);
    compareViews(cameras, view);
    turnWheel(cameras, centreOf(cameras, 1), 3);
    compareViews(cameras, view);
    turnWheel(cameras, centreOf(cameras, 1), -1);
    QVERIFY(cameras.timeAxis(0)->range().size() > narrowest);
}

void TimeNavigationTest::wheelLeavesTheValueAxes()
{
    MeasuringCameras cameras(1);
    QCPAxisRect *rect = cameras.rig.axisRect(cameras[0]);
    turnWheel(cameras, centreOf(cameras, 0), 2);
    QCOMPARE(rect->axis(QCPAxis::atLeft)->range(), QCPRange(0.0, 1000.0));
    QCOMPARE(rect->axis(QCPAxis::atRight)->range(), QCPRange(-10.0, 110.0));
}

void TimeNavigationTest::dragPans_data()
{
    QTest::addColumn<int>("pixels");
    QTest::newRow("into the past") << 100;
    QTest::newRow("into the future") << -60;
}

void TimeNavigationTest::dragPans()
{
    QFETCH(int, pixels);
    MeasuringCameras cameras;
    const double secondsPerPixel = 20.0 / cameras.rig.axisRect(cameras[2])->width();
    drag(cameras, centreOf(cameras, 2), QPoint(pixels, 0));
    const QCPRange view = cameras.timeAxis(2)->range();
    QVERIFY(std::abs(view.upper + pixels * secondsPerPixel) < 1e-9);
    QVERIFY(std::abs(view.size() - 20.0) < 1e-9);
    compareViews(cameras, view);
}

void TimeNavigationTest::dragLeavesTheValueAxes()
{
    MeasuringCameras cameras(1);
    QCPAxisRect *rect = cameras.rig.axisRect(cameras[0]);
    drag(cameras, centreOf(cameras, 0), QPoint(30, 20));
    QVERIFY(cameras.timeAxis(0)->range().upper < 0.0);
    QCOMPARE(rect->axis(QCPAxis::atLeft)->range(), QCPRange(0.0, 1000.0));
    QCOMPARE(rect->axis(QCPAxis::atRight)->range(), QCPRange(-10.0, 110.0));
}

void TimeNavigationTest::narrowestView_data()
{
    QTest::addColumn<QCPRange>("view");
    QTest::addColumn<bool>("accepted");
    QTest::newRow("0.9 s") << QCPRange(-0.9, 0.0) << false;
    QTest::newRow("just below a second") << QCPRange(-0.999999, 0.0) << false;
    QTest::newRow("a second") << QCPRange(-1.0, 0.0) << true;
    QTest::newRow("1.5 s") << QCPRange(-8.5, -7.0) << true;
    QTest::newRow("an hour") << QCPRange(-3600.0, 0.0) << true;
    QTest::newRow("0.9 s somewhere else") << QCPRange(-8.0, -7.1) << false;
}

void TimeNavigationTest::narrowestView()
{
    QFETCH(QCPRange, view);
    QFETCH(bool, accepted);
    MeasuringCameras cameras;
    const QCPRange before(-12.0, -2.0);
    cameras.showTime(before.lower, before.upper);
    compareViews(cameras, before);
    cameras.timeAxis(1)->setRange(view);
    compareViews(cameras, accepted ? view : before);
}

void TimeNavigationTest::resetZoom()
{
    MeasuringCameras cameras;
    cameras.showTime(-12.0, 3.0);
    rig::PluginRig::click(cameras.rig.find<QPushButton>("btnResetZoom"));
    compareViews(cameras, QCPRange(-20.0, 0.0));
}

void TimeNavigationTest::resetPan_data()
{
    QTest::addColumn<QCPRange>("view");
    QTest::addColumn<QCPRange>("expected");
    QTest::newRow("5 s") << QCPRange(-12.0, -7.0) << QCPRange(-5.0, 0.0);
    QTest::newRow("a minute, ahead") << QCPRange(30.0, 90.0) << QCPRange(-60.0, 0.0);
    QTest::newRow("unmoved") << QCPRange(-20.0, 0.0) << QCPRange(-20.0, 0.0);
    QTest::newRow("as wide as at first") << QCPRange(-30.0, -10.0) << QCPRange(-20.0, 0.0);
}

void TimeNavigationTest::resetPan()
{
    QFETCH(QCPRange, view);
    QFETCH(QCPRange, expected);
    MeasuringCameras cameras;
    cameras.showTime(view.lower, view.upper);
    rig::PluginRig::click(cameras.rig.find<QPushButton>("resetPan"));
    compareViews(cameras, expected);
}

/// The window knows its view even when no axis had to move.
void TimeNavigationTest::resetPanTwice()
{
    MeasuringCameras cameras(2);
    cameras.showTime(-12.0, -7.0);
    auto *button = cameras.rig.find<QPushButton>("resetPan");
    rig::PluginRig::click(button);
    rig::PluginRig::click(button);
    compareViews(cameras, QCPRange(-5.0, 0.0));
    cameras.plotBox(0)->click();
    cameras.plotBox(0)->click(); // new axes take the window's view
    compareViews(cameras, QCPRange(-5.0, 0.0));
}

void TimeNavigationTest::resetsReplot_data()
{
    QTest::addColumn<QByteArray>("button");
    QTest::addColumn<bool>("moved");
    QTest::newRow("zoom") << QByteArray("btnResetZoom") << true;
    QTest::newRow("zoom, nothing to reset") << QByteArray("btnResetZoom") << false;
    QTest::newRow("pan") << QByteArray("resetPan") << true;
    QTest::newRow("pan, nothing to reset") << QByteArray("resetPan") << false;
}

void TimeNavigationTest::resetsReplot()
{
    QFETCH(QByteArray, button);
    QFETCH(bool, moved);
    MeasuringCameras cameras(2);
    if (moved)
        cameras.showTime(-12.0, -7.0);
    QSignalSpy replots(cameras.rig.plot(), &QCustomPlot::afterReplot);
    rig::PluginRig::click(cameras.rig.find<QPushButton>(button.constData()));
    QVERIFY(!replots.isEmpty());
}

void TimeNavigationTest::panWhileStoppedRecomputes()
{
    MeasuringCameras cameras(2);
    QVERIFY(cameras.measureAndStop(1, 5));
    cameras.refresh();
    QCOMPARE(pointCount(cameras, 1), 0); // all of them lie ahead
    QSignalSpy replots(cameras.rig.plot(), &QCustomPlot::afterReplot);
    cameras.showTime(0.0, 2.0);
    QCOMPARE(pointCount(cameras, 1), 4);
    QCOMPARE(replots.size(), 1);
    drag(cameras, centreOf(cameras, 0), QPoint(cameras.rig.axisRect(cameras[0])->width() - 10, 0));
    QCOMPARE(pointCount(cameras, 1), 0);
}

void TimeNavigationTest::panWhileStoppedKeepsTheOrigin()
{
    MeasuringCameras cameras(1);
    QVERIFY(cameras.measureAndStop(0, 5));
    cameras.showTime(0.0, 2.0);
    const double first = cameras.points(0).front().key;
    const int shown = rig::timeOfDay();
    while (rig::timeOfDay() == shown) {
    }
    cameras.refresh();
    cameras.showTime(0.25, 2.25);
    const double second = cameras.points(0).front().key;
    QVERIFY(std::abs(second - first) < 1e-9);
}

void TimeNavigationTest::zoomWhileStoppedMakesNewColumns()
{
    MeasuringCameras cameras(1);
    QVERIFY(cameras.measureAndStop(0, 100)); // in a second
    cameras.showTime(0.0, 60.0);
    const int coarse = pointCount(cameras, 0);
    cameras.showTime(0.0, 3.0);
    QCOMPARE(pointCount(cameras, 0), 99);
    QVERIFY(coarse > 5 && coarse < 30);
}

void TimeNavigationTest::zoomWhileMeasuringOnlyReplots()
{
    MeasuringCameras cameras(2);
    cameras.showTime(0.0, 60.0);
    QVERIFY(cameras.measure(0, 100));
    cameras.refresh();
    const int coarse = pointCount(cameras, 0);
    const QCPGraph *graph = cameras.rig.graph(cameras[0], "Min throughput");
    QSignalSpy replots(cameras.rig.plot(), &QCustomPlot::afterReplot);
    cameras.timeAxis(1)->setRange(0.0, 3.0);
    QCOMPARE(replots.size(), 1);
    QCOMPARE(cameras.rig.graph(cameras[0], "Min throughput"), graph);
    QCOMPARE(pointCount(cameras, 0), coarse);
    compareViews(cameras, QCPRange(0.0, 3.0));
    cameras.tick();
    QCOMPARE(pointCount(cameras, 0), 99);
}

void TimeNavigationTest::refusedZoomWhileMeasuringReplots()
{
    MeasuringCameras cameras(2);
    cameras.showTime(0.0, 2.0);
    QVERIFY(cameras.measure(0, 10));
    cameras.refresh();
    const QPointer<QCPGraph> graph = cameras.rig.graph(cameras[0], "Min throughput");
    QSignalSpy replots(cameras.rig.plot(), &QCustomPlot::afterReplot);
    cameras.timeAxis(1)->setRange(0.0, 0.9);
    compareViews(cameras, QCPRange(0.0, 2.0));
    QCOMPARE(replots.size(), 1);
    QVERIFY(graph);
}

void TimeNavigationTest::refusedZoomWhileStoppedMakesNewGraphs()
{
    MeasuringCameras cameras(2);
    QVERIFY(cameras.measureAndStop(0, 10));
    cameras.showTime(0.0, 2.0);
    const QPointer<QCPGraph> graph = cameras.rig.graph(cameras[0], "Min throughput");
    QVERIFY(graph);
    QSignalSpy replots(cameras.rig.plot(), &QCustomPlot::afterReplot);
    cameras.timeAxis(1)->setRange(0.0, 0.9);
    compareViews(cameras, QCPRange(0.0, 2.0));
    QCOMPARE(replots.size(), 1);
    QVERIFY(!graph);
    QCOMPARE(pointCount(cameras, 0), 9);
}

void TimeNavigationTest::resetWhileStoppedMakesNewColumns_data()
{
    QTest::addColumn<QByteArray>("button");
    QTest::newRow("zoom") << QByteArray("btnResetZoom");
    QTest::newRow("pan") << QByteArray("resetPan");
}

void TimeNavigationTest::resetWhileStoppedMakesNewColumns()
{
    QFETCH(QByteArray, button);
    MeasuringCameras cameras(1);
    QVERIFY(cameras.measureAndStop(0, 100));
    cameras.showTime(0.0, 20.0);
    QVERIFY(pointCount(cameras, 0) > 0);
    rig::PluginRig::click(cameras.rig.find<QPushButton>(button.constData()));
    QCOMPARE(pointCount(cameras, 0), 0); // all of them lie ahead
}

void TimeNavigationTest::resetWhileMeasuringMakesNoPoints_data()
{
    QTest::addColumn<QByteArray>("button");
    QTest::newRow("zoom") << QByteArray("btnResetZoom");
    QTest::newRow("pan") << QByteArray("resetPan");
}

void TimeNavigationTest::resetWhileMeasuringMakesNoPoints()
{
    QFETCH(QByteArray, button);
    MeasuringCameras cameras(1);
    cameras.showTime(0.0, 2.0);
    QVERIFY(cameras.measure(0, 10));
    cameras.refresh();
    const QCPGraph *graph = cameras.rig.graph(cameras[0], "Min throughput");
    rig::PluginRig::click(cameras.rig.find<QPushButton>(button.constData()));
    QCOMPARE(cameras.rig.graph(cameras[0], "Min throughput"), graph);
    QCOMPARE(pointCount(cameras, 0), 9);
}

void TimeNavigationTest::rebuildResetsTheView()
{
    MeasuringCameras cameras(2);
    cameras.showTime(-12.0, -7.0);
    cameras.rig.call("updateCameraList");
    compareViews(cameras, QCPRange(-20.0, 0.0));
}

QTEST_MAIN(TimeNavigationTest)
#include "TimeNavigationTest.moc"
