#include "tests/ui/MeasuringCameras.h"

#include <QTest>

#include <cmath>

using rig::CountedFrames;
using rig::MeasuringCameras;
using rig::Mode;
using scripted::Failure;

/// The plot areas of acquisition mode and what a refresh draws there.
///
/// Frames lie a second and more after the start of their run; the first never
/// has a point of its own.
class AcquisitionGraphTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void valueAxes_data();
    void valueAxes();
    void timeAxis();
    void axesAreWhite();
    void graphs_data();
    void graphs();
    void noGraphOfAnUnsupportedCounter();
    void noGraphOfAnUntickedQuantity_data();
    void noGraphOfAnUntickedQuantity();
    void everyInterfaceLevelHasAll();
    void graphsAreMadeAnew();
    void valuesAreTheCounters();
    void timesOfTheGraphs();
    void computerTime();
    void noMoreThanAPointForAColumn();
    void narrowestViewHasEveryRecord();
    void oneRecord();
    void frameRate();
    void frameRateOfAllRecords();
    void framesBesideTheView();
    void camerasHaveTheirOwnGraphs();
};

namespace {

const QStringList counterNames = {"Transport skip", "API skip", "Missed trg. overlap", "Missed trg overflow",
                                  "Buffer overflow"};

QList<double> valuesOf(const MeasuringCameras &cameras, const QString &name, int camera = 0)
{
    QList<double> values;
    for (const QCPGraphData &point : cameras.points(camera, name))
        values.append(point.value);
    return values;
}

QStringList graphNames(const MeasuringCameras &cameras, int camera = 0)
{
    QStringList names;
    for (const QCPGraph *graph : cameras.rig.axisRect(cameras[camera])->graphs())
        names.append(graph->name());
    return names;
}

/// Frames half a second apart.
CountedFrames slowFrames(ZUCORE_HANDLE camera, int count)
{
    CountedFrames frames(camera);
    frames.microseconds.clear();
    for (int frame = 0; frame < count; ++frame)
        frames.microseconds.push_back(1000000 + frame * 500000);
    return frames;
}

} // namespace

void AcquisitionGraphTest::valueAxes_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("label");
    QTest::addColumn<double>("lower");
    QTest::addColumn<double>("upper");
    QTest::newRow("left") << int(QCPAxis::atLeft) << "Counter value" << -0.1 << 1.0;
    QTest::newRow("right") << int(QCPAxis::atRight) << "FPS" << -0.1 << 110.0;
}

void AcquisitionGraphTest::valueAxes()
{
    QFETCH(int, type);
    const MeasuringCameras cameras(2, Mode::Acquisition);
    for (int camera = 0; camera < 2; ++camera) {
        const QCPAxis *axis = cameras.rig.axisRect(cameras[camera])->axis(QCPAxis::AxisType(type));
        QTEST(axis->label(), "label");
        QTEST(axis->range().lower, "lower");
        QTEST(axis->range().upper, "upper");
        QVERIFY(!qSharedPointerDynamicCast<QCPAxisTickerTime>(axis->ticker()));
    }
}

void AcquisitionGraphTest::timeAxis()
{
    const MeasuringCameras cameras(1, Mode::Acquisition);
    const QCPAxis *axis = cameras.timeAxis(0);
    QCOMPARE(axis->range(), QCPRange(-20.0, 0.0));
    QVERIFY(axis->label().isEmpty());
    const auto ticker = qSharedPointerDynamicCast<QCPAxisTickerTime>(axis->ticker());
    QVERIFY(ticker);
    QCOMPARE(ticker->timeFormat(), QString("%m:%s.%z"));
    const QCPAxisRect *rect = axis->axisRect();
    QCOMPARE(const_cast<QCPAxisRect *>(rect)->rangeZoom(), Qt::Orientations(Qt::Horizontal));
    QVERIFY(!rect->axis(QCPAxis::atTop)->visible());
}

