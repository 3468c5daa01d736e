#pragma once

#include "host/core/simulation/CameraParameterSet.h"

#include <span>

namespace host {

/// What is fixed about a parameter.
struct ParameterTableEntry
{
    const char *name;
    const char *group;
    const char *unit;
    std::int64_t initial;
    std::int64_t minimum;
    std::int64_t maximum; ///< 0: the camera's settings say
    std::span<const std::pair<const char *, int>> choices;
    bool lockedWhileStreaming;
};

const ParameterTableEntry &parameterTableEntry(ParameterId id);

} // namespace host
