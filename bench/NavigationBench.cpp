#include "bench/NavigationWindow.h"
#include "bench/reference/ThroughputReference.h"
#include "ui/PlotStyle.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

/// Moving about in long recordings while nothing measures. One iteration is one
/// event of the mouse and the picture that it leads to, on the widget.
namespace {

using bench::NavigationWindow;

constexpr std::size_t stampsPerFrame = 2000;
constexpr quint64 bufferSize = 16384; // small enough for the level to fill the plots
constexpr int dragStart = NavigationWindow::width / 2;
constexpr int dragWidth = 64;

std::size_t frameCount()
{
    const char *form = std::getenv("VELMORA_BENCH_FORM");
    return form && std::strcmp(form, "short") == 0 ? 500 : 5000;
}

/// One regime's recording and, as long as benchmarks ask for it, the window.
class Scene
{
public:
    explicit Scene(const reference::Regime &regime)
        : m_regime(regime)
        , m_recording(reference::makeRecording(regime, frameCount(), stampsPerFrame))
    {
    }

    const reference::Recording &recording() const { return m_recording; }
    NavigationWindow &window()
    {
        if (!m_window)
            m_window = std::make_unique<NavigationWindow>(m_recording, bufferSize);
        return *m_window;
    }

    /// Only the last one is kept, until the application ends.
    static Scene &of(const reference::Regime &regime)
    {
        if (!last || last->m_regime.name != regime.name) {
            last.reset();
            last = std::make_unique<Scene>(regime);
            qAddPostRoutine([] { last.reset(); });
        }
        return *last;
    }

private:
    static std::unique_ptr<Scene> last;

    const reference::Regime m_regime;
    const reference::Recording m_recording;
    std::unique_ptr<NavigationWindow> m_window;
};

std::unique_ptr<Scene> Scene::last;

void count(benchmark::State &state, std::int64_t pictures)
{
    if (pictures < state.iterations())
        state.SkipWithError("an event led to no picture");
    state.counters["pictures"] =
        benchmark::Counter(static_cast<double>(pictures), benchmark::Counter::kAvgIterations);
}

void drag(benchmark::State &state, const reference::Regime &regime)
{
    NavigationWindow &window = Scene::of(regime).window();
    window.press(dragStart);
    int x = dragStart;
    int step = 1;
    std::int64_t pictures = 0;
    for ([[maybe_unused]] auto iteration : state) {
        if (std::abs(x + step - dragStart) > dragWidth)
            step = -step;
        x += step;
        pictures += window.moveTo(x);
    }
    window.release(x);
    count(state, pictures);
}

void turnWheel(benchmark::State &state, const reference::Regime &regime)
{
    NavigationWindow &window = Scene::of(regime).window();
    int steps = 1;
    std::int64_t pictures = 0;
    for ([[maybe_unused]] auto iteration : state) {
        pictures += window.turnWheel(steps);
        steps = -steps;
    }
    if (steps < 0)
        window.turnWheel(steps);
    count(state, pictures);
}

/// What of this is the drawing of graphs that are there already.
void replot(benchmark::State &state, const reference::Regime &regime)
{
    QCustomPlot &plot = Scene::of(regime).window().plot();
    for ([[maybe_unused]] auto iteration : state)
        plot.replot(QCustomPlot::rpImmediateRefresh);
}

class GraphPoints final : public measurement::throughput::PointSink
{
public:
    GraphPoints(QCPGraph *speeds, QCPGraph *levels)
        : m_speeds(speeds)
        , m_levels(levels)
    {
    }
    /// \param time microseconds from the end of the view
    void addPoint(qint64 time, double minSpeed, double maxLevel) override
    {
        m_speeds->addData(static_cast<double>(time) / 1e6, minSpeed);
        m_levels->addData(static_cast<double>(time) / 1e6, maxLevel);
    }
    void restart() override
    {
        m_speeds->data()->clear();
        m_levels->data()->clear();
    }

private:
    QCPGraph *const m_speeds;
    QCPGraph *const m_levels;
};

QCPGraph *addPlainGraph(QCPAxisRect *rect, QCPAxis::AxisType side, const QColor &colour)
{
    QCPGraph *graph = rect->parentPlot()->addGraph(rect->axis(QCPAxis::atBottom), rect->axis(side));
    graph->setPen(plotstyle::linePen(colour));
    return graph;
}

void fillPlainly(QCPAxisRect *rect, const reference::Recording &recording,
                 const measurement::throughput::Settings &view, reference::Buffers &buffers)
{
    QCPGraph *speeds = addPlainGraph(rect, QCPAxis::atLeft, QColor(255, 165, 0));
    const QColor levelColour(30, 144, 255, 150);
    QCPGraph *levels = addPlainGraph(rect, QCPAxis::atRight, levelColour);
    levels->setBrush(QBrush(levelColour));
    GraphPoints points(speeds, levels);
    measurement::throughput::Statistics statistics;
    reference::evaluate(recording, view, buffers, &points, statistics);
    rect->axis(QCPAxis::atLeft)->rescale();
}

/// The same plot with graphs from the model's plain formulas and the library's
/// fill, replotted once.
void drawPlainly(benchmark::State &state, const reference::Regime &regime)
{
    const reference::Recording &recording = Scene::of(regime).recording();
    measurement::throughput::Settings view =
        reference::settingsFor(recording, regime, NavigationWindow::width, true);
    view.bufferSize = bufferSize;

    QCustomPlot plot;
    plot.resize(NavigationWindow::width, NavigationWindow::height);
    bench::decorate(&plot);
    plot.plotLayout()->clear();
    for (int camera = 0; camera < NavigationWindow::cameras; ++camera) {
        auto *rect = new QCPAxisRect(&plot);
        const QList<QCPAxis *> axes = rect->axes();
        for (QCPAxis *axis : axes)
            plotstyle::styleAxis(axis);
        rect->axis(QCPAxis::atBottom)->setRange(static_cast<double>(view.from - view.to) / 1e6, 0.0);
        rect->axis(QCPAxis::atRight)->setRange(-10.0, 110.0);
        rect->axis(QCPAxis::atRight)->setVisible(true);
        plotstyle::fitIntoPlot(rect);
        plot.plotLayout()->addElement(camera, 0, rect);
    }
    plot.show();
    QApplication::processEvents();

    reference::Buffers buffers;
    for ([[maybe_unused]] auto iteration : state) {
        plot.clearGraphs();
        const QList<QCPAxisRect *> rects = plot.axisRects();
        for (QCPAxisRect *rect : rects)
            fillPlainly(rect, recording, view, buffers);
        plot.replot(QCustomPlot::rpImmediateRefresh);
    }
}

const bool registered = [] {
    for (const reference::Regime &regime : reference::benchmarkRegimes()) {
        if (regime.name != "jitter" && regime.name != "stalls")
            continue;
        const auto add = [&regime](const char *kind, auto function) {
            benchmark::RegisterBenchmark(("navigation/" + regime.name + kind).c_str(), function, regime)
                ->Unit(benchmark::kMillisecond);
        };
        add("/plain", drawPlainly);
        add("/drag", drag);
        add("/wheel", turnWheel);
        add("/replot", replot);
    }
    return true;
}();

} // namespace
