#include "ui/TableRows.h"

#include "ui/DataGraphForm.h"

#include <QCheckBox>
#include <QHeaderView>
#include <QPushButton>
#include <QStyle>

namespace {

constexpr double smallestFont = 6.5; ///< points

} // namespace

namespace tableRows {

void addColumn(CxDataGraphForm &form, int index, const Column &column)
{
    form.AddTableItem(index, CxDataGraphForm::tr(column.header),
                      column.toolTip ? CxDataGraphForm::tr(column.toolTip) : QString());
}

QTableWidgetItem *makeCameraItem(const CxCameraLineData &line)
{
    auto *item = new QTableWidgetItem(line.cameraName);
    setCameraHandle(item, line.cameraHandle);
    return item;
}

QPushButton *makeMeasureButton(CxDataGraphForm *form, CxCameraLineData &line)
{
    QPushButton *button =
        cells::makeButton(line.cameraHandle, line.isMeasurementRunning() ? CxDataGraphForm::tr("Stop")
                                                                         : CxDataGraphForm::tr("Start"));
    QObject::connect(button, &QPushButton::clicked, form, &CxDataGraphForm::onBtnMeasure);
    return button;
}

QPushButton *makeExportButton(CxDataGraphForm *form, const CxCameraLineData &line)
{
    QPushButton *button = cells::makeButton(line.cameraHandle, CxDataGraphForm::tr("Export Data..."));
    QObject::connect(button, &QPushButton::clicked, form, &CxDataGraphForm::onBtnCamExportData);
    return button;
}

QWidget *makePlotCell(CxDataGraphForm *form, const CxCameraLineData &line)
{
    const cells::CheckCell cell = cells::makeCheck(line.cameraHandle);
    QObject::connect(cell.check, &QCheckBox::clicked, form, &CxDataGraphForm::onChkCamPlotData);
    return cell.container;
}

void preparePlotTable(QTableWidget *table, int rows)
{
    table->setColumnCount(2);
    table->setRowCount(rows);
    table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    cells::setRowHeight(table);
}

void addPlotTableRow(CxDataGraphForm &form, int row, const Quantity &quantity)
{
    form.AddPlotTableItem(row, QLatin1String(quantity.name), CxDataGraphForm::tr(quantity.toolTip),
                          QColor(quantity.color));
}

void fitPlotTable(QTableWidget *table)
{
    // No wider than a check box: the table is narrow and the names need the room.
    table->horizontalHeader()->setMinimumSectionSize(1);
    const int room = table->maximumWidth() - 2 * table->frameWidth() -
                     table->style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    QFont font = table->parentWidget()->font();
    for (;;) {
        table->setFont(font);
        table->resizeColumnsToContents();
        if (table->horizontalHeader()->length() <= room || font.pointSizeF() <= smallestFont)
            break;
        font.setPointSizeF(font.pointSizeF() - 0.5);
    }
    table->resizeRowsToContents();
}

} // namespace tableRows
