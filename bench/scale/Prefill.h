#pragma once

#include "host/core/simulation/Scenario.h"
#include "measurement/CameraLineData.h"

namespace scale {

/// Fills an engine's list to its capacity with records as captures of this
/// camera would have made them, the last one ending now. Nothing may run.
/// \param capacity samples
/// \return the time the records span, in seconds
double fillWithRecords(CxCameraLineData &line, const host::CameraSettings &settings, std::uint64_t camera,
                       unsigned int samplePeriod, long long capacity);

} // namespace scale
