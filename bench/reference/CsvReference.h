#pragma once

#include "measurement/CsvReport.h"

class QIODevice;

namespace reference {

/// The rows of throughput mode in the plainest way, by QTextStream. The tests
/// compare with it, the benchmarks measure against it.
void writeFrames(QIODevice &device, const QList<CxCameraLineData::CxFrameData *> &frames,
                 const measurement::CsvWindow &window, const measurement::CsvLink &link);

} // namespace reference
