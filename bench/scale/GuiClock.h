#pragma once

#include "bench/scale/Milliseconds.h"

#include <QApplication>
#include <QPointer>

#include <atomic>

namespace scale {

/// An application that takes the time of what the GUI thread does, event by
/// event; the code that handles the events knows nothing of it.
class GuiClock : public QApplication
{
public:
    GuiClock(int &argc, char **argv);

    /// From now on, events of this timer are refreshes, and paint events of this
    /// widget that come after one belong to it.
    void watch(QObject *refreshTimer, QWidget *plot);

    /// Forgets what was measured so far.
    void reset();

    /// What the handling of the timer's events took: the graphs' computation and
    /// their drawing into the plot's buffer. Milliseconds, as all here.
    const std::vector<double> &refreshes() const { return m_refreshes; }
    /// Processor time of the same, which other programs disturb least.
    const std::vector<double> &refreshProcessorTimes() const { return m_processorTimes; }
    /// The refreshes with the painting of the plot after each.
    const std::vector<double> &refreshesWithPainting() const { return m_painted; }
    /// Longest time for which events had to wait for the one before.
    double longestEvent() const { return m_longestEvent; }

    /// Whether the GUI thread handles an event now. Any thread.
    bool isBusy() const { return m_busy.load(std::memory_order_relaxed); }

    bool notify(QObject *receiver, QEvent *event) override;

private:
    bool notifyTimed(QObject *receiver, QEvent *event);

    QPointer<QObject> m_refreshTimer;
    QPointer<QWidget> m_plot;
    std::vector<double> m_refreshes;
    std::vector<double> m_processorTimes;
    std::vector<double> m_painted;
    double m_longestEvent = 0.0;
    int m_depth = 0;
    std::atomic<bool> m_busy{false};
};

} // namespace scale
