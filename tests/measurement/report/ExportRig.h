#pragma once

#include "tests/measurement/LogCapture.h"
#include "tests/measurement/model/RecordedLine.h"

#include <QPointer>
#include <QTemporaryDir>
#include <QTimer>
#include <QWidget>

#include <functional>
#include <limits>
#include <memory>

class QProgressDialog;

/// An engine with records, a window that exports them, and a hand in the events
/// that come in meanwhile.
class ExportRig
{
public:
    ExportRig();

    /// Frames that take several looks at the events to write: 8 million samples.
    void addLongRecording();
    static constexpr int longRecording = 4000; ///< frames
    void addCounters(qint64 timestamp, qint32 value);

    /// Exports everything with the window as parent.
    bool exportAll(const QString &fileName);
    bool exportAll() { return exportAll(path()); }

    /// Called once, with the first events of the next export; no row is written yet.
    void atStart(std::function<void(QProgressDialog &)> action);
    /// Called once, with the first events of the next export after some rows.
    void amongRows(std::function<void(QProgressDialog &)> action);

    /// The progress dialog that is in sight, or null.
    static QProgressDialog *dialog();

    QString path() const { return folder.filePath(QStringLiteral("report.csv")); }
    QByteArray contents() const;

    QTemporaryDir folder;
    std::unique_ptr<RecordedLine> recorded;
    CxCameraLineData &line;
    std::unique_ptr<QWidget> window;
    qint64 from = 0;
    qint64 to = Q_INT64_C(1) << 60;
    LogCapture log;

private:
    QTimer m_watch; ///< for the rows to begin
};
