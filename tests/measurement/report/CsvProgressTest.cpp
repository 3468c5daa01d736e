#include "tests/measurement/report/ReportRig.h"

#include <QTest>

#include <limits>
#include <memory>

using namespace measurement;

/// Reports of counters, and what ends a report early.
class CsvProgressTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_rig = std::make_unique<ReportRig>(); }

    void counterColumns();
    void counterWindow();

    void progressOfFrames();
    void progressOfCounters();
    void cancelKeepsWholeRows();
    void cancelWithinAFrame();
    void failedFileEndsTheReport();
    void progressMaximum_data();
    void progressMaximum();

private:
    std::unique_ptr<ReportRig> m_rig;
};

void CsvProgressTest::counterColumns()
{
    auto &record = m_rig->addCounters(-5);
    record.frameNumber = std::numeric_limits<quint64>::max();
    record.transportSkip = 1;
    record.apiSkip = 2;
    record.missedTrgOverlap = 3;
    record.missedTrgOverflow = -4;
    record.bufferOverflow = std::numeric_limits<qint32>::min();
    m_rig->addCounters(6);
    const QByteArrayList expected = {
        "18446744073709551615,-5,999999999995,1,2,3,-4,-2147483648",
        "2,6,1000000000006,0,0,0,0,0",
    };
    QCOMPARE(m_rig->writeCounters(ReportRig::everything()), expected);
    // The columns keep their places whatever the origin.
    CsvWindow window = ReportRig::everything();
    window.origin = TimestampOriginComputer;
    QCOMPARE(m_rig->writeCounters(window), expected);
}

void CsvProgressTest::counterWindow()
{
    QCOMPARE(m_rig->writeCounters(ReportRig::everything()), QByteArrayList());
    QCOMPARE(m_rig->contents(), ReportRig::countersHeader);
    for (const qint64 timestamp : {100, 200, 300, 150, 400, 250})
        m_rig->addCounters(timestamp);
    const auto numbers = [this](const CsvWindow &window) {
        QByteArrayList first;
        for (const QByteArray &row : m_rig->writeCounters(window))
            first.append(row.split(',').first());
        return first.join(' ');
    };
    // The first one beyond the end ends the report.
    QCOMPARE(numbers({200, 300}), QByteArray("2 3"));
    QCOMPARE(numbers({201, 399}), QByteArray("3"));
    QCOMPARE(numbers({0, 400}), QByteArray("1 2 3 4 5 6"));
    QCOMPARE(numbers({500, 600}), QByteArray());
    QCOMPARE(
        numbers({ReportRig::computerShift + 200, ReportRig::computerShift + 300, TimestampOriginComputer}),
        QByteArray("2 3"));
}

void CsvProgressTest::progressOfFrames()
{
    m_rig->recorded.addFrame(1000, {0, 10});
    m_rig->recorded.addFrameOfTicks(2000, {});
    m_rig->recorded.addFrame(3000, {0, 10});
    m_rig->recorded.addFrame(4000, {0});
    m_rig->recorded.addFrame(5000, {0, 10}); // the first that begins beyond the window
    m_rig->recorded.addFrame(6000, {0, 10});
    QCOMPARE(m_rig->writeFrames({0, 4500}).size(), 2);
    QCOMPARE(m_rig->progress.values, (QList<int>{0, 1, 1, 2, 3}));
}

void CsvProgressTest::progressOfCounters()
{
    for (const qint64 timestamp : {100, 200, 300, 400})
        m_rig->addCounters(timestamp);
    QCOMPARE(m_rig->writeCounters({200, 300}).size(), 2);
    QCOMPARE(m_rig->progress.values, (QList<int>{0, 0, 1, 2}));
}

void CsvProgressTest::cancelKeepsWholeRows()
{
    m_rig->recorded.addFrame(1000, {0, 10, 20});
    m_rig->recorded.addFrame(2000, {0, 10, 20});
    m_rig->progress.allowedLooks = 1;
    QCOMPARE(m_rig->writeFrames(ReportRig::everything()).size(), 2);

    m_rig->progress = ProgressLog();
    m_rig->progress.allowedLooks = 0;
    QCOMPARE(m_rig->writeFrames(ReportRig::everything()), QByteArrayList());
    m_rig->addCounters(100);
    QCOMPARE(m_rig->writeCounters(ReportRig::everything()), QByteArrayList());
}

