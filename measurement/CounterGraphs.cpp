#include "measurement/CounterSeries.h"
#include "measurement/PlotLibrary.h"

#include <QMutexLocker>

#include <array>

namespace {

using measurement::counters::Record;

constexpr int Record::*counterOf[] = {&Record::transportSkip, &Record::apiSkip, &Record::missedTrgOverlap,
                                      &Record::missedTrgOverflow, &Record::bufferOverflow};

class GraphPoints final : public measurement::counters::CounterSink, public measurement::counters::RateSink
{
public:
    using CounterGraphs = std::array<QCPGraph *, std::size(counterOf)>;

    /// \param end seconds on the time axis at which the window ends
    GraphPoints(const CounterGraphs &counters, QCPGraph *rate, double end)
        : m_counters(counters)
        , m_rate(rate)
        , m_end(end)
    {
    }

    void addCounters(qint64 time, const Record &record) override
    {
        for (std::size_t i = 0; i < m_counters.size(); ++i) {
            if (m_counters[i])
                m_counters[i]->addData(xOf(time), record.*counterOf[i]);
        }
    }

    void addFrameRate(qint64 time, double framesPerSecond) override
    {
        m_rate->addData(xOf(time), framesPerSecond);
    }

private:
    double xOf(qint64 time) const { return static_cast<double>(time) / 1000000.0 + m_end; }

    const CounterGraphs m_counters;
    QCPGraph *const m_rate;
    const double m_end;
};

} // namespace

bool CxCameraLineData::calculateGraphsAcquisition(QCPGraph *transportSkipGraph, QCPGraph *apiSkipGraph,
                                                  QCPGraph *missedTrgOverlapGraph,
                                                  QCPGraph *missedTrgOverflowGraph,
                                                  QCPGraph *bufferOverflowGraph, QCPGraph *fpsGraph,
                                                  const QCPRange *timeAxisRange, long long from, long long to,
                                                  ExTimestampOrigin origin, double msPerPixel)
{
    if (isExporting())
        return false;
    const QMutexLocker locker(&mutex);
    if (counterData.isEmpty())
        return false;

    const measurement::counters::Window window = {from, to, origin, msPerPixel, statAvg};
    GraphPoints points({transportSkipGraph, apiSkipGraph, missedTrgOverlapGraph, missedTrgOverflowGraph,
                        bufferOverflowGraph},
                       fpsGraph, timeAxisRange->upper);
    measurement::counters::counterSeries(counterData, window, points);
    if (fpsGraph)
        measurement::counters::frameRateSeries(counterData, window, points);
    return true;
}
