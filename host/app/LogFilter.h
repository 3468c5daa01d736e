#pragma once

#include <QSortFilterProxyModel>

namespace host {

class LogStore;

/// The lines of at least a level whose text or category contains a text.
class LogFilter : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    explicit LogFilter(LogStore &store, QObject *parent = nullptr);

    void setMinimumSeverity(int severity);
    /// Plain text, not a pattern; upper and lower case are the same.
    void setText(const QString &text);

protected:
    bool filterAcceptsRow(int sourceRow, const QModelIndex &sourceParent) const override;

private:
    LogStore &m_store;
    int m_minimumSeverity = 0;
    QString m_text;
};

} // namespace host
