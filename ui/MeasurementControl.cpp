#include "ui/DataGraphForm.h"

#include "measurement/ExportGate.h"
#include "measurement/Log.h"
#include "ui/CameraSettings.h"
#include "ui/CellWidgets.h"
#include "ui_DataGraphForm.h"
#include "zuCore/CxCameraManager.h"
#include "zuCoreGui/IxAppDelegate.h"

#include <QMessageBox>
#include <QPointer>

namespace {

/// Tells which camera is being switched, which blocks the window. It goes with
/// the slot that made it, however that ends.
class ProgressBox
{
public:
    explicit ProgressBox(QWidget *parent)
        : m_box(new QMessageBox(parent))
    {
        m_box->setAttribute(Qt::WA_DeleteOnClose);
        m_box->setStandardButtons(QMessageBox::NoButton);
        m_box->setModal(false);
        m_box->setTextFormat(Qt::PlainText); // names come from cameras
        m_box->setText(QString());
    }
    ~ProgressBox() { close(); }
    ProgressBox(const ProgressBox &) = delete;
    ProgressBox &operator=(const ProgressBox &) = delete;

    void showStopping(const QString &camera)
    {
        show(CxDataGraphForm::tr("Stopping measurement"),
             CxDataGraphForm::tr("Stopping camera %1...").arg(camera));
    }

    void showStarting(const QString &camera)
    {
        show(CxDataGraphForm::tr("Starting measurement"),
             CxDataGraphForm::tr("Starting camera %1...").arg(camera));
    }

    void close()
    {
        if (!m_box)
            return;
        m_box->hide();
        m_box->close();
        // A message box without a button to escape by refuses to close.
        if (m_box)
            m_box->deleteLater();
    }

private:
    /// Lets the event loop run, so that the box is painted.
    void show(const QString &title, const QString &text)
    {
        if (m_box) {
            m_box->setWindowTitle(title);
            m_box->setText(text);
            m_box->show();
        }
        QCoreApplication::processEvents();
    }

    QPointer<QMessageBox> m_box; ///< its parent's, which may go while events are processed
};

void showStartFailure(const QString &text)
{
    QMessageBox box(QMessageBox::Critical, CxDataGraphForm::tr("Failed to start measurement"), text,
                    QMessageBox::Ok);
    box.setTextFormat(Qt::PlainText);
    box.exec();
}

void setCameraControlEnabled(void *camera, bool enabled)
{
    IxAppDelegate::instance()->setCameraControlEnabled(camera, enabled);
}

} // namespace

void CxDataGraphForm::onBtnMeasure()
{
    const auto *button = qobject_cast<QPushButton *>(sender());
    if (button)
        switchMeasurement(cameraHandle(button));
}

void CxDataGraphForm::switchMeasurement(void *camera)
{
    if (CxExportGate::putOff(this, [this, camera] { switchMeasurement(camera); }))
        return;
    CxCameraLineData *line = m_cameraLines.value(camera);
    if (!line)
        return;

    const QPointer<CxDataGraphForm> self(this);
    ProgressBox progress(this);
    if (line->isMeasurementRunning()) {
        progress.showStopping(line->cameraName);
        line = self ? m_cameraLines.value(camera) : nullptr;
        if (!line)
            return;
        line->stopMeasurement();
        setCameraControlEnabled(camera, true);
        DisableUiForMeasurement(camera, false);
        UpdateMeasureButtonText(camera, tr("Start"));
    } else {
        progress.showStarting(line->cameraName);
        line = self ? m_cameraLines.value(camera) : nullptr;
        // A second click, handled meanwhile, may have started it.
        if (!line || line->isMeasurementRunning())
            return;
        UpdateCameraAutoTransport(camera);
        if (!startLine(line)) {
            progress.close();
            showStartFailure(tr("Camera %1 does not support data throughput analysis in Velmora. "
                                "See Error log for details.")
                                 .arg(line->cameraName));
            if (self)
                updateCameraListRow(camera);
            return;
        }
        setCameraControlEnabled(camera, false);
        DisableUiForMeasurement(camera, true);
        UpdateMeasureButtonText(camera, tr("Stop"));
    }
    progress.close();
    updateCameraListRow(camera);
}

