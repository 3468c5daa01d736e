#include "ui/DataGraphForm.h"

#include "measurement/ExportGate.h"
#include "ui/CameraSettings.h"
#include "ui/DataGraphSetupDlg.h"

#include <QMutexLocker>
#include <QPointer>

namespace {

void clearRecords(CxCameraLineData &line)
{
    const QMutexLocker locker(&line.mutex);
    line.clearData();
}

/// \return whether the user pressed OK
bool runSetup(CxDataGraphForm *form)
{
    // Not on the stack: its parent, which would delete it, may go meanwhile.
    const QPointer<CxDataGraphSetupDlg> dialog(new CxDataGraphSetupDlg(form, form->parentWidget()));
    const bool accepted = dialog->exec() == QDialog::Accepted;
    delete dialog.data();
    return accepted;
}

} // namespace

void CxDataGraphForm::on_btnSetup_clicked()
{
    if (CxExportGate::putOff(this, [this] { on_btnSetup_clicked(); }))
        return;
    const MeasureMode mode = m_measureMode;
    const int samplePeriod = m_samplePeriod;
    const QPointer<CxDataGraphForm> self(this);
    if (!runSetup(this) || !self)
        return;

    const QList<CxCameraLineData *> lines = m_cameraLines.values();
    const bool modeChanged = m_measureMode != mode;
    // Frames that were sampled differently, or records of the other kind, would
    // not go together with those to come.
    for (CxCameraLineData *line : lines) {
        if (modeChanged || m_samplePeriod != samplePeriod)
            clearRecords(*line);
        if (modeChanged)
            cameraSettings::store(*line, &CxCameraLineData::measureMode, m_measureMode);
    }
    if (modeChanged)
        updateCameraList();
    updateColumnNames();
}
