#include "ui/DataFormat.h"

#include "ui/CellWidgets.h"
#include "ui/DataGraphForm.h"
#include "ui_DataGraphForm.h"
#include "zuCore/CxCameraManager.h"
#include "zuCore/CxCameraParam.h"
#include "zuCore/CxCameraParameters.h"
#include "zuCore/ZuApi.h"

#include <QComboBox>
#include <QVariant>

namespace {

CxCameraParam *formatParameter(CxCameraParameters *parameters)
{
    return parameters ? parameters->findParam(QLatin1String(ZU_PRM_IMAGE_DATA_FORMAT), false) : nullptr;
}

CxCameraParameters *parametersOf(ZUCORE_HANDLE camera)
{
    return CxCameraManager::instance()->cameraParameters(camera);
}

/// The format that a box made the camera take by following it; see below.
const char echoProperty[] = "echo";

/// Formats count from 0 in the order of the list: the value is the index. A new
/// selection writes the entry's format back to the camera. Where a camera counts
/// in another way that is a different one; following its notification in turn,
/// box and camera could chase each other for ever.
void followFormat(QComboBox *box, int value)
{
    const QVariant echo = box->property(echoProperty);
    box->setProperty(echoProperty, QVariant());
    if (echo.isValid() && echo.toInt() == value)
        return;
    const QVariant written = box->itemData(value);
    if (box->currentIndex() != value && written.isValid() && written.toInt() != value)
        box->setProperty(echoProperty, written);
    box->setCurrentIndex(value);
}

} // namespace

QComboBox *dataFormat::makeBox(ZUCORE_HANDLE camera)
{
    auto *box = new QComboBox;
    setCameraHandle(box, camera);
    const CxCameraParam *format = formatParameter(parametersOf(camera));
    if (!format)
        return box;
    const QList<CxCameraParam::CxEnumItem> formats = format->enumItems();
    for (const CxCameraParam::CxEnumItem &item : formats)
        box->addItem(item.name, item.value);
    int present = 0;
    if (zuApi_GetParamInt(camera, ZU_PRM_IMAGE_DATA_FORMAT, present, nullptr)) {
        const int index = box->findData(present);
        if (index >= 0)
            box->setCurrentIndex(index);
    }
    return box;
}

void CxDataGraphForm::onComboboxFormatChanged(int newSel)
{
    const auto *box = qobject_cast<QComboBox *>(sender());
    void *camera = cameraHandle(box);
    // A box without a selection has no format to write.
    if (!box || !m_cameraLines.contains(camera) || newSel < 0)
        return;
    CxCameraParameters *parameters = parametersOf(camera);
    CxCameraParam *format = formatParameter(parameters);
    if (!format)
        return;
    format->setParamValue(CxValue(box->itemData(newSel, Qt::UserRole).toInt()));
    parameters->addParamCommitToBatch(QLatin1String(ZU_PRM_IMAGE_DATA_FORMAT));
    parameters->endCommitBatch(CxCameraParameters::eCommitRefreshChanged);
}

void CxDataGraphForm::onComboboxFormatChangedExt(ZUCORE_HANDLE hCam)
{
    if (!m_cameraLines.contains(hCam) || m_measureMode != MeasureModeAcquisition)
        return;
    for (int row = 0; row < ui->table->rowCount(); ++row) {
        auto *box = qobject_cast<QComboBox *>(ui->table->cellWidget(row, acquisitionColumn::DataFormat));
        if (!box || cameraHandle(box) != hCam)
            continue;
        if (const CxCameraParam *format = formatParameter(parametersOf(hCam)))
            followFormat(box, format->paramValue().toInt());
        return;
    }
}
