#include "host/app/Viewer.h"

#include "host/app/CameraPanel.h"
#include "host/app/PluginSearch.h"
#include "host/core/HostCore.h"

#include <QApplication>
#include <QDebug>
#include <QDockWidget>
#include <QMetaEnum>

namespace host {

namespace {

constexpr int exitSignalBase = 128; // the shell's convention for "ended by signal N"

} // namespace

Viewer::Viewer(const ViewerOptions &options, std::vector<std::unique_ptr<CameraBackend>> backends)
    // The parts made from here on have something to say already.
    : m_settings((m_log.install(), options.settingsFile))
    , m_delegate(m_settings, m_cameraControl)
{
    if (!m_settings.problem().isEmpty())
        qWarning().noquote() << m_settings.problem();
    if (options.interfaceLevel)
        m_settings.overrideInterfaceLevel(*options.interfaceLevel);
    applyTheme();
    for (auto &backend : backends)
        HostCore::instance().addBackend(std::move(backend));

    m_window =
        std::make_unique<MainWindow>(ViewerParts{m_settings, m_cameraControl, m_log, m_theme, m_plugins});
    // quit() also leaves dialogs that run their own event loop.
    QObject::connect(m_window.get(), &MainWindow::closed, qApp, &QCoreApplication::quit);
    QObject::connect(&m_stopSignals, &StopSignals::stopRequested, m_window.get(), &QWidget::close);
    m_delegate.setWindow(m_window.get());
    QObject::connect(&m_delegate, &ViewerDelegate::dockAdded, m_window.get(), &MainWindow::addDockActions);
    if (options.loadPlugins)
        loadPlugins(options);
    m_window->restoreLayout();

    m_window->cameras().openCameras(m_settings.openCameras());
    if (options.openAll)
        m_window->cameras().openAll();
}

Viewer::~Viewer()
{
    shutDown();
}

void Viewer::applyTheme()
{
    const QByteArray name = m_settings.theme().toLatin1();
    bool known = false;
    const int choice = QMetaEnum::fromType<Theme::Choice>().keyToValue(name.constData(), &known);
    m_theme.apply(known ? static_cast<Theme::Choice>(choice) : Theme::Choice::System);
}

void Viewer::loadPlugins(const ViewerOptions &options)
{
    m_plugins.load(PluginSearchPath::ofThisProgram(options.pluginPaths).folders(),
                   m_settings.disabledPlugins());
    m_plugins.loadSettings(*m_settings.store());
}

void Viewer::shutDown()
{
    if (!m_window)
        return;
    m_window->close();
    m_settings.setOpenCameras(m_window->cameras().openCameraIds());
    m_plugins.saveSettings(*m_settings.store());
    const QString problem = m_settings.save();
    if (!problem.isEmpty())
        qWarning().noquote() << problem;
    m_plugins.finish();
    m_window.reset();
    HostCore::instance().shutDown();
}

int Viewer::run()
{
    m_window->show();
    // One that came in an event loop of a plug-in's start is no longer pending.
    if (m_stopSignals.received() == 0)
        QCoreApplication::exec();
    shutDown();
    return m_stopSignals.received() == 0 ? 0 : exitSignalBase + m_stopSignals.received();
}

} // namespace host
