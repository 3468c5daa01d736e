#pragma once

#include "measurement/CsvReport.h"

class QIODevice;

namespace reference {

/// Reports in the plainest way, by QTextStream. The tests compare with them, the
/// benchmarks measure against them.
void writeFrames(QIODevice &device, const measurement::RecordList<CxCameraLineData::CxFrameData> &frames,
                 const measurement::CsvWindow &window, const measurement::CsvLink &link);
void writeCounters(QIODevice &device, const measurement::RecordList<CxCameraLineData::CxCounterData> &records,
                   const measurement::CsvWindow &window);

} // namespace reference
