#include "ui/DataGraphForm.h"

#include "measurement/ExportGate.h"
#include "ui/CellWidgets.h"
#include "zuCoreGui/IxAppDelegate.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QMutexLocker>
#include <QPointer>
#include <QPushButton>

namespace {

// The dialogs below live on the heap: while they run the event loop the host may
// destroy the window, and with it what it is the parent of.

void showNothingToExport(QWidget *parent)
{
    const QPointer<QMessageBox> box(
        new QMessageBox(QMessageBox::Information, CxDataGraphForm::tr("Export Measured Data"),
                        CxDataGraphForm::tr("No measured data to export."), QMessageBox::Ok, parent));
    box->exec();
    delete box.data();
}

/// \return the chosen name as it was given, empty when the user chose none
QString askForFile(QWidget *parent)
{
    const QPointer<QFileDialog> dialog(new QFileDialog(
        parent, CxDataGraphForm::tr("Select Output File for Measured Data"),
        IxAppDelegate::instance()->defaultSavePath(), CxDataGraphForm::tr("CSV files (*.csv)")));
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    QString fileName;
    if (dialog->exec() == QDialog::Accepted && dialog)
        fileName = dialog->selectedFiles().value(0);
    delete dialog.data();
    return fileName;
}

bool isEmpty(CxCameraLineData &line)
{
    const QMutexLocker locker(&line.mutex);
    switch (line.measureMode) {
    case MeasureModeThroughput:
        return line.frames.isEmpty();
    case MeasureModeAcquisition:
        // Without records there is still the header to export.
        return line.counterInfos.isEmpty();
    }
    return false;
}

} // namespace

void CxDataGraphForm::onBtnCamExportData()
{
    if (const auto *button = qobject_cast<QPushButton *>(sender()))
        exportRecords(cameraHandle(button));
}

void CxDataGraphForm::exportRecords(void *camera)
{
    if (CxExportGate::putOff(this, [this, camera] { exportRecords(camera); }))
        return;
    CxCameraLineData *line = m_cameraLines.value(camera);
    if (!line)
        return;
    if (isEmpty(*line)) {
        showNothingToExport(this);
        return;
    }

    const QPointer<CxDataGraphForm> self(this);
    const QString fileName = askForFile(this);
    if (!self || fileName.isEmpty())
        return;
    IxAppDelegate::instance()->setDefaultSavePath(QFileInfo(fileName).absolutePath());
    // The camera may have closed while the dialog was open.
    line = m_cameraLines.value(camera);
    if (!line)
        return;
    qint64 from = 0;
    qint64 to = 0;
    GetTimeAxisRange(&from, &to);
    line->exportDataToFile(fileName, this, from, to, m_timestampOrigin, m_resetBufferLevel);
}
