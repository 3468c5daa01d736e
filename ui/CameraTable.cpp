#include "ui/DataGraphForm.h"

#include "measurement/ExportGate.h"
#include "measurement/Log.h"
#include "ui/CameraSettings.h"
#include "ui/CellWidgets.h"
#include "ui/PlotStyle.h"
#include "ui_DataGraphForm.h"
#include "zuCore/CxCameraManager.h"
#include "zuCore/CxCameraParameters.h"
#include "zuCoreGui/IxAppDelegate.h"

namespace {

int rowOfCamera(const QTableWidget *table, void *camera)
{
    for (int row = 0; row < table->rowCount(); ++row) {
        const QTableWidgetItem *item = table->item(row, throughputColumn::Camera);
        if (item && cameraHandle(item) == camera)
            return row;
    }
    return -1;
}

QString displayName(const CxCameraInfo &info)
{
    const QString identifier = info.userId.isEmpty() ? info.serialNumber : info.userId;
    return info.modelName + QStringLiteral(" (") + identifier + QLatin1Char(')');
}

void clearPlotTable(QTableWidget *table)
{
    table->clear();
    table->horizontalHeader()->hide();
    table->verticalHeader()->hide();
}

/// Every row shows, with a horizontal scroll bar or without.
void fitHeight(QTableWidget *table)
{
    constexpr int frame = 3;
    // The header has its new height only once the table has been laid out.
    int height = table->style()->pixelMetric(QStyle::PM_ScrollBarExtent) +
                 table->horizontalHeader()->sizeHint().height() + frame;
    table->resizeRowsToContents();
    for (int row = 0; row < table->rowCount(); ++row)
        height += table->rowHeight(row);
    table->setFixedHeight(height);
}

} // namespace

void CxDataGraphForm::updateCameraList()
{
    if (CxExportGate::putOff(this, [this] { updateCameraList(); }))
        return;
    ui->table->clearContents();
    m_plotCheckBoxes.clear();
    clearPlotTable(ui->tablePlotCheck);

    const QList<ZUCORE_HANDLE> opened = CxCameraManager::instance()->openedCameras();
    ui->btnStartAll->setEnabled(!opened.isEmpty());
    ui->table->setRowCount(opened.size());
    switch (m_measureMode) {
    case MeasureModeThroughput:
        AddTableItemsThrougput();
        break;
    case MeasureModeAcquisition:
        AddTableItemsAcquisition();
        break;
    default:
        cxLogFailure("CxDataGraphForm::updateCameraList", "Unknown measurement mode is selected");
        return;
    }
    updateColumnNames();

    const QList<void *> known = m_cameraLines.keys();
    for (void *camera : known) {
        if (!opened.contains(camera))
            removeCameraLine(camera);
    }

    on_btnResetZoom_clicked();
    on_resetPan_clicked();
    fitHeight(ui->table);
}

void CxDataGraphForm::updateCameraListRow(ZUCORE_HANDLE hCam)
{
    CxCameraLineData *line = m_cameraLines.value(hCam);
    if (!line)
        return;
    const int measureColumn = measureCellColumn();
    if (measureColumn < 0) {
        cxLogFailure("CxDataGraphForm::updateCameraListRow", "Unknown measurement mode is selected");
        return;
    }
    const int row = rowOfCamera(ui->table, hCam);
    if (row < 0)
        return;

    const bool hostAcquires = CxCameraManager::instance()->isCameraRunning(hCam);
    QString status = line->isMeasurementRunning() ? tr("Testing") : tr("Stopped");
    if (hostAcquires)
        status = tr("Acq");
    updateTableItem(row, throughputColumn::Status, status);
    if (QWidget *button = ui->table->cellWidget(row, measureColumn))
        button->setEnabled(!hostAcquires);

    if (m_measureMode == MeasureModeThroughput)
        updateThroughputCells(row, *line);
    else
        updateCounterCells(hCam, row);
}

int CxDataGraphForm::measureCellColumn() const
{
    switch (m_measureMode) {
    case MeasureModeThroughput:
        return throughputColumn::Measure;
    case MeasureModeAcquisition:
        return acquisitionColumn::Measure;
    default:
        return -1;
    }
}

