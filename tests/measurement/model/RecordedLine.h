#pragma once

#include "measurement/CameraLineData.h"
#include "tests/measurement/model/PointList.h"

#include <vector>

/// An engine with hand-made records. 1000 bytes an interval and 150 MB/s
/// required: an interval of 10 microseconds carries 100 MB/s and fills the
/// buffer by 500 bytes; one of 5 carries 200 MB/s and empties it by 250.
class RecordedLine
{
public:
    RecordedLine();

    /// \param times of the stamps, microseconds since the first
    CxCameraLineData::CxFrameData &addFrame(qint64 timestamp, const std::vector<quint64> &times);
    CxCameraLineData::CxFrameData &addFrameOfTicks(qint64 timestamp, const std::vector<quint64> &stamps);

    /// One pass over the engine's records with the points kept. The same pass
    /// is made by the plain formulas; both must agree.
    bool evaluate(qint64 from, qint64 to, double msPerPixel = 0.0, bool reset = false);

    CxCameraLineData line;
    std::vector<Point> points;
};
