#pragma once

#include "measurement/CameraLineData.h"
#include "measurement/ThroughputModel.h"

namespace measurement {

/// What a pass over an engine's records looks at; see CxCameraLineData.
struct ThroughputWindow
{
    qint64 from = 0; ///< microseconds
    qint64 to = 0;
    ExTimestampOrigin origin = TimestampOriginCamera;
    double msPerPixel = 0.0;
    bool resetBufferLevel = false;
};

/// Evaluates the throughput model over the engine's records and keeps its
/// results there. Holds the engine's mutex throughout.
/// \param sink takes the points; null: statistics only
/// \return whether at least one frame was processed; false during an export
bool evaluateThroughput(CxCameraLineData &line, const ThroughputWindow &window, throughput::PointSink *sink);

} // namespace measurement
