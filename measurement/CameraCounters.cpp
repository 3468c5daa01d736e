#include "measurement/CameraLineData.h"

#include <QMutexLocker>

namespace {

const CxCameraLineData::CxCounterInfo *findCounter(const QList<CxCameraLineData::CxCounterInfo *> &counters,
                                                   ZU_COUNTER_SELECTOR selector)
{
    for (const CxCameraLineData::CxCounterInfo *counter : counters) {
        if (counter->selector == selector)
            return counter;
    }
    return nullptr;
}

} // namespace

void CxCameraLineData::ReadCounterValues()
{
    // The list never changes; a const reference keeps the loop from detaching it.
    const QList<CxCounterInfo *> &counters = counterInfos;
    for (CxCounterInfo *counter : counters) {
        if (!counter->supported)
            continue;
        int reading = 0;
        if (zuApi_SetParamInt(cameraHandle, ZU_PRM_COUNTER_SELECTOR, counter->selector, nullptr) &&
            zuApi_GetParamInt(cameraHandle, ZU_PRM_COUNTER_VALUE, reading, nullptr))
            counter->value = reading;
    }
}

bool CxCameraLineData::IsCounterSupported(ZU_COUNTER_SELECTOR selector) const
{
    const CxCounterInfo *counter = findCounter(counterInfos, selector);
    return counter && counter->supported;
}

int CxCameraLineData::GetCounterValue(ZU_COUNTER_SELECTOR selector)
{
    const QMutexLocker locker(isExporting() ? nullptr : &mutex);
    const CxCounterInfo *counter = findCounter(counterInfos, selector);
    return counter ? counter->value.load() : 0;
}
