#pragma once

#include "tests/ui/MeasuringCameras.h"

#include <QFileDialog>
#include <QProgressDialog>
#include <QTemporaryDir>

#include <functional>

namespace rig {

/// When something comes in between during an export: before the first row, or
/// with some rows written.
enum class Moment { Start, AmongRows };

/// Clicks on the rows' export buttons, and what happens in the dialogs that
/// follow. Each is met from within its own event loop.
class RowExport : public QObject
{
    Q_OBJECT

public:
    static const QByteArray framesHeader;
    static const QByteArray countersHeader;

    /// The host's save path becomes a directory of its own.
    explicit RowExport(MeasuringCameras &cameras);

    /// In that directory.
    QString path(const QString &name = "report.csv") const { return m_folder.filePath(name); }
    /// "unreadable" for a file that is not there.
    static QByteArray contents(const QString &path);
    QByteArray contents() const { return contents(path()); }
    /// Lines behind the header, each without its end; "broken" for a file without
    /// a header or with a last line that has no end.
    QByteArrayList rows(const QString &name = "report.csv") const;

    /// Clicks the row's button. The file dialog gets the name as it is; it is
    /// cancelled where that is empty.
    void click(int camera, const QString &name);
    void click(int camera) { click(camera, path()); }
    /// The name that further file dialogs get.
    void setName(const QString &name) { m_name = name; }

    /// A recording of four million stamps that stay in view: its report takes
    /// several looks at the events.
    bool recordLong(int camera);
    static constexpr int longFrames = 160;
    static constexpr int longRows = longFrames * 94399;

    /// Runs the action once during the next export.
    void during(Moment moment, std::function<void()> action);
    /// Whether it did run.
    bool hasRun() const { return !m_action && m_ran; }
    /// Closes the next export's dialog at its n-th look among rows, counted from
    /// 1, or when the action runs; 0 at its first events. Negative: not at all.
    void closeAt(int look) { m_closeAt = look; }

    /// Sees the file dialog before it is answered; may delete it.
    std::function<void(QFileDialog &)> onFileDialog{};
    /// Whether an existing file is to be replaced without the dialog's question.
    bool replaces = true;
    int fileDialogs = 0;
    int progressDialogs = 0;

    /// The progress dialog in sight, or null.
    static QProgressDialog *progress();

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    void answer(QFileDialog *dialog);
    void look();

    MeasuringCameras &m_cameras;
    QTemporaryDir m_folder;
    QTemporaryDir m_settings; ///< where Qt's file dialog keeps its looks
    QString m_name;
    QTimer m_looks; ///< fires at every look at the events
    int m_rowLooks = 0;
    int m_closeAt = -1;
    Moment m_moment = Moment::Start;
    std::function<void()> m_action{};
    bool m_ran = false;
};

} // namespace rig