void CxDataGraphForm::removeCameraListRow(ZUCORE_HANDLE hCam)
{
    CxCameraLineData *line = m_cameraLines.value(hCam);
    // Only the exported camera has to wait: others can still be put back into
    // their former state, which the host no longer allows afterwards.
    if (line && line->isExporting() &&
        CxExportGate::putOff(this, [this, hCam] { removeCameraListRow(hCam); }))
        return;
    if (line) {
        removeCameraLine(hCam);
        const int row = rowOfCamera(ui->table, hCam);
        if (row >= 0)
            ui->table->removeRow(row);
    }
    if (CxCameraManager::instance()->openedCameras().isEmpty())
        ui->btnStartAll->setEnabled(false);
}

void CxDataGraphForm::addCameraRows(const std::function<void(int, CxCameraLineData &)> &makeRow)
{
    CxCameraManager *cameras = CxCameraManager::instance();
    const QList<ZUCORE_HANDLE> opened = cameras->openedCameras();
    clearPlotAreas();

    int row = 0;
    unsigned int layoutRow = 0;
    for (ZUCORE_HANDLE camera : opened) {
        const CxCameraParameters *parameters = cameras->cameraParameters(camera);
        if (!parameters)
            continue;
        CxCameraLineData *line = m_cameraLines.value(camera);
        if (!line)
            line = addCameraLine(camera, parameters->cameraInfo());
        cameraSettings::store(*line, &CxCameraLineData::measureMode, m_measureMode);
        makeRow(row, *line);
        updateCameraListRow(camera);
        line->plotEnabled = true;
        addCameraPlot(camera, layoutRow, line->cameraName);
        layoutRow += plotstyle::rowsPerArea;
        ++row;
    }
    // Cameras without a parameter set have no row.
    ui->table->setRowCount(row);
    // Every row's camera is plotted now, even if the user had hidden them all.
    if (row > 0)
        ui->plot->show();
}

CxCameraLineData *CxDataGraphForm::addCameraLine(ZUCORE_HANDLE hCam, const CxCameraInfo &info)
{
    auto *line = new CxCameraLineData;
    line->cameraHandle = hCam;
    setDefaultCameraSettings(line);
    line->cameraName = displayName(info);
    m_cameraLines.insert(hCam, line);
    return line;
}

void CxDataGraphForm::removeCameraLine(void *hCam)
{
    CxCameraLineData *line = m_cameraLines.value(hCam);
    const bool measured = line->stopMeasurement();
    m_cameraLines.remove(hCam);
    delete line;
    if (!measured)
        return;
    IxAppDelegate::instance()->setCameraControlEnabled(hCam, true);
    // It may have been the last one that kept the setup out of reach.
    DisableUiForMeasurement(hCam, false);
}

void CxDataGraphForm::AddTableItem(int col, const QString &header, const QString &toolTip)
{
    auto *item = new QTableWidgetItem(header);
    if (!toolTip.isEmpty())
        item->setData(Qt::ToolTipRole, toolTip);
    ui->table->setHorizontalHeaderItem(col, item);
}

void CxDataGraphForm::AddPlotTableItem(int row, const QString &name, const QString &toolTip,
                                       const QColor &color)
{
    const cells::CheckCell cell = cells::makeCheck(nullptr);
    setPlotName(cell.check, name);
    m_plotCheckBoxes.append(cell.check);

    // The name also tells the graphs apart; only its display is translated.
    QTableWidgetItem *item = cells::makeCentredItem(tr(name.toUtf8().constData()));
    item->setForeground(color);
    item->setToolTip(toolTip);

    ui->tablePlotCheck->setCellWidget(row, 0, cell.container);
    ui->tablePlotCheck->setItem(row, 1, item);
}

void CxDataGraphForm::updateTableItem(int row, int col, const QString &val)
{
    if (QTableWidgetItem *item = ui->table->item(row, col))
        item->setText(val);
}

void CxDataGraphForm::DisableTableWidget(int row, int col, void *hCam, bool disable)
{
    QWidget *widget = ui->table->cellWidget(row, col);
    if (widget && cameraHandle(widget) == hCam)
        widget->setEnabled(!disable);
}
