#pragma once

#include "tests/measurement/LogCapture.h"
#include "tests/ui/PluginRig.h"

#include <QMessageBox>
#include <QStringList>
#include <QTime>
#include <QTimer>

#include <array>
#include <functional>
#include <vector>

namespace rig {

/// Frames of eight stamps, 1024 bytes apart: the default sample period. The
/// time between two of them decides the link's rate.
class PacedFrames
{
public:
    static constexpr int stampsPerFrame = 8;
    static constexpr int intervalsPerFrame = stampsPerFrame - 1;

    /// MB/s of an interval of that many 4-ns ticks.
    static double rate(unsigned int ticks) { return 1024.0 / (ticks / 250.0); }

    /// Ticks between two stamps of each frame; the last goes on for all others.
    std::vector<unsigned int> ticks = {500}; ///< 2 µs: 512 MB/s
    quint64 firstMicroseconds = 1000000;     ///< camera time stamp of the first frame
    quint64 microsecondsPerFrame = 10000;

    bool operator()(ZU_IMG &image);

private:
    std::vector<quint64> m_words;
    std::size_t m_frame = 0;
};

/// Frames of acquisition mode: each is handed out after the camera's counters
/// took the values that go with it.
class CountedFrames
{
public:
    using Counters = std::array<int, 6>; ///< by their selectors

    /// Of each frame; the last go on for all others.
    std::vector<Counters> counters = {Counters()};
    /// Camera time stamps of the frames; those beyond follow every 10 ms.
    std::vector<quint64> microseconds = {1000000};

    /// All six alike.
    static Counters all(int value) { return {value, value, value, value, value, value}; }

    explicit CountedFrames(ZUCORE_HANDLE camera)
        : m_camera(camera)
    {
    }

    bool operator()(ZU_IMG &image);

private:
    ZUCORE_HANDLE m_camera;
    std::size_t m_frame = 0;
    quint64 m_word = 0;
};

/// The window's mode, as its settings have it.
enum class Mode { Throughput, Acquisition };

/// The plug-in's window with up to three open cameras "Alpha (A-1)",
/// "Beta (B-2)" and "Gamma (C-3)". Message boxes are recorded and closed, the
/// log is taken. Time stamps of a run start at the time of day of its start.
class MeasuringCameras
{
public:
    explicit MeasuringCameras(int count = 3, Mode mode = Mode::Throughput);

    ZUCORE_HANDLE operator[](int camera) const { return m_handles[camera]; }
    QList<ZUCORE_HANDLE> handles() const { return m_handles; }
    /// "Alpha (A-1)".
    static QString name(int camera);
    /// "Alpha"; "?" for another handle.
    QString label(ZUCORE_HANDLE camera) const;

    /// Has the table built anew for that mode.
    void setMode(Mode mode);

    void setFrames(int camera, const PacedFrames &frames);
    /// Counters of the camera's frames, all of them 10 ms apart.
    void setCounters(int camera, const std::vector<CountedFrames::Counters> &counters);
    void setFrames(int camera, const CountedFrames &frames);
    /// Delivers frames and waits until a running measurement has stored them.
    bool deliver(int camera, int frames);
    /// Starts the camera with its button, has it store the frames; it goes on.
    bool measure(int camera, int frames);
    /// The same, and stops it with its button after a tick: the time axis ends
    /// behind the start of the run.
    bool measureAndStop(int camera, int frames);

    int row(int camera) const { return rig.row(m_handles[camera]); }
    QPushButton *measureButton(int camera) const { return cellWidget<QPushButton>(camera, 2, 3); }
    QPushButton *exportButton(int camera) const { return cellWidget<QPushButton>(camera, 7, 10); }
    QCheckBox *plotBox(int camera) const { return cellWidget<QCheckBox>(camera, 10, 11); }
    /// The box of a quantity in the table beside the plot.
    QCheckBox *quantityBox(int row) const;
    QPushButton *startAll() const { return rig.find<QPushButton>("btnStartAll"); }
    QPushButton *setup() const { return rig.find<QPushButton>("btnSetup"); }
    void clickMeasure(int camera) const { PluginRig::click(measureButton(camera)); }
    void clickStartAll() const { PluginRig::click(startAll()); }
    /// Text of the row's cell.
    QString cell(int camera, int column) const { return rig.cell(row(camera), column); }
    /// "Testing Stop", the row's status and its button's text.
    QString state(int camera) const;
    bool isMeasuring(int camera) const { return host.isStreaming(m_handles[camera]); }

    /// What the camera's graph of that name draws; empty without the graph.
    std::vector<QCPGraphData> points(int camera, const QString &name = "Min throughput") const;

    QCPAxis *timeAxis(int camera) const;
    /// Shows that part of the time axis, seconds from its origin.
    void showTime(double lower, double upper) const { timeAxis(0)->setRange(lower, upper); }
    void refresh() const { PluginRig::click(rig.find<QPushButton>("refreshGraph")); }
    void tick() const { rig.call("timerSignal"); }
    QCheckBox *liveGraph() const { return rig.find<QCheckBox>("checkBoxLiveGraph"); }

    /// Starts, stops and control calls since the last clearCalls(), in order:
    /// "start Alpha", "take Alpha", "stop Alpha", "release Alpha"; those that
    /// failed end in " failed".
    QStringList sequence() const;
    /// Values that a measurement changes and puts back, "NAME VALUE".
    QStringList settings(int camera) const;

    LogCapture log;
    PluginRig rig;
    BoxWatcher boxes;
    scripted::Host &host;

private:
    /// Of the column that is the present mode's.
    template <typename Widget> Widget *cellWidget(int camera, int throughput, int acquisition) const
    {
        return rig.cellWidget<Widget>(row(camera), m_mode == Mode::Throughput ? throughput : acquisition);
    }

    QList<ZUCORE_HANDLE> m_handles;
    Mode m_mode = Mode::Throughput;
};

/// The progress box on the screen, or null.
QMessageBox *progressBox();

/// Runs an action once, in the event loop, while a progress box shows a text.
class Meanwhile
{
public:
    /// \param text part of the box's text
    Meanwhile(const QString &text, std::function<void()> action);
    bool hasRun() const { return m_hasRun; }

private:
    QTimer m_timer;
    bool m_hasRun = false;
};

/// Notes what the progress box says whenever a camera is driven from this
/// thread: "Alpha: TITLE | TEXT". Without a box on the screen both are empty; a
/// box whose present texts have not been painted ends in " (unpainted)".
class ProgressNotes : public QObject
{
    Q_OBJECT

public:
    explicit ProgressNotes(const MeasuringCameras &cameras);
    ~ProgressNotes() override;

    QStringList notes; ///< each once, until another follows

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    void note(const scripted::Call &call);

    const MeasuringCameras &m_cameras;
    QString m_painted; ///< texts at the last painting
};

/// Milliseconds since midnight.
inline int timeOfDay()
{
    return QTime::currentTime().msecsSinceStartOfDay();
}

} // namespace rig
