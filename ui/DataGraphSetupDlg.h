#pragma once

#include "measurement/CameraLineData.h"

#include <QDialog>
#include <QPointer>

namespace Ui {
class CxDataGraphSetupDlg;
}

class CxDataGraphForm;

/// Edits the window's measurement settings and its refresh period. OK writes
/// them straight into the window; what that means for the cameras is the
/// window's business. Cancel writes nothing.
///
/// Run modally; GUI thread only. The window may go while the dialog is open,
/// which rejects the dialog.
class CxDataGraphSetupDlg : public QDialog
{
    Q_OBJECT

public:
    /// \param form whose settings are shown and edited; not owned
    CxDataGraphSetupDlg(CxDataGraphForm *form, QWidget *parent);
    ~CxDataGraphSetupDlg() override;

    // After OK: what it replaced.
    MeasureMode modeBefore() const { return m_modeBefore; }
    int samplePeriodBefore() const { return m_periodBefore; }

public Q_SLOTS:
    void accept() override;
    /// Enables what means something in throughput mode only.
    void onComboboxCurrentModeChanged(int index);

private:
    void showSettings();

    Ui::CxDataGraphSetupDlg *ui;
    QPointer<CxDataGraphForm> m_form;
    MeasureMode m_modeBefore = MeasureModeThroughput;
    int m_periodBefore = 0; ///< bytes
};
