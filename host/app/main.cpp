// velmora: shows cameras and runs plug-ins that use them.

#include "host/app/Application.h"
#include "host/app/PluginListing.h"
#include "host/app/Translation.h"
#include "host/app/Viewer.h"
#include "host/app/ViewerOptions.h"
#include "host/program/SimulatedCameras.h"

#include <QFile>
#include <QLocale>

#include <cstdio>
#include <exception>

namespace {

using host::OptionsMessage;
using host::ViewerOptions;
using Backends = std::vector<std::unique_ptr<host::CameraBackend>>;

constexpr int exitFailure = 1;

int print(const OptionsMessage &message)
{
    std::fputs(qPrintable(message.text), message.exitCode == 0 ? stdout : stderr);
    return message.exitCode;
}

/// Before any QApplication exists: none of this needs a display.
std::variant<ViewerOptions, OptionsMessage> readCommandLine(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("Korvant"));
    QCoreApplication::setApplicationName(QStringLiteral("velmora"));
    QCoreApplication::setApplicationVersion(QStringLiteral(VELMORA_VERSION));
    return host::parseViewerArguments(QCoreApplication::arguments());
}

/// Every source of cameras that the options ask for.
std::variant<Backends, OptionsMessage> makeBackends(const ViewerOptions &options)
{
    Backends backends;
    if (!options.simulate.isEmpty()) {
        host::BackendResult simulated =
            host::simulatedCameras(QFile::encodeName(options.simulate).toStdString());
        if (!simulated.backend)
            return host::usageMessage(QString::fromLocal8Bit(simulated.error.c_str()));
        backends.push_back(std::move(simulated.backend));
    }
    return backends;
}

int run(int argc, char *argv[])
{
    const auto parsed = readCommandLine(argc, argv);
    if (const auto *message = std::get_if<OptionsMessage>(&parsed))
        return print(*message);
    const auto &options = std::get<ViewerOptions>(parsed);
    auto made = makeBackends(options);
    if (const auto *message = std::get_if<OptionsMessage>(&made))
        return print(*message);
    if (options.listPlugins)
        return host::listPlugins(argc, argv, options);

    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    // Whole factors keep lines sharp; what lies between, as a screen of 100 dpi,
    // is left to the fonts, which follow the resolution by themselves.
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(
        Qt::HighDpiScaleFactorRoundingPolicy::RoundPreferFloor);
    const host::Application application(argc, argv);
    const host::Translation translation(QLocale().uiLanguages());
    host::Viewer viewer(options, std::move(std::get<Backends>(made)));
    return viewer.run();
}

} // namespace

int main(int argc, char *argv[])
{
    try {
        return run(argc, argv);
    } catch (const std::exception &problem) { // out of memory: cameras are restored on the way here
        std::fprintf(stderr, "velmora: %s\n", problem.what());
        return exitFailure;
    } catch (...) {
        std::fputs("velmora: an exception of unknown type\n", stderr);
        return exitFailure;
    }
}
