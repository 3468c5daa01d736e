#include "tests/ui/MeasuringCameras.h"

#include <QSignalSpy>
#include <QTest>

using rig::MeasuringCameras;

/// The left axis of a plot area: fitted to its graph, or as the user types it.
class VerticalAxisTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fitsTheGraph();
    void unchangedTextSnapsNothing();
    void rightAxisIsNeverFitted();
    void fitsEachCameraToItsOwn();
    void nothingToFit();
    void manualRangeStays();
    void boxEnablesTheEdits();
    void boxTakesTheStateOfItsSignal();
    void boxLeavesTheAxis();
    void automaticAgain();
    void editsSetTheBounds_data();
    void editsSetTheBounds();
    void editsDoNotReplot();
    void editsOfOneCameraOnly();
    void handlersWithoutAPlotArea();
    void otherSendersAreIgnored();

private:
    static QCPRange leftRange(const MeasuringCameras &cameras, int camera = 0)
    {
        return cameras.rig.axisRect(cameras[camera])->axis(QCPAxis::atLeft)->range();
    }
    static QCheckBox *automatic(const MeasuringCameras &cameras, int camera = 0)
    {
        return cameras.rig.cellWidget<QCheckBox>(cameras.row(camera), 11);
    }
    static QLineEdit *minimum(const MeasuringCameras &cameras, int camera = 0)
    {
        return cameras.rig.cellWidget<QLineEdit>(cameras.row(camera), 11, 0);
    }
    static QLineEdit *maximum(const MeasuringCameras &cameras, int camera = 0)
    {
        return cameras.rig.cellWidget<QLineEdit>(cameras.row(camera), 11, 1);
    }
    /// Measures so that the graph lies between the two rates, and shows it.
    static void record(MeasuringCameras &cameras, unsigned int fastTicks, unsigned int slowTicks,
                       int camera = 0);
};

namespace {

constexpr unsigned int fastest = 315;    // 812.7 MB/s
constexpr unsigned int slowest = 640000; // 0.4 MB/s

} // namespace

void VerticalAxisTest::record(MeasuringCameras &cameras, unsigned int fastTicks, unsigned int slowTicks,
                              int camera)
{
    rig::PacedFrames frames;
    frames.ticks = {fastTicks, fastTicks, fastTicks, slowTicks};
    frames.microsecondsPerFrame = 100000;
    cameras.setFrames(camera, frames);
    QVERIFY(cameras.measureAndStop(camera, 6));
    cameras.showTime(0.0, 10.0);
}

void VerticalAxisTest::fitsTheGraph()
{
    MeasuringCameras cameras(1);
    record(cameras, fastest, slowest);
    QCOMPARE(minimum(cameras)->text(), QString("0"));
    QCOMPARE(maximum(cameras)->text(), QString("812"));
    // The lower text stood there before, so that its bound was not touched.
    QCOMPARE(leftRange(cameras).lower, rig::PacedFrames::rate(slowest));
    QCOMPARE(leftRange(cameras).upper, 812.0);
}

void VerticalAxisTest::unchangedTextSnapsNothing()
{
    MeasuringCameras cameras(1);
    record(cameras, fastest, slowest);
    cameras.refresh();
    QCOMPARE(maximum(cameras)->text(), QString("812"));
    QCOMPARE(leftRange(cameras).lower, rig::PacedFrames::rate(slowest));
    QCOMPARE(leftRange(cameras).upper, rig::PacedFrames::rate(fastest));
}

void VerticalAxisTest::rightAxisIsNeverFitted()
{
    MeasuringCameras cameras(1);
    cameras.host.setValue(cameras[0], "device_unit_register_value[8,4096]", 2000);
    cameras.host.setValue(cameras[0], "dp_param_value[1,5,7]", 1024 * 1024);
    record(cameras, 500, 1000);
    QVERIFY(cameras.rig.graph(cameras[0], "Max buffer level")->dataCount() > 0);
    const QCPRange range = cameras.rig.axisRect(cameras[0])->axis(QCPAxis::atRight)->range();
    QCOMPARE(range.lower, -10.0);
    QCOMPARE(range.upper, 110.0);
}

