#pragma once

#include "tests/ui/PluginRig.h"

namespace rig {

/// What an engine says of its settings as a measurement begins, in decimal as
/// it stands in the log. Empty when the measurement did not start.
struct StartReport
{
    QString sampleInterval; ///< bytes
    QString bufferSize;     ///< bytes
    QString requiredSpeed;  ///< MB/s
};

/// Starts the camera's measurement with its row's button, waits until the
/// frames have been stored, and stops it again. Message boxes are closed.
/// \param frames of the camera's image source
StartReport measure(PluginRig &rig, ZUCORE_HANDLE camera, int frames = 0);

} // namespace rig
