#include "tests/ui/RowExport.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QListView>
#include <QSettings>

#include <utility>

namespace rig {

const QByteArray RowExport::framesHeader =
    "Frame number,Frame Computer Timestamp [\xCE\xBCs],Sample Time [ns], Offset[B], Data Time Stamp [ns], "
    "Req. throughput [MB/s], Link throughput [MB/s], Buffer filled [B], Max buffer level [%]\n";
const QByteArray RowExport::countersHeader =
    "Frame number,Timestamp [\xCE\xBCs],Computer Timestamp [\xCE\xBCs],Transport skip,API skip,"
    "Missed trg. overlap,Missed trg overflow,Buffer overflow\n";

RowExport::RowExport(MeasuringCameras &cameras)
    : m_cameras(cameras)
{
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_settings.path());
    scripted::Gui::instance().setSavePath(m_folder.path());
    qApp->installEventFilter(this);
    connect(&m_looks, &QTimer::timeout, this, &RowExport::look);
}

QByteArray RowExport::contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

QByteArrayList RowExport::rows(const QString &name) const
{
    QByteArrayList lines = contents(path(name)).split('\n');
    const bool ends = lines.takeLast().isEmpty();
    const QByteArray header = lines.isEmpty() ? QByteArray() : lines.takeFirst() + '\n';
    if (!ends || (header != framesHeader && header != countersHeader))
        return {"broken"};
    return lines;
}

void RowExport::click(int camera, const QString &name)
{
    m_name = name;
    m_rowLooks = 0;
    m_looks.start(0);
    // As a program does it: a modal dialog would keep the mouse away.
    m_cameras.exportButton(camera)->click();
    m_looks.stop();
    m_closeAt = -1;
}

bool RowExport::recordLong(int camera)
{
    // So many that the events are looked at several times on a fast machine.
    m_cameras.rig.loadSettings({{"DTGTSamplePeriod", 8}, {"DTGTMaxSamples", 20000000}});
    scripted::CounterFrames frames;
    frames.width = 1024;
    frames.height = 400;
    m_cameras.host.setImageSource(m_cameras[camera], frames);
    if (!m_cameras.measureAndStop(camera, longFrames))
        return false;
    m_cameras.rig.loadSettings({{"DTGTSamplePeriod", 1024}, {"DTGTMaxSamples", 20000000}});
    // Wherever the time axis begins once another camera has moved it.
    m_cameras.timeAxis(camera)->setRange(-60.0, 60.0);
    return true;
}

void RowExport::during(Moment moment, std::function<void()> action)
{
    m_moment = moment;
    m_action = std::move(action);
    m_ran = false;
}

QProgressDialog *RowExport::progress()
{
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        auto *dialog = qobject_cast<QProgressDialog *>(widget);
        if (dialog && dialog->isVisible())
            return dialog;
    }
    return nullptr;
}

bool RowExport::eventFilter(QObject *object, QEvent *event)
{
    if (event->type() != QEvent::Show)
        return false;
    if (qobject_cast<QProgressDialog *>(object))
        ++progressDialogs;
    if (auto *dialog = qobject_cast<QFileDialog *>(object)) {
        ++fileDialogs;
        QTimer::singleShot(0, dialog, [this, dialog] { answer(dialog); });
    }
    return false;
}

void RowExport::answer(QFileDialog *dialog)
{
    const QPointer<QFileDialog> guard(dialog);
    if (onFileDialog)
        onFileDialog(*dialog);
    if (!guard)
        return;
    if (m_name.isEmpty()) {
        dialog->reject();
        return;
    }
    dialog->setOption(QFileDialog::DontConfirmOverwrite, replaces);
    // A file that is selected would go before what is typed.
    dialog->findChild<QListView *>("listView")->clearSelection();
    dialog->findChild<QLineEdit *>("fileNameEdit")->setText(m_name);
    dialog->findChild<QDialogButtonBox *>("buttonBox")->button(QDialogButtonBox::Save)->click();
    if (guard && guard->isVisible()) // it was not to its liking
        guard->reject();
}

void RowExport::look()
{
    const QPointer<QProgressDialog> dialog = progress();
    if (!dialog)
        return;
    const bool amongRows = dialog->value() > 0;
    if (amongRows)
        ++m_rowLooks;
    if (m_action && (m_moment == Moment::Start || amongRows)) {
        m_ran = true;
        std::exchange(m_action, {})();
    }
    const bool isDue = m_closeAt == 0 || (m_closeAt > 0 && m_rowLooks >= m_closeAt);
    if (dialog && isDue && !m_action)
        dialog->close();
}

} // namespace rig
