#pragma once

#include <QString>
#include <QtGlobal>

#include <deque>

namespace host {

/// One message of Qt's logger.
struct LogLine
{
    qint64 time = 0; ///< milliseconds since the epoch
    QtMsgType level = QtDebugMsg;
    quintptr thread = 0; ///< QThread::currentThreadId()
    QString category;    ///< empty for "default"
    QString text;        ///< foreign: any length, any characters
};

/// 0 (debug) to 4 (fatal); Qt's own numbers do not stand in this order.
int severity(QtMsgType level);
QString levelName(QtMsgType level);
/// As in the messages of those who log the id themselves.
QString threadName(quintptr thread);

/// The text in one short row: line breaks as a sign, control characters replaced.
QString rowText(const QString &text);
/// All fields, separated by tabs, the text as it is.
QString wholeLine(const LogLine &line);

/// What a log keeps; more is dropped, oldest first.
struct LogLimits
{
    int lines = 100'000;
    qint64 characters = qint64{32} * 1024 * 1024; ///< of all texts together
    int lineCharacters = 16 * 1024;               ///< of one text; the rest is cut off and its length said
};

/// The newest lines within the limits.
class LogBuffer
{
public:
    explicit LogBuffer(const LogLimits &limits)
        : m_limits(limits)
    {
    }

    int size() const { return static_cast<int>(m_lines.size()); }
    const LogLine &at(int index) const { return m_lines[static_cast<std::size_t>(index)]; }

    /// Drops old lines where it must.
    void append(LogLine line);
    void append(LogBuffer &&other);
    /// How many of the oldest lines must go for `other` to fit in behind.
    int excess(const LogBuffer &other) const;
    void dropOldest(int count);
    void clear();
    /// Hands out all lines and the count of dropped ones, and starts anew.
    LogBuffer take();

    quint64 dropped() const { return m_dropped; }

private:
    LogLimits m_limits;
    std::deque<LogLine> m_lines;
    qint64 m_characters = 0;
    quint64 m_dropped = 0;
};

} // namespace host