void AcquisitionGraphTest::axesAreWhite()
{
    const MeasuringCameras cameras(1, Mode::Acquisition);
    const QPen white(Qt::white);
    for (const QCPAxis::AxisType type : {QCPAxis::atBottom, QCPAxis::atLeft, QCPAxis::atRight}) {
        const QCPAxis *axis = cameras.rig.axisRect(cameras[0])->axis(type);
        QVERIFY(axis->visible());
        QCOMPARE(axis->basePen(), white);
        QCOMPARE(axis->tickPen(), white);
        QCOMPARE(axis->subTickPen(), white);
        QCOMPARE(axis->labelColor(), QColor(Qt::white));
        QCOMPARE(axis->tickLabelColor(), QColor(Qt::white));
    }
    const auto *title = qobject_cast<QCPTextElement *>(cameras.rig.plot()->plotLayout()->element(0, 0));
    QVERIFY(title);
    QCOMPARE(title->text(), MeasuringCameras::name(0));
    QCOMPARE(title->textColor(), QColor(Qt::white));
}

void AcquisitionGraphTest::graphs_data()
{
    QTest::addColumn<QColor>("colour");
    QTest::addColumn<int>("valueAxis");
    QTest::newRow("Transport skip") << QColor(255, 165, 0) << int(QCPAxis::atLeft);
    QTest::newRow("API skip") << QColor(255, 0, 0) << int(QCPAxis::atLeft);
    QTest::newRow("Missed trg. overlap") << QColor(255, 255, 0) << int(QCPAxis::atLeft);
    QTest::newRow("Missed trg overflow") << QColor(0, 255, 0) << int(QCPAxis::atLeft);
    QTest::newRow("Buffer overflow") << QColor(80, 80, 255) << int(QCPAxis::atLeft);
    QTest::newRow("FPS") << QColor(144, 200, 255) << int(QCPAxis::atRight);
}

void AcquisitionGraphTest::graphs()
{
    QFETCH(QColor, colour);
    QFETCH(int, valueAxis);
    MeasuringCameras cameras(1, Mode::Acquisition);
    QVERIFY(cameras.measure(0, 1));
    cameras.refresh();
    QCOMPARE(cameras.rig.plot()->graphCount(), 6);
    const QCPGraph *graph = cameras.rig.graph(cameras[0], QTest::currentDataTag());
    QVERIFY(graph);
    const QCPAxisRect *rect = cameras.rig.axisRect(cameras[0]);
    QCOMPARE(graph->keyAxis(), rect->axis(QCPAxis::atBottom));
    QCOMPARE(graph->valueAxis(), rect->axis(QCPAxis::AxisType(valueAxis)));
    QCOMPARE(graph->pen(), QPen(QBrush(colour), 1.0));
    QCOMPARE(graph->pen().color().alpha(), 255);
    QCOMPARE(graph->pen().style(), Qt::SolidLine);
    QCOMPARE(graph->pen().capStyle(), Qt::SquareCap);
    QCOMPARE(graph->pen().joinStyle(), Qt::BevelJoin);
    QCOMPARE(graph->brush(), QBrush(Qt::NoBrush));
    QVERIFY(graph->visible());
}

void AcquisitionGraphTest::noGraphOfAnUnsupportedCounter()
{
    MeasuringCameras cameras(2, Mode::Acquisition);
    cameras.refresh(); // before it is known what the cameras have
    QCOMPARE(graphNames(cameras, 0), QStringList("FPS"));
    cameras.host.fail({scripted::Function::SetParamInt, "counter_selector:settable", 1, cameras[0]});
    cameras.host.fail({scripted::Function::SetParamInt, "counter_selector:settable", 5, cameras[0]});
    QVERIFY(cameras.measure(0, 2));
    QVERIFY(cameras.measure(1, 2));
    cameras.refresh();
    QCOMPARE(graphNames(cameras, 0),
             QStringList({"Transport skip", "Missed trg. overlap", "Missed trg overflow", "FPS"}));
    QCOMPARE(graphNames(cameras, 1), counterNames + QStringList("FPS"));
    QCOMPARE(cameras.log.messages().filter("CxDataGraphForm"), QStringList());
}

