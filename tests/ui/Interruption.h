#pragma once

#include "tests/ui/MeasuringCameras.h"

namespace rig {

constexpr int Alpha = 0;
constexpr int Beta = 1;
constexpr int Gamma = 2;

/// What the window is about when something else happens. Each shows a box in
/// which Beta is named and the event loop runs.
enum Situation { Start, Stop, StartAll, StopAll, FailedStart, FailedStartAll, SituationCount };
extern const char *const situationNames[SituationCount];

/// Has the camera refuse every start.
void refuse(MeasuringCameras &cameras, int camera);

/// Brings the cameras to where the situation can begin.
void prepare(MeasuringCameras &cameras, int situation);

/// Clicks, and lets something happen once while the box about Beta is shown.
/// \return whether it has happened
bool interrupt(MeasuringCameras &cameras, int situation, const std::function<void()> &event);

} // namespace rig
