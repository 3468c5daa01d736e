#pragma once

#include "measurement/CameraLineData.h"

/// The graphs of acquisition mode: the camera's counters as they stand, and the
/// frame rate. Nothing here locks or knows how graphs are stored.
namespace measurement::counters {

using Record = CxCameraLineData::CxCounterData;

struct Window
{
    qint64 from = 0; ///< microseconds
    qint64 to = 0;
    ExTimestampOrigin origin = TimestampOriginCamera;
    double msPerPixel = 0.0;   ///< width of a pixel column, milliseconds; 0 draws all
    double meanInterval = 0.0; ///< mean time between two frames, microseconds
};

/// Takes the points of one series. Times are microseconds relative to the end
/// of the window.
class CounterSink
{
public:
    virtual ~CounterSink() = default;
    virtual void addCounters(qint64 time, const Record &record) = 0;
};
class RateSink
{
public:
    virtual ~RateSink() = default;
    virtual void addFrameRate(qint64 time, double framesPerSecond) = 0;
};

/// The counters in the window and in a margin on both sides, of the window's
/// width or ten mean intervals: at most one record per pixel column, the first
/// after each step. The first record of all only starts the first step.
/// \param records oldest first
void counterSeries(const RecordList<Record> &records, const Window &window, CounterSink &sink);

/// The mean rate over each second, or the little more up to the next frame, of
/// all records; a point lies at the end of its second.
/// \param records oldest first
void frameRateSeries(const RecordList<Record> &records, const Window &window, RateSink &sink);

} // namespace measurement::counters
