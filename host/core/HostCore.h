#pragma once

#include "host/core/CameraBackend.h"
#include "zuCore/ZuCoreGlobal.h"

#include <QObject>
#include <QStringList>

#include <memory>
#include <vector>

namespace host {

/// The host's side of the core library: what a program that owns cameras does
/// and a plug-in never sees. It feeds CxCameraManager. One object, GUI thread
/// only.
class ZUCORE_EXPORT HostCore : public QObject
{
    Q_OBJECT

public:
    struct Camera
    {
        DeviceInfo info;
        ZUCORE_HANDLE handle = nullptr; ///< null while not open
        bool acquiring = false;         ///< by the host itself
    };

    static HostCore &instance();

    /// A QCoreApplication must exist for the devices to be polled by themselves.
    void addBackend(std::unique_ptr<CameraBackend> backend);

    /// Closes every camera and forgets the back ends; no camera opens meanwhile.
    /// The end of the QCoreApplication does this, too.
    void shutDown();

    /// All cameras that are plugged in, open or not.
    std::vector<Camera> cameras();

    /// Opens a plugged-in camera by its id; null when there is none, when it is
    /// open already or refuses, and during shutDown().
    ZUCORE_HANDLE open(const std::string &deviceId);

    /// Takes the handle from the opened ones, ends the host's own acquisition,
    /// emits CxCameraManager::cameraClosed while the handle still takes calls,
    /// then closes the device once other threads' calls have left it; captures
    /// that wait it ends.
    bool close(ZUCORE_HANDLE handle);

    /// The host's own acquisition; refused while a plug-in streams.
    bool startAcquisition(ZUCORE_HANDLE handle);
    /// False when there is none or the camera failed; ended it is in any case.
    bool stopAcquisition(ZUCORE_HANDLE handle);

    /// The user-visible parameters of an open camera.
    std::vector<ParameterDescription> parameters(ZUCORE_HANDLE handle);

    /// Looks which devices came or went and closes the lost ones. Also runs by
    /// itself four times a second while an event loop runs and nothing blocks it.
    void pollDevices();

Q_SIGNALS:
    /// The answer of cameras() changed.
    void camerasChanged();
    /// An open camera went away by itself; its handle closes right after.
    void cameraLost(ZUCORE_HANDLE hCam);
    /// A parameter set was committed with eCommitRefreshChanged: views of the
    /// camera's parameters should show these anew.
    void parametersChanged(ZUCORE_HANDLE hCam, const QStringList &names);

private:
    HostCore();
    ~HostCore() override;

    void announceChanges();

    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace host
