#include "bench/scale/Options.h"

#include <QCommandLineParser>

#include <cstdio>
#include <cstdlib>

namespace scale {

namespace {

constexpr const char *description =
    "Runs the viewer with the plug-in and simulated cameras, measuring with live graphs, off\n"
    "screen, and prints as JSON what that costs: the time of a refresh, frames lost, processor\n"
    "time by kind of thread, and how long the engines' mutexes were held.\n\n"
    "Mutexes are observed from outside by a thread that tries to take them about every 20\n"
    "microseconds; the tries' real distances are printed along. A hold is at least as long as\n"
    "the time between the first and the last failed try, at most as long as that between the\n"
    "successful ones before and after; holds with less than a try between them count as one.";

/// A number within the bounds, or the end.
double number(const QCommandLineParser &parser, const QString &name, double least, double most)
{
    bool good = false;
    const double value = parser.value(name).toDouble(&good);
    if (good && value >= least && value <= most)
        return value;
    std::fprintf(stderr, "velmora-scale: --%s: a number from %g to %g\n", qPrintable(name), least, most);
    std::exit(2);
}

} // namespace

Options parseOptions(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QString::fromLatin1(description));
    parser.addHelpOption();
    const auto add = [&parser](const char *name, const char *text, const char *value = nullptr) {
        parser.addOption({QString::fromLatin1(name), QString::fromLatin1(text),
                          value ? QString::fromLatin1(value) : QString()});
    };
    add("holds", "two cameras for 60 seconds, unless told otherwise");
    add("edit", "edit the required throughput of a camera with 200 million samples, unless told "
                "otherwise, all of them in view, before and during a measurement");
    add("cameras", "how many; 1", "N");
    add("seconds", "how long to measure, after the start; 30", "S");
    add("rate", "of each link; 400", "MBps");
    add("capacity", "of each camera's records, which are full from the start; 10000000", "SAMPLES");
    add("period", "distance of two samples; 1024", "BYTES");
    add("view", "width of the time axis, 0 for all records; 20", "SECONDS");
    add("poll",
        "pause between two tries, 0 for none, which takes a processor; 20, "
        "with --holds and --edit 0",
        "MICROSECONDS");
    parser.process(arguments);

    Options options;
    if (parser.isSet(QStringLiteral("holds")) || parser.isSet(QStringLiteral("edit")))
        options.pollMicroseconds = 0; // pauses hide the moments in which a mutex is free
    if (parser.isSet(QStringLiteral("holds"))) {
        options.cameras = 2;
        options.seconds = 60.0;
    }
    if (parser.isSet(QStringLiteral("edit"))) {
        options.run = Options::Run::Edit;
        options.capacity = 200'000'000;
        options.viewSeconds = 0.0;
    }
    const auto take = [&parser](auto &option, const char *name, double least, double most) {
        const QString text = QString::fromLatin1(name);
        if (parser.isSet(text))
            option =
                static_cast<std::remove_reference_t<decltype(option)>>(number(parser, text, least, most));
    };
    take(options.cameras, "cameras", 1, 64);
    take(options.seconds, "seconds", 1, 86400);
    take(options.rateMBps, "rate", 1, 10'000);
    take(options.capacity, "capacity", 10'000, 1e9);
    take(options.samplePeriod, "period", 8, 51200);
    take(options.viewSeconds, "view", 0, 86400);
    take(options.pollMicroseconds, "poll", 0, 1e6);
    return options;
}

} // namespace scale
