#include "tests/host/core/CameraEvents.h"

#include "host/core/HostCore.h"
#include "zuCore/CxCameraManager.h"
#include "zuCore/CxCameraParameters.h"

#include <utility>

using host::HostCore;

CameraEvents::CameraEvents()
{
    CxCameraManager *manager = CxCameraManager::instance();
    HostCore &core = HostCore::instance();
    const auto note = [this, manager](const char *what) {
        return [this, manager, what](ZUCORE_HANDLE handle) {
            const CxCameraParameters *set = manager->cameraParameters(handle);
            const QString id = set ? set->cameraInfo().serialNumber.mid(3) : QStringLiteral("?");
            m_events << QStringLiteral("%1 %2").arg(QLatin1String(what), id);
        };
    };
    QObject::connect(manager, &CxCameraManager::cameraOpened, &m_context, note("opened"));
    QObject::connect(manager, &CxCameraManager::cameraClosed, &m_context, note("closed"));
    QObject::connect(manager, &CxCameraManager::acquisitionStarted, &m_context, note("started"));
    QObject::connect(manager, &CxCameraManager::acquisitionFinished, &m_context, note("finished"));
    QObject::connect(&core, &HostCore::cameraLost, &m_context, note("lost"));
    QObject::connect(&core, &HostCore::camerasChanged, &m_context,
                     [this] { m_events << QStringLiteral("changed"); });
}

QStringList CameraEvents::take()
{
    return std::exchange(m_events, {});
}
