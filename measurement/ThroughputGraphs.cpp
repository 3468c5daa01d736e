#include "measurement/PlotLibrary.h"
#include "measurement/ThroughputEngine.h"

namespace {

class GraphPoints final : public measurement::throughput::PointSink
{
public:
    /// \param end seconds on the time axis at which the window ends
    GraphPoints(QCPGraph *speeds, QCPGraph *levels, double end)
        : m_speeds(speeds)
        , m_levels(levels)
        , m_end(end)
    {
    }

    void addPoint(qint64 time, double minSpeed, double maxLevel) override
    {
        const double x = static_cast<double>(time) / 1000000.0 + m_end;
        if (m_speeds)
            m_speeds->addData(x, minSpeed);
        if (m_levels)
            m_levels->addData(x, maxLevel);
    }

private:
    QCPGraph *const m_speeds;
    QCPGraph *const m_levels;
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
    GraphPoints points(minThroughputGraph, bufferLevelGraph, timeAxisRange->upper);
    return measurement::evaluateThroughput(*this, window, &points);
}
