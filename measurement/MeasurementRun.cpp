#include "measurement/CameraLineData.h"

#include "measurement/AcquisitionThread.h"
#include "measurement/Log.h"

#include <QMutexLocker>

#include <utility>

bool CxCameraLineData::startMeasurement(unsigned int interval, long long capacity)
{
    if (isExporting()) {
        cxLogFailure("CxCameraLineData::startMeasurement", "The records are being exported");
        return false;
    }
    const QMutexLocker locker(&mutex);
    if (!cameraHandle || running)
        return false;

    if (autoTransportSpeed)
        readDefaultAvgTransportSpeed();
    if (!setupCameraParameters()) {
        restoreCameraParameters();
        return false;
    }
    sampleInterval = interval;
    maxSamples = capacity;

    // Not every camera has a resettable time stamp.
    zuApi_SetParamInt(cameraHandle, ZU_PRM_TS_RST_MODE, ZU_TS_RST_MODE_ONCE, nullptr);
    zuApi_SetParamInt(cameraHandle, ZU_PRM_TS_RST_SOURCE, ZU_TS_RST_SOURCE_ACQUISITION, nullptr);
    if (!zuApi_StartAcquisition(cameraHandle)) {
        cxLogFailure("CxCameraLineData::startMeasurement", "zuApi_StartAcquisition failed");
        restoreCameraParameters();
        return false;
    }

    startedMode = measureMode;
    stopRequested = false;
    running = true;
    acquisitionThread = new CxAcquisitionThread(this, measureMode);
    acquisitionThread->start(QThread::InheritPriority);
    return true;
}

bool CxCameraLineData::stopMeasurement()
{
    if (!running || stopRequested)
        return false;
    if (isExporting()) {
        // The thread cannot end before the export lets go of the mutex.
        cxLogFailure("CxCameraLineData::stopMeasurement", "The records are being exported");
        return false;
    }

    // Without the mutex: the loop needs it to store its current frame.
    if (acquisitionThread) {
        stopRequested = true;
        acquisitionThread->wait();
        delete acquisitionThread;
        acquisitionThread = nullptr;
    }

    const QMutexLocker locker(&mutex);
    if (!zuApi_StopAcquisition(cameraHandle))
        cxLogFailure("CxCameraLineData::stopMeasurement", "zuApi_StopAcquisition failed");
    // What the start changed, even if the mode for the next one differs by now.
    const MeasureMode nextMode = std::exchange(measureMode, startedMode.value_or(measureMode));
    restoreCameraParameters();
    measureMode = nextMode;
    startedMode.reset();
    running = false;
    return true;
}

void CxCameraLineData::discard(CxCameraLineData *line)
{
    if (!line)
        return;
    if (line->isExporting()) {
        line->discarded = true;
        return;
    }
    line->stopMeasurement();
    delete line;
}
