#include "tests/measurement/LogCapture.h"

#include <QRegularExpression>

#include <mutex>

namespace {

std::mutex logMutex;
QList<LogEntry> logEntries; // guarded by logMutex

void take(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    const std::lock_guard lock(logMutex);
    logEntries.append({type, context.category, context.file, context.function, context.line, text});
}

} // namespace

QString LogEntry::message() const
{
    const QRegularExpression form(
        QStringLiteral("\\A0x[0-9a-f]+ %1 L %2 :  (.*)\\z")
            .arg(QRegularExpression::escape(QString::fromLocal8Bit(file)), QString::number(line)));
    const QRegularExpressionMatch match = form.match(text);
    const bool placed = file.endsWith(".cpp") && line > 0 && !function.isEmpty();
    if (!match.hasMatch() || !placed || type != QtCriticalMsg || category != "default")
        return QStringLiteral("malformed: ") + text;
    return match.captured(1);
}

LogCapture::LogCapture()
{
    clear();
    m_previous = qInstallMessageHandler(take);
}

LogCapture::~LogCapture()
{
    qInstallMessageHandler(m_previous);
}

QList<LogEntry> LogCapture::entries() const
{
    const std::lock_guard lock(logMutex);
    return logEntries;
}

QStringList LogCapture::messages() const
{
    QStringList texts;
    for (const LogEntry &entry : entries())
        texts.append(entry.message());
    return texts;
}

void LogCapture::clear()
{
    const std::lock_guard lock(logMutex);
    logEntries.clear();
}