void VerticalAxisTest::fitsEachCameraToItsOwn()
{
    MeasuringCameras cameras(2);
    record(cameras, 500, 1000, 0);
    record(cameras, 250, 2000, 1);
    cameras.refresh();
    QCOMPARE(minimum(cameras, 0)->text(), QString("256"));
    QCOMPARE(maximum(cameras, 0)->text(), QString("512"));
    QCOMPARE(minimum(cameras, 1)->text(), QString("128"));
    QCOMPARE(maximum(cameras, 1)->text(), QString("1024"));
}

void VerticalAxisTest::nothingToFit()
{
    MeasuringCameras cameras(1);
    record(cameras, fastest, slowest);
    cameras.showTime(1000.0, 1010.0); // nothing was measured there
    QCOMPARE(maximum(cameras)->text(), QString("812"));
    QCOMPARE(leftRange(cameras).upper, 812.0);
}

void VerticalAxisTest::manualRangeStays()
{
    MeasuringCameras cameras(1);
    automatic(cameras)->click();
    minimum(cameras)->setText("100");
    maximum(cameras)->setText("200");
    record(cameras, fastest, slowest);
    cameras.refresh();
    QCOMPARE(leftRange(cameras).lower, 100.0);
    QCOMPARE(leftRange(cameras).upper, 200.0);
    QCOMPARE(minimum(cameras)->text(), QString("100"));
    QCOMPARE(maximum(cameras)->text(), QString("200"));
}

void VerticalAxisTest::boxEnablesTheEdits()
{
    MeasuringCameras cameras(2);
    QVERIFY(automatic(cameras)->isChecked());
    QVERIFY(!minimum(cameras)->isEnabled() && !maximum(cameras)->isEnabled());
    rig::PluginRig::click(automatic(cameras));
    QVERIFY(!automatic(cameras)->isChecked());
    QVERIFY(minimum(cameras)->isEnabled() && maximum(cameras)->isEnabled());
    QVERIFY(!minimum(cameras, 1)->isEnabled() && !maximum(cameras, 1)->isEnabled());
    rig::PluginRig::click(automatic(cameras));
    QVERIFY(automatic(cameras)->isChecked());
    QVERIFY(!minimum(cameras)->isEnabled() && !maximum(cameras)->isEnabled());
}

void VerticalAxisTest::boxTakesTheStateOfItsSignal()
{
    MeasuringCameras cameras(1);
    for (const bool state : {false, true}) {
        Q_EMIT automatic(cameras)->clicked(state);
        QCOMPARE(automatic(cameras)->isChecked(), state);
        QCOMPARE(minimum(cameras)->isEnabled(), !state);
        QCOMPARE(maximum(cameras)->isEnabled(), !state);
    }
}

void VerticalAxisTest::boxLeavesTheAxis()
{
    MeasuringCameras cameras(1);
    record(cameras, fastest, slowest);
    const QCPRange before = leftRange(cameras);
    QSignalSpy replots(cameras.rig.plot(), &QCustomPlot::afterReplot);
    automatic(cameras)->click();
    QCOMPARE(leftRange(cameras), before);
    maximum(cameras)->setText("50");
    automatic(cameras)->click();
    QCOMPARE(leftRange(cameras).upper, 50.0);
    QCOMPARE(replots.size(), 0);
}

void VerticalAxisTest::automaticAgain()
{
    MeasuringCameras cameras(1);
    record(cameras, fastest, slowest);
    automatic(cameras)->click();
    minimum(cameras)->setText("7");
    maximum(cameras)->setText("50");
    automatic(cameras)->click();
    cameras.refresh();
    QCOMPARE(minimum(cameras)->text(), QString("0"));
    QCOMPARE(maximum(cameras)->text(), QString("812"));
    // Both texts changed.
    QCOMPARE(leftRange(cameras).lower, 0.0);
    QCOMPARE(leftRange(cameras).upper, 812.0);
}