/// However long the frame, and whether its samples are written or passed over.
void CsvProgressTest::cancelWithinAFrame()
{
    std::vector<quint64> stamps;
    for (quint64 i = 0; i < 100000; ++i)
        stamps.push_back(i * 2500);
    m_rig->recorded.addFrameOfTicks(1000, stamps);
    m_rig->progress.allowedLooks = 3;
    const QByteArrayList rows = m_rig->writeFrames(ReportRig::everything());
    QVERIFY(rows.size() > 500 && rows.size() < 10000);
    QCOMPARE(rows.last().count(','), 8);
    QCOMPARE(m_rig->progress.looks, 4);

    m_rig->progress = ProgressLog();
    m_rig->progress.allowedLooks = 3;
    QCOMPARE(m_rig->writeFrames({Q_INT64_C(1) << 59, Q_INT64_C(1) << 60}), QByteArrayList());
    QCOMPARE(m_rig->progress.looks, 4);
}

void CsvProgressTest::failedFileEndsTheReport()
{
    std::vector<quint64> stamps;
    for (quint64 i = 0; i < 100000; ++i)
        stamps.push_back(i * 2500);
    m_rig->recorded.addFrameOfTicks(1000, stamps);
    CsvFile file("/dev/full");
    QVERIFY(file.open());
    CsvReport(file, ReportRig::everything(), m_rig->progress)
        .writeFrames(m_rig->recorded.line.frames, m_rig->link());
    QVERIFY(file.hasFailed());
    QVERIFY(m_rig->progress.looks < 30);
}

void CsvProgressTest::progressMaximum_data()
{
    QTest::addColumn<qint64>("from");
    QTest::addColumn<qint64>("to");
    QTest::addColumn<double>("statMin");
    QTest::addColumn<int>("expected");
    // Records at 100, 200, ... 1000, then 500 once more.
    QTest::newRow("half the width around") << qint64(400) << qint64(600) << 0.0 << 5;
    QTest::newRow("odd width") << qint64(401) << qint64(600) << 0.0 << 3;
    QTest::newRow("up to the width") << qint64(400) << qint64(600) << 200.0 << 5;
    QTest::newRow("statMin around") << qint64(400) << qint64(600) << 200.9 << 7;
    QTest::newRow("statMin never set")
        << qint64(400) << qint64(600) << std::numeric_limits<double>::max() << 11;
    QTest::newRow("reversed") << qint64(600) << qint64(400) << 0.0 << 0;
    QTest::newRow("ends with the first beyond") << qint64(100) << qint64(600) << 0.0 << 8;
    QTest::newRow("any time") << std::numeric_limits<qint64>::min() << std::numeric_limits<qint64>::max()
                              << 0.0 << 11;
}

void CsvProgressTest::progressMaximum()
{
    QFETCH(qint64, from);
    QFETCH(qint64, to);
    QFETCH(double, statMin);
    QFETCH(int, expected);
    for (const qint64 timestamp : {100, 200, 300, 400, 500, 600, 700, 800, 900, 1000, 500}) {
        m_rig->recorded.addFrame(timestamp, {0});
        m_rig->addCounters(timestamp);
    }
    const CxCameraLineData &line = m_rig->recorded.line;
    QCOMPARE(measurement::progressMaximum(line.frames, {from, to}, statMin), expected);
    QCOMPARE(measurement::progressMaximum(line.counterData, {from, to}, statMin), expected);
    if (from >= 0) {
        const CsvWindow window = {from + ReportRig::computerShift, to + ReportRig::computerShift,
                                  TimestampOriginComputer};
        QCOMPARE(measurement::progressMaximum(line.frames, window, statMin), expected);
    }
}

QTEST_APPLESS_MAIN(CsvProgressTest)
#include "CsvProgressTest.moc"
