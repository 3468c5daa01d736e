#include "bench/NavigationWindow.h"

#include "bench/reference/RecordedEngine.h"
#include "host/app/PlotDecoration.h"
#include "host/core/HostCore.h"
#include "host/core/simulation/FreeRunningClock.h"
#include "host/core/simulation/SimulationBackend.h"
#include "host/gui/AppDelegateRegistration.h"

namespace bench {

namespace {

/// Only what the window asks for while nothing measures.
class Delegate final : public IxAppDelegate
{
public:
    QString defaultSavePath() override { return {}; }
    void setDefaultSavePath(const QString &) override {}
    void addPluginWidget(QWidget *, Qt::DockWidgetArea, Qt::DockWidgetAreas, int) override {}
    void setCameraControlEnabled(void *, bool) override {}
    int interfaceLevel() override { return 3; }
    void registerPlotWidget(QCustomPlot *plot) override { decorate(plot); }
};

using Lines = QMap<void *, CxCameraLineData *>;

/// The window lets nobody at its engines, and a recording of this size cannot
/// be measured first. Explicit instantiation may name private members.
template <Lines CxDataGraphForm::*member> struct EngineAccess
{
    friend Lines &enginesOf(CxDataGraphForm &form) { return form.*member; }
};
template struct EngineAccess<&CxDataGraphForm::m_cameraLines>;
Lines &enginesOf(CxDataGraphForm &form);

constexpr int attempts = 1000;

} // namespace

void decorate(QCustomPlot *plot)
{
    new host::PlotDecoration(plot);
}

NavigationWindow::NavigationWindow(const reference::Recording &recording, quint64 bufferSize)
{
    static Delegate delegate;
    host::setAppDelegate(&delegate);
    openCameras();
    m_form = std::make_unique<CxDataGraphForm>();
    m_plot = m_form->findChild<QCustomPlot *>(QStringLiteral("plot"));
    // A tick would redraw the plot in the middle of a benchmark.
    m_form->findChild<QCheckBox *>(QStringLiteral("checkBoxLiveGraph"))->setChecked(false);
    for (CxCameraLineData *line : enginesOf(*m_form))
        reference::fillEngine(*line, recording, bufferSize);
    m_form->show();
    resizePlot();
    QObject::connect(m_plot, &QCustomPlot::afterReplot, m_form.get(), [this] { ++m_replots; });
    show(recording);
}

NavigationWindow::~NavigationWindow()
{
    m_form.reset();
    host::HostCore::instance().shutDown();
    host::setAppDelegate(nullptr);
}

void NavigationWindow::openCameras()
{
    host::HostCore &core = host::HostCore::instance();
    core.addBackend(std::make_unique<host::SimulationBackend>(host::defaultScenario(cameras),
                                                              std::make_shared<host::FreeRunningClock>(0)));
    for (const host::HostCore::Camera &camera : core.cameras())
        core.open(camera.info.id);
}

void NavigationWindow::resizePlot()
{
    for (int attempt = 0; attempt < 3 && m_plot->size() != QSize(width, height); ++attempt) {
        QApplication::processEvents();
        m_form->resize(m_form->size() + QSize(width, height) - m_plot->size());
    }
    QApplication::processEvents();
    if (m_plot->size() != QSize(width, height))
        qFatal("the plot has %d x %d pixels", m_plot->width(), m_plot->height());
}

void NavigationWindow::show(const reference::Recording &recording)
{
    qint64 from = 0;
    qint64 to = 0;
    const qint64 origin = m_form->GetTimeAxisRange(&from, &to);
    const measurement::throughput::Frame last = recording.at(recording.size() - 1);
    const auto seconds = [origin](qint64 time) { return static_cast<double>(time - origin) / 1e6; };
    m_plot->axisRect(0)
        ->axis(QCPAxis::atBottom)
        ->setRange(seconds(recording.at(0).timestamp), seconds(last.timestamp + last.span / 250));
    const auto isDrawn = [this] {
        return m_plot->graphCount() > 0 && !m_plot->graph(m_plot->graphCount() - 1)->data()->isEmpty();
    };
    // The first look at a recording takes several turns of the event loop.
    for (int attempt = 0; attempt < attempts && !isDrawn(); ++attempt)
        QApplication::processEvents();
    if (!isDrawn())
        qFatal("the window draws no graph");
}

int NavigationWindow::pictures(QEvent &event)
{
    m_replots = 0;
    QApplication::sendEvent(m_plot, &event);
    for (int attempt = 0; attempt < attempts && m_replots == 0; ++attempt)
        QApplication::processEvents();
    QApplication::processEvents(); // one more would come now
    return m_replots;
}

void NavigationWindow::press(int x)
{
    const QPoint place(x, m_plot->axisRect(1)->center().y());
    QMouseEvent event(QEvent::MouseButtonPress, place, m_plot->mapToGlobal(place), Qt::LeftButton,
                      Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(m_plot, &event);
}

int NavigationWindow::moveTo(int x)
{
    const QPoint place(x, m_plot->axisRect(1)->center().y());
    QMouseEvent event(QEvent::MouseMove, place, m_plot->mapToGlobal(place), Qt::NoButton, Qt::LeftButton,
                      Qt::NoModifier);
    return pictures(event);
}

void NavigationWindow::release(int x)
{
    const QPoint place(x, m_plot->axisRect(1)->center().y());
    QMouseEvent event(QEvent::MouseButtonRelease, place, m_plot->mapToGlobal(place), Qt::LeftButton,
                      Qt::NoButton, Qt::NoModifier);
    pictures(event);
}

int NavigationWindow::turnWheel(int steps)
{
    const QPoint place = m_plot->axisRect(1)->center();
    QWheelEvent event(place, m_plot->mapToGlobal(place), QPoint(), QPoint(0, 120 * steps), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    return pictures(event);
}

} // namespace bench
