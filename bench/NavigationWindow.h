#pragma once

#include "bench/reference/Recordings.h"
#include "measurement/PlotLibrary.h"
#include "ui/DataGraphForm.h"

#include <memory>

namespace bench {

/// The whole tool window with four cameras open whose engines hold a recording
/// each, all of it in view, its plot of 1600 × 900 pixels styled by the viewer.
/// Nothing measures.
class NavigationWindow
{
public:
    static constexpr int cameras = 4;
    static constexpr int width = 1600;
    static constexpr int height = 900;

    NavigationWindow(const reference::Recording &recording, quint64 bufferSize);
    ~NavigationWindow();
    NavigationWindow(const NavigationWindow &) = delete;
    NavigationWindow &operator=(const NavigationWindow &) = delete;

    QCustomPlot &plot() { return *m_plot; }
    CxDataGraphForm &form() { return *m_form; }

    /// Sends the event and runs the event loop until the plot has been redrawn.
    /// \return how often it was; 0 when it never was
    int pictures(QEvent &event);

    void press(int x);
    int moveTo(int x);
    void release(int x);
    int turnWheel(int steps);

private:
    void openCameras();
    void resizePlot();
    void show(const reference::Recording &recording);

    std::unique_ptr<CxDataGraphForm> m_form;
    QCustomPlot *m_plot = nullptr;
    int m_replots = 0;
};

/// The viewer's style on a plot.
void decorate(QCustomPlot *plot);

} // namespace bench
