#pragma once

#include "host/core/CameraRegistry.h"
#include "zuCore/CxCameraManager.h"
#include "zuCore/CxCameraParameters.h"

#include <memory>
#include <vector>

/// The list of open cameras. HostCore changes it; GUI thread only but for
/// queueImageFormatChanged().
struct Q_DECL_HIDDEN CxCameraManager::Private
{
    struct Camera
    {
        // In this order: the parameters use the session to their end.
        host::CameraRegistry::Lease session;
        std::unique_ptr<CxCameraParameters> parameters;
        unsigned int connectionCount = 0; ///< of the device when it was opened
        bool acquiring = false;           ///< the host's own acquisition
        bool lost = false;                ///< its loss was reported; it closes next
        bool closing = false;             ///< no longer open, but cameraClosed is still to be delivered
    };

    static Private &instance();

    /// Has imageFormatChanged emitted from the GUI thread's event loop. Any
    /// thread.
    static void queueImageFormatChanged(ZUCORE_HANDLE handle);

    /// Null when not open; a closing camera is found by find() only.
    Camera *findOpen(ZUCORE_HANDLE handle);
    Camera *find(ZUCORE_HANDLE handle);
    Camera *findDevice(const host::CameraDevice *device);

    std::vector<std::unique_ptr<Camera>> cameras; ///< in the order of their opening
};
