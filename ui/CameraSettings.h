#pragma once

#include "measurement/CameraLineData.h"

#include <QMutexLocker>

/// Settings of an engine whose measurement may be running. Each call holds the
/// engine's mutex and gives it back before it returns: what a caller does with
/// the answer, such as showing it in an edit, ends in another of them. While the
/// engine's records are exported this thread has the mutex already.
namespace cameraSettings {

inline QMutex *mutexOf(CxCameraLineData &line)
{
    return line.isExporting() ? nullptr : &line.mutex;
}

template <typename T> void store(CxCameraLineData &line, T CxCameraLineData::*setting, T value)
{
    const QMutexLocker locker(mutexOf(line));
    line.*setting = value;
}

/// Takes the link's default speed from the camera.
/// \return the engine's speed afterwards, MB/s; the one before where the camera has none
inline unsigned int readTransportSpeed(CxCameraLineData &line)
{
    const QMutexLocker locker(mutexOf(line));
    line.readDefaultAvgTransportSpeed();
    return line.avgTransportSpeedMBps;
}

/// Takes the size of the internal frame buffer from the camera.
/// \return the engine's size afterwards, bytes
inline quint64 readBufferSize(CxCameraLineData &line)
{
    const QMutexLocker locker(mutexOf(line));
    line.internalBuffSize = line.readInternalCameraBufferSize();
    return line.internalBuffSize;
}

} // namespace cameraSettings
