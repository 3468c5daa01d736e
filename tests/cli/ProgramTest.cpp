// velmora-measure as its user meets it: a process with arguments, output and an
// exit code. The times below are those of the measured cameras, which run in
// real time; nothing waits for a fixed time.

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>

class ProgramTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void measuresTwoCameras();
    void measuresCounters();
    void wrongUse_data();
    void wrongUse();
    void scenarioFileErrorNamesThePosition();
    void signalStillPrintsTheTable_data();
    void signalStillPrintsTheTable();
    void lostCameraIsReported();
    void needsNoWidgetLibrary();
};

namespace {

struct Outcome
{
    int exitCode = -1;
    QString output;
    QString errors;

    QStringList lines() const { return output.split(QLatin1Char('\n'), Qt::SkipEmptyParts); }
};

Outcome outcomeOf(QProcess &process)
{
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit)
        return {};
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

Outcome runProgram(const QStringList &arguments)
{
    QProcess process;
    process.start(QStringLiteral(VELMORA_MEASURE), arguments);
    return outcomeOf(process);
}

/// Writes a scenario and returns its path.
QString scenarioFile(const QTemporaryDir &folder, const QByteArray &text)
{
    QFile file(folder.filePath(QStringLiteral("scenario.json")));
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
        qFatal("cannot write %s", qPrintable(file.fileName()));
    return file.fileName();
}

QStringList cells(const QString &line)
{
    static const QRegularExpression gap(QStringLiteral(" {2,}"));
    return line.split(gap, Qt::SkipEmptyParts);
}

} // namespace

void ProgramTest::measuresTwoCameras()
{
    const Outcome outcome = runProgram({QStringLiteral("--simulate"), QStringLiteral("2"),
                                        QStringLiteral("--seconds"), QStringLiteral("2.5")});
    QVERIFY2(outcome.exitCode == 0, qPrintable(outcome.errors));
    const QStringList lines = outcome.lines();
    QCOMPARE(lines.size(), 2 + 3); // a line each full second, a title and two cameras
    QVERIFY2(lines[0].contains(QLatin1String("1 s")), qPrintable(lines[0]));
    QVERIFY2(lines[1].contains(QLatin1String("2 s")), qPrintable(lines[1]));
    QCOMPARE(cells(lines[2]).first(), QStringLiteral("Camera"));
    for (const QString &line : lines.mid(3)) {
        const QStringList row = cells(line);
        QCOMPARE(row.size(), 8);
        QCOMPARE(row[1], QStringLiteral("ok"));
        QVERIFY2(row[2].toInt() > 10, qPrintable(line));     // frames
        QVERIFY2(row[4].toDouble() > 100, qPrintable(line)); // average MB/s
    }
}

void ProgramTest::measuresCounters()
{
    const Outcome outcome = runProgram({QStringLiteral("--simulate"), QStringLiteral("missed-triggers"),
                                        QStringLiteral("--seconds"), QStringLiteral("1.5"),
                                        QStringLiteral("--mode"), QStringLiteral("acquisition")});
    QVERIFY2(outcome.exitCode == 0, qPrintable(outcome.errors));
    const QStringList lines = outcome.lines();
    const QStringList titles = cells(lines.at(1));
    const QStringList row = cells(lines.at(2));
    QCOMPARE(row.size(), titles.size());
    QVERIFY2(row.at(titles.indexOf(QStringLiteral("Missed trg. overlap"))).toInt() > 0,
             qPrintable(lines.at(2)));
    QVERIFY2(row.at(titles.indexOf(QStringLiteral("Frames/s"))).toDouble() > 1.0, qPrintable(lines.at(2)));
}

