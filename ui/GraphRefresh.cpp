#include "ui/DataGraphForm.h"

#include "measurement/Log.h"
#include "ui/CellWidgets.h"
#include "ui/TimeAxis.h"
#include "ui_DataGraphForm.h"
#include "zuCoreGui/IxAppDelegate.h"

#include <QCheckBox>
#include <QMutexLocker>

#include <algorithm>

namespace {

/// The lowest throughput of a pixel column is a view for experts.
constexpr int minThroughputLevel = 3;

} // namespace

void CxDataGraphForm::timerSignal()
{
    for (int row = 0; row < ui->table->rowCount(); ++row) {
        const int column = plotCellColumn();
        if (column < 0) {
            cxLogFailure("CxDataGraphForm::timerSignal", "Unknown measurement mode is selected");
            return;
        }
        const auto *box = cells::child<QCheckBox>(ui->table, row, column, cells::CheckBox);
        if (!box || !box->isChecked())
            continue;
        if (ui->checkBoxLiveGraph->isChecked())
            updateGraph();
        else
            updateStats();
        return;
    }
    updateStats();
}

void CxDataGraphForm::on_refreshGraph_clicked()
{
    updateGraph();
}

void CxDataGraphForm::updateGraph()
{
    const QMutexLocker locker(&m_mutex);
    followTime();
    ui->plot->clearGraphs();
    switch (m_measureMode) {
    case MeasureModeThroughput:
        updateThroughputGraphs();
        break;
    default:
        cxLogFailure("CxDataGraphForm::updateGraph", "Unknown measurement mode is selected");
        break;
    }
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
    CxCameraLineData *line = m_cameraLines.value(hCam);
    QCPAxisRect *rect = line->plotEnabled ? GetCameraPlot(hCam) : nullptr;
    if (!rect)
        return false;

    const QString minName = QStringLiteral("Min throughput");
    const QString levelName = QStringLiteral("Max buffer level");
    QCPGraph *minGraph = nullptr;
    if (IsPlotEnabled(minName) && IxAppDelegate::instance()->interfaceLevel() >= minThroughputLevel)
        minGraph = AddThrougputPlot(hCam, minName, QColor(255, 165, 0));
    QCPGraph *levelGraph = nullptr;
    if (IsPlotEnabled(levelName))
        levelGraph = AddThrougputPlot(hCam, levelName, QColor(30, 144, 255));

    qint64 from = 0;
    qint64 to = 0;
    GetTimeAxisRange(&from, &to);
    const QCPRange range = rect->axis(QCPAxis::atBottom)->range();
    const double msPerPixel = timeaxis::millisecondsPerPixel(range.lower, range.upper, ui->plot->width());
    if (!line->calculateGraphsThrougput(minGraph, levelGraph, &range, from, to, m_timestampOrigin, msPerPixel,
                                        m_resetBufferLevel))
        return false;
    updateCameraListRow(hCam);
    UpdateVertAxisInformation(hCam, rect);
    return true;
}

void CxDataGraphForm::updateStats()
{
    followTime();
    const QList<void *> cameras = m_cameraLines.keys();
    for (void *hCam : cameras) {
        CxCameraLineData *line = m_cameraLines.value(hCam);
        if (!line->isMeasurementRunning())
            continue;
        if (m_measureMode == MeasureModeThroughput) {
            qint64 from = 0;
            qint64 to = 0;
            GetTimeAxisRange(&from, &to);
            line->calculateGraphsThrougput(nullptr, nullptr, nullptr, from, to, m_timestampOrigin, 0.0,
                                           m_resetBufferLevel);
        }
        updateCameraListRow(hCam);
    }
}

void CxDataGraphForm::followTime()
{
    if (isAnyCameraMeasuring())
        m_timeOrigin = timeaxis::microsecondsOfDay(QTime::currentTime());
}

bool CxDataGraphForm::isAnyCameraMeasuring() const
{
    const QList<CxCameraLineData *> lines = m_cameraLines.values();
    return std::any_of(lines.cbegin(), lines.cend(),
                       [](CxCameraLineData *line) { return line->isMeasurementRunning(); });
}
