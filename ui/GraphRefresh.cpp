#include "ui/DataGraphForm.h"

#include "measurement/ExportGate.h"
#include "measurement/Log.h"
#include "ui/CellWidgets.h"
#include "ui/TimeAxis.h"
#include "ui_DataGraphForm.h"

#include <QCheckBox>
#include <QMutexLocker>

#include <algorithm>
#include <iterator>

void CxDataGraphForm::timerSignal()
{
    if (CxExportGate::isClosed())
        return;
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
    if (CxExportGate::putOff(this, [this] { updateGraph(); }))
        return;
    const QMutexLocker locker(&m_mutex);
    followTime();
    if (!isPrepared(plottedCameras(), Refresh::Graphs))
        return;
    ui->plot->clearGraphs();
    switch (m_measureMode) {
    case MeasureModeThroughput:
        updateThroughputGraphs();
        break;
    case MeasureModeAcquisition:
        updateAcquisitionGraphs();
        break;
    default:
        cxLogFailure("CxDataGraphForm::updateGraph", "Unknown measurement mode is selected");
        break;
    }
}

QList<void *> CxDataGraphForm::plottedCameras()
{
    QList<void *> cameras;
    const QList<void *> known = m_cameraLines.keys();
    for (void *hCam : known) {
        if (plottedArea(hCam))
            cameras.append(hCam);
    }
    return cameras;
}

QCPAxisRect *CxDataGraphForm::plottedArea(void *hCam)
{
    const CxCameraLineData *line = m_cameraLines.value(hCam);
    return line && line->plotEnabled ? GetCameraPlot(hCam) : nullptr;
}

double CxDataGraphForm::millisecondsPerPixel(const QCPRange &range) const
{
    return timeaxis::millisecondsPerPixel(range.lower, range.upper, ui->plot->width());
}

void CxDataGraphForm::updateStats()
{
    if (CxExportGate::isClosed())
        return;
    followTime();
    QList<void *> measuring;
    const QList<void *> cameras = m_cameraLines.keys();
    std::copy_if(cameras.cbegin(), cameras.cend(), std::back_inserter(measuring),
                 [this](void *hCam) { return m_cameraLines.value(hCam)->isMeasurementRunning(); });
    if (!isPrepared(measuring, Refresh::Statistics))
        return;
    for (void *hCam : measuring) {
        CxCameraLineData *line = m_cameraLines.value(hCam);
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
