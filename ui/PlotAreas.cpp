#include "ui/DataGraphForm.h"

#include "measurement/Log.h"
#include "ui/BufferLevelGraph.h"
#include "ui/CellWidgets.h"
#include "ui/PlotStyle.h"
#include "ui/Quantities.h"
#include "ui_DataGraphForm.h"

#include <QCheckBox>
#include <QMutexLocker>

#include <algorithm>

QCPAxisRect *CxDataGraphForm::GetCameraPlot(void *hCam)
{
    const QList<QCPAxisRect *> rects = ui->plot->axisRects();
    for (QCPAxisRect *rect : rects) {
        if (cameraHandle(rect) == hCam)
            return rect;
    }
    return nullptr;
}

QCPAxisRect *CxDataGraphForm::addPlotArea(void *hCam, unsigned int layoutRow, const QString &title)
{
    QCustomPlot *plot = ui->plot;
    const int row = static_cast<int>(layoutRow);
    auto *rect = new QCPAxisRect(plot);
    auto *heading = new QCPTextElement(plot, title, plotstyle::titleFont());
    heading->setTextColor(Qt::white);
    plot->plotLayout()->addElement(row, 0, heading);

    setCameraHandle(rect, hCam);
    rect->setRangeZoom(Qt::Horizontal);
    ConfigurePlotAxis(rect, QCPAxis::atBottom, m_timeRangeLower, m_timeRangeUpper, QString());
    plotstyle::fitIntoPlot(rect);
    plot->plotLayout()->addElement(row + 1, 0, rect);
    return rect;
}

bool CxDataGraphForm::AddCameraPlotThroughput(void *hCam, unsigned int layoutRow, const QString &title)
{
    QCPAxisRect *rect = addPlotArea(hCam, layoutRow, title);
    ConfigurePlotAxis(rect, QCPAxis::atLeft, 0.0, 1000.0, tr("Avg. rate [MB/s]"));
    ConfigurePlotAxis(rect, QCPAxis::atRight, -10.0, 110.0, tr("Buffer filled [%]"));
    UpdateVertAxisInformation(hCam, rect);
    return true;
}

bool CxDataGraphForm::AddCameraPlotAcquisition(void *hCam, unsigned int layoutRow, const QString &title)
{
    QCPAxisRect *rect = addPlotArea(hCam, layoutRow, title);
    ConfigurePlotAxis(rect, QCPAxis::atLeft, -0.1, 1.0, tr("Counter value"));
    ConfigurePlotAxis(rect, QCPAxis::atRight, -0.1, 110.0, tr("FPS"));
    return true;
}

bool CxDataGraphForm::addCameraPlot(void *hCam, unsigned int layoutRow, const QString &title)
{
    return m_measureMode == MeasureModeThroughput ? AddCameraPlotThroughput(hCam, layoutRow, title)
                                                  : AddCameraPlotAcquisition(hCam, layoutRow, title);
}

void CxDataGraphForm::ConfigurePlotAxis(QCPAxisRect *rect, QCPAxis::AxisType type, double lower, double upper,
                                        const QString &label)
{
    QCPAxis *axis = rect->axis(type);
    axis->setRange(lower, upper);
    if (!label.isEmpty())
        axis->setLabel(label);

    plotstyle::styleAxis(axis);
    axis->setVisible(true);
    if (type != QCPAxis::atBottom)
        return;

    const QSharedPointer<QCPAxisTickerTime> ticker(new QCPAxisTickerTime);
    ticker->setTimeFormat(QStringLiteral("%m:%s.%z"));
    axis->setTicker(ticker);
    connect(axis, static_cast<void (QCPAxis::*)(const QCPRange &)>(&QCPAxis::rangeChanged), this,
            &CxDataGraphForm::on_plotChangeZoom, Qt::UniqueConnection);
    rect->setRangeDragAxes(axis, nullptr);
    rect->setRangeZoomAxes(axis, nullptr);
}

bool CxDataGraphForm::IsPlotEnabled(const QString &name)
{
    const auto box =
        std::find_if(m_plotCheckBoxes.cbegin(), m_plotCheckBoxes.cend(),
                     [&name](const QCheckBox *candidate) { return plotName(candidate) == name; });
    return box != m_plotCheckBoxes.cend() && (*box)->isChecked();
}

int CxDataGraphForm::plotCellColumn() const
{
    switch (m_measureMode) {
    case MeasureModeThroughput:
        return throughputColumn::Graph;
    case MeasureModeAcquisition:
        return acquisitionColumn::Graph;
    default:
        return -1;
    }
}

void CxDataGraphForm::clearPlotAreas()
{
    // Graphs belong to the plot and would outlive their axes.
    ui->plot->clearGraphs();
    ui->plot->plotLayout()->clear();
}

void CxDataGraphForm::onChkCamPlotData(bool state)
{
    const QMutexLocker locker(&m_mutex);
    CxCameraLineData *line = m_cameraLines.value(cameraHandle(qobject_cast<QCheckBox *>(sender())));
    if (!line)
        return;
    line->plotEnabled = state;

    clearPlotAreas();
    unsigned int layoutRow = 0;
    for (int row = 0; row < ui->table->rowCount(); ++row) {
        const int column = plotCellColumn();
        if (column < 0) {
            cxLogFailure("CxDataGraphForm::onChkCamPlotData", "Unknown measurement mode is selected");
            return;
        }
        void *camera = cameraHandle(cells::child<QCheckBox>(ui->table, row, column, cells::CheckBox));
        const CxCameraLineData *plotted = m_cameraLines.value(camera);
        if (!plotted || !plotted->plotEnabled)
            continue;
        addCameraPlot(camera, layoutRow, plotted->cameraName);
        layoutRow += plotstyle::rowsPerArea;
    }
    showPlotWhenUsed();
}

void CxDataGraphForm::showPlotWhenUsed()
{
    const QList<CxCameraLineData *> lines = m_cameraLines.values();
    const bool plotted = std::any_of(lines.cbegin(), lines.cend(),
                                     [](const CxCameraLineData *line) { return line->plotEnabled; });
    // Otherwise the next tick of the measurement draws it.
    if (plotted && !isAnyCameraMeasuring())
        ui->plot->replot(QCustomPlot::rpRefreshHint);
    ui->plot->setVisible(plotted);
}
