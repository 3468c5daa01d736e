#pragma once

#include "host/core/CameraDevice.h"
#include "zuCore/ZuCoreGlobal.h"

#include <memory>
#include <mutex>
#include <string_view>

namespace host {

/// An open camera as all threads share it: the device and who streams from it.
///
/// All operations may be called from any thread. CameraRegistry owns it.
class CameraSession
{
public:
    enum class StreamOwner {
        None,
        Host,   ///< the program's own acquisition
        Client, ///< started through zuApi_StartAcquisition
    };

    CameraSession(ZUCORE_HANDLE handle, std::shared_ptr<CameraDevice> device);

    ZUCORE_HANDLE handle() const { return m_handle; }
    const std::shared_ptr<CameraDevice> &device() const { return m_device; }

    /// Writes a parameter. Queues CxCameraManager::imageFormatChanged to the GUI
    /// thread when that changed the image format.
    bool write(std::string_view name, std::int64_t value);

    /// One owner streams at a time.
    bool startStreaming(StreamOwner owner);
    /// Fails without effect for all but the owner. The stream counts as ended
    /// even when the device reports a failure.
    bool stopStreaming(StreamOwner owner);

    /// Ends streaming, whoever began it, and with it waiting captures; then
    /// closes the device.
    void close();

private:
    bool writeImageFormat(std::int64_t value);

    ZUCORE_HANDLE m_handle;
    const std::shared_ptr<CameraDevice> m_device;

    std::mutex m_formatMutex; ///< makes reading, writing and comparing the format one step
    std::mutex m_streamMutex; ///< guards m_streamOwner over the device's start and stop
    StreamOwner m_streamOwner = StreamOwner::None;
};

} // namespace host