void CxDataGraphForm::on_btnStartAll_clicked()
{
    if (CxExportGate::putOff(this, [this] { on_btnStartAll_clicked(); }))
        return;
    const QList<ZUCORE_HANDLE> cameras = CxCameraManager::instance()->openedCameras();
    const QPointer<CxDataGraphForm> self(this);
    bool measuring = false;
    if (ui->btnStartAll->text() == tr("Start All"))
        measuring = startCameras(cameras);
    else
        stopCameras(cameras);
    if (self)
        ui->btnStartAll->setText(measuring ? tr("Stop All") : tr("Start All"));
}

void CxDataGraphForm::stopCameras(const QList<ZUCORE_HANDLE> &cameras)
{
    const QPointer<CxDataGraphForm> self(this);
    ProgressBox progress(this);
    for (ZUCORE_HANDLE camera : cameras) {
        CxCameraLineData *line = m_cameraLines.value(camera);
        if (!line || !line->isMeasurementRunning())
            continue;
        progress.showStopping(line->cameraName);
        if (!self)
            return;
        line = m_cameraLines.value(camera);
        if (!line)
            continue;
        if (line->stopMeasurement())
            setCameraControlEnabled(camera, true);
        UpdateMeasureButtonText(camera, tr("Start"));
        updateCameraListRow(camera);
        DisableUiForMeasurement(camera, false);
    }
}

bool CxDataGraphForm::startCameras(const QList<ZUCORE_HANDLE> &cameras)
{
    const QPointer<CxDataGraphForm> self(this);
    ProgressBox progress(this);
    for (ZUCORE_HANDLE camera : cameras) {
        CxCameraLineData *line = m_cameraLines.value(camera);
        if (!line || line->isMeasurementRunning())
            continue;
        progress.showStarting(line->cameraName);
        if (!self)
            return false;
        line = m_cameraLines.value(camera);
        if (!line || line->isMeasurementRunning())
            continue;
        UpdateCameraAutoTransport(camera);
        if (!startLine(line)) {
            showStartFailure(tr("Camera %1 does not support \n data throughput analysis in Velmora.")
                                 .arg(line->cameraName));
            if (self) {
                progress.close();
                rollBackStart(cameras);
            }
            return false;
        }
        setCameraControlEnabled(camera, false);
        UpdateMeasureButtonText(camera, tr("Stop"));
        updateCameraListRow(camera);
        DisableUiForMeasurement(camera, true);
    }
    return true;
}

void CxDataGraphForm::rollBackStart(const QList<ZUCORE_HANDLE> &cameras)
{
    for (ZUCORE_HANDLE camera : cameras) {
        CxCameraLineData *line = m_cameraLines.value(camera);
        if (line && line->isMeasurementRunning()) {
            line->stopMeasurement();
            setCameraControlEnabled(camera, true);
        }
        updateCameraListRow(camera);
    }
}

bool CxDataGraphForm::startLine(CxCameraLineData *line)
{
    return line->startMeasurement(static_cast<unsigned int>(m_samplePeriod), m_maxSamples);
}

void CxDataGraphForm::UpdateMeasureButtonText(void *hCam, const QString &text)
{
    const int column = measureCellColumn();
    if (column < 0) {
        cxLogFailure("CxDataGraphForm::UpdateMeasureButtonText", "Unknown measurement mode is selected");
        return;
    }
    for (int row = 0; row < ui->table->rowCount(); ++row) {
        auto *button = qobject_cast<QPushButton *>(ui->table->cellWidget(row, column));
        if (button && cameraHandle(button) == hCam) {
            button->setText(text);
            return;
        }
    }
}

void CxDataGraphForm::DisableUiForMeasurement(void *hCam, bool disable)
{
    // In acquisition mode an item lies there: counters can be exported at any time.
    for (int row = 0; row < ui->table->rowCount(); ++row)
        DisableTableWidget(row, throughputColumn::ExportData, hCam, disable);

    ui->btnSetup->setEnabled(!isAnyCameraMeasuring());
}

void CxDataGraphForm::setDefaultCameraSettings(CxCameraLineData *line)
{
    cameraSettings::store(*line, &CxCameraLineData::sampleInterval,
                          static_cast<unsigned int>(m_samplePeriod));
    cameraSettings::store(*line, &CxCameraLineData::maxSamples, m_maxSamples);
}
