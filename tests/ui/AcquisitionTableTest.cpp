#include "tests/ui/MeasuringCameras.h"

#include <QComboBox>
#include <QtTest>

using rig::CountedFrames;
using rig::MeasuringCameras;
using rig::Mode;
using scripted::Failure;

Q_DECLARE_METATYPE(rig::Mode)

/// What the rows show of their cameras in acquisition mode.
class AcquisitionTableTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rowsOfTheHostsCameras();
    void closedCamera();
    void countersBeforeAnyMeasurement();
    void counters_data();
    void counters();
    void countersMoveOnEachTick_data();
    void countersMoveOnEachTick();
    void countersAfterTheStop();
    void counterSlot();
    void statusAndMeasureButton();
    void measuringRowIsBuiltAnew();
    void modesTakeTurns();
    void modeChangesWhileMeasuring_data();
    void modeChangesWhileMeasuring();
};

namespace {

constexpr int firstCounter = 4;
constexpr int lastCounter = 9;

QColor colourOf(const MeasuringCameras &cameras, int camera, int column)
{
    return cameras.rig.table()->item(cameras.row(camera), column)->foreground().color();
}

QStringList countersOf(const MeasuringCameras &cameras, int camera)
{
    QStringList texts;
    for (int column = firstCounter; column <= lastCounter; ++column)
        texts.append(cameras.cell(camera, column));
    return texts;
}

} // namespace

void AcquisitionTableTest::rowsOfTheHostsCameras()
{
    MeasuringCameras cameras(2, Mode::Acquisition);
    cameras.host.removeParameterSet(cameras.host.addCamera());
    rig::openCamera("Omega", "O-9", "mine"); // has the table built again
    QStringList names;
    for (int row = 0; row < cameras.rig.table()->rowCount(); ++row)
        names.append(cameras.rig.cell(row, 0));
    // No row for the one without a parameter set.
    QCOMPARE(names, QStringList({"Alpha (A-1)", "Beta (B-2)", "Omega (mine)"}));
    QVERIFY(cameras.startAll()->isEnabled());
}

void AcquisitionTableTest::closedCamera()
{
    MeasuringCameras cameras(3, Mode::Acquisition);
    cameras.setCounters(2, {CountedFrames::all(8)});
    QVERIFY(cameras.measure(1, 1));
    QVERIFY(cameras.measure(2, 1));
    cameras.host.closeCamera(cameras[1]);
    QCOMPARE(cameras.sequence().filter("Beta"),
             QStringList({"start Beta", "take Beta", "stop Beta", "release Beta"}));
    QCOMPARE(cameras.rig.table()->rowCount(), 2);
    QCOMPARE(cameras.row(2), 1);
    cameras.tick();
    QCOMPARE(cameras.cell(2, 4), "8");
    QCOMPARE(cameras.cell(0, 4), "-");
}

/// Which counters a camera has is found out when it is prepared.
void AcquisitionTableTest::countersBeforeAnyMeasurement()
{
    const MeasuringCameras cameras(1, Mode::Acquisition);
    for (int column = firstCounter; column <= lastCounter; ++column) {
        QCOMPARE(cameras.cell(0, column), "-");
        QCOMPARE(colourOf(cameras, 0, column), QColor(128, 128, 128));
    }
}

void AcquisitionTableTest::counters_data()
{
    QTest::addColumn<QList<int>>("unsupported");
    QTest::addColumn<QStringList>("texts");
    QTest::newRow("all") << QList<int>() << QStringList({"2000000000", "7", "-3", "33", "44", "55"});
    QTest::newRow("not every one") << QList<int>({0, 5})
                                   << QStringList({"2000000000", "-", "-3", "33", "44", "-"});
    QTest::newRow("not the frames") << QList<int>({2}) << QStringList({"-", "7", "-3", "33", "44", "55"});
    QTest::newRow("none") << QList<int>({0, 1, 2, 3, 4, 5}) << QStringList({"-", "-", "-", "-", "-", "-"});
}

void AcquisitionTableTest::counters()
{
    QFETCH(QList<int>, unsupported);
    MeasuringCameras cameras(2, Mode::Acquisition);
    for (int selector : unsupported)
        cameras.host.fail(Failure::write("counter_selector:settable", selector));
    cameras.setCounters(1, {{7, -3, 2000000000, 33, 44, 55}});
    QVERIFY(cameras.measure(1, 1));
    cameras.tick();
    QTEST(countersOf(cameras, 1), "texts");
    for (int column = firstCounter; column <= lastCounter; ++column) {
        const QColor colour = cameras.cell(1, column) == "-" ? QColor(128, 128, 128) : QColor(255, 255, 255);
        QCOMPARE(colourOf(cameras, 1, column), colour);
        QCOMPARE(int(cameras.rig.table()->item(1, column)->flags()), int(Qt::NoItemFlags));
        QCOMPARE(cameras.cell(0, column), "-");
    }
}

