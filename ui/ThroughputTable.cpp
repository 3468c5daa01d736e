#include "ui/DataGraphForm.h"

#include "ui/CameraSettings.h"
#include "ui/TableRows.h"
#include "ui_DataGraphForm.h"

#include <QCheckBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QPushButton>

namespace {

constexpr int largestSpeed = 10000;          // MB/s
constexpr int largestBufferSize = 100000000; // kB
constexpr int largestAxisBound = 10000;      // MB/s

/// In the order of throughputColumn.
constexpr tableRows::Column columns[] = {
    tableRows::camera,
    tableRows::status,
    tableRows::measure,
    {QT_TRANSLATE_NOOP("CxDataGraphForm", "Avg throughput"),
     QT_TRANSLATE_NOOP("CxDataGraphForm", "Average data rate")},
    {quantities::minThroughput.name, quantities::minThroughput.toolTip},
    {quantities::maxBufferLevel.name, quantities::maxBufferLevel.toolTip},
    {QT_TRANSLATE_NOOP("CxDataGraphForm", "Buffer overflow count"),
     QT_TRANSLATE_NOOP("CxDataGraphForm", "Number of times internal camera buffer was totally filled")},
    tableRows::exportData,
    {QT_TRANSLATE_NOOP("CxDataGraphForm", "Required throughput"),
     QT_TRANSLATE_NOOP("CxDataGraphForm", "Expected sensor speed for evaluation")},
    {QT_TRANSLATE_NOOP("CxDataGraphForm", "Camera buffer size"),
     QT_TRANSLATE_NOOP("CxDataGraphForm", "Size of internal camera buffer in bytes")},
    tableRows::graph,
    {QT_TRANSLATE_NOOP("CxDataGraphForm", "Y Axis scaling"),
     QT_TRANSLATE_NOOP("CxDataGraphForm",
                       "Enable/Disable Y axis automatic scaling or set manual axis range")},
};
static_assert(std::size(columns) == throughputColumn::Count);

constexpr int centredItems[] = {
    throughputColumn::Status,         throughputColumn::AvgThroughput,       throughputColumn::MinThroughput,
    throughputColumn::MaxBufferLevel, throughputColumn::BufferOverflowCount,
};

void setAutomatic(const cells::EditCell &cell, bool automatic)
{
    cell.automatic->setChecked(automatic);
    cell.edit->setEnabled(!automatic);
}

QWidget *makeSpeedCell(CxDataGraphForm *form, CxCameraLineData &line)
{
    const cells::EditCell cell = cells::makeEdit(line.cameraHandle, largestSpeed);
    setAutomatic(cell, line.autoTransportSpeed);
    if (line.autoTransportSpeed)
        cameraSettings::readTransportSpeed(line);
    cell.edit->setText(QString::number(line.avgTransportSpeedMBps));
    QObject::connect(cell.automatic, &QCheckBox::clicked, form, &CxDataGraphForm::onChkCamAutoTransport);
    QObject::connect(cell.edit, &QLineEdit::textChanged, form, &CxDataGraphForm::onEditCamTransportChanged);
    QObject::connect(cell.edit, &QLineEdit::returnPressed, form,
                     &CxDataGraphForm::clearFocusAfterEditReturnPressed);
    return cell.container;
}

QWidget *makeBufferSizeCell(CxDataGraphForm *form, CxCameraLineData &line)
{
    const cells::EditCell cell = cells::makeEdit(line.cameraHandle, largestBufferSize);
    setAutomatic(cell, line.autoInternalBuffSize);
    if (line.autoInternalBuffSize)
        cameraSettings::readBufferSize(line);
    // Before the connection: whole kB, as shown, must not become the size.
    cell.edit->setText(QString::number(line.internalBuffSize / 1000));
    QObject::connect(cell.automatic, &QCheckBox::clicked, form, &CxDataGraphForm::onChkCamAutoInternalBuffer);
    QObject::connect(cell.edit, &QLineEdit::textChanged, form,
                     &CxDataGraphForm::onEditCamInternalBufferChanged);
    QObject::connect(cell.edit, &QLineEdit::returnPressed, form,
                     &CxDataGraphForm::clearFocusAfterEditReturnPressed);
    return cell.container;
}

QWidget *makeAxisCell(CxDataGraphForm *form, const CxCameraLineData &line)
{
    const cells::RangeCell cell = cells::makeRange(line.cameraHandle, largestAxisBound);
    QObject::connect(cell.automatic, &QCheckBox::clicked, form, &CxDataGraphForm::onChkCamAutoVertAxis);
    QObject::connect(cell.minimum, &QLineEdit::textChanged, form,
                     &CxDataGraphForm::onEditVertScaleMinChanged);
    QObject::connect(cell.maximum, &QLineEdit::textChanged, form,
                     &CxDataGraphForm::onEditVertScaleMaxChanged);
    for (const QLineEdit *edit : {cell.minimum, cell.maximum})
        QObject::connect(edit, &QLineEdit::returnPressed, form,
                         &CxDataGraphForm::clearFocusAfterEditReturnPressed);
    return cell.container;
}

void addRow(QTableWidget *table, int row, CxDataGraphForm *form, CxCameraLineData &line)
{
    table->setItem(row, throughputColumn::Camera, tableRows::makeCameraItem(line));
    for (const int column : centredItems)
        table->setItem(row, column, cells::makeCentredItem());
    table->setCellWidget(row, throughputColumn::Measure, tableRows::makeMeasureButton(form, line));

    QPushButton *exportData = tableRows::makeExportButton(form, line);
    exportData->setEnabled(!line.isMeasurementRunning());
    table->setCellWidget(row, throughputColumn::ExportData, exportData);

    table->setCellWidget(row, throughputColumn::RequiredThroughput, makeSpeedCell(form, line));
    table->setCellWidget(row, throughputColumn::CameraBufferSize, makeBufferSizeCell(form, line));
    table->setCellWidget(row, throughputColumn::Graph, tableRows::makePlotCell(form, line));
    table->setCellWidget(row, throughputColumn::VerticalAxis, makeAxisCell(form, line));
}

} // namespace

