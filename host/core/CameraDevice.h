#pragma once

#include "zuCore/ZuApi.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// One value of an enumerated parameter.
struct ParameterChoice
{
    std::string name;
    std::int64_t value = 0;
};

/// What a user interface needs to show and edit a parameter.
struct ParameterDescription
{
    std::string name;
    std::string group;
    std::string unit;         ///< "MB/s", "px", ...; empty where none fits
    std::int64_t minimum = 0; ///< of plain numbers
    std::int64_t maximum = 0;
    bool writable = true;
    std::vector<ParameterChoice> choices; ///< not empty: the only values it takes
};

struct DeviceInfo
{
    std::string id; ///< unique among all devices and the same each time the device is plugged in
    std::string modelName;
    std::string serialNumber;
    std::string userId;
};

/// One camera of a back end.
///
/// All operations may be called from any thread, a capture at the same time as
/// any other. None throws. A device that was unplugged fails every call (a
/// capture after its time-out) until it is plugged in again. Whichever thread
/// used the device last destroys it.
class CameraDevice
{
public:
    /// Numbers the openings of a device from 1; 0: none.
    using Opening = unsigned int;

    virtual ~CameraDevice() = default;

    virtual DeviceInfo info() const = 0;
    virtual bool isConnected() const = 0;
    /// How often the device was plugged in. Tells a device that stayed from one
    /// that went and came back between two looks, closed and with default values.
    virtual unsigned int connectionCount() const = 0;

    /// 0 when the device refuses. No number comes twice.
    virtual Opening open() = 0;
    /// Stops streaming, too, and ends captures that wait on other threads: they
    /// fail. The latter also on a device that was unplugged or has come back.
    virtual void close() = 0;

    /// The parameters a user may see, in the order in which to show them.
    virtual std::vector<ParameterDescription> parameters() const = 0;

    virtual bool readParameter(std::string_view name, std::int64_t &value) = 0;
    virtual bool readMaximum(std::string_view name, std::int64_t &value) = 0;
    virtual bool writeParameter(std::string_view name, std::int64_t value) = 0;
    /// Whether a write of `value` would be accepted now; changes nothing.
    virtual bool isSettable(std::string_view name, std::int64_t value) = 0;

    virtual bool startAcquisition() = 0;
    /// Ends a capture that waits on another thread.
    virtual bool stopAcquisition() = 0;

    /// Fills the record with the next frame. The data stay valid until the next
    /// capture or until streaming stops. Fails once `timeout` has passed without
    /// a frame, and not before unless a frame arrived damaged or streaming was
    /// stopped meanwhile: a caller that tries again at once must not spin.
    /// \param opening whose frames are meant. A capture that comes or wakes up
    /// after the device was opened anew fails at once and takes no frame.
    virtual bool captureImage(Opening opening, std::chrono::milliseconds timeout, ZU_IMG &image) = 0;
};

} // namespace host
