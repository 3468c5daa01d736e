#pragma once

#include "host/core/CameraBackend.h"

#include <memory>
#include <string>

namespace host {

/// A back end, or why there is none.
struct BackendResult
{
    std::unique_ptr<CameraBackend> backend;
    std::string error;
};

/// Simulated cameras that run in real time.
/// \param choice a number of cameras, a built-in scenario's name or a file
BackendResult simulatedCameras(const std::string &choice);

} // namespace host
