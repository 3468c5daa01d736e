#include "host/core/CameraSession.h"

#include "host/core/CameraManagerPrivate.h"
#include "zuCore/ZuParameters.h"

#include <utility>

namespace host {

CameraSession::CameraSession(ZUCORE_HANDLE handle, std::shared_ptr<CameraDevice> device)
    : m_handle(handle)
    , m_device(std::move(device))
{
}

bool CameraSession::write(std::string_view name, std::int64_t value)
{
    if (name == ZU_PRM_IMAGE_DATA_FORMAT)
        return writeImageFormat(value);
    return m_device->writeParameter(name, value);
}

bool CameraSession::writeImageFormat(std::int64_t value)
{
    bool changed = true;
    {
        const std::lock_guard lock(m_formatMutex);
        std::int64_t before = 0;
        std::int64_t after = 0;
        const bool known = m_device->readParameter(ZU_PRM_IMAGE_DATA_FORMAT, before);
        if (!m_device->writeParameter(ZU_PRM_IMAGE_DATA_FORMAT, value))
            return false;
        // The camera's answer counts: it may have taken a neighbouring value.
        if (known && m_device->readParameter(ZU_PRM_IMAGE_DATA_FORMAT, after))
            changed = before != after;
    }
    if (changed)
        CxCameraManager::Private::queueImageFormatChanged(m_handle);
    return true;
}

bool CameraSession::startStreaming(StreamOwner owner)
{
    const std::lock_guard lock(m_streamMutex);
    if (m_streamOwner != StreamOwner::None || !m_device->startAcquisition())
        return false;
    m_streamOwner = owner;
    return true;
}

bool CameraSession::stopStreaming(StreamOwner owner)
{
    const std::lock_guard lock(m_streamMutex);
    if (m_streamOwner != owner)
        return false;
    m_streamOwner = StreamOwner::None;
    return m_device->stopAcquisition();
}

void CameraSession::close()
{
    {
        const std::lock_guard lock(m_streamMutex);
        if (m_streamOwner != StreamOwner::None)
            m_device->stopAcquisition();
        m_streamOwner = StreamOwner::None;
    }
    m_device->close();
}

} // namespace host
