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

} // namespace

void CxDataGraphForm::on_btnSetup_clicked()
{
    if (CxExportGate::putOff(this, [this] { on_btnSetup_clicked(); }))
        return;
    const QPointer<CxDataGraphForm> self(this);
    // Not on the stack: its parent, which would delete it, may go meanwhile.
    const QPointer<CxDataGraphSetupDlg> dialog(new CxDataGraphSetupDlg(this, parentWidget()));
    const bool accepted = dialog->exec() == QDialog::Accepted;
    if (!dialog)
        return;
    // Against what OK replaced: the host may have loaded settings meanwhile.
    const bool modeChanged = accepted && self && m_measureMode != dialog->modeBefore();
    const bool periodChanged = accepted && self && m_samplePeriod != dialog->samplePeriodBefore();
    delete dialog.data();
    if (!accepted || !self)
        return;

    const QList<CxCameraLineData *> lines = m_cameraLines.values();
    // Frames that were sampled differently, or records of the other kind, would
    // not go together with those to come.
    for (CxCameraLineData *line : lines) {
        if (modeChanged || periodChanged)
            clearRecords(*line);
        if (modeChanged)
            cameraSettings::store(*line, &CxCameraLineData::measureMode, m_measureMode);
    }
    if (modeChanged)
        updateCameraList();
    updateColumnNames();
}
