#include "measurement/CsvReport.h"

#include "measurement/CsvText.h"
#include "measurement/LinkDrain.h"
#include "measurement/Saturate.h"

#include <algorithm>
#include <cstring>
#include <vector>

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
/// \tparam longest a multiple of 16 is copied fastest
template <std::size_t longest> class SharedText
{
public:
    /// \param write called with a place for the text, returns its end
    template <typename Write> void make(Write write)
    {
        char text[longest + csv::textRoom];
        m_size = static_cast<quint32>(write(text) - text);
        std::memcpy(m_text, text, m_size);
    }

    char *write(char *to) const
    {
        std::memcpy(to, m_text, longest); // of constant size, so without a call
        return to + m_size;
    }

private:
    quint32 m_size = 0;
    char m_text[longest] = {};
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

char *writeField(char *to, const csv::DecimalCounter &value)
{
    to = value.write(to);
    *to = ',';
    return to + 1;
}

/// The last field becomes the end of the line.
char *endLine(char *to)
{
    to[-1] = '\n';
    return to;
}

/// The columns that are the same throughout a frame.
using FrameColumns = SharedText<48>;
static_assert(2 * (csv::longestInteger + 1) <= 48);

FrameColumns columnsOf(const CxFrameData &frame)
{
    FrameColumns columns;
    columns.make([&frame](char *to) {
        return writeField(writeField(to, frame.frameNumber), frame.computerTimestamp);
    });
    return columns;
}

/// The columns that grow from one sample of a frame to the next.
class SampleColumns
{
public:
    SampleColumns(quint64 start, quint32 sampleInterval)
        : m_start(start)
        , m_sampleInterval(sampleInterval)
        , m_offsetStep(csv::DecimalCounter::stepOf(sampleInterval))
    {
    }

    void set(quint64 index, quint64 stamp)
    {
        m_time.set((stamp - m_start) * 4);
        m_offset.set(m_sampleInterval * index);
        m_stamp.set(stamp * 4);
    }

    /// \param step of the nanoseconds since the sample before
    void advance(quint64 index, quint64 stamp, csv::DecimalCounter::Step step)
    {
        if (!m_time.advance(step))
            m_time.set((stamp - m_start) * 4);
        if (!m_offset.advance(m_offsetStep))
            m_offset.set(m_sampleInterval * index);
        if (!m_stamp.advance(step))
            m_stamp.set(stamp * 4);
    }

    char *write(char *to) const { return writeField(writeField(writeField(to, m_time), m_offset), m_stamp); }

private:
    const quint64 m_start;
    const quint64 m_sampleInterval;
    const csv::DecimalCounter::Step m_offsetStep;
    csv::DecimalCounter m_time;   ///< nanoseconds since the start
    csv::DecimalCounter m_offset; ///< bytes
    csv::DecimalCounter m_stamp;  ///< nanoseconds
};

template <typename Record>
int countRecords(const RecordList<Record> &records, const CsvWindow &window, double statMin)
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

/// What depends on nothing but a sample's interval. A link repeats a few hundred
/// different intervals, and finding one again takes a fraction of the time of two
/// divisions and a text.
class CsvReport::IntervalColumns
{
public:
    struct alignas(64) Entry // one cache line
    {
        quint64 interval = 0;               ///< ticks of 4 ns
        double change = 0.0;                ///< of the buffer level, bytes
        csv::DecimalCounter::Step step = 0; ///< of the nanoseconds
        SharedText<32> text;                ///< required and link throughput
    };
    static_assert(sizeof(Entry) == 64);
    static_assert(sizeof("4294967295,") - 1 + csv::longestReal + 1 <= 32);

    explicit IntervalColumns(const CsvLink &link)
        : m_link(link)
        , m_entries(count)
    {
        // In all other places of the table the interval 0 means none.
        fill(m_entries[0], 0);
    }

    quint32 sampleInterval() const { return m_link.sampleInterval; }

    const Entry &at(quint64 interval)
    {
        Entry &entry = m_entries[interval % count];
        if (entry.interval != interval)
            fill(entry, interval);
        return entry;
    }

private:
    /// Intervals within 4 microseconds of each other have different places.
    static constexpr std::size_t count = 1024;

    void fill(Entry &entry, quint64 interval) const
    {
        entry.interval = interval;
        entry.step = csv::DecimalCounter::stepOf(interval * 4);
        const double duration = static_cast<double>(interval) / 250.0; // microseconds
        entry.change = duration * m_link.requiredMBps - m_link.sampleInterval;
        entry.text.make([&](char *to) {
            to = writeField(to, quint64(m_link.requiredMBps));
            return interval == 0 ? to : writeField(to, m_link.sampleInterval / duration);
        });
    }

    const CsvLink m_link;
    std::vector<Entry> m_entries;
};

/// The camera's frame buffer while the link empties it.
class CsvReport::BufferLevel
{
public:
    BufferLevel(quint64 bufferSize, bool reset)
        : m_size(static_cast<double>(bufferSize))
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

    void change(double bytes) { m_bytes = std::min(std::max(m_bytes + bytes, 0.0), m_size); }

    void setLastTime(qint64 time) { m_lastTime = time; }
    void setRate(const CxFrameData &frame, quint32 sampleInterval)
    {
        m_rate = throughput::meanRate(sampleInterval, frame.sampleCount, frame.sampleSpan);
    }

    double bytes() const { return m_bytes; }
    /// NaN for a buffer of size 0.
    double percent() const { return m_bytes / m_size * 100.0; }

private:
    const double m_size;
    const bool m_reset;
    double m_bytes = 0.0;
    double m_rate = 0.0;   ///< mean of the frame before, MB/s
    qint64 m_lastTime = 0; ///< of its last sample, microseconds; 0: nothing to drain
};

int progressMaximum(const RecordList<CxFrameData> &frames, const CsvWindow &window, double statMin)
{
    return countRecords(frames, window, statMin);
}

int progressMaximum(const RecordList<CxCounterData> &records, const CsvWindow &window, double statMin)
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

void CsvReport::writeFrames(const RecordList<CxFrameData> &frames, const CsvLink &link)
{
    writeHeader(framesHeader);
    IntervalColumns intervals(link);
    BufferLevel level(link.bufferSize, m_window.resetBufferLevel);
    int index = 0;
    for (const CxFrameData *frame : frames) {
        m_progress.setValue(index);
        if (!goesOn())
            return;
        if (!frame->samples || frame->sampleCount == 0)
            continue;
        const qint64 timestamp = frame->frameTimestamp(m_window.origin);
        level.drain(timestamp);
        if (!writeSamples(*frame, intervals, level))
            return;
        level.setRate(*frame, link.sampleInterval);
        ++index;
        if (m_window.to < timestamp)
            return;
    }
}

/// \return false when the report has ended
bool CsvReport::writeSamples(const CxFrameData &frame, IntervalColumns &intervals, BufferLevel &level)
{
    const qint64 timestamp = frame.frameTimestamp(m_window.origin);
    const quint64 *const samples = frame.samples;
    const quint64 count = frame.sampleCount;
    const quint64 start = samples[0];
    const FrameColumns frameColumns = columnsOf(frame);
    SampleColumns sampleColumns(start, intervals.sampleInterval());
    bool follows = false; // the row of the sample before
    quint64 previous = start;
    for (quint64 i = 1; i < count; ++i) {
        if (i % samplesPerLook == 0 && !goesOn())
            return false;
        const quint64 stamp = samples[i];
        const quint64 interval = stamp - previous;
        previous = stamp;
        const qint64 time = addSaturated(timestamp, static_cast<qint64>((stamp - start) / 250));
        level.setLastTime(time);
        if (time < m_window.from) {
            follows = false;
            continue;
        }
        if (time > m_window.to)
            break;

        const IntervalColumns::Entry &ofInterval = intervals.at(interval);
        if (follows)
            sampleColumns.advance(i, stamp, ofInterval.step);
        else
            sampleColumns.set(i, stamp);
        follows = true;
        char *line = frameColumns.write(m_file.reserve());
        line = sampleColumns.write(line);
        line = ofInterval.text.write(line);
        if (interval == 0) {
            *line = '\n';
            m_file.commit(line + 1);
            continue;
        }
        level.change(ofInterval.change);
        line = writeField(line, level.bytes());
        line = writeField(line, level.percent());
        m_file.commit(endLine(line));
    }
    return true;
}

void CsvReport::writeCounters(const RecordList<CxCounterData> &records)
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
