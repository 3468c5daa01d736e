#include "host/core/CameraSession.h"

#include "host/core/CameraManagerPrivate.h"
#include "zuCore/ZuParameters.h"

#include <thread>
#include <utility>

namespace host {

CameraSession::CameraSession(ZUCORE_HANDLE handle, std::shared_ptr<CameraDevice> device,
                             CameraDevice::Opening opening)
    : m_handle(handle)
    , m_device(std::move(device))
    , m_opening(opening)
{
}

bool CameraSession::read(std::string_view name, std::int64_t &value)
{
    const std::lock_guard lock(m_mutex);
    return !m_closed && m_device->readParameter(name, value);
}

bool CameraSession::readMaximum(std::string_view name, std::int64_t &value)
{
    const std::lock_guard lock(m_mutex);
    return !m_closed && m_device->readMaximum(name, value);
}

bool CameraSession::isSettable(std::string_view name, std::int64_t value)
{
    const std::lock_guard lock(m_mutex);
    return !m_closed && m_device->isSettable(name, value);
}

bool CameraSession::write(std::string_view name, std::int64_t value)
{
    const std::lock_guard lock(m_mutex);
    if (m_closed)
        return false;
    return name == ZU_PRM_IMAGE_DATA_FORMAT ? writeImageFormat(value) : m_device->writeParameter(name, value);
}

bool CameraSession::writeImageFormat(std::int64_t value)
{
    std::int64_t before = 0;
    std::int64_t after = 0;
    const bool known = m_device->readParameter(ZU_PRM_IMAGE_DATA_FORMAT, before);
    if (!m_device->writeParameter(ZU_PRM_IMAGE_DATA_FORMAT, value))
        return false;
    // The camera's answer counts: it may have taken a neighbouring value.
    if (known && m_device->readParameter(ZU_PRM_IMAGE_DATA_FORMAT, after) && before == after)
        return true;
    // Under the mutex, so that close() and with it the manager's end come later.
    CxCameraManager::Private::queueImageFormatChanged(m_handle);
    return true;
}

bool CameraSession::startStreaming(StreamOwner owner)
{
    const std::lock_guard lock(m_mutex);
    if (m_closed || m_streamOwner != StreamOwner::None || !m_device->startAcquisition())
        return false;
    m_streamOwner = owner;
    return true;
}

bool CameraSession::stopStreaming(StreamOwner owner)
{
    const std::lock_guard lock(m_mutex);
    if (m_closed || m_streamOwner != owner)
        return false;
    m_streamOwner = StreamOwner::None;
    return m_device->stopAcquisition();
}

bool CameraSession::capture(std::chrono::milliseconds timeout, ZU_IMG &image)
{
    if (isClosed()) {
        std::this_thread::sleep_for(timeout);
        return false;
    }
    return m_device->captureImage(m_opening, timeout, image);
}

void CameraSession::close()
{
    const std::lock_guard lock(m_mutex);
    if (std::exchange(m_closed, true))
        return;
    if (std::exchange(m_streamOwner, StreamOwner::None) != StreamOwner::None)
        m_device->stopAcquisition();
    m_device->close();
}

bool CameraSession::isClosed()
{
    const std::lock_guard lock(m_mutex);
    return m_closed;
}

} // namespace host
