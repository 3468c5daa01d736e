#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <QtGlobal>

/// One message that went through Qt's log.
struct LogEntry
{
    QtMsgType type;
    QByteArray category;
    QByteArray file;
    QByteArray function;
    int line;
    QString text;

    /// The message behind "THREAD FILE L LINE :  "; an entry of any other form,
    /// level or category comes back as it is, with "malformed: " before it.
    QString message() const;
};

/// Takes all log messages while it lives; any thread may log.
class LogCapture
{
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture &) = delete;
    LogCapture &operator=(const LogCapture &) = delete;

    QList<LogEntry> entries() const;
    QStringList messages() const;
    void clear();

private:
    QtMessageHandler m_previous;
};