void CxDataGraphForm::AddTableItemsThrougput()
{
    ui->table->setColumnCount(throughputColumn::Count);
    for (int column = 0; column < throughputColumn::Count; ++column)
        tableRows::addColumn(*this, column, columns[column]);
    ui->table->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    ui->table->verticalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    addCameraRows([this](int row, CxCameraLineData &line) { addRow(ui->table, row, this, line); });

    tableRows::preparePlotTable(ui->tablePlotCheck, 2);
    tableRows::addPlotTableRow(*this, 0, quantities::minThroughput);
    tableRows::addPlotTableRow(*this, 1, quantities::maxBufferLevel);
    tableRows::fitPlotTable(ui->tablePlotCheck);
}

void CxDataGraphForm::updateThroughputCells(int row, const CxCameraLineData &line)
{
    updateTableItem(row, throughputColumn::AvgThroughput, cells::wholeNumber(line.avgThroughput));
    updateTableItem(row, throughputColumn::MinThroughput, cells::wholeNumber(line.minThroughput));
    updateTableItem(row, throughputColumn::MaxBufferLevel,
                    cells::wholeNumber(line.maxBufferLevel) + QStringLiteral(" %"));
    updateTableItem(row, throughputColumn::BufferOverflowCount, QString::number(line.bufferOverflowCount));
}

void CxDataGraphForm::updateColumnNames()
{
    if (m_measureMode != MeasureModeThroughput)
        return;
    const auto rename = [this](int column, const QString &text) {
        if (QTableWidgetItem *item = ui->table->horizontalHeaderItem(column))
            item->setText(text);
    };
    const QString withUnit = QStringLiteral("%1 [%2]");
    const QString speedUnit = tr("MB/s");
    rename(throughputColumn::AvgThroughput, withUnit.arg(tr("Average\nthroughput"), speedUnit));
    rename(throughputColumn::MinThroughput, withUnit.arg(tr("Minimum\nthroughput"), speedUnit));
    rename(throughputColumn::BufferOverflowCount, tr("Buffer overflow\ncount"));
    rename(throughputColumn::RequiredThroughput, withUnit.arg(tr("Required\nthroughput"), speedUnit));
    rename(throughputColumn::CameraBufferSize, withUnit.arg(tr("Camera buffer\nsize"), tr("kB")));
    ui->table->resizeColumnsToContents();
}
