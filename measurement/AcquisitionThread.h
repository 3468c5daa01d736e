#pragma once

#include "measurement/CameraLineData.h"

#include <QThread>

/// Runs the capture loop of one measurement.
class CxAcquisitionThread : public QThread
{
    Q_OBJECT

public:
    /// \param line the engine that owns this thread
    CxAcquisitionThread(CxCameraLineData *line, MeasureMode measureMode);

protected:
    void run() override;

private:
    CxCameraLineData *lineData;
    MeasureMode mode;
};
