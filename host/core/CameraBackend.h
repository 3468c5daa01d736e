#pragma once

#include "host/core/CameraDevice.h"

namespace host {

/// A source of cameras: simulated ones, a GenICam library. Used on the GUI
/// thread only.
class CameraBackend
{
public:
    virtual ~CameraBackend() = default;

    /// The devices that are plugged in now, in a stable order. A device keeps
    /// its object while it is plugged in and when it comes back.
    virtual std::vector<std::shared_ptr<CameraDevice>> devices() = 0;
};

} // namespace host
