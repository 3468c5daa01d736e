#include "host/app/LogLine.h"

#include <QCoreApplication>
#include <QDateTime>

#include <algorithm>

namespace host {

namespace {

constexpr int rowCharacters = 1000; // more is not painted; copies have it

/// Changes the direction of what follows it, beyond its own row even.
bool isDirectionMark(ushort unicode)
{
    return (unicode >= 0x202a && unicode <= 0x202e) || (unicode >= 0x2066 && unicode <= 0x2069);
}

void cut(QString &text, int maximum)
{
    if (text.size() <= maximum)
        return;
    const int rest = text.size() - maximum;
    text.truncate(maximum);
    text += QStringLiteral("… [%1 more characters]").arg(rest);
}

} // namespace

int severity(QtMsgType level)
{
    switch (level) {
    case QtDebugMsg:
        return 0;
    case QtInfoMsg:
        return 1;
    case QtWarningMsg:
        return 2;
    case QtCriticalMsg:
        return 3;
    case QtFatalMsg:
        return 4;
    }
    return 4;
}

QString levelName(QtMsgType level)
{
    static const char *const names[] = {
        QT_TRANSLATE_NOOP("host::LogLine", "Debug"),   QT_TRANSLATE_NOOP("host::LogLine", "Info"),
        QT_TRANSLATE_NOOP("host::LogLine", "Warning"), QT_TRANSLATE_NOOP("host::LogLine", "Critical"),
        QT_TRANSLATE_NOOP("host::LogLine", "Fatal"),
    };
    return QCoreApplication::translate("host::LogLine", names[severity(level)]);
}

QString threadName(quintptr thread)
{
    return QStringLiteral("0x%1").arg(thread, 0, 16);
}

QString rowText(const QString &text)
{
    QString row = text.left(rowCharacters).trimmed();
    row.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    for (QChar &character : row) {
        if (character == QLatin1Char('\n') || character.unicode() == QChar::LineSeparator ||
            character.unicode() == QChar::ParagraphSeparator)
            character = QChar(0x21b5);
        else if (character == QLatin1Char('\t'))
            character = QLatin1Char(' ');
        else if (character.category() == QChar::Other_Control || isDirectionMark(character.unicode()))
            character = QChar(QChar::ReplacementCharacter);
    }
    if (text.size() > rowCharacters)
        row += QChar(0x2026);
    return row;
}

QString wholeLine(const LogLine &line)
{
    const QString time = QDateTime::fromMSecsSinceEpoch(line.time).toString(Qt::ISODateWithMs);
    return QStringList{time, levelName(line.level), threadName(line.thread), line.category, line.text}.join(
        QLatin1Char('\t'));
}

void LogBuffer::append(LogLine line)
{
    cut(line.text, m_limits.lineCharacters);
    m_characters += line.text.size();
    m_lines.push_back(std::move(line));
    while (size() > m_limits.lines || (m_characters > m_limits.characters && size() > 1))
        dropOldest(1);
}

void LogBuffer::append(LogBuffer &&other)
{
    m_dropped += other.m_dropped;
    for (LogLine &line : other.m_lines) {
        m_characters += line.text.size();
        m_lines.push_back(std::move(line));
    }
    other.clear();
}

int LogBuffer::excess(const LogBuffer &other) const
{
    const int lines = size() + other.size() - m_limits.lines;
    qint64 characters = m_characters + other.m_characters - m_limits.characters;
    int count = std::clamp(lines, 0, size());
    for (int i = 0; i < size() && characters > 0; ++i) {
        characters -= at(i).text.size();
        count = std::max(count, i + 1);
    }
    return count;
}

void LogBuffer::dropOldest(int count)
{
    for (int i = 0; i < count; ++i) {
        m_characters -= m_lines.front().text.size();
        m_lines.pop_front();
    }
    m_dropped += static_cast<quint64>(count);
}

void LogBuffer::clear()
{
    m_lines.clear();
    m_characters = 0;
    m_dropped = 0;
}

LogBuffer LogBuffer::take()
{
    LogBuffer taken(m_limits);
    std::swap(taken, *this);
    return taken;
}

} // namespace host
