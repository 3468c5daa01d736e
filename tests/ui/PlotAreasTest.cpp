#include "tests/ui/MeasuringCameras.h"

#include <QSignalSpy>
#include <QTest>

using rig::MeasuringCameras;

/// The plot areas: a title and axes for every plotted camera, and the boxes that
/// choose the cameras.
class PlotAreasTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void noCameraNoArea();
    void layout();
    void title();
    void cameraOfTheAxes();
    void timeAxis();
    void valueAxes_data();
    void valueAxes();
    void axesAreWhite_data();
    void axesAreWhite();
    void topAxisIsHidden();
    void onlyTimeIsZoomedAndDragged();
    void graphs_data();
    void graphs();
    void tickingBoxesChoosesCameras();
    void lastBoxHidesThePlot();
    void rebuildShowsAllCameras();
    void newAreaTakesTheTimeRange();
    void areasAreNotRefittedByABox();
    void replotsOnlyWhileNothingMeasures();
    void firstBoxWhileMeasuringShowsThePlot();
    void otherSendersAreIgnored();
    void graphsGoWithTheirAreas();

private:
    static QString titleAt(const MeasuringCameras &cameras, int layoutRow);
    /// Titles from top to bottom; each must stand above its camera's axes.
    static QStringList titles(const MeasuringCameras &cameras);
};

QString PlotAreasTest::titleAt(const MeasuringCameras &cameras, int layoutRow)
{
    QCPLayoutGrid *grid = cameras.rig.plot()->plotLayout();
    const auto *title = grid->hasElement(layoutRow, 0)
                            ? qobject_cast<QCPTextElement *>(grid->element(layoutRow, 0))
                            : nullptr;
    return title ? title->text() : "no title";
}

QStringList PlotAreasTest::titles(const MeasuringCameras &cameras)
{
    QStringList list;
    QCPLayoutGrid *grid = cameras.rig.plot()->plotLayout();
    for (int row = 0; row + 1 < grid->rowCount(); row += 2) {
        const auto *rect = qobject_cast<QCPAxisRect *>(grid->element(row + 1, 0));
        const int camera = rect ? cameras.handles().indexOf(rig::handleOf(rect)) : -1;
        const QString text = titleAt(cameras, row);
        list.append(camera >= 0 && text == MeasuringCameras::name(camera) ? text : "misplaced " + text);
    }
    return list;
}

void PlotAreasTest::noCameraNoArea()
{
    MeasuringCameras cameras(0);
    QCOMPARE(cameras.rig.plot()->axisRectCount(), 0);
    QCOMPARE(cameras.rig.plot()->graphCount(), 0);
}

void PlotAreasTest::layout()
{
    MeasuringCameras cameras;
    QCPLayoutGrid *grid = cameras.rig.plot()->plotLayout();
    QCOMPARE(grid->columnCount(), 1);
    QCOMPARE(grid->rowCount(), 6);
    for (int camera = 0; camera < 3; ++camera) {
        QCOMPARE(titleAt(cameras, 2 * camera), MeasuringCameras::name(camera));
        QCOMPARE(grid->element(2 * camera + 1, 0), cameras.rig.axisRect(cameras[camera]));
    }
    QCOMPARE(cameras.rig.plot()->axisRectCount(), 3);
}

void PlotAreasTest::title()
{
    MeasuringCameras cameras(1);
    const auto *title = qobject_cast<QCPTextElement *>(cameras.rig.plot()->plotLayout()->element(0, 0));
    QVERIFY(title);
    QCOMPARE(title->font().family(), QString("sans serif"));
    QCOMPARE(title->font().pointSize(), 8);
    QCOMPARE(title->font().weight(), int(QFont::Bold));
    QVERIFY(!title->font().italic());
    QCOMPARE(title->textColor(), QColor(255, 255, 255, 255));
}

void PlotAreasTest::cameraOfTheAxes()
{
    MeasuringCameras cameras(2);
    const QVariant handle = cameras.rig.axisRect(cameras[1])->property("hCam");
    QCOMPARE(int(handle.type()), int(QVariant::ULongLong));
    QCOMPARE(handle.toULongLong(), qulonglong(reinterpret_cast<quintptr>(cameras[1])));
}

