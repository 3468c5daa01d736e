#pragma once

#include "zuCore/ZuCoreGlobal.h"

#include <QList>
#include <QObject>

#include <memory>

class CxCameraParameters;

/// The cameras that the host has open. One object for the whole program, GUI
/// thread only; all signals are emitted on that thread.
class ZUCORE_EXPORT CxCameraManager : public QObject
{
    Q_OBJECT

public:
    static CxCameraManager *instance();

    /// Handles of the open cameras, in the order of their opening.
    QList<ZUCORE_HANDLE> openedCameras();

    /// Whether the host itself acquires from the camera. A measurement that a
    /// plug-in runs does not count.
    bool isCameraRunning(void *camera);

    /// The camera's parameter set, or null for a closed handle. It can still be
    /// had while cameraClosed is delivered.
    CxCameraParameters *cameraParameters(void *camera);

    /// Host side only.
    struct Private;

Q_SIGNALS:
    void cameraOpened(ZUCORE_HANDLE hCam);

    /// The camera is about to close, by the user or because it was lost: it is
    /// no longer among openedCameras(), but its handle still takes calls until
    /// the signal has been delivered, so that settings can be put back. Never
    /// delivered within a call of the camera functions, whose caller may hold locks.
    void cameraClosed(ZUCORE_HANDLE hCam);

    /// The host's own acquisition started or ended; also ended by a close, and
    /// then before cameraClosed.
    void acquisitionStarted(ZUCORE_HANDLE hCam);
    void acquisitionFinished(ZUCORE_HANDLE hCam);

    /// "imgdataformat" changed, whoever wrote it on whichever thread. Always
    /// delivered through the event loop, never within the writing call, whose
    /// caller may hold locks.
    void imageFormatChanged(ZUCORE_HANDLE hCam);

private:
    CxCameraManager();
    ~CxCameraManager() override;

    std::unique_ptr<Private> d;
};
