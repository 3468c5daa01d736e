#include "ui/DataGraphForm.h"

#include "measurement/Log.h"
#include "ui/BufferLevelGraph.h"
#include "ui/PlotStyle.h"
#include "ui/Quantities.h"
#include "ui_DataGraphForm.h"
#include "zuCoreGui/IxAppDelegate.h"

namespace {

/// The lowest throughput of a pixel column is a view for experts.
constexpr int minThroughputLevel = 3;

} // namespace

QCPGraph *CxDataGraphForm::AddThrougputPlot(void *hCam, const QString &name, QColor colour)
{
    const QCPAxisRect *rect = GetCameraPlot(hCam);
    QCPGraph *graph = nullptr;
    if (name == QLatin1String(quantities::minThroughput.name)) {
        if (rect)
            graph = ui->plot->addGraph(rect->axis(QCPAxis::atBottom), rect->axis(QCPAxis::atLeft));
        if (!graph) {
            cxLogFailure("CxDataGraphForm::AddThrougputPlot", "Failed to allocate min throughput plot");
            return nullptr;
        }
    } else if (name == QLatin1String(quantities::maxBufferLevel.name)) {
        if (rect)
            graph = new BufferLevelGraph(rect->axis(QCPAxis::atBottom), rect->axis(QCPAxis::atRight));
        if (!graph) {
            cxLogFailure("CxDataGraphForm::AddThrougputPlot", "Failed to allocate buffer fill plot");
            return nullptr;
        }
        colour.setAlpha(150);
        graph->setBrush(QBrush(colour));
    } else {
        cxLogFailure("CxDataGraphForm::AddThrougputPlot", "Unknown througput plot");
        return nullptr;
    }
    graph->setPen(plotstyle::linePen(colour));
    graph->setName(name);
    return graph;
}

void CxDataGraphForm::updateThroughputGraphs()
{
    bool drawn = false;
    const QList<void *> cameras = m_cameraLines.keys();
    for (void *hCam : cameras)
        drawn = updateThroughputGraphs(hCam) || drawn;
    if (drawn)
        ui->plot->replot(QCustomPlot::rpRefreshHint);
}

bool CxDataGraphForm::updateThroughputGraphs(void *hCam)
{
    QCPAxisRect *rect = plottedArea(hCam);
    if (!rect)
        return false;

    const auto addEnabled = [this, hCam](const Quantity &quantity) {
        const QLatin1String name(quantity.name);
        return IsPlotEnabled(name) ? AddThrougputPlot(hCam, name, QColor(quantity.color)) : nullptr;
    };
    const bool expert = IxAppDelegate::instance()->interfaceLevel() >= minThroughputLevel;
    QCPGraph *minGraph = expert ? addEnabled(quantities::minThroughput) : nullptr;
    QCPGraph *levelGraph = addEnabled(quantities::maxBufferLevel);

    qint64 from = 0;
    qint64 to = 0;
    GetTimeAxisRange(&from, &to);
    const QCPRange range = rect->axis(QCPAxis::atBottom)->range();
    if (!m_cameraLines.value(hCam)->calculateGraphsThrougput(minGraph, levelGraph, &range, from, to,
                                                             m_timestampOrigin, millisecondsPerPixel(range),
                                                             m_resetBufferLevel))
        return false;
    updateCameraListRow(hCam);
    UpdateVertAxisInformation(hCam, rect);
    return true;
}