void PlotAreasTest::timeAxis()
{
    MeasuringCameras cameras(1);
    const QCPAxis *axis = cameras.timeAxis(0);
    QCOMPARE(axis->range().lower, -20.0);
    QCOMPARE(axis->range().upper, 0.0);
    QVERIFY(axis->label().isEmpty());
    const auto ticker = qSharedPointerDynamicCast<QCPAxisTickerTime>(axis->ticker());
    QVERIFY(ticker);
    QCOMPARE(ticker->timeFormat(), QString("%m:%s.%z"));
}

void PlotAreasTest::valueAxes_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("label");
    QTest::addColumn<double>("lower");
    QTest::addColumn<double>("upper");
    QTest::newRow("left") << int(QCPAxis::atLeft) << "Avg. rate [MB/s]" << 0.0 << 1000.0;
    QTest::newRow("right") << int(QCPAxis::atRight) << "Buffer filled [%]" << -10.0 << 110.0;
}

void PlotAreasTest::valueAxes()
{
    QFETCH(int, type);
    MeasuringCameras cameras(2);
    for (int camera = 0; camera < 2; ++camera) {
        const QCPAxis *axis = cameras.rig.axisRect(cameras[camera])->axis(QCPAxis::AxisType(type));
        QTEST(axis->label(), "label");
        QTEST(axis->range().lower, "lower");
        QTEST(axis->range().upper, "upper");
        QVERIFY(!qSharedPointerDynamicCast<QCPAxisTickerTime>(axis->ticker()));
    }
}

void PlotAreasTest::axesAreWhite_data()
{
    QTest::addColumn<int>("type");
    QTest::newRow("bottom") << int(QCPAxis::atBottom);
    QTest::newRow("left") << int(QCPAxis::atLeft);
    QTest::newRow("right") << int(QCPAxis::atRight);
}

void PlotAreasTest::axesAreWhite()
{
    QFETCH(int, type);
    MeasuringCameras cameras(1);
    const QCPAxis *axis = cameras.rig.axisRect(cameras[0])->axis(QCPAxis::AxisType(type));
    const QPen white(Qt::white);
    QCOMPARE(axis->basePen(), white);
    QCOMPARE(axis->tickPen(), white);
    QCOMPARE(axis->subTickPen(), white);
    QCOMPARE(axis->labelColor(), QColor(Qt::white));
    QCOMPARE(axis->tickLabelColor(), QColor(Qt::white));
    QVERIFY(axis->visible());
    QVERIFY(axis->tickLabels());
}

void PlotAreasTest::topAxisIsHidden()
{
    MeasuringCameras cameras(1);
    QVERIFY(!cameras.rig.axisRect(cameras[0])->axis(QCPAxis::atTop)->visible());
}

void PlotAreasTest::onlyTimeIsZoomedAndDragged()
{
    MeasuringCameras cameras(1);
    QCPAxisRect *rect = cameras.rig.axisRect(cameras[0]);
    const QList<QCPAxis *> time = {cameras.timeAxis(0)};
    QCOMPARE(rect->rangeZoom(), Qt::Orientations(Qt::Horizontal));
    QCOMPARE(rect->rangeZoomAxes(Qt::Horizontal), time);
    QVERIFY(rect->rangeZoomAxes(Qt::Vertical).isEmpty());
    QCOMPARE(rect->rangeDragAxes(Qt::Horizontal), time);
    QVERIFY(rect->rangeDragAxes(Qt::Vertical).isEmpty());
    const QCP::Interactions interactions = cameras.rig.plot()->interactions();
    QVERIFY(interactions.testFlag(QCP::iRangeDrag) && interactions.testFlag(QCP::iRangeZoom));
}

