#include "bench/scale/Rig.h"

#include "bench/scale/Prefill.h"
#include "host/core/HostCore.h"
#include "ui/CellWidgets.h"
#include "ui/DataGraphForm.h"

#include <QCheckBox>
#include <QEventLoop>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QTableWidget>

#include <cmath>
#include <stdexcept>

namespace scale {

namespace {

using Lines = QMap<void *, CxCameraLineData *>;

constexpr int frameWidth = 2048;
constexpr int frameHeight = 2048;
constexpr double settleSeconds = 300.0;
constexpr int quietRefreshes = 3;

/// The window's engines and timer, private to it: nobody else watches them.
Lines &linesOf(CxDataGraphForm &form);
QTimer &timerOf(CxDataGraphForm &form);
template <Lines CxDataGraphForm::*lines, QTimer CxDataGraphForm::*timer> struct Opener
{
    friend Lines &linesOf(CxDataGraphForm &form) { return form.*lines; }
    friend QTimer &timerOf(CxDataGraphForm &form) { return form.*timer; }
};
template struct Opener<&CxDataGraphForm::m_cameraLines, &CxDataGraphForm::m_timer>;

/// Each link's rate varies, and it stands still at times, so that the graphs
/// have something to show; the sensor needs a tenth less than the link carries.
host::Scenario scenarioFor(const Options &options)
{
    using host::TicksPerMillisecond;
    host::Scenario scenario;
    scenario.seed = 12;
    for (int i = 0; i < options.cameras; ++i) {
        host::CameraSettings camera;
        camera.name = "Camera " + std::to_string(i + 1);
        camera.serial = "SC-" + std::to_string(i + 1);
        camera.width = frameWidth;
        camera.height = frameHeight;
        camera.frameRate = options.rateMBps * 1.2e6 / (2.0 * frameWidth * frameHeight); // back to back
        camera.requiredMBps = options.rateMBps * 0.9;
        camera.linkMBps = options.rateMBps;
        camera.jitter = {0.05, TicksPerMillisecond};
        camera.stalls = {{(20 + 13 * i) * TicksPerMillisecond, 250 * TicksPerMillisecond,
                          TicksPerMillisecond * 3 / 2, 1.0}};
        scenario.cameras.push_back(camera);
    }
    return scenario;
}

template <typename Widget> Widget *find(QWidget &parent, const char *name)
{
    auto *widget = parent.findChild<Widget *>(QString::fromLatin1(name));
    if (!widget)
        throw std::runtime_error(std::string("the window has no ") + name);
    return widget;
}

void typeKey(QWidget *widget, int key, const QString &text, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    QKeyEvent press(QEvent::KeyPress, key, modifiers, text);
    QKeyEvent release(QEvent::KeyRelease, key, modifiers, text);
    QCoreApplication::sendEvent(widget, &press);
    QCoreApplication::sendEvent(widget, &release);
}

} // namespace

Rig::Rig(GuiClock &clock, const Options &options)
    : m_clock(clock)
    , m_options(options)
    , m_scenario(scenarioFor(options))
    , m_viewSeconds(options.viewSeconds)
{
    openWindow();
    findCameras();
    fillRecords();
    showView();
}

Rig::~Rig()
{
    m_clock.watch(nullptr, nullptr);
}

std::int64_t Rig::frameBytes() const
{
    return std::int64_t{frameWidth} * frameHeight * 2;
}

void Rig::openWindow()
{
    host::ViewerOptions options;
    options.pluginPaths = QStringList{QStringLiteral(PLUGIN_FOLDER)};
    options.settingsFile = m_folder.filePath(QStringLiteral("settings.ini"));
    options.openAll = true;
    options.interfaceLevel = 3; // both curves
    QSettings settings(options.settingsFile, QSettings::IniFormat);
    settings.setValue(QStringLiteral("DataThroughputGraphPlugin/DTGTSamplePeriod"), m_options.samplePeriod);
    settings.setValue(QStringLiteral("DataThroughputGraphPlugin/DTGTMaxSamples"), m_options.capacity);
    settings.sync();

    auto backend = std::make_unique<ObservedBackend>(m_scenario);
    m_observed = backend->cameras();
    std::vector<std::unique_ptr<host::CameraBackend>> backends;
    backends.push_back(std::move(backend));
    m_viewer = std::make_unique<host::Viewer>(options, std::move(backends));
    m_viewer->window().setWindowState(Qt::WindowNoState);
    m_viewer->window().resize(1920, 1080);
    m_viewer->window().show();
    QCoreApplication::processEvents();
    m_form = find<QWidget>(m_viewer->window(), "CxDataGraphForm");
    m_table = find<QTableWidget>(*m_form, "table");
    m_plot = find<QCustomPlot>(*m_form, "plot");
}

void Rig::findCameras()
{
    auto &form = static_cast<CxDataGraphForm &>(*m_form);
    m_clock.watch(&timerOf(form), m_plot);
    for (const host::HostCore::Camera &opened : host::HostCore::instance().cameras()) {
        for (const auto &observed : m_observed) {
            CxCameraLineData *line = linesOf(form).value(opened.handle);
            if (line && observed->info().id == opened.info.id)
                m_cameras.push_back({line, observed.get()});
        }
    }
    if (m_cameras.size() != m_observed.size())
        throw std::runtime_error("the window does not know all cameras");
}

void Rig::fillRecords()
{
    double span = 0.0;
    for (std::size_t i = 0; i < m_cameras.size(); ++i)
        span = fillWithRecords(*m_cameras[i].line, m_cameras[i].camera->simulated().settings(), i,
                               m_options.samplePeriod, m_options.capacity);
    if (m_viewSeconds == 0.0)
        m_viewSeconds = std::ceil(span);
}

void Rig::showView()
{
    if (m_plot->axisRectCount() == 0)
        throw std::runtime_error("the window has no plot area");
    m_plot->axisRect()->axis(QCPAxis::atBottom)->setRange(-m_viewSeconds, 0.0);
}

void Rig::clickStartAll(const char *expected)
{
    auto *button = find<QPushButton>(*m_form, "btnStartAll");
    button->click();
    if (button->text() != QLatin1String(expected))
        throw std::runtime_error("the cameras do not start or stop");
}

void Rig::startAll()
{
    clickStartAll("Stop All");
}

void Rig::stopAll()
{
    clickStartAll("Start All");
}

void Rig::runFor(double seconds)
{
    QEventLoop loop;
    QTimer::singleShot(static_cast<int>(seconds * 1000), Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}

void Rig::runRefreshes(int count)
{
    const auto deadline = Time::now() + std::chrono::duration<double>(settleSeconds);
    const std::size_t wanted = m_clock.refreshes().size() + static_cast<std::size_t>(count);
    while (m_clock.refreshes().size() < wanted) {
        if (Time::now() > deadline)
            throw std::runtime_error("the graphs are not refreshed");
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

void Rig::followDrawing()
{
    m_drawing = drawing();
    m_changed = Time::now();
    QObject::connect(m_plot, &QCustomPlot::afterReplot, m_plot, [this] { noteDrawing(); });
}

void Rig::noteDrawing()
{
    const std::size_t now = drawing();
    if (now == m_drawing)
        return;
    m_drawing = now;
    m_changed = Time::now();
}

void Rig::runUntilSettled()
{
    const auto begin = Time::now();
    for (int quiet = 0; quiet < quietRefreshes; ++quiet) {
        const auto changed = m_changed;
        runRefreshes(1);
        if (m_changed != changed)
            quiet = -1;
        if (Time::now() - begin > std::chrono::duration<double>(settleSeconds))
            throw std::runtime_error("the graphs do not settle");
    }
}

/// Differs where what the graphs show differs.
std::size_t Rig::drawing() const
{
    std::size_t hash = 0;
    const auto mix = [&hash](double value) { hash = hash * 1099511628211U + std::hash<double>()(value); };
    for (int i = 0; i < m_plot->graphCount(); ++i) {
        for (const QCPGraphData &point : *m_plot->graph(i)->data()) {
            mix(point.key);
            mix(point.value);
        }
    }
    return hash;
}

void Rig::typeRequiredThroughput(int megabytesPerSecond)
{
    QWidget *cell = m_table->cellWidget(0, throughputColumn::RequiredThroughput);
    auto *automatic = cell ? cell->findChild<QCheckBox *>() : nullptr;
    auto *edit = cell ? cell->findChild<QLineEdit *>() : nullptr;
    if (!automatic || !edit)
        throw std::runtime_error("the table has no cell for the required throughput");
    if (automatic->isChecked())
        automatic->click();
    edit->setFocus();
    edit->selectAll();
    const QString text = QString::number(megabytesPerSecond);
    for (const QChar digit : text)
        typeKey(edit, digit.unicode(), QString(digit));
    typeKey(edit, Qt::Key_Return, QStringLiteral("\r"));
    if (edit->text() != text)
        throw std::runtime_error("the required throughput cannot be edited");
}

} // namespace scale
