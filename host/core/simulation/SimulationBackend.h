#pragma once

#include "host/core/CameraBackend.h"
#include "host/core/simulation/Clock.h"
#include "host/core/simulation/Scenario.h"
#include "host/core/simulation/SimulatedCamera.h"

#include <functional>

namespace host {

/// The cameras of a scenario.
class ZUCORE_EXPORT SimulationBackend : public CameraBackend
{
public:
    /// Makes the clock of the camera with that index, from 0.
    using ClockFactory = std::function<std::shared_ptr<Clock>(std::size_t camera)>;

    /// All cameras on one clock, as in the real world.
    SimulationBackend(const Scenario &scenario, const std::shared_ptr<Clock> &clock);

    /// Each camera on its own clock: tests that let several run freely.
    SimulationBackend(const Scenario &scenario, const ClockFactory &clockFor);

    std::vector<std::shared_ptr<CameraDevice>> devices() override;

    /// All cameras of the scenario, plugged in or not, in its order.
    const std::vector<std::shared_ptr<SimulatedCamera>> &cameras() const { return m_cameras; }

private:
    std::vector<std::shared_ptr<SimulatedCamera>> m_cameras;
};

} // namespace host
