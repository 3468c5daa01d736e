#pragma once

#include "ui/CellWidgets.h"
#include "ui/Quantities.h"

class CxDataGraphForm;

/// What the camera table has in both modes.
namespace tableRows {

/// Header and tool tip, in the context of CxDataGraphForm; no tool tip where
/// that is null.
struct Column
{
    const char *header;
    const char *toolTip;
};

constexpr Column camera = {QT_TRANSLATE_NOOP("CxDataGraphForm", "Camera"), nullptr};
constexpr Column status = {QT_TRANSLATE_NOOP("CxDataGraphForm", "Status"),
                           QT_TRANSLATE_NOOP("CxDataGraphForm", "Data gap measurement status")};
constexpr Column measure = {QT_TRANSLATE_NOOP("CxDataGraphForm", "Measure"),
                            QT_TRANSLATE_NOOP("CxDataGraphForm", "Start/Stop Measurement")};
constexpr Column exportData = {QT_TRANSLATE_NOOP("CxDataGraphForm", "Export data"),
                               QT_TRANSLATE_NOOP("CxDataGraphForm", "Export data to .csv report")};
constexpr Column graph = {QT_TRANSLATE_NOOP("CxDataGraphForm", "Graph"),
                          QT_TRANSLATE_NOOP("CxDataGraphForm", "Enable/Disable plotting of measured data")};

void addColumn(CxDataGraphForm &form, int index, const Column &column);

// Cells of a camera's row, connected to the form's slots. A camera may have been
// measuring since before the table was rebuilt: its cells show that.

/// The camera's name, bearing its handle.
QTableWidgetItem *makeCameraItem(const CxCameraLineData &line);
QPushButton *makeMeasureButton(CxDataGraphForm *form, CxCameraLineData &line);
QPushButton *makeExportButton(CxDataGraphForm *form, const CxCameraLineData &line);
QWidget *makePlotCell(CxDataGraphForm *form, const CxCameraLineData &line);

/// Columns and rows of the table beside the plot, before its rows are added.
void preparePlotTable(QTableWidget *table, int rows);
void addPlotTableRow(CxDataGraphForm &form, int row, const Quantity &quantity);
void fitPlotTable(QTableWidget *table);

} // namespace tableRows
