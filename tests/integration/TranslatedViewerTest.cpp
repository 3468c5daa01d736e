// velmora with the plug-in, as users of several languages start it.

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

class TranslatedViewerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void speaksTheUsersLanguage_data();
    void speaksTheUsersLanguage();
    void listingStaysEnglish();

private:
    struct Outcome
    {
        int exitCode = -1;
        QString output;
    };
    /// \param variables of the locale, "NAME=VALUE"; no other ones are set
    Outcome run(const QStringList &variables, const QStringList &arguments) const;

    QTemporaryDir m_folder;
};

TranslatedViewerTest::Outcome TranslatedViewerTest::run(const QStringList &variables,
                                                        const QStringList &arguments) const
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *name : {"LANG", "LANGUAGE", "LC_ALL", "LC_MESSAGES", "VELMORA_PLUGIN_PATH"})
        environment.remove(name);
    for (const QString &variable : variables)
        environment.insert(variable.section('=', 0, 0), variable.section('=', 1));
    environment.insert("XDG_CONFIG_HOME", m_folder.path());
    environment.insert("VELMORA_TEST_TEXTS", m_folder.filePath("texts"));
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QStringLiteral(VELMORA),
                  QStringList{"--plugin-path", QStringLiteral(PLUGIN_FOLDER)} + arguments);
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit)
        return {-1, QString::fromUtf8(process.readAll())};
    return {process.exitCode(), QString::fromUtf8(process.readAll())};
}

void TranslatedViewerTest::speaksTheUsersLanguage_data()
{
    QTest::addColumn<QStringList>("variables");
    QTest::addColumn<bool>("german");
    QTest::newRow("German locale") << QStringList{"LANG=de_DE.UTF-8"} << true;
    QTest::newRow("Austrian messages") << QStringList{"LANG=en_US.UTF-8", "LC_MESSAGES=de_AT.UTF-8"} << true;
    QTest::newRow("German, locale not installed") << QStringList{"LANG=C.UTF-8", "LANGUAGE=de"} << true;
    QTest::newRow("none") << QStringList{} << false;
    QTest::newRow("C") << QStringList{"LC_ALL=C.UTF-8"} << false;
    QTest::newRow("English") << QStringList{"LANG=en_GB.UTF-8"} << false;
    QTest::newRow("English before German") << QStringList{"LANG=de_DE.UTF-8", "LANGUAGE=en:de"} << false;
    QTest::newRow("no catalogue") << QStringList{"LANG=fi_FI.UTF-8"} << false;
}

void TranslatedViewerTest::speaksTheUsersLanguage()
{
    QFETCH(QStringList, variables);
    QFETCH(bool, german);
    const Outcome outcome =
        run(variables, {"--plugin-path", QStringLiteral(TEXTS_PLUGIN_FOLDER), "--simulate", "1", "--open-all",
                        "--settings", m_folder.filePath("ini")});
    QVERIFY2(outcome.exitCode == 0, qPrintable(outcome.output));
    QFile file(m_folder.filePath("texts"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QStringList texts = QString::fromUtf8(file.readAll()).split('\n');

    // The viewer's, the plug-in's (form, code, table header), and the toolkit's.
    const QStringList english{"&Quit",          "Cameras",     "Data Throughput Graph",
                              "Reset Zoom",     "Start",       "Average\\nthroughput [MB/s]",
                              "Min throughput", "Export data", "Cancel"};
    const QStringList translated{"&Beenden",          "Kameras",     "Datendurchsatz-Diagramm",
                                 "Zoom zurücksetzen", "Starten",     "Mittlerer\\nDurchsatz [MB/s]",
                                 "Min. Durchsatz",    "Datenexport", "Abbrechen"};
    for (const QString &text : german ? translated : english)
        QVERIFY2(texts.contains(text), qPrintable(text));
    for (const QString &text : german ? english : translated)
        QVERIFY2(!texts.contains(text), qPrintable(text));
}

void TranslatedViewerTest::listingStaysEnglish()
{
    const Outcome outcome = run({"LANG=de_DE.UTF-8"}, {"--list-plugins"});
    QCOMPARE(outcome.exitCode, 0);
    const QRegularExpression line("^loaded\t.*\tData Throughput Graph Tool\t",
                                  QRegularExpression::MultilineOption);
    QVERIFY2(outcome.output.contains(line), qPrintable(outcome.output));
}

QTEST_GUILESS_MAIN(TranslatedViewerTest)
#include "TranslatedViewerTest.moc"
