#pragma once

#include "host/app/LogLine.h"

#include <QAbstractTableModel>
#include <QTimer>

#include <mutex>

namespace host {

/// The messages of Qt's logger as a table, oldest first.
///
/// Messages come from any thread and never wait for the GUI thread: it collects
/// them a few times a second. What exceeds the limits is dropped, oldest first,
/// and counted.
class LogStore : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { TimeColumn, LevelColumn, ThreadColumn, CategoryColumn, TextColumn, ColumnCount };
    /// host::severity() of the line.
    static constexpr int SeverityRole = Qt::UserRole;

    explicit LogStore(QObject *parent = nullptr, const LogLimits &limits = {});
    /// Uninstalls.
    ~LogStore() override;

    /// Receives every message from now on; the handler so far is still called.
    /// \return false if another store is installed
    bool install();
    /// Puts the handler back that was there before, unless another one was
    /// installed on top: that one stays.
    void uninstall();

    /// Any thread; returns at once, without a word to the GUI thread.
    void enter(LogLine line);

    const LogLine &line(int row) const { return m_kept.at(row); }
    /// Lines lost to the limits since the start or the last clear().
    quint64 dropped() const { return m_kept.dropped(); }
    void clear();

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

public Q_SLOTS:
    /// Takes the waiting messages into the table now.
    void deliver();

Q_SIGNALS:
    /// Around all row changes of one delivery.
    void aboutToDeliver();
    void delivered();

private:
    static void handle(QtMsgType type, const QMessageLogContext &context, const QString &text);

    LogBuffer m_kept;
    std::mutex m_waitingMutex;
    LogBuffer m_waiting; ///< guarded by m_waitingMutex
    QTimer m_timer;
};

} // namespace host
