// velmora-measure: the measurement engine without a screen.

#include "cli/MeasureSession.h"
#include "cli/Options.h"
#include "cli/Report.h"
#include "host/core/HostCore.h"
#include "host/program/SimulatedCameras.h"
#include "host/program/StopSignals.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTimer>

#include <fmt/format.h>

#include <cstdio>
#include <exception>
#include <utility>

namespace {

constexpr int exitFailure = 1;
constexpr int exitUsage = 2;
constexpr int exitSignalBase = 128; // the shell's convention for "ended by signal N"

void print(const std::string &text)
{
    fmt::print("{}", text);
    std::fflush(stdout); // progress shows at once, also in a pipe
}

void printError(const std::string &text)
{
    fmt::print(stderr, "velmora-measure: {}\n", text);
}

/// \param choice a number of cameras, a built-in scenario's name or a file
bool plugInSimulatedCameras(const QString &choice)
{
    host::BackendResult simulated = host::simulatedCameras(QFile::encodeName(choice).toStdString());
    if (!simulated.backend) {
        printError(simulated.error);
        return false;
    }
    host::HostCore::instance().addBackend(std::move(simulated.backend));
    return true;
}

/// Opens every plugged-in camera; false with a message when there is none.
bool openAllCameras()
{
    host::HostCore &core = host::HostCore::instance();
    int opened = 0;
    for (const host::HostCore::Camera &camera : core.cameras()) {
        if (core.open(camera.info.id))
            ++opened;
        else
            printError(fmt::format("cannot open {} ({})", camera.info.modelName, camera.info.serialNumber));
    }
    if (opened == 0)
        printError("no camera could be opened");
    return opened > 0;
}

/// Measures until the time is over, a stop signal arrives or no camera is left.
/// \return the program's exit code
int measure(const cli::Options &options)
{
    host::StopSignals stopSignals;
    cli::MeasureSession session(options);
    const int measuring = session.start();
    if (measuring == 0)
        printError("no camera could be measured; see the messages above");

    QElapsedTimer clock;
    clock.start();
    QTimer progress;
    QObject::connect(&progress, &QTimer::timeout, &session, [&] {
        const double seconds = static_cast<double>(clock.elapsed()) / 1000.0;
        print(cli::progressLine(options.mode, seconds, session.results()) + '\n');
    });
    QObject::connect(&stopSignals, &host::StopSignals::stopRequested, qApp, &QCoreApplication::quit);
    QObject::connect(&session, &cli::MeasureSession::allCamerasLost, qApp, &QCoreApplication::quit);
    QTimer end;
    end.setSingleShot(true);
    end.setTimerType(Qt::PreciseTimer);
    QObject::connect(&end, &QTimer::timeout, qApp, &QCoreApplication::quit);

    if (measuring > 0) {
        progress.start(1000);
        end.start(static_cast<int>(options.seconds * 1000.0));
        QCoreApplication::exec();
    }
    progress.stop();
    session.stop();

    print('\n' + cli::resultTable(options.mode, session.results()));
    if (stopSignals.received() != 0)
        return exitSignalBase + stopSignals.received();
    return measuring > 0 ? 0 : exitFailure;
}

int run(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("velmora-measure"));
    QCoreApplication::setApplicationVersion(QStringLiteral(VELMORA_VERSION));

    const auto parsed = cli::parseArguments(QCoreApplication::arguments());
    if (const auto *message = std::get_if<cli::Message>(&parsed)) {
        std::FILE *stream = message->exitCode == 0 ? stdout : stderr;
        fmt::print(stream, "{}", message->text.toStdString());
        return message->exitCode;
    }
    const auto &options = std::get<cli::Options>(parsed);
    if (!plugInSimulatedCameras(options.simulate))
        return exitUsage;

    const int exitCode = openAllCameras() ? measure(options) : exitFailure;
    host::HostCore::instance().shutDown();
    return exitCode;
}

} // namespace

int main(int argc, char *argv[])
{
    try {
        return run(argc, argv);
    } catch (const std::exception &problem) { // out of memory: cameras are restored on the way here
        std::fprintf(stderr, "velmora-measure: %s\n", problem.what());
        return exitFailure;
    }
}