void AcquisitionTableTest::countersMoveOnEachTick_data()
{
    QTest::addColumn<bool>("live");
    QTest::newRow("with graphs") << true;
    QTest::newRow("statistics") << false;
}

void AcquisitionTableTest::countersMoveOnEachTick()
{
    QFETCH(bool, live);
    MeasuringCameras cameras(1, Mode::Acquisition);
    cameras.liveGraph()->setChecked(live);
    cameras.setCounters(0, {{0, 0, 1, 0, 0, 0}, {4, 0, 2, 0, 0, 0}, {4, 0, 3, 0, 9, 0}});
    QVERIFY(cameras.measure(0, 1));
    cameras.tick();
    QCOMPARE(countersOf(cameras, 0), QStringList({"1", "0", "0", "0", "0", "0"}));
    QVERIFY(cameras.deliver(0, 1));
    QCOMPARE(countersOf(cameras, 0), QStringList({"1", "0", "0", "0", "0", "0"}));
    cameras.tick();
    QCOMPARE(countersOf(cameras, 0), QStringList({"2", "4", "0", "0", "0", "0"}));
    QVERIFY(cameras.deliver(0, 1));
    cameras.tick();
    QCOMPARE(countersOf(cameras, 0), QStringList({"3", "4", "0", "0", "9", "0"}));
}

void AcquisitionTableTest::countersAfterTheStop()
{
    MeasuringCameras cameras(1, Mode::Acquisition);
    cameras.setCounters(0, {CountedFrames::all(3), CountedFrames::all(5)});
    QVERIFY(cameras.measure(0, 2));
    cameras.clickMeasure(0); // the row is brought up to date without a tick
    const QStringList last({"5", "5", "5", "5", "5", "5"});
    QCOMPARE(countersOf(cameras, 0), last);
    cameras.host.setValue(cameras[0], "counter_value[2]", 99);
    cameras.tick();
    QCOMPARE(countersOf(cameras, 0), last);
    cameras.rig.call("updateCameraList");
    QCOMPARE(countersOf(cameras, 0), last);
}

void AcquisitionTableTest::counterSlot()
{
    MeasuringCameras cameras(2, Mode::Acquisition);
    cameras.setCounters(0, {{11, 12, 13, 14, 15, 16}});
    QVERIFY(cameras.measure(0, 1));
    const auto update = [&](ZUCORE_HANDLE camera, int row, int column, int selector) {
        return QMetaObject::invokeMethod(cameras.rig.form(), "updateTableCounterItem",
                                         Q_ARG(ZUCORE_HANDLE, camera), Q_ARG(int, row), Q_ARG(int, column),
                                         Q_ARG(ZU_COUNTER_SELECTOR, ZU_COUNTER_SELECTOR(selector)));
    };
    QVERIFY(update(cameras[0], 1, 1, 4)); // whichever cell it is asked for
    QCOMPARE(cameras.rig.cell(1, 1), "15");
    QCOMPARE(cameras.rig.table()->item(1, 1)->foreground().color(), QColor(Qt::white));
    QCOMPARE(int(cameras.rig.table()->item(1, 1)->flags()), int(Qt::NoItemFlags));
    QVERIFY(update(cameras[0], 1, 1, 6)); // a counter that no camera has
    QCOMPARE(cameras.rig.cell(1, 1), "-");
    QCOMPARE(cameras.rig.table()->item(1, 1)->foreground().color(), QColor(128, 128, 128));

    cameras.rig.table()->item(1, 1)->setText("kept");
    QVERIFY(update(reinterpret_cast<ZUCORE_HANDLE>(quintptr(0x42)), 1, 1, 4));
    QVERIFY(update(nullptr, 1, 1, 4));
    QCOMPARE(cameras.rig.cell(1, 1), "kept");
    QVERIFY(update(cameras[0], 1, 2, 4)); // a box, no item
    QVERIFY(!cameras.rig.table()->item(1, 2));
    QVERIFY(update(cameras[0], 7, 4, 4));
    QVERIFY(update(cameras[0], -1, -1, 4));
}

void AcquisitionTableTest::statusAndMeasureButton()
{
    MeasuringCameras cameras(2, Mode::Acquisition);
    QCOMPARE(cameras.state(0), "Stopped Start");
    QVERIFY(cameras.measureButton(0)->isEnabled());
    cameras.host.setHostAcquisition(cameras[0], true);
    QCOMPARE(cameras.state(0), "Acq Start");
    QVERIFY(!cameras.measureButton(0)->isEnabled());
    QCOMPARE(cameras.state(1), "Stopped Start");
    QVERIFY(cameras.measureButton(1)->isEnabled());
    cameras.host.setHostAcquisition(cameras[0], false);
    QCOMPARE(cameras.state(0), "Stopped Start");
    QVERIFY(cameras.measureButton(0)->isEnabled());

    cameras.clickMeasure(0);
    QCOMPARE(cameras.state(0), "Testing Stop");
    QVERIFY(cameras.measureButton(0)->isEnabled());
    cameras.clickMeasure(0);
    QCOMPARE(cameras.state(0), "Stopped Start");
}

