#include "measurement/CsvReport.h"

#include "measurement/CsvText.h"
#include "measurement/LinkDrain.h"
#include "measurement/Saturate.h"

#include <algorithm>
#include <cstring>

namespace measurement {

namespace {

using CxFrameData = CxCameraLineData::CxFrameData;
using CxCounterData = CxCameraLineData::CxCounterData;

// The letter is U+03BC; split, or the next character would join the escape.
#define MICRO "\xCE\xBC"
constexpr char framesHeader[] =
    "Frame number,Frame Computer Timestamp [" MICRO "s],Sample Time [ns], Offset[B], Data Time Stamp [ns], "
    "Req. throughput [MB/s], Link throughput [MB/s], Buffer filled [B], Max buffer level [%]\n";
constexpr char countersHeader[] =
    "Frame number,Timestamp [" MICRO "s],Computer Timestamp [" MICRO "s],Transport skip,API skip,"
    "Missed trg. overlap,Missed trg overflow,Buffer overflow\n";
#undef MICRO

/// Samples, or records, between two looks at the progress.
constexpr quint64 samplesPerLook = 512;
constexpr int recordsPerLook = 64;

static_assert(sizeof(framesHeader) <= CsvFile::lineRoom && sizeof(countersHeader) <= CsvFile::lineRoom);
static_assert(9 * (csv::longestInteger + 1) + csv::textRoom <= CsvFile::lineRoom);

/// A piece of text that many rows share, copied faster than it is formatted.
class SharedText
{
public:
    char *begin() { return m_text; }
    void setEnd(const char *end) { m_size = end - m_text; }

    char *write(char *to) const
    {
        std::memcpy(to, m_text, sizeof(m_text)); // of constant size, so without a call
        return to + m_size;
    }

private:
    static constexpr std::size_t longest = 2 * (csv::longestInteger + 1);
    char m_text[longest + csv::textRoom] = {};
    std::ptrdiff_t m_size = 0;
};

char *writeField(char *to, quint64 value)
{
    to = csv::writeUnsigned(to, value);
    *to = ',';
    return to + 1;
}

char *writeField(char *to, qint64 value)
{
    to = csv::writeSigned(to, value);
    *to = ',';
    return to + 1;
}

char *writeField(char *to, double value)
{
    to = csv::writeReal(to, value);
    *to = ',';
    return to + 1;
}

/// The last field becomes the end of the line.
char *endLine(char *to)
{
    to[-1] = '\n';
    return to;
}

/// The two columns of a row that are the same throughout its frame.
SharedText frameColumns(const CxFrameData &frame)
{
    SharedText text;
    text.setEnd(writeField(writeField(text.begin(), frame.frameNumber), frame.computerTimestamp));
    return text;
}

SharedText requiredColumn(const CsvLink &link)
{
    SharedText text;
    text.setEnd(writeField(text.begin(), quint64(link.requiredMBps)));
    return text;
}

template <typename Record>
int countRecords(const QList<Record *> &records, const CsvWindow &window, double statMin)
{
    const qint64 width = subtractSaturated(window.to, window.from);
    const qint64 margin = static_cast<double>(width) < statMin ? truncateSaturated(statMin) : width / 2;
    const qint64 earliest = subtractSaturated(window.from, margin);
    const qint64 latest = addSaturated(window.to, margin);
    int count = 0;
    for (const Record *record : records) {
        const qint64 timestamp = record->frameTimestamp(window.origin);
        if (timestamp > latest)
            break;
        if (timestamp >= earliest)
            ++count;
    }
    return count;
}

} // namespace

/// The camera's frame buffer while the link empties it.
class CsvReport::BufferLevel
{
public:
    BufferLevel(const CsvLink &link, bool reset)
        : m_interval(link.sampleInterval)
        , m_required(link.requiredMBps)
        , m_size(static_cast<double>(link.bufferSize))
        , m_reset(reset)
    {
    }

    /// Between two frames the link goes on at the rate of the first.
    void drain(qint64 timestamp)
    {
        if (m_reset) {
            m_bytes = 0.0;
            return;
        }
        if (m_lastTime == 0)
            return;
        m_bytes = throughput::levelAfterPause(m_bytes, m_rate, m_lastTime, timestamp);
        m_lastTime = 0;
    }

    /// \param duration microseconds
    void advance(double duration)
    {
        m_bytes += duration * m_required - m_interval;
        if (m_bytes < 0.0)
            m_bytes = 0.0;
        else if (m_bytes > m_size)
            m_bytes = m_size;
    }

    void setLastTime(qint64 time) { m_lastTime = time; }
    void setRate(const CxFrameData &frame, quint32 sampleInterval)
    {
        m_rate = throughput::meanRate(sampleInterval, frame.sampleCount, frame.sampleSpan);
    }

