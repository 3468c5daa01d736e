#include "tests/ui/MeasuringCameras.h"

#include <QTest>

using rig::CountedFrames;
using rig::MeasuringCameras;
using rig::Mode;
using scripted::Failure;

using Counters = CountedFrames::Counters;
Q_DECLARE_METATYPE(Counters)

/// How the value axes follow the curves in acquisition mode. The first record
/// has no point: a curve starts with the second.
class AcquisitionAxesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void leftAxis_data();
    void leftAxis();
    void leftAxisOfSomeCounters_data();
    void leftAxisOfSomeCounters();
    void leftAxisWithoutFramesInView();
    void leftAxisFollowsTheCounters();
    void rightAxis();
    void rightAxisWithoutARate_data();
    void rightAxisWithoutARate();
    void everyCameraHasItsOwnRange();
    void nothingRecordedKeepsTheAxes();
};

namespace {

/// Bounds as text, free of the last bits' noise.
QString rangeOf(const MeasuringCameras &cameras, int camera = 0, QCPAxis::AxisType type = QCPAxis::atLeft)
{
    const QCPRange range = cameras.rig.axisRect(cameras[camera])->axis(type)->range();
    return QString("%1 .. %2").arg(range.lower, 0, 'g', 12).arg(range.upper, 0, 'g', 12);
}

} // namespace

void AcquisitionAxesTest::leftAxis_data()
{
    QTest::addColumn<QList<Counters>>("counters");
    QTest::addColumn<QString>("range");
    const auto all = CountedFrames::all;
    QTest::newRow("all at 0") << QList<Counters>({all(0), all(0), all(0)}) << "-0.8 .. 1.2";
    QTest::newRow("one record") << QList<Counters>({all(50)}) << "-0.8 .. 1.2";
    QTest::newRow("alike") << QList<Counters>({all(5), all(5), all(5)}) << "4 .. 6";
    QTest::newRow("growing") << QList<Counters>({all(1), all(10), all(20), all(100)}) << "8 .. 120";
    QTest::newRow("from 0") << QList<Counters>({all(0), all(0), all(20)}) << "-0.8 .. 24";
    QTest::newRow("lowest start and highest end of all")
        << QList<Counters>({all(0), {30, 20, 1, 40, 50, 60}, {31, 200, 1, 41, 50, 61}}) << "16 .. 240";
    QTest::newRow("never below 1") << QList<Counters>({all(0), all(-10), all(-5)}) << "-8 .. 1.2";
    QTest::newRow("transferred frames do not count")
        << QList<Counters>({all(0), {5, 5, 1, 5, 5, 5}, {5, 5, 1000, 5, 5, 5}}) << "4 .. 6";
    QTest::newRow("largest numbers") << QList<Counters>({all(0), all(2147483647), all(2147483647)})
                                     << "1717986917.6 .. 2576980376.4";
}

void AcquisitionAxesTest::leftAxis()
{
    QFETCH(QList<Counters>, counters);
    MeasuringCameras cameras(1, Mode::Acquisition);
    cameras.showTime(0.0, 2.0);
    cameras.setCounters(0, {counters.begin(), counters.end()});
    QVERIFY(cameras.measure(0, counters.size()));
    cameras.refresh();
    QTEST(rangeOf(cameras), "range");
}

void AcquisitionAxesTest::leftAxisOfSomeCounters_data()
{
    QTest::addColumn<QList<int>>("unsupported"); // selectors
    QTest::addColumn<QList<int>>("unticked");    // rows
    QTest::addColumn<QString>("range");
    const QList<int> none;
    QTest::newRow("all") << none << none << "8 .. 1200";
    QTest::newRow("lowest unsupported") << QList<int>({0}) << none << "16 .. 1200";
    QTest::newRow("highest unsupported") << QList<int>({5}) << none << "8 .. 480";
    QTest::newRow("all but one unsupported") << QList<int>({0, 1, 4, 5}) << none << "80 .. 240";
    QTest::newRow("lowest unticked") << none << QList<int>({0}) << "16 .. 1200";
    QTest::newRow("highest unticked") << none << QList<int>({4}) << "8 .. 480";
    QTest::newRow("all but one unticked") << none << QList<int>({0, 1, 2, 4, 5}) << "160 .. 480";
    // The two overflows have equally many points only while both are drawn.
    QTest::newRow("last alone") << none << QList<int>({0, 1, 2, 3}) << "400 .. 1200";
    QTest::newRow("last but one unsupported") << QList<int>({4}) << none << "8 .. 1200";
    QTest::newRow("frame rate does not count") << none << QList<int>({5}) << "8 .. 1200";
}

