#include "measurement/PlotLibrary.h"
#include "measurement/ThroughputEngine.h"

#include <algorithm>

namespace {

/// Collects the points and gives them to the graphs in one go.
class GraphPoints final : public measurement::throughput::PointSink
{
public:
    /// \param end seconds on the time axis at which the window ends
    explicit GraphPoints(double end)
        : m_end(end)
    {
        m_speeds.reserve(usualPoints);
        m_levels.reserve(usualPoints);
    }

    void addPoint(qint64 time, double minSpeed, double maxLevel) override
    {
        const double x = static_cast<double>(time) / 1000000.0 + m_end;
        m_speeds.append(QCPGraphData(x, minSpeed));
        m_levels.append(QCPGraphData(x, maxLevel));
    }

    void restart() override
    {
        m_speeds.resize(0);
        m_levels.resize(0);
    }

    /// \param speeds, levels may each be null
    void addTo(QCPGraph *speeds, QCPGraph *levels) const
    {
        if (speeds)
            addTo(*speeds, m_speeds);
        if (levels)
            addTo(*levels, m_levels);
    }

private:
    static constexpr int usualPoints = 2048; ///< a pixel column of a wide window each

    static void addTo(QCPGraph &graph, const QVector<QCPGraphData> &points)
    {
        const auto isEarlier = [](const QCPGraphData &a, const QCPGraphData &b) { return a.key < b.key; };
        if (std::is_sorted(points.cbegin(), points.cend(), isEarlier)) {
            graph.data()->add(points, true);
            return;
        }
        // A camera whose clock was set back. Where points share a time their order
        // counts, and sorting does not keep it.
        for (const QCPGraphData &point : points)
            graph.data()->add(point);
    }

    QVector<QCPGraphData> m_speeds;
    QVector<QCPGraphData> m_levels;
    const double m_end;
};

} // namespace

bool CxCameraLineData::calculateGraphsThrougput(QCPGraph *minThroughputGraph, QCPGraph *bufferLevelGraph,
                                                const QCPRange *timeAxisRange, long long from, long long to,
                                                ExTimestampOrigin origin, double msPerPixel,
                                                bool resetBufferLevel)
{
    const measurement::ThroughputWindow window = {from, to, origin, msPerPixel, resetBufferLevel};
    if (!timeAxisRange)
        return measurement::evaluateThroughput(*this, window, nullptr);
    GraphPoints points(timeAxisRange->upper);
    const bool processed = measurement::evaluateThroughput(*this, window, &points);
    points.addTo(minThroughputGraph, bufferLevelGraph);
    return processed;
}
