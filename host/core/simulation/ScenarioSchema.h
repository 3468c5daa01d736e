#pragma once

#include "host/core/simulation/JsonPositions.h"

#include <nlohmann/json.hpp>

#include <optional>

namespace host {

/// What in a scenario is not as it must be.
struct ScenarioProblem
{
    std::string pointer; ///< JSON pointer of the offending value
    std::string message;
    bool atKey = false; ///< the member's key is to blame, not its value
};

/// Checks a document against the scenario schema; nothing when it conforms.
std::optional<ScenarioProblem> validateScenarioDocument(const nlohmann::json &document);

} // namespace host
