#include "host/app/LogFilter.h"

#include "host/app/LogStore.h"

namespace host {

LogFilter::LogFilter(LogStore &store, QObject *parent)
    : QSortFilterProxyModel(parent)
    , m_store(store)
{
    setSourceModel(&store);
}

void LogFilter::setMinimumSeverity(int severity)
{
    m_minimumSeverity = severity;
    invalidate();
}

void LogFilter::setText(const QString &text)
{
    m_text = text;
    // invalidateFilter() reports every run of rows by itself, which takes the
    // table seconds in a long log.
    invalidate();
}

bool LogFilter::filterAcceptsRow(int sourceRow, const QModelIndex &sourceParent) const
{
    Q_UNUSED(sourceParent)
    const LogLine &line = m_store.line(sourceRow);
    if (severity(line.level) < m_minimumSeverity)
        return false;
    return m_text.isEmpty() || line.text.contains(m_text, Qt::CaseInsensitive) ||
           line.category.contains(m_text, Qt::CaseInsensitive);
}

} // namespace host
