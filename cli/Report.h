#pragma once

#include "measurement/CameraLineData.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace cli {

enum class CameraState {
    NotStarted, ///< the camera refused
    Measuring,
    Stopped,
    Lost, ///< went away while it was measured
};

/// What was found out about one camera.
struct CameraResult
{
    std::string name;
    CameraState state = CameraState::NotStarted;
    unsigned long long frames = 0; ///< captured
    double requiredMBps = 0.0;

    /// Throughput mode; no value before the first frame.
    struct Throughput
    {
        double avgMBps = 0.0;
        double minMBps = 0.0;
        double maxBufferLevel = 0.0; ///< percent
        unsigned long long overflows = 0;
    };
    std::optional<Throughput> throughput;

    /// Acquisition mode.
    std::optional<double> framesPerSecond; ///< no value before the second frame
    /// By ZU_COUNTER_SELECTOR; no value where the camera has no such counter.
    std::array<std::optional<int>, 6> counters;
};

/// One line of progress for all cameras, without a line end.
std::string progressLine(MeasureMode mode, double seconds, const std::vector<CameraResult> &results);

/// The closing table, a line each camera.
std::string resultTable(MeasureMode mode, const std::vector<CameraResult> &results);

} // namespace cli
