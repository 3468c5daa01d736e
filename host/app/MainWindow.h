#pragma once

#include <QMainWindow>

class QDockWidget;
class QMenu;

namespace host {

class CameraControl;
class CameraPanel;
class LiveView;
class LogStore;
class LogWindow;
class ParameterPanel;
class PluginCatalog;
class Theme;
class ViewerSettings;

/// What the window shows; all of it outlives the window.
struct ViewerParts
{
    ViewerSettings &settings;
    CameraControl &cameraControl;
    LogStore &log;
    Theme &theme;
    const PluginCatalog &plugins;
};

/// Puts the viewer's panels, menus and docks together. What they do is theirs.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(const ViewerParts &parts);
    ~MainWindow() override;

    CameraPanel &cameras() { return *m_cameras; }

    /// Makes a dock reachable from the menus. The window does so for its own.
    void addDockActions(QDockWidget *dock);

    /// The stored layout, or the first one. Once every plug-in has its dock.
    void restoreLayout();

Q_SIGNALS:
    /// The user or a signal closed the window: the program is to end.
    void closed();

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void createDocks();
    QDockWidget *addDock(Qt::DockWidgetArea area, QWidget *content, const char *name, const QString &title);
    void createMenus();
    void createCameraMenu();
    void createViewMenu();
    void createToolsMenu();
    void createHelpMenu();
    QMenu *createLevelMenu();
    QMenu *createThemeMenu();
    void showSettingsProblem();
    void setFirstDockSizes();
    void resetLayout();
    void storeLayout();
    void setFullScreen(bool on);

    ViewerParts m_parts;
    LiveView *m_live;
    CameraPanel *m_cameras;
    ParameterPanel *m_parameters;
    LogWindow *m_log;
    QMenu *m_dockMenu = nullptr;
    QMenu *m_goToMenu = nullptr;
    QByteArray m_firstState; ///< of the docks, before the user's was restored
    bool m_layoutStored = false;
};

} // namespace host
