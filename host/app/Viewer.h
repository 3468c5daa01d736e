#pragma once

#include "host/app/CameraControl.h"
#include "host/app/LogStore.h"
#include "host/app/MainWindow.h"
#include "host/app/PluginCatalog.h"
#include "host/app/Theme.h"
#include "host/app/ViewerDelegate.h"
#include "host/app/ViewerOptions.h"
#include "host/app/ViewerSettings.h"
#include "host/core/CameraBackend.h"
#include "host/program/StopSignals.h"

#include <memory>
#include <vector>

namespace host {

/// The running program: makes its parts in the order in which they need each
/// other and ends them in the reverse one. One at a time, within the life of a
/// QApplication.
class Viewer
{
public:
    Viewer(const ViewerOptions &options, std::vector<std::unique_ptr<CameraBackend>> backends);
    /// As shutDown(), if that was not called.
    ~Viewer();
    Viewer(const Viewer &) = delete;
    Viewer &operator=(const Viewer &) = delete;

    /// Shows the window, until it is closed or a signal ends the program.
    /// \return the program's exit code: 0, or 128 + the signal's number
    int run();

    /// Closes the window and stores all settings; ends the plug-ins; destroys the
    /// window with the docked widgets, which put their cameras back into the
    /// former state; closes the cameras.
    void shutDown();

    MainWindow &window() { return *m_window; }

private:
    void applyTheme();
    void loadPlugins(const ViewerOptions &options);

    /// Goes last: a second signal must not end the program while the first one's
    /// way out is under way.
    StopSignals m_stopSignals;
    LogStore m_log;
    ViewerSettings m_settings;
    Theme m_theme;
    CameraControl m_cameraControl;
    ViewerDelegate m_delegate;
    PluginCatalog m_plugins;
    std::unique_ptr<MainWindow> m_window; ///< null after shutDown()
};

} // namespace host
