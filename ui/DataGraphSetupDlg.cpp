#include "ui/DataGraphSetupDlg.h"

#include "measurement/Saturate.h"
#include "ui/DataGraphForm.h"
#include "ui_DataGraphSetupDlg.h"

namespace {

constexpr qint64 samplesPerUnit = 1000000; ///< the capacity is edited in millions
constexpr int millisecondsPerSecond = 1000;

/// Rounded to the nearest million and kept inside what the box can show, so
/// that a stored capacity of any size does not wrap on its way to an int.
void showCapacity(QSpinBox *box, qint64 samples)
{
    const qint64 millions = measurement::addSaturated(samples, samplesPerUnit / 2) / samplesPerUnit;
    box->setValue(static_cast<int>(qBound<qint64>(box->minimum(), millions, box->maximum())));
}

/// Takes the chosen item. A setting that is none of the items leaves the box
/// empty; unless the user chooses one, it stays as it is.
template <typename Enum> void takeIndex(const QComboBox *box, Enum &setting)
{
    if (box->currentIndex() >= 0)
        setting = static_cast<Enum>(box->currentIndex());
}

} // namespace

CxDataGraphSetupDlg::CxDataGraphSetupDlg(CxDataGraphForm *form, QWidget *parent)
    : QDialog(parent)
    , ui(new Ui::CxDataGraphSetupDlg)
    , m_form(form)
{
    ui->setupUi(this);
    setWindowFlags((windowFlags() & ~(Qt::WindowMaximizeButtonHint | Qt::WindowContextHelpButtonHint)) |
                   Qt::CustomizeWindowHint | Qt::MSWindowsFixedSizeDialogHint);
    // Only the arrows change the period: every value is a whole number of steps away.
    ui->spinSamplePeriod->findChild<QLineEdit *>()->setReadOnly(true);
    showSettings();

    connect(ui->measureMode, static_cast<void (QComboBox::*)(int)>(&QComboBox::currentIndexChanged), this,
            &CxDataGraphSetupDlg::onComboboxCurrentModeChanged);
    connect(form, &QObject::destroyed, this, &QDialog::reject);

    adjustSize();
    setFixedSize(geometry().size());
    onComboboxCurrentModeChanged(form->m_measureMode);
}

CxDataGraphSetupDlg::~CxDataGraphSetupDlg()
{
    delete ui;
}

void CxDataGraphSetupDlg::showSettings()
{
    ui->spinSamplePeriod->setValue(m_form->m_samplePeriod);
    ui->chkResetBuffeLevel->setChecked(m_form->m_resetBufferLevel);
    ui->cbTimeStampOrigin->setCurrentIndex(m_form->m_timestampOrigin);
    showCapacity(ui->spinCapacity, m_form->m_maxSamples);
    ui->graphRefreshPeriod->setValue(m_form->m_timer.interval() / millisecondsPerSecond);
    ui->measureMode->setCurrentIndex(m_form->m_measureMode);
}

void CxDataGraphSetupDlg::accept()
{
    if (m_form) {
        m_modeBefore = m_form->m_measureMode;
        m_periodBefore = m_form->m_samplePeriod;
        m_form->m_samplePeriod = ui->spinSamplePeriod->value();
        m_form->m_maxSamples = ui->spinCapacity->value() * samplesPerUnit;
        takeIndex(ui->measureMode, m_form->m_measureMode);
        m_form->m_resetBufferLevel = ui->chkResetBuffeLevel->isChecked();
        takeIndex(ui->cbTimeStampOrigin, m_form->m_timestampOrigin);
        m_form->m_timer.setInterval(ui->graphRefreshPeriod->value() * millisecondsPerSecond);
    }
    QDialog::accept();
}

void CxDataGraphSetupDlg::onComboboxCurrentModeChanged(int index)
{
    // Counters are read once a frame: there is nothing to sample or to model.
    const bool throughput = index == MeasureModeThroughput;
    ui->spinSamplePeriod->setEnabled(throughput);
    ui->label_samplePeriod->setEnabled(throughput);
    ui->label_bytes->setEnabled(throughput);
    ui->chkResetBuffeLevel->setEnabled(throughput);
}
