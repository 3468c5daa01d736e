#include "host/app/ViewerOptions.h"

#include <QDir>
#include <QtTest>

using host::OptionsMessage;
using host::parseViewerArguments;
using host::ViewerOptions;

class ViewerOptionsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void defaults();
    void allOptions();
    void pathsAreAbsolute();
    void toolkitOptionsArePassedOver_data();
    void toolkitOptionsArePassedOver();
    void wrongUse_data();
    void wrongUse();
    void helpAndVersion();
};

namespace {

QStringList commandLine(const QString &arguments)
{
    return QStringList{"velmora"} + arguments.split(' ', Qt::SkipEmptyParts);
}

} // namespace

void ViewerOptionsTest::defaults()
{
    const auto parsed = parseViewerArguments(commandLine(""));
    const auto *options = std::get_if<ViewerOptions>(&parsed);
    QVERIFY(options);
    QVERIFY(options->pluginPaths.isEmpty());
    QVERIFY(options->loadPlugins);
    QVERIFY(!options->listPlugins);
    QVERIFY(options->simulate.isEmpty());
    QVERIFY(!options->openAll);
    QVERIFY(options->settingsFile.isEmpty());
    QVERIFY(!options->interfaceLevel);
}

void ViewerOptionsTest::allOptions()
{
    const auto parsed = parseViewerArguments(
        commandLine("--plugin-path /b --plugin-path /a --no-plugins --list-plugins --simulate two.json "
                    "--open-all --settings /tmp/x.ini --interface-level 2"));
    const auto *options = std::get_if<ViewerOptions>(&parsed);
    QVERIFY(options);
    QCOMPARE(options->pluginPaths, QStringList({"/b", "/a"}));
    QVERIFY(!options->loadPlugins);
    QVERIFY(options->listPlugins);
    QCOMPARE(options->simulate, QString("two.json"));
    QVERIFY(options->openAll);
    QCOMPARE(options->settingsFile, QString("/tmp/x.ini"));
    QCOMPARE(options->interfaceLevel.value(), 2);
}

void ViewerOptionsTest::pathsAreAbsolute()
{
    const auto parsed = parseViewerArguments(
        commandLine("--plugin-path . --plugin-path a/../b/ --settings my.ini --simulate s.json"));
    const auto *options = std::get_if<ViewerOptions>(&parsed);
    QVERIFY(options);
    const QString here = QDir::currentPath();
    QCOMPARE(options->pluginPaths, QStringList({here, here + "/b"}));
    QCOMPARE(options->settingsFile, here + "/my.ini");
    QCOMPARE(options->simulate, QString("s.json")); // may be a scenario's name
}

void ViewerOptionsTest::toolkitOptionsArePassedOver_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::newRow("platform") << "-platform offscreen --open-all";
    QTest::newRow("two dashes") << "--style fusion --open-all";
    QTest::newRow("session") << "--open-all -session 10_20";
    QTest::newRow("no value") << "-reverse --open-all";
}

void ViewerOptionsTest::toolkitOptionsArePassedOver()
{
    QFETCH(QString, arguments);
    const auto parsed = parseViewerArguments(commandLine(arguments));
    const auto *options = std::get_if<ViewerOptions>(&parsed);
    QVERIFY(options);
    QVERIFY(options->openAll);
}

void ViewerOptionsTest::wrongUse_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("expected");
    QTest::newRow("unknown option") << QStringList{"--bogus"} << "bogus";
    QTest::newRow("positional") << QStringList{"what"} << "what";
    QTest::newRow("value missing") << QStringList{"--settings"} << "settings";
    QTest::newRow("the toolkit's value missing") << QStringList{"--open-all", "--platform"} << "platform";
    QTest::newRow("empty folder") << QStringList{"--plugin-path", ""} << "--plugin-path";
    QTest::newRow("empty folder among others")
        << QStringList{"--plugin-path", "/a", "--plugin-path="} << "--plugin-path";
    QTest::newRow("empty settings") << QStringList{"--settings", ""} << "--settings";
    QTest::newRow("empty scenario") << QStringList{"--simulate", ""} << "--simulate";
    QTest::newRow("level 0") << QStringList{"--interface-level", "0"} << "1 to 3";
    QTest::newRow("level 4") << QStringList{"--interface-level", "4"} << "1 to 3";
    QTest::newRow("level text") << QStringList{"--interface-level", "expert"} << "expert";
    QTest::newRow("value for a switch") << QStringList{"--open-all=yes"} << "open-all";
}

void ViewerOptionsTest::wrongUse()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, expected);
    const auto parsed = parseViewerArguments(QStringList{"velmora"} + arguments);
    const auto *message = std::get_if<OptionsMessage>(&parsed);
    QVERIFY(message);
    QCOMPARE(message->exitCode, 2);
    QVERIFY2(message->text.contains(expected), qPrintable(message->text));
    QVERIFY2(message->text.endsWith("Try 'velmora --help'.\n"), qPrintable(message->text));
}

void ViewerOptionsTest::helpAndVersion()
{
    QCoreApplication::setApplicationVersion("7.8.9");
    const auto help = parseViewerArguments(commandLine("--help"));
    const auto *message = std::get_if<OptionsMessage>(&help);
    QVERIFY(message);
    QCOMPARE(message->exitCode, 0);
    for (const char *option : {"--plugin-path", "--no-plugins", "--list-plugins", "--simulate", "--open-all",
                               "--settings", "--interface-level", "--help", "--version"})
        QVERIFY2(message->text.contains(option), option);

    const auto version = parseViewerArguments(commandLine("--version"));
    message = std::get_if<OptionsMessage>(&version);
    QVERIFY(message);
    QCOMPARE(message->exitCode, 0);
    QCOMPARE(message->text, QString("velmora 7.8.9\n"));
}

QTEST_GUILESS_MAIN(ViewerOptionsTest)
#include "ViewerOptionsTest.moc"