void AcquisitionAxesTest::leftAxisOfSomeCounters()
{
    QFETCH(QList<int>, unsupported);
    QFETCH(QList<int>, unticked);
    MeasuringCameras cameras(1, Mode::Acquisition);
    cameras.showTime(0.0, 2.0);
    for (int selector : unsupported)
        cameras.host.fail(Failure::write("counter_selector:settable", selector));
    for (int row : unticked)
        rig::PluginRig::click(cameras.quantityBox(row));
    cameras.setCounters(0,
                        {CountedFrames::all(0), {10, 20, 1, 100, 200, 500}, {20, 40, 5000, 200, 400, 1000}});
    QVERIFY(cameras.measure(0, 3));
    cameras.refresh();
    QTEST(rangeOf(cameras), "range");
}

void AcquisitionAxesTest::leftAxisWithoutFramesInView()
{
    MeasuringCameras cameras(1, Mode::Acquisition);
    cameras.setCounters(0, {CountedFrames::all(50)});
    cameras.showTime(500.0, 510.0);
    QVERIFY(cameras.measure(0, 3));
    cameras.refresh();
    QCOMPARE(rangeOf(cameras), QString("-0.8 .. 1.2"));
    QCOMPARE(cameras.cell(0, 4), QString("50"));
}

void AcquisitionAxesTest::leftAxisFollowsTheCounters()
{
    MeasuringCameras cameras(1, Mode::Acquisition);
    cameras.showTime(0.0, 2.0);
    cameras.setCounters(0, {CountedFrames::all(0), CountedFrames::all(10), CountedFrames::all(30)});
    QVERIFY(cameras.measure(0, 2));
    cameras.tick();
    QCOMPARE(rangeOf(cameras), QString("8 .. 12"));
    QVERIFY(cameras.deliver(0, 1));
    cameras.tick();
    QCOMPARE(rangeOf(cameras), QString("8 .. 36"));
}

void AcquisitionAxesTest::rightAxis()
{
    MeasuringCameras cameras(1, Mode::Acquisition);
    CountedFrames frames(cameras[0]);
    frames.microseconds = {1000000, 1500000, 2000000, 2100000, 2200000, 3000000};
    frames.microseconds.push_back(4000000);
    cameras.setFrames(0, frames);
    QVERIFY(cameras.measure(0, 7));
    cameras.refresh(); // 2, 3 and 1 frames a second
    QCOMPARE(rangeOf(cameras, 0, QCPAxis::atRight), QString("-0.01 .. 3"));
}

void AcquisitionAxesTest::rightAxisWithoutARate_data()
{
    QTest::addColumn<bool>("ticked");
    QTest::newRow("no full second") << true;
    QTest::newRow("not drawn") << false;
}

void AcquisitionAxesTest::rightAxisWithoutARate()
{
    QFETCH(bool, ticked);
    MeasuringCameras cameras(1, Mode::Acquisition);
    if (!ticked)
        rig::PluginRig::click(cameras.quantityBox(5));
    CountedFrames frames(cameras[0]);
    frames.microseconds = {1000000, 1500000};
    if (!ticked)
        frames.microseconds = {1000000, 2500000};
    cameras.setFrames(0, frames);
    QVERIFY(cameras.measure(0, 2));
    cameras.refresh();
    QCOMPARE(rangeOf(cameras, 0, QCPAxis::atRight), QString("-0.01 .. 110"));
}

void AcquisitionAxesTest::everyCameraHasItsOwnRange()
{
    MeasuringCameras cameras(2, Mode::Acquisition);
    cameras.showTime(0.0, 2.0);
    cameras.setCounters(0, {CountedFrames::all(10)});
    cameras.setCounters(1, {CountedFrames::all(100)});
    QVERIFY(cameras.measure(0, 2));
    QVERIFY(cameras.measure(1, 2));
    cameras.refresh();
    QCOMPARE(rangeOf(cameras, 0), QString("8 .. 12"));
    QCOMPARE(rangeOf(cameras, 1), QString("80 .. 120"));
}

void AcquisitionAxesTest::nothingRecordedKeepsTheAxes()
{
    MeasuringCameras cameras(2, Mode::Acquisition);
    QVERIFY(cameras.measure(0, 2));
    cameras.refresh();
    QCOMPARE(rangeOf(cameras, 0), QString("-0.8 .. 1.2"));
    QCOMPARE(rangeOf(cameras, 1), QString("-0.1 .. 1"));
    QCOMPARE(rangeOf(cameras, 1, QCPAxis::atRight), QString("-0.1 .. 110"));
}

QTEST_MAIN(AcquisitionAxesTest)
#include "AcquisitionAxesTest.moc"
