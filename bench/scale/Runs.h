#pragma once

#include "bench/scale/Rig.h"

#include <nlohmann/json.hpp>

namespace scale {

/// Measures with all cameras for the time asked for, once the graphs have been
/// refreshed some times. Loss is that of the whole measurement.
nlohmann::ordered_json runSteadily(Rig &rig, GuiClock &clock, const Options &options);

/// Edits the required throughput over the records and waits for the new graphs:
/// first while nothing measures, where it can be seen when the graphs are new,
/// then while the cameras do.
nlohmann::ordered_json runEdit(Rig &rig, GuiClock &clock, const Options &options);

} // namespace scale
