#pragma once

#include "measurement/CameraLineData.h"
#include "measurement/Saturate.h"

#include <memory>
#include <vector>

/// Records of acquisition mode, kept for as long as a test looks at them.
class CounterList
{
public:
    CxCameraLineData::CxCounterData &add(qint64 timestamp)
    {
        auto record = std::make_unique<CxCameraLineData::CxCounterData>();
        record->cameraTimestamp = timestamp;
        // Far off: a mix-up of the two finds no record in any window.
        record->computerTimestamp = measurement::addSaturated(timestamp, Q_INT64_C(1000000000000));
        record->frameNumber = m_owned.size() + 1;
        pointers.append(record.get());
        m_owned.push_back(std::move(record));
        return *m_owned.back();
    }

    measurement::RecordList<CxCameraLineData::CxCounterData> pointers;

private:
    std::vector<std::unique_ptr<CxCameraLineData::CxCounterData>> m_owned;
};
