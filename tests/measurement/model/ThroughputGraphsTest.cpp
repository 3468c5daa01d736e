#include "measurement/PlotLibrary.h"
#include "tests/measurement/model/RecordedLine.h"

#include <QTest>

#include <memory>

/// The points as the plot's graphs hold them.
class ThroughputGraphsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void pointsBecomeGraphData();
    void graphsMayBeAbsent();
    void noRangeNoPoints();
    void computerTime();
    void resetReachesThePass_data();
    void resetReachesThePass();

private:
    bool calculate(QCPGraph *speeds, QCPGraph *levels, const QCPRange *range, double msPerPixel = 0.0);

    std::unique_ptr<QCustomPlot> m_plot;
    std::unique_ptr<RecordedLine> m_recorded;
    QCPGraph *m_speeds = nullptr;
    QCPGraph *m_levels = nullptr;
};

void ThroughputGraphsTest::init()
{
    m_plot = std::make_unique<QCustomPlot>();
    m_speeds = m_plot->addGraph();
    m_levels = m_plot->addGraph();
    m_recorded = std::make_unique<RecordedLine>();
    m_recorded->addFrame(1000000, {0, 10, 20, 25, 45});
    m_recorded->addFrame(1500000, {0, 10, 20});
}

void ThroughputGraphsTest::cleanup()
{
    m_recorded.reset();
    m_plot.reset();
}

bool ThroughputGraphsTest::calculate(QCPGraph *speeds, QCPGraph *levels, const QCPRange *range,
                                     double msPerPixel)
{
    return m_recorded->line.calculateGraphsThrougput(speeds, levels, range, 500000, 2000000,
                                                     TimestampOriginCamera, msPerPixel, false);
}

void ThroughputGraphsTest::pointsBecomeGraphData()
{
    // The window's end, 2 s, lies at the upper bound of the axis.
    const QCPRange range(-1.5, 3.25);
    QVERIFY(calculate(m_speeds, m_levels, &range));

    const double x[] = {-999980.0 / 1000000.0 + 3.25, -999975.0 / 1000000.0 + 3.25,
                        -999955.0 / 1000000.0 + 3.25, -499990.0 / 1000000.0 + 3.25,
                        -499980.0 / 1000000.0 + 3.25};
    const double speeds[] = {100, 200, 50, 100, 100};
    const double levels[] = {10, 7.5, 27.5, 5, 10};
    QCOMPARE(m_speeds->data()->size(), 5);
    QCOMPARE(m_levels->data()->size(), 5);
    for (int i = 0; i < 5; ++i) {
        QCOMPARE(m_speeds->data()->at(i)->key, x[i]);
        QCOMPARE(m_speeds->data()->at(i)->value, speeds[i]);
        QCOMPARE(m_levels->data()->at(i)->key, x[i]);
        QCOMPARE(m_levels->data()->at(i)->value, levels[i]);
    }
    QCOMPARE(m_recorded->line.maxBufferLevel, 27.5);
    QCOMPARE(m_recorded->line.minThroughput, 50.0);
}

void ThroughputGraphsTest::graphsMayBeAbsent()
{
    const QCPRange range(-1.5, 0.0);
    QVERIFY(calculate(m_speeds, nullptr, &range, 1.0));
    QCOMPARE(m_speeds->data()->size(), 1);
    QCOMPARE(m_speeds->data()->at(0)->value, 50.0);
    QVERIFY(calculate(nullptr, m_levels, &range, 1.0));
    QCOMPARE(m_levels->data()->size(), 1);
    QCOMPARE(m_levels->data()->at(0)->value, 5.0);
    QVERIFY(calculate(nullptr, nullptr, &range));
    QCOMPARE(m_recorded->line.maxBufferLevel, 27.5);
}

void ThroughputGraphsTest::noRangeNoPoints()
{
    QVERIFY(calculate(m_speeds, m_levels, nullptr));
    QCOMPARE(m_speeds->data()->size(), 0);
    QCOMPARE(m_levels->data()->size(), 0);
    QCOMPARE(m_recorded->line.maxBufferLevel, 27.5);
    QCOMPARE(m_recorded->line.minThroughput, 50.0);
    QCOMPARE(m_recorded->line.bufferOverflowCount, quint64(0));
}

void ThroughputGraphsTest::computerTime()
{
    const QCPRange range(-1.5, 0.0);
    const qint64 shift = m_recorded->line.frames.first()->computerTimestamp - 1000000;
    QVERIFY(m_recorded->line.calculateGraphsThrougput(m_speeds, m_levels, &range, shift + 500000,
                                                      shift + 2000000, TimestampOriginComputer, 0.0, false));
    QCOMPARE(m_speeds->data()->size(), 5);
    QCOMPARE(m_speeds->data()->at(0)->key, -999980.0 / 1000000.0);
    QVERIFY(!m_recorded->line.calculateGraphsThrougput(m_speeds, m_levels, &range, 500000, 2000000,
                                                       TimestampOriginComputer, 0.0, false));
}

void ThroughputGraphsTest::resetReachesThePass_data()
{
    QTest::addColumn<bool>("reset");
    QTest::addColumn<bool>("graphs");
    QTest::addColumn<double>("highest"); // percent
    QTest::addColumn<double>("last");
    QTest::newRow("carried, graphs") << false << true << 30.0 << 30.0;
    QTest::newRow("carried, statistics only") << false << false << 30.0 << 30.0;
    QTest::newRow("reset, graphs") << true << true << 20.0 << 10.0;
    QTest::newRow("reset, statistics only") << true << false << 20.0 << 10.0;
}

void ThroughputGraphsTest::resetReachesThePass()
{
    QFETCH(bool, reset);
    QFETCH(bool, graphs);
    QFETCH(double, highest);
    QFETCH(double, last);
    // The second frame begins where the first ends: nothing drains in between.
    RecordedLine recorded;
    recorded.addFrame(1000, {0, 10, 20, 30, 40});
    recorded.addFrame(1040, {0, 10, 20});
    const QCPRange range(-1.5, 0.0);
    QVERIFY(recorded.line.calculateGraphsThrougput(m_speeds, m_levels, graphs ? &range : nullptr, 1000, 3000,
                                                   TimestampOriginCamera, 0.0, reset));
    QCOMPARE(recorded.line.maxBufferLevel, highest);
    QCOMPARE(m_levels->data()->size(), graphs ? 5 : 0);
    if (graphs)
        QCOMPARE(m_levels->data()->at(4)->value, last);
}

QTEST_MAIN(ThroughputGraphsTest)
#include "ThroughputGraphsTest.moc"
