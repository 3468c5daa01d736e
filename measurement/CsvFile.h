#pragma once

#include <QFile>
#include <QString>

#include <cstddef>
#include <memory>

namespace measurement {

/// A text file written in large pieces.
///
/// A line is put together in place: at reserve(), up to lineRoom bytes, then
/// commit() of its end. After the first failure nothing more reaches the file
/// and every later call is harmless.
class CsvFile
{
public:
    static constexpr std::size_t lineRoom = 320;

    explicit CsvFile(const QString &fileName);
    ~CsvFile();
    CsvFile(const CsvFile &) = delete;
    CsvFile &operator=(const CsvFile &) = delete;

    /// Opens for writing; a file of that name is replaced.
    /// \return false with errorText() set
    bool open();

    /// Where the next line goes; lineRoom bytes are free there.
    char *reserve()
    {
        if (m_end - m_position < static_cast<std::ptrdiff_t>(lineRoom))
            flush();
        return m_position;
    }
    /// \param end of the text written at the last reserve()
    void commit(char *end) { m_position = end; }

    /// Whether text was lost: a full disk, a file removed while it was written.
    bool hasFailed() const { return !m_errorText.isEmpty(); }
    /// The reason in the system's words, empty without a failure.
    QString errorText() const { return m_errorText; }

    /// Writes what is left.
    /// \return false with errorText() set when not all text reached the file
    bool close();

private:
    void flush();
    void writeOut(const char *text, qint64 size);
    void checkStillLinked();

    QFile m_file;
    std::unique_ptr<char[]> m_buffer;
    char *m_position;
    char *const m_end;
    QString m_errorText;
};

} // namespace measurement
