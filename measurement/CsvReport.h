#pragma once

#include "measurement/CameraLineData.h"
#include "measurement/CsvFile.h"

/// The report of an engine's records: comma-separated, UTF-8, one line feed
/// after every line.
namespace measurement {

/// Shows how far a report has come and lets the user end it.
class CsvProgress
{
public:
    virtual ~CsvProgress() = default;
    /// \param value between 0 and progressMaximum(), or beyond
    virtual void setValue(int value) = 0;
    /// Asked often enough, every few hundred rows, to keep a window alive with.
    virtual bool wasCancelled() = 0;
};

/// The part of the records that is written.
struct CsvWindow
{
    qint64 from = 0; ///< microseconds, included
    qint64 to = 0;   ///< microseconds, included
    ExTimestampOrigin origin = TimestampOriginCamera;
    bool resetBufferLevel = false; ///< every frame starts with an empty buffer
};

/// What the rows of throughput mode are computed with.
struct CsvLink
{
    quint32 sampleInterval = 0; ///< bytes between two stamps
    quint32 requiredMBps = 0;   ///< what the sensor produces
    quint64 bufferSize = 0;     ///< bytes
};

/// Records in the window and a margin of half its width, or of `statMin`
/// microseconds (see CxCameraLineData) around a window narrower than that.
int progressMaximum(const RecordList<CxCameraLineData::CxFrameData> &frames, const CsvWindow &window,
                    double statMin);
int progressMaximum(const RecordList<CxCameraLineData::CxCounterData> &records, const CsvWindow &window,
                    double statMin);

/// Writes one report. It ends early, after a whole row, when it is cancelled or
/// the file fails. The caller keeps the records from changing meanwhile.
class CsvReport
{
public:
    CsvReport(CsvFile &file, const CsvWindow &window, CsvProgress &progress);

    /// One row a sample, with the modelled buffer level. Frames before the
    /// window count for it by their rate only. Progress: frames.
    void writeFrames(const RecordList<CxCameraLineData::CxFrameData> &frames, const CsvLink &link);

    /// One row a record. Progress: rows.
    void writeCounters(const RecordList<CxCameraLineData::CxCounterData> &records);

private:
    class BufferLevel;
    class IntervalColumns;

    void writeHeader(const char *text);
    bool goesOn();
    bool writeSamples(const CxCameraLineData::CxFrameData &frame, IntervalColumns &intervals,
                      BufferLevel &level);
    void writeCounterRow(const CxCameraLineData::CxCounterData &record);

    CsvFile &m_file;
    const CsvWindow m_window;
    CsvProgress &m_progress;
};

} // namespace measurement
