#include "tests/measurement/report/ReportRig.h"

#include <QTest>

#include <limits>
#include <memory>

using namespace measurement;

namespace {

/// Columns 7 to 9.
QByteArrayList results(const QByteArrayList &rows)
{
    QByteArrayList last;
    for (const QByteArray &row : rows)
        last.append(row.split(',').mid(6).join(','));
    return last;
}

} // namespace

class CsvReportTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_rig = std::make_unique<ReportRig>(); }

    void frameColumns();
    void largestNumbers();
    void equalStampsCutTheRow();
    void stampsThatStepBack();
    void windowIsInclusive_data();
    void windowIsInclusive();
    void samplesBeforeTheWindowMoveNoLevel();
    void drainBetweenFrames_data();
    void drainBetweenFrames();
    void framesWithFewStamps();
    void levelIsClamped();
    void noBuffer();
    void origins();

private:
    std::unique_ptr<ReportRig> m_rig;
};

void CsvReportTest::frameColumns()
{
    m_rig->recorded.addFrame(1000000, {0, 10, 20, 25, 45}).frameNumber = 7;
    m_rig->recorded.addFrame(2000000, {0, 3}).frameNumber = 8;
    const QByteArrayList expected = {
        "7,1000001000000,10000,1000,4010000,150,100,500,5",
        "7,1000001000000,20000,2000,4020000,150,100,1000,10",
        "7,1000001000000,25000,3000,4025000,150,200,750,7.5",
        "7,1000001000000,45000,4000,4045000,150,50,2750,27.5",
        "8,1000002000000,3000,1000,4003000,150,333.333,0,0",
    };
    QCOMPARE(m_rig->writeFrames(ReportRig::everything()), expected);
}

void CsvReportTest::largestNumbers()
{
    constexpr quint64 highest = std::numeric_limits<quint64>::max();
    CxCameraLineData &line = m_rig->recorded.line;
    auto &frame = m_rig->recorded.addFrameOfTicks(0, {0, highest / 4});
    frame.frameNumber = highest;
    frame.computerTimestamp = std::numeric_limits<qint64>::min();
    line.sampleInterval = std::numeric_limits<quint32>::max();
    line.avgTransportSpeedMBps = std::numeric_limits<quint32>::max();
    line.internalBuffSize = highest;
    const QByteArrayList expected = {
        "18446744073709551615,-9223372036854775808,18446744073709551612,"
        "4294967295,18446744073709551612,4294967295,2.32831e-07,1.84467e+19,100"};
    QCOMPARE(m_rig->writeFrames(ReportRig::everything()), expected);
}

void CsvReportTest::equalStampsCutTheRow()
{
    m_rig->recorded.addFrame(1000, {0, 10, 10, 20});
    const QByteArrayList expected = {
        "0,1000000001000,10000,1000,4010000,150,100,500,5",
        "0,1000000001000,10000,2000,4010000,150,",
        "0,1000000001000,20000,3000,4020000,150,100,1000,10",
    };
    QCOMPARE(m_rig->writeFrames(ReportRig::everything()), expected);
    QVERIFY(m_rig->contents().contains("150,\n"));
    QVERIFY(!m_rig->contents().contains('\r'));
}

/// Differences are unsigned.
void CsvReportTest::stampsThatStepBack()
{
    m_rig->recorded.addFrameOfTicks(1000, {1000, 3500, 3000, 5500});
    // Before the frame's first stamp: far beyond any window, so the frame ends.
    m_rig->recorded.addFrameOfTicks(2000, {1000, 3500, 500, 5500});
    const QByteArrayList expected = {
        "0,1000000001000,10000,1000,14000,150,100,500,5",
        "0,1000000001000,8000,2000,12000,150,1.35525e-14,10000,100",
        "0,1000000001000,18000,3000,22000,150,100,10000,100",
        "0,1000000002000,10000,1000,14000,150,100,500,5",
    };
    CsvWindow window = ReportRig::everything();
    window.to = 1000000000;
    window.resetBufferLevel = true;
    QCOMPARE(m_rig->writeFrames(window), expected);
}

void CsvReportTest::windowIsInclusive_data()
{
    QTest::addColumn<qint64>("from");
    QTest::addColumn<qint64>("to");
    QTest::addColumn<QByteArrayList>("times"); // nanoseconds
    QTest::newRow("all") << qint64(1010) << qint64(1030) << QByteArrayList{"10000", "20000", "30000"};
    QTest::newRow("later") << qint64(1011) << qint64(1030) << QByteArrayList{"20000", "30000"};
    QTest::newRow("earlier") << qint64(1010) << qint64(1029) << QByteArrayList{"10000", "20000"};
    QTest::newRow("one") << qint64(1020) << qint64(1020) << QByteArrayList{"20000"};
    QTest::newRow("between two") << qint64(1021) << qint64(1029) << QByteArrayList();
    QTest::newRow("before") << qint64(0) << qint64(900) << QByteArrayList();
    QTest::newRow("after") << qint64(2000) << qint64(3000) << QByteArrayList();
    QTest::newRow("reversed") << qint64(1030) << qint64(1010) << QByteArrayList();
}

