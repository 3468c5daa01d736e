#include "tests/measurement/report/ReportRig.h"

using namespace measurement;

const QByteArray ReportRig::framesHeader =
    "Frame number,Frame Computer Timestamp [\xCE\xBCs],Sample Time [ns], Offset[B], Data Time Stamp [ns], "
    "Req. throughput [MB/s], Link throughput [MB/s], Buffer filled [B], Max buffer level [%]\n";
const QByteArray ReportRig::countersHeader =
    "Frame number,Timestamp [\xCE\xBCs],Computer Timestamp [\xCE\xBCs],Transport skip,API skip,"
    "Missed trg. overlap,Missed trg overflow,Buffer overflow\n";

namespace {

QByteArrayList rowsOf(QByteArray report, const QByteArray &header)
{
    if (!report.startsWith(header) || !report.endsWith('\n'))
        return {"no report: " + report};
    report.chop(1);
    QByteArrayList rows = report.split('\n');
    rows.removeFirst();
    return rows;
}

} // namespace

QByteArray ReportRig::contents() const
{
    QFile file(m_folder.filePath("report.csv"));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

QByteArrayList ReportRig::writeFrames(const CsvWindow &window)
{
    CsvFile file(m_folder.filePath("report.csv"));
    file.open();
    CsvReport(file, window, progress).writeFrames(recorded.line.frames, link());
    file.close();
    return rowsOf(contents(), framesHeader);
}

QByteArrayList ReportRig::writeCounters(const CsvWindow &window)
{
    CsvFile file(m_folder.filePath("report.csv"));
    file.open();
    CsvReport(file, window, progress).writeCounters(recorded.line.counterData);
    file.close();
    return rowsOf(contents(), countersHeader);
}

CxCameraLineData::CxCounterData &ReportRig::addCounters(qint64 timestamp)
{
    auto *record = new CxCameraLineData::CxCounterData;
    record->frameNumber = static_cast<quint64>(recorded.line.counterData.size() + 1);
    record->cameraTimestamp = timestamp;
    record->computerTimestamp = timestamp + computerShift;
    recorded.line.counterData.append(record);
    return *record;
}

CsvLink ReportRig::link() const
{
    return {recorded.line.sampleInterval, recorded.line.avgTransportSpeedMBps,
            recorded.line.internalBuffSize};
}

CsvWindow ReportRig::everything()
{
    return {std::numeric_limits<qint64>::min(), Q_INT64_C(1) << 60};
}
