#include "host/core/CameraManagerPrivate.h"

#include <QMetaObject>
#include <QMetaType>

CxCameraManager::CxCameraManager()
    : d(std::make_unique<Private>())
{
    // Without its name a queued or recorded signal cannot carry the handle.
    qRegisterMetaType<ZUCORE_HANDLE>("ZUCORE_HANDLE");
}

CxCameraManager::~CxCameraManager() = default;

CxCameraManager *CxCameraManager::instance()
{
    static CxCameraManager manager;
    return &manager;
}

QList<ZUCORE_HANDLE> CxCameraManager::openedCameras()
{
    QList<ZUCORE_HANDLE> handles;
    for (const auto &camera : d->cameras) {
        if (!camera->closing)
            handles.append(camera->session->handle());
    }
    return handles;
}

bool CxCameraManager::isCameraRunning(void *camera)
{
    const Private::Camera *found = d->find(camera);
    return found && found->acquiring;
}

CxCameraParameters *CxCameraManager::cameraParameters(void *camera)
{
    const Private::Camera *found = d->find(camera);
    return found ? found->parameters.get() : nullptr;
}

CxCameraManager::Private &CxCameraManager::Private::instance()
{
    return *CxCameraManager::instance()->d;
}

void CxCameraManager::Private::queueImageFormatChanged(ZUCORE_HANDLE handle)
{
    const auto announce = [handle] {
        // The camera may have been closed since.
        if (instance().findOpen(handle))
            Q_EMIT CxCameraManager::instance()->imageFormatChanged(handle);
    };
    QMetaObject::invokeMethod(CxCameraManager::instance(), announce, Qt::QueuedConnection);
}

CxCameraManager::Private::Camera *CxCameraManager::Private::findOpen(ZUCORE_HANDLE handle)
{
    Camera *camera = find(handle);
    return camera && !camera->closing ? camera : nullptr;
}

CxCameraManager::Private::Camera *CxCameraManager::Private::find(ZUCORE_HANDLE handle)
{
    for (const auto &camera : cameras) {
        if (camera->session->handle() == handle)
            return camera.get();
    }
    return nullptr;
}

CxCameraManager::Private::Camera *CxCameraManager::Private::findDevice(const host::CameraDevice *device)
{
    for (const auto &camera : cameras) {
        if (camera->session->device().get() == device)
            return camera.get();
    }
    return nullptr;
}
