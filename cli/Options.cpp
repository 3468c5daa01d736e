#include "cli/Options.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <optional>

namespace cli {

namespace {

constexpr int usageError = 2;
constexpr long long million = 1'000'000;

struct Declarations
{
    QCommandLineOption simulate{
        QStringLiteral("simulate"),
        QStringLiteral("Measure simulated cameras: a number of cameras, the name of a "
                       "built-in scenario, or a scenario file."),
        QStringLiteral("N|NAME|FILE")};
    QCommandLineOption seconds{QStringLiteral("seconds"), QStringLiteral("Length of the measurement (5)."),
                               QStringLiteral("S"), QStringLiteral("5")};
    QCommandLineOption mode{QStringLiteral("mode"),
                            QStringLiteral("throughput: time stamps in transport data (default); "
                                           "acquisition: normal streaming with the camera's counters."),
                            QStringLiteral("MODE"), QStringLiteral("throughput")};
    QCommandLineOption samplePeriod{QStringLiteral("sample-period"),
                                    QStringLiteral("Bytes between two samples of a frame (4096)."),
                                    QStringLiteral("BYTES"), QStringLiteral("4096")};
    QCommandLineOption capacity{QStringLiteral("capacity"),
                                QStringLiteral("Million samples kept per camera, 1 to 2000 (10)."),
                                QStringLiteral("M"), QStringLiteral("10")};
    QCommandLineOption timestamps{QStringLiteral("timestamps"),
                                  QStringLiteral("Frame time stamps to use: camera (default) or computer."),
                                  QStringLiteral("ORIGIN"), QStringLiteral("camera")};
    QCommandLineOption keepLevel{QStringLiteral("keep-buffer-level"),
                                 QStringLiteral("Carry the modelled buffer level from frame to frame instead "
                                                "of starting each frame with an empty buffer.")};
    QCommandLineOption help{{QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Show this text.")};
    QCommandLineOption version{{QStringLiteral("v"), QStringLiteral("version")},
                               QStringLiteral("Show the version.")};

    void addTo(QCommandLineParser &parser) const
    {
        parser.addOptions(
            {simulate, seconds, mode, samplePeriod, capacity, timestamps, keepLevel, help, version});
    }
};

/// Index of `text` in `choices`.
std::optional<int> choice(const QString &text, const QStringList &choices)
{
    const int index = choices.indexOf(text);
    return index < 0 ? std::nullopt : std::optional<int>(index);
}

QString wrongValue(const QCommandLineOption &option, const QString &value, const QString &expected)
{
    return QStringLiteral("--%1: \"%2\" is not %3").arg(option.names().constFirst(), value, expected);
}

/// Fills `options`; returns what is wrong, or an empty text.
QString readValues(const QCommandLineParser &parser, const Declarations &declared, Options &options)
{
    options.simulate = parser.value(declared.simulate);
    if (options.simulate.isEmpty())
        return QStringLiteral("no cameras to measure: give --simulate");
    options.resetBufferLevel = !parser.isSet(declared.keepLevel);

    bool ok = false;
    const QString seconds = parser.value(declared.seconds);
    options.seconds = seconds.toDouble(&ok);
    if (!ok || !(options.seconds > 0.0 && options.seconds <= 86400.0))
        return wrongValue(declared.seconds, seconds, QStringLiteral("a number of seconds up to 86400"));

    const QString period = parser.value(declared.samplePeriod);
    options.samplePeriod = period.toUInt(&ok);
    if (!ok || options.samplePeriod < 8)
        return wrongValue(declared.samplePeriod, period, QStringLiteral("a number of bytes from 8 on"));

    const QString capacity = parser.value(declared.capacity);
    const int millions = capacity.toInt(&ok);
    if (!ok || millions < 1 || millions > 2000)
        return wrongValue(declared.capacity, capacity, QStringLiteral("a number from 1 to 2000"));
    options.capacity = millions * million;

    const QString mode = parser.value(declared.mode);
    const auto modeIndex = choice(mode, {QStringLiteral("throughput"), QStringLiteral("acquisition")});
    if (!modeIndex)
        return wrongValue(declared.mode, mode, QStringLiteral("throughput or acquisition"));
    options.mode = static_cast<MeasureMode>(*modeIndex);

    const QString origin = parser.value(declared.timestamps);
    const auto originIndex = choice(origin, {QStringLiteral("camera"), QStringLiteral("computer")});
    if (!originIndex)
        return wrongValue(declared.timestamps, origin, QStringLiteral("camera or computer"));
    options.timestampOrigin = static_cast<ExTimestampOrigin>(*originIndex);
    return {};
}

} // namespace

std::variant<Options, Message> parseArguments(const QStringList &arguments)
{
    const Declarations declared;
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Measures what cameras deliver over their links, without a screen."));
    declared.addTo(parser);

    const auto usage = [](const QString &problem) {
        return Message{QStringLiteral("velmora-measure: %1\nTry 'velmora-measure --help'.\n").arg(problem),
                       usageError};
    };
    if (!parser.parse(arguments))
        return usage(parser.errorText());
    if (parser.isSet(declared.help))
        return Message{parser.helpText(), 0};
    if (parser.isSet(declared.version)) {
        return Message{QStringLiteral("velmora-measure %1\n").arg(QCoreApplication::applicationVersion()), 0};
    }
    if (!parser.positionalArguments().isEmpty())
        return usage(
            QStringLiteral("unexpected argument \"%1\"").arg(parser.positionalArguments().constFirst()));

    Options options;
    const QString problem = readValues(parser, declared, options);
    if (!problem.isEmpty())
        return usage(problem);
    return options;
}

} // namespace cli
