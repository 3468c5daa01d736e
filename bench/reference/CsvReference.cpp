#include "bench/reference/CsvReference.h"

#include "measurement/Saturate.h"

#include <QTextStream>

namespace reference {

namespace {

QString text(double value)
{
    return QString::number(value, 'g', 6);
}

} // namespace

void writeFrames(QIODevice &device, const measurement::RecordList<CxCameraLineData::CxFrameData> &frames,
                 const measurement::CsvWindow &window, const measurement::CsvLink &link)
{
    QTextStream out(&device);
    out.setCodec("UTF-8");
    out << QStringLiteral("Frame number,Frame Computer Timestamp [\u03BCs],Sample Time [ns], Offset[B], "
                          "Data Time Stamp [ns], Req. throughput [MB/s], Link throughput [MB/s], "
                          "Buffer filled [B], Max buffer level [%]\n");

    const auto size = static_cast<double>(link.bufferSize);
    double level = 0.0;
    double rate = 0.0;
    qint64 lastTime = 0;
    for (const CxCameraLineData::CxFrameData *frame : frames) {
        if (!frame->samples || frame->sampleCount == 0)
            continue;
        const qint64 timestamp = frame->frameTimestamp(window.origin);
        if (window.resetBufferLevel) {
            level = 0.0;
        } else if (lastTime != 0) {
            const double drained = rate * static_cast<double>(quint64(timestamp) - quint64(lastTime));
            if (drained > 0.0)
                level = level - drained < 0.0 ? 0.0 : level - drained;
            lastTime = 0;
        }
        const quint64 start = frame->samples[0];
        quint64 previous = start;
        for (quint64 i = 1; i < frame->sampleCount; ++i) {
            const quint64 stamp = frame->samples[i];
            const double duration = static_cast<double>(stamp - previous) / 250.0;
            previous = stamp;
            lastTime = measurement::addSaturated(timestamp, static_cast<qint64>((stamp - start) / 250));
            if (lastTime < window.from)
                continue;
            if (lastTime > window.to)
                break;
            out << frame->frameNumber << ',' << frame->computerTimestamp << ',' << (stamp - start) * 4 << ','
                << link.sampleInterval * i << ',' << stamp * 4 << ',' << link.requiredMBps << ',';
            if (duration > 0.0) {
                level += duration * link.requiredMBps - link.sampleInterval;
                level = level < 0.0 ? 0.0 : level > size ? size : level;
                out << text(link.sampleInterval / duration) << ',' << text(level) << ','
                    << text(level / size * 100.0);
            }
            out << '\n';
        }
        const auto bytes = static_cast<qint64>(link.sampleInterval * frame->sampleCount);
        rate = static_cast<double>(bytes) / static_cast<double>(frame->sampleSpan) * 250.0;
        if (window.to < timestamp)
            break;
    }
}

void writeCounters(QIODevice &device, const measurement::RecordList<CxCameraLineData::CxCounterData> &records,
                   const measurement::CsvWindow &window)
{
    QTextStream out(&device);
    out.setCodec("UTF-8");
    out << QStringLiteral(
        "Frame number,Timestamp [\u03BCs],Computer Timestamp [\u03BCs],Transport skip,API skip,"
        "Missed trg. overlap,Missed trg overflow,Buffer overflow\n");
    for (const CxCameraLineData::CxCounterData *record : records) {
        const qint64 timestamp = record->frameTimestamp(window.origin);
        if (timestamp < window.from)
            continue;
        if (timestamp > window.to)
            break;
        out << record->frameNumber << ',' << record->cameraTimestamp << ',' << record->computerTimestamp
            << ',' << record->transportSkip << ',' << record->apiSkip << ',' << record->missedTrgOverlap
            << ',' << record->missedTrgOverflow << ',' << record->bufferOverflow << '\n';
    }
}

} // namespace reference