void CsvReportTest::windowIsInclusive()
{
    QFETCH(qint64, from);
    QFETCH(qint64, to);
    QFETCH(QByteArrayList, times);
    m_rig->recorded.addFrame(1000, {0, 10, 20, 30});
    const QByteArrayList rows = m_rig->writeFrames({from, to});
    QByteArrayList actual;
    for (const QByteArray &row : rows)
        actual.append(row.split(',').at(2));
    QCOMPARE(actual, times);
    if (times.isEmpty())
        QCOMPARE(m_rig->contents(), ReportRig::framesHeader);
}

void CsvReportTest::samplesBeforeTheWindowMoveNoLevel()
{
    m_rig->recorded.addFrame(1000, {0, 10, 20, 30});
    // The third interval begins before the window and counts in full.
    QCOMPARE(results(m_rig->writeFrames({1025, 5000})), QByteArrayList{"100,500,5"});
}

void CsvReportTest::drainBetweenFrames_data()
{
    QTest::addColumn<qint64>("second"); // start of the second frame
    QTest::addColumn<bool>("reset");
    QTest::addColumn<QByteArray>("expected");
    // The first ends at 1030 with 1500 bytes and a rate of 133.333 MB/s.
    QTest::newRow("a part") << qint64(1035) << false << QByteArray("100,1333.33,13.3333");
    QTest::newRow("no gap") << qint64(1030) << false << QByteArray("100,2000,20");
    QTest::newRow("all") << qint64(1100) << false << QByteArray("100,500,5");
    QTest::newRow("overlap") << qint64(1029) << false << QByteArray("100,500,5");
    QTest::newRow("reset") << qint64(1030) << true << QByteArray("100,500,5");
}

void CsvReportTest::drainBetweenFrames()
{
    QFETCH(qint64, second);
    QFETCH(bool, reset);
    QFETCH(QByteArray, expected);
    m_rig->recorded.addFrame(1000, {0, 10, 20, 30});
    m_rig->recorded.addFrame(second, {0, 10});
    CsvWindow window = ReportRig::everything();
    window.resetBufferLevel = reset;
    QCOMPARE(results(m_rig->writeFrames(window)).last(), expected);
}

void CsvReportTest::framesWithFewStamps()
{
    // None: not even the time of the last sample is forgotten.
    m_rig->recorded.addFrame(1000, {0, 10, 20, 30});
    m_rig->recorded.addFrameOfTicks(1031, {});
    m_rig->recorded.addFrame(1035, {0, 10});
    QCOMPARE(results(m_rig->writeFrames(ReportRig::everything())).last(), QByteArray("100,1333.33,13.3333"));

    // One: drains with the rate before it, and leaves nothing to drain from.
    init();
    m_rig->recorded.addFrame(1000, {0, 10, 20, 30});
    m_rig->recorded.addFrame(1035, {0});
    m_rig->recorded.addFrame(1050, {0, 10});
    QCOMPARE(results(m_rig->writeFrames(ReportRig::everything())).last(), QByteArray("100,1333.33,13.3333"));
}

void CsvReportTest::levelIsClamped()
{
    m_rig->recorded.addFrame(1000, {0, 1, 101, 201, 202});
    const QByteArrayList expected = {"1000,0,0", "10,10000,100", "10,10000,100", "1000,9150,91.5"};
    QCOMPARE(results(m_rig->writeFrames(ReportRig::everything())), expected);
}

void CsvReportTest::noBuffer()
{
    m_rig->recorded.line.internalBuffSize = 0;
    m_rig->recorded.addFrame(1000, {0, 10, 11});
    const QByteArrayList expected = {"100,0,nan", "1000,0,nan"};
    QCOMPARE(results(m_rig->writeFrames(ReportRig::everything())), expected);
}

void CsvReportTest::origins()
{
    m_rig->recorded.addFrame(1000, {0, 10, 20});
    CsvWindow window = {1020, 1020, TimestampOriginComputer};
    QCOMPARE(m_rig->writeFrames(window), QByteArrayList());
    window.from = window.to = ReportRig::computerShift + 1020;
    QCOMPARE(m_rig->writeFrames(window).size(), 1);
    window.origin = static_cast<ExTimestampOrigin>(7);
    window.from = window.to = 1010;
    QCOMPARE(m_rig->writeFrames(window).size(), 1);
}

QTEST_APPLESS_MAIN(CsvReportTest)
#include "CsvReportTest.moc"
