#include "host/core/simulation/SimulationBackend.h"

namespace host {

SimulationBackend::SimulationBackend(const Scenario &scenario, const std::shared_ptr<Clock> &clock)
    : SimulationBackend(scenario, [&clock](std::size_t) { return clock; })
{
}

SimulationBackend::SimulationBackend(const Scenario &scenario, const ClockFactory &clockFor)
{
    for (std::size_t i = 0; i < scenario.cameras.size(); ++i)
        m_cameras.push_back(
            std::make_shared<SimulatedCamera>(scenario.cameras[i], scenario.seed, i, clockFor(i)));
}

std::vector<std::shared_ptr<CameraDevice>> SimulationBackend::devices()
{
    std::vector<std::shared_ptr<CameraDevice>> connected;
    for (const auto &camera : m_cameras) {
        if (camera->isConnected())
            connected.push_back(camera);
    }
    return connected;
}

} // namespace host
