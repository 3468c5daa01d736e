#include "host/app/MainWindow.h"

#include "host/app/CameraPanel.h"
#include "host/app/LiveView.h"
#include "host/app/LogWindow.h"
#include "host/app/ParameterPanel.h"
#include "host/app/ViewerSettings.h"
#include "host/app/WindowLayout.h"

#include <QCloseEvent>
#include <QDockWidget>
#include <QLabel>
#include <QStatusBar>

namespace host {

namespace {

// Raise when docks are renamed or removed: an older layout is then not restored.
constexpr int layoutVersion = 1;

constexpr const char *camerasDock = "dockCameras";
constexpr const char *parametersDock = "dockParameters";
constexpr const char *logDock = "dockLog";

constexpr int firstSideWidth = 360;
constexpr int firstLogHeight = 200;
// Of the window's height, for the tools of plug-ins: their graphs need room.
constexpr double firstToolShare = 0.6;

} // namespace

MainWindow::MainWindow(const ViewerParts &parts)
    : m_parts(parts)
    , m_live(new LiveView(parts.cameraControl))
    , m_cameras(new CameraPanel(parts.cameraControl))
    , m_parameters(new ParameterPanel(parts.cameraControl))
    , m_log(new LogWindow(parts.log))
{
    setObjectName(QStringLiteral("mainWindow"));
    setWindowTitle(tr("Velmora"));
    setDockOptions(AnimatedDocks | AllowNestedDocks | AllowTabbedDocks);
    setCentralWidget(m_live);
    createMenus();
    createDocks();

    const auto show = [this](ZUCORE_HANDLE camera) {
        m_live->setCamera(camera);
        m_parameters->setCamera(camera);
    };
    connect(m_cameras, &CameraPanel::selectedCameraChanged, this, show);
    show(m_cameras->selectedCamera());
    // The panel may lie behind another one.
    connect(m_cameras, &CameraPanel::problemTold, this,
            [this](const QString &problem) { statusBar()->showMessage(problem); });

    showSettingsProblem();
}

MainWindow::~MainWindow() = default;

void MainWindow::createDocks()
{
    QDockWidget *cameras = addDock(Qt::LeftDockWidgetArea, m_cameras, camerasDock, tr("Cameras"));
    QDockWidget *parameters = addDock(Qt::LeftDockWidgetArea, m_parameters, parametersDock, tr("Parameters"));
    tabifyDockWidget(cameras, parameters);
    cameras->raise();
    addDock(Qt::BottomDockWidgetArea, m_log, logDock, tr("Log"));
}

QDockWidget *MainWindow::addDock(Qt::DockWidgetArea area, QWidget *content, const char *name,
                                 const QString &title)
{
    auto *dock = new QDockWidget(title, this);
    dock->setObjectName(QLatin1String(name));
    dock->setWidget(content);
    addDockWidget(area, dock);
    addDockActions(dock);
    return dock;
}

void MainWindow::showSettingsProblem()
{
    // A label, as messages go with the next menu that is opened.
    const QString problem = m_parts.settings.problem();
    auto *label = new QLabel(problem.isEmpty() ? tr("Ready") : problem);
    label->setObjectName(QStringLiteral("statusText"));
    label->setToolTip(problem);
    label->setIndent(4);
    label->setSizePolicy(QSizePolicy::Ignored,
                         QSizePolicy::Preferred); // a long one must not widen the window
    statusBar()->addWidget(label, 1);
}

void MainWindow::restoreLayout()
{
    restoreWindowPlace(*this, m_parts.settings.windowGeometry());
    setFirstDockSizes();
    m_firstState = saveState(layoutVersion);
    restoreState(m_parts.settings.windowState(), layoutVersion);
}

void MainWindow::setFirstDockSizes()
{
    auto *cameras = findChild<QDockWidget *>(QLatin1String(camerasDock));
    auto *log = findChild<QDockWidget *>(QLatin1String(logDock));
    const bool withTools = !tabifiedDockWidgets(log).isEmpty();
    const int bottomHeight = withTools ? static_cast<int>(height() * firstToolShare) : firstLogHeight;
    resizeDocks({log}, {bottomHeight}, Qt::Vertical);
    resizeDocks({cameras}, {firstSideWidth}, Qt::Horizontal);
}

void MainWindow::resetLayout()
{
    restoreState(m_firstState, layoutVersion);
    setFirstDockSizes();
}

void MainWindow::storeLayout()
{
    m_parts.settings.setWindowLayout(saveGeometry(), saveState(layoutVersion));
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    // A second close, by a signal, would store the layout of a hidden window.
    if (!m_layoutStored)
        storeLayout();
    m_layoutStored = true;
    event->accept();
    Q_EMIT closed();
}

} // namespace host
