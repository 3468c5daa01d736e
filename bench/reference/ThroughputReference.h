#pragma once

#include "measurement/ThroughputModel.h"

#include <vector>

/// The throughput model written down interval by interval, as its formulas
/// read: what the product's evaluation must equal bit for bit, and what its
/// speed is measured against.
namespace reference {

/// One frame's intervals; kept between calls like the engine's arrays.
struct Buffers
{
    std::vector<double> speeds;
    std::vector<double> deltas;
    std::vector<quint64> times;
};

/// See CxCameraLineData::CxFrameData::calculateFrameSpeeds.
unsigned int frameSpeeds(const measurement::throughput::Frame &frame, quint32 sampleInterval,
                         qint32 requiredMBps, double *speeds, double *deltas, quint64 *times);

/// See CxCameraLineData::calculateGraphsThrougput. `sink` null: statistics only.
/// Statistics are in and out.
bool evaluate(const measurement::throughput::FrameSource &frames,
              const measurement::throughput::Settings &settings, Buffers &buffers,
              measurement::throughput::PointSink *sink, measurement::throughput::Statistics &statistics);

} // namespace reference
