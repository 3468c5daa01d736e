// velmora as its user meets it: a process with arguments, output and an exit
// code.

#include "tests/host/app/PluginFiles.h"

#include <QProcess>
#include <QSettings>
#include <QtTest>

#include <csignal>

class VelmoraProgramTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void helpAndVersion();
    void wrongUse_data();
    void wrongUse();
    void listsPlugins();
    void listsNothingWithoutPlugins();
    void findsPluginsByTheVariable();
    void workingFolderIsNotSearched_data();
    void workingFolderIsNotSearched();
    void relativeFolderOfTheUserIsTaken();
    void earlierFolderWins();
    void signalEndsTheProgram_data();
    void signalEndsTheProgram();
    void signalsBeyondTheFirst();
    void keepsDamagedSettings();

private:
    struct Outcome
    {
        int exitCode = -1;
        QString output;
        QString errors;

        QStringList lines() const { return output.split('\n', Qt::SkipEmptyParts); }
    };

    Outcome outcomeOf(QProcess &process) const;
    Outcome run(const QStringList &arguments) const;
    void start(QProcess &process, const QStringList &arguments) const;
    /// Starts it with cameras and the tracing plug-in, up to its event loop.
    void startViewer(QProcess &process) const;
    QString settingsFile() const { return m_folder->filePath("settings.ini"); }
    QStringList traced() const;

    std::unique_ptr<QTemporaryDir> m_folder;
    QProcessEnvironment m_environment;
    QString m_workingFolder;
};

void VelmoraProgramTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_workingFolder = m_folder->path();
    m_environment = QProcessEnvironment::systemEnvironment();
    m_environment.insert("HOME", m_folder->path());
    m_environment.insert("XDG_CONFIG_HOME", m_folder->filePath("config"));
    m_environment.insert("VELMORA_TEST_TRACE", m_folder->filePath("trace"));
    m_environment.remove("VELMORA_PLUGIN_PATH");
    m_environment.remove("DISPLAY");
    m_environment.remove("WAYLAND_DISPLAY");
}

void VelmoraProgramTest::start(QProcess &process, const QStringList &arguments) const
{
    process.setProcessEnvironment(m_environment);
    process.setWorkingDirectory(m_workingFolder);
    process.start(QStringLiteral(VELMORA), arguments);
}

VelmoraProgramTest::Outcome VelmoraProgramTest::outcomeOf(QProcess &process) const
{
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit)
        return {-1, {}, QString::fromUtf8(process.readAllStandardError())};
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

VelmoraProgramTest::Outcome VelmoraProgramTest::run(const QStringList &arguments) const
{
    QProcess process;
    start(process, arguments);
    return outcomeOf(process);
}

void VelmoraProgramTest::startViewer(QProcess &process) const
{
    const QString plugins = m_folder->filePath("only");
    QDir().mkpath(plugins);
    QFile::copy(files::fixture("TracingPlugin"), plugins + "/TracingPlugin.so");
    start(process, {"--simulate", "2", "--open-all", "--settings", settingsFile(), "--plugin-path", plugins});
    QTRY_VERIFY_WITH_TIMEOUT(traced().contains("loadSettings 0"), 30000);
}

QStringList VelmoraProgramTest::traced() const
{
    QFile file(m_folder->filePath("trace"));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(file.readAll()).split('\n', Qt::SkipEmptyParts);
}

void VelmoraProgramTest::helpAndVersion()
{
    m_environment.remove("QT_QPA_PLATFORM"); // neither needs a display
    const Outcome help = run({"--help"});
    QCOMPARE(help.exitCode, 0);
    QVERIFY2(help.output.contains("--interface-level"), qPrintable(help.output));
    const Outcome version = run({"--version"});
    QCOMPARE(version.exitCode, 0);
    QVERIFY2(QRegularExpression("^velmora \\d+\\.\\d+\\.\\d+\n$").match(version.output).hasMatch(),
             qPrintable(version.output));
}

void VelmoraProgramTest::wrongUse_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("expected");
    QTest::newRow("unknown option") << QStringList{"--bogus"} << "bogus";
    QTest::newRow("level") << QStringList{"--interface-level", "9"} << "1 to 3";
    QTest::newRow("listing") << QStringList{"--list-plugins", "--simulate", "99"} << "1 to 64";
    QTest::newRow("no camera") << QStringList{"--simulate", "0"} << "1 to 64";
    QTest::newRow("negative") << QStringList{"--simulate", "-1"} << "1 to 64";
    QTest::newRow("too many") << QStringList{"--simulate", "65"} << "1 to 64";
    QTest::newRow("no such scenario")
        << QStringList{"--simulate", "no-such-file.json"} << "no-such-file.json";
}

void VelmoraProgramTest::wrongUse()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, expected);
    m_environment.remove("QT_QPA_PLATFORM");
    const Outcome outcome = run(arguments);
    QCOMPARE(outcome.exitCode, 2);
    QVERIFY2(outcome.errors.contains(expected), qPrintable(outcome.errors));
    QVERIFY2(outcome.output.isEmpty(), qPrintable(outcome.output));
}

