#include "measurement/CameraLineData.h"
#include "measurement/CsvReport.h"
#include "measurement/ExportGate.h"
#include "measurement/Log.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QMutexLocker>
#include <QPointer>
#include <QProgressDialog>
#include <QPushButton>
#include <QThread>

#include <algorithm>
#include <limits>

namespace {

constexpr QSize dialogSize(300, 100); ///< of the dialog, unless the camera's name is longer
constexpr int showTime = 1000;        ///< milliseconds, at most, for the dialog to appear
constexpr int eventPeriod = 50;       ///< milliseconds between two looks at the events

void logFailure(const QString &detail, CxLogPlace caller = CxLogPlace::current())
{
    cxLog(QStringLiteral("CxCameraLineData::exportDataToFile(): ") + detail, caller);
}

/// The progress in a dialog, and the only place where events get in.
class DialogProgress final : public measurement::CsvProgress
{
public:
    /// \param ended set by whoever needs the export to end
    DialogProgress(const QString &camera, int maximum, QWidget *parent, const bool &ended)
        : m_ended(ended)
        , m_dialog(new QProgressDialog(
              QCoreApplication::translate("CxCameraLineData", "Exporting %1 data").arg(camera),
              QCoreApplication::translate("CxCameraLineData", "Cancel"), 0, maximum, parent))
    {
        m_dialog->setWindowTitle(QCoreApplication::translate("CxCameraLineData", "Data throughput monitor"));
        if (auto *button = m_dialog->findChild<QPushButton *>())
            button->hide();
        // Keeps clicks and the closing of other windows away from the engine.
        m_dialog->setWindowModality(Qt::ApplicationModal);
        // The maximum is an estimate: reaching it must not end the dialog. Nor
        // must the dialog show itself again, or run the events, by itself.
        m_dialog->setAutoReset(false);
        m_dialog->setMinimumDuration(std::numeric_limits<int>::max());
        QObject::connect(m_dialog.data(), &QDialog::rejected, m_dialog.data(), &QProgressDialog::cancel);
    }

    ~DialogProgress() override { delete m_dialog.data(); }

    void show()
    {
        m_dialog->show();
        // Showing makes room for the hidden button.
        m_dialog->resize(std::max(dialogSize.width(), m_dialog->sizeHint().width()), dialogSize.height());
        processFirstEvents();
        m_sinceEvents.start();
    }

    void setValue(int value) override { m_value = value; }

    bool wasCancelled() override
    {
        if (m_sinceEvents.hasExpired(eventPeriod)) {
            if (m_dialog)
                m_dialog->setValue(m_value);
            QCoreApplication::processEvents();
            m_sinceEvents.start();
        }
        return m_ended || !m_dialog || m_dialog->wasCanceled();
    }

private:
    /// A modal dialog that goes before the window manager has made it active
    /// takes the activation along: no window of the program would have the keys.
    /// Whether any has them now tells nothing, since the window in front may have
    /// gone a moment ago, as a file dialog has; so this waits in any case.
    void processFirstEvents()
    {
        QElapsedTimer shown;
        shown.start();
        for (;;) {
            const auto left = static_cast<int>(std::max<qint64>(1, showTime - shown.elapsed()));
            QCoreApplication::processEvents(QEventLoop::AllEvents, left);
            if (m_ended || !m_dialog || m_dialog->wasCanceled() || m_dialog->isActiveWindow() ||
                shown.hasExpired(showTime))
                return;
            QThread::msleep(1);
        }
    }

    const bool &m_ended;
    QPointer<QProgressDialog> m_dialog; ///< goes early with its parent
    int m_value = 0;
    QElapsedTimer m_sinceEvents;
};

int progressMaximum(const CxCameraLineData &line, const measurement::CsvWindow &window)
{
    switch (line.measureMode) {
    case MeasureModeThroughput:
        return measurement::progressMaximum(line.frames, window, line.statMin);
    case MeasureModeAcquisition:
        return measurement::progressMaximum(line.counterData, window, line.statMin);
    }
    return 0;
}

void writeReport(const CxCameraLineData &line, const measurement::CsvWindow &window,
                 const measurement::CsvLink &link, measurement::CsvFile &file,
                 measurement::CsvProgress &progress)
{
    measurement::CsvReport report(file, window, progress);
    switch (line.measureMode) {
    case MeasureModeThroughput:
        report.writeFrames(line.frames, link);
        return;
    case MeasureModeAcquisition:
        report.writeCounters(line.counterData);
        return;
    }
    logFailure(QStringLiteral("Unknown measurement mode"));
}

/// What this thread finds when events come in.
class ExportingState
{
public:
    explicit ExportingState(std::atomic<Qt::HANDLE> &thread)
        : m_thread(thread)
    {
        m_thread = QThread::currentThreadId();
    }
    ~ExportingState() { m_thread = nullptr; }
    ExportingState(const ExportingState &) = delete;
    ExportingState &operator=(const ExportingState &) = delete;

private:
    std::atomic<Qt::HANDLE> &m_thread;
};

} // namespace

bool CxCameraLineData::exportDataToFile(const QString &fileName, QWidget *parent, long long from,
                                        long long to, ExTimestampOrigin origin, bool resetBufferLevel)
{
    const CxExportGate::Closer gate;
    if (!gate.isFirst()) {
        logFailure(QStringLiteral("Another export is running"));
        return false;
    }
    measurement::CsvFile file(fileName);
    if (!file.open()) {
        logFailure(QStringLiteral("Cannot open ") + fileName + QStringLiteral(": ") + file.errorText());
        return false;
    }
    {
        const QMutexLocker locker(&mutex);
        const ExportingState state(exportingThread);
        const measurement::CsvWindow window = {from, to, origin, resetBufferLevel};
        // Taken now: the user may edit the settings as soon as events come in.
        const measurement::CsvLink link = {sampleInterval, avgTransportSpeedMBps, internalBuffSize};
        {
            DialogProgress progress(cameraName, progressMaximum(*this, window), parent, discarded);
            progress.show();
            writeReport(*this, window, link, file, progress);
        }
        file.close();
    }
    if (file.hasFailed())
        logFailure(QStringLiteral("Cannot write ") + fileName + QStringLiteral(": ") + file.errorText());
    if (discarded)
        discard(this);
    return true;
}
