#include "ui/DataGraphForm.h"

#include "ui/CameraSettings.h"
#include "ui/CellWidgets.h"
#include "ui_DataGraphForm.h"

namespace {

/// The edit in the camera's row; null where it has none.
QLineEdit *editOf(const QTableWidget *table, int column, void *camera)
{
    const int row = cells::rowOf<QLineEdit>(table, column, cells::FirstEdit, camera);
    return row < 0 ? nullptr : cells::child<QLineEdit>(table, row, column, cells::FirstEdit);
}

} // namespace

void CxDataGraphForm::onChkCamAutoTransport(bool state)
{
    const auto *box = qobject_cast<QCheckBox *>(sender());
    void *camera = cameraHandle(box);
    CxCameraLineData *line = m_cameraLines.value(camera);
    if (!box || !line)
        return;
    cameraSettings::store(*line, &CxCameraLineData::autoTransportSpeed, state);
    const unsigned int speed = state ? cameraSettings::readTransportSpeed(*line) : 0;

    QLineEdit *edit = editOf(ui->table, throughputColumn::RequiredThroughput, camera);
    if (!edit)
        return;
    if (state)
        edit->setText(QString::number(speed));
    edit->setEnabled(!state);
}

void CxDataGraphForm::onEditCamTransportChanged(const QString &text)
{
    const auto *edit = qobject_cast<QLineEdit *>(sender());
    CxCameraLineData *line = m_cameraLines.value(cameraHandle(edit));
    if (!edit || !line)
        return;
    cameraSettings::store(*line, &CxCameraLineData::avgTransportSpeedMBps,
                          static_cast<unsigned int>(text.toInt()));
    m_preparedWork = 0;
}

void CxDataGraphForm::onChkCamAutoInternalBuffer(bool state)
{
    const auto *box = qobject_cast<QCheckBox *>(sender());
    void *camera = cameraHandle(box);
    CxCameraLineData *line = m_cameraLines.value(camera);
    if (!box || !line)
        return;
    cameraSettings::store(*line, &CxCameraLineData::autoInternalBuffSize, state);
    const quint64 bytes = state ? cameraSettings::readBufferSize(*line) : 0;

    QLineEdit *edit = editOf(ui->table, throughputColumn::CameraBufferSize, camera);
    if (!edit)
        return;
    if (state)
        edit->setText(QString::number(bytes / 1000));
    edit->setEnabled(!state);
}

void CxDataGraphForm::onEditCamInternalBufferChanged(const QString &text)
{
    const auto *edit = qobject_cast<QLineEdit *>(sender());
    CxCameraLineData *line = m_cameraLines.value(cameraHandle(edit));
    if (!edit || !line)
        return;
    // The product is a 32-bit number that wraps: from 2147484 kB on it differs
    // from what was typed, and a negative one becomes a huge size.
    const auto bytes = static_cast<qint32>(static_cast<quint32>(text.toInt()) * 1000U);
    cameraSettings::store(*line, &CxCameraLineData::internalBuffSize,
                          static_cast<quint64>(static_cast<qint64>(bytes)));
    m_preparedWork = 0;
}

void CxDataGraphForm::UpdateCameraAutoTransport(void *hCam)
{
    if (m_measureMode != MeasureModeThroughput)
        return;
    CxCameraLineData *line = m_cameraLines.value(hCam);
    const int column = throughputColumn::RequiredThroughput;
    for (int row = 0; line && row < ui->table->rowCount(); ++row) {
        const auto *box = cells::child<QCheckBox>(ui->table, row, column, cells::CheckBox);
        auto *edit = cells::child<QLineEdit>(ui->table, row, column, cells::FirstEdit);
        if (!box || !edit || cameraHandle(edit) != hCam)
            continue;
        if (box->isEnabled() && box->isChecked())
            edit->setText(QString::number(cameraSettings::readTransportSpeed(*line)));
        return;
    }
}

void CxDataGraphForm::clearFocusAfterEditReturnPressed()
{
    if (auto *edit = qobject_cast<QLineEdit *>(sender()))
        edit->clearFocus();
}
