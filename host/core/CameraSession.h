#pragma once

#include "host/core/CameraDevice.h"
#include "zuCore/ZuCoreGlobal.h"

#include <memory>
#include <mutex>
#include <string_view>

namespace host {

/// One opening of a camera as all threads share it: the device and who streams
/// from it. CameraRegistry hands it out.
///
/// All operations may be called from any thread. Once the session is closed they
/// fail and leave the device alone, which may have been opened anew; a capture
/// fails after its time-out.
class CameraSession
{
public:
    enum class StreamOwner {
        None,
        Host,   ///< the program's own acquisition
        Client, ///< started through zuApi_StartAcquisition
    };

    /// \param opening of the device, just made
    CameraSession(ZUCORE_HANDLE handle, std::shared_ptr<CameraDevice> device, CameraDevice::Opening opening);

    ZUCORE_HANDLE handle() const { return m_handle; }
    /// To tell which device it is; what acts on it goes through the session.
    const std::shared_ptr<CameraDevice> &device() const { return m_device; }

    bool read(std::string_view name, std::int64_t &value);
    bool readMaximum(std::string_view name, std::int64_t &value);
    bool isSettable(std::string_view name, std::int64_t value);
    /// Writes a parameter. Queues CxCameraManager::imageFormatChanged to the GUI
    /// thread when that changed the image format.
    bool write(std::string_view name, std::int64_t value);

    /// One owner streams at a time.
    bool startStreaming(StreamOwner owner);
    /// Fails without effect for all but the owner. The stream counts as ended
    /// even when the device reports a failure.
    bool stopStreaming(StreamOwner owner);

    bool capture(std::chrono::milliseconds timeout, ZU_IMG &image);

    /// Waits for the operations in progress; then ends streaming, whoever began
    /// it, and closes the device, which ends waiting captures. Once only.
    void close();

private:
    bool writeImageFormat(std::int64_t value);
    bool isClosed();

    const ZUCORE_HANDLE m_handle;
    const std::shared_ptr<CameraDevice> m_device;
    const CameraDevice::Opening m_opening;

    /// Guards all below. Held throughout every operation, so that none reaches
    /// the device once it is closed; only captures wait without it and have the
    /// device look at the opening.
    std::mutex m_mutex;
    StreamOwner m_streamOwner = StreamOwner::None;
    bool m_closed = false;
};

} // namespace host