    double bytes() const { return m_bytes; }
    /// NaN for a buffer of size 0.
    double percent() const { return m_bytes / m_size * 100.0; }

private:
    const double m_interval;
    const double m_required;
    const double m_size;
    const bool m_reset;
    double m_bytes = 0.0;
    double m_rate = 0.0;   ///< mean of the frame before, MB/s
    qint64 m_lastTime = 0; ///< of its last sample, microseconds; 0: nothing to drain
};

int progressMaximum(const QList<CxFrameData *> &frames, const CsvWindow &window, double statMin)
{
    return countRecords(frames, window, statMin);
}

int progressMaximum(const QList<CxCounterData *> &records, const CsvWindow &window, double statMin)
{
    return countRecords(records, window, statMin);
}

CsvReport::CsvReport(CsvFile &file, const CsvWindow &window, CsvProgress &progress)
    : m_file(file)
    , m_window(window)
    , m_progress(progress)
{
}

void CsvReport::writeHeader(const char *text)
{
    const std::size_t size = std::strlen(text);
    char *line = m_file.reserve();
    std::copy_n(text, size, line);
    m_file.commit(line + size);
}

bool CsvReport::goesOn()
{
    return !m_progress.wasCancelled() && !m_file.hasFailed();
}

void CsvReport::writeFrames(const QList<CxFrameData *> &frames, const CsvLink &link)
{
    writeHeader(framesHeader);
    BufferLevel level(link, m_window.resetBufferLevel);
    int index = 0;
    for (const CxFrameData *frame : frames) {
        m_progress.setValue(index);
        if (!goesOn())
            return;
        if (!frame->samples || frame->sampleCount == 0)
            continue;
        const qint64 timestamp = frame->frameTimestamp(m_window.origin);
        level.drain(timestamp);
        if (!writeSamples(*frame, link, level))
            return;
        level.setRate(*frame, link.sampleInterval);
        ++index;
        if (m_window.to < timestamp)
            return;
    }
}

/// \return false when the report has ended
bool CsvReport::writeSamples(const CxFrameData &frame, const CsvLink &link, BufferLevel &level)
{
    const SharedText first = frameColumns(frame);
    const SharedText required = requiredColumn(link);
    const qint64 timestamp = frame.frameTimestamp(m_window.origin);
    const quint64 start = frame.samples[0];
    quint64 previous = start;
    for (quint64 i = 1; i < frame.sampleCount; ++i) {
        if (i % samplesPerLook == 0 && !goesOn())
            return false;
        const quint64 stamp = frame.samples[i];
        const quint64 interval = stamp - previous;
        previous = stamp;
        const qint64 time = addSaturated(timestamp, static_cast<qint64>((stamp - start) / 250));
        level.setLastTime(time);
        if (time < m_window.from)
            continue;
        if (time > m_window.to)
            break;

        char *line = first.write(m_file.reserve());
        line = writeField(line, (stamp - start) * 4);
        line = writeField(line, link.sampleInterval * i);
        line = writeField(line, stamp * 4);
        line = required.write(line);
        if (interval == 0) {
            *line = '\n';
            m_file.commit(line + 1);
            continue;
        }
        const double duration = static_cast<double>(interval) / 250.0;
        level.advance(duration);
        line = writeField(line, link.sampleInterval / duration);
        line = writeField(line, level.bytes());
        line = writeField(line, level.percent());
        m_file.commit(endLine(line));
    }
    return true;
}

void CsvReport::writeCounters(const QList<CxCounterData *> &records)
{
    writeHeader(countersHeader);
    int rows = 0;
    for (int i = 0; i < records.size(); ++i) {
        const CxCounterData &record = *records[i];
        m_progress.setValue(rows);
        if (i % recordsPerLook == 0 && !goesOn())
            return;
        const qint64 timestamp = record.frameTimestamp(m_window.origin);
        if (timestamp < m_window.from)
            continue;
        if (timestamp > m_window.to)
            return;
        writeCounterRow(record);
        ++rows;
    }
}

void CsvReport::writeCounterRow(const CxCounterData &record)
{
    char *line = writeField(m_file.reserve(), record.frameNumber);
    line = writeField(line, record.cameraTimestamp);
    line = writeField(line, record.computerTimestamp);
    line = writeField(line, qint64(record.transportSkip));
    line = writeField(line, qint64(record.apiSkip));
    line = writeField(line, qint64(record.missedTrgOverlap));
    line = writeField(line, qint64(record.missedTrgOverflow));
    line = writeField(line, qint64(record.bufferOverflow));
    m_file.commit(endLine(line));
}

} // namespace measurement
