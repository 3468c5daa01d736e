#include "ui/DataGraphForm.h"

#include "ui/CellWidgets.h"
#include "ui_DataGraphForm.h"

#include <QCheckBox>
#include <QLineEdit>

namespace {

/// A camera's controls of its left axis; all null when it has no row.
struct RangeControls
{
    QCheckBox *automatic = nullptr;
    QLineEdit *minimum = nullptr;
    QLineEdit *maximum = nullptr;

    explicit operator bool() const { return automatic && minimum && maximum; }
};

RangeControls rangeControlsOf(const QTableWidget *table, void *hCam)
{
    for (int row = 0; row < table->rowCount(); ++row) {
        const int column = throughputColumn::VerticalAxis;
        const RangeControls controls = {
            cells::child<QCheckBox>(table, row, column, cells::CheckBox),
            cells::child<QLineEdit>(table, row, column, cells::FirstEdit),
            cells::child<QLineEdit>(table, row, column, cells::SecondEdit),
        };
        if (controls && cameraHandle(controls.automatic) == hCam)
            return controls;
    }
    return {};
}

} // namespace

void CxDataGraphForm::UpdateVertAxisInformation(void *hCam, QCPAxisRect *rect)
{
    if (m_measureMode != MeasureModeThroughput)
        return;
    const RangeControls controls = rangeControlsOf(ui->table, hCam);
    if (!controls || !controls.automatic->isChecked())
        return;
    QCPAxis *axis = rect->axis(QCPAxis::atLeft);
    axis->rescale(false);
    // A new text comes back as the axis' bound, through the edits' own slots:
    // the bounds that the user reads are the bounds that are drawn.
    const QCPRange fitted = axis->range();
    controls.minimum->setText(cells::wholeNumber(fitted.lower));
    controls.maximum->setText(cells::wholeNumber(fitted.upper));
}

void CxDataGraphForm::onChkCamAutoVertAxis(bool state)
{
    auto *box = qobject_cast<QCheckBox *>(sender());
    void *hCam = cameraHandle(box);
    if (!m_cameraLines.contains(hCam))
        return;
    box->setChecked(state);
    if (const RangeControls controls = rangeControlsOf(ui->table, hCam)) {
        controls.minimum->setEnabled(!state);
        controls.maximum->setEnabled(!state);
    }
}

QCPAxis *CxDataGraphForm::axisOfSendingEdit()
{
    void *hCam = cameraHandle(qobject_cast<QLineEdit *>(sender()));
    if (!m_cameraLines.contains(hCam) || !rangeControlsOf(ui->table, hCam))
        return nullptr;
    const QCPAxisRect *rect = GetCameraPlot(hCam);
    return rect ? rect->axis(QCPAxis::atLeft) : nullptr;
}

void CxDataGraphForm::onEditVertScaleMinChanged(const QString &text)
{
    if (QCPAxis *axis = axisOfSendingEdit())
        axis->setRange(text.toDouble(), axis->range().upper);
}

void CxDataGraphForm::onEditVertScaleMaxChanged(const QString &text)
{
    if (QCPAxis *axis = axisOfSendingEdit())
        axis->setRange(axis->range().lower, text.toDouble());
}
