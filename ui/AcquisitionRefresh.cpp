#include "ui/DataGraphForm.h"

#include "measurement/Log.h"
#include "measurement/Saturate.h"
#include "ui/PlotStyle.h"
#include "ui/Quantities.h"
#include "ui_DataGraphForm.h"

#include <algorithm>
#include <array>
#include <limits>

namespace {

constexpr std::size_t counterCount = std::size(quantities::plottedCounters);

/// One per plotted counter, null where it is not drawn.
using CounterGraphs = std::array<QCPGraph *, counterCount>;

/// What the left axis has to show.
struct CounterRange
{
    int low = std::numeric_limits<int>::max();
    int high = 1;

    /// Counters only grow: the ends of the curve are its extrema.
    void include(const QCPGraph *graph)
    {
        int first = 0;
        int last = 0;
        if (graph && !graph->data()->isEmpty()) {
            first = static_cast<int>(graph->data()->constBegin()->value);
            last = static_cast<int>((graph->data()->constEnd() - 1)->value);
        }
        low = std::min(low, first);
        high = std::max(high, last);
    }
};

QCPGraph *graphOf(ZU_COUNTER_SELECTOR selector, const CounterGraphs &graphs)
{
    for (std::size_t i = 0; i < counterCount; ++i) {
        if (quantities::plottedCounters[i].selector == selector)
            return graphs[i];
    }
    return nullptr;
}

/// \param rect may be null
/// \param method that wants it, for the log
QCPGraph *addGraph(QCPAxisRect *rect, QCPAxis::AxisType side, const QString &name, const QColor &colour,
                   const char *method, CxLogPlace caller = CxLogPlace::current())
{
    QCPGraph *graph =
        rect ? rect->parentPlot()->addGraph(rect->axis(QCPAxis::atBottom), rect->axis(side)) : nullptr;
    if (!graph) {
        cxLogFailure(method, "Failed to allocate plot", caller);
        return nullptr;
    }
    graph->setPen(plotstyle::linePen(colour));
    graph->setName(name);
    return graph;
}

} // namespace

QCPGraph *CxDataGraphForm::AddAcqPlotToRight(void *hCam, const QString &name, const QColor &colour)
{
    return addGraph(GetCameraPlot(hCam), QCPAxis::atRight, name, colour,
                    "CxDataGraphForm::AddAcqPlotToRight");
}

QCPGraph *CxDataGraphForm::AddStandardAcqPlot(void *hCam, const QString &name, ZU_COUNTER_SELECTOR selector,
                                              const QColor &colour)
{
    const CxCameraLineData *line = m_cameraLines.value(hCam);
    if (!line || !line->IsCounterSupported(selector))
        return nullptr;
    return addGraph(GetCameraPlot(hCam), QCPAxis::atLeft, name, colour,
                    "CxDataGraphForm::AddStandardAcqPlot");
}

void CxDataGraphForm::updateAcquisitionGraphs()
{
    const QList<void *> cameras = m_cameraLines.keys();
    for (void *hCam : cameras)
        updateAcquisitionGraphs(hCam);
    ui->plot->replot(QCustomPlot::rpRefreshHint);
}

void CxDataGraphForm::updateAcquisitionGraphs(void *hCam)
{
    QCPAxisRect *rect = plottedArea(hCam);
    if (!rect)
        return;
    CounterGraphs counters = {};
    for (std::size_t i = 0; i < counterCount; ++i) {
        const CounterQuantity &counter = quantities::plottedCounters[i];
        const QLatin1String name(counter.quantity.name);
        if (IsPlotEnabled(name))
            counters[i] = AddStandardAcqPlot(hCam, name, counter.selector, QColor(counter.quantity.color));
    }
    const QLatin1String rateName(quantities::frameRate.name);
    QCPGraph *rate = IsPlotEnabled(rateName)
                         ? AddAcqPlotToRight(hCam, rateName, QColor(quantities::frameRate.color))
                         : nullptr;

    qint64 from = 0;
    qint64 to = 0;
    GetTimeAxisRange(&from, &to);
    const QCPRange range = rect->axis(QCPAxis::atBottom)->range();
    CxCameraLineData *line = m_cameraLines.value(hCam);
    if (!line->calculateGraphsAcquisition(counters[0], counters[1], counters[2], counters[3], counters[4],
                                          rate, &range, from, to, m_timestampOrigin,
                                          millisecondsPerPixel(range)))
        return;
    updateCameraListRow(hCam);

    CounterRange shown;
    const QList<CxCameraLineData::CxCounterInfo *> &infos = line->counterInfos;
    for (const CxCameraLineData::CxCounterInfo *counter : infos) {
        if (counter->supported && IsPlotEnabled(counter->name) && counter->selector != ZU_CNT_SEL_TRANSFERRED)
            shown.include(graphOf(counter->selector, counters));
    }
    const double low = shown.low == 0 ? -1.0 : shown.low;
    rect->axis(QCPAxis::atLeft)->setRange(low * 0.8, shown.high * 1.2);
    rect->axis(QCPAxis::atRight)->rescale(false);
    rect->axis(QCPAxis::atRight)->setRangeLower(-0.01);
}
