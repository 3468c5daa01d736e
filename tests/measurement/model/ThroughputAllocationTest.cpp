#include "measurement/ThroughputEngine.h"
#include "tests/measurement/model/CountingAllocations.h"
#include "tests/measurement/model/RecordedLine.h"

#include <QTest>

#include <memory>

namespace {

/// Takes points without keeping them.
class LastPoint final : public measurement::throughput::PointSink
{
public:
    void addPoint(qint64 time, double minSpeed, double maxLevel) override
    {
        m_point = {time, minSpeed, maxLevel};
        ++count;
    }
    void restart() override {}

    int count = 0;

private:
    Point m_point = {};
};

/// Alternating lengths over more frames than are followed side by side; some
/// lie outside the window and its margin.
void record(RecordedLine &recorded)
{
    for (int frame = 0; frame < 40; ++frame) {
        std::vector<quint64> times;
        const int stamps = frame % 3 == 0 ? 150 : 400;
        for (int i = 0; i < stamps; ++i)
            times.push_back(static_cast<quint64>(i * 10 - i % 7));
        recorded.addFrame(frame * 5000, times);
        // A stamp that steps back is evaluated interval by interval.
        if (frame % 5 == 4)
            recorded.line.frames.last()->samples[1] = recorded.line.frames.last()->samples[0] - 1;
    }
}

} // namespace

/// Refreshes come several times a second for as long as the window is open:
/// none of them but the first may allocate.
class ThroughputAllocationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void allocationsAreCounted();
    void refreshAllocatesNothing_data();
    void refreshAllocatesNothing();
};

/// Without this the other tests could not fail.
void ThroughputAllocationTest::allocationsAreCounted()
{
    long before = allocations::count();
    const auto object = std::make_unique<Point>();
    QCOMPARE(allocations::count() - before, 1L);

    before = allocations::count();
    const auto array = std::make_unique<double[]>(100);
    QCOMPARE(allocations::count() - before, 1L);

    before = allocations::count();
    QList<int> list;
    list.append(1);
    QVERIFY(allocations::count() > before);
}

void ThroughputAllocationTest::refreshAllocatesNothing_data()
{
    QTest::addColumn<bool>("points");
    QTest::addColumn<double>("msPerPixel");
    QTest::addColumn<bool>("reset");
    for (const bool reset : {false, true}) {
        const char *const level = reset ? "reset" : "carried";
        QTest::addRow("statistics only, %s", level) << false << 0.0 << reset;
        QTest::addRow("every point, %s", level) << true << 0.0 << reset;
        QTest::addRow("some points a frame, %s", level) << true << 0.7 << reset;
        QTest::addRow("few points, %s", level) << true << 20.0 << reset;
    }
}

void ThroughputAllocationTest::refreshAllocatesNothing()
{
    QFETCH(bool, points);
    QFETCH(double, msPerPixel);
    QFETCH(bool, reset);
    RecordedLine recorded;
    record(recorded);
    const measurement::ThroughputWindow window = {60000, 120000, TimestampOriginCamera, msPerPixel, reset};
    LastPoint sink;
    measurement::throughput::PointSink *const used = points ? &sink : nullptr;

    const long atFirst = allocations::count();
    QVERIFY(measurement::evaluateThroughput(recorded.line, window, used));
    QVERIFY(allocations::count() - atFirst >= 3L); // the scratch arrays, and outlines

    const int firstPoints = sink.count;
    const long before = allocations::count();
    const bool processed = measurement::evaluateThroughput(recorded.line, window, used);
    const long taken = allocations::count() - before;
    QVERIFY(processed);
    QCOMPARE(taken, 0L);
    QCOMPARE(sink.count, 2 * firstPoints);
    QCOMPARE(firstPoints > 0, points);
}

QTEST_APPLESS_MAIN(ThroughputAllocationTest)
#include "ThroughputAllocationTest.moc"
