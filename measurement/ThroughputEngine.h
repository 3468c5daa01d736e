#pragma once

#include "measurement/CameraLineData.h"
#include "measurement/ThroughputModel.h"

#include <limits>

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
/// results there. Holds the engine's mutex throughout, except that what has to be
/// found out about many records at first, or again after an edit of the settings,
/// is done in several holds of a few milliseconds.
/// \param sink takes the points; null: statistics only
/// \return whether at least one frame was processed; false during an export
bool evaluateThroughput(CxCameraLineData &line, const ThroughputWindow &window, throughput::PointSink *sink);

/// Work on the records of some cameras, in intervals.
struct Preparation
{
    quint64 allowed = std::numeric_limits<quint64>::max();
    quint64 done = 0;      ///< so far, for all of them
    quint64 intervals = 0; ///< in the windows that were looked at, whether they need work or not
};

/// Does some of the work that a pass over the same window would have to do
/// first, with the engine's mutex held for a few milliseconds at a time. The
/// engine's results are those of the window once none is left.
/// \return whether no work is left
bool prepareThroughput(CxCameraLineData &line, const ThroughputWindow &window, Preparation &preparation);

} // namespace measurement