void VerticalAxisTest::editsSetTheBounds_data()
{
    QTest::addColumn<bool>("upper");
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("bound");
    QTest::newRow("minimum") << false << "250" << 250.0;
    QTest::newRow("maximum") << true << "2500" << 2500.0;
    QTest::newRow("minimum, no number") << false << "abc" << 0.0;
    QTest::newRow("minimum, empty") << false << "" << 0.0;
    QTest::newRow("minimum, a fraction") << false << "0.5" << 0.5;
    QTest::newRow("maximum, beyond the validator") << true << "123456" << 123456.0;
}

void VerticalAxisTest::editsSetTheBounds()
{
    QFETCH(bool, upper);
    QFETCH(QString, text);
    QFETCH(double, bound);
    MeasuringCameras cameras(1);
    automatic(cameras)->click();
    minimum(cameras)->setText("10");
    maximum(cameras)->setText("900");
    QCOMPARE(leftRange(cameras), QCPRange(10.0, 900.0));
    (upper ? maximum(cameras) : minimum(cameras))->setText(text);
    QCOMPARE(leftRange(cameras), upper ? QCPRange(10.0, bound) : QCPRange(bound, 900.0));
}

void VerticalAxisTest::editsDoNotReplot()
{
    MeasuringCameras cameras(1);
    automatic(cameras)->click();
    QSignalSpy replots(cameras.rig.plot(), &QCustomPlot::afterReplot);
    QTest::keyClicks(minimum(cameras), "12");
    QTest::keyClicks(maximum(cameras), "34");
    QCOMPARE(leftRange(cameras).lower, 12.0);
    QCOMPARE(replots.size(), 0);
}

void VerticalAxisTest::editsOfOneCameraOnly()
{
    MeasuringCameras cameras(2);
    automatic(cameras, 1)->click();
    maximum(cameras, 1)->setText("77");
    QCOMPARE(leftRange(cameras, 1).upper, 77.0);
    QCOMPARE(leftRange(cameras, 0).upper, 1000.0);
}

void VerticalAxisTest::handlersWithoutAPlotArea()
{
    MeasuringCameras cameras(2);
    automatic(cameras, 0)->click();
    cameras.plotBox(0)->click();
    QVERIFY(!cameras.rig.axisRect(cameras[0]));
    const QCPRange other = leftRange(cameras, 1);
    minimum(cameras, 0)->setText("5");
    maximum(cameras, 0)->setText("9");
    automatic(cameras, 0)->click();
    QVERIFY(!minimum(cameras, 0)->isEnabled());
    QCOMPARE(leftRange(cameras, 1), other);
}

void VerticalAxisTest::otherSendersAreIgnored()
{
    MeasuringCameras cameras(1);
    const QCPRange before = leftRange(cameras);
    QLineEdit stranger;
    stranger.setProperty("hCam", qulonglong(7));
    connect(&stranger, SIGNAL(textChanged(QString)), cameras.rig.form(),
            SLOT(onEditVertScaleMinChanged(QString)));
    connect(&stranger, SIGNAL(textChanged(QString)), cameras.rig.form(),
            SLOT(onEditVertScaleMaxChanged(QString)));
    stranger.setText("33");
    QCheckBox box;
    box.setProperty("hCam", qulonglong(7));
    connect(&box, SIGNAL(clicked(bool)), cameras.rig.form(), SLOT(onChkCamAutoVertAxis(bool)));
    box.click();
    box.click();
    QCOMPARE(leftRange(cameras), before);
    QVERIFY(!minimum(cameras)->isEnabled());
}

QTEST_MAIN(VerticalAxisTest)
#include "VerticalAxisTest.moc"
