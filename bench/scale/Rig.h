#pragma once

#include "bench/scale/GuiClock.h"
#include "bench/scale/ObservedCameras.h"
#include "bench/scale/Options.h"
#include "host/app/Viewer.h"

#include <QTemporaryDir>

class CxCameraLineData;
class QCustomPlot;
class QTableWidget;

namespace scale {

/// The viewer with the built plug-in, its window shown, and simulated cameras,
/// open, with full lists of records. All functions throw std::runtime_error when
/// the window does not do what it should.
class Rig
{
public:
    Rig(GuiClock &clock, const Options &options);
    ~Rig();
    Rig(const Rig &) = delete;
    Rig &operator=(const Rig &) = delete;

    struct Camera
    {
        CxCameraLineData *line; ///< the window's engine
        ObservedCamera *camera;
    };

    const std::vector<Camera> &cameras() const { return m_cameras; }
    std::int64_t frameBytes() const;
    double viewSeconds() const { return m_viewSeconds; }

    /// Clicks the button that starts or stops all cameras.
    void startAll();
    void stopAll();

    /// Lets the event loop run.
    void runFor(double seconds);
    /// Until the window's timer has refreshed the graphs that often.
    void runRefreshes(int count);
    /// From now on, takes the time of every change of what the graphs show.
    void followDrawing();
    /// When that was; until the first change the time of followDrawing().
    Time::time_point lastChange() const { return m_changed; }
    /// Until the graphs stay as they are, with no camera measuring. They must be
    /// followed.
    void runUntilSettled();

    /// Types a number into the first camera's cell, as a user does.
    void typeRequiredThroughput(int megabytesPerSecond);

private:
    void openWindow();
    void findCameras();
    void fillRecords();
    void showView();
    void clickStartAll(const char *expected);
    std::size_t drawing() const;
    void noteDrawing();

    GuiClock &m_clock;
    const Options m_options;
    QTemporaryDir m_folder;
    host::Scenario m_scenario;
    std::vector<std::shared_ptr<ObservedCamera>> m_observed;
    std::unique_ptr<host::Viewer> m_viewer;
    QWidget *m_form = nullptr;
    QTableWidget *m_table = nullptr;
    QCustomPlot *m_plot = nullptr;
    std::vector<Camera> m_cameras;
    double m_viewSeconds = 0.0;
    std::size_t m_drawing = 0;
    Time::time_point m_changed;
};

} // namespace scale
