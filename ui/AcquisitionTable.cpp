#include "ui/DataGraphForm.h"

#include "ui/DataFormat.h"
#include "ui/TableRows.h"
#include "ui_DataGraphForm.h"

#include <QComboBox>
#include <QPushButton>

namespace {

constexpr tableRows::Column formatColumn = {QT_TRANSLATE_NOOP("CxDataGraphForm", "Data Format"),
                                            QT_TRANSLATE_NOOP("CxDataGraphForm", "Output data format.")};
constexpr tableRows::Column counterColumn(const CounterQuantity &counter)
{
    return {counter.quantity.name, counter.quantity.toolTip};
}

/// In the order of acquisitionColumn.
constexpr tableRows::Column columns[] = {
    tableRows::camera,
    tableRows::status,
    formatColumn,
    tableRows::measure,
    counterColumn(quantities::transferred),
    counterColumn(quantities::plottedCounters[0]),
    counterColumn(quantities::plottedCounters[1]),
    counterColumn(quantities::plottedCounters[2]),
    counterColumn(quantities::plottedCounters[3]),
    counterColumn(quantities::plottedCounters[4]),
    tableRows::exportData,
    tableRows::graph,
};
static_assert(std::size(columns) == acquisitionColumn::Count);
static_assert(std::size(quantities::plottedCounters) ==
              acquisitionColumn::ExportData - acquisitionColumn::FirstPlottedCounter);

QTableWidgetItem *makeCounterItem()
{
    QTableWidgetItem *item = cells::makeCentredItem();
    item->setForeground(QColor(Qt::white));
    return item;
}

QWidget *makeFormatCell(CxDataGraphForm *form, const CxCameraLineData &line)
{
    QComboBox *box = dataFormat::makeBox(line.cameraHandle);
    // After the camera's format was selected: showing it must not write it.
    QObject::connect(box, static_cast<void (QComboBox::*)(int)>(&QComboBox::currentIndexChanged), form,
                     &CxDataGraphForm::onComboboxFormatChanged);
    return box;
}

void addRow(QTableWidget *table, int row, CxDataGraphForm *form, CxCameraLineData &line)
{
    table->setItem(row, acquisitionColumn::Camera, tableRows::makeCameraItem(line));
    table->setItem(row, acquisitionColumn::Status, cells::makeCentredItem());
    table->setCellWidget(row, acquisitionColumn::DataFormat, makeFormatCell(form, line));
    table->setCellWidget(row, acquisitionColumn::Measure, tableRows::makeMeasureButton(form, line));
    for (int column = acquisitionColumn::Transferred; column < acquisitionColumn::ExportData; ++column)
        table->setItem(row, column, makeCounterItem());
    // Counters can be exported while the camera measures, unlike samples.
    table->setCellWidget(row, acquisitionColumn::ExportData, tableRows::makeExportButton(form, line));
    table->setCellWidget(row, acquisitionColumn::Graph, tableRows::makePlotCell(form, line));
}

} // namespace

void CxDataGraphForm::AddTableItemsAcquisition()
{
    ui->table->setColumnCount(acquisitionColumn::Count);
    for (int column = 0; column < acquisitionColumn::Count; ++column)
        tableRows::addColumn(*this, column, columns[column]);
    addCameraRows([this](int row, CxCameraLineData &line) { addRow(ui->table, row, this, line); });

    int row = 0;
    tableRows::preparePlotTable(ui->tablePlotCheck, int(std::size(quantities::plottedCounters)) + 1);
    for (const CounterQuantity &counter : quantities::plottedCounters)
        tableRows::addPlotTableRow(*this, row++, counter.quantity);
    tableRows::addPlotTableRow(*this, row, quantities::frameRate);
    tableRows::fitPlotTable(ui->tablePlotCheck);
}

void CxDataGraphForm::updateCounterCells(ZUCORE_HANDLE hCam, int row)
{
    updateTableCounterItem(hCam, row, acquisitionColumn::Transferred, quantities::transferred.selector);
    int column = acquisitionColumn::FirstPlottedCounter;
    for (const CounterQuantity &counter : quantities::plottedCounters)
        updateTableCounterItem(hCam, row, column++, counter.selector);
}

void CxDataGraphForm::updateTableCounterItem(ZUCORE_HANDLE hCam, int row, int col, ZU_COUNTER_SELECTOR sel)
{
    CxCameraLineData *line = m_cameraLines.value(hCam);
    QTableWidgetItem *item = ui->table->item(row, col);
    if (!line || !item)
        return;
    const bool supported = line->IsCounterSupported(sel);
    item->setForeground(supported ? QColor(Qt::white) : QColor(128, 128, 128));
    item->setText(supported ? QString::number(line->GetCounterValue(sel)) : QStringLiteral("-"));
    item->setFlags(Qt::NoItemFlags);
}