void AcquisitionTableTest::measuringRowIsBuiltAnew()
{
    MeasuringCameras cameras(1, Mode::Acquisition);
    cameras.setCounters(0, {CountedFrames::all(5)});
    QVERIFY(cameras.measure(0, 1));
    rig::openCamera("Omega", "O-9");
    QVERIFY(cameras.isMeasuring(0));
    QCOMPARE(cameras.state(0), "Testing Stop");
    QVERIFY(cameras.exportButton(0)->isEnabled());
    QVERIFY(!cameras.setup()->isEnabled());
    QCOMPARE(cameras.cell(0, 4), "5");
    cameras.clickMeasure(0);
    QVERIFY(!cameras.isMeasuring(0));
    QCOMPARE(cameras.state(0), "Stopped Start");
    QVERIFY(cameras.setup()->isEnabled());
}

/// The camera keeps its records in a mode that does not show them.
void AcquisitionTableTest::modesTakeTurns()
{
    MeasuringCameras cameras(1, Mode::Acquisition);
    cameras.setCounters(0, {CountedFrames::all(5)});
    QVERIFY(cameras.measureAndStop(0, 3));
    cameras.setMode(Mode::Throughput);
    QCOMPARE(cameras.rig.table()->horizontalHeaderItem(2)->text(), "Measure");
    QCOMPARE(cameras.measureButton(0)->text(), "Start");
    QCOMPARE(cameras.cell(0, 5), "0 %");
    QVERIFY(!cameras.rig.cellWidget<QComboBox>(0, 2));
    QCOMPARE(cameras.rig.find<QTableWidget>("tablePlotCheck")->rowCount(), 2);

    cameras.setMode(Mode::Acquisition);
    QVERIFY(cameras.rig.cellWidget<QComboBox>(0, 2));
    for (int column = firstCounter; column <= lastCounter; ++column)
        QVERIFY(!cameras.rig.table()->cellWidget(0, column)); // none is left of the other mode
    QCOMPARE(cameras.cell(0, 9), "5");
    cameras.showTime(0.0, 2.0);
    QCOMPARE(int(cameras.points(0, "API skip").size()), 2);
}

void AcquisitionTableTest::modeChangesWhileMeasuring_data()
{
    QTest::addColumn<Mode>("mode");
    QTest::addColumn<bool>("stopAll");
    for (const Mode mode : {Mode::Throughput, Mode::Acquisition}) {
        for (const bool all : {false, true})
            QTest::addRow("%s, %s", mode == Mode::Throughput ? "from throughput" : "from acquisition",
                          all ? "all stopped" : "stopped")
                << mode << all;
    }
}

/// By settings that the host loads: what was prepared for one mode is put back
/// in the other.
void AcquisitionTableTest::modeChangesWhileMeasuring()
{
    QFETCH(Mode, mode);
    QFETCH(bool, stopAll);
    const Mode other = mode == Mode::Throughput ? Mode::Acquisition : Mode::Throughput;
    MeasuringCameras cameras(2, mode);
    const QStringList before = cameras.settings(0);
    stopAll ? cameras.clickStartAll() : cameras.clickMeasure(0);
    QVERIFY(cameras.deliver(0, 2));
    cameras.setMode(other);
    QCOMPARE(cameras.rig.table()->horizontalHeaderItem(2)->text(),
             QString(other == Mode::Throughput ? "Measure" : "Data Format"));
    QCOMPARE(cameras.rig.plot()->axisRectCount(), 2);
    QCOMPARE(cameras.state(0), "Testing Stop");
    QVERIFY(!cameras.setup()->isEnabled());
    QVERIFY(cameras.deliver(0, 2)); // it goes on as it was started
    cameras.tick();
    cameras.refresh();
    stopAll ? cameras.clickStartAll() : cameras.clickMeasure(0);
    QCOMPARE(cameras.state(0), "Stopped Start");
    QCOMPARE(cameras.settings(0), before);
    QVERIFY(cameras.setup()->isEnabled());
    QCOMPARE(cameras.sequence().filter("Alpha"),
             QStringList({"start Alpha", "take Alpha", "stop Alpha", "release Alpha"}));
    QVERIFY(cameras.measureAndStop(0, 2)); // and starts in the mode of the window
}

QTEST_MAIN(AcquisitionTableTest)
#include "AcquisitionTableTest.moc"
