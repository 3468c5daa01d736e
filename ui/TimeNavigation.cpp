#include "ui/DataGraphForm.h"

#include "ui/TimeAxis.h"
#include "ui_DataGraphForm.h"
#include "zuCore/CxCameraManager.h"

#include <algorithm>

qint64 CxDataGraphForm::GetTimeAxisRange(qint64 *from, qint64 *to)
{
    *from = timeaxis::floorMicroseconds(m_timeOrigin, m_timeRangeLower);
    *to = timeaxis::ceilMicroseconds(m_timeOrigin, m_timeRangeUpper);
    return m_timeOrigin;
}

void CxDataGraphForm::on_plotChangeZoom(QCPRange range)
{
    // The other plots' axes answer from within setTimeAxes().
    if (range.lower == m_timeRangeLower && range.upper == m_timeRangeUpper)
        return;
    if (!timeaxis::isTooNarrow(range.lower, range.upper)) {
        m_timeRangeLower = range.lower;
        m_timeRangeUpper = range.upper;
    }
    setTimeAxes();
    if (isOpenCameraMeasuring())
        ui->plot->replot(QCustomPlot::rpRefreshHint);
    else
        updateGraph();
}

void CxDataGraphForm::on_btnResetZoom_clicked()
{
    showTimeRange(timeaxis::defaultLower, timeaxis::defaultUpper);
}

void CxDataGraphForm::on_resetPan_clicked()
{
    double width = timeaxis::defaultUpper - timeaxis::defaultLower;
    if (ui->plot->axisRectCount() > 0)
        width = ui->plot->axisRect()->axis(QCPAxis::atBottom)->range().size();
    showTimeRange(-width, 0.0);
}

void CxDataGraphForm::showTimeRange(double lower, double upper)
{
    m_timeRangeLower = lower;
    m_timeRangeUpper = upper;
    setTimeAxes();
    // Their points belong to the pixel columns of the view before. While a
    // camera measures, the next tick makes new ones.
    if (!isOpenCameraMeasuring())
        updateGraph();
    ui->plot->replot(QCustomPlot::rpRefreshHint);
}

void CxDataGraphForm::setTimeAxes()
{
    const QList<QCPAxisRect *> rects = ui->plot->axisRects();
    for (QCPAxisRect *rect : rects)
        rect->axis(QCPAxis::atBottom)->setRange(m_timeRangeLower, m_timeRangeUpper);
}

bool CxDataGraphForm::isOpenCameraMeasuring() const
{
    const QList<ZUCORE_HANDLE> opened = CxCameraManager::instance()->openedCameras();
    return std::any_of(opened.cbegin(), opened.cend(), [this](ZUCORE_HANDLE camera) {
        CxCameraLineData *line = m_cameraLines.value(camera);
        return line && line->isMeasurementRunning();
    });
}
