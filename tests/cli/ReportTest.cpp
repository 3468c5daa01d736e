#include "cli/Report.h"

#include <QtTest>

#include <limits>

using cli::CameraResult;
using cli::CameraState;

class ReportTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void throughputTable();
    void acquisitionTable();
    void noInterval();
    void progress();
    void columnsLineUpWithWideNames();
};

namespace {

CameraResult measured()
{
    CameraResult result;
    result.name = "Sim (A)";
    result.state = CameraState::Stopped;
    result.frames = 123;
    result.requiredMBps = 400;
    result.throughput = CameraResult::Throughput{512.34, 101.99, 12.34, 7};
    return result;
}

QStringList lines(const std::string &text)
{
    return QString::fromStdString(text).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

QStringList cells(const QString &line)
{
    static const QRegularExpression gap(QStringLiteral(" {2,}"));
    return line.split(gap, Qt::SkipEmptyParts);
}

} // namespace

void ReportTest::throughputTable()
{
    CameraResult refused;
    refused.name = "Other camera (B)";
    const QStringList table = lines(cli::resultTable(MeasureModeThroughput, {measured(), refused}));
    QCOMPARE(table.size(), 3);
    QCOMPARE(cells(table[0]), (QStringList{"Camera", "State", "Frames", "Required MB/s", "Avg MB/s",
                                           "Min MB/s", "Max buffer level %", "Buffer overflows"}));
    QCOMPARE(cells(table[1]), (QStringList{"Sim (A)", "ok", "123", "400", "512.3", "102.0", "12.3", "7"}));
    QCOMPARE(cells(table[2]), (QStringList{"Other camera (B)", "not started", "0", "0", "-", "-", "-", "-"}));
}

void ReportTest::acquisitionTable()
{
    CameraResult result;
    result.name = "Sim (A)";
    result.state = CameraState::Lost;
    result.frames = 50;
    result.framesPerSecond = 24.987;
    result.counters = {1, 2, 3, std::nullopt, 5, 6};
    const QStringList table = lines(cli::resultTable(MeasureModeAcquisition, {result}));
    QCOMPARE(cells(table[0]),
             (QStringList{"Camera", "State", "Frames", "Frames/s", "Transport skip", "API skip",
                          "Transferred", "Missed trg. overlap", "Missed trg overflow", "Buffer overflow"}));
    QCOMPARE(cells(table[1]), (QStringList{"Sim (A)", "lost", "50", "24.99", "1", "2", "3", "-", "5", "6"}));
}

void ReportTest::noInterval()
{
    CameraResult result = measured();
    result.throughput->minMBps = std::numeric_limits<double>::max();
    result.throughput->avgMBps = std::numeric_limits<double>::quiet_NaN();
    const QStringList row = cells(lines(cli::resultTable(MeasureModeThroughput, {result}))[1]);
    QCOMPARE(row[4], QStringLiteral("-"));
    QCOMPARE(row[5], QStringLiteral("-"));
}

void ReportTest::progress()
{
    CameraResult lost;
    lost.name = "Gone (B)";
    lost.state = CameraState::Lost;
    const QString line =
        QString::fromStdString(cli::progressLine(MeasureModeThroughput, 3.0, {measured(), lost}));
    QVERIFY2(!line.contains(QLatin1Char('\n')), qPrintable(line));
    for (const char *part : {"3 s", "Sim (A): 123 frames", "avg 512.3 min 102.0 MB/s", "12.3 %",
                             "7 overflows", "Gone (B): lost"})
        QVERIFY2(line.contains(QLatin1String(part)), qPrintable(line));
}

void ReportTest::columnsLineUpWithWideNames()
{
    CameraResult wide = measured();
    wide.name = "Käm µ (Ä)";
    const QStringList table = lines(cli::resultTable(MeasureModeThroughput, {measured(), wide}));
    QCOMPARE(table[1].indexOf(QStringLiteral(" 123 ")), table[2].indexOf(QStringLiteral(" 123 ")));
}

QTEST_GUILESS_MAIN(ReportTest)
#include "ReportTest.moc"
