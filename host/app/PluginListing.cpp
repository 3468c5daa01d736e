#include "host/app/PluginListing.h"

#include "host/app/Application.h"
#include "host/app/CameraControl.h"
#include "host/app/PluginCatalog.h"
#include "host/app/PluginSearch.h"
#include "host/app/ViewerDelegate.h"
#include "host/app/ViewerOptions.h"
#include "host/app/ViewerSettings.h"

#include <QDebug>
#include <QLocale>
#include <QMainWindow>

#include <cstdio>

namespace host {

namespace {

QString lineFor(const PluginEntry &entry)
{
    QStringList cells{pluginStateName(entry.state), entry.path, entry.name, entry.version, entry.reason};
    for (QString &cell : cells)
        cell = cell.simplified();
    return cells.join(QLatin1Char('\t'));
}

} // namespace

int listPlugins(int &argc, char **argv, const ViewerOptions &options)
{
    // Plug-ins make widgets when they start; these need a platform, not a screen.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // The states are for scripts, too: plug-ins must not mix another language in.
    QLocale::setDefault(QLocale::c());
    int programOnly = argc > 0 ? 1 : 0;
    const Application application(programOnly, argv);

    ViewerSettings settings(options.settingsFile);
    if (!settings.problem().isEmpty())
        qWarning().noquote() << settings.problem();
    CameraControl cameraControl;
    ViewerDelegate delegate(settings, cameraControl);
    QMainWindow window; // for what plug-ins dock; never shown
    delegate.setWindow(&window);
    PluginCatalog plugins;
    if (options.loadPlugins) {
        plugins.load(PluginSearchPath::ofThisProgram(options.pluginPaths).folders(),
                     settings.disabledPlugins());
    }
    for (const PluginEntry &entry : plugins.entries())
        std::printf("%s\n", qPrintable(lineFor(entry)));
    std::fflush(stdout);
    plugins.finish();
    return 0;
}

} // namespace host