void AcquisitionGraphTest::noGraphOfAnUntickedQuantity_data()
{
    QTest::addColumn<QList<int>>("unticked");
    QTest::addColumn<QStringList>("names");
    for (int row = 0; row < 5; ++row) {
        QStringList names = counterNames + QStringList("FPS");
        names.removeAt(row);
        QTest::newRow(qPrintable(counterNames[row])) << QList<int>({row}) << names;
    }
    QTest::newRow("FPS") << QList<int>({5}) << counterNames;
    QTest::newRow("all counters") << QList<int>({0, 1, 2, 3, 4}) << QStringList("FPS");
    QTest::newRow("all") << QList<int>({0, 1, 2, 3, 4, 5}) << QStringList();
}

void AcquisitionGraphTest::noGraphOfAnUntickedQuantity()
{
    QFETCH(QList<int>, unticked);
    MeasuringCameras cameras(2, Mode::Acquisition);
    cameras.setCounters(0, {CountedFrames::all(4)});
    for (int row : unticked)
        rig::PluginRig::click(cameras.quantityBox(row));
    QVERIFY(cameras.measure(0, 2));
    QVERIFY(cameras.measure(1, 2));
    cameras.refresh();
    for (int camera = 0; camera < 2; ++camera)
        QTEST(graphNames(cameras, camera), "names");
    QCOMPARE(cameras.cell(0, 4), QString("4")); // the table needs no graph
}

void AcquisitionGraphTest::everyInterfaceLevelHasAll()
{
    MeasuringCameras cameras(1, Mode::Acquisition);
    scripted::Gui::instance().setInterfaceLevel(0);
    QVERIFY(cameras.measure(0, 2));
    cameras.refresh();
    QCOMPARE(graphNames(cameras), counterNames + QStringList("FPS"));
}

void AcquisitionGraphTest::graphsAreMadeAnew()
{
    MeasuringCameras cameras(1, Mode::Acquisition);
    cameras.showTime(0.0, 2.0);
    QVERIFY(cameras.measure(0, 3));
    for (int repetition = 0; repetition < 3; ++repetition) {
        cameras.tick();
        QCOMPARE(cameras.rig.plot()->graphCount(), 6);
        QCOMPARE(int(cameras.points(0, "API skip").size()), 2);
    }
}

void AcquisitionGraphTest::valuesAreTheCounters()
{
    MeasuringCameras cameras(1, Mode::Acquisition);
    cameras.showTime(0.0, 2.0);
    cameras.setCounters(0, {{1, 10, 100, 1000, 10000, 100000},
                            {2, 20, 200, 2000, 20000, 200000},
                            {2, 20, 300, 2000, 20001, 2000000000},
                            {-5, 40, 400, 4000, 40000, 2000000001}});
    QVERIFY(cameras.measure(0, 4));
    cameras.refresh();
    QCOMPARE(valuesOf(cameras, "Transport skip"), QList<double>({2, 2, -5}));
    QCOMPARE(valuesOf(cameras, "API skip"), QList<double>({20, 20, 40}));
    QCOMPARE(valuesOf(cameras, "Missed trg. overlap"), QList<double>({2000, 2000, 4000}));
    QCOMPARE(valuesOf(cameras, "Missed trg overflow"), QList<double>({20000, 20001, 40000}));
    QCOMPARE(valuesOf(cameras, "Buffer overflow"), QList<double>({200000, 2000000000, 2000000001}));
}

