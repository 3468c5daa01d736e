#include "host/core/HostCore.h"

#include "host/core/CameraManagerPrivate.h"
#include "host/core/CameraParametersPrivate.h"

#include <QCoreApplication>
#include <QTimer>

#include <algorithm>
#include <utility>

namespace host {

namespace {

using ManagedCamera = CxCameraManager::Private::Camera;
using Devices = std::vector<std::shared_ptr<CameraDevice>>;

constexpr int pollIntervalMs = 250;

CxCameraManager::Private &managed()
{
    return CxCameraManager::Private::instance();
}

bool same(const HostCore::Camera &a, const HostCore::Camera &b)
{
    return a.info.id == b.info.id && a.info.modelName == b.info.modelName &&
           a.info.serialNumber == b.info.serialNumber && a.info.userId == b.info.userId &&
           a.handle == b.handle && a.acquiring == b.acquiring;
}

bool isLost(const ManagedCamera &camera, const Devices &pluggedIn)
{
    const auto &device = camera.session->device();
    return !device->isConnected() || device->connectionCount() != camera.connectionCount ||
           std::find(pluggedIn.begin(), pluggedIn.end(), device) == pluggedIn.end();
}

} // namespace

struct HostCore::Private
{
    Devices devices() const
    {
        Devices all;
        for (const auto &backend : backends) {
            const Devices some = backend->devices();
            all.insert(all.end(), some.begin(), some.end());
        }
        return all;
    }

    std::vector<std::unique_ptr<CameraBackend>> backends;
    std::vector<Camera> announced; ///< what cameras() said when camerasChanged was last emitted
    QTimer *pollTimer = nullptr;   ///< child of the core
    bool endRegistered = false;    ///< shutDown() runs at the end of the application
    bool shuttingDown = false;     ///< in shutDown(): slots that it calls open nothing anew
};

HostCore::HostCore()
    : d(std::make_unique<Private>())
{
    // Statics end in the reverse order of their construction: this outlives us.
    CxCameraManager::instance();
    d->pollTimer = new QTimer(this);
    d->pollTimer->setInterval(pollIntervalMs);
    connect(d->pollTimer, &QTimer::timeout, this, &HostCore::pollDevices);
}

HostCore::~HostCore() = default;

HostCore &HostCore::instance()
{
    static HostCore core;
    return core;
}

void HostCore::addBackend(std::unique_ptr<CameraBackend> backend)
{
    d->backends.push_back(std::move(backend));
    if (QCoreApplication::instance()) {
        d->pollTimer->start();
        if (!std::exchange(d->endRegistered, true)) {
            qAddPostRoutine([] {
                instance().d->endRegistered = false;
                instance().shutDown();
            });
        }
    }
    announceChanges();
}

void HostCore::shutDown()
{
    d->pollTimer->stop();
    const bool nested = std::exchange(d->shuttingDown, true);
    for (ZUCORE_HANDLE handle : CxCameraManager::instance()->openedCameras())
        close(handle);
    // A back end's destructor must not meet itself in the list.
    const auto ended = std::exchange(d->backends, {});
    d->shuttingDown = nested;
    announceChanges();
}

std::vector<HostCore::Camera> HostCore::cameras()
{
    std::vector<Camera> list;
    for (const auto &device : d->devices()) {
        Camera entry{device->info(), nullptr, false};
        const ManagedCamera *open = managed().findDevice(device.get());
        if (open && !open->closing) {
            entry.handle = open->session->handle();
            entry.acquiring = open->acquiring;
        }
        list.push_back(std::move(entry));
    }
    return list;
}

ZUCORE_HANDLE HostCore::open(const std::string &deviceId)
{
    if (d->shuttingDown)
        return nullptr;
    const Devices devices = d->devices();
    const auto it = std::find_if(devices.begin(), devices.end(),
                                 [&](const auto &device) { return device->info().id == deviceId; });
    if (it == devices.end() || managed().findDevice(it->get()))
        return nullptr;
    // Counted before opening: a device replugged meanwhile then shows as lost.
    const unsigned int connectionCount = (*it)->connectionCount();
    const CameraDevice::Opening opening = (*it)->open();
    if (!opening)
        return nullptr;

    auto camera = std::make_unique<ManagedCamera>();
    camera->session = CameraRegistry::instance().add(*it, opening);
    camera->connectionCount = connectionCount;
    camera->parameters = std::make_unique<CxCameraParameters>(
        std::make_unique<CxCameraParameters::Private>(&*camera->session));
    ZUCORE_HANDLE handle = camera->session->handle();
    managed().cameras.push_back(std::move(camera));

    Q_EMIT CxCameraManager::instance()->cameraOpened(handle);
    announceChanges();
    return managed().findOpen(handle) ? handle : nullptr;
}

bool HostCore::close(ZUCORE_HANDLE handle)
{
    ManagedCamera *camera = managed().findOpen(handle);
    if (!camera)
        return false;
    // The camera stays in the list until the end: only this call removes it.
    camera->closing = true;
    if (std::exchange(camera->acquiring, false)) {
        camera->session->stopStreaming(CameraSession::StreamOwner::Host);
        Q_EMIT CxCameraManager::instance()->acquisitionFinished(handle);
    }
    Q_EMIT CxCameraManager::instance()->cameraClosed(handle);

    CameraRegistry::instance().remove(handle);
    camera->session->close();
    auto &list = managed().cameras;
    list.erase(std::find_if(list.begin(), list.end(), [&](const auto &c) { return c.get() == camera; }));
    announceChanges();
    return true;
}

bool HostCore::startAcquisition(ZUCORE_HANDLE handle)
{
    ManagedCamera *camera = managed().findOpen(handle);
    if (!camera || !camera->session->startStreaming(CameraSession::StreamOwner::Host))
        return false;
    camera->acquiring = true;
    Q_EMIT CxCameraManager::instance()->acquisitionStarted(handle);
    announceChanges();
    return true;
}

bool HostCore::stopAcquisition(ZUCORE_HANDLE handle)
{
    ManagedCamera *camera = managed().findOpen(handle);
    if (!camera || !std::exchange(camera->acquiring, false))
        return false;
    const bool ok = camera->session->stopStreaming(CameraSession::StreamOwner::Host);
    Q_EMIT CxCameraManager::instance()->acquisitionFinished(handle);
    announceChanges();
    return ok;
}

std::vector<ParameterDescription> HostCore::parameters(ZUCORE_HANDLE handle)
{
    const ManagedCamera *camera = managed().findOpen(handle);
    return camera ? camera->session->device()->parameters() : std::vector<ParameterDescription>();
}

void HostCore::pollDevices()
{
    const Devices pluggedIn = d->devices();
    std::vector<ZUCORE_HANDLE> lost;
    for (const auto &camera : managed().cameras) {
        if (camera->closing || camera->lost || !isLost(*camera, pluggedIn))
            continue;
        camera->lost = true; // a slot below may run an event loop, and that another poll
        lost.push_back(camera->session->handle());
    }
    for (ZUCORE_HANDLE handle : lost) {
        if (managed().findOpen(handle))
            Q_EMIT cameraLost(handle);
        close(handle);
    }
    announceChanges();
}

void HostCore::announceChanges()
{
    std::vector<Camera> now = cameras();
    if (std::equal(now.begin(), now.end(), d->announced.begin(), d->announced.end(), same))
        return;
    d->announced = std::move(now);
    Q_EMIT camerasChanged();
}

} // namespace host