void ProgramTest::wrongUse_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("expected");
    QTest::newRow("nothing") << QStringList{} << "--simulate";
    QTest::newRow("no camera") << QStringList{"--simulate", "0"} << "1 to 64";
    QTest::newRow("too many") << QStringList{"--simulate", "65"} << "1 to 64";
    QTest::newRow("no such scenario")
        << QStringList{"--simulate", "no-such-file.json"} << "no-such-file.json";
    QTest::newRow("bad mode") << QStringList{"--simulate", "1", "--mode", "x"} << "mode";
}

void ProgramTest::wrongUse()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, expected);
    const Outcome outcome = runProgram(arguments);
    QCOMPARE(outcome.exitCode, 2);
    QVERIFY2(outcome.errors.contains(expected), qPrintable(outcome.errors));
    QVERIFY2(outcome.output.isEmpty(), qPrintable(outcome.output));
}

void ProgramTest::scenarioFileErrorNamesThePosition()
{
    QTemporaryDir folder;
    const QString scenario =
        scenarioFile(folder, "{\n  \"cameras\": [\n    { \"serial\": \"1\", \"link_MBps\": -5 }\n  ]\n}\n");
    const Outcome outcome = runProgram({QStringLiteral("--simulate"), scenario});
    QCOMPARE(outcome.exitCode, 2);
    QVERIFY2(outcome.errors.contains(scenario + QStringLiteral(":3:")), qPrintable(outcome.errors));
    QVERIFY2(outcome.errors.contains(QLatin1String("link_MBps")), qPrintable(outcome.errors));
}

void ProgramTest::signalStillPrintsTheTable_data()
{
    QTest::addColumn<int>("signalNumber");
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGTERM") << SIGTERM;
}

void ProgramTest::signalStillPrintsTheTable()
{
    QFETCH(int, signalNumber);
    QProcess process;
    process.start(QStringLiteral(VELMORA_MEASURE), {QStringLiteral("--simulate"), QStringLiteral("1"),
                                                    QStringLiteral("--seconds"), QStringLiteral("60")});
    QVERIFY(process.waitForReadyRead(30000)); // the first line of progress
    ::kill(static_cast<pid_t>(process.processId()), signalNumber);
    const Outcome outcome = outcomeOf(process);
    QCOMPARE(outcome.exitCode, 128 + signalNumber);
    QVERIFY2(outcome.output.contains(QLatin1String("Avg MB/s")), qPrintable(outcome.output));
    QCOMPARE(cells(outcome.lines().last()).at(1), QStringLiteral("ok"));
}

void ProgramTest::lostCameraIsReported()
{
    QTemporaryDir folder;
    const QString scenario = scenarioFile(
        folder, R"({ "cameras": [ { "serial": "1", "width": 1024, "height": 1024, "frame_rate": 50,
            "required_MBps": 200, "internal_buffer_bytes": 1000000, "link_MBps": 300,
            "faults": { "unplug": { "after_ms": 300 } } } ] })");
    // The run ends when the capture that waits for the lost camera times out.
    const Outcome outcome = runProgram(
        {QStringLiteral("--simulate"), scenario, QStringLiteral("--seconds"), QStringLiteral("60")});
    QVERIFY2(outcome.exitCode == 0, qPrintable(outcome.errors));
    QCOMPARE(cells(outcome.lines().last()).at(1), QStringLiteral("lost"));
    QVERIFY(cells(outcome.lines().last()).at(2).toInt() > 0);
}

void ProgramTest::needsNoWidgetLibrary()
{
    QProcess readelf;
    readelf.start(QStringLiteral("readelf"), {QStringLiteral("-d"), QStringLiteral(VELMORA_MEASURE)});
    const Outcome outcome = outcomeOf(readelf);
    QVERIFY2(outcome.output.contains(QLatin1String("libzuCore.so")), qPrintable(outcome.output));
    for (const char *library : {"Widgets", "Gui", "qcustomplot", "PrintSupport"})
        QVERIFY2(!outcome.output.contains(QLatin1String(library)), qPrintable(outcome.output));
}

QTEST_GUILESS_MAIN(ProgramTest)
#include "ProgramTest.moc"