void AcquisitionGraphTest::timesOfTheGraphs()
{
    MeasuringCameras cameras(1, Mode::Acquisition);
    cameras.showTime(0.0, 5.0);
    cameras.setFrames(0, slowFrames(cameras[0], 5));
    const int beforeStart = rig::timeOfDay();
    QVERIFY(cameras.measure(0, 5));
    const int afterStart = rig::timeOfDay();
    const int beforeRefresh = rig::timeOfDay();
    cameras.refresh();
    const int afterRefresh = rig::timeOfDay();

    const std::vector<QCPGraphData> counter = cameras.points(0, "Missed trg. overlap");
    QCOMPARE(int(counter.size()), 4);
    const double start = (counter[0].key - 1.5) * 1000; // milliseconds from the origin to the run's start
    QVERIFY(beforeStart - afterRefresh - 1e-6 <= start && start <= afterStart - beforeRefresh + 1e-6);
    for (int i = 1; i < 4; ++i)
        QVERIFY(std::abs(counter[i].key - counter[0].key - 0.5 * i) < 1e-9);
    for (const QString &name : counterNames) {
        const std::vector<QCPGraphData> points = cameras.points(0, name);
        QCOMPARE(int(points.size()), 4);
        for (int i = 0; i < 4; ++i)
            QCOMPARE(points[i].key, counter[i].key);
    }
    const std::vector<QCPGraphData> rate = cameras.points(0, "FPS");
    QCOMPARE(int(rate.size()), 2);
    QCOMPARE(rate[0].key, counter[1].key); // at the end of its second
    QCOMPARE(rate[1].key, counter[3].key);
}

/// The camera's clock runs ahead of the run, the computer's cannot.
void AcquisitionGraphTest::computerTime()
{
    MeasuringCameras cameras(1, Mode::Acquisition);
    for (int origin : {0, 1}) {
        cameras.rig.loadSettings({{"DTGTMeasMode", 1}, {"DTGTTimestampOrigin", origin}});
        cameras.showTime(-30.0, 30.0);
        CountedFrames frames = slowFrames(cameras[0], 9);
        for (quint64 &time : frames.microseconds)
            time += 20000000;
        cameras.setFrames(0, frames);
        QVERIFY(cameras.measureAndStop(0, 9));
        cameras.refresh();
        for (const QString &name : {QString("API skip"), QString("FPS")}) {
            const std::vector<QCPGraphData> points = cameras.points(0, name);
            QVERIFY(origin == 1 || !points.empty());
            for (const QCPGraphData &point : points)
                QCOMPARE(point.key <= 0.0, origin == 1);
        }
    }
}

void AcquisitionGraphTest::noMoreThanAPointForAColumn()
{
    MeasuringCameras cameras(1, Mode::Acquisition);
    CountedFrames frames(cameras[0]);
    frames.microseconds.clear();
    frames.counters.clear();
    for (int frame = 0; frame < 400; ++frame) {
        frames.microseconds.push_back(1000000 + frame * 1000);
        frames.counters.push_back(CountedFrames::all(frame));
    }
    cameras.setFrames(0, frames);
    cameras.showTime(-10.0, 10.0);
    QVERIFY(cameras.measure(0, 400));
    cameras.refresh();
    const std::vector<QCPGraphData> points = cameras.points(0, "Buffer overflow");
    // The first record behind each column; they are a millisecond apart.
    const int step = 20000000 / cameras.rig.plot()->width() / 1000 + 1;
    QCOMPARE(int(points.size()), 399 / step);
    for (int i = 0; i < int(points.size()); ++i) {
        QCOMPARE(int(points[i].value), (i + 1) * step);
        QVERIFY(std::abs(points[i].key - points[0].key - i * step / 1000.0) < 1e-9);
    }
}

void AcquisitionGraphTest::narrowestViewHasEveryRecord()
{
    MeasuringCameras cameras(1, Mode::Acquisition);
    QVERIFY(cameras.measureAndStop(0, 30));
    cameras.showTime(0.5, 1.5);
    QCOMPARE(int(cameras.points(0, "API skip").size()), 29);
}

