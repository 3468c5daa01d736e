#include "bench/reference/RecordedEngine.h"
#include "bench/reference/ThroughputReference.h"
#include "ui/BufferLevelGraph.h"

#include <benchmark/benchmark.h>

#include <array>
#include <cmath>

namespace {

constexpr int cameras = 4;
constexpr int width = 1600;
constexpr int height = 900;
constexpr double seconds = 20.0;
const QColor levelColour(30, 144, 255, 150);

/// Plot areas below one another, as the window has them for four cameras.
class Plots
{
public:
    Plots()
    {
        m_plot.resize(width, height);
        m_plot.setViewport(QRect(0, 0, width, height));
        m_plot.plotLayout()->clear();
        for (int row = 0; row < cameras; ++row) {
            auto *rect = new QCPAxisRect(&m_plot);
            rect->axis(QCPAxis::atBottom)->setRange(-seconds, 0.0);
            rect->axis(QCPAxis::atRight)->setRange(-10.0, 110.0);
            rect->axis(QCPAxis::atRight)->setVisible(true);
            m_plot.plotLayout()->addElement(row, 0, rect);
        }
    }

    template <typename Graph> QCPGraph *addGraph(int camera)
    {
        QCPAxisRect *rect = m_plot.axisRect(camera);
        auto *graph = new Graph(rect->axis(QCPAxis::atBottom), rect->axis(QCPAxis::atRight));
        graph->setPen(QPen(QBrush(levelColour), 1.0));
        graph->setBrush(QBrush(levelColour));
        return graph;
    }

    void clearGraphs() { m_plot.clearGraphs(); }
    void replot() { m_plot.replot(QCustomPlot::rpImmediateRefresh); }

private:
    QCustomPlot m_plot;
};

double smoothLevel(int point, std::mt19937 &)
{
    return 50.0 + 45.0 * std::sin(point / 40.0);
}

double jaggedLevel(int, std::mt19937 &random)
{
    return std::uniform_real_distribution<double>(0.0, 100.0)(random);
}

/// A replot alone, with a point in every pixel column.
template <typename Graph> void replot(benchmark::State &state, double (*level)(int, std::mt19937 &))
{
    Plots plots;
    std::mt19937 random(20240229);
    for (int camera = 0; camera < cameras; ++camera) {
        QCPGraph *graph = plots.addGraph<Graph>(camera);
        for (int point = 0; point <= width; ++point)
            graph->addData(-seconds + seconds * point / width, level(point, random));
    }
    for ([[maybe_unused]] auto iteration : state)
        plots.replot();
}

constexpr std::size_t frameCount = 1000;
constexpr std::size_t stampsPerFrame = 2000;

/// A camera whose link is as fast as the sensor on average.
const reference::Regime &jitter()
{
    const std::vector<reference::Regime> &regimes = reference::benchmarkRegimes();
    return *std::find_if(regimes.begin(), regimes.end(),
                         [](const reference::Regime &regime) { return regime.name == "jitter-unpaused"; });
}

const reference::Recording &recording()
{
    static const reference::Recording made = reference::makeRecording(jitter(), frameCount, stampsPerFrame);
    return made;
}

/// What a tick of the window does for four cameras: graphs made anew, filled
/// from the records, drawn.
void refresh(benchmark::State &state)
{
    const measurement::throughput::Settings window =
        reference::settingsFor(recording(), jitter(), width, false);
    std::array<CxCameraLineData, cameras> lines;
    for (CxCameraLineData &line : lines)
        reference::fillEngine(line, recording(), jitter().bufferSize / 64);
    Plots plots;
    const QCPRange range(-seconds, 0.0);
    for ([[maybe_unused]] auto iteration : state) {
        plots.clearGraphs();
        for (int camera = 0; camera < cameras; ++camera) {
            QCPGraph *levels = plots.addGraph<BufferLevelGraph>(camera);
            lines[static_cast<std::size_t>(camera)].calculateGraphsThrougput(
                nullptr, levels, &range, window.from, window.to, TimestampOriginCamera, window.msPerPixel,
                window.resetBufferLevel);
        }
        plots.replot();
    }
}

class GraphPoints final : public measurement::throughput::PointSink
{
public:
    explicit GraphPoints(QCPGraph *levels)
        : m_levels(levels)
    {
    }
    void addPoint(qint64 time, double, double maxLevel) override
    {
        m_levels->addData(static_cast<double>(time) / 1000000.0, maxLevel);
    }
    void restart() override { m_levels->data()->clear(); }

private:
    QCPGraph *const m_levels;
};

/// The same from the model's plain formulas and the library's own graph.
void refreshPlainly(benchmark::State &state)
{
    measurement::throughput::Settings window = reference::settingsFor(recording(), jitter(), width, false);
    window.bufferSize = jitter().bufferSize / 64;
    reference::Buffers buffers;
    Plots plots;
    for ([[maybe_unused]] auto iteration : state) {
        plots.clearGraphs();
        for (int camera = 0; camera < cameras; ++camera) {
            GraphPoints points(plots.addGraph<QCPGraph>(camera));
            measurement::throughput::Statistics statistics;
            reference::evaluate(recording(), window, buffers, &points, statistics);
        }
        plots.replot();
    }
}

const bool registered = [] {
    const auto add = [](const char *name, auto function, auto... arguments) {
        benchmark::RegisterBenchmark(name, function, arguments...)->Unit(benchmark::kMillisecond);
    };
    add("plot/smooth/library", replot<QCPGraph>, smoothLevel);
    add("plot/smooth/strips", replot<BufferLevelGraph>, smoothLevel);
    add("plot/jagged/library", replot<QCPGraph>, jaggedLevel);
    add("plot/jagged/strips", replot<BufferLevelGraph>, jaggedLevel);
    add("refresh/plain", refreshPlainly);
    add("refresh/window", refresh);
    return true;
}();

} // namespace