void PlotAreasTest::graphs_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QColor>("colour");
    QTest::addColumn<bool>("filled");
    QTest::addColumn<int>("valueAxis");
    QTest::newRow("rate") << "Min throughput" << QColor(255, 165, 0) << false << int(QCPAxis::atLeft);
    QTest::newRow("level") << "Max buffer level" << QColor(30, 144, 255, 150) << true
                           << int(QCPAxis::atRight);
}

void PlotAreasTest::graphs()
{
    QFETCH(QString, name);
    QFETCH(QColor, colour);
    QFETCH(bool, filled);
    QFETCH(int, valueAxis);
    MeasuringCameras cameras(1);
    cameras.refresh();
    const QCPGraph *graph = cameras.rig.graph(cameras[0], name);
    QVERIFY(graph);
    const QCPAxisRect *rect = cameras.rig.axisRect(cameras[0]);
    QCOMPARE(graph->keyAxis(), rect->axis(QCPAxis::atBottom));
    QCOMPARE(graph->valueAxis(), rect->axis(QCPAxis::AxisType(valueAxis)));
    QCOMPARE(graph->pen(), QPen(QBrush(colour), 1.0));
    QCOMPARE(graph->pen().color().alpha(), filled ? 150 : 255);
    QCOMPARE(graph->pen().style(), Qt::SolidLine);
    QCOMPARE(graph->pen().capStyle(), Qt::SquareCap);
    QCOMPARE(graph->pen().joinStyle(), Qt::BevelJoin);
    QCOMPARE(graph->brush(), filled ? QBrush(colour) : QBrush(Qt::NoBrush));
    QVERIFY(graph->visible());
}

void PlotAreasTest::tickingBoxesChoosesCameras()
{
    MeasuringCameras cameras;
    rig::PluginRig::click(cameras.plotBox(0));
    QCOMPARE(titles(cameras), QStringList({"Beta (B-2)", "Gamma (C-3)"}));
    rig::PluginRig::click(cameras.plotBox(2));
    QCOMPARE(titles(cameras), QStringList("Beta (B-2)"));
    rig::PluginRig::click(cameras.plotBox(0));
    QCOMPARE(titles(cameras), QStringList({"Alpha (A-1)", "Beta (B-2)"}));
    rig::PluginRig::click(cameras.plotBox(1));
    rig::PluginRig::click(cameras.plotBox(2));
    QCOMPARE(titles(cameras), QStringList({"Alpha (A-1)", "Gamma (C-3)"}));
    QCOMPARE(cameras.rig.plot()->plotLayout()->rowCount(), 4);
    QVERIFY(cameras.rig.plot()->isVisible());
}

void PlotAreasTest::lastBoxHidesThePlot()
{
    MeasuringCameras cameras(2);
    rig::PluginRig::click(cameras.plotBox(0));
    QVERIFY(cameras.rig.plot()->isVisible());
    rig::PluginRig::click(cameras.plotBox(1));
    QVERIFY(cameras.rig.plot()->isHidden());
    QCOMPARE(cameras.rig.plot()->axisRectCount(), 0);
    rig::PluginRig::click(cameras.plotBox(1));
    QVERIFY(cameras.rig.plot()->isVisible());
    QCOMPARE(titles(cameras), QStringList("Beta (B-2)"));
}

/// A rebuilt table has all boxes ticked.
void PlotAreasTest::rebuildShowsAllCameras()
{
    MeasuringCameras cameras;
    rig::PluginRig::click(cameras.plotBox(1));
    cameras.rig.call("updateCameraList");
    QCOMPARE(titles(cameras), QStringList({"Alpha (A-1)", "Beta (B-2)", "Gamma (C-3)"}));
    QVERIFY(cameras.plotBox(1)->isChecked());
}

void PlotAreasTest::newAreaTakesTheTimeRange()
{
    MeasuringCameras cameras(2);
    rig::PluginRig::click(cameras.plotBox(1));
    cameras.showTime(-7.5, 2.5);
    rig::PluginRig::click(cameras.plotBox(1));
    for (int camera = 0; camera < 2; ++camera) {
        QCOMPARE(cameras.timeAxis(camera)->range().lower, -7.5);
        QCOMPARE(cameras.timeAxis(camera)->range().upper, 2.5);
    }
}

