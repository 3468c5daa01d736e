#include "measurement/CsvFile.h"

#include <sys/stat.h>

namespace measurement {

namespace {

/// Large enough that the calls do not count, small enough to stay in the cache.
constexpr std::size_t bufferSize = std::size_t{256} * 1024;

} // namespace

CsvFile::CsvFile(const QString &fileName)
    : m_file(fileName)
    , m_buffer(new char[bufferSize])
    , m_position(m_buffer.get())
    , m_end(m_buffer.get() + bufferSize)
{
}

CsvFile::~CsvFile()
{
    close();
}

bool CsvFile::open()
{
    if (m_file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        return true;
    m_errorText = m_file.errorString();
    return false;
}

bool CsvFile::close()
{
    if (!m_file.isOpen())
        return !hasFailed();
    flush();
    if (!hasFailed())
        checkStillLinked();
    m_file.close();
    // Some file systems report here only that there was no room.
    if (!hasFailed() && m_file.error() != QFileDevice::NoError)
        m_errorText = m_file.errorString();
    return !hasFailed();
}

void CsvFile::flush()
{
    if (m_file.isOpen() && !hasFailed())
        writeOut(m_buffer.get(), m_position - m_buffer.get());
    m_position = m_buffer.get();
}

void CsvFile::writeOut(const char *text, qint64 size)
{
    while (size > 0) {
        // A disk that fills up takes a part first and refuses the rest.
        const qint64 written = m_file.write(text, size);
        if (written <= 0) {
            m_errorText = m_file.errorString();
            return;
        }
        text += written;
        size -= written;
    }
    checkStillLinked();
}

/// Writing to a removed file works, but nobody will ever read it.
void CsvFile::checkStillLinked()
{
    struct stat status = {};
    if (fstat(m_file.handle(), &status) == 0 && status.st_nlink == 0)
        m_errorText = QStringLiteral("The file was removed");
}

} // namespace measurement