void AcquisitionGraphTest::oneRecord()
{
    MeasuringCameras cameras(1, Mode::Acquisition);
    cameras.showTime(0.0, 2.0);
    cameras.setCounters(0, {CountedFrames::all(7)});
    QVERIFY(cameras.measure(0, 1));
    cameras.refresh();
    for (const QString &name : graphNames(cameras))
        QVERIFY2(cameras.points(0, name).empty(), qPrintable(name));
    QCOMPARE(cameras.rig.plot()->graphCount(), 6);
    QCOMPARE(cameras.cell(0, 4), QString("7"));
}

void AcquisitionGraphTest::frameRate()
{
    MeasuringCameras cameras(1, Mode::Acquisition);
    cameras.showTime(0.0, 10.0);
    CountedFrames frames = slowFrames(cameras[0], 5); // up to 3.0 s
    for (const quint64 later : {250000, 500000, 750000, 999999, 1250000, 2249999, 2250000})
        frames.microseconds.push_back(3000000 + later);
    cameras.setFrames(0, frames);
    QVERIFY(cameras.measure(0, 12));
    cameras.refresh();
    // 999 999 µs make no second yet; the same frame starts the next one.
    QCOMPARE(valuesOf(cameras, "FPS"), QList<double>({2.0, 2.0, 5 / 1.25, 2 / 1.0}));
    const std::vector<QCPGraphData> points = cameras.points(0, "FPS");
    QVERIFY(std::abs(points[2].key - points[1].key - 1.25) < 1e-9);
}

void AcquisitionGraphTest::frameRateOfAllRecords()
{
    MeasuringCameras cameras(1, Mode::Acquisition);
    cameras.setFrames(0, slowFrames(cameras[0], 9));
    QVERIFY(cameras.measureAndStop(0, 9));
    cameras.showTime(100.0, 110.0);
    QCOMPARE(valuesOf(cameras, "FPS"), QList<double>({2, 2, 2, 2}));
    QVERIFY(cameras.points(0, "API skip").empty());
}

/// The curves reach the edges of a view, by ten frames at least.
void AcquisitionGraphTest::framesBesideTheView()
{
    MeasuringCameras cameras(1, Mode::Acquisition);
    cameras.setFrames(0, slowFrames(cameras[0], 61)); // 1 to 31 s
    QVERIFY(cameras.measureAndStop(0, 61));
    cameras.showTime(9.25, 11.25);
    std::vector<QCPGraphData> points = cameras.points(0, "API skip");
    QVERIFY(points.front().key > 4.25 && points.front().key <= 5.25);
    QVERIFY(points.back().key < 16.25 && points.back().key >= 15.75);
    cameras.showTime(12.25, 19.25); // by the view's width where that is more
    points = cameras.points(0, "API skip");
    QVERIFY(points.front().key > 5.25 && points.front().key <= 6.25);
    QVERIFY(points.back().key < 26.25 && points.back().key >= 25.75);
}

void AcquisitionGraphTest::camerasHaveTheirOwnGraphs()
{
    MeasuringCameras cameras(2, Mode::Acquisition);
    cameras.showTime(0.0, 2.0);
    cameras.setCounters(0, {CountedFrames::all(1), CountedFrames::all(2)});
    cameras.setCounters(1, {CountedFrames::all(30), CountedFrames::all(40)});
    QVERIFY(cameras.measure(0, 2));
    QVERIFY(cameras.measure(1, 3));
    cameras.refresh();
    QCOMPARE(valuesOf(cameras, "API skip", 0), QList<double>({2}));
    QCOMPARE(valuesOf(cameras, "API skip", 1), QList<double>({40, 40}));
}

QTEST_MAIN(AcquisitionGraphTest)
#include "AcquisitionGraphTest.moc"
