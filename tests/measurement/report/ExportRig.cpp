#include "tests/measurement/report/ExportRig.h"

#include <QApplication>
#include <QFile>
#include <QProgressDialog>

ExportRig::ExportRig()
    : recorded(std::make_unique<RecordedLine>())
    , line(recorded->line)
    , window(std::make_unique<QWidget>())
{
    line.cameraName = QStringLiteral("MC-100 (7)");
    window->show();
}

void ExportRig::addLongRecording()
{
    std::vector<quint64> times(2000);
    for (std::size_t i = 0; i < times.size(); ++i)
        times[i] = 7 * i;
    for (int frame = 0; frame < longRecording; ++frame)
        recorded->addFrame(1000 + 15000 * frame, times);
}

void ExportRig::addCounters(qint64 timestamp, qint32 value)
{
    auto *record = new CxCameraLineData::CxCounterData;
    record->cameraTimestamp = timestamp;
    record->apiSkip = value;
    line.counterData.append(record);
}

bool ExportRig::exportAll(const QString &fileName)
{
    return line.exportDataToFile(fileName, window.get(), from, to, TimestampOriginCamera, false);
}

void ExportRig::atStart(std::function<void(QProgressDialog &)> action)
{
    QTimer::singleShot(0, window.get(), [action] {
        if (dialog())
            action(*dialog());
    });
}

void ExportRig::amongRows(std::function<void(QProgressDialog &)> action)
{
    QObject::disconnect(&m_watch, nullptr, nullptr, nullptr);
    QObject::connect(&m_watch, &QTimer::timeout, [this, action] {
        QProgressDialog *progress = dialog();
        if (!progress || progress->value() <= 0)
            return;
        m_watch.stop();
        action(*progress);
    });
    m_watch.start(1);
}

QProgressDialog *ExportRig::dialog()
{
    const QWidgetList widgets = QApplication::topLevelWidgets();
    for (QWidget *widget : widgets) {
        auto *progress = qobject_cast<QProgressDialog *>(widget);
        if (progress && progress->isVisible())
            return progress;
    }
    return nullptr;
}

QByteArray ExportRig::contents() const
{
    QFile file(path());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}
