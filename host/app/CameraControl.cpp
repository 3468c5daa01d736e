#include "host/app/CameraControl.h"

#include "zuCore/CxCameraManager.h"

namespace host {

CameraControl::CameraControl(QObject *parent)
    : QObject(parent)
{
    connect(CxCameraManager::instance(), &CxCameraManager::cameraClosed, this, &CameraControl::forget);
}

bool CameraControl::isEnabled(ZUCORE_HANDLE hCam) const
{
    return !m_driven.contains(hCam);
}

void CameraControl::setEnabled(ZUCORE_HANDLE hCam, bool enabled)
{
    if (!hCam || enabled == isEnabled(hCam)) {
        return;
    }
    if (enabled) {
        m_driven.remove(hCam);
    } else {
        m_driven.insert(hCam);
    }
    Q_EMIT enabledChanged(hCam, enabled);
}

void CameraControl::forget(ZUCORE_HANDLE hCam)
{
    m_driven.remove(hCam);
}

} // namespace host