/// Without graphs an automatic axis has nothing to be fitted to.
void PlotAreasTest::areasAreNotRefittedByABox()
{
    MeasuringCameras cameras(2);
    rig::PluginRig::click(cameras.plotBox(1));
    const QCPAxis *left = cameras.rig.axisRect(cameras[0])->axis(QCPAxis::atLeft);
    QCOMPARE(left->range().lower, 0.0);
    QCOMPARE(left->range().upper, 1000.0);
    QCOMPARE(cameras.rig.cellWidget<QLineEdit>(0, 11, 0)->text(), QString("0"));
    QCOMPARE(cameras.rig.cellWidget<QLineEdit>(0, 11, 1)->text(), QString("1000"));
}

void PlotAreasTest::replotsOnlyWhileNothingMeasures()
{
    MeasuringCameras cameras(2);
    QSignalSpy replots(cameras.rig.plot(), &QCustomPlot::afterReplot);
    rig::PluginRig::click(cameras.plotBox(1));
    QCOMPARE(replots.size(), 1);
    cameras.clickMeasure(0);
    replots.clear();
    rig::PluginRig::click(cameras.plotBox(1));
    QCOMPARE(replots.size(), 0);
    QCOMPARE(cameras.rig.plot()->axisRectCount(), 2);
    cameras.clickMeasure(0);
    rig::PluginRig::click(cameras.plotBox(1));
    replots.clear();
    rig::PluginRig::click(cameras.plotBox(0)); // the last one
    QCOMPARE(replots.size(), 0);
}

/// The measurement's next tick draws it.
void PlotAreasTest::firstBoxWhileMeasuringShowsThePlot()
{
    MeasuringCameras cameras(2);
    rig::PluginRig::click(cameras.plotBox(0));
    rig::PluginRig::click(cameras.plotBox(1));
    QVERIFY(cameras.rig.plot()->isHidden());
    cameras.clickMeasure(0);
    QVERIFY(cameras.isMeasuring(0));
    QSignalSpy replots(cameras.rig.plot(), &QCustomPlot::afterReplot);
    cameras.plotBox(1)->click(); // lets no event through: showing the plot may draw it later
    QCOMPARE(replots.size(), 0);
    QVERIFY(cameras.rig.plot()->isVisible());
    QCOMPARE(titles(cameras), QStringList("Beta (B-2)"));
}

void PlotAreasTest::otherSendersAreIgnored()
{
    MeasuringCameras cameras(1);
    QCheckBox unknown;
    unknown.setProperty("hCam", qulonglong(7));
    connect(&unknown, SIGNAL(clicked(bool)), cameras.rig.form(), SLOT(onChkCamPlotData(bool)));
    unknown.click();
    unknown.click();
    QPushButton button;
    button.setCheckable(true);
    button.setChecked(true);
    button.setProperty("hCam", cameras.plotBox(0)->property("hCam"));
    connect(&button, SIGNAL(clicked(bool)), cameras.rig.form(), SLOT(onChkCamPlotData(bool)));
    const QCPAxisRect *before = cameras.rig.axisRect(cameras[0]);
    button.click();
    QCOMPARE(cameras.rig.axisRect(cameras[0]), before);
    QVERIFY(cameras.rig.plot()->isVisible());
}

void PlotAreasTest::graphsGoWithTheirAreas()
{
    MeasuringCameras cameras(2);
    cameras.refresh();
    QCOMPARE(cameras.rig.plot()->graphCount(), 4);
    rig::PluginRig::click(cameras.plotBox(0));
    QCOMPARE(cameras.rig.plot()->graphCount(), 0);
    cameras.refresh();
    QCOMPARE(cameras.rig.plot()->graphCount(), 2);
    QVERIFY(cameras.rig.graph(cameras[1], "Min throughput"));
    QVERIFY(!cameras.rig.axisRect(cameras[0]));
}

QTEST_MAIN(PlotAreasTest)
#include "PlotAreasTest.moc"
