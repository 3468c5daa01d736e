#pragma once

#include "cli/Options.h"
#include "cli/Report.h"

#include <QObject>

#include <memory>
#include <vector>

namespace cli {

/// Measures all cameras that the host has open. Knows the host by its contract
/// only. Main thread; each camera is captured by its engine's own thread.
class MeasureSession : public QObject
{
    Q_OBJECT

public:
    explicit MeasureSession(const Options &options, QObject *parent = nullptr);
    /// Stops what still runs, so that no camera stays in its measuring state.
    ~MeasureSession() override;

    /// Starts every open camera. Cameras that do not start stay in the report
    /// with their reason in the log.
    /// \return the number of cameras that measure
    int start();

    /// Stops and restores every camera; the results stay.
    void stop();

    /// Whether some camera still measures.
    bool isMeasuring() const;

    /// Results so far, over everything that is stored.
    std::vector<CameraResult> results();

Q_SIGNALS:
    /// The last measuring camera went away.
    void allCamerasLost();

private:
    struct Line
    {
        std::unique_ptr<CxCameraLineData> engine;
        CameraState state = CameraState::NotStarted;
    };

    void cameraClosed(ZUCORE_HANDLE hCam);
    CameraResult result(Line &line) const;

    Options m_options;
    std::vector<Line> m_lines;
};

} // namespace cli