void VelmoraProgramTest::listsPlugins()
{
    m_environment.remove("QT_QPA_PLATFORM");
    const Outcome outcome = run({"--list-plugins", "--plugin-path", PLUGIN_FIXTURES});
    QVERIFY2(outcome.exitCode == 0, qPrintable(outcome.errors));
    const QString good = QStringLiteral("loaded\t%1\tTracing plug-in\t1.2.3\t");
    QVERIFY2(outcome.lines().contains(good.arg(files::fixture("TracingPlugin"))), qPrintable(outcome.output));
    QMap<QString, int> states;
    for (const QString &line : outcome.lines()) {
        const QStringList cells = line.split('\t');
        QCOMPARE(cells.size(), 5);
        states[cells[0]] += cells[1].startsWith(PLUGIN_FIXTURES);
    }
    QCOMPARE(states["foreign"], 1);
    QCOMPARE(states["init failed"], 4);
    QCOMPARE(states["load failed"], 1);
    QCOMPARE(traced(), QStringList({"init", "finish", "widget destroyed, 0 cameras open"}));
    QVERIFY(!QFile::exists(m_folder->filePath("config/Korvant/velmora/velmora.ini")));
}

void VelmoraProgramTest::listsNothingWithoutPlugins()
{
    const Outcome outcome = run({"--list-plugins", "--no-plugins", "--plugin-path", PLUGIN_FIXTURES});
    QCOMPARE(outcome.exitCode, 0);
    QCOMPARE(outcome.output, QString());
}

void VelmoraProgramTest::findsPluginsByTheVariable()
{
    m_environment.insert("VELMORA_PLUGIN_PATH", "/nowhere:" PLUGIN_FIXTURES);
    QVERIFY(run({"--list-plugins"}).output.contains(files::fixture("TracingPlugin")));
}

void VelmoraProgramTest::workingFolderIsNotSearched_data()
{
    QTest::addColumn<QString>("variable");
    QTest::newRow("unset") << QString();
    QTest::newRow("empty") << "";
    QTest::newRow("empty entries") << ":/nowhere:";
    QTest::newRow("dot") << ".:./";
    QTest::newRow("relative") << "plugins:../here";
}

void VelmoraProgramTest::workingFolderIsNotSearched()
{
    QFETCH(QString, variable);
    QDir folder(m_folder->path());
    QVERIFY(folder.mkpath("here/plugins"));
    for (const char *name : {"here/Planted.so", "here/plugins/Planted.so"})
        files::copyInto(*m_folder, "TracingPlugin", name);
    m_workingFolder = m_folder->filePath("here");
    if (!variable.isNull())
        m_environment.insert("VELMORA_PLUGIN_PATH", variable);
    m_environment.insert("QT_PLUGIN_PATH", ".");
    const Outcome outcome = run({"--list-plugins"});
    QCOMPARE(outcome.exitCode, 0);
    QVERIFY2(!outcome.output.contains("Planted"), qPrintable(outcome.output));
    QVERIFY(traced().isEmpty());
}

void VelmoraProgramTest::relativeFolderOfTheUserIsTaken()
{
    QVERIFY(QDir(m_folder->path()).mkpath("here"));
    files::copyInto(*m_folder, "TracingPlugin", "here/Mine.so");
    const Outcome outcome = run({"--list-plugins", "--plugin-path", "here"});
    QVERIFY2(outcome.output.contains("loaded\t" + m_folder->filePath("here/Mine.so")),
             qPrintable(outcome.output));
}

void VelmoraProgramTest::earlierFolderWins()
{
    QVERIFY(QDir(m_folder->path()).mkpath("a") && QDir(m_folder->path()).mkpath("b"));
    files::copyInto(*m_folder, "RefusingPlugin", "a/Same.so");
    files::copyInto(*m_folder, "TracingPlugin", "b/Same.so");
    const QString output = run({"--list-plugins", "--plugin-path", "a", "--plugin-path", "b"}).output;
    QCOMPARE(output.count("Same.so"), 1);
    QVERIFY2(output.contains("init failed\t" + m_folder->filePath("a/Same.so")), qPrintable(output));
}

void VelmoraProgramTest::signalEndsTheProgram_data()
{
    QTest::addColumn<int>("signalNumber");
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGTERM") << SIGTERM;
}

void VelmoraProgramTest::signalEndsTheProgram()
{
    QFETCH(int, signalNumber);
    QProcess process;
    startViewer(process);
    ::kill(static_cast<pid_t>(process.processId()), signalNumber);
    const Outcome outcome = outcomeOf(process);
    QVERIFY2(outcome.exitCode == 128 + signalNumber, qPrintable(outcome.errors));
    QCOMPARE(traced(), QStringList({"init", "loadSettings 0", "saveSettings", "finish",
                                    "widget destroyed, 2 cameras open"}));
    const QSettings settings(settingsFile(), QSettings::IniFormat);
    QVERIFY(!settings.value("MainWindow/Geometry").toByteArray().isEmpty());
    QCOMPARE(settings.value("Cameras/Open").toStringList().size(), 2);
    QCOMPARE(settings.value("Tracing/runs").toInt(), 1);
}

void VelmoraProgramTest::signalsBeyondTheFirst()
{
    QProcess process;
    startViewer(process);
    const auto id = static_cast<pid_t>(process.processId());
    // Into every stage of the way out, until it is gone.
    while (::kill(id, SIGTERM) == 0 && !process.waitForFinished(1)) {
    }
    QCOMPARE(process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1, 128 + SIGTERM);
    QCOMPARE(traced().last(), QString("widget destroyed, 2 cameras open"));
}

void VelmoraProgramTest::keepsDamagedSettings()
{
    files::write(settingsFile(), "a mess\n");
    QProcess process;
    startViewer(process);
    ::kill(static_cast<pid_t>(process.processId()), SIGTERM);
    const Outcome outcome = outcomeOf(process);
    QVERIFY2(outcome.errors.contains("settings.ini.bak"), qPrintable(outcome.errors));
    QCOMPARE(files::contents(settingsFile() + ".bak"), QByteArray("a mess\n"));
}

QTEST_GUILESS_MAIN(VelmoraProgramTest)
#include "VelmoraProgramTest.moc"
