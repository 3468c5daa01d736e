#include "measurement/AcquisitionThread.h"

#include "measurement/Log.h"

CxAcquisitionThread::CxAcquisitionThread(CxCameraLineData *line, MeasureMode measureMode)
    : lineData(line)
    , mode(measureMode)
{
}

void CxAcquisitionThread::run()
{
    switch (mode) {
    case MeasureModeThroughput:
        lineData->runMeasureLoopThrougput();
        return;
    case MeasureModeAcquisition:
        lineData->runMeasureLoopAcquisition();
        return;
    }
    cxLogFailure("CxAcquisitionThread::run", "Unknown measurement mode selected");
}
