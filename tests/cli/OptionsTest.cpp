#include "cli/Options.h"

#include <QtTest>

using cli::Message;
using cli::Options;

class OptionsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void defaults();
    void allOptions();
    void wrongUse_data();
    void wrongUse();
    void helpAndVersion_data();
    void helpAndVersion();
};

namespace {

QStringList commandLine(const QString &arguments)
{
    return QStringList{QStringLiteral("velmora-measure")} +
           arguments.split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

} // namespace

void OptionsTest::defaults()
{
    const auto parsed = cli::parseArguments(commandLine(QStringLiteral("--simulate 2")));
    const auto *options = std::get_if<Options>(&parsed);
    QVERIFY(options);
    QCOMPARE(options->simulate, QStringLiteral("2"));
    QCOMPARE(options->seconds, 5.0);
    QCOMPARE(options->mode, MeasureModeThroughput);
    QCOMPARE(options->samplePeriod, 4096U);
    QCOMPARE(options->capacity, 10'000'000LL);
    QCOMPARE(options->timestampOrigin, TimestampOriginCamera);
    QCOMPARE(options->resetBufferLevel, true);
}

void OptionsTest::allOptions()
{
    const auto parsed = cli::parseArguments(
        commandLine(QStringLiteral("--simulate x.json --seconds 0.5 --mode acquisition --sample-period 8 "
                                   "--capacity 2000 --timestamps computer --keep-buffer-level")));
    const auto *options = std::get_if<Options>(&parsed);
    QVERIFY(options);
    QCOMPARE(options->simulate, QStringLiteral("x.json"));
    QCOMPARE(options->seconds, 0.5);
    QCOMPARE(options->mode, MeasureModeAcquisition);
    QCOMPARE(options->samplePeriod, 8U);
    QCOMPARE(options->capacity, 2'000'000'000LL);
    QCOMPARE(options->timestampOrigin, TimestampOriginComputer);
    QCOMPARE(options->resetBufferLevel, false);
}

void OptionsTest::wrongUse_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<QString>("expected");
    QTest::newRow("no cameras") << ""
                                << "--simulate";
    QTest::newRow("unknown option") << "--simulate 1 --bogus"
                                    << "bogus";
    QTest::newRow("positional") << "--simulate 1 what"
                                << "what";
    QTest::newRow("value missing") << "--simulate"
                                   << "simulate";
    QTest::newRow("seconds text") << "--simulate 1 --seconds x"
                                  << "seconds";
    QTest::newRow("seconds zero") << "--simulate 1 --seconds 0"
                                  << "seconds";
    QTest::newRow("seconds nan") << "--simulate 1 --seconds nan"
                                 << "seconds";
    QTest::newRow("seconds huge") << "--simulate 1 --seconds 1e9"
                                  << "seconds";
    QTest::newRow("mode") << "--simulate 1 --mode fast"
                          << "fast";
    QTest::newRow("period too small") << "--simulate 1 --sample-period 7"
                                      << "sample-period";
    QTest::newRow("period negative") << "--simulate 1 --sample-period -8"
                                     << "sample-period";
    QTest::newRow("capacity zero") << "--simulate 1 --capacity 0"
                                   << "capacity";
    QTest::newRow("capacity too large") << "--simulate 1 --capacity 2001"
                                        << "capacity";
    QTest::newRow("time stamps") << "--simulate 1 --timestamps gps"
                                 << "gps";
}

void OptionsTest::wrongUse()
{
    QFETCH(QString, arguments);
    QFETCH(QString, expected);
    const auto parsed = cli::parseArguments(commandLine(arguments));
    const auto *message = std::get_if<Message>(&parsed);
    QVERIFY(message);
    QCOMPARE(message->exitCode, 2);
    QVERIFY2(message->text.contains(expected), qPrintable(message->text));
}

void OptionsTest::helpAndVersion_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<QString>("expected");
    QTest::newRow("help") << "--help"
                          << "--simulate";
    QTest::newRow("version") << "--version"
                             << "velmora-measure";
}

void OptionsTest::helpAndVersion()
{
    QFETCH(QString, arguments);
    QFETCH(QString, expected);
    const auto parsed = cli::parseArguments(commandLine(arguments));
    const auto *message = std::get_if<Message>(&parsed);
    QVERIFY(message);
    QCOMPARE(message->exitCode, 0);
    QVERIFY2(message->text.contains(expected), qPrintable(message->text));
}

QTEST_GUILESS_MAIN(OptionsTest)
#include "OptionsTest.moc"
