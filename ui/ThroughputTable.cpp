#include "ui/DataGraphForm.h"

#include "ui/CameraSettings.h"
#include "ui/CellWidgets.h"
#include "ui_DataGraphForm.h"
#include "zuCore/CxCameraManager.h"
#include "zuCore/CxCameraParameters.h"

namespace {

constexpr int largestSpeed = 10000;          // MB/s
constexpr int largestBufferSize = 100000000; // kB
constexpr int largestAxisBound = 10000;      // MB/s
/// A camera's plot area: its title and its axes.
constexpr unsigned int layoutRowsPerCamera = 2;

struct Quantity
{
    const char *name; ///< of its graph
    const char *toolTip;
    QColor color;
};

const Quantity quantities[] = {
    {QT_TRANSLATE_NOOP("CxDataGraphForm", "Min throughput"),
     QT_TRANSLATE_NOOP("CxDataGraphForm", "Minimum data rate in whole data set"), QColor(255, 165, 0)},
    {QT_TRANSLATE_NOOP("CxDataGraphForm", "Max buffer level"),
     QT_TRANSLATE_NOOP("CxDataGraphForm", "Internal camera buffer fill percentage"), QColor(30, 144, 255)},
};

constexpr int centredItems[] = {
    throughputColumn::Status,         throughputColumn::AvgThroughput,       throughputColumn::MinThroughput,
    throughputColumn::MaxBufferLevel, throughputColumn::BufferOverflowCount,
};

void addColumns(CxDataGraphForm &form)
{
    using Form = CxDataGraphForm;
    form.AddTableItem(throughputColumn::Camera, Form::tr("Camera"), QString());
    form.AddTableItem(throughputColumn::Status, Form::tr("Status"), Form::tr("Data gap measurement status"));
    form.AddTableItem(throughputColumn::Measure, Form::tr("Measure"), Form::tr("Start/Stop Measurement"));
    form.AddTableItem(throughputColumn::AvgThroughput, Form::tr("Avg throughput"),
                      Form::tr("Average data rate"));
    form.AddTableItem(throughputColumn::MinThroughput, Form::tr("Min throughput"),
                      Form::tr("Minimum data rate in whole data set"));
    form.AddTableItem(throughputColumn::MaxBufferLevel, Form::tr("Max buffer level"),
                      Form::tr("Internal camera buffer fill percentage"));
    form.AddTableItem(throughputColumn::BufferOverflowCount, Form::tr("Buffer overflow count"),
                      Form::tr("Number of times internal camera buffer was totally filled"));
    form.AddTableItem(throughputColumn::ExportData, Form::tr("Export data"),
                      Form::tr("Export data to .csv report"));
    form.AddTableItem(throughputColumn::RequiredThroughput, Form::tr("Required throughput"),
                      Form::tr("Expected sensor speed for evaluation"));
    form.AddTableItem(throughputColumn::CameraBufferSize, Form::tr("Camera buffer size"),
                      Form::tr("Size of internal camera buffer in bytes"));
    form.AddTableItem(throughputColumn::Graph, Form::tr("Graph"),
                      Form::tr("Enable/Disable plotting of measured data"));
    form.AddTableItem(throughputColumn::VerticalAxis, Form::tr("Y Axis scaling"),
                      Form::tr("Enable/Disable Y axis automatic scaling or set manual axis range"));
}

QTableWidgetItem *makeCameraItem(const CxCameraLineData &line)
{
    auto *item = new QTableWidgetItem(line.cameraName);
    setCameraHandle(item, line.cameraHandle);
    return item;
}

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

QWidget *makePlotCell(CxDataGraphForm *form, const CxCameraLineData &line)
{
    const cells::CheckCell cell = cells::makeCheck(line.cameraHandle);
    QObject::connect(cell.check, &QCheckBox::clicked, form, &CxDataGraphForm::onChkCamPlotData);
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
    table->setItem(row, throughputColumn::Camera, makeCameraItem(line));
    for (const int column : centredItems)
        table->setItem(row, column, cells::makeCentredItem());

    // The engine may have been measuring since before the table was rebuilt.
    const bool measuring = line.isMeasurementRunning();
    QPushButton *measure = cells::makeButton(line.cameraHandle, measuring ? CxDataGraphForm::tr("Stop")
                                                                          : CxDataGraphForm::tr("Start"));
    QObject::connect(measure, &QPushButton::clicked, form, &CxDataGraphForm::onBtnMeasure);
    table->setCellWidget(row, throughputColumn::Measure, measure);

    QPushButton *exportData = cells::makeButton(line.cameraHandle, CxDataGraphForm::tr("Export Data..."));
    exportData->setEnabled(!measuring);
    table->setCellWidget(row, throughputColumn::ExportData, exportData);

    table->setCellWidget(row, throughputColumn::RequiredThroughput, makeSpeedCell(form, line));
    table->setCellWidget(row, throughputColumn::CameraBufferSize, makeBufferSizeCell(form, line));
    table->setCellWidget(row, throughputColumn::Graph, makePlotCell(form, line));
    table->setCellWidget(row, throughputColumn::VerticalAxis, makeAxisCell(form, line));
}

void fillPlotTable(QTableWidget *table, CxDataGraphForm &form)
{
    table->setColumnCount(2);
    table->setRowCount(int(std::size(quantities)));
    table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    cells::setRowHeight(table);
    int row = 0;
    for (const Quantity &quantity : quantities)
        form.AddPlotTableItem(row++, QLatin1String(quantity.name), CxDataGraphForm::tr(quantity.toolTip),
                              quantity.color);
    // No wider than a check box: the table is narrow and the names need the room.
    table->horizontalHeader()->setMinimumSectionSize(1);
    table->resizeColumnsToContents();
    table->resizeRowsToContents();
}

} // namespace

void CxDataGraphForm::AddTableItemsThrougput()
{
    CxCameraManager *cameras = CxCameraManager::instance();
    const QList<ZUCORE_HANDLE> opened = cameras->openedCameras();
    ui->table->setColumnCount(throughputColumn::Count);
    addColumns(*this);
    ui->table->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    ui->table->verticalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
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
        addRow(ui->table, row, this, *line);
        updateCameraListRow(camera);
        line->plotEnabled = true;
        AddCameraPlotThroughput(camera, layoutRow, line->cameraName);
        layoutRow += layoutRowsPerCamera;
        ++row;
    }
    // Cameras without a parameter set have no row.
    ui->table->setRowCount(row);
    // Every row's camera is plotted now, even if the user had hidden them all.
    if (row > 0)
        ui->plot->show();
    fillPlotTable(ui->tablePlotCheck, *this);
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
