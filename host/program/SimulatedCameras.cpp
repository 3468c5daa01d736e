#include "host/program/SimulatedCameras.h"

#include "host/core/simulation/RealTimeClock.h"
#include "host/core/simulation/Scenario.h"
#include "host/core/simulation/SimulationBackend.h"

#include <charconv>
#include <optional>

namespace host {

namespace {

constexpr int maxCameras = 64;

std::optional<int> wholeNumber(const std::string &text)
{
    int number = 0;
    const char *end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end ? std::optional<int>(number) : std::nullopt;
}

} // namespace

BackendResult simulatedCameras(const std::string &choice)
{
    Scenario scenario;
    if (const std::optional<int> count = wholeNumber(choice)) {
        if (*count < 1 || *count > maxCameras) {
            return {nullptr, "--simulate: 1 to " + std::to_string(maxCameras) + " cameras, not " +
                                 std::to_string(*count)};
        }
        scenario = defaultScenario(*count);
    } else {
        ScenarioResult found = findScenario(choice);
        if (!found.scenario)
            return {nullptr, found.error};
        scenario = std::move(*found.scenario);
    }
    return {std::make_unique<SimulationBackend>(scenario, std::make_shared<RealTimeClock>()), {}};
}

} // namespace host
