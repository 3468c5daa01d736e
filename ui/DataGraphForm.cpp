#include "ui/DataGraphForm.h"

#include "ui/CellWidgets.h"
#include "ui/ColouredTextDelegate.h"
#include "ui/TimeAxis.h"
#include "ui_DataGraphForm.h"
#include "zuCore/CxCameraManager.h"
#include "zuCoreGui/IxAppDelegate.h"

namespace {

constexpr int refreshPeriodMs = 1000;

void allowTimeNavigation(QCustomPlot *plot)
{
    plot->setInteraction(QCP::iRangeDrag);
    plot->setInteraction(QCP::iRangeZoom);
    plot->setNoAntialiasingOnDrag(true);
}

void setUpTable(QTableWidget *table)
{
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setFocusPolicy(Qt::NoFocus);
    table->setSelectionMode(QAbstractItemView::NoSelection);
    cells::setRowHeight(table);
    table->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
}

} // namespace

CxDataGraphForm::CxDataGraphForm(QWidget *parent)
    : QWidget(parent)
    , ui(new Ui::CxDataGraphForm)
{
    ui->setupUi(this);
    IxAppDelegate::instance()->registerPlotWidget(ui->plot);
    allowTimeNavigation(ui->plot);
    setUpTable(ui->table);
    ui->table->setItemDelegate(new ColouredTextDelegate(ui->table));
    ui->tablePlotCheck->setItemDelegate(new ColouredTextDelegate(ui->tablePlotCheck));
    ui->tablePlotCheck->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    ui->btnExport->addSupportedExportType(CxExportToolButton::eExportFile);
    ui->btnExport->addSupportedExportType(CxExportToolButton::eExportClipboard);
    ui->btnExport->setExportType(CxExportToolButton::eExportFile);
    updateCameraList();

    connect(ui->btnExport, &CxExportToolButton::exportClicked, this, &CxDataGraphForm::onBtnExport);
    const CxCameraManager *cameras = CxCameraManager::instance();
    connect(cameras, &CxCameraManager::cameraOpened, this, &CxDataGraphForm::updateCameraList);
    connect(cameras, &CxCameraManager::cameraClosed, this, &CxDataGraphForm::removeCameraListRow);
    connect(cameras, &CxCameraManager::acquisitionStarted, this, &CxDataGraphForm::updateCameraListRow);
    connect(cameras, &CxCameraManager::acquisitionFinished, this, &CxDataGraphForm::updateCameraListRow);
    connect(cameras, &CxCameraManager::imageFormatChanged, this,
            &CxDataGraphForm::onComboboxFormatChangedExt);
    connect(&m_timer, &QTimer::timeout, this, &CxDataGraphForm::timerSignal);
    m_timer.setInterval(refreshPeriodMs);
    m_timer.start();

    m_timeOrigin = timeaxis::microsecondsOfDay(QTime::currentTime());
}

CxDataGraphForm::~CxDataGraphForm()
{
    // Empty before the host hears of a released camera: what it does then may
    // come back as a signal.
    const QMap<void *, CxCameraLineData *> lines = m_cameraLines;
    m_cameraLines.clear();
    for (auto line = lines.cbegin(); line != lines.cend(); ++line) {
        const bool measured = line.value()->isMeasurementRunning();
        CxCameraLineData::discard(line.value());
        if (measured)
            IxAppDelegate::instance()->setCameraControlEnabled(line.key(), true);
    }
    delete ui;
}
